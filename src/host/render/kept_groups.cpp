#include "host/render/kept_groups.h"

#include "host/model/core/extras.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"

namespace sg::render {
namespace {

using model::GroupData;

constexpr int kNextCoordinate = 10;

const GroupData* groupsOf(const AcDbEntity& entity) {
    const model::ProxyData* const data = model::proxyData(entity);
    if (data == nullptr) return nullptr;
    const model::Extras* const extras = model::ObjectAccess::extras(entity);
    const bool hasForm = extras != nullptr && extras->fileForm != nullptr;
    return hasForm && !extras->fileForm->groups.empty() ? &extras->fileForm->groups : &data->groups;
}

bool startsPoint(const KeptGroup& group) {
    return group.kind == GroupData::Kind::real &&
           ((group.code >= 10 && group.code <= 18) || group.code == 210);
}

}  // namespace

std::vector<KeptGroup> keptGroups(const AcDbEntity& entity) {
    std::vector<KeptGroup> groups;
    const GroupData* const data = groupsOf(entity);
    if (data == nullptr) return groups;
    int coordinates = 0;  // of the last group, when it is a point that may go on
    GroupData::Walk walk(*data);
    while (walk.next()) {
        const KeptGroup& group = walk.group();
        if (coordinates > 0 && coordinates < 3 &&
            group.code == groups.back().code + coordinates * kNextCoordinate) {
            (coordinates == 1 ? groups.back().y : groups.back().z) = group.real;
            ++coordinates;
            continue;
        }
        coordinates = startsPoint(group) ? 1 : 0;
        groups.push_back(group);
    }
    return groups;
}

}  // namespace sg::render

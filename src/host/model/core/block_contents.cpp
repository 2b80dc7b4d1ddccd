#include "host/model/core/block_contents.h"

#include <algorithm>

#include "host/model/core/object_access.h"

using Contents = sg::model::ObjectAccess::BlockContents;

size_t Contents::find(AcDbObjectId entity) const {
    if (sorted_) {
        const auto at = std::lower_bound(entities.begin(), entities.end(), entity);
        if (at == entities.end() || *at != entity) return kNotFound;
        return static_cast<size_t>(at - entities.begin());
    }
    if (places_.empty()) {
        for (size_t i = 0; i < entities.size(); ++i)
            places_[entities[i]] = i;
    }
    const auto found = places_.find(entity);
    return found == places_.end() ? kNotFound : found->second;
}

void Contents::append(AcDbObjectId entity) {
    if (!entities.empty() && entity < entities.back()) sorted_ = false;
    if (!places_.empty()) places_[entity] = entities.size();
    entities.push_back(entity);
}

void Contents::insert(size_t index, AcDbObjectId entity) {
    const auto at = entities.begin() + static_cast<ptrdiff_t>(std::min(index, entities.size()));
    if ((at != entities.begin() && entity < *(at - 1)) || (at != entities.end() && *at < entity)) {
        sorted_ = false;
    }
    entities.insert(at, entity);
    places_.clear();
}

void Contents::remove(AcDbObjectId entity) {
    const size_t at = find(entity);
    if (at == kNotFound) return;
    entities.erase(entities.begin() + static_cast<ptrdiff_t>(at));
    places_.clear();
}

void Contents::assign(std::vector<AcDbObjectId> ids) {
    entities = std::move(ids);
    sorted_ = std::is_sorted(entities.begin(), entities.end());
    places_.clear();
}

namespace sg::model {

AcDbObjectId entityAfter(const AcDbBlockTableRecord& block, AcDbObjectId id) {
    const Contents& contents = ObjectAccess::contents(block);
    size_t at = 0;
    if (!id.isNull()) {
        at = contents.find(id);
        if (at == Contents::kNotFound) return {};
        ++at;
    }
    for (; at < contents.entities.size(); ++at) {
        if (!contents.entities[at].isErased()) return contents.entities[at];
    }
    return {};
}

AcDbObjectId lastEntity(const AcDbBlockTableRecord& block) {
    const std::vector<AcDbObjectId>& entities = block.entityIds();
    const auto last = std::find_if(entities.rbegin(), entities.rend(),
                                   [](AcDbObjectId id) { return !id.isErased(); });
    return last == entities.rend() ? AcDbObjectId() : *last;
}

}  // namespace sg::model

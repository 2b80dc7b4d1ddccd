#include "host/editor/selection/selection_sets.h"

#include <algorithm>

namespace sg {

bool SelectionSet::add(AcDbObjectId id, size_t method) {
    if (!ids_.insert(id).second) return false;
    members_.push_back({id, method});
    return true;
}

bool SelectionSet::remove(AcDbObjectId id) {
    if (ids_.erase(id) == 0) return false;
    members_.erase(std::find_if(members_.begin(), members_.end(),
                                [&](const Member& member) { return member.id == id; }));
    return true;
}

std::vector<AcDbObjectId> SelectionSet::ids() const {
    std::vector<AcDbObjectId> ids;
    ids.reserve(members_.size());
    for (const Member& member : members_)
        ids.push_back(member.id);
    return ids;
}

size_t SelectionSet::add(const std::vector<AcDbObjectId>& ids, SelectedBy how) {
    methods_.push_back(std::move(how));
    size_t added = 0;
    for (const AcDbObjectId id : ids)
        added += add(id, methods_.size() - 1) ? 1 : 0;
    if (added == 0) methods_.pop_back();
    return added;
}

uint64_t SelectionSets::add(SelectionSet set) {
    sets_[++last_].set = std::make_unique<SelectionSet>(std::move(set));
    return last_;
}

SelectionSet* SelectionSets::find(uint64_t name) {
    const auto found = sets_.find(name);
    return found == sets_.end() ? nullptr : found->second.set.get();
}

bool SelectionSets::free(uint64_t name) {
    return sets_.erase(name) != 0;
}

void SelectionSets::retain(uint64_t name) {
    const auto found = sets_.find(name);
    if (found != sets_.end()) ++found->second.holders;
}

void SelectionSets::release(uint64_t name) {
    const auto found = sets_.find(name);
    if (found != sets_.end() && --found->second.holders == 0) sets_.erase(found);
}

}  // namespace sg

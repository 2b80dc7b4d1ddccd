#include "host/dwg/links.h"

namespace sg::dwg {

std::vector<AcDbObjectId> Links::owners() const {
    std::vector<AcDbObjectId> owners;
    owners.reserve(byOwner_.size());
    for (const auto& [owner, links] : byOwner_)
        owners.push_back(owner);
    return owners;
}

// A chain begins at an entity that has none of the owner's before it. Damaged files may have
// several chains, and circles.
std::vector<AcDbObjectId> Links::entitiesOf(AcDbObjectId owner) const {
    std::vector<AcDbObjectId> ids;
    const auto found = byOwner_.find(owner);
    if (found == byOwner_.end()) return ids;
    const std::vector<Link>& links = found->second;
    std::unordered_map<uint64_t, size_t> places;
    for (size_t i = 0; i < links.size(); ++i)
        places.emplace(links[i].handle, i);
    std::vector<bool> isTaken(links.size());
    const auto follow = [&](size_t at) {
        while (!isTaken[at]) {
            isTaken[at] = true;
            ids.push_back(links[at].id);
            const auto next = places.find(links[at].behind);
            if (next == places.end()) return;
            at = next->second;
        }
    };
    for (size_t i = 0; i < links.size(); ++i) {
        if (!places.contains(links[i].before)) follow(i);
    }
    for (size_t i = 0; i < links.size(); ++i)
        follow(i);
    return ids;
}

}  // namespace sg::dwg

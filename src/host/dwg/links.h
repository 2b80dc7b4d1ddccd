#pragma once

#include <unordered_map>
#include <vector>

#include "platform/db/object_id.h"

namespace sg::dwg {

// The order of entities in their owners in files up to release 2000, where each has the handles of
// the one before it and the one behind.
class Links {
  public:
    struct Link {
        AcDbObjectId owner, id;
        uint64_t handle = 0, before = 0, behind = 0;
    };
    void add(const Link& link) { byOwner_[link.owner].push_back(link); }

    // The owners, in no order.
    std::vector<AcDbObjectId> owners() const;
    // The entities of an owner as the links tell; what no link leads to comes last, by handles.
    std::vector<AcDbObjectId> entitiesOf(AcDbObjectId owner) const;

  private:
    std::unordered_map<AcDbObjectId, std::vector<Link>> byOwner_;  // in the order of reading
};

}  // namespace sg::dwg

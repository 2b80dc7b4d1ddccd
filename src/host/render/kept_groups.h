#pragma once

#include <vector>

#include "host/model/core/group_data.h"
#include "platform/db/entity.h"
#include "platform/ge/point3d.h"

namespace sg::render {

using KeptGroup = model::GroupData::Group;

// What a drawing file has of an entity of an unknown class: its groups in their order, with the
// coordinates of a point together in one. Nothing for an entity of another class. They hold as long
// as the entity is not changed.
std::vector<KeptGroup> keptGroups(const AcDbEntity& entity);

inline AcGePoint3d pointOf(const KeptGroup& group) {
    return {group.real, group.y, group.z};
}

}  // namespace sg::render

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/entity.h"

namespace sg::test {

// One entity in some state that is not the usual one.
struct EntitySample {
    std::string name;
    std::unique_ptr<AcDbEntity> entity;
};

// Entities of every class, outside the database; what they refer to is in it. `vertices`: also
// polylines whose vertices are entities, which do not travel in one list of groups.
std::vector<EntitySample> sampleEntities(AcDbDatabase& database, bool vertices);

}  // namespace sg::test

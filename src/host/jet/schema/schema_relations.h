#pragma once

#include "host/jet/catalog/catalog.h"
#include "host/jet/schema/schema_catalog.h"

// Relations. For schema_*.cpp and compact_*.cpp alone.
namespace sg::jet::schema {

// Makes the tables of this file ask for the relation, of which no system table need know. Throws
// what schema.h tells of createRelation() about columns, indexes and rows.
void enforceRelation(SchemaChange& change, const Relation& relation);

}  // namespace sg::jet::schema

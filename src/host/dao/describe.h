#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/jet/database/database.h"
#include "platform/dao/infos.h"

// What the information calls answer. Positions and names that are not there throw jet::Error
// ItemNotFound; names are compared ignoring case.
namespace sg::dao {

void describeIndex(const jet::Table& table, size_t index, uint32_t level, CDaoIndexInfo& info);
void describeTable(const jet::Database& database, const jet::CatalogObject& object, uint32_t level,
                   CDaoTableDefInfo& info);
void describeRelation(const jet::Relation& relation, uint32_t level, CDaoRelationInfo& info);
void describeQuery(const jet::CatalogObject& object, const jet::Query& query, uint32_t level,
                   CDaoQueryDefInfo& info);

int32_t attributesOf(const jet::CatalogObject& object);
// ";DATABASE=path" of a linked table, otherwise "".
std::wstring connectOf(const jet::CatalogObject& object);

// Places of the indexes that programs see, in the order of their names.
std::vector<size_t> indexesInOrder(const jet::TableDefinition& definition);
size_t indexAt(const jet::TableDefinition& definition, int position);
size_t indexNamed(const jet::TableDefinition& definition, std::wstring_view name);

}  // namespace sg::dao

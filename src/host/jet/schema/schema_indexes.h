#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/jet/pages/page_allocator.h"
#include "host/jet/schema/design.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/values/table_definition.h"

// Indexes of a definition, and their trees, as tables, indexes and relations need them. For
// schema_*.cpp and compact_*.cpp alone.
namespace sg::jet::schema {

// Adds an index to the definition: a real one, unless there is one with the same columns and flags
// to stand on, whose pages (root 0) are still to be made, and the logical one. Throws what
// schema.h tells of createIndex(), but for what the rows say. Answers the real index's place.
size_t addDesignedIndex(TableDefinition& table, const IndexDesign& design, const Format& format);

// Finds or adds a real index. Those whose pages are not there yet have no root.
size_t realIndexOver(TableDefinition& table, const std::vector<IndexColumn>& columns,
                     uint8_t flags);
// Adds the logical index where its name belongs, under a number of its own, which it answers.
// Throws 3626 when there are too many.
uint32_t addLogicalIndex(TableDefinition& table, LogicalIndex index);

// Makes pages for a real index that has none, filled with the table's rows. Throws DuplicateKey and
// NullInIndex with the name that the index is going to have.
void makeIndex(SchemaChange& change, TableDefinition& table, size_t real, const std::wstring& name);

// Takes a logical index away, and the real one with its pages when nothing else stands on it.
void removeLogicalIndex(PageAllocator& allocator, TableDefinition& table, size_t place);
void dropIndexPages(PageAllocator& allocator, const RealIndex& index);

}  // namespace sg::jet::schema

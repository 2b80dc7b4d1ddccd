#pragma once

#include "host/jet/pages/page_allocator.h"
#include "host/jet/values/table_definition.h"

// Tables as a whole. For schema_*.cpp and compact_*.cpp alone.
namespace sg::jet::schema {

// Makes the pages of a table without rows: its definition, maps and trees, whose places it sets in
// `table`, and writes the definition.
void makeTablePages(PageAllocator& allocator, TableDefinition& table);

}  // namespace sg::jet::schema

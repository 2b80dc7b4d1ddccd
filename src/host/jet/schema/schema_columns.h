#pragma once

#include <cstdint>
#include <vector>

#include "host/jet/catalog/properties.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/schema/design.h"
#include "host/jet/values/table_definition.h"

// Columns and their pages, as createTable() and the functions on columns make and drop them. For
// schema_*.cpp and compact_*.cpp alone.
namespace sg::jet::schema {

// Adds the column that `design` asks for behind the others; of a long value the maps are still to
// be made. Throws what schema.h tells of columns.
Column& addDesignedColumn(TableDefinition& table, const ColumnDesign& design, SortOrder order);

// valueSize() of a type that a column of ours can have; 0 for long values. Throws 3259 for any
// other type.
uint16_t sizeOf(ColumnType type);

// Throws RecordTooLarge when not even a row of Nulls fits.
void checkRowSize(const TableDefinition& table, const Format& format);

// Lets the counter of a table that has `rows` numbered ones go on behind them.
void startCounter(WriteTransaction& pages, const TableDefinition& table, const ColumnDesign& design,
                  uint32_t rows);

void setColumnProperties(Properties& properties, const ColumnDesign& design);
void setTableProperties(Properties& properties, const TableDesign& design);

// As createMaps(), for any number.
std::vector<RowId> createManyMaps(PageAllocator& allocator, size_t count);

// Gives back the pages in a set, and the map's own record with its map pages. Pages that say that
// they are somebody else's stay; a map that is not there (page 0) is passed over.
void dropOwnedPages(PageAllocator& allocator, const TableDefinition& table, RowId owned,
                    RowId free);

}  // namespace sg::jet::schema

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/jet/compact/compact_source.h"
#include "host/jet/database/database.h"

// One table's way into the new database. For compact*.cpp alone.
namespace sg::jet::compaction {

// A column of a table that was read, and the one that its values go to.
struct ColumnMove {
    size_t from = 0;
    size_t to = 0;
    bool converts = false;  // its type is another one there
};

// What a table becomes: its definition without pages and indexes.
struct TablePlan {
    TableDefinition definition;
    std::vector<ColumnMove> moves;
    std::vector<std::wstring> dropped;  // columns that can't be kept
};

// Columns keep their order, and new numbers close the gaps of deleted ones. What is not as it was
// is told as a loss.
TablePlan planTable(const Source& source, const TableDefinition& table, SortOrder order);

// Copies the rows into the table at `page`, in transactions of some ten thousand. `change`, when
// there is one, may change a row before it is written; it answers false to leave it out.
uint64_t copyRows(const Source& source, const Table& from, Database& into, uint32_t page,
                  const std::vector<ColumnMove>& moves,
                  const std::function<bool(std::vector<Value>&)>& change = {});

// Builds the indexes that are no relation's end.
void copyIndexes(const Source& source, const TableDefinition& from, Database& into,
                 const CatalogObject& table);

// Lets the counters go on from where they are.
void copyCounters(const Source& source, const Table& from, Database& into, uint32_t page);

}  // namespace sg::jet::compaction

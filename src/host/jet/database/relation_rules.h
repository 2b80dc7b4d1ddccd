#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/index/index_key.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// Referential integrity: what a table's enforced relations ask of its rows.
namespace sg::jet {

class Database;
class TableIndexes;
class TableWriter;

// A relation as one of its tables sees it.
struct RelationEnd {
    std::wstring name;
    size_t index = 0;              // real index of this table
    TableWriter* other = nullptr;  // writes the other table; may be this one's
    size_t otherIndex = 0;         // real index there, over the columns that are compared
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool nullsOnDelete = false;
};

// The ends of a table's relations. They name writers of other tables, so that they hold only until
// Database::designStamp() changes.
class SG_API RelationRules {
  public:
    // Of the table that `writer` writes. Throws Damaged when the other end of a relation is not
    // there or its columns are of other types, and OperationNotSupported when its keys can't be
    // made.
    RelationRules(Database& database, TableWriter& writer);

    // In which this table refers to another one, and in which it is referred to.
    const std::vector<RelationEnd>& parents() const { return parents_; }
    const std::vector<RelationEnd>& children() const { return children_; }

  private:
    std::vector<RelationEnd> parents_;
    std::vector<RelationEnd> children_;
};

// The key in the other table's index of its rows that `row` of this table is related to. False when
// one of the columns is Null: such a row is related to none. Only the columns of `end.index` must
// be in the row.
SG_API bool keyAcross(const TableIndexes& own, const RelationEnd& end, std::span<const Value> row,
                      KeyBytes& key);

// Calls `visit` with each row that an index has under exactly this key, until it answers false.
// `visit` must not change the index.
SG_API void forEachEntry(const PageStore& store, const RealIndex& index, ByteView key,
                         const std::function<bool(RowId)>& visit);

}  // namespace sg::jet

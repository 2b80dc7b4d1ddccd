#pragma once

#include <string>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/index/sort_order.h"
#include "host/jet/recordset/recordset.h"

namespace sg::app {

// The rows of a table as texts, and back into the table through the engine.
class TableRows {
  public:
    // Rows are numbered as they are read. Throws jet::Error.
    TableRows(jet::Database& database, std::wstring table);

    const std::vector<jet::RecordColumn>& Columns() const { return rows_.columns(); }
    // False for counters, calculated columns, bytes, and in a database that is only read.
    bool CanWrite(size_t column) const;
    uint32_t Count() const { return rows_.recordCount(); }

    // Reads the next row, in the table's order; false behind the last one.
    bool ReadNext(std::vector<std::wstring>& texts);

    // Writes one value and answers what it is now. An empty text is Null. Throws jet::Error, and
    // the row is as it was.
    std::wstring Write(size_t row, size_t column, const std::wstring& text);

  private:
    jet::TableRecordset rows_;
    std::vector<jet::Bytes> bookmarks_;  // of the rows that were read
    bool hasBegun_ = false;
};

// What one text is compared by when rows are sorted.
struct SortKey {
    bool isNull = true;
    double number = 0;      // of a number
    jet::KeyBytes bytes{};  // of a text; what has none comes last
    std::wstring text{};    // of all else, and among equal texts
};

SortKey sortKey(const std::wstring& text, jet::ColumnType type);
// Below zero, zero or above.
int compare(const SortKey& a, const SortKey& b);

}  // namespace sg::app

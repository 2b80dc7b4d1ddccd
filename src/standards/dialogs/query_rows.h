#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/variant/safe_array.h"

namespace sg {

class CDBConnection;

// The rows that a query of several columns gives.
class QueryRows {
  public:
    // A failure is reported, and gives no rows.
    QueryRows(CDBConnection& connection, const std::wstring& sql);

    size_t count() const { return starts_.size(); }
    // A column's value; an empty variant when the row has no such column.
    const VARIANT& value(size_t row, const wchar_t* column) const;

  private:
    COleSafeArray items_;
    std::vector<size_t> starts_;  // behind the mark of each row
};

// The rows of a query as the connection gives them. A failure is reported, and answers false.
bool select(CDBConnection& connection, const std::wstring& sql, COleSafeArray& rows);

// What a value reads as in a cell: nothing for Null, numbers with `digits` digits behind the point.
std::wstring shownValue(const VARIANT& value, int digits = 0);

// Runs a statement that changes rows. A failure is reported, and answers false.
bool execute(CDBConnection& connection, const std::wstring& sql);

}  // namespace sg

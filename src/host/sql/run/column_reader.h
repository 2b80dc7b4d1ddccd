#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>

#include "host/jet/pages/table.h"
#include "host/jet/values/value.h"

namespace sg::sql {

// Gives the values of the row under a cursor to SQLite, each as it is asked for.
class ColumnReader {
  public:
    void answer(sqlite3_context* context, const jet::RowCursor& rows, size_t column);
    // hashOf() the value.
    std::optional<uint64_t> hash(const jet::RowCursor& rows, size_t column);

  private:
    // Kept for their memory.
    jet::Value value_;
    std::string text_;
};

}  // namespace sg::sql

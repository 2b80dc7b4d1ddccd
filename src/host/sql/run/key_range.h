#pragma once

#include <optional>
#include <vector>

#include "host/sql/run/access_path.h"

namespace sg::sql {

// Keys of an index, both ends included: from the first that is `low` or behind it to the last that
// begins with `high` or is before it; empty bytes are no bound. It may be wider than what is asked
// for.
struct KeyRange {
    jet::KeyBytes low;
    jet::KeyBytes high;
    bool isEmpty = false;  // no row can be meant
};

// Makes ranges of the arguments of a path by an index, again and again in the same memory.
class RangeMaker {
  public:
    // Throws OperationNotSupported for a text that has no place in the index.
    void make(const JetTable& table, const AccessPath& path, sqlite3_value** arguments,
              KeyRange& range);

  private:
    bool add(ColumnType type, Bound bound, sqlite3_value* argument);
    void makeEnd(const jet::KeyEncoder& encoder, const std::optional<jet::Value>& value,
                 jet::KeyBytes& key);

    std::vector<jet::Value> equal_;  // of the leading columns
    std::optional<jet::Value> low_;  // of the one behind them
    std::optional<jet::Value> high_;
    bool isPattern_ = false;  // both bounds are what texts begin with
    bool isEmpty_ = false;
};

}  // namespace sg::sql

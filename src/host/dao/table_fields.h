#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/jet/database/database.h"
#include "platform/dao/infos.h"

namespace sg::dao {

// The fields of a table in the order in which programs count them, as the information calls tell
// them.
class TableFields {
  public:
    // `canUpdate` adds dbUpdatableField, which only fields of recordsets have.
    TableFields(const jet::Database& database, jet::Table table, bool canUpdate);

    // Takes the table as it is now: at once when nothing has changed.
    void follow(const jet::Table& now) {
        if (&now.definition() != &table_.definition()) adopt(now);
    }

    size_t count() const { return fields_.size(); }
    // Ignoring case; throws ItemNotFound.
    size_t positionOf(std::wstring_view name) const;
    // Throws ItemNotFound.
    void describe(int position, uint32_t level, CDaoFieldInfo& info);

  private:
    void adopt(const jet::Table& table);
    void readProperties();

    const jet::Database* database_;
    bool canUpdate_;
    jet::Table table_;
    std::vector<CDaoFieldInfo> fields_;  // at all levels, but for the properties:
    bool hasProperties_ = false;
};

// The parts of `whole` that a level has.
void tellLevel(const CDaoFieldInfo& whole, uint32_t level, CDaoFieldInfo& info);

// The engine's number of a column's type, and the column type for such a number; throws jet::Error
// 3259 for one that no column can have.
int16_t fieldType(jet::ColumnType type);
jet::ColumnType columnType(int16_t type);

}  // namespace sg::dao

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/recordset/recordset.h"
#include "platform/dao/infos.h"
#include "platform/variant/ole_variant.h"

namespace sg::dao {

// Fields in the order in which programs count them, as the information calls tell them.
class FieldList {
  public:
    virtual ~FieldList() = default;

    // Takes the table as it is now: at once when nothing has changed.
    virtual void follow(const jet::Table&) {}

    size_t count() const { return fields_.size(); }
    // Their names as texts, to be shared.
    const std::vector<COleVariant>& names();
    // Ignoring case; throws ItemNotFound.
    size_t positionOf(std::wstring_view name) const;
    // Throws ItemNotFound.
    void describe(int position, uint32_t level, CDaoFieldInfo& info);

  protected:
    // Of the table's column m_strSourceField: what its properties say.
    static void addProperties(const jet::Properties& properties, CDaoFieldInfo& field);

    std::vector<CDaoFieldInfo> fields_;  // at all levels, but for the properties:
    bool hasProperties_ = false;
    std::vector<COleVariant> names_;  // empty until they are asked for

  private:
    virtual void readProperties() = 0;
};

// Those of a table.
class TableFields final : public FieldList {
  public:
    // `canUpdate` adds dbUpdatableField, which only fields of recordsets have.
    TableFields(const jet::Database& database, jet::Table table, bool canUpdate);

    void follow(const jet::Table& now) override {
        if (&now.definition() != &table_.definition()) adopt(now);
    }

  private:
    void adopt(const jet::Table& table);
    void readProperties() override;

    const jet::Database* database_;
    bool canUpdate_;
    jet::Table table_;
};

// Those of a query's result, which are only read.
class ResultFields final : public FieldList {
  public:
    ResultFields(jet::Database& database, const std::vector<jet::RecordColumn>& columns);

  private:
    void addSource(const jet::RecordColumn& column, CDaoFieldInfo& field);
    void readProperties() override;

    jet::Database* database_;
};

// The parts of `whole` that a level has.
void tellLevel(const CDaoFieldInfo& whole, uint32_t level, CDaoFieldInfo& info);

// The engine's number of a column's type, and the column type for such a number; throws jet::Error
// 3259 for one that no column can have.
int16_t fieldType(jet::ColumnType type);
jet::ColumnType columnType(int16_t type);

}  // namespace sg::dao

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/expression/expression.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// What a table's design asks of its rows beyond types and indexes.
namespace sg::jet {

class SG_API TableRules {
  public:
    // Of a table with these properties. An expression that can't be understood throws only when it
    // is needed. `table` outlives the rules.
    //
    // A column without the property Required is not required, and one without AllowZeroLength
    // takes an empty text: the engine refuses that only where the design says so. (CREATE TABLE
    // leaves the property away; a design that was made by hand has it for every Text and Memo.)
    TableRules(const TableDefinition& table, const Properties& properties);

    bool isRequired(size_t column) const { return columns_[column].required; }
    bool allowsZeroLength(size_t column) const { return columns_[column].zeroLength; }
    // A rule that may ask for the value of any column.
    bool hasTableRule() const { return tableRule_.has_value(); }

    // Sets the default values of all columns that have one, converted; Null elsewhere, false for
    // Booleans. `row` gets one value for each column. Counters are Null: their value is made on
    // insert. A text column's default that is no expression is the text itself. A default that
    // can't be understood, evaluated or converted throws what Expression and convertTo() throw,
    // with the column's name in the error's detail.
    void defaults(std::vector<Value>& row) const;

    // Checks a complete row of converted values: NullInRequiredField with the column's name,
    // ZeroLengthField with it, ValidationRule with the column's name and the rule, or
    // ValidationMessage with the text that the design has for it; then the table's rule in the same
    // way, with the table's name. Only columns in `changed` (one flag for each column; empty: all)
    // are asked for the column rules. Counters and calculated columns are not asked. A rule that
    // gives Null is met. A rule that can't be understood or evaluated throws what Expression
    // throws, with the column's name in the error's detail.
    void check(std::span<const Value> row, const std::vector<bool>& changed = {}) const;

  private:
    // An expression of the design, parsed on first use.
    struct Rule {
        std::wstring text;
        std::wstring message{};
        std::optional<Expression> expression{};
    };
    struct ColumnRules {
        bool required = false;
        bool zeroLength = true;
        mutable std::optional<Rule> defaultValue{};
        mutable std::optional<Rule> rule{};
    };

    static Expression defaultExpression(const Column& column, const std::wstring& text);
    void checkColumn(size_t column, std::span<const Value> row) const;
    [[noreturn]] static void refuse(const Rule& rule, const std::wstring& name);

    std::vector<ColumnRules> columns_;
    std::vector<uint16_t> checked_;      // places of the columns that check() has to look at
    std::vector<uint16_t> withDefault_;  // of those that defaults() gives a value
    mutable std::optional<Rule> tableRule_;
    const TableDefinition* table_;
};

}  // namespace sg::jet

#include "host/jet/database/table_rules.h"

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

// The columns of a row, "" being the one that a rule is about.
class RowNames : public ExpressionNames {
  public:
    RowNames(const TableDefinition& table, std::span<const Value> row, size_t own)
        : table_(&table), row_(row), own_(own) {}

    bool value(std::wstring_view name, Value& into) const override {
        std::optional<size_t> column = own_;
        if (!name.empty()) {
            // The expression can only mean this table, whatever its name was when it was written.
            const size_t point = name.rfind(L'.');
            column = table_->columnByName(point == name.npos ? name : name.substr(point + 1));
        }
        if (!column || *column >= row_.size()) {
            return false;
        }
        into = row_[*column];
        return true;
    }

  private:
    const TableDefinition* table_;
    std::span<const Value> row_;
    size_t own_;
};

// A default value can't name columns.
class NoNames : public ExpressionNames {
  public:
    bool value(std::wstring_view, Value&) const override { return false; }
};

constexpr size_t noColumn = static_cast<size_t>(-1);

// Runs `action`, and tells of the errors it throws what they are about.
template <class Action>
auto about(const wchar_t* what, const std::wstring& name, Action action) {
    try {
        return action();
    } catch (const Error& error) {
        ErrorPlace place = error.place();
        place.detail =
            what + (L" of " + name) + (place.detail.empty() ? L"" : L": ") + place.detail;
        throw Error(error.code(), error.names(), std::move(place));
    }
}

// Null for a Boolean is false.
Value nothing(const Column& column) {
    return column.type == ColumnType::Boolean ? Value(false) : Value();
}

std::wstring textOf(const Properties& properties, const std::wstring& owner, const wchar_t* name) {
    return std::wstring(trimmed(properties.text(owner, name)));
}

}  // namespace

TableRules::TableRules(const TableDefinition& table, const Properties& properties)
    : table_(&table) {
    const auto ruleOf = [&](const std::wstring& owner) -> std::optional<Rule> {
        std::wstring text = textOf(properties, owner, L"ValidationRule");
        if (text.empty()) {
            return std::nullopt;
        }
        return Rule{std::move(text), properties.text(owner, L"ValidationText")};
    };
    columns_.resize(table.columns.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = table.columns[i];
        ColumnRules& rules = columns_[i];
        if (column.isAutoNumber() || column.isCalculated() || column.type == ColumnType::Complex ||
            column.name.empty()) {
            continue;
        }
        rules.required = properties.flag(column.name, L"Required");
        rules.zeroLength = !column.isText() ||
                           properties.find(column.name, L"AllowZeroLength") == nullptr ||
                           properties.flag(column.name, L"AllowZeroLength");
        rules.rule = ruleOf(column.name);
        if (rules.required || !rules.zeroLength || rules.rule) {
            checked_.push_back(static_cast<uint16_t>(i));
        }
        std::wstring defaultText = textOf(properties, column.name, L"DefaultValue");
        if (!defaultText.empty()) {
            rules.defaultValue = Rule{std::move(defaultText)};
            withDefault_.push_back(static_cast<uint16_t>(i));
        }
    }
    tableRule_ = ruleOf(L"");
}

// Programs also give a text column's default as the bare text; what is no expression, or names what
// a default can't know, is taken as that.
Expression TableRules::defaultExpression(const Column& column, const std::wstring& text) {
    try {
        Expression parsed = Expression::parse(text);
        if (column.isText()) parsed.evaluate(NoNames());
        return parsed;
    } catch (const Error& error) {
        const bool isBare = error.code() == ExpressionSyntax || error.code() == InvalidBracketing ||
                            error.code() == UnknownName || error.code() == UndefinedFunction;
        if (!isBare || !column.isText() || text.starts_with(L'=')) throw;
    }
    std::wstring quoted = L"\"";
    for (const wchar_t c : text) {
        quoted.append(c == L'"' ? 2 : 1, c);
    }
    return Expression::parse(quoted + L'"');
}

void TableRules::defaults(std::vector<Value>& row) const {
    row.resize(columns_.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
        row[i] = nothing(table_->columns[i]);
    }
    for (const size_t i : withDefault_) {
        const Column& column = table_->columns[i];
        about(L"default value", column.name, [&] {
            Rule& rule = *columns_[i].defaultValue;
            if (!rule.expression) {
                rule.expression = defaultExpression(column, rule.text);
            }
            row[i] = rule.expression->evaluate(NoNames());
            convertTo(column, row[i]);
        });
    }
}

void TableRules::check(std::span<const Value> row, const std::vector<bool>& changed) const {
    for (const size_t column : checked_) {
        if (changed.empty() || changed[column]) {
            checkColumn(column, row);
        }
    }
    if (!tableRule_) {
        return;
    }
    Rule& rule = *tableRule_;
    const bool met = about(L"validation rule", table_->name, [&] {
        if (!rule.expression) {
            rule.expression = Expression::parse(rule.text);
        }
        return rule.expression->isMet(RowNames(*table_, row, noColumn));
    });
    if (!met) {
        refuse(rule, table_->name);
    }
}

void TableRules::checkColumn(size_t column, std::span<const Value> row) const {
    const ColumnRules& rules = columns_[column];
    const std::wstring& name = table_->columns[column].name;
    const Value& value = row[column];
    if (rules.required && isNull(value)) {
        throw Error(NullInRequiredField, {name});
    }
    const auto* text = rules.zeroLength ? nullptr : std::get_if<std::wstring>(&value);
    if (text != nullptr && text->empty()) {
        throw Error(ZeroLengthField, {name});
    }
    if (!rules.rule) {
        return;
    }
    const bool met = about(L"validation rule", name, [&] {
        Rule& rule = *rules.rule;
        if (!rule.expression) {
            rule.expression = Expression::parseRule(rule.text);
        }
        return rule.expression->isMet(RowNames(*table_, row, column));
    });
    if (!met) {
        refuse(*rules.rule, name);
    }
}

void TableRules::refuse(const Rule& rule, const std::wstring& name) {
    if (!rule.message.empty()) {
        throw Error(ValidationMessage, {rule.message});
    }
    throw Error(ValidationRule, {name, rule.text});
}

}  // namespace sg::jet

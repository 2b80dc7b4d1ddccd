// SELECT, UNION and TRANSFORM.

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"
#include "host/sql/run/tree.h"
#include "host/sql/syntax_errors.h"
#include "host/sql/to_text.h"

namespace sg::sql {
namespace {

constexpr size_t firstExpressionName = 1000;
constexpr int duplicateAlias = 3062;
constexpr int orderNotDistinct = 3093;
constexpr int headingTwice = 3104;
constexpr int starInCrosstab = 3123;
constexpr int cannotGroupStar = 3121;
constexpr int orderNotInUnion = 3351;

std::string columnName(size_t place) {
    return std::string("c") + std::to_string(place);
}

// "c0, c1...", each behind `prefix`.
std::string columnNames(size_t count, const std::string& prefix = {}) {
    std::string sql;
    for (size_t i = 0; i < count; ++i) {
        sql += std::string(i == 0 ? "" : ", ") + prefix + columnName(i);
    }
    return sql;
}

std::optional<size_t> positionOf(const Expression& expression) {
    const auto* literal = std::get_if<Literal>(&expression.node);
    double number = 0;
    if (literal == nullptr || std::holds_alternative<std::wstring>(literal->value) ||
        !jet::toDouble(literal->value, number)) {
        return std::nullopt;
    }
    return number >= 1 && number < 100000 ? static_cast<size_t>(number) : 0;
}

}  // namespace

Translated Translator::translate(const Query& query, Scope* outer) {
    if (const auto* select = std::get_if<Select>(&query.body)) {
        return this->select(*select, query.orderBy, outer);
    }
    if (const auto* all = std::get_if<Union>(&query.body)) {
        return unite(*all, query.orderBy, outer);
    }
    if (const auto* cross = std::get_if<Crosstab>(&query.body)) {
        return crosstab(*cross, query.orderBy, outer);
    }
    const auto& table = std::get<TableQuery>(query.body);
    Scope scope;
    scope.outer = outer;
    scope.from = this->table(table.table, {}, scope);
    Select all;
    std::vector<Item> items;
    addStar({}, scope, items);
    name(items);
    return assemble(all, items, orderKeys(query.orderBy, items, scope), scope);
}

Translated Translator::select(const Select& select, const std::vector<OrderItem>& orderBy,
                              Scope* outer) {
    Scope scope;
    scope.outer = outer;
    if (select.from) {
        scope.from = from(*select.from, scope);
    }
    for (const SelectItem& item : select.items) {
        if (item.alias) {
            scope.aliases.emplace_back(item.alias->text, item.expression.get());
        }
    }
    bool anyAggregate = select.having != nullptr;
    for (const SelectItem& item : select.items) {
        anyAggregate = anyAggregate || hasAggregate(*item.expression);
    }
    for (const OrderItem& item : orderBy) {
        anyAggregate = anyAggregate || hasAggregate(*item.expression);
    }
    group(select, scope, anyAggregate);
    std::vector<Item> items = expand(select, scope);
    name(items);
    const std::vector<OrderKey> order = orderKeys(orderBy, items, scope);
    for (size_t i = 0; i < order.size(); ++i) {
        const bool isSelected = std::any_of(items.begin(), items.end(), [&](const Item& item) {
            return item.typed.sql == order[i].typed.sql;
        });
        if (select.distinctness == Distinctness::Distinct && !isSelected) {
            throw jet::Error(orderNotDistinct, {toText(*orderBy[i].expression)});
        }
    }
    return assemble(select, items, order, scope);
}

void Translator::group(const Select& select, Scope& scope, bool anyAggregate) {
    for (const ExpressionPtr& key : select.groupBy) {
        if (hasAggregate(*key)) {
            throw jet::Error(NoAggregateInGroupBy, {toText(*key)});
        }
        scope.groupTexts.insert(upperCased(toText(*key)));
        if (const auto* name = std::get_if<ColumnName>(&key->node)) {
            if (const std::optional<Typed> found = column(*name, scope)) {
                scope.groupColumns.insert(found->sql);
            }
        }
    }
    scope.isGrouped = anyAggregate || !select.groupBy.empty();
}

std::vector<Translator::Item> Translator::expand(const Select& select, Scope& scope) {
    std::vector<Item> items;
    scope.mayAggregate = true;
    for (const SelectItem& item : select.items) {
        if (const auto* star = std::get_if<Star>(&item.expression->node)) {
            addStar(*star, scope, items);
            continue;
        }
        Item made;
        made.typed = emit(*item.expression, scope);
        made.expression = item.expression.get();
        if (const auto* plain = std::get_if<ColumnName>(&item.expression->node)) {
            // A parameter is an expression like others.
            const bool isAlias = std::any_of(
                scope.aliases.begin(), scope.aliases.end(),
                [&](const auto& each) { return equalIgnoringCase(each.first, plain->name.text); });
            made.name = isAlias ? plain->name.text : std::wstring();
            trace(made, scope);
        }
        if (item.alias) {
            made.name = item.alias->text;
            made.isAlias = true;
        }
        items.push_back(std::move(made));
    }
    scope.mayAggregate = false;
    return items;
}

// Finds the column of this query that an item is.
void Translator::trace(Item& item, const Scope& scope) {
    for (const ScopeSource& source : scope.sources) {
        for (const ScopeColumn& each : source.columns) {
            if (each.sql != item.typed.sql) {
                continue;
            }
            item.origin = each.origin;
            item.field = each.field;
            item.source = &source;
            item.name = item.isAlias ? item.name : each.name;
        }
    }
}

void Translator::addStar(const Star& star, Scope& scope, std::vector<Item>& items) {
    if (scope.isGrouped) {
        throw jet::Error(cannotGroupStar, {L"*"});
    }
    bool found = false;
    for (const ScopeSource& source : scope.sources) {
        if (!star.qualifiers.empty() &&
            !equalIgnoringCase(star.qualifiers.back().text, source.name)) {
            continue;
        }
        found = true;
        for (const ScopeColumn& each : source.columns) {
            items.push_back({{each.sql, each.type, false, {}, each.isStrict, Shape::Column},
                             each.name,
                             &source,
                             each.origin,
                             nullptr,
                             false,
                             each.field});
        }
    }
    if (!found && !star.qualifiers.empty()) {
        throw jet::Error(jet::InputTableNotFound, {star.qualifiers.back().text});
    }
}

// Plain columns of several tables that share their name get their table's before it; a column that
// is there already is named as an expression.
void Translator::name(std::vector<Item>& items) const {
    std::map<std::wstring, std::set<const ScopeSource*>> owners;
    std::set<std::wstring> aliases;
    for (const Item& item : items) {
        const std::wstring capitals = upperCased(item.name);
        if (!item.name.empty()) {
            owners[capitals].insert(item.isAlias ? nullptr : item.source);
        }
        if (item.isAlias && !aliases.insert(capitals).second) {
            throw jet::Error(duplicateAlias, {item.name});
        }
    }
    std::set<std::wstring> given;
    for (size_t i = 0; i < items.size(); ++i) {
        Item& item = items[i];
        if (!item.isAlias && item.source != nullptr && !item.source->name.empty() &&
            owners[upperCased(item.name)].size() > 1) {
            item.name = item.source->name + L"." + item.name;
        }
        const bool isNew = item.isAlias || given.insert(upperCased(item.name)).second;
        if (item.name.empty() || !isNew) {
            item.name = L"Expr" + std::to_wstring(firstExpressionName + i);
        }
    }
}

std::vector<Translator::OrderKey> Translator::orderKeys(const std::vector<OrderItem>& orderBy,
                                                        const std::vector<Item>& items,
                                                        Scope& scope) {
    std::vector<OrderKey> keys;
    scope.mayAggregate = true;
    for (const OrderItem& item : orderBy) {
        const auto found = [&]() -> std::optional<Typed> {
            if (const std::optional<size_t> position = positionOf(*item.expression)) {
                if (*position < 1 || *position > items.size()) {
                    throw jet::Error(OrderBySyntax);
                }
                return items[*position - 1].typed;
            }
            const auto* plain = std::get_if<ColumnName>(&item.expression->node);
            if (plain == nullptr || !plain->qualifiers.empty()) {
                return std::nullopt;
            }
            for (const Item& each : items) {
                if (each.isAlias && equalIgnoringCase(each.name, plain->name.text)) {
                    return each.typed;
                }
            }
            return std::nullopt;
        }();
        keys.push_back({found ? *found : emit(*item.expression, scope), item.descending});
    }
    scope.mayAggregate = false;
    return keys;
}

std::string Translator::ordering(const std::vector<OrderKey>& keys, std::string_view prefix) const {
    std::string sql;
    for (size_t i = 0; i < keys.size(); ++i) {
        Typed key = keys[i].typed;
        if (!prefix.empty()) {
            key = {std::string(prefix) + std::to_string(i), key.type, false, {}};
        } else if (key.constant) {
            continue;  // SQLite would take a number for a column's place
        }
        sql += std::string(sql.empty() ? " ORDER BY " : ", ") + compared(key);
        sql += keys[i].descending ? " DESC" : "";
    }
    return sql;
}

// DISTINCTROW: one row for each row of the tables that have a column in the result, where others
// are joined to them. Empty where it makes no difference.
std::string Translator::distinctRows(const std::vector<Item>& items, const Scope& scope) const {
    std::string keys;
    size_t used = 0;
    for (const ScopeSource& source : scope.sources) {
        const bool isUsed = std::any_of(items.begin(), items.end(), [&](const Item& item) {
            return item.typed.sql.find(source.alias + ".") != std::string::npos;
        });
        if (isUsed) {
            if (!source.table) {
                return {};
            }
            keys += std::string(used++ == 0 ? " GROUP BY " : ", ") + source.alias + ".rowid";
        }
    }
    return used < scope.sources.size() ? keys : std::string();
}

std::string Translator::columnList(const Select& select, const std::vector<Item>& items) {
    std::string sql =
        select.distinctness == Distinctness::Distinct ? "SELECT DISTINCT " : "SELECT ";
    for (size_t i = 0; i < items.size(); ++i) {
        sql += std::string(i == 0 ? "" : ", ") + compared(items[i].typed) + " AS " + columnName(i);
    }
    return sql;
}

// Whether the select is the whole query, whose first rows are counted as they come.
bool Translator::isWhole(const Select& select) const {
    return whole_ != nullptr && std::get_if<Select>(&whole_->body) == &select;
}

// The clauses put together. The first n of an order are all those that rank up to n, so that
// those who share the last rank stay together.
Translated Translator::assemble(const Select& select, const std::vector<Item>& items,
                                const std::vector<OrderKey>& order, Scope& scope) {
    Translated made;
    for (const Item& item : items) {
        made.columns.push_back({item.name, item.typed.type, item.field});
        made.traces.push_back({item.typed.isStrict, item.origin});
    }
    std::string clauses;
    if (!scope.from.empty()) {
        clauses += std::string(" FROM ") + scope.from;
    }
    if (select.where) {
        clauses += std::string(" WHERE ") + condition(*select.where, scope);
    }
    std::string keys;
    ++scope.ungrouped;
    for (const ExpressionPtr& key : select.groupBy) {
        const Typed typed = emit(*key, scope);
        if (!typed.constant) {
            keys += std::string(keys.empty() ? " GROUP BY " : ", ") + compared(typed);
        }
    }
    --scope.ungrouped;
    clauses += keys.empty() && !select.groupBy.empty() ? " GROUP BY 'a'" : keys;
    if (select.distinctness == Distinctness::DistinctRow && !scope.isGrouped) {
        clauses += distinctRows(items, scope);
    }
    if (select.having) {
        scope.mayAggregate = true;
        const std::string having = condition(*select.having, scope);
        scope.mayAggregate = false;
        clauses += std::string(" HAVING ") + having;
    }
    const std::string list = columnList(select, items) + keptRows(select, scope, made);
    if (select.top && isWhole(select) && !order.empty() && !select.top->percent) {
        program_.first = {static_cast<uint64_t>(select.top->count), order.size()};
        made.sql = list + keyList(order) + clauses + ordering(order, "");
        return made;
    }
    if (select.top && (!order.empty() || select.top->percent)) {
        made.sql = ranked(*select.top, order, list, clauses, made);
        return made;
    }
    made.sql = list + clauses + ordering(order, "");
    if (select.top) {
        made.sql += std::string(" LIMIT ") + std::to_string(select.top->count);
    }
    return made;
}

// The ids of the rows behind a row, where each row of a table makes no more than it in the result.
std::string Translator::keptRows(const Select& select, const Scope& scope, Translated& made) const {
    std::string list;
    if (!keepsRows_ || scope.outer != nullptr || scope.isGrouped ||
        select.distinctness == Distinctness::Distinct) {
        return list;
    }
    for (const BaseRow& base : scope.bases) {
        const std::string id = std::string("r") + std::to_string(made.bases.size());
        list += std::string(", ") + base.id + " AS " + id;
        made.bases.push_back({base.table, id});
    }
    return list;
}

// The keys of the order as more columns, "o0", "o1"...
std::string Translator::keyList(const std::vector<OrderKey>& order) const {
    std::string list;
    for (size_t i = 0; i < order.size(); ++i) {
        list += std::string(", ") + compared(order[i].typed) + " AS o" + std::to_string(i);
    }
    return list;
}

// The rows that rank up to the TOP one.
std::string Translator::ranked(const Top& top, const std::vector<OrderKey>& order, std::string list,
                               const std::string& clauses, const Translated& made) const {
    list += keyList(order);
    const std::string count = std::to_string(top.count);
    const std::string limit = top.percent ? std::string("(n * ") + count + " + 99) / 100" : count;
    const std::string keys = ordering(order, "o");
    const std::string rank =
        keys.empty() ? "row_number() OVER ()" : std::string("rank() OVER (") + keys.substr(1) + ")";
    std::string columns = columnNames(made.columns.size());
    for (const BaseRow& base : made.bases) {
        columns += std::string(", ") + base.id;
    }
    return std::string("SELECT ") + columns + " FROM (SELECT " + columns + ", " + rank +
           " AS r, count(*) OVER () AS n FROM (" + list + clauses + ")) WHERE r <= " + limit +
           " ORDER BY r";
}

// Columns of the first term's names, of types that hold the values of all.
Translated Translator::unite(const Union& all, const std::vector<OrderItem>& orderBy,
                             Scope* outer) {
    std::vector<Translated> terms;
    for (const Union::Term& term : all.terms) {
        terms.push_back(translate(*term.query, outer));
        if (terms.back().columns.size() != terms.front().columns.size()) {
            throw jet::Error(3307);
        }
    }
    Translated made;
    made.columns = terms.front().columns;
    for (const Translated& term : terms) {
        for (size_t i = 0; i < made.columns.size(); ++i) {
            made.columns[i].type = commonType(made.columns[i].type, term.columns[i].type);
            made.columns[i].field = {};
        }
    }
    for (size_t t = 0; t < terms.size(); ++t) {
        const std::string alias = std::string("u") + std::to_string(sources_++);
        std::string list;
        for (size_t i = 0; i < made.columns.size(); ++i) {
            const Typed column{alias + "." + columnName(i),
                               terms[t].columns[i].type,
                               false,
                               {},
                               false,
                               Shape::Column};
            list += std::string(i == 0 ? "" : ", ") +
                    compared(converted(column, made.columns[i].type)) + " AS " + columnName(i);
        }
        made.sql += t == 0 ? "" : all.terms[t].all ? " UNION ALL " : " UNION ";
        made.sql += std::string("SELECT ") + list + " FROM (" + terms[t].sql + ") AS " + alias;
    }
    if (orderBy.empty()) {
        return made;
    }
    Scope scope;
    scope.from = derived(std::move(made), {}, scope, outer != nullptr);
    for (const OrderItem& item : orderBy) {
        const auto* plain = std::get_if<ColumnName>(&item.expression->node);
        if (plain != nullptr && !column(*plain, scope)) {
            throw jet::Error(orderNotInUnion, {toText(*item.expression)});
        }
    }
    std::vector<Item> items;
    addStar({}, scope, items);
    return assemble({}, items, orderKeys(orderBy, items, scope), scope);
}

// Row headings as they are selected, then the value once for each value of `pivot`.
Translated Translator::crosstab(const Crosstab& crosstab, const std::vector<OrderItem>& orderBy,
                                Scope* outer) {
    const Select& select = crosstab.select;
    for (const SelectItem& item : select.items) {
        if (std::holds_alternative<Star>(item.expression->node)) {
            throw jet::Error(starInCrosstab);
        }
    }
    Scope scope;
    scope.outer = outer;
    if (select.from) {
        scope.from = from(*select.from, scope);
    }
    const Typed pivot = emit(*crosstab.pivot, scope);
    std::vector<jet::Value> headings;
    std::set<std::wstring> given;
    for (const ExpressionPtr& heading : crosstab.headings) {
        const Typed typed = emit(*heading, scope);
        headings.push_back(typed.constant ? *typed.constant : jet::Value());
        const std::wstring text = jet::toInvariantText(headings.back());
        if (!given.insert(upperCased(text)).second) {
            throw jet::Error(headingTwice, {text});
        }
    }
    if (headings.empty()) {
        Program ask = program_;
        ask.text = std::string("SELECT DISTINCT ") + compared(pivot) + " AS c0 FROM " + scope.from;
        if (select.where) {
            const std::string where = condition(*select.where, scope);
            ask.bound = program_.bound;
            ask.calls = program_.calls;
            ask.tables = program_.tables;
            ask.common = program_.common;
            ask.text += std::string(" WHERE ") + where;
        }
        ask.text += " ORDER BY 1";
        engine_.run(ask, [&](sqlite3_stmt* row) {
            jet::Value value;
            take(sqlite3_column_value(row, 0), pivot.type, value);
            headings.push_back(std::move(value));
        });
    }
    group(select, scope, true);
    std::vector<Item> items = expand(select, scope);
    scope.mayAggregate = true;
    for (const jet::Value& heading : headings) {
        const Typed key = constant(heading);
        scope.filter = jet::isNull(heading)
                           ? std::string("(") + value(pivot) + " IS NULL)"
                           : condition(compare(BinaryOperator::Equal, pivot, key, scope));
        Item item;
        item.typed = emit(*crosstab.value, scope);
        item.name = jet::isNull(heading) ? L"<>" : jet::toInvariantText(heading);
        items.push_back(std::move(item));
    }
    scope.filter.clear();
    scope.mayAggregate = false;
    name(items);
    return assemble(select, items, orderKeys(orderBy, items, scope), scope);
}

}  // namespace sg::sql

// Where rows come from: tables, stored queries, joins.

#include <algorithm>

#include "base/text.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/record_columns.h"
#include "host/sql/parser.h"
#include "host/sql/run/translator.h"
#include "host/sql/syntax_errors.h"
#include "host/sql/words.h"

namespace sg::sql {
namespace {

constexpr size_t maxNestedQueries = 40;
constexpr int notUpdatable = 3073;
constexpr int notUpdatableColumn = 3113;

// Whether it is written as a join, which must then stand in parentheses.
bool isJoin(const Source& source) {
    return std::holds_alternative<Join>(source.node);
}

// The path in "path" or in ";DATABASE=path".
std::wstring pathOf(std::wstring_view text) {
    constexpr std::wstring_view key = L"DATABASE=";
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find(L';', at), text.size());
        const std::wstring_view part = trimmed(text.substr(at, end - at));
        if (equalIgnoringCase(part.substr(0, key.size()), key)) {
            return std::wstring(part.substr(key.size()));
        }
        at = end + 1;
    }
    if (text.find(L';') != text.npos || trimmed(text).empty()) {
        throw jet::Error(3321);
    }
    return std::wstring(text);
}

}  // namespace

Scope Translator::sources(const From& from) {
    Scope scope;
    keepsRows_ = true;
    scope.from = this->from(from, scope);
    keepsRows_ = false;
    return scope;
}

std::string Translator::from(const From& from, Scope& scope) {
    jet::Database* const before = database_;
    if (from.database) {
        const ExternalDatabase& other = *from.database;
        database_ = &external(other.path.empty() ? other.connect : other.path);
    }
    std::string sql;
    for (const SourcePtr& each : from.sources) {
        sql += std::string(sql.empty() ? "" : ", ") + source(*each, scope);
    }
    database_ = before;
    return sql;
}

std::string Translator::source(const Source& source, Scope& scope) {
    if (const auto* reference = std::get_if<TableReference>(&source.node)) {
        return table(reference->table, reference->alias, scope);
    }
    if (const auto* query = std::get_if<DerivedTable>(&source.node)) {
        const std::wstring name = query->alias ? query->alias->text : std::wstring();
        return derived(translate(*query->query, nullptr), name, scope);
    }
    return join(std::get<Join>(source.node), scope);
}

// A right join is a left one with its sides exchanged: only the order of the rows' sources differs.
std::string Translator::join(const Join& join, Scope& scope) {
    const size_t first = scope.sources.size();
    std::string left = source(*join.left, scope);
    std::string right = source(*join.right, scope);
    bool enclosed = isJoin(*join.right);
    if (join.kind == JoinKind::Right) {
        std::swap(left, right);
        enclosed = isJoin(*join.left);
    }
    if (enclosed) {
        right = std::string("(") + right + ")";
    }
    // The condition sees the tables of its own join alone.
    Scope own;
    own.outer = scope.outer;
    own.joins = true;
    own.noAggregate = NoAggregateInJoin;
    own.sources.assign(scope.sources.begin() + static_cast<std::ptrdiff_t>(first),
                       scope.sources.end());
    const std::string on = condition(*join.condition, own);
    return left + std::string(join.kind == JoinKind::Inner ? " JOIN " : " LEFT JOIN ") + right +
           " ON " + on;
}

jet::Database& Translator::external(std::wstring_view path) {
    jet::CatalogObject link;
    link.type = jet::ObjectType::LinkedTable;
    link.database = pathOf(path);
    return database_->linked(link);
}

jet::Database& Translator::databaseOf(const TableName& table,
                                      const std::optional<ExternalDatabase>& database) {
    if (database) {
        return external(database->path.empty() ? database->connect : database->path);
    }
    return table.database ? external(table.database->text) : *database_;
}

Origin Translator::place(const ColumnName& name, Scope& scope) {
    const std::optional<Typed> found = column(name, scope);
    if (!found) {
        throw jet::Error(jet::UnknownName, {L"1"}, {.detail = name.name.text});
    }
    for (const ScopeSource& source : scope.sources) {
        for (const ScopeColumn& each : source.columns) {
            if (each.sql != found->sql) {
                continue;
            }
            if (each.origin) {
                return *each.origin;
            }
            throw jet::Error(source.isUpdatable ? notUpdatableColumn : notUpdatable, {each.name});
        }
    }
    throw jet::Error(notUpdatable);
}

size_t Translator::useTable(jet::Database& database, std::wstring_view name) {
    for (size_t i = 0; i < program_.tables.size(); ++i) {
        const TableUse& use = program_.tables[i];
        if (use.database == &database && equalIgnoringCase(use.name, name)) {
            return i;
        }
    }
    program_.tables.push_back({&database, std::wstring(name)});
    return program_.tables.size() - 1;
}

std::string Translator::table(const TableName& table, const std::optional<Name>& alias,
                              Scope& scope) {
    count();
    jet::Database* const before = database_;
    if (table.database) {
        database_ = &external(table.database->text);
    }
    jet::Database& database = *database_;
    std::wstring name = table.name.text;
    const std::wstring known = alias ? alias->text : name;
    if (database.object(name, jet::ObjectType::Query) != nullptr) {
        Translated inner = storedQuery(database, name);
        database_ = before;
        return derived(std::move(inner), known, scope);
    }
    database_ = before;
    jet::Database& home = database.home(name);
    const jet::Table found = home.table(name);
    ScopeSource made{
        known, std::string("t") + std::to_string(sources_++), TableUse{&home, name}, {}, true};
    scope.bases.push_back({*made.table, made.alias + ".rowid"});
    const std::vector<size_t> places = jet::placesInOrder(found.definition());
    const auto columns = jet::recordColumns(found.definition(), places, found.store().format());
    for (size_t i = 0; i < places.size(); ++i) {
        made.columns.push_back({columns[i].name, Type(columns[i].type, columns[i].size),
                                made.alias + ".c" + std::to_string(places[i]), true,
                                Origin{scope.bases.size() - 1, places[i]},
                                &database == session_
                                    ? FieldOrigin{table.name.text, columns[i].name}
                                    : FieldOrigin{}});
    }
    std::string sql =
        std::string("jet") + std::to_string(useTable(home, name)) + " AS " + made.alias;
    program_.sources[made.alias] = {made.name, made.table.value_or(TableUse())};
    scope.sources.push_back(std::move(made));
    return sql;
}

std::string Translator::derived(Translated inner, std::wstring name, Scope& scope, bool isOpen) {
    ScopeSource made{std::move(name),
                     std::string("t") + std::to_string(sources_++),
                     {},
                     {},
                     !inner.bases.empty()};
    for (size_t i = 0; i < inner.columns.size(); ++i) {
        ScopeColumn column{inner.columns[i].name, inner.columns[i].type,
                           made.alias + ".c" + std::to_string(i)};
        column.field = inner.columns[i].field;
        if (i < inner.traces.size()) {
            column.isStrict = inner.traces[i].isStrict;
            const std::optional<Origin>& origin = inner.traces[i].origin;
            if (origin && !inner.bases.empty()) {
                column.origin = Origin{scope.bases.size() + origin->base, origin->column};
            }
        }
        made.columns.push_back(std::move(column));
    }
    for (const BaseRow& base : inner.bases) {
        scope.bases.push_back({base.table, made.alias + "." + base.id});
    }
    std::string sql = std::string("(") + inner.sql + ")";
    if (!isOpen) {
        sql = std::string("q") + std::to_string(program_.common.size());
        program_.common.push_back(std::move(inner.sql));
        program_.sources[sql] = {made.name, {}};
    }
    sql += std::string(" AS ") + made.alias;
    program_.sources[made.alias] = {made.name, made.table.value_or(TableUse())};
    scope.sources.push_back(std::move(made));
    return sql;
}

// In the database that it is kept in, with parameters of its own.
Translated Translator::storedQuery(jet::Database& database, std::wstring_view name) {
    const StoredName self{&database, upperCased(name)};
    if (std::find(asked_.begin(), asked_.end(), self) != asked_.end()) {
        throw jet::Error(jet::CircularReference, {std::wstring(name)});
    }
    if (asked_.size() >= maxNestedQueries) {
        throw jet::Error(TooComplex, {}, {.detail = L"queries that ask queries, too deep"});
    }
    asked_.push_back(self);
    const Statement statement = parseStatement(database.query(name).sql());
    const auto* query = std::get_if<QueryPtr>(&statement.body);
    if (query == nullptr) {
        throw jet::Error(jet::InputTableNotFound, {std::wstring(name)});
    }
    declare(statement.parameters);
    Translated made = translate(**query, nullptr);
    asked_.pop_back();
    return made;
}

}  // namespace sg::sql

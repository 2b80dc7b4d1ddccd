#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/sql/run/engine.h"
#include "host/sql/run/program.h"
#include "host/sql/run/scope.h"
#include "host/sql/run/session.h"
#include "host/sql/statements.h"

namespace sg::sql {

// Makes SQLite's text of queries. One object translates one statement.
//
// Throws jet::Error with the engine's numbers: InputTableNotFound (3078), 3079 for a column that is
// in several tables, UndefinedFunction (3085), 3122 for what is neither grouped by nor in an
// aggregate, and what is wrong in a stored query. A name that is nothing else is a parameter;
// finish() throws UnknownName (3061) with the number of those that have no value.
class Translator {
  public:
    Translator(jet::Database& database, const std::vector<ParameterDeclaration>& declared,
               const Parameters& parameters, Engine& engine);

    // From now on parameters without a value are no error, but told by missing() in the order in
    // which the statement declares or names them. What is translated is not for running.
    void describe() { describes_ = true; }
    struct MissingParameter {
        std::wstring name;
        std::optional<ColumnType> type;  // where it is declared
    };
    const std::vector<MissingParameter>& missing() const { return missing_; }

    // A whole query; its columns are the program's.
    Program query(const Query& query);

    // For statements that change rows: the rows of `from` that meet `where`. The first columns are
    // the row ids of `targets` (places in Scope::bases), then come `values`.
    Scope sources(const From& from);
    Program rows(Scope& scope, const Expression* where, const std::vector<size_t>& targets,
                 const std::vector<const Expression*>& values);
    // The values alone, in one row.
    Program values(const std::vector<ExpressionPtr>& values);

    // The database that a statement names its target in.
    jet::Database& databaseOf(const TableName& table,
                              const std::optional<ExternalDatabase>& database);

    // Where a column's values are kept. Throws 3073 for one of a query whose rows can't be changed
    // through it, 3113 for one that is calculated, UnknownName for one that isn't there.
    Origin place(const ColumnName& name, Scope& scope);

  private:
    struct Item {
        Typed typed;
        std::wstring name;
        const ScopeSource* source = nullptr;  // of a plain column
        std::optional<Origin> origin{};       // the same, among Scope::bases
        const Expression* expression = nullptr;
        bool isAlias = false;
        FieldOrigin field{};
    };
    struct StoredName {
        const jet::Database* database = nullptr;
        std::wstring name;  // in capitals
        bool operator==(const StoredName&) const = default;
    };
    struct OrderKey {
        Typed typed;
        bool descending = false;
    };

    void declare(const std::vector<ParameterDeclaration>& parameters);
    Program finish(Translated translated);

    // Queries: translate_queries.cpp
    Translated translate(const Query& query, Scope* outer);
    Translated select(const Select& select, const std::vector<OrderItem>& orderBy, Scope* outer);
    Translated unite(const Union& all, const std::vector<OrderItem>& orderBy, Scope* outer);
    Translated crosstab(const Crosstab& crosstab, const std::vector<OrderItem>& orderBy,
                        Scope* outer);
    Translated assemble(const Select& select, const std::vector<Item>& items,
                        const std::vector<OrderKey>& order, Scope& scope);
    std::string keptRows(const Select& select, const Scope& scope, Translated& made) const;
    std::string keyList(const std::vector<OrderKey>& order) const;
    std::string ranked(const Top& top, const std::vector<OrderKey>& order, std::string list,
                       const std::string& clauses, const Translated& made) const;
    std::vector<Item> expand(const Select& select, Scope& scope);
    static void trace(Item& item, const Scope& scope);
    void addStar(const Star& star, Scope& scope, std::vector<Item>& items);
    void name(std::vector<Item>& items) const;
    void group(const Select& select, Scope& scope, bool anyAggregate);
    std::vector<OrderKey> orderKeys(const std::vector<OrderItem>& orderBy,
                                    const std::vector<Item>& items, Scope& scope);
    bool isWhole(const Select& select) const;
    std::string ordering(const std::vector<OrderKey>& keys, std::string_view prefix) const;
    std::string distinctRows(const std::vector<Item>& items, const Scope& scope) const;
    std::string columnList(const Select& select, const std::vector<Item>& items);

    // Where rows come from: translate_sources.cpp
    std::string from(const From& from, Scope& scope);
    std::string source(const Source& source, Scope& scope);
    std::string join(const Join& join, Scope& scope);
    std::string table(const TableName& table, const std::optional<Name>& alias, Scope& scope);
    // `isOpen`: the query may name columns of one around it.
    std::string derived(Translated inner, std::wstring name, Scope& scope, bool isOpen = false);
    Translated storedQuery(jet::Database& database, std::wstring_view name);
    jet::Database& external(std::wstring_view path);
    size_t useTable(jet::Database& database, std::wstring_view name);

    // Expressions: translate_expressions.cpp, translate_comparisons.cpp, translate_calls.cpp
    Typed emit(const Expression& expression, Scope& scope);
    Typed emitNode(const Expression& expression, Scope& scope);
    std::optional<Typed> column(const ColumnName& name, Scope& scope);
    Typed nameOrParameter(const ColumnName& name, Scope& scope);
    Typed parameter(const std::wstring& name);
    Typed positionalParameter(uint32_t index);
    Typed unary(const Unary& unary, Scope& scope);
    Typed like(const Like& like, Scope& scope);
    Typed binary(const Binary& binary, Scope& scope);
    std::string chained(const Typed& a, Shape shape, const char* sign, const std::string& b) const;
    Typed concatenation(const Typed& a, const Typed& b);
    Typed logical(BinaryOperator op, const Typed& a, const Typed& b);
    Typed arithmetic(BinaryOperator op, const Typed& left, const Typed& right);
    Typed call(const Call& call, Scope& scope);
    std::optional<Typed> choice(const Call& call, Scope& scope);
    Typed cases(const std::vector<std::pair<std::string, Typed>>& branches,
                const std::optional<Typed>& otherwise, const std::string& chosen = {});
    Typed aggregate(const Aggregate& aggregate, Scope& scope);
    Typed compare(BinaryOperator op, Typed a, Typed b, const Scope& scope);
    Typed between(const Between& between, Scope& scope);
    Typed in(const In& in, Scope& scope);
    Typed quantified(const Quantified& quantified, Scope& scope);
    Typed subquery(const Query& query, Scope& scope);
    Translated oneColumn(const Query& query, Scope& scope);
    Typed anyOf(const Translated& query, const std::string& alias, const std::string& met,
                bool wanted);
    // Throws 3464, or 3615 in a join, for kinds that can't be compared.
    void checkComparable(const Typed& a, const Typed& b, const Scope& scope) const;

    // Throws TooComplex for a text that grows without end: what aliases and stored queries stand
    // for is written out wherever they are used.
    void count();
    Typed constant(jet::Value value);
    void miss(const std::wstring& name);
    Typed folded(const Typed& constant, const Type& beside);
    Typed site(CallSite site, const std::vector<Typed>& arguments, bool isVolatile = false);
    Typed converted(const Typed& typed, const Type& type);
    // What SQLite is to take for a condition, and for a value: -1 where a condition is met.
    std::string condition(const Typed& typed);
    std::string condition(const Expression& expression, Scope& scope);
    std::string value(const Typed& typed) const;
    // A value that SQLite compares by its own means: of a text by the right collation.
    std::string compared(const Typed& typed) const;

    const jet::Database* session_;
    jet::Database* database_;  // whose names count
    const Parameters& parameters_;
    Engine& engine_;
    Program program_;
    std::map<std::wstring, DataType> declared_;  // by name in capitals
    std::vector<MissingParameter> missing_;      // parameters without a value
    bool describes_ = false;
    std::vector<const Expression*> aliases_;  // that are being looked up
    const Query* whole_ = nullptr;            // what query() was given
    size_t sources_ = 0;
    std::vector<StoredName> asked_;  // stored queries that are being translated
    bool keepsRows_ = false;         // of queries in FROM: their rows are to be changed
    size_t written_ = 0;             // expressions and tables
};

}  // namespace sg::sql

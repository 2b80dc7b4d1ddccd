#include "host/sql/run/session.h"

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/run/session_state.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/stored_call.h"
#include "host/sql/run/translator.h"

namespace sg::sql {
namespace {

std::vector<jet::RecordColumn> recordColumns(const Program& program) {
    std::vector<jet::RecordColumn> columns;
    for (const OutputColumn& column : program.columns) {
        const Type type = column.type.column ? column.type : Type(ColumnType::Text);
        columns.push_back(
            {column.name, *type.column, type.size, column.field.table, column.field.column});
    }
    return columns;
}

// Null for a statement that gives no rows.
const Query* findQuery(const Statement& statement) {
    const auto* query = std::get_if<QueryPtr>(&statement.body);
    const auto* select = query == nullptr ? nullptr : std::get_if<Select>(&(*query)->body);
    return query == nullptr || (select != nullptr && select->into) ? nullptr : query->get();
}

const Query& queryOf(const Statement& statement) {
    const Query* query = findQuery(statement);
    if (query == nullptr) {
        throw jet::Error(jet::InvalidOperation);
    }
    return *query;
}

// Translates whatever of a statement may name parameters.
struct Describing {
    Translator& translator;

    void operator()(const QueryPtr& query) { translator.query(*query); }
    void operator()(const Insert& node) {
        if (node.query != nullptr) {
            translator.query(*node.query);
        } else {
            translator.values(node.values);
        }
    }
    void operator()(const Update& node) {
        std::vector<const Expression*> values;
        for (const Assignment& each : node.assignments) {
            values.push_back(each.value.get());
        }
        rows(node.from, node.where, values);
    }
    void operator()(const Delete& node) { rows(node.from, node.where, {}); }
    void operator()(const Execute& node) { translator.values(node.arguments); }
    template <class Definition>
    void operator()(const Definition&) {}

    void rows(const From& from, const ExpressionPtr& where,
              const std::vector<const Expression*>& values) {
        Scope scope = translator.sources(from);
        translator.rows(scope, where.get(), {}, values);
    }
};

// What is told of a call by the statement that it calls, whose first parameters get `arguments`.
void addCalled(Session& session, const Statement& called, size_t arguments, Description& call) {
    Description of = session.describe(called);
    call.columns = std::move(of.columns);
    for (size_t i = arguments; i < of.parameters.size(); ++i) {
        call.parameters.push_back(std::move(of.parameters[i]));
    }
}

}  // namespace

Session::Session(jet::Database& database) : state_(std::make_unique<State>(database)) {}

Session::~Session() = default;

void Session::limit(Limits limits) {
    state_->engine.limit(std::move(limits));
}

std::unique_ptr<jet::SnapshotRecordset> Session::select(std::wstring_view text,
                                                        const Parameters& parameters) {
    return select(parseStatement(text), parameters);
}

std::unique_ptr<jet::SnapshotRecordset> Session::select(const Statement& statement,
                                                        const Parameters& parameters) {
    if (const auto* call = std::get_if<Execute>(&statement.body)) {
        const Statement called = calledStatement(state_->database, *call);
        return select(called, argumentsOf(*this, setting(statement, parameters), *call, called));
    }
    Translator translator(state_->database, statement.parameters, parameters, state_->engine);
    const Program program = translator.query(queryOf(statement));
    auto rows = std::make_unique<jet::SnapshotRecordset>(recordColumns(program));
    std::vector<jet::Value> values(program.columns.size());
    state_->engine.run(program, [&](sqlite3_stmt* row) {
        for (size_t i = 0; i < values.size(); ++i) {
            take(sqlite3_column_value(row, static_cast<int>(i)), program.columns[i].type,
                 values[i]);
        }
        rows->append(values);
        state_->engine.checkResult(rows->contentBytes());
    });
    return rows;
}

std::vector<std::wstring> Session::explain(const Statement& statement,
                                           const Parameters& parameters) {
    if (const auto* call = std::get_if<Execute>(&statement.body)) {
        const Statement called = calledStatement(state_->database, *call);
        return explain(called, argumentsOf(*this, setting(statement, parameters), *call, called));
    }
    Translator translator(state_->database, statement.parameters, parameters, state_->engine);
    return state_->engine.explain(translator.query(queryOf(statement)));
}

Description Session::describe(const Statement& statement) {
    const Parameters none;
    Translator translator(state_->database, statement.parameters, none, state_->engine);
    translator.describe();
    Description made;
    if (const Query* query = findQuery(statement)) {
        made.columns = recordColumns(translator.query(*query));
    } else {
        std::visit(Describing{translator}, statement.body);
    }
    for (const Translator::MissingParameter& each : translator.missing()) {
        made.parameters.push_back({each.name, each.type});
    }
    const auto* call = std::get_if<Execute>(&statement.body);
    if (call != nullptr && isStored(state_->database, *call)) {
        addCalled(*this, calledStatement(state_->database, *call), call->arguments.size(), made);
    }
    return made;
}

bool Session::givesRows(const Statement& statement) const {
    if (const auto* call = std::get_if<Execute>(&statement.body)) {
        return findQuery(calledStatement(state_->database, *call)) != nullptr;
    }
    return findQuery(statement) != nullptr;
}

Setting Session::setting(const Statement& statement, const Parameters& parameters,
                         Refused refused) const {
    return {state_->database, state_->engine, statement.parameters, parameters, refused};
}

int64_t Session::execute(std::wstring_view text, const Parameters& parameters, Refused refused) {
    return execute(parseStatement(text), parameters, refused);
}

}  // namespace sg::sql

#include "host/sql/run/session.h"

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/run/session_state.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"

namespace sg::sql {
namespace {

jet::RecordColumn recordColumn(const OutputColumn& column) {
    const Type type = column.type.column ? column.type : Type(ColumnType::Text);
    return {column.name, *type.column, type.size};
}

const Query& queryOf(const Statement& statement) {
    const auto* query = std::get_if<QueryPtr>(&statement.body);
    if (query == nullptr) {
        throw jet::Error(jet::InvalidOperation);
    }
    return **query;
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
    Translator translator(state_->database, statement.parameters, parameters, state_->engine);
    const Program program = translator.query(queryOf(statement));
    std::vector<jet::RecordColumn> columns;
    for (const OutputColumn& column : program.columns) {
        columns.push_back(recordColumn(column));
    }
    auto rows = std::make_unique<jet::SnapshotRecordset>(std::move(columns));
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
    Translator translator(state_->database, statement.parameters, parameters, state_->engine);
    return state_->engine.explain(translator.query(queryOf(statement)));
}

int64_t Session::execute(std::wstring_view text, const Parameters& parameters) {
    return execute(parseStatement(text), parameters);
}

}  // namespace sg::sql

// Statements that change rows or the design.

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/run/actions.h"
#include "host/sql/run/session_state.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"
#include "host/sql/stored/stored_query.h"
#include "host/sql/words.h"

namespace sg::sql {
namespace {

constexpr int selectCannotRun = 3065;

// Its arguments go to the parameters that the stored query declares, in their order.
Parameters argumentsOf(const Setting& setting, const Execute& call, const Statement& stored) {
    Parameters given = setting.parameters;
    if (call.arguments.empty()) {
        return given;
    }
    Translator translator(setting.database, setting.declared, setting.parameters, setting.engine);
    const Program program = translator.values(call.arguments);
    setting.engine.run(program, [&](sqlite3_stmt* row) {
        for (size_t i = 0; i < program.columns.size() && i < stored.parameters.size(); ++i) {
            Parameter parameter{parameterName(stored.parameters[i].name), {}};
            take(sqlite3_column_value(row, static_cast<int>(i)), program.columns[i].type,
                 parameter.value);
            given.insert(given.begin(), std::move(parameter));
        }
    });
    return given;
}

}  // namespace

int64_t Session::execute(const Statement& statement, const Parameters& parameters,
                         Refused refused) {
    const Setting setting{state_->database, state_->engine, statement.parameters, parameters,
                          refused};
    struct Visitor {
        Session& session;
        const Setting& setting;

        int64_t operator()(const QueryPtr& query) {
            const auto* select = std::get_if<Select>(&query->body);
            if (select == nullptr || !select->into) {
                throw jet::Error(selectCannotRun);
            }
            return makeTable(setting, *query, *select->into);
        }
        int64_t operator()(const Insert& node) { return insert(setting, node); }
        int64_t operator()(const Update& node) { return update(setting, node); }
        int64_t operator()(const Delete& node) { return erase(setting, node); }
        int64_t operator()(const Execute& node) {
            if (setting.database.object(node.procedure.text, jet::ObjectType::Query) == nullptr) {
                throw jet::Error(jet::InputTableNotFound, {node.procedure.text});
            }
            const Statement stored =
                parseStatement(setting.database.query(node.procedure.text).sql());
            if (std::holds_alternative<Execute>(stored.body)) {
                throw jet::Error(jet::OperationNotSupported);
            }
            return session.execute(stored, argumentsOf(setting, node, stored), setting.refused);
        }
        int64_t operator()(const CreateTable& node) { return createTable(setting, node), 0; }
        int64_t operator()(const AlterTable& node) { return alterTable(setting, node), 0; }
        int64_t operator()(const CreateIndex& node) { return createIndex(setting, node), 0; }
        int64_t operator()(const Drop& node) { return drop(setting, node), 0; }
        int64_t operator()(const CreateView& node) { return createView(setting.database, node), 0; }
        int64_t operator()(const CreateProcedure& node) {
            return createProcedure(setting.database, node), 0;
        }
    };
    return std::visit(Visitor{*this, setting}, statement.body);
}

}  // namespace sg::sql

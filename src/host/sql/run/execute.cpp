// Statements that change rows or the design.

#include "host/jet/format/error.h"
#include "host/sql/run/actions.h"
#include "host/sql/run/session_state.h"
#include "host/sql/run/stored_call.h"
#include "host/sql/stored/stored_query.h"

namespace sg::sql {
namespace {

constexpr int selectCannotRun = 3065;

}  // namespace

int64_t Session::execute(const Statement& statement, const Parameters& parameters,
                         Refused refused) {
    const Setting setting = this->setting(statement, parameters, refused);
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
            const Statement called = calledStatement(setting.database, node);
            return session.execute(called, argumentsOf(session, setting, node, called),
                                   setting.refused);
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

#include "host/sql/run/stored_call.h"

#include <utility>

#include "host/jet/catalog/query.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"

namespace sg::sql {

bool isStored(const jet::Database& database, const Execute& call) {
    return database.object(call.procedure.text, jet::ObjectType::Query) != nullptr;
}

Statement calledStatement(const jet::Database& database, const Execute& call) {
    const std::wstring& name = call.procedure.text;
    if (!isStored(database, call)) {
        throw jet::Error(jet::InputTableNotFound, {name});
    }
    const jet::Query query = database.query(name);
    if (query.kind() == jet::QueryKind::PassThrough) {
        throw jet::Error(jet::OperationNotSupported, {}, {.detail = L"a pass-through query"});
    }
    Statement called = parseStatement(query.sql());
    if (std::holds_alternative<Execute>(called.body)) {
        throw jet::Error(jet::OperationNotSupported, {}, {.detail = name + L" is an EXECUTE"});
    }
    return called;
}

Parameters argumentsOf(Session& session, const Setting& setting, const Execute& call,
                       const Statement& called) {
    if (call.arguments.empty()) return setting.parameters;
    const std::vector<Description::Parameter> wanted = session.describe(called).parameters;
    if (call.arguments.size() > wanted.size()) {
        throw jet::Error(jet::InvalidArgument, {},
                         {.detail = call.procedure.text + L" takes " +
                                    std::to_wstring(wanted.size()) + L" parameters"});
    }
    Translator translator(setting.database, setting.declared, setting.parameters, setting.engine);
    const Program program = translator.values(call.arguments);
    Parameters given;
    setting.engine.run(program, [&](sqlite3_stmt* row) {
        for (size_t i = 0; i < program.columns.size(); ++i) {
            const bool isNamed = !wanted[i].name.starts_with(L'?');
            Parameter& parameter = given.emplace_back();
            if (isNamed) parameter.name = wanted[i].name;
            take(sqlite3_column_value(row, static_cast<int>(i)), program.columns[i].type,
                 parameter.value);
        }
    });
    given.insert(given.end(), setting.parameters.begin(), setting.parameters.end());
    return given;
}

}  // namespace sg::sql

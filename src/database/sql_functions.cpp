#include <string>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "database/lisp_functions.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/message_box.h"
#include "platform/win/window.h"

namespace sg {
namespace {

// What becomes of a query that fails; any other number is Ask.
enum class OnFailure : int32_t {
    Ask = 0,         // the connection box
    AnswerNil = 1,   // nil
    AnswerText = 2,  // "*ERROR*"
};

// An empty array is the result of a query without rows.
void retRows(const COleSafeArray& rows) {
    if (rows.HasArray()) {
        returnRecordList(rows);
    } else {
        acedRetNil();
    }
}

bool select(CDBConnection& connection, const std::wstring& sql) {
    COleSafeArray rows;
    if (!connection.ExecuteSelect(sql, rows)) return false;
    retRows(rows);
    return true;
}

bool wantsReport() {
    HWND const active = GetActiveWindow();
    const int answer = MessageBoxW(
        active,
        L"Database connection error.\nClose and reopen AutoCAD.\n\nIf you are getting this error "
        L"frequently, press \"Yes\" to send an error report to Quillon Support.",
        L"Quillon", MB_YESNO | MB_ICONERROR | MB_DEFBUTTON2);
    SetActiveWindow(active);
    return answer == IDYES;
}

// `query` names the failed run in what is printed for the report.
int showConnectionBox(const wchar_t* query, const std::wstring& sql) {
    acedRetNil();
    if (!wantsReport()) return kLispOk;
    acutPrintf(L"\n%s: %s", query, sql.c_str());
    reportDatabaseError();
    return kLispBadData;
}

// True when the failure was answered quietly, as its mode has it.
bool answerQuietly(OnFailure mode) {
    if (mode == OnFailure::AnswerNil) {
        acedRetNil();
    } else if (mode == OnFailure::AnswerText) {
        acedRetStr(L"*ERROR*");
    } else {
        return false;
    }
    return true;
}

// The file behind the connection, and how it is open; of a closed one what was current. The
// connection is closed.
struct LostDatabase {
    std::wstring name;
    int16_t readOnly;
};

LostDatabase closeForReopening(CDBConnection& connection) {
    const std::wstring name = connection.GetDatabaseName();
    if (name.empty()) return {currentDatabaseName(), currentReadOnly()};
    const int16_t readOnly = connection.GetUpdatable() == -1 ? 0 : -1;
    connection.Close();
    return {name, readOnly};
}

bool reopen(CDBConnection& connection, const LostDatabase& lost) {
    const std::wstring opened = connection.Open(lost.name, false, lost.readOnly);
    return !opened.empty() && opened != kRepairNeeded;
}

// A query that fails for any reason is run once more on the file opened anew: a lost network looks
// like any other error here.
int runSql(CDBConnection& connection, const std::wstring& sql, OnFailure mode) {
    if (select(connection, sql)) return kLispOk;
    const LostDatabase lost = closeForReopening(connection);
    if (lost.name.empty()) {
        return answerQuietly(mode) ? kLispOk : showConnectionBox(L"Query 1", sql);
    }
    if (!reopen(connection, lost)) {
        reportDatabaseError();
        return answerQuietly(mode) ? kLispOk : kLispBadData;
    }
    if (select(connection, sql)) return kLispOk;
    return answerQuietly(mode) ? kLispOk : showConnectionBox(L"Query 2", sql);
}

int selectInMode(OnFailure mode) {
    if (currentConnection() == nullptr) return kLispOk;
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring sql;
    if (!nextString(at, sql)) return kLispWrongType;
    return runSql(*currentConnection(), sql, mode);
}

}  // namespace

int sqlSelect() {
    if (currentConnection() == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    if (at == nullptr) return kLispTooFew;
    std::wstring sql;
    if (!nextString(at, sql)) return kLispWrongType;
    int32_t mode = 0;
    nextInt(at, mode);
    return runSql(*currentConnection(), sql, static_cast<OnFailure>(mode));
}

int sqlSelectOrNil() {
    return selectInMode(OnFailure::AnswerNil);
}

int sqlSelectOrError() {
    return selectInMode(OnFailure::AnswerText);
}

int sqlCommand() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    if (at == nullptr) return kLispTooFew;
    std::wstring sql;
    if (!nextString(at, sql)) return kLispWrongType;
    int32_t count = 0;
    if (connection->ExecuteActionCount(sql, count)) {
        retIntOrReal(count);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int runStoredQuery() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring name;
    if (!nextString(at, name)) return kLispWrongType;
    COleSafeArray parameters, rows;
    if (!listToVariantArray(at, parameters)) return kLispOk;
    if (connection->RunQuery(name, parameters, rows)) {
        retRows(rows);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int setStoredQuery() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring name, sql;
    if (!nextString(at, name) || !nextString(at, sql)) return kLispWrongType;
    if (connection->SetQuerySql(name, sql)) {
        acedRetT();
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

}  // namespace sg

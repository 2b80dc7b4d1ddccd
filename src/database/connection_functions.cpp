#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "database/lisp_functions.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/files.h"

namespace sg {
namespace {

struct ConnectArguments {
    std::wstring name;
    int16_t readOnly = 0;    // 0 or -1
    bool errorFlag = false;  // a failed open flips to the text screen
};

// False when the name is no string. Of the mode only exactly "w" is for writing.
bool readArguments(const resbuf* position, ConnectArguments& arguments) {
    if (!nextString(position, arguments.name)) return false;
    std::wstring mode = L"w";
    if (nextString(position, mode)) nextBool(position, arguments.errorFlag);
    arguments.readOnly = mode == L"w" ? 0 : -1;
    return true;
}

// Closes the current connection and makes none current, unless it is open on the file as it is
// asked for: then it is kept and the answer true.
bool keepsConnection(bool same, int16_t readOnly) {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr || !connection->IsValid()) return false;
    if (connection->IsOpen()) {
        if (same && connection->GetUpdatable() != readOnly) return true;
        connection->Close();
        if (!dbInfoList().empty()) {
            dbInfoList().front()->pConnection = nullptr;
            dbInfoList().front()->strDatabase.clear();
        }
    }
    deleteCurrentConnection();
    return false;
}

bool fileExists(const std::wstring& name) {
    WIN32_FIND_DATAW found;
    SgFileSearch* const search = FindFirstFileW(name.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    FindClose(search);
    return true;
}

std::wstring supportFolders() {
    resbuf value{};
    if (acedGetVar(L"ACADPREFIX", &value) != RTNORM || value.restype != RTSTR) return {};
    const std::wstring folders = value.resval.rstring == nullptr ? L"" : value.resval.rstring;
    acutDelString(value.resval.rstring);
    return folders;
}

// The file as it is named, else the first of that name on the support path, under its full path
// then. False when there is none.
bool resolveFile(std::wstring& name) {
    if (fileExists(name)) return true;
    const std::wstring folders = supportFolders();
    for (size_t begin = 0; begin < folders.size();) {
        const size_t end = std::min(folders.find(L';', begin), folders.size());
        const std::wstring candidate = folders.substr(begin, end - begin) + L"\\" + name;
        if (end > begin && fileExists(candidate)) {
            name = candidate;
            return true;
        }
        begin = end + 1;
    }
    return false;
}

// Asks LISP to repair the file; true when it says that it can be opened now.
bool repairThroughLisp(const std::wstring& name) {
    resbuf* const call =
        acutBuildList(RTSTR, L"compactDatabase", RTSTR, name.c_str(), RTNIL, RTSTR, L"Repair", 0);
    resbuf* result = nullptr;
    const int invoked = acedInvoke(call, &result);
    acutRelRb(call);
    const bool repaired = invoked == RTNORM && (result == nullptr || result->restype != RTNIL);
    acutRelRb(result);
    return repaired;
}

bool openOrRepair(CDBConnection& connection, const std::wstring& name, int16_t readOnly) {
    std::wstring opened = connection.Open(name, false, readOnly);
    if (opened == kRepairNeeded) {
        connection.Close();
        if (!repairThroughLisp(name)) return false;
        opened = connection.Open(name, false, readOnly);
    }
    return !opened.empty() && opened != kRepairNeeded;
}

// Makes a connection to the file and makes it current. kLispOk and `connected` false when there is
// no such file. A file that can't be opened gives a connection that is closed: nothing is current
// while it is reported, so that the report has nothing to tell and the first call that needs the
// database fails instead.
int openConnection(ConnectArguments& arguments, bool& connected) {
    connected = false;
    std::unique_ptr<CDBConnection> connection;
    try {
        connection = std::make_unique<CDBConnection>();
    } catch (const std::bad_alloc&) {
        return kLispOk;
    }
    if (!resolveFile(arguments.name)) return kLispOk;
    if (!openOrRepair(*connection, arguments.name, arguments.readOnly) && reportDatabaseError()) {
        return arguments.errorFlag ? kLispTextScreen : kLispOk;
    }
    setNewDatabase(std::move(connection), arguments.name, arguments.readOnly);
    connected = true;
    return kLispOk;
}

}  // namespace

int connectDatabase() {
    removeUnusedEntries();
    const ArgumentList list;
    ConnectArguments arguments;
    if (!readArguments(list.first(), arguments)) return kLispWrongType;
    const bool same = isSameDatabase(currentConnection(), arguments.name);
    bindConnectionToDocument(arguments.name);
    if (keepsConnection(same, arguments.readOnly)) {
        acedRetT();
        return kLispOk;
    }
    if (currentConnection() == nullptr) {
        acedRetNil();
        bool connected = false;
        const int result = openConnection(arguments, connected);
        if (!connected) return result;
    }
    addConnectionEntry(arguments.name, arguments.readOnly != 0);
    acedRetT();
    return kLispOk;
}

int closeDatabase() {
    closeCurrentDatabase();
    return kLispOk;
}

int closeTable() {
    if (currentConnection() != nullptr) currentConnection()->CloseTable();
    return kLispOk;
}

int closeAllTables() {
    if (currentConnection() != nullptr) currentConnection()->CloseAllTables();
    return kLispOk;
}

// The connection that makes the file is not the current one, at which the report looks: why a file
// could not be made is not told.
int createDatabase() {
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    std::wstring name;
    if (!nextString(position, name)) return kLispWrongType;
    CDBConnection connection;
    if (connection.CreateDatabase(name)) {
        acedRetT();
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int tableExists() {
    if (currentConnection() == nullptr) return kLispOk;
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    std::wstring table;
    if (!nextString(position, table)) return kLispWrongType;
    if (currentConnection()->TableExists(table)) {
        acedRetT();
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int databaseName() {
    if (currentConnection() == nullptr) return kLispOk;
    const std::wstring name = currentConnection()->GetDatabaseName();
    if (name.empty()) {
        reportDatabaseError();
    } else {
        acedRetStr(name.c_str());
    }
    return kLispOk;
}

int databaseReadOnly() {
    const CDBConnection* const connection = currentConnection();
    if (connection == nullptr || connection->IsReadOnly()) {
        acedRetT();
    } else {
        acedRetNil();
    }
    return kLispOk;
}

}  // namespace sg

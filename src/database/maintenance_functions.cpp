#include <string>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/lisp_functions.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/message_box.h"
#include "platform/win/system.h"

namespace sg {
namespace {

constexpr int kVersion = -1;
constexpr uint32_t kMachineNameBuffer = 15;

// The box names the machine, for whoever has to find out which of them holds the file. Without a
// name there is none.
void showErrorBox(const std::wstring& text) {
    wchar_t machine[kMachineNameBuffer] = {};
    uint32_t size = kMachineNameBuffer;
    if (!GetComputerNameW(machine, &size)) return;
    const std::wstring message = text + L"\n(Your computer name is " + machine + L".)";
    MessageBoxW(nullptr, message.c_str(), L"Database Error", MB_ICONERROR);
}

// Sets the call's result to the error's number.
void reportFailure(const CDBConnection& connection, bool showBox) {
    acedRetNil();
    int32_t code = 0;
    std::wstring text;
    connection.GetLastError(code, text);
    reportErrorOf(connection);
    if (showBox) showErrorBox(text);
    acedRetInt(code);
}

}  // namespace

int lastError() {
    acedRetStr(lastErrorText().c_str());
    return kLispOk;
}

int resetLastError() {
    clearLastErrorText();
    acedRetStr(lastErrorText().c_str());
    return kLispOk;
}

int databaseVersion() {
    acedRetInt(kVersion);
    return kLispOk;
}

int compactDatabaseFile() {
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    if (position == nullptr || position->rbnext == nullptr) return kLispTooFew;
    std::wstring source, destination;
    if (!nextString(position, source) || !nextString(position, destination)) return kLispWrongType;
    bool showBox = true;
    nextBool(position, showBox);
    CDBConnection connection;
    if (connection.CompactDatabase(source, destination)) {
        acedRetStr(L"OK");
    } else {
        reportFailure(connection, showBox);
    }
    return kLispOk;
}

}  // namespace sg

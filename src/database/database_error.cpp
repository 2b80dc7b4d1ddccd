#include "database/database_error.h"

#include <string_view>

#include "database/connection.h"
#include "database/db_info.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

constexpr int32_t kNoCurrentRecord = 3021;
constexpr int32_t kDiskOrNetworkError = 3043;

constexpr const wchar_t* kModuleFormat = L"\nSwift Gate Error: %s";
constexpr const wchar_t* kDialogFormat = L"\nDatabase Error: %s";

std::wstring& storedText() {
    static std::wstring theText;
    return theText;
}

void printError(int32_t code, const std::wstring& text, const wchar_t* format) {
    if (code == kNoCurrentRecord) return;
    if (code != kDiskOrNetworkError) {
        acutPrintf(format, text.c_str());
        return;
    }
    acutPrintf(L"\nA disk or network error occurred while trying to access the database.");
    acutPrintf(
        L"Try the command again. If it continues to not work, try restarting AutoCAD. "
        L"If that does not fix the error, try restarting your computer.");
}

bool report(const CDBConnection* connection, const wchar_t* format) {
    if (connection == nullptr || !connection->HasError()) return false;
    int32_t code = 0;
    std::wstring text;
    connection->GetLastError(code, text);
    storedText() = L"(" + std::to_wstring(code) + L") " + text;
    printError(code, text, format);
    return true;
}

}  // namespace

const std::wstring& lastErrorText() {
    return storedText();
}

void clearLastErrorText() {
    storedText().clear();
}

bool reportDatabaseError() {
    acedRetNil();
    return report(currentConnection(), kModuleFormat);
}

bool reportDialogDatabaseError(const CDBConnection* connection) {
    acedRetNil();
    return report(connection, kDialogFormat);
}

bool reportErrorOf(const CDBConnection& connection) {
    return report(&connection, kModuleFormat);
}

}  // namespace sg

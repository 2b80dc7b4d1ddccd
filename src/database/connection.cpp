#include "database/connection.h"

#include <utility>

namespace sg {
namespace {

// The engine's number for an error that has no number of its own.
constexpr int32_t kReservedError = 3000;

}  // namespace

bool CDBConnection::IsOpen() const {
    return IsValid() && databaseOpen_;
}

std::wstring CDBConnection::GetDatabaseName() const {
    return IsOpen() ? databaseName_ : std::wstring();
}

bool CDBConnection::IsValid() const {
    return databaseStatus_ == 0 || databaseStatus_ == 1;
}

// Tables are opened by the engine, so there is none to close.
void CDBConnection::CloseAllTables() {
    error_ = false;
}

void CDBConnection::Close() {
    error_ = false;
    CloseAllTables();
    if (IsOpen()) databaseOpen_ = false;
}

int16_t CDBConnection::GetUpdatable() const {
    return IsReadOnly() ? 0 : -1;
}

std::wstring CDBConnection::Open(const std::wstring& fileName, bool, int16_t) {
    error_ = false;
    if (IsOpen()) Close();
    recordError(kReservedError, L"This build has no database engine and cannot open " + fileName);
    return {};
}

bool CDBConnection::HasError() const {
    return error_;
}

// It takes an engine to open a database for writing.
bool CDBConnection::IsReadOnly() const {
    return true;
}

bool CDBConnection::GetLastError(int32_t& code, std::wstring& text) const {
    code = errorCode_;
    text = errorText_;
    return error_;
}

void CDBConnection::recordError(int32_t code, std::wstring text) {
    error_ = true;
    errorCode_ = code;
    errorText_ = std::move(text);
}

}  // namespace sg

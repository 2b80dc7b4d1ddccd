#pragma once

#include <cstdint>
#include <string>

namespace sg {

class CDBConnection;

// The last error of any database, "(code) text", until LISP clears it.
const std::wstring& lastErrorText();
void clearLastErrorText();

// Called when an operation of the current connection has answered false. Sets the call's result to
// nil. True when the connection's error flag is set: the error is then the last one, and is printed
// as "\nSwift Gate Error: <text>"; code 3021 (no current record) prints nothing, and code 3043 says
// what to do about a lost network.
bool reportDatabaseError();

// The same for a dialog's own connection, which prints "\nDatabase Error: <text>".
bool reportDialogDatabaseError(const CDBConnection* connection);

// The same for a connection that a function made for itself: prints as reportDatabaseError does and
// leaves the call's result as it is.
bool reportErrorOf(const CDBConnection& connection);

}  // namespace sg

#pragma once

#include "host/sql/run/actions.h"
#include "host/sql/run/session.h"
#include "host/sql/statements.h"

// EXECUTE of a stored query.
namespace sg::sql {

// Whether there is a query of that name.
bool isStored(const jet::Database& database, const Execute& call);

// The statement that the stored query holds. Throws InputTableNotFound where there is none, and
// OperationNotSupported for a pass-through query and for one that is itself an EXECUTE.
Statement calledStatement(const jet::Database& database, const Execute& call);

// What `called` runs with: the values of the call's arguments, for its parameters in the order in
// which describe() tells them, and before what `setting` gives by name. Throws InvalidArgument for
// more arguments than parameters, and what the arguments' own evaluation throws.
Parameters argumentsOf(Session& session, const Setting& setting, const Execute& call,
                       const Statement& called);

}  // namespace sg::sql

#pragma once

#include "bridge/call_guard.h"
#include "database/db_info.h"

// What the host calls for a row: the handler of an implementation, one for each table.
namespace sg {

// Every sg_ function works on the current drawing's database, the file and message functions too.
// That database is found outside the guard: neither its lock nor its messages cover this step.
template <LispImplementation Implementation>
int sgHandler() {
    selectDocumentDatabase();
    return callGuard(Implementation);
}

template <LispImplementation Implementation>
int qnHandler() {
    return callGuard(Implementation);
}

}  // namespace sg

#include "module/missing.h"

#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"

namespace sg {

int reportMissing(const wchar_t* name) {
    acutPrintf(L"\n%s is not part of this build.\n", name);
    return kLispBadData;
}

void declareMissing(std::span<const FunctionRow> rows) {
    for (const FunctionRow& row : rows) {
        if (row.missing) acedDeclareMissing(row.name);
    }
}

}  // namespace sg

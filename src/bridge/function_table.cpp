#include "bridge/function_table.h"

#include "platform/lisp/external_functions.h"

namespace sg {

void registerFunctions(const FunctionRow* rows, int count, int base) {
    for (int i = 0; i < count; ++i) {
        acedDefun(rows[i].name, base + i);
        acedRegFunc(rows[i].handler, base + i);
    }
}

void unregisterFunctions(const FunctionRow* rows, int count, int base) {
    for (int i = 0; i < count; ++i) {
        acedRegFunc(nullptr, base + i);
        acedUndef(rows[i].name, base + i);
    }
}

}  // namespace sg

#pragma once

namespace sg {

// One external LISP function. A function's number is the base number of its table plus its row's
// position, so the order of rows is part of the interface.
struct FunctionRow {
    const wchar_t* name;
    int (*handler)();  // what the host calls; answers RSRSLT or RSERR
};

// Defines the functions of `count` rows in the current document under the numbers from `base` on,
// each with its handler. What the host answers is not looked at.
void registerFunctions(const FunctionRow* rows, int count, int base);

// Takes them back, handler first.
void unregisterFunctions(const FunctionRow* rows, int count, int base);

}  // namespace sg

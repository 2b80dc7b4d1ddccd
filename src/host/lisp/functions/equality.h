#pragma once

#include "host/lisp/interpreter.h"

namespace sg::lisp {

// `eq`: the same object. Numbers of one type are the same when their values are; strings and lists
// only when they are one object.
inline bool isIdentical(Value a, Value b) {
    if (a.isReal() && b.isReal()) return a.asReal() == b.asReal();
    return a == b;
}

// `equal`: lists of equal items, strings of the same characters, numbers of either type that differ
// by `fuzz` at most; anything else as `eq`.
bool isEqual(Interpreter& in, Value a, Value b, double fuzz = 0);

}  // namespace sg::lisp

#include "host/lisp/functions/equality.h"

#include <cmath>

namespace sg::lisp {

bool isEqual(Interpreter& in, Value a, Value b, double fuzz) {
    while (a.isCons() && b.isCons()) {
        if (a == b) return true;
        const Value itemA = a.asCons()->car;
        const Value itemB = b.asCons()->car;
        if (itemA.isCons()) {
            in.checkStack();
        }
        if (!isEqual(in, itemA, itemB, fuzz)) return false;
        a = a.asCons()->cdr;
        b = b.asCons()->cdr;
    }
    if (isIdentical(a, b)) return true;
    if (a.isNumber() && b.isNumber()) {
        // Infinities differ from themselves by no number, so that values are compared first.
        return a.asNumber() == b.asNumber() || std::fabs(a.asNumber() - b.asNumber()) <= fuzz;
    }
    return a.isString() && b.isString() && a.asString()->view() == b.asString()->view();
}

}  // namespace sg::lisp

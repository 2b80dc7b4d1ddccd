#include <cmath>
#include <cwchar>
#include <stdexcept>
#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/win/system.h"

namespace sg {
namespace {

template <class Function>
int ofNumber(const Function& function) {
    CallArguments arguments;
    double x = 0;
    if (!nextNumber(arguments.next, x)) return kLispWrongType;
    acedRetReal(function(x));
    return kLispOk;
}

}  // namespace

// Outside [-1, 1] these two are no number, which is a real in LISP.
int arcSine() {
    return ofNumber([](double x) { return std::asin(x); });
}

int arcCosine() {
    return ofNumber([](double x) { return std::acos(x); });
}

int power() {
    CallArguments arguments;
    double base = 0, exponent = 0;
    if (!nextNumber(arguments.next, base) || !nextNumber(arguments.next, exponent)) {
        return kLispWrongType;
    }
    acedRetReal(std::pow(base, exponent));
    return kLispOk;
}

int numberOfText() {
    CallArguments arguments;
    std::wstring text;
    if (!nextString(arguments.next, text)) return kLispWrongType;
    acedRetReal(std::wcstod(text.c_str(), nullptr));
    return kLispOk;
}

// A division by zero ends the process on most machines; as an exception it ends the call only.
int randomBelow() {
    constexpr int32_t kNoModulus = -1;
    CallArguments arguments;
    int32_t modulus = kNoModulus;
    if (arguments.next != nullptr && !nextInt(arguments.next, modulus)) return kLispWrongType;
    if (modulus == 0) throw std::domain_error("qn_qn-rand: a modulus of 0");
    const int number = sgRandom();
    acedRetInt(modulus == kNoModulus ? number : number % modulus);
    return kLispOk;
}

}  // namespace sg

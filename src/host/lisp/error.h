#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/lisp/value.h"

namespace sg::lisp {

enum class ErrorKind : uint8_t {
    Error,   // an ordinary error
    Cancel,  // the user interrupted the program
    Exit,    // (exit) or (quit)
};

// An error of a LISP program, as *error* and vl-catch-all-apply see it. `message` is the text that
// AutoLISP users know, without the "; error: " in front.
struct LispError {
    std::wstring message;
    ErrorKind kind = ErrorKind::Error;
    // What may help a person, told behind the backtrace; empty for none.
    std::wstring hint = {};
    // The function that there is none of, when that is the error: its name.
    std::wstring unknownFunction = {};
    // Lines of the backtrace, innermost call first; filled in where the error is reported.
    std::vector<std::wstring> backtrace = {};
};

// Raised by vl-exit-with-value: the running program ends with the value.
struct ExitWithValue {
    Value value;
};

}  // namespace sg::lisp

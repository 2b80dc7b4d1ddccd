#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "host/lisp/interpreter.h"

namespace sg::lisp {

// An interpreter that keeps what programs print and what is reported about their errors.
class Session {
  public:
    Session() : in(hooks()) {}

    // The value of the last form as prin1 writes it, "; error: <message>", or "; exit" for a
    // program that left by (exit) or (quit). `file` names the text in messages.
    std::wstring evaluate(std::wstring_view program, const std::wstring& file = {}) {
        return result([&](const auto& body) { return in.runProtected(body); }, program, file);
    }
    // The same at the top level, where *error* runs and errors are reported.
    std::wstring run(std::wstring_view program, const std::wstring& file = {}) {
        return result([&](const auto& body) { return in.runTopLevel(body); }, program, file);
    }

    std::wstring takePrinted() { return std::exchange(printed_, {}); }
    // Each line ends with a line feed.
    std::wstring takeReported() { return std::exchange(reported_, {}); }

    // Defines a function that is written in C++.
    void define(std::wstring_view name, ExternalFunction::Call call) {
        const uint32_t slot = in.intern(name);
        in.valueOf(slot) = Value::object(
            in.heap().adopt(new ExternalFunction(std::wstring(name), std::move(call))));
    }

  private:
    Hooks hooks() {
        Hooks hooks;
        hooks.print = [this](std::wstring_view text) { printed_ += text; };
        hooks.report = [this](std::wstring_view line) { (reported_ += line) += L'\n'; };
        return hooks;
    }

    template <class Runner>
    std::wstring result(const Runner& runner, std::wstring_view program, const std::wstring& file) {
        std::wstring text;
        outcome = runner([&] {
            text = in.toQuotedText(in.loadText(program, file));
            return Value::nil();
        });
        if (outcome.failed) return L"; error: " + outcome.error.message;
        return outcome.exited ? L"; exit" : text;
    }

    std::wstring printed_, reported_;

  public:
    Interpreter in;
    Interpreter::Outcome outcome;  // of the last program; its value is nil
};

// What a program answers in an interpreter of its own.
inline std::wstring evaluate(std::wstring_view program) {
    return Session().evaluate(program);
}

struct Expected {
    const wchar_t* program;
    const wchar_t* result;
};

// Each program runs in an interpreter of its own.
inline void expectAll(std::initializer_list<Expected> table) {
    for (const auto& [program, result] : table) {
        EXPECT_EQ(evaluate(program), result) << testing::PrintToString(std::wstring(program));
    }
}

}  // namespace sg::lisp

#pragma once

#include <deque>
#include <filesystem>
#include <optional>
#include <string>

#include "host/lisp/interpreter.h"
#include "host/system/temporary_folder.h"

namespace sg::lisp {

// A test with an interpreter of its own that runs in an empty folder, which is the current one.
class ProgramTest : public FolderTest {
  protected:
    ProgramTest() : before_(std::filesystem::current_path()), in(hooks()) {
        std::filesystem::current_path(folder_);
    }
    ~ProgramTest() override { std::filesystem::current_path(before_); }

    // What the program answers, as prin1 writes it, or "; error: <message>".
    std::wstring run(std::wstring_view program) {
        std::wstring printedValue;
        const Interpreter::Outcome outcome = in.runProtected([&] {
            const Value value = in.loadText(program, L"");
            printedValue = in.toQuotedText(value);
            return Value::nil();
        });
        return outcome.failed ? L"; error: " + outcome.error.message : printedValue;
    }
    // What was printed since the last call.
    std::wstring printed() { return std::exchange(printed_, {}); }

    std::deque<std::wstring> typed;  // lines that the user will type

  private:
    Hooks hooks() {
        Hooks hooks;
        hooks.print = [this](std::wstring_view text) { printed_ += text; };
        hooks.report = [](std::wstring_view) {};
        hooks.readLine = [this]() -> std::optional<std::wstring> {
            if (typed.empty()) return std::nullopt;
            std::wstring line = typed.front();
            typed.pop_front();
            return line;
        };
        return hooks;
    }

    std::filesystem::path before_;
    std::wstring printed_;

  protected:
    Interpreter in;
};

}  // namespace sg::lisp

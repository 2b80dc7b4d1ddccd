#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/signals.h"

namespace sg::lisp {
class Interpreter;
}

namespace sg::app {

// Reads lines that a person types at a terminal, with editing, history and completion.
class LineEditor {
  public:
    // Answers the ways in which a word may go on, each the whole word, sorted.
    using Complete = std::function<std::vector<std::wstring>(std::wstring_view word)>;

    // Takes the lines of earlier sessions from `historyFile` and leaves them there; an empty name
    // keeps them for this session only. `work` is done while nothing is typed.
    LineEditor(const lisp::Interpreter& interpreter, std::wstring historyFile, Complete complete,
               WaitingWork work);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    enum class Ending {
        Entered,
        Cancelled,  // Ctrl-C, which is left pending at the interpreter
        Closed,     // Ctrl-D on an empty line, or the terminal is gone
    };
    struct Line {
        Ending ending;
        std::wstring text;  // without its end
    };
    Line read(const std::wstring& prompt);

    // Adds what was typed, one line or several, to the history.
    void remember(const std::wstring& text);

    // While false, Tab completes nothing: for answers to a program's prompts.
    bool completing = true;

  private:
    struct Library;

    const lisp::Interpreter& interpreter_;
    const std::wstring historyFile_;
    const Complete complete_;
    const WaitingWork work_;
    std::unique_ptr<Library> library_;
};

}  // namespace sg::app

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/command_table.h"
#include "host/editor/commands/fiber.h"
#include "host/editor/input_source.h"
#include "host/editor/undo_history.h"

namespace sg {

// A built-in command on its way, which stops at each prompt until somebody answers it: a program
// may give some answers now and others later. While it lives "CMDACTIVE" and "CMDNAMES" tell of
// it, and what it changes is one record for undo.
class SG_API ActiveCommand {
  public:
    // What the command waits for: a line of text, or something else.
    struct Waiting {
        bool isText = false;
        TextRequest text;
        PromptRequest prompt;

        const std::wstring& message() const { return isText ? text.prompt : prompt.prompt; }
    };

    // Runs it to its first prompt. The input of the setting is not used.
    ActiveCommand(const CommandRow& row, const Command::Setting& setting);
    // Cancels it.
    ~ActiveCommand();
    ActiveCommand(const ActiveCommand&) = delete;
    ActiveCommand& operator=(const ActiveCommand&) = delete;

    const CommandRow& row() const { return row_; }
    bool isDone() const { return fiber_.isDone(); }
    // Only while it is not done.
    const Waiting& waiting() const { return waiting_; }

    // Answers the prompt, and runs it to the next one; nullopt is Esc.
    void answer(std::optional<PromptAnswer> answer);

  private:
    class Input;

    void run();
    void go();
    std::optional<PromptAnswer> ask(Waiting waiting);
    void outside(const std::function<void()>& action);

    const CommandRow& row_;
    InputChain input_;
    Command::Setting setting_;
    std::unique_ptr<UndoHistory::Running> undo_;
    Waiting waiting_;
    std::optional<PromptAnswer> answer_;
    std::function<void()> action_;  // to be run on the main stack
    std::exception_ptr actionFailure_;
    bool cancelled_ = false;
    Fiber fiber_;
};

}  // namespace sg

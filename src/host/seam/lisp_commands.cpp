#include <fmt/xchar.h>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/commands/active_command.h"
#include "host/editor/commands/command_table.h"
#include "host/editor/system_variables.h"
#include "host/seam/command_answers.h"
#include "host/seam/command_runner.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/prompting.h"

// AutoLISP's functions that run commands.

namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::Value;

constexpr std::wstring_view kPause = L"\\";

// Gives the arguments of one call to the commands of the current drawing, one after the other.
class CommandFeed {
  public:
    explicit CommandFeed(Interpreter& in) : in_(in), host_(Host::the()) {
        const auto echo = host_.systemVariables().get(L"CMDECHO");
        const auto* const number = echo ? std::get_if<int16_t>(&*echo) : nullptr;
        echoes_ = number == nullptr || *number != 0;
    }

    void take(Value value);
    void cancel() {
        quietly([&](Document& document) { host_.commands().cancel(document); });
    }
    // Whether every argument found its command, and no command was cancelled.
    bool succeeded() const { return succeeded_; }
    bool isWaiting() { return document().command != nullptr; }

  private:
    Document& document() { return requireDocument(in_); }
    void startCommand(Value value);
    void pause();
    void echo(const std::wstring& text);

    // What a command prints shows only when commands echo.
    template <class Body>
    void quietly(const Body& body) {
        Document& current = document();
        if (echoes_) return body(current);
        const Output::Capture dropped(host_.output());
        body(current);
    }

    Interpreter& in_;
    Host& host_;
    bool echoes_ = true;
    bool succeeded_ = true;
};

void CommandFeed::echo(const std::wstring& text) {
    if (!echoes_) return;
    Output& output = host_.output();
    if (!output.atLineStart()) output.print(L"\n");
    output.print(text + L"\n");
}

void CommandFeed::startCommand(Value value) {
    const std::wstring name =
        value.isString() ? std::wstring(trimmed(in_.str(value))) : in_.toQuotedText(value);
    if (name.empty()) return;  // Enter
    echo(name);
    bool isKnown = false;
    quietly([&](Document& document) { isKnown = host_.commands().start(document, name, true); });
    if (isKnown) return;
    succeeded_ = false;
    Output& output = host_.output();
    if (!output.atLineStart()) output.print(L"\n");
    output.print(fmt::format(L"Unknown command \"{}\".\n", upperCased(name)));
}

void CommandFeed::pause() {
    if (host_.commands().askUser(document())) return;
    succeeded_ = false;
    in_.cancel();
}

void CommandFeed::take(Value value) {
    ActiveCommand* const command = document().command.get();
    if (value.isNil()) return cancel();
    if (command == nullptr) return startCommand(value);
    if (value.isString() && in_.text(value) == kPause) return pause();
    const ActiveCommand::Waiting& waiting = command->waiting();
    PromptAnswer answer = answerFromLisp(in_, value, waiting.isText);
    echo(waiting.message() + answer.text);
    quietly([&](Document& document) { host_.commands().answer(document, std::move(answer)); });
}

void feed(CommandFeed& feed, Args a) {
    for (size_t i = 0; i < a.size(); ++i)
        feed.take(a[i]);
    if (a.size() == 0) feed.cancel();
}

// (command argument ...): without any, what is on its way is cancelled.
Value fnCommand(Interpreter& in, Args a) {
    CommandFeed commands(in);
    feed(commands, a);
    return Value::nil();
}

// (vl-cmdf argument ...): T when all went well.
Value fnVlCmdf(Interpreter& in, Args a) {
    CommandFeed commands(in);
    feed(commands, a);
    return commands.succeeded() ? in.t() : Value::nil();
}

// (command-s argument ...): whole commands.
Value fnCommandS(Interpreter& in, Args a) {
    CommandFeed commands(in);
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].isString() && in.text(a[i]) == kPause) in.fail(L"command-s takes no pause");
    }
    feed(commands, a);
    if (commands.isWaiting()) {
        commands.cancel();
        in.fail(L"command-s: the command needs more arguments");
    }
    if (!commands.succeeded()) in.fail(L"command-s: unknown command");
    return Value::nil();
}

// (getcname name): "LINE" for "_LINE", and "_LINE" for "LINE"; nil for what is no command.
Value fnGetCName(Interpreter& in, Args a) {
    const std::wstring name = in.str(a[0]);
    const CommandRow* const row = findCommand(name);
    if (row == nullptr) return Value::nil();
    return in.string((name.starts_with(L'_') ? L"" : L"_") + std::wstring(row->name));
}

constexpr FunctionRow kRows[] = {
    {L"command", fnCommand, 0, lisp::kAnyCount},
    {L"command-s", fnCommandS, 0, lisp::kAnyCount},
    {L"vl-cmdf", fnVlCmdf, 0, lisp::kAnyCount},
    {L"getcname", fnGetCName, 1, 1},
};

}  // namespace

std::span<const FunctionRow> commandFunctions() {
    return kRows;
}

}  // namespace sg

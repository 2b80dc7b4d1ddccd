#include "host/editor/commands/active_command.h"

#include <exception>
#include <utility>

#include "base/encoding.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/system_variables.h"

namespace sg {

// Hands the prompts of the command to whoever feeds it.
class ActiveCommand::Input final : public InputSource {
  public:
    explicit Input(ActiveCommand& command) : command_(command) {}

    Answer<std::wstring> text(const TextRequest& request) override {
        auto answer = command_.ask({true, request, {}});
        return answer ? Answer<std::wstring>::of(std::move(answer->text))
                      : Answer<std::wstring>::cancel();
    }
    Answer<PromptAnswer> prompt(const PromptRequest& request) override {
        auto answer = command_.ask({false, {}, request});
        return answer ? Answer<PromptAnswer>::of(std::move(*answer))
                      : Answer<PromptAnswer>::cancel();
    }

  private:
    ActiveCommand& command_;
};

ActiveCommand::ActiveCommand(const CommandRow& row, const Command::Setting& setting)
    : row_(row),
      setting_{setting.document,
               {input_, setting.place.output, setting.place.variables, setting.place.database,
                setting.place.selection},
               setting.files,
               setting.fromProgram,
               [this](const std::function<void()>& action) { outside(action); }},
      fiber_([this] { run(); }) {
    input_.add(std::make_shared<Input>(*this));
    if (row.isRecorded) {
        undo_ = std::make_unique<UndoHistory::Running>(setting.document.undo(), row.name);
    }
    setting_.place.variables.assign(L"CMDACTIVE", int32_t{1});
    setting_.place.variables.assign(L"CMDNAMES", std::wstring(row.name));
    go();
}

ActiveCommand::~ActiveCommand() {
    while (!isDone())
        answer(std::nullopt);
}

// The command's program, on its own stack.
void ActiveCommand::run() {
    Output& output = setting_.place.output;
    try {
        Command command(setting_);
        row_.run(command);
    } catch (const Command::Cancelled&) {
        cancelled_ = true;
    } catch (const std::exception& failure) {
        output.reportError(fromUtf8(failure.what()));
    }
    if (!cancelled_) return;
    if (!output.atLineStart()) output.print(L"\n");
    output.print(L"*Cancel*\n");
}

void ActiveCommand::go() {
    fiber_.resume();
    while (action_) {
        try {
            std::exchange(action_, nullptr)();
        } catch (...) {
            actionFailure_ = std::current_exception();
        }
        fiber_.resume();
    }
    if (!isDone()) return;
    setting_.place.variables.assign(L"CMDACTIVE", int32_t{0});
    setting_.place.variables.assign(L"CMDNAMES", std::wstring());
    undo_.reset();
}

void ActiveCommand::answer(std::optional<PromptAnswer> answer) {
    if (isDone()) return;
    answer_ = std::move(answer);
    go();
}

std::optional<PromptAnswer> ActiveCommand::ask(Waiting waiting) {
    waiting_ = std::move(waiting);
    fiber_.suspend();
    return std::exchange(answer_, std::nullopt);
}

void ActiveCommand::outside(const std::function<void()>& action) {
    action_ = action;
    fiber_.suspend();
    if (actionFailure_) std::rethrow_exception(std::exchange(actionFailure_, nullptr));
}

}  // namespace sg

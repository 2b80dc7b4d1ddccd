#include "host/seam/command_runner.h"

#include <stdexcept>

#include "base/encoding.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/system_variables.h"
#include "host/exchange/drawing_files.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/reader.h"
#include "host/seam/command_answers.h"
#include "host/seam/file_error.h"
#include "host/seam/host.h"
#include "host/seam/prompting.h"

namespace sg {

void CommandRunner::startRow(Document& document, const CommandRow& row, bool fromProgram) {
    CommandFiles files;
    files.open = [this](const std::wstring& path) { open(path); };
    files.save = [this](Document& saved, const std::wstring& path, const std::wstring& release) {
        save(saved, path, release);
    };
    const Command::Setting setting{
        document, promptPlace(host_, document), std::move(files), fromProgram, {}};
    document.command = std::make_unique<ActiveCommand>(row, setting);
    if (document.command->isDone()) document.command.reset();
}

bool CommandRunner::start(Document& document, std::wstring_view name, bool fromProgram) {
    if (document.command != nullptr) return false;
    if (const CommandRow* const row = findCommand(name)) {
        startRow(document, *row, fromProgram);
        return true;
    }
    while (name.starts_with(L'_') || name.starts_with(L'.') || name.starts_with(L'\''))
        name.remove_prefix(1);
    if (findSystemVariable(name) == nullptr) return false;
    startRow(document, *findCommand(L"SETVAR"), fromProgram);
    PromptAnswer variable;
    variable.text = name;
    answer(document, std::move(variable));
    return true;
}

void CommandRunner::answer(Document& document, std::optional<PromptAnswer> answer) {
    if (document.command == nullptr) return;
    document.command->answer(std::move(answer));
    if (document.command->isDone()) document.command.reset();
}

std::optional<PromptAnswer> CommandRunner::askOnce(const ActiveCommand::Waiting& waiting) {
    if (!waiting.isText) return host_.input().prompt(waiting.prompt);
    const auto typed = host_.input().text(waiting.text);
    if (!typed) return std::nullopt;
    PromptAnswer answer;
    answer.text = *typed;
    return answer;
}

bool CommandRunner::askUser(Document& document) {
    if (document.command == nullptr) return false;
    const ActiveCommand::Waiting waiting = document.command->waiting();
    for (;;) {
        std::optional<PromptAnswer> given = askOnce(waiting);
        const bool isAnswered = given.has_value();
        const bool isProgram = isAnswered && !waiting.isText &&
                               given->kind == PromptAnswer::Kind::text &&
                               (given->text.starts_with(L'(') || given->text.starts_with(L'!'));
        if (isProgram) given = evaluated(document, given->text);
        if (isProgram && !given) continue;
        answer(document, std::move(given));
        return isAnswered;
    }
}

// What an expression, or behind "!" anything, answers a prompt with; nullopt, with an error told,
// when it does not.
std::optional<PromptAnswer> CommandRunner::evaluated(Document& document,
                                                     const std::wstring& program) {
    lisp::Interpreter& in = host_.interpreter();
    lisp::Namespace* const before = in.enterNamespace(&document.variables());
    std::optional<PromptAnswer> answer;
    const lisp::Interpreter::Outcome outcome = in.runProtected([&] {
        const std::wstring_view text = program;
        lisp::Reader reader(in, text.substr(program.starts_with(L'!') ? 1 : 0));
        const lisp::Value form = reader.read();
        in.push(form);
        const lisp::Value value = in.eval(form);
        in.push(value);
        if (!value.isNil()) answer = answerFromLisp(in, value, false);
        return lisp::Value::nil();
    });
    in.enterNamespace(in.isAlive(before) ? before : nullptr);
    if (outcome.failed) host_.output().reportError(L"; error: " + outcome.error.message);
    return answer;
}

void CommandRunner::finish(Document& document) {
    while (document.command != nullptr)
        askUser(document);
}

void CommandRunner::cancel(Document& document) {
    while (document.command != nullptr)
        answer(document, std::nullopt);
}

// ---- Files --------------------------------------------------------------------------------------

void CommandRunner::open(const std::wstring& path) {
    try {
        host_.openDrawing(path);
    } catch (const FileError& error) {
        throw std::runtime_error(toUtf8(error.text()));
    }
}

void CommandRunner::save(Document& document, const std::wstring& path,
                         const std::wstring& release) {
    dxf::WriteOptions options;
    options.isBinary = release == L"binary";
    options.release = dxf::releaseNamed(toUtf8(release));
    try {
        host_.saveDrawing(document, path, options);
    } catch (const FileError& error) {
        throw std::runtime_error(toUtf8(error.text()));
    }
}

}  // namespace sg

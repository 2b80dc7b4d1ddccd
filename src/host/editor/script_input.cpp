#include "host/editor/script_input.h"

#include <algorithm>

#include "base/text.h"
#include "host/editor/dialogs/dialog_script.h"
#include "host/editor/message_buttons.h"
#include "host/editor/script_parser.h"
#include "platform/ui/scripted.h"

namespace sg {

ScriptInput::ScriptInput(std::vector<ScriptItem> items, std::wstring file, Report report)
    : items_(std::move(items)), file_(std::move(file)), report_(std::move(report)) {}

std::shared_ptr<ScriptInput> ScriptInput::parse(std::wstring_view content, std::wstring file,
                                                Report report, std::wstring& error) {
    std::vector<ScriptItem> items;
    std::wstring problem;
    size_t line = 0;
    for (size_t start = 0; start < content.size();) {
        const size_t end = std::min(content.find(L'\n', start), content.size());
        auto item = parseScriptLine(content.substr(start, end - start), problem);
        start = end + 1;
        ++line;
        if (!problem.empty()) {
            error = file + L":" + std::to_wstring(line) + L": " + problem;
            return nullptr;
        }
        if (!item) continue;
        item->line = line;
        items.push_back(std::move(*item));
    }
    error.clear();
    return std::shared_ptr<ScriptInput>(
        new ScriptInput(std::move(items), std::move(file), std::move(report)));
}

const ScriptItem* ScriptInput::take() {
    return next_ < items_.size() ? &items_[next_++] : nullptr;
}

void ScriptInput::report(const std::wstring& what) const {
    if (report_) report_(what);
}

void ScriptInput::reportAt(const ScriptItem& item, const std::wstring& what) const {
    report(file_ + L":" + std::to_wstring(item.line) + L": " + what);
}

void ScriptInput::reportMismatch(const ScriptItem& item, const std::wstring& asked) const {
    reportAt(item, L"the program asked for " + asked + L"; the script has \"" + item.source +
                       L"\", which answers as Esc");
}

Answer<std::wstring> ScriptInput::text(const TextRequest& request) {
    const ScriptItem* const item = take();
    if (item == nullptr) return {};
    switch (item->kind) {
        case ScriptItem::Kind::text:
        case ScriptItem::Kind::keyword:
        case ScriptItem::Kind::number:
        case ScriptItem::Kind::point:
            return Answer<std::wstring>::of(item->value);
        case ScriptItem::Kind::enter:
            return Answer<std::wstring>::of(L"");
        case ScriptItem::Kind::escape:
            return Answer<std::wstring>::cancel();
        default:
            reportMismatch(*item, L"text (\"" + std::wstring(trimmed(request.prompt)) + L"\")");
            return Answer<std::wstring>::cancel();
    }
}

Answer<PromptAnswer> ScriptInput::prompt(const PromptRequest& request) {
    const bool isPlace = next_ < items_.size() && (items_[next_].kind == ScriptItem::Kind::pick ||
                                                   items_[next_].kind == ScriptItem::Kind::entity);
    if (!isPlace || request.kind == PromptRequest::Kind::value) {
        return InputSource::prompt(request);
    }
    const ScriptItem& item = *take();
    PromptAnswer answer;
    answer.kind =
        item.kind == ScriptItem::Kind::pick ? PromptAnswer::Kind::pick : PromptAnswer::Kind::entity;
    answer.text = item.value;
    answer.handle = item.handle;
    return Answer<PromptAnswer>::of(std::move(answer));
}

Answer<DragAnswer> ScriptInput::drag(const DragRequest& request) {
    const bool isSample = next_ < items_.size() && items_[next_].kind == ScriptItem::Kind::sample;
    if (!isSample) return InputSource::drag(request);
    DragAnswer sample;
    sample.isConfirmed = false;
    sample.answer.text = take()->value;
    return Answer<DragAnswer>::of(std::move(sample));
}

Answer<int> ScriptInput::messageBox(const BoxRequest& request) {
    const ScriptItem* const item = take();
    if (item == nullptr) return {};
    std::wstring names;
    for (const MessageButton& button : messageButtons(request.flags)) {
        if (item->kind == ScriptItem::Kind::box && item->button == button.id) {
            report(boxReport(request, button.id));
            return Answer<int>::of(button.id);
        }
        names += (names.empty() ? L"" : L", ") + std::wstring(button.name);
    }
    reportMismatch(*item, L"an answer to the message box \"" + request.title + L"\": " +
                              request.text + L" (" + names + L")");
    report(boxReport(request, escapeButton(request.flags)));
    return Answer<int>::of(escapeButton(request.flags));
}

bool ScriptInput::dialog(const DialogRequest& request) {
    ui::ScriptedDialog& dialog = request.dialog;
    DialogScript script(dialog, request.print);
    while (dialog.IsOpen()) {
        const ScriptItem* const item = take();
        if (item == nullptr) return false;
        if (item->kind == ScriptItem::Kind::dialog) {
            const std::wstring problem = script.run(*item);
            if (!problem.empty()) reportAt(*item, problem);
            continue;
        }
        if (item->kind != ScriptItem::Kind::escape) {
            reportMismatch(*item, L"the dialog \"" + dialog.Title() + L"\"");
        }
        dialog.Cancel();
    }
    report(dialogReport(dialog));
    return true;
}

Answer<std::wstring> ScriptInput::file(const FileRequest& request) {
    const ScriptItem* const item = take();
    if (item == nullptr) return {};
    if (item->kind == ScriptItem::Kind::file) {
        report(fileReport(request, item->value.empty() ? L"Cancel" : item->value));
        return item->value.empty() ? Answer<std::wstring>::cancel()
                                   : Answer<std::wstring>::of(item->value);
    }
    const bool isFolder = request.kind == FileRequest::Kind::folder;
    reportMismatch(*item, (isFolder ? L"a folder (\"" : L"a file (\"") + request.title + L"\")");
    report(fileReport(request, L"Cancel"));
    return Answer<std::wstring>::cancel();
}

}  // namespace sg

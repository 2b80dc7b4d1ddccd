#include "host/editor/input_source.h"

#include <algorithm>

#include "base/text.h"
#include "host/editor/dialogs/dialog_script.h"
#include "host/editor/message_buttons.h"
#include "host/system/companion_library.h"
#include "host/system/folders.h"
#include "platform/ui/scripted.h"

namespace sg {
namespace {

// Whether the toolkit would find a display, without opening it.
bool mayHaveDisplay() {
    const auto variable = [](const wchar_t* name) {
        return environmentVariable(name).value_or(L"");
    };
    const std::wstring platform = variable(L"QT_QPA_PLATFORM");
    if (platform.starts_with(L"offscreen") || platform.starts_with(L"minimal")) return false;
    return !platform.empty() || !variable(L"DISPLAY").empty() ||
           !variable(L"WAYLAND_DISPLAY").empty();
}

}  // namespace

Answer<std::wstring> InputSource::text(const TextRequest&) {
    return {};
}
Answer<PromptAnswer> InputSource::prompt(const PromptRequest& request) {
    Answer<std::wstring> typed = text({request.prompt, false});
    Answer<PromptAnswer> answer;
    answer.outcome = typed.outcome;
    answer.value.text = std::move(typed.value);
    return answer;
}
Answer<DragAnswer> InputSource::drag(const DragRequest& request) {
    const bool isValue = request.kind == DragRequest::Kind::text;
    Answer<PromptAnswer> given =
        prompt({isValue ? PromptRequest::Kind::value : PromptRequest::Kind::point,
                std::wstring(request.prompt), request.basePoint, false});
    return {given.outcome, {true, std::move(given.value)}};
}
Answer<int> InputSource::messageBox(const BoxRequest&) {
    return {};
}
bool InputSource::dialog(const DialogRequest&) {
    return false;
}

Answer<std::wstring> InputSource::file(const FileRequest&) {
    return {};
}

template <class Value, class Ask>
Answer<Value> InputChain::firstAnswer(Ask ask) {
    if (beforeWaiting_) beforeWaiting_();
    for (size_t i = 0; i < sources_.size(); ++i) {  // asking may add a source
        const std::shared_ptr<InputSource> source = sources_[i];
        Answer<Value> answer = ask(*source);
        if (answer.outcome != Outcome::none) return answer;
    }
    return Answer<Value>::cancel();
}

std::optional<std::wstring> InputChain::text(const TextRequest& request) {
    auto answer = firstAnswer<std::wstring>([&](InputSource& each) { return each.text(request); });
    if (answer.outcome == Outcome::cancelled) return std::nullopt;
    return std::move(answer.value);
}

std::optional<PromptAnswer> InputChain::prompt(const PromptRequest& request) {
    auto answer =
        firstAnswer<PromptAnswer>([&](InputSource& each) { return each.prompt(request); });
    if (answer.outcome == Outcome::cancelled) return std::nullopt;
    return std::move(answer.value);
}

std::optional<DragAnswer> InputChain::drag(const DragRequest& request) {
    auto answer = firstAnswer<DragAnswer>([&](InputSource& each) { return each.drag(request); });
    if (answer.outcome == Outcome::cancelled) return std::nullopt;
    return std::move(answer.value);
}

int InputChain::messageBox(const BoxRequest& request) {
    const auto answer =
        firstAnswer<int>([&](InputSource& each) { return each.messageBox(request); });
    return answer.outcome == Outcome::answered ? answer.value : escapeButton(request.flags);
}

void InputChain::dialog(const DialogRequest& request) {
    if (beforeWaiting_) beforeWaiting_();
    for (size_t i = 0; i < sources_.size(); ++i) {
        const std::shared_ptr<InputSource> source = sources_[i];
        if (source->dialog(request)) return;
    }
    request.dialog.Abandon();
}

std::optional<std::wstring> InputChain::file(const FileRequest& request) {
    auto answer = firstAnswer<std::wstring>([&](InputSource& each) { return each.file(request); });
    if (answer.outcome == Outcome::cancelled) return std::nullopt;
    return std::move(answer.value);
}

namespace {

// How long the LISP expression is that a text begins with; 0 when it begins with none, or does not
// end.
size_t expressionLength(std::wstring_view text) {
    if (!text.starts_with(L'(')) return 0;
    size_t depth = 0;
    bool inString = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        if (inString) {
            if (c == L'\\') ++i;
            inString = c != L'"';
        } else if (c == L'"') {
            inString = true;
        } else if (c == L'(') {
            ++depth;
        } else if (c == L')' && --depth == 0) {
            return i + 1;
        }
    }
    return 0;
}

}  // namespace

void TypedWords::set(std::wstring_view line) {
    rest_ = trimmed(line);
    hasLines_ = false;
}

void TypedWords::setLines(std::wstring_view text) {
    rest_ = text;
    hasLines_ = true;
    skipBlanks();
}

void TypedWords::skipBlanks() {
    const auto isSpace = [](wchar_t c) { return c != L'\n' && isBlank(c); };
    rest_.erase(rest_.begin(), std::find_if_not(rest_.begin(), rest_.end(), isSpace));
}

Answer<std::wstring> TypedWords::text(const TextRequest& request) {
    if (rest_.empty()) return {};
    const auto ends = [&](wchar_t c) { return c == L'\n' || (!request.wholeLine && isBlank(c)); };
    const size_t expression = hasLines_ && !request.wholeLine ? expressionLength(rest_) : 0;
    const auto first = rest_.begin() + static_cast<std::ptrdiff_t>(expression);
    const auto end = std::find_if(first, rest_.end(), ends);
    std::wstring word(trimmedRight(std::wstring_view(rest_.begin(), end)));
    const bool endsLine = end != rest_.end() && *end == L'\n';
    rest_.erase(rest_.begin(), endsLine ? end + 1 : end);
    skipBlanks();
    return Answer<std::wstring>::of(std::move(word));
}

Answer<std::wstring> UnattendedInput::text(const TextRequest&) {
    return Answer<std::wstring>::cancel();
}

Answer<int> UnattendedInput::messageBox(const BoxRequest& request) {
    const int button = defaultButton(request.flags);
    if (report_) report_(boxReport(request, button));
    return Answer<int>::of(button);
}

bool UnattendedInput::dialog(const DialogRequest& request) {
    request.dialog.Cancel();
    if (request.dialog.IsOpen()) request.dialog.Abandon();
    if (report_) report_(dialogReport(request.dialog));
    return true;
}

Answer<int> DisplayInput::messageBox(const BoxRequest& request) {
    if (open_.empty()) return {};
    return Answer<int>::of(open_.back()->ShowBox(request.title, request.text, request.flags));
}

bool DisplayInput::dialog(const DialogRequest& request) {
    if (!request.dialog.HasDisplay()) return false;
    open_.push_back(&request.dialog);
    request.dialog.WaitForPerson();
    open_.pop_back();
    return true;
}

Answer<std::wstring> DisplayInput::file(const FileRequest& request) {
    if (!mayHaveDisplay()) return {};
    const auto choose = reinterpret_cast<bool (*)(const FileRequest&, std::wstring&)>(
        companionSymbol("libswiftgate-ui.so", "swiftgateChooseFile"));
    if (choose == nullptr) return {};
    std::wstring answer;
    return choose(request, answer) ? Answer<std::wstring>::of(std::move(answer))
                                   : Answer<std::wstring>::cancel();
}

std::wstring boxReport(const BoxRequest& request, int button) {
    return L"message box \"" + request.title + L"\": " + request.text + L" [answered: " +
           std::wstring(buttonName(button)) + L"]";
}

Answer<std::wstring> UnattendedInput::file(const FileRequest& request) {
    if (report_) report_(fileReport(request, L"Cancel"));
    return Answer<std::wstring>::cancel();
}

std::wstring fileReport(const FileRequest& request, const std::wstring& answer) {
    const bool isFolder = request.kind == FileRequest::Kind::folder;
    return (isFolder ? L"folder dialog \"" : L"file dialog \"") + request.title + L"\": " +
           (request.name.empty() ? L"" : request.name + L" ") + L"in " +
           (request.folder.empty() ? L"the current folder" : request.folder) + L" [answered: " +
           answer + L"]";
}

}  // namespace sg

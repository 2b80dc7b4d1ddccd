#include "host/editor/terminal_input.h"

#include <algorithm>

#include "base/text.h"
#include "host/editor/message_buttons.h"

namespace sg {
namespace {

// The button that `typed` is the name of, or the start of exactly one name; 0 when there is none.
int chosenButton(std::wstring_view typed, unsigned flags) {
    if (typed.empty()) return defaultButton(flags);
    int chosen = 0;
    for (const MessageButton& button : messageButtons(flags)) {
        const std::wstring_view name = button.name;
        if (!equalIgnoringCase(name.substr(0, typed.size()), typed)) continue;
        if (chosen != 0) return 0;
        chosen = button.id;
    }
    return chosen;
}

// The kinds of files that a filter names, without the patterns behind each.
std::wstring kindsOf(std::wstring_view filter) {
    std::wstring kinds;
    bool isKind = true;
    while (!filter.empty()) {
        const size_t end = std::min(filter.find(L'|'), filter.size());
        if (isKind && end > 0) {
            if (!kinds.empty()) kinds += L", ";
            kinds += filter.substr(0, end);
        }
        isKind = !isKind;
        filter.remove_prefix(std::min(end + 1, filter.size()));
    }
    return kinds;
}

}  // namespace

Answer<std::wstring> TerminalInput::text(const TextRequest& request) {
    const size_t lastLine = request.prompt.rfind(L'\n');
    if (lastLine == std::wstring::npos) return readLine_(request.prompt);
    print_(request.prompt.substr(0, lastLine + 1));
    return readLine_(request.prompt.substr(lastLine + 1));
}

Answer<int> TerminalInput::messageBox(const BoxRequest& request) {
    std::wstring choices;
    for (const MessageButton& button : messageButtons(request.flags)) {
        choices += (choices.empty() ? L"" : L"/") + std::wstring(button.name);
    }
    const int byDefault = defaultButton(request.flags);
    const std::wstring prompt =
        L"[" + choices + L"] <" + std::wstring(buttonName(byDefault)) + L">: ";
    print_(L"\n" + request.title + L"\n" + request.text + L"\n");
    for (;;) {
        const Answer<std::wstring> line = readLine_(prompt);
        if (line.outcome == Outcome::none) return {};
        if (line.outcome == Outcome::cancelled) {
            return Answer<int>::of(escapeButton(request.flags));
        }
        const int button = chosenButton(trimmed(line.value), request.flags);
        if (button != 0) return Answer<int>::of(button);
    }
}

Answer<std::wstring> TerminalInput::file(const FileRequest& request) {
    const bool isFolder = request.kind == FileRequest::Kind::folder;
    std::wstring shown = L"\n" + request.title + L"\n";
    if (!request.folder.empty()) shown += L"Folder: " + request.folder + L"\n";
    if (!request.filter.empty()) shown += kindsOf(request.filter) + L"\n";
    for (const std::wstring& each : request.recent)
        shown += L"  " + each + L"\n";
    print_(shown);
    const std::wstring byDefault = request.name.empty() ? L"" : L" <" + request.name + L">";
    Answer<std::wstring> answer =
        readLine_((isFolder ? L"Folder name" : L"File name") + byDefault + L": ");
    if (answer.outcome != Outcome::answered) return answer;
    answer.value = trimmed(answer.value);
    if (!answer.value.empty()) return answer;
    if (request.name.empty() && !isFolder) return Answer<std::wstring>::cancel();
    return Answer<std::wstring>::of(request.name);
}

}  // namespace sg

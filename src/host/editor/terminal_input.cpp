#include "host/editor/terminal_input.h"

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

}  // namespace sg

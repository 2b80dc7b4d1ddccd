#include "host/editor/message_buttons.h"

#include "base/text.h"
#include "platform/win/message_box.h"

namespace sg {
namespace {

constexpr MessageButton kOk{IDOK, L"OK"}, kCancel{IDCANCEL, L"Cancel"}, kAbort{IDABORT, L"Abort"},
    kRetry{IDRETRY, L"Retry"}, kIgnore{IDIGNORE, L"Ignore"}, kYes{IDYES, L"Yes"}, kNo{IDNO, L"No"};
constexpr MessageButton kAll[] = {kOk, kCancel, kAbort, kRetry, kIgnore, kYes, kNo};

}  // namespace

std::vector<MessageButton> messageButtons(unsigned flags) {
    switch (flags & 0xF) {
        case MB_OKCANCEL:
            return {kOk, kCancel};
        case MB_ABORTRETRYIGNORE:
            return {kAbort, kRetry, kIgnore};
        case MB_YESNOCANCEL:
            return {kYes, kNo, kCancel};
        case MB_YESNO:
            return {kYes, kNo};
        case MB_RETRYCANCEL:
            return {kRetry, kCancel};
        default:
            return {kOk};
    }
}

int defaultButton(unsigned flags) {
    const auto buttons = messageButtons(flags);
    const size_t index = flags >> 8 & 0xF;
    return buttons[index < buttons.size() ? index : 0].id;
}

int escapeButton(unsigned flags) {
    for (const MessageButton& button : messageButtons(flags)) {
        if (button.id == IDCANCEL) return IDCANCEL;
    }
    return defaultButton(flags);
}

std::wstring_view buttonName(int id) {
    for (const MessageButton& button : kAll) {
        if (button.id == id) return button.name;
    }
    return {};
}

int buttonNamed(std::wstring_view name) {
    for (const MessageButton& button : kAll) {
        if (equalIgnoringCase(button.name, name)) return button.id;
    }
    return 0;
}

}  // namespace sg

#pragma once

#include <string>

#include "platform/win/message_box.h"

namespace sg {

// A box of the dialogs, with one button.
inline void tell(const std::wstring& text, unsigned icon) {
    MessageBoxW(GetActiveWindow(), text.c_str(), L"Quillon", MB_OK | icon);
}

// One that asks; true for Yes.
inline bool ask(const std::wstring& question) {
    return MessageBoxW(GetActiveWindow(), question.c_str(), L"Quillon",
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

}  // namespace sg

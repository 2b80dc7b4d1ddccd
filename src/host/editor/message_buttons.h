#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

struct MessageButton {
    int id;               // IDOK, ...
    const wchar_t* name;  // "OK", ...
};

// The buttons of a message box in their order, by the flags of MessageBoxW.
SG_API std::vector<MessageButton> messageButtons(unsigned flags);

// The button that the flags make the default one; the first when they name one that is not there.
SG_API int defaultButton(unsigned flags);

// The button that Esc stands for: Cancel, the only button of a box with one, else the default.
SG_API int escapeButton(unsigned flags);

// The name of a button, such as "Yes"; empty for an unknown id.
SG_API std::wstring_view buttonName(int id);

// The button of a name ignoring case; 0 when none has it.
SG_API int buttonNamed(std::wstring_view name);

}  // namespace sg

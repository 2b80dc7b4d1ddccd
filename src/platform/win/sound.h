#pragma once

#include "base/export.h"

// Sounds that the system has a meaning for, besides the icons of platform/win/message_box.h.
enum : unsigned { MB_BEEP = 0xFFFFFFFF };

// Begins a sound and does not wait for its end: `kind` is MB_BEEP or the number of an icon or
// MB_OK. Silent where there is no terminal.
SG_API bool MessageBeep(unsigned kind);

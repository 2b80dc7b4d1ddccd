#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/window.h"

inline constexpr unsigned WM_TIMER = 0x113;

// Called by a timer, while the program waits for input, on the thread of everything else. `time` is
// in milliseconds, from an origin of its own.
using TIMERPROC = void (*)(HWND window, unsigned message, uintptr_t id, uint32_t time);

// Starts a timer that calls `procedure` again and again, about every so many milliseconds: at least
// 10, and 10 for more than 2,147,483,647. Answers its id, which is not 0. Without a window `id` is
// that of a timer to be replaced, or means nothing. 0 without a procedure.
SG_API uintptr_t SetTimer(HWND window, uintptr_t id, uint32_t milliseconds, TIMERPROC procedure);
// False for an id that no timer has.
SG_API bool KillTimer(HWND window, uintptr_t id);

#pragma once

#include "base/export.h"

// The progress meter in the status bar. There is one; starting another replaces it.

// Starts the meter at its minimum. 0, or -1 for a range that has no positions.
SG_API int acedSetStatusBarProgressMeter(const wchar_t* label, int minimum, int maximum);
// Moves it; a position outside its range is cut to that, and a negative one in a range that begins
// at 0 or above moves the meter on by that number. 0, or -1 when no meter is shown.
SG_API int acedSetStatusBarProgressMeterPos(int position);
// Takes the meter away.
SG_API void acedRestoreStatusBar();

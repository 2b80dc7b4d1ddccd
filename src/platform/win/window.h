#pragma once

#include "base/export.h"

// A top-level window. Null stands for "no window" and is what a host without a display answers.
struct SgWindow;
using HWND = SgWindow*;

SG_API HWND GetActiveWindow();
SG_API HWND SetActiveWindow(HWND window);  // answers the window that was active
SG_API HWND adsw_acadMainWnd();            // the drawing program's main window

// Lets a window take input, or keeps it from that. True when it was kept from it before.
SG_API bool EnableWindow(HWND window, bool enable);

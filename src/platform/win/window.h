#pragma once

#include <string>

#include "base/export.h"

// A top-level window. Null stands for "no window".
struct SgWindow;
using HWND = SgWindow*;

SG_API HWND GetActiveWindow();
SG_API HWND SetActiveWindow(HWND window);  // answers the window that was active
SG_API HWND adsw_acadMainWnd();            // the drawing program's main window

// Lets a window take input, or keeps it from that. True when it was kept from it before.
SG_API bool EnableWindow(HWND window, bool enable);
SG_API bool IsWindowEnabled(HWND window);

// The drawing program's main window as an object. Its text is the title, which on a terminal is
// that of the terminal's window once a program has set it.
class SG_API CMDIFrameWnd {
  public:
    explicit CMDIFrameWnd(HWND window) : m_hWnd(window) {}
    void GetWindowText(std::wstring& text) const;
    void SetWindowText(const wchar_t* text);

    HWND m_hWnd;
};
SG_API CMDIFrameWnd* acedGetAcadFrame();

// Measures of the system: the width and the height of the screen in pixels. 0 for any other index.
enum : int { SM_CXSCREEN = 0, SM_CYSCREEN = 1 };
SG_API int GetSystemMetrics(int index);

#pragma once

#include "base/export.h"
#include "platform/win/window.h"

// Flags of MessageBoxW: one set of buttons, one icon, one default button.
enum : unsigned {
    MB_OK = 0x0,
    MB_OKCANCEL = 0x1,
    MB_ABORTRETRYIGNORE = 0x2,
    MB_YESNOCANCEL = 0x3,
    MB_YESNO = 0x4,
    MB_RETRYCANCEL = 0x5,
    MB_ICONERROR = 0x10,
    MB_ICONQUESTION = 0x20,
    MB_ICONWARNING = 0x30,
    MB_ICONINFORMATION = 0x40,
    MB_DEFBUTTON1 = 0x0,
    MB_DEFBUTTON2 = 0x100,
    MB_DEFBUTTON3 = 0x200,
};

enum : int {
    IDOK = 1,
    IDCANCEL = 2,
    IDABORT = 3,
    IDRETRY = 4,
    IDIGNORE = 5,
    IDYES = 6,
    IDNO = 7,
};

// Shows a box and answers the button that was pressed. Where nobody can answer, the default button
// is, and the box is reported on standard error.
SG_API int MessageBoxW(HWND owner, const wchar_t* text, const wchar_t* title, unsigned flags);

// A box of the program itself, with a warning sign unless the flags have another one.
SG_API int AfxMessageBox(const wchar_t* text, unsigned flags = MB_OK);

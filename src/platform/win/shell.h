#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/hresult.h"
#include "platform/win/window.h"

// How the window of what is started shows.
enum : int {
    SW_HIDE = 0,
    SW_SHOWNORMAL = 1,
    SW_SHOWMINIMIZED = 2,
    SW_SHOWMAXIMIZED = 3,
    SW_MAXIMIZE = 3,
    SW_SHOWNOACTIVATE = 4,
    SW_SHOW = 5,
    SW_MINIMIZE = 6,
    SW_SHOWMINNOACTIVE = 7,
    SW_SHOWNA = 8,
    SW_RESTORE = 9,
    SW_SHOWDEFAULT = 10,
};

// Opens a document, a folder or an address with the program that is responsible for it, or starts a
// program. `operation` is "open" or "explore" in any case, or null. A success is above 32; 2 means
// that the file was not found, 31 that no program is responsible.
SG_API intptr_t ShellExecuteW(HWND owner, const wchar_t* operation, const wchar_t* file,
                              const wchar_t* parameters, const wchar_t* directory, int show);

// A file or folder as the file manager knows it. Released with ILFree, which takes null too.
struct SgShellItem;
// Null for an empty path.
SG_API SgShellItem* ILCreateFromPathW(const wchar_t* path);
SG_API void ILFree(SgShellItem* item);

// Shows a folder in the file manager with `count` files in it selected. An item that is not there
// as it stands is looked for in the folder; one that is in neither place, and a null one, does not
// count. Without any the folder is shown. A failure when there is no such folder or it cannot be
// shown.
SG_API HRESULT SHOpenFolderAndSelectItems(const SgShellItem* folder, uint32_t count,
                                          const SgShellItem* const* items, uint32_t flags);

// Shows the page of the product's documents that explains a topic: a function's name, or the name
// of a page. For any other topic the first page is shown. Null when nothing can be shown, which is
// reported with the page's place.
enum : uint32_t { HH_DISPLAY_TOC = 1 };
SG_API HWND HtmlHelpW(HWND caller, const wchar_t* topic, uint32_t command, uintptr_t data);

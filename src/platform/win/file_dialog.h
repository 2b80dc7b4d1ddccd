#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/win/window.h"

// Choosers of files and folders.

enum : uint32_t {
    OFN_OVERWRITEPROMPT = 0x2,   // a file that exists is taken only after a question
    OFN_PATHMUSTEXIST = 0x800,   // so must its folder
    OFN_FILEMUSTEXIST = 0x1000,  // a file that does not exist is refused
};

struct OPENFILENAMEW {
    std::wstring lpstrTitle;       // empty: "Open" or "Save As"
    std::wstring lpstrInitialDir;  // where it does not exist, the current folder counts
};

// A file chooser. The filter is pairs of a text and a pattern, all with "|" behind them and one
// more at the end: "DWG Files (*.dwg)|*.dwg||".
class SG_API CFileDialog {
  public:
    CFileDialog(bool opens, const wchar_t* defaultExtension, const wchar_t* fileName,
                uint32_t flags, const wchar_t* filter, HWND parent);

    // IDOK when a file was chosen, else IDCANCEL.
    intptr_t DoModal();
    // The chosen file's full path, with "/".
    const std::wstring& GetPathName() const { return path_; }

    OPENFILENAMEW m_ofn;

  private:
    const bool opens_;
    const std::wstring defaultExtension_;
    const std::wstring fileName_;
    const uint32_t flags_;
    const std::wstring filter_;
    std::wstring path_;
};

// Asks for a folder, in a chooser that opens in `initial` (empty: the current folder) with `name`
// in its field, under which `history` is offered, until `accepts` answers true for what was chosen
// or typed, which is `folder` then. False when it is cancelled. This host's own.
SG_API bool sgAskForFolder(HWND owner, const std::wstring& title, const std::wstring& initial,
                           const std::wstring& name, const std::vector<std::wstring>& history,
                           const std::function<bool(const std::wstring& folder)>& accepts,
                           std::wstring& folder);

#pragma once

#include <cstdint>
#include <string>

#include "platform/win/window.h"
#include "support/history_combo.h"

namespace sg {

// A folder chooser that remembers what was chosen in it.
class CXFolderDialog {
  public:
    // `initial`: where it opens; null for the current folder.
    CXFolderDialog(const wchar_t* initial, HWND parent);

    // The caption; "Select Folder" when it is empty.
    void SetTitle(std::wstring title) { title_ = std::move(title); }

    // Stays open, with a message, for an empty name and for a folder that cannot be reached. IDOK
    // when a folder was chosen, which goes into the history; else IDCANCEL.
    intptr_t DoModal();
    // The chosen folder's full path, with "/".
    const std::wstring& GetPath() const { return path_; }

  private:
    bool accepts(const std::wstring& folder) const;

    const std::wstring initial_;
    const HWND parent_;
    std::wstring title_;
    std::wstring path_;
    CHistoryCombo history_{L"FolderHistory", L"Folder"};
};

}  // namespace sg

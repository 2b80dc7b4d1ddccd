#include "support/folder_dialog.h"

#include "platform/win/file_dialog.h"
#include "platform/win/files.h"
#include "platform/win/folders.h"
#include "platform/win/message_box.h"

namespace sg {

CXFolderDialog::CXFolderDialog(const wchar_t* initial, HWND parent)
    : initial_(initial != nullptr ? initial : L""), parent_(parent) {}

bool CXFolderDialog::accepts(const std::wstring& folder) const {
    const wchar_t* const caption = title_.c_str();
    if (folder.empty()) {
        MessageBoxW(parent_, L"Please select a folder.", caption, MB_OK | MB_ICONWARNING);
        return false;
    }
    if (_waccess(folder.c_str(), 0) != 0) {
        const std::wstring text = L"The folder '" + folder + L"' isn't accessible.";
        MessageBoxW(parent_, text.c_str(), caption, MB_OK | MB_ICONWARNING);
        return false;
    }
    return true;
}

intptr_t CXFolderDialog::DoModal() {
    if (title_.empty()) title_ = L"Select Folder";
    history_.LoadHistory();
    const auto isAccepted = [this](const std::wstring& folder) { return accepts(folder); };
    std::wstring folder;
    if (!sgAskForFolder(parent_, title_, initial_, history_.text(), history_.items(), isAccepted,
                        folder)) {
        return IDCANCEL;
    }
    path_ = sgFullPath(folder);
    history_.SaveHistory(path_);
    return IDOK;
}

}  // namespace sg

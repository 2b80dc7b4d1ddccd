#include "host/editor/file_dialog.h"
#include "host/seam/host.h"
#include "platform/win/file_dialog.h"
#include "platform/win/message_box.h"

// platform/win/file_dialog.h on the Host.

using namespace sg;

namespace {

const wchar_t* orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

}  // namespace

CFileDialog::CFileDialog(bool opens, const wchar_t* defaultExtension, const wchar_t* fileName,
                         uint32_t flags, const wchar_t* filter, HWND)
    : opens_(opens),
      defaultExtension_(orEmpty(defaultExtension)),
      fileName_(orEmpty(fileName)),
      flags_(flags),
      filter_(orEmpty(filter)) {}

intptr_t CFileDialog::DoModal() {
    FileDialog dialog;
    dialog.request.kind = opens_ ? FileRequest::Kind::open : FileRequest::Kind::save;
    dialog.request.title = m_ofn.lpstrTitle;
    if (m_ofn.lpstrTitle.empty()) dialog.request.title = opens_ ? L"Open" : L"Save As";
    dialog.request.folder = m_ofn.lpstrInitialDir;
    dialog.request.name = fileName_;
    dialog.request.filter = filter_;
    // Of several extensions the first one counts; "*" stands for any.
    dialog.defaultExtension = defaultExtension_.substr(0, defaultExtension_.find(L';'));
    if (dialog.defaultExtension == L"*") dialog.defaultExtension.clear();
    dialog.mustExist = opens_ && (flags_ & OFN_FILEMUSTEXIST) != 0;
    dialog.confirmsReplacing = !opens_ && (flags_ & OFN_OVERWRITEPROMPT) != 0;
    auto chosen = askForFile(Host::the().input(), std::move(dialog));
    if (!chosen) return IDCANCEL;
    path_ = std::move(*chosen);
    return IDOK;
}

bool sgAskForFolder(HWND, const std::wstring& title, const std::wstring& initial,
                    const std::wstring& name, const std::vector<std::wstring>& history,
                    const std::function<bool(const std::wstring& folder)>& accepts,
                    std::wstring& folder) {
    FileRequest request;
    request.kind = FileRequest::Kind::folder;
    request.title = title;
    request.folder = initial;
    request.name = name;
    request.recent = history;
    bool isTaken = false;
    request.takes = [&](const std::wstring& answer) {
        isTaken = accepts(answer);
        if (isTaken) folder = answer;
        return isTaken;
    };
    while (!isTaken) {
        auto answer = Host::the().input().file(request);
        if (!answer) return false;
        if (!isTaken) request.takes(*answer);
        request.name = std::move(*answer);  // what was refused stands there to be corrected
    }
    return true;
}

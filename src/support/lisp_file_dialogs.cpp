#include <string>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/file_dialog.h"
#include "platform/win/message_box.h"
#include "support/active_window.h"
#include "support/folder_dialog.h"
#include "support/lisp_functions.h"
#include "support/text_utilities.h"

namespace sg {
namespace {

struct FileQuestion {
    bool opens = false;
    std::wstring title, path, extensions;
    bool confirmsReplacing = true;
    bool mustExist = false;
};

std::wstring dialogFilter(const std::wstring& extensions) {
    if (extensions.empty() || extensions == L"*") return L"All Files (*.*)|*.*||";
    return BuildFileFilter(extensions) + L"|";
}

// The dialog's path and file, as a path for saving names them: without a name behind its last
// separator the whole is the folder.
void splitForSaving(const std::wstring& path, std::wstring& folder, std::wstring& name) {
    const size_t separator = path.find_last_of(L"/\\");
    const size_t start = separator == std::wstring::npos ? 0 : separator + 1;
    name = path.substr(start);
    folder = path.substr(0, start);
}

uint32_t flagsOf(const FileQuestion& asked) {
    if (asked.opens) return asked.mustExist ? OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST : 0u;
    return asked.confirmsReplacing ? uint32_t{OFN_OVERWRITEPROMPT} : 0u;
}

}  // namespace

int fileDialog() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    FileQuestion asked;
    if (!nextBool(at, asked.opens) || !nextString(at, asked.title) || !nextString(at, asked.path) ||
        !nextString(at, asked.extensions)) {
        return kLispWrongType;
    }
    nextBool(at, asked.confirmsReplacing);
    nextBool(at, asked.mustExist);

    std::wstring folder = asked.path, name;
    if (!asked.opens) splitForSaving(asked.path, folder, name);
    const ActiveWindowKept kept;
    CFileDialog dialog(asked.opens, asked.extensions.c_str(), name.c_str(), flagsOf(asked),
                       dialogFilter(asked.extensions).c_str(), kept.window());
    dialog.m_ofn.lpstrTitle = asked.title;
    dialog.m_ofn.lpstrInitialDir = folder;
    if (dialog.DoModal() == IDOK) acedRetStr(dialog.GetPathName().c_str());
    return kLispOk;
}

int folderDialog() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring title, folder;
    if (!nextString(at, title) || !nextString(at, folder)) return kLispWrongType;
    const ActiveWindowKept kept;
    CXFolderDialog dialog(folder.empty() ? nullptr : folder.c_str(), kept.window());
    dialog.SetTitle(title);
    if (dialog.DoModal() == IDOK) acedRetStr(dialog.GetPath().c_str());
    return kLispOk;
}

}  // namespace sg

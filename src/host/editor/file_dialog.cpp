#include "host/editor/file_dialog.h"

#include "host/system/files.h"
#include "host/system/paths.h"
#include "platform/win/message_box.h"

namespace sg {
namespace {

bool hasExtension(std::wstring_view path) {
    return lastComponent(path).find(L'.') != std::wstring_view::npos;
}

// The file that a name given in the dialog stands for.
ResolvedPath fileOf(const FileDialog& dialog, const std::wstring& name) {
    const std::wstring path = absolutePath(joinPath(dialog.request.folder, name));
    ResolvedPath found = resolvePath(path);
    const bool opensWhatIsThere = found.exists && dialog.request.kind == FileRequest::Kind::open;
    if (dialog.defaultExtension.empty() || hasExtension(path) || opensWhatIsThere) return found;
    if (found.exists && isFolder(found.path)) return found;
    return resolvePath(path + L'.' + dialog.defaultExtension);
}

// Whether the dialog closes with this file.
bool takes(InputChain& input, const FileDialog& dialog, const ResolvedPath& file) {
    const std::wstring& title = dialog.request.title;
    if (dialog.mustExist && !file.exists) {
        input.messageBox({title,
                          file.path + L"\nFile not found.\nCheck the file name and try again.",
                          MB_OK | MB_ICONWARNING});
        return false;
    }
    if (!dialog.confirmsReplacing || !file.exists) return true;
    const BoxRequest question{title, file.path + L" already exists.\nDo you want to replace it?",
                              MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2};
    return input.messageBox(question) == IDYES;
}

}  // namespace

std::optional<std::wstring> askForFile(InputChain& input, FileDialog dialog) {
    std::wstring& folder = dialog.request.folder;
    folder = absolutePath(resolvePath(folder).path);
    if (!isFolder(folder)) folder = absolutePath(L".");
    std::optional<std::wstring> chosen;
    dialog.request.takes = [&](const std::wstring& name) {
        if (name.empty()) return false;
        ResolvedPath file = fileOf(dialog, name);
        if (file.exists && isFolder(file.path)) {
            folder = std::move(file.path);
        } else if (takes(input, dialog, file)) {
            chosen = std::move(file.path);
        }
        return chosen.has_value();
    };
    while (!chosen) {
        const auto name = input.file(dialog.request);
        if (!name) return std::nullopt;
        if (!chosen) dialog.request.takes(*name);
    }
    return chosen;
}

}  // namespace sg

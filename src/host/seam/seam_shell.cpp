#include <string>
#include <vector>

#include "host/editor/command_line_output.h"
#include "host/seam/host.h"
#include "host/system/files.h"
#include "host/system/function_pages.h"
#include "host/system/main_window.h"
#include "host/system/paths.h"
#include "host/system/shell.h"
#include "platform/win/shell.h"

// platform/win/shell.h on the Host.

using namespace sg;

struct SgShellItem {
    std::wstring path;  // as it was written
};

namespace {

const wchar_t* orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

// The file of an item that a folder shows; empty when there is none.
std::wstring fileOf(const SgShellItem& item, const std::wstring& folder) {
    for (const std::wstring& path : {item.path, joinPath(folder, item.path)}) {
        const ResolvedPath found = resolvePath(path);
        if (found.exists) return absolutePath(found.path);
    }
    return {};
}

// The page of a topic, else the first one; empty when the product's documents are not there.
std::wstring helpPage(std::wstring_view topic) {
    const std::wstring& folder = Host::the().options().helpFolder;
    std::wstring page = FunctionPages::read(joinPath(folder, L"functions")).fileOf(topic);
    if (page.empty()) page = joinPath(folder, L"guide.md");
    return isFile(page) ? absolutePath(page) : std::wstring();
}

}  // namespace

intptr_t ShellExecuteW(HWND, const wchar_t* operation, const wchar_t* file,
                       const wchar_t* parameters, const wchar_t* directory, int) {
    return Host::the().shell().execute(orEmpty(operation), orEmpty(file), orEmpty(parameters),
                                       orEmpty(directory));
}

SgShellItem* ILCreateFromPathW(const wchar_t* path) {
    return path != nullptr && *path != 0 ? new SgShellItem{path} : nullptr;
}

void ILFree(SgShellItem* item) {
    delete item;
}

HRESULT SHOpenFolderAndSelectItems(const SgShellItem* folder, uint32_t count,
                                   const SgShellItem* const* items, uint32_t) {
    constexpr auto kFailed = static_cast<HRESULT>(0x80004005);
    const std::wstring path =
        folder != nullptr ? absolutePath(resolvePath(folder->path).path) : std::wstring();
    if (path.empty() || !isFolder(path)) return kFailed;
    std::vector<std::wstring> files;
    for (uint32_t i = 0; i < count; ++i) {
        const std::wstring file = items[i] != nullptr ? fileOf(*items[i], path) : std::wstring();
        if (!file.empty()) files.push_back(file);
    }
    return Host::the().shell().select(path, files) == Shell::kStarted ? S_OK : kFailed;
}

HWND HtmlHelpW(HWND, const wchar_t* topic, uint32_t, uintptr_t) {
    Host& host = Host::the();
    const std::wstring page = helpPage(orEmpty(topic));
    if (page.empty()) {
        host.output().reportError(L"help: the product's documents are not in \"" +
                                  host.options().helpFolder + L"\"");
        return nullptr;
    }
    if (host.shell().execute(L"open", page, L"", L"") == Shell::kStarted) {
        return &host.mainWindow().window;
    }
    host.output().reportError(L"help: " + page);
    return nullptr;
}

#include <string>
#include <utility>
#include <vector>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "drawing/shell_keywords.h"
#include "platform/win/folders.h"
#include "platform/win/shell.h"

namespace sg {
namespace {

// A file or folder of the file manager's, released in the end.
class ShellItem {
  public:
    explicit ShellItem(const std::wstring& path) : item_(ILCreateFromPathW(path.c_str())) {}
    ShellItem(ShellItem&& other) noexcept : item_(std::exchange(other.item_, nullptr)) {}
    ShellItem& operator=(ShellItem&&) = delete;
    ~ShellItem() { ILFree(item_); }
    const SgShellItem* get() const { return item_; }

  private:
    SgShellItem* item_;
};

// The strings of a list, if one begins here, without the empty ones.
std::vector<std::wstring> nextNames(const resbuf*& position) {
    std::vector<std::wstring> names;
    if (!nextListBegin(position)) return names;
    std::wstring name;
    while (nextString(position, name)) {
        if (!name.empty()) names.push_back(name);
    }
    return names;
}

void openAndSelect(const std::wstring& folder, const std::vector<std::wstring>& names) {
    const ShellItem folderItem(folder);
    std::vector<ShellItem> items;
    std::vector<const SgShellItem*> selected;
    for (const std::wstring& name : names) {
        items.emplace_back(name);
        selected.push_back(items.back().get());
    }
    SHOpenFolderAndSelectItems(folderItem.get(), static_cast<uint32_t>(selected.size()),
                               selected.data(), 0);
}

}  // namespace

int showHelp() {
    CallArguments arguments;
    std::wstring topic;
    if (!nextString(arguments.next, topic)) return kLispWrongType;
    HtmlHelpW(nullptr, topic.c_str(), HH_DISPLAY_TOC, 0);
    acedRetT();
    return kLispOk;
}

int folderPath() {
    CallArguments arguments;
    std::wstring keyword;
    if (!nextString(arguments.next, keyword)) return kLispWrongType;
    wchar_t path[MAX_PATH] = L"";
    const auto number = folderNumberOf(keyword);
    if (number && SHGetFolderPathW(nullptr, *number, nullptr, 0, path) == S_OK) acedRetStr(path);
    return kLispOk;
}

int openFolderAndSelect() {
    CallArguments arguments;
    std::wstring folder;
    if (!nextString(arguments.next, folder)) return kLispWrongType;
    const std::vector<std::wstring> names = nextNames(arguments.next);
    if (names.empty()) {
        ShellExecuteW(nullptr, L"explore", folder.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    } else {
        openAndSelect(folder, names);
    }
    return kLispOk;
}

// Nil rather than an error when an argument is missing.
int shellExecute() {
    constexpr intptr_t kLastFailure = 32;
    CallArguments arguments;
    std::wstring operation, file, show;
    const bool complete = nextString(arguments.next, operation) &&
                          nextString(arguments.next, file) && nextString(arguments.next, show);
    if (!complete) return kLispOk;
    const intptr_t answer = ShellExecuteW(nullptr, operation.c_str(), file.c_str(), nullptr,
                                          nullptr, showCommandOf(show));
    answer > kLastFailure ? acedRetT() : acedRetNil();
    return kLispOk;
}

}  // namespace sg

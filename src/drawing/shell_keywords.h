#pragma once

#include <optional>
#include <string_view>

// The words by which LISP programs name the system's folders and the ways in which windows show.
// Case matters.
namespace sg {

// The number that SHGetFolderPathW takes.
std::optional<int> folderNumberOf(std::wstring_view keyword);

// The number that ShellExecuteW takes; SW_HIDE for a word that is not known.
int showCommandOf(std::wstring_view keyword);

}  // namespace sg

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Names of an archive's entries: how they are read, checked and made.
namespace sg {

// The text of a stored name. It is UTF-8 where the archive says so, and where its bytes are
// well-formed UTF-8, as several programs write it without saying so. Otherwise it is in the code
// page that programs of its maker's system use: 437 for FAT, HPFS and NTFS, which have it from DOS
// and which the format's own rule means; 1252 for every other. `cp437` is the name read as 437.
std::wstring entryName(std::string_view bytes, bool declaredUtf8, int system,
                       std::wstring_view cp437);

// The folders and the file that an entry's name leads to, from the folder on that it is unpacked
// into; none for a name of that folder itself, such as "./". nullopt, with the reason, for a name
// that leads anywhere else or that is none: an absolute one, one with a drive letter, with a ".."
// component, with control characters. "/" and "\" both separate.
std::optional<std::vector<std::wstring>> entryPath(std::wstring_view name, std::wstring& reason);

bool isFolderName(std::wstring_view name);  // of an entry that stands for a folder

// `path` as a stored name may be: separated by "/" and without drive letter, root, "." and "..".
std::wstring storedPath(std::wstring_view path);

// `name` with " (2)", " (3)", ... put before its extension.
std::wstring numberedName(std::wstring_view name, unsigned number);

}  // namespace sg

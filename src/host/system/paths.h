#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

// File names as programs write them, and the files they stand for. In every argument "/" and "\"
// both separate folders; every result uses "/". No function here throws.
namespace sg {

struct ResolvedPath {
    std::wstring path;
    bool exists = false;
};

// The file or folder that `path` stands for. When nothing is there as written, each component is
// tried ignoring case (of several, the first in code point order that leads to the whole path).
// When nothing exists under any spelling, `path` has the folders that exist as they are spelt and
// the rest as written, so that a file can be made there. An empty path stays empty.
SG_API ResolvedPath resolvePath(std::wstring_view path);

// `path` with "/" for every "\".
SG_API std::wstring withSlashes(std::wstring_view path);

SG_API bool isAbsolutePath(std::wstring_view path);

// `name` in `folder`; `name` alone when it is absolute or `folder` is empty.
SG_API std::wstring joinPath(std::wstring_view folder, std::wstring_view name);

// The absolute path, without "." and ".." components and with no "/" at its end (but for "/"
// itself). Links are not followed.
SG_API std::wstring absolutePath(std::wstring_view path);

// The part after the last separator, and the part before it ("/" for a file of the root, empty when
// there is none).
SG_API std::wstring_view lastComponent(std::wstring_view path);
SG_API std::wstring_view parentFolder(std::wstring_view path);

// True when `name` matches `pattern` ignoring case: "*" stands for any text, "?" for any one
// character. As on the system of origin, ".*" at the end also stands for no extension, so that
// "*.*" matches every name, and "*." matches names without a dot.
SG_API bool matchesFilePattern(std::wstring_view name, std::wstring_view pattern);

// What vl-directory-files asks for.
enum class ListedEntries { foldersOnly = -1, all = 0, filesOnly = 1 };

// The names in a folder that match `pattern` (empty: all), sorted ignoring case; "." and ".." come
// first where folders are listed and the pattern matches them. Empty when the folder cannot be
// read.
SG_API std::vector<std::wstring> listFolder(std::wstring_view folder, std::wstring_view pattern,
                                            ListedEntries entries);

// The folders in which files named without a folder, or with a relative one, are looked for.
class SG_API SupportPath {
  public:
    // Adds a folder at the end; one that is there already stays where it is.
    void add(std::wstring_view folder);

    // The absolute path of the file `name`: as it stands when it is absolute, else in the first
    // folder that has it. Folders do not count as files. Empty when there is none.
    std::wstring find(std::wstring_view name) const;

    // The places where find() looks for `name`, for messages.
    std::vector<std::wstring> places(std::wstring_view name) const;

    const std::vector<std::wstring>& folders() const { return folders_; }

    // The folders as ACADPREFIX shows them: each with "/" at its end, separated by ";".
    std::wstring text() const;

  private:
    std::vector<std::wstring> folders_;  // absolute
};

}  // namespace sg

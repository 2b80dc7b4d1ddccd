#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

// Operations on whole files. Paths are resolved by resolvePath(); no function throws. A database
// that is copied, moved or deleted is a whole one (WholeDatabaseFile).
namespace sg {

struct FileResult {
    bool ok = false;
    std::wstring error;  // on failure: what was being done, to which file, and why it failed
    explicit operator bool() const { return ok; }
};

struct CopyResult : FileResult {
    int64_t bytes = 0;  // copied
};

// Copies a file's content. The target must not exist, unless `append` adds to it. A folder, or a
// file onto itself, is refused; a failed copy leaves no new file.
SG_API CopyResult copyFile(std::wstring_view from, std::wstring_view to, bool append);

// The same, in place of what the target has, which stays as it is until the copy is whole. Its
// permissions and its time of the last change go with the content. A target that is read-only, a
// folder or a database that somebody has open is refused.
SG_API CopyResult copyOverFile(std::wstring_view from, std::wstring_view to);

// Moves or renames a file, also to another file system. The target must not exist.
SG_API FileResult renameFile(std::wstring_view from, std::wstring_view to);

// Removes a file; a folder is refused.
SG_API FileResult deleteFile(std::wstring_view path);

// Makes one folder, whose parent must exist. It is refused when something of that name does.
SG_API FileResult makeFolder(std::wstring_view path);

// Removes an empty folder.
SG_API FileResult removeFolder(std::wstring_view path);

SG_API bool isFile(std::wstring_view path);
SG_API bool isFolder(std::wstring_view path);
SG_API bool isRegularFile(std::wstring_view path);  // neither a folder nor a device or the like
// There, and nobody may write it or this process may not. What nobody may write is read-only for
// the system's administrator too.
SG_API bool isReadOnly(std::wstring_view path);
SG_API std::optional<int64_t> fileSize(std::wstring_view path);        // bytes; 0 for a folder
SG_API std::optional<std::timespec> fileTime(std::wstring_view path);  // of its last change

// The whole content; nullopt when the file cannot be read. And writing it so that the file has
// either the old content or the new one at any time: a file beside it is synced and renamed.
SG_API std::optional<std::string> readFile(std::wstring_view path);
// The first `count` bytes, or as many as there are.
SG_API std::optional<std::string> readFileStart(std::wstring_view path, size_t count);
SG_API FileResult writeFileAtomically(std::wstring_view path, std::string_view content);

// Names for temporary files. None is answered twice, and files that were made under them are
// removed when the object ends.
class SG_API TemporaryFiles {
  public:
    TemporaryFiles() = default;
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles();

    // A path that no file has: the pattern's name and three or more hexadecimal digits. An empty
    // pattern is "$VL~~"; without a folder that of the pattern counts, else the temporary folder;
    // without an extension that of the pattern counts. An extension may have its dot or not.
    std::wstring next(std::wstring_view pattern, std::wstring_view folder,
                      std::optional<std::wstring_view> extension);

  private:
    unsigned counter_ = 0;
    std::vector<std::wstring> names_;
};

}  // namespace sg

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "support/failure_file.h"

namespace sg {

class ArchiveReader;
class ArchiveWriter;

// A ZIP file: one that is made,
//
//     archive.NewArchive(L"C:/out.zip") && archive.AppendFiles(L"C:/plans/*.dwg", false) &&
//         archive.WriteAndClose();
//
// or one that is unpacked,
//
//     archive.OpenArchive(L"C:/in.zip") && archive.ExtractAll(L"C:/plans");
//
// Every operation answers whether it succeeded; the failed ones leave an account of why. Paths are
// found as every file name is: "/" and "\" both separate, and what does not exist as it is written
// is found ignoring case.
class Archive {
  public:
    Archive();
    // As Close().
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    // Begins an archive. The folder of `path` must exist. A file that has the name stays what it is
    // until WriteAndClose().
    bool NewArchive(std::wstring_view path);

    // Opens an archive for unpacking.
    bool OpenArchive(std::wstring_view path);

    // With `discard` every file that is appended from now on is stored under its bare name, and no
    // entries stand for folders.
    void SetDiscardPaths(bool discard) { discardsPaths_ = discard; }

    // Appends the files that match a pattern: a path whose last part may have "*" and "?". With
    // `recurse` those in the folders below are searched too, except in linked ones. A file is
    // stored under its path from the pattern's folder on. Folders do not match, nor does the
    // archive itself. False when nothing matches, and when one of the files cannot be read.
    bool AppendFiles(std::wstring_view pattern, bool recurse);

    // Appends one file, or a folder with all that is in it, under its name. With `saveExtraPath`
    // the folders that `path` names go in front of the name; a root, a drive letter and ".." do
    // not.
    bool AppendFileOrFolder(std::wstring_view path, bool saveExtraPath);

    // Writes the archive and gives it its name once it is whole. After a failure nothing is left.
    // In any case the archive is closed then.
    bool WriteAndClose();

    // Unpacks everything into a folder, which is made where it is missing. Files that exist are
    // replaced. An archive in which any entry leads out of the folder, is a link, has a password or
    // declares what cannot be is refused whole. Times are kept.
    bool ExtractAll(std::wstring_view folder);

    // Drops what was not written.
    void Close();

    // Writes what failed last, and why, as XML.
    bool SaveLastError(const std::wstring& file) const {
        return saveFailureAccount(file, lastError_);
    }
    const FailureAccount& lastError() const { return lastError_; }

  private:
    bool refuse(const wchar_t* operation, std::wstring_view subject, std::wstring_view reason);
    std::wstring storedName(std::wstring_view path) const;
    bool appendMatches(const std::wstring& folder, const std::wstring& stored,
                       const std::wstring& pattern, bool recurse, size_t& count);
    bool appendFolder(const std::wstring& folder, const std::wstring& stored);
    bool appendFile(const std::wstring& path, const std::wstring& stored);

    std::unique_ptr<ArchiveWriter> writer_;  // at most one of the two
    std::unique_ptr<ArchiveReader> reader_;
    bool discardsPaths_ = false;
    std::wstring path_;
    FailureAccount lastError_;
};

}  // namespace sg

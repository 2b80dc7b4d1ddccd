#pragma once

#include <zip.h>

#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/replacement_file.h"

namespace sg {

// A ZIP file that is made. Files are noted when they are added and read when the archive is
// written.
class ArchiveWriter {
  public:
    ArchiveWriter() = default;
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    // Begins an archive in the folder of `file`, which must exist. Nothing has that name before
    // finish(), and what has it stays.
    bool create(const std::wstring& file);

    // Adds a readable file, or an entry that stands for a folder, under a stored name, whose
    // folders are separated by "/". A file whose stored name is taken, in any case, gets a number;
    // a folder is stored once.
    bool addFile(const std::wstring& file, const std::wstring& storedName);
    bool addFolder(const std::wstring& folder, const std::wstring& storedName);

    // Whether a file is the archive itself, as it was or as it is being made.
    bool isOwnFile(const std::wstring& file) const;

    // Compresses and writes everything and gives the archive its name. An archive without entries
    // is written too. After a failure nothing is left of it.
    bool finish();

    // Why the last operation failed.
    const std::wstring& reason() const { return reason_; }

  private:
    bool fail(std::wstring reason);
    bool failAt(const std::wstring& file, int code);
    bool failInLibrary(const std::wstring& file);
    std::wstring freeName(const std::wstring& storedName);
    bool setTime(zip_uint64_t index, std::time_t changed);
    bool writeEntries();

    struct Discard {
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };
    std::wstring file_;
    std::unique_ptr<ReplacementFile> target_;
    std::unique_ptr<zip_t, Discard> archive_;  // writes to target_
    std::unordered_set<std::wstring> names_;   // stored ones, lower-cased
    std::wstring reason_;
};

}  // namespace sg

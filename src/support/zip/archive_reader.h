#pragma once

#include <zip.h>

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/zip/extraction_folder.h"
#include "support/zip/zip_directory.h"

namespace sg {

// A ZIP file that is unpacked. Its entries are either stored or deflated.
class ArchiveReader {
  public:
    // Opens a file and reads its directory. False when it is no sound ZIP file.
    bool open(const std::wstring& file);

    // Unpacks everything into a folder, which is made where it is missing. What every entry
    // declares is looked at first: one whose name leads out of the folder, a link, one with a
    // password, more bytes than are free, or than its packed bytes can hold, and nothing is
    // written. An entry that turns out to be damaged ends the work; those before it stay.
    bool extractAll(const std::wstring& folder);

    // Why the last operation failed.
    const std::wstring& reason() const { return reason_; }

  private:
    struct Entry {
        zip_uint64_t index = 0;
        ExtractionFolder::Path path;
        bool isFolder = false;
        uint64_t size = 0;
        std::time_t changed = 0;
    };

    bool fail(std::wstring reason);
    bool failAt(std::wstring_view name, std::wstring_view reason);
    bool openLibrary(int descriptor);
    bool directoriesAgree();
    bool planEntries(std::vector<Entry>& plan);
    bool planEntry(zip_uint64_t index, Entry& entry);
    std::wstring nameOf(zip_uint64_t index);
    std::time_t timeOf(zip_uint64_t index);
    bool extractFile(const Entry& entry, ExtractionFolder& target);
    bool copyContent(zip_file_t* from, const Entry& entry, ExtractionFolder& target);

    struct Discard {
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };
    ZipDirectory directory_;
    std::unique_ptr<zip_t, Discard> archive_;
    std::wstring reason_;
};

}  // namespace sg

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/jet/database/database.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/storage/storage.h"

// The files of a compaction. For compact*.cpp alone.
namespace sg::jet::compaction {

// The database that is read: nobody else has it open while the object lives. One that may not be
// written is read beside others, as it is at one moment.
class SourceFile {
  public:
    // Brings what a log holds into the file first. Throws what Storage::open() throws; with
    // `toReplace` CannotOpenFile for a file that may not be written.
    SourceFile(const std::wstring& path, const StorageOptions& options, bool toReplace);
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    const PageStore& pages() const { return *pages_; }

  private:
    bool lock(const std::wstring& path, const StorageOptions& options);

    std::unique_ptr<File> file_;
    std::unique_ptr<PageStore> pages_;
    std::optional<Storage::ReadScope> scope_;
};

// A database that is made under a name beside the one that it gets in the end. Until then the
// object's end removes it.
class NewFile {
  public:
    // Takes a name that nobody uses; what a program that died has left under it goes.
    NewFile(const std::wstring& destination, const Locale& locale, const StorageOptions& options);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    Database& database() { return *database_; }
    const std::wstring& name() const { return name_; }

    // Closes the database; everything is in the file then, and on the disk.
    void finish();
    // Gives it its name, which another file may have had. The folder is still to be synced.
    void putInPlace();

  private:
    FileLayer& files_;
    std::wstring destination_;
    std::wstring name_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<File> lock_;  // between the close and the end
};

FileLayer& filesOf(const StorageOptions& options);
bool exists(FileLayer& files, const std::wstring& path);

}  // namespace sg::jet::compaction

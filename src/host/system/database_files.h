#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/jet/storage/storage.h"

namespace sg {

// The options with which this host opens databases: a file that a link leads to is found as every
// file name is (resolvePath()), and reportForeignLock() is called before the first change.
SG_API jet::StorageOptions databaseOptions();

// Tells on a line of standard error when another program's lock file lies beside the database, and
// who is entered in it: such a program does not heed our locks.
SG_API void reportForeignLock(const std::wstring& database);

// A database file that is whole by itself, for who copies, moves or replaces it: what stands in the
// log beside it, of programs that have it open or have died, is brought into the file, and the log
// of dead ones goes. The file stays as it is then while the object lives. Other files, and those
// without a log, are whole as they are. Paths as resolvePath() gives them.
class SG_API WholeDatabaseFile {
  public:
    explicit WholeDatabaseFile(const std::wstring& path);
    ~WholeDatabaseFile();
    WholeDatabaseFile(const WholeDatabaseFile&) = delete;
    WholeDatabaseFile& operator=(const WholeDatabaseFile&) = delete;

    // False when somebody is at work on the file alone, or does not let it come to rest.
    bool isWhole() const { return isWhole_; }

  private:
    bool settle();

    std::unique_ptr<jet::Storage> storage_;
    std::optional<jet::Storage::ReadScope> scope_;  // of storage_
    bool isWhole_ = true;
};

// Somebody has the database open; false for other files.
SG_API bool isDatabaseInUse(const std::wstring& path);

}  // namespace sg

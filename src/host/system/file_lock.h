#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/export.h"

namespace sg {

// Says that a process has a file open to change it. A lock file beside it, "<name>.lock", holds who
// it is, and the system's lock on that file goes with the process, however it ends.
class SG_API FileLock {
  public:
    FileLock() = default;
    // Locks `file`, an absolute path with "/" between folders.
    explicit FileLock(const std::wstring& file);
    ~FileLock() { release(); }
    FileLock(FileLock&& other) noexcept { *this = std::move(other); }
    FileLock& operator=(FileLock&& other) noexcept;

    // Whether nobody else has the file. True also where no lock file can be made: a folder that
    // nobody may write to.
    bool isFree() const { return holder_.empty(); }
    // Who has it, for a person: "process 123 of eve on host".
    const std::wstring& holder() const { return holder_; }

    void release();

  private:
    std::string path_;
    int descriptor_ = -1;
    std::wstring holder_;
};

}  // namespace sg

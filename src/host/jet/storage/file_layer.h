#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/export.h"

// What the storage asks of the operating system. The product stands on posixFiles(); tests put a
// layer that records or fails in its place. Failures are Error: FileNotFound, InvalidPath (a folder
// of the path is missing), CannotOpenFile (permission) from opening, DiskFull and DiskOrNetwork
// from everything; the detail has the system's words.
namespace sg::jet {

enum class FileAccess {
    Read,
    ReadWrite,
    ReadWriteOrCreate,
    CreateNew,  // fails with DatabaseExists when the file is there
};

enum class LockKind { Shared, Exclusive };

// Which file it is, whatever it is called.
struct FileIdentity {
    uint64_t device = 0;
    uint64_t number = 0;

    auto operator<=>(const FileIdentity&) const = default;
};

// An open file. Reads and writes of one object may come from several threads.
class SG_API File {
  public:
    virtual ~File() = default;

    // Fills `into` from `offset` on; answers how many bytes there were, fewer only at the end.
    virtual size_t read(uint64_t offset, std::span<uint8_t> into) const = 0;
    // Writes all of `bytes`; the file grows where it must.
    virtual void write(uint64_t offset, std::span<const uint8_t> bytes) = 0;
    virtual void truncate(uint64_t size) = 0;
    // Returns when everything that was written is on the disk.
    virtual void sync() = 0;
    virtual uint64_t size() const = 0;
    virtual FileIdentity identity() const = 0;

    // Locks on byte ranges, which may lie beyond the end. They belong to this object: another File
    // on the same file conflicts with it also in the same process, and they vanish with the
    // object or the process. None of them waits; locking again changes the kind.
    virtual bool tryLock(LockKind kind, uint64_t offset, uint64_t size = 1) = 0;
    virtual void unlock(uint64_t offset, uint64_t size = 1) = 0;
    // True when another holds a lock that stands against this one.
    virtual bool isLockedByOther(LockKind kind, uint64_t offset, uint64_t size = 1) const = 0;

    // The first `size` bytes as memory that all who map the file share, aligned to a page and valid
    // while the object lives. The file must be that long and keep its length.
    virtual std::span<uint8_t> map(size_t size) = 0;
};

class SG_API FileLayer {
  public:
    virtual ~FileLayer() = default;

    virtual std::unique_ptr<File> open(const std::wstring& path, FileAccess access) = 0;
    // A zero identity when there is no such file.
    virtual FileIdentity identityOf(const std::wstring& path) = 0;
    // Takes the place of a file that is called `to`.
    virtual void rename(const std::wstring& from, const std::wstring& to) = 0;
    // A second name for a file. False where the file system has no such names or `name` is on
    // another one; throws DatabaseExists when something is called so already.
    virtual bool addName(const std::wstring& file, const std::wstring& name) = 0;
    // The file's path without a symbolic link at its end; `path` itself when it is none.
    virtual std::wstring followLinks(const std::wstring& path) = 0;
    // Gives the file `to` the permissions of `from`, and its owner and group as far as may be.
    virtual void copyPermissions(const std::wstring& from, const std::wstring& to) = 0;
    // Nothing happens when there is no such file.
    virtual void remove(const std::wstring& path) = 0;
    // Returns when the names in the folder of `path` are on the disk as they are now.
    virtual void syncFolder(const std::wstring& path) = 0;
};

// The operating system's files. Locks are open file description locks.
SG_API FileLayer& posixFiles();

// The user's and the machine's name as other users shall see them.
SG_API std::wstring currentUserName();
SG_API std::wstring currentMachineName();

// Error numbers of the storage that are not among those of format readers.
inline constexpr int DatabaseExists = 3204;

}  // namespace sg::jet

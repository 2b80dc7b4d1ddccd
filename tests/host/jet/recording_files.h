#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/jet/storage/file_layer.h"

// Files in memory that remember every change in its order, so that a test can ask what a disk may
// hold after a loss of power at any moment, and that can be made to fail.
namespace sg::jet {

class RecordingFiles final : public FileLayer {
  public:
    using Bytes = std::vector<uint8_t>;
    using Disk = std::map<std::wstring, Bytes>;

    enum class Kind { Write, Truncate, Sync, Create, Remove, Rename, AddName, SyncFolder, Mark };
    struct Operation {
        Kind kind;
        uint64_t file = 0;  // its number; of a mark, the mark
        uint64_t offset = 0;
        Bytes bytes{};
        std::wstring name{};
        std::wstring newName{};
    };

    explicit RecordingFiles(const Disk& disk);

    std::unique_ptr<File> open(const std::wstring& path, FileAccess access) override;
    FileIdentity identityOf(const std::wstring& path) override;
    void rename(const std::wstring& from, const std::wstring& to) override;
    bool addName(const std::wstring& file, const std::wstring& name) override;
    // There are no links, and everybody may do everything.
    std::wstring followLinks(const std::wstring& path) override { return path; }
    void copyPermissions(const std::wstring&, const std::wstring&) override {}
    void remove(const std::wstring& path) override;
    void syncFolder(const std::wstring& path) override;

    void mark(uint64_t number) { record({.kind = Kind::Mark, .file = number}); }
    const std::vector<Operation>& operations() const { return operations_; }
    // The files as they are now.
    Disk disk() const;
    const Bytes& content(const std::wstring& path) const { return names_.at(path)->bytes; }
    bool has(const std::wstring& path) const { return names_.contains(path); }

    // What the disk may hold when the power goes after `count` operations: what was synced, and of
    // the rest what `random` leaves, torn and in any order. Without `random`: everything that was
    // written, as after a kill.
    Disk diskAfter(size_t count, std::mt19937* random) const;

    // Called before each change; may throw in its place.
    std::function<void(const Operation&)> onOperation;

  private:
    friend class RecordedFile;

    struct Lock {
        const void* owner;
        LockKind kind;
        uint64_t start, end;
    };
    struct Inode {
        uint64_t number;
        Bytes bytes{};
        bool isShared = false;  // mapped memory: of no account after a crash
        std::list<Lock> locks{};
    };
    struct Replay;

    void record(Operation operation);

    uint64_t lastNumber_ = 0;
    Disk start_;
    std::map<std::wstring, std::shared_ptr<Inode>> names_;
    std::map<std::wstring, uint64_t> startNumbers_;
    std::vector<Operation> operations_;
};

}  // namespace sg::jet

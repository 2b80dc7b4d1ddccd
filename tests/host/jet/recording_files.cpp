#include "host/jet/recording_files.h"

#include <algorithm>
#include <cstring>

#include "host/jet/format/error.h"

namespace sg::jet {

namespace {

constexpr size_t sectorSize = 512;

void writeInto(RecordingFiles::Bytes& bytes, uint64_t offset, const uint8_t* from, size_t size) {
    if (bytes.size() < offset + size) bytes.resize(offset + size);
    std::memcpy(bytes.data() + offset, from, size);
}

}  // namespace

class RecordedFile final : public File {
  public:
    RecordedFile(RecordingFiles& files, std::shared_ptr<RecordingFiles::Inode> inode,
                 bool isWritable)
        : files_(&files), inode_(std::move(inode)), isWritable_(isWritable) {}
    ~RecordedFile() override {
        inode_->locks.remove_if([this](const auto& lock) { return lock.owner == this; });
    }

    size_t read(uint64_t offset, std::span<uint8_t> into) const override {
        if (offset >= inode_->bytes.size()) return 0;
        const size_t size = std::min<size_t>(into.size(), inode_->bytes.size() - offset);
        std::memcpy(into.data(), inode_->bytes.data() + offset, size);
        return size;
    }
    void write(uint64_t offset, std::span<const uint8_t> bytes) override {
        requireWritable();
        record({.kind = RecordingFiles::Kind::Write,
                .file = inode_->number,
                .offset = offset,
                .bytes = {bytes.begin(), bytes.end()}});
        writeInto(inode_->bytes, offset, bytes.data(), bytes.size());
    }
    void truncate(uint64_t size) override {
        requireWritable();
        record({.kind = RecordingFiles::Kind::Truncate, .file = inode_->number, .offset = size});
        inode_->bytes.resize(size);
    }
    void sync() override { record({.kind = RecordingFiles::Kind::Sync, .file = inode_->number}); }
    uint64_t size() const override { return inode_->bytes.size(); }
    FileIdentity identity() const override { return {1, inode_->number}; }

    bool tryLock(LockKind kind, uint64_t offset, uint64_t size) override {
        if (isLockedByOther(kind, offset, size)) return false;
        unlock(offset, size);
        inode_->locks.push_back({this, kind, offset, offset + size});
        return true;
    }
    void unlock(uint64_t offset, uint64_t size) override {
        inode_->locks.remove_if([&](const auto& lock) {
            return lock.owner == this && lock.start >= offset && lock.end <= offset + size;
        });
    }
    bool isLockedByOther(LockKind kind, uint64_t offset, uint64_t size) const override {
        return std::any_of(inode_->locks.begin(), inode_->locks.end(), [&](const auto& lock) {
            return lock.owner != this && lock.start < offset + size && offset < lock.end &&
                   (kind == LockKind::Exclusive || lock.kind == LockKind::Exclusive);
        });
    }

    std::span<uint8_t> map(size_t size) override {
        inode_->isShared = true;
        return {inode_->bytes.data(), size};
    }

  private:
    void record(RecordingFiles::Operation operation) {
        if (!inode_->isShared) files_->record(std::move(operation));
    }
    void requireWritable() const {
        if (!isWritable_) throw Error(DiskOrNetwork);
    }

    RecordingFiles* files_;
    std::shared_ptr<RecordingFiles::Inode> inode_;
    bool isWritable_;
};

RecordingFiles::RecordingFiles(const Disk& disk) : start_(disk) {
    for (const auto& [name, bytes] : disk) {
        startNumbers_[name] = ++lastNumber_;
        names_[name] = std::make_shared<Inode>(Inode{.number = lastNumber_, .bytes = bytes});
    }
}

void RecordingFiles::record(Operation operation) {
    if (onOperation) onOperation(operation);
    operations_.push_back(std::move(operation));
}

std::unique_ptr<File> RecordingFiles::open(const std::wstring& path, FileAccess access) {
    const auto found = names_.find(path);
    const bool creates = access == FileAccess::ReadWriteOrCreate || access == FileAccess::CreateNew;
    if (found != names_.end() && access == FileAccess::CreateNew) throw Error(DatabaseExists);
    if (found == names_.end() && !creates) throw Error(FileNotFound, {path});
    if (found == names_.end()) {
        record({.kind = Kind::Create, .file = lastNumber_ + 1, .name = path});
        names_[path] = std::make_shared<Inode>(Inode{.number = ++lastNumber_});
    }
    return std::make_unique<RecordedFile>(*this, names_[path], access != FileAccess::Read);
}

FileIdentity RecordingFiles::identityOf(const std::wstring& path) {
    const auto found = names_.find(path);
    return found == names_.end() ? FileIdentity{} : FileIdentity{1, found->second->number};
}

void RecordingFiles::rename(const std::wstring& from, const std::wstring& to) {
    record({.kind = Kind::Rename, .name = from, .newName = to});
    names_[to] = names_.at(from);
    names_.erase(from);
}

bool RecordingFiles::addName(const std::wstring& file, const std::wstring& name) {
    if (names_.contains(name)) throw Error(DatabaseExists);
    record({.kind = Kind::AddName, .name = file, .newName = name});
    names_[name] = names_.at(file);
    return true;
}

void RecordingFiles::remove(const std::wstring& path) {
    if (!names_.contains(path)) return;
    record({.kind = Kind::Remove, .name = path});
    names_.erase(path);
}

void RecordingFiles::syncFolder(const std::wstring&) {
    record({.kind = Kind::SyncFolder});
}

RecordingFiles::Disk RecordingFiles::disk() const {
    Disk disk;
    for (const auto& [name, inode] : names_) {
        if (!inode->isShared) disk[name] = inode->bytes;
    }
    return disk;
}

// The two layers of a disk: what is safe, and what is on its way.
struct RecordingFiles::Replay {
    std::map<uint64_t, Bytes> contents;
    std::map<uint64_t, std::vector<const Operation*>> pending;
    std::map<std::wstring, uint64_t> names;
    std::vector<const Operation*> pendingNames;

    void apply(const Operation& operation) {
        Bytes& bytes = contents[operation.file];
        if (operation.kind == Kind::Truncate) {
            bytes.resize(operation.offset);
        } else {
            writeInto(bytes, operation.offset, operation.bytes.data(), operation.bytes.size());
        }
    }
    void applyTorn(const Operation& operation, std::mt19937& random) {
        if (operation.kind == Kind::Truncate) return apply(operation);
        for (size_t at = 0; at < operation.bytes.size();) {
            // Sectors are whole where they stand in the file.
            const size_t size = std::min<size_t>(operation.bytes.size() - at,
                                                 sectorSize - (operation.offset + at) % sectorSize);
            if (random() % 2 != 0) {
                writeInto(contents[operation.file], operation.offset + at,
                          operation.bytes.data() + at, size);
            }
            at += size;
        }
    }
    void applyName(const Operation& operation) {
        if (operation.kind == Kind::Create) {
            names[operation.name] = operation.file;
        } else if (operation.kind == Kind::Remove) {
            names.erase(operation.name);
        } else if (names.contains(operation.name)) {
            names[operation.newName] = names[operation.name];
            if (operation.kind == Kind::Rename) names.erase(operation.name);
        }
    }
    void flushFile(uint64_t file) {
        for (const Operation* operation : pending[file]) {
            apply(*operation);
        }
        pending[file].clear();
    }
    void flushNames() {
        for (const Operation* operation : pendingNames) {
            applyName(*operation);
        }
        pendingNames.clear();
    }
    void take(const Operation& operation) {
        switch (operation.kind) {
            case Kind::Write:
            case Kind::Truncate:
                pending[operation.file].push_back(&operation);
                break;
            case Kind::Sync:
                flushFile(operation.file);
                break;
            case Kind::SyncFolder:
                flushNames();
                break;
            case Kind::Mark:
                break;
            default:
                pendingNames.push_back(&operation);
        }
    }
    void losePower(std::mt19937& random) {
        // Names go to the disk in their order.
        pendingNames.resize(random() % (pendingNames.size() + 1));
        for (auto& [file, operations] : pending) {
            const unsigned luck = random() % 4;  // of four disks one loses all, one nothing
            if (luck == 0) operations.clear();
            if (luck > 1) std::shuffle(operations.begin(), operations.end(), random);
            for (const Operation* operation : operations) {
                const unsigned fate = luck == 1 ? 1 : random() % 3;
                if (fate == 1) apply(*operation);
                if (fate == 2) applyTorn(*operation, random);
            }
            operations.clear();
        }
    }
};

RecordingFiles::Disk RecordingFiles::diskAfter(size_t count, std::mt19937* random) const {
    Replay replay;
    for (const auto& [name, number] : startNumbers_) {
        replay.names[name] = number;
        replay.contents[number] = start_.at(name);
    }
    for (size_t i = 0; i < count; ++i) {
        replay.take(operations_[i]);
    }
    if (random != nullptr) replay.losePower(*random);
    for (const auto& [file, operations] : std::map(replay.pending)) {
        replay.flushFile(file);
    }
    replay.flushNames();
    Disk disk;
    for (const auto& [name, number] : replay.names) {
        disk[name] = replay.contents[number];
    }
    return disk;
}

}  // namespace sg::jet

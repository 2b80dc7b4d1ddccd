#include "host/jet/storage/shared_state.h"

#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "base/encoding.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

constexpr uint32_t sharedMagic = 0x53474753;  // "SGGS"
constexpr uint32_t sharedVersion = 1;

// Locks stand on bytes far behind the file's end.
constexpr uint64_t lockBase = uint64_t(1) << 40;
constexpr uint64_t attachingByte = lockBase;
constexpr uint64_t writingByte = lockBase + 1;
constexpr uint64_t checkpointByte = lockBase + 2;
constexpr uint64_t slotBytes = lockBase + 1024;
constexpr uint64_t recordBytes = uint64_t(1) << 41;

// Another one's recovery of a long log passes under the attaching lock.
constexpr auto attachingPatience = std::chrono::seconds(20);

// An owner without a name has just taken the record, or is giving it up.
constexpr int nameAttempts = 10;

void putName(char (&into)[64], const std::wstring& name) {
    std::string bytes = toUtf8(name);
    if (bytes.size() >= sizeof into) {
        size_t end = sizeof into - 1;
        while (end > 0 && (static_cast<unsigned char>(bytes[end]) & 0xC0) == 0x80)
            --end;
        bytes.resize(end);
    }
    std::memset(into, 0, sizeof into);
    std::memcpy(into, bytes.data(), bytes.size());
}

std::wstring getName(const char (&from)[64]) {
    return fromUtf8({from, ::strnlen(from, sizeof from)});
}

// A note says who has a record: the key and the slot, never 0.
uint64_t noteOf(uint64_t key, size_t slot) {
    return key << 16 | (slot + 1);
}

}  // namespace

SharedState::SharedState() : own_(std::make_unique<SharedBlock>()), block_(own_.get()) {}

SharedState::SharedState(FileLayer& layer, const std::wstring& path,
                         const std::wstring& databaseName)
    : layer_(&layer), path_(path), databaseName_(databaseName) {
    // The last one that closes removes the file, perhaps between our opening and our lock.
    do {
        file_ = layer.open(path, FileAccess::ReadWriteOrCreate);
        if (!lockAttaching()) {
            throw Error(FileInUse, {databaseName_},
                        {.file = path, .detail = L"another program is opening it"});
        }
    } while (layer.identityOf(path) != file_->identity());
    if (file_->size() < sizeof(SharedBlock)) {
        // Written out, not stretched: memory without room on the disk behind it would be fatal.
        file_->write(0, std::vector<uint8_t>(sizeof(SharedBlock)));
    }
    block_ = reinterpret_cast<SharedBlock*>(file_->map(sizeof(SharedBlock)).data());
}

SharedState::~SharedState() {
    if (joined_) {
        setPin(0);
    }
}

bool SharedState::isAlone() const {
    return file_ == nullptr || !file_->isLockedByOther(LockKind::Exclusive, slotBytes, maxUsers);
}

void SharedState::clear() {
    std::memset(static_cast<void*>(block_), 0, sizeof(SharedBlock));
    block_->magic = sharedMagic;
    block_->version = sharedVersion;
}

void SharedState::join(const UserName& name) {
    if (file_ != nullptr) {
        if (block_->magic != sharedMagic || block_->version != sharedVersion) {
            throw Error(FileInUse, {databaseName_},
                        {.file = path_, .detail = L"another version of the program has it open"});
        }
        while (slot_ < maxUsers && !file_->tryLock(LockKind::Exclusive, slotBytes + slot_)) {
            ++slot_;
        }
        if (slot_ == maxUsers) {
            slot_ = 0;
            throw Error(FileInUse, {databaseName_}, {.file = path_, .detail = L"too many users"});
        }
    }
    joined_ = true;
    setPin(0);
    putName(user().user, name.user);
    putName(user().machine, name.machine);
    // What the slot's former holder did not take away.
    for (std::atomic<uint64_t>& note : block_->locked) {
        uint64_t seen = note.load();
        if ((seen & 0xffff) == slot_ + 1) note.compare_exchange_strong(seen, 0);
    }
}

bool SharedState::lockAttaching() {
    if (file_ == nullptr) return true;
    const auto end = std::chrono::steady_clock::now() + attachingPatience;
    while (!file_->tryLock(LockKind::Exclusive, attachingByte)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void SharedState::unlockAttaching() {
    if (file_ != nullptr) file_->unlock(attachingByte);
}

bool SharedState::isInPlace() const {
    return file_ != nullptr && layer_->identityOf(path_) == file_->identity();
}

void SharedState::remove() {
    if (isInPlace()) layer_->remove(path_);
}

bool SharedState::isAlive(size_t slot) const {
    return slot == slot_ ||
           (file_ != nullptr && file_->isLockedByOther(LockKind::Exclusive, slotBytes + slot));
}

uint64_t SharedState::oldestPinned(uint64_t sequence) const {
    uint64_t oldest = sequence;
    for (size_t slot = 0; slot < maxUsers; ++slot) {
        const uint64_t pin = block_->users[slot].pin.load(std::memory_order_seq_cst);
        // The test for life costs a system call, and only an old pin is worth it.
        if (pin != 0 && pin - 1 < oldest && isAlive(slot)) {
            oldest = pin - 1;
        }
    }
    return oldest;
}

bool SharedState::tryLockWriting() {
    if (file_ != nullptr && !file_->tryLock(LockKind::Exclusive, writingByte)) return false;
    block_->writer.store(slot_, std::memory_order_relaxed);
    return true;
}

void SharedState::unlockWriting() {
    if (file_ != nullptr) file_->unlock(writingByte);
}

bool SharedState::tryLockCheckpoint() {
    return file_ == nullptr || file_->tryLock(LockKind::Exclusive, checkpointByte);
}

void SharedState::unlockCheckpoint() {
    if (file_ != nullptr) file_->unlock(checkpointByte);
}

UserName SharedState::nameOf(size_t slot) const {
    if (slot >= maxUsers) return {};
    const SharedUser& user = block_->users[slot];
    return {getName(user.user), getName(user.machine)};
}

UserName SharedState::writerName() const {
    return nameOf(block_->writer.load());
}

std::optional<UserName> SharedState::lockRecord(uint64_t key) {
    UserName owner;
    for (int attempt = 0; attempt < nameAttempts && owner.user.empty(); ++attempt) {
        if (attempt > 0) std::this_thread::yield();
        if (file_ == nullptr || file_->tryLock(LockKind::Exclusive, recordBytes + key)) {
            note(key);
            return std::nullopt;
        }
        owner = nameOfOwner(key);
    }
    return owner;
}

std::optional<UserName> SharedState::recordOwner(uint64_t key) const {
    if (file_ == nullptr || !file_->isLockedByOther(LockKind::Exclusive, recordBytes + key)) {
        return std::nullopt;
    }
    return nameOfOwner(key);
}

UserName SharedState::nameOfOwner(uint64_t key) const {
    for (const std::atomic<uint64_t>& note : block_->locked) {
        const uint64_t seen = note.load();
        const size_t slot = (seen & 0xffff) - 1;
        if (seen >> 16 == key && (seen & 0xffff) != 0 && slot < maxUsers && isAlive(slot)) {
            return nameOf(slot);
        }
    }
    return UserName{};
}

void SharedState::unlockRecord(uint64_t key) {
    forget(key);
    if (file_ != nullptr) file_->unlock(recordBytes + key);
}

void SharedState::note(uint64_t key) {
    // A full table only costs the name in a conflict's text.
    for (size_t i = 0; i < SharedBlock::recordLocks; ++i) {
        uint64_t free = 0;
        std::atomic<uint64_t>& place = block_->locked[(key + i) % SharedBlock::recordLocks];
        if (place.load(std::memory_order_relaxed) == 0 &&
            place.compare_exchange_strong(free, noteOf(key, slot_))) {
            return;
        }
    }
}

void SharedState::forget(uint64_t key) {
    for (size_t i = 0; i < SharedBlock::recordLocks; ++i) {
        uint64_t own = noteOf(key, slot_);
        std::atomic<uint64_t>& place = block_->locked[(key + i) % SharedBlock::recordLocks];
        if (place.load(std::memory_order_relaxed) == own && place.compare_exchange_strong(own, 0)) {
            return;
        }
    }
}

}  // namespace sg::jet

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/jet/storage/file_layer.h"

// What the processes that have one database open know of each other: a small file beside it that
// all of them map, and locks on bytes of it. docs/formats/jet_log.md, "The shared file".
namespace sg::jet {

inline constexpr size_t maxUsers = 255;

struct SharedUser {
    std::atomic<uint64_t> pin;  // the oldest sequence that this one reads, plus 1; 0 when none
    char user[64];              // UTF-8, ended by a zero
    char machine[64];
    uint64_t reserved[7];
};
static_assert(sizeof(SharedUser) == 192);

struct SharedBlock {
    static constexpr size_t recordLocks = 1024;

    uint32_t magic;
    uint32_t version;
    std::atomic<uint64_t> generation;    // of the log; odd while it is being reset
    std::atomic<uint64_t> committed;     // the last commit's sequence
    std::atomic<uint64_t> target;        // commits up to here may be in the database file
    std::atomic<uint64_t> checkpointed;  // commits up to here are there, and synced
    std::atomic<uint64_t> salt;          // of the generation, as in the log's header
    std::atomic<uint64_t> baseSequence;
    std::atomic<uint64_t> basePages;
    std::atomic<uint64_t> pageCount;  // after the last commit
    std::atomic<uint64_t> failed;     // not 0 when a sync failed: the log must stay as it is
    std::atomic<uint64_t> writer;     // the slot of the last who took the write lock
    std::atomic<uint64_t> design;     // the last commit that changed the catalog or a definition
    uint64_t reserved[4];
    std::atomic<uint64_t> locked[recordLocks];  // record's key and slot, or 0: names for conflicts
    SharedUser users[maxUsers];
};
static_assert(std::atomic<uint64_t>::is_always_lock_free);
static_assert(sizeof(SharedBlock) == 128 + 8 * SharedBlock::recordLocks + 192 * maxUsers);

struct UserName {
    std::wstring user;
    std::wstring machine;
};

// One opener's part in the shared file.
class SG_API SharedState {
  public:
    // A part that nobody else sees, for readers that cannot write the shared file.
    SharedState();
    // Opens or makes the file and takes the attaching lock, during which nobody else opens or
    // closes the database. Throws FileInUse with `databaseName` when that lock is not to be had in
    // time, or the file belongs to another version of the program.
    SharedState(FileLayer& layer, const std::wstring& path, const std::wstring& databaseName);
    ~SharedState();
    SharedState(const SharedState&) = delete;
    SharedState& operator=(const SharedState&) = delete;

    SharedBlock& block() const { return *block_; }
    bool isPrivate() const { return file_ == nullptr; }

    // True when nobody else has the database open. Needs the attaching lock.
    bool isAlone() const;
    // Clears the block. Needs the attaching lock, and to be alone.
    void clear();
    // Takes a slot under these names; throws FileInUse when there are too many users.
    void join(const UserName& name);
    // False when the lock is not to be had in time.
    bool lockAttaching();
    void unlockAttaching();
    // True when the file is still the one that others will open.
    bool isInPlace() const;
    // Removes the file. Needs the attaching lock, and to be alone.
    void remove();

    // What this opener reads. Zero ends it.
    void setPin(uint64_t pin) { user().pin.store(pin, std::memory_order_seq_cst); }
    // The smallest sequence that somebody reads, or `sequence` when all read that or later.
    uint64_t oldestPinned(uint64_t sequence) const;

    // One writer, one checkpoint at a time over all processes. Between the threads of one opener
    // these locks do not tell apart; the callers have mutexes for that.
    bool tryLockWriting();
    void unlockWriting();
    bool tryLockCheckpoint();
    void unlockCheckpoint();
    // Who took the writing lock last.
    UserName writerName() const;

    // A lock on the record with this key (below 2^40). Nothing when it was taken; otherwise who
    // has it, without names when those are not known.
    std::optional<UserName> lockRecord(uint64_t key);
    // Who has a lock that this opener does not have itself.
    std::optional<UserName> recordOwner(uint64_t key) const;
    void unlockRecord(uint64_t key);

  private:
    SharedUser& user() const { return block_->users[slot_]; }
    bool isAlive(size_t slot) const;
    UserName nameOf(size_t slot) const;
    UserName nameOfOwner(uint64_t key) const;
    void note(uint64_t key);
    void forget(uint64_t key);

    FileLayer* layer_ = nullptr;
    std::wstring path_;
    std::wstring databaseName_;
    std::unique_ptr<File> file_;        // null when private
    std::unique_ptr<SharedBlock> own_;  // when private
    SharedBlock* block_ = nullptr;
    size_t slot_ = 0;
    bool joined_ = false;
};

}  // namespace sg::jet

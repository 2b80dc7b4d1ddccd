#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/checkpointer.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_cache.h"
#include "host/jet/storage/page_log.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/storage/shared_state.h"

namespace sg::jet {

class Snapshot;
class WriteTransaction;

enum class OpenMode {
    ReadOnly,   // beside others that read and write
    Shared,     // reads and writes beside others
    Exclusive,  // nobody else
};

struct StorageOptions {
    size_t cacheBytes = size_t(16) << 20;
    // From a commit to the begin of its way into the database file. 0: only on checkpoint() and
    // close().
    std::chrono::milliseconds checkpointDelay{250};
    // A commit that leaves the log longer than this brings the pages over itself.
    uint64_t logLimit = uint64_t(256) << 20;
    // A transaction that holds more than this writes pages to the log early (see savepoint()).
    size_t transactionBytes = size_t(64) << 20;
    // How long a writer waits for another one.
    std::chrono::milliseconds writerPatience{2000};
    // What other users are told about this one; empty: the system's names.
    UserName name{};
    // Null: posixFiles().
    FileLayer* files = nullptr;
    // From the path of a linked table's file, whole and with "/", to the path to open.
    std::function<std::wstring(const std::wstring&)> findFile{};
    // Called once with the database's path before it is written, or read to be compacted: the place
    // to look for another program's lock file (foreign_lock.h).
    std::function<void(const std::wstring&)> beforeWriting{};
};

// A database file with the log beside it, read and written in whole transactions by any number of
// processes. docs/formats/jet_log.md explains how.
//
// An object and everything that it hands out belong to one thread, and it outlives them.
class SG_API Storage final : public PageStore {
  public:
    // Opens a database file and completes or drops what an earlier program left in the log.
    // Throws FileNotFound, InvalidPath, UnrecognizedFormat, CannotOpenDatabase; FileInUse when the
    // modes conflict; CannotOpenFile when the file may not be read or, but for ReadOnly, not be
    // written, or is of a version that is only read.
    static std::unique_ptr<Storage> open(const std::wstring& path, OpenMode mode,
                                         const StorageOptions& options = {});
    // Makes an empty file and opens it exclusively. It has no pages: the first transaction must
    // make them. Throws DatabaseExists, InvalidPath, CannotOpenFile.
    static std::unique_ptr<Storage> create(const std::wstring& path, const Format& format,
                                           const StorageOptions& options = {});
    // close(), with errors passed over: what could not be done is left to the next open.
    ~Storage() override;
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;

    const Format& format() const override { return *format_; }
    const std::wstring& name() const override { return path_; }
    // Pages and their count are of the last committed state; while a ReadScope lives, of the one at
    // its begin, until this object begins to write.
    uint32_t pageCount() const override;
    PageRef read(uint32_t page) const override;
    using PageStore::read;

    // Holds one state of the database for all reads of an operation. Scopes may be nested. They
    // are meant to be short: while one lives, newer pages wait in the log.
    class SG_API ReadScope {
      public:
        explicit ReadScope(const Storage& storage) : storage_(&storage) { storage.enter(); }
        ~ReadScope() { storage_->leave(); }
        ReadScope(const ReadScope&) = delete;
        ReadScope& operator=(const ReadScope&) = delete;

      private:
        const Storage* storage_;
    };

    // The last committed state, unchanged by later commits, this object's own among them.
    std::unique_ptr<Snapshot> snapshot() const;

    // Changes with every commit of any process. It costs no system call.
    uint64_t changeCounter() const { return shared_->block().committed.load(); }
    // The commit that made the state which is read now.
    uint64_t sequence() const;
    // The last commit that changed the design; it may be one that is just being made. What was read
    // of the design in a state before it must be read again. It costs no system call.
    uint64_t designSequence() const { return shared_->block().design.load(); }

    // Begins to write. Throws ReadOnlyDatabase, InvalidOperation when a transaction is open
    // already, and 3186 with the other user's name when another process writes for too long.
    std::unique_ptr<WriteTransaction> beginWrite();
    // The open transaction; null when there is none.
    WriteTransaction* transaction() const { return transaction_; }
    // The open transaction's pages while there is one, otherwise this object's: one handle for
    // readers that live longer than a transaction.
    const PageStore& view() const { return view_; }

    // Pessimistic lock on a record, until unlockRecord(), close() or the process's end. One that is
    // given up while a transaction is open holds until that ends: what somebody else would read
    // under his lock before is older than what the transaction leaves there. Throws LockedByUser
    // with the other user's name and machine, for any record while another one's transaction has
    // locked very many; 3188 when this object has the lock.
    void lockRecord(RowId row);
    void unlockRecord(RowId row);

    bool isReadOnly() const { return mode_ == OpenMode::ReadOnly; }
    // True when everything that was committed stands in the database file, synced.
    bool checkpoint();
    // Brings the state that is read into the database file. True when the file has just that state,
    // which it keeps for as long as the ReadScope lives that must be there; false while somebody
    // reads an older one or is at work on the file.
    bool settle();
    // Brings everything over, as far as no other process reads an older state, and removes the log
    // when nobody else has the database open. An open transaction is rolled back.
    void close();

    // Locks a database file, opened for writing, against every open() for as long as `file` lives.
    // False when somebody has it open. For who reads or replaces the file as it is on the disk.
    static bool lockAlone(File& file);

    // The name under which open() put a log that did not belong to the database file as it was
    // found: another program had changed the file. Empty when there was none.
    const std::wstring& unrelatedLog() const { return unrelatedLog_; }

    size_t cachedPages() const { return cache_->size(); }

    static std::wstring logPath(const std::wstring& database) { return database + L"-log"; }
    static std::wstring sharedPath(const std::wstring& database) { return database + L"-share"; }

    static constexpr int savingLocked = 3186;
    static constexpr int lockedBySession = 3188;

  private:
    friend class Snapshot;
    friend class WriteTransaction;

    class View final : public PageStore {
      public:
        explicit View(const Storage& storage) : storage_(&storage) {}
        const Format& format() const override { return storage_->format(); }
        const std::wstring& name() const override { return storage_->name(); }
        uint32_t pageCount() const override;
        PageRef read(uint32_t page) const override;

      private:
        const Storage* storage_;
    };

    Storage(std::wstring path, OpenMode mode, const StorageOptions& options);

    void openFiles(const Format* newFormat);
    void lockDatabase();
    void attach(bool isNew);
    void requireSameFile(bool isAlone) const;
    void startAlone(bool isNew);
    void startPrivate();
    void setAsideLog();
    void detach();
    size_t findPageSize() const;
    void adoptFormat();
    void startCheckpointer();
    void abandon();
    void release();
    void checkStart();

    void enter() const;
    uint32_t enterLatest() const;
    void leave() const;
    void refresh() const;
    void publishPin() const;
    void takeWriting();
    void keepRecord(uint64_t key);
    void releaseRecords();
    FrameHandle fetch(uint32_t page) const;
    FrameHandle loadAsOf(uint32_t page, uint64_t sequence) const;
    void checkPage(uint32_t page, uint32_t pageCount) const;

    std::wstring path_;
    OpenMode mode_;
    StorageOptions options_;
    FileLayer* files_;
    const Format* format_ = nullptr;
    size_t pageSize_ = 0;
    std::unique_ptr<File> database_;
    std::unique_ptr<File> writable_;  // of a read-only opener that may write: for recovery
    std::unique_ptr<File> log_;       // null for a private reader of a database without a log
    std::unique_ptr<SharedState> shared_;
    std::unique_ptr<Checkpointer> checkpointer_;  // null when the file may not be written
    std::wstring unrelatedLog_;

    mutable std::unique_ptr<PageLog> logView_;
    mutable std::unique_ptr<PageCache> cache_;  // of the state that logView_ is at
    mutable int scopes_ = 0;
    mutable std::multiset<uint64_t> snapshots_;  // their sequences
    WriteTransaction* transaction_ = nullptr;
    std::set<uint64_t> recordLocks_;
    std::set<uint64_t> keptLocks_;  // given up, but for the open transaction
    View view_{*this};
    bool hasWritten_ = false;
    bool closed_ = false;
};

// One state of the database for as long as the object lives.
class SG_API Snapshot final : public PageStore {
  public:
    explicit Snapshot(const Storage& storage);
    ~Snapshot() override;
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    const Format& format() const override { return storage_->format(); }
    const std::wstring& name() const override { return storage_->name(); }
    uint32_t pageCount() const override { return pageCount_; }
    PageRef read(uint32_t page) const override;
    using PageStore::read;

    // The number of the commit that made the state.
    uint64_t sequence() const { return sequence_; }

  private:
    const Storage* storage_;
    uint64_t sequence_;
    uint32_t pageCount_;
    mutable PageCache changed_;  // pages that have changed since
};

}  // namespace sg::jet

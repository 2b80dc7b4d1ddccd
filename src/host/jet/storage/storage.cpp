#include "host/jet/storage/storage.h"

#include <algorithm>
#include <thread>

#include "host/jet/format/error.h"
#include "host/jet/storage/write_transaction.h"

namespace sg::jet {
namespace {

// Pages that one snapshot keeps in the form that they had.
constexpr size_t snapshotPages = 64;

// A target is never newer than the last commit, so that a second look is rare and a third a wonder.
constexpr int maxAttempts = 10000;

// Of locks that a transaction keeps to its end.
constexpr size_t mostKept = 512;

constexpr uint64_t keyOf(RowId row) {
    return uint64_t(row.page) << 16 | row.row;
}

// No record has this key.
constexpr uint64_t allRecords = keyOf({0xffffff, 0xffff});

}  // namespace

// --- reading ---

void Storage::refresh() const {
    if (logView_->isCurrent(shared_->block())) return;
    logView_->setNeeded(snapshots_.empty() ? logView_->sequence() : *snapshots_.begin());
    LogChanges changes;
    try {
        logView_->refresh(shared_->block(), changes);
    } catch (Error& error) {
        cache_->clear();
        error.addFile(path_);
        throw;
    }
    if (changes.everything) {
        cache_->clear();
    }
    for (const log::Entry& entry : changes.entries) {
        cache_->drop(entry.page);
    }
}

void Storage::publishPin() const {
    uint64_t pin = snapshots_.empty() ? 0 : *snapshots_.begin() + 1;
    if (pin == 0 && scopes_ > 0) pin = logView_->sequence() + 1;
    shared_->setPin(pin);
}

void Storage::enter() const {
    if (scopes_++ > 0) return;
    if (closed_) {
        --scopes_;
        throw Error(InvalidOperation, {}, {.file = path_, .detail = L"it has been closed"});
    }
    try {
        // Once the pin is out, pages of later commits stay out of the database file; a checkpoint
        // that took its target before that shows in the target.
        int attempts = 0;
        do {
            if (++attempts > maxAttempts) throwDamaged(L"the shared file contradicts itself");
            refresh();
            publishPin();
        } while (shared_->block().target.load() > logView_->sequence());
    } catch (...) {
        leave();
        throw;
    }
}

// For a writer, whose changes must stand on the last commit whatever is being read. Nobody else
// commits meanwhile, so that the newer pin needs no second look. Answers the page count.
uint32_t Storage::enterLatest() const {
    enter();
    try {
        refresh();
        publishPin();
    } catch (...) {
        leave();
        throw;
    }
    return logView_->pageCount();
}

void Storage::leave() const {
    if (--scopes_ == 0) publishPin();
}

void Storage::checkPage(uint32_t page, uint32_t pageCount) const {
    if (page < pageCount) return;
    throw Error(Damaged, {},
                {.file = path_,
                 .page = page,
                 .detail = L"the file has only " + std::to_wstring(pageCount) + L" pages"});
}

uint32_t Storage::pageCount() const {
    const ReadScope scope(*this);
    return logView_->pageCount();
}

uint64_t Storage::sequence() const {
    const ReadScope scope(*this);
    return logView_->sequence();
}

PageRef Storage::read(uint32_t page) const {
    const ReadScope scope(*this);
    checkPage(page, logView_->pageCount());
    PageFrame* frame = cache_->find(page);
    return {frame != nullptr ? frame : fetch(page).get(), pageSize_};
}

FrameHandle Storage::fetch(uint32_t page) const {
    if (PageFrame* frame = cache_->find(page)) return FrameHandle(frame);
    FrameHandle frame = loadAsOf(page, logView_->sequence());
    cache_->put(frame);
    return frame;
}

FrameHandle Storage::loadAsOf(uint32_t page, uint64_t sequence) const {
    FrameHandle frame = FrameHandle::make(page, pageSize_);
    const std::span<uint8_t> bytes(frame->bytes.get(), pageSize_);
    try {
        if (!logView_->load(page, sequence, shared_->block(), bytes) &&
            database_->read(uint64_t(page) * pageSize_, bytes) < pageSize_) {
            throw Error(DiskOrNetwork, {}, {.detail = L"the file became shorter"});
        }
    } catch (Error& error) {
        error.addFile(path_);
        error.addPage(page);
        throw;
    }
    return frame;
}

uint32_t Storage::View::pageCount() const {
    const WriteTransaction* open = storage_->transaction_;
    return open != nullptr ? open->pageCount() : storage_->pageCount();
}

PageRef Storage::View::read(uint32_t page) const {
    const WriteTransaction* open = storage_->transaction_;
    return open != nullptr ? open->read(page) : storage_->read(page);
}

// --- snapshots ---

std::unique_ptr<Snapshot> Storage::snapshot() const {
    return std::make_unique<Snapshot>(*this);
}

Snapshot::Snapshot(const Storage& storage)
    : storage_(&storage), changed_(storage.pageSize_, snapshotPages * storage.pageSize_) {
    const Storage::ReadScope scope(storage);
    sequence_ = storage.logView_->sequence();
    pageCount_ = storage.logView_->pageCount();
    storage.snapshots_.insert(sequence_);
    storage.publishPin();
}

Snapshot::~Snapshot() {
    storage_->snapshots_.erase(storage_->snapshots_.find(sequence_));
    storage_->publishPin();
}

PageRef Snapshot::read(uint32_t page) const {
    storage_->checkPage(page, pageCount_);
    const size_t pageSize = storage_->pageSize_;
    if (!storage_->logView_->changedAfter(page, sequence_)) {
        return {storage_->fetch(page).get(), pageSize};
    }
    if (PageFrame* frame = changed_.find(page)) return {frame, pageSize};
    const FrameHandle frame = storage_->loadAsOf(page, sequence_);
    changed_.put(frame);
    return {frame.get(), pageSize};
}

// --- writing ---

std::unique_ptr<WriteTransaction> Storage::beginWrite() {
    if (mode_ == OpenMode::ReadOnly) throw Error(ReadOnlyDatabase, {}, {.file = path_});
    if (transaction_ != nullptr || closed_) {
        throw Error(InvalidOperation, {}, {.file = path_});
    }
    if (!hasWritten_ && options_.beforeWriting) options_.beforeWriting(path_);
    hasWritten_ = true;
    takeWriting();
    try {
        SharedBlock& block = shared_->block();
        if (block.failed.load() != 0) {
            throw Error(DiskOrNetwork, {}, {.file = path_, .detail = L"a sync has failed"});
        }
        // Somebody died while the log was being reset.
        if (block.generation.load() % 2 != 0) resetLog(*log_, *database_, block, pageSize_);
        auto transaction = std::make_unique<WriteTransaction>(*this);
        transaction_ = transaction.get();
        return transaction;
    } catch (...) {
        checkpointer_->unlockWriting();
        throw;
    }
}

void Storage::takeWriting() {
    const auto end = std::chrono::steady_clock::now() + options_.writerPatience;
    auto pause = std::chrono::microseconds(20);
    while (!checkpointer_->tryLockWriting()) {
        // This object's own checkpoint passes, however slow the disk is.
        if (std::chrono::steady_clock::now() > end && !checkpointer_->isWriting()) {
            const UserName other = shared_->writerName();
            throw Error(savingLocked, {other.user, other.machine}, {.file = path_});
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::microseconds(2000));
    }
}

bool Storage::checkpoint() {
    return checkpointer_ == nullptr || checkpointer_->run();
}

bool Storage::settle() {
    checkpoint();
    return shared_->block().checkpointed.load() >= sequence();
}

// --- record locks ---

void Storage::lockRecord(RowId row) {
    const uint64_t key = keyOf(row);
    if (recordLocks_.contains(key)) throw Error(lockedBySession, {}, {.file = path_});
    if (keptLocks_.erase(key) == 0) {
        std::optional<UserName> other = shared_->lockRecord(key);
        // First the record, then the lock that stands for all: who gives a record up for that one
        // takes it first.
        if (!other && transaction_ == nullptr && (other = shared_->recordOwner(allRecords))) {
            shared_->unlockRecord(key);
        }
        if (other) throw Error(LockedByUser, {other->user, other->machine}, {.file = path_});
    }
    recordLocks_.insert(key);
}

void Storage::unlockRecord(RowId row) {
    const uint64_t key = keyOf(row);
    if (recordLocks_.erase(key) == 0) return;
    if (transaction_ != nullptr && mode_ != OpenMode::Exclusive) {
        keepRecord(key);
    } else {
        shared_->unlockRecord(key);
    }
}

// The system's work for a lock grows with their number, so that from some number on a single one
// stands for all records.
void Storage::keepRecord(uint64_t key) {
    if (keptLocks_.size() >= mostKept && !keptLocks_.contains(allRecords) &&
        !shared_->lockRecord(allRecords)) {
        keptLocks_.insert(allRecords);
    }
    if (keptLocks_.contains(allRecords)) {
        shared_->unlockRecord(key);
    } else {
        keptLocks_.insert(key);
    }
}

void Storage::releaseRecords() {
    for (const uint64_t key : keptLocks_) {
        shared_->unlockRecord(key);
    }
    keptLocks_.clear();
}

}  // namespace sg::jet

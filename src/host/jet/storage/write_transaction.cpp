#include "host/jet/storage/write_transaction.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/jet/format/error.h"
#include "host/jet/storage/storage.h"

namespace sg::jet {
namespace {

// Up to this many changed pages their committed contents are kept, so that small changes go to the
// log as deltas.
constexpr size_t fewChanges = 64;

}  // namespace

WriteTransaction::WriteTransaction(Storage& storage)
    : storage_(&storage),
      pageCount_(storage.enterLatest()),
      appender_(*storage.log_, *storage.logView_) {}

WriteTransaction::~WriteTransaction() {
    if (isOpen_) end();
}

const Format& WriteTransaction::format() const {
    return storage_->format();
}
const std::wstring& WriteTransaction::name() const {
    return storage_->name();
}

size_t WriteTransaction::memoryBytes() const {
    return frames_ * storage_->pageSize_;
}

void WriteTransaction::requireOpen() const {
    if (!isOpen_) throw Error(InvalidOperation, {}, {.file = storage_->path_});
}

PageRef WriteTransaction::read(uint32_t page) const {
    requireOpen();
    storage_->checkPage(page, pageCount_);
    const auto found = changes_.find(page);
    if (found == changes_.end()) {
        return {storage_->fetch(page).get(), storage_->pageSize_};
    }
    load(page, found->second);
    return {found->second.frame.get(), storage_->pageSize_};
}

// Makes sure that the change has its content in memory.
void WriteTransaction::load(uint32_t page, Change& change) const {
    if (change.frame) return;
    FrameHandle frame = FrameHandle::make(page, storage_->pageSize_);
    storage_->logView_->loadImage(*change.saved, {frame->bytes.get(), storage_->pageSize_});
    change.frame = std::move(frame);
    ++frames_;
}

std::span<uint8_t> WriteTransaction::write(uint32_t page) {
    requireOpen();
    storage_->checkPage(page, pageCount_);
    const size_t pageSize = storage_->pageSize_;
    const auto found = changes_.find(page);
    if (found == changes_.end()) {
        keepBefore(page, std::nullopt);
        Change& change = firstChange(page);
        return {change.frame->bytes.get(), pageSize};
    }
    Change& change = found->second;
    load(page, change);
    if (!savepoints_.empty() && change.writtenIn < savepoints_.back().id) {
        keepBefore(page, change);
        change.writtenIn = savepoints_.back().id;
    }
    // Somebody holds the bytes as they are: a reference, or the savepoint.
    if (change.frame.isShared()) {
        FrameHandle copy = FrameHandle::make(page, pageSize);
        std::memcpy(copy->bytes.get(), change.frame->bytes.get(), pageSize);
        change.frame = std::move(copy);
    }
    change.unsaved = true;
    return {change.frame->bytes.get(), pageSize};
}

WriteTransaction::Change& WriteTransaction::firstChange(uint32_t page) {
    const size_t pageSize = storage_->pageSize_;
    FrameHandle committed = storage_->fetch(page);
    Change change;
    change.frame = FrameHandle::make(page, pageSize);
    std::memcpy(change.frame->bytes.get(), committed->bytes.get(), pageSize);
    change.unsaved = true;
    // What the log does not have stands in the database file.
    if (storage_->logView_->deltasOf(page) < 0) {
        change.base = log::checksum(0, {committed->bytes.get(), pageSize});
    }
    if (keepsBefores_) change.before = std::move(committed);
    change.writtenIn = savepoints_.empty() ? 0 : savepoints_.back().id;
    ++frames_;
    Change& kept = changes_[page] = std::move(change);
    if (keepsBefores_ && changes_.size() > fewChanges) forgetBefores();
    return kept;
}

void WriteTransaction::forgetBefores() {
    keepsBefores_ = false;
    for (auto& [page, change] : changes_) {
        change.before = {};
    }
    for (Savepoint& savepoint : savepoints_) {
        for (auto& [page, change] : savepoint.before) {
            if (change) change->before = {};
        }
    }
}

uint32_t WriteTransaction::grow(uint32_t count) {
    requireOpen();
    const uint32_t first = pageCount_;
    const uint64_t most =
        std::min<uint64_t>(storage_->format_->maxFileSize / storage_->pageSize_, log::maxPages);
    if (count > most || first > most - count) {
        throw Error(DiskFull, {},
                    {.file = storage_->path_,
                     .detail = L"the database has the largest size that its format allows"});
    }
    for (uint32_t page = first; page < first + count; ++page) {
        keepBefore(page, std::nullopt);
        Change change;
        change.frame = FrameHandle::make(page, storage_->pageSize_);
        std::memset(change.frame->bytes.get(), 0, storage_->pageSize_);
        change.unsaved = true;
        change.writtenIn = savepoints_.empty() ? 0 : savepoints_.back().id;
        changes_[page] = std::move(change);
        ++frames_;
        pageCount_ = page + 1;
    }
    return first;
}

// --- savepoints ---

void WriteTransaction::keepBefore(uint32_t page, const std::optional<Change>& change) {
    if (!savepoints_.empty()) savepoints_.back().before.try_emplace(page, change);
}

WriteTransaction::SavepointId WriteTransaction::savepoint() {
    requireOpen();
    limitMemory();
    savepoints_.push_back({++lastSavepoint_, pageCount_, {}});
    return lastSavepoint_;
}

void WriteTransaction::limitMemory() {
    if (savepoints_.empty() && memoryBytes() > storage_->options_.transactionBytes) writeEarly();
}

WriteTransaction::Savepoint& WriteTransaction::find(SavepointId id) {
    requireOpen();
    const auto found =
        std::find_if(savepoints_.begin(), savepoints_.end(),
                     [id](const Savepoint& savepoint) { return savepoint.id == id; });
    if (found == savepoints_.end()) throw Error(InvalidOperation, {}, {.file = storage_->path_});
    return *found;
}

void WriteTransaction::release(SavepointId id) {
    find(id);
    for (bool last = false; !last;) {
        Savepoint released = std::move(savepoints_.back());
        savepoints_.pop_back();
        last = released.id == id;
        // What the outer one has kept itself is older.
        if (!savepoints_.empty()) savepoints_.back().before.merge(released.before);
    }
}

void WriteTransaction::rollbackTo(SavepointId id) {
    find(id);
    for (bool last = false; !last;) {
        Savepoint& savepoint = savepoints_.back();
        last = savepoint.id == id;
        for (auto& [page, before] : savepoint.before) {
            const auto found = changes_.find(page);
            if (found != changes_.end() && found->second.frame) --frames_;
            if (!before) {
                changes_.erase(page);
                continue;
            }
            if (before->frame) ++frames_;
            changes_[page] = std::move(*before);
        }
        pageCount_ = savepoint.pageCount;
        savepoints_.pop_back();
    }
}

// No savepoint is open, so nobody will want to return to a state before these records.
void WriteTransaction::writeEarly() {
    addChanges(true);
    appender_.flush();
    for (auto& [page, change] : changes_) {
        if (change.unsaved) {
            change.saved = *appender_.written(page);
            change.unsaved = false;
        }
        change.before = {};
        change.frame = {};
    }
    frames_ = 0;
}

// --- the end ---

// Gives the appender what it has not got yet, in the order of the pages. What leaves early goes
// whole, since it may have to be read back.
bool WriteTransaction::addChanges(bool early) {
    std::vector<uint32_t> pages;
    for (const auto& [page, change] : changes_) {
        if (change.unsaved) pages.push_back(page);
    }
    std::sort(pages.begin(), pages.end());
    const size_t pageSize = storage_->pageSize_;
    for (const uint32_t page : pages) {
        const Change& change = changes_[page];
        const std::span<const uint8_t> bytes(change.frame->bytes.get(), pageSize);
        std::span<const uint8_t> before;
        if (change.before && !change.saved && !early)
            before = {change.before->bytes.get(), pageSize};
        const bool isSame =
            !before.empty() && std::memcmp(before.data(), bytes.data(), pageSize) == 0;
        if (!isSame) appender_.add(page, bytes, before, change.base);
    }
    return !appender_.isEmpty();
}

void WriteTransaction::commit() {
    requireOpen();
    try {
        if (storage_->shared_->block().failed.load() != 0) {
            throw Error(DiskOrNetwork, {}, {.detail = L"a sync has failed"});
        }
        const bool hasChanges = addChanges(false);
        if (hasChanges) {
            appender_.commit(pageCount_);
            publish();
        }
        end();
        if (!hasChanges) return;
    } catch (Error& error) {
        if (isOpen_) end();
        error.addFile(storage_->path_);
        throw;
    }
    storage_->checkpointer_->noteCommit();
    if (storage_->logView_->end() <= storage_->options_.logLimit) return;
    try {
        storage_->checkpointer_->run();
    } catch (const Error&) {
        // The commit stands; what went wrong with its way into the file meets the next one.
    }
}

void WriteTransaction::publish() {
    SharedBlock& block = storage_->shared_->block();
    block.pageCount.store(pageCount_);
    // Before the commit is seen, so that whoever sees it sees this too.
    if (changesDesign_) block.design.store(appender_.sequence());
    block.committed.store(appender_.sequence());

    PageLog& log = *storage_->logView_;
    log.setNeeded(storage_->snapshots_.empty() ? log.sequence() : *storage_->snapshots_.begin());
    log.adopt(appender_, pageCount_);
    for (auto& [page, change] : changes_) {
        if (change.frame) {
            storage_->cache_->put(std::move(change.frame));
        } else {
            storage_->cache_->drop(page);
        }
    }
}

void WriteTransaction::rollback() {
    requireOpen();
    end();
}

void WriteTransaction::end() {
    isOpen_ = false;
    changes_.clear();
    savepoints_.clear();
    frames_ = 0;
    storage_->transaction_ = nullptr;
    // Behind the commit, and before the next writer comes.
    storage_->releaseRecords();
    storage_->checkpointer_->unlockWriting();
    storage_->publishPin();
    storage_->leave();
}

}  // namespace sg::jet

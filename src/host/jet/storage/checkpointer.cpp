#include "host/jet/storage/checkpointer.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// A log longer than this is emptied while writers wait, since under steady writing no moment comes
// at which everything has been brought over.
constexpr uint64_t longLog = uint64_t(16) << 20;
// Neighbouring pages leave in writes of at most this many.
constexpr size_t pagesAtOnce = 64;

uint64_t newSalt() {
    std::random_device random;
    return uint64_t(random()) << 32 | random();
}

// Calls a function at the end of a block.
template <class F>
class Finally {
  public:
    explicit Finally(F f) : f_(std::move(f)) {}
    ~Finally() { f_(); }
    Finally(const Finally&) = delete;
    Finally& operator=(const Finally&) = delete;

  private:
    F f_;
};

}  // namespace

void resetLog(File& log, const File& database, SharedBlock& block, size_t pageSize) {
    const uint64_t generation = block.generation.load() | 1;
    block.generation.store(generation);
    const uint64_t committed = block.committed.load();
    log::Header header{.pageSize = static_cast<uint32_t>(pageSize),
                       .basePages = static_cast<uint32_t>(database.size() / pageSize),
                       .salt = newSalt(),
                       .baseSequence = committed};
    if (header.basePages > 0) {
        std::vector<uint8_t> page(pageSize);
        database.read(0, page);
        header.basePage0 = log::checksum(0, page);
    }
    const bool hadContent = log.size() > 0;
    log.truncate(0);
    log.write(0, log::encode(header));
    // Records of the new generation may not come to the disk over old ones under the old header:
    // the old ones that were left would be taken for all there was.
    if (hadContent) log.sync();

    block.salt.store(header.salt);
    block.baseSequence.store(committed);
    block.basePages.store(header.basePages);
    block.pageCount.store(header.basePages);
    block.generation.store(generation + 1);
}

Checkpointer::Checkpointer(FileLayer& layer, std::wstring logPath, File& log, File& database,
                           SharedState& shared, size_t pageSize, std::chrono::milliseconds delay)
    : layer_(&layer),
      logPath_(std::move(logPath)),
      logFile_(&log),
      database_(&database),
      shared_(&shared),
      delay_(delay),
      log_(log, pageSize) {}

Checkpointer::~Checkpointer() {
    stop();
}

bool Checkpointer::tryLockWriting() {
    if (writing_.exchange(true)) return false;
    bool locked = false;
    const Finally undo([&] {
        if (!locked) writing_.store(false);
    });
    locked = shared_->tryLockWriting();
    return locked;
}

void Checkpointer::unlockWriting() {
    shared_->unlockWriting();
    writing_.store(false);
}

void Checkpointer::noteCommit() {
    if (delay_.count() == 0 || due_.exchange(true)) return;
    if (thread_.joinable()) {
        const std::lock_guard lock(waiting_);
        wake_.notify_one();
        return;
    }
    // Signals are for the program's own threads.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const Finally restore([&] { pthread_sigmask(SIG_SETMASK, &before, nullptr); });
    thread_ = std::thread([this] { work(); });
}

void Checkpointer::work() {
    std::unique_lock lock(waiting_);
    while (true) {
        wake_.wait(lock, [this] { return stopping_ || due_.load(); });
        wake_.wait_for(lock, delay_, [this] { return stopping_; });
        if (stopping_) return;
        lock.unlock();
        due_.store(false);
        bool done = false;
        try {
            done = run();
        } catch (const std::exception&) {
            // A failed sync is in the shared block, where the next commit finds it; a full disk may
            // have room the next time.
        }
        if (!done && shared_->block().failed.load() == 0) due_.store(true);
        lock.lock();
    }
}

void Checkpointer::stop() {
    {
        const std::lock_guard lock(waiting_);
        stopping_ = true;
        wake_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
}

bool Checkpointer::run() {
    const std::lock_guard lock(running_);
    if (!shared_->tryLockCheckpoint()) return false;
    const Finally unlock([this] { shared_->unlockCheckpoint(); });
    if (shared_->block().failed.load() != 0) {
        throw Error(DiskOrNetwork, {}, {.file = logPath_, .detail = L"a sync has failed"});
    }
    transfer();
    return resetIfDone();
}

void Checkpointer::transfer() {
    SharedBlock& block = shared_->block();
    LogChanges changes;
    log_.refresh(block, changes);
    // First the target, then the pins: a reader that begins in between sees the target, and takes
    // a state that is at least as new.
    const uint64_t committed = log_.sequence();
    block.target.store(committed);
    const uint64_t last = shared_->oldestPinned(committed);
    const uint64_t after = block.checkpointed.load();
    if (last <= after) return;
    syncLog();
    writePages(after, last);
    sync(*database_);
    block.checkpointed.store(last);
    log_.setNeeded(last);
}

void Checkpointer::syncLog() {
    const uint64_t salt = shared_->block().salt.load();
    if (markedSalt_ != salt) logFile_->write(log::markOffset, log::encodeMark(salt));
    sync(*logFile_);
    markedSalt_ = salt;
    if (!isFolderSynced_) layer_->syncFolder(logPath_);
    isFolderSynced_ = true;
}

// After a failed sync the system may take the lost pages for written, and a second sync would
// succeed: so the log stays as it is for the next open, which writes everything anew.
void Checkpointer::sync(File& file) {
    try {
        file.sync();
    } catch (...) {
        shared_->block().failed.store(1);
        throw;
    }
}

void Checkpointer::writePages(uint64_t after, uint64_t last) {
    const std::vector<uint32_t> pages = log_.pagesChanged(after, last);
    // New pages first: as long as no older page names them, they mean nothing to any reader.
    const auto isOld = std::lower_bound(
        pages.begin(), pages.end(),
        static_cast<uint32_t>(std::min<uint64_t>(database_->size() / log_.pageSize(), UINT32_MAX)));
    const auto oldCount = static_cast<size_t>(isOld - pages.begin());
    writePages(std::span(pages).subspan(oldCount), last);
    writePages(std::span(pages).first(oldCount), last);
}

void Checkpointer::writePages(std::span<const uint32_t> pages, uint64_t last) {
    const size_t pageSize = log_.pageSize();
    std::vector<uint8_t> bytes(pagesAtOnce * pageSize);
    for (size_t i = 0; i < pages.size();) {
        size_t count = 0;
        for (; count < pagesAtOnce && i + count < pages.size() &&
               pages[i + count] == pages[i] + count;
             ++count) {
            const std::span<uint8_t> into(bytes.data() + count * pageSize, pageSize);
            if (!log_.load(pages[i + count], last, shared_->block(), into)) {
                throwDamaged(L"the log was changed during a checkpoint", pages[i + count]);
            }
        }
        database_->write(uint64_t(pages[i]) * pageSize, {bytes.data(), count * pageSize});
        i += count;
    }
}

bool Checkpointer::resetIfDone() {
    SharedBlock& block = shared_->block();
    const auto isEmpty = [&] {
        return block.generation.load() % 2 == 0 &&
               block.committed.load() == block.baseSequence.load();
    };
    if (isEmpty()) return true;
    if (block.committed.load() != block.checkpointed.load() && log_.end() < longLog) return false;
    if (!tryLockWriting()) return false;
    const Finally unlock([this] { unlockWriting(); });
    if (block.committed.load() != block.checkpointed.load()) transfer();
    if (block.committed.load() == block.checkpointed.load()) {
        resetLog(*logFile_, *database_, block, log_.pageSize());
    }
    return isEmpty();
}

}  // namespace sg::jet

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <thread>

#include "base/export.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_log.h"
#include "host/jet/storage/shared_state.h"

namespace sg::jet {

// Begins a new generation of the log, without records. The database file must hold everything that
// was committed and be synced, and nobody else may write. Finishes a reset that was interrupted.
SG_API void resetLog(File& log, const File& database, SharedBlock& block, size_t pageSize);

// Brings committed pages from the log to the database file: on demand, and on a thread of its own
// some time after a commit. Of what its opener has it touches only the two files and the shared
// state; all else is its own, so that the opener's thread needs no locks to read.
class SG_API Checkpointer {
  public:
    // `delay` 0: no thread, only run().
    Checkpointer(FileLayer& layer, std::wstring logPath, File& log, File& database,
                 SharedState& shared, size_t pageSize, std::chrono::milliseconds delay);
    ~Checkpointer();
    Checkpointer(const Checkpointer&) = delete;
    Checkpointer& operator=(const Checkpointer&) = delete;

    // There is something to bring over. The thread begins with the first call.
    void noteCommit();
    // Brings over what no reader stands in the way of, now; true when that was everything, and the
    // log is empty.
    bool run();
    // Ends the thread; what it was doing is finished first.
    void stop();

    // The writing lock, between processes and between the two threads. False when another has it.
    bool tryLockWriting();
    void unlockWriting();
    // True while one of this process's two threads has it.
    bool isWriting() const { return writing_.load(); }

  private:
    void work();
    void transfer();
    void syncLog();
    void writePages(uint64_t after, uint64_t last);
    void writePages(std::span<const uint32_t> pages, uint64_t last);
    void sync(File& file);
    bool resetIfDone();

    FileLayer* layer_;
    std::wstring logPath_;
    File* logFile_;
    File* database_;
    SharedState* shared_;
    std::chrono::milliseconds delay_;

    std::mutex running_;  // one run() at a time; guards the next three
    PageLog log_;
    uint64_t markedSalt_ = 0;      // of the generation whose mark is on the disk
    bool isFolderSynced_ = false;  // the log's name is on the disk

    std::atomic<bool> writing_ = false;  // one of the two threads writes

    std::atomic<bool> due_ = false;
    std::mutex waiting_;  // guards stopping_
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace sg::jet

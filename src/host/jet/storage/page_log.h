#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "base/export.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_log_format.h"
#include "host/jet/storage/shared_state.h"

// Reading and appending the log beside a database file: which pages it has, in which versions.
// docs/formats/jet_log.md has the bytes and the rules.
namespace sg::jet {

// One page's content after one commit, as it stands in the log.
struct PageVersion {
    uint64_t sequence = 0;
    uint64_t offset = 0;  // of the body in the log
    uint32_t size = 0;
    bool delta = false;  // to be applied to the version before
    uint64_t checksum = 0;
};

struct StagedVersion {
    uint32_t page = 0;
    PageVersion version;
};

// What a view has missed when it comes up to date.
struct LogChanges {
    bool everything = false;  // it is not known which pages
    std::vector<log::Entry> entries;
};

class LogAppender;

// One reader's view of the log: an index of the commits that it has seen. Belongs to one thread.
class SG_API PageLog {
  public:
    PageLog(const File& file, size_t pageSize) : file_(&file), pageSize_(pageSize) {}

    // Forgets everything: the next record is the first one of a generation with this start.
    void restart(uint64_t generation, uint64_t salt, uint64_t baseSequence, uint32_t basePages);

    // Takes in everything that is committed by the shared block. Throws Damaged when the log does
    // not have it.
    void refresh(const SharedBlock& block, LogChanges& changes);
    bool isCurrent(const SharedBlock& block) const {
        return sequence_ == block.committed.load(std::memory_order_acquire) &&
               generation_ == block.generation.load(std::memory_order_acquire);
    }

    // Reads the next transaction, if the log has a whole one with a number up to `last`; its
    // entries are appended. With `checkAll` also bodies and rules are checked, as they must be in a
    // log that was left; what a running program commits is known to be whole.
    bool advance(uint64_t last, bool checkAll, std::vector<log::Entry>& entries);

    uint64_t generation() const { return generation_; }
    uint64_t sequence() const { return sequence_; }
    uint32_t pageCount() const { return pageCount_; }
    uint64_t end() const { return end_; }  // where the next record goes
    uint64_t chain() const { return chain_; }
    size_t pageSize() const { return pageSize_; }

    // True when the page has changed in a commit after `sequence` that this view knows.
    bool changedAfter(uint32_t page, uint64_t sequence) const;
    // Versions of the page that stand on its last image, the image not counted; -1 without image.
    int deltasOf(uint32_t page) const;
    // Puts together the page as of `sequence`. False when the log has no version up to then, or was
    // reset since: the database file has it. Throws Damaged when the log's content is not what it
    // was.
    bool load(uint32_t page, uint64_t sequence, const SharedBlock& block,
              std::span<uint8_t> into) const;
    // Reads one body that stands alone: an image.
    void loadImage(const PageVersion& version, std::span<uint8_t> into) const;

    // The pages that changed after `after` and up to `last`, in order.
    std::vector<uint32_t> pagesChanged(uint64_t after, uint64_t last) const;
    // Nobody will ask for a state before this one.
    void setNeeded(uint64_t sequence) { needed_ = sequence; }

    // Takes in a transaction that was just written by this process.
    void adopt(const LogAppender& appender, uint32_t pageCount);

  private:
    using Versions = std::vector<PageVersion>;
    struct Position {
        uint64_t offset;
        uint64_t chain;
    };

    std::optional<log::RecordHead> readRecord(Position& at, bool checkAll,
                                              std::vector<StagedVersion>& staged,
                                              std::vector<log::Entry>& entries) const;
    bool isBodyWhole(const log::Entry& entry, uint64_t offset) const;
    bool isPossible(const log::RecordHead& commit, const std::vector<StagedVersion>& staged) const;
    void insert(uint32_t page, const PageVersion& version);
    const Versions* versionsOf(uint32_t page) const;
    bool build(const Versions& versions, size_t index, std::span<uint8_t> into) const;

    const File* file_;
    size_t pageSize_;
    uint64_t generation_ = UINT64_MAX;
    uint64_t sequence_ = 0;
    uint32_t pageCount_ = 0;
    uint64_t end_ = log::recordsOffset;
    uint64_t chain_ = 0;
    uint64_t needed_ = 0;
    std::unordered_map<uint32_t, Versions> pages_;  // each in order, an image first
    mutable std::vector<uint8_t> buffer_;
};

// Writes one transaction behind a log's last commit. What is never committed is overwritten by the
// next transaction.
class SG_API LogAppender {
  public:
    LogAppender(File& file, const PageLog& log)
        : file_(&file), log_(&log), offset_(log.end()), chain_(log.chain()) {}

    // The page's new content. `before` is its committed content, where the caller has it: a small
    // change is then written as a delta. `base` is the checksum of the page in the database file,
    // which the page's first entry of the generation must have.
    void add(uint32_t page, std::span<const uint8_t> bytes, std::span<const uint8_t> before,
             uint64_t base);
    // Writes out what was added, so that it need not be kept in memory.
    void flush();
    // Writes the rest and the commit, after which the database has this many pages.
    void commit(uint32_t pageCount) { writeRecord(true, pageCount); }

    // Where the page's last version went; null when it has not been flushed.
    const PageVersion* written(uint32_t page) const;
    uint64_t sequence() const { return log_->sequence() + 1; }
    bool isEmpty() const { return pending_.empty() && written_.empty(); }

  private:
    friend class PageLog;

    void writeRecord(bool commit, uint32_t pageCount);

    File* file_;
    const PageLog* log_;
    uint64_t offset_;  // where the next record goes
    uint64_t chain_;
    std::vector<uint8_t> buffer_;      // room for a head and a directory, then the bodies
    std::vector<log::Entry> pending_;  // in the buffer
    std::vector<StagedVersion> written_;
    std::unordered_map<uint32_t, size_t> lastWritten_;  // as of the last flush()
    size_t indexed_ = 0;                                // how many of `written_` that has
};

}  // namespace sg::jet

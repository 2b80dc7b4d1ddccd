#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "base/export.h"
#include "host/jet/storage/page_cache.h"
#include "host/jet/storage/page_log.h"
#include "host/jet/storage/page_store.h"

namespace sg::jet {

class Storage;

// Changes to pages that become visible to others all at once or not at all. It reads as its own
// changes over the last committed state. Made by Storage::beginWrite(); while it is open nobody
// else writes.
class SG_API WriteTransaction final : public PageStore {
  public:
    explicit WriteTransaction(Storage& storage);
    // Rolls back what was not committed.
    ~WriteTransaction() override;
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;

    const Format& format() const override;
    const std::wstring& name() const override;
    uint32_t pageCount() const override { return pageCount_; }
    PageRef read(uint32_t page) const override;
    using PageStore::read;

    // The page's bytes, to be changed in place until the next savepoint(), limitMemory(),
    // rollbackTo(), commit() or rollback(), or until somebody takes a reference with read() and
    // write() is called again. References from before keep the bytes that they were given.
    std::span<uint8_t> write(uint32_t page);
    // Adds pages of zeros at the end and answers the first one's number. Throws DiskFull when the
    // file would become larger than its format allows.
    uint32_t grow(uint32_t count = 1);

    // A state to return to. Savepoints may be nested; releasing or rolling back to one ends those
    // that were made after it as well. When none is open and the transaction is large, its pages
    // go to the log here, so that memory stays bounded: a transaction of many operations makes a
    // savepoint for each.
    using SavepointId = uint64_t;
    SavepointId savepoint();
    // Keeps what was done since.
    void release(SavepointId id);
    // Undoes what was done since; the savepoint is gone then.
    void rollbackTo(SavepointId id);

    // Lets pages go to the log early as savepoint() does, without making one: then what write()
    // gave holds no longer.
    void limitMemory();

    // Others will be told that this transaction changes the catalog or a definition.
    void noteDesignChange() { changesDesign_ = true; }

    // Makes all of it visible. When that throws, all of it has been rolled back.
    void commit();
    void rollback();
    bool isOpen() const { return isOpen_; }
    // Bytes of page contents in memory, those kept for savepoints not counted.
    size_t memoryBytes() const;

  private:
    struct Change {
        FrameHandle frame;                 // empty when only the log has the content
        bool unsaved = false;              // the frame is newer than `saved`
        std::optional<PageVersion> saved;  // in the log, by this transaction
        FrameHandle before;                // the committed content, while there are few changes
        uint64_t base = 0;                 // checksum of the page in the database file, if asked
        SavepointId writtenIn = 0;         // the savepoint that has kept what was before
    };
    struct Savepoint {
        SavepointId id;
        uint32_t pageCount;
        std::unordered_map<uint32_t, std::optional<Change>> before;  // nothing: was not changed
    };

    void requireOpen() const;
    Savepoint& find(SavepointId id);
    void keepBefore(uint32_t page, const std::optional<Change>& change);
    Change& firstChange(uint32_t page);
    void load(uint32_t page, Change& change) const;
    void forgetBefores();
    void writeEarly();
    bool addChanges(bool early);
    void publish();
    void end();

    Storage* storage_;
    bool isOpen_ = true;
    bool changesDesign_ = false;
    uint32_t pageCount_;
    LogAppender appender_;
    mutable std::unordered_map<uint32_t, Change> changes_;
    mutable size_t frames_ = 0;  // changes with a frame
    bool keepsBefores_ = true;
    std::vector<Savepoint> savepoints_;  // outermost first
    SavepointId lastSavepoint_ = 0;
};

}  // namespace sg::jet

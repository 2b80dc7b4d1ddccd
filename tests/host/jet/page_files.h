#pragma once

#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/jet/pages/data_page.h"
#include "host/jet/pages/data_page_editor.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/recording_files.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage/write_transaction.h"
#include "host/jet/storage_files.h"

// A file in memory with an open transaction and nothing but a map of free pages, for tests of what
// changes pages.
namespace sg::jet::test {

// A file with pages full of noise, of which `free` and those beyond the end are in the map of free
// pages, as other programs leave them.
inline Bytes pageFile(uint32_t pageCount, const std::set<uint32_t>& free = {}) {
    const Format& format = formatOf(Version::Jet4);
    Bytes bytes = testDatabase(pageCount);
    Bytes record(maps::inlineBits + format.inlineMapSize);
    for (uint32_t page = 0; page < format.inlineMapSize * 8; ++page) {
        if (page >= pageCount || free.count(page) != 0)
            record[maps::inlineBits + page / 8] |= static_cast<uint8_t>(1u << (page % 8));
    }
    const std::span<uint8_t> first(&bytes[testPageSize * pages::globalMap], testPageSize);
    std::fill(first.begin(), first.end(), uint8_t(0));
    DataPageEditor::initialize(first, format, 1);
    DataPageEditor::append(first, format, 1, ByteView(record));
    return bytes;
}

class PageFile {
  public:
    explicit PageFile(Bytes content = pageFile(3)) : files_{{{name(), std::move(content)}}} {
        storage_ = Storage::open(name(), OpenMode::Exclusive,
                                 {.checkpointDelay = std::chrono::milliseconds(0),
                                  .name = {L"tester", L"machine"},
                                  .files = &files_});
        begin();
    }

    WriteTransaction& pages() { return *transaction_; }
    PageAllocator& allocator() { return *allocator_; }
    // Ends the transaction and begins another one.
    void commit() {
        transaction_->commit();
        begin();
    }
    // The bytes of a page, to be spoiled.
    std::span<uint8_t> at(uint32_t page) { return transaction_->write(page); }
    std::set<uint32_t> setOf(RowId record) {
        std::set<uint32_t> all;
        const UsageMap map = UsageMap::read(pages(), record);
        for (auto page = map.next(0); page && *page < pages().pageCount();
             page = map.next(*page + 1))
            all.insert(*page);
        return all;
    }
    std::set<uint32_t> freePages() { return setOf({pages::globalMap, 0}); }
    // Pages behind the first three that are not free: those that somebody has.
    std::set<uint32_t> takenPages() {
        std::set<uint32_t> taken;
        const std::set<uint32_t> free = freePages();
        for (uint32_t page = pages::catalog + 1; page < pages().pageCount(); ++page) {
            if (free.count(page) == 0) taken.insert(page);
        }
        return taken;
    }

  private:
    static std::wstring name() { return L"p.mdb"; }
    void begin() {
        transaction_.reset();
        transaction_ = storage_->beginWrite();
        allocator_ = std::make_unique<PageAllocator>(*transaction_);
    }

    RecordingFiles files_;
    std::unique_ptr<Storage> storage_;
    std::unique_ptr<WriteTransaction> transaction_;
    std::unique_ptr<PageAllocator> allocator_;
};

}  // namespace sg::jet::test

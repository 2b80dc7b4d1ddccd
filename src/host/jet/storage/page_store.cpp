#include "host/jet/storage/page_store.h"

#include <utility>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// The database page, the page of the free page map and the catalog's definition.
constexpr uint32_t fewestPages = 3;

uint32_t countPages(uint64_t size, const Format& format, const std::wstring& name) {
    const uint64_t count = size / format.pageSize;
    if (count < fewestPages) {
        throw Error(CannotOpenDatabase, {name}, {.file = name, .detail = L"the file is cut off"});
    }
    // Row ids have three bytes for the page.
    if (count > 0x1000000) {
        throw Error(CannotOpenDatabase, {name},
                    {.file = name, .detail = L"the file is larger than a database can be"});
    }
    return static_cast<uint32_t>(count);
}

[[noreturn]] void throwBeyondEnd(uint32_t page, uint32_t pageCount, const std::wstring& name) {
    throw Error(Damaged, {},
                {.file = name,
                 .page = page,
                 .detail = L"the file has only " + std::to_wstring(pageCount) + L" pages"});
}

}  // namespace

PageRef PageStore::read(uint32_t page, PageKind kind) const {
    PageRef ref = read(page);
    const uint8_t found = ref->get8(0);
    if (found != static_cast<uint8_t>(kind)) {
        throw Error(Damaged, {},
                    {.file = name(),
                     .page = page,
                     .detail = L"a page of kind " + std::to_wstring(static_cast<int>(kind)) +
                               L" belongs here, not one of kind " + std::to_wstring(found)});
    }
    return ref;
}

MemoryPageStore::MemoryPageStore(std::span<const uint8_t> bytes, std::wstring name)
    : bytes_(bytes), name_(std::move(name)) {
    format_ = &identifyFormat(bytes_, name_);
    pageCount_ = countPages(bytes_.size(), *format_, name_);
}

PageRef MemoryPageStore::read(uint32_t page) const {
    if (page >= pageCount_) {
        throwBeyondEnd(page, pageCount_, name_);
    }
    return {page, bytes_.sub(size_t(page) * format_->pageSize, format_->pageSize)};
}

}  // namespace sg::jet

#include "host/jet/pages/data_page_editor.h"

#include <cstring>
#include <string>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

constexpr uint16_t freeFlags = rows::deletedFlag | rows::lookupFlag;

uint16_t load16(const uint8_t* at) {
    uint16_t value;
    std::memcpy(&value, at, 2);
    return value;
}

void store16(uint8_t* at, size_t value) {
    const auto narrow = static_cast<uint16_t>(value);
    std::memcpy(at, &narrow, 2);
}

bool isFree(uint16_t entry) {
    return (entry & freeFlags) == freeFlags;
}

void copyRow(uint8_t* to, ByteView row) {
    if (!row.empty()) std::memcpy(to, row.data(), row.size());
}

}  // namespace

bool PageRoom::fits(size_t size) const {
    if (freeEntry) return size <= bytes;
    return rowCount < mostRowsOfPage && size + 2 <= bytes;
}

bool PageRoom::fitsAny() const {
    return fits(leastRow - 2);
}

PageRoom roomOf(ByteView page, const Format& format, uint32_t number) {
    const DataPageLayout& layout = format.dataPage;
    if (page.get8(0) != static_cast<uint8_t>(PageKind::Data))
        throwDamaged(L"a page of rows is of another kind", number);
    PageRoom room;
    room.rowCount = page.get16(layout.rowCount);
    const size_t directoryEnd = layout.rowDirectory + 2 * size_t(room.rowCount);
    if (directoryEnd > page.size())
        throwDamaged(L"the directory of " + std::to_wstring(room.rowCount) +
                         L" rows is longer than the page",
                     number);
    size_t end = page.size();
    for (uint16_t row = 0; row < room.rowCount; ++row) {
        const uint16_t entry = load16(page.data() + layout.rowDirectory + 2 * size_t(row));
        const size_t start = entry & rows::offsetMask;
        if (start < directoryEnd || start > end)
            throwDamaged(L"row " + std::to_wstring(row) + L" is outside the page's rows", number);
        if (!isFree(entry)) {
            room.hasRows = true;
        } else {
            room.bytes += end - start;
            if (!room.freeEntry && row < mostRowsOfPage) room.freeEntry = row;
        }
        end = start;
    }
    room.bytes += end - directoryEnd;
    return room;
}

DataPageEditor::DataPageEditor(std::span<uint8_t> page, const Format& format, uint32_t number)
    : page_(page),
      format_(&format),
      layout_(&format.dataPage),
      number_(number),
      room_(roomOf({page.data(), page.size()}, format, number)) {}

void DataPageEditor::initialize(std::span<uint8_t> page, const Format& format, uint32_t owner) {
    const DataPageLayout& layout = format.dataPage;
    page[0] = static_cast<uint8_t>(PageKind::Data);
    page[1] = 1;
    store16(&page[layout.freeSpace], page.size() - layout.rowDirectory);
    std::memcpy(&page[layout.owner], &owner, 4);
}

std::optional<uint16_t> DataPageEditor::append(std::span<uint8_t> page, const Format& format,
                                               uint32_t owner, ByteView row, uint16_t flags) {
    const DataPageLayout& layout = format.dataPage;
    if (page[0] != static_cast<uint8_t>(PageKind::Data) ||
        std::memcmp(&page[layout.owner], &owner, 4) != 0)
        return std::nullopt;
    const uint16_t count = load16(&page[layout.rowCount]);
    if (count >= mostRowsOfPage) return std::nullopt;
    uint8_t* const entry = &page[layout.rowDirectory + 2 * size_t(count)];
    const size_t end = count == 0 ? page.size() : load16(entry - 2) & rows::offsetMask;
    const size_t directoryEnd = layout.rowDirectory + 2 * (size_t(count) + 1);
    if (end > page.size() || end < directoryEnd || end - directoryEnd < row.size())
        return std::nullopt;
    const size_t start = end - row.size();
    copyRow(page.data() + start, row);
    store16(entry, start | flags);
    store16(&page[layout.rowCount], count + 1u);
    store16(&page[layout.freeSpace], start - directoryEnd);
    return count;
}

uint16_t DataPageEditor::entry(uint16_t row) const {
    return load16(&page_[layout_->rowDirectory + 2 * size_t(row)]);
}

void DataPageEditor::setEntry(uint16_t row, size_t start, uint16_t flags) {
    store16(&page_[layout_->rowDirectory + 2 * size_t(row)], start | flags);
}

uint16_t DataPageEditor::insert(ByteView row, uint16_t flags) {
    if (room_.freeEntry) {
        const uint16_t number = *room_.freeEntry;
        replace(number, row, flags);
        return number;
    }
    if (lowest() < directoryEnd() + 2 + row.size()) dropGarbage();
    const uint16_t number = room_.rowCount;
    const size_t start = lowest() - row.size();
    copyRow(page_.data() + start, row);
    setEntry(number, start, flags);
    ++room_.rowCount;
    finish();
    return number;
}

void DataPageEditor::replace(uint16_t row, ByteView bytes, uint16_t flags) {
    resize(row, bytes.size());
    copyRow(page_.data() + startOf(row), bytes);
    setEntry(row, startOf(row), flags);
    finish();
}

void DataPageEditor::erase(uint16_t row) {
    resize(row, 0);
    setEntry(row, startOf(row), freeFlags);
    while (room_.rowCount != 0 && isFree(entry(static_cast<uint16_t>(room_.rowCount - 1))))
        --room_.rowCount;
    finish();
}

// Gives the row another size; the rows behind it move. Its first bytes are not what they were.
void DataPageEditor::resize(uint16_t row, size_t size) {
    const size_t old = sizeOf(row);
    if (size == old) return;
    if (size > old && size - old > lowest() - directoryEnd()) {
        // What is garbage now is not when the row is one of those that are deleted.
        const uint16_t flags = flagsOf(row);
        setEntry(row, startOf(row), 0);
        dropGarbage();
        setEntry(row, startOf(row), flags);
        if (size - old > lowest() - directoryEnd())
            throwDamaged(L"a row does not fit in the room of its page", number_);
    }
    const size_t low = lowest();
    const size_t start = startOf(row);
    uint8_t* const from = page_.data() + low;
    if (size < old) {
        std::memmove(from + (old - size), from, start - low);
    } else {
        std::memmove(from - (size - old), from, start - low);
    }
    for (uint16_t i = row; i < room_.rowCount; ++i)
        setEntry(i, startOf(i) + old - size, flagsOf(i));
}

// Other programs leave the bytes of deleted rows where they were.
void DataPageEditor::dropGarbage() {
    for (uint16_t row = 0; row < room_.rowCount; ++row) {
        if (isFree(entry(row))) resize(row, 0);
    }
}

void DataPageEditor::finish() {
    store16(&page_[layout_->rowCount], room_.rowCount);
    room_ = roomOf({page_.data(), page_.size()}, *format_, number_);
    store16(&page_[layout_->freeSpace], lowest() - directoryEnd());
}

}  // namespace sg::jet

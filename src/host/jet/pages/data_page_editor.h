#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/format.h"

// Rows put on data pages and taken away. See docs/formats/jet.md, "Data pages".
namespace sg::jet {

// What a data page has room for.
struct PageRoom {
    uint16_t rowCount = 0;              // entries of the directory
    bool hasRows = false;               // entries that are not free
    size_t bytes = 0;                   // that no row has, those of deleted rows counted
    std::optional<uint16_t> freeEntry;  // the first one of a deleted row, which can be used again

    bool fits(size_t size) const;
    // A row of any size.
    bool fitsAny() const;
};

// The most entries that a directory gets: a row's number has one byte, and other programs count
// them in one, too.
inline constexpr uint16_t mostRowsOfPage = 255;
// The least that a row takes on a page: a pointer to where it went, and its entry.
inline constexpr size_t leastRow = 4 + 2;

// Throws Damaged when `page` is not a data page or its rows are not within it, each before the one
// that is before it in the directory.
SG_API PageRoom roomOf(ByteView page, const Format& format, uint32_t number);

// A data page that is changed. Its rows move, so that the free bytes stay in one piece; their
// numbers stay. A deleted row leaves an entry with both flags and without bytes, or none at the
// directory's end.
class SG_API DataPageEditor {
  public:
    // Throws as roomOf() does. `page` stays with the caller.
    DataPageEditor(std::span<uint8_t> page, const Format& format, uint32_t number);
    // Makes the page of zeros an empty data page.
    static void initialize(std::span<uint8_t> page, const Format& format, uint32_t owner);
    // Puts the row behind the others without a look at them. Answers nothing, and changes nothing,
    // when it does not fit there or the page is not a data page of this owner.
    static std::optional<uint16_t> append(std::span<uint8_t> page, const Format& format,
                                          uint32_t owner, ByteView row, uint16_t flags = 0);

    const PageRoom& room() const { return room_; }
    size_t sizeOf(uint16_t row) const { return endOf(row) - startOf(row); }
    ByteView bytesOf(uint16_t row) const { return {&page_[startOf(row)], sizeOf(row)}; }
    uint16_t flagsOf(uint16_t row) const {
        return entry(row) & static_cast<uint16_t>(~rows::offsetMask);
    }

    // The rest takes rows that the directory has.
    // The row must fit. Answers its number.
    uint16_t insert(ByteView row, uint16_t flags = 0);
    bool canReplace(uint16_t row, size_t size) const { return size <= sizeOf(row) + room_.bytes; }
    // The new bytes must fit as canReplace() tells.
    void replace(uint16_t row, ByteView bytes, uint16_t flags = 0);
    void erase(uint16_t row);

  private:
    uint16_t entry(uint16_t row) const;
    void setEntry(uint16_t row, size_t start, uint16_t flags);
    size_t startOf(uint16_t row) const { return entry(row) & rows::offsetMask; }
    size_t endOf(uint16_t row) const { return row == 0 ? page_.size() : startOf(row - 1); }
    size_t directoryEnd() const { return layout_->rowDirectory + 2 * size_t(room_.rowCount); }
    size_t lowest() const { return endOf(room_.rowCount); }
    void resize(uint16_t row, size_t size);
    void dropGarbage();
    void finish();

    std::span<uint8_t> page_;
    const Format* format_;
    const DataPageLayout* layout_;
    uint32_t number_;
    PageRoom room_;
};

}  // namespace sg::jet

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "host/jet/format/byte_view.h"
#include "host/jet/format/format.h"
#include "host/jet/storage/page_store.h"

namespace sg::jet {

namespace definitions {
inline constexpr size_t mostPages = 256;   // of one definition
inline constexpr size_t nextPageHead = 8;  // of a page after the first: kind, pointer to the next
inline constexpr size_t mapsRecord = 8;    // of a long value column: two row ids
}  // namespace definitions

// The records of a definition as they stand on its pages, by what they are known by, so that a
// writer can keep the bytes of theirs that TableDefinition does not tell. What they give points
// into this object. For Jet 4 and ACE.
class DefinitionRecords {
  public:
    explicit DefinitionRecords(const Format& format) : format_(&format) {}

    // Reads the chain that begins on `first` and answers its pages. Throws Damaged when it does not
    // end or has pages of another kind.
    std::vector<uint32_t> readPages(const PageStore& store, uint32_t first);
    // Takes what was read apart. A page that is new has no records. Throws Damaged when the
    // definition is longer than its pages or shorter than its parts, or tells of a column twice.
    void readRecords();

    bool exists() const { return !bytes_.empty(); }
    ByteView head() const { return all().sub(0, format_->table.head); }
    // Columns' numbers in the order of their records.
    const std::vector<uint16_t>& columnNumbers() const { return order_; }
    // Nothing when there is none with this number.
    std::optional<ByteView> column(uint16_t number) const;
    // Place of the real index with this root.
    std::optional<size_t> realIndex(uint32_t root) const;
    ByteView count(size_t place) const;
    ByteView real(size_t place) const;
    size_t logicalIndexes() const { return logicalIndexes_.size(); }
    std::optional<ByteView> logical(uint32_t number) const;
    // Column numbers with the maps of their long values.
    const std::vector<std::pair<uint16_t, ByteView>>& maps() const { return maps_; }
    // What stands behind the mark that ends the maps.
    ByteView rest() const { return exists() ? all().from(end_) : ByteView(); }

  private:
    ByteView all() const { return {bytes_.data(), bytes_.size()}; }
    size_t take(size_t size);
    void skipNames(size_t count);
    void readColumns();
    void readIndexes(uint32_t realCount);
    void readMaps();

    const Format* format_;
    std::vector<uint8_t> bytes_;  // without the heads of the pages behind the first
    std::vector<uint16_t> order_;
    std::map<uint16_t, size_t> columns_;         // offsets
    std::map<uint32_t, size_t> realIndexes_;     // places by root
    std::map<uint32_t, size_t> logicalIndexes_;  // offsets by number
    std::vector<std::pair<uint16_t, ByteView>> maps_;
    size_t realStart_ = 0;
    size_t end_ = 0;  // of what was taken apart
};

}  // namespace sg::jet

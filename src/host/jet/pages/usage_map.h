#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/page_store.h"

// A set of pages: those that a table, an index or a long value column owns, or those of them that
// have room. See docs/formats/jet.md, "Usage maps".
namespace sg::jet {

class SG_API UsageMap {
  public:
    // Reads the map whose record stands at `record`. Map pages of a referenced map are read when
    // they are asked for. Throws Damaged for a record that is not there or is of no known kind.
    // `store` must outlive the map.
    static UsageMap read(const PageStore& store, RowId record);

    bool isInline() const { return mapPages_.empty(); }
    // Inline: the page of the first bit; 0 otherwise.
    uint32_t firstPage() const { return firstPage_; }
    // Referenced: the pages with the bits, 0 where a range has none.
    const std::vector<uint32_t>& mapPages() const { return mapPages_; }

    // The first page in the set that is not below `from`, also if it is beyond the file's end.
    // Throws Damaged when a map page can't be read.
    std::optional<uint32_t> next(uint32_t from) const;
    // The last page in the set that is below `before`; throws as next().
    std::optional<uint32_t> previous(uint32_t before) const;
    bool contains(uint32_t page) const;

    // All of them, ascending. Throws Damaged when one is beyond the file's end.
    std::vector<uint32_t> pages() const;

  private:
    explicit UsageMap(const PageStore& store) : store_(&store) {}

    uint64_t bitsOfMapPage() const;
    std::optional<uint64_t> nextInline(uint64_t from) const;
    std::optional<uint64_t> nextReferenced(uint64_t from) const;
    std::optional<uint64_t> previousInline(uint64_t before) const;
    std::optional<uint64_t> previousReferenced(uint64_t before) const;

    const PageStore* store_;
    uint32_t firstPage_ = 0;
    std::vector<uint8_t> bits_;  // inline only
    std::vector<uint32_t> mapPages_;
};

}  // namespace sg::jet

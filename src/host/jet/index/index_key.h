#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/index/sort_order.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// The keys of index entries: bytes that compare as the values sort. See docs/formats/jet_index.md,
// "Keys".
namespace sg::jet {

// What a column's part of a key begins with when it isn't Null, and in a descending column.
inline constexpr uint8_t keyOfValue = 0x7F;
inline constexpr uint8_t keyOfValueDescending = 0x80;

// One column of an index, as its part of the key is made.
struct KeyColumn {
    ColumnType type = ColumnType::Long;
    bool ascending = true;
    TextOrder order = TextOrder::GeneralLegacy;  // Text and Memo only
    uint8_t scale = 0;                           // Numeric only
    bool oldNumeric = false;  // Numeric only: the form of files before ACE, see the document
};

// Appends the column's part of a key. The value is Null or of the type that the column's values
// have (value.h); a Boolean column takes Null as false. Throws ConversionError for another type and
// for a Decimal that the column's scale has no room for, and OperationNotSupported for a text with
// a character that the order has no weight for and for column types that have no keys.
SG_API void appendKey(const KeyColumn& column, const Value& value, KeyBytes& key);

// Makes the keys of one index. The table and index need not outlive it.
class SG_API KeyEncoder {
  public:
    KeyEncoder(const Format& format, const TableDefinition& table, const RealIndex& index);

    // Empty, or why this index's keys cannot be made: a text order or a column type that we do
    // not know. Its entries can still be read in their order; seeking in it and writing to its
    // table must be refused.
    const std::wstring& problem() const { return problem_; }
    bool usable() const { return problem_.empty(); }
    // Throws OperationNotSupported with the problem unless the index is usable.
    void requireUsable() const;

    const std::vector<KeyColumn>& columns() const { return columns_; }
    // Places of the index's columns in TableDefinition::columns.
    const std::vector<size_t>& places() const { return places_; }

    // Replaces `key` by the key of these values, which are those of the leading columns: as many as
    // the index has, or fewer for the beginning that all keys with these values share. Throws as
    // appendKey() and requireUsable() do, and InvalidArgument for more values than columns.
    void encode(std::span<const Value> values, KeyBytes& key) const;

    // False for a row that the index leaves out: one whose values are all Null, in an index that
    // ignores Nulls.
    bool hasEntry(std::span<const Value> values) const;

  private:
    std::vector<KeyColumn> columns_;
    std::vector<size_t> places_;
    bool ignoresNulls_ = false;
    std::wstring problem_;
};

}  // namespace sg::jet

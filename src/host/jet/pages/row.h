#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// One row's bytes taken apart. See docs/formats/jet.md, "Rows".
namespace sg::jet {

// Decodes the columns of a table's rows one at a time, as they are asked for, so that a scan pays
// for the columns that it uses. Columns are named by their place in TableDefinition::columns. The
// store and the definition must outlive the reader, and a row's bytes their use.
class SG_API RowReader {
  public:
    RowReader(const PageStore& store, const TableDefinition& table);

    // Takes the next row. Throws Damaged when it is too short for its own null mask.
    void reset(ByteView row);

    // The columns that the row was written with; of later ones it holds nothing, which is Null.
    size_t columnCount() const { return columnCount_; }
    // Never true of a Boolean, which has no Null.
    bool isNull(size_t column) const;
    // The column's bytes in the row: of a long value its header, of a Null and a Boolean nothing.
    // Throws Damaged when they are not within the row.
    ByteView bytes(size_t column) const;
    // The bytes of the value itself: of a long value its content, from its pages. They hold until
    // the next call.
    ByteView content(size_t column) const;
    // The value, in memory that `into` holds already where it can be. Reads the pages of a long
    // value.
    void decode(size_t column, Value& into) const;

  private:
    bool maskBit(size_t number) const {
        return (row_.data()[maskStart_ + number / 8] >> (number % 8) & 1) != 0;
    }
    ByteView variableBytes(size_t index) const;
    size_t wideOffset(size_t index) const;
    size_t narrowOffset(size_t index) const;
    size_t variableCount() const;

    const PageStore* store_;
    const Format* format_;
    const TableDefinition* table_;
    ByteView row_;
    size_t columnCount_ = 0;
    size_t maskStart_ = 0;
    mutable Bytes longValue_;
};

}  // namespace sg::jet

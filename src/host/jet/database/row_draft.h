#pragma once

#include <cstddef>
#include <vector>

#include "base/export.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/pages/row.h"
#include "host/jet/pages/row_encoder.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

namespace sg::jet {

// A row on its way to its bytes. Everything that can be refused is refused by set(), keep() and
// encode(), which touch no page; store() then puts down the long values. To be used again for the
// next row; its memory stays. The table must outlive it.
class SG_API RowDraft {
  public:
    RowDraft(const TableDefinition& table, const Format& format);

    // Every column once, in any order.
    void clear();
    // Throws as encodeValue(), and RecordTooLarge for a value that no long value can hold.
    void set(size_t column, const Value& value);
    // As `row` has it; of a long value its header, so that its bytes stay where they are.
    void keep(size_t column, const RowReader& row);
    // The column's long value in `row`, if it has one, is to be given up by store().
    void giveUp(size_t column, const RowReader& row);

    // Throws RecordTooLarge.
    void encode();
    // Stores the long values of their own and erases those that were given up; they may be there
    // without a set().
    void store(PageAllocator& allocator);
    // After encode() and store().
    ByteView bytes() const { return ByteView(row_); }

  private:
    struct LongValue {
        size_t column = 0;
        Bytes bytes;  // the content, or the header
    };

    Bytes& next(std::vector<LongValue>& list, size_t& count, size_t column);

    const TableDefinition* table_;
    const Format* format_;
    std::vector<RowPart> parts_;
    Bytes row_;
    // The first so many are this row's.
    std::vector<LongValue> toStore_;
    size_t toStoreCount_ = 0;
    std::vector<LongValue> givenUp_;
    size_t givenUpCount_ = 0;
};

}  // namespace sg::jet

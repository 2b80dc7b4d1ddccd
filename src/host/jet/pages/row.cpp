#include "host/jet/pages/row.h"

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/pages/long_value.h"
#include "host/jet/values/value_codec.h"

namespace sg::jet {
namespace {

// A calculated column's bytes carry the result behind a head that ends with its length.
constexpr size_t calculatedLength = 16;
constexpr size_t calculatedData = 20;

ByteView unwrapCalculated(ByteView bytes) {
    return bytes.size() < calculatedData ? bytes
                                         : bytes.sub(calculatedData, bytes.get32(calculatedLength));
}

}  // namespace

RowReader::RowReader(const PageStore& store, const TableDefinition& table)
    : store_(&store), format_(&store.format()), table_(&table) {}

void RowReader::reset(ByteView row) {
    const size_t countSize = format_->row.countSize;
    const size_t count = countSize == 1 ? row.get8(0) : row.get16(0);
    const size_t maskSize = (count + 7) / 8;
    if (countSize + maskSize > row.size()) {
        throwDamaged(L"a row of " + std::to_wstring(row.size()) + L" bytes is too short for its " +
                     std::to_wstring(count) + L" columns");
    }
    row_ = row;
    columnCount_ = count;
    maskStart_ = row.size() - maskSize;
}

bool RowReader::isNull(size_t column) const {
    const Column& c = table_->columns[column];
    if (c.type == ColumnType::Boolean && !c.isCalculated()) {
        return false;
    }
    return c.number >= columnCount_ || !maskBit(c.number);
}

ByteView RowReader::bytes(size_t column) const {
    const Column& c = table_->columns[column];
    if (c.number >= columnCount_ || !maskBit(c.number)) {
        return {};
    }
    if (!c.isFixed()) {
        return variableBytes(c.variableIndex);
    }
    if (c.type == ColumnType::Boolean) {
        return {};
    }
    const size_t start = format_->row.countSize + size_t(c.fixedOffset);
    if (start + c.length > maskStart_) {
        throwDamaged(L"the bytes of column " + c.name + L" are not within the row");
    }
    return row_.sub(start, c.length);
}

void RowReader::decode(size_t column, Value& into) const {
    const Column& c = table_->columns[column];
    if (c.type == ColumnType::Boolean && !c.isCalculated()) {
        into = c.number < columnCount_ && maskBit(c.number);
        return;
    }
    if (isNull(column)) {
        into = std::monostate();
        return;
    }
    decodeValue(c.type, content(column), *format_, c.scale, into);
}

ByteView RowReader::content(size_t column) const {
    const Column& c = table_->columns[column];
    ByteView found = bytes(column);
    if (c.isLongValue()) {
        found = readLongValue(*store_, found, longValue_);
    }
    return c.isCalculated() ? unwrapCalculated(found) : found;
}

size_t RowReader::variableCount() const {
    const size_t countSize = format_->row.countSize;
    if (maskStart_ < 2 * countSize) {
        throwDamaged(L"a row has no room for its variable columns");
    }
    return countSize == 1 ? row_.get8(maskStart_ - 1) : row_.get16(maskStart_ - 2);
}

// Offsets stand in reverse, so that the end of an entry's bytes is the entry before it in the row.
size_t RowReader::wideOffset(size_t index) const {
    const size_t back = 4 + 2 * index;
    if (maskStart_ < back) {
        throwDamaged(L"the table of variable columns is longer than the row");
    }
    return row_.get16(maskStart_ - back);
}

// One-byte offsets, and a jump table between them and their count: each of its entries names the
// first variable column from which on another 256 is added. As many of them count as the last
// offset, which is where that byte itself stands, has 256s; the row's length may make room for one
// more that means nothing.
size_t RowReader::narrowOffset(size_t index) const {
    const size_t jumpRoom = (row_.size() - 1) / 256;
    const size_t first = maskStart_ - 2;  // of the jump table, which grows downwards
    const size_t count = variableCount();
    if (first < jumpRoom + count) {
        throwDamaged(L"the table of variable columns is longer than the row");
    }
    const size_t entries = first - jumpRoom;
    const size_t jumps = std::min(jumpRoom, (entries - count) / 256);
    size_t offset = row_.get8(entries - index);
    for (size_t i = 0; i < jumps; ++i) {
        if (row_.get8(first - i) <= index) {
            offset += 256;
        }
    }
    return offset;
}

ByteView RowReader::variableBytes(size_t index) const {
    if (index >= variableCount()) {
        return {};
    }
    const bool narrow = format_->row.hasJumpTable;
    const size_t start = narrow ? narrowOffset(index) : wideOffset(index);
    const size_t end = narrow ? narrowOffset(index + 1) : wideOffset(index + 1);
    if (start > end || end > maskStart_) {
        throwDamaged(L"variable column " + std::to_wstring(index) + L" lies from " +
                     std::to_wstring(start) + L" to " + std::to_wstring(end) +
                     L", which is not within the row");
    }
    return row_.sub(start, end - start);
}

}  // namespace sg::jet

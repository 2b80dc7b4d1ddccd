#include "host/jet/database/row_draft.h"

#include "host/jet/format/error.h"
#include "host/jet/pages/long_value_store.h"
#include "host/jet/values/value_codec.h"

namespace sg::jet {
namespace {

constexpr uint8_t inlineMark = longValues::inlineFlag >> 24;

}  // namespace

RowDraft::RowDraft(const TableDefinition& table, const Format& format)
    : table_(&table), format_(&format), parts_(table.columns.size()) {}

void RowDraft::clear() {
    toStoreCount_ = 0;
    givenUpCount_ = 0;
}

Bytes& RowDraft::next(std::vector<LongValue>& list, size_t& count, size_t column) {
    if (count == list.size()) list.emplace_back();
    LongValue& value = list[count++];
    value.column = column;
    return value.bytes;
}

void RowDraft::set(size_t column, const Value& value) {
    const Column& definition = table_->columns[column];
    RowPart& part = parts_[column];
    part.bytes.clear();
    part.isNull = isNull(value);
    if (part.isNull) return;
    if (definition.type == ColumnType::Boolean) {
        const bool* flag = std::get_if<bool>(&value);
        if (flag == nullptr) throw Error(ConversionError, {definition.name});
        part.isNull = !*flag;
        return;
    }
    if (!definition.isLongValue()) {
        encodeValue(definition, value, *format_, part.bytes);
        return;
    }
    Bytes& content = next(toStore_, toStoreCount_, column);
    encodeValue(definition, value, *format_, content);
    if (content.size() > longValues::lengthMask) throw Error(RecordTooLarge);
    // Until it is stored, bytes of the header's size stand for it.
    const bool isInline = content.size() <= mostInlineLongValue;
    part.bytes.resize(longValues::headerSize + (isInline ? content.size() : 0));
}

void RowDraft::keep(size_t column, const RowReader& row) {
    const Column& definition = table_->columns[column];
    RowPart& part = parts_[column];
    if (definition.type == ColumnType::Boolean && !definition.isCalculated()) {
        Value flag;
        row.decode(column, flag);
        set(column, flag);
        return;
    }
    part.isNull = row.isNull(column);
    const ByteView bytes = row.bytes(column);
    part.bytes.assign(bytes.begin(), bytes.end());
}

void RowDraft::giveUp(size_t column, const RowReader& row) {
    if (!table_->columns[column].isLongValue() || row.isNull(column)) return;
    const ByteView header = row.bytes(column);
    if (header.size() < longValues::headerSize || (header.get8(3) & inlineMark) != 0) return;
    next(givenUp_, givenUpCount_, column).assign(header.begin(), header.end());
}

void RowDraft::encode() {
    encodeRow(*table_, *format_, parts_, row_);
}

void RowDraft::store(PageAllocator& allocator) {
    for (size_t i = 0; i < givenUpCount_; ++i) {
        const LongValue& value = givenUp_[i];
        eraseLongValue(allocator, *table_, table_->columns[value.column], ByteView(value.bytes));
    }
    if (toStoreCount_ == 0) return;
    for (size_t i = 0; i < toStoreCount_; ++i) {
        const LongValue& value = toStore_[i];
        storeLongValue(allocator, *table_, table_->columns[value.column], ByteView(value.bytes),
                       parts_[value.column].bytes);
    }
    encode();
}

}  // namespace sg::jet

#include "host/jet/pages/row_encoder.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

constexpr size_t countSize = 2;  // of the column count and of each entry of the variable table
// A row that moves leaves four bytes behind that tell where to, so none is shorter than that.
constexpr size_t shortestRow = 4;

void put16(uint8_t* to, size_t number) {
    to[0] = static_cast<uint8_t>(number);
    to[1] = static_cast<uint8_t>(number >> 8);
}

size_t get16(const uint8_t* from) {
    return static_cast<size_t>(from[0] | from[1] << 8);
}

// Has its value in the null mask alone.
bool isOnlyABit(const Column& column) {
    return column.type == ColumnType::Boolean && !column.isCalculated();
}

// Where the parts of a row lie, from its start.
struct RowShape {
    size_t variableStart = countSize;  // where the fixed columns end
    size_t variableBytes = 0;
    size_t end = 0;  // of the variable data
    size_t tableSize = 0;
    size_t maskStart = 0;
    size_t size = 0;
};

void refuseContradiction(const Column& column) {
    throwDamaged(L"the definition of column " + column.name + L" contradicts its table or type");
}

RowShape shapeOf(const TableDefinition& table, std::span<const RowPart> parts) {
    RowShape shape;
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const RowPart& part = parts[i];
        if (column.number >= table.maxColumns) {
            refuseContradiction(column);
        }
        if (isOnlyABit(column)) {
            continue;
        }
        if (column.isFixed()) {
            if (!part.isNull && part.bytes.size() != column.length) {
                refuseContradiction(column);
            }
            shape.variableStart = std::max(shape.variableStart,
                                           countSize + size_t(column.fixedOffset) + column.length);
        } else {
            if (column.variableIndex >= table.variableColumns) {
                refuseContradiction(column);
            }
            shape.variableBytes += part.isNull ? 0 : part.bytes.size();
        }
    }
    shape.end = shape.variableStart + shape.variableBytes;
    if (table.variableColumns > 0) {
        shape.tableSize = countSize * (size_t(table.variableColumns) + 2);
    }
    const size_t maskSize = (size_t(table.maxColumns) + 7) / 8;
    shape.size = std::max(shape.end + shape.tableSize + maskSize, shortestRow);
    shape.maskStart = shape.size - maskSize;
    return shape;
}

// The table of variable columns, backwards from its end: the number of columns, then where each of
// them begins, and at last where all end. Columns that have no part begin where the next one does.
class VariableTable {
  public:
    VariableTable(uint8_t* end, size_t count) : end_(end), count_(count) {}

    size_t start(size_t index) const { return get16(entry(index)); }

    void fill(const TableDefinition& table, std::span<const RowPart> parts, size_t dataStart) {
        put16(end_ - countSize, count_);
        for (size_t i = 0; i < parts.size(); ++i) {
            const Column& column = table.columns[i];
            if (parts[i].isNull || parts[i].bytes.empty() || column.isFixed() ||
                isOnlyABit(column)) {
                continue;
            }
            uint8_t* size = entry(column.variableIndex);
            if (get16(size) != 0) {
                refuseContradiction(column);
            }
            put16(size, parts[i].bytes.size());
        }
        size_t at = dataStart;
        for (size_t index = 0; index < count_; ++index) {
            const size_t size = get16(entry(index));
            put16(entry(index), at);
            at += size;
        }
        put16(entry(count_), at);
    }

  private:
    uint8_t* entry(size_t index) const { return end_ - countSize * (index + 2); }

    uint8_t* end_;
    size_t count_;
};

}  // namespace

void encodeRow(const TableDefinition& table, const Format& format, std::span<const RowPart> parts,
               Bytes& row) {
    parts = parts.first(table.columns.size());
    const RowShape shape = shapeOf(table, parts);
    if (shape.size > format.row.maxSize) {
        throw Error(RecordTooLarge);
    }
    row.assign(shape.size, 0);
    put16(row.data(), table.maxColumns);
    uint8_t* mask = row.data() + shape.maskStart;
    VariableTable variable(mask, table.variableColumns);
    if (table.variableColumns > 0) {
        variable.fill(table, parts, shape.variableStart);
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].isNull) {
            continue;
        }
        const Column& column = table.columns[i];
        mask[column.number / 8] |= static_cast<uint8_t>(1 << column.number % 8);
        if (isOnlyABit(column) || parts[i].bytes.empty()) {
            continue;
        }
        const size_t at = column.isFixed() ? countSize + column.fixedOffset
                                           : variable.start(column.variableIndex);
        std::memcpy(row.data() + at, parts[i].bytes.data(), parts[i].bytes.size());
    }
}

}  // namespace sg::jet

#include "host/jet/pages/long_value_store.h"

#include <algorithm>
#include <cstring>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/row_store.h"

namespace sg::jet {
namespace {

constexpr size_t chainPointerSize = 4;

void put32(Bytes& bytes, size_t at, uint32_t value) {
    std::memcpy(&bytes[at], &value, 4);
}

RowStore rowsOf(PageAllocator& allocator, const TableDefinition& table, const Column& column) {
    const bool hasMaps = column.ownedPages && column.freePages && column.ownedPages->page != 0;
    return RowStore(allocator, pages::longValueOwner,
                    hasMaps ? *column.ownedPages : table.ownedPages,
                    hasMaps ? *column.freePages : table.freePages);
}

// Puts the rows of a chain down, the last one first since each has to name the next. All but the
// last have the largest size.
RowId storeChain(RowStore& rows, ByteView content, size_t rowSize) {
    const size_t part = rowSize - chainPointerSize;
    const size_t count = (content.size() + part - 1) / part;
    RowId next;
    Bytes row;
    for (size_t i = count; i-- > 0;) {
        const ByteView bytes = content.sub(i * part, std::min(part, content.size() - i * part));
        row.resize(chainPointerSize);
        put32(row, 0, next.packed());
        row.insert(row.end(), bytes.begin(), bytes.end());
        next = rows.insert(ByteView(row));
    }
    return next;
}

void eraseChain(const PageStore& store, RowStore& rows, const LongValueHeader& header) {
    RowId at = header.first;
    for (size_t left = header.length; left != 0;) {
        size_t size = 0;
        RowId next;
        {
            const DataPage page(store, at.page);
            const ByteView row = page.rowBytes(at.row);
            size = row.size();
            if (size <= chainPointerSize)
                throwDamaged(L"the chain of a long value does not end", at.page);
            next = RowId::fromPacked(row.get32(0));
        }
        // Its row is gone when a chain comes back to it, which is found then.
        rows.erase(at);
        left -= std::min(left, size - chainPointerSize);
        at = next;
    }
}

void eraseSingle(const PageStore& store, RowStore& rows, const LongValueHeader& header) {
    const size_t size = DataPage(store, header.first.page).rowBytes(header.first.row).size();
    if (size < header.length)
        throwDamaged(L"a long value of " + std::to_wstring(header.length) + L" bytes has only " +
                         std::to_wstring(size),
                     header.first.page);
    rows.erase(header.first);
}

}  // namespace

void storeLongValue(PageAllocator& allocator, const TableDefinition& table, const Column& column,
                    ByteView content, Bytes& header) {
    if (content.size() > longValues::lengthMask) throw Error(RecordTooLarge);
    header.clear();
    if (content.empty()) return;
    header.resize(longValues::headerSize);
    auto word = static_cast<uint32_t>(content.size());
    if (content.size() <= mostInlineLongValue) {
        put32(header, 0, word | longValues::inlineFlag);
        header.insert(header.end(), content.begin(), content.end());
        return;
    }
    RowStore rows = rowsOf(allocator, table, column);
    const size_t most = allocator.format().maxLongValueRow;
    RowId first;
    if (content.size() <= most) {
        word |= longValues::singleFlag;
        first = rows.insert(content);
    } else {
        first = storeChain(rows, content, most);
    }
    put32(header, 0, word);
    put32(header, longValues::pointer, first.packed());
}

void eraseLongValue(PageAllocator& allocator, const TableDefinition& table, const Column& column,
                    ByteView header) {
    if (header.empty()) return;
    const LongValueHeader value = longValueHeader(header);
    if (value.place == LongValuePlace::Inline || value.length == 0) return;
    const PageStore& store = allocator.pages();
    if (value.length > uint64_t(store.pageCount()) * store.pageSize())
        throwDamaged(L"a long value of " + std::to_wstring(value.length) +
                     L" bytes is longer than the file");
    RowStore rows = rowsOf(allocator, table, column);
    if (value.place == LongValuePlace::SingleRow) {
        eraseSingle(store, rows, value);
    } else {
        eraseChain(store, rows, value);
    }
}

}  // namespace sg::jet

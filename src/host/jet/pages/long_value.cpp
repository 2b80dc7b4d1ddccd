#include "host/jet/pages/long_value.h"

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"

namespace sg::jet {
namespace {

constexpr size_t chainPointerSize = 4;

// Tells a walk along pointers that has come back to where it was, with one remembered place: it is
// moved to the current one whenever the steps since then have doubled.
class CircleGuard {
  public:
    bool returns(RowId at) {
        if (at == remembered_) {
            return true;
        }
        if (++steps_ == limit_) {
            remembered_ = at;
            steps_ = 0;
            limit_ *= 2;
        }
        return false;
    }

  private:
    RowId remembered_;  // page 0 holds no rows
    uint64_t steps_ = 0;
    uint64_t limit_ = 1;
};

void append(Bytes& buffer, ByteView bytes) {
    buffer.insert(buffer.end(), bytes.begin(), bytes.end());
}

void readSingle(const PageStore& store, const LongValueHeader& header, Bytes& buffer) {
    const DataPage page(store, header.first.page);
    const ByteView bytes = page.rowBytes(header.first.row);
    if (bytes.size() < header.length) {
        throwDamaged(L"a long value of " + std::to_wstring(header.length) + L" bytes has only " +
                         std::to_wstring(bytes.size()),
                     page.number());
    }
    append(buffer, bytes.sub(0, header.length));
}

void readChain(const PageStore& store, const LongValueHeader& header, Bytes& buffer) {
    CircleGuard guard;
    RowId at = header.first;
    while (buffer.size() < header.length) {
        if (at.page == 0) {
            throwDamaged(L"a long value of " + std::to_wstring(header.length) +
                         L" bytes ends after " + std::to_wstring(buffer.size()));
        }
        const DataPage page(store, at.page);
        const ByteView row = page.rowBytes(at.row);
        if (row.size() <= chainPointerSize || guard.returns(at)) {
            throwDamaged(L"the chain of a long value does not end", at.page);
        }
        const size_t missing = header.length - buffer.size();
        append(buffer, row.sub(chainPointerSize, std::min(missing, row.size() - chainPointerSize)));
        at = RowId::fromPacked(row.get32(0));
    }
}

}  // namespace

LongValueHeader longValueHeader(ByteView definition) {
    const uint32_t word = definition.get32(0);
    LongValueHeader header;
    header.length = word & longValues::lengthMask;
    if ((word & longValues::inlineFlag) != 0) {
        header.place = LongValuePlace::Inline;
    } else {
        header.place = (word & longValues::singleFlag) != 0 ? LongValuePlace::SingleRow
                                                            : LongValuePlace::Chain;
        header.first = RowId::fromPacked(definition.get32(longValues::pointer));
    }
    return header;
}

ByteView readLongValue(const PageStore& store, ByteView definition, Bytes& buffer) {
    if (definition.empty()) {
        return {};
    }
    const LongValueHeader header = longValueHeader(definition);
    if (header.place == LongValuePlace::Inline) {
        return definition.sub(longValues::headerSize, header.length);
    }
    if (header.length > uint64_t(store.pageCount()) * store.pageSize()) {
        throwDamaged(L"a long value of " + std::to_wstring(header.length) +
                     L" bytes is longer than the file");
    }
    buffer.clear();
    if (header.length == 0) {
        return {};
    }
    if (header.place == LongValuePlace::SingleRow) {
        readSingle(store, header, buffer);
    } else {
        readChain(store, header, buffer);
    }
    return {buffer.data(), buffer.size()};
}

}  // namespace sg::jet

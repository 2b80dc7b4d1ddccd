#include "host/jet/index/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "host/jet/format/error.h"

namespace sg::jet {

namespace {

constexpr size_t kWordBytes = 8;
constexpr size_t kRowSize = 4;
constexpr size_t kChildSize = 4;

// Eight bytes of the mask from `byte` on, as far as there are any.
uint64_t maskWord(ByteView mask, size_t byte) {
    uint64_t word = 0;
    if (byte + kWordBytes <= mask.size()) {
        std::memcpy(&word, mask.data() + byte, kWordBytes);
    } else {
        std::memcpy(&word, mask.data() + byte, mask.size() - byte);
    }
    return word;
}

// Eight bytes as a number that compares as they do.
uint64_t numberAt(const uint8_t* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, kWordBytes);
    return __builtin_bswap64(word);
}

// The first eight bytes, filled up with zeros.
uint64_t leadingBytes(ByteView bytes) {
    uint8_t leading[kWordBytes] = {};
    std::memcpy(leading, bytes.data(), std::min(bytes.size(), kWordBytes));
    return numberAt(leading);
}

int signOf(int difference) {
    return difference < 0 ? -1 : difference > 0 ? 1 : 0;
}

}  // namespace

IndexPage IndexPage::read(const PageStore& store, uint32_t page) {
    return over(store.format(), store.read(page));
}

IndexPage IndexPage::over(const Format& format, PageRef reference) {
    IndexPage page;
    page.page_ = std::move(reference);
    page.format_ = &format;
    const ByteView& bytes = page.page_.bytes();
    const uint32_t number = page.page();
    const uint8_t kind = bytes.get8(0);
    if (kind != static_cast<uint8_t>(PageKind::IndexLeaf) &&
        kind != static_cast<uint8_t>(PageKind::IndexNode)) {
        throwDamaged(L"not an index page", number);
    }
    const IndexPageLayout& layout = page.format_->indexPage;
    page.leaf_ = kind == static_cast<uint8_t>(PageKind::IndexLeaf);
    page.mask_ = bytes.sub(layout.entryMask, layout.entries - layout.entryMask);
    page.entries_ = bytes.from(layout.entries);
    page.end_ = page.lastBit();
    if (page.end_ > page.entries_.size()) {
        throwDamaged(L"index entries reach beyond their page", number);
    }
    // One byte in Jet 3, where the byte behind it is the page's level.
    page.prefixLength_ =
        page.format_->isJet3() ? bytes.get8(layout.prefixLength) : bytes.get16(layout.prefixLength);
    if (!page.empty()) {
        if (page.prefixLength_ > page.after(0)) {
            throwDamaged(L"the common prefix of the index entries is longer than the first",
                         number);
        }
        page.prefix_ = page.entries_.sub(0, page.prefixLength_);
    }
    return page;
}

uint32_t IndexPage::owner() const {
    return page_->get32(format_->indexPage.owner);
}
uint32_t IndexPage::previous() const {
    return page_->get32(format_->indexPage.previous);
}
uint32_t IndexPage::next() const {
    return page_->get32(format_->indexPage.next);
}
uint32_t IndexPage::tail() const {
    return page_->get32(format_->indexPage.tail);
}

// The greatest set bit below `limit`; 0 when there is none, which is where the first entry begins.
size_t IndexPage::greatestBit(size_t limit) const {
    while (limit > 0) {
        // The word whose last byte has the bit before the limit.
        const size_t last = (limit - 1) / 8;
        const size_t byte = last < kWordBytes ? 0 : last + 1 - kWordBytes;
        const uint64_t word = maskWord(mask_, byte) << (byte * 8 + kWordBytes * 8 - limit);
        if (word != 0) return limit - 1 - size_t(std::countl_zero(word));
        limit = byte * 8;
    }
    return 0;
}

// The greatest set bit of all: most pages have room left, and no bits in the last part of the mask.
size_t IndexPage::lastBit() const {
    constexpr size_t step = 4 * kWordBytes;
    size_t size = mask_.size();
    for (; size >= step; size -= step) {
        uint64_t words[4];
        std::memcpy(words, mask_.data() + size - step, step);
        if ((words[0] | words[1] | words[2] | words[3]) != 0) break;
    }
    return greatestBit(size * 8);
}

// Where the entry begins that `offset`, which is below end(), belongs to.
inline size_t IndexPage::entryStart(size_t offset) const {
    const size_t byte = offset / 8;
    if (byte + 1 >= kWordBytes) {
        uint64_t word;
        std::memcpy(&word, mask_.data() + (byte + 1 - kWordBytes), kWordBytes);
        word <<= 7 - offset % 8;
        if (word != 0) return offset - size_t(std::countl_zero(word));
    }
    return greatestBit(offset + 1);
}

size_t IndexPage::before(size_t start) const {
    return greatestBit(start);
}

size_t IndexPage::after(size_t start) const {
    const size_t bit = start + 1;
    const size_t byte = bit / 8;
    if (byte + kWordBytes <= mask_.size()) {
        uint64_t word;
        std::memcpy(&word, mask_.data() + byte, kWordBytes);
        word >>= bit % 8;
        if (word != 0) return bit + size_t(std::countr_zero(word));
    }
    return farAfter(bit);
}

// The least set bit from `bit` on.
size_t IndexPage::farAfter(size_t bit) const {
    uint64_t kept = ~uint64_t(0) << bit % 8;
    for (size_t byte = bit / 8; byte < mask_.size(); byte += kWordBytes) {
        const uint64_t word = maskWord(mask_, byte) & kept;
        if (word != 0) return byte * 8 + size_t(std::countr_zero(word));
        kept = ~uint64_t(0);
    }
    throwDamaged(L"an index entry has no end", page());
}

ByteView IndexPage::stored(size_t start) const {
    const ByteView bytes = entries_.sub(start, after(start) - start);
    const size_t whole = bytes.size() + (start == 0 ? 0 : prefixLength_);
    if (whole <= trailerSize()) throwTooShort();
    return bytes;
}

void IndexPage::throwTooShort() const {
    throwDamaged(L"an index entry is too short", page());
}

size_t IndexPage::entrySize(size_t start) const {
    return stored(start).size() + (start == 0 ? 0 : prefixLength_);
}

void IndexPage::copyEntry(size_t start, std::vector<uint8_t>& entry) const {
    const ByteView bytes = stored(start);
    entry.clear();
    if (start != 0) entry.assign(prefix_.begin(), prefix_.end());
    entry.insert(entry.end(), bytes.begin(), bytes.end());
}

uint32_t IndexPage::child(size_t start) const {
    const ByteView bytes = stored(start);
    // A prefix is what neighbours have in common, and no two entries have a child in common.
    if (bytes.size() < kChildSize) throwDamaged(L"an index entry has no page to lead to", page());
    return bytes.get32Big(bytes.size() - kChildSize);
}

uint32_t IndexPage::lastChild() const {
    if (tail() != 0) return tail();
    if (empty()) throwDamaged(L"an index node leads nowhere", page());
    return child(before(end_));
}

// How the page's prefix is to the beginning of `target`.
int IndexPage::comparePrefix(ByteView target) const {
    const size_t shared = std::min(prefixLength_, target.size());
    return shared == 0 ? 0 : signOf(std::memcmp(prefix_.data(), target.data(), shared));
}

// Of what stands behind the prefix in the entry from `start` to `next`, to what stands there in the
// target.
int IndexPage::compareRest(size_t start, size_t next, ByteView rest) const {
    const size_t begin = start == 0 ? prefixLength_ : start;
    const size_t size = next - begin;
    if (prefixLength_ + size <= trailerSize()) throwTooShort();
    const size_t available = size - std::min(size, leaf_ ? 0 : kChildSize);
    const size_t common = std::min(available, rest.size());
    if (common != 0) {
        const int difference = std::memcmp(entries_.data() + begin, rest.data(), common);
        if (difference != 0) return signOf(difference);
    }
    return available < rest.size() ? -1 : 0;
}

int IndexPage::compare(size_t start, ByteView target) const {
    const int order = comparePrefix(target);
    if (order != 0 || target.size() < prefixLength_) return order;
    return compareRest(start, after(start), target.from(prefixLength_));
}

// Entries have no numbers, so the halves are of bytes: the middle byte's entry is compared. Which
// half it is cannot be foretold, hence no branches on it; up to eight bytes decide nearly always.
size_t IndexPage::search(ByteView target, bool beyond) const {
    if (empty()) return 0;
    const int order = comparePrefix(target);
    if (order != 0 || target.size() < prefixLength_) {
        return order < 0 || (order == 0 && beyond) ? end_ : 0;
    }
    const ByteView rest = target.from(prefixLength_);
    const size_t wanted = std::min(rest.size(), kWordBytes);
    if (wanted == 0) return beyond ? end_ : 0;
    const size_t unused = (kWordBytes - wanted) * 8;
    const uint64_t other = leadingBytes(rest) >> unused;
    const size_t child = leaf_ ? 0 : kChildSize;
    size_t low = 0;
    size_t high = end_;
    while (low < high) {
        const size_t start = entryStart((low + high) / 2);
        const size_t next = after(start);
        const size_t begin = start == 0 ? prefixLength_ : start;
        const size_t word = std::min(begin, entries_.size() - kWordBytes);
        const uint64_t mine = numberAt(entries_.data() + word) >> unused;
        bool isBefore = mine < other;
        if (mine == other || word != begin || next - begin < wanted + child) {
            const int difference = compareRest(start, next, rest);
            isBefore = difference < 0 || (difference == 0 && beyond);
        }
        const size_t right = 0 - size_t(isBefore);
        low = (next & right) | (low & ~right);
        high = (high & right) | (start & ~right);
    }
    return low;
}

ByteView entryKey(ByteView entry, bool leaf) {
    const size_t trailer = leaf ? kRowSize : kRowSize + kChildSize;
    return entry.sub(0, entry.size() - std::min(entry.size(), trailer));
}

RowId entryRow(ByteView entry, bool leaf) {
    const ByteView key = entryKey(entry, leaf);
    return RowId::fromPacked(entry.get32Big(key.size()));
}

}  // namespace sg::jet

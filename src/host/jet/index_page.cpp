#include "host/jet/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "host/jet/error.h"

namespace sg::jet {

namespace {

constexpr size_t kWordBits = 64;
constexpr size_t kRowSize = 4;
constexpr size_t kChildSize = 4;

// Eight bytes of the mask from `byte` on, as far as there are any.
uint64_t maskWord(ByteView mask, size_t byte) {
    uint64_t word = 0;
    std::memcpy(&word, mask.data() + byte, std::min(sizeof word, mask.size() - byte));
    return word;
}

int signOf(int difference) {
    return difference < 0 ? -1 : difference > 0 ? 1 : 0;
}

}  // namespace

IndexPage IndexPage::read(const PageStore& store, uint32_t number) {
    IndexPage page;
    page.page_ = store.read(number);
    page.format_ = &store.format();
    const ByteView& bytes = page.page_.bytes();
    const uint8_t kind = bytes.get8(0);
    if (kind != static_cast<uint8_t>(PageKind::IndexLeaf) &&
        kind != static_cast<uint8_t>(PageKind::IndexNode)) {
        throwDamaged(L"not an index page", number);
    }
    const IndexPageLayout& layout = page.format_->indexPage;
    page.leaf_ = kind == static_cast<uint8_t>(PageKind::IndexLeaf);
    page.mask_ = bytes.sub(layout.entryMask, layout.entries - layout.entryMask);
    page.entries_ = bytes.from(layout.entries);
    page.end_ = page.greatestBit(page.mask_.size() * 8);
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
    size_t byte = (limit + 7) / 8;
    size_t bits = limit;
    while (bits > 0) {
        byte = (bits - 1) / kWordBits * 8;
        uint64_t word = maskWord(mask_, byte);
        const size_t used = bits - byte * 8;
        if (used < kWordBits) word &= (uint64_t(1) << used) - 1;
        if (word != 0) return byte * 8 + (kWordBits - 1) - size_t(std::countl_zero(word));
        bits = byte * 8;
    }
    return 0;
}

// Where the entry begins that `offset`, which is below end(), belongs to.
size_t IndexPage::entryStart(size_t offset) const {
    return greatestBit(offset + 1);
}

size_t IndexPage::before(size_t start) const {
    return greatestBit(start);
}

size_t IndexPage::after(size_t start) const {
    const size_t bit = start + 1;
    size_t byte = bit / kWordBits * 8;
    uint64_t keep = ~uint64_t(0) << (bit % kWordBits);
    for (; byte < mask_.size(); byte += 8) {
        const uint64_t word = maskWord(mask_, byte) & keep;
        if (word != 0) return byte * 8 + size_t(std::countr_zero(word));
        keep = ~uint64_t(0);
    }
    throwDamaged(L"an index entry has no end", page());
}

ByteView IndexPage::stored(size_t start) const {
    const ByteView bytes = entries_.sub(start, after(start) - start);
    const size_t whole = bytes.size() + (start == 0 ? 0 : prefixLength_);
    if (whole <= trailerSize()) throwDamaged(L"an index entry is too short", page());
    return bytes;
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

int IndexPage::compare(size_t start, ByteView target) const {
    const ByteView bytes = stored(start);
    const size_t shared = start == 0 ? 0 : prefixLength_;
    const size_t fromPrefix = std::min(shared, target.size());
    if (fromPrefix != 0) {
        const int difference = std::memcmp(prefix_.data(), target.data(), fromPrefix);
        if (difference != 0 || fromPrefix == target.size()) return signOf(difference);
    }
    const size_t child = leaf_ ? 0 : kChildSize;
    const size_t available = bytes.size() > child ? bytes.size() - child : 0;
    const size_t wanted = target.size() - fromPrefix;
    const size_t common = std::min(available, wanted);
    if (common != 0) {
        const int difference = std::memcmp(bytes.data(), target.data() + fromPrefix, common);
        if (difference != 0) return signOf(difference);
    }
    return available < wanted ? -1 : 0;
}

// Entries have no numbers, so the halves are of bytes: the middle byte's entry is compared.
size_t IndexPage::search(ByteView target, bool beyond) const {
    size_t low = 0;
    size_t high = end_;
    while (low < high) {
        const size_t start = entryStart((low + high) / 2);
        const int order = compare(start, target);
        if (order > 0 || (order == 0 && !beyond)) {
            high = start;
        } else {
            low = after(start);
        }
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

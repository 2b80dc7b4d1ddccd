#include "host/jet/index/index_page_editor.h"

#include <algorithm>
#include <cstring>

#include "host/jet/format/error.h"

namespace sg::jet {

namespace {

constexpr size_t kChildSize = 4;
constexpr size_t kWordBits = 64;

// The mask as words, of which the last one is not whole.
class MaskWords {
  public:
    explicit MaskWords(std::span<uint8_t> bytes) : bytes_(bytes) {}

    // Moves the bits from `from` to `end` up, with zeros in the gap, or down, with zeros behind
    // them. Above `end` there are none.
    void moveUp(size_t from, size_t end, size_t distance);
    void moveDown(size_t from, size_t end, size_t distance);
    bool isSet(size_t bit) const { return (bytes_[bit / 8] >> bit % 8 & 1) != 0; }
    void set(size_t bit) { bytes_[bit / 8] |= static_cast<uint8_t>(1u << bit % 8); }

  private:
    static uint64_t below(size_t bit) { return (uint64_t(1) << bit % kWordBits) - 1; }
    size_t sizeAt(size_t word) const { return std::min<size_t>(8, bytes_.size() - word * 8); }

    uint64_t load(size_t word) const {
        uint64_t bits = 0;
        if (word * 8 + 8 <= bytes_.size()) {
            std::memcpy(&bits, bytes_.data() + word * 8, 8);
        } else if (word * 8 < bytes_.size()) {
            std::memcpy(&bits, bytes_.data() + word * 8, sizeAt(word));
        }
        return bits;
    }
    void store(size_t word, uint64_t bits) {
        if (word * 8 + 8 <= bytes_.size()) {
            std::memcpy(bytes_.data() + word * 8, &bits, 8);
        } else {
            std::memcpy(bytes_.data() + word * 8, &bits, sizeAt(word));
        }
    }
    // 64 bits from `bit` on.
    uint64_t at(size_t bit) const {
        const size_t shift = bit % kWordBits;
        const uint64_t low = load(bit / kWordBits) >> shift;
        return shift == 0 ? low : low | load(bit / kWordBits + 1) << (kWordBits - shift);
    }

    std::span<uint8_t> bytes_;
};

void MaskWords::moveUp(size_t from, size_t end, size_t distance) {
    if (from > end) return;
    const size_t first = from + distance;
    for (size_t word = (end + distance) / kWordBits + 1; word-- > first / kWordBits;) {
        const size_t to = word * kWordBits;
        uint64_t bits = to >= distance ? at(to - distance) : load(0) << (distance - to);
        if (word == first / kWordBits) bits = (bits & ~below(first)) | (load(word) & below(first));
        store(word, bits);
    }
    for (size_t word = from / kWordBits; word <= (first - 1) / kWordBits; ++word) {
        uint64_t kept = 0;
        if (word == from / kWordBits) kept |= below(from);
        if (word == first / kWordBits) kept |= ~below(first);
        store(word, load(word) & kept);
    }
}

void MaskWords::moveDown(size_t from, size_t end, size_t distance) {
    const size_t first = from - distance;
    for (size_t word = first / kWordBits; word <= end / kWordBits; ++word) {
        uint64_t bits = at(word * kWordBits + distance);
        if (word == first / kWordBits) bits = (bits & ~below(first)) | (load(word) & below(first));
        store(word, bits);
    }
}

size_t commonLength(ByteView a, ByteView b) {
    const size_t limit = std::min(a.size(), b.size());
    return static_cast<size_t>(std::mismatch(a.begin(), a.begin() + limit, b.begin()).first -
                               a.begin());
}

}  // namespace

// --- entries ---

IndexEntries::IndexEntries(const IndexPage& page) : leaf_(page.isLeaf()) {
    std::vector<uint8_t> entry;
    for (size_t at = 0; at < page.end(); at = page.after(at)) {
        page.copyEntry(at, entry);
        append(ByteView(entry));
    }
}

ByteView IndexEntries::sortedPart(size_t i) const {
    const ByteView entry = (*this)[i];
    return entry.sub(0, entry.size() - (leaf_ ? 0 : kChildSize));
}

uint32_t IndexEntries::child(size_t i) const {
    const ByteView entry = (*this)[i];
    return entry.get32Big(entry.size() - kChildSize);
}

std::vector<uint8_t> IndexEntries::leadingTo(size_t i, uint32_t child) const {
    const ByteView sorted = sortedPart(i);
    std::vector<uint8_t> entry(sorted.begin(), sorted.end());
    appendBig(entry, child);
    return entry;
}

void appendBig(std::vector<uint8_t>& entry, uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        entry.push_back(static_cast<uint8_t>(number >> shift));
}

void IndexEntries::append(ByteView entry) {
    bytes_.insert(bytes_.end(), entry.begin(), entry.end());
    ends_.push_back(bytes_.size());
}

void IndexEntries::append(const IndexEntries& others) {
    for (size_t i = 0; i < others.size(); ++i)
        append(others[i]);
}

void IndexEntries::dropLast() {
    ends_.pop_back();
    bytes_.resize(ends_.empty() ? 0 : ends_.back());
}

void IndexEntries::insert(size_t i, ByteView entry) {
    const size_t begin = i == 0 ? 0 : ends_[i - 1];
    bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(begin), entry.begin(), entry.end());
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(i), begin);
    for (size_t at = i; at < ends_.size(); ++at)
        ends_[at] += entry.size();
}

size_t IndexEntries::shared(size_t i, uint32_t page) const {
    const ByteView before = sortedPart(i - 1);
    const ByteView entry = sortedPart(i);
    const size_t length = commonLength(before, entry);
    const bool ascending = length < entry.size() && (length == before.size() ||
                                                     before.data()[length] < entry.data()[length]);
    if (!ascending) throwDamaged(L"index entries are out of order", page);
    return length;
}

size_t IndexEntries::commonPrefix(size_t first, size_t last, uint32_t page) const {
    if (last - first < 2) return 0;
    size_t prefix = sortedPart(first).size();
    for (size_t i = first + 1; i < last; ++i)
        prefix = std::min(prefix, shared(i, page));
    return prefix;
}

size_t IndexEntries::packedSize(size_t first, size_t last, size_t prefix) const {
    if (first == last) return 0;
    const size_t begin = first == 0 ? 0 : ends_[first - 1];
    return ends_[last - 1] - begin - (last - first - 1) * prefix;
}

// --- the page ---

void IndexPageEditor::put16(size_t offset, uint16_t value) {
    std::memcpy(page_.data() + offset, &value, sizeof value);
}

void IndexPageEditor::put32(size_t offset, uint32_t value) {
    std::memcpy(page_.data() + offset, &value, sizeof value);
}

size_t IndexPageEditor::prefixLength() const {
    uint16_t length;
    std::memcpy(&length, page_.data() + layout_->prefixLength, sizeof length);
    return length;
}

void IndexPageEditor::setPrefixLength(size_t length) {
    put16(layout_->prefixLength, static_cast<uint16_t>(length));
}

void IndexPageEditor::setEnd(size_t end) {
    put16(layout_->freeSpace, static_cast<uint16_t>(capacity() - end));
}

void IndexPageEditor::clear(uint32_t table, uint8_t level) {
    std::fill(page_.begin(), page_.end(), uint8_t(0));
    const PageKind kind = level == 0 ? PageKind::IndexLeaf : PageKind::IndexNode;
    page_[0] = static_cast<uint8_t>(kind);
    page_[1] = 1;
    page_[layout_->level] = level;
    put32(layout_->owner, table);
    setEnd(0);
}

void IndexPageEditor::copy(ByteView page) {
    std::memcpy(page_.data(), page.data(), page_.size());
}

// The first entry has the prefix, so that a new first one is put behind the prefix too: the bytes
// before are its own, and those of the old first that are left behind it need no prefix any more.
bool IndexPageEditor::insert(size_t start, size_t end, ByteView entry) {
    if (end == 0) setPrefixLength(0);
    const size_t prefix = prefixLength();
    uint8_t* const entries = page_.data() + layout_->entries;
    const bool leaf = page_[0] == static_cast<uint8_t>(PageKind::IndexLeaf);
    if (entry.size() <= prefix + (leaf ? 0 : kChildSize)) return false;
    const size_t added = entry.size() - prefix;
    if (added > capacity() - end) return false;
    if (prefix != 0 && std::memcmp(entries, entry.data(), prefix) != 0) return false;
    if (start == 0 && prefix != 0 && MaskWords(mask()).isSet(prefix)) return false;
    const size_t at = start == 0 ? prefix : start;
    std::memmove(entries + at + added, entries + at, end - at);
    std::memcpy(entries + at, entry.data() + prefix, added);
    MaskWords words(mask());
    words.moveUp(at + 1, end, added);
    words.set(at + added);
    setEnd(end + added);
    return true;
}

bool IndexPageEditor::erase(size_t start, size_t next, size_t end) {
    const bool only = start == 0 && next == end;
    if (only) setPrefixLength(0);
    const size_t at = start == 0 ? prefixLength() : start;
    if (at >= next) return false;
    uint8_t* const entries = page_.data() + layout_->entries;
    std::memmove(entries + at, entries + next, end - next);
    MaskWords(mask()).moveDown(next + 1, end, next - at);
    setEnd(end - (next - at));
    return true;
}

void IndexPageEditor::layOut(const IndexEntries& entries, size_t first, size_t last,
                             size_t prefix) {
    const std::span<uint8_t> bits = mask();
    std::fill(bits.begin(), bits.end(), uint8_t(0));
    MaskWords words(bits);
    uint8_t* const bytes = page_.data() + layout_->entries;
    size_t end = 0;
    for (size_t i = first; i < last; ++i) {
        const ByteView entry = entries[i].from(i == first ? 0 : prefix);
        std::memcpy(bytes + end, entry.data(), entry.size());
        end += entry.size();
        words.set(end);
    }
    setPrefixLength(prefix);
    setEnd(end);
}

}  // namespace sg::jet

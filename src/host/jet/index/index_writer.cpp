#include "host/jet/index/index_writer.h"

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/pages/usage_map_editor.h"

namespace sg::jet {

namespace {

constexpr size_t kRowSize = 4;

void makeEntry(ByteView key, RowId row, std::vector<uint8_t>& entry) {
    entry.assign(key.begin(), key.end());
    appendBig(entry, row.packed());
}

bool holds(const IndexPage& leaf, size_t position, ByteView entry) {
    return position < leaf.end() && leaf.compare(position, entry) == 0 &&
           leaf.entrySize(position) == entry.size();
}

}  // namespace

IndexWriter::IndexWriter(PageAllocator& allocator, const RealIndex& index, uint32_t table)
    : allocator_(&allocator),
      format_(&allocator.format()),
      root_(index.rootPage),
      owned_(index.ownedPages),
      table_(table),
      capacity_(IndexPageEditor::capacity(*format_)) {}

IndexPageEditor IndexWriter::edit(uint32_t page) const {
    return {*format_, pages().write(page)};
}

IndexPage IndexWriter::read(uint32_t number) const {
    IndexPage page = IndexPage::over(*format_, pages().read(number));
    if (page.owner() != table_) throwDamaged(L"an index has a page of another table", number);
    return page;
}

// To the leaf where `target` is or belongs, and to its place there.
IndexPage IndexWriter::descend(ByteView target) const {
    path_.clear();
    uint32_t number = root_;
    while (path_.size() < maxIndexDepth) {
        IndexPage page = read(number);
        size_t position = page.search(target, false);
        const bool isLast = !page.isLeaf() && position == page.end();
        const bool byTail = isLast && page.tail() != 0;
        if (isLast) {
            number = page.lastChild();
            if (!byTail) position = page.before(page.end());
        }
        path_.push_back({page.page(), position, byTail});
        if (page.isLeaf()) return page;
        if (!isLast) number = page.child(position);
    }
    path_.clear();
    throwDamaged(L"an index is too deep", root_);
}

// The leaf of the last descent serves for neighbours of its entries, and at the tree's ends for
// what is beyond them.
bool IndexWriter::staysOn(const IndexPage& leaf, ByteView target) const {
    if (path_.size() == 1) return true;
    if (leaf.empty()) return false;
    if (leaf.previous() != 0 && leaf.compare(0, target) >= 0) return false;
    return leaf.next() == 0 || leaf.compare(leaf.before(leaf.end()), target) >= 0;
}

IndexPage IndexWriter::locate(ByteView target) const {
    if (path_.empty()) return descend(target);
    IndexPage leaf = read(path_.back().page);
    if (!leaf.isLeaf() || !staysOn(leaf, target)) return descend(target);
    path_.back().position = leaf.search(target, false);
    return leaf;
}

bool IndexWriter::isOnRightEdge() const {
    return std::all_of(path_.begin(), path_.end() - 1, [](const Step& step) { return step.tail; });
}

bool IndexWriter::contains(ByteView key, RowId except) const {
    IndexPage leaf = locate(key);
    size_t at = path_.back().position;
    for (uint32_t left = pages().pageCount(); left > 0; --left) {
        for (; at < leaf.end(); at = leaf.after(at)) {
            if (leaf.compare(at, key) != 0) return false;
            if (leaf.entrySize(at) != key.size() + kRowSize) continue;
            leaf.copyEntry(at, found_);
            if (entryRow(ByteView(found_), true) != except) return true;
        }
        const uint32_t next = leaf.next();
        if (next == 0) return false;
        leaf = read(next);
        if (!leaf.isLeaf()) throwDamaged(L"an index leaf has a neighbour that is none", next);
        at = 0;
    }
    throwDamaged(L"the pages of an index go round in a circle", leaf.page());
}

// Whether a neighbour of the place that was found has this key, too. Nothing where the neighbour is
// on another leaf.
std::optional<bool> IndexWriter::isBesideEqual(const IndexPage& leaf, ByteView key) const {
    const size_t position = path_.back().position;
    const auto isEqual = [&](size_t at) {
        return leaf.entrySize(at) == key.size() + kRowSize && leaf.compare(at, key) == 0;
    };
    if (position < leaf.end() && isEqual(position)) return true;
    if (position > 0 && isEqual(leaf.before(position))) return true;
    const bool isWhole =
        (position > 0 || leaf.previous() == 0) && (position < leaf.end() || leaf.next() == 0);
    return isWhole ? std::optional(false) : std::nullopt;
}

bool IndexWriter::insert(ByteView key, RowId row) {
    if (key.size() > maxKeySize) throw Error(RecordTooLarge, {}, {.detail = L"an index key"});
    makeEntry(key, row, entry_);
    const ByteView entry(entry_);
    IndexPage leaf = locate(entry);
    std::optional<bool> isKnown = isBesideEqual(leaf, key);
    if (!isKnown) {
        isKnown = contains(key);
        leaf = locate(entry);
    }
    const size_t position = path_.back().position;
    size_t end = leaf.end();
    if (holds(leaf, position, entry)) throwDamaged(L"the index has the row already", leaf.page());
    Place place = Place::Between;
    if (position == end && leaf.next() == 0) {
        place = Place::Last;
    } else if (position == 0 && leaf.previous() == 0) {
        place = Place::First;
    }
    leaf = {};
    if (position == end && !isOnRightEdge()) {
        setBound(entry_);
        end = read(path_.back().page).end();
    }
    put(leafDepth(), path_.back().position, end, entry, place);
    return !*isKnown;
}

bool IndexWriter::erase(ByteView key, RowId row) {
    makeEntry(key, row, entry_);
    const ByteView entry(entry_);
    IndexPage leaf = locate(entry);
    const uint32_t page = leaf.page();
    const size_t position = path_.back().position;
    const size_t end = leaf.end();
    if (!holds(leaf, position, entry)) return false;
    const size_t next = leaf.after(position);
    const bool empties = position == 0 && next == end;
    const bool movesBound = !empties && next == end && !isOnRightEdge();
    std::vector<uint8_t> last;
    if (movesBound) leaf.copyEntry(leaf.before(position), last);
    leaf = {};
    take(page, position, next, end);
    if (path_.size() == 1) return true;
    if (empties) {
        const std::vector<uint8_t> near = removePage(leafDepth());
        tidy(near.empty() ? entry : ByteView(near), true);
        return true;
    }
    if (movesBound) setBound(last);
    if (end - (next - position) < sparseSize()) tidy(entry, false);
    return true;
}

void IndexWriter::take(uint32_t page, size_t start, size_t next, size_t end) {
    if (!edit(page).erase(start, next, end))
        throwDamaged(L"the common prefix of the index entries is longer than the first", page);
}

// --- growing ---

// Puts an entry before the one at `position`. Answers whether path_ still tells the way.
bool IndexWriter::put(size_t depth, size_t position, size_t end, ByteView entry, Place place) {
    const uint32_t number = path_[depth].page;
    if (edit(number).insert(position, end, entry)) return true;
    IndexPage page = read(number);
    IndexEntries entries(page);
    size_t added = 0;
    for (size_t at = 0; at < position; at = page.after(at))
        ++added;
    page = {};
    entries.insert(added, entry);
    const size_t prefix = entries.commonPrefix(0, entries.size(), number);
    if (entries.packedSize(0, entries.size(), prefix) > capacity_) {
        split(depth, entries, added, place);
        return false;
    }
    edit(number).layOut(entries, 0, entries.size(), prefix);
    const bool holds = depth == leafDepth();
    if (!holds) path_.clear();
    return holds;
}

// The first entries of a full page go to a new one before it, so that the entry which leads to the
// page stays true.
void IndexWriter::split(size_t depth, const IndexEntries& entries, size_t added, Place place) {
    const uint32_t number = path_[depth].page;
    const size_t middle = splitPlace(entries, added, place, number);
    if (levelAt(depth) > 1) separateChildren(entries, middle, read(number).tail());
    if (depth == 0) return splitRoot(entries, middle);

    const uint32_t left = layOutLeft(entries, middle, levelAt(depth));
    const uint32_t previous = read(number).previous();
    layOutRest(number, entries, middle);
    link(previous, left);
    link(left, number);
    addChildBefore(depth - 1, entries.leadingTo(middle - 1, left), place);
    path_.clear();
}

void IndexWriter::splitRoot(const IndexEntries& entries, size_t middle) {
    const uint8_t level = levelAt(0);
    if (level + 2u > maxIndexDepth) throwDamaged(L"an index is too deep", root_);
    const uint32_t left = layOutLeft(entries, middle, level);
    const uint32_t right = newPage(level);
    layOutRest(right, entries, middle);
    edit(right).setTail(read(root_).tail());
    link(left, right);

    const std::vector<uint8_t> bound = entries.leadingTo(middle - 1, left);
    IndexPageEditor root = edit(root_);
    root.clear(table_, static_cast<uint8_t>(level + 1));
    root.insert(0, 0, ByteView(bound));
    root.setTail(right);
    path_.clear();
}

// A new page with the entries before `middle`; of a node's the last child is its tail, unless it
// would be the only one.
uint32_t IndexWriter::layOutLeft(const IndexEntries& entries, size_t middle, uint8_t level) {
    const uint32_t left = newPage(level);
    const bool hasTail = !entries.isLeaf() && middle > 1;
    const size_t count = hasTail ? middle - 1 : middle;
    IndexPageEditor page = edit(left);
    page.layOut(entries, 0, count, entries.commonPrefix(0, count, left));
    if (hasTail) page.setTail(entries.child(count));
    return left;
}

void IndexWriter::layOutRest(uint32_t page, const IndexEntries& entries, size_t middle) {
    const size_t prefix = entries.commonPrefix(middle, entries.size(), page);
    edit(page).layOut(entries, middle, entries.size(), prefix);
}

// How many entries go to the left: half of the bytes; but where entries come in order, at one of
// the tree's ends, all of them or as few as possible.
size_t IndexWriter::splitPlace(const IndexEntries& entries, size_t added, Place place,
                               uint32_t page) const {
    const size_t count = entries.size();
    std::vector<size_t> right(count + 1);  // the size of the entries from there on
    size_t shared = capacity_;
    for (size_t i = count; i-- > 1;) {
        right[i] = entries.packedSize(i, count, i + 1 < count ? shared : 0);
        shared = std::min(shared, entries.shared(i, page));
    }
    size_t wanted = 0;
    if (place == Place::Last && added + 1 == count) wanted = count - 1;
    if (place == Place::First && added == 0)
        wanted = entries.isLeaf() ? 1 : std::min<size_t>(2, count - 1);

    size_t best = 0;
    size_t bestDifference = 0;
    shared = capacity_;
    for (size_t middle = 1; middle < count; ++middle) {
        // A node's last child on the left needs no entry.
        const size_t stored = entries.isLeaf() ? middle : std::max<size_t>(1, middle - 1);
        if (stored > 1) shared = std::min(shared, entries.shared(stored - 1, page));
        const size_t left = entries.packedSize(0, stored, stored > 1 ? shared : 0);
        if (left > capacity_ || right[middle] > capacity_) continue;
        if (middle == wanted) return middle;
        const size_t difference =
            left > right[middle] ? left - right[middle] : right[middle] - left;
        if (best == 0 || difference < bestDifference) {
            best = middle;
            bestDifference = difference;
        }
    }
    if (best == 0) throw Error(RecordTooLarge, {}, {.page = page, .detail = L"an index key"});
    return best;
}

// Names a child before the one that the path leads to.
void IndexWriter::addChildBefore(size_t depth, const std::vector<uint8_t>& entry, Place place) {
    const Step step = path_[depth];
    IndexPage node = read(step.page);
    size_t position = step.position;
    size_t end = node.end();
    if (node.tail() == 0) {
        // With more than one child the last is the tail.
        const size_t start = node.before(end);
        const uint32_t child = node.child(start);
        node = {};
        take(step.page, start, end, end);
        edit(step.page).setTail(child);
        end = read(step.page).end();
        if (position == start) position = end;
    }
    node = {};
    put(depth, position, end, ByteView(entry), place);
}

// Nodes are neighbours only below the same node: those on both sides of the split are none any
// more.
void IndexWriter::separateChildren(const IndexEntries& entries, size_t middle, uint32_t tail) {
    const uint32_t left = entries.child(middle - 1);
    const uint32_t right = middle < entries.size() ? entries.child(middle) : tail;
    link(left, 0);
    link(0, right);
}

uint32_t IndexWriter::newPage(uint8_t level) {
    const uint32_t page = allocator_->allocate();
    edit(page).clear(table_, level);
    addToMap(*allocator_, owned_, page);
    return page;
}

void IndexWriter::link(uint32_t left, uint32_t right) {
    // read() makes sure that they are pages of the tree.
    if (left != 0) edit(read(left).page()).setNext(right);
    if (right != 0) edit(read(right).page()).setPrevious(left);
}

}  // namespace sg::jet

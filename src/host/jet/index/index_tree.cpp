#include "host/jet/index/index_tree.h"

#include <algorithm>

#include "host/jet/format/error.h"

namespace sg::jet {

namespace {

// Steps over empty pages: no more of them than the file has pages.
class StepLimit {
  public:
    explicit StepLimit(const PageStore& store) : left_(store.pageCount()) {}
    void step(uint32_t page) {
        if (left_-- == 0) throwDamaged(L"the pages of an index go round in a circle", page);
    }

  private:
    uint32_t left_;
};

IndexPage readLeaf(const PageStore& store, uint32_t page) {
    IndexPage leaf = IndexPage::read(store, page);
    if (!leaf.isLeaf()) throwDamaged(L"an index leaf has a neighbour that is none", page);
    return leaf;
}

}  // namespace

// To the leaf that the bound is on, and to its place there, which may be that leaf's end.
bool IndexCursor::descendToBound(ByteView target, bool beyond) {
    valid_ = false;
    uint32_t page = root_;
    for (size_t depth = 0; depth < maxIndexDepth; ++depth) {
        leaf_ = IndexPage::read(*store_, page);
        position_ = leaf_.search(target, beyond);
        if (leaf_.isLeaf()) return true;
        page = position_ < leaf_.end() ? leaf_.child(position_) : leaf_.lastChild();
    }
    throwDamaged(L"an index is too deep", root_);
}

// The children of a node are taken to be of one size.
double IndexCursor::shareBefore(ByteView key, bool beyond) const {
    double share = 0;
    double width = 1;
    uint32_t next = root_;
    for (size_t depth = 0; depth < maxIndexDepth; ++depth) {
        const IndexPage page = IndexPage::read(*store_, next);
        const size_t bound = page.search(key, beyond);
        size_t before = 0;
        size_t all = !page.isLeaf() && page.tail() != 0 ? 1 : 0;
        for (size_t at = 0; at < page.end(); at = page.after(at)) {
            before += at < bound ? 1 : 0;
            ++all;
        }
        if (all == 0) return share;
        width /= static_cast<double>(all);
        share += width * static_cast<double>(before);
        if (page.isLeaf()) return share;
        next = bound < page.end() ? page.child(bound) : page.lastChild();
    }
    throwDamaged(L"an index is too deep", root_);
}

bool IndexCursor::descendToEnd() {
    valid_ = false;
    uint32_t page = root_;
    for (size_t depth = 0; depth < maxIndexDepth; ++depth) {
        leaf_ = IndexPage::read(*store_, page);
        position_ = leaf_.end();
        if (leaf_.isLeaf()) return true;
        page = leaf_.lastChild();
    }
    throwDamaged(L"an index is too deep", root_);
}

bool IndexCursor::settle() {
    leaf_.copyEntry(position_, entry_);
    valid_ = true;
    return true;
}

// From the end of a leaf to the first entry behind it.
bool IndexCursor::moveForward() {
    StepLimit limit(*store_);
    while (position_ >= leaf_.end()) {
        const uint32_t next = leaf_.next();
        if (next == 0) return nowhere();
        limit.step(next);
        leaf_ = readLeaf(*store_, next);
        position_ = 0;
    }
    return settle();
}

// To the last entry before the current place.
bool IndexCursor::moveBackward() {
    StepLimit limit(*store_);
    while (position_ == 0) {
        const uint32_t previous = leaf_.previous();
        if (previous == 0) return nowhere();
        limit.step(previous);
        leaf_ = readLeaf(*store_, previous);
        position_ = leaf_.end();
    }
    position_ = leaf_.before(position_);
    return settle();
}

bool IndexCursor::first() {
    descendToBound({}, false);
    return moveForward();
}

bool IndexCursor::last() {
    descendToEnd();
    return moveBackward();
}

// Entries on one page are in order by the way they are searched; a step to another page is checked,
// since a chain that goes round would have no end.
bool IndexCursor::next() {
    if (!valid_) return false;
    const uint32_t from = leaf_.page();
    position_ = leaf_.after(position_);
    if (position_ < leaf_.end()) return settle();
    passed_ = entry_;
    if (!moveForward()) return false;
    if (!(passed_ < entry_)) throwDamaged(L"index entries are out of order", from);
    return true;
}

bool IndexCursor::previous() {
    if (!valid_) return false;
    const uint32_t from = leaf_.page();
    if (position_ != 0) return moveBackward();
    passed_ = entry_;
    if (!moveBackward()) return false;
    if (!(entry_ < passed_)) throwDamaged(L"index entries are out of order", from);
    return true;
}

bool IndexCursor::lowerBound(ByteView key) {
    descendToBound(key, false);
    return moveForward();
}

bool IndexCursor::upperBound(ByteView key) {
    descendToBound(key, true);
    return moveForward();
}

bool IndexCursor::lastBefore(ByteView key) {
    descendToBound(key, false);
    return moveBackward();
}

bool IndexCursor::lastUpTo(ByteView key) {
    descendToBound(key, true);
    return moveBackward();
}

bool IndexCursor::seek(ByteView key) {
    if (!lowerBound(key)) return false;
    if (leaf_.compare(position_, key) != 0) return nowhere();
    return this->key().size() >= key.size() || nowhere();
}

bool IndexCursor::find(ByteView key, RowId row) {
    searched_.assign(key.begin(), key.end());
    const uint32_t packed = row.packed();
    for (int shift = 24; shift >= 0; shift -= 8)
        searched_.push_back(static_cast<uint8_t>(packed >> shift));
    if (!lowerBound(ByteView(searched_))) return false;
    return entry_ == searched_ || nowhere();
}

}  // namespace sg::jet

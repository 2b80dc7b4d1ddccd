#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/index/index_writer.h"
#include "host/jet/pages/usage_map_editor.h"

// What happens to a tree's pages when entries are erased: empty ones go, sparse ones join, and the
// nodes above them follow.
namespace sg::jet {

namespace {

constexpr size_t kChildSize = 4;

}  // namespace

// Makes `last` what the nodes say of the greatest entry below them, where it is the greatest: in
// the node's entry that leads to it, and where that is the node's last one in the node above too.
// Every round changes one node for good.
void IndexWriter::setBound(const std::vector<uint8_t>& last) {
    for (size_t round = 0; round < 2 * maxIndexDepth; ++round) {
        descend(ByteView(last));
        bool isDone = true;
        for (size_t depth = leafDepth(); depth-- > 0 && isDone;) {
            const Step step = path_[depth];
            if (step.tail) continue;
            IndexPage node = read(step.page);
            const size_t next = node.after(step.position);
            const bool isLast = next == node.end() && node.tail() == 0;
            node.copyEntry(step.position, found_);
            const auto child = found_.end() - kChildSize;
            if (!std::equal(last.begin(), last.end(), found_.begin(), child)) {
                std::vector<uint8_t> entry = last;
                entry.insert(entry.end(), child, found_.end());
                const size_t end = node.end();
                node = {};
                take(step.page, step.position, next, end);
                const size_t left = read(step.page).end();
                isDone = put(depth, step.position, left, ByteView(entry), Place::Between);
            }
            if (!isLast && isDone) return;
        }
        if (isDone) return;
    }
    throwDamaged(L"the nodes of an index contradict each other", root_);
}

// Makes the neighbours of a page each other's.
void IndexWriter::unlink(uint32_t number) {
    uint32_t previous = 0;
    uint32_t next = 0;
    {
        const IndexPage page = read(number);
        previous = page.previous();
        next = page.next();
    }
    link(previous, next);
}

void IndexWriter::giveBack(uint32_t page) {
    removeFromMap(*allocator_, owned_, page);
    allocator_->free(page);
}

// Removes a page that has become empty, and what is empty above it then. Answers an entry near by
// in the tree when the one that was erased would not lead there any more.
std::vector<uint8_t> IndexWriter::removePage(size_t depth) {
    for (; depth > 0; --depth) {
        const uint32_t number = path_[depth].page;
        unlink(number);
        giveBack(number);

        const Step step = path_[depth - 1];
        IndexPage node = read(step.page);
        const size_t end = node.end();
        const size_t next = step.tail ? end : node.after(step.position);
        const bool isLast = step.tail || (next == end && node.tail() == 0);
        if (isLast && (step.tail ? end : step.position) == 0) continue;
        const size_t before = isLast ? node.before(step.position) : 0;
        std::vector<uint8_t> last;
        if (isLast) node.copyEntry(before, last);
        node = {};
        if (step.tail) {
            take(step.page, before, end, end);
            edit(step.page).setTail(ByteView(last).get32Big(last.size() - kChildSize));
        } else {
            take(step.page, step.position, next, end);
        }
        if (!isLast) return {};
        last.resize(last.size() - kChildSize);
        if (depth > 1) setBound(last);
        return last;
    }
    edit(root_).clear(table_, 0);
    return {};
}

// Joins pages from the leaf of `target` upwards, as long as something changes.
void IndexWriter::tidy(ByteView target, bool removed) {
    for (bool again = true; again;) {
        again = false;
        descend(target);
        for (size_t depth = leafDepth(); depth > 0 && !again; --depth) {
            const uint32_t number = path_[depth].page;
            if (read(number).end() < sparseSize() && joinNeighbour(depth)) {
                again = removed = true;
            } else if (depth < leafDepth() && read(number).empty()) {
                nameOnlyChild(number);
            }
            if (!removed) return;
        }
    }
    collapseRoot();
    path_.clear();
}

// Joins the page at `depth` with the one behind or before it below the same node.
bool IndexWriter::joinNeighbour(size_t depth) {
    const Step step = path_[depth - 1];
    const uint32_t number = path_[depth].page;
    uint32_t left = 0;
    uint32_t right = 0;
    size_t leftPosition = 0;
    {
        const IndexPage node = read(step.page);
        if (!step.tail) {
            const size_t next = node.after(step.position);
            right = next < node.end() ? node.child(next) : node.tail();
        }
        if (step.position != 0) {
            leftPosition = node.before(step.position);
            left = node.child(leftPosition);
        }
    }
    return (right != 0 && join(depth, number, step.position, right)) ||
           (left != 0 && join(depth, left, leftPosition, number));
}

// Moves what the left page has to the right one, if that leaves some room there, and removes it.
// Of the right one nothing changes for the nodes above.
bool IndexWriter::join(size_t depth, uint32_t left, size_t leftPosition, uint32_t right) {
    if (left == right) throwDamaged(L"an index node leads to a page twice", left);
    IndexPage from = read(left);
    IndexPage to = read(right);
    const size_t limit = capacity_ / 4 * 3;
    if (from.end() + to.end() > limit) return false;
    if (from.isLeaf() != to.isLeaf() || from.isLeaf() != (depth == leafDepth()))
        throwDamaged(L"the leaves of an index are not on one level", right);
    IndexEntries entries(from);
    const uint32_t parent = path_[depth - 1].page;
    IndexPage node = read(parent);
    if (!from.isLeaf() && from.tail() != 0) {
        node.copyEntry(leftPosition, found_);
        found_.resize(found_.size() - kChildSize);
        appendBig(found_, from.tail());
        entries.append(ByteView(found_));
    }
    const size_t moved = entries.size();
    entries.append(IndexEntries(to));
    const size_t prefix = entries.commonPrefix(0, entries.size(), right);
    if (entries.packedSize(0, entries.size(), prefix) > limit) return false;
    uint32_t tail = to.tail();
    to = {};
    if (levelAt(depth) > 1 && moved > 0)
        link(entries.child(moved - 1), moved < entries.size() ? entries.child(moved) : tail);
    if (!entries.isLeaf() && tail == 0 && entries.size() > 1) {
        tail = entries.child(entries.size() - 1);
        entries.dropLast();
    }
    IndexPageEditor joined = edit(right);
    joined.layOut(entries, 0, entries.size(), prefix);
    joined.setTail(tail);

    from = {};
    const size_t next = node.after(leftPosition);
    const size_t end = node.end();
    node = {};
    take(parent, leftPosition, next, end);
    unlink(left);
    giveBack(left);
    return true;
}

// A root with one child takes its place.
void IndexWriter::collapseRoot() {
    for (size_t depth = 0; depth < maxIndexDepth; ++depth) {
        const uint32_t number = onlyChildOfRoot();
        if (number == 0) return;
        IndexPageEditor root = edit(root_);
        root.copy(pages().read(number).bytes());
        root.setPrevious(0);
        root.setNext(0);
        giveBack(number);
    }
}

// 0 when it has none or several.
uint32_t IndexWriter::onlyChildOfRoot() const {
    const IndexPage root = read(root_);
    if (root.isLeaf()) return 0;
    const bool isOnly = root.empty() || (root.tail() == 0 && root.after(0) == root.end());
    if (!isOnly) return 0;
    const uint32_t child = read(root.lastChild()).page();
    if (child == root_) throwDamaged(L"an index node leads to itself", root_);
    return child;
}

// A node with one child has an entry for it and no tail.
void IndexWriter::nameOnlyChild(uint32_t page) {
    const uint32_t child = read(page).tail();
    std::vector<uint8_t> entry = lastBelow(child);
    if (entry.empty()) return;
    appendBig(entry, child);
    IndexPageEditor node = edit(page);
    if (node.insert(0, 0, ByteView(entry))) node.setTail(0);
}

// The greatest entry below a page; empty when the last leaf is.
std::vector<uint8_t> IndexWriter::lastBelow(uint32_t number) const {
    std::vector<uint8_t> entry;
    for (size_t depth = 0; depth < maxIndexDepth; ++depth) {
        const IndexPage page = read(number);
        if (page.isLeaf()) {
            if (!page.empty()) page.copyEntry(page.before(page.end()), entry);
            return entry;
        }
        number = page.lastChild();
    }
    throwDamaged(L"an index is too deep", root_);
}

}  // namespace sg::jet

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/index/index_writer.h"
#include "host/jet/pages/usage_map_editor.h"

// Whole trees: made, filled and given back.
namespace sg::jet {

namespace {

// Fills the pages of a tree from the left to the right, the leaves and at the same time the nodes
// above them. A page is laid out when an entry comes that it has no room for; only the last pages
// of all levels wait for the end.
class TreeBuilder {
  public:
    TreeBuilder(PageAllocator& allocator, const RealIndex& index, uint32_t table)
        : allocator_(allocator),
          index_(index),
          table_(table),
          capacity_(IndexPageEditor::capacity(allocator.format())) {}

    void add(ByteView entry) { add(0, entry); }
    void finish();

  private:
    // The page of a level that is being filled. Of a node the last entry becomes the tail.
    struct Level {
        explicit Level(bool leaf) : entries(leaf) {}
        IndexEntries entries;
        size_t prefix = 0;      // what the entries have in common
        uint32_t previous = 0;  // the page before
    };

    IndexPageEditor edit(uint32_t page) {
        return {allocator_.format(), allocator_.pages().write(page)};
    }
    void add(size_t number, ByteView entry);
    void close(size_t number);
    void layOut(size_t number, uint32_t page);

    PageAllocator& allocator_;
    const RealIndex& index_;
    uint32_t table_;
    size_t capacity_;
    std::vector<Level> levels_;    // the leaves first
    std::vector<uint32_t> pages_;  // new ones
};

void TreeBuilder::add(size_t number, ByteView entry) {
    if (number == levels_.size()) levels_.emplace_back(number == 0);
    Level& level = levels_[number];
    const size_t count = level.entries.size();
    level.entries.append(entry);
    if (count == 0) return;
    const size_t stored = number == 0 ? count + 1 : count;
    const size_t shared = level.entries.shared(count, index_.rootPage);
    const size_t prefix = count == 1 ? shared : std::min(level.prefix, shared);
    if (level.entries.packedSize(0, stored, prefix) <= capacity_) {
        level.prefix = prefix;
        return;
    }
    level.entries.dropLast();
    close(number);
    levels_[number].entries.append(entry);
}

// Lays out the level's page and names it in the node above.
void TreeBuilder::close(size_t number) {
    const uint32_t page = allocator_.allocate();
    pages_.push_back(page);
    layOut(number, page);
    const IndexEntries& entries = levels_[number].entries;
    const std::vector<uint8_t> bound = entries.leadingTo(entries.size() - 1, page);
    add(number + 1, ByteView(bound));

    Level& level = levels_[number];
    // Leaves are all neighbours, nodes only below the same node.
    const bool isFirstChild = levels_[number + 1].entries.size() == 1;
    if (level.previous != 0 && (number == 0 || !isFirstChild)) {
        edit(level.previous).setNext(page);
        edit(page).setPrevious(level.previous);
    }
    level.previous = page;
    level.entries = IndexEntries(number == 0);
}

void TreeBuilder::layOut(size_t number, uint32_t page) {
    const IndexEntries& entries = levels_[number].entries;
    const bool hasTail = number > 0 && entries.size() > 1;
    const size_t count = hasTail ? entries.size() - 1 : entries.size();
    const bool fits = entries.packedSize(0, count, 0) <= capacity_;
    IndexPageEditor editor = edit(page);
    editor.clear(table_, static_cast<uint8_t>(number));
    editor.layOut(entries, 0, count, fits ? 0 : entries.commonPrefix(0, count, page));
    if (hasTail) editor.setTail(entries.child(count));
}

void TreeBuilder::finish() {
    if (levels_.empty()) return;
    size_t number = 0;
    for (; number + 1 < levels_.size(); ++number)
        close(number);
    layOut(number, index_.rootPage);
    addToMap(allocator_, index_.ownedPages, pages_);
}

}  // namespace

uint32_t createTree(PageAllocator& allocator, uint32_t table, RowId owned) {
    const uint32_t root = allocator.allocate();
    IndexPageEditor(allocator.format(), allocator.pages().write(root)).clear(table, 0);
    addToMap(allocator, owned, root);
    return root;
}

void buildTree(PageAllocator& allocator, const RealIndex& index, uint32_t table,
               const std::function<bool(IndexEntry&)>& next) {
    {
        const IndexPage root = IndexPage::read(allocator.pages(), index.rootPage);
        if (!root.isLeaf() || !root.empty() || root.owner() != table)
            throwDamaged(L"an index that is to be filled is not empty", index.rootPage);
    }
    TreeBuilder builder(allocator, index, table);
    IndexEntry entry;
    std::vector<uint8_t> last;
    std::vector<uint8_t> bytes;
    while (next(entry)) {
        if (entry.key.size() > IndexWriter::maxKeySize)
            throw Error(RecordTooLarge, {}, {.detail = L"an index key"});
        bytes.assign(entry.key.begin(), entry.key.end());
        appendBig(bytes, entry.row.packed());
        if (!(last < bytes))
            throw Error(InvalidArgument, {}, {.detail = L"index entries are out of order"});
        builder.add(ByteView(bytes));
        last.swap(bytes);
    }
    builder.finish();
}

void dropTree(PageAllocator& allocator, const RealIndex& index) {
    const WriteTransaction& pages = allocator.pages();
    const uint32_t table = IndexPage::read(pages, index.rootPage).owner();
    std::vector<uint32_t> found{index.rootPage};
    std::vector<bool> isFound(pages.pageCount());
    isFound[index.rootPage] = true;
    const auto add = [&](uint32_t page) {
        if (page >= isFound.size() || isFound[page])
            throwDamaged(L"the nodes of an index contradict each other", page);
        isFound[page] = true;
        found.push_back(page);
    };
    for (size_t i = 0; i < found.size(); ++i) {
        const IndexPage page = IndexPage::read(pages, found[i]);
        if (page.owner() != table) throwDamaged(L"an index has a page of another table", found[i]);
        if (page.isLeaf()) continue;
        for (size_t at = 0; at < page.end(); at = page.after(at))
            add(page.child(at));
        if (page.tail() != 0) add(page.tail());
    }
    for (const uint32_t page : found) {
        removeFromMap(allocator, index.ownedPages, page);
        allocator.free(page);
    }
}

}  // namespace sg::jet

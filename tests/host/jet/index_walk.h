#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "host/jet/index/index_page_editor.h"
#include "host/jet/pages/usage_map.h"

// A walk over a whole index that asks everything of it that other programs may rely on, for tests
// of what writes indexes.
namespace sg::jet::test {

class IndexWalk {
  public:
    // Entries, key and row, in their order.
    std::vector<std::string> entries;
    std::set<uint32_t> pages;
    size_t levels = 0;
    size_t used = 0;  // bytes of entries on the leaves

    IndexWalk(const PageStore& store, uint32_t root, uint32_t table)
        : store_(store), table_(table), layout_(store.format().indexPage) {
        levels = IndexPage::read(store, root).isLeaf() ? 1 : 1 + store.read(root)->get8(26);
        walk(root, levels - 1, true);
        EXPECT_EQ(nextLeaf_, 0u);
    }

    double fill() const {
        size_t leaves = 0;
        for (uint32_t page : pages)
            leaves += IndexPage::read(store_, page).isLeaf();
        return double(used) / double(leaves * IndexPageEditor::capacity(store_.format()));
    }

  private:
    static std::string textOf(ByteView bytes) { return {bytes.begin(), bytes.end()}; }

    // Answers the greatest entry below.
    std::string walk(uint32_t number, size_t level, bool isRoot) {
        SCOPED_TRACE("page " + std::to_string(number));
        EXPECT_TRUE(pages.insert(number).second);
        const IndexPage page = IndexPage::read(store_, number);
        EXPECT_EQ(page.isLeaf(), level == 0);
        if (page.isLeaf() != (level == 0)) return {};
        EXPECT_EQ(page.owner(), table_);
        const PageRef bytes = store_.read(number);
        EXPECT_EQ(bytes->get8(1), 1);
        EXPECT_EQ(bytes->get8(layout_.level), level);
        EXPECT_EQ(bytes->get16(layout_.freeSpace),
                  IndexPageEditor::capacity(store_.format()) - page.end());
        const IndexEntries all(page);
        if (all.size() > 1) {
            EXPECT_LE(page.prefixLength(), all.commonPrefix(0, all.size(), number));
        }
        return page.isLeaf() ? walkLeaf(page, all, isRoot) : walkNode(page, all, level, isRoot);
    }

    std::string walkLeaf(const IndexPage& leaf, const IndexEntries& all, bool isRoot) {
        EXPECT_EQ(leaf.previous(), lastLeaf_);
        EXPECT_TRUE(lastLeaf_ == 0 || nextLeaf_ == leaf.page());
        EXPECT_EQ(leaf.tail(), 0u);
        EXPECT_TRUE(isRoot || !leaf.empty());
        lastLeaf_ = leaf.page();
        nextLeaf_ = leaf.next();
        used += leaf.end();
        for (size_t i = 0; i < all.size(); ++i) {
            entries.push_back(textOf(all[i]));
            EXPECT_TRUE(entries.size() < 2 || entries[entries.size() - 2] < entries.back());
        }
        return entries.empty() ? std::string() : entries.back();
    }

    std::string walkNode(const IndexPage& node, const IndexEntries& all, size_t level,
                         bool isRoot) {
        std::vector<uint32_t> children;
        std::string last;
        for (size_t i = 0; i < all.size(); ++i) {
            children.push_back(all.child(i));
            last = walk(all.child(i), level - 1, false);
            EXPECT_EQ(last, textOf(all.sortedPart(i)));
        }
        if (node.tail() != 0) {
            children.push_back(node.tail());
            last = walk(node.tail(), level - 1, false);
        }
        EXPECT_GT(children.size(), isRoot ? 1u : 0u);
        EXPECT_EQ(node.tail() != 0, children.size() > 1);
        if (level > 1) checkNeighbours(children);
        return last;
    }

    // Nodes are neighbours below one node only.
    void checkNeighbours(const std::vector<uint32_t>& children) {
        for (size_t i = 0; i < children.size(); ++i) {
            const IndexPage page = IndexPage::read(store_, children[i]);
            EXPECT_EQ(page.previous(), i == 0 ? 0 : children[i - 1]);
            EXPECT_EQ(page.next(), i + 1 == children.size() ? 0 : children[i + 1]);
        }
    }

    const PageStore& store_;
    uint32_t table_;
    const IndexPageLayout& layout_;
    uint32_t lastLeaf_ = 0;
    uint32_t nextLeaf_ = 0;
};

}  // namespace sg::jet::test

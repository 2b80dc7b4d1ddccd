#include "host/jet/index/index_page_editor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

const Format& format() {
    return formatOf(Version::Jet4);
}

ByteView view(const std::string& bytes) {
    return {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
}

// A page, and what should be on it.
struct Sheet {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(format().pageSize);
    std::vector<std::string> expected;
    size_t prefix = 0;

    explicit Sheet(uint8_t level) { editor().clear(7, level); }
    IndexPageEditor editor() { return {format(), bytes}; }
    IndexPage page() const { return IndexPage::over(format(), PageRef(3, ByteView(bytes))); }
    size_t offsetOf(size_t i) const {
        const IndexPage read = page();
        size_t at = 0;
        for (; i > 0; --i)
            at = read.after(at);
        return at;
    }
    bool insert(size_t i, const std::string& entry) {
        const size_t at = offsetOf(i);
        if (!editor().insert(at, page().end(), view(entry))) return false;
        expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(i), entry);
        return true;
    }
    bool erase(size_t i) {
        const size_t at = offsetOf(i);
        const size_t next = page().after(at);
        if (!editor().erase(at, next, page().end())) return false;
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    void layOut(size_t prefixLength) {
        IndexEntries entries(page().isLeaf());
        for (const std::string& entry : expected)
            entries.append(view(entry));
        editor().layOut(entries, 0, entries.size(), prefixLength);
    }
    void check() const {
        const IndexEntries entries(page());
        ASSERT_EQ(entries.size(), expected.size());
        for (size_t i = 0; i < entries.size(); ++i)
            ASSERT_EQ(std::string(entries[i].begin(), entries[i].end()), expected[i]);
        EXPECT_EQ(page().owner(), 7u);
        EXPECT_EQ(size_t(page().end()) + ByteView(bytes).get16(format().indexPage.freeSpace),
                  IndexPageEditor::capacity(format()));
    }
};

TEST(IndexPageEditorTest, AnEmptyPage) {
    Sheet leaf(0);
    EXPECT_TRUE(leaf.page().isLeaf());
    leaf.check();
    Sheet node(2);
    EXPECT_FALSE(node.page().isLeaf());
    node.editor().setTail(9);
    node.editor().setPrevious(10);
    node.editor().setNext(11);
    EXPECT_EQ(node.page().tail(), 9u);
    EXPECT_EQ(node.page().previous(), 10u);
    EXPECT_EQ(node.page().next(), 11u);
    node.check();
}

TEST(IndexPageEditorTest, FirstEntriesCarryThePrefix) {
    Sheet sheet(0);
    sheet.expected = {"abcd----", "abce1----", "abcf----"};
    sheet.layOut(3);
    EXPECT_EQ(sheet.page().prefixLength(), 3u);
    sheet.check();
    EXPECT_TRUE(sheet.insert(0, "abca----"));
    EXPECT_TRUE(sheet.insert(4, "abcz----"));
    EXPECT_FALSE(sheet.insert(0, "abaa----"));
    sheet.check();
    EXPECT_TRUE(sheet.erase(0));
    sheet.check();
    EXPECT_TRUE(sheet.erase(0));
    EXPECT_TRUE(sheet.erase(2));
    sheet.check();
    EXPECT_TRUE(sheet.erase(1));
    EXPECT_TRUE(sheet.erase(0));
    sheet.check();
    // An empty page has no prefix any more.
    EXPECT_TRUE(sheet.insert(0, "xyz0----"));
    EXPECT_EQ(sheet.page().prefixLength(), 0u);
    sheet.check();
}

TEST(IndexPageEditorTest, ThePrefixNeverTakesAWholeEntry) {
    Sheet sheet(0);
    sheet.expected = {"abcd----"};
    sheet.layOut(8);
    EXPECT_FALSE(sheet.insert(0, "abcd---"));
    EXPECT_FALSE(sheet.insert(0, "abcd----"));
    EXPECT_FALSE(sheet.insert(0, "abcd-----"));
    sheet.check();
}

// Every bit of the mask moves rightly, whatever the sizes are, up to a page that is full.
TEST(IndexPageEditorTest, RandomChangesInPlace) {
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const size_t most = round % 3 == 0 ? 6 : round % 3 == 1 ? 90 : 400;
        const size_t prefix = round % 4 * 3;
        Sheet sheet(static_cast<uint8_t>(round % 2));
        const std::string common = std::string("prefix-bytes").substr(0, prefix);
        const auto make = [&] {
            std::string entry = common;
            for (size_t size = 9 + random() % most; size > 0; --size)
                entry += static_cast<char>(random());
            return entry;
        };
        sheet.expected = {make(), make()};
        sheet.layOut(prefix);
        for (int step = 0; step < 400; ++step) {
            const bool fills = random() % 8 != 0;
            const size_t count = sheet.expected.size();
            if (fills) {
                sheet.insert(random() % (count + 1), make());
            } else if (count > 2) {
                EXPECT_TRUE(sheet.erase(random() % count));
            }
        }
        sheet.check();
        EXPECT_EQ(sheet.page().prefixLength(), prefix);
    }
}

TEST(IndexPageEditorTest, APageFillsToTheLastByte) {
    Sheet sheet(0);
    const size_t capacity = IndexPageEditor::capacity(format());
    const std::string first(capacity - 100, 'b');
    EXPECT_TRUE(sheet.insert(0, first));
    EXPECT_FALSE(sheet.insert(1, std::string(101, 'c')));
    EXPECT_TRUE(sheet.insert(1, std::string(100, 'c')));
    EXPECT_EQ(sheet.page().end(), capacity);
    EXPECT_FALSE(sheet.insert(1, std::string(5, 'b')));
    sheet.check();
    EXPECT_TRUE(sheet.erase(0));
    sheet.check();
}

TEST(IndexEntriesTest, PrefixesAndSizes) {
    IndexEntries entries(true);
    for (const char* entry : {"aab----", "aac----", "aad1----"})
        entries.append(view(entry));
    EXPECT_EQ(entries.commonPrefix(0, 3, 1), 2u);
    EXPECT_EQ(entries.commonPrefix(1, 2, 1), 0u);
    EXPECT_EQ(entries.packedSize(0, 3, 2), 7u + 5 + 6);
    EXPECT_EQ(entries.packedSize(1, 3, 0), 15u);
    EXPECT_EQ(entries.packedSize(2, 2, 0), 0u);
    entries.insert(1, view("aabb----"));
    EXPECT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries.shared(2, 1), 2u);
    for (const char* entry : {"aad1----", "aad"}) {
        IndexEntries disordered = entries;
        disordered.append(view(entry));
        EXPECT_THROW(disordered.commonPrefix(0, 5, 1), Error) << entry;
    }
}

// The child of a node's entry is no part of its order.
TEST(IndexEntriesTest, ChildrenStayOutOfThePrefix) {
    IndexEntries entries(false);
    entries.append(view(std::string("kkaRRRR") + std::string("\0\0\0\7", 4)));
    entries.append(view(std::string("kkaRRRS") + std::string("\0\0\0\7", 4)));
    EXPECT_EQ(entries.commonPrefix(0, 2, 1), 6u);
    EXPECT_EQ(entries.child(1), 7u);
    const std::vector<uint8_t> entry = entries.leadingTo(0, 0x102);
    EXPECT_EQ(std::string(entry.begin(), entry.end()),
              std::string("kkaRRRR") + std::string("\0\0\1\2", 4));
}

}  // namespace
}  // namespace sg::jet

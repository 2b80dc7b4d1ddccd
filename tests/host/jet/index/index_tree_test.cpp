#include "host/jet/index/index_tree.h"
#include "host/jet/file_content.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "host/jet/format/error.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index_test_files.h"
#include "real_data.h"

namespace sg::jet {
namespace {

// --- trees that are made here ---

struct Neighbours {
    uint32_t previous = 0;
    uint32_t next = 0;
    uint32_t tail = 0;
};

// A file with nothing but index pages behind its page 0.
class IndexFile {
  public:
    IndexFile(Version version, size_t pages)
        : layout_(formatOf(version).indexPage),
          pageSize_(formatOf(version).pageSize),
          bytes_(pages * pageSize_) {
        static constexpr char signature[] = "\0\1\0\0Standard Jet DB";
        std::memcpy(bytes_.data(), signature, sizeof signature);
        bytes_[pages::versionOffset] = static_cast<uint8_t>(version);
    }

    // Entries are given whole; `prefix` bytes of each but the first are left out.
    void write(uint32_t page, PageKind kind, const Neighbours& to,
               const std::vector<std::string>& entries, size_t prefix = 0) {
        put8(page, 0, static_cast<uint8_t>(kind));
        put8(page, 1, 1);
        put32(page, layout_.previous, to.previous);
        put32(page, layout_.next, to.next);
        put32(page, layout_.tail, to.tail);
        put8(page, layout_.prefixLength, static_cast<uint8_t>(prefix));
        size_t at = 0;
        for (const std::string& entry : entries) {
            const size_t skipped = at == 0 ? 0 : prefix;
            std::memcpy(&bytes_[page * pageSize_ + layout_.entries + at], entry.data() + skipped,
                        entry.size() - skipped);
            at += entry.size() - skipped;
            endEntry(page, at);
        }
    }
    void endEntry(uint32_t page, size_t at) {
        bytes_[page * pageSize_ + layout_.entryMask + at / 8] |= uint8_t(1 << (at % 8));
    }
    void put8(uint32_t page, size_t at, uint8_t value) { bytes_[page * pageSize_ + at] = value; }
    void put32(uint32_t page, size_t at, uint32_t value) {
        std::memcpy(&bytes_[page * pageSize_ + at], &value, sizeof value);
    }
    std::vector<uint8_t>& bytes() { return bytes_; }
    const IndexPageLayout& layout() const { return layout_; }
    MemoryPageStore store() const { return MemoryPageStore(bytes_, L"made.mdb"); }

  private:
    IndexPageLayout layout_;
    size_t pageSize_;
    std::vector<uint8_t> bytes_;
};

std::string big(uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string leafEntry(const std::string& key, uint32_t page, uint16_t row) {
    return key + big(RowId{page, row}.packed());
}

std::string nodeEntry(const std::string& key, uint32_t page, uint16_t row, uint32_t child) {
    return leafEntry(key, page, row) + big(child);
}

ByteView view(const std::string& key) {
    return {reinterpret_cast<const uint8_t*>(key.data()), key.size()};
}

std::string keyAt(const IndexCursor& cursor) {
    return {cursor.key().begin(), cursor.key().end()};
}

std::string keysForward(IndexCursor& cursor) {
    std::string keys;
    for (bool at = cursor.first(); at; at = cursor.next())
        keys += keyAt(cursor) + " ";
    return keys;
}

// Two levels over four leaves, one of them empty, the last one behind the node's tail; equal keys
// go over the border of two leaves.
IndexFile smallTree(Version version) {
    IndexFile file(version, 7);
    file.write(1, PageKind::IndexNode, {.tail = 5},
               {nodeEntry("abd", 9, 1, 2), nodeEntry("abd", 9, 4, 3), nodeEntry("b", 9, 5, 4)});
    file.write(2, PageKind::IndexLeaf, {.next = 3},
               {leafEntry("aba", 9, 0), leafEntry("abb", 9, 7), leafEntry("abd", 9, 1)}, 2);
    file.write(3, PageKind::IndexLeaf, {.previous = 2, .next = 4},
               {leafEntry("abd", 9, 2), leafEntry("abd", 9, 4)}, 6);
    file.write(4, PageKind::IndexLeaf, {.previous = 3, .next = 5}, {});
    file.write(5, PageKind::IndexLeaf, {.previous = 4},
               {leafEntry("c", 9, 6), leafEntry("d", 9, 8)});
    return file;
}

class IndexTreeOf : public ::testing::TestWithParam<Version> {};
INSTANTIATE_TEST_SUITE_P(Versions, IndexTreeOf, ::testing::Values(Version::Jet3, Version::Jet4));

TEST_P(IndexTreeOf, WalksBothWays) {
    const IndexFile file = smallTree(GetParam());
    const MemoryPageStore store = file.store();
    IndexCursor cursor(store, 1);
    EXPECT_EQ(keysForward(cursor), "aba abb abd abd abd c d ");
    EXPECT_FALSE(cursor.valid());
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.previous());
    std::string keys;
    std::string rows;
    for (bool at = cursor.last(); at; at = cursor.previous()) {
        keys += keyAt(cursor) + " ";
        EXPECT_EQ(cursor.row().page, 9u);
        rows += std::to_string(cursor.row().row) + " ";
    }
    EXPECT_EQ(keys, "d c abd abd abd abb aba ");
    EXPECT_EQ(rows, "8 6 4 2 1 7 0 ");
}

TEST_P(IndexTreeOf, SeeksAndBounds) {
    struct Case {
        std::string key;
        bool found;
        std::string lower, upper, before, upTo;  // "" where the cursor goes nowhere
    };
    const Case cases[] = {
        {"", true, "aba", "", "", "d"},          {"a", true, "aba", "c", "", "abd"},
        {"aba", true, "aba", "abb", "", "aba"},  {"abc", false, "abd", "abd", "abb", "abb"},
        {"abd", true, "abd", "c", "abb", "abd"}, {"abdx", false, "c", "c", "abd", "abd"},
        {"b", false, "c", "c", "abd", "abd"},    {"d", true, "d", "", "c", "d"},
        {"e", false, "", "", "d", "d"},
    };
    const IndexFile file = smallTree(GetParam());
    const MemoryPageStore store = file.store();
    IndexCursor cursor(store, 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        const auto answer = [&](bool at) { return at ? keyAt(cursor) : std::string(); };
        EXPECT_EQ(cursor.seek(view(c.key)), c.found);
        EXPECT_EQ(cursor.valid(), c.found);
        EXPECT_EQ(answer(cursor.lowerBound(view(c.key))), c.lower);
        EXPECT_EQ(answer(cursor.upperBound(view(c.key))), c.upper);
        EXPECT_EQ(answer(cursor.lastBefore(view(c.key))), c.before);
        EXPECT_EQ(answer(cursor.lastUpTo(view(c.key))), c.upTo);
    }
    EXPECT_TRUE(cursor.seek(view("abd")));
    EXPECT_EQ(cursor.row().row, 1);  // the first of the equal ones
}

// A leaf is a quarter of the tree, whatever it holds.
TEST_P(IndexTreeOf, TellsShares) {
    struct Case {
        const char* key;
        double before, upTo;
    };
    const Case cases[] = {{"", 0, 1},
                          {"aba", 0, 0.25 / 3},
                          {"abb", 0.25 / 3, 0.5 / 3},
                          {"abd", 0.5 / 3, 0.5},
                          {"c", 0.75, 0.875},
                          {"d", 0.875, 1},
                          {"e", 1, 1}};
    const IndexFile file = smallTree(GetParam());
    const MemoryPageStore store = file.store();
    const IndexCursor cursor(store, 1);
    for (const Case& c : cases) {
        EXPECT_NEAR(cursor.shareBefore(view(c.key), false), c.before, 1e-9) << c.key;
        EXPECT_NEAR(cursor.shareBefore(view(c.key), true), c.upTo, 1e-9) << c.key;
    }
    IndexFile empty(GetParam(), 3);
    empty.write(1, PageKind::IndexLeaf, {}, {});
    const MemoryPageStore nothing = empty.store();
    EXPECT_EQ(IndexCursor(nothing, 1).shareBefore(view("c"), true), 0);
}

TEST_P(IndexTreeOf, FindsOneEntryOfEqualKeys) {
    const IndexFile file = smallTree(GetParam());
    const MemoryPageStore store = file.store();
    IndexCursor cursor(store, 1);
    for (uint16_t row : {1, 2, 4}) {
        EXPECT_TRUE(cursor.find(view("abd"), {9, row}));
        EXPECT_EQ(cursor.row(), (RowId{9, row}));
    }
    EXPECT_FALSE(cursor.find(view("abd"), {9, 3}));
    EXPECT_FALSE(cursor.find(view("ab"), {9, 1}));
    EXPECT_FALSE(cursor.find(view("abd"), {8, 1}));
    // A key must not be found in bytes of the row: "c" is followed by 00 00 09 06.
    EXPECT_FALSE(cursor.seek(view(std::string("c\0", 2))));
}

TEST_P(IndexTreeOf, AnEmptyIndexHasNoPlaces) {
    IndexFile file(GetParam(), 3);
    file.write(1, PageKind::IndexLeaf, {}, {});
    const MemoryPageStore store = file.store();
    IndexCursor cursor(store, 1);
    EXPECT_FALSE(cursor.first());
    EXPECT_FALSE(cursor.last());
    EXPECT_FALSE(cursor.seek({}));
    EXPECT_FALSE(cursor.lowerBound(view("a")));
    EXPECT_FALSE(cursor.lastUpTo(view("a")));
}

// --- pages that contradict themselves ---

template <class Action>
void expectDamaged(const IndexFile& file, Action action) {
    const MemoryPageStore store = file.store();
    IndexCursor cursor(store, 1);
    try {
        action(cursor);
        ADD_FAILURE() << "no error";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), Damaged);
    }
}

TEST_P(IndexTreeOf, CirclesEnd) {
    IndexFile neighbours = smallTree(GetParam());
    neighbours.put32(5, neighbours.layout().next, 2);
    expectDamaged(neighbours, [](IndexCursor& cursor) { keysForward(cursor); });

    IndexFile empty = smallTree(GetParam());
    empty.put32(4, empty.layout().next, 4);
    expectDamaged(empty, [](IndexCursor& cursor) { keysForward(cursor); });
    expectDamaged(empty, [](IndexCursor& cursor) { cursor.lowerBound(view("b")); });

    IndexFile deep = smallTree(GetParam());
    deep.put32(1, deep.layout().tail, 1);
    expectDamaged(deep, [](IndexCursor& cursor) { cursor.last(); });
    expectDamaged(deep, [](IndexCursor& cursor) { cursor.seek(view("d")); });
}

TEST_P(IndexTreeOf, PointersAndEntriesThatAreNone) {
    IndexFile beyond = smallTree(GetParam());
    beyond.put32(1, beyond.layout().tail, 700);
    expectDamaged(beyond, [](IndexCursor& cursor) { cursor.last(); });

    IndexFile upwards = smallTree(GetParam());
    upwards.put32(5, upwards.layout().next, 1);
    expectDamaged(upwards, [](IndexCursor& cursor) { keysForward(cursor); });

    IndexFile notIndex = smallTree(GetParam());
    notIndex.put8(2, 0, static_cast<uint8_t>(PageKind::Data));
    expectDamaged(notIndex, [](IndexCursor& cursor) { cursor.first(); });

    IndexFile longPrefix = smallTree(GetParam());
    longPrefix.put8(2, longPrefix.layout().prefixLength, 8);
    expectDamaged(longPrefix, [](IndexCursor& cursor) { cursor.first(); });

    IndexFile shortEntry = smallTree(GetParam());
    shortEntry.endEntry(2, 2);
    expectDamaged(shortEntry, [](IndexCursor& cursor) { cursor.first(); });

    IndexFile leadsNowhere(GetParam(), 3);
    leadsNowhere.write(1, PageKind::IndexNode, {}, {});
    expectDamaged(leadsNowhere, [](IndexCursor& cursor) { cursor.first(); });
}

// Whatever a page holds, a walk ends in an error or after a bounded number of entries.
TEST_P(IndexTreeOf, RandomDamageNeitherHangsNorReadsBeyond) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        IndexFile file = smallTree(GetParam());
        const size_t pageSize = formatOf(GetParam()).pageSize;
        for (int i = 0; i < 4; ++i) {
            const size_t page = 1 + random() % 5;
            const size_t at = random() % (file.layout().entries + 64);
            file.bytes()[page * pageSize + at] = static_cast<uint8_t>(random());
        }
        const MemoryPageStore store = file.store();
        IndexCursor cursor(store, 1);
        size_t entries = 0;
        try {
            for (bool at = cursor.first(); at; at = cursor.next())
                ++entries;
            for (bool at = cursor.last(); at; at = cursor.previous())
                ++entries;
            cursor.find(view("abd"), {9, 2});
            cursor.lastUpTo(view("b"));
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), Damaged);
        }
        EXPECT_LT(entries, 2 * 7 * pageSize);
    }
}

// --- trees that other programs made ---

// One index of a real file, checked against the rows of its table.
class IndexCheck {
  public:
    IndexCheck(const PageStore& store, const TableDefinition& table, const RealIndex& index)
        : store_(store),
          table_(table),
          encoder_(store.format(), table, index),
          reader_(store, table),
          cursor_(store, index.rootPage) {}

    const std::wstring& problem() const { return encoder_.problem(); }
    size_t entries() const { return entries_; }

    // Every entry's key is that of the row it points at, and entries are in order.
    void entriesAgreeWithRows() {
        KeyBytes last;
        DataPage page;
        for (bool at = cursor_.first(); at; at = cursor_.next()) {
            ++entries_;
            const KeyBytes key(cursor_.key().begin(), cursor_.key().end());
            EXPECT_LE(last, key);
            last = key;
            EXPECT_EQ(keyOf(real::rowBytes(store_, cursor_.row(), page)), key);
        }
        size_t backward = 0;
        for (bool at = cursor_.last(); at; at = cursor_.previous())
            ++backward;
        EXPECT_EQ(backward, entries_);
    }

    // Every row has one entry, and is found by its values.
    void rowsAreFound() {
        size_t rows = 0;
        real::forEachRow(store_, table_, [&](RowId id, ByteView row) {
            const KeyBytes key = keyOf(row);
            if (!encoder_.hasEntry(values_)) return;
            ++rows;
            EXPECT_TRUE(cursor_.find(ByteView(key), id));
            EXPECT_TRUE(cursor_.seek(ByteView(key)));
            EXPECT_TRUE(
                std::equal(key.begin(), key.end(), cursor_.key().begin(), cursor_.key().end()));
            leadingColumnIsFound();
        });
        EXPECT_EQ(rows, entries_);
    }

  private:
    KeyBytes keyOf(ByteView row) {
        reader_.reset(row);
        values_.resize(encoder_.places().size());
        for (size_t i = 0; i < values_.size(); ++i)
            reader_.decode(encoder_.places()[i], values_[i]);
        KeyBytes key;
        encoder_.encode(values_, key);
        return key;
    }

    // All entries between the two bounds begin with the leading column's key, and their neighbours
    // do not.
    void leadingColumnIsFound() {
        KeyBytes start;
        encoder_.encode(std::span(values_).first(1), start);
        const auto begins = [&] {
            const ByteView key = cursor_.key();
            return key.size() >= start.size() &&
                   std::equal(start.begin(), start.end(), key.begin());
        };
        EXPECT_TRUE(cursor_.seek(ByteView(start)) && begins());
        EXPECT_TRUE(!cursor_.previous() || !begins());
        EXPECT_TRUE(!cursor_.lastBefore(ByteView(start)) || !begins());
        EXPECT_TRUE(!cursor_.upperBound(ByteView(start)) || !begins());
        EXPECT_TRUE(cursor_.lastUpTo(ByteView(start)) && begins());
        EXPECT_TRUE(!cursor_.next() || !begins());
    }

    const PageStore& store_;
    const TableDefinition& table_;
    KeyEncoder encoder_;
    RowReader reader_;
    IndexCursor cursor_;
    std::vector<Value> values_;
    size_t entries_ = 0;
};

void checkIndexes(const PageStore& store) {
    size_t entries = 0;
    for (const TableDefinition& table : real::tablesOf(store)) {
        for (size_t i = 0; i < table.realIndexes.size(); ++i) {
            SCOPED_TRACE(toUtf8(table.name) + ", index " + std::to_string(i));
            IndexCheck check(store, table, table.realIndexes[i]);
            if (!check.problem().empty()) {
                // The sort order of newer files is the only thing that is not known.
                EXPECT_EQ(store.format().version, Version::Ace14) << toUtf8(check.problem());
                continue;
            }
            check.entriesAgreeWithRows();
            check.rowsAreFound();
            entries += check.entries();
        }
    }
    EXPECT_GT(entries, 0u);
}

TEST(IndexTree, EveryIndexOfRealFilesAgreesWithItsRows) {
    const auto files = sg::test::realDatabases();
    if (files.empty()) GTEST_SKIP() << "no real databases";
    for (const auto& file : files) {
        SCOPED_TRACE(file.filename().string());
        checkIndexes(test::FileContent(file.wstring()));
    }
}

}  // namespace
}  // namespace sg::jet

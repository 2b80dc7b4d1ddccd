#include "host/jet/index/index_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "host/jet/check/check.h"
#include "host/jet/file_content.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/index_test_files.h"
#include "host/jet/index_walk.h"
#include "host/jet/page_files.h"
#include "real_data.h"

namespace sg::jet {
namespace {

using test::IndexWalk;
using test::PageFile;

constexpr uint32_t table = 2;
using Model = std::set<std::string>;  // entries, key and row

ByteView view(const std::string& bytes) {
    return {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
}

std::string big(uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string keyOf(const std::string& entry) {
    return entry.substr(0, entry.size() - 4);
}

RowId rowOf(const std::string& entry) {
    return RowId::fromPacked(view(entry).get32Big(entry.size() - 4));
}

// A file with one index, and what should be in it.
class IndexFile {
  public:
    PageFile file;
    RealIndex index;
    Model model;

    IndexFile() {
        index.ownedPages = createMaps(file.allocator(), 1)[0];
        index.rootPage = createTree(file.allocator(), table, index.ownedPages);
        writer_ = std::make_unique<IndexWriter>(file.allocator(), index, table);
        others_ = file.takenPages().size() - 1;
    }
    IndexWriter& writer() { return *writer_; }
    void commit() {
        file.commit();
        writer_ = std::make_unique<IndexWriter>(file.allocator(), index, table);
    }
    void insert(const std::string& entry) {
        const std::string key = keyOf(entry);
        const auto next = model.lower_bound(key + big(0));
        const bool isNew = next == model.end() || keyOf(*next) != key;
        EXPECT_EQ(writer().insert(view(key), rowOf(entry)), isNew);
        model.insert(entry);
    }
    bool erase(std::string entry) {
        model.erase(entry);
        return writer().erase(view(keyOf(entry)), rowOf(entry));
    }

    IndexWalk walk() { return IndexWalk(file.pages(), index.rootPage, table); }

    // The tree is sound, has what it should have, and the pages that are its own.
    void check() {
        const IndexWalk walk = this->walk();
        ASSERT_EQ(walk.entries.size(), model.size());
        ASSERT_TRUE(std::equal(model.begin(), model.end(), walk.entries.begin()));
        EXPECT_EQ(walk.pages, file.setOf(index.ownedPages));
        size_t mapPages = 0;  // of the index and of the free pages
        for (const RowId record : {index.ownedPages, RowId{pages::globalMap, 0}}) {
            const UsageMap map = UsageMap::read(file.pages(), record);
            for (const uint32_t page : map.mapPages())
                mapPages += page != 0;
        }
        EXPECT_EQ(file.takenPages().size(), others_ + walk.pages.size() + mapPages);
        IndexCursor cursor(file.pages(), index.rootPage);
        auto expected = model.rbegin();
        for (bool at = cursor.last(); at; at = cursor.previous(), ++expected) {
            ASSERT_NE(expected, model.rend());
            ASSERT_EQ(cursor.row(), rowOf(*expected));
        }
        EXPECT_EQ(expected, model.rend());
    }

  private:
    std::unique_ptr<IndexWriter> writer_;
    size_t others_;
};

// --- single entries ---

TEST(IndexWriterTest, OneLeaf) {
    IndexFile tree;
    tree.check();
    const std::string one = "k1" + big(RowId{9, 1}.packed());
    const std::string two = "k1" + big(RowId{9, 3}.packed());
    tree.insert(two);
    tree.insert(one);
    tree.check();
    IndexWriter& writer = tree.writer();
    EXPECT_TRUE(writer.contains(view("k1")));
    EXPECT_TRUE(writer.contains(view("k1"), {9, 1}));
    EXPECT_FALSE(writer.contains(view("k")));
    EXPECT_FALSE(writer.contains(view("k2")));
    EXPECT_FALSE(writer.erase(view("k1"), {9, 2}));
    EXPECT_TRUE(tree.erase(one));
    EXPECT_FALSE(writer.contains(view("k1"), {9, 3}));
    EXPECT_TRUE(writer.contains(view("k1"), {9, 1}));
    EXPECT_FALSE(tree.erase(one));
    EXPECT_TRUE(tree.erase(two));
    tree.check();
}

TEST(IndexWriterTest, AnEntryIsThereOnce) {
    IndexFile tree;
    tree.insert("k1" + big(8));
    EXPECT_EQ(codeOf([&] { tree.writer().insert(view("k1"), RowId::fromPacked(8)); }), Damaged);
    tree.check();
}

TEST(IndexWriterTest, KeysHaveALongestSize) {
    IndexFile tree;
    const std::string longest(IndexWriter::maxKeySize, 'x');
    EXPECT_EQ(codeOf([&] { tree.writer().insert(view(longest + "x"), {9, 1}); }), RecordTooLarge);
    for (uint32_t i = 0; i < 40; ++i)
        tree.insert(char('A' + i * 7 % 40) + longest.substr(1) + big(i << 8));
    tree.check();
    EXPECT_GE(tree.walk().levels, 3u);
}

// --- many entries ---

struct Distribution {
    const char* name;
    size_t count;
    std::string (*key)(size_t i, std::mt19937& random);
    size_t levels;
};

std::string longKey(uint32_t number, size_t size) {
    std::string key(size - 4, char('a' + number % 3));
    return key + big(number * 2654435761u);
}

const Distribution distributions[] = {
    {"ascending", 40000, [](size_t i, std::mt19937&) { return '\x7f' + big(uint32_t(i)); }, 2},
    {"descending", 40000, [](size_t i, std::mt19937&) { return '\x7f' + big(uint32_t(~i)); }, 2},
    {"random", 40000, [](size_t, std::mt19937& r) { return '\x7f' + big(uint32_t(r())); }, 2},
    {"equal", 20000, [](size_t, std::mt19937&) { return std::string("\x7fsame"); }, 2},
    {"few keys", 20000, [](size_t, std::mt19937& r) { return '\x7f' + big(r() % 7); }, 2},
    {"long", 3000,
     [](size_t, std::mt19937& r) { return big(uint32_t(r())) + std::string(1190, 'l'); }, 5},
    {"long ascending", 3000,
     [](size_t i, std::mt19937&) { return std::string(900, 'a') + big(uint32_t(i)); }, 2},
    {"of all sizes", 4000,
     [](size_t, std::mt19937& r) {
         std::string key(1 + r() % (r() % 4 == 0 ? 1790 : 40), '\0');
         for (char& byte : key)
             byte = static_cast<char>(r() % 3);
         return key + '\x7f';
     },
     4},
    {"shared prefixes", 30000,
     [](size_t, std::mt19937& r) {
         return "prefix " + std::string(r() % 5 * 20, 'p') + big(r() % 4096) + "end";
     },
     3},
};

class IndexWriterOf : public ::testing::TestWithParam<Distribution> {};
INSTANTIATE_TEST_SUITE_P(Keys, IndexWriterOf, ::testing::ValuesIn(distributions),
                         [](const auto& test) {
                             std::string name = test.param.name;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

// Grows, changes and shrinks again; the model says at each time what is there.
TEST_P(IndexWriterOf, FollowsTheModel) {
    const Distribution& keys = GetParam();
    std::mt19937 random(3);
    IndexFile tree;
    std::vector<std::string> entries;
    for (size_t i = 0; i < keys.count; ++i) {
        entries.push_back(keys.key(i, random) + big(uint32_t(i * 7919 % 1000000 + 256)));
        tree.insert(entries.back());
        if (i % 8 == 7) {
            const size_t gone = random() % entries.size();
            EXPECT_TRUE(tree.erase(entries[gone]));
            std::swap(entries[gone], entries.back());
            entries.pop_back();
        }
        if (i == keys.count / 2) tree.commit();
    }
    tree.check();
    EXPECT_GE(tree.walk().levels, keys.levels);
    for (size_t i = 0; i < entries.size(); i += 97) {
        EXPECT_TRUE(tree.writer().contains(view(keyOf(entries[i]))));
        IndexCursor cursor(tree.file.pages(), tree.index.rootPage);
        EXPECT_TRUE(cursor.find(view(keyOf(entries[i])), rowOf(entries[i])));
    }
    std::shuffle(entries.begin(), entries.end(), random);
    for (size_t left : {entries.size() / 2, entries.size() / 16, size_t(3), size_t(0)}) {
        for (; entries.size() > left; entries.pop_back())
            ASSERT_TRUE(tree.erase(entries.back()));
        tree.check();
    }
    EXPECT_EQ(tree.walk().pages.size(), 1u);
}

// Erased from one end to the other, so that the pages go in their order.
TEST_P(IndexWriterOf, ShrinksFromBothEnds) {
    const Distribution& keys = GetParam();
    for (const bool fromBehind : {false, true}) {
        SCOPED_TRACE(fromBehind);
        std::mt19937 random(4);
        IndexFile tree;
        for (size_t i = 0; i < keys.count / 8; ++i)
            tree.insert(keys.key(i, random) + big(uint32_t(i + 256)));
        const size_t step = tree.model.size() / 4 + 1;
        for (size_t i = 0; !tree.model.empty(); ++i) {
            const std::string entry = fromBehind ? *tree.model.rbegin() : *tree.model.begin();
            ASSERT_TRUE(tree.erase(entry));
            if (i % step == 0) tree.check();
        }
        tree.check();
    }
}

TEST_P(IndexWriterOf, IsBuiltFromOrderedEntries) {
    const Distribution& keys = GetParam();
    for (const size_t count : {size_t(0), size_t(1), size_t(400), keys.count}) {
        SCOPED_TRACE(count);
        std::mt19937 random(5);
        IndexFile tree;
        for (size_t i = 0; i < count; ++i)
            tree.model.insert(keys.key(i, random) + big(uint32_t(i + 256)));
        auto at = tree.model.begin();
        buildTree(tree.file.allocator(), tree.index, table, [&](IndexEntry& entry) {
            if (at == tree.model.end()) return false;
            const std::string key = keyOf(*at);
            entry.key.assign(key.begin(), key.end());
            entry.row = rowOf(*at++);
            return true;
        });
        tree.check();
        if (tree.walk().levels > 1 && keys.levels < 4) {
            EXPECT_GT(tree.walk().fill(), 0.7);
        }
        for (size_t i = 0; i < count; i += 3)
            tree.insert(keys.key(i, random) + big(uint32_t(i + 0x900000)));
        tree.check();
    }
}

TEST(IndexWriterTest, PagesFillUpInOrder) {
    for (const bool descending : {false, true}) {
        IndexFile tree;
        for (uint32_t i = 0; i < 30000; ++i)
            tree.insert('\x7f' + big(descending ? ~i : i) + big(i + 256));
        EXPECT_GT(tree.walk().fill(), 0.95) << descending;
    }
}

// A queue: new entries behind, old ones erased before; some stay for a long time.
TEST(IndexWriterTest, AQueueDoesNotGrow) {
    IndexFile tree;
    constexpr uint32_t length = 3000;
    size_t most = 0;
    for (uint32_t i = 0; i < 40000; ++i) {
        tree.insert('\x7f' + big(i) + big(i + 256));
        const auto leave = [&](uint32_t number) {
            EXPECT_TRUE(tree.erase('\x7f' + big(number) + big(number + 256)));
        };
        if (i >= length && (i - length) % 50 != 0) leave(i - length);
        if (i >= 10 * length && i % 50 == 0) leave(i - 10 * length);
        most = std::max(most, size_t(i % 500 == 0 ? tree.walk().pages.size() : 0));
    }
    tree.check();
    EXPECT_LT(most, 24u);
}

TEST(IndexWriterTest, IsUndoneToASavepoint) {
    IndexFile tree;
    std::mt19937 random(8);
    const auto change = [&](size_t count) {
        for (size_t i = 0; i < count; ++i) {
            tree.insert('\x7f' + big(uint32_t(random())) + big(uint32_t(i + 256)));
            if (i % 3 == 0) tree.erase(*tree.model.begin());
        }
    };
    change(4000);
    for (const bool undone : {true, false, true}) {
        const Model before = tree.model;
        const auto savepoint = tree.file.pages().savepoint();
        change(3000);
        if (undone) {
            tree.file.pages().rollbackTo(savepoint);
            tree.file.allocator().rolledBack();
            tree.writer().rolledBack();
            tree.model = before;
        } else {
            tree.file.pages().release(savepoint);
        }
        tree.check();
        change(500);
        tree.check();
    }
}

TEST(IndexWriterTest, IsDroppedWhole) {
    IndexFile tree;
    const size_t others = tree.file.takenPages().size() - 1;
    for (uint32_t i = 0; i < 3000; ++i)
        tree.insert(longKey(i, 300) + big(i + 256));
    dropTree(tree.file.allocator(), tree.index);
    EXPECT_EQ(tree.file.takenPages().size(), others);
    EXPECT_TRUE(tree.file.setOf(tree.index.ownedPages).empty());
}

TEST(IndexWriterTest, BuildingAsksForOrderAndForAnEmptyTree) {
    const auto build = [](IndexFile& tree, std::vector<std::string> keys) {
        auto at = keys.begin();
        return codeOf([&] {
            buildTree(tree.file.allocator(), tree.index, table, [&](IndexEntry& entry) {
                if (at == keys.end()) return false;
                entry = {KeyBytes(at->begin(), at->end()), {9, 1}};
                ++at;
                return true;
            });
        });
    };
    IndexFile tree;
    EXPECT_EQ(build(tree, {"b", "a"}), InvalidArgument);
    EXPECT_EQ(build(tree, {"a", "a"}), InvalidArgument);
    EXPECT_EQ(build(tree, {std::string(IndexWriter::maxKeySize + 1, 'a')}), RecordTooLarge);
    EXPECT_EQ(build(tree, {"a", "b"}), 0);
    EXPECT_EQ(build(tree, {"a", "b"}), Damaged);
}

// --- trees that other programs left otherwise ---

// Bounds above the greatest entry, empty leaves, and a last child that is no tail.
TEST(IndexWriterTest, LooseNodesAreWrittenTo) {
    IndexFile tree;
    PageFile& file = tree.file;
    const auto lay = [&](uint32_t page, uint8_t level, const std::vector<std::string>& entries,
                         uint32_t previous, uint32_t next) {
        IndexPageEditor editor(file.pages().format(), file.at(page));
        editor.clear(table, level);
        IndexEntries all(level == 0);
        for (const std::string& entry : entries) {
            all.append(view(entry));
            if (level == 0) tree.model.insert(entry);
        }
        editor.layOut(all, 0, all.size(), 0);
        editor.setPrevious(previous);
        editor.setNext(next);
    };
    std::vector<uint32_t> leaves(3);
    for (uint32_t& leaf : leaves)
        leaf = file.allocator().allocate();
    addToMap(file.allocator(), tree.index.ownedPages, leaves);
    const std::string row = big(0x901);
    lay(leaves[0], 0, {"a" + row, "c" + row}, 0, leaves[1]);
    lay(leaves[1], 0, {}, leaves[0], leaves[2]);
    lay(leaves[2], 0, {"p" + row, "r" + row}, leaves[1], 0);
    lay(tree.index.rootPage, 1,
        {"e" + row + big(leaves[0]), "m" + row + big(leaves[1]), "s" + row + big(leaves[2])}, 0, 0);

    // Behind the greatest of a leaf, into the empty leaf, and behind the greatest of all.
    for (const char* key : {"d", "f", "t", "z", "b"}) {
        tree.insert(key + row);
        EXPECT_TRUE(tree.writer().contains(view(key)));
    }
    EXPECT_FALSE(tree.writer().contains(view("n")));
    for (uint32_t i = 0; i < 2000; ++i)
        tree.insert(std::string(1, char('a' + i % 26)) + big(i) + row);
    tree.check();
    while (!tree.model.empty())
        ASSERT_TRUE(tree.erase(*tree.model.rbegin()));
    tree.check();
}

// --- damage ---

TEST(IndexWriterTest, PagesOfOthersAreLeftAlone) {
    IndexFile tree;
    for (uint32_t i = 0; i < 2000; ++i)
        tree.insert('\x7f' + big(i) + big(i + 256));
    const uint32_t first = IndexPage::read(tree.file.pages(), tree.index.rootPage).child(0);
    tree.file.at(first)[4] ^= 1;
    EXPECT_EQ(codeOf([&] { tree.erase('\x7f' + big(0) + big(256)); }), Damaged);
    EXPECT_EQ(codeOf([&] { tree.insert('\x7f' + big(0) + big(255)); }), Damaged);
    EXPECT_EQ(codeOf([&] { dropTree(tree.file.allocator(), tree.index); }), Damaged);
}

// Whatever the pages hold, every change ends, with or without an error.
TEST(IndexWriterTest, RandomDamageEndsInErrors) {
    std::mt19937 random(9);
    IndexFile tree;
    std::vector<std::string> entries;
    for (uint32_t i = 0; i < 400; ++i) {
        entries.push_back(longKey(uint32_t(random()), 30 + random() % 500) + big(i + 256));
        tree.insert(entries.back());
    }
    const IndexWalk walk = tree.walk();
    const std::vector<uint32_t> pages(walk.pages.begin(), walk.pages.end());
    ASSERT_GE(walk.levels, 3u);
    size_t errors = 0;
    for (int round = 0; round < 1500; ++round) {
        const auto savepoint = tree.file.pages().savepoint();
        for (int i = 0; i < 3; ++i) {
            const size_t range = random() % 3 == 0 ? testPageSize : 520;
            tree.file.at(pages[random() % pages.size()])[random() % range] ^=
                static_cast<uint8_t>(1u << random() % 8);
        }
        const auto attempt = [&](auto&& action) {
            const int code = codeOf(action);
            EXPECT_TRUE(code == 0 || code == Damaged || code == RecordTooLarge) << code;
            errors += code != 0;
        };
        IndexWriter writer(tree.file.allocator(), tree.index, table);
        for (int i = 0; i < 40; ++i) {
            const std::string& entry = entries[random() % entries.size()];
            attempt([&] { writer.contains(view(keyOf(entry))); });
            attempt([&] { writer.erase(view(keyOf(entry)), rowOf(entry)); });
            const std::string other = longKey(uint32_t(random()), 20 + random() % 900);
            attempt([&] { writer.insert(view(other), {1000, uint16_t(i)}); });
        }
        attempt([&] { dropTree(tree.file.allocator(), tree.index); });
        tree.file.pages().rollbackTo(savepoint);
        tree.file.allocator().rolledBack();
    }
    EXPECT_GT(errors, 1000u);
    tree.writer().rolledBack();
    tree.check();
}

// --- indexes that other programs made ---

// Every entry of every index is erased and put back in another order.
void rewriteIndexes(WriteTransaction& pages, std::mt19937& random) {
    PageAllocator allocator(pages);
    for (const TableDefinition& definition : real::tablesOf(pages)) {
        for (const RealIndex& index : definition.realIndexes) {
            SCOPED_TRACE(toUtf8(definition.name) + ", root " + std::to_string(index.rootPage));
            const std::vector<std::string> before =
                IndexWalk(pages, index.rootPage, definition.page).entries;
            std::vector<std::string> entries = before;
            IndexWriter writer(allocator, index, definition.page);
            std::shuffle(entries.begin(), entries.end(), random);
            for (const std::string& entry : entries) {
                EXPECT_TRUE(writer.contains(view(keyOf(entry))));
                EXPECT_TRUE(writer.erase(view(keyOf(entry)), rowOf(entry)));
            }
            const IndexWalk empty(pages, index.rootPage, definition.page);
            EXPECT_EQ(empty.entries.size(), 0u);
            EXPECT_EQ(empty.pages.size(), 1u);
            std::shuffle(entries.begin(), entries.end(), random);
            for (const std::string& entry : entries)
                writer.insert(view(keyOf(entry)), rowOf(entry));
            EXPECT_EQ(IndexWalk(pages, index.rootPage, definition.page).entries, before);
        }
    }
}

TEST(IndexWriterTest, IndexesOfRealFilesAreErasedAndFilledAgain) {
    std::mt19937 random(10);
    size_t files = 0;
    for (const auto& path : sg::test::realDatabases()) {
        SCOPED_TRACE(path.filename().string());
        const Bytes content = test::readFile(path.wstring());
        if (content[pages::versionOffset] != static_cast<uint8_t>(Version::Jet4)) continue;
        ++files;
        PageFile file(content);
        rewriteIndexes(file.pages(), random);
        file.commit();
        const Bytes changed = contentOf(file.pages());
        for (const CheckFinding& finding :
             checkDatabase(Database(std::make_unique<MemoryPageStore>(changed, L"changed.mdb"))))
            ADD_FAILURE() << toUtf8(finding.table + L": " + finding.what);
    }
    if (files == 0) GTEST_SKIP() << "no real databases";
}

}  // namespace
}  // namespace sg::jet

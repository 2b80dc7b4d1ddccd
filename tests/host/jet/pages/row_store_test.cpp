#include "host/jet/pages/row_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/jet/file_content.h"
#include "host/jet/index_test_files.h"
#include "host/jet/page_files.h"
#include "host/jet/pages/long_value.h"
#include "host/jet/pages/long_value_store.h"
#include "real_data.h"

namespace sg::jet {
namespace {

using test::PageFile;
using test::pageFile;

constexpr uint32_t owner = pages::catalog;  // any page that stays

Bytes row(size_t size, uint32_t seed) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(seed * 31 + i * 7 + (seed >> 8));
    return bytes;
}

// A table without columns: pages, maps, and a model of its rows.
class RowStoreTest : public testing::Test {
  protected:
    RowStoreTest() { open(pageFile(3)); }
    void open(Bytes content) {
        file_ = std::make_unique<PageFile>(std::move(content));
        maps_ = createMaps(file_->allocator(), 2);
        reopen();
    }
    void reopen() {
        store_ = std::make_unique<RowStore>(file_->allocator(), owner, maps_[0], maps_[1]);
    }
    WriteTransaction& pages() { return file_->pages(); }
    DataPage page(uint32_t number) { return DataPage(pages(), number); }

    RowId insert(const Bytes& bytes) {
        const RowId id = store_->insert(ByteView(bytes));
        EXPECT_LT(id.row, 255);
        EXPECT_TRUE(model_.emplace(id, bytes).second) << id.page << "/" << id.row;
        return id;
    }
    void update(RowId id, const Bytes& bytes) {
        store_->update(id, ByteView(bytes));
        model_[id] = bytes;
    }
    void erase(RowId id) {
        store_->erase(id);
        model_.erase(id);
    }
    bool isLookup(RowId id) { return page(id.page).isLookup(id.row); }

    // What a program that reads the file finds is what the model has, and every byte of the pages
    // is told for.
    void verify() {
        const std::set<uint32_t> owned = file_->setOf(maps_[0]);
        const std::set<uint32_t> free = file_->setOf(maps_[1]);
        ASSERT_TRUE(std::includes(owned.begin(), owned.end(), free.begin(), free.end()));
        std::map<RowId, Bytes> found;
        std::set<RowId> pointedTo;
        std::set<RowId> hidden;
        for (const uint32_t number : owned) {
            const DataPage page(pages(), number);
            ASSERT_EQ(page.owner(), owner);
            const PageRoom room = roomOf(page.bytes(), pages().format(), number);
            ASSERT_TRUE(room.hasRows) << number;
            ASSERT_EQ(page.freeSpace(), room.bytes) << number;
            ASSERT_FALSE(page.isDeleted(page.rowCount() - 1) && page.isLookup(page.rowCount() - 1));
            for (uint16_t i = 0; i < page.rowCount(); ++i) {
                if (page.isDeleted(i)) {
                    if (!page.isLookup(i)) hidden.insert({number, i});
                    continue;
                }
                DataPage at = page;
                uint16_t place = i;
                followOverflow(pages(), at, place);
                const ByteView bytes = at.rowBytes(place);
                found[{number, i}] = Bytes(bytes.begin(), bytes.end());
                if (!page.isLookup(i)) continue;
                ASSERT_EQ(page.rowBytes(i).size(), 4u);
                const RowId target = RowId::fromPacked(page.rowBytes(i).get32(0));
                ASSERT_TRUE(pointedTo.insert(target).second);
            }
        }
        ASSERT_EQ(found == model_, true);
        ASSERT_EQ(hidden, pointedTo);
        std::set<uint32_t> taken = owned;
        taken.insert(maps_[0].page);
        taken.insert(mapPages_.begin(), mapPages_.end());
        ASSERT_EQ(file_->takenPages(), taken);
    }

    std::unique_ptr<PageFile> file_;
    std::vector<RowId> maps_;
    std::set<uint32_t> mapPages_;  // that the maps have taken
    std::unique_ptr<RowStore> store_;
    std::map<RowId, Bytes> model_;
};

TEST_F(RowStoreTest, RowsFillAPageAndThenTheNext) {
    EXPECT_EQ(store_->maxRowSize(), 4080u);
    const RowId first = insert(row(1000, 1));
    for (uint16_t i = 1; i < 4; ++i)
        EXPECT_EQ(insert(row(1000, i)), (RowId{first.page, i}));
    EXPECT_EQ(page(first.page).freeSpace(), 4096 - 14 - 4 * 1002);
    EXPECT_EQ(pages().read(first.page)->get8(1), 1);
    const RowId next = insert(row(73, 9));
    EXPECT_EQ(next.row, 0);
    EXPECT_NE(next.page, first.page);
    // Another store finds the room that is left.
    reopen();
    EXPECT_EQ(insert(row(3000, 5)), (RowId{next.page, 1}));
    const RowId whole = insert(row(4080, 6));
    EXPECT_EQ(page(whole.page).freeSpace(), 0);
    EXPECT_EQ(file_->setOf(maps_[1]).count(whole.page), 0u);
    EXPECT_EQ(codeOf([&] { insert(row(4081, 6)); }), RecordTooLarge);
    EXPECT_EQ(codeOf([&] { update(whole, row(4081, 6)); }), RecordTooLarge);
    verify();
}

TEST_F(RowStoreTest, ARowNumberFitsInAByteAlsoForOthers) {
    for (int i = 0; i < 600; ++i)
        insert(row(3, i));
    verify();
    EXPECT_EQ(file_->setOf(maps_[0]).size(), 3u);
    EXPECT_EQ(page(*file_->setOf(maps_[0]).begin()).rowCount(), 255);
}

TEST_F(RowStoreTest, NumbersOfDeletedRowsAreUsedAgain) {
    std::vector<RowId> ids;
    for (int i = 0; i < 10; ++i)
        ids.push_back(insert(row(50, i)));
    erase(ids[3]);
    erase(ids[6]);
    EXPECT_TRUE(page(ids[0].page).isDeleted(3) && page(ids[0].page).isLookup(3));
    EXPECT_TRUE(page(ids[0].page).rowBytes(3).empty());
    EXPECT_EQ(page(ids[0].page).rowCount(), 10);
    EXPECT_EQ(insert(row(70, 20)), ids[3]);
    EXPECT_EQ(insert(row(20, 21)), ids[6]);
    verify();
    // The directory ends with a row.
    erase(ids[8]);
    erase(ids[9]);
    EXPECT_EQ(page(ids[0].page).rowCount(), 8);
    EXPECT_EQ(insert(row(20, 22)), ids[8]);
    verify();
    EXPECT_EQ(codeOf([&] { store_->erase(ids[9]); }), Damaged);
    erase(ids[1]);
    EXPECT_EQ(codeOf([&] { store_->erase(ids[1]); }), Damaged);
    EXPECT_EQ(codeOf([&] { store_->update(ids[1], ByteView()); }), Damaged);
    while (!model_.empty())
        erase(model_.begin()->first);
    verify();
    EXPECT_TRUE(file_->setOf(maps_[0]).empty());
    EXPECT_EQ(codeOf([&] { store_->erase(ids[0]); }), Damaged);
}

TEST_F(RowStoreTest, ARowThatOutgrowsItsPageKeepsItsId) {
    std::vector<RowId> ids;
    for (int i = 0; i < 4; ++i)
        ids.push_back(insert(row(1000, i)));
    update(ids[1], row(1074, 11));  // all that is free
    EXPECT_FALSE(isLookup(ids[1]));
    EXPECT_EQ(page(ids[1].page).freeSpace(), 0);
    verify();
    update(ids[2], row(1001, 12));
    EXPECT_TRUE(isLookup(ids[2]));
    verify();
    const auto target = [&] {
        return RowId::fromPacked(page(ids[2].page).rowBytes(ids[2].row).get32(0));
    };
    const RowId first = target();
    update(ids[2], row(4080, 13));  // grows where it is
    EXPECT_EQ(target(), first);
    update(ids[2], row(1500, 14));
    const RowId neighbour = insert(row(2500, 15));
    EXPECT_EQ(neighbour.page, first.page);
    update(ids[2], row(1600, 16));  // and moves on
    EXPECT_NE(target(), first);
    verify();
    // The number of a row's bytes is not given away.
    const RowId now = target();
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(insert(row(400, i)), now);
    verify();
    update(ids[2], row(1000, 17));  // comes home
    EXPECT_FALSE(isLookup(ids[2]));
    verify();
    update(ids[2], row(1900, 18));
    EXPECT_TRUE(isLookup(ids[2]));
    erase(ids[2]);
    verify();
}

TEST_F(RowStoreTest, ARowShorterThanAPointerCanMoveFromAFullPage) {
    const RowId small = insert(row(3, 1));
    insert(row(2000, 2));
    insert(row(2073, 3));
    EXPECT_EQ(page(small.page).freeSpace(), 0);
    update(small, row(90, 4));
    EXPECT_TRUE(isLookup(small));
    verify();
}

TEST_F(RowStoreTest, AFileDoesNotGrowWhenItIsFilledAgain) {
    std::mt19937 random(3);
    std::vector<size_t> sizes;
    for (int i = 0; i < 3000; ++i)
        sizes.push_back(4 + random() % 600);
    uint32_t pageCount = 0;
    for (int round = 0; round < 6; ++round) {
        for (const size_t size : sizes)
            insert(row(size, round));
        verify();
        if (round == 0) pageCount = pages().pageCount();
        EXPECT_EQ(pages().pageCount(), pageCount) << round;
        std::vector<RowId> ids;
        for (const auto& [id, bytes] : model_)
            ids.push_back(id);
        if (round % 2 != 0) std::shuffle(ids.begin(), ids.end(), random);
        for (const RowId id : ids)
            erase(id);
        verify();
        file_->commit();
        reopen();
    }
    // Nor when rows come and go, each in a transaction of its own.
    for (const size_t size : sizes)
        insert(row(size, 1));
    const uint32_t full = pages().pageCount();
    for (int i = 0; i < 3000; ++i) {
        auto old = model_.lower_bound({static_cast<uint32_t>(random() % full), 0});
        if (old == model_.end()) old = model_.begin();
        const size_t size = old->second.size();
        erase(old->first);
        reopen();
        insert(row(size, i));
        if (i % 5 == 0) reopen();
    }
    verify();
    EXPECT_LE(pages().pageCount(), full + full / 20);
}

TEST_F(RowStoreTest, LargeRowsShareTheirPagesWhereTheyCan) {
    // With a store for each, as single operations have.
    for (int i = 0; i < 200; ++i) {
        insert(row(1500, i));
        reopen();
    }
    EXPECT_LE(file_->setOf(maps_[0]).size(), 102u);
    std::mt19937 random(5);
    for (int i = 0; i < 400; ++i) {
        insert(row(random() % 4000, i));
        reopen();
    }
    verify();
    size_t bytes = 0;
    for (const auto& [id, content] : model_)
        bytes += content.size();
    EXPECT_LE(file_->setOf(maps_[0]).size(), bytes / 4096 * 3 / 2);
}

// Many pages have room, but not for rows of this size.
TEST_F(RowStoreTest, RoomIsFoundBehindPagesWithLess) {
    std::vector<RowId> ids;
    std::vector<RowId> small;
    for (int i = 0; i < 40; ++i) {
        ids.push_back(insert(row(2100, i)));
        small.push_back(insert(row(1500, i)));
    }
    for (const RowId id : small)
        erase(id);
    EXPECT_EQ(file_->setOf(maps_[1]).size(), 40u);
    for (const size_t last : {39u, 37u}) {
        update(ids[last], row(100, 1));
        reopen();
        EXPECT_EQ(insert(row(2900, 2)).page, ids[last].page);
    }
    update(ids[20], row(100, 3));
    int tries = 0;
    do {
        reopen();
        ++tries;
    } while (insert(row(2900, 4)).page != ids[20].page && tries < 40);
    EXPECT_LT(tries, 40);
    verify();
}

TEST_F(RowStoreTest, APageThatWasGivenBackIsForgotten) {
    const std::vector<RowId> maps = createMaps(file_->allocator(), 2);
    RowStore other(file_->allocator(), owner, maps[0], maps[1]);
    const RowId id = insert(row(100, 1));
    erase(id);
    const Bytes bytes = row(100, 2);
    EXPECT_EQ(other.insert(ByteView(bytes)).page, id.page);
    EXPECT_NE(insert(row(100, 3)).page, id.page);
}

TEST_F(RowStoreTest, AnyChangesKeepWhatTheModelHas) {
    std::mt19937 random(17);
    const size_t reach[] = {8, 60, 300, 4080};
    const auto size = [&] {
        const size_t most = reach[random() % 4];
        return 2 + random() % (most - 1);
    };
    const auto step = [&] {
        auto some = model_.lower_bound({static_cast<uint32_t>(random() % pages().pageCount()),
                                        static_cast<uint16_t>(random() % 30)});
        if (some == model_.end()) some = model_.begin();
        const unsigned what = random() % 10;
        if (model_.empty() || what < 4) {
            insert(row(size(), random()));
        } else if (what < 7) {
            update(some->first, row(size(), random()));
        } else {
            erase(some->first);
        }
    };
    for (int round = 0; round < 150; ++round) {
        for (int i = 0; i < 40; ++i)
            step();
        if (round % 10 == 0) {
            const auto savepoint = pages().savepoint();
            const auto kept = model_;
            for (int i = 0; i < 60; ++i)
                step();
            ASSERT_NO_FATAL_FAILURE(verify());
            pages().rollbackTo(savepoint);
            file_->allocator().rolledBack();
            store_->rolledBack();
            model_ = kept;
        }
        if (round % 7 == 0) reopen();
        if (round % 13 == 0) {
            file_->commit();
            reopen();
        }
        ASSERT_NO_FATAL_FAILURE(verify()) << round;
    }
}

TEST_F(RowStoreTest, OthersPagesAreLeftAlone) {
    const RowId id = insert(row(100, 1));
    const uint32_t foreign = file_->allocator().allocate();
    DataPageEditor::initialize(file_->at(foreign), pages().format(), pages::longValueOwner);
    const Bytes bytes = row(10, 1);
    DataPageEditor::append(file_->at(foreign), pages().format(), pages::longValueOwner,
                           ByteView(bytes));
    addToMap(file_->allocator(), maps_[0], foreign);
    addToMap(file_->allocator(), maps_[1], foreign);
    reopen();
    for (int i = 0; i < 200; ++i)
        EXPECT_NE(insert(row(100, i)).page, foreign);
    EXPECT_EQ(codeOf([&] { store_->erase({foreign, 0}); }), Damaged);
    // A page that is in no map of the store's is not given back.
    removeFromMap(file_->allocator(), maps_[0], foreign);
    removeFromMap(file_->allocator(), maps_[1], foreign);
    RowStore values(file_->allocator(), pages::longValueOwner, maps_[0], maps_[1]);
    values.erase({foreign, 0});
    EXPECT_EQ(page(foreign).rowCount(), 0);
    EXPECT_EQ(file_->freePages().count(foreign), 0u);
    EXPECT_TRUE(model_.count(id));
}

// Bytes of deleted rows that another program has left are used.
TEST_F(RowStoreTest, GarbageIsRoom) {
    constexpr uint16_t both = rows::deletedFlag | rows::lookupFlag;
    for (const bool grows : {true, false}) {
        std::vector<RowId> ids;
        for (int i = 0; i < 8; ++i)
            ids.push_back(insert(row(500, i)));
        for (const size_t i : {2u, 5u, 7u}) {
            uint8_t* entry = &file_->at(ids[0].page)[14 + 2 * i];
            entry[1] = static_cast<uint8_t>(entry[1] | both >> 8);
            model_.erase(ids[i]);
        }
        reopen();
        if (grows) {
            update(ids[0], row(1400, 9));
            EXPECT_FALSE(isLookup(ids[0]));
        }
        EXPECT_EQ(insert(row(600, 10)), ids[2]);
        erase(ids[6]);
        verify();
        while (!model_.empty())
            erase(model_.begin()->first);
    }
}

TEST_F(RowStoreTest, NoDamageIsMoreThanAnError) {
    std::mt19937 random(23);
    for (int round = 0; round < 300; ++round) {
        open(pageFile(3));
        model_.clear();
        std::vector<RowId> ids;
        for (int i = 0; i < 60; ++i)
            ids.push_back(insert(row(random() % 500, i)));
        for (int i = 0; i < 20; ++i)
            store_->update(ids[random() % ids.size()], ByteView(row(random() % 2000, i)));
        for (int i = 0; i < 10; ++i) {
            const uint32_t number = 1 + random() % (pages().pageCount() - 1);
            const size_t at = random() % 3 == 0 ? 3950 + random() % 146 : random() % 60;
            file_->at(number)[at] = static_cast<uint8_t>(random());
        }
        if (round % 2 != 0) reopen();
        for (int i = 0; i < 60; ++i) {
            const RowId id = ids[random() % ids.size()];
            const Bytes bytes = row(random() % 3000, i);
            codeOf([&] { store_->update(id, ByteView(bytes)); });
            codeOf([&] { store_->insert(ByteView(bytes)); });
            if (i % 3 == 0) codeOf([&] { store_->erase(id); });
        }
    }
}

// --- long values ---

class LongValueStoreTest : public RowStoreTest {
  protected:
    LongValueStoreTest() {
        const std::vector<RowId> maps = createMaps(file_->allocator(), 2);
        column_.ownedPages = maps[0];
        column_.freePages = maps[1];
        table_.ownedPages = maps_[0];
        table_.freePages = maps_[1];
    }
    Bytes store(const Bytes& content) {
        Bytes header = {1, 2, 3};
        storeLongValue(file_->allocator(), table_, column_, ByteView(content), header);
        return header;
    }
    Bytes read(const Bytes& header) {
        Bytes buffer;
        const ByteView value = readLongValue(pages(), ByteView(header), buffer);
        return Bytes(value.begin(), value.end());
    }
    void erase(const Bytes& header) {
        eraseLongValue(file_->allocator(), table_, column_, ByteView(header));
    }

    TableDefinition table_;
    Column column_;
};

TEST_F(LongValueStoreTest, ValuesOfAnySizeAreReadBackAndGoWithoutATrace) {
    struct Case {
        size_t size;
        size_t headerSize;
        uint32_t flags;
        size_t pages;
    };
    const Case cases[] = {
        {0, 0, 0, 0},
        {1, 13, longValues::inlineFlag, 0},
        {64, 76, longValues::inlineFlag, 0},
        {65, 12, longValues::singleFlag, 1},
        {4076, 12, longValues::singleFlag, 1},
        {4077, 12, 0, 2},
        {8144, 12, 0, 2},
        {8145, 12, 0, 3},
        {3000000, 12, 0, 737},
    };
    const std::set<uint32_t> before = file_->takenPages();
    for (const bool own : {true, false}) {
        if (!own) column_.ownedPages.reset();
        for (const Case& c : cases) {
            const Bytes content = row(c.size, static_cast<uint32_t>(c.size));
            const Bytes header = store(content);
            ASSERT_EQ(header.size(), c.headerSize) << c.size;
            EXPECT_EQ(read(header) == content, true) << c.size;
            if (c.size != 0) {
                EXPECT_EQ(ByteView(header).get32(0), c.flags | c.size);
            }
            const RowId owned = own ? *column_.ownedPages : maps_[0];
            const std::set<uint32_t> used = file_->setOf(owned);
            EXPECT_EQ(used.size(), c.pages) << c.size;
            for (const uint32_t number : used)
                ASSERT_EQ(page(number).owner(), pages::longValueOwner);
            erase(header);
            EXPECT_TRUE(file_->setOf(owned).empty()) << c.size;
            // But for map pages.
            EXPECT_LE(file_->takenPages().size(), before.size() + 3) << c.size;
        }
    }
}

TEST_F(LongValueStoreTest, ValuesShareTheirPages) {
    std::mt19937 random(29);
    std::vector<std::pair<Bytes, Bytes>> values;
    for (int i = 0; i < 1500; ++i) {
        if (values.size() < 100 || random() % 2 == 0) {
            const size_t most = random() % 10 == 0 ? 12000 : 900;
            const Bytes content = row(random() % most, i);
            values.emplace_back(store(content), content);
        } else {
            const size_t which = random() % values.size();
            erase(values[which].first);
            values[which] = values.back();
            values.pop_back();
        }
    }
    size_t bytes = 0;
    for (const auto& [header, content] : values) {
        ASSERT_EQ(read(header) == content, true);
        if (content.size() > 64) bytes += content.size();
    }
    EXPECT_LE(file_->setOf(*column_.ownedPages).size(), bytes / 4096 * 2);
    for (const auto& [header, content] : values)
        erase(header);
    EXPECT_TRUE(file_->setOf(*column_.ownedPages).empty());
    EXPECT_TRUE(file_->setOf(*column_.freePages).empty());
}

TEST_F(LongValueStoreTest, DamagedValuesAreNotErasedQuietly) {
    const Bytes chain = store(row(10000, 1));
    const Bytes single = store(row(100, 2));
    const auto changed = [](Bytes header, size_t at, uint32_t value) {
        std::memcpy(&header[at], &value, 4);
        return header;
    };
    const uint32_t first = ByteView(chain).get32(longValues::pointer);
    const uint32_t alone = ByteView(single).get32(longValues::pointer);
    const RowId plain = insert(row(100, 3));
    const Bytes cases[] = {
        {1, 2, 3},
        changed(single, 0, 101 | longValues::singleFlag),
        changed(single, 0, longValues::lengthMask),
        changed(single, longValues::pointer, alone + 1),
        changed(single, longValues::pointer, 0xffffff00),
        changed(single, longValues::pointer, plain.packed()),
        changed(chain, 0, 20000),
    };
    for (const Bytes& header : cases) {
        const auto savepoint = pages().savepoint();
        EXPECT_EQ(codeOf([&] { erase(header); }), Damaged) << testing::PrintToString(header);
        pages().rollbackTo(savepoint);
        file_->allocator().rolledBack();
    }
    // A chain that comes back to its first row.
    const RowId at = RowId::fromPacked(first);
    const ByteView bytes = page(at.page).rowBytes(at.row);
    const size_t offset = testPageSize - bytes.size();
    std::memcpy(&file_->at(at.page)[offset], &first, 4);
    EXPECT_EQ(codeOf([&] { erase(chain); }), Damaged);
}

// --- files of other programs ---

TEST(RowStoreOnRealFiles, EveryTableCanBeRewritten) {
    const auto files = sg::test::realDatabases();
    if (files.empty()) GTEST_SKIP() << "no real databases";
    for (const auto& path : files) {
        Bytes content = test::readFile(fromUtf8(path.string()));
        if (content[pages::versionOffset] != static_cast<uint8_t>(Version::Jet4)) continue;
        PageFile file(std::move(content));
        std::mt19937 random(31);
        for (const TableDefinition& table : real::tablesOf(file.pages())) {
            std::map<RowId, Bytes> model;
            real::forEachRow(file.pages(), table, [&](RowId id, ByteView bytes) {
                model[id] = Bytes(bytes.begin(), bytes.end());
            });
            RowStore store(file.allocator(), table.page, table.ownedPages, table.freePages);
            const auto ids = model;
            for (const auto& [id, bytes] : ids) {
                const Bytes changed = row(random() % 300, id.packed());
                switch (random() % 4) {
                    case 0:
                        store.erase(id);
                        model.erase(id);
                        break;
                    case 1:
                        store.update(id, ByteView(changed));
                        model[id] = changed;
                        break;
                    case 2:
                        model[store.insert(ByteView(changed))] = changed;
                        break;
                    default:
                        break;
                }
            }
            std::map<RowId, Bytes> found;
            real::forEachRow(file.pages(), table, [&](RowId id, ByteView bytes) {
                found[id] = Bytes(bytes.begin(), bytes.end());
            });
            EXPECT_EQ(found == model, true) << path << " page " << table.page;
        }
    }
}

}  // namespace
}  // namespace sg::jet

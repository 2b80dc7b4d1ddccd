#include "host/jet/pages/page_allocator.h"

#include <gtest/gtest.h>

#include <random>

#include "host/jet/page_files.h"

namespace sg::jet {
namespace {

using test::PageFile;
using test::pageFile;

constexpr RowId freeMap{pages::globalMap, 0};
constexpr uint32_t bitsOfMapPage = (testPageSize - maps::pageBits) * 8;

bool isZero(const PageRef& page) {
    return std::all_of(page->begin(), page->end(), [](uint8_t byte) { return byte == 0; });
}

bool isInline(PageFile& file, RowId record) {
    return UsageMap::read(file.pages(), record).isInline();
}

// --- the map of free pages ---

TEST(PageAllocatorTest, GivesTheLowestFreePageAndThenNewOnes) {
    PageFile file(pageFile(10, {5, 7}));
    for (const uint32_t expected : {5u, 7u, 10u, 11u}) {
        EXPECT_EQ(file.allocator().allocate(), expected);
        EXPECT_TRUE(isZero(file.pages().read(expected))) << expected;
    }
    EXPECT_TRUE(file.freePages().empty());
    file.at(10)[0] = 1;
    file.at(10)[20] = 7;
    file.allocator().free(10);
    file.allocator().free(8);
    EXPECT_EQ(file.freePages(), (std::set<uint32_t>{8, 10}));
    EXPECT_EQ(file.pages().read(10)->get8(0), 0);
    file.commit();
    EXPECT_EQ(file.allocator().allocate(), 8u);
    EXPECT_EQ(file.allocator().allocate(), 10u);
    EXPECT_TRUE(isZero(file.pages().read(10)));
    EXPECT_EQ(file.allocator().allocate(), 12u);
}

TEST(PageAllocatorTest, RefusesPagesThatCantBeFree) {
    PageFile file(pageFile(10, {5}));
    for (const uint32_t page : {0u, 1u, 2u, 5u, 10u, 0xffffffffu}) {
        EXPECT_EQ(codeOf([&] { file.allocator().free(page); }), Damaged) << page;
    }
    EXPECT_EQ(file.freePages(), std::set<uint32_t>{5});
}

TEST(PageAllocatorTest, ForgetsWhatWasRolledBack) {
    PageFile file(pageFile(10, {5}));
    const auto savepoint = file.pages().savepoint();
    EXPECT_EQ(file.allocator().allocate(), 5u);
    EXPECT_EQ(file.allocator().allocate(), 10u);
    file.allocator().free(4);
    file.pages().rollbackTo(savepoint);
    file.allocator().rolledBack();
    EXPECT_EQ(file.freePages(), std::set<uint32_t>{5});
    EXPECT_EQ(file.allocator().allocate(), 5u);
    EXPECT_EQ(file.allocator().allocate(), 10u);
}

TEST(PageAllocatorTest, TheMapReachesToTheEndOfALargeFile) {
    struct Case {
        const char* what;
        uint32_t start;      // pages at first
        uint32_t firstPage;  // of the window
        uint32_t mapPages;   // that are taken
    };
    const Case cases[] = {
        {"the window ends with the file", 512, 0, 1},
        {"the window ended long ago", 2000, 0, 1},
        {"the window begins late", 1200, 800, 0},
        {"the next page is the second map page's first", bitsOfMapPage - 1, 0, 2},
        {"two map pages", bitsOfMapPage + 300, 0, 2},
    };
    for (const Case& c : cases) {
        PageFile file(pageFile(3));
        file.pages().grow(c.start - 3);
        const std::span<uint8_t> record = file.at(1).subspan(testPageSize - 69);
        std::fill(record.begin() + maps::inlineBits, record.end(), uint8_t(0));
        std::memcpy(&record[maps::firstPage], &c.firstPage, 4);
        const uint32_t free = c.firstPage + 100;
        record[maps::inlineBits + 100 / 8] = 1u << (100 % 8);
        EXPECT_EQ(file.allocator().allocate(), free) << c.what;
        file.allocator().free(free);
        EXPECT_EQ(file.allocator().allocate(), free) << c.what;
        EXPECT_EQ(file.allocator().allocate(), c.start + c.mapPages) << c.what;
        EXPECT_EQ(isInline(file, freeMap), c.mapPages == 0) << c.what;
        EXPECT_TRUE(file.freePages().empty()) << c.what;
        for (uint32_t page = 3; page < c.start; page += 97)
            file.allocator().free(page);
        file.allocator().free(c.start - 1);
        for (uint32_t page = 3; page < c.start; page += 97)
            EXPECT_EQ(file.allocator().allocate(), page) << c.what;
        EXPECT_EQ(file.allocator().allocate(), c.start - 1) << c.what;
        const uint32_t next = file.pages().pageCount();
        EXPECT_TRUE(UsageMap::read(file.pages(), freeMap).contains(next)) << c.what;
        EXPECT_EQ(file.allocator().allocate(), next) << c.what;
        if (testing::Test::HasFailure()) return;
    }
}

TEST(PageAllocatorTest, AMapPageThatIsMissingIsAdded) {
    PageFile file(pageFile(3));
    const uint32_t end = bitsOfMapPage + 300;
    file.pages().grow(end - 3);
    // The second one is there, and has what lies beyond the end.
    const std::span<uint8_t> record = file.at(1).subspan(testPageSize - 69);
    std::fill(record.begin(), record.end(), uint8_t(0));
    record[0] = maps::referencedKind;
    record[maps::mapPages + 4] = 10;
    const std::span<uint8_t> bits = file.at(10);
    bits[0] = static_cast<uint8_t>(PageKind::UsageMap);
    std::fill(bits.begin() + maps::pageBits + 37, bits.end(), uint8_t(0xff));
    bits[maps::pageBits + 37] = 0xf0;
    file.allocator().free(50);
    EXPECT_EQ(file.freePages(), std::set<uint32_t>{50});
    EXPECT_EQ(file.pages().pageCount(), end + 1);
    EXPECT_EQ(file.allocator().allocate(), 50u);
    EXPECT_EQ(file.allocator().allocate(), end + 1);
}

TEST(PageAllocatorTest, ADamagedMapIsFoundOut) {
    struct Case {
        const char* what;
        size_t at;  // on page 1
        std::vector<uint8_t> bytes;
    };
    const size_t record = testPageSize - 69;
    const Case cases[] = {
        {"another kind of page", 0, {2}},
        {"no rows", 12, {0}},
        {"a deleted record", 14, {0xbb, 0x8f}},
        {"a record that is elsewhere", 14, {0xbb, 0x4f}},
        {"a record that begins in the directory", 14, {4, 0}},
        {"an unknown kind", record, {2}},
        {"the database page is free", record + maps::inlineBits, {1}},
        {"a map page beyond the end", record, {1, 99, 0, 0, 0}},
        {"a map page of another kind", record, {1, 2, 0, 0, 0}},
        {"a record that is too short", 14, {0xff, 0x0f}},
    };
    for (const Case& c : cases) {
        PageFile file(pageFile(10));
        std::copy(c.bytes.begin(), c.bytes.end(),
                  file.at(1).begin() + static_cast<ptrdiff_t>(c.at));
        EXPECT_EQ(codeOf([&] { file.allocator().allocate(); }), Damaged) << c.what;
    }
}

// --- other maps ---

TEST(UsageMapEditorTest, AMapMovesOrGetsPagesOfItsOwn) {
    struct Case {
        std::vector<uint32_t> add;
        bool isInline;
        uint32_t firstPage;
    };
    const Case cases[] = {
        {{3, 511}, true, 0},
        {{512}, true, 512},
        {{1111}, true, 1104},
        {{600, 5}, false, 0},
        {{600, 300}, true, 296},
        {{599, 88}, true, 88},
        {{600, 88}, false, 0},
        {{87, 591}, true, 80},
        {{87, 592}, false, 0},  // too far only since a window begins with a byte
        {{700, 800, 250, 250}, false, 0},
        {{40, 39999, 7, 32735, 32736}, false, 0},
    };
    PageFile file(pageFile(3));
    file.pages().grow(40000);
    for (const Case& c : cases) {
        const std::string what = testing::PrintToString(c.add);
        const auto before = file.pages().savepoint();
        const RowId map = createMaps(file.allocator(), 3)[1];
        std::set<uint32_t> expected;
        for (const uint32_t page : c.add) {
            addToMap(file.allocator(), map, page);
            expected.insert(page);
            ASSERT_EQ(file.setOf(map), expected) << what;
        }
        const UsageMap read = UsageMap::read(file.pages(), map);
        EXPECT_EQ(read.isInline(), c.isInline) << what;
        EXPECT_EQ(read.firstPage(), c.firstPage) << what;
        removeFromMap(file.allocator(), map, c.add.front());
        removeFromMap(file.allocator(), map, c.add.front());
        removeFromMap(file.allocator(), map, 39990);
        expected.erase(c.add.front());
        EXPECT_EQ(file.setOf(map), expected) << what;
        EXPECT_TRUE(file.setOf({map.page, 0}).empty()) << what;
        EXPECT_TRUE(file.setOf({map.page, 2}).empty()) << what;
        file.pages().rollbackTo(before);
        file.allocator().rolledBack();
    }
}

TEST(UsageMapEditorTest, MapsAreMadeAndDroppedWithoutALoss) {
    PageFile file(pageFile(3));
    file.pages().grow(2000);
    const std::set<uint32_t> before = file.takenPages();
    EXPECT_EQ(codeOf([&] { createMaps(file.allocator(), 58); }), InvalidArgument);
    EXPECT_TRUE(createMaps(file.allocator(), 0).empty());
    std::vector<RowId> maps = createMaps(file.allocator(), 56);
    ASSERT_EQ(maps.size(), 56u);
    maps.push_back(createMap(file.allocator(), maps.front()));
    EXPECT_EQ(maps.back(), (RowId{maps.front().page, 56}));
    maps.push_back(createMap(file.allocator(), maps.front()));
    EXPECT_NE(maps.back().page, maps.front().page);
    const std::vector<uint32_t> far = {10, 1990};
    addToMap(file.allocator(), maps[20], far);
    EXPECT_EQ(file.setOf(maps[20]), std::set<uint32_t>(far.begin(), far.end()));
    dropMap(file.allocator(), maps[20]);
    EXPECT_EQ(codeOf([&] { dropMap(file.allocator(), maps[20]); }), Damaged);
    EXPECT_EQ(codeOf([&] { addToMap(file.allocator(), maps[20], 9); }), Damaged);
    EXPECT_EQ(createMap(file.allocator(), maps[21]), maps[20]);
    EXPECT_TRUE(file.setOf(maps[20]).empty());
    for (const RowId map : maps)
        dropMap(file.allocator(), map);
    EXPECT_EQ(file.takenPages(), before);
}

TEST(UsageMapEditorTest, AnySetIsKept) {
    std::mt19937 random(7);
    PageFile file(pageFile(3));
    file.pages().grow(35000);
    std::vector<RowId> maps = createMaps(file.allocator(), 12);
    std::vector<std::set<uint32_t>> model(maps.size());
    for (int step = 0; step < 6000; ++step) {
        const size_t which = random() % maps.size();
        const uint32_t reach = which < 4 ? 500 : which < 8 ? 3000 : 35000;
        const uint32_t base = which % 4 * 300;
        const uint32_t page = (base + random() % reach) % 35000;
        if (random() % 3 != 0) {
            addToMap(file.allocator(), maps[which], page);
            model[which].insert(page);
        } else {
            removeFromMap(file.allocator(), maps[which], page);
            model[which].erase(page);
        }
        if (step % 500 == 0) {
            for (size_t i = 0; i < maps.size(); ++i)
                ASSERT_EQ(file.setOf(maps[i]), model[i]) << step;
        }
    }
    EXPECT_TRUE(isInline(file, maps[0]));
    EXPECT_FALSE(isInline(file, maps[8]));
}

TEST(UsageMapEditorTest, NoDamageIsMoreThanAnError) {
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        PageFile file(pageFile(60, {20, 30}));
        std::vector<RowId> maps = createMaps(file.allocator(), 4);
        file.pages().grow(1000);
        codeOf([&] { addToMap(file.allocator(), maps[1], 4); });
        codeOf([&] { addToMap(file.allocator(), maps[1], 900); });
        const uint32_t spoilt[] = {1, maps[0].page, file.pages().pageCount() - 1};
        for (int i = 0; i < 6; ++i) {
            const uint32_t page = spoilt[random() % 3];
            const size_t tail = testPageSize - 300;
            const size_t at = random() % 2 == 0 ? random() % 24 : tail + random() % 300;
            file.at(page)[at] = static_cast<uint8_t>(random());
        }
        for (int i = 0; i < 20; ++i) {
            const RowId map = maps[random() % 4];
            const uint32_t page = random() % 1100;
            codeOf([&] { addToMap(file.allocator(), map, page); });
            codeOf([&] { removeFromMap(file.allocator(), map, page); });
            codeOf([&] { file.allocator().allocate(); });
            codeOf([&] { file.allocator().free(page); });
            if (i % 5 == 4) codeOf([&] { createMap(file.allocator(), map); });
            if (i % 5 == 0) codeOf([&] { dropMap(file.allocator(), map); });
        }
    }
}

}  // namespace
}  // namespace sg::jet

// Data pages, usage maps, long values and table definitions, whole and damaged.

#include <gtest/gtest.h>

#include <cstring>

#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/long_value.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/values/table_definition.h"

namespace sg::jet {
namespace {

using test::FileBuilder;

class PagesTest : public testing::TestWithParam<Version> {
  protected:
    MemoryPageStore& store() {
        bytes_ = builder_.bytes();
        store_ = std::make_unique<MemoryPageStore>(bytes_, L"p.mdb");
        return *store_;
    }
    void put16(uint32_t page, size_t at, uint16_t value) {
        std::memcpy(builder_.page(page) + at, &value, 2);
    }
    void put32(uint32_t page, size_t at, uint32_t value) {
        std::memcpy(builder_.page(page) + at, &value, 4);
    }

    FileBuilder builder_{GetParam()};
    const Format& format_ = builder_.format();
    Bytes bytes_;
    std::unique_ptr<MemoryPageStore> store_;
};

TEST_P(PagesTest, RowsLieBetweenTheDirectoryAndThePageEnd) {
    const uint32_t number = builder_.addDataPage(9);
    builder_.addRow(number, {1, 2, 3});
    builder_.addRow(number, {4}, rows::deletedFlag | rows::lookupFlag);
    builder_.addRow(number, {5, 6});
    const size_t directory = format_.dataPage.rowDirectory;
    {
        const DataPage page(store(), number);
        EXPECT_EQ(page.owner(), 9u);
        EXPECT_EQ(page.rowCount(), 3);
        EXPECT_EQ(page.rowBytes(0).size(), 3u);
        EXPECT_TRUE(page.isDeleted(1));
        EXPECT_EQ(page.rowBytes(2).get16(0), 0x0605);
        EXPECT_THROW(page.rowBytes(3), Error);
        EXPECT_THROW(page.isDeleted(3), Error);
    }
    const size_t end = format_.pageSize;
    struct Case {
        size_t row;
        size_t offset;
        bool isRight;
    };
    const Case cases[] = {
        {0, end, true},             // an empty row
        {0, end + 1, false},        // begins behind the page
        {2, end - 3, false},        // begins behind the row before it
        {2, directory + 5, false},  // in the directory
        {2, directory + 6, true},
    };
    for (const Case& c : cases) {
        const uint16_t before = ByteView(builder_.page(number), end).get16(directory + 2 * c.row);
        put16(number, directory + 2 * c.row, static_cast<uint16_t>(c.offset));
        const DataPage page(store(), number);
        if (c.isRight) {
            EXPECT_NO_THROW(page.rowBytes(static_cast<uint16_t>(c.row))) << c.offset;
        } else {
            EXPECT_THROW(page.rowBytes(static_cast<uint16_t>(c.row)), Error) << c.offset;
        }
        put16(number, directory + 2 * c.row, before);
    }
    const auto most = static_cast<uint16_t>((end - directory) / 2);
    put16(number, format_.dataPage.rowCount, most);
    EXPECT_NO_THROW(DataPage(store(), number));
    put16(number, format_.dataPage.rowCount, static_cast<uint16_t>(most + 1));
    EXPECT_THROW(DataPage(store(), number), Error);
}

TEST_P(PagesTest, OverflowIsFollowedButNotInCircles) {
    const uint32_t number = builder_.addDataPage(9);
    const auto pointer = [](uint32_t page, uint16_t row) {
        return test::number(RowId{page, row}.packed(), 4).bytes;
    };
    builder_.addRow(number, {1, 2, 3}, rows::deletedFlag);
    builder_.addRow(number, pointer(number, 0), rows::lookupFlag);
    builder_.addRow(number, pointer(number, 3), rows::lookupFlag);
    builder_.addRow(number, pointer(number, 2), rows::lookupFlag);
    builder_.addRow(number, {1, 2, 3}, rows::lookupFlag);
    builder_.addRow(number, pointer(0, 0), rows::lookupFlag);
    builder_.addRow(number, pointer(number, 99), rows::lookupFlag);
    MemoryPageStore& s = store();
    const auto follow = [&](uint16_t row) {
        DataPage page(s, number);
        followOverflow(s, page, row);
        return row;
    };
    EXPECT_EQ(follow(0), 0);
    EXPECT_EQ(follow(1), 0);
    for (const uint16_t row : {2, 4, 5, 6}) {
        EXPECT_THROW(follow(row), Error) << row;
    }
}

TEST_P(PagesTest, MapsOfBothKindsNameTheSamePages) {
    const uint32_t mapPage = builder_.addPage(PageKind::UsageMap);
    const std::vector<uint32_t> owned = {0, 3, 4};
    for (const uint32_t number : owned) {
        builder_.page(mapPage)[maps::pageBits + number / 8] |=
            static_cast<uint8_t>(1u << (number % 8));
    }
    const RowId referenced = builder_.addReferencedMap({mapPage, 0});
    const RowId direct = builder_.addMap(owned);
    MemoryPageStore& s = store();
    for (const RowId id : {direct, referenced}) {
        const UsageMap map = UsageMap::read(s, id);
        EXPECT_EQ(map.pages(), owned);
        EXPECT_EQ(map.next(1), 3u);
        EXPECT_EQ(map.next(5), std::nullopt);
        EXPECT_EQ(map.next(0xffffffff), std::nullopt);
        EXPECT_EQ(map.previous(0xffffffff), 4u);
        EXPECT_EQ(map.previous(4), 3u);
        EXPECT_EQ(map.previous(3), 0u);
        EXPECT_EQ(map.previous(0), std::nullopt);
        EXPECT_TRUE(map.contains(4));
        EXPECT_FALSE(map.contains(2));
    }
}

TEST_P(PagesTest, MapsReachFarAndFailClearly) {
    const uint32_t mapPage = builder_.addPage(PageKind::UsageMap);
    builder_.page(mapPage)[maps::pageBits] = 1;
    const RowId second = builder_.addReferencedMap({0, mapPage});
    const RowId wrongPage = builder_.addReferencedMap({2});
    const RowId none = builder_.addReferencedMap({});
    const RowId unknown = builder_.addRow(pages::globalMap, {7, 0, 0, 0, 0, 0});
    const RowId cut = builder_.addRow(pages::globalMap, {0, 0});
    Bytes record = {0, 0xff, 0xff, 0xff, 0xff, 3};
    const RowId last = builder_.addRow(pages::globalMap, record);
    MemoryPageStore& s = store();
    const UsageMap map = UsageMap::read(s, second);
    EXPECT_EQ(map.next(0), (format_.pageSize - 4) * 8);
    EXPECT_EQ(map.previous(0xffffffff), (format_.pageSize - 4) * 8);
    EXPECT_EQ(map.previous((format_.pageSize - 4) * 8), std::nullopt);
    EXPECT_THROW(map.pages(), Error);
    EXPECT_THROW(UsageMap::read(s, wrongPage).next(0), Error);
    EXPECT_THROW(UsageMap::read(s, wrongPage).previous(9), Error);
    for (const RowId id : {none, unknown, cut, RowId{1, 200}, RowId{0, 0}, RowId{999, 0}}) {
        EXPECT_THROW(UsageMap::read(s, id), Error) << id.page << "/" << id.row;
    }
    // The bit behind the last page number there is.
    EXPECT_EQ(UsageMap::read(s, last).next(0), 0xffffffffu);
    EXPECT_THROW(UsageMap::read(s, last).pages(), Error);
}

TEST_P(PagesTest, LongValuesEndWhereTheirLengthSays) {
    const uint32_t number = builder_.addDataPage(pages::longValueOwner);
    const auto chained = [&](RowId next, Bytes content) {
        Bytes row = test::number(next.packed(), 4).bytes;
        row.insert(row.end(), content.begin(), content.end());
        return builder_.addRow(number, row);
    };
    const RowId whole = builder_.addRow(number, {1, 2, 3, 4, 5});
    const RowId tail = chained({}, {4, 5, 6});
    const RowId head = chained(tail, {1, 2, 3});
    const RowId self = chained({number, 3}, {9});
    const RowId ring = chained({number, 5}, {8});
    chained({number, 4}, {7});
    const RowId empty = chained({}, {});
    MemoryPageStore& s = store();
    struct Case {
        const char* what;
        uint32_t length;
        RowId first;
        std::optional<Bytes> expected;
    };
    constexpr uint32_t single = longValues::singleFlag;
    const Case cases[] = {
        {"a whole row", 5 | single, whole, Bytes{1, 2, 3, 4, 5}},
        {"the start of a row", 2 | single, whole, Bytes{1, 2}},
        {"more than the row", 6 | single, whole, {}},
        {"nothing at all", single, {}, Bytes{}},
        {"a chain", 6, head, Bytes{1, 2, 3, 4, 5, 6}},
        {"a chain's start", 4, head, Bytes{1, 2, 3, 4}},
        {"more than the chain", 7, head, {}},
        {"a row that follows itself", 1000, self, {}},
        {"two that follow each other", 1000, ring, {}},
        {"a chain without bytes", 1, empty, {}},
        {"no row", 1 | single, {number, 77}, {}},
        {"no page", 1, {500000, 0}, {}},
        {"longer than the file", 0x3fffffff, head, {}},
    };
    for (const Case& c : cases) {
        const Bytes header = test::longHeader(c.length, c.first).bytes;
        Bytes buffer;
        try {
            const ByteView value = readLongValue(s, {header.data(), header.size()}, buffer);
            ASSERT_TRUE(c.expected) << c.what;
            EXPECT_EQ(Bytes(value.begin(), value.end()), *c.expected) << c.what;
        } catch (const Error& error) {
            EXPECT_FALSE(c.expected) << c.what << ": " << error.what();
        }
    }
    Bytes definition = test::inlineLong({1, 2, 3}).bytes;
    Bytes buffer;
    EXPECT_EQ(readLongValue(s, {definition.data(), definition.size()}, buffer).size(), 3u);
    EXPECT_THROW(readLongValue(s, {definition.data(), definition.size() - 1}, buffer), Error);
    EXPECT_THROW(readLongValue(s, {definition.data(), 3}, buffer), Error);
    EXPECT_TRUE(readLongValue(s, {}, buffer).empty());
}

TEST_P(PagesTest, ADefinitionContinuesOnOtherPages) {
    // As many columns as fill a page with their records and leave their names to the next.
    const size_t head = format_.table.head;
    const size_t count = (format_.pageSize - head) / format_.column.size;
    const uint32_t first = builder_.addPage(PageKind::TableDefinition);
    const uint32_t second = builder_.addPage(PageKind::TableDefinition);
    Bytes tail(head + count * format_.column.size);
    for (size_t i = 0; i < count; ++i) {
        const size_t at = head + i * format_.column.size;
        tail[at] = static_cast<uint8_t>(ColumnType::Long);
        tail[at + format_.column.number] = static_cast<uint8_t>(count - 1 - i);
    }
    for (size_t i = 0; i < count; ++i) {
        const Bytes name = test::text(GetParam(), L"N" + std::to_wstring(i)).bytes;
        tail.push_back(static_cast<uint8_t>(name.size()));
        tail.resize(tail.size() + format_.nameLengthSize - 1);
        tail.insert(tail.end(), name.begin(), name.end());
    }
    const size_t onFirst = format_.pageSize;
    std::copy(tail.begin() + 8, tail.begin() + static_cast<ptrdiff_t>(onFirst),
              builder_.page(first) + 8);
    std::copy(tail.begin() + static_cast<ptrdiff_t>(onFirst), tail.end(),
              builder_.page(second) + 8);
    put32(first, format_.table.nextPage, second);
    put32(first, format_.table.length, static_cast<uint32_t>(tail.size() - 8));
    put16(first, format_.table.columns, static_cast<uint16_t>(count));
    const TableDefinition table = TableDefinition::read(store(), first);
    EXPECT_EQ(table.pages, (std::vector<uint32_t>{first, second}));
    ASSERT_EQ(table.columns.size(), count);
    EXPECT_EQ(table.columns.front().name, L"N" + std::to_wstring(count - 1));
    EXPECT_EQ(table.columns.back().name, L"N0");
    EXPECT_EQ(table.columnByName(L"n1"), count - 2);
    for (const uint32_t next : {first, second, 3u, 999u}) {
        put32(second, format_.table.nextPage, next);
        EXPECT_THROW(TableDefinition::read(store(), first), Error) << next;
    }
}

TEST_P(PagesTest, ADefinitionThatContradictsItselfIsRefused) {
    const uint32_t page =
        builder_.addTable(L"T", {{L"A", ColumnType::Long, 4}, {L"B", ColumnType::Text, 20}});
    const TableLayout& t = format_.table;
    const size_t secondNumber = t.head + format_.column.size + format_.column.number;
    struct Case {
        const char* what;
        size_t at;
        uint16_t value;
    };
    const Case cases[] = {
        {"another kind of page", 0, 1},
        {"longer than its page", t.length, 0xfff0},
        {"shorter than its columns", t.length, 40},
        {"more columns than there can be", t.columns, 256},
        {"more columns than are there", t.columns, 255},
        {"more indexes than are there", t.realIndexes, 0xffff},
        {"more logical indexes than are there", t.logicalIndexes, 0xffff},
        {"two columns with a number", secondNumber, 0},
    };
    EXPECT_EQ(TableDefinition::read(store(), page).columns[1].name, L"B");
    for (const Case& c : cases) {
        const Bytes before = builder_.bytes();
        put16(page, c.at, c.value);
        try {
            TableDefinition::read(store(), page);
            ADD_FAILURE() << c.what;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), Damaged) << c.what;
            EXPECT_EQ(error.place().page, page) << c.what;
        }
        builder_.bytes() = before;
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, PagesTest, testing::Values(Version::Jet3, Version::Jet4));

}  // namespace
}  // namespace sg::jet

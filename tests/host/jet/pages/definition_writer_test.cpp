#include "host/jet/pages/definition_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "host/jet/file_builder.h"
#include "host/jet/index_test_files.h"
#include "host/jet/recording_files.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage_files.h"
#include "real_data.h"

namespace sg::jet {
namespace {

const std::wstring fileName = L"plan.mdb";

// A database in memory with an open transaction.
class OpenFile {
  public:
    explicit OpenFile(const Bytes& bytes)
        : files_({{fileName, bytes}}),
          storage_(Storage::open(fileName, OpenMode::Exclusive, {.files = &files_})),
          transaction_(storage_->beginWrite()),
          allocator_(*transaction_) {}

    WriteTransaction& pages() { return *transaction_; }
    PageAllocator& allocator() { return allocator_; }
    TableDefinition read(uint32_t page) { return TableDefinition::read(*transaction_, page); }

  private:
    RecordingFiles files_;
    std::unique_ptr<Storage> storage_;
    std::unique_ptr<WriteTransaction> transaction_;
    PageAllocator allocator_;
};

Bytes contentOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Bytes pagesOf(OpenFile& file, const std::vector<uint32_t>& numbers) {
    Bytes bytes;
    for (const uint32_t number : numbers) {
        const PageRef page = file.pages().read(number);
        bytes.insert(bytes.end(), page->begin(), page->end());
    }
    return bytes;
}

// Everything that a definition tells, but for its pages.
std::wstring told(const TableDefinition& table) {
    std::wstring text;
    const auto add = [&](auto... numbers) { ((text += std::to_wstring(numbers) + L" "), ...); };
    const auto addMap = [&](const std::optional<RowId>& map) {
        add(map ? int64_t(map->packed()) : int64_t(-1));
    };
    add(table.rowCount, table.lastAutoNumber, table.isSystem, table.maxColumns,
        table.variableColumns, table.ownedPages.packed(), table.freePages.packed());
    for (const Column& c : table.columns) {
        text += L"\n" + c.name + L" ";
        add(int(c.type), c.number, c.ordinal, c.variableIndex, c.fixedOffset, c.length, c.flags,
            c.extraFlags, c.precision, c.scale, c.sortOrder.id, c.sortOrder.version, c.complexId);
        addMap(c.ownedPages);
        addMap(c.freePages);
    }
    for (const RealIndex& index : table.realIndexes) {
        text += L"\n";
        add(index.ownedPages.packed(), index.rootPage, index.flags, index.entryCount);
        for (const IndexColumn& column : index.columns) {
            add(column.column, column.ascending);
        }
    }
    for (const LogicalIndex& index : table.indexes) {
        text += L"\n" + index.name + L" ";
        add(index.number, index.realIndex, int(index.kind), index.relatedType, index.relatedIndex,
            index.relatedTablePage, index.cascadeUpdates, index.cascadeDeletes);
    }
    return text;
}

Column column(uint16_t number, const std::wstring& name, ColumnType type, uint16_t length,
              uint8_t flags) {
    Column made;
    made.name = name;
    made.type = type;
    made.number = made.ordinal = number;
    made.length = length;
    made.flags = flags;
    if (made.isText()) made.sortOrder = {0x0409, 0};
    return made;
}

// `count` texts with names as long as they get, and an index over each of the first `indexCount`.
TableDefinition wideTable(uint32_t page, size_t count, size_t indexCount) {
    TableDefinition table;
    table.page = page;
    table.name = L"Wide";
    table.maxColumns = table.variableColumns = static_cast<uint16_t>(count);
    table.ownedPages = {9, 0};
    table.freePages = {9, 1};
    for (uint16_t i = 0; i < count; ++i) {
        std::wstring name = L"Column " + std::to_wstring(i);
        name.resize(64, L'\u00e4');
        const bool isMemo = i % 50 == 49;
        table.columns.push_back(column(i, name, isMemo ? ColumnType::Memo : ColumnType::Text,
                                       isMemo ? 0 : 510, columns::updatableFlag));
        table.columns.back().variableIndex = i;
        if (isMemo) {
            table.columns.back().ownedPages = RowId{9, static_cast<uint16_t>(i)};
            table.columns.back().freePages = RowId{9, static_cast<uint16_t>(i + 1)};
        }
    }
    for (uint16_t i = 0; i < indexCount; ++i) {
        const uint8_t flags = indexes::ignoreNullsFlag | 0x80;
        table.realIndexes.push_back({{{i, i % 2 == 0}}, {9, i}, 1000u + i, flags, 0});
        table.indexes.push_back({table.columns[i].name, i, i});
    }
    return table;
}

Bytes smallDatabase() {
    test::FileBuilder builder(Version::Jet4);
    builder.addTable(L"Rooms", {{L"Id", ColumnType::Long}, {L"Name", ColumnType::Text, 40}});
    return builder.bytes();
}

TEST(DefinitionWriterTest, DefinitionsOfRealFilesAreWrittenAsTheyStand) {
    size_t tables = 0;
    for (const auto& path : sg::test::realDatabases()) {
        const Bytes bytes = contentOf(path);
        if (identifyFormat(ByteView(bytes), fileName).version != Version::Jet4) continue;
        OpenFile file(bytes);
        for (const TableDefinition& found : real::tablesOf(file.pages())) {
            TableDefinition table = found;
            const Bytes before = pagesOf(file, table.pages);
            writeDefinition(file.allocator(), table);
            EXPECT_EQ(table.pages, found.pages);
            EXPECT_TRUE(pagesOf(file, table.pages) == before) << path << " " << table.page;
            ++tables;
        }
    }
    if (tables == 0) GTEST_SKIP() << "no real files in " << sg::test::realData();
}

// A definition that is not there yet: what is not told of it gets the bytes that other programs
// give it.
TEST(DefinitionWriterTest, DefinitionsOfRealFilesAreTheSameOnAnotherPage) {
    size_t tables = 0;
    for (const auto& path : sg::test::realDatabases()) {
        const Bytes bytes = contentOf(path);
        if (identifyFormat(ByteView(bytes), fileName).version != Version::Jet4) continue;
        OpenFile file(bytes);
        for (const TableDefinition& found : real::tablesOf(file.pages())) {
            TableDefinition table = found;
            const Bytes before = pagesOf(file, table.pages);
            table.page = createDefinitionPage(file.allocator());
            writeDefinition(file.allocator(), table);
            const TableDefinition again = file.read(table.page);
            EXPECT_EQ(told(again), told(found)) << path << " " << found.page;
            const Bytes after = pagesOf(file, table.pages);
            const size_t columnsStart =
                file.pages().format().table.head + 12 * found.realIndexes.size();
            const size_t size = 25 * found.columns.size();
            EXPECT_TRUE(std::equal(before.begin(), before.begin() + 28, after.begin()));
            if (found.isSystem) {
                EXPECT_TRUE(std::equal(&before[columnsStart], &before[columnsStart] + size,
                                       &after[columnsStart]))
                    << path << " " << found.page;
            }
            ++tables;
        }
    }
    if (tables == 0) GTEST_SKIP() << "no real files in " << sg::test::realData();
}

TEST(DefinitionWriterTest, LongDefinitionsTakeMorePagesAndGiveThemBack) {
    OpenFile file(smallDatabase());
    TableDefinition table = wideTable(createDefinitionPage(file.allocator()), 255, 32);
    writeDefinition(file.allocator(), table);
    EXPECT_GT(table.pages.size(), 8u);
    TableDefinition again = file.read(table.page);
    EXPECT_EQ(again.pages, table.pages);
    EXPECT_EQ(told(again), told(table));

    const std::vector<uint32_t> pages = table.pages;
    again.indexes.clear();
    again.realIndexes.clear();
    again.columns.resize(3);
    writeDefinition(file.allocator(), again);
    EXPECT_EQ(again.pages, std::vector<uint32_t>{table.page});
    EXPECT_EQ(told(file.read(table.page)), told(again));
    EXPECT_EQ(file.allocator().allocate(), *std::min_element(pages.begin() + 1, pages.end()));

    const uint32_t count = file.pages().pageCount();
    dropDefinition(file.allocator(), again);
    for (size_t i = 0; i + 1 < pages.size(); ++i) {
        EXPECT_LT(file.allocator().allocate(), count);
    }
    EXPECT_EQ(file.allocator().allocate(), count);
}

// The number of pages changes where a definition fills a page to its last byte.
TEST(DefinitionWriterTest, PagesAreFilledToTheEnd) {
    OpenFile file(smallDatabase());
    TableDefinition table = wideTable(createDefinitionPage(file.allocator()), 60, 0);
    writeDefinition(file.allocator(), table);
    size_t pages = table.pages.size();
    for (int i = 0; i < 61; ++i) {
        table.columns[0].name.pop_back();
        writeDefinition(file.allocator(), table);
        const PageRef last = file.pages().read(table.pages.back());
        const size_t length = file.pages().read(table.page)->get32(8);
        EXPECT_EQ(last->get16(2), table.pages.size() * 4088 - length);
        EXPECT_EQ(told(file.read(table.page)), told(table));
    }
    for (uint16_t i = 1; table.pages.size() == pages; ++i) {
        table.columns[i].name.resize(table.columns[i].name.size() - 30);
        writeDefinition(file.allocator(), table);
        EXPECT_EQ(told(file.read(table.page)), told(table));
    }
}

TEST(DefinitionWriterTest, ColumnsAndIndexesComeAndGo) {
    OpenFile file(smallDatabase());
    TableDefinition table = wideTable(createDefinitionPage(file.allocator()), 102, 2);
    writeDefinition(file.allocator(), table);
    // A byte of which nothing is told, in the record of the column that stays.
    const size_t record = file.pages().format().table.head + 2 * 12 + 100 * 25;
    file.pages().write(table.page)[record + 18] = 0x77;

    table.columns.erase(table.columns.begin(), table.columns.begin() + 100);
    table.columns.push_back(column(102, L"Zeta", ColumnType::Long, 4, 3));
    table.columns.push_back(column(103, L"Alpha", ColumnType::Numeric, 17, 3));
    table.columns[3].precision = 18;
    table.columns[3].scale = 6;
    table.columns[2].ordinal = table.columns[3].ordinal = 7;
    table.maxColumns = 104;
    table.realIndexes = {{{{102, true}, {101, false}}, {9, 0}, 1001, 0, 5}};
    table.indexes = {{L"Both", 1, 0, IndexKind::Foreign, 2, 4, 30, true, false},
                     {L"Same", 5, 0, IndexKind::Primary}};
    writeDefinition(file.allocator(), table);
    EXPECT_EQ(table.realIndexes[0].entryCount, 0u) << "the root is one that was there";
    EXPECT_EQ(told(file.read(table.page)), told(table));

    const PageRef page = file.pages().read(table.page);
    const size_t columnsStart = file.pages().format().table.head + 12;
    const uint16_t expected[] = {100, 101, 103, 102};
    for (size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(page->get16(columnsStart + i * 25 + 5), expected[i]) << i;
    }
    EXPECT_EQ(page->get8(columnsStart + 18), 0x77);

    table.columns[0].type = ColumnType::Binary;
    writeDefinition(file.allocator(), table);
    EXPECT_EQ(file.pages().read(table.page)->get8(columnsStart + 18), 0);
}

TEST(DefinitionWriterTest, MapsOfColumnsThatAreGone) {
    OpenFile file(smallDatabase());
    TableDefinition table = wideTable(createDefinitionPage(file.allocator()), 100, 0);
    writeDefinition(file.allocator(), table);
    const size_t end = file.pages().read(table.page)->get32(8) + 8;
    const auto number = [&](size_t fromEnd) {
        const size_t at = end - fromEnd;
        const size_t place = (at - 4096) / 4088 + 1;
        return file.pages().write(table.pages[place]).subspan((at - 4096) % 4088 + 8, 2);
    };
    ASSERT_EQ(number(20)[0], 99);
    // Column 99's map becomes that of a column that was deleted long ago.
    number(20)[0] = 120;
    TableDefinition changed = file.read(table.page);
    EXPECT_FALSE(changed.columns[99].ownedPages.has_value());
    changed.columns.erase(changed.columns.begin() + 49);
    writeDefinition(file.allocator(), changed);
    const Bytes bytes = pagesOf(file, changed.pages);
    const size_t length = ByteView(bytes).get32(8) + 8;
    const size_t tail = (changed.pages.size() - 1) * 4096 + (length - 4096) % 4088 + 8;
    const ByteView maps = ByteView(bytes).sub(tail - 20, 12);
    EXPECT_EQ(maps.get16(0), 120);
    EXPECT_EQ(maps.get16(10), columns::none);
}

TEST(DefinitionWriterTest, NumbersThatChangeWithRows) {
    OpenFile file(smallDatabase());
    TableDefinition table = wideTable(createDefinitionPage(file.allocator()), 4, 3);
    table.rowCount = 5;
    table.lastAutoNumber = 6;
    table.realIndexes[2].entryCount = 7;
    writeDefinition(file.allocator(), table);
    EXPECT_EQ(readRowCount(file.pages(), table), 5u);
    EXPECT_EQ(readAutoNumber(file.pages(), table), 6u);
    EXPECT_EQ(readEntryCount(file.pages(), table, 2), 7u);

    DefinitionCounters counters(file.pages(), table);
    counters.setRowCount(50);
    counters.addEntry(2);
    writeAutoNumber(file.pages(), table, 0xffffffff);
    EXPECT_EQ(readEntryCount(file.pages(), table, 1), 0u);
    const TableDefinition read = file.read(table.page);
    EXPECT_EQ(read.rowCount, 50u);
    EXPECT_EQ(read.lastAutoNumber, 0xffffffffu);
    EXPECT_EQ(read.realIndexes[2].entryCount, 8u);

    // A definition that was read before does not take them back, also when indexes move.
    table.realIndexes.erase(table.realIndexes.begin());
    table.indexes = {{L"One", 8, 1}};
    writeDefinition(file.allocator(), table);
    EXPECT_EQ(told(file.read(table.page)), told(table));
    EXPECT_EQ(table.rowCount, 50u);
    EXPECT_EQ(table.lastAutoNumber, 0xffffffffu);
    EXPECT_EQ(table.realIndexes[1].entryCount, 8u);
}

TEST(DefinitionWriterTest, WhatCannotBeWrittenChangesNothing) {
    OpenFile file(smallDatabase());
    const TableDefinition good = wideTable(createDefinitionPage(file.allocator()), 200, 32);
    using Change = std::function<void(TableDefinition&)>;
    const std::pair<int, Change> cases[] = {
        {TooManyFields, [](auto& t) { t = wideTable(t.page, 256, 0); }},
        {TooManyFields, [](auto& t) { t.maxColumns = 256; }},
        {TooManyIndexes, [](auto& t) { t = wideTable(t.page, 200, 33); }},
        {InvalidArgument, [](auto& t) { t.maxColumns = 199; }},
        {InvalidArgument, [](auto& t) { std::swap(t.columns[3], t.columns[4]); }},
        {InvalidArgument, [](auto& t) { t.columns[4].number = 3; }},
        {InvalidArgument, [](auto& t) { t.realIndexes[0].columns.clear(); }},
        {InvalidArgument,
         [](auto& t) {
             t.realIndexes[0].columns.assign(11, {1, true});
         }},
        {InvalidArgument, [](auto& t) { t.realIndexes[0].columns[0].column = 200; }},
        {InvalidArgument, [](auto& t) { t.indexes[0].realIndex = 32; }},
        {InvalidArgument, [](auto& t) { t.columns[0].name.resize(40000); }},
    };
    const uint32_t count = file.pages().pageCount();
    for (const auto& [code, change] : cases) {
        TableDefinition table = good;
        change(table);
        EXPECT_EQ(codeOf([&] { writeDefinition(file.allocator(), table); }), code)
            << &code - &cases[0].first;
        EXPECT_EQ(file.pages().pageCount(), count);
    }
    TableDefinition table = good;
    EXPECT_EQ(codeOf([&] { writeDefinition(file.allocator(), table); }), 0);
}

TEST(DefinitionWriterTest, DamagedPagesAreNotWrittenOver) {
    const std::pair<size_t, uint8_t> spoils[] = {
        {0, 1},              // another kind of page
        {4, 200},            // a chain to nowhere
        {10, 1},             // longer than its pages
        {8, 1},              // shorter than its head
        {45, 200},           // more columns than there is room for
        {53, 200},           // more indexes
        {49, 200}, {68, 1},  // two columns with a number
    };
    for (const auto& [at, byte] : spoils) {
        OpenFile file(smallDatabase());
        const uint32_t page = real::tablesOf(file.pages()).back().page;
        TableDefinition table = file.read(page);
        file.pages().write(page)[at] = byte;
        if (at == 8) file.pages().write(page)[9] = 0;
        EXPECT_EQ(codeOf([&] { writeDefinition(file.allocator(), table); }), Damaged) << at;
    }
    OpenFile file(smallDatabase());
    const uint32_t page = real::tablesOf(file.pages()).back().page;
    const TableDefinition table = file.read(page);
    file.pages().write(page)[4] = static_cast<uint8_t>(page);
    EXPECT_EQ(codeOf([&] { dropDefinition(file.allocator(), table); }), Damaged);
    file.pages().write(page)[0] = 1;
    EXPECT_EQ(codeOf([&] { writeAutoNumber(file.pages(), table, 1); }), Damaged);
    EXPECT_EQ(codeOf([&] { readAutoNumber(file.pages(), table); }), Damaged);
}

}  // namespace
}  // namespace sg::jet

#include "host/jet/pages/row_encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "base/encoding.h"
#include "host/jet/catalog/catalog.h"
#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/row.h"
#include "host/jet/values/value_codec.h"
#include "real_data.h"

namespace sg::jet {
namespace {

const Format& jet4() {
    return formatOf(Version::Jet4);
}

Column column(const wchar_t* name, ColumnType type, uint16_t length, uint16_t number) {
    Column made;
    made.name = name;
    made.type = type;
    made.length = length;
    made.number = number;
    return made;
}

Column fixedColumn(const wchar_t* name, ColumnType type, uint16_t length, uint16_t number,
                   uint16_t offset) {
    Column made = column(name, type, length, number);
    made.flags = columns::fixedFlag;
    made.fixedOffset = offset;
    return made;
}

Column variableColumn(const wchar_t* name, ColumnType type, uint16_t length, uint16_t number,
                      uint16_t index) {
    Column made = column(name, type, length, number);
    made.variableIndex = index;
    return made;
}

RowPart part(const Bytes& bytes) {
    return {false, bytes};
}

TableDefinition tableOf(std::vector<Column> columns, uint16_t maxColumns, uint16_t variable) {
    TableDefinition table;
    table.columns = std::move(columns);
    table.maxColumns = maxColumns;
    table.variableColumns = variable;
    return table;
}

// Columns 1, 4 and the second variable one were deleted.
TableDefinition tableWithGaps() {
    return tableOf({fixedColumn(L"Id", ColumnType::Long, 4, 0, 0),
                    variableColumn(L"Name", ColumnType::Text, 100, 2, 0),
                    fixedColumn(L"On", ColumnType::Boolean, 1, 3, 0),
                    variableColumn(L"Code", ColumnType::Text, 100, 5, 2),
                    fixedColumn(L"Size", ColumnType::Integer, 2, 8, 6)},
                   9, 3);
}

TEST(JetRowEncoderTest, EveryByteHasItsPlace) {
    const TableDefinition table = tableWithGaps();
    const std::pair<std::vector<RowPart>, Bytes> cases[] = {
        {{part({1, 2, 3, 4}), part({'a', 0}), part({}), part({'b', 0, 'c', 0}), part({8, 9})},
         {9,   0,                                        // columns
          1,   2, 3,          4,         0,   0, 8,  9,  // fixed
          'a', 0, 'b',        0,         'c', 0,         // variable
          16,  0, 12,         0,         12,  0, 10, 0,  // end, begins of the third to the first
          3,   0, 0b00101101, 0b00000001}},
        {{{}, {}, {}, {}, {}},
         {9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 10, 0, 10, 0, 10, 0, 3, 0, 0, 0}},
        {{{}, part({}), {}, part({'b', 0}), {}},
         {9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 'b', 0, 12, 0, 10, 0, 10, 0, 10, 0, 3, 0, 0b00100100, 0}},
    };
    for (const auto& [parts, expected] : cases) {
        Bytes row(300, 0xEE);
        const uint8_t* memory = row.data();
        encodeRow(table, jet4(), parts, row);
        EXPECT_EQ(row, expected);
        EXPECT_EQ(row.data(), memory);
    }
}

TEST(JetRowEncoderTest, AVariableColumnsPlaceNeedNotFollowItsNumber) {
    const TableDefinition table = tableOf({variableColumn(L"A", ColumnType::Binary, 9, 0, 1),
                                           variableColumn(L"B", ColumnType::Binary, 9, 1, 0)},
                                          2, 2);
    Bytes row;
    encodeRow(table, jet4(), std::vector<RowPart>{part({1, 1}), part({2})}, row);
    EXPECT_EQ(row, (Bytes{2, 0, 2, 1, 1, 5, 0, 3, 0, 2, 0, 2, 0, 3}));
}

TEST(JetRowEncoderTest, NoRowIsShorterThanThePointerToWhereItMayMove) {
    const TableDefinition table = tableOf({fixedColumn(L"B", ColumnType::Boolean, 1, 0, 0)}, 1, 0);
    Bytes row;
    encodeRow(table, jet4(), std::vector<RowPart>{part({})}, row);
    EXPECT_EQ(row, (Bytes{1, 0, 0, 1}));
}

TEST(JetRowEncoderTest, TheLongestRowAndOneByteMore) {
    const TableDefinition table =
        tableOf({variableColumn(L"A", ColumnType::Binary, 4060, 0, 0)}, 1, 1);
    const size_t around = 2 + 6 + 1;
    Bytes row;
    encodeRow(table, jet4(), std::vector<RowPart>{part(Bytes(4060 - around, 7))}, row);
    EXPECT_EQ(row.size(), jet4().row.maxSize);
    try {
        encodeRow(table, jet4(), std::vector<RowPart>{part(Bytes(4061 - around, 7))}, row);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), RecordTooLarge);
    }
}

TEST(JetRowEncoderTest, DefinitionsThatContradictThemselvesAreDamage) {
    const std::vector<RowPart> one = {part({1, 2, 3, 4})};
    const std::vector<RowPart> two = {part({1}), part({2})};
    const std::pair<TableDefinition, std::vector<RowPart>> cases[] = {
        {tableOf({fixedColumn(L"A", ColumnType::Long, 4, 3, 0)}, 3, 0), one},
        {tableOf({fixedColumn(L"A", ColumnType::Long, 2, 0, 0)}, 1, 0), one},
        {tableOf({variableColumn(L"A", ColumnType::Binary, 9, 0, 2)}, 1, 2), one},
        {tableOf({variableColumn(L"A", ColumnType::Binary, 9, 0, 0),
                  variableColumn(L"B", ColumnType::Binary, 9, 1, 0)},
                 2, 1),
         two},
    };
    Bytes row;
    for (const auto& [table, parts] : cases) {
        try {
            encodeRow(table, jet4(), parts, row);
            ADD_FAILURE();
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), Damaged);
        }
    }
    for (const auto& [maxColumns, variable, offset] :
         {std::tuple(65535, 1, 0), {1, 65535, 0}, {1, 1, 65535}}) {
        const TableDefinition table =
            tableOf({fixedColumn(L"A", ColumnType::Long, 4, 0, static_cast<uint16_t>(offset))},
                    static_cast<uint16_t>(maxColumns), static_cast<uint16_t>(variable));
        EXPECT_THROW(encodeRow(table, jet4(), one, row), Error);
    }
}

// The parts that give a row these values.
std::vector<RowPart> partsOf(const TableDefinition& table, const std::vector<Value>& values) {
    std::vector<RowPart> parts(values.size());
    for (size_t i = 0; i < values.size(); ++i) {
        const bool* truth = std::get_if<bool>(&values[i]);
        parts[i].isNull = truth != nullptr ? !*truth : isNull(values[i]);
        if (!parts[i].isNull) {
            encodeValue(table.columns[i], values[i], jet4(), parts[i].bytes);
        }
    }
    return parts;
}

TEST(JetRowEncoderTest, ARowReaderGetsBackWhatWasPutIn) {
    test::FileBuilder builder(Version::Jet4);
    const uint32_t page = builder.addTable(L"T", {{L"B", ColumnType::Boolean, 1},
                                                  {L"T", ColumnType::Text, 510, 1},
                                                  {L"I", ColumnType::Integer, 2},
                                                  {L"Y", ColumnType::Binary, 510},
                                                  {L"D", ColumnType::Date, 8},
                                                  {L"U", ColumnType::Text, 510},
                                                  {L"G", ColumnType::Guid, 16},
                                                  {L"C", ColumnType::Currency, 8},
                                                  {L"F", ColumnType::Boolean, 1},
                                                  {L"V", ColumnType::Text, 40, 1}});
    const MemoryPageStore store(builder.bytes(), L"t.mdb");
    const TableDefinition table = TableDefinition::read(store, page);
    std::mt19937 random(7);
    const auto below = [&](size_t n) { return random() % n; };
    const auto text = [&](size_t most) {
        std::wstring made(below(most + 1), L' ');
        const wchar_t last = below(4) == 0 ? 0x3ff : 0xff;
        for (wchar_t& c : made) {
            c = static_cast<wchar_t>(1 + below(static_cast<size_t>(last)));
        }
        return made;
    };
    RowReader reader(store, table);
    Bytes row;
    for (int round = 0; round < 2000; ++round) {
        Guid guid;
        guid.bytes[5] = static_cast<uint8_t>(round);
        std::vector<Value> values = {below(2) == 0,
                                     text(255),
                                     static_cast<int16_t>(random()),
                                     Bytes(below(511), static_cast<uint8_t>(round)),
                                     Date{round * 0.37},
                                     text(255),
                                     guid,
                                     Currency{int64_t(random()) - 5000},
                                     below(2) == 0,
                                     text(20)};
        for (Value& value : values) {
            if (!std::holds_alternative<bool>(value) && below(4) == 0) {
                value = std::monostate();
            }
        }
        encodeRow(table, jet4(), partsOf(table, values), row);
        reader.reset({row.data(), row.size()});
        for (size_t i = 0; i < values.size(); ++i) {
            Value read;
            reader.decode(i, read);
            ASSERT_EQ(read, values[i]) << i;
        }
    }
}

// --- rows that other programs wrote ---

// The columns' bytes of a row, decoded and encoded again; of long values their headers.
std::vector<RowPart> encodedAgain(const RowCursor& cursor, const TableDefinition& table,
                                  const Format& format) {
    std::vector<RowPart> parts(table.columns.size());
    for (size_t i = 0; i < parts.size(); ++i) {
        const Column& c = table.columns[i];
        const Value value = cursor.value(i);
        const bool* truth = std::get_if<bool>(&value);
        parts[i].isNull = truth != nullptr ? !*truth : isNull(value);
        if (parts[i].isNull) {
            continue;
        }
        if (c.isLongValue()) {
            const ByteView header = cursor.row().bytes(i);
            parts[i].bytes.assign(header.begin(), header.end());
        } else {
            encodeValue(c, value, format, parts[i].bytes);
        }
    }
    return parts;
}

// Engines leave what was there before in fixed columns that are Null or were deleted.
void clearUnused(const TableDefinition& table, const RowCursor& cursor, size_t fixedSize,
                 Bytes& row) {
    Bytes used(fixedSize, 0);
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const ByteView bytes = cursor.row().bytes(i);
        if (table.columns[i].isFixed() && !bytes.empty()) {
            std::fill_n(used.begin() + table.columns[i].fixedOffset, bytes.size(), uint8_t(1));
        }
    }
    for (size_t at = 0; at < fixedSize; ++at) {
        row[2 + at] = used[at] != 0 ? row[2 + at] : 0;
    }
}

size_t fixedSizeOf(const TableDefinition& table) {
    size_t size = 0;
    for (const Column& c : table.columns) {
        if (c.isFixed() && c.type != ColumnType::Boolean) {
            size = std::max(size, size_t(c.fixedOffset) + c.length);
        }
    }
    return size;
}

// Answers how many rows were compared.
size_t compareRows(const MemoryPageStore& store, const CatalogObject& object) {
    const auto definition =
        std::make_shared<TableDefinition>(TableDefinition::read(store, object.definitionPage()));
    const TableDefinition& table = *definition;
    RowCursor cursor = Table(store, definition).scan();
    size_t compared = 0;
    Bytes row;
    while (cursor.next()) {
        // A row of before the last change of the design has not as many columns.
        if (cursor.row().columnCount() != table.maxColumns ||
            table.columns.size() != table.maxColumns) {
            continue;
        }
        encodeRow(table, store.format(), encodedAgain(cursor, table, store.format()), row);
        DataPage page(store, cursor.id().page);
        uint16_t number = cursor.id().row;
        if (page.isLookup(number)) {
            followOverflow(store, page, number);
        }
        const ByteView stored = page.rowBytes(number);
        Bytes expected(stored.begin(), stored.end());
        clearUnused(table, cursor, fixedSizeOf(table), expected);
        EXPECT_EQ(row, expected) << toUtf8(object.name) << " row " << compared;
        ++compared;
    }
    return compared;
}

TEST(JetRowEncoderTest, RowsOfOtherProgramsComeOutByteForByte) {
    size_t files = 0;
    size_t rows = 0;
    for (const auto& path : sg::test::realDatabases()) {
        std::ifstream in(path, std::ios::binary);
        const Bytes bytes((std::istreambuf_iterator<char>(in)), {});
        const MemoryPageStore store(bytes, fromUtf8(path.string()));
        if (store.format().isJet3()) {
            continue;
        }
        const auto catalog =
            std::make_shared<TableDefinition>(TableDefinition::read(store, pages::catalog));
        std::vector<Error> damage;
        for (const CatalogObject& object : readObjects(Table(store, catalog), damage)) {
            rows += object.isTable() ? compareRows(store, object) : 0;
        }
        ++files;
    }
    if (files == 0) {
        GTEST_SKIP() << "no real files in " << sg::test::realData();
    }
    EXPECT_GT(rows, 1000u);
}

}  // namespace
}  // namespace sg::jet

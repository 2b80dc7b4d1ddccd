#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "host/jet/database/database.h"
#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/packed_rows.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/storage_files.h"

namespace sg::jet {
namespace {

Database openBytes(const Bytes& bytes) {
    return Database(std::make_unique<MemoryPageStore>(bytes, L"plan.mdb"));
}

// One of every kind, with the lengths and characters at which their packed form changes.
std::vector<Value> everyKind() {
    std::vector<Value> values = {Value(),
                                 true,
                                 false,
                                 uint8_t(255),
                                 int16_t(-32768),
                                 int32_t(-2147483647),
                                 int64_t(1) << 62,
                                 Currency{-12345},
                                 1.5f,
                                 -2.25,
                                 Date{36526.75},
                                 Guid{{1, 2, 3, 16}},
                                 Decimal{true, 4, {0, 1, 2, 3}},
                                 Bytes{},
                                 Bytes(127, 9),
                                 Bytes(128, 9),
                                 Bytes(20000, 7)};
    for (const size_t length : {0, 1, 127, 128, 16384}) {
        for (const uint32_t c : {0x41u, 0xffu, 0x100u, 0xffffu, 0x10000u, 0x10ffffu, 0xdc00u})
            values.push_back(std::wstring(length, static_cast<wchar_t>(c)));
    }
    values.push_back(std::wstring(L"a\u0100\U0001F600\0z", 5));
    return values;
}

TEST(PackedRowsTest, EveryValueComesBackInAnyOrder) {
    const std::vector<Value> kinds = everyKind();
    std::mt19937 random(5);
    constexpr size_t columns = 9;
    std::vector<std::vector<Value>> expected;
    PackedRows rows;
    for (size_t i = 0; i < 500; ++i) {
        std::vector<Value> row(columns);
        for (Value& value : row)
            if (random() % 4 != 0) value = kinds[random() % kinds.size()];
        rows.append(row);
        expected.push_back(row);
    }
    ASSERT_EQ(rows.size(), expected.size());
    Value value;
    for (size_t row = 0; row < expected.size(); ++row)
        for (size_t c = 0; c < columns; ++c) {
            rows.value(row, c, value);
            ASSERT_EQ(value, expected[row][c]) << row << " " << c;
        }
    for (int i = 0; i < 5000; ++i) {
        const size_t row = random() % expected.size();
        const size_t c = random() % columns;
        rows.value(row, c, value);
        ASSERT_EQ(value, expected[row][c]) << row << " " << c;
    }
}

TEST(PackedRowsTest, ManySmallRowsCostLittleMoreThanTheirContent) {
    PackedRows rows;
    std::vector<Value> row(6);
    uint64_t content = 0;
    for (int32_t i = 0; i < 200000; ++i) {
        const std::wstring text = L"Room " + std::to_wstring(i);
        row = {i, text, i * 0.5, Date{i * 1.0}, i % 2 == 0, Value()};
        content += 4 + text.size() + 8 + 8 + 1;
        rows.append(row);
    }
    EXPECT_LT(rows.memoryBytes(), content * 3 / 2);
}

TEST(SnapshotRecordsetTest, RowsThatAreAppendedAreThere) {
    SnapshotRecordset rows({{L"A", ColumnType::Long, 4}, {L"B", ColumnType::Text, 10}});
    EXPECT_TRUE(rows.isBof() && rows.isEof());
    EXPECT_EQ(rows.columnByName(L"b"), 1u);
    EXPECT_EQ(codeOf([&] { rows.value(0); }), NoCurrentRecord);
    EXPECT_EQ(codeOf([&] { rows.move(1); }), NoCurrentRecord);
    EXPECT_EQ(codeOf([&] { rows.move(-1); }), NoCurrentRecord);
    EXPECT_EQ(codeOf([&] { rows.setBookmark({0, 0, 0, 0}); }), InvalidBookmark);
    for (int32_t i = 0; i < 3; ++i) {
        rows.append(std::vector<Value>{i, i == 1 ? Value() : Value(std::to_wstring(i))});
        EXPECT_EQ(rows.value(0), Value(int32_t(0))) << "on the first until it is moved";
    }
    EXPECT_EQ(codeOf([&] { rows.append(std::vector<Value>(3)); }), InvalidArgument);
    EXPECT_EQ(rows.recordCount(), 3u);
    rows.move(1);
    EXPECT_TRUE(isNull(rows.value(1)));
    const Bytes second = rows.bookmark();
    rows.move(5);
    EXPECT_TRUE(rows.isEof() && !rows.isBof());
    rows.append(std::vector<Value>{int32_t(3), Value()});
    EXPECT_TRUE(rows.isEof()) << "behind what comes";
    rows.move(-1);
    EXPECT_EQ(rows.value(0), Value(int32_t(3)));
    rows.setBookmark(second);
    EXPECT_EQ(rows.value(0), Value(int32_t(1)));
    EXPECT_EQ(codeOf([&] { rows.setBookmark({9, 0, 0, 0}); }), InvalidBookmark);
    EXPECT_EQ(codeOf([&] { rows.setBookmark({0}); }), InvalidBookmark);
    EXPECT_EQ(codeOf([&] { rows.value(2); }), ItemNotFound);
}

TEST(SnapshotRecordsetTest, ATableOfEveryVersionIsReadWhole) {
    for (const Version version : {Version::Jet3, Version::Jet4, Version::Ace12}) {
        const Bytes file = test::sampleFile(version);
        Database db = openBytes(file);
        SnapshotRecordset copy(db, L"rooms");
        TableRecordset rows(db, L"Rooms");
        EXPECT_TRUE(rows.isReadOnly());
        ASSERT_EQ(copy.columns().size(), rows.columns().size());
        EXPECT_EQ(copy.recordCount(), 3u);
        for (; !rows.isEof(); rows.move(1), copy.move(1)) {
            for (size_t c = 0; c < copy.columns().size(); ++c)
                EXPECT_EQ(copy.value(c), rows.value(c)) << c;
        }
        EXPECT_TRUE(copy.isEof());
        EXPECT_EQ(rows.columns()[rows.columnByName(L"Name")].size,
                  rows.columnDefinition(rows.columnByName(L"Name")).length /
                      (version == Version::Jet3 ? 1 : 2));
    }
}

// Columns are shown in the order of their ordinals, whatever their places in the definition.
TEST(SnapshotRecordsetTest, ColumnsStandInTheOrderOfPrograms) {
    test::FileBuilder builder(Version::Jet4);
    const std::vector<test::ColumnSpec> columns = {
        {L"A", ColumnType::Long, 4}, {L"B", ColumnType::Long, 4}, {L"C", ColumnType::Long, 4}};
    const uint32_t table = builder.addTable(L"T", columns);
    builder.addRow(table + 1, builder.encodeRow(columns, {test::number(1, 4), test::number(2, 4),
                                                          test::number(3, 4)}));
    const Format& format = builder.format();
    for (size_t i = 0; i < 3; ++i) {
        builder.page(table)[format.table.head + i * format.column.size + format.column.ordinal] =
            static_cast<uint8_t>(2 - i);
    }
    Database db = openBytes(builder.bytes());
    TableRecordset rows(db, L"T");
    SnapshotRecordset copy(db, L"T");
    for (const Recordset* set : {static_cast<Recordset*>(&rows), static_cast<Recordset*>(&copy)}) {
        EXPECT_EQ(set->columns()[0].name, L"C");
        EXPECT_EQ(set->value(0), Value(int32_t(3)));
        EXPECT_EQ(set->columnByName(L"a"), 2u);
        EXPECT_EQ(set->value(2), Value(int32_t(1)));
    }
}

// A file of a few pages whose rows all claim the same long value must not fill the memory.
TEST(SnapshotRecordsetTest, RowsThatShareAValueAreDamage) {
    test::FileBuilder builder(Version::Jet4);
    const std::vector<test::ColumnSpec> columns = {{L"Note", ColumnType::Ole, 0}};
    const uint32_t table = builder.addTable(L"T", columns);
    const uint32_t values = builder.addDataPage(pages::longValueOwner);
    RowId next{};
    constexpr uint32_t partSize = 3000;
    constexpr uint32_t parts = 40;
    for (uint32_t i = 0; i < parts; ++i) {
        Bytes part = test::number(next.packed(), 4).bytes;
        part.resize(4 + partSize, 7);
        next = builder.addRow(i == 0 ? values : builder.addDataPage(pages::longValueOwner), part);
    }
    const Bytes row = builder.encodeRow(columns, {test::longHeader(parts * partSize, next)});
    for (int i = 0; i < 100; ++i)
        builder.addRow(table + 1, row);
    const Database db = openBytes(builder.bytes());
    EXPECT_EQ(codeOf([&] { SnapshotRecordset(db, L"T"); }), Damaged);
}

// A table whose rows are damaged in places is still walked to its end.
TEST(SnapshotRecordsetTest, ACursorPassesOverDamage) {
    test::FileBuilder builder(Version::Jet4);
    const std::vector<test::ColumnSpec> columns = {{L"N", ColumnType::Long, 4}};
    const uint32_t table = builder.addTable(L"T", columns);
    std::vector<RowId> ids;
    for (int i = 0; i < 6; ++i) {
        ids.push_back(builder.addRow(table + 1, builder.encodeRow(columns, {test::number(i, 4)})));
    }
    // The column count of the first, the fourth and the last row says more than they have.
    const ByteView page(builder.page(table + 1), builder.format().pageSize);
    for (const size_t bad : {0, 3, 5}) {
        const size_t at = builder.format().dataPage.rowDirectory + 2 * bad;
        builder.page(table + 1)[page.get16(at)] = 0xff;
    }
    Database db = openBytes(builder.bytes());
    TableRecordset rows(db, L"T");
    for (const bool forward : {true, false}) {
        std::vector<int32_t> met;
        int failures = 0;
        if (!forward) failures += codeOf([&] { rows.moveLast(); }) == Damaged;
        for (int step = 0; step < 20 && !(forward ? rows.isEof() : rows.isBof()); ++step) {
            const int code = codeOf([&] { rows.move(forward ? 1 : -1); });
            failures += code == Damaged;
            if (code == 0 && !rows.isEof() && !rows.isBof())
                met.push_back(std::get<int32_t>(rows.value(0)));
        }
        EXPECT_EQ(met, forward ? (std::vector<int32_t>{1, 2, 4}) : (std::vector<int32_t>{4, 2, 1}));
        EXPECT_EQ(failures, forward ? 2 : 3) << "of three, one is met when it is opened";
    }
}

}  // namespace
}  // namespace sg::jet

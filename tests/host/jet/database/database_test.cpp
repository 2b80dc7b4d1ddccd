#include "host/jet/database/database.h"

#include <gtest/gtest.h>

#include <cstring>

#include "fuzz/jet_read_everything.h"
#include "host/jet/file_builder.h"

namespace sg::jet {
namespace {

Database openBytes(const Bytes& bytes) {
    return Database(std::make_unique<MemoryPageStore>(bytes, L"plan.mdb"));
}

int openingCode(const Bytes& bytes) {
    try {
        openBytes(bytes);
    } catch (const Error& error) {
        return error.code();
    }
    return 0;
}

class DatabaseTest : public testing::TestWithParam<Version> {
  protected:
    Bytes file_ = test::sampleFile(GetParam());
    const Format& format_ = formatOf(GetParam());
};

TEST_P(DatabaseTest, EveryTypeIsReadInFileOrder) {
    const Database db = openBytes(file_);
    EXPECT_EQ(db.tables(), std::vector<std::wstring>{L"Rooms"});
    EXPECT_EQ(db.tables(true).front(), L"MSysObjects");
    EXPECT_TRUE(db.catalogDamage().empty());
    const Table table = db.table(L"rooms");
    EXPECT_EQ(table.name(), L"Rooms");
    RowCursor rows = table.scan();
    const std::wstring note = L"a note on a page of its own";
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(rows.next());
        EXPECT_EQ(rows.id(), (RowId{table.definition().page + 1, static_cast<uint16_t>(i)}));
        const Value expected[] = {int32_t(i + 1),
                                  i != 1,
                                  int16_t(-i),
                                  L"Room " + std::to_wstring(i),
                                  i * 1.5,
                                  Currency{i * 12345},
                                  uint8_t(200 + i),
                                  Date{36526.25 + i},
                                  i == 0 ? std::wstring(L"inline") : note,
                                  i == 2 ? Value() : Value(Bytes{1, 2, 0, 3})};
        for (size_t column = 0; column < std::size(expected); ++column) {
            EXPECT_EQ(rows.value(column), expected[column]) << i << " " << column;
        }
    }
    EXPECT_FALSE(rows.next());
    EXPECT_FALSE(rows.next());
}

TEST_P(DatabaseTest, RowsAreFoundByTheirIds) {
    const Database db = openBytes(file_);
    RowCursor rows(db.table(L"Rooms"));
    const uint32_t page = db.table(L"Rooms").definition().page + 1;
    EXPECT_TRUE(rows.seek({page, 2}));
    EXPECT_EQ(rows.value(0), Value(int32_t(3)));
    EXPECT_FALSE(rows.next());
    EXPECT_TRUE(rows.seek({page, 0}));
    EXPECT_TRUE(rows.next());
    EXPECT_EQ(rows.value(0), Value(int32_t(2)));
    EXPECT_FALSE(rows.seek({page, 3}));
    EXPECT_FALSE(rows.seek({test::catalogDataPage, 0})) << "another table's page";
    EXPECT_FALSE(rows.seek({5000, 0}));
}

TEST_P(DatabaseTest, LinkedTablesAndQueriesAreInTheCatalog) {
    const Database db = openBytes(file_);
    const auto linked = db.linkedTables();
    ASSERT_EQ(linked.size(), 1u);
    EXPECT_EQ(linked[0].name, L"Far rooms");
    EXPECT_EQ(linked[0].database, L"c:\\far.mdb");
    EXPECT_EQ(linked[0].foreignName, L"Far");
    ASSERT_EQ(db.queries().size(), 1u);
    EXPECT_EQ(db.queries()[0].name, L"All rooms");
    EXPECT_TRUE(db.relations().empty());
    for (const wchar_t* name : {L"Far rooms", L"All rooms", L"nothing", L""}) {
        try {
            db.table(name);
            ADD_FAILURE();
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), InputTableNotFound);
            EXPECT_EQ(error.names().front(), name);
        }
    }
    EXPECT_TRUE(db.tableProperties(L"Far rooms").blocks().empty());
    EXPECT_THROW(db.tableProperties(L"All rooms"), Error);
}

TEST_P(DatabaseTest, FilesThatCannotBeOpenedSayWhy) {
    const auto changed = [&](auto change) {
        Bytes bytes = file_;
        maskDatabasePage({bytes.data(), format_.pageSize}, format_);
        change(bytes);
        maskDatabasePage({bytes.data(), format_.pageSize}, format_);
        return openingCode(bytes);
    };
    EXPECT_EQ(changed([](Bytes&) {}), 0);
    EXPECT_EQ(changed([&](Bytes& b) { b[format_.database.password] = 'p'; }), InvalidPassword);
    EXPECT_EQ(changed([&](Bytes& b) { b[format_.database.encodingKey] = 1; }),
              format_.isAce() ? InvalidPassword : CannotOpenDatabase);
    EXPECT_EQ(changed([&](Bytes& b) { b[2 * format_.pageSize] = 0; }), CannotOpenDatabase);
    EXPECT_EQ(changed([&](Bytes& b) { b[3 * format_.pageSize] = 0; }), CannotOpenDatabase);
    EXPECT_EQ(changed([&](Bytes& b) { b.resize(3 * format_.pageSize); }), CannotOpenDatabase);
    EXPECT_EQ(changed([&](Bytes& b) { b.resize(2 * format_.pageSize); }), CannotOpenDatabase);
}

TEST_P(DatabaseTest, ThePasswordOfAFileWithADateIsMixedWithIt) {
    if (format_.isJet3()) {
        return;  // has no creation date
    }
    Bytes bytes = file_;
    maskDatabasePage({bytes.data(), format_.pageSize}, format_);
    const double created = 38927.75;
    const uint32_t days = 38927;
    std::memcpy(&bytes[format_.database.creationDate], &created, 8);
    for (size_t at = 0; at < format_.database.passwordSize; at += 4) {
        std::memcpy(&bytes[format_.database.password + at], &days, 4);
    }
    maskDatabasePage({bytes.data(), format_.pageSize}, format_);
    const Database db = openBytes(bytes);
    EXPECT_EQ(db.header().created, Date{created});
    EXPECT_EQ(db.header().sortOrder.id, 0x0409);
    EXPECT_EQ(db.header().codePage, 1252);
}

TEST_P(DatabaseTest, ADamagedRowIsToldAndTheOthersAreRead) {
    const uint32_t page = openBytes(file_).table(L"Rooms").definition().page + 1;
    // The second row's column count says more than the row has room for.
    const size_t directory = page * format_.pageSize + format_.dataPage.rowDirectory;
    uint16_t offset;
    std::memcpy(&offset, &file_[directory + 2], 2);
    file_[page * format_.pageSize + offset] = 0xff;
    if (!format_.isJet3()) {
        file_[page * format_.pageSize + offset + 1] = 0xff;
    } else {
        std::memcpy(&file_[directory + 2], &file_[directory], 2);
    }
    const Database db = openBytes(file_);
    RowCursor rows(db.table(L"Rooms"));
    ASSERT_TRUE(rows.next());
    try {
        rows.next();
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), Damaged);
        EXPECT_EQ(error.place().table, L"Rooms");
        EXPECT_EQ(error.place().page, page);
        EXPECT_EQ(error.place().file, L"plan.mdb");
    }
    ASSERT_TRUE(rows.next());
    EXPECT_EQ(rows.value(0), Value(int32_t(3)));
    EXPECT_FALSE(rows.next());
}

TEST_P(DatabaseTest, AFileCutOffAnywhereIsReadAsFarAsItGoes) {
    for (size_t pages = 4; pages * format_.pageSize < file_.size(); ++pages) {
        Bytes cut(file_.begin(),
                  file_.begin() + static_cast<ptrdiff_t>(pages * format_.pageSize + 7));
        const test::ReadCount count = test::readEverything(cut);
        EXPECT_GT(count.errors, 0u) << pages;
    }
}

// Each byte of the definitions, the maps, the row directories and the rows in turn.
TEST_P(DatabaseTest, NoSpoiledByteDoesMoreThanAnError) {
    size_t read = 0;
    for (size_t at = format_.pageSize; at < file_.size(); ++at) {
        if (file_[at] == 0 && at % 16 != 0) {
            continue;
        }
        const uint8_t before = file_[at];
        for (const uint8_t byte : {uint8_t(0), uint8_t(0xff), uint8_t(before ^ 0x40)}) {
            file_[at] = byte;
            try {
                read += test::readEverything(file_).values;
            } catch (const Error&) {
            }
        }
        file_[at] = before;
    }
    EXPECT_GT(read, 0u);
}

INSTANTIATE_TEST_SUITE_P(Versions, DatabaseTest,
                         testing::Values(Version::Jet3, Version::Jet4, Version::Ace12));

TEST(DatabaseScanTest, DeletedAndForeignPagesArePassedOverAndOverflowIsFollowed) {
    test::FileBuilder builder(Version::Jet4);
    const std::vector<test::ColumnSpec> columns = {{L"A", ColumnType::Long, 4}};
    const auto row = [&](int value) {
        return builder.encodeRow(columns, {test::number(value, 4)});
    };
    const uint32_t table = builder.addTable(L"T", columns);
    const uint32_t page = table + 1;
    const RowId moved = builder.addRow(page, row(2), rows::deletedFlag);
    builder.addRow(page, row(1));
    builder.addRow(page, test::number(moved.packed(), 4).bytes, rows::lookupFlag);
    builder.addRow(page, row(3), rows::deletedFlag | rows::lookupFlag);
    const uint32_t foreign = builder.addDataPage(pages::longValueOwner);
    builder.addRow(foreign, row(4));
    const uint32_t last = builder.addDataPage(table);
    builder.addRow(last, row(5));
    const uint32_t beyond = builder.pageCount() + 3;
    const RowId map = builder.addMap({page, foreign, last, beyond, beyond + 1});
    const uint32_t packed = map.packed();
    std::memcpy(builder.page(table) + builder.format().table.ownedPages, &packed, 4);
    const Database db = openBytes(builder.bytes());
    RowCursor rows(db.table(L"T"));
    std::vector<Value> values;
    while (values.size() < 3) {
        ASSERT_TRUE(rows.next());
        values.push_back(rows.value(0));
    }
    EXPECT_EQ(values, (std::vector<Value>{int32_t(1), int32_t(2), int32_t(5)}));
    EXPECT_THROW(rows.next(), Error) << "a page beyond the end";
    EXPECT_FALSE(rows.next());
}

}  // namespace
}  // namespace sg::jet

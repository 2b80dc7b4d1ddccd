// Rows added, changed and deleted, with their indexes, long values, counters and counts.

#include "host/jet/database/table_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "host/jet/database/write_scope.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/schema_files.h"

namespace sg::jet {
namespace {

using test::columnOfType;
using test::indexOver;
using test::longColumn;
using test::primaryOver;
using test::tableOf;
using test::textColumn;
using test::thrownBy;
using Row = std::vector<Value>;
using Flags = std::vector<bool>;

Value text(const std::wstring& value) {
    return value;
}

class TableWriterTest : public test::SchemaTest {
  protected:
    TableWriter& writer(std::wstring_view table = L"T") { return db().writer(table); }
    RowId add(Row row) { return insert(L"T", std::move(row)); }
    Row rowAt(RowId id, std::wstring_view table = L"T") {
        RowCursor rows(db().table(table));
        Row row;
        if (!rows.seek(id)) return row;
        for (size_t i = 0; i < db().table(table).definition().columns.size(); ++i)
            row.push_back(rows.value(i));
        return row;
    }
    uint32_t entryCount(size_t index) {
        return readEntryCount(db().store(), db().table(L"T").definition(), index);
    }
    size_t realIndex(const wchar_t* name) {
        return db().table(L"T").definition().indexByName(name)->realIndex;
    }
    size_t entries(const wchar_t* index) {
        const Table table = db().table(L"T");
        IndexCursor cursor(db().store(), table.definition().realIndexes[realIndex(index)].rootPage);
        size_t count = 0;
        for (bool more = cursor.first(); more; more = cursor.next())
            ++count;
        return count;
    }
};

// --- values ---

TEST_F(TableWriterTest, ValuesOfEveryTypeAreConvertedAndReadBack) {
    create();
    ColumnDesign numeric = columnOfType(L"Numeric", ColumnType::Numeric);
    numeric.scale = 2;
    createTable(
        db(),
        tableOf(
            L"T",
            {columnOfType(L"Boolean", ColumnType::Boolean), columnOfType(L"Byte", ColumnType::Byte),
             columnOfType(L"Integer", ColumnType::Integer), longColumn(L"Long"),
             columnOfType(L"Currency", ColumnType::Currency),
             columnOfType(L"Single", ColumnType::Single),
             columnOfType(L"Double", ColumnType::Double), columnOfType(L"Date", ColumnType::Date),
             columnOfType(L"Binary", ColumnType::Binary), textColumn(L"Text"),
             columnOfType(L"Ole", ColumnType::Ole), columnOfType(L"Memo", ColumnType::Memo),
             columnOfType(L"Guid", ColumnType::Guid), numeric}));
    const Decimal decimal{true, 2, {0, 0, 0, 1234}};
    const Row exact{true,
                    uint8_t(200),
                    int16_t(-5),
                    int32_t(70000),
                    Currency{12345},
                    1.5f,
                    2.25,
                    Date{43000.5},
                    Bytes{1, 2, 3},
                    text(L"text"),
                    Bytes(100, 7),
                    std::wstring(5000, L'm'),
                    Guid{{1, 2, 3}},
                    decimal};
    EXPECT_EQ(rowAt(add(exact)), exact);
    // Null is not a Boolean's value.
    Row nulls(exact.size());
    const RowId none = add(nulls);
    nulls[0] = false;
    EXPECT_EQ(rowAt(none), nulls);
    Row texts{text(L"Yes"),    text(L"200"),   text(L"-5"),   7e4,
              text(L"1.2345"), text(L"1.5"),   text(L"2.25"), text(L"2017-09-22 12:00:00"),
              Bytes{1, 2, 3},  text(L"text"),  Bytes(100, 7), std::wstring(5000, L'm'),
              exact[12],       text(L"-12.34")};
    const RowId converted = add(texts);
    EXPECT_EQ(rowAt(converted), exact);
    expectSound("the rows");
}

TEST_F(TableWriterTest, LongValuesComeAndGoWithTheirRows) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id"), columnOfType(L"Memo", ColumnType::Memo),
                                     columnOfType(L"Ole", ColumnType::Ole)}));
    const size_t pagesBefore = pagesInUse();
    std::vector<RowId> ids;
    for (const size_t size : {0, 1, 63, 64, 65, 4076, 4077, 9000, 100000}) {
        // Two bytes a character: nothing is compressed.
        const Row row{int32_t(size), std::wstring(size / 2, L'\u0416'), Bytes(size, 9)};
        ids.push_back(add(row));
        EXPECT_EQ(rowAt(ids.back()), row) << size;
    }
    expectSound("long values");
    const Row other{Value(), std::wstring(20000, L'x'), Value()};
    for (const RowId id : ids) {
        Row before = rowAt(id);
        Row row = other;
        writer().update(id, row, {false, true, false});
        EXPECT_EQ(rowAt(id), (Row{before[0], other[1], before[2]}));
    }
    expectSound("replaced ones");
    for (const RowId id : ids)
        writer().erase(id);
    expectSound("none");
    EXPECT_EQ(pagesInUse(), pagesBefore);
}

TEST_F(TableWriterTest, AnUpdateLeavesUnchangedLongValuesWhereTheyAre) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id"), textColumn(L"Name", 255),
                                     columnOfType(L"Memo", ColumnType::Memo)}));
    const RowId id = add({int32_t(1), text(L"a"), std::wstring(9000, L'm')});
    const auto header = [&] {
        RowCursor rows(db().table(L"T"));
        EXPECT_TRUE(rows.seek(id));
        const ByteView bytes = rows.row().bytes(2);
        return Bytes(bytes.begin(), bytes.end());
    };
    const Bytes before = header();
    Row row{int32_t(2), std::wstring(200, L'b'), Value()};
    writer().update(id, row, {true, true, false});
    EXPECT_EQ(header(), before);
    EXPECT_EQ(rowAt(id), (Row{int32_t(2), std::wstring(200, L'b'), std::wstring(9000, L'm')}));
    expectSound("the update");
}

// --- counters ---

TEST_F(TableWriterTest, CountersGoOnBehindTheHighestNumber) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id", true), textColumn(L"Name", 5)},
                              {primaryOver({L"Id"})}));
    const struct {
        Value given;
        int32_t expected;
    } cases[] = {{{}, 1},  {{}, 2},           {int32_t(10), 10}, {{}, 11},          {int32_t(5), 5},
                 {{}, 12}, {int32_t(-7), -7}, {{}, 13},          {text(L"20"), 20}, {{}, 21}};
    for (const auto& c : cases) {
        Row row{c.given, Value()};
        writer().insert(row);
        EXPECT_EQ(row[0], Value(c.expected));
    }
    // What is refused uses no number up, and lets the row try again.
    Row row{Value(), text(L"too long")};
    EXPECT_EQ(thrownBy([&] { writer().insert(row); }).code, FieldTooSmall);
    EXPECT_TRUE(isNull(row[0]));
    row[1] = text(L"short");
    writer().insert(row);
    EXPECT_EQ(row[0], Value(int32_t(22)));
    EXPECT_EQ(rowAt(add({int32_t(0x7fffffff), Value()}))[0], Value(int32_t(0x7fffffff)));
    EXPECT_EQ(rowAt(add({Value(), Value()}))[0], Value(std::numeric_limits<int32_t>::min()));
    expectSound("counters");
}

TEST_F(TableWriterTest, AutomaticGuidsAreMadeAtRandom) {
    create();
    ColumnDesign guid = columnOfType(L"Id", ColumnType::Guid);
    guid.autoNumber = true;
    createTable(db(), tableOf(L"T", {guid}, {primaryOver({L"Id"})}));
    Row first(1);
    Row second(1);
    writer().insert(first);
    writer().insert(second);
    EXPECT_NE(std::get<Guid>(first[0]), std::get<Guid>(second[0]));
    EXPECT_EQ(toText(std::get<Guid>(first[0]))[15], L'4') << "the kind that is random";
    const Guid given{{1}};
    EXPECT_EQ(rowAt(add({given}))[0], Value(given));
}

// --- what is refused ---

TEST_F(TableWriterTest, ARefusedRowCostsNothingElseOfTheTransaction) {
    create();
    IndexDesign required = indexOver(L"ByCode", {L"Code"});
    required.required = true;
    ColumnDesign rule = longColumn(L"Rule");
    rule.validationRule = L"< 100";
    rule.required = true;
    createTable(db(), tableOf(L"T",
                              {longColumn(L"Id"), textColumn(L"Code", 10), rule,
                               columnOfType(L"Memo", ColumnType::Memo), textColumn(L"A", 255),
                               textColumn(L"B", 255), textColumn(L"C", 255), textColumn(L"D", 255),
                               textColumn(L"E", 255), textColumn(L"F", 255), textColumn(L"G", 255),
                               textColumn(L"H", 255), textColumn(L"I", 255)},
                              {primaryOver({L"Id"}), required}));
    const Row good{int32_t(1), text(L"a"), int32_t(1), std::wstring(3000, L'x')};
    const auto with = [&](size_t column, Value value) {
        Row row = good;
        row.resize(13);
        row[0] = int32_t(7);
        row[column] = std::move(value);
        return row;
    };
    Row wide = with(0, int32_t(8));
    for (size_t i = 4; i < wide.size(); ++i)
        wide[i] = std::wstring(250, L'\u0416');
    const struct {
        Row row;
        int code;
        std::vector<std::wstring> names;
    } cases[] = {
        {with(0, int32_t(1)), DuplicateKey, {L"PrimaryKey"}},
        {with(0, Value()), NullInIndex, {L"PrimaryKey"}},
        {with(1, Value()), NullInIndex, {L"ByCode"}},
        {with(1, text(L"eleven more")), FieldTooSmall, {L"Code"}},
        {with(1, std::wstring(1, wchar_t(0x1F600))), OperationNotSupported, {}},
        {with(0, text(L"one")), ConversionError, {L"Id"}},
        {with(2, Value()), NullInRequiredField, {L"Rule"}},
        {with(2, int32_t(100)), ValidationRule, {L"Rule", L"< 100"}},
        {wide, RecordTooLarge, {}},
        {Row(3), InvalidArgument, {}},
    };
    for (const bool isOpen : {false, true}) {
        if (isOpen) db().beginTransaction();
        Row first = with(0, int32_t(isOpen ? 3 : 1));
        const RowId id = add(first);
        for (const auto& c : cases) {
            Row row = c.row;
            const test::Thrown inserting = thrownBy([&] { writer().insert(row); });
            EXPECT_EQ(inserting.code, c.code) << toUtf8(errorText(c.code));
            EXPECT_EQ(inserting.names, c.names) << c.code;
            if (c.row[0] == Value(int32_t(1)) && !isOpen) continue;
            row = c.row;
            EXPECT_EQ(thrownBy([&] { writer().update(id, row, Flags(row.size(), true)); }).code,
                      c.code);
        }
        EXPECT_EQ(rowAt(id), first);
        add(with(0, int32_t(isOpen ? 4 : 2)));
        if (isOpen) db().commitTransaction();
        expectSound("refusals");
    }
    EXPECT_EQ(values(L"T", L"Id"), (Row{int32_t(1), int32_t(2), int32_t(3), int32_t(4)}));
    Row row = with(0, int32_t(9));
    EXPECT_EQ(thrownBy([&] {
                  writer().update({2, 200}, row, Flags(13, true));
              }).code,
              RecordDeleted);
    EXPECT_EQ(thrownBy([&] { writer().erase({1 << 20, 0}); }).code, RecordDeleted);
}

TEST_F(TableWriterTest, ARefusedChangeLeavesNothingOldBehind) {
    create();
    createTable(db(),
                tableOf(L"T", {longColumn(L"Id"), textColumn(L"Name")}, {primaryOver({L"Id"})}));
    add({int32_t(1), text(L"a")});
    const RowId second = add({int32_t(2), text(L"b")});
    Row row{int32_t(1), Value()};
    EXPECT_EQ(thrownBy([&] { writer().update(second, row, {true, false}); }).code, DuplicateKey);
    const RowId third = add({int32_t(3), text(L"c")});
    row[1] = text(L"new");
    writer().update(third, row, {false, true});
    writer().update(second, row, {false, true});
    EXPECT_EQ(rowAt(third), (Row{int32_t(3), text(L"new")}));
    EXPECT_EQ(rowAt(second), (Row{int32_t(2), text(L"new")}));
}

TEST_F(TableWriterTest, ATransactionMayBeLargerThanItsMemory) {
    StorageOptions options;
    options.transactionBytes = 64 << 10;
    db_.reset(new Database(Database::create(path("test.mdb"), {}, options)));
    createTable(db(), tableOf(L"T", {longColumn(L"Id", true), textColumn(L"Name")},
                              {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"})}));
    db().beginTransaction();
    std::vector<RowId> ids;
    for (int i = 0; i < 5000; ++i)
        ids.push_back(add({Value(), L"name " + std::to_wstring(i * 7919 % 5003)}));
    for (const RowId id : ids) {
        Row row{Value(), std::wstring(40, L'x')};
        writer().update(id, row, {false, true});
        EXPECT_LT(db().storage()->transaction()->memoryBytes(), 4 * options.transactionBytes);
    }
    for (int i = 0; i < 1000; ++i)
        writer().erase(ids[i * 5]);
    db().commitTransaction();
    EXPECT_EQ(db().table(L"T").rowCount(), 4000u);
    expectSound("a large transaction");
    reopen();
    expectSound("a large transaction, read again");
}

TEST_F(TableWriterTest, AnIndexInAnUnknownOrderMakesTheTableReadOnly) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id"), textColumn(L"Name")},
                              {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"})}));
    const RowId id = add({int32_t(1), text(L"a")});
    {
        WriteScope scope(db());
        TableDefinition table = db().table(L"T").definition();
        scope.changing();
        table.columns[1].sortOrder = {0x0407, 0};
        writeDefinition(scope.allocator(), table);
        scope.schemaChanged();
        scope.done();
    }
    const auto expectRefused = [&](const test::Thrown& thrown) {
        EXPECT_EQ(thrown.code, OperationNotSupported);
        EXPECT_EQ(thrown.names, (std::vector<std::wstring>{L"ByName"}));
    };
    expectRefused(thrownBy([&] { add({int32_t(2), text(L"b")}); }));
    expectRefused(thrownBy([&] { writer().erase(id); }));
    Row row{int32_t(3), Value()};
    expectRefused(thrownBy([&] { writer().update(id, row, {true, false}); }));
}

// --- indexes ---

TEST_F(TableWriterTest, ANullIsEqualToNothingInUniqueIndexes) {
    create();
    IndexDesign sparse = indexOver(L"Sparse", {L"C"}, true);
    sparse.ignoreNulls = true;
    createTable(db(), tableOf(L"T", {longColumn(L"A"), longColumn(L"B"), longColumn(L"C")},
                              {indexOver(L"One", {L"A"}, true),
                               indexOver(L"Two", {L"A", L"B"}, true), sparse}));
    const int32_t one = 1;
    add({Value(), Value(), Value()});
    add({Value(), Value(), Value()});
    add({Value(), one, one});
    add({Value(), one, Value()});
    add({one, Value(), Value()});
    EXPECT_EQ(thrownBy([&] {
                  add({one, Value(), Value()});
              }).names,
              (std::vector<std::wstring>{L"One"}));
    EXPECT_EQ(thrownBy([&] {
                  add({Value(), Value(), one});
              }).names,
              (std::vector<std::wstring>{L"Sparse"}));
    EXPECT_EQ(entries(L"One"), 5u);
    EXPECT_EQ(entries(L"Two"), 5u);
    EXPECT_EQ(entries(L"Sparse"), 1u) << "rows that are all Null are left out";
    expectSound("Nulls");
}

TEST_F(TableWriterTest, CountsAreThoseOfRowsAndOfDifferentKeys) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id", true), textColumn(L"Name")},
                              {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"})}));
    const size_t primary = realIndex(L"PrimaryKey");
    const size_t byName = realIndex(L"ByName");
    std::vector<RowId> ids;
    for (const wchar_t* name : {L"a", L"b", L"A", L"c", L"b"})
        ids.push_back(add({Value(), text(name)}));
    EXPECT_EQ(db().table(L"T").rowCount(), 5u);
    EXPECT_EQ(entryCount(primary), 5u);
    EXPECT_EQ(entryCount(byName), 3u);
    // Keys that go stay counted, as other programs have it.
    writer().erase(ids[3]);
    EXPECT_EQ(db().table(L"T").rowCount(), 4u);
    EXPECT_EQ(entryCount(primary), 5u);
    EXPECT_EQ(entryCount(byName), 3u);
    Row row{Value(), text(L"d")};
    writer().update(ids[0], row, {false, true});
    EXPECT_EQ(entryCount(byName), 4u);
    row[1] = text(L"D");
    writer().update(ids[0], row, {false, true});
    EXPECT_EQ(entryCount(byName), 4u);
    EXPECT_EQ(rowAt(ids[0])[1], text(L"D"));
    expectSound("counts");
}

TEST_F(TableWriterTest, EqualKeysOnManyPagesAreCountedOnce) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id", true), textColumn(L"Name", 255)},
                              {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"})}));
    std::mt19937 random(9);
    db().beginTransaction();
    for (int i = 0; i < 4000; ++i)
        add({Value(), std::wstring(50 + random() % 60, L'n')});
    db().commitTransaction();
    EXPECT_EQ(entryCount(realIndex(L"ByName")), 60u);
    EXPECT_EQ(entryCount(realIndex(L"PrimaryKey")), 4000u);
    expectSound("equal keys");
}

// Whatever is done, in whatever order and undone: the table is what the model is.
TEST_F(TableWriterTest, ManyChangesAreKeptInEveryIndex) {
    create();
    createTable(db(), tableOf(L"T",
                              {longColumn(L"Id", true), textColumn(L"Name", 255),
                               columnOfType(L"Level", ColumnType::Integer),
                               columnOfType(L"Memo", ColumnType::Memo)},
                              {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"}),
                               indexOver(L"ByLevel", {L"Level", L"Name"})}));
    std::mt19937 random(3);
    std::map<RowId, Row> model;
    const auto pick = [&](int below) { return static_cast<int>(random() % below); };
    const auto name = [&] {
        return std::wstring(pick(40), wchar_t(L'a' + pick(26))) + std::to_wstring(pick(500));
    };
    const auto anyRow = [&] { return std::next(model.begin(), pick(int(model.size()))); };
    const auto change = [&] {
        const int what = model.size() < 10 ? 0 : pick(10);
        if (what < 5) {
            Row row{Value(), name(), int16_t(pick(9)), std::wstring(pick(3) == 0 ? 6000 : 3, L'm')};
            const RowId id = writer().insert(row);
            EXPECT_TRUE(model.emplace(id, row).second);
        } else if (what < 8) {
            const auto at = anyRow();
            const Flags changed{false, pick(2) == 0, pick(2) == 0, pick(4) == 0};
            Row row{Value(), name() + std::wstring(pick(150), L'z'), Value(),
                    std::wstring(pick(2) == 0 ? 5000 : 60, L'n')};
            for (size_t i = 0; i < row.size(); ++i) {
                if (changed[i]) at->second[i] = row[i];
            }
            writer().update(at->first, row, changed);
        } else {
            const auto at = anyRow();
            writer().erase(at->first);
            model.erase(at);
        }
    };
    for (int round = 0; round < 12; ++round) {
        const auto before = model;
        const bool isOpen = round % 3 != 0;
        if (isOpen) db().beginTransaction();
        for (int i = 0; i < 200; ++i)
            change();
        if (round % 3 == 2) {
            const auto kept = model;
            db().beginTransaction();
            for (int i = 0; i < 50; ++i)
                change();
            db().rollbackTransaction();
            model = kept;
            for (int i = 0; i < 50; ++i)
                change();
        }
        if (isOpen && round % 4 == 1) {
            db().rollbackTransaction();
            model = before;
        } else if (isOpen) {
            db().commitTransaction();
        }
        expectSound("round " + std::to_string(round));
        std::map<RowId, Row> found;
        for (RowCursor rows = db().table(L"T").scan(); rows.next();)
            found[rows.id()] = rowAt(rows.id());
        ASSERT_EQ(found, model) << round;
    }
    for (const auto& [id, row] : model)
        writer().erase(id);
    expectSound("nothing left");
    EXPECT_EQ(entries(L"ByName"), 0u);
}

TEST_F(TableWriterTest, ACopyKeepsItsValuesAndIsAskedForNoRules) {
    create();
    ColumnDesign name = textColumn(L"Name");
    name.required = true;
    createTable(db(), tableOf(L"T", {longColumn(L"Id", true), name}, {primaryOver({L"Id"})}));
    Row row{int32_t(40), Value()};
    const RowId id = writer().insertCopy(row);
    EXPECT_EQ(rowAt(id), row);
    EXPECT_EQ(thrownBy([&] { writer().insertCopy(row); }).code, DuplicateKey);
    EXPECT_EQ(rowAt(add({Value(), text(L"next")}))[0], Value(int32_t(41)));
    expectSound("copies");
}

// --- the design changes ---

TEST_F(TableWriterTest, AWriterOutlivesChangesOfOtherTables) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"Id")}, {primaryOver({L"Id"})}));
    TableWriter& kept = writer();
    Row row{int32_t(1)};
    kept.insert(row);
    createTable(db(), tableOf(L"Other", {longColumn(L"Id")}));
    setProperty(db(), L"T", L"Id", {L"ValidationRule", ColumnType::Text, false, text(L"< 5")});
    EXPECT_EQ(&writer(), &kept);
    row[0] = int32_t(5);
    EXPECT_EQ(thrownBy([&] { kept.insert(row); }).code, ValidationRule);
    row[0] = int32_t(2);
    kept.insert(row);
    addColumn(db(), L"T", textColumn(L"Name"));
    add({int32_t(3), text(L"new")});
    expectSound("design changes");
}

// --- two users ---

class TableWriterUsersTest : public FolderTest {
  protected:
    TableWriterUsersTest() {
        {
            Database made = Database::create(path("plan.mdb"), {}, options(L"maker"));
            createTable(made, tableOf(L"T", {longColumn(L"Id")}, {primaryOver({L"Id"})}));
        }
        mine_.reset(
            new Database(Database::open(path("plan.mdb"), OpenMode::Shared, options(L"me"))));
        theirs_.reset(
            new Database(Database::open(path("plan.mdb"), OpenMode::Shared, options(L"them"))));
    }
    StorageOptions options(const wchar_t* user) {
        StorageOptions options;
        options.checkpointDelay = options.writerPatience = std::chrono::milliseconds(0);
        options.name = {user, L"machine"};
        return options;
    }

    std::unique_ptr<Database> mine_;
    std::unique_ptr<Database> theirs_;
};

TEST_F(TableWriterUsersTest, ADesignThatSomebodyElseChangedIsNoticedInTime) {
    TableWriter& kept = mine_->writer(L"T");
    Row row{int32_t(1)};
    createTable(*theirs_, tableOf(L"Other", {longColumn(L"Id")}));
    kept.insert(row);
    createIndex(*theirs_, L"T", indexOver(L"Again", {L"Id"}));
    row[0] = int32_t(2);
    createIndex(*theirs_, L"T", [] {
        IndexDesign descending = indexOver(L"Down", {L"Id"});
        descending.columns[0].ascending = false;
        return descending;
    }());
    EXPECT_EQ(thrownBy([&] { kept.insert(row); }).code, ObjectClosed);
    mine_->writer(L"T").insert(row);
    EXPECT_TRUE(checkDatabase(*theirs_).empty());
    dropTable(*theirs_, L"T");
    EXPECT_EQ(thrownBy([&] { mine_->writer(L"T"); }).code, InputTableNotFound);
}

TEST_F(TableWriterUsersTest, ATableThatSomebodyElseDroppedIsGone) {
    TableWriter& kept = mine_->writer(L"T");
    dropTable(*theirs_, L"T");
    Row row{int32_t(1)};
    EXPECT_EQ(thrownBy([&] { kept.insert(row); }).code, ObjectClosed);
}

TEST_F(TableWriterUsersTest, WhatSomebodyElseEditsIsNotChanged) {
    Row row{int32_t(1)};
    const RowId id = mine_->writer(L"T").insert(row);
    const auto update = [&](Database& database, bool locked) {
        Row changed{int32_t(2)};
        return thrownBy([&] { database.writer(L"T").update(id, changed, {true}, locked); });
    };
    theirs_->storage()->lockRecord(id);
    EXPECT_EQ(update(*mine_, false).code, LockedByUser);
    EXPECT_EQ(update(*mine_, false).names, (std::vector<std::wstring>{L"them", L"machine"}));
    EXPECT_EQ(thrownBy([&] { mine_->writer(L"T").erase(id); }).code, LockedByUser);
    EXPECT_EQ(update(*theirs_, false).code, Storage::lockedBySession);
    EXPECT_EQ(update(*theirs_, true).code, 0);
    theirs_->storage()->unlockRecord(id);
    // The operation's own lock is gone with it, whether it went well or not.
    EXPECT_EQ(update(*mine_, false).code, 0);
    mine_->storage()->lockRecord(id);
    mine_->storage()->unlockRecord(id);
    EXPECT_EQ(thrownBy([&] { mine_->writer(L"T").erase(id); }).code, 0);
    EXPECT_EQ(thrownBy([&] { theirs_->writer(L"T").erase(id); }).code, RecordDeleted);
}

}  // namespace
}  // namespace sg::jet

// Changes of the design: tables, columns, indexes and properties.

#include <gtest/gtest.h>

#include "host/jet/schema_files.h"

namespace sg::jet {
namespace {

using test::columnOfType;
using test::indexOver;
using test::longColumn;
using test::primaryOver;
using test::SchemaTest;
using test::tableOf;
using test::textColumn;
using test::thrownBy;
using Names = std::vector<std::wstring>;

TEST_F(SchemaTest, ATableOfEveryColumnTypeIsReadBackAsItWasAskedFor) {
    create();
    TableDesign design;
    design.name = L"All types";
    const std::pair<ColumnType, uint16_t> types[] = {
        {ColumnType::Boolean, 1}, {ColumnType::Byte, 1},     {ColumnType::Integer, 2},
        {ColumnType::Long, 4},    {ColumnType::Currency, 8}, {ColumnType::Single, 4},
        {ColumnType::Double, 8},  {ColumnType::Date, 8},     {ColumnType::Binary, 255},
        {ColumnType::Text, 510},  {ColumnType::Ole, 0},      {ColumnType::Memo, 0},
        {ColumnType::Guid, 16},   {ColumnType::Numeric, 17},
    };
    for (const auto& [type, size] : types)
        design.columns.push_back(columnOfType(L"c" + std::to_wstring(int(type)), type));
    createTable(db(), design);
    expectSound("createTable");

    const TableDefinition table = reopen().table(L"All types").definition();
    ASSERT_EQ(table.columns.size(), std::size(types));
    EXPECT_EQ(table.maxColumns, std::size(types));
    uint16_t fixed = 0;
    uint16_t variable = 0;
    for (size_t i = 0; i < std::size(types); ++i) {
        const Column& column = table.columns[i];
        EXPECT_EQ(column.type, types[i].first);
        EXPECT_EQ(column.length, types[i].second) << i;
        EXPECT_EQ(column.ordinal, i);
        EXPECT_EQ(column.variableIndex, variable) << i;
        EXPECT_EQ(column.isLongValue(), column.ownedPages.has_value()) << i;
        if (!column.isFixed()) {
            ++variable;
        } else if (column.type != ColumnType::Boolean) {
            EXPECT_EQ(column.fixedOffset, fixed) << i;
            fixed += column.length;
        }
    }
    EXPECT_EQ(variable, 5);  // binary, text, two long values, number with a scale
    EXPECT_EQ(table.variableColumns, variable);
    EXPECT_EQ(table.columns[9].sortOrder, db().header().sortOrder);
    EXPECT_TRUE(table.columns[9].isCompressed());
}

TEST_F(SchemaTest, FlagsAndSizesFollowTheDesign) {
    create();
    ColumnDesign fixed = textColumn(L"fixed", 7);
    fixed.fixedLength = true;
    ColumnDesign link = columnOfType(L"link", ColumnType::Memo);
    link.hyperlink = true;
    link.compressed = false;
    ColumnDesign key = columnOfType(L"key", ColumnType::Guid);
    key.autoNumber = true;
    ColumnDesign price = columnOfType(L"price", ColumnType::Numeric);
    price.precision = 10;
    price.scale = 3;
    createTable(db(), tableOf(L"T", {longColumn(L"id", true), fixed, link, key, price}));
    const TableDefinition table = db().table(L"T").definition();
    EXPECT_EQ(table.columns[0].flags, 0x07);
    EXPECT_EQ(table.columns[1].flags, 0x03);
    EXPECT_EQ(table.columns[1].length, 14);
    EXPECT_EQ(table.columns[2].flags, 0x82);
    EXPECT_FALSE(table.columns[2].isCompressed());
    EXPECT_EQ(table.columns[3].flags, 0x43);
    EXPECT_EQ(table.columns[4].flags, 0x02);
    EXPECT_EQ(table.columns[4].precision, 10);
    EXPECT_EQ(table.columns[4].scale, 3);
}

TEST_F(SchemaTest, TheWidestTableHasThreePagesOfDefinitionAndTakesRows) {
    create();
    TableDesign design;
    design.name = L"Wide";
    for (int i = 0; i < 255; ++i) {
        design.columns.push_back(columnOfType(L"A column with a long name " + std::to_wstring(i),
                                              i % 3 == 0 ? ColumnType::Memo : ColumnType::Long));
    }
    createTable(db(), design);
    std::vector<Value> row(255);
    row[0] = std::wstring(5000, L'x');
    row[254] = int32_t(7);
    insert(L"Wide", row);
    expectSound("createTable");
    reopen();
    EXPECT_EQ(values(L"Wide", design.columns[254].name), std::vector<Value>{int32_t(7)});
    EXPECT_GT(db().table(L"Wide").definition().pages.size(), 1u);
    EXPECT_EQ(thrownBy([&] { addColumn(db(), L"Wide", longColumn(L"one more")); }).code,
              TooManyFields);
    design.columns.push_back(longColumn(L"one more"));
    design.name = L"Wider";
    EXPECT_EQ(thrownBy([&] { createTable(db(), design); }).code, TooManyFields);
}

TEST_F(SchemaTest, WhatATableCannotBeIsRefusedBeforeAnythingChanges) {
    create();
    makeRooms();
    putQuery(db(), L"Big rooms", 0, {});
    ColumnDesign text = textColumn(L"t", 256);
    ColumnDesign counter = columnOfType(L"c", ColumnType::Double);
    counter.autoNumber = true;
    ColumnDesign number = columnOfType(L"n", ColumnType::Numeric);
    number.precision = 29;
    ColumnDesign fixed = textColumn(L"f", 255);
    fixed.fixedLength = true;
    std::vector<ColumnDesign> tooWide;
    for (int i = 0; i < 8; ++i) {
        tooWide.push_back(fixed);
        tooWide.back().name += std::to_wstring(i);
    }
    const ColumnDesign id = longColumn(L"id");
    const IndexDesign byId = indexOver(L"i", {L"id"});
    const Names eleven(11, L"id");
    const struct {
        TableDesign design;
        int code;
        Names names;
    } cases[] = {
        {tableOf(L"", {id}), 3125, {L""}},
        {tableOf(std::wstring(65, L'n'), {id}), 3125, {std::wstring(65, L'n')}},
        {tableOf(L" x", {id}), 3125, {L" x"}},
        {tableOf(L"a.b", {id}), 3125, {L"a.b"}},
        {tableOf(L"a\tb", {id}), 3125, {L"a\tb"}},
        {tableOf(L"ROOMS", {id}), TableExists, {L"Rooms"}},
        {tableOf(L"Rooms ", {id}), TableExists, {L"Rooms"}},
        {tableOf(L"big rooms", {id}), ObjectExists, {L"Big rooms"}},
        {tableOf(L"T", {}), 3264, {}},
        {tableOf(L"T", {longColumn(L"a[b")}), 3125, {L"a[b"}},
        {tableOf(L"T", {id, longColumn(L"ID")}), FieldDefinedTwice, {L"ID"}},
        {tableOf(L"T", {longColumn(L"a", true), longColumn(L"b", true)}), 3090, {}},
        {tableOf(L"T", {columnOfType(L"c", ColumnType::Complex)}), 3259, {}},
        {tableOf(L"T", {columnOfType(L"b", ColumnType::BigInteger)}), 3259, {}},
        {tableOf(L"T", {counter}), 3259, {}},
        {tableOf(L"T", {text}), 3382, {L"t"}},
        {tableOf(L"T", {number}), InvalidArgument, {}},
        {tableOf(L"T", tooWide), RecordTooLarge, {}},
        {tableOf(L"T", {id}, {indexOver(L"i", {})}), 3264, {}},
        {tableOf(L"T", {id}, {indexOver(L"i", eleven)}), 3277, {}},
        {tableOf(L"T", {id}, {indexOver(L"i", {L"id", L"id"})}), FieldDefinedTwice, {L"id"}},
        {tableOf(L"T", {id}, {indexOver(L"i", {L"nobody"})}), 3409, {L"nobody"}},
        {tableOf(L"T", {id}, {byId, byId}), IndexExists, {}},
        {tableOf(L"T", {id},
                 {primaryOver({L"id"}),
                  [] {
                      IndexDesign other = primaryOver({L"id"});
                      other.name = L"second";
                      return other;
                  }()}),
         PrimaryKeyExists,
         {}},
        {tableOf(L"T", {columnOfType(L"o", ColumnType::Ole)}, {indexOver(L"i", {L"o"})}),
         OperationNotSupported,
         {}},
    };
    const size_t before = pagesInUse();
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto thrown = thrownBy([&] { createTable(db(), cases[i].design); });
        EXPECT_EQ(thrown.code, cases[i].code) << "case " << i;
        EXPECT_EQ(thrown.names, cases[i].names) << "case " << i;
    }
    EXPECT_EQ(pagesInUse(), before);
    expectSound("refusals");
}

TEST_F(SchemaTest, NamesThatSortAlikeAreTakenForOne) {
    create();
    createTable(db(), tableOf(L"Räume", {longColumn(L"id")}));
    createTable(db(), tableOf(L"Raume", {longColumn(L"id")}));  // the accent counts
    EXPECT_EQ(thrownBy([&] { createTable(db(), tableOf(L"RÄUME", {longColumn(L"id")})); }).code,
              TableExists);
    renameTable(db(), L"räume", L"RÄUME ");
    EXPECT_EQ(thrownBy([&] { renameTable(db(), L"Raume", L"räume"); }).code, TableExists);
    expectSound("names");
}

TEST_F(SchemaTest, PropertiesOfTheDesignAreKeptWithTheTable) {
    create();
    ColumnDesign name = textColumn(L"Name");
    name.required = true;
    name.allowZeroLength = false;
    name.defaultValue = L"\"none\"";
    name.validationRule = L"<> 'x'";
    name.validationText = L"not x";
    name.description = L"what it is called";
    name.caption = L"Room";
    TableDesign design = tableOf(L"Rooms", {longColumn(L"Id", true), name});
    design.validationRule = L"[Id] > 0";
    design.validationText = L"ids are positive";
    design.description = L"all rooms";
    createTable(db(), design);
    const Properties properties = reopen().tableProperties(L"Rooms");
    EXPECT_TRUE(properties.flag(L"Name", L"Required"));
    EXPECT_FALSE(properties.flag(L"Name", L"AllowZeroLength"));
    const struct {
        const wchar_t* owner;
        const wchar_t* name;
        ColumnType type;
        const wchar_t* value;
    } texts[] = {
        {L"Name", L"DefaultValue", ColumnType::Memo, L"\"none\""},
        {L"Name", L"ValidationRule", ColumnType::Memo, L"<> 'x'"},
        {L"Name", L"ValidationText", ColumnType::Text, L"not x"},
        {L"Name", L"Description", ColumnType::Text, L"what it is called"},
        {L"Name", L"Caption", ColumnType::Memo, L"Room"},
        {L"", L"ValidationRule", ColumnType::Memo, L"[Id] > 0"},
        {L"", L"ValidationText", ColumnType::Text, L"ids are positive"},
        {L"", L"Description", ColumnType::Text, L"all rooms"},
    };
    for (const auto& one : texts) {
        const Property* found = properties.find(one.owner, one.name);
        ASSERT_NE(found, nullptr) << toUtf8(one.name);
        EXPECT_EQ(found->value, Value(std::wstring(one.value)));
        EXPECT_EQ(found->type, one.type);
        EXPECT_TRUE(found->needsDesignRights);
    }
    EXPECT_EQ(properties.find(L"Id", L"Required"), nullptr);  // a counter is never Null
    EXPECT_EQ(thrownBy([&] {
                  insert(L"Rooms", {Value(), std::wstring(L"x")});
              }).code,
              ValidationMessage);

    setProperty(db(), L"rooms", L"NAME", {L"ValidationRule", ColumnType::Memo, true, Value()});
    insert(L"Rooms", {Value(), std::wstring(L"x")});
    setProperty(db(), L"Rooms", L"", {L"Colour", ColumnType::Long, false, int32_t(3)});
    EXPECT_EQ(thrownBy([&] {
                  setProperty(db(), L"Rooms", L"nobody", {L"p", ColumnType::Long, false, 1});
              }).code,
              FieldNotFound);
    renameColumn(db(), L"Rooms", L"Name", L"Title");
    const Properties renamed = reopen().tableProperties(L"Rooms");
    EXPECT_EQ(renamed.text(L"Title", L"Caption"), L"Room");
    EXPECT_EQ(renamed.find(L"Title", L"ValidationRule"), nullptr);
    EXPECT_EQ(renamed.find(L"", L"Colour")->value, Value(int32_t(3)));
    expectSound("setProperty");
}

TEST_F(SchemaTest, DroppingATableGivesAllItsPagesBack) {
    create();
    createTable(db(), tableOf(L"First", {longColumn(L"id")}));
    const size_t before = pagesInUse();
    makeRooms();
    for (int i = 0; i < 3000; ++i) {
        insert(L"Rooms", {Value(), L"Room " + std::to_wstring(i * 7919 % 3000), 1.0,
                          std::wstring(static_cast<size_t>(i % 90 == 0 ? 9000 : 10), L'n')});
    }
    dropTable(db(), L"ROOMS");
    EXPECT_EQ(pagesInUse(), before);
    EXPECT_EQ(db().tables(), Names{L"First"});
    expectSound("dropTable");
    EXPECT_EQ(thrownBy([&] { dropTable(db(), L"Rooms"); }).code, TableNotFound);
    EXPECT_EQ(thrownBy([&] { dropTable(db(), L"MSysObjects"); }).code, 3033);

    makeRooms();
    const uint32_t end = db().store().pageCount();
    for (int i = 0; i < 20; ++i) {
        dropTable(db(), L"Rooms");
        makeRooms();
    }
    EXPECT_EQ(db().store().pageCount(), end);
    expectSound("dropTable and createTable");
}

TEST_F(SchemaTest, AddedColumnsAreNullInOldRowsAndCountersNumberThem) {
    create();
    makeRooms();
    addColumn(db(), L"rooms", textColumn(L"Colour"));
    addColumn(db(), L"Rooms", columnOfType(L"Locked", ColumnType::Boolean));
    addColumn(db(), L"Rooms", columnOfType(L"Picture", ColumnType::Ole));
    ColumnDesign key = columnOfType(L"Key", ColumnType::Guid);
    key.autoNumber = true;
    addColumn(db(), L"Rooms", key);
    EXPECT_EQ(values(L"Rooms", L"Colour"), std::vector<Value>(3));
    EXPECT_EQ(values(L"Rooms", L"Locked"), std::vector<Value>(3, false));
    const std::vector<Value> keys = values(L"Rooms", L"Key");
    EXPECT_NE(std::get<Guid>(keys[0]), std::get<Guid>(keys[1]));
    insert(L"Rooms", {Value(), std::wstring(L"Cellar"), 1.0, Value(), std::wstring(L"red"), true,
                      Bytes(7000, 3), Value()});
    EXPECT_EQ(values(L"Rooms", L"Name"),
              (std::vector<Value>{std::wstring(L"Hall"), std::wstring(L"Kitchen"),
                                  std::wstring(L"Attic"), std::wstring(L"Cellar")}));
    EXPECT_EQ(values(L"Rooms", L"Notes")[0], Value(std::wstring(3000, L'n')));
    expectSound("addColumn");
    const auto twice = thrownBy([&] { addColumn(db(), L"Rooms", textColumn(L"COLOUR")); });
    EXPECT_EQ(twice.code, FieldExists);
    EXPECT_EQ(twice.names, (Names{L"Rooms", L"COLOUR"}));
    EXPECT_EQ(thrownBy([&] { addColumn(db(), L"Rooms", longColumn(L"n", true)); }).code, 3090);
    EXPECT_EQ(thrownBy([&] { addColumn(db(), L"Nobody", longColumn(L"n")); }).code,
              InputTableNotFound);

    createTable(db(), tableOf(L"Plain", {textColumn(L"a")}));
    for (int i = 0; i < 500; ++i)
        insert(L"Plain", {std::wstring(static_cast<size_t>(i % 40), L'a')});
    addColumn(db(), L"Plain", longColumn(L"n", true));
    insert(L"Plain", {std::wstring(L"z"), Value()});
    std::vector<Value> numbers;
    for (int32_t i = 1; i <= 501; ++i)
        numbers.push_back(i);
    EXPECT_EQ(values(L"Plain", L"n"), numbers);
    expectSound("a counter");
}

TEST_F(SchemaTest, DroppedColumnsTakeTheirLongValuesAlong) {
    create();
    const size_t empty = pagesInUse();
    makeRooms();
    const size_t withNotes = pagesInUse();
    dropColumn(db(), L"Rooms", L"notes");
    EXPECT_LT(pagesInUse(), withNotes);
    dropColumn(db(), L"Rooms", L"Area");
    expectSound("dropColumn");
    EXPECT_EQ(db().tableProperties(L"Rooms").find(L"Notes", L"Required"), nullptr);
    addColumn(db(), L"Rooms", longColumn(L"Floor"));
    insert(L"Rooms", {Value(), std::wstring(L"Cellar"), int32_t(-1)});
    reopen();
    EXPECT_EQ(values(L"Rooms", L"Floor"),
              (std::vector<Value>{Value(), Value(), Value(), int32_t(-1)}));
    EXPECT_EQ(values(L"Rooms", L"Name")[2], Value(std::wstring(L"Attic")));
    EXPECT_EQ(thrownBy([&] { dropColumn(db(), L"Rooms", L"Name"); }).code, 3280);
    const auto missing = thrownBy([&] { dropColumn(db(), L"Rooms", L"Area"); });
    EXPECT_EQ(missing.code, 3381);
    EXPECT_EQ(missing.names, (Names{L"Rooms", L"Area"}));
    createTable(db(), tableOf(L"One", {longColumn(L"a")}));
    EXPECT_EQ(thrownBy([&] { dropColumn(db(), L"One", L"a"); }).code, 3264);
    EXPECT_EQ(thrownBy([&] { renameColumn(db(), L"Rooms", L"Floor", L"NAME"); }).code, FieldExists);
    renameColumn(db(), L"Rooms", L"Name", L"NAME");
    dropTable(db(), L"Rooms");
    dropTable(db(), L"One");
    EXPECT_EQ(pagesInUse(), empty);
    expectSound("dropTable");
}

TEST_F(SchemaTest, IndexesOfFilledTablesFindEveryRow) {
    create();
    createTable(db(), tableOf(L"T", {longColumn(L"a"), textColumn(L"b"), longColumn(L"c")}));
    for (int32_t i = 0; i < 4000; ++i) {
        insert(L"T", {i * 7919 % 4000, L"text " + std::to_wstring(i % 100),
                      i % 10 == 0 ? Value() : Value(i)});
    }
    IndexDesign falling = indexOver(L"falling", {L"b", L"a"});
    falling.columns[0].ascending = false;
    IndexDesign sparse = indexOver(L"sparse", {L"c"}, true);
    sparse.ignoreNulls = true;
    IndexDesign required = indexOver(L"required", {L"c"});
    required.required = true;
    createIndex(db(), L"t", primaryOver({L"a"}));
    createIndex(db(), L"T", falling);
    createIndex(db(), L"T", sparse);
    createIndex(db(), L"T", indexOver(L"nulls", {L"c"}, true));
    createIndex(db(), L"T", indexOver(L"repeats", {L"b"}));
    expectSound("createIndex");
    const TableDefinition table = reopen().table(L"T").definition();
    ASSERT_EQ(table.indexes.size(), 5u);
    EXPECT_EQ(table.indexes[0].name, L"falling");  // by name
    EXPECT_EQ(table.primaryKey()->number, 0u);
    EXPECT_EQ(table.realOf(*table.primaryKey()).flags, 0x89);
    EXPECT_EQ(table.realOf(*table.indexByName(L"sparse")).flags, 0x83);
    EXPECT_EQ(table.realOf(*table.indexByName(L"repeats")).entryCount, 100u);
    EXPECT_EQ(table.realOf(*table.indexByName(L"falling")).entryCount, 4000u);

    const struct {
        IndexDesign index;
        int code;
    } cases[] = {
        {required, NullInIndex},
        {indexOver(L"u", {L"b"}, true), DuplicateKey},
        {indexOver(L"SPARSE", {L"a"}), IndexExists},
        {primaryOver({L"b"}), IndexExists},
        {indexOver(L"i", {L"x"}), 3409},
    };
    const size_t before = pagesInUse();
    for (const auto& one : cases)
        EXPECT_EQ(thrownBy([&] { createIndex(db(), L"T", one.index); }).code, one.code);
    EXPECT_EQ(pagesInUse(), before);
    for (const wchar_t* name : {L"sparse", L"PrimaryKey", L"falling", L"nulls", L"repeats"}) {
        dropIndex(db(), L"T", name);
        expectSound("dropIndex " + toUtf8(name));
    }
    EXPECT_TRUE(reopen().table(L"T").definition().realIndexes.empty());
    const auto missing = thrownBy([&] { dropIndex(db(), L"T", L"sparse"); });
    EXPECT_EQ(missing.code, IndexNotFound);
    EXPECT_EQ(missing.names, (Names{L"T", L"sparse"}));
}

TEST_F(SchemaTest, IndexesOverTheSameColumnsShareATree) {
    create();
    makeRooms();
    createIndex(db(), L"Rooms", indexOver(L"Again", {L"Name"}));
    EXPECT_EQ(db().table(L"Rooms").definition().realIndexes.size(), 2u);
    createIndex(db(), L"Rooms", indexOver(L"Unique", {L"Name"}, true));
    EXPECT_EQ(db().table(L"Rooms").definition().realIndexes.size(), 3u);
    dropIndex(db(), L"Rooms", L"ByName");
    EXPECT_EQ(db().table(L"Rooms").definition().realIndexes.size(), 3u);
    dropIndex(db(), L"Rooms", L"Again");
    EXPECT_EQ(db().table(L"Rooms").definition().realIndexes.size(), 2u);
    EXPECT_EQ(thrownBy([&] {
                  insert(L"Rooms", {Value(), std::wstring(L"hall"), 1.0, Value()});
              }).code,
              DuplicateKey);
    expectSound("shared indexes");
    for (int i = 0; i < 30; ++i)
        createIndex(db(), L"Rooms", indexOver(L"i" + std::to_wstring(i), {L"Area"}));
    const auto many = thrownBy([&] { createIndex(db(), L"Rooms", indexOver(L"more", {L"Area"})); });
    EXPECT_EQ(many.code, TooManyIndexes);
    EXPECT_EQ(many.names, Names{L"Rooms"});
}

TEST_F(SchemaTest, RolledBackChangesLeaveTheDesignAsItWas) {
    create();
    makeRooms();
    const uint64_t stamp = db().designStamp();
    db().beginTransaction();
    createTable(db(), tableOf(L"New", {longColumn(L"a")}));
    insert(L"New", {int32_t(1)});
    addColumn(db(), L"Rooms", longColumn(L"Floor"));
    dropIndex(db(), L"Rooms", L"ByName");
    EXPECT_EQ(thrownBy([&] { createTable(db(), tableOf(L"New", {longColumn(L"a")})); }).code,
              TableExists);
    EXPECT_EQ(thrownBy([&] { addColumn(db(), L"New", textColumn(L"")); }).code, 3125);
    expectSound("changes in a transaction");
    renameTable(db(), L"Rooms", L"Chambers");
    dropTable(db(), L"New");
    db().rollbackTransaction();
    EXPECT_NE(db().designStamp(), stamp);
    EXPECT_EQ(db().tables(), Names{L"Rooms"});
    EXPECT_EQ(db().table(L"Rooms").definition().columns.size(), 4u);
    insert(L"Rooms", {Value(), std::wstring(L"Cellar"), 1.0, Value()});
    expectSound("the rollback");
}

TEST_F(SchemaTest, ARowThatIsTooLongForItsNumberUndoesTheColumn) {
    create();
    TableDesign design = tableOf(L"T", {});
    for (int i = 0; i < 8; ++i) {
        ColumnDesign column = textColumn(L"c" + std::to_wstring(i), 255);
        column.compressed = false;
        design.columns.push_back(column);
    }
    createTable(db(), design);
    insert(L"T", std::vector<Value>(8, std::wstring(1, L'a')));
    std::vector<Value> longest(8, std::wstring(252, L'a'));
    longest[7] = std::wstring(253, L'a');
    insert(L"T", longest);
    const auto thrown = thrownBy([&] { addColumn(db(), L"T", longColumn(L"n", true)); });
    EXPECT_EQ(thrown.code, RecordTooLarge);
    EXPECT_EQ(db().table(L"T").definition().columns.size(), 8u);
    EXPECT_EQ(values(L"T", L"c0")[1], Value(std::wstring(252, L'a')));
    expectSound("a refused column");
}

}  // namespace
}  // namespace sg::jet

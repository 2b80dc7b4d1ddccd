// Referential integrity: what relations refuse, and what follows where they cascade.

#include "host/jet/database/relation_rules.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/jet/database/write_scope.h"
#include "host/jet/schema_files.h"

namespace sg::jet {
namespace {

using test::indexOver;
using test::longColumn;
using test::primaryOver;
using test::tableOf;
using test::textColumn;
using test::thrownBy;
using Names = std::vector<std::wstring>;
using Row = std::vector<Value>;

constexpr uint32_t updates = relationFlags::cascadeUpdates;
constexpr uint32_t deletes = relationFlags::cascadeDeletes;

class RelationRulesTest : public test::SchemaTest {
  protected:
    // A table with an Id and columns that refer.
    void makeTable(const std::wstring& name, const Names& columns = {}) {
        TableDesign design = tableOf(name, {longColumn(L"Id")}, {primaryOver({L"Id"})});
        for (const std::wstring& column : columns)
            design.columns.push_back(longColumn(column));
        createTable(db(), design);
    }
    // `foreign`.`column` refers to `table`.Id.
    void relate(const std::wstring& table, const std::wstring& foreign, const std::wstring& column,
                uint32_t flags = 0) {
        createRelation(db(), {table + foreign + column, table, foreign, flags, {{L"Id", column}}});
    }
    // Null for 0.
    RowId add(std::wstring_view table, std::vector<int32_t> numbers) {
        Row row;
        for (const int32_t number : numbers)
            row.push_back(number == 0 ? Value() : Value(number));
        return insert(table, row);
    }
    test::Thrown adding(std::wstring_view table, std::vector<int32_t> numbers) {
        return thrownBy([&] { add(table, numbers); });
    }
    RowId find(std::wstring_view table, int32_t id) {
        RowCursor rows(db().table(table));
        while (rows.next()) {
            if (rows.value(0) == Value(id)) return rows.id();
        }
        ADD_FAILURE() << "no row " << id;
        return {};
    }
    test::Thrown setting(std::wstring_view table, int32_t id, size_t column, int32_t number) {
        const size_t count = db().table(table).definition().columns.size();
        Row row(count);
        std::vector<bool> changed(count);
        if (number != 0) row[column] = number;
        changed[column] = true;
        const RowId at = find(table, id);
        return thrownBy([&] { db().writer(table).update(at, row, changed); });
    }
    test::Thrown erasing(std::wstring_view table, int32_t id) {
        const RowId at = find(table, id);
        return thrownBy([&] { db().writer(table).erase(at); });
    }
    // A column's numbers, 0 for Null.
    std::vector<int32_t> numbers(std::wstring_view table, std::wstring_view column = L"Id") {
        std::vector<int32_t> list;
        for (const Value& value : values(table, column))
            list.push_back(isNull(value) ? 0 : std::get<int32_t>(value));
        return list;
    }
};

using Numbers = std::vector<int32_t>;

// --- without cascades ---

TEST_F(RelationRulesTest, WhatARelationAsksIsAskedOfEveryChange) {
    create();
    makeTable(L"Floors");
    makeTable(L"Rooms", {L"Floor"});
    relate(L"Floors", L"Rooms", L"Floor");
    add(L"Floors", {1});
    add(L"Floors", {2});
    for (const bool isOpen : {false, true}) {
        if (isOpen) db().beginTransaction();
        const int32_t first = isOpen ? 30 : 10;
        add(L"Rooms", {first, 1});
        add(L"Rooms", {first + 1, 0});
        const auto none = adding(L"Rooms", {first + 2, 3});
        EXPECT_EQ(none.code, RelatedRecordRequired);
        EXPECT_EQ(none.names, Names{L"Floors"});
        EXPECT_EQ(setting(L"Rooms", first, 1, 3).code, RelatedRecordRequired);
        EXPECT_EQ(setting(L"Rooms", first, 0, first + 5).code, 0) << "another column";
        const auto referred = erasing(L"Floors", 1);
        EXPECT_EQ(referred.code, RelatedRecordsExist);
        EXPECT_EQ(referred.names, Names{L"Rooms"});
        EXPECT_EQ(setting(L"Floors", 1, 0, 4).code, RelatedRecordsExist);
        EXPECT_EQ(setting(L"Floors", 1, 0, 1).code, 0) << "the same";
        EXPECT_EQ(setting(L"Floors", 2, 0, 4).code, 0) << "nobody refers to it";
        EXPECT_EQ(setting(L"Rooms", first + 5, 1, 4).code, 0);
        EXPECT_EQ(setting(L"Rooms", first + 5, 1, 0).code, 0);
        EXPECT_EQ(setting(L"Floors", 4, 0, 2).code, 0);
        EXPECT_EQ(setting(L"Rooms", first + 5, 1, 1).code, 0);
        if (isOpen) db().commitTransaction();
        expectSound("refusals");
    }
    EXPECT_EQ(numbers(L"Rooms"), (Numbers{15, 11, 35, 31}));
    EXPECT_EQ(numbers(L"Rooms", L"Floor"), (Numbers{1, 0, 1, 0}));
}

TEST_F(RelationRulesTest, ARowMayReferToItself) {
    create();
    makeTable(L"People", {L"Boss"});
    relate(L"People", L"People", L"Boss");
    add(L"People", {1, 1});
    EXPECT_EQ(adding(L"People", {2, 3}).code, RelatedRecordRequired);
    add(L"People", {2, 1});
    EXPECT_EQ(setting(L"People", 1, 0, 7).code, RelatedRecordsExist);
    EXPECT_EQ(setting(L"People", 2, 1, 2).code, 0);
    EXPECT_EQ(setting(L"People", 1, 0, 7).code, RelatedRecordsExist) << "it stays behind itself";
    Row row{int32_t(7), int32_t(7)};
    db().writer(L"People").update(find(L"People", 1), row, {true, true});
    row = {int32_t(8), int32_t(2)};
    EXPECT_EQ(thrownBy([&] {
                  db().writer(L"People").update(find(L"People", 2), row, {true, true});
              }).code,
              RelatedRecordRequired)
        << "what it refers to goes with the change";
    EXPECT_EQ(erasing(L"People", 7).code, 0);
    EXPECT_EQ(numbers(L"People"), Numbers{2});
    expectSound("self references");
}

TEST_F(RelationRulesTest, SeveralColumnsReferTogetherAndTextIgnoresCase) {
    create();
    createTable(db(), tableOf(L"Parts", {textColumn(L"Kind"), longColumn(L"Number")},
                              {primaryOver({L"Kind", L"Number"})}));
    createTable(db(), tableOf(L"Uses", {longColumn(L"Id"), longColumn(L"No"), textColumn(L"Of")}));
    createRelation(db(),
                   {L"R", L"Parts", L"Uses", updates, {{L"Kind", L"Of"}, {L"Number", L"No"}}});
    const auto text = [](const wchar_t* value) { return Value(std::wstring(value)); };
    const RowId pipe = insert(L"Parts", {text(L"Pipe"), int32_t(5)});
    insert(L"Uses", {int32_t(1), int32_t(5), text(L"PIPE")});
    insert(L"Uses", {int32_t(2), int32_t(6), Value()});
    insert(L"Uses", {int32_t(3), Value(), text(L"Duct")});
    const auto thrown = thrownBy([&] { insert(L"Uses", {int32_t(4), int32_t(6), text(L"Pipe")}); });
    EXPECT_EQ(thrown.code, RelatedRecordRequired);
    Row row{text(L"Tube"), int32_t(7)};
    db().writer(L"Parts").update(pipe, row, {true, true});
    EXPECT_EQ(values(L"Uses", L"Of"), (Row{text(L"Tube"), Value(), text(L"Duct")}));
    EXPECT_EQ(numbers(L"Uses", L"No"), (Numbers{7, 6, 0}));
    expectSound("several columns");
}

// --- deletes ---

TEST_F(RelationRulesTest, DeletesGoThroughAllRelations) {
    create();
    makeTable(L"A");
    makeTable(L"B", {L"A"});
    makeTable(L"C", {L"B", L"A"});
    makeTable(L"D", {L"C"});
    relate(L"A", L"B", L"A", deletes);
    relate(L"B", L"C", L"B", deletes);
    relate(L"A", L"C", L"A", deletes);
    for (const int32_t a : {1, 2}) {
        add(L"A", {a});
        for (const int32_t b : {10 * a, 10 * a + 1}) {
            add(L"B", {b, a});
            add(L"C", {10 * b, b, a});
            add(L"C", {10 * b + 1, b, 0});
        }
        add(L"C", {1000 + a, 0, a});
    }
    add(L"C", {2000, 0, 0});
    add(L"D", {1, 201});
    EXPECT_EQ(erasing(L"A", 1).code, 0);
    expectSound("a cascade");
    EXPECT_EQ(numbers(L"B"), (Numbers{20, 21}));
    EXPECT_EQ(numbers(L"C"), (Numbers{200, 201, 210, 211, 1002, 2000}));
    // One row at the end of the chain keeps all of it.
    relate(L"C", L"D", L"C");
    for (const bool isOpen : {false, true}) {
        if (isOpen) db().beginTransaction();
        const auto thrown = erasing(L"A", 2);
        EXPECT_EQ(thrown.code, RelatedRecordsExist);
        EXPECT_EQ(thrown.names, Names{L"D"});
        if (isOpen) db().commitTransaction();
    }
    EXPECT_EQ(numbers(L"C"), (Numbers{200, 201, 210, 211, 1002, 2000}));
    EXPECT_EQ(erasing(L"D", 1).code, 0);
    EXPECT_EQ(erasing(L"A", 2).code, 0);
    EXPECT_EQ(numbers(L"C"), Numbers{2000});
    expectSound("the rest");
}

TEST_F(RelationRulesTest, WhatGoesAnywayKeepsNothing) {
    create();
    makeTable(L"A");
    makeTable(L"B", {L"A", L"Other"});
    relate(L"A", L"B", L"A", deletes);
    relate(L"B", L"B", L"Other");
    add(L"A", {1});
    add(L"B", {1, 1, 0});
    add(L"B", {2, 1, 1});
    add(L"B", {3, 0, 2});
    EXPECT_EQ(erasing(L"A", 1).code, RelatedRecordsExist);
    EXPECT_EQ(erasing(L"B", 3).code, 0);
    EXPECT_EQ(erasing(L"A", 1).code, 0);
    EXPECT_TRUE(numbers(L"B").empty());
}

TEST_F(RelationRulesTest, NoDepthAndNoCircleIsTooMuch) {
    create();
    makeTable(L"People", {L"Boss"});
    relate(L"People", L"People", L"Boss", deletes | updates);
    constexpr int32_t depth = 5000;
    db().beginTransaction();
    add(L"People", {1, 0});
    for (int32_t id = 2; id <= depth; ++id)
        add(L"People", {id, id - 1});
    EXPECT_EQ(setting(L"People", 1, 1, depth).code, 0) << "a circle";
    db().commitTransaction();
    EXPECT_EQ(setting(L"People", 7, 0, 9999).code, 0);
    EXPECT_EQ(numbers(L"People", L"Boss")[7], 9999);
    expectSound("a circle");
    EXPECT_EQ(erasing(L"People", 9).code, 0);
    EXPECT_TRUE(numbers(L"People").empty());
    expectSound("nobody");
}

// --- updates ---

TEST_F(RelationRulesTest, UpdatesFollowThroughKeysThatReferThemselves) {
    create();
    makeTable(L"A");
    makeTable(L"B");
    makeTable(L"C", {L"B"});
    relate(L"A", L"B", L"Id", updates);
    relate(L"B", L"C", L"B", updates);
    for (const int32_t id : {1, 2}) {
        add(L"A", {id});
        add(L"B", {id});
        add(L"C", {10 * id, id});
        add(L"C", {10 * id + 1, id});
    }
    EXPECT_EQ(setting(L"A", 1, 0, 5).code, 0);
    EXPECT_EQ(numbers(L"A"), (Numbers{5, 2}));
    EXPECT_EQ(numbers(L"B"), (Numbers{5, 2}));
    EXPECT_EQ(numbers(L"C", L"B"), (Numbers{5, 5, 2, 2}));
    expectSound("a cascade");
    EXPECT_EQ(setting(L"A", 5, 0, 2).code, DuplicateKey);
    EXPECT_EQ(setting(L"A", 5, 0, 0).code, NullInIndex);
    EXPECT_EQ(setting(L"B", 5, 0, 2).code, DuplicateKey);
    EXPECT_EQ(setting(L"B", 5, 0, 9).code, RelatedRecordRequired);
    expectSound("refusals");
}

TEST_F(RelationRulesTest, ARowFollowsTwoTablesThatFollowTheSame) {
    create();
    makeTable(L"A");
    makeTable(L"B");
    makeTable(L"C");
    makeTable(L"D", {L"Both", L"Only"});
    relate(L"A", L"B", L"Id", updates);
    relate(L"A", L"C", L"Id", updates);
    relate(L"B", L"D", L"Both", updates);
    relate(L"C", L"D", L"Both", updates);
    relate(L"C", L"D", L"Only");
    for (const wchar_t* table : {L"A", L"B", L"C"})
        add(table, {1});
    add(L"D", {1, 1, 0});
    EXPECT_EQ(setting(L"A", 1, 0, 2).code, 0);
    EXPECT_EQ(numbers(L"D", L"Both"), Numbers{2});
    expectSound("both");
    add(L"D", {2, 0, 2});
    EXPECT_EQ(setting(L"A", 2, 0, 3).code, RelatedRecordsExist);
    EXPECT_EQ(numbers(L"A"), Numbers{2}) << "all of it was undone";
    EXPECT_EQ(numbers(L"B"), Numbers{2});
    EXPECT_EQ(numbers(L"D", L"Both"), (Numbers{2, 0}));
    expectSound("undone");
}

// What fails in another table undoes the operation, and leaves the rest of the transaction.
TEST_F(RelationRulesTest, WhatAnotherTableRefusesIsUndone) {
    create();
    makeTable(L"A");
    makeTable(L"Other");
    makeTable(L"Child", {L"A"});
    relate(L"A", L"Child", L"A", updates);
    relate(L"Other", L"Child", L"A", updates);
    add(L"A", {1});
    add(L"Other", {1});
    add(L"Child", {1, 1});
    db().beginTransaction();
    add(L"A", {7});
    const auto thrown = setting(L"A", 1, 0, 2);
    EXPECT_EQ(thrown.code, CascadeNeedsRecord);
    EXPECT_EQ(thrown.names, Names{L"Other"});
    EXPECT_EQ(numbers(L"Child", L"A"), Numbers{1});
    add(L"Other", {2});
    EXPECT_EQ(setting(L"A", 1, 0, 2).code, 0);
    setProperty(db(), L"Child", L"A",
                {L"ValidationRule", ColumnType::Text, false, Value(std::wstring(L"< 9"))});
    add(L"Other", {9});
    EXPECT_EQ(setting(L"A", 2, 0, 9).code, ValidationRule);
    db().commitTransaction();
    EXPECT_EQ(numbers(L"A"), (Numbers{2, 7}));
    EXPECT_EQ(numbers(L"Child", L"A"), Numbers{2});
    expectSound("the transaction");
}

TEST_F(RelationRulesTest, AKeyThatBecomesNullIsRefusedWhereItMustNot) {
    create();
    createTable(db(), tableOf(L"A", {longColumn(L"Id"), longColumn(L"Code")},
                              {primaryOver({L"Id"}), indexOver(L"ByCode", {L"Code"}, true)}));
    makeTable(L"Plain", {L"Code"});
    makeTable(L"Keyed");
    const auto relateCode = [&](const std::wstring& foreign, const std::wstring& column) {
        createRelation(db(), {foreign, L"A", foreign, updates, {{L"Code", column}}});
    };
    relateCode(L"Plain", L"Code");
    add(L"A", {1, 5});
    add(L"Plain", {1, 5});
    EXPECT_EQ(setting(L"A", 1, 1, 0).code, 0);
    EXPECT_EQ(numbers(L"Plain", L"Code"), Numbers{0});
    relateCode(L"Keyed", L"Id");
    EXPECT_EQ(setting(L"A", 1, 1, 6).code, 0) << "a Null has no rows that follow";
    add(L"Keyed", {6});
    const auto thrown = setting(L"A", 1, 1, 0);
    EXPECT_EQ(thrown.code, CascadeNullKey);
    EXPECT_EQ(thrown.names, Names{L"Keyed"});
    EXPECT_EQ(numbers(L"A", L"Code"), Numbers{6});
    expectSound("Nulls");
}

// --- locks and damage ---

TEST_F(RelationRulesTest, RowsThatFollowMustNotBeEdited) {
    create();
    makeTable(L"Floors");
    makeTable(L"Rooms", {L"Floor"});
    relate(L"Floors", L"Rooms", L"Floor", updates | deletes);
    add(L"Floors", {1});
    const RowId room = add(L"Rooms", {1, 1});
    db().storage()->lockRecord(room);
    EXPECT_EQ(setting(L"Floors", 1, 0, 2).code, Storage::lockedBySession);
    EXPECT_EQ(erasing(L"Floors", 1).code, Storage::lockedBySession);
    db().storage()->unlockRecord(room);
    expectSound("locks");
    EXPECT_EQ(setting(L"Floors", 1, 0, 2).code, 0);
    db().storage()->lockRecord(room);
    db().storage()->unlockRecord(room);
    EXPECT_EQ(erasing(L"Floors", 2).code, 0);
}

TEST_F(RelationRulesTest, ARelatedTableThatIsNotThereIsDamage) {
    create();
    makeTable(L"Floors");
    makeTable(L"Rooms", {L"Floor"});
    relate(L"Floors", L"Rooms", L"Floor");
    add(L"Floors", {1});
    add(L"Rooms", {1, 1});
    const uint32_t page = db().table(L"Floors").definition().page;
    const auto spoil = [&](size_t offset, std::vector<uint8_t> bytes) {
        WriteScope scope(db());
        scope.changing();
        std::copy(bytes.begin(), bytes.end(), scope.pages().write(page).begin() + offset);
        scope.schemaChanged();
        scope.done();
    };
    const Bytes sound(db().store().read(page)->begin(), db().store().read(page)->end());
    const TableLayout& layout = db().store().format().table;
    const std::vector<std::pair<size_t, Bytes>> spoilings = {
        {0, Bytes(4096, 0)},                    // nothing
        {layout.realIndexes, {9, 0, 0, 0}},     // an index too many
        {layout.logicalIndexes, {1, 0, 0, 0}},  // the other end is gone
    };
    for (const auto& [offset, bytes] : spoilings) {
        spoil(offset, bytes);
        EXPECT_EQ(adding(L"Rooms", {2, 1}).code, Damaged) << offset;
        EXPECT_EQ(setting(L"Rooms", 1, 1, 0).code, Damaged) << offset;
        spoil(0, sound);
    }
    EXPECT_EQ(adding(L"Rooms", {2, 1}).code, 0);
    expectSound("mended");
}

}  // namespace
}  // namespace sg::jet

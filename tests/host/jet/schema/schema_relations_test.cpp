// Relations: the pairs of indexes, the catalog's rows, and what they keep others from doing.

#include <gtest/gtest.h>

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
using Names = std::vector<std::wstring>;

Relation relationOf(const std::wstring& name, const std::wstring& table,
                    const std::wstring& foreign, std::vector<RelationColumns> columns,
                    uint32_t flags = 0) {
    return {name, table, foreign, flags, std::move(columns)};
}

class SchemaRelationsTest : public test::SchemaTest {
  protected:
    // "Floors" with two rows and "Rooms" with three, one of which has no floor.
    void makeTables() {
        createTable(db(), tableOf(L"Floors", {longColumn(L"Id"), textColumn(L"Name")},
                                  {primaryOver({L"Id"})}));
        createTable(
            db(),
            tableOf(L"Rooms", {longColumn(L"Id", true), longColumn(L"Floor"), textColumn(L"Name")},
                    {primaryOver({L"Id"})}));
        for (int32_t id : {1, 2})
            insert(L"Floors", {id, std::wstring(L"floor")});
        insert(L"Rooms", {Value(), int32_t(1), std::wstring(L"Hall")});
        insert(L"Rooms", {Value(), int32_t(1), std::wstring(L"Kitchen")});
        insert(L"Rooms", {Value(), Value(), std::wstring(L"Garden")});
    }
    const TableDefinition& definition(const std::wstring& table) {
        definitions_[table] = db().table(table).definition();
        return definitions_[table];
    }

    std::map<std::wstring, TableDefinition> definitions_;
};

TEST_F(SchemaRelationsTest, RowsThatReferredToOneThatGoesReferToNone) {
    create();
    makeTables();
    createRelation(db(), relationOf(L"FloorsRooms", L"Floors", L"Rooms", {{L"Id", L"Floor"}},
                                    relationFlags::nullsOnDelete | relationFlags::cascadeUpdates));
    reopen();
    EXPECT_EQ(db().relations().at(0).flags,
              relationFlags::nullsOnDelete | relationFlags::cascadeUpdates);
    const LogicalIndex* index = definition(L"Rooms").indexByName(L"FloorsRooms");
    ASSERT_NE(index, nullptr);
    EXPECT_TRUE(index->nullsOnDelete);
    EXPECT_FALSE(index->cascadeDeletes);
    RowCursor floors = db().table(L"Floors").scan();
    ASSERT_TRUE(floors.next());
    db().writer(L"Floors").erase(floors.id());
    expectSound("erase");
    RowCursor rooms = db().table(L"Rooms").scan();
    for (int count = 0; count < 3; ++count) {
        ASSERT_TRUE(rooms.next());
        EXPECT_TRUE(rooms.isNull(1));
    }
}

TEST_F(SchemaRelationsTest, BothTablesGetAnIndexThatNamesTheOther) {
    create();
    makeTables();
    const uint32_t cascades = relationFlags::cascadeDeletes;
    createRelation(db(),
                   relationOf(L"FloorsRooms", L"floors", L"rooms", {{L"id", L"floor"}}, cascades));
    expectSound("createRelation");
    reopen();
    const TableDefinition& floors = definition(L"Floors");
    const TableDefinition& rooms = definition(L"Rooms");
    const LogicalIndex* hidden = floors.indexByName(L".rB");
    const LogicalIndex* shown = rooms.indexByName(L"FloorsRooms");
    ASSERT_NE(hidden, nullptr);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(floors.realIndexes.size(), 1u);  // that of the primary key
    EXPECT_EQ(rooms.realIndexes.size(), 2u);
    EXPECT_EQ(rooms.realOf(*shown).flags, 0x80);
    EXPECT_EQ(hidden->relatedType, 1);
    EXPECT_EQ(shown->relatedType, 2);
    EXPECT_EQ(hidden->relatedIndex, shown->number);
    EXPECT_EQ(shown->relatedIndex, hidden->number);
    EXPECT_EQ(hidden->relatedTablePage, rooms.page);
    EXPECT_EQ(shown->relatedTablePage, floors.page);
    for (const LogicalIndex* end : {hidden, shown}) {
        EXPECT_TRUE(end->cascadeDeletes);
        EXPECT_FALSE(end->cascadeUpdates);
    }
    const std::vector<Relation> relations = db().relations();
    ASSERT_EQ(relations.size(), 1u);
    EXPECT_EQ(relations[0].name, L"FloorsRooms");
    EXPECT_EQ(relations[0].table, L"Floors");
    EXPECT_EQ(relations[0].foreignTable, L"Rooms");
    EXPECT_EQ(relations[0].flags, cascades);
    EXPECT_NE(db().object(L"FloorsRooms", ObjectType::Relation), nullptr);
    EXPECT_EQ(thrownBy([&] {
                  insert(L"Rooms", {Value(), int32_t(3), std::wstring(L"Attic")});
              }).code,
              RelatedRecordRequired);
}

TEST_F(SchemaRelationsTest, DroppingARelationLeavesTheTablesAsBefore) {
    create();
    makeTables();
    const size_t before = pagesInUse();
    createRelation(db(), relationOf(L"r", L"Floors", L"Rooms", {{L"Id", L"Floor"}}));
    dropRelation(db(), L"R");
    EXPECT_EQ(pagesInUse(), before);
    EXPECT_EQ(definition(L"Floors").indexes.size(), 1u);
    EXPECT_EQ(definition(L"Rooms").realIndexes.size(), 1u);
    EXPECT_TRUE(db().relations().empty());
    EXPECT_EQ(db().object(L"r", ObjectType::Relation), nullptr);
    insert(L"Rooms", {Value(), int32_t(3), std::wstring(L"Attic")});
    EXPECT_EQ(thrownBy([&] { dropRelation(db(), L"r"); }).code, ItemNotFound);
    expectSound("dropRelation");
}

// The index that programs see may go then, and what it asked of the rows with it.
TEST_F(SchemaRelationsTest, AnIndexThatIsThereIsShared) {
    create();
    makeTables();
    EXPECT_EQ(thrownBy([&] {
                  createIndex(db(), L"Rooms", indexOver(L"ByFloor", {L"Floor"}, true));
              }).code,
              DuplicateKey);
    {
        RowCursor rows = db().table(L"Rooms").scan();
        ASSERT_TRUE(rows.next());
        db().writer(L"Rooms").erase(rows.id());
    }
    createIndex(db(), L"Rooms", indexOver(L"ByFloor", {L"Floor"}, true));
    createRelation(db(), relationOf(L"r", L"Floors", L"Rooms", {{L"Id", L"Floor"}}));
    EXPECT_EQ(definition(L"Rooms").realIndexes.size(), 2u);
    dropIndex(db(), L"Rooms", L"ByFloor");
    expectSound("dropIndex");
    EXPECT_EQ(definition(L"Rooms").realIndexes.size(), 2u);
    insert(L"Rooms", {Value(), int32_t(1), std::wstring(L"Attic")});
    dropRelation(db(), L"r");
    EXPECT_EQ(definition(L"Rooms").realIndexes.size(), 1u);
    expectSound("dropRelation");
}

TEST_F(SchemaRelationsTest, WhatARelationCannotBeIsRefused) {
    create();
    makeTables();
    createRelation(db(), relationOf(L"taken", L"Floors", L"Rooms", {{L"Id", L"Floor"}}));
    linkTable(db(), L"Far", L";DATABASE=far.mdb", L"Far");
    insert(L"Rooms", {Value(), int32_t(2), std::wstring(L"Attic")});
    const RelationColumns idAndFloor{L"Id", L"Floor"};
    const struct {
        Relation relation;
        int code;
        Names names;
    } cases[] = {
        {relationOf(L"", L"Floors", L"Rooms", {idAndFloor}), 3125, {L""}},
        {relationOf(L"TAKEN", L"Floors", L"Rooms", {idAndFloor}), ObjectExists, {L"TAKEN"}},
        {relationOf(L"n", L"Floors", L"Rooms", {}), 3366, {L"n"}},
        {relationOf(L"n", L"Nobody", L"Rooms", {idAndFloor}), InputTableNotFound, {L"Nobody"}},
        {relationOf(L"n", L"Floors", L"Nobody", {idAndFloor}), InputTableNotFound, {L"Nobody"}},
        {relationOf(L"n", L"Floors", L"Far", {idAndFloor}), 3057, {}},
        {relationOf(L"n", L"Floors", L"Rooms", {{L"Id", L"x"}}), 3409, {L"x"}},
        {relationOf(L"n", L"Floors", L"Rooms", {{L"x", L"Floor"}}), 3409, {L"x"}},
        {relationOf(L"n", L"Floors", L"Rooms", {{L"Id", L"Name"}}), 3368, {}},
        {relationOf(L"n", L"Floors", L"Rooms", {{L"Name", L"Name"}}), 3374, {L"Floors"}},
        {relationOf(L"n", L"Floors", L"Rooms", {idAndFloor, {L"Name", L"Name"}}),
         3374,
         {L"Floors"}},
        {relationOf(L"n", L"Floors", L"Rooms", {idAndFloor, {L"Name", L"floor"}}),
         FieldDefinedTwice,
         {L"floor"}},
        {relationOf(L"n", L"Rooms", L"Rooms", {{L"Id", L"Id"}}), 3206, {}},
        {relationOf(L"n", L"Floors", L"Rooms", {{L"Id", L"Id"}}),
         RelatedRecordRequired,
         {L"Floors"}},
    };
    const size_t before = pagesInUse();
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto thrown = thrownBy([&] { createRelation(db(), cases[i].relation); });
        EXPECT_EQ(thrown.code, cases[i].code) << "case " << i;
        EXPECT_EQ(thrown.names, cases[i].names) << "case " << i;
    }
    EXPECT_EQ(pagesInUse(), before);
    expectSound("refusals");
}

TEST_F(SchemaRelationsTest, RelationsKeepTablesColumnsAndIndexes) {
    create();
    makeTables();
    createIndex(db(), L"Floors", indexOver(L"Second", {L"Id"}, true));
    createRelation(db(), relationOf(L"r", L"Floors", L"Rooms", {{L"Id", L"Floor"}}));
    createRelation(db(), relationOf(L"shown", L"Floors", L"Rooms", {{L"Name", L"Name"}},
                                    relationFlags::notEnforced));
    const struct {
        std::function<void()> call;
        int code;
    } cases[] = {
        {[&] { dropTable(db(), L"Floors"); }, 3281},
        {[&] { dropTable(db(), L"Rooms"); }, 3281},
        {[&] { dropIndex(db(), L"Floors", L"PrimaryKey"); }, 3281},
        {[&] { dropIndex(db(), L"Floors", L".rC"); }, 3281},
        {[&] { dropIndex(db(), L"Rooms", L"r"); }, 3281},
        {[&] { dropColumn(db(), L"Rooms", L"Floor"); }, 3280},
        {[&] { dropColumn(db(), L"Rooms", L"Name"); }, 3303},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(thrownBy(cases[i].call).code, cases[i].code) << "case " << i;
    dropIndex(db(), L"Floors", L"Second");
    renameTable(db(), L"Floors", L"Levels");
    renameColumn(db(), L"Levels", L"Id", L"Number");
    renameColumn(db(), L"Rooms", L"Floor", L"Level");
    const std::vector<Relation> relations = reopen().relations();
    ASSERT_EQ(relations.size(), 2u);
    EXPECT_EQ(relations[0].table, L"Levels");
    EXPECT_EQ(relations[0].columns[0].column, L"Number");
    EXPECT_EQ(relations[0].columns[0].foreignColumn, L"Level");
    EXPECT_EQ(relations[1].table, L"Levels");
    EXPECT_EQ(relations[1].columns[0].column, L"Name");
    expectSound("renames");
    dropRelation(db(), L"shown");
    dropRelation(db(), L"r");
    dropTable(db(), L"Levels");
    dropTable(db(), L"Rooms");
    expectSound("dropTable");
}

TEST_F(SchemaRelationsTest, ATableMayReferToItself) {
    create();
    createTable(
        db(), tableOf(L"Parts", {longColumn(L"Id"), longColumn(L"Whole")}, {primaryOver({L"Id"})}));
    const size_t before = pagesInUse();
    insert(L"Parts", {int32_t(1), Value()});
    insert(L"Parts", {int32_t(2), int32_t(1)});
    createRelation(db(), relationOf(L"Tree", L"Parts", L"Parts", {{L"Id", L"Whole"}}));
    expectSound("createRelation");
    const TableDefinition& parts = definition(L"Parts");
    ASSERT_EQ(parts.indexes.size(), 3u);
    EXPECT_EQ(parts.indexByName(L"Tree")->relatedIndex, parts.indexByName(L".rC")->number);
    EXPECT_EQ(thrownBy([&] {
                  insert(L"Parts", {int32_t(3), int32_t(9)});
              }).code,
              RelatedRecordRequired);
    dropRelation(db(), L"Tree");
    EXPECT_EQ(definition(L"Parts").indexes.size(), 1u);
    EXPECT_EQ(pagesInUse(), before + 1);  // the rows'
    expectSound("dropRelation");
}

TEST_F(SchemaRelationsTest, ColumnsMayComeInAnotherOrderThanTheKeys) {
    create();
    createTable(db(),
                tableOf(L"A", {longColumn(L"x"), textColumn(L"y")}, {primaryOver({L"x", L"y"})}));
    createTable(db(), tableOf(L"B", {textColumn(L"p"), longColumn(L"q")}));
    insert(L"A", {int32_t(1), std::wstring(L"one")});
    insert(L"B", {std::wstring(L"ONE"), int32_t(1)});
    insert(L"B", {std::wstring(L"two"), Value()});
    createRelation(db(), relationOf(L"r", L"A", L"B", {{L"y", L"p"}, {L"x", L"q"}}));
    expectSound("createRelation");
    const TableDefinition& b = definition(L"B");
    EXPECT_EQ(b.realIndexes[0].columns[0].column, 1);
    EXPECT_EQ(b.realIndexes[0].columns[1].column, 0);
    const std::vector<Relation> relations = reopen().relations();
    ASSERT_EQ(relations[0].columns.size(), 2u);
    EXPECT_EQ(relations[0].columns[0].foreignColumn, L"p");
    EXPECT_EQ(thrownBy([&] {
                  insert(L"B", {std::wstring(L"one"), int32_t(2)});
              }).code,
              RelatedRecordRequired);
    dropRelation(db(), L"r");
    expectSound("dropRelation");
}

// Relations with linked tables are shown only.
TEST_F(SchemaRelationsTest, UnenforcedRelationsMakeNoIndex) {
    create();
    makeTables();
    linkTable(db(), L"Far", L";DATABASE=far.mdb", L"Far");
    createRelation(
        db(), relationOf(L"r", L"Far", L"Rooms", {{L"Any", L"Floor"}}, relationFlags::notEnforced));
    EXPECT_EQ(definition(L"Rooms").indexes.size(), 1u);
    EXPECT_EQ(reopen().relations().size(), 1u);
    EXPECT_EQ(thrownBy([&] { dropTable(db(), L"Far"); }).code, 3281);
    dropRelation(db(), L"r");
    dropTable(db(), L"Far");
    expectSound("dropTable");
}

// A relation of another program's file that is made anew becomes what it was.
TEST_F(SchemaRelationsTest, RelationsAreMadeAsOtherProgramsMakeThem) {
    if (test::realFiles().empty()) GTEST_SKIP() << "no real files";
    copyOf(test::realFiles().front());
    const std::vector<Relation> relations = db().relations();
    const auto real = std::find_if(relations.begin(), relations.end(),
                                   [](const auto& r) { return r.name == L"Table2Table1"; });
    ASSERT_NE(real, relations.end());
    const auto ends = [&] {
        struct {
            LogicalIndex hidden;
            LogicalIndex shown;
            RealIndex tree;
        } both;
        both.hidden = *definition(L"Table2").indexByName(L".rC");
        const TableDefinition& table = definition(L"Table1");
        both.shown = *table.indexByName(L"Table2Table1");
        both.tree = table.realOf(both.shown);
        return both;
    };
    const auto rowsOf = [&](const wchar_t* name) {
        const int32_t id = db().object(name, ObjectType::Relation)->id;
        auto rows = systemRows(L"MSysACEs", L"ObjectId", id);
        for (auto& row : rows)
            row[L"ObjectId"] = int32_t(0);
        return rows;
    };
    const auto before = ends();
    const auto access = rowsOf(L"Table2Table1");
    dropRelation(db(), L"Table2Table1");
    expectSound("dropRelation");
    createRelation(db(), *real);
    expectSound("createRelation");
    reopen();
    const auto after = ends();
    EXPECT_EQ(after.hidden.number, before.hidden.number);
    EXPECT_EQ(after.hidden.realIndex, before.hidden.realIndex);
    EXPECT_EQ(after.hidden.relatedIndex, after.shown.number);
    EXPECT_EQ(after.shown.relatedIndex, before.shown.relatedIndex);
    EXPECT_EQ(after.shown.relatedTablePage, before.shown.relatedTablePage);
    EXPECT_EQ(after.shown.cascadeDeletes, before.shown.cascadeDeletes);
    EXPECT_EQ(after.shown.cascadeUpdates, before.shown.cascadeUpdates);
    EXPECT_EQ(after.tree.flags, before.tree.flags);
    EXPECT_EQ(after.tree.entryCount, before.tree.entryCount);
    EXPECT_EQ(rowsOf(L"Table2Table1"), access);
}

TEST_F(SchemaRelationsTest, OtherProgramsReadRelations) {
    if (!hasTools()) GTEST_SKIP() << "the other reader is not installed";
    create();
    makeTables();
    createRelation(db(), relationOf(L"FloorsRooms", L"Floors", L"Rooms", {{L"Id", L"Floor"}},
                                    relationFlags::cascadeUpdates));
    const std::string schema = printed("mdb-schema --relations", "postgres");
    EXPECT_NE(schema.find("FOREIGN KEY (\"floor\") REFERENCES \"Floors\"(\"id\") "
                          "ON UPDATE CASCADE"),
              std::string::npos)
        << schema;
}

}  // namespace
}  // namespace sg::jet

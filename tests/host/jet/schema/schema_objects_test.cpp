// Changes of the design: links and queries, and what other programs, files and damage make of all
// changes.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

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

class SchemaObjectsTest : public test::SchemaTest {};

TEST_F(SchemaObjectsTest, LinksAreCatalogRowsWithThePathAndTheName) {
    create();
    const size_t before = pagesInUse();
    linkTable(db(), L"Remote", L";DATABASE=..\\other.mdb", L"There");
    linkTable(db(), L"Sheet", L"Excel 8.0;HDR=YES;DATABASE=a.xls", L"Sheet1$");
    linkTable(db(), L"Server", L"ODBC;DSN=x;DATABASE=y", L"dbo.t");
    const struct {
        const wchar_t* name;
        ObjectType type;
        const wchar_t* database;
        const wchar_t* connect;
        const wchar_t* foreign;
    } cases[] = {
        {L"Remote", ObjectType::LinkedTable, L"..\\other.mdb", L"", L"There"},
        {L"Sheet", ObjectType::LinkedTable, L"a.xls", L"Excel 8.0;HDR=YES;", L"Sheet1$"},
        {L"Server", ObjectType::LinkedOdbcTable, L"", L"ODBC;DSN=x;DATABASE=y", L"dbo.t"},
    };
    reopen();
    for (const auto& one : cases) {
        const CatalogObject* link = db().object(one.name, one.type);
        ASSERT_NE(link, nullptr);
        EXPECT_EQ(link->database, one.database);
        EXPECT_EQ(link->connect, one.connect);
        EXPECT_EQ(link->foreignName, one.foreign);
        EXPECT_LT(link->id, 0);
    }
    relink(db(), L"remote", L"MS Access;DATABASE=new.mdb");
    EXPECT_EQ(db().object(L"Remote", ObjectType::LinkedTable)->database, L"new.mdb");
    EXPECT_EQ(db().object(L"Remote", ObjectType::LinkedTable)->connect, L"");
    renameTable(db(), L"Remote", L"Renamed");
    EXPECT_EQ(thrownBy([&] { addColumn(db(), L"Renamed", longColumn(L"n")); }).code, 3057);
    EXPECT_EQ(thrownBy([&] { linkTable(db(), L"sheet", L";DATABASE=x", L"t"); }).code, TableExists);
    EXPECT_EQ(thrownBy([&] { linkTable(db(), L"New", L";PWD=x", L"t"); }).code, 3321);
    EXPECT_EQ(thrownBy([&] { createTable(db(), tableOf(L"Sheet", {longColumn(L"a")})); }).code,
              TableExists);
    for (const wchar_t* name : {L"Renamed", L"Sheet", L"Server"})
        dropTable(db(), name);
    EXPECT_TRUE(db().linkedTables().empty());
    EXPECT_EQ(pagesInUse(), before);
    expectSound("links");
}

TEST_F(SchemaObjectsTest, QueriesAreKeptAsTheirRows) {
    create();
    makeRooms();
    const auto row = [](uint8_t attribute, std::optional<int16_t> flag, const wchar_t* name,
                        const wchar_t* expression) {
        QueryRow result;
        result.attribute = attribute;
        result.flag = flag;
        if (name != nullptr) result.name1 = name;
        if (expression != nullptr) result.expression = expression;
        return result;
    };
    const std::vector<QueryRow> rows = {
        row(queryAttributes::start, 0, nullptr, nullptr),
        row(queryAttributes::kind, 1, nullptr, nullptr),
        row(queryAttributes::table, {}, L"Rooms", nullptr),
        row(queryAttributes::column, 0, nullptr, L"Rooms.Name"),
        row(queryAttributes::column, 0, nullptr, L"Rooms.Area"),
        row(queryAttributes::end, {}, nullptr, nullptr),
    };
    putQuery(db(), L"Big rooms", 0, rows);
    const std::wstring sql = L"SELECT Rooms.Name, Rooms.Area\r\nFROM Rooms;";
    ASSERT_EQ(reopen().queries().size(), 1u);
    EXPECT_EQ(db().queries()[0].sql(), sql);
    EXPECT_EQ(db().queries()[0].rows[3].order, (Bytes{0, 0, 0, 1}));
    const int32_t id = db().queries()[0].id;

    putQuery(db(), L"BIG ROOMS", 8, {rows.begin(), rows.end() - 2});  // a column less
    EXPECT_EQ(db().queries().size(), 1u);
    EXPECT_EQ(db().queries()[0].id, id);
    EXPECT_TRUE(db().queries()[0].isHidden());
    EXPECT_EQ(db().queries()[0].rows.size(), 4u);
    setProperty(db(), L"Big rooms", L"",
                {L"Description", ColumnType::Text, true, std::wstring(L"d")});
    renameQuery(db(), L"big rooms", L"Large rooms");
    EXPECT_EQ(
        db().properties(*db().object(L"Large rooms", ObjectType::Query)).text(L"", L"Description"),
        L"d");
    EXPECT_EQ(thrownBy([&] { putQuery(db(), L"rooms", 0, rows); }).code, TableExists);
    EXPECT_EQ(thrownBy([&] { renameQuery(db(), L"Large rooms", L"Rooms"); }).code, TableExists);
    EXPECT_EQ(thrownBy([&] { dropQuery(db(), L"Rooms"); }).code, ItemNotFound);
    dropQuery(db(), L"large rooms");
    EXPECT_TRUE(reopen().queries().empty());
    EXPECT_TRUE(systemRows(L"MSysQueries", L"ObjectId", id).empty());
    EXPECT_TRUE(systemRows(L"MSysACEs", L"ObjectId", id).empty());
    expectSound("queries");
}

TEST_F(SchemaObjectsTest, NewObjectsBelongToWhomOtherProgramsGiveThem) {
    for (const auto& file : test::realFiles()) {
        // Its table is from before its accounts.
        if (file.filename() == "compIndexTestV2000.mdb") continue;
        copyOf(file);
        const CatalogObject* old = db().object(L"Table1", ObjectType::Table);
        ASSERT_NE(old, nullptr) << file;
        const int32_t oldId = old->id;
        createTable(db(), tableOf(L"New table", {longColumn(L"a")}));
        putQuery(db(), L"New query", 0, {});
        const int32_t newIds[] = {db().object(L"New table", ObjectType::Table)->id,
                                  db().object(L"New query", ObjectType::Query)->id};
        auto expected = systemRows(L"MSysACEs", L"ObjectId", oldId);
        const auto oldRow = systemRows(L"MSysObjects", L"Id", oldId);
        ASSERT_EQ(oldRow.size(), 1u);
        for (const int32_t id : newIds) {
            auto rows = systemRows(L"MSysACEs", L"ObjectId", id);
            for (auto& row : rows)
                row[L"ObjectId"] = oldId;
            EXPECT_EQ(rows, expected) << file;
            auto row = systemRows(L"MSysObjects", L"Id", id);
            ASSERT_EQ(row.size(), 1u);
            EXPECT_EQ(row[0][L"Owner"], oldRow[0].at(L"Owner")) << file;
            EXPECT_EQ(row[0][L"ParentId"], oldRow[0].at(L"ParentId")) << file;
        }
    }
}

// Every kind of change on copies of other programs' files, each checked.
TEST_F(SchemaObjectsTest, FilesOfOtherProgramsStaySoundThroughEveryChange) {
    if (test::realFiles().empty()) GTEST_SKIP() << "no real files";
    for (const auto& file : test::realFiles()) {
        copyOf(file);
        const std::string name = file.filename().string() + ": ";
        const size_t before = pagesInUse();
        const auto check = [&](const char* what) { expectSound(name + what); };
        makeRooms();
        check("createTable");
        const std::wstring old = L"Table1";
        const size_t rows = values(old, db().table(old).definition().columns[0].name).size();
        addColumn(db(), old, longColumn(L"Added", true));
        check("addColumn");
        EXPECT_EQ(values(old, L"Added").size(), rows);
        if (hasTools()) {
            EXPECT_NE(printed("mdb-tables -1").find("Table1\n"), std::string::npos) << name;
            const std::string lines = printed("mdb-export", "Table1");
            EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), rows + 1) << name;
            if (rows != 0) {
                EXPECT_NE(lines.find("," + std::to_string(rows) + "\n"), std::string::npos) << name;
            }
        }
        addColumn(db(), old, columnOfType(L"Long", ColumnType::Memo));
        createIndex(db(), old, indexOver(L"New index", {L"Added"}, true));
        check("createIndex");
        renameColumn(db(), old, L"Added", L"Renamed");
        renameTable(db(), old, L"Renamed table");
        check("renames");
        dropIndex(db(), L"Renamed table", L"New index");
        dropColumn(db(), L"Renamed table", L"Renamed");
        dropColumn(db(), L"Renamed table", L"Long");
        check("dropColumn");
        dropTable(db(), L"Rooms");
        check("dropTable");
        EXPECT_LE(pagesInUse(), before + 3) << name;
        for (const Relation& relation : db().relations())
            dropRelation(db(), relation.name);
        check("dropRelation");
        for (const std::wstring& table : db().tables())
            dropTable(db(), table);
        check("dropTable of all");
        for (const Query& query : db().queries())
            dropQuery(db(), query.name);
        check("dropQuery");
        reopen();
        check("open");
    }
}

// Whatever stands in a file, a change is made or refused with an error.
TEST_F(SchemaObjectsTest, ChangesOfDamagedFilesEndInErrorsAtWorst) {
    create();
    makeRooms();
    createTable(db(), tableOf(L"Floors", {longColumn(L"Id")}, {primaryOver({L"Id"})}));
    createRelation(db(), {L"r", L"Floors", L"Rooms", relationFlags::notEnforced, {{L"Id", L"Id"}}});
    close();
    const std::string bytes = read("test.mdb");
    uint32_t random = 4711;
    const auto next = [&](size_t below) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % below;
    };
    const std::function<void()> changes[] = {
        [&] { addColumn(db(), L"Rooms", longColumn(L"New")); },
        [&] {
            createIndex(db(), L"Rooms", indexOver(L"New", {L"Name", L"Area"}));
        },
        [&] { addColumn(db(), L"Floors", longColumn(L"Counter", true)); },
        [&] {
            setProperty(db(), L"Rooms", L"Name", {L"p", ColumnType::Long, false, int32_t(1)});
        },
        [&] {
            createRelation(db(), {L"s", L"Floors", L"Rooms", 0, {{L"Id", L"Id"}}});
        },
        [&] { renameColumn(db(), L"Rooms", L"Id", L"Number"); },
        [&] { dropRelation(db(), L"r"); },
        [&] { dropColumn(db(), L"Rooms", L"Notes"); },
        [&] { dropIndex(db(), L"Rooms", L"ByName"); },
        [&] { makeRooms(); },
        [&] { dropTable(db(), L"Rooms"); },
        [&] { dropTable(db(), L"Floors"); },
    };
    for (int round = 0; round < 60; ++round) {
        std::string spoiled = bytes;
        // Most of a page is empty: the bytes that mean something are changed more often.
        for (int i = 0; i < 6; ++i) {
            const size_t page = 1 + next(bytes.size() / 4096 - 1);
            const size_t at = page * 4096 + next(i % 2 == 0 ? 64 : 4096);
            spoiled[at] = static_cast<char>(next(256));
        }
        write("test.mdb", spoiled);
        if (thrownBy([&] { reopen(); }).code != 0) continue;
        for (const auto& change : changes)
            thrownBy(change);
        close();
    }
}

TEST_F(SchemaObjectsTest, OtherProgramsReadWhatWasMade) {
    if (!hasTools()) GTEST_SKIP() << "the other reader is not installed";
    create();
    makeRooms();
    setProperty(db(), L"Rooms", L"Name", {L"Required", ColumnType::Boolean, true, true});
    setProperty(db(), L"Rooms", L"Name",
                {L"DefaultValue", ColumnType::Memo, true, std::wstring(L"\"none\"")});
    renameTable(db(), L"Rooms", L"Chambers");
    addColumn(db(), L"Chambers", textColumn(L"Colour", 20));
    EXPECT_EQ(printed("mdb-tables -1"), "Chambers\n");
    const std::string schema =
        printed("mdb-schema --indexes --not-null --default-values", "postgres");
    for (const char* part :
         {"\"chambers\"", "\"id\"\t\t\tSERIAL",
          "\"name\"\t\t\tVARCHAR (50) NOT NULL DEFAULT 'none'", "\"notes\"\t\t\tTEXT",
          "\"colour\"\t\t\tVARCHAR (20)",
          "INDEX \"chambers_byname_idx\" ON \"chambers\" (\"name\")", "PRIMARY KEY (\"id\")"}) {
        EXPECT_NE(schema.find(part), std::string::npos) << part << " in\n" << schema;
    }
    const std::string rows = printed("mdb-export", "Chambers");
    EXPECT_EQ(rows.substr(0, rows.find('\n')), "Id,Name,Area,Notes,Colour");
    EXPECT_NE(rows.find("3,\"Attic\",12.5"), std::string::npos) << rows;
}

}  // namespace
}  // namespace sg::jet

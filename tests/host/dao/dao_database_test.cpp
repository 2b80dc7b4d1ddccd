// Files that are opened, made, closed and listed through CDaoDatabase.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/dao/dao_fixture.h"
#include "host/jet/format/format.h"
#include "host/jet/pages/database_header.h"
#include "platform/dao/query_def.h"

namespace sg {
namespace {

using DaoDatabaseTest = DaoTest;

// Acts as a user without rights while it lives, where the test has the rights of all.
class WithoutRights {
  public:
    WithoutRights() : privileged_(::geteuid() == 0 && ::seteuid(65534) == 0) {}
    ~WithoutRights() {
        if (privileged_ && ::seteuid(0) != 0) ADD_FAILURE();
    }

  private:
    bool privileged_;
};

TEST_F(DaoDatabaseTest, ANewOneTellsItsNameAndVersionAndMayBeWritten) {
    CDaoDatabase db;
    EXPECT_FALSE(db.IsOpen());
    EXPECT_FALSE(db.CanUpdate());
    EXPECT_EQ(db.GetName(), L"");
    db.Create(path("new.mdb"), englishLocale);
    EXPECT_TRUE(db.IsOpen());
    EXPECT_TRUE(db.CanUpdate());
    EXPECT_EQ(db.GetName(), path("new.mdb"));
    EXPECT_EQ(db.GetVersion(), L"4.0");
    EXPECT_EQ(codeOf([&] { CDaoDatabase().Open(path("new.mdb")); }), 3045) << "it is our own";
    db.Close();
    EXPECT_FALSE(db.IsOpen());
    EXPECT_LT(db.m_nStatus, 2);
    db.Close();
    EXPECT_EQ(codeOf([&] { CDaoDatabase().Create(path("NEW.mdb"), englishLocale); }), 3204);
    EXPECT_EQ(codeOf([&] { CDaoDatabase().Create(path("no/new.mdb"), englishLocale); }), 3044);
    EXPECT_EQ(codeOf([&] { CDaoDatabase().Create(path("b.mdb"), L";LANGID=x"); }), 3001);
    EXPECT_FALSE(exists("b.mdb"));
}

TEST_F(DaoDatabaseTest, PathsAreFoundHoweverTheyAreWritten) {
    std::filesystem::create_directory(folder_ / "Projects");
    CDaoDatabase db;
    db.Create(path() + L"\\projects\\One.qn", englishLocale);
    EXPECT_EQ(db.GetName(), path("Projects/One.qn"));
    db.Open(path() + L"\\PROJECTS\\..\\PROJECTS\\one.QN");
    EXPECT_EQ(db.GetName(), path("Projects/One.qn"));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    db.Open(L"projects\\one.qn");
    std::filesystem::current_path(before);
    EXPECT_EQ(db.GetName(), path("Projects/One.qn"));
}

TEST_F(DaoDatabaseTest, WhatCannotBeOpenedSaysWhy) {
    write("empty.mdb");
    write("text.mdb", std::string(10000, 'x'));
    CDaoDatabase db;
    const auto opening = [&](const std::string& name) {
        return thrownBy([&] { db.Open(path(name)); });
    };
    const Thrown missing = opening("missing.mdb");
    EXPECT_EQ(missing.code, 3024);
    EXPECT_EQ(missing.text, L"Could not find file '" + path("missing.mdb") + L"'.");
    EXPECT_EQ(opening("no/missing.mdb").code, 3044);
    EXPECT_EQ(opening("empty.mdb").code, 3049);
    EXPECT_EQ(opening("text.mdb").code, 3343);
    EXPECT_NE(opening("").code, 0) << "a folder";
    EXPECT_NE(codeOf([&] { db.Open(L""); }), 0);
    EXPECT_EQ(codeOf([&] { db.Open(path("plan.mdb"), false, false, L"ODBC;"); }), 3170);
    EXPECT_FALSE(db.IsOpen());
    db.Open(path("plan.mdb"), false, false, L"");
    EXPECT_TRUE(db.IsOpen());
    EXPECT_EQ(opening("missing.mdb").code, 3024);
    EXPECT_FALSE(db.IsOpen()) << "what was open has been closed";
    EXPECT_EQ(db.GetName(), L"");
}

TEST_F(DaoDatabaseTest, WhoSharesAFileAndWhoHasItAlone) {
    CDaoDatabase other;
    EXPECT_EQ(codeOf([&] { other.Open(path("plan.mdb"), true); }), 3045);
    other.Open(path("plan.mdb"), false, true);
    EXPECT_TRUE(other.IsOpen());
    EXPECT_FALSE(other.CanUpdate());
    db_.Close();
    EXPECT_EQ(codeOf([&] { db_.Open(path("plan.mdb"), true); }), 3045);
    other.Close();
    db_.Open(path("plan.mdb"), true);
    const Thrown refused = thrownBy([&] { other.Open(path("plan.mdb")); });
    EXPECT_EQ(refused.code, 3045);
    EXPECT_EQ(refused.text, L"Could not use '" + path("plan.mdb") + L"'; file already in use.");
    EXPECT_EQ(codeOf([&] { other.Open(path("plan.mdb"), false, true); }), 3045);
    EXPECT_EQ(codeOf([&] { CDaoWorkspace::CompactDatabase(path("plan.mdb"), path("c.mdb")); }),
              3045);
}

TEST_F(DaoDatabaseTest, WhatMayOnlyBeReadIsRefusedForWriting) {
    makeRooms();
    db_.Close();
    std::filesystem::permissions(folder_, std::filesystem::perms(0755));
    std::filesystem::permissions(folder_ / "plan.mdb", std::filesystem::perms(0444));
    {
        const WithoutRights user;
        const Thrown refused = thrownBy([&] { db_.Open(path("plan.mdb")); });
        EXPECT_EQ(refused.code, 3051);
        EXPECT_NE(refused.text.find(path("plan.mdb")), std::wstring::npos);
        EXPECT_EQ(codeOf([&] { db_.Open(path("plan.mdb"), true); }), 3051);
        db_.Open(path("plan.mdb"), false, true);
    }
    EXPECT_FALSE(db_.CanUpdate());
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    EXPECT_FALSE(rows.CanUpdate());
    EXPECT_EQ(codeOf([&] { rows.AddNew(); }), 3027);
    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"Rooms"); }), 3211);
    rows.Close();
    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"Rooms"); }), 3027);
}

TEST_F(DaoDatabaseTest, FilesOfOtherVersionsAreReadOnly) {
    makeRooms();
    db_.Close();
    const auto withVersion = [&](char version) {
        std::string bytes = read("plan.mdb");
        bytes[0x14] = version;
        write("other.mdb", bytes);
        return path("other.mdb");
    };
    EXPECT_EQ(codeOf([&] { db_.Open(withVersion(2)); }), 3051);
    db_.Open(withVersion(2), false, true);
    EXPECT_EQ(db_.GetVersion(), L"12.0");
    CDaoTableDefInfo info;
    db_.GetTableDefInfo(L"Rooms", info, AFX_DAO_ALL_INFO);
    EXPECT_FALSE(info.m_bUpdatable);
    db_.Close();
    EXPECT_EQ(codeOf([&] { db_.Open(withVersion(0)); }), 3051);
    EXPECT_EQ(codeOf([&] { db_.Open(withVersion(99)); }), 3343);
}

TEST_F(DaoDatabaseTest, AFileWithAPasswordIsRefused) {
    db_.Close();
    std::string bytes = read("plan.mdb");
    const jet::Format& format = jet::formatOf(jet::Version::Jet4);
    const std::span<uint8_t> page(reinterpret_cast<uint8_t*>(bytes.data()), format.pageSize);
    jet::maskDatabasePage(page, format);
    page[format.database.password] ^= 'p';
    jet::maskDatabasePage(page, format);
    write("plan.mdb", bytes);
    for (const bool readOnly : {false, true}) {
        EXPECT_EQ(codeOf([&] { db_.Open(path("plan.mdb"), false, readOnly); }), 3031);
    }
}

// --- what outlives what ---

TEST_F(DaoDatabaseTest, ClosingItClosesWhatIsOpenOnIt) {
    makeRooms();
    addRooms({L"Hall", L"Attic"});
    CDaoRecordset rows(&db_), list(&db_);
    CDaoTableDef table(&db_);
    CDaoQueryDef query(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    rows.AddNew();
    list.Open(dbOpenSnapshot, L"Rooms");
    table.Open(L"Rooms");
    query.Create(L"", L"SELECT 1");
    db_.Close();
    const auto expectClosed = [&] {
        EXPECT_FALSE(rows.IsOpen());
        EXPECT_FALSE(list.IsOpen());
        EXPECT_FALSE(table.IsOpen());
        EXPECT_FALSE(query.IsOpen());
        EXPECT_EQ(rows.GetName(), L"");
        EXPECT_EQ(table.GetName(), L"");
        EXPECT_EQ(query.GetSQL(), L"");
        EXPECT_EQ(codeOf([&] { rows.MoveFirst(); }), 3420);
        EXPECT_EQ(codeOf([&] { rows.IsEOF(); }), 3420);
        EXPECT_EQ(codeOf([&] { rows.GetFieldValue(0); }), 3420);
        EXPECT_EQ(codeOf([&] { list.GetRecordCount(); }), 3420);
        EXPECT_EQ(codeOf([&] { table.CreateField(L"More", dbLong, 4); }), 3420);
        EXPECT_EQ(codeOf([&] { table.SetConnect(L""); }), 3420);
        EXPECT_FALSE(rows.CanUpdate());
        rows.Close();
        table.Close();
    };
    expectClosed();
    const auto expectNothingOpens = [&] {
        EXPECT_EQ(codeOf([&] { rows.Open(dbOpenTable, L"Rooms"); }), 3420);
        EXPECT_EQ(codeOf([&] { table.Open(L"Rooms"); }), 3420);
        EXPECT_EQ(codeOf([&] { table.Create(L"More"); }), 3420);
        EXPECT_EQ(codeOf([&] { query.Open(L"All"); }), 3420);
        EXPECT_EQ(codeOf([&] { query.Create(); }), 3420);
    };
    expectNothingOpens();
    CDaoTableDefInfo info;
    CDaoRelationInfo relation;
    EXPECT_EQ(codeOf([&] { db_.GetTableDefCount(); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(0, info); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"Rooms", info); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"Rooms"); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.GetRelationInfo(0, relation); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.CreateRelation(relation); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.DeleteRelation(L"R"); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.GetQueryDefCount(); }), 3420);
    EXPECT_EQ(codeOf([&] { db_.GetVersion(); }), 3420);

    // What was begun does not go on in what is opened next.
    db_.Create(path("next.mdb"), englishLocale);
    expectClosed();
    makeRooms();
    rows.Open(dbOpenTable, L"Rooms");
    EXPECT_EQ(rows.GetRecordCount(), 0);
}

TEST_F(DaoDatabaseTest, WhatIsMadeOnItMayOutliveIt) {
    auto db = std::make_unique<CDaoDatabase>();
    db->Open(path("plan.mdb"));
    makeRooms();
    CDaoRecordset open(db.get()), closed(db.get());
    CDaoTableDef table(db.get());
    open.Open(dbOpenTable, L"Rooms");
    open.AddNew();
    table.Open(L"Rooms");
    db.reset();
    EXPECT_FALSE(open.IsOpen());
    EXPECT_FALSE(table.IsOpen());
    EXPECT_EQ(codeOf([&] { open.Update(); }), 3420);
    EXPECT_EQ(codeOf([&] { closed.Open(dbOpenTable, L"Rooms"); }), 3420);
    EXPECT_EQ(codeOf([&] { table.GetFieldCount(); }), 3420);
    CDaoRecordset homeless(nullptr);
    EXPECT_EQ(codeOf([&] { homeless.Open(dbOpenTable, L"Rooms"); }), 3420);
}

// --- lists ---

TEST_F(DaoDatabaseTest, TablesAreListedByNameWithTheSystemsOwn) {
    for (const wchar_t* name : {L"beta", L"Alpha", L"gamma", L"MSmine"})
        makeTable(db_, name, {field(L"A", dbLong)});
    std::vector<std::wstring> names, own;
    for (int i = 0; i < db_.GetTableDefCount(); ++i) {
        CDaoTableDefInfo info;
        db_.GetTableDefInfo(i, info);
        names.push_back(info.m_strName);
        EXPECT_EQ(info.m_dateCreated, 0) << "is of the next level";
        if ((info.m_lAttributes & dbSystemObject) == 0) own.push_back(info.m_strName);
    }
    EXPECT_EQ(own, (std::vector<std::wstring>{L"Alpha", L"beta", L"gamma", L"MSmine"}));
    EXPECT_EQ(std::count(names.begin(), names.end(), L"MSysObjects"), 1);
    CDaoTableDefInfo info;
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(-1, info); }), 3265);
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(db_.GetTableDefCount(), info); }), 3265);
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"delta", info); }), 3265);
    db_.GetTableDefInfo(L"ALPHA", info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_strName, L"Alpha");
    EXPECT_TRUE(info.m_bUpdatable);
    EXPECT_GT(info.m_dateCreated, 40000);
    EXPECT_EQ(info.m_lRecordCount, 0);
    EXPECT_EQ(info.m_strConnect, L"");
    const int16_t count = db_.GetTableDefCount();
    db_.DeleteTableDef(L"beta");
    EXPECT_EQ(db_.GetTableDefCount(), count - 1);
    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"beta"); }), 3265);
}

TEST_F(DaoDatabaseTest, ATableThatIsOpenIsNotDeleted) {
    makeRooms();
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"rooms");
    const Thrown refused = thrownBy([&] { db_.DeleteTableDef(L"ROOMS"); });
    EXPECT_EQ(refused.code, 3211);
    EXPECT_EQ(refused.text,
              L"The database engine could not lock table 'Rooms' because it is already in use by "
              L"another person or process.");
    rows.Close();
    db_.DeleteTableDef(L"ROOMS");
    EXPECT_EQ(codeOf([&] { rows.Open(dbOpenTable, L"Rooms"); }), 3011);
}

TEST_F(DaoDatabaseTest, RelationsAreToldByNameAndPlace) {
    makeRooms();
    makeTable(db_, L"Doors", {field(L"Door", dbLong), field(L"Room", dbLong)});
    makeTable(db_, L"Keys", {field(L"Key", dbLong), field(L"Room", dbLong)});
    const auto relate = [&](const wchar_t* name, const wchar_t* foreign, int32_t attributes) {
        CDaoRelationInfo info;
        info.m_strName = name;
        info.m_strTable = L"Rooms";
        info.m_strForeignTable = foreign;
        info.m_lAttributes = attributes;
        info.m_pFieldInfos = {{L"Id", L"Room"}};
        db_.CreateRelation(info);
    };
    relate(L"RoomsKeys", L"Keys", dbRelationDontEnforce);
    relate(L"RoomsDoors", L"Doors", dbRelationDeleteCascade);
    EXPECT_EQ(codeOf([&] { relate(L"roomsdoors", L"Keys", 0); }), 3012);
    EXPECT_EQ(db_.GetRelationCount(), 2);

    CDaoRelationInfo info;
    db_.GetRelationInfo(1, info);
    EXPECT_EQ(info.m_strName, L"RoomsKeys");
    EXPECT_EQ(info.m_strTable, L"Rooms");
    EXPECT_EQ(info.m_strForeignTable, L"Keys");
    EXPECT_EQ(info.m_lAttributes, 0);
    db_.GetRelationInfo(1, info, AFX_DAO_SECONDARY_INFO);
    EXPECT_EQ(info.m_lAttributes, dbRelationDontEnforce);
    EXPECT_EQ(info.m_nFields, 0);
    db_.GetRelationInfo(L"ROOMSDOORS", info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_strName, L"RoomsDoors");
    EXPECT_EQ(info.m_lAttributes, dbRelationDeleteCascade);
    ASSERT_EQ(info.m_nFields, 1);
    EXPECT_EQ(info.m_pFieldInfos[0].m_strName, L"Id");
    EXPECT_EQ(info.m_pFieldInfos[0].m_strForeignName, L"Room");
    db_.GetRelationInfo(0, info);
    EXPECT_EQ(info.m_nFields, 0);
    for (const int index : {-1, 2})
        EXPECT_EQ(codeOf([&] { db_.GetRelationInfo(index, info); }), 3265);
    EXPECT_EQ(codeOf([&] { db_.GetRelationInfo(L"None", info); }), 3265);

    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"Rooms"); }), 3281);
    EXPECT_EQ(codeOf([&] { db_.DeleteTableDef(L"Doors"); }), 3281);
    CDaoRecordset doors(&db_);
    doors.Open(dbOpenTable, L"Doors");
    EXPECT_EQ(codeOf([&] { append(doors, {{L"Door", number(1)}, {L"Room", number(77)}}); }), 3201);
    doors.Close();
    db_.DeleteRelation(L"RoomsDoors");
    EXPECT_EQ(codeOf([&] { db_.DeleteRelation(L"RoomsDoors"); }), 3265);
    db_.DeleteRelation(L"RoomsKeys");
    EXPECT_EQ(db_.GetRelationCount(), 0);
    db_.DeleteTableDef(L"Rooms");
}

TEST_F(DaoDatabaseTest, AStoredQueryThatIsNotThere) {
    CDaoQueryDef query(&db_);
    EXPECT_EQ(codeOf([&] { query.Open(L"None"); }), 3265);
    EXPECT_FALSE(query.IsOpen());
    query.Create(L"", L"SELECT * FROM Rooms");
    EXPECT_EQ(query.GetName(), L"");
    EXPECT_EQ(query.GetSQL(), L"SELECT * FROM Rooms");
    EXPECT_EQ(db_.GetQueryDefCount(), 0);
    EXPECT_EQ(codeOf([&] { db_.DeleteQueryDef(L"None"); }), 3265);
}

// --- compacting ---

TEST_F(DaoDatabaseTest, ACompactedCopyHasTheSameRows) {
    makeRooms();
    addRooms({L"Hall", L"Attic", L"Kitchen"});
    db_.Close();
    CDaoWorkspace::CompactDatabase(path("PLAN.mdb"), path() + L"\\small.mdb", englishLocale, 0);
    EXPECT_EQ(codeOf([&] {
                  CDaoWorkspace::CompactDatabase(path("plan.mdb"), path("SMALL.mdb"),
                                                 englishLocale);
              }),
              3204);
    EXPECT_EQ(codeOf([&] { CDaoWorkspace::CompactDatabase(path("no.mdb"), path("c.mdb")); }), 3024);
    EXPECT_FALSE(exists("c.mdb"));
    db_.Open(path("small.mdb"));
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    EXPECT_EQ(rows.GetRecordCount(), 3);
    rows.SetCurrentIndex(L"Name");
    const COleVariant key = text(L"KITCHEN");
    ASSERT_TRUE(rows.Seek(L"=", &key));
    EXPECT_EQ(shown(rows.GetFieldValue(L"Id")), L"I4 3");
}

TEST_F(DaoDatabaseTest, RepairingKeepsTheFileThatWas) {
    makeRooms();
    addRooms({L"Hall"});
    EXPECT_EQ(codeOf([&] { CDaoWorkspace::RepairDatabase(path("plan.mdb")); }), 3045);
    db_.Close();
    const std::string before = read("plan.mdb");
    CDaoWorkspace::RepairDatabase(path("Plan.mdb"));
    EXPECT_EQ(read("plan.mdb.bak"), before);
    db_.Open(path("plan.mdb"));
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    EXPECT_EQ(at(rows), L"Hall");
    EXPECT_EQ(codeOf([&] { CDaoWorkspace::RepairDatabase(path("none.mdb")); }), 3024);
}

}  // namespace
}  // namespace sg

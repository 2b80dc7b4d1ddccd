// Tables, fields, indexes and links that are made, changed and taken away.

#include <filesystem>

#include "host/dao/dao_fixture.h"

namespace sg {
namespace {

class DaoTableDefTest : public DaoTest {
  protected:
    CDaoFieldInfo fieldOf(const wchar_t* table, const wchar_t* name) {
        CDaoFieldInfo info;
        CDaoTableDef def(&db_);
        def.Open(table);
        def.GetFieldInfo(name, info, AFX_DAO_ALL_INFO);
        return info;
    }
    CDaoIndexInfo indexOf(const wchar_t* table, const wchar_t* name) {
        CDaoIndexInfo info;
        CDaoTableDef def(&db_);
        def.Open(table);
        def.GetIndexInfo(name, info, AFX_DAO_ALL_INFO);
        return info;
    }

    CDaoTableDef table_{&db_};
};

TEST_F(DaoTableDefTest, EveryTypeThatAFieldCanHave) {
    struct Case {
        int16_t type;
        int32_t given;
        int32_t size;
        int32_t attributes;
    };
    static constexpr Case cases[] = {
        {dbBoolean, 0, 1, dbFixedField},     {dbByte, 0, 1, dbFixedField},
        {dbInteger, 0, 2, dbFixedField},     {dbLong, 0, 4, dbFixedField},
        {dbCurrency, 0, 8, dbFixedField},    {dbSingle, 0, 4, dbFixedField},
        {dbDouble, 0, 8, dbFixedField},      {dbDate, 0, 8, dbFixedField},
        {dbBinary, 10, 10, dbVariableField}, {dbText, 30, 30, dbVariableField},
        {dbText, 0, 255, dbVariableField},   {dbLongBinary, 0, 0, dbVariableField},
        {dbMemo, 0, 0, dbVariableField},     {dbGUID, 0, 16, dbFixedField},
        {dbDecimal, 0, 16, dbVariableField},
    };
    table_.Create(L"All");
    EXPECT_TRUE(table_.IsOpen());
    int n = 0;
    for (const Case& each : cases)
        table_.CreateField(L"F" + std::to_wstring(n++), each.type, each.given);
    EXPECT_EQ(table_.GetFieldCount(), n);
    table_.Append();
    EXPECT_EQ(table_.GetFieldCount(), n);
    for (int i = 0; i < n; ++i) {
        CDaoFieldInfo info;
        table_.GetFieldInfo(i, info, AFX_DAO_SECONDARY_INFO);
        EXPECT_EQ(info.m_strName, L"F" + std::to_wstring(i));
        EXPECT_EQ(info.m_nType, cases[i].type);
        EXPECT_EQ(info.m_lSize, cases[i].size) << info.m_nType;
        EXPECT_EQ(info.m_lAttributes, cases[i].attributes) << info.m_nType;
        EXPECT_EQ(info.m_nOrdinalPosition, i);
        EXPECT_FALSE(info.m_bRequired);
    }
}

// As a program does it that is given a list of fields, of which one may be wrong.
TEST_F(DaoTableDefTest, AFieldThatCannotBeMadeLeavesTheOthers) {
    table_.Create(L"Rooms");
    table_.CreateField(L"A", dbText, 20);
    const auto creating = [&](const wchar_t* name, int16_t type, int32_t size) {
        return codeOf([&] { table_.CreateField(name, type, size); });
    };
    EXPECT_EQ(creating(L"a", dbLong, 0), 3191);
    EXPECT_EQ(creating(L"B", 99, 0), 3259);
    EXPECT_EQ(creating(L"B", dbText, 256), 3382);
    EXPECT_EQ(creating(L"B", dbText, -1), 3382);
    table_.Append();
    EXPECT_EQ(table_.GetFieldCount(), 1);
    EXPECT_EQ(creating(L"a", dbLong, 0), 3380);
    EXPECT_EQ(creating(L"B", 99, 0), 3259);
    EXPECT_EQ(creating(L"B", dbText, 256), 3382);
    EXPECT_EQ(creating(L"B.C", dbText, 10), 3125);
    EXPECT_EQ(table_.GetFieldCount(), 1);
    EXPECT_EQ(codeOf([&] { table_.Append(); }), 3367);
}

TEST_F(DaoTableDefTest, WhatCannotBeAppended) {
    makeTable(db_, L"Rooms", {field(L"A", dbLong)});
    const auto appending = [&](const wchar_t* name, std::vector<CDaoFieldInfo> fields,
                               std::vector<CDaoIndexInfo> indexes = {}) {
        return codeOf([&] { makeTable(db_, name, std::move(fields), std::move(indexes)); });
    };
    EXPECT_EQ(appending(L"ROOMS", {field(L"A", dbLong)}), 3010);
    EXPECT_EQ(appending(L"None", {}), 3264);
    EXPECT_EQ(appending(L"", {field(L"A", dbLong)}), 3125);
    EXPECT_EQ(appending(L"a.b", {field(L"A", dbLong)}), 3125);
    EXPECT_EQ(appending(L"T", {field(L"", dbLong)}), 3125);
    EXPECT_EQ(appending(L"T", {field(L"A", dbLong, 4, dbAutoIncrField),
                               field(L"B", dbLong, 4, dbAutoIncrField)}),
              3090);
    EXPECT_EQ(appending(L"T", {field(L"A", dbText, 4, dbAutoIncrField)}), 3259);
    EXPECT_EQ(appending(L"T", {field(L"A", dbLong)}, {indexOver(L"I", {{L"B", false}})}), 3409);
    EXPECT_EQ(appending(L"T", {field(L"A", dbLong)}, {indexOver(L"I", {})}), 3264);
    EXPECT_EQ(appending(L"T", {field(L"A", dbLong)},
                        {indexOver(L"I", {{L"A", false}}), indexOver(L"i", {{L"A", false}})}),
              3284);
    EXPECT_EQ(appending(L"T", {field(L"A", dbLong)},
                        {indexOver(L"I", {{L"A", false}}, true, true),
                         indexOver(L"J", {{L"A", false}}, true, true)}),
              3283);
    CDaoTableDefInfo info;
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"T", info); }), 3265) << "nothing is left";
    EXPECT_EQ(codeOf([&] { table_.Append(); }), 3420);
}

TEST_F(DaoTableDefTest, IndexesOfANewTable) {
    makeTable(db_, L"Rooms",
              {field(L"Id", dbLong, 4, dbAutoIncrField), field(L"A", dbText, 20),
               field(L"B", dbDouble), field(L"C", dbLong)},
              {indexOver(L"Id", {{L"Id", false}}, true, true), indexOver(L"A", {{L"A", false}}),
               indexOver(L"B", {{L"B", true}}), indexOver(L"C", {{L"C", false}}, true)});
    EXPECT_EQ(fieldOf(L"Rooms", L"Id").m_lAttributes, dbFixedField | dbAutoIncrField);
    EXPECT_TRUE(indexOf(L"Rooms", L"Id").m_bPrimary);
    EXPECT_TRUE(indexOf(L"Rooms", L"B").m_pFieldInfos.at(0).m_bDescending);
    EXPECT_FALSE(indexOf(L"Rooms", L"B").m_bUnique);
    EXPECT_TRUE(indexOf(L"Rooms", L"C").m_bUnique);
    EXPECT_FALSE(indexOf(L"Rooms", L"C").m_bPrimary);

    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    for (const double value : {1.0, 3.0, 2.0})
        append(rows, {{L"B", real(value)}, {L"C", real(value)}});
    rows.SetCurrentIndex(L"B");
    rows.MoveFirst();
    EXPECT_EQ(shown(rows.GetFieldValue(L"C")), L"I4 3") << "the greatest first";
    EXPECT_EQ(codeOf([&] { append(rows, {{L"C", number(3)}}); }), 3022);
}

TEST_F(DaoTableDefTest, WhatATableIsGivenBeforeItIsAppendedCanBeTakenBack) {
    table_.Create(L"Rooms");
    CDaoFieldInfo a = requiredField(L"A", dbText, 20, L"\"x\"");
    table_.CreateField(a);
    table_.CreateField(L"B", dbLong, 4);
    CDaoIndexInfo index = indexOver(L"I", {{L"B", true}}, true);
    table_.CreateIndex(index);
    CDaoFieldInfo told;
    table_.GetFieldInfo(L"a", told, AFX_DAO_ALL_INFO);
    EXPECT_EQ(told.m_strDefaultValue, L"\"x\"");
    EXPECT_TRUE(told.m_bRequired);
    table_.GetFieldInfo(0, told);
    EXPECT_EQ(told.m_lSize, 20);
    EXPECT_FALSE(told.m_bRequired);
    CDaoIndexInfo toldIndex;
    table_.GetIndexInfo(L"i", toldIndex, AFX_DAO_SECONDARY_INFO);
    EXPECT_TRUE(toldIndex.m_bUnique);
    EXPECT_TRUE(toldIndex.m_pFieldInfos.at(0).m_bDescending);
    EXPECT_EQ(table_.GetRecordCount(), 0);
    table_.DeleteIndex(L"I");
    table_.DeleteField(L"b");
    EXPECT_EQ(codeOf([&] { table_.DeleteField(L"b"); }), 3265);
    EXPECT_EQ(codeOf([&] { table_.DeleteIndex(L"I"); }), 3265);
    EXPECT_EQ(codeOf([&] { table_.GetFieldInfo(1, told); }), 3265);
    EXPECT_EQ(codeOf([&] { table_.GetIndexInfo(0, toldIndex); }), 3265);
    table_.SetName(L"Halls");
    table_.Append();
    EXPECT_EQ(table_.GetIndexCount(), 0);
    CDaoTableDefInfo info;
    db_.GetTableDefInfo(L"Halls", info);
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"Rooms", info); }), 3265);
}

// --- tables that are there ---

TEST_F(DaoTableDefTest, FieldsAndIndexesAreAddedUnderAnOpenRecordset) {
    makeRooms();
    addRooms({L"Hall", L"Attic", L"Hall"});
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    rows.Move(1);
    table_.Open(L"ROOMS");
    EXPECT_EQ(table_.GetName(), L"Rooms");
    EXPECT_EQ(table_.GetRecordCount(), 3);
    CDaoFieldInfo kind = requiredField(L"Kind", dbText, 10, L"\"flat\"");
    table_.CreateField(kind);
    CDaoIndexInfo index = indexOver(L"Kind", {{L"Kind", false}});
    table_.CreateIndex(index);
    table_.Close();
    EXPECT_FALSE(table_.IsOpen());
    EXPECT_EQ(at(rows), L"Attic");
    EXPECT_EQ(rows.GetFieldCount(), 8);
    CDaoFieldInfo info;
    rows.GetFieldInfo(7, info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_strName, L"Kind");
    EXPECT_TRUE(info.m_bRequired);
    EXPECT_EQ(info.m_strDefaultValue, L"\"flat\"");
    EXPECT_EQ(shown(rows.GetFieldValue(7)), L"Null");
    append(rows, {{L"Name", text(L"Kitchen")}});
    EXPECT_EQ(shown(rows.GetFieldValue(L"Kind")), L"flat");
    EXPECT_EQ(rows.GetIndexCount(), 7);
    rows.SetCurrentIndex(L"Kind");
    rows.MoveLast();
    EXPECT_EQ(at(rows), L"Kitchen");

    table_.Open(L"Rooms");
    CDaoIndexInfo again = indexOver(L"KIND", {{L"Kind", false}});
    EXPECT_EQ(codeOf([&] { table_.CreateIndex(again); }), 3284);
    CDaoIndexInfo second = indexOver(L"Second", {{L"Kind", false}}, true, true);
    EXPECT_EQ(codeOf([&] { table_.CreateIndex(second); }), 3283);
    CDaoIndexInfo unique = indexOver(L"Unique", {{L"Name", false}}, true);
    EXPECT_EQ(codeOf([&] { table_.CreateIndex(unique); }), 3022);
    CDaoIndexInfo unknown = indexOver(L"Unknown", {{L"None", false}});
    EXPECT_EQ(codeOf([&] { table_.CreateIndex(unknown); }), 3409);
    EXPECT_EQ(codeOf([&] { table_.DeleteField(L"Kind"); }), 3280);
    table_.DeleteIndex(L"Kind");
    table_.DeleteField(L"Kind");
    EXPECT_EQ(codeOf([&] { table_.DeleteIndex(L"Kind"); }), 3265);
    EXPECT_EQ(codeOf([&] { table_.DeleteField(L"Kind"); }), 3265);
    EXPECT_EQ(table_.GetFieldCount(), 7);
    EXPECT_EQ(rows.GetFieldCount(), 7);
}

TEST_F(DaoTableDefTest, ATableIsRenamedUnlessItIsOpen) {
    makeRooms();
    addRooms({L"Hall"});
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    table_.Open(L"Rooms");
    EXPECT_EQ(codeOf([&] { table_.SetName(L"Halls"); }), 3211);
    EXPECT_EQ(table_.GetName(), L"Rooms");
    rows.Close();
    table_.SetName(L"Halls");
    EXPECT_EQ(table_.GetName(), L"Halls");
    EXPECT_EQ(table_.GetFieldCount(), 7);
    makeTable(db_, L"Doors", {field(L"A", dbLong)});
    EXPECT_EQ(codeOf([&] { table_.SetName(L"doors"); }), 3010);
    EXPECT_EQ(codeOf([&] { table_.SetName(L"a.b"); }), 3125);
    table_.SetName(L"HALLS");
    rows.Open(dbOpenTable, L"halls");
    EXPECT_EQ(at(rows), L"Hall");
    EXPECT_EQ(codeOf([&] { table_.Open(L"Rooms"); }), 3265);
    EXPECT_FALSE(table_.IsOpen());
}

// --- links ---

class DaoLinkTest : public DaoTableDefTest {
  protected:
    DaoLinkTest() {
        CDaoDatabase far;
        far.Create(path("far.mdb"), englishLocale);
        makeTable(far, L"Rooms", {field(L"Name", dbText, 20), field(L"Area", dbDouble)},
                  {indexOver(L"Name", {{L"Name", false}})});
        CDaoRecordset rows(&far);
        rows.Open(dbOpenTable, L"Rooms");
        append(rows, {{L"Name", text(L"Hall")}});
        rows.Close();
        far.Close();
        std::filesystem::copy_file(folder_ / "far.mdb", folder_ / "farther.mdb");
    }

    void link(const wchar_t* name, const std::wstring& file, const wchar_t* source) {
        table_.Create(name, 0, source, L";DATABASE=" + file);
        table_.Append();
        table_.RefreshLink();
        table_.Close();
    }
};

TEST_F(DaoLinkTest, ALinkedTableIsReadThroughASnapshot) {
    link(L"Far rooms", path() + L"\\FAR.mdb", L"rooms");
    CDaoTableDefInfo info;
    db_.GetTableDefInfo(L"far rooms", info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_strName, L"Far rooms");
    EXPECT_NE(info.m_lAttributes & dbAttachedTable, 0);
    EXPECT_EQ(info.m_strConnect, L";DATABASE=" + path() + L"\\FAR.mdb");
    EXPECT_EQ(info.m_strSrcTableName, L"rooms");
    EXPECT_FALSE(info.m_bUpdatable);
    EXPECT_EQ(info.m_lRecordCount, -1);
    table_.Open(L"Far rooms");
    EXPECT_EQ(table_.GetConnect(), info.m_strConnect);
    EXPECT_EQ(table_.GetSourceTableName(), L"rooms");
    EXPECT_NE(table_.GetAttributes() & dbAttachedTable, 0);
    EXPECT_EQ(table_.GetRecordCount(), -1);
    EXPECT_EQ(table_.GetFieldCount(), 2);
    EXPECT_EQ(table_.GetIndexCount(), 1);
    EXPECT_EQ(codeOf([&] { table_.CreateField(L"More", dbLong, 4); }), 3057);
    CDaoRecordset rows(&db_);
    EXPECT_EQ(codeOf([&] { rows.Open(dbOpenTable, L"Far rooms"); }), 3219);
    rows.Open(dbOpenSnapshot, L"Far rooms");
    EXPECT_EQ(rows.GetName(), L"Far rooms");
    EXPECT_EQ(at(rows), L"Hall");
    CDaoFieldInfo field;
    rows.GetFieldInfo(L"Name", field, AFX_DAO_ALL_INFO);
    EXPECT_EQ(field.m_strSourceTable, L"Rooms");
    EXPECT_TRUE(field.m_bAllowZeroLength);
    rows.Close();
    db_.DeleteTableDef(L"Far rooms");
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"Far rooms", info); }), 3265);
    CDaoDatabase far;
    far.Open(path("far.mdb"));
    far.GetTableDefInfo(L"Rooms", info);
}

TEST_F(DaoLinkTest, ALinkToNothingIsNotMade) {
    EXPECT_EQ(codeOf([&] { link(L"L", path("none.mdb"), L"Rooms"); }), 3024);
    EXPECT_EQ(codeOf([&] { link(L"L", path("none/far.mdb"), L"Rooms"); }), 3044);
    const Thrown noTable = thrownBy([&] { link(L"L", path("far.mdb"), L"None"); });
    EXPECT_EQ(noTable.code, 3011);
    EXPECT_NE(noTable.text.find(L"'None'"), std::wstring::npos);
    EXPECT_EQ(codeOf([&] { link(L"L", L"", L"Rooms"); }), 3321);
    write("text.mdb", std::string(5000, 'x'));
    EXPECT_EQ(codeOf([&] { link(L"L", path("text.mdb"), L"Rooms"); }), 3343);
    CDaoTableDefInfo info;
    EXPECT_EQ(codeOf([&] { db_.GetTableDefInfo(L"L", info); }), 3265);
    makeRooms();
    EXPECT_EQ(codeOf([&] { link(L"rooms", path("far.mdb"), L"Rooms"); }), 3010);
    table_.Open(L"Rooms");
    EXPECT_EQ(codeOf([&] { table_.RefreshLink(); }), 3219);
}

TEST_F(DaoLinkTest, ARelativePathIsTakenFromTheDatabasesFolder) {
    link(L"L", L"far.mdb", L"Rooms");
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenSnapshot, L"L");
    EXPECT_EQ(at(rows), L"Hall");
}

TEST_F(DaoLinkTest, ALinkIsRefreshedAndLedElsewhere) {
    link(L"L", path("far.mdb"), L"Rooms");
    std::filesystem::remove(folder_ / "far.mdb");
    table_.Open(L"L");
    EXPECT_EQ(codeOf([&] { table_.RefreshLink(); }), 3024);
    const std::wstring farther = L";DATABASE=" + path("farther.mdb");
    table_.SetConnect(L";DATABASE=" + path("none.mdb"));
    EXPECT_EQ(codeOf([&] { table_.RefreshLink(); }), 3024);
    table_.SetConnect(farther);
    CDaoTableDefInfo info;
    db_.GetTableDefInfo(L"L", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_NE(info.m_strConnect, farther) << "not yet";
    table_.RefreshLink();
    db_.GetTableDefInfo(L"L", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_EQ(info.m_strConnect, farther);
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenSnapshot, L"L");
    EXPECT_EQ(at(rows), L"Hall");
    EXPECT_EQ(codeOf([&] { table_.SetName(L"M"); }), 3211);
    rows.Close();
    table_.SetName(L"M");
    rows.Open(dbOpenSnapshot, L"M");
    EXPECT_EQ(at(rows), L"Hall");
}

}  // namespace
}  // namespace sg

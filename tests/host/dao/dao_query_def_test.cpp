// Stored and temporary queries: made, changed, told about and executed.

#include "host/dao/dao_fixture.h"
#include "platform/dao/query_def.h"

namespace sg {
namespace {

class DaoQueryDefTest : public DaoTest {
  protected:
    DaoQueryDefTest() {
        makeRooms();
        addRooms({L"Hall", L"Attic", L"Kitchen"});
        db_.Execute(L"UPDATE Rooms SET Level = 2, Area = 10 * Id");
    }

    void store(const wchar_t* name, const wchar_t* sql) {
        CDaoQueryDef query(&db_);
        query.Create(name, sql);
        query.Append();
    }
    std::wstring storedText(const wchar_t* name) {
        CDaoQueryDef query(&db_);
        query.Open(name);
        return query.GetSQL();
    }
    // All rows of a query, values between blanks and rows between "; ".
    std::wstring rowsOf(const std::wstring& source) {
        CDaoRecordset rows(&db_);
        rows.Open(dbOpenSnapshot, source);
        std::wstring all;
        for (; !rows.IsEOF(); rows.MoveNext()) {
            all += all.empty() ? L"" : L"; ";
            for (int i = 0; i < rows.GetFieldCount(); ++i)
                all += (i == 0 ? L"" : L" ") + shown(rows.GetFieldValue(i));
        }
        return all;
    }
    void reopen(bool readOnly) {
        db_.Close();
        db_.Open(path("plan.mdb"), false, readOnly);
    }
};

// --- making and changing ---

TEST_F(DaoQueryDefTest, ATemporaryQueryIsKeptNowhere) {
    CDaoQueryDef query(&db_);
    EXPECT_FALSE(query.IsOpen());
    query.Create(L"", L"select * from Rooms");
    EXPECT_TRUE(query.IsOpen());
    EXPECT_EQ(query.GetName(), L"");
    EXPECT_EQ(query.GetSQL(), L"select * from Rooms");
    EXPECT_EQ(query.GetType(), dbQSelect);
    query.SetSQL(L"DELETE FROM Rooms");
    EXPECT_EQ(query.GetType(), dbQDelete);
    EXPECT_EQ(codeOf([&] { query.SetSQL(L"DELETE Rooms"); }), 3128);
    EXPECT_EQ(query.GetSQL(), L"DELETE FROM Rooms");
    EXPECT_EQ(codeOf([&] { query.Append(); }), 3125);
    query.Close();
    EXPECT_FALSE(query.IsOpen());
    EXPECT_EQ(db_.GetQueryDefCount(), 0);
    EXPECT_EQ(codeOf([&] { query.Create(L"", L"Rooms"); }), 3129);
    EXPECT_FALSE(query.IsOpen());
}

TEST_F(DaoQueryDefTest, AnAppendedQueryIsStored) {
    CDaoQueryDef query(&db_);
    query.Create(L"Low", L"SELECT Name FROM Rooms WHERE Area < 15");
    EXPECT_EQ(db_.GetQueryDefCount(), 0);
    query.SetName(L"Small rooms");
    query.Append();
    EXPECT_EQ(db_.GetQueryDefCount(), 1);
    EXPECT_EQ(codeOf([&] { query.Append(); }), 3367);
    EXPECT_EQ(rowsOf(L"Small rooms"), L"Hall");

    CDaoQueryDef other(&db_);
    other.Create(L"small ROOMS", L"SELECT 1");
    EXPECT_EQ(codeOf([&] { other.Append(); }), 3012);
    other.SetName(L"rooms");
    EXPECT_EQ(codeOf([&] { other.Append(); }), 3010);
    other.Create(L"Empty");
    EXPECT_EQ(codeOf([&] { other.Append(); }), 3129);

    query.SetName(L"Smallest");
    EXPECT_EQ(query.GetName(), L"Smallest");
    EXPECT_EQ(codeOf([&] { query.SetName(L"Rooms"); }), 3010);
    EXPECT_EQ(query.GetName(), L"Smallest");
    EXPECT_EQ(codeOf([&] { query.Open(L"Small rooms"); }), 3265);
    query.Open(L"smallest");
    EXPECT_EQ(query.GetName(), L"Smallest");
}

TEST_F(DaoQueryDefTest, ANewTextIsInTheFileAtOnce) {
    store(L"Q", L"SELECT Name FROM Rooms");
    CDaoQueryDef query(&db_);
    query.Open(L"Q");
    query.SetSQL(L"UPDATE Rooms SET Open = True");
    EXPECT_EQ(query.GetType(), dbQUpdate);
    CDaoQueryDefInfo info;
    db_.GetQueryDefInfo(L"Q", info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_nType, dbQUpdate);
    EXPECT_EQ(info.m_strSQL, L"UPDATE Rooms\r\nSET Open = True;");
    EXPECT_EQ(query.GetSQL(), info.m_strSQL);
    EXPECT_EQ(codeOf([&] { query.SetSQL(L"UPDATE Rooms"); }), 3144);
    EXPECT_EQ(query.GetSQL(), info.m_strSQL);
    EXPECT_EQ(storedText(L"Q"), info.m_strSQL);

    reopen(true);
    query.Open(L"Q");
    EXPECT_FALSE(query.CanUpdate());
    EXPECT_EQ(codeOf([&] { query.SetSQL(L"SELECT 1"); }), 3027);
    EXPECT_EQ(codeOf([&] { query.SetName(L"R"); }), 3027);
    EXPECT_EQ(query.GetName(), L"Q");
    query.Create(L"R", L"SELECT 1");
    EXPECT_TRUE(query.CanUpdate());
    EXPECT_EQ(codeOf([&] { query.Append(); }), 3027);
    EXPECT_EQ(storedText(L"Q"), info.m_strSQL);
}

TEST_F(DaoQueryDefTest, EveryKindHasItsType) {
    const std::pair<const wchar_t*, int16_t> kinds[] = {
        {L"SELECT * FROM Rooms", dbQSelect},
        {L"TRANSFORM Count(*) SELECT Name FROM Rooms GROUP BY Name PIVOT Level", dbQCrosstab},
        {L"DELETE * FROM Rooms", dbQDelete},
        {L"UPDATE Rooms SET Level = 1", dbQUpdate},
        {L"INSERT INTO Rooms (Name) VALUES ('x')", dbQAppend},
        {L"SELECT * INTO Copy FROM Rooms", dbQMakeTable},
        {L"DROP TABLE Rooms", dbQDDL},
        {L"SELECT Id FROM Rooms UNION SELECT Level FROM Rooms", dbQSetOperation},
    };
    for (const auto& [sql, type] : kinds) {
        CDaoQueryDef query(&db_);
        query.Create(L"Q" + std::to_wstring(type), sql);
        EXPECT_EQ(query.GetType(), type);
        query.Append();
        EXPECT_EQ(query.GetType(), type);
    }
}

TEST_F(DaoQueryDefTest, WhatIsClosedCannotBeUsed) {
    store(L"Q", L"SELECT Name FROM Rooms");
    CDaoQueryDef query(&db_);
    EXPECT_EQ(codeOf([&] { query.SetSQL(L"SELECT 1"); }), 3420);
    query.Open(L"Q");
    reopen(false);
    EXPECT_FALSE(query.IsOpen());
    EXPECT_EQ(query.GetSQL(), L"");
    EXPECT_EQ(codeOf([&] { query.Execute(); }), 3420);
    EXPECT_EQ(codeOf([&] { query.GetParameterCount(); }), 3420);
    CDaoRecordset rows(&db_);
    EXPECT_EQ(codeOf([&] { rows.Open(&query, dbOpenSnapshot); }), 3420);
    query.Open(L"Q");
    rows.Open(&query, dbOpenSnapshot);
    db_.Close();
    EXPECT_FALSE(rows.IsOpen());
    EXPECT_EQ(codeOf([&] { query.Create(); }), 3420);
    EXPECT_EQ(codeOf([&] { CDaoQueryDef(nullptr).Open(L"Q"); }), 3420);
}

// --- parameters and fields ---

TEST_F(DaoQueryDefTest, ParametersByNameAndPlace) {
    store(L"Q",
          L"PARAMETERS [of level] Short, [Forms]![Main]![day] DateTime; SELECT Name FROM Rooms "
          L"WHERE Level = [of level] AND Area > least AND Nz(Built, 0) < Forms!Main!day");
    CDaoQueryDef query(&db_);
    query.Open(L"Q");
    ASSERT_EQ(query.GetParameterCount(), 3);
    const std::pair<const wchar_t*, int16_t> expected[] = {
        {L"of level", dbInteger}, {L"Forms!Main!day", dbDate}, {L"least", dbText}};
    for (int i = 0; i < 3; ++i) {
        CDaoParameterInfo info;
        query.GetParameterInfo(i, info, AFX_DAO_SECONDARY_INFO);
        EXPECT_EQ(info.m_strName, expected[i].first);
        EXPECT_EQ(info.m_nType, expected[i].second);
        EXPECT_EQ(info.m_varValue.vt, VT_EMPTY);
    }
    CDaoRecordset rows(&db_);
    query.SetParamValue(L"[OF LEVEL]", text(L"2"));
    EXPECT_EQ(thrownBy([&] { rows.Open(&query, dbOpenSnapshot); }).text,
              L"Too few parameters. Expected 2.");
    query.SetParamValue(L"[Forms]![Main]![Day]", real(40000.5));
    query.SetParamValue(2, real(15));
    EXPECT_EQ(shown(query.GetParamValue(0)), L"I2 2");
    EXPECT_EQ(shown(query.GetParamValue(L"forms!main!day")), L"DATE 40000.500000");
    EXPECT_EQ(shown(query.GetParamValue(L"[least]")), L"R8 15.000000");
    rows.Open(&query, dbOpenSnapshot);
    EXPECT_EQ(rows.GetRecordCount(), 2);
    query.SetParamValue(2, number(25));
    rows.Open(&query, dbOpenSnapshot);
    EXPECT_EQ(at(rows), L"Kitchen");
    query.SetParamValue(L"of level", COleVariant::null());
    rows.Open(&query, dbOpenSnapshot);
    EXPECT_EQ(at(rows), L"empty");

    EXPECT_EQ(codeOf([&] { query.SetParamValue(L"none", number(1)); }), 3265);
    EXPECT_EQ(codeOf([&] { query.GetParamValue(L"Name"); }), 3265);
    for (const int place : {-1, 3})
        EXPECT_EQ(codeOf([&] { query.SetParamValue(place, number(1)); }), 3265);
    EXPECT_EQ(codeOf([&] { query.SetParamValue(L"of level", text(L"second")); }), 3421);
    query.SetSQL(L"SELECT Name FROM Rooms WHERE Level = [of level]");
    EXPECT_EQ(query.GetParamValue(0).vt, VT_EMPTY);
}

TEST_F(DaoQueryDefTest, ParametersWithoutNames) {
    CDaoQueryDef query(&db_);
    query.Create(L"", L"SELECT Name FROM Rooms WHERE Id > ? AND Id < ?");
    ASSERT_EQ(query.GetParameterCount(), 2);
    CDaoRecordset rows(&db_);
    query.SetParamValue(1, number(3));
    EXPECT_EQ(codeOf([&] { rows.Open(&query); }), 3061);
    query.SetParamValue(0, number(1));
    rows.Open(&query);
    EXPECT_EQ(at(rows), L"Attic");
}

TEST_F(DaoQueryDefTest, FieldsAreKnownBeforeItRuns) {
    CDaoQueryDef query(&db_);
    query.Create(L"", L"SELECT Name AS what, Id, Area * factor FROM Rooms");
    ASSERT_EQ(query.GetFieldCount(), 3);
    CDaoFieldInfo info;
    query.GetFieldInfo(0, info, AFX_DAO_SECONDARY_INFO);
    EXPECT_EQ(info.m_strName, L"what");
    EXPECT_EQ(info.m_nType, dbText);
    EXPECT_EQ(info.m_lSize, 20);
    EXPECT_EQ(info.m_strSourceTable, L"Rooms");
    EXPECT_EQ(info.m_strSourceField, L"Name");
    query.GetFieldInfo(L"EXPR1002", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_EQ(info.m_strSourceTable, L"");
    EXPECT_EQ(codeOf([&] { query.GetFieldInfo(3, info); }), 3265);
    query.SetSQL(L"DELETE FROM Rooms");
    EXPECT_EQ(query.GetFieldCount(), 0);
    query.SetSQL(L"SELECT * FROM Nothing");
    EXPECT_EQ(codeOf([&] { query.GetFieldCount(); }), 3078);
}

// --- running ---

TEST_F(DaoQueryDefTest, ExecuteTellsHowManyRecords) {
    CDaoQueryDef query(&db_);
    query.Create(L"", L"UPDATE Rooms SET Area = Area * factor WHERE Id > 1");
    EXPECT_EQ(codeOf([&] { query.Execute(); }), 3061);
    query.SetParamValue(L"factor", number(2));
    query.Execute(dbFailOnError);
    EXPECT_EQ(query.GetRecordsAffected(), 2);
    EXPECT_EQ(rowsOf(L"SELECT Area FROM Rooms"), L"R8 10.000000; R8 40.000000; R8 60.000000");
    query.SetSQL(L"SELECT * FROM Rooms");
    EXPECT_EQ(codeOf([&] { query.Execute(); }), 3065);
    EXPECT_EQ(query.GetRecordsAffected(), 0);
}

TEST_F(DaoQueryDefTest, RefusedRowsUndoAllOrAreLeftOut) {
    const wchar_t* const sql = L"INSERT INTO Rooms (Id, Name) SELECT Id + 2, Name FROM Rooms";
    CDaoQueryDef query(&db_);
    query.Create(L"", sql);
    EXPECT_EQ(codeOf([&] { query.Execute(dbFailOnError); }), 3022);
    EXPECT_EQ(query.GetRecordsAffected(), 0);
    EXPECT_EQ(rowsOf(L"SELECT Count(*) FROM Rooms"), L"I4 3");
    query.Execute(0);
    EXPECT_EQ(query.GetRecordsAffected(), 2);
    EXPECT_EQ(rowsOf(L"SELECT Id, Name FROM Rooms WHERE Id > 2"),
              L"I4 3 Kitchen; I4 4 Attic; I4 5 Kitchen");
    EXPECT_EQ(codeOf([&] { db_.Execute(sql); }), 3022);
    db_.Execute(sql, 0);
    EXPECT_EQ(db_.GetRecordsAffected(), 2);
}

TEST_F(DaoQueryDefTest, TheDatabaseExecutesTextsAndStoredQueries) {
    store(L"Lower", L"UPDATE Rooms SET Level = Level - 1");
    store(L"All", L"SELECT * FROM Rooms");
    db_.Execute(L"lower");
    EXPECT_EQ(db_.GetRecordsAffected(), 3);
    db_.Execute(L"EXECUTE Lower");
    EXPECT_EQ(rowsOf(L"SELECT DISTINCT Level FROM Rooms"), L"I2 0");
    db_.Execute(L"CREATE TABLE Doors (Id COUNTER PRIMARY KEY, Room LONG)");
    EXPECT_EQ(db_.GetRecordsAffected(), 0);
    db_.Execute(L"SELECT Id, Name INTO Names FROM Rooms");
    EXPECT_EQ(db_.GetRecordsAffected(), 3);

    struct Case {
        const wchar_t* sql;
        int32_t code;
    };
    const Case wrong[] = {
        {L"All", 3065},
        {L"SELECT * FROM Rooms", 3065},
        {L"Nothing", 3078},
        {L"UPDATE Nothing SET a = 1", 3078},
        {L"UPDATE Rooms SET Level = [what]", 3061},
        {L"DELETE * FORM Rooms", 3130},
        {L"", 3078},
    };
    for (const Case& c : wrong)
        EXPECT_EQ(codeOf([&] { db_.Execute(c.sql); }), c.code) << c.sql;

    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Names");
    for (const wchar_t* sql : {L"DROP TABLE Names", L"ALTER TABLE Names ADD COLUMN a LONG",
                               L"CREATE INDEX i ON Names (Id)"})
        EXPECT_EQ(codeOf([&] { db_.Execute(sql); }), 3211) << sql;
    rows.Close();
    db_.Execute(L"DROP TABLE Names");
    reopen(true);
    EXPECT_EQ(codeOf([&] { db_.Execute(L"DELETE FROM Rooms"); }), 3027);
    EXPECT_EQ(codeOf([&] { db_.Execute(L"DROP TABLE Doors"); }), 3027);
}

}  // namespace
}  // namespace sg

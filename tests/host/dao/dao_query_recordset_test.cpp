// Recordsets on queries, and queries as a program asks them: by text, by name with parameters.

#include "host/dao/dao_fixture.h"
#include "platform/dao/query_def.h"

namespace sg {
namespace {

class DaoQueryRecordsetTest : public DaoTest {
  protected:
    DaoQueryRecordsetTest() {
        makeRooms();
        addRooms({L"Hall", L"Attic", L"Kitchen"});
        db_.Execute(L"UPDATE Rooms SET Level = Id MOD 2, Area = 10.5 * Id, Open = (Id = 2)");
    }

    void store(const wchar_t* name, const wchar_t* sql) {
        CDaoQueryDef query(&db_);
        query.Create(name, sql);
        query.Append();
    }

    CDaoRecordset rows_{&db_};
};

// --- what opens ---

TEST_F(DaoQueryRecordsetTest, SourcesAreTablesQueriesAndTexts) {
    store(L"Low", L"SELECT Name, Area FROM Rooms WHERE Area < 20");
    struct Case {
        int32_t type;
        const wchar_t* source;
        int16_t opened;  // type
        int32_t count;
        bool canUpdate;
    };
    const Case cases[] = {
        {dbOpenSnapshot, L"Rooms", dbOpenSnapshot, 3, false},
        {dbOpenSnapshot, L"low", dbOpenSnapshot, 1, false},
        {dbOpenSnapshot, L" select * from Low;", dbOpenSnapshot, 1, false},
        {dbOpenSnapshot, L"TABLE Rooms", dbOpenSnapshot, 3, false},
        {dbOpenSnapshot, L"(SELECT 1) UNION ALL SELECT 1", dbOpenSnapshot, 2, false},
        {dbOpenSnapshot, L"PARAMETERS p Long; SELECT 1 FROM Low WHERE p = 1", 0, 3061, false},
        {dbOpenDynaset, L"Rooms", dbOpenDynaset, 3, true},
        {dbOpenDynaset, L"Low", dbOpenDynaset, 1, false},
        {AFX_DAO_USE_DEFAULT_TYPE, L"Rooms", dbOpenTable, 3, true},
        {AFX_DAO_USE_DEFAULT_TYPE, L"Low", dbOpenDynaset, 1, false},
        {AFX_DAO_USE_DEFAULT_TYPE, L"SELECT * FROM Rooms", dbOpenDynaset, 3, false},
        {dbOpenTable, L"Low", 0, 3011, false},
        {dbOpenSnapshot, L"Nothing", 0, 3078, false},
        {dbOpenSnapshot, L"", 0, 3078, false},
        {dbOpenSnapshot, L"SELECT", 0, 3078, false},
        {dbOpenSnapshot, L"SELECT * FROM Nothing", 0, 3078, false},
        {dbOpenSnapshot, L"SELECT * FORM Rooms", 0, 3141, false},
        {dbOpenSnapshot, L"DELETE FROM Rooms", 0, 3219, false},
        {dbOpenSnapshot, L"SELECT * INTO Copy FROM Rooms", 0, 3219, false},
        {8, L"SELECT * FROM Rooms", 0, 3001, false},
    };
    for (const Case& c : cases) {
        const int32_t code = codeOf([&] { rows_.Open(c.type, c.source); });
        EXPECT_EQ(rows_.IsOpen(), c.opened != 0) << c.source;
        if (!rows_.IsOpen()) {
            EXPECT_EQ(code, c.count) << c.source;
            EXPECT_EQ(rows_.GetName(), L"");
            continue;
        }
        EXPECT_EQ(rows_.GetName(), c.source);
        EXPECT_EQ(rows_.GetType(), c.opened) << c.source;
        EXPECT_EQ(rows_.GetRecordCount(), c.count) << c.source;
        EXPECT_EQ(rows_.CanUpdate(), c.canUpdate) << c.source;
    }
    EXPECT_EQ(codeOf([&] { rows_.Open(static_cast<CDaoQueryDef*>(nullptr)); }), 3001);
}

TEST_F(DaoQueryRecordsetTest, ADynasetOfATableIsItsRecords) {
    rows_.Open(dbOpenDynaset, L"Rooms");
    EXPECT_EQ(codeOf([&] { rows_.SetCurrentIndex(L"Name"); }), 3251);
    EXPECT_EQ(codeOf([&] { rows_.GetIndexCount(); }), 3251);
    const COleVariant key = text(L"Hall");
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", &key); }), 3251);
    append(rows_, {{L"Name", text(L"Cellar")}});
    EXPECT_EQ(at(rows_), L"Cellar");
    rows_.Edit();
    EXPECT_EQ(rows_.GetEditMode(), dbEditInProgress);
    rows_.SetFieldValue(L"Name", text(L"Vault"));
    rows_.Update();
    EXPECT_EQ(at(rows_), L"Vault");
    rows_.Delete();
    EXPECT_EQ(rows_.GetRecordCount(), 3);
    rows_.Open(dbOpenDynaset, L"Rooms", dbReadOnly);
    EXPECT_FALSE(rows_.CanUpdate());
    EXPECT_EQ(codeOf([&] { rows_.Edit(); }), 3027);
}

TEST_F(DaoQueryRecordsetTest, ADynasetOfALinkIsTheOtherFilesRecords) {
    CDaoDatabase other;
    other.Create(path("other.mdb"), englishLocale);
    makeTable(other, L"Far", {field(L"Name", dbText, 10)});
    other.Close();
    CDaoTableDef link(&db_);
    link.Create(L"Near", 0, L"Far", L";DATABASE=" + path("other.mdb"));
    link.Append();
    link.Close();
    rows_.Open(AFX_DAO_USE_DEFAULT_TYPE, L"Near");
    EXPECT_EQ(rows_.GetType(), dbOpenDynaset);
    append(rows_, {{L"Name", text(L"far away")}});
    EXPECT_EQ(at(rows_), L"far away");
    rows_.Open(dbOpenSnapshot, L"SELECT Name & '!' AS Name FROM Near");
    EXPECT_EQ(at(rows_), L"far away!");
}

TEST_F(DaoQueryRecordsetTest, ResultsAreOnlyRead) {
    struct Case {
        int32_t type;
        int32_t code;
    };
    for (const Case& c : {Case{dbOpenSnapshot, 3251}, Case{dbOpenDynaset, 3027}}) {
        rows_.Open(c.type, L"SELECT * FROM Rooms");
        EXPECT_EQ(codeOf([&] { rows_.AddNew(); }), c.code);
        EXPECT_EQ(codeOf([&] { rows_.Edit(); }), c.code);
        EXPECT_EQ(codeOf([&] { rows_.Delete(); }), c.code);
        EXPECT_EQ(codeOf([&] { rows_.Update(); }), c.code);
        EXPECT_EQ(codeOf([&] { rows_.SetFieldValue(0, number(1)); }), c.code);
        EXPECT_EQ(codeOf([&] { rows_.GetCurrentIndex(); }), 3251);
        EXPECT_EQ(rows_.GetEditMode(), dbEditNone);
    }
}

// The rows are those of the moment of opening; moving works as on a table's snapshot.
TEST_F(DaoQueryRecordsetTest, Moving) {
    rows_.Open(dbOpenSnapshot, L"SELECT Name FROM Rooms ORDER BY Name DESC");
    db_.Execute(L"DELETE FROM Rooms");
    EXPECT_EQ(at(rows_), L"Kitchen");
    rows_.MoveLast();
    EXPECT_EQ(at(rows_), L"Attic");
    const COleVariant here = rows_.GetBookmark();
    rows_.MovePrev();
    EXPECT_EQ(at(rows_), L"Hall");
    rows_.Move(5);
    EXPECT_EQ(at(rows_), L"EOF");
    EXPECT_EQ(codeOf([&] { rows_.MoveNext(); }), 3021);
    rows_.SetBookmark(here);
    EXPECT_EQ(at(rows_), L"Attic");
    rows_.Open(dbOpenSnapshot, L"SELECT Name FROM Rooms");
    EXPECT_EQ(at(rows_), L"empty");
}

TEST_F(DaoQueryRecordsetTest, FieldsAreTheResultsColumns) {
    db_.Execute(L"CREATE TABLE Levels (Id LONG, Name TEXT(7))");
    db_.Execute(L"INSERT INTO Levels VALUES (1, 'Ground')");
    rows_.Open(
        dbOpenSnapshot,
        L"SELECT r.Id AS number, l.Name, r.Name, Area, Open, Notes, Count(*) AS n, Built + 1 "
        L"FROM Rooms AS r INNER JOIN Levels AS l ON r.Level = l.Id GROUP BY r.Id, l.Name, "
        L"r.Name, Area, Open, Notes, Built");
    struct Expected {
        const wchar_t* name;
        int16_t type;
        int32_t size;
        int32_t attributes;
        const wchar_t* table;
        const wchar_t* field;
    };
    const Expected expected[] = {
        {L"number", dbLong, 4, dbFixedField | dbAutoIncrField, L"Rooms", L"Id"},
        {L"l.Name", dbText, 7, dbVariableField, L"Levels", L"Name"},
        {L"r.Name", dbText, 20, dbVariableField, L"Rooms", L"Name"},
        {L"Area", dbDouble, 8, dbFixedField, L"Rooms", L"Area"},
        {L"Open", dbBoolean, 1, dbFixedField, L"Rooms", L"Open"},
        {L"Notes", dbMemo, 0, dbVariableField, L"Rooms", L"Notes"},
        {L"n", dbLong, 4, dbFixedField, L"", L""},
        {L"Expr1007", dbDate, 8, dbFixedField, L"", L""},
    };
    ASSERT_EQ(rows_.GetFieldCount(), 8);
    for (int i = 0; i < 8; ++i) {
        const Expected& e = expected[i];
        CDaoFieldInfo info;
        rows_.GetFieldInfo(i, info, AFX_DAO_SECONDARY_INFO);
        EXPECT_EQ(info.m_strName, e.name);
        EXPECT_EQ(info.m_nType, e.type) << e.name;
        EXPECT_EQ(info.m_lSize, e.size) << e.name;
        EXPECT_EQ(info.m_lAttributes, e.attributes) << e.name;
        EXPECT_EQ(info.m_strSourceTable, e.table) << e.name;
        EXPECT_EQ(info.m_strSourceField, e.field) << e.name;
        EXPECT_EQ(info.m_nOrdinalPosition, i);
        EXPECT_EQ(info.m_bAllowZeroLength, e.type == dbText || e.type == dbMemo) << e.name;
        EXPECT_EQ(info.m_lCollatingOrder, e.type == dbText || e.type == dbMemo ? 0x409 : 0);
    }
    EXPECT_EQ(shown(rows_.GetFieldValue(L"R.NAME")), L"Hall");
    EXPECT_EQ(shown(rows_.GetFieldValue(L"open")), L"false");
    EXPECT_EQ(shown(rows_.GetFieldValue(L"n")), L"I4 1");
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Notes")), L"Null");
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(L"Name"); }), 3265);
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(8); }), 3265);
    // What is told of the columns stays when their table goes.
    db_.Execute(L"DROP TABLE Levels");
    CDaoFieldInfo info;
    rows_.GetFieldInfo(1, info);
    EXPECT_EQ(info.m_strName, L"l.Name");
}

// --- as programs ask ---

// The rows of a recordset: of one field its values, of several "*NewRecord*" and names and values.
std::wstring collected(CDaoRecordset& rows) {
    if (rows.IsEOF() && rows.IsBOF()) return L"nothing";
    std::wstring all;
    const int count = rows.GetFieldCount();
    for (; !rows.IsEOF(); rows.MoveNext()) {
        if (count > 1) all += L"*NewRecord* ";
        for (int i = 0; i < count; ++i) {
            CDaoFieldInfo info;
            rows.GetFieldInfo(i, info);
            if (count > 1) all += info.m_strName + L"=";
            all += shown(rows.GetFieldValue(i)) + L" ";
        }
    }
    return all;
}

class DaoProgramTest : public DaoQueryRecordsetTest {
  protected:
    std::wstring executeSelect(const wchar_t* sql) {
        std::wstring all;
        const Thrown thrown = thrownBy([&] {
            CDaoQueryDef query(&db_);
            query.Create(L"", sql);
            CDaoRecordset rows(&db_);
            rows.Open(&query, dbOpenSnapshot);
            all = collected(rows);
            rows.Close();
            query.Close();
        });
        return thrown.code != 0 ? L"error " + std::to_wstring(thrown.code) : all;
    }
    int32_t executeActionCount(const wchar_t* sql) {
        if (!db_.CanUpdate()) return -1;
        int32_t count = 0;
        const int32_t code = codeOf([&] {
            CDaoQueryDef query(&db_);
            query.Create(L"", sql);
            query.Execute(dbFailOnError);
            count = query.GetRecordsAffected();
            query.Close();
        });
        return code != 0 ? code : count;
    }
    std::wstring runQuery(const wchar_t* name, const Pairs& parameters) {
        std::wstring all;
        const Thrown thrown = thrownBy([&] {
            CDaoQueryDef query(&db_);
            query.Open(name);
            for (const auto& [parameter, value] : parameters)
                query.SetParamValue(parameter, value);
            CDaoRecordset rows(&db_);
            rows.Open(&query, dbOpenSnapshot);
            all = collected(rows);
        });
        return thrown.code != 0 ? L"error " + std::to_wstring(thrown.code) : all;
    }
    int32_t setQuerySql(const wchar_t* name, const wchar_t* sql) {
        return codeOf([&] {
            CDaoQueryDef query(&db_);
            query.Open(name);
            query.SetSQL(sql);
            query.Close();
        });
    }
};

TEST_F(DaoProgramTest, Select) {
    EXPECT_EQ(executeSelect(L"SELECT Name FROM Rooms ORDER BY Name"), L"Attic Hall Kitchen ");
    EXPECT_EQ(executeSelect(L"SELECT Id, Open FROM Rooms WHERE Id < 3"),
              L"*NewRecord* Id=I4 1 Open=false *NewRecord* Id=I4 2 Open=true ");
    EXPECT_EQ(executeSelect(L"SELECT Id, Open FROM Rooms WHERE Id = 9"), L"nothing");
    EXPECT_EQ(executeSelect(L"SELECT Max(Area) FROM Rooms"), L"R8 31.500000 ");
    EXPECT_EQ(executeSelect(L"SELEC Id FROM Rooms"), L"error 3129");
    EXPECT_EQ(executeSelect(L"SELECT Id FROM Rooms WHERE"), L"error 3145");
    EXPECT_EQ(executeSelect(L"SELECT Id FROM Rooms WHERE Idd = 1"), L"error 3061");
    EXPECT_EQ(executeSelect(L"DELETE FROM Rooms"), L"error 3219");
    db_.Close();
    EXPECT_EQ(executeSelect(L"SELECT Id FROM Rooms"), L"error 3420");
}

TEST_F(DaoProgramTest, ActionCount) {
    EXPECT_EQ(executeActionCount(L"UPDATE Rooms SET Name = Name & '!' WHERE Id <> 2"), 2);
    EXPECT_EQ(executeActionCount(L"INSERT INTO Rooms (Name) SELECT Name FROM Rooms"), 3);
    EXPECT_EQ(
        executeActionCount(L"DELETE FROM Rooms WHERE Id NOT IN (SELECT Level FROM Rooms WHERE "
                           L"Level IS NOT NULL)"),
        5);
    EXPECT_EQ(executeActionCount(L"DELETE FROM Rooms WHERE Id = 99"), 0);
    EXPECT_EQ(executeActionCount(L"INSERT INTO Rooms (Id) VALUES (1)"), 3022);
    EXPECT_EQ(executeActionCount(L"SELECT * FROM Rooms"), 3065);
    db_.Close();
    db_.Open(path("plan.mdb"), false, true);
    EXPECT_EQ(executeActionCount(L"DELETE FROM Rooms"), -1);
}

TEST_F(DaoProgramTest, StoredQueryWithParameters) {
    store(L"Of",
          L"PARAMETERS which Long; SELECT Name FROM Rooms WHERE Level = which AND Area > least");
    const Pairs both = {{L"[which]", number(1)}, {L"LEAST", real(20)}};
    EXPECT_EQ(runQuery(L"of", both), L"Kitchen ");
    EXPECT_EQ(runQuery(L"of", {both[0]}), L"error 3061");
    EXPECT_EQ(runQuery(L"of", {both[0], {L"other", number(1)}}), L"error 3265");
    EXPECT_EQ(runQuery(L"None", {}), L"error 3265");
    EXPECT_EQ(setQuerySql(L"Of", L"SELECT Count(*) FROM Rooms WHERE Level = [which]"), 0);
    EXPECT_EQ(runQuery(L"Of", {both[0]}), L"I4 2 ");
    EXPECT_EQ(setQuerySql(L"Of", L"SELECT Count(*) FROM"), 3131);
    EXPECT_EQ(setQuerySql(L"None", L"SELECT 1"), 3265);
    EXPECT_EQ(runQuery(L"Of", {both[0]}), L"I4 2 ");
}

}  // namespace
}  // namespace sg

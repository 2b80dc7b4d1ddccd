#include "host/sql/stored/stored_query.h"

#include "host/sql/parser.h"
#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

class StoreQueryTest : public SessionTest {
  protected:
    std::string sqlOf(const wchar_t* name) { return toUtf8(database_->query(name).sql()); }
    template <class F>
    static int codeOf(F&& f) {
        try {
            f();
            return 0;
        } catch (const jet::Error& error) {
            return error.code();
        }
    }
};

TEST_F(StoreQueryTest, KeepsAndReplaces) {
    storeQuery(*database_, L"Big rooms", L"select Code from Rooms where Area > 15 ;");
    EXPECT_EQ(sqlOf(L"Big rooms"), "SELECT Code\r\nFROM Rooms\r\nWHERE Area > 15;");
    EXPECT_EQ(rows(L"SELECT * FROM [Big rooms] ORDER BY Code"), "a2; b2");
    const int32_t id = database_->query(L"Big rooms").id;

    // Of another kind; hidden queries stay hidden.
    jet::putQuery(*database_, L"Big rooms", jet::objectFlags::hidden, {});
    storeQuery(*database_, L"BIG ROOMS", L"UPDATE Rooms SET Area = Area + 1 WHERE Area > 15");
    const jet::Query stored = database_->query(L"Big rooms");
    EXPECT_EQ(stored.id, id);
    EXPECT_EQ(stored.name, L"Big rooms");
    EXPECT_EQ(stored.flags, 0x38u);
    EXPECT_EQ(stored.kind(), jet::QueryKind::Update);
    EXPECT_EQ(executed(L"EXECUTE [Big rooms]"), "2");

    // What cannot be kept changes nothing.
    const std::string before = sqlOf(L"Big rooms");
    EXPECT_EQ(codeOf([&] { storeQuery(*database_, L"Big rooms", L"SELECT FROM Rooms"); }), 3141);
    EXPECT_EQ(codeOf([&] { storeQuery(*database_, L"Big rooms", L""); }), 3129);
    EXPECT_EQ(codeOf([&] { storeQuery(*database_, L"Rooms", L"SELECT 1"); }), jet::TableExists);
    EXPECT_EQ(codeOf([&] { storeQuery(*database_, L"a.b", L"SELECT 1"); }), 3125);
    EXPECT_EQ(sqlOf(L"Big rooms"), before);
    EXPECT_EQ(database_->queries().size(), 1u);
}

TEST_F(StoreQueryTest, PassThroughTextsAreKeptUnread) {
    jet::QueryRow kind;
    kind.attribute = jet::queryAttributes::kind;
    kind.flag = static_cast<int16_t>(jet::QueryKind::PassThrough);
    kind.name1 = L"ODBC;DSN=there;";
    kind.expression = L"exec it";
    jet::putQuery(*database_, L"There", jet::catalogFlags(jet::QueryKind::PassThrough), {kind});
    storeQuery(*database_, L"There", L"select top 1 * from \"x y\" limit 3");
    const jet::Query stored = database_->query(L"There");
    EXPECT_EQ(stored.kind(), jet::QueryKind::PassThrough);
    EXPECT_EQ(stored.connect(), L"ODBC;DSN=there;");
    EXPECT_EQ(stored.sql(), L"select top 1 * from \"x y\" limit 3");
}

// Whatever is kept runs as the text itself does.
TEST_F(StoreQueryTest, RunsAsItsTextDoes) {
    const wchar_t* const texts[] = {
        L"SELECT * FROM Rooms, Levels WHERE Rooms.Level = Levels.Id ORDER BY Rooms.Id",
        L"SELECT Code, Name FROM Rooms LEFT JOIN Levels ON (Rooms.Level = Levels.Id) AND "
        L"(Levels.Height > 3) ORDER BY Rooms.Id",
        L"SELECT a.Id, b.Id, Name FROM (Rooms AS a INNER JOIN Rooms AS b ON a.Area = b.Area) LEFT "
        L"JOIN Levels ON b.Level = Levels.Id ORDER BY a.Id, b.Id",
        L"SELECT * FROM (SELECT Level, Sum(Area) AS s FROM Rooms GROUP BY Level) INNER JOIN Levels "
        L"ON Level = Id ORDER BY Id",
        L"SELECT DISTINCT TOP 2 Area FROM Rooms ORDER BY Area DESC",
        L"SELECT Level, Count(*) AS n FROM Rooms GROUP BY Level HAVING Count(*) > 1 ORDER BY 1",
        L"SELECT Id, Name FROM Levels UNION SELECT Id, Code FROM Rooms WHERE Area IN (SELECT "
        L"Max(Area) FROM Rooms) ORDER BY Id DESC, Name",
        L"TRANSFORM Sum(Area) SELECT Heated FROM Rooms GROUP BY Heated ORDER BY Heated PIVOT Level "
        L"IN (1, 2)",
    };
    for (const wchar_t* text : texts) {
        storeQuery(*database_, L"Q", text);
        EXPECT_EQ(rows(L"SELECT * FROM Q"), rows(text)) << toUtf8(text);
        EXPECT_EQ(rows(L"SELECT * FROM Q").find("error"), std::string::npos) << toUtf8(text);
    }
}

TEST_F(StoreQueryTest, Views) {
    EXPECT_EQ(executed(L"CREATE VIEW Low AS SELECT Code, Area * 2 FROM Rooms WHERE Area < 11"),
              "0");
    EXPECT_EQ(names(L"SELECT * FROM Low"), "Code,Expr1001");
    EXPECT_EQ(executed(L"CREATE VIEW Both (what, [how much]) AS SELECT Code, Area AS x FROM Rooms "
                       L"UNION SELECT Name, Height FROM Levels"),
              "0");
    EXPECT_EQ(names(L"SELECT * FROM Both"), "what,how much");
    EXPECT_EQ(rows(L"SELECT what FROM Both WHERE [how much] < 5"), "First; Ground");
    EXPECT_EQ(executed(L"CREATE VIEW low AS SELECT 1"), "error 3012");
    EXPECT_EQ(executed(L"CREATE VIEW Rooms AS SELECT 1"), "error 3010");
    EXPECT_EQ(executed(L"CREATE VIEW V (a) AS SELECT Id, Name FROM Levels"), "error 3346");
    EXPECT_EQ(executed(L"CREATE VIEW V (a) AS SELECT * FROM Levels"), "error 3346");
    EXPECT_EQ(executed(L"DROP VIEW Low"), "0");
    EXPECT_EQ(executed(L"DROP VIEW Low"), "error 3265");
    EXPECT_EQ(executed(L"DROP VIEW Rooms"), "error 3265");
    EXPECT_EQ(rows(L"SELECT * FROM Low"), "error 3078");
}

TEST_F(StoreQueryTest, Procedures) {
    EXPECT_EQ(executed(L"CREATE PROCEDURE Lift (who LONG, [by how much] DOUBLE) AS UPDATE Levels "
                       L"SET Height = Height + [by how much] WHERE Id = who"),
              "0");
    EXPECT_EQ(sqlOf(L"Lift"),
              "PARAMETERS who Long, [by how much] IEEEDouble;\r\nUPDATE Levels\r\nSET Height = "
              "Height + [by how much]\r\nWHERE Id = who;");
    EXPECT_EQ(executed(L"EXECUTE Lift 1, 0.25"), "1");
    EXPECT_EQ(executed(L"EXEC Lift 2"), "error 3061");
    EXPECT_EQ(rows(L"SELECT Height FROM Levels"), "3.75; 3; Null");
    EXPECT_EQ(executed(L"CREATE PROC Lift AS DELETE FROM Levels"), "error 3012");
    EXPECT_EQ(executed(L"CREATE PROC Of ([Forms]![Main]![id] LONG) AS DELETE FROM Levels WHERE "
                       L"Id = Forms!Main!id"),
              "0");
    EXPECT_EQ(executed(L"EXECUTE Of 3"), "1");
    EXPECT_EQ(executed(L"EXECUTE Of", {{L"forms!main!ID", int32_t(2)}}), "1");
    EXPECT_EQ(executed(L"DROP PROCEDURE Lift"), "0");
    EXPECT_EQ(executed(L"EXECUTE Lift 1, 1"), "error 3078");
}

TEST_F(StoreQueryTest, DescriptionsTellParametersAndColumns) {
    storeQuery(*database_, L"Of level",
               L"PARAMETERS [which] Short; SELECT Id, Code AS what FROM "
               L"Rooms WHERE Level = [which]");
    const auto described = [&](std::wstring_view text) {
        const Description made = session_->describe(parseStatement(text));
        std::wstring all;
        for (const auto& each : made.parameters) {
            all += each.name + (each.type ? L":" + std::to_wstring(int(*each.type)) : L"") + L" ";
        }
        for (const jet::RecordColumn& each : made.columns) {
            all += L"| " + each.name + L"=" + each.sourceTable + L"." + each.sourceColumn + L" ";
        }
        return toUtf8(all);
    };
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"SELECT q.what, Id + 1 AS n, [More] FROM [Of level] AS q WHERE q.Id < other OR other = 1",
         "which:3 More other | what=Rooms.Code | n=. | Expr1002=. "},
        {L"PARAMETERS b Long, a Text; SELECT a", "b:4 a:10 | Expr1000=. "},
        {L"SELECT Id FROM Levels UNION SELECT Id FROM Rooms", "| Id=. "},
        {L"INSERT INTO Levels (Id, Name) VALUES (?, [n])", "?1 n "},
        {L"INSERT INTO Levels (Id) SELECT Id + p FROM Rooms", "p "},
        {L"UPDATE Levels SET Name = p, Height = q WHERE Id = r", "p q r "},
        {L"DELETE FROM Levels WHERE Id = p", "p "},
        {L"SELECT p AS x INTO T FROM Levels", "p "},
        {L"EXECUTE Something p, 1", "p "},
        {L"DROP TABLE Nothing", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(described(text), expected) << toUtf8(text);
    }
    EXPECT_EQ(codeOf([&] { described(L"SELECT * FROM Nothing"); }), 3078);
}

// Rows that are refused: by a key, a required value, a size, a relation.
TEST_F(StoreQueryTest, RefusedRowsUndoAllOrAreLeftOut) {
    EXPECT_EQ(executed(L"CREATE TABLE T (Id LONG PRIMARY KEY, Word TEXT(4) NOT NULL)"), "0");
    EXPECT_EQ(executed(L"CREATE TABLE U (Id LONG REFERENCES T (Id))"), "0");
    EXPECT_EQ(executed(L"INSERT INTO T VALUES (2, 'two')"), "1");
    const auto tried = [&](const wchar_t* text, Refused refused) {
        try {
            return std::to_string(session_->execute(text, {}, refused));
        } catch (const jet::Error& error) {
            return std::string("error ") + std::to_string(error.code());
        }
    };
    struct Case {
        const wchar_t* text;
        const char* undone;
        const char* leftOut;
        const char* rows;  // of T afterwards
    };
    const Case cases[] = {
        {L"INSERT INTO T SELECT Id, 'x' AS Word FROM Rooms", "error 3022", "4",
         "1 x; 2 two; 3 x; 4 x; 5 x"},
        {L"UPDATE T SET Id = 7 WHERE Id > 3", "error 3022", "1", "1 x; 2 two; 3 x; 5 x; 7 x"},
        {L"UPDATE T SET Word = IIf(Id = 5, 'much too long', 'y') WHERE Id > 3", "error 3163", "1",
         "1 x; 2 two; 3 x; 5 x; 7 y"},
        {L"UPDATE T SET Word = IIf(Id = 3, Null, 'z') WHERE Id < 4", "error 3314", "2",
         "1 z; 2 z; 3 x; 5 x; 7 y"},
        {L"DELETE FROM T WHERE Id < 6", "error 3200", "3", "2 z; 7 y"},
    };
    for (const Case& c : cases) {
        if (std::wstring_view(c.text).starts_with(L"DELETE")) {
            ASSERT_EQ(executed(L"INSERT INTO U VALUES (2)"), "1");
        }
        const std::string before = rows(L"SELECT * FROM T ORDER BY Id");
        EXPECT_EQ(tried(c.text, Refused::UndoesAll), c.undone) << toUtf8(c.text);
        EXPECT_EQ(rows(L"SELECT * FROM T ORDER BY Id"), before);
        EXPECT_EQ(tried(c.text, Refused::IsLeftOut), c.leftOut) << toUtf8(c.text);
        EXPECT_EQ(rows(L"SELECT * FROM T ORDER BY Id"), c.rows);
    }
    // What is wrong with the statement itself fails either way.
    EXPECT_EQ(tried(L"INSERT INTO T (Nothing) VALUES (1)", Refused::IsLeftOut), "error 3127");
}

}  // namespace
}  // namespace sg::sql

// What the dialect refuses, how it names columns, and what it compares with what.

#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

using RulesTest = SessionTest;

TEST_F(RulesTest, ColumnNames) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"SELECT Id, Area * 2, Code, Id + 1 FROM Rooms", "Id,Expr1001,Code,Expr1003"},
        {L"SELECT Id, Id, id FROM Rooms", "Id,Expr1001,Expr1002"},
        {L"SELECT *, Levels.* FROM Levels", "Id,Name,Height,Expr1003,Expr1004,Expr1005"},
        {L"SELECT a.Id, b.Id, a.Id, b.Height FROM Levels AS a, Levels AS b",
         "a.Id,b.Id,Expr1002,Height"},
        {L"SELECT a.Id, Area AS Id FROM Rooms AS a", "a.Id,Id"},
        {L"SELECT Id AS a FROM Levels UNION SELECT Level AS b FROM Rooms", "a"},
        {L"SELECT x.[a.Id] FROM (SELECT a.Id, b.Id FROM Levels AS a, Levels AS b) AS x", "a.Id"},
    };
    for (const auto& [text, wanted] : cases) {
        EXPECT_EQ(names(text), wanted) << toUtf8(text);
    }
    EXPECT_EQ(rows(L"SELECT a.Id, Height FROM Levels AS a, Levels AS b"), "error 3079");
}

TEST_F(RulesTest, Refusals) {
    check({
        {L"SELECT DISTINCT Code FROM Rooms ORDER BY Area", "error 3093"},
        {L"SELECT DISTINCT Code AS c FROM Rooms ORDER BY Code", "Null; A1; a2; B1; b2"},
        {L"SELECT *, Count(*) FROM Levels", "error 3121"},
        {L"SELECT * FROM Levels GROUP BY Id, Name, Height", "error 3121"},
        {L"SELECT Level FROM Rooms GROUP BY Level ORDER BY Area", "error 3122"},
        {L"SELECT Level FROM Rooms GROUP BY Level HAVING Area > 1", "error 3122"},
        {L"SELECT Id FROM Levels UNION SELECT Id FROM Rooms ORDER BY Area", "error 3351"},
        {L"SELECT Sum(Count(*)) FROM Rooms", "error 3095"},
        {L"SELECT Count(*) FROM Rooms GROUP BY Count(*)", "error 3098"},
        {L"SELECT 1 FROM Rooms r INNER JOIN Levels l ON r.Id = Max(l.Id)", "error 3099"},
        {L"SELECT a, b FROM Rooms WHERE c = [d e]", "error 3061"},
        {L"SELECT Levels.Id FROM Rooms", "error 3061"},
        {L"SELECT Levels.* FROM Rooms", "error 3078"},
        {L"SELECT * FROM Rooms r INNER JOIN Levels l ON r.Level = x.Id", "error 3061"},
    });
}

TEST_F(RulesTest, KindsThatCannotBeCompared) {
    check({
        {L"SELECT Id FROM Rooms WHERE Id = '3'", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Code > 3", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Built = '2017-01-31'", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Heated = 'True'", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Id IN (1, '2')", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Id BETWEEN 1 AND '2'", "error 3464"},
        {L"SELECT Id FROM Rooms WHERE Id IN (SELECT Name FROM Levels)", "error 3464"},
        {L"SELECT r.Id FROM Rooms r INNER JOIN Levels l ON r.Code = l.Id", "error 3615"},
        {L"SELECT Id FROM (SELECT Id, Code AS c FROM Rooms) AS s WHERE c = -1", "error 3464"},
        // What is calculated is read as the other side asks.
        {L"SELECT Id FROM Rooms WHERE Id & '' = 3", "3"},
        {L"SELECT Id FROM Rooms WHERE Code = Null", ""},
    });
    EXPECT_EQ(rows(L"SELECT Id FROM Rooms WHERE Id = [which]", {{L"which", L"3"}}), "3");
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id) VALUES ('seven')"), "error 3464");
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id) VALUES ('7')"), "1");
    EXPECT_EQ(executed(L"UPDATE Rooms SET Built = 'soon'"), "error 3464");
}

TEST_F(RulesTest, Subqueries) {
    check({
        {L"SELECT Id FROM Rooms WHERE Area = (SELECT Area FROM Rooms WHERE Level = 1)",
         "error 3354"},
        {L"SELECT (SELECT Code FROM Rooms WHERE Id = 9), (SELECT Code FROM Rooms WHERE Id = 1)",
         "Null A1"},
        {L"SELECT l.Id, (SELECT r.Id FROM Rooms r WHERE r.Level = l.Id AND r.Area > 10.5 OR "
         L"r.Level = l.Id AND r.Code = 'B1') FROM Levels l",
         "1 2; 2 3; 3 Null"},
        {L"SELECT l.Id FROM Levels l WHERE 2 = (SELECT Count(*) FROM Rooms WHERE Level = l.Id)",
         "1; 2"},
        {L"SELECT Id FROM Levels WHERE Id NOT IN (SELECT Level FROM Rooms)", ""},
        {L"SELECT Id FROM Levels WHERE Id NOT IN (1, Null)", ""},
        {L"SELECT Id FROM Levels WHERE NOT Id = ANY (SELECT Level FROM Rooms)", ""},
        {L"SELECT Id FROM Levels WHERE Id > ALL (SELECT Level FROM Rooms)", ""},
        {L"SELECT Id FROM Levels WHERE Id > ALL (SELECT Level FROM Rooms WHERE Id = 9)", "1; 2; 3"},
        {L"SELECT Id FROM Levels WHERE Id <> SOME (SELECT Level FROM Rooms WHERE Id = 4)", ""},
        {L"SELECT Id FROM Levels WHERE Id * 1.5 NOT IN (SELECT Cost FROM Rooms WHERE Id < 3)",
         "1; 2; 3"},
        {L"SELECT Id FROM Levels WHERE Id * 1.5 NOT IN (SELECT Cost FROM Rooms)", ""},
        {L"SELECT Id FROM Levels WHERE Id * 1.5 IN (SELECT Cost FROM Rooms)", "1"},
        {L"SELECT Id FROM Levels WHERE EXISTS (SELECT 1 FROM Rooms WHERE Rooms.Level = Levels.Id "
         L"AND EXISTS (SELECT 2 FROM Rooms AS r WHERE r.Area = Rooms.Area AND r.Id > Rooms.Id AND "
         L"r.Level = Levels.Id))",
         "2"},
    });
}

TEST_F(RulesTest, JoinsInEveryForm) {
    check({
        {L"SELECT r.Id, l.Id FROM Rooms r INNER JOIN Levels l ON r.Level < l.Id OR r.Id = l.Id "
         L"WHERE r.Id < 3 ORDER BY 1, 2",
         "1 1; 1 2; 1 3; 2 2; 2 3"},
        {L"SELECT a.Id, b.Id, c.Id FROM Levels a, Rooms b LEFT JOIN Levels c ON b.Level = c.Id + 1 "
         L"WHERE a.Id = 3 ORDER BY b.Id",
         "3 1 Null; 3 2 Null; 3 3 1; 3 4 Null; 3 5 1"},
        {L"SELECT a.Id, b.Id FROM Levels a RIGHT JOIN (Levels b INNER JOIN Rooms c ON b.Id = "
         L"c.Level) ON a.Id = b.Id + 1 ORDER BY b.Id",
         "2 1; 2 1; 3 2; 3 2"},
        {L"SELECT a.Id, c.Id FROM (Levels a LEFT JOIN Rooms b ON a.Id = b.Level) RIGHT JOIN Levels "
         L"c ON b.Id = c.Id ORDER BY c.Id",
         "1 1; 1 2; 2 3"},
        {L"SELECT a.Id, b.Id, c.Id FROM ((Levels a INNER JOIN Levels b ON a.Id = b.Id) LEFT JOIN "
         L"Levels c ON (b.Id = c.Id) AND (c.Id > 1)) ORDER BY a.Id",
         "1 1 Null; 2 2 2; 3 3 3"},
    });
}

TEST_F(RulesTest, Texts) {
    for (const wchar_t* code : {L"a[1]", L"50%", L"x_y", L"é", L"E", L"Straße", L"z#9", L"f"}) {
        EXPECT_EQ(executed(L"INSERT INTO Rooms (Code, Level) VALUES ([c], 9)", {{L"c", code}}),
                  "1");
    }
    check({
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE 'a[[]#]'", "a[1]"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE '[]E[]'", "E"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE '[d-e]'", "E"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE '[d-f]' ORDER BY Code", "E; é; f"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE 'É'", "é"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code LIKE '?[#]#'", "z#9"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code ALIKE '5_[%]'", "50%"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code NOT ALIKE '%_%'", ""},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code ALIKE '%#%'", "z#9"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code = 'É  '", "é"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND Code > 'e' AND Code < 'fa'", "é; f"},
        {L"SELECT Code FROM Rooms WHERE Level = 9 AND UCase(Code) = 'STRASSE'", "Straße"},
        {L"SELECT 'e' < 'é', 'é' < 'f', 'a-b' < 'aa', StrComp('a', 'a '), 'a' = 'a '",
         "True True False -1 True"},
    });
}

TEST_F(RulesTest, Functions) {
    check({
        {L"SELECT Partition(25, 0, 99, 10), Partition(-3, 0, 99, 10), Partition(250, 0, 99, 10)",
         " 20: 29    : -1 100:   "},
        {L"SELECT Partition(98, 10, 98, 20), Partition(5, 0, 9, 0)", "error 3001"},
        {L"SELECT Partition(97, 10, 98, 20) & '|' & Partition(7, 1, 9, 1)", "90:98| 7: 7"},
        {L"SELECT RGB(255, 300, 1), VarType(Built), TypeName(Cost) FROM Rooms WHERE Id = 1",
         "131071 7 Currency"},
        {L"SELECT FormatNumber(-1234.567), FormatNumber(0.5, 0, 0), FormatNumber(1234.5, 1, , )",
         "error 3075"},
        {L"SELECT FormatNumber(-1234.567) & ' ' & FormatNumber(-1234.5, 1, -2, -1, 0) & ' ' & "
         L"FormatCurrency(-2) & ' ' & FormatPercent(0.125, 1) & ' ' & FormatNumber(0.25, 1, 0)",
         "-1,234.57 (1234.5) ($2.00) 12.5% .3"},
        {L"SELECT FormatDateTime(#1/31/2017 14:05:00#, 4), FormatDateTime(#1/31/2017#, 2)",
         "14:05 1/31/2017"},
        {L"SELECT Round(Pmt(0.01, 12, 1000), 6), Round(FV(0.01, 12, -100), 4), "
         L"Round(PV(0.01, 12, -100), 4), NPer(0, -50, 1000), SLN(1000, 100, 9)",
         "-88.848789 1268.2503 1125.5077 20 100"},
        {L"SELECT Round(IPmt(0.01, 2, 12, 1000), 4), Round(IPmt(0.01, 2, 12, 1000) + "
         L"PPmt(0.01, 2, 12, 1000), 4), Round(Rate(12, -88.848789, 1000), 6), "
         L"SYD(1000, 100, 9, 1), DDB(1000, 100, 10, 2)",
         "-9.2115 -88.8488 0.01 180 160"},
    });
}

}  // namespace
}  // namespace sg::sql

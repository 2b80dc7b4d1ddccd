#include "host/sql/parser.h"
#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

using SelectTest = SessionTest;

TEST_F(SelectTest, Columns) {
    check({
        {L"SELECT Id, Code FROM Rooms", "1 A1; 2 a2; 3 B1; 4 b2; 5 Null"},
        {L"SELECT r.Id FROM Rooms AS r WHERE r.Id = 2", "2"},
        {L"SELECT * FROM Levels", "1 Ground 3.5; 2 First 3; 3 Roof Null"},
        {L"TABLE Levels", "1 Ground 3.5; 2 First 3; 3 Roof Null"},
        {L"SELECT [Id]+1 AS n, n*2 FROM Levels", "2 4; 3 6; 4 8"},
        {L"SELECT 1, 'a' & 2, Null, True", "1 a2 Null True"},
        {L"SELECT Id FROM Nowhere", "error 3078"},
        {L"SELECT Room FROM Rooms", "error 3061"},
        {L"SELECT Id FROM Rooms, Levels", "error 3079"},
        {L"SELECT Foo(Id) FROM Rooms", "error 3085"},
        {L"SELECT Left(Code) FROM Rooms", "error 3075"},
    });
    EXPECT_EQ(names(L"SELECT Id, Id*2, Code AS c, Count(*) FROM Rooms GROUP BY Id, Code"),
              "Id,Expr1001,c,Expr1003");
    EXPECT_EQ(names(L"SELECT Rooms.id, Levels.ID, Name FROM Rooms, Levels"),
              "Rooms.Id,Levels.Id,Name");
    EXPECT_EQ(rows(L"SELECT a AS x, b AS x FROM Rooms"), "error 3062");
}

TEST_F(SelectTest, Where) {
    check({
        {L"SELECT Id FROM Rooms WHERE Code = 'A2'", "2"},
        {L"SELECT Id FROM Rooms WHERE Code <> 'A2'", "1; 3; 4"},
        {L"SELECT Id FROM Rooms WHERE Code >= 'b'", "3; 4"},
        {L"SELECT Id FROM Rooms WHERE Code LIKE 'A*'", "1; 2"},
        {L"SELECT Id FROM Rooms WHERE Code NOT LIKE '[!b]#'", "3; 4"},
        {L"SELECT Id FROM Rooms WHERE Area BETWEEN 20 AND 10", "1; 2"},
        {L"SELECT Id FROM Rooms WHERE Area > 5.25 AND Area < 30 ORDER BY Id", "1; 2"},
        {L"SELECT Id FROM Rooms WHERE Cost = 100.25", "1; 5"},
        {L"SELECT Id FROM Rooms WHERE Cost > 50", "1; 5"},
        {L"SELECT Id FROM Rooms WHERE Built = #1/31/2017#", "1"},
        {L"SELECT Id FROM Rooms WHERE Year(Built) = 2017", "1; 4"},
        {L"SELECT Id FROM Rooms WHERE Heated", "1; 3; 5"},
        {L"SELECT Id FROM Rooms WHERE Heated = -1", "1; 3; 5"},
        {L"SELECT Id FROM Rooms WHERE NOT Heated", "2; 4"},
        {L"SELECT Id FROM Rooms WHERE Level IS NULL OR Code IS NULL", "4; 5"},
        {L"SELECT Id FROM Rooms WHERE Level = Null", ""},
        {L"SELECT Id FROM Rooms WHERE Id IN (5, 1, 9)", "1; 5"},
        {L"SELECT Id FROM Rooms WHERE Code IN ('B2', 'a1') ORDER BY Id", "1; 4"},
        {L"SELECT Id FROM Rooms WHERE Id > 2.5 AND Id < 4.5", "3; 4"},
        {L"SELECT Id FROM Rooms WHERE Id > -5000000000 AND Id < 2", "1"},
    });
}

TEST_F(SelectTest, Expressions) {
    check({
        {L"SELECT 7 \\ 2, 7 Mod 4, 2 ^ 3, 7 / 2, -2 ^ 2", "3 3 8 3.5 -4"},
        {L"SELECT Null & 'a', Null + 1, 'a' + 'b', 1 & 2", "a Null ab 12"},
        {L"SELECT IIf(1 = 1, 'y', 'n'), Nz(Null, 5), Switch(False, 1, True, 2), Choose(2, 'a', "
         L"'b')",
         "y 5 2 b"},
        {L"SELECT Code, IIf(Area > 10, 'big', Null) FROM Rooms WHERE Id IN (1, 3)",
         "A1 big; B1 Null"},
        {L"SELECT UCase(Code), Len(Code), Mid(Code, 2) FROM Rooms WHERE Id = 2", "A2 2 2"},
        {L"SELECT Cost * 2, Cost + 1, Cost / 2 FROM Rooms WHERE Id = 1", "200.5 101.25 50.125"},
        {L"SELECT Built + 1, Built - #1/1/2017#, DateAdd('m', 1, Built) FROM Rooms WHERE Id = 1",
         "2017-02-01 30 2017-02-28"},
        {L"SELECT Format(Built, 'yyyy/mm'), Format(Area, '0.00') FROM Rooms WHERE Id = 1",
         "2017/01 10.50"},
        {L"SELECT Area > 10, Not Heated, Heated And True FROM Rooms WHERE Id = 1",
         "True False True"},
        {L"SELECT True + True, 5 And 3, 'a' = 'A', True Xor False", "-2 1 True True"},
        {L"SELECT 1 / 0", "error 3421"},
        {L"SELECT CLng('12') + 1, CCur('1.5'), CDate('2017-01-31'), CBool(1)",
         "13 1.5 2017-01-31 True"},
    });
    const auto typeOf = [&](const wchar_t* expression) {
        return session_->select(std::wstring(L"SELECT ") + expression + L" AS x FROM Rooms")
            ->columns()[0]
            .type;
    };
    using jet::ColumnType;
    const std::pair<const wchar_t*, ColumnType> types[] = {
        {L"Heated", ColumnType::Boolean},     {L"Id = 1", ColumnType::Boolean},
        {L"Count(*)", ColumnType::Long},      {L"Max(Built)", ColumnType::Date},
        {L"Sum(Cost)", ColumnType::Currency}, {L"Cost * 2", ColumnType::Currency},
        {L"Built + 1", ColumnType::Date},     {L"Area * 2", ColumnType::Double},
        {L"Level", ColumnType::Integer},      {L"Code & 1", ColumnType::Text},
        {L"Avg(Level)", ColumnType::Double},  {L"Now()", ColumnType::Date}};
    for (const auto& [expression, type] : types) {
        EXPECT_EQ(typeOf(expression), type) << toUtf8(expression);
    }
}

TEST_F(SelectTest, Joins) {
    check({
        {L"SELECT r.Id, Name FROM Rooms AS r INNER JOIN Levels AS l ON r.Level = l.Id ORDER BY "
         L"r.Id",
         "1 Ground; 2 Ground; 3 First; 5 First"},
        {L"SELECT r.Id, Name FROM Rooms AS r LEFT JOIN Levels AS l ON r.Level = l.Id ORDER BY r.Id",
         "1 Ground; 2 Ground; 3 First; 4 Null; 5 First"},
        {L"SELECT r.Id, Name FROM Rooms AS r RIGHT JOIN Levels AS l ON r.Level = l.Id "
         L"WHERE r.Id IS NULL OR r.Id = 1 ORDER BY l.Id",
         "1 Ground; Null Roof"},
        {L"SELECT a.Id, l.Name, b.Id FROM (Rooms AS a INNER JOIN Levels AS l ON a.Level = l.Id) "
         L"LEFT JOIN Rooms AS b ON (a.Area = b.Area AND a.Id < b.Id) ORDER BY a.Id",
         "1 Ground Null; 2 Ground Null; 3 First 5; 5 First Null"},
        {L"SELECT l.Id, a.Id FROM Levels AS l LEFT JOIN (Rooms AS a INNER JOIN Rooms AS b "
         L"ON a.Area = b.Area) ON l.Id = a.Level WHERE a.Id > 2 OR a.Id IS NULL ORDER BY 1, 2",
         "2 3; 2 3; 2 5; 2 5; 3 Null"},
        {L"SELECT Count(*) FROM Rooms, Levels", "15"},
        {L"SELECT l.Id FROM Levels l, Rooms r WHERE r.Level = l.Id AND r.Heated ORDER BY l.Id",
         "1; 2; 2"},
    });
}

TEST_F(SelectTest, Groups) {
    check({
        {L"SELECT Level, Count(*), Sum(Area) FROM Rooms GROUP BY Level ORDER BY Level",
         "Null 1 30; 1 2 30.5; 2 2 10.5"},
        {L"SELECT Count(Code), Min(Code), Max(Code), Avg(Area) FROM Rooms", "4 A1 b2 14.2"},
        {L"SELECT Sum(Cost), Avg(Cost), Count(Cost) FROM Rooms", "252 63 4"},
        {L"SELECT Level, Count(*) AS n FROM Rooms GROUP BY Level HAVING Count(*) > 1 ORDER BY n, "
         L"Level",
         "1 2; 2 2"},
        {L"SELECT UCase(Left(Code, 1)), Count(*) FROM Rooms WHERE Code IS NOT NULL "
         L"GROUP BY UCase(Left(Code, 1))",
         "A 2; B 2"},
        {L"SELECT First(Code), Last(Area) FROM Rooms", "A1 5.25"},
        {L"SELECT Var(Id), VarP(Id), StDev(Level), StDevP(Area) FROM Rooms WHERE Id < 3",
         "0.5 0.25 0 4.75"},
        {L"SELECT Sum(Area) FROM Rooms WHERE Id > 100", "Null"},
        {L"SELECT Count(*), Sum(Heated) FROM Rooms", "5 -3"},
        {L"SELECT Code, Count(*) FROM Rooms", "error 3122"},
        {L"SELECT Level, Area FROM Rooms GROUP BY Level", "error 3122"},
        {L"SELECT Id FROM Rooms WHERE Count(*) > 1", "error 3096"},
    });
}

TEST_F(SelectTest, OrderDistinctTop) {
    check({
        {L"SELECT Code FROM Rooms ORDER BY Code", "Null; A1; a2; B1; b2"},
        {L"SELECT Code FROM Rooms ORDER BY Code DESC", "b2; B1; a2; A1; Null"},
        {L"SELECT Id, Area FROM Rooms ORDER BY 2, 1 DESC", "5 5.25; 3 5.25; 1 10.5; 2 20; 4 30"},
        {L"SELECT Id FROM Rooms ORDER BY Area * -1, Id", "4; 2; 1; 3; 5"},
        {L"SELECT DISTINCT Area FROM Rooms ORDER BY Area", "5.25; 10.5; 20; 30"},
        {L"SELECT DISTINCT UCase(Left(Code, 1)) FROM Rooms WHERE Id < 5 ORDER BY 1", "A; B"},
        {L"SELECT DISTINCTROW Name FROM Levels INNER JOIN Rooms ON Levels.Id = Rooms.Level",
         "Ground; First"},
        {L"SELECT TOP 1 Id FROM Rooms ORDER BY Area", "3; 5"},
        {L"SELECT TOP 2 Id FROM Rooms ORDER BY Area DESC", "4; 2"},
        {L"SELECT TOP 3 Id FROM Rooms", "1; 2; 3"},
        {L"SELECT TOP 30 PERCENT Id FROM Rooms ORDER BY Id", "1; 2"},
        {L"SELECT Id FROM Rooms ORDER BY 3", "error 3138"},
    });
}

TEST_F(SelectTest, SubqueriesAndUnions) {
    check({
        {L"SELECT Id FROM Rooms WHERE Area = (SELECT Max(Area) FROM Rooms)", "4"},
        {L"SELECT Id FROM Levels WHERE Id IN (SELECT Level FROM Rooms)", "1; 2"},
        {L"SELECT Id FROM Levels WHERE Id NOT IN (SELECT Level FROM Rooms WHERE Level IS NOT NULL)",
         "3"},
        {L"SELECT Id FROM Levels AS l WHERE NOT EXISTS (SELECT * FROM Rooms WHERE Level = l.Id)",
         "3"},
        {L"SELECT l.Id, (SELECT Count(*) FROM Rooms WHERE Level = l.Id) FROM Levels AS l",
         "1 2; 2 2; 3 0"},
        {L"SELECT Id FROM Rooms WHERE Area > ALL (SELECT Area FROM Rooms WHERE Level = 1)", "4"},
        {L"SELECT Id FROM Rooms WHERE Area > ANY (SELECT Area FROM Rooms WHERE Level = 1)", "2; 4"},
        {L"SELECT n, a FROM (SELECT Level AS n, Sum(Area) AS a FROM Rooms GROUP BY Level) AS s "
         L"WHERE a > 20 ORDER BY n DESC",
         "1 30.5; Null 30"},
        {L"SELECT Id FROM Levels UNION SELECT Level FROM Rooms ORDER BY Id", "Null; 1; 2; 3"},
        {L"SELECT Id FROM Levels UNION ALL SELECT Id FROM Levels WHERE Id = 1", "1; 2; 3; 1"},
        {L"SELECT Id, Name FROM Levels WHERE Id = 1 UNION SELECT Code, Area FROM Rooms WHERE Id = "
         L"1",
         "1 Ground; A1 10.5"},
        {L"SELECT Id FROM Levels UNION SELECT Id, Code FROM Rooms", "error 3307"},
        {L"SELECT Id FROM Rooms WHERE Id = (SELECT Id, Code FROM Rooms)", "error 3306"},
    });
}

TEST_F(SelectTest, Crosstabs) {
    check({
        {L"TRANSFORM Count(*) SELECT Heated FROM Rooms GROUP BY Heated PIVOT Level",
         "True Null 1 2; False 1 1 Null"},
        {L"TRANSFORM Sum(Area) SELECT Heated FROM Rooms GROUP BY Heated PIVOT Level IN (2, 7)",
         "True 10.5 Null; False Null Null"},
    });
    EXPECT_EQ(names(L"TRANSFORM Sum(Area) SELECT Heated FROM Rooms GROUP BY Heated PIVOT Level"),
              "Heated,<>,1,2");
}

// What an alias stands for is written out where it is used.
TEST_F(SelectTest, AliasesThatGrowWithoutEnd) {
    std::wstring text = L"SELECT 1 AS a0";
    for (int i = 1; i < 60; ++i) {
        const std::wstring before = L"a" + std::to_wstring(i - 1);
        text += L", " + before + L" + " + before + L" AS a" + std::to_wstring(i);
    }
    EXPECT_EQ(rows(text).substr(0, 10), "error 3360");
    EXPECT_EQ(rows(L"SELECT a AS b, b AS a"), "error 3103");
}

TEST_F(SelectTest, ParametersByName) {
    const Parameters given = {{L"room", int32_t(2)}, {L"", int32_t(1)}, {L"day", L"2017-01-31"}};
    check(
        {
            {L"SELECT Id FROM Rooms WHERE Id = [Room]", "2"},
            {L"SELECT Id FROM Rooms WHERE Id = ?", "1"},
            {L"PARAMETERS day DateTime; SELECT Id FROM Rooms WHERE Built = day", "1"},
            {L"SELECT Id FROM Rooms WHERE Id = [other] OR Id = [another] OR Id = [other]",
             "error 3061"},
        },
        given);
    try {
        session_->select(L"SELECT [a], [b], [A] FROM Rooms");
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.text(), L"Too few parameters. Expected 2.");
    }
}

TEST_F(SelectTest, IndexesAreUsed) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"SELECT Id FROM Rooms WHERE Id = 3", "SEARCH Rooms USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT Id FROM Rooms WHERE Code = 'x'", "SEARCH Rooms USING INDEX ByCode (Code=?)"},
        {L"SELECT Id FROM Rooms AS r WHERE Area > 3 AND Area < 4",
         "SEARCH r USING INDEX ByArea (Area>? AND Area<?)"},
        {L"SELECT Id FROM Rooms WHERE Level = 3", "SCAN Rooms"},
        {L"SELECT Id FROM Rooms WHERE UCase(Code) = 'X'", "SCAN Rooms"},
    };
    for (const auto& [text, step] : cases) {
        const auto steps = session_->explain(parseStatement(text));
        ASSERT_FALSE(steps.empty());
        EXPECT_EQ(toUtf8(steps[0]), step) << toUtf8(text);
    }
}

}  // namespace
}  // namespace sg::sql

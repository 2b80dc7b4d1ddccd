// Which indexes statements use, and that they change nothing in what statements give.

#include <random>

#include "host/sql/parser.h"
#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

using jet::ColumnType;

// Tables of random rows, "Indexed" with indexes and "Plain" with the same rows and none:
//     Id Long, Code Text, Number Integer, Size Double, Made Date, Price Currency, Shown Boolean
class PlanTest : public SessionTest {
  protected:
    static constexpr int rowCount = 2000;

    PlanTest() {
        makeTable(L"Indexed", true);
        makeTable(L"Plain", false);
        std::mt19937 random(7);
        database_->beginTransaction();
        for (int32_t id = 0; id < rowCount; ++id) {
            std::vector<jet::Value> row = randomRow(random, id);
            std::vector<jet::Value> copy = row;
            database_->writer(L"Indexed").insert(row);
            database_->writer(L"Plain").insert(copy);
        }
        database_->commitTransaction();
    }

    std::string steps(std::wstring_view text) {
        std::string all;
        for (const std::wstring& step : session_->explain(parseStatement(text))) {
            all += (all.empty() ? "" : "; ") + toUtf8(step);
        }
        return all;
    }

    // The same of both tables, which stand for "[T]".
    void expectAgreement(const std::wstring& text) {
        const auto of = [&](const wchar_t* table) {
            return std::wstring(text).replace(text.find(L"[T]"), 3, table);
        };
        EXPECT_EQ(rows(of(L"Indexed")), rows(of(L"Plain"))) << toUtf8(text);
    }

  private:
    static jet::IndexDesign index(const wchar_t* name,
                                  std::vector<jet::IndexColumnDesign> columns) {
        jet::IndexDesign design;
        design.name = name;
        design.columns = std::move(columns);
        return design;
    }
    void makeTable(const wchar_t* name, bool indexed) {
        jet::TableDesign design;
        design.name = name;
        design.columns = {
            column(L"Id", ColumnType::Long),        column(L"Code", ColumnType::Text),
            column(L"Number", ColumnType::Integer), column(L"Size", ColumnType::Double),
            column(L"Made", ColumnType::Date),      column(L"Price", ColumnType::Currency),
            column(L"Shown", ColumnType::Boolean)};
        if (indexed) {
            design.indexes = {index(L"PrimaryKey", {{L"Id"}}),
                              index(L"ByCode", {{L"Code"}}),
                              index(L"ByNumber", {{L"Number"}, {L"Code", false}, {L"Size"}}),
                              index(L"BySize", {{L"Size", false}}),
                              index(L"ByMade", {{L"Made"}, {L"Shown"}}),
                              index(L"ByPrice", {{L"Price"}})};
            design.indexes[0].primary = true;
            design.indexes[5].ignoreNulls = true;
        }
        jet::createTable(*database_, design);
    }
    static std::vector<jet::Value> randomRow(std::mt19937& random, int32_t id) {
        static const wchar_t* const codes[] = {
            L"duct", L"Duct 4", L"duct-4", L"DUCT 4b", L"d",  L"",      L"ducé", L"zoo",
            L"'s",   L"ßa",     L"a b c",  L"a-b",     L"AB", L"ſteel", L"steel"};
        const auto orNull = [&](jet::Value value) {
            return random() % 9 == 0 ? jet::Value() : std::move(value);
        };
        const double sizes[] = {0.0, -0.0, 1.5, -2.25, 1e300, 7};
        return {(id * 37) % rowCount,
                orNull(std::wstring(codes[random() % std::size(codes)])),
                orNull(static_cast<int16_t>(random() % 12)),
                orNull(sizes[random() % std::size(sizes)]),
                orNull(jet::Date{double(random() % 40) - 5}),
                orNull(jet::Currency{int64_t(random() % 30) * 5000 - 20000}),
                random() % 2 == 0};
    }
};

TEST_F(PlanTest, Indexes) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"SELECT * FROM Indexed WHERE Id = 3", "SEARCH Indexed USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT * FROM Indexed WHERE 3 = Id", "SEARCH Indexed USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT * FROM Indexed WHERE Id IN (3, 5)",
         "SEARCH Indexed USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT * FROM Indexed WHERE Id BETWEEN 3 AND 5",
         "SEARCH Indexed USING INDEX PrimaryKey (Id>? AND Id<?)"},
        {L"SELECT * FROM Indexed WHERE Code LIKE 'duct 4*'",
         "SEARCH Indexed USING INDEX ByCode (Code LIKE ?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 AND Code >= 'd'",
         "SEARCH Indexed USING INDEX ByNumber (Number=? AND Code>?)"},
        {L"SELECT * FROM Indexed WHERE Code ALIKE 'duct 4%'",
         "SEARCH Indexed USING INDEX ByCode (Code LIKE ?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 AND Code LIKE 'd*'",
         "SEARCH Indexed USING INDEX ByNumber (Number=? AND Code LIKE ?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 AND Code = 'd' AND Size = 7",
         "SEARCH Indexed USING INDEX ByNumber (Number=? AND Code=? AND Size=?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 ORDER BY Code DESC, Size",
         "SEARCH Indexed USING INDEX ByNumber (Number=?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 ORDER BY Code, Size DESC",
         "SEARCH Indexed USING INDEX ByNumber (Number=?)"},
        {L"SELECT * FROM Indexed WHERE Number = 3 ORDER BY Code, Size",
         "SEARCH Indexed USING INDEX ByNumber (Number=?); USE TEMP B-TREE FOR ORDER BY"},
        {L"SELECT * FROM Indexed ORDER BY Id", "SCAN Indexed USING INDEX PrimaryKey"},
        {L"SELECT Max(Id) FROM Indexed", "SCAN Indexed USING INDEX PrimaryKey"},
        // An index that leaves Nulls out has not all rows.
        {L"SELECT * FROM Indexed ORDER BY Price", "SCAN Indexed; USE TEMP B-TREE FOR ORDER BY"},
        {L"SELECT * FROM Indexed WHERE Price > 1 ORDER BY Price",
         "SEARCH Indexed USING INDEX ByPrice (Price>?)"},
        {L"SELECT * FROM Indexed WHERE Shown", "SCAN Indexed"},
        {L"SELECT * FROM Indexed WHERE UCase(Code) = 'X'", "SCAN Indexed"},
        {L"SELECT * FROM Indexed WHERE Code LIKE '*x'", "SCAN Indexed"},
        {L"SELECT * FROM Plain INNER JOIN Indexed ON Plain.Number = Indexed.Id",
         "SCAN Plain; SEARCH Indexed USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT * FROM Indexed AS a INNER JOIN Plain AS b ON a.Id = b.Id",
         "SCAN b; SEARCH a USING INDEX PrimaryKey (Id=?)"},
        {L"SELECT * FROM Plain AS a LEFT JOIN Plain AS b ON a.Id = b.Id",
         "SCAN a; SEARCH b USING TRANSIENT INDEX (Id=?) LEFT-JOIN"},
        {L"SELECT * FROM Plain WHERE Id = 3", "SCAN Plain"},
        // Bounds that let most rows pass are no reason to leave the file's order.
        {L"SELECT * FROM Indexed WHERE Id < 9", "SEARCH Indexed USING INDEX PrimaryKey (Id<?)"},
        {L"SELECT * FROM Indexed WHERE Id < 1900", "SCAN Indexed"},
        {L"SELECT * FROM Indexed WHERE Id < 1900 AND Number = 3",
         "SEARCH Indexed USING INDEX ByNumber (Number=?)"},
        {L"SELECT * FROM Indexed WHERE Id < 9 AND Number = 3",
         "SEARCH Indexed USING INDEX PrimaryKey (Id<?)"},
        {L"SELECT * FROM (SELECT Number, Count(*) AS n FROM Plain GROUP BY Number) AS s "
         L"INNER JOIN Plain ON s.Number = Plain.Id",
         "MATERIALIZE s; SCAN Plain; USE TEMP B-TREE FOR GROUP BY; SCAN s; "
         "SEARCH Plain USING TRANSIENT INDEX (Id=?)"},
        {L"SELECT * FROM (SELECT DISTINCT Code FROM Plain) WHERE Code IN (SELECT Code FROM "
         L"Indexed WHERE Id < 9)",
         "CO-ROUTINE a query; SCAN Plain; USE TEMP B-TREE FOR DISTINCT; SCAN a query; "
         "LIST SUBQUERY 2; SEARCH Indexed USING INDEX PrimaryKey (Id<?)"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(steps(text), expected) << toUtf8(text);
    }
}

TEST_F(PlanTest, SameRowsWithIndexesAndWithout) {
    const wchar_t* const conditions[] = {L"Id = 17",
                                         L"Id = 17.5",
                                         L"Id IN (1, 2, 3, 17.0)",
                                         L"Id > 1500 AND Id <= 1510.5",
                                         L"Id < -3000000000",
                                         L"Id > -3000000000",
                                         L"Id < 3000000000 AND Id > 1990",
                                         L"Id BETWEEN 20 AND 10",
                                         L"Id = NULL",
                                         L"Code = 'DUCT '",
                                         L"Code = ''",
                                         L"Code = 'duct-4'",
                                         L"Code > 'duct'",
                                         L"Code >= 'duct 4' AND Code < 'e'",
                                         L"Code < 'b'",
                                         L"Code LIKE 'duct*'",
                                         L"Code LIKE 'DUCT *'",
                                         L"Code LIKE 'd?ct[ -]4*'",
                                         L"Code LIKE 's*'",
                                         L"Code LIKE 'duc[é]'",
                                         L"Code LIKE '*4*'",
                                         L"Code ALIKE 'd_ct%'",
                                         L"Code LIKE ''",
                                         L"Code NOT LIKE 'd*'",
                                         L"Code LIKE 'a-*'",
                                         L"Number = 3",
                                         L"Number = 3 AND Code = 'zoo'",
                                         L"Number = 3 AND Code > 'd'",
                                         L"Number = 3 AND Code < 'e'",
                                         L"Number = 3 AND Code LIKE 'd*'",
                                         L"Number = 5 AND Code = 'd' AND Size >= 0",
                                         L"Number IN (1, 5) AND Code <= 'duct'",
                                         L"Number = 40000",
                                         L"Number < 40000 AND Number > 9",
                                         L"Size = 0",
                                         L"Size >= 0",
                                         L"Size > 0",
                                         L"Size < 0",
                                         L"Size <= 0 AND Size > -5",
                                         L"Size = 1.5",
                                         L"Size BETWEEN -1 AND 0",
                                         L"Made = #1899-12-30#",
                                         L"Made >= #1899-12-30# AND Shown",
                                         L"Made < #1900-01-05#",
                                         L"Made = #1900-01-10# AND Shown = True",
                                         L"Price = 1.5",
                                         L"Price > 3 AND Price <= 10",
                                         L"Price < 0",
                                         L"Number IS NULL",
                                         L"NOT (Number > 3)",
                                         L"Number = 3 OR Code = 'zoo'"};
    for (const wchar_t* condition : conditions) {
        const std::wstring from = std::wstring(L" FROM [T] WHERE ") + condition;
        expectAgreement(L"SELECT Id, Code, Number, Size, Made, Price, Shown" + from +
                        L" ORDER BY Id");
        expectAgreement(L"SELECT TOP 7 Id" + from + L" ORDER BY Id DESC");
        expectAgreement(L"SELECT Count(*), Min(Code), Max(Size), Min(Price)" + from);
    }
}

TEST_F(PlanTest, SameOrderWithIndexesAndWithout) {
    const wchar_t* const orders[] = {L"Id",
                                     L"Id DESC",
                                     L"Code, Id",
                                     L"Code DESC, Id DESC",
                                     L"Number, Code DESC, Size, Id",
                                     L"Number DESC, Code, Size DESC, Id",
                                     L"Number, Code, Id",
                                     L"Size DESC, Id",
                                     L"Size, Id",
                                     L"Made, Shown, Id",
                                     L"Made DESC, Shown DESC, Id",
                                     L"Price, Id",
                                     L"Price DESC, Id"};
    for (const wchar_t* order : orders) {
        expectAgreement(std::wstring(L"SELECT Id FROM [T] ORDER BY ") + order);
        expectAgreement(std::wstring(L"SELECT TOP 20 Id FROM [T] WHERE Number = 4 ORDER BY ") +
                        order);
    }
    for (const wchar_t* column : {L"Code", L"Number", L"Size", L"Made", L"Price", L"Shown"}) {
        const std::wstring name = column;
        expectAgreement(L"SELECT " + name + L", Count(*) FROM [T] GROUP BY " + name +
                        L" ORDER BY 1");
        expectAgreement(L"SELECT DISTINCT " + name + L" FROM [T] ORDER BY 1");
        expectAgreement(L"SELECT " + name + L" FROM [T] ORDER BY " + name);
        expectAgreement(L"SELECT TOP 3 " + name + L" FROM [T] ORDER BY " + name + L" DESC");
        expectAgreement(L"SELECT Count(*) FROM [T] AS a INNER JOIN Plain AS b ON a." + name +
                        L" = b." + name);
        expectAgreement(
            L"SELECT Count(*), Sum(b.Id) FROM Levels AS c, [T] AS a LEFT JOIN Plain AS "
            L"b ON a." +
            name + L" = b." + name + L" AND a.Number = b.Number");
    }
}

// All that share the last place of an order are among the first.
TEST_F(PlanTest, FirstRows) {
    check({{L"SELECT TOP 1 Heated FROM Rooms ORDER BY Heated", "True; True; True"},
           {L"SELECT TOP 3 Heated FROM Rooms ORDER BY Heated", "True; True; True"},
           {L"SELECT TOP 2 Code FROM Rooms ORDER BY Code", "Null; A1"},
           {L"SELECT TOP 9 Id FROM Rooms ORDER BY Id DESC", "5; 4; 3; 2; 1"},
           {L"SELECT TOP 2 Id FROM Rooms ORDER BY Area DESC, Id", "4; 2"},
           {L"SELECT Id FROM (SELECT TOP 1 Id, Heated FROM Rooms ORDER BY Heated) AS s", "1; 3; 5"},
           {L"SELECT TOP 1 Area FROM Rooms WHERE Level = 2 ORDER BY Area, 1", "5.25; 5.25"}});
}

// EXPLAIN of a statement that changes rows tells how it finds them, and changes none.
TEST_F(PlanTest, StepsOfActions) {
    EXPECT_EQ(steps(L"DELETE FROM Indexed WHERE Id = 5"),
              "SEARCH Indexed USING INDEX PrimaryKey (Id=?)");
    EXPECT_EQ(steps(L"UPDATE Indexed SET Code = 'x' WHERE Id = 5"),
              "SEARCH Indexed USING INDEX PrimaryKey (Id=?)");
    EXPECT_EQ(steps(L"UPDATE Plain INNER JOIN Indexed ON Plain.Id = Indexed.Id "
                    L"SET Plain.Code = Indexed.Code"),
              "SCAN Plain; SEARCH Indexed USING INDEX PrimaryKey (Id=?)");
    EXPECT_EQ(steps(L"INSERT INTO Plain (Id) SELECT Id FROM Indexed WHERE Id = 5"),
              "SEARCH Indexed USING INDEX PrimaryKey (Id=?)");
    EXPECT_EQ(steps(L"SELECT Id INTO Made FROM Indexed WHERE Id = 5"),
              "SEARCH Indexed USING INDEX PrimaryKey (Id=?)");
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Indexed WHERE Id = 5"), "1");
    EXPECT_THROW(steps(L"DROP TABLE Plain"), jet::Error);
}

}  // namespace
}  // namespace sg::sql

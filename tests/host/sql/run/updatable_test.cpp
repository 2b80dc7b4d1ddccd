// Rows that are changed through stored queries, derived tables and joins.

#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

class UpdatableTest : public SessionTest {
  protected:
    UpdatableTest() {
        namespace attributes = jet::queryAttributes;
        const auto store = [&](const wchar_t* name, const wchar_t* column, const wchar_t* where) {
            jet::QueryRow table;
            table.attribute = attributes::table;
            table.name1 = L"Rooms";
            std::vector<jet::QueryRow> rows = {table};
            for (const wchar_t* each : {L"Id", column, L"Level"}) {
                jet::QueryRow row;
                row.attribute = attributes::column;
                row.expression = each;
                if (each == column) row.name1 = L"What";
                rows.push_back(row);
            }
            jet::QueryRow condition;
            condition.attribute = attributes::where;
            condition.expression = where;
            rows.push_back(condition);
            jet::putQuery(*database_, name, 0, rows);
        };
        store(L"Coded", L"Code", L"Code Is Not Null");
        store(L"Doubled", L"Area * 2", L"Level = 1");
    }
};

TEST_F(UpdatableTest, Updates) {
    EXPECT_EQ(executed(L"UPDATE Coded SET What = What & '+' WHERE Level = 1"), "2");
    EXPECT_EQ(rows(L"SELECT Code FROM Rooms WHERE Id < 4"), "A1+; a2+; B1");
    EXPECT_EQ(executed(L"UPDATE Doubled SET Level = What"), "2");
    EXPECT_EQ(rows(L"SELECT Level FROM Rooms WHERE Id < 4"), "21; 40; 2");
    EXPECT_EQ(executed(L"UPDATE Doubled SET What = 1"), "error 3113");
    EXPECT_EQ(executed(L"UPDATE Coded SET Id = 1"), "error 3113");
    EXPECT_EQ(executed(L"UPDATE (SELECT TOP 1 c.What AS w, l.Name AS n FROM Coded c INNER JOIN "
                       L"Levels l ON c.Id = l.Id ORDER BY l.Height) AS s SET w = n"),
              "1");
    EXPECT_EQ(rows(L"SELECT Code FROM Rooms WHERE Id < 4"), "A1+; a2+; Roof");
    EXPECT_EQ(executed(L"UPDATE (SELECT DISTINCT Level FROM Rooms) AS s SET Level = 1"),
              "error 3073");
    EXPECT_EQ(executed(L"UPDATE (SELECT Max(Id) AS m FROM Levels) AS s SET m = 1"), "error 3073");
}

// A row is written once, with what the last of the joined rows gives it.
TEST_F(UpdatableTest, UpdatesOverJoins) {
    EXPECT_EQ(executed(L"UPDATE Levels AS l INNER JOIN Rooms AS r ON l.Id = r.Level "
                       L"SET l.Height = r.Area, l.Name = Nz(l.Name) & '.'"),
              "4");
    EXPECT_EQ(rows(L"SELECT Name, Height FROM Levels"), "Ground. 20; First. 5.25; Roof Null");
    EXPECT_EQ(executed(L"UPDATE Levels LEFT JOIN Rooms ON Levels.Id = Rooms.Level "
                       L"SET Rooms.Cost = Levels.Id"),
              "4");
    EXPECT_EQ(rows(L"SELECT Cost FROM Rooms"), "1; 1; 2; 1.5; 2");
    EXPECT_EQ(executed(L"UPDATE Rooms SET Cost = Cost + (SELECT Max(Id) FROM Levels) "
                       L"WHERE EXISTS (SELECT * FROM Levels WHERE Levels.Id = Rooms.Level + 1)"),
              "4");
    EXPECT_EQ(rows(L"SELECT Cost FROM Rooms"), "4; 4; 5; 1.5; 5");
    EXPECT_EQ(executed(L"UPDATE Levels AS a RIGHT JOIN (Rooms AS r INNER JOIN Levels AS b ON "
                       L"r.Level = b.Id) ON a.Id = b.Id + 1 SET r.Area = a.Id"),
              "4");
    EXPECT_EQ(rows(L"SELECT Area FROM Rooms"), "2; 2; 3; 30; 3");
}

TEST_F(UpdatableTest, Deletes) {
    EXPECT_EQ(executed(L"DELETE FROM Doubled WHERE What > 30"), "1");
    EXPECT_EQ(rows(L"SELECT Id FROM Rooms"), "1; 3; 4; 5");
    EXPECT_EQ(executed(L"DELETE l.* FROM Levels AS l INNER JOIN Rooms AS r ON l.Id = r.Level"),
              "2");
    EXPECT_EQ(rows(L"SELECT Id FROM Levels"), "3");
    EXPECT_EQ(executed(L"DELETE DISTINCTROW c.* FROM Coded AS c INNER JOIN Levels ON c.Id = "
                       L"Levels.Id"),
              "1");
    EXPECT_EQ(rows(L"SELECT Id FROM Rooms"), "1; 4; 5");
    EXPECT_EQ(executed(L"DELETE * FROM (SELECT DISTINCT Id FROM Rooms) AS s"), "error 3086");
    EXPECT_EQ(executed(L"DELETE * FROM (SELECT r.Id, l.Name FROM Rooms r, Levels l) AS s"),
              "error 3128");
    EXPECT_EQ(executed(L"DELETE * FROM (SELECT r.Id, l.Id + 1 FROM Rooms r, Levels l) AS s"), "3");
}

TEST_F(UpdatableTest, Inserts) {
    EXPECT_EQ(executed(L"INSERT INTO Coded (What, Level) VALUES ('new', 3)"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Coded (What) SELECT Name FROM Levels WHERE Id = 1"), "1");
    EXPECT_EQ(rows(L"SELECT Id, Code, Level FROM Rooms WHERE Id > 5"), "6 new 3; 7 Ground Null");
    EXPECT_EQ(executed(L"INSERT INTO Doubled (What) VALUES (1)"), "error 3113");
    EXPECT_EQ(executed(L"INSERT INTO Coded (Code) VALUES ('x')"), "error 3127");
    EXPECT_EQ(executed(L"INSERT INTO Coded VALUES (70, 'y', 4)"), "1");
    EXPECT_EQ(rows(L"SELECT Id, What FROM Coded WHERE Level > 2"), "6 new; 70 y");
}

}  // namespace
}  // namespace sg::sql

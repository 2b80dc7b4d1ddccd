#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

using ExecuteTest = SessionTest;

TEST_F(ExecuteTest, Insert) {
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id, Name) VALUES (4, 'Attic')"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Levels VALUES (5, 'Sky', 2.25)"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Levels SELECT Id + 10 AS Id, Code AS Name FROM Rooms "
                       L"WHERE Code LIKE 'a*'"),
              "2");
    EXPECT_EQ(rows(L"SELECT * FROM Levels WHERE Id > 3 ORDER BY Id"),
              "4 Attic Null; 5 Sky 2.25; 11 A1 Null; 12 a2 Null");
    EXPECT_EQ(executed(L"INSERT INTO Rooms (Code) VALUES ('new')"), "1");
    EXPECT_EQ(rows(L"SELECT Id, Code, Heated FROM Rooms WHERE Id > 5"), "6 new False");
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id, Nam) VALUES (1, 'a')"), "error 3127");
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id) VALUES (1, 'a')"), "error 3346");
    EXPECT_EQ(executed(L"SELECT * FROM Levels"), "error 3065");
}

TEST_F(ExecuteTest, AFailureUndoesTheWholeStatement) {
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id, Name) SELECT 6 - Id, Code FROM Rooms"),
              "error 3022");
    EXPECT_EQ(rows(L"SELECT Id FROM Levels"), "1; 2; 3");
    EXPECT_EQ(executed(L"UPDATE Levels SET Id = 7"), "error 3022");
    EXPECT_EQ(rows(L"SELECT Id FROM Levels"), "1; 2; 3");
    EXPECT_EQ(database_->transactionDepth(), 0);
}

TEST_F(ExecuteTest, Update) {
    EXPECT_EQ(executed(L"UPDATE Rooms SET Area = Area * 2, Code = Code & '!' WHERE Level = 1"),
              "2");
    EXPECT_EQ(rows(L"SELECT Code, Area FROM Rooms WHERE Level = 1"), "A1! 21; a2! 40");
    EXPECT_EQ(executed(L"UPDATE Rooms INNER JOIN Levels ON Rooms.Level = Levels.Id "
                       L"SET Rooms.Area = Height, Levels.Name = 'used'"),
              "4");
    EXPECT_EQ(rows(L"SELECT Area FROM Rooms"), "3.5; 3.5; 3; 30; 3");
    EXPECT_EQ(rows(L"SELECT Name FROM Levels"), "used; used; Roof");
    // Rows that move ahead in the index that finds them are met once.
    EXPECT_EQ(executed(L"UPDATE Levels SET Id = Id + 10 WHERE Id > 0"), "3");
    EXPECT_EQ(rows(L"SELECT Id FROM Levels ORDER BY Id"), "11; 12; 13");
    EXPECT_EQ(executed(L"UPDATE Rooms SET Nothing = 1"), "error 3061");
}

TEST_F(ExecuteTest, Delete) {
    EXPECT_EQ(executed(L"DELETE FROM Rooms WHERE Id NOT IN (SELECT Id FROM Levels)"), "2");
    EXPECT_EQ(executed(L"DELETE Rooms.* FROM Rooms INNER JOIN Levels ON Rooms.Level = Levels.Id "
                       L"WHERE Name = 'First'"),
              "1");
    EXPECT_EQ(rows(L"SELECT Id FROM Rooms"), "1; 2");
    EXPECT_EQ(executed(L"DELETE FROM Rooms, Levels"), "error 3128");
    EXPECT_EQ(executed(L"DELETE * FROM Rooms"), "2");
}

TEST_F(ExecuteTest, SelectInto) {
    EXPECT_EQ(executed(L"SELECT Id, Code, Built, Cost * 2 AS Twice INTO Copy FROM Rooms "
                       L"WHERE Level = 1"),
              "2");
    EXPECT_EQ(rows(L"SELECT * FROM Copy"), "1 A1 2017-01-31 200.5; 2 a2 2018-06-01 100");
    EXPECT_EQ(executed(L"SELECT Id INTO Levels FROM Rooms"), "error 3010");
}

TEST_F(ExecuteTest, Definitions) {
    EXPECT_EQ(executed(L"CREATE TABLE Parts (Id COUNTER CONSTRAINT pk PRIMARY KEY, Room LONG "
                       L"CONSTRAINT toRoom REFERENCES Rooms (Id), Name TEXT(20) NOT NULL)"),
              "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room, Name) VALUES (1, 'duct')"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room, Name) VALUES (9, 'duct')"), "error 3201");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room) VALUES (1)"), "error 3314");
    EXPECT_EQ(executed(L"CREATE UNIQUE INDEX byName ON Parts (Name DESC)"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Name) VALUES ('DUCT')"), "error 3022");
    EXPECT_EQ(rows(L"SELECT Id FROM Parts WHERE Name >= 'd' AND Name < 'e'"), "1");
    EXPECT_EQ(executed(L"DROP INDEX byName ON Parts"), "0");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD COLUMN Size DOUBLE"), "0");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP CONSTRAINT toRoom"), "0");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP COLUMN Room"), "0");
    EXPECT_EQ(rows(L"SELECT * FROM Parts"), "1 duct Null");
    EXPECT_EQ(executed(L"DROP TABLE Parts"), "0");
    EXPECT_EQ(rows(L"SELECT * FROM Parts"), "error 3078");
}

}  // namespace
}  // namespace sg::sql

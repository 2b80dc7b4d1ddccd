// ALTER TABLE and constraints.

#include "host/jet/check/check.h"
#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

class AlterTest : public SessionTest {
  protected:
    AlterTest() {
        session_->execute(
            L"CREATE TABLE Parts (Id COUNTER(10, 1) CONSTRAINT pk PRIMARY KEY, Room LONG, "
            L"Size TEXT(20) NOT NULL DEFAULT '7', Note MEMO)");
        session_->execute(L"CREATE INDEX bySize ON Parts (Size DESC, Room)");
        session_->execute(L"INSERT INTO Parts (Room, Size, Note) VALUES (1, '12', 'long')");
        session_->execute(L"INSERT INTO Parts (Room) VALUES (2)");
    }
    ~AlterTest() override { EXPECT_TRUE(jet::checkDatabase(*database_).empty()); }

    jet::ColumnType typeOf(const wchar_t* column) {
        return session_->select(std::wstring(L"SELECT ") + column + L" FROM Parts")
            ->columns()[0]
            .type;
    }
};

TEST_F(AlterTest, ColumnsChangeTheirType) {
    EXPECT_EQ(rows(L"SELECT * FROM Parts"), "10 1 12 long; 11 2 7 Null");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Size DOUBLE"), "0");
    EXPECT_EQ(typeOf(L"Size"), jet::ColumnType::Double);
    EXPECT_EQ(rows(L"SELECT * FROM Parts"), "10 1 12 long; 11 2 7 Null");
    EXPECT_EQ(names(L"SELECT * FROM Parts"), "Id,Room,Size,Note");
    EXPECT_EQ(rows(L"SELECT Id FROM Parts WHERE Size < 10"), "11");
    EXPECT_EQ(executed(L"DROP INDEX bySize ON Parts"), "0");
    // The default stays, the requirement does not.
    EXPECT_EQ(executed(L"INSERT INTO Parts (Size) VALUES (Null)"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room) VALUES (3)"), "1");
    EXPECT_EQ(rows(L"SELECT Id, Size FROM Parts WHERE Id > 11"), "12 Null; 13 7");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Note TEXT(10) NOT NULL DEFAULT 'none'"),
              "0");
    EXPECT_EQ(rows(L"SELECT Note FROM Parts WHERE Id = 10"), "long");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Note) VALUES (Null)"), "error 3314");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room CURRENCY"), "0");
    EXPECT_EQ(typeOf(L"Room"), jet::ColumnType::Currency);
}

TEST_F(AlterTest, WhatCannotBeConvertedChangesNothing) {
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Note LONG"), "error 3421");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Size TEXT(1)"), "error 3163");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Nothing LONG"), "error 3381");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room COUNTER"), "error 3259");
    EXPECT_EQ(executed(L"ALTER TABLE Near ALTER COLUMN Room LONG"), "error 3078");
    EXPECT_EQ(rows(L"SELECT * FROM Parts WHERE Size = '12'"), "10 1 12 long");
    EXPECT_EQ(names(L"SELECT * FROM Parts"), "Id,Room,Size,Note");
}

TEST_F(AlterTest, CountersGoOnFromElsewhere) {
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Id COUNTER(100, 1)"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room) VALUES (3)"), "1");
    EXPECT_EQ(rows(L"SELECT Id FROM Parts"), "10; 11; 100");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Id LONG"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room) VALUES (3)"), "error 3058");
}

TEST_F(AlterTest, Defaults) {
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room SET DEFAULT 1 + 4"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Note) VALUES ('a')"), "1");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room DROP DEFAULT"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Note) VALUES ('b')"), "1");
    EXPECT_EQ(rows(L"SELECT Room FROM Parts WHERE Id > 11"), "5; Null");
}

TEST_F(AlterTest, Relations) {
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD CONSTRAINT toRoom FOREIGN KEY (Room) REFERENCES "
                       L"Rooms ON DELETE SET NULL ON UPDATE SET NULL"),
              "error 3251");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD CONSTRAINT toRoom FOREIGN KEY (Room) REFERENCES "
                       L"Rooms (Id) ON DELETE SET NULL"),
              "0");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room DOUBLE"), "error 3303");
    EXPECT_EQ(executed(L"DELETE FROM Rooms WHERE Id = 2"), "1");
    EXPECT_EQ(rows(L"SELECT Id, Room FROM Parts"), "10 1; 11 Null");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ALTER COLUMN Room LONG NOT NULL"), "0");
    EXPECT_EQ(executed(L"DELETE FROM Rooms WHERE Id = 1"), "error 3398");
    EXPECT_EQ(rows(L"SELECT Id, Room FROM Parts"), "10 1; 11 Null");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP CONSTRAINT toRoom"), "0");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP CONSTRAINT toRoom"), "error 3371");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD FOREIGN KEY (Room) REFERENCES Rooms ON DELETE "
                       L"CASCADE ON UPDATE CASCADE"),
              "0");
    EXPECT_EQ(executed(L"DELETE FROM Rooms WHERE Id = 1"), "1");
    EXPECT_EQ(rows(L"SELECT Id FROM Parts"), "11");
}

TEST_F(AlterTest, Constraints) {
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD CONSTRAINT one UNIQUE (Room, Note)"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room, Note) VALUES (1, 'LONG')"), "error 3022");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD PRIMARY KEY (Room)"), "error 3283");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP COLUMN Room"), "error 3280");
    EXPECT_EQ(executed(L"ALTER TABLE Parts DROP CONSTRAINT one"), "0");
    EXPECT_EQ(executed(L"INSERT INTO Parts (Room, Note) VALUES (1, 'LONG')"), "1");
    EXPECT_EQ(executed(L"ALTER TABLE Parts ADD CONSTRAINT one UNIQUE (Room)"), "error 3022");
    EXPECT_EQ(executed(L"CREATE TABLE T (Id LONG CHECK (Id > 0))"), "error 3289");
    EXPECT_EQ(executed(L"CREATE TABLE T (Id LONG PRIMARY KEY, Up LONG REFERENCES T, Other LONG, "
                       L"FOREIGN KEY (Other) REFERENCES T (Id))"),
              "0");
    EXPECT_EQ(executed(L"INSERT INTO T VALUES (1, 1, 2)"), "error 3201");
    EXPECT_EQ(executed(L"INSERT INTO T VALUES (1, 1, 1)"), "1");
}

}  // namespace
}  // namespace sg::sql

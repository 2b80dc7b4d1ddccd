#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

// Columns of every type keep their values and their order on the way through.
class TypesTest : public SessionTest {
  protected:
    TypesTest() {
        session_->execute(
            L"CREATE TABLE Kinds (Id GUID, N DECIMAL(10,2), S SINGLE, Y BYTE, M MEMO, B "
            L"BINARY(4))");
        session_->execute(
            L"INSERT INTO Kinds VALUES ('{00112233-4455-6677-8899-AABBCCDDEEFF}', "
            L"12.34, 0.1, 7, 'memo text', 'ab')");
        session_->execute(L"INSERT INTO Kinds (N, S) VALUES (-5.5, 2)");
    }
};

TEST_F(TypesTest, Values) {
    check({
        {L"SELECT Id, N, S, Y, M FROM Kinds",
         "{00112233-4455-6677-8899-AABBCCDDEEFF} 12.34 0.1 7 memo text; Null -5.5 2 Null Null"},
        {L"SELECT Y FROM Kinds WHERE Id = '{00112233-4455-6677-8899-aabbccddeeff}'", "7"},
        {L"SELECT S FROM Kinds WHERE S = 0.1", "0.1"},
        {L"SELECT Y FROM Kinds WHERE M = 'MEMO TEXT'", "7"},
        {L"SELECT Y FROM Kinds WHERE B = 'ba'", "error 3421"},
        {L"SELECT Y FROM Kinds WHERE Y BETWEEN 1 AND 300", "7"},
    });
}

TEST_F(TypesTest, Decimals) {
    check({
        {L"SELECT N FROM Kinds ORDER BY N", "-5.5; 12.34"},
        {L"SELECT N FROM Kinds WHERE N < 0", "-5.5"},
        {L"SELECT N FROM Kinds WHERE N = 12.34", "12.34"},
        {L"SELECT Sum(N), Avg(N), Min(N), Max(N) FROM Kinds", "6.84 3.42 -5.5 12.34"},
        {L"SELECT N * 2, -N FROM Kinds", "24.68 -12.34; -11 5.5"},
    });
}

TEST_F(TypesTest, Mixed) {
    check({
        {L"SELECT Id FROM Rooms WHERE Id IN (1, 3.0)", "1; 3"},
        {L"SELECT Sum(x) FROM (SELECT Area AS x FROM Rooms UNION ALL SELECT Cost FROM Rooms)",
         "323"},
        {L"SELECT 1 UNION SELECT 'a' UNION SELECT Null", "Null; 1; a"},
        {L"SELECT 2147483647 + 1", "2147483648"},
        {L"SELECT IIf(Heated, Built, Null) FROM Rooms WHERE Id < 3", "2017-01-31; Null"},
    });
}

TEST_F(TypesTest, OfATableThatIsMade) {
    EXPECT_EQ(executed(L"SELECT Rooms.Id, Levels.Id, Built, Heated, Cost INTO Made "
                       L"FROM Rooms INNER JOIN Levels ON Rooms.Level = Levels.Id"),
              "4");
    EXPECT_EQ(names(L"SELECT * FROM Made"), "Rooms_Id,Levels_Id,Built,Heated,Cost");
    const auto rows = session_->select(L"SELECT Built, Heated, Cost FROM Made");
    EXPECT_EQ(rows->columns()[0].type, jet::ColumnType::Date);
    EXPECT_EQ(rows->columns()[1].type, jet::ColumnType::Boolean);
    EXPECT_EQ(rows->columns()[2].type, jet::ColumnType::Currency);
}

}  // namespace
}  // namespace sg::sql

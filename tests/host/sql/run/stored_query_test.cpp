#include "host/sql/parser.h"
#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

namespace attributes = jet::queryAttributes;

class StoredQueryTest : public SessionTest {
  protected:
    static jet::QueryRow row(uint8_t attribute, std::optional<std::wstring> expression,
                             std::optional<std::wstring> name1 = {}, int16_t flag = 0) {
        jet::QueryRow made;
        made.attribute = attribute;
        made.expression = std::move(expression);
        made.name1 = std::move(name1);
        if (flag != 0) {
            made.flag = flag;
        }
        return made;
    }
    void store(const wchar_t* name, std::vector<jet::QueryRow> rows) {
        jet::putQuery(*database_, name, 0, rows);
    }
};

TEST_F(StoredQueryTest, AreTables) {
    store(L"Big", {row(attributes::table, {}, L"Rooms"), row(attributes::column, L"Rooms.Id"),
                   row(attributes::column, L"Area*2", L"Twice"),
                   row(attributes::where, L"Area > [least]")});
    store(L"Bigger", {row(attributes::table, {}, L"Big"), row(attributes::column, L"Big.*"),
                      row(attributes::where, L"Twice > 40")});
    const Parameters given = {{L"Least", 15.0}};
    check(
        {
            {L"SELECT * FROM Big ORDER BY Id", "2 40; 4 60"},
            {L"SELECT Twice FROM Bigger", "60"},
            {L"SELECT b.Id, Code FROM Big AS b INNER JOIN Rooms ON b.Id = Rooms.Id ORDER BY b.Id",
             "2 a2; 4 b2"},
            {L"SELECT Rooms.Id FROM Rooms LEFT JOIN Bigger ON Rooms.Id = Bigger.Id "
             L"WHERE Bigger.Id IS NULL",
             "1; 2; 3; 5"},
        },
        given);
    EXPECT_EQ(rows(L"SELECT * FROM Big"), "error 3061");
}

TEST_F(StoredQueryTest, ThatAskEachOtherEnd) {
    store(L"A", {row(attributes::table, {}, L"B"), row(attributes::column, L"*")});
    store(L"B", {row(attributes::table, {}, L"A"), row(attributes::column, L"*")});
    EXPECT_EQ(rows(L"SELECT * FROM A"), "error 3102");
}

TEST_F(StoredQueryTest, AreExecuted) {
    store(L"Lift", {row(attributes::kind, {}, {}, 4), row(attributes::table, {}, L"Levels"),
                    row(attributes::parameter, {}, L"by", 7),
                    row(attributes::column, L"Height + [by]", {})});
    // The column that an update sets stands in the row's second name.
    jet::Query stored = database_->query(L"Lift");
    for (jet::QueryRow& each : stored.rows) {
        if (each.attribute == attributes::column) {
            each.name2 = L"Height";
        }
    }
    jet::putQuery(*database_, L"Lift", 0, stored.rows);
    EXPECT_EQ(executed(L"EXECUTE Lift 0.5"), "3");
    EXPECT_EQ(rows(L"SELECT Height FROM Levels"), "4; 3.5; Null");
    EXPECT_EQ(executed(L"EXECUTE Lift"), "error 3061");
    EXPECT_EQ(executed(L"EXECUTE Nothing"), "error 3078");
}

TEST_F(StoredQueryTest, TablesOfOtherFiles) {
    const std::filesystem::path other =
        std::filesystem::temp_directory_path() /
        (std::string("sg_sql_other_") + std::to_string(getpid()) + ".mdb");
    std::filesystem::remove(other);
    {
        jet::Database made = jet::Database::create(other.wstring());
        Session session(made);
        session.execute(L"CREATE TABLE Far (Id LONG PRIMARY KEY, Word TEXT(10))");
        session.execute(L"INSERT INTO Far VALUES (1, 'one')");
        session.execute(L"INSERT INTO Far VALUES (2, 'two')");
    }
    jet::linkTable(*database_, L"Near", L";DATABASE=" + other.wstring(), L"Far");
    const std::wstring path = other.wstring();
    EXPECT_EQ(rows(L"SELECT * FROM Near WHERE Id = 2"), "2 two");
    EXPECT_EQ(rows(L"SELECT Word FROM [" + path + L"].Far ORDER BY Word"), "one; two");
    EXPECT_EQ(rows(L"SELECT Word FROM Far IN '" + path + L"' WHERE Id = 1"), "one");
    EXPECT_EQ(rows(L"SELECT Name, Word FROM Levels INNER JOIN Near ON Levels.Id = Near.Id"),
              "Ground one; First two");
    EXPECT_EQ(executed(L"UPDATE Near SET Word = 'zwei' WHERE Id = 2"), "1");
    EXPECT_EQ(executed(L"INSERT INTO Near SELECT Id, Name AS Word FROM Levels WHERE Id = 3"), "1");
    EXPECT_EQ(rows(L"SELECT * FROM Near"), "1 one; 2 zwei; 3 Roof");
    // What fails in one file undoes what was done in the other.
    EXPECT_EQ(executed(L"UPDATE Near INNER JOIN Levels ON Near.Id = Levels.Id "
                       L"SET Near.Word = 'x' & Near.Id, Levels.Id = 7"),
              "error 3022");
    EXPECT_EQ(rows(L"SELECT Word, Id FROM Near"), "one 1; zwei 2; Roof 3");
    EXPECT_EQ(executed(L"UPDATE Near INNER JOIN Levels ON Near.Id = Levels.Id "
                       L"SET Near.Word = 'x' & Near.Id, Levels.Id = Levels.Id + 10"),
              "3");
    EXPECT_EQ(rows(L"SELECT n.Word FROM Near n INNER JOIN Levels l ON n.Id = l.Id - 10"),
              "x1; x2; x3");
    EXPECT_EQ(rows(L"SELECT Word FROM [" + path + L"x].Far"), "error 3024");
    database_->close();
    for (const char* suffix : {"", "-log", "-lock"}) {
        std::filesystem::remove(other.string() + suffix);
    }
    std::filesystem::remove(std::filesystem::path(other).replace_extension(".ldb"));
}

}  // namespace
}  // namespace sg::sql

// What errors name: the whole expression that they are about, and no more than it.

#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

class ErrorTextsTest : public SessionTest {
  protected:
    std::string error(const wchar_t* text) {
        try {
            session_->select(text);
            return {};
        } catch (const jet::Error& error) {
            return toUtf8(error.text());
        }
    }
};

TEST_F(ErrorTextsTest, NameTheWholeExpression) {
    const struct {
        const wchar_t* text;
        const char* error;
    } cases[] = {
        {L"SELECT Year(Built) AS y, Count(*) FROM Rooms GROUP BY Id",
         "You tried to execute a query that does not include the specified expression "
         "'Year(Built)' as part of an aggregate function."},
        {L"SELECT Level FROM Rooms GROUP BY Level HAVING Area > 1 AND Level = 2",
         "You tried to execute a query that does not include the specified expression "
         "'Area > 1 And Level = 2' as part of an aggregate function."},
        {L"SELECT Level FROM Rooms GROUP BY Level ORDER BY Left(Code, 1)",
         "You tried to execute a query that does not include the specified expression "
         "'Left(Code, 1)' as part of an aggregate function."},
        {L"SELECT Id FROM Rooms WHERE Sum(Area) > 1 OR Id = 2",
         "Cannot have aggregate function in WHERE clause (Sum(Area) > 1 Or Id = 2)."},
        {L"SELECT Sum(Count(*)) FROM Rooms",
         "Cannot have aggregate function in expression (Sum(Count(*)))."},
        {L"SELECT Count(*) FROM Rooms GROUP BY Sum(Area) + 1",
         "Cannot have aggregate function in GROUP BY clause (Sum(Area) + 1)."},
        {L"SELECT r.Id FROM Rooms AS r INNER JOIN Levels AS l ON r.Level = Max(l.Id)",
         "Cannot have aggregate function in JOIN operation (r.Level = Max(l.Id))."},
        {L"SELECT Id FROM Rooms WHERE Left(Code) = 'a'",
         "Wrong number of arguments used with function in query expression 'Left(Code) = \"a\"'."},
        {L"SELECT IIf(1) FROM Rooms",
         "Wrong number of arguments used with function in query expression 'IIf(1)'."},
    };
    for (const auto& each : cases)
        EXPECT_EQ(error(each.text), each.error) << toUtf8(each.text);
}

TEST_F(ErrorTextsTest, NameWhatCannotBeCutIntoWords) {
    const struct {
        const wchar_t* text;
        const char* error;
    } cases[] = {
        {L"SELECT #13/13/2017# FROM Rooms",
         "Syntax error in date in query expression '#13/13/2017#'."},
        {L"SELECT Id, #2017-02-30# AS d FROM Rooms",
         "Syntax error in date in query expression '#2017-02-30#'."},
        {L"SELECT Id FROM Rooms WHERE Built = #never# ORDER BY Id",
         "Syntax error in date in query expression 'Built = #never#'."},
        {L"SELECT #1/1/2017 FROM Rooms",
         "Syntax error in date in query expression '#1/1/2017 FROM Rooms'."},
        {L"SELECT 'abc FROM Rooms",
         "Syntax error in string in query expression ''abc FROM Rooms'."},
        {L"SELECT 1..2 AS a", "Syntax error in number in query expression '1..2'."},
        {L"SELECT Id FROM Rooms WHERE [Id = 1", "Invalid bracketing of name '[Id = 1'."},
    };
    for (const auto& each : cases)
        EXPECT_EQ(error(each.text), each.error) << toUtf8(each.text);
}

}  // namespace
}  // namespace sg::sql

#include <gmock/gmock.h>

#include "database/database_fixture.h"

namespace sg::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CursorTest : public DatabaseTest {
  protected:
    CursorTest() {
        makeFile("plan.mdb", {L"Hall", L"Bath", L"Attic"});
        connectTo("plan.mdb");
    }
    void select(const std::string& arguments) { run("(sg_table " + arguments + ")"); }
};

TEST_F(CursorTest, AnEmptyTableHasNoRecordAndCountsNone) {
    for (const char* index : {"", " \"A\""}) {
        select(std::string("\"Empty\"") + index);
        for (const char* call : {"(sg_top)", "(sg_bottom)", "(sg_getrec)", "(sg_skip)",
                                 "(sg_skip -1)", "(sg_seek 1)"}) {
            EXPECT_EQ(run(call), "nil") << call;
        }
        EXPECT_EQ(run("(sg_count)"), "0");
    }
}

TEST_F(CursorTest, WithoutATableEveryAnswerIsEmpty) {
    for (const char* call :
         {"(sg_top)", "(sg_bottom)", "(sg_getrec)", "(sg_skip)", "(sg_seek 1)", "(sg_seek '(1 2))",
          "(sg_seek '(1.0 2.0))", "(sg_seek '(1.0 2.0 3.0))", "(sg_count)",
          "(sg_append '((\"Name\" . \"x\")))", "(sg_replace '((\"Name\" . \"x\")))", "(sg_delete)",
          "(sg_append_withindex 5 '((\"Name\" . \"x\")))"}) {
        EXPECT_EQ(run(call), "nil") << call;
    }
    EXPECT_EQ(run("(sg_current_table)"), "\"\"");
    EXPECT_EQ(run("(sg_current_index)"), "\"\"");
}

TEST_F(CursorTest, ARecordHasItsFieldsInOrder) {
    select("\"Rooms\"");
    run("(sg_replace '((\"Price\" . 12.5) (\"Built\" . \"1/31/2017 14:30\") (\"Open\" . T)"
        "(\"s_Note\" . \"kept  \") (\"Name\" . \"cut  \")))");
    EXPECT_EQ(run("(sg_getrec)"),
              "((\"Id\" . 1) (\"Name\" . \"cut\") (\"Level\" . 1) (\"Area\" . 2.5) (\"Price\") "
              "(\"Built\" . \"1/31/2017 2:30:00 PM\") (\"Open\" . -1) (\"s_Note\" . \"kept  \"))");
    run("(sg_replace '((\"Open\" . nil) (\"Name\" . nil) (\"s_Note\")))");
    EXPECT_EQ(run("(sg_skip 1)").substr(0, 31), "((\"Id\" . 2) (\"Name\" . \"Bath\") (");
}

// Each step moves on from where the one before it ended.
TEST_F(CursorTest, SkipsStopAtTheEndsAndComeBack) {
    select("\"Rooms\"");
    const struct {
        const char* call;
        const char* name;
    } steps[] = {
        {"(sg_getrec)", "\"Hall\""},     {"(sg_skip)", "\"Bath\""},
        {"(sg_skip 0)", "nil"},          {"(sg_getrec)", "\"Bath\""},
        {"(sg_skip 1.9)", "\"Attic\""},  {"(sg_skip)", "nil"},
        {"(sg_getrec)", "nil"},          {"(sg_skip)", "nil"},
        {"(sg_skip 5)", "nil"},          {"(sg_skip -1)", "\"Attic\""},
        {"(sg_skip -2)", "\"Hall\""},    {"(sg_skip -1)", "nil"},
        {"(sg_skip -3)", "nil"},         {"(sg_getrec)", "nil"},
        {"(sg_skip \"x\")", "\"Hall\""}, {"(sg_skip 9)", "nil"},
        {"(sg_skip -3)", "\"Hall\""},    {"(sg_skip -9)", "nil"},
        {"(sg_skip 3)", "\"Attic\""},    {"(sg_top)", "\"Hall\""},
        {"(sg_bottom)", "\"Attic\""},
    };
    for (const auto& step : steps)
        EXPECT_EQ(nameAfter(step.call), step.name) << step.call;
}

TEST_F(CursorTest, AnIndexOrdersTheRecordsAndKeepsThePosition) {
    select("\"Rooms\"");
    EXPECT_EQ(run("(sg_current_index)"), "\"\"");
    EXPECT_EQ(nameAfter("(sg_skip)"), "\"Bath\"");
    EXPECT_EQ(run("(sg_table \"Rooms\" \"Name\")"), "\"Rooms\"");
    EXPECT_EQ(run("(sg_current_index)"), "\"Name\"");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Bath\"");
    EXPECT_EQ(nameAfter("(sg_skip -1)"), "\"Attic\"");
    select("\"Rooms\"");
    EXPECT_EQ(run("(sg_current_index)"), "\"Name\"") << "none named, none changed";
    EXPECT_EQ(nameAfter("(sg_bottom)"), "\"Hall\"");
}

TEST_F(CursorTest, TablesKeepTheirPlaceWhileTheyAreNotCurrent) {
    select("\"Rooms\"");
    run("(sg_bottom)");
    select("\"Empty\" \"A\"");
    EXPECT_EQ(run("(sg_current_table)"), "\"Empty\"");
    select("\"Rooms\"");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Attic\"");
    select("\"rooms\"");  // another name, and so another recordset
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Hall\"");
    select("\"Empty\"");
    EXPECT_EQ(run("(sg_current_index)"), "\"A\"");
}

TEST_F(CursorTest, ArgumentsOfTableAreOneOrTwoTexts) {
    EXPECT_THAT(run("(sg_table)"), HasSubstr("\nToo few arguments passed.\n"));
    for (const char* call :
         {"(sg_table 5)", "(sg_table nil)", "(sg_table 5 6)", "(sg_table '(\"Rooms\"))"}) {
        EXPECT_THAT(run(call), HasSubstr("\nWrong type of arguments passed.\n")) << call;
    }
    EXPECT_EQ(run("(sg_table \"Rooms\" 5)"), "\"Rooms\"");
    EXPECT_THAT(run("(sg_table 5 \"Name\")"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_EQ(run("(sg_current_table)"), "\"Rooms\"");
}

TEST_F(CursorTest, AnUnknownTableOrIndexIsTheEnginesError) {
    EXPECT_THAT(run("(sg_table \"None\")"),
                StartsWith("nil | \nSwift Gate Error: The Microsoft Jet database engine could not "
                           "find the object 'None'."));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3011) The Microsoft Jet"));
    EXPECT_EQ(run("(sg_current_table)"), "\"\"");
    EXPECT_THAT(run("(sg_table \"Rooms\" \"None\")"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3015) "));
    EXPECT_EQ(run("(sg_current_table)"), "\"Rooms\"") << "it is open, without the index";
    EXPECT_EQ(nameAfter("(sg_top)"), "\"Hall\"") << "an error ends with its call";
}

TEST_F(CursorTest, SeeksFindByTheLeadingFields) {
    const struct {
        const char* index;
        const char* call;
        const char* name;
    } cases[] = {
        {"PrimaryKey", "(sg_seek 2)", "\"Bath\""},
        {"PrimaryKey", "(sg_seek 2.0)", "\"Bath\""},
        {"PrimaryKey", "(sg_seek \"3\")", "\"Attic\""},
        {"PrimaryKey", "(sg_seek 4)", "nil"},
        {"PrimaryKey", "(sg_seek nil)", "nil"},
        {"PrimaryKey", "(sg_seek '(2))", "\"Bath\""},
        {"Name", "(sg_seek \"bath\")", "\"Bath\""},
        {"Name", "(sg_seek \"Ba\")", "nil"},
        {"Place", "(sg_seek 2)", "\"Bath\""},
        {"Place", "(sg_seek 2 \"Bath\")", "\"Bath\""},
        {"Place", "(sg_seek '(3 \"Attic\"))", "\"Attic\""},
        {"Place", "(sg_seek 3 \"Bath\")", "nil"},
        {"Place", "(sg_seek 3 nil)", "nil"},
        {"Spot", "(sg_seek '(5.0 2.0))", "\"Bath\""},  // a point
        {"Spot", "(sg_seek '(5.0 3.0))", "nil"},
        {"Spot", "(sg_seek 5.0 2.0)", "\"Bath\""},
    };
    for (const auto& each : cases) {
        select(std::string("\"Rooms\" \"") + each.index + "\"");
        EXPECT_EQ(nameAfter(each.call), each.name) << each.index << " " << each.call;
    }
}

TEST_F(CursorTest, KeysOfASeekAreTenAtMost) {
    select("\"Rooms\" \"PrimaryKey\"");
    const char* const tooMany = "(sg_seek 2 2)";
    EXPECT_THAT(run(tooMany), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3001) "));
    // The eleventh is not looked at.
    EXPECT_THAT(run("(sg_seek 1 2 3 4 5 6 7 8 9 10 '(1 . 2))"), StartsWith("nil | "));
    for (const char* call : {"(sg_seek '(1 (2)))", "(sg_seek '(1 . 2))", "(sg_seek 1 2 '(3))"}) {
        EXPECT_THAT(run(call), HasSubstr("\nWrong type of arguments passed.\n")) << call;
    }
    EXPECT_THAT(run("(sg_seek)"), HasSubstr("\nToo few arguments passed.\n"));
    EXPECT_THAT(run("(sg_seek '(1.0 2.0 3.0))"), StartsWith("nil | ")) << "three keys";
    EXPECT_THAT(run("(sg_seek \"no number\")"), StartsWith("nil | "));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3421) "));
}

TEST_F(CursorTest, WithoutAnIndexASeekFindsNothingAndSaysNothing) {
    select("\"Rooms\"");
    run("(sg_bottom)");
    EXPECT_EQ(run("(sg_seek 1)"), "nil");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Attic\"");
}

// Another user's deletion leaves a record that is no longer there.
TEST_F(CursorTest, NoCurrentRecordIsKeptButNotPrinted) {
    select("\"Rooms\" \"PrimaryKey\"");
    EXPECT_EQ(run("(sg_seek 9)"), "nil");
    EXPECT_EQ(run("(sg_resetLastError)"), "\"\"");
    EXPECT_EQ(run("(sg_replace '((\"Name\" . \"x\")))"), "nil");
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3021) "));
    EXPECT_EQ(run("(sg_delete)"), "nil");
}

TEST_F(CursorTest, CountsBeyondSixteenBitsAreReals) {
    select("\"Empty\"");
    run("(setq n 0) (repeat 32767 (sg_append (list (cons \"A\" (setq n (1+ n))))))");
    EXPECT_EQ(run("(sg_count)"), "32767");
    run("(sg_append '((\"A\" . 0)))");
    EXPECT_EQ(run("(sg_count)"), "32768.0");
}

TEST_F(CursorTest, OperationsWithoutAFunctionOfTheirOwn) {
    CDBConnection& connection = *currentConnection();
    int16_t result = 5;
    std::wstring name;
    COleVariant value;
    EXPECT_EQ(connection.GetFieldCount(result), 0);
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(connection.IsEOF());
    EXPECT_FALSE(connection.IsBOF());
    EXPECT_FALSE(connection.GetFieldName(0, name));
    EXPECT_FALSE(connection.GetFieldValue(0, value));
    EXPECT_FALSE(connection.GetFieldValueByName(L"Name", value));
    EXPECT_EQ(connection.GetInterfaceVersion(), 2);
    select("\"Rooms\"");
    EXPECT_EQ(connection.GetFieldCount(result), 8);
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(connection.GetFieldName(1, name));
    EXPECT_EQ(name, L"Name");
    EXPECT_TRUE(connection.GetFieldValue(1, value));
    EXPECT_EQ(shown(value), L"Hall");
    EXPECT_TRUE(connection.GetFieldValueByName(L"area", value));
    EXPECT_EQ(value.dblVal, 2.5);
    EXPECT_FALSE(connection.GetFieldName(8, name));
    EXPECT_TRUE(connection.HasError());
    EXPECT_FALSE(connection.GetFieldValue(-1, value));
    COleSafeArray record;
    EXPECT_FALSE(connection.Skip(3, record));
    EXPECT_TRUE(connection.IsEOF());
    EXPECT_FALSE(connection.Skip(-4, record));
    EXPECT_TRUE(connection.IsBOF());
    EXPECT_FALSE(connection.HasError());
}

}  // namespace
}  // namespace sg::test

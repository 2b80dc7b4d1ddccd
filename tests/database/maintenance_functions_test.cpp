#include <gmock/gmock.h>

#include "database/database_error.h"
#include "database/database_fixture.h"

namespace sg::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// A connection whose last operation ended as the test says.
class EndedConnection : public CDBConnection {
  public:
    EndedConnection(int32_t code, const wchar_t* text) { recordError(CDaoException(code, text)); }
    void clear() { clearError(); }
};

class ReportTest : public DatabaseTest {
  protected:
    ReportTest() { clearLastErrorText(); }
    ~ReportTest() override { setCurrentDatabase(nullptr, L"", 0); }
};

TEST_F(ReportTest, WhatIsPrintedDependsOnTheCode) {
    const struct {
        int32_t code;
        std::string module, dialog;
    } cases[] = {
        {3022, "\nSwift Gate Error: 100% of it", "\nDatabase Error: 100% of it"},
        {3021, "", ""},
        {3043,
         "\nA disk or network error occurred while trying to access the database.Try the command "
         "again. If it continues to not work, try restarting AutoCAD. If that does not fix the "
         "error, try restarting your computer.",
         "same"},
    };
    for (const auto& each : cases) {
        EndedConnection connection(each.code, L"100% of it");
        setCurrentDatabase(&connection, L"", 0);
        EXPECT_TRUE(reportDatabaseError());
        EXPECT_EQ(printed(), each.module);
        EXPECT_EQ(lastErrorText(), L"(" + std::to_wstring(each.code) + L") 100% of it");
        setCurrentDatabase(nullptr, L"", 0);
        EXPECT_TRUE(reportDialogDatabaseError(&connection));
        EXPECT_EQ(printed(), each.dialog == "same" ? each.module : each.dialog);
    }
}

TEST_F(ReportTest, WithoutAnErrorThereIsNothingToReport) {
    EndedConnection connection(3022, L"text");
    EXPECT_FALSE(reportDatabaseError()) << "none is current";
    EXPECT_FALSE(reportDialogDatabaseError(nullptr));
    connection.clear();
    setCurrentDatabase(&connection, L"", 0);
    EXPECT_FALSE(reportDatabaseError());
    EXPECT_FALSE(reportDialogDatabaseError(&connection));
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(lastErrorText(), L"");
    int32_t code = 0;
    std::wstring text;
    EXPECT_FALSE(connection.GetLastError(code, text));
    EXPECT_EQ(code, 3022) << "it outlives the flag";
    EXPECT_EQ(text, L"text");
}

TEST_F(ReportTest, LispReadsAndClearsTheLastError) {
    EXPECT_EQ(run("(sg_lastError)"), "\"\"");
    EndedConnection connection(3021, L"No current record.");
    setCurrentDatabase(&connection, L"", 0);
    reportDatabaseError();
    setCurrentDatabase(nullptr, L"", 0);
    EXPECT_EQ(run("(sg_lastError 1 2)"), "\"(3021) No current record.\"");
    EXPECT_EQ(run("(sg_lastError)"), "\"(3021) No current record.\"");
    EXPECT_EQ(run("(sg_resetLastError)"), "\"\"");
    EXPECT_EQ(run("(sg_lastError)"), "\"\"");
    EXPECT_EQ(run("(sg_getVersion)"), "-1");
}

// Some functions report without an operation that has cleared the flag before: an earlier error
// shows through.
TEST_F(ReportTest, AnErrorShowsUntilTheFlagIsCleared) {
    makeFile("plan.mdb");
    const char* const failing = "(sg_sql-nil \"SELECT * FROM None\")";
    for (const char* call : {"(sg_getrec)", "(sg_create_db (strcat folder \"plan.mdb\"))"}) {
        connectTo("plan.mdb");
        EXPECT_EQ(run(failing), "nil");
        EXPECT_THAT(run(call), StartsWith("nil | \nSwift Gate Error: ")) << call;
        EXPECT_EQ(run("(sg_top)"), "nil");
        EXPECT_EQ(run(call), "nil") << call;
    }
}

// --- compaction ---

class CompactTest : public DatabaseTest {
  protected:
    CompactTest() {
        setenv("COMPUTERNAME", "DRAFTING", 1);
        host().setInput({std::make_shared<Buttons>(log, std::vector<int>(9, IDOK))});
    }
    ~CompactTest() override { unsetenv("COMPUTERNAME"); }
    std::string compact(const std::string& from, const std::string& to,
                        const std::string& more = "") {
        return run("(sg_compact (strcat folder \"" + from + "\") (strcat folder \"" + to + "\")" +
                   more + ")");
    }
};

TEST_F(CompactTest, ACopyHasTheRowsAndNeedsNoConnection) {
    makeFile("plan.mdb", {L"A", L"B"});
    EXPECT_EQ(compact("plan.mdb", "dense.mdb"), "\"OK\"");
    EXPECT_EQ(currentConnection(), nullptr);
    connectTo("dense.mdb");
    run("(sg_table \"Rooms\" \"Name\")");
    EXPECT_EQ(nameAfter("(sg_bottom)"), "\"B\"");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(CompactTest, AFailureAnswersTheCodeAndShowsABox) {
    makeFile("plan.mdb");
    makeFile("there.mdb");
    EXPECT_THAT(compact("plan.mdb", "there.mdb"), StartsWith("3204 | \nSwift Gate Error: "));
    const std::string text = run("(substr (sg_lastError) 8)");
    ASSERT_THAT(log, ElementsAre(StartsWith("box 16 Database Error: ")));
    EXPECT_EQ("\"" + log[0].substr(log[0].find(": ") + 2) + "\"",
              text.substr(0, text.size() - 1) + "\n(Your computer name is DRAFTING.)\"");
    log.clear();
    const char* const shown[] = {" T", " 0", " \"\""};
    for (const char* more : shown) {
        EXPECT_THAT(compact("none.mdb", "new.mdb", more), StartsWith("3024 | "));
        EXPECT_EQ(log.size(), 1U) << more;
        log.clear();
    }
    EXPECT_THAT(compact("none.mdb", "new.mdb", " nil"), StartsWith("3024 | "));
    EXPECT_THAT(log, IsEmpty());
    setenv("COMPUTERNAME", "FIFTEEN-LETTERS", 1);
    EXPECT_THAT(compact("none.mdb", "new.mdb"), StartsWith("3024 | "));
    EXPECT_THAT(log, IsEmpty()) << "the name does not fit its buffer";
}

TEST_F(CompactTest, AFileThatIsOpenIsNotCompacted) {
    makeFile("plan.mdb");
    connectTo("plan.mdb");
    EXPECT_THAT(compact("plan.mdb", "dense.mdb", " nil"), StartsWith("3045 | "));
    EXPECT_FALSE(exists("dense.mdb"));
    EXPECT_FALSE(currentConnection()->HasError()) << "another connection did it";
    EXPECT_EQ(run("(sg_readonly)"), "nil");
}

TEST_F(CompactTest, ArgumentsAreTwoTexts) {
    for (const char* call : {"(sg_compact)", "(sg_compact \"a\")", "(sg_compact 5)"}) {
        EXPECT_THAT(run(call), HasSubstr("\nToo few arguments passed.\n")) << call;
    }
    for (const char* call :
         {"(sg_compact 5 6)", "(sg_compact \"a\" 6)", "(sg_compact nil \"b\" nil)"}) {
        EXPECT_THAT(run(call), HasSubstr("\nWrong type of arguments passed.\n")) << call;
    }
}

}  // namespace
}  // namespace sg::test

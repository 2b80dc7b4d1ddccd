#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "database/database_fixture.h"

namespace sg::test {
namespace {

namespace fs = std::filesystem;

// "@" stands for the test's folder in programs.
class FileFunctionsTest : public ModuleTest {
  protected:
    FileFunctionsTest() {
        start();
        printed();
        fs::create_directory(folder_ / "in");
        write("in/a.txt", "a");
        write("in/B.TXT", "bb");
        write("in/Plan \u03a9.dwg", "plan");
        write("in/noextension", "n");
        fs::create_directory(folder_ / "in/sub");
    }
    std::string call(std::string program) {
        for (size_t at; (at = program.find('@')) != std::string::npos;)
            program.replace(at, 1, toUtf8(path("in")) + "/");
        const std::string answer = eval(program);
        const std::string text = printed();
        return text.empty() ? answer : answer + " | " + text;
    }
    void setTime(const std::string& name, time_t seconds) {
        const timespec times[] = {{seconds, 0}, {seconds, 900000000}};
        ASSERT_EQ(utimensat(AT_FDCWD, (folder_ / name).c_str(), times, 0), 0);
    }
    time_t timeOf(const std::string& name) {
        struct stat info {};
        stat((folder_ / name).c_str(), &info);
        return info.st_mtime;
    }
    void setReadOnly(const std::string& name) {
        fs::permissions(folder_ / name, fs::perms::owner_read | fs::perms::group_read);
    }
    bool isReadOnly(const std::string& name) {
        return (fs::status(folder_ / name).permissions() & fs::perms::owner_write) ==
               fs::perms::none;
    }
};

TEST_F(FileFunctionsTest, PatternsFindFilesAndFolders) {
    const struct {
        const char *pattern, *answer;
    } cases[] = {
        {"@*.*", "(\".\" \"..\" \"a.txt\" \"B.TXT\" \"noextension\" \"Plan \u03a9.dwg\" \"sub\")"},
        {"@*", "(\".\" \"..\" \"a.txt\" \"B.TXT\" \"noextension\" \"Plan \u03a9.dwg\" \"sub\")"},
        {"@*.txt", "(\"a.txt\" \"B.TXT\")"},
        {"@?.txt", "(\"a.txt\" \"B.TXT\")"},
        {"@??.txt", "nil"},
        {"@a.txt", "(\"a.txt\")"},
        {"@b.txt", "(\"B.TXT\")"},
        {"@plan*", "(\"Plan \u03a9.dwg\")"},
        {"@sub", "(\"sub\")"},
        {"@none*", "nil"},
        {"@none/*", "nil"},
        {"", "nil"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(call(std::string("(sg_fdir \"") + c.pattern + "\")"), c.answer) << c.pattern;
    }
    EXPECT_EQ(call("(sg_fdir (vl-string-translate \"/\" \"\\\\\" \"@*.txt\"))"),
              "(\"a.txt\" \"B.TXT\")");
    EXPECT_EQ(call("(sg_fdir)"), "nil");
    EXPECT_EQ(call("(sg_fdir 5)"), "nil");
    EXPECT_EQ(call("(sg_fdir '(\"@*\"))"), "nil");
}

TEST_F(FileFunctionsTest, CopiesReplaceAndKeepTheTime) {
    setTime("in/a.txt", 1000000000);
    EXPECT_EQ(call("(sg_fcopy \"@A.txt\" \"@new \u00e4.txt\")"), "T");
    EXPECT_EQ(read("in/new \u00e4.txt"), "a");
    EXPECT_EQ(timeOf("in/new \u00e4.txt"), 1000000000);
    EXPECT_EQ(call("(sg_fcopy \"@B.TXT\" \"@A.TXT\")"), "T");
    EXPECT_EQ(read("in/a.txt"), "bb") << "the file that is there, whatever its case";
    EXPECT_FALSE(exists("in/A.TXT"));
    for (const char* failing : {"(sg_fcopy \"@none\" \"@x\")", "(sg_fcopy \"@a.txt\" \"@none/x\")",
                                "(sg_fcopy \"@sub\" \"@x\")", "(sg_fcopy \"@a.txt\" \"@sub\")",
                                "(sg_fcopy \"@a.txt\" \"@A.TXT\")", "(sg_fcopy \"\" \"@x\")",
                                "(sg_fcopy \"@a.txt\" \"\")"}) {
        EXPECT_EQ(call(failing), "nil") << failing;
    }
    EXPECT_FALSE(exists("in/x"));
    EXPECT_EQ(read("in/a.txt"), "bb");
    const std::string few = "; error: ADS request error | \nToo few arguments passed.\n";
    const std::string wrong = "; error: ADS request error | \nWrong type of arguments passed.\n";
    EXPECT_EQ(call("(sg_fcopy)"), few);
    EXPECT_EQ(call("(sg_fcopy \"@a.txt\")"), few);
    EXPECT_EQ(call("(sg_fcopy \"@a.txt\" 1)"), wrong);
    EXPECT_EQ(call("(sg_fcopy nil \"@x\")"), wrong);
}

TEST_F(FileFunctionsTest, CopiesOfAnOpenDatabaseHaveEveryWrite) {
    const struct {
        const char *call, *answer;
    } steps[] = {
        {"(sg_create_db \"@plan.mdb\")", "T"},
        {"(sg_connect \"@plan.mdb\")", "T"},
        {"(sg_command \"CREATE TABLE Rooms (n LONG)\")", "0"},
        {"(sg_command \"INSERT INTO Rooms VALUES (1)\")", "1"},
        {"(sg_fcopy \"@plan.mdb\" \"@copy.mdb\")", "T"},
        {"(sg_command \"INSERT INTO Rooms VALUES (2)\")", "1"},
        {"(< 0 (vl-file-copy \"@plan.mdb\" \"@second.mdb\"))", "T"},
        {"(sg_command \"INSERT INTO Rooms VALUES (3)\")", "1"},
        {"(sg_fcopy \"@copy.mdb\" \"@plan.mdb\")", "nil"},
        {"(sg_sql \"SELECT Count(*) FROM Rooms\")", "(3)"},
        {"(sg_connect \"@copy.mdb\")", "T"},
        {"(sg_sql \"SELECT n FROM Rooms\")", "(1)"},
        {"(sg_connect \"@second.mdb\")", "T"},
        {"(sg_sql \"SELECT Count(*) FROM Rooms\")", "(2)"},
    };
    for (const auto& step : steps)
        EXPECT_EQ(call(step.call), step.answer) << step.call;
}

TEST_F(FileFunctionsTest, ArchivesOfAnOpenDatabaseHaveEveryWrite) {
    call("(sg_create_db \"@plan.mdb\")");
    call("(sg_connect \"@plan.mdb\")");
    call("(sg_command \"CREATE TABLE Rooms (n LONG)\")");
    EXPECT_EQ(call("(CreateZip \"@plan.zip\" '(\"@plan.mdb\"))"), "T");
    EXPECT_EQ(call("(ExtractZip \"@plan.zip\" \"@out\")"), "T");
    EXPECT_EQ(call("(sg_connect \"@out/plan.mdb\")"), "T");
    EXPECT_EQ(call("(sg_list_tables)"), "(\"Rooms\")");
}

TEST_F(FileFunctionsTest, AChangeOfAnOpenDatabaseMakesItNewer) {
    call("(sg_create_db \"@plan.mdb\")");
    call("(sg_fcopy \"@plan.mdb\" \"@copy.mdb\")");
    setTime("in/plan.mdb", 1000000000);
    setTime("in/copy.mdb", 1000000001);
    call("(sg_connect \"@plan.mdb\")");
    EXPECT_EQ(call("(sg_fcopyIfChanged \"@plan.mdb\" \"@copy.mdb\")"), "nil");
    call("(sg_command \"CREATE TABLE Rooms (n LONG)\")");
    EXPECT_EQ(call("(sg_fcopyIfChanged \"@plan.mdb\" \"@copy.mdb\")"), "T");
    call("(sg_connect \"@copy.mdb\")");
    EXPECT_EQ(call("(sg_list_tables)"), "(\"Rooms\")");
}

TEST_F(FileFunctionsTest, ReadOnlyFilesStay) {
    setReadOnly("in/B.TXT");
    EXPECT_EQ(call("(sg_fcopy \"@a.txt\" \"@B.TXT\")"), "nil");
    EXPECT_EQ(call("(sg_fdelete \"@B.TXT\")"), "nil");
    EXPECT_EQ(read("in/B.TXT"), "bb");
    EXPECT_EQ(call("(sg_fcopy \"@B.TXT\" \"@copy\")"), "T");
    EXPECT_TRUE(isReadOnly("in/copy")) << "what a file may be used for is copied";
    EXPECT_EQ(call("(sg_fmove \"@B.TXT\" \"@moved\")"), "T");
    EXPECT_TRUE(isReadOnly("in/moved"));
}

TEST_F(FileFunctionsTest, CopyIfChangedGoesByWholeSeconds) {
    const struct {
        time_t source, destination;
        bool copies;
    } cases[] = {{1000, 1000, false}, {1001, 1000, true}, {999, 1000, false}};
    for (const auto& c : cases) {
        write("in/from", "new content");
        write("in/to", "old");
        setTime("in/from", c.source);
        setTime("in/to", c.destination);
        EXPECT_EQ(call("(sg_fcopyIfChanged \"@from\" \"@to\")"), c.copies ? "T" : "nil");
        EXPECT_EQ(read("in/to"), c.copies ? "new content" : "old");
    }
    EXPECT_EQ(call("(sg_fcopyIfChanged \"@from\" \"@none\")"), "nil");
    EXPECT_FALSE(exists("in/none"));
    for (const char* call_ :
         {"(sg_fcopyIfChanged \"@none\" \"@to\")", "(sg_fcopyIfChanged \"@sub\" \"@to\")",
          "(sg_fcopyIfChanged \"@from\")", "(sg_fcopyIfChanged)", "(sg_fcopyIfChanged 1 2)"}) {
        EXPECT_EQ(call(call_), "nil") << call_;
    }
}

TEST_F(FileFunctionsTest, MoveDeleteAndFolders) {
    const struct {
        const char *call, *answer;
    } steps[] = {
        {"(sg_fmove \"@a.txt\" \"@B.txt\")", "nil"},
        {"(sg_fmove \"@a.txt\" \"@none/a.txt\")", "nil"},
        {"(sg_fmove \"@a.txt\" \"@c.txt\")", "T"},
        {"(sg_fmove \"@a.txt\" \"@c.txt\")", "nil"},
        {"(sg_fmove \"@c.txt\")", "nil"},
        {"(sg_fmove)", "nil"},
        {"(sg_fdelete \"@C.TXT\")", "T"},
        {"(sg_fdelete \"@c.txt\")", "nil"},
        {"(sg_fdelete \"@sub\")", "nil"},
        {"(sg_fdelete \"@*.txt\")", "nil"},
        {"(sg_fdelete)", "nil"},
        {"(sg_fdelete 1)", "nil"},
        {"(sg_mkdir \"@sub\")", "nil"},
        {"(sg_mkdir \"@one/two\")", "nil"},
        {"(sg_mkdir \"@one\")", "T"},
        {"(sg_mkdir \"@One\\\\Two \u03a9\")", "T"},
        {"(sg_rmdir \"@one\")", "nil"},
        {"(sg_fmove \"@one\" \"@moved\")", "T"},
        {"(sg_rmdir \"@moved/two \u03a9\")", "T"},
        {"(sg_rmdir \"@moved\")", "T"},
        {"(sg_rmdir \"@moved\")", "nil"},
        {"(sg_rmdir \"@B.TXT\")", "nil"},
    };
    for (const auto& step : steps)
        EXPECT_EQ(call(step.call), step.answer) << step.call;
    for (const char* wrong : {"(sg_mkdir)", "(sg_mkdir 1)", "(sg_rmdir)", "(sg_rmdir nil)"}) {
        EXPECT_EQ(call(wrong), "; error: ADS request error | \nWrong type of arguments passed.\n");
    }
    EXPECT_EQ(read("in/B.TXT"), "bb");
}

}  // namespace
}  // namespace sg::test

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <ctime>

#include "host/lisp/functions/program_test.h"

namespace sg::lisp {
namespace {

using testing::MatchesRegex;

class FileSystemTest : public ProgramTest {
  protected:
    struct Case {
        const wchar_t* program;
        const wchar_t* value;
    };
    void check(std::initializer_list<Case> cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(run(each.program), each.value) << toUtf8(each.program);
        }
    }
};

TEST_F(FileSystemTest, FindfileAnswersFullPaths) {
    write("Sub/Plan.lsp", "1");
    const std::wstring plan = L"\"" + path("Sub/Plan.lsp") + L"\"";
    EXPECT_EQ(run(L"(findfile \"Sub/Plan.lsp\")"), plan);
    EXPECT_EQ(run(L"(findfile \"sub\\\\PLAN.LSP\")"), plan);
    EXPECT_EQ(run(L"(findtrustedfile \"" + path("sub/plan.lsp") + L"\")"), plan);
    EXPECT_EQ(run(L"(findfile \"SUB\")"), L"\"" + path("Sub") + L"\"") << "folders are found too";
    check({{L"(findfile \"none.lsp\")", L"nil"},
           {L"(findfile \"\")", L"nil"},
           {L"(findfile \"C:\\\\none\\\\x.lsp\")", L"nil"},
           {L"(findfile nil)", L"; error: bad argument type: stringp nil"}});

    Hooks hooks = in.hooks();
    hooks.findFile = [](const std::wstring& name) -> std::optional<std::wstring> {
        if (name == L"x.dwg") return L"/support/x.dwg";
        return std::nullopt;
    };
    in.setHooks(hooks);
    check({{L"(findfile \"x.dwg\")", L"\"/support/x.dwg\""},
           {L"(findfile \"Sub/Plan.lsp\")", L"nil"}});
}

TEST_F(FileSystemTest, CopyRenameDelete) {
    write("a.txt", "12345");
    check({{L"(vl-file-copy \"a.txt\" \"b.txt\")", L"5"},
           {L"(vl-file-copy \"a.txt\" \"b.txt\")", L"nil"},
           {L"(vl-file-copy \"a.txt\" \"b.txt\" nil)", L"nil"},
           {L"(vl-file-copy \"a.txt\" \"b.txt\" T)", L"5"},
           {L"(vl-file-size \"b.txt\")", L"10"},
           {L"(vl-file-copy \"a.txt\" \"A.TXT\" T)", L"nil"},
           {L"(vl-file-copy \"none\" \"c.txt\")", L"nil"},
           {L"(vl-file-copy \"a.txt\" \"none/c.txt\")", L"nil"},
           {L"(vl-file-copy \"a.txt\" 1)", L"; error: bad argument type: stringp 1"},
           {L"(vl-file-rename \"a.txt\" \"b.txt\")", L"nil"},
           {L"(vl-file-rename \"none\" \"c.txt\")", L"nil"},
           {L"(vl-file-rename \"a.txt\" \"c.txt\")", L"T"},
           {L"(vl-file-size \"a.txt\")", L"nil"},
           {L"(vl-file-delete \"c.txt\")", L"T"},
           {L"(vl-file-delete \"c.txt\")", L"nil"},
           {L"(vl-mkdir \"d\")", L"T"},
           {L"(vl-mkdir \"D\")", L"nil"},
           {L"(vl-mkdir \"x/y\")", L"nil"},
           {L"(vl-file-delete \"d\")", L"nil"},
           {L"(vl-file-directory-p \"D\")", L"T"},
           {L"(vl-file-directory-p \"b.txt\")", L"nil"},
           {L"(vl-file-directory-p \"none\")", L"nil"},
           {L"(vl-file-size \"d\")", L"0"}});
    EXPECT_EQ(read("b.txt"), "1234512345");
}

TEST_F(FileSystemTest, SizesBeyondTheIntegersAreReal) {
    write("big");
    std::error_code error;
    std::filesystem::resize_file("big", 0x7FFFFFFF, error);
    if (error) GTEST_SKIP() << "no such large files here";
    EXPECT_EQ(run(L"(vl-file-size \"big\")"), L"2147483647");
    std::filesystem::resize_file("big", uint64_t{3} << 30);
    EXPECT_EQ(run(L"(vl-file-size \"big\")"), L"3.22123e+09");
}

TEST_F(FileSystemTest, SystimeIsLocal) {
    write("f.txt");
    std::tm when{};
    when.tm_year = 117;
    when.tm_mon = 0;
    when.tm_mday = 31;
    when.tm_hour = 14;
    when.tm_min = 30;
    when.tm_sec = 5;
    when.tm_isdst = -1;
    const timespec times[2] = {{std::mktime(&when), 0}, {std::mktime(&when), 123456789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, "f.txt", times, 0), 0);
    check({{L"(vl-file-systime \"F.TXT\")", L"(2017 1 2 31 14 30 5 123)"},
           {L"(vl-file-systime \"none\")", L"nil"}});
}

TEST_F(FileSystemTest, DirectoryFiles) {
    for (const char* name : {"d/b.dwg", "d/A.DWG", "d/noext", "d/sub/x", "d/c.lsp"})
        write(name);
    check(
        {{L"(vl-directory-files \"D\" \"*.dwg\")", L"(\"A.DWG\" \"b.dwg\")"},
         {L"(vl-directory-files \"d\" \"*.*\" 1)", L"(\"A.DWG\" \"b.dwg\" \"c.lsp\" \"noext\")"},
         {L"(vl-directory-files \"d\" nil -1)", L"(\".\" \"..\" \"sub\")"},
         {L"(vl-directory-files \"d\" \"?.???\" 0)", L"(\"A.DWG\" \"b.dwg\" \"c.lsp\")"},
         {L"(vl-directory-files \"none\")", L"nil"},
         {L"(vl-directory-files nil \"d\")", L"(\"d\")"},
         {L"(vl-directory-files \"d\" \"x\")", L"nil"},
         {L"(vl-directory-files \"d\" nil \"1\")", L"; error: bad argument type: fixnump: \"1\""}});
}

TEST_F(FileSystemTest, PartsOfNames) {
    check({{L"(vl-filename-base \"c:\\\\work\\\\plan.dwg\")", L"\"plan\""},
           {L"(vl-filename-directory \"c:\\\\work\\\\plan.dwg\")", L"\"c:\\\\work\""},
           {L"(vl-filename-directory \"plan.dwg\")", L"\"\""},
           {L"(vl-filename-extension \"plan.dwg\")", L"\".dwg\""},
           {L"(vl-filename-extension \"plan\")", L"nil"},
           {L"(vl-filename-base 1)", L"; error: bad argument type: stringp 1"}});
}

TEST_F(FileSystemTest, TemporaryNamesAreUnlikeEachOther) {
    const std::wstring first = run(L"(vl-filename-mktemp)");
    EXPECT_NE(run(L"(vl-filename-mktemp)"), first);
    const std::string here = toUtf8(path());
    EXPECT_THAT(toUtf8(run(L"(vl-filename-mktemp \"my.del\" \"" + path() + L"\")")),
                MatchesRegex("\"" + here + "/my[^/]*\\.del\""));
    EXPECT_THAT(toUtf8(run(L"(vl-filename-mktemp \"my.del\" \"" + path() + L"\" \".x\")")),
                MatchesRegex("\"" + here + "/my[^/]*\\.x\""));
    EXPECT_THAT(toUtf8(run(L"(vl-filename-mktemp nil \"" + path() + L"\" nil)")),
                MatchesRegex("\"" + here + "/[^/]+\""));
    EXPECT_TRUE(std::filesystem::is_empty(folder_)) << "a name only, no file";
}

TEST_F(FileSystemTest, Environment) {
    const WithEnvironment restored("SWIFTGATE_TEST_VARIABLE", "one");
    check(
        {{L"(getenv \"SWIFTGATE_TEST_VARIABLE\")", L"\"one\""},
         {L"(setenv \"SWIFTGATE_TEST_VARIABLE\" \"zw\u00F6lf\")", L"\"zw\u00F6lf\""},
         {L"(getenv \"SWIFTGATE_TEST_VARIABLE\")", L"\"zw\u00F6lf\""},
         {L"(getenv \"SWIFTGATE_TEST_NO_VARIABLE\")", L"nil"},
         {L"(setenv \"A=B\" \"x\")", L"; error: bad argument value: environment variable: \"A=B\""},
         {L"(setenv \"\" \"x\")", L"; error: bad argument value: environment variable: \"\""},
         {L"(setenv \"A\" 1)", L"; error: bad argument type: stringp 1"}});
}

}  // namespace
}  // namespace sg::lisp

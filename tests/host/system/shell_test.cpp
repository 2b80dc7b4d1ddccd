#include "host/system/shell.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// SWIFTGATE_SHELL records its arguments, one a line, and ends with the status in the file "status".
class ShellTest : public FolderTest {
  protected:
    ShellTest() {
        write("record", "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + (folder_ / "log").string() +
                            "'\nexit $(cat '" + (folder_ / "status").string() + "')\n");
        write("status", "0");
        makeExecutable("record");
    }
    void makeExecutable(const char* name) { chmod((folder_ / name).c_str(), 0755); }
    std::vector<std::string> recorded() {
        std::istringstream lines(read("log"));
        std::vector<std::string> out;
        for (std::string line; std::getline(lines, line);)
            out.push_back(line);
        std::filesystem::remove(folder_ / "log");
        return out;
    }
    std::string full(const char* name) { return (folder_ / name).string(); }

    const WithEnvironment substitute_{"SWIFTGATE_SHELL", (folder_ / "record").string()};
    Shell shell_;
};

TEST_F(ShellTest, OpensAddressesDocumentsAndFolders) {
    write("Read Me.pdf");
    EXPECT_EQ(shell_.execute(L"OPEN", L"http://example.org/a b", L"", L""), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("open", "http://example.org/a b"));
    EXPECT_EQ(shell_.execute(L"", path() + L"\\read me.PDF", L"", L""), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("open", full("Read Me.pdf")));
    EXPECT_EQ(shell_.execute(L"open", L"Read Me.pdf", L"", path()), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("open", full("Read Me.pdf")));
    EXPECT_EQ(shell_.execute(L"Explore", path(), L"", L""), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("open", folder_.string()));
}

TEST_F(ShellTest, AnswersWhatIsMissing) {
    EXPECT_EQ(shell_.execute(L"open", path("none.pdf"), L"", L""), Shell::kFileNotFound);
    EXPECT_EQ(shell_.execute(L"explore", path("record"), L"", L""), Shell::kFileNotFound);
    EXPECT_EQ(shell_.execute(L"print", path("record"), L"", L""), Shell::kNoProgram);
    EXPECT_EQ(shell_.execute(L"open", L"", L"", L""), Shell::kFileNotFound);
    EXPECT_EQ(shell_.start(L"", L""), Shell::kFileNotFound);
    write("status", "31");
    EXPECT_EQ(shell_.execute(L"open", L"mailto:a@b", L"", L""), 31);
    EXPECT_THAT(recorded(), ElementsAre("open", "mailto:a@b"));
}

TEST_F(ShellTest, StartsProgramsWithTheirArguments) {
    write("tool");
    makeExecutable("tool");
    EXPECT_EQ(shell_.execute(L"open", path("Tool"), L"-x \"a b\" c", L""), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("start", full("tool"), "-x", "a b", "c"));
    EXPECT_EQ(shell_.start(L"notepad /p", L"C:\\my file.txt"), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("start", "notepad", "/p", "C:\\my file.txt"));
}

TEST_F(ShellTest, TheFileManagerOpensTheFolderOfWhatItSelects) {
    write("My Reports/r.zip");
    const std::string folder = full("My Reports");
    const std::wstring file = path("My Reports/r.zip");
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"explorer.exe /select," + file, L""},
        {L"EXPLORER /Select, \"" + file + L"\"", L""},
        {L"explorer.exe", L"/select," + file},
        {L"C:\\Windows\\explorer.exe /e,/select," + file, L""},
        {L"explorer.exe /select," + path("my reports/none.zip"), L""},
        {L"explorer " + path("my reports"), L""},
    };
    for (const auto& [command, argument] : cases) {
        EXPECT_EQ(shell_.start(command, argument), Shell::kStarted) << toUtf8(command);
        EXPECT_THAT(recorded(), ElementsAre("open", folder)) << toUtf8(command);
    }
    EXPECT_EQ(shell_.start(L"explorer.exe /select," + path("none/x"), L""), Shell::kFileNotFound);
}

TEST_F(ShellTest, TheFileManagerSelects) {
    EXPECT_EQ(shell_.select(L"/jobs", {L"/jobs/a b.dxf", L"/jobs/c.dxf"}), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("select", "/jobs", "/jobs/a b.dxf", "/jobs/c.dxf"));
    EXPECT_EQ(shell_.select(L"/jobs", {}), Shell::kStarted);
    EXPECT_THAT(recorded(), ElementsAre("open", "/jobs"));
}

TEST_F(ShellTest, WhereTheFileManagerCannotSelectItOpensTheFolder) {
    const WithEnvironment none("SWIFTGATE_SHELL", "");
    const WithEnvironment onlyHere("PATH", folder_.string() + ":/bin:/usr/bin");
    write("xdg-open", "#!/bin/sh\nprintf '%s' \"$1\" > '" + full("opened") + "'\n");
    write("dbus-send", "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + full("log") + "'\nexit 1\n");
    makeExecutable("xdg-open");
    makeExecutable("dbus-send");
    EXPECT_EQ(shell_.select(path(), {L"/jobs/a b,\u00e9.dxf", L"/c"}), Shell::kStarted);
    EXPECT_THAT(
        recorded(),
        ElementsAre("--session", "--print-reply", "--dest=org.freedesktop.FileManager1",
                    "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1.ShowItems",
                    "array:string:file:///jobs/a%20b%2C%C3%A9.dxf,file:///c", "string:"));
    EXPECT_EQ(read("opened"), folder_.string());

    std::filesystem::remove(folder_ / "opened");
    write("dbus-send", "#!/bin/sh\nexit 0\n");
    EXPECT_EQ(shell_.select(path(), {L"/c"}), Shell::kStarted);
    EXPECT_FALSE(exists("opened"));
}

TEST_F(ShellTest, WithoutTheSubstituteThingsReallyRun) {
    const WithEnvironment none("SWIFTGATE_SHELL", "");
    const WithEnvironment onlyHere("PATH", folder_.string());
    write("document.pdf");
    EXPECT_EQ(shell_.execute(L"open", path("document.pdf"), L"", L""), Shell::kNoProgram);
    EXPECT_EQ(shell_.start(L"no-such-program", L""), Shell::kFileNotFound);
    write("xdg-open", "#!/bin/sh\nexit 3\n");
    makeExecutable("xdg-open");
    EXPECT_EQ(shell_.execute(L"open", path("document.pdf"), L"", L""), Shell::kNoProgram);
    write("xdg-open", "#!/bin/sh\nexit 2\n");
    EXPECT_EQ(shell_.execute(L"open", L"http://x", L"", L""), Shell::kFileNotFound);
    write("xdg-open", "#!/bin/sh\nprintf '%s' \"$1\" > '" + full("opened") + "'\n");
    EXPECT_EQ(shell_.execute(L"open", L"http://x", L"", L""), Shell::kStarted);
    EXPECT_EQ(read("opened"), "http://x");
    write("not a program", "text");
    makeExecutable("not a program");
    EXPECT_EQ(shell_.execute(L"open", path("not a program"), L"", L""), Shell::kStarted);
    EXPECT_EQ(read("opened"), full("not a program")) << "opened as the document that it is";
}

TEST(ShellWordsTest, QuotesKeepBlanksTogether) {
    EXPECT_THAT(Shell::words(L"  a  \"b c\" d\"e f\"g \"\" "),
                ElementsAre(L"a", L"b c", L"de fg", L""));
    EXPECT_THAT(Shell::words(L" "), IsEmpty());
    EXPECT_THAT(Shell::words(L"\"open end"), ElementsAre(L"open end"));
}

}  // namespace
}  // namespace sg

#include "host/ui/file_window.h"

#include <gmock/gmock.h>

#include "host/editor/file_dialog.h"
#include "host/editor/script_input.h"
#include "host/seam/host_fixture.h"
#include "platform/win/message_box.h"

namespace sg::ui {
namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;

class FileWindowTest : public HostTest {
  protected:
    FileWindowTest() {
        start();
        for (const char* const folder : {"jobs", "jobs/b12", "jobs/A1"})
            std::filesystem::create_directory(folder_ / folder);
        for (const char* const file : {"jobs/two.dwg", "jobs/One.DWG", "jobs/note.txt"})
            write(file, "");
        request.folder = fromUtf8((folder_ / "jobs").string());
        request.filter = L"Drawings|*.dwg|Others|*.txt;*.x|All|*.*||";
        request.takes = [this](const std::wstring& answer) {
            asked.push_back(toUtf8(answer));
            return asked.size() > refusals;
        };
    }

    // What is chosen, without the test's folder; empty when it is cancelled.
    std::string choose(std::wstring_view lines) {
        std::wstring error;
        auto script = ScriptInput::parse(
            lines, L"in.txt",
            [this](const std::wstring& what) { host().output().reportError(what); }, error);
        EXPECT_TRUE(script != nullptr) << toUtf8(error);
        host().setInput({script});
        FileWindow window(nullptr, request);
        if (window.DoModal() != IDOK) return {};
        const std::string chosen = toUtf8(window.Chosen());
        const std::string folder = folder_.string() + "/";
        return chosen.starts_with(folder) ? chosen.substr(folder.size()) : chosen;
    }

    FileRequest request;
    std::vector<std::string> asked;
    size_t refusals = 0;
};

TEST_F(FileWindowTest, FilesAreChosenByNameAndFromTheList) {
    const struct {
        const wchar_t* lines;
        const char* chosen;
    } cases[] = {
        {L"set 1148 new.dwg\nok\n", "jobs/new.dwg"},
        {L"choose 1120 two.dwg\nok\n", "jobs/two.dwg"},
        {L"choose 1120 b12\nok\nset 1148 x\nok\n", "jobs/b12/x"},
        {L"press Up\nset 1148 jobs/x\nok\n", "jobs/x"},
        {L"key 1120 Down Right Left Left\nset 1148 x\nok\n", "x"},
        {L"set 1148 /etc/x\nok\n", "/etc/x"},
        {L"choose 1136 Others\nchoose 1120 note.txt\nok\n", "jobs/note.txt"},
        {L"choose 1120 two.dwg\ncancel\n", ""},
        {L"ok\nset 1148\nok\ncancel\n", ""},
    };
    for (const auto& one : cases)
        EXPECT_EQ(choose(one.lines), one.chosen) << toUtf8(one.lines);
}

TEST_F(FileWindowTest, TheListHasFoldersAndFilesOfTheKind) {
    choose(L"show\nchoose 1136 Others\nshow\nchoose 1136 All\nshow\n");
    const std::string folders = "    0 A1\n    1 b12\n";
    const std::string shown = printed();
    EXPECT_THAT(shown, HasSubstr(folders + "    2 One.DWG\n    3 two.dwg\n  "));
    EXPECT_THAT(shown, HasSubstr(folders + "    2 note.txt\n  "));
    EXPECT_THAT(shown, HasSubstr(folders + "    2 note.txt\n    3 One.DWG\n    4 two.dwg\n  "));
}

TEST_F(FileWindowTest, ItStaysOpenUntilTheAnswerIsTaken) {
    refusals = 2;
    EXPECT_EQ(choose(L"set 1148 a\nok\nok\nset 1148 b\nok\n"), "jobs/b");
    EXPECT_EQ(asked.size(), 3U);
}

TEST_F(FileWindowTest, FoldersComeFromTheListBeforeTheName) {
    request.kind = FileRequest::Kind::folder;
    request.name = L"/last";
    request.recent = {L"/last", L"/earlier"};
    EXPECT_EQ(choose(L"ok\n"), "/last");
    EXPECT_EQ(choose(L"choose 1148 /earlier\nok\n"), "/earlier");
    EXPECT_EQ(choose(L"choose 1120 b12\nok\n"), "jobs/b12");
    EXPECT_EQ(choose(L"choose 1120 b12\nkey 1120 Right\nok\n"), "jobs/b12");
    EXPECT_EQ(choose(L"set 1148\nok\nshow\n"), "");
    EXPECT_EQ(asked.back(), "") << "whether no folder is one is the caller's to say";
    EXPECT_THAT(printed(), Not(HasSubstr("two.dwg")));
}

// As the chooser of files asks about what it is answered.
TEST_F(FileWindowTest, BoxesComeUpBeforeIt) {
    FileDialog dialog{request, L"dwg", true, false};
    InputChain chain;
    class Window : public InputSource {
      public:
        std::function<std::string()> choose;
        FileRequest* asked = nullptr;
        Answer<std::wstring> file(const FileRequest& request) override {
            asked->takes = request.takes;
            const std::string chosen = choose();
            return chosen.empty() ? Answer<std::wstring>::cancel()
                                  : Answer<std::wstring>::of(fromUtf8(chosen));
        }
        Answer<int> messageBox(const BoxRequest& box) override {
            texts.push_back(toUtf8(box.text));
            return Answer<int>::of(IDOK);
        }
        std::vector<std::string> texts;
    };
    const auto window = std::make_shared<Window>();
    window->asked = &request;
    window->choose = [this] { return choose(L"set 1148 three\nok\nset 1148 two\nok\n"); };
    chain.add(window);
    EXPECT_EQ(askForFile(chain, dialog), fromUtf8((folder_ / "jobs/two.dwg").string()));
    ASSERT_EQ(window->texts.size(), 1U);
    EXPECT_THAT(window->texts[0], HasSubstr("three.dwg\nFile not found."));
}

TEST(FileKindsTest, FiltersAreTakenApart) {
    const auto kinds = fileKinds(L"A (*.a)|*.a;*.b|All Files (*.*)|*.*||");
    ASSERT_EQ(kinds.size(), 2U);
    EXPECT_EQ(kinds[0].name, QStringLiteral("A (*.a)"));
    EXPECT_EQ(kinds[0].patterns, (QStringList{"*.a", "*.b"}));
    EXPECT_EQ(kinds[1].patterns, QStringList{"*"});
    for (const wchar_t* const odd : {L"", L"|", L"A"})
        EXPECT_EQ(fileKinds(odd).size(), 1U);
}

}  // namespace
}  // namespace sg::ui

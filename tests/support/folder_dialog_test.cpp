#include "support/folder_dialog.h"

#include <gmock/gmock.h>

#include "host/editor/script_input.h"
#include "host/seam/host_fixture.h"
#include "platform/win/message_box.h"
#include "platform/win/profile.h"
#include "support/history_combo.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Answers choosers with given texts, then cancels, and writes down what it was shown.
class Answers : public InputSource {
  public:
    explicit Answers(std::vector<std::wstring> texts) : texts_(std::move(texts)) {}
    Answer<std::wstring> file(const FileRequest& request) override {
        requests.push_back(request);
        if (requests.size() > texts_.size()) return Answer<std::wstring>::cancel();
        return Answer<std::wstring>::of(texts_[requests.size() - 1]);
    }
    Answer<int> messageBox(const BoxRequest& request) override {
        boxes.push_back(toUtf8(request.title) + ": " + toUtf8(request.text));
        return Answer<int>::of(IDOK);
    }
    std::vector<FileRequest> requests;
    std::vector<std::string> boxes;

  private:
    const std::vector<std::wstring> texts_;
};

class FolderDialogTest : public test::HostTest {
  protected:
    FolderDialogTest() {
        make();
        for (const char* const name : {"a", "b", "c"})
            std::filesystem::create_directory(folder_ / name);
    }
    std::shared_ptr<Answers> answer(std::vector<std::wstring> texts) {
        auto answers = std::make_shared<Answers>(std::move(texts));
        host().setInput({answers});
        return answers;
    }
    static std::vector<std::wstring> history() {
        CHistoryCombo combo(L"FolderHistory", L"Folder");
        combo.LoadHistory();
        return combo.items();
    }
    static std::wstring stored(const wchar_t* entry) {
        return AfxGetApp()->GetProfileString(L"FolderHistory", entry);
    }
};

TEST_F(FolderDialogTest, TheChosenFolderIsRemembered) {
    const auto answers = answer({path("A"), path("b"), path("a")});
    for (int i = 0; i < 3; ++i) {
        CXFolderDialog dialog(path().c_str(), nullptr);
        dialog.SetTitle(i == 0 ? L"" : L"Job folder");
        ASSERT_EQ(dialog.DoModal(), IDOK);
        EXPECT_EQ(dialog.GetPath(), path(i == 1 ? "b" : "a"));
    }
    EXPECT_EQ(answers->requests[0].title, L"Select Folder");
    EXPECT_EQ(answers->requests[0].name, L"");
    EXPECT_EQ(answers->requests[0].folder, path());
    EXPECT_EQ(answers->requests[2].title, L"Job folder");
    EXPECT_EQ(answers->requests[2].name, path("b")) << "the field begins with the latest";
    EXPECT_THAT(answers->requests[2].recent, ElementsAre(path("b"), path("a")));
    EXPECT_THAT(history(), ElementsAre(path("a"), path("b")));
    EXPECT_EQ(stored(L"Folder0001"), path("b"));
    EXPECT_EQ(stored(L"Last"), path("a"));
}

TEST_F(FolderDialogTest, WrongAnswersKeepItOpen) {
    const auto answers = answer({L"", path("none"), path("c")});
    CXFolderDialog dialog(nullptr, nullptr);
    dialog.SetTitle(L"Where");
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.GetPath(), path("c"));
    EXPECT_THAT(answers->boxes, ElementsAre("Where: Please select a folder.",
                                            "Where: The folder '" + (folder_ / "none").string() +
                                                "' isn't accessible."));
    EXPECT_EQ(answers->requests[2].name, path("none")) << "what was typed still stands there";
    EXPECT_THAT(history(), ElementsAre(path("c")));
}

TEST_F(FolderDialogTest, CancellingChangesNothing) {
    const auto answers = answer({path("none")});
    CXFolderDialog dialog(nullptr, nullptr);
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(dialog.GetPath(), L"");
    EXPECT_THAT(history(), IsEmpty());
    EXPECT_EQ(stored(L"Last"), L"");
}

TEST_F(FolderDialogTest, TheHistoryHasAnEnd) {
    CHistoryCombo combo(L"S", L"F");
    for (int i = 0; i < 52; ++i)
        combo.SaveHistory(std::to_wstring(i));
    EXPECT_EQ(combo.items().size(), CHistoryCombo::kMostItems);
    EXPECT_EQ(combo.text(), L"51");
    AfxGetApp()->WriteProfileString(L"S", L"F0050", L"from another version");
    CHistoryCombo again(L"S", L"F");
    EXPECT_EQ(again.text(), L"");
    again.LoadHistory();
    EXPECT_EQ(again.items(), combo.items());
    again.SaveHistory(L"30");
    EXPECT_EQ(again.items().size(), CHistoryCombo::kMostItems) << "it was there already";
    EXPECT_EQ(AfxGetApp()->GetProfileString(L"S", L"F0050"), L"");
    AfxGetApp()->WriteProfileString(L"S", L"F0003", nullptr);
    again.LoadHistory();
    EXPECT_EQ(again.items().size(), 3u) << "up to the first that is missing";
}

}  // namespace
}  // namespace sg

#include "host/editor/file_dialog.h"

#include <gmock/gmock.h>

#include "host/editor/script_input.h"
#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

// Choosers that a script answers; what the script does not answer is in reports_.
class FileDialogTest : public FolderTest {
  protected:
    FileDialogTest() {
        write("plan.dxf");
        write("sub/part.dxf");
        dialog_.request.title = L"Pick";
        dialog_.request.folder = path();
        dialog_.defaultExtension = L"dxf";
    }
    std::string ask(const std::string& script) {
        std::wstring error;
        InputChain chain;
        reports_.clear();
        const auto report = [this](const std::wstring& text) { reports_ += toUtf8(text) + "\n"; };
        auto lines = ScriptInput::parse(fromUtf8(script), L"s", report, error);
        chain.add(lines);
        chain.add(std::make_shared<UnattendedInput>(report));
        const auto chosen = askForFile(chain, dialog_);
        EXPECT_EQ(lines->used(), lines->items().size()) << script;
        return chosen ? toUtf8(*chosen) : "cancelled";
    }
    std::string full(const char* name) { return (folder_ / name).string(); }

    FileDialog dialog_;
    std::string reports_;
};

TEST_F(FileDialogTest, NamesAreSeenFromTheFolder) {
    const std::pair<std::string, std::string> cases[] = {
        {"plan.dxf", full("plan.dxf")},    {"PLAN.dxf", full("plan.dxf")},
        {"plan", full("plan.dxf")},        {"none", full("none.dxf")},
        {"none.", full("none.")},          {"sub\\part", full("sub/part.dxf")},
        {"sub/../plan", full("plan.dxf")}, {"/tmp/x.y/z", "/tmp/x.y/z.dxf"},
    };
    for (const auto& [name, chosen] : cases)
        EXPECT_EQ(ask("file " + name), chosen) << name;
    EXPECT_EQ(ask("file CANCEL"), "cancelled");
    EXPECT_EQ(ask(""), "cancelled");
    EXPECT_THAT(reports_, HasSubstr("file dialog \"Pick\""));
}

TEST_F(FileDialogTest, AFolderIsGoneInto) {
    EXPECT_EQ(ask("file sub\nfile part.dxf"), full("sub/part.dxf"));
    EXPECT_EQ(ask("file sub\nfile ..\nfile x"), full("x.dxf"));
    dialog_.request.folder = path("none");
    EXPECT_EQ(ask("file x"), (std::filesystem::current_path() / "x.dxf").string());
}

TEST_F(FileDialogTest, AFileThatMustExist) {
    dialog_.mustExist = true;
    EXPECT_EQ(ask("file none\nbox ok\nfile plan"), full("plan.dxf"));
    EXPECT_THAT(reports_, HasSubstr("file dialog \"Pick\""));
    EXPECT_EQ(ask("file none"), "cancelled");
    EXPECT_THAT(reports_, HasSubstr(full("none.dxf") + "\nFile not found."));
}

TEST_F(FileDialogTest, AFileThatWouldBeReplaced) {
    dialog_.request.kind = FileRequest::Kind::save;
    write("bare");
    EXPECT_EQ(ask("file plan"), full("plan.dxf"));
    EXPECT_EQ(ask("file bare"), full("bare.dxf")) << "the name gets its extension";
    dialog_.confirmsReplacing = true;
    EXPECT_EQ(ask("file new"), full("new.dxf"));
    EXPECT_EQ(ask("file plan\nbox yes"), full("plan.dxf"));
    EXPECT_EQ(ask("file plan\nbox no\nfile other"), full("other.dxf"));
    EXPECT_EQ(ask("file plan"), "cancelled") << "nobody has said yes";
    dialog_.defaultExtension.clear();
    EXPECT_EQ(ask("file new"), full("new"));
}

}  // namespace
}  // namespace sg

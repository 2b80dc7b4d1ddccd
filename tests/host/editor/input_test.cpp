#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/encoding.h"
#include "host/editor/input_source.h"
#include "host/editor/message_buttons.h"
#include "host/editor/script_input.h"
#include "host/editor/terminal_input.h"
#include "platform/win/message_box.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = ScriptItem::Kind;
using Form = ScriptPoint::Form;

class ScriptInputTest : public testing::Test {
  protected:
    std::shared_ptr<ScriptInput> parse(std::wstring_view content) {
        return ScriptInput::parse(
            content, L"in.txt",
            [this](const std::wstring& text) { reports_.push_back(toUtf8(text)); }, error_);
    }
    ScriptItem one(std::wstring_view line) {
        const auto script = parse(line);
        if (script == nullptr || script->items().size() != 1) {
            ADD_FAILURE() << toUtf8(line) << ": " << toUtf8(error_);
            return {};
        }
        return script->items()[0];
    }
    std::vector<std::string> reports_;
    std::wstring error_;
};

TEST_F(ScriptInputTest, KindsAndOperands) {
    const struct {
        const wchar_t* line;
        Kind kind;
        const wchar_t* value;
    } cases[] = {
        {L"10,20", Kind::point, L"10,20"},
        {L"  -1.5,+2e3,.5  # corner", Kind::point, L"-1.5,+2e3,.5"},
        {L"@5,0", Kind::point, L"@5,0"},
        {L"@8<45", Kind::point, L"@8<45"},
        {L"45.5", Kind::number, L"45.5"},
        {L"-3", Kind::number, L"-3"},
        {L"45d30'15\"", Kind::number, L"45d30'15\""},
        {L"50g", Kind::number, L"50g"},
        {L"N45d30'E", Kind::number, L"N45d30'E"},
        {L"entity 2F", Kind::entity, L"2F"},
        {L"pick 3,4", Kind::pick, L"3,4"},
        {L"keyword Middle # comment", Kind::keyword, L"Middle"},
        {L"text a  # no comment ", Kind::text, L"a  # no comment "},
        {L"text", Kind::text, L""},
        {L"text  x", Kind::text, L" x"},
        {L"text line\r", Kind::text, L"line"},
        {L"ENTER", Kind::enter, L""},
        {L"esc # stop", Kind::escape, L""},
        {L"sample @1,1", Kind::sample, L"@1,1"},
        {L"box Yes", Kind::box, L"Yes"},
        {L"file C:\\My Files\\a #1.dwg", Kind::file, L"C:\\My Files\\a #1.dwg"},
        {L"file CANCEL", Kind::file, L""},
        {L"press Add row", Kind::dialog, L"Add row"},
        {L"show # comment", Kind::dialog, L""},
        {L"dblclick 2 3 4", Kind::dialog, L"2 3 4"},
        {L"cell 2 3 = a # b", Kind::dialog, L"2 3 = a # b"},
        {L"ok", Kind::dialog, L""},
    };
    for (const auto& [line, kind, value] : cases) {
        const ScriptItem item = one(line);
        EXPECT_EQ(item.kind, kind) << toUtf8(line);
        EXPECT_EQ(item.value, value) << toUtf8(line);
    }
}

TEST_F(ScriptInputTest, PointsNumbersAndHandlesAreRead) {
    const struct {
        const wchar_t* line;
        Form form;
        double first, second, z;
    } cases[] = {
        {L"10,20", Form::absolute, 10, 20, 0},
        {L"pick 10,20,-3.5", Form::absolute, 10, 20, -3.5},
        {L"@5,-6", Form::relative, 5, -6, 0},
        {L"8<45", Form::polar, 8, 45, 0},
        {L"sample @8<-45.5", Form::relativePolar, 8, -45.5, 0},
    };
    for (const auto& [line, form, first, second, z] : cases) {
        const ScriptPoint point = one(line).point;
        const bool polar = form == Form::polar || form == Form::relativePolar;
        EXPECT_EQ(point.form, form) << toUtf8(line);
        EXPECT_EQ(polar ? point.distance : point.x, first) << toUtf8(line);
        EXPECT_EQ(polar ? point.angle : point.y, second) << toUtf8(line);
        EXPECT_EQ(point.z, z) << toUtf8(line);
    }
    EXPECT_EQ(one(L"entity 1aF").handle, 0x1AFu);
    EXPECT_EQ(one(L"45.5d").number, 45.5);
    EXPECT_EQ(one(L"box RETRY").button, int{IDRETRY});
}

TEST_F(ScriptInputTest, MalformedLinesAreTold) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"10,", "a point, a number or a known word"},
        {L"10 20", "not \"10 20\""},
        {L"1,2,3,4", "a point"},
        {L"8<", "a point"},
        {L"@5", "a point"},
        {L"1.2.3", "a number"},
        {L"1e999", "a number"},
        {L"nan", "a number"},
        {L"-inf,0", "a point"},
        {L"12x", "a number"},
        {L"entity", "a handle (hexadecimal) expected behind \"entity\""},
        {L"entity 0", "a handle"},
        {L"entity 12G", "a handle"},
        {L"entity 12345678901234567", "a handle"},
        {L"pick here", "a point expected behind \"pick\""},
        {L"keyword  # none", "a word"},
        {L"box maybe", "yes, no, ok"},
        {L"box", "yes, no, ok"},
        {L"file", "a path"},
        {L"press", "a name"},
        {L"ENTER now", "nothing expected behind \"enter\""},
        {L"frobnicate", "a known word"},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(parse(L"# first\n\n" + std::wstring(line) + L"\n10,20"), nullptr) << toUtf8(line);
        EXPECT_THAT(toUtf8(error_), HasSubstr("in.txt:3: ")) << toUtf8(line);
        EXPECT_THAT(toUtf8(error_), HasSubstr(expected)) << toUtf8(line);
    }
}

TEST_F(ScriptInputTest, TextRequestsAreAnsweredInOrder) {
    const auto script =
        parse(L"text a b\nkeyword Mid\n45.5\n@1,2\nENTER\nESC\n\n# end\n10,20 # last");
    std::vector<std::wstring> got;
    for (int i = 0; i < 7; ++i) {
        const auto answer = script->text({L"\nPoint: "});
        got.push_back(answer.outcome == Outcome::answered ? answer.value : L"*cancelled*");
    }
    EXPECT_THAT(got, ElementsAre(L"a b", L"Mid", L"45.5", L"@1,2", L"", L"*cancelled*", L"10,20"));
    EXPECT_EQ(script->text({L"\nPoint: "}).outcome, Outcome::none);
    EXPECT_EQ(script->used(), 7u);
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(ScriptInputTest, AWrongLineIsReportedAndAnswersAsEsc) {
    const auto script = parse(L"box yes\n\nbox no\n10,20\nbox retry\ntext done");
    EXPECT_EQ(script->text({L"\nName: "}).outcome, Outcome::cancelled);
    EXPECT_EQ(script->messageBox({L"Title", L"Sure?", MB_YESNO}).value, int{IDNO});
    EXPECT_EQ(script->messageBox({L"Title", L"Sure?", MB_YESNOCANCEL}).value, int{IDCANCEL});
    EXPECT_EQ(script->messageBox({L"Title", L"Sure?", MB_YESNO}).value, int{IDYES});
    EXPECT_EQ(script->text({L"\nName: "}).value, L"done");
    EXPECT_THAT(
        reports_,
        ElementsAre("in.txt:1: the program asked for text (\"Name:\"); the script has \"box yes\", "
                    "which answers as Esc",
                    "message box \"Title\": Sure? [answered: No]",
                    "in.txt:4: the program asked for an answer to the message box \"Title\": Sure? "
                    "(Yes, No, Cancel); the script has \"10,20\", which answers as Esc",
                    "message box \"Title\": Sure? [answered: Cancel]",
                    "in.txt:5: the program asked for an answer to the message box \"Title\": Sure? "
                    "(Yes, No); the script has \"box retry\", which answers as Esc",
                    "message box \"Title\": Sure? [answered: Yes]"));
}

TEST_F(ScriptInputTest, FileLinesAnswerChoosers) {
    const auto script = parse(L"file /a/b c.dxf\nfile CANCEL\ntext x\nfile /d");
    const FileRequest file{FileRequest::Kind::save, L"Save", L"/a", L"b", L"", {}};
    EXPECT_EQ(script->file(file).value, L"/a/b c.dxf");
    EXPECT_EQ(script->file(file).outcome, Outcome::cancelled);
    EXPECT_EQ(script->file(file).outcome, Outcome::cancelled);
    EXPECT_EQ(script->text({L"Name: "}).outcome, Outcome::cancelled) << "a file is no text";
    EXPECT_EQ(script->file(file).outcome, Outcome::none);
    EXPECT_THAT(
        reports_,
        ElementsAre("file dialog \"Save\": b in /a [answered: /a/b c.dxf]",
                    "file dialog \"Save\": b in /a [answered: Cancel]",
                    HasSubstr("in.txt:3: the program asked for a file (\"Save\")"),
                    "file dialog \"Save\": b in /a [answered: Cancel]", HasSubstr("in.txt:4: ")));
}

TEST(MessageButtonsTest, DefaultAndEscape) {
    const struct {
        unsigned flags;
        int byDefault, escape;
    } cases[] = {
        {MB_OK, IDOK, IDOK},
        {MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL, IDCANCEL},
        {MB_YESNO | MB_ICONQUESTION, IDYES, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, IDNO, IDNO},
        {MB_YESNO | MB_DEFBUTTON3, IDYES, IDYES},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, IDNO, IDCANCEL},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, IDIGNORE, IDIGNORE},
        {MB_RETRYCANCEL, IDRETRY, IDCANCEL},
    };
    for (const auto& [flags, byDefault, escape] : cases) {
        EXPECT_EQ(defaultButton(flags), byDefault) << flags;
        EXPECT_EQ(escapeButton(flags), escape) << flags;
    }
}

// A terminal whose lines are given; "^C" is Ctrl-C.
class TerminalTest : public testing::Test {
  protected:
    Answer<std::wstring> readLine(const std::wstring& prompt) {
        prompts_.push_back(prompt);
        if (lines_.empty()) return {};
        const std::wstring line = lines_.front();
        lines_.pop_front();
        return line == L"^C" ? Answer<std::wstring>::cancel() : Answer<std::wstring>::of(line);
    }
    std::deque<std::wstring> lines_;
    std::vector<std::wstring> prompts_;
    std::wstring printed_;
    TerminalInput terminal_{[this](const std::wstring& prompt) { return readLine(prompt); },
                            [this](const std::wstring& text) { printed_ += text; }};
};

TEST_F(TerminalTest, TheLastLineOfAPromptIsTheReadersOwn) {
    lines_ = {L" a b ", L"^C"};
    EXPECT_EQ(terminal_.text({L"\nHelp\nName: "}).value, L" a b ");
    EXPECT_EQ(terminal_.text({L"Name: "}).outcome, Outcome::cancelled);
    EXPECT_EQ(terminal_.text({L"Name: "}).outcome, Outcome::none);
    EXPECT_EQ(printed_, L"\nHelp\n");
    EXPECT_THAT(prompts_, ElementsAre(L"Name: ", L"Name: ", L"Name: "));
}

TEST_F(TerminalTest, BoxesTakeNamesAndTheirStarts) {
    const BoxRequest box{L"Quillon", L"Go on?", MB_YESNOCANCEL | MB_DEFBUTTON2};
    lines_ = {L"maybe", L" YES ", L"c", L"", L"^C"};
    for (const int expected : {IDYES, IDCANCEL, IDNO, IDCANCEL}) {
        EXPECT_EQ(terminal_.messageBox(box).value, expected);
    }
    EXPECT_EQ(terminal_.messageBox(box).outcome, Outcome::none);
    EXPECT_EQ(prompts_[0], L"[Yes/No/Cancel] <No>: ");
    EXPECT_EQ(prompts_.size(), 6u);
    EXPECT_THAT(toUtf8(printed_), HasSubstr("\nQuillon\nGo on?\n"));
}

TEST_F(TerminalTest, ChoosersShowWhereTheyAre) {
    FileRequest file{FileRequest::Kind::open,
                     L"Open",
                     L"/jobs",
                     L"",
                     L"DWG Files (*.dwg)|*.dwg|DXF Files (*.dxf)|*.dxf||",
                     {}};
    lines_ = {L" a b.dwg ", L"", L"^C"};
    EXPECT_EQ(terminal_.file(file).value, L"a b.dwg");
    EXPECT_EQ(toUtf8(printed_), "\nOpen\nFolder: /jobs\nDWG Files (*.dwg), DXF Files (*.dxf)\n");
    EXPECT_EQ(terminal_.file(file).outcome, Outcome::cancelled) << "Enter without a name";
    EXPECT_EQ(terminal_.file(file).outcome, Outcome::cancelled);
    EXPECT_EQ(terminal_.file(file).outcome, Outcome::none);

    FileRequest folder{FileRequest::Kind::folder, L"Where?", L"", L"/jobs", L"", {L"/jobs", L"/x"}};
    lines_ = {L"", L""};
    printed_.clear();
    EXPECT_EQ(terminal_.file(folder).value, L"/jobs");
    EXPECT_EQ(toUtf8(printed_), "\nWhere?\n  /jobs\n  /x\n");
    EXPECT_EQ(prompts_.back(), L"Folder name </jobs>: ");
    folder.name.clear();
    const auto empty = terminal_.file(folder);
    EXPECT_EQ(empty.outcome, Outcome::answered) << "which the dialog refuses with its own words";
    EXPECT_EQ(empty.value, L"");
}

TEST(TypedWordsTest, WordsAndTheRestOfTheLine) {
    TypedWords words;
    words.set(L"  10,20   two words  ");
    EXPECT_EQ(words.text({L"Point: "}).value, L"10,20");
    EXPECT_EQ(words.messageBox({}).outcome, Outcome::none);
    EXPECT_EQ(words.text({L"Text: ", true}).value, L"two words");
    EXPECT_TRUE(words.empty());
    EXPECT_EQ(words.text({L"Text: ", true}).outcome, Outcome::none);
}

TEST(InputChainTest, EachSourceAnswersWhatTheOnesBeforeDoNot) {
    std::vector<std::string> reports;
    const auto report = [&](const std::wstring& text) { reports.push_back(toUtf8(text)); };
    std::wstring error;
    const auto words = std::make_shared<TypedWords>();
    words->set(L"typed");
    InputChain chain;
    EXPECT_EQ(chain.text({L"?"}), std::nullopt);
    EXPECT_EQ(chain.messageBox({L"T", L"t", MB_OKCANCEL}), int{IDCANCEL});
    chain.add(words);
    chain.add(ScriptInput::parse(L"box no\ntext scripted", L"s", report, error));
    chain.add(std::make_shared<UnattendedInput>(report));
    EXPECT_EQ(chain.messageBox({L"T", L"t", MB_YESNO}), int{IDNO}) << "no words for boxes";
    EXPECT_EQ(chain.text({L"?"}), L"typed");
    EXPECT_EQ(chain.text({L"?"}), L"scripted");
    EXPECT_EQ(chain.text({L"?"}), std::nullopt);
    EXPECT_THAT(reports, ElementsAre("message box \"T\": t [answered: No]"));
    reports.clear();
    EXPECT_EQ(chain.messageBox({L"Title", L"Text", MB_YESNO | MB_DEFBUTTON2}), int{IDNO});
    EXPECT_EQ(chain.file({FileRequest::Kind::save, L"Save", L"/a", L"b", L"", {}}), std::nullopt);
    EXPECT_EQ(chain.file({FileRequest::Kind::folder, L"Where", L"", L"", L"", {}}), std::nullopt);
    EXPECT_THAT(reports,
                ElementsAre("message box \"Title\": Text [answered: No]",
                            "file dialog \"Save\": b in /a [answered: Cancel]",
                            "folder dialog \"Where\": in the current folder [answered: Cancel]"));
}

}  // namespace
}  // namespace sg

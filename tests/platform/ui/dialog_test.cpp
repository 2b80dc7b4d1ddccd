#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <gmock/gmock.h>

#include <optional>

#include "grid/check_cell.h"
#include "grid/combo_cell.h"
#include "grid/grid_ctrl.h"
#include "host/editor/script_input.h"
#include "host/seam/host_fixture.h"
#include "host/system/registry.h"
#include "platform/ui/adui_dialog.h"
#include "platform/win/message_box.h"

namespace sg::test {
namespace {

using testing::HasSubstr;

// A dialog with a control of each kind, which writes down what is done to it.
class SampleDialog : public CAdUiDialog, private grid::GridListener {
  public:
    SampleDialog() {
        setWindowTitle(QStringLiteral("Sample"));
        edit = NewEdit(10);
        box = NewCheckBox(11, L"&Solid && flat");
        list = new QListWidget(this);
        list->addItems({"One", "Two", "two"});
        SetControlId(*list, 12);
        text = new QPlainTextEdit(this);
        SetControlId(*text, 0);
        table = new grid::CGridCtrl(this);
        SetControlId(*table, 13);
        list->setFixedHeight(60);
        text->setFixedHeight(40);
        table->setMinimumHeight(80);
        QPushButton* const act = NewButton(14, L"A&ct", [this] { log += "act "; });
        QPushButton* const grey = NewButton(15, L"Grey", [this] { log += "grey "; });
        grey->setEnabled(false);
        auto* const all = new QVBoxLayout(this);
        all->addWidget(NewLabel(L"&Name:", edit));
        for (QWidget* const each : std::initializer_list<QWidget*>{
                 edit, box, list, NewLabel(L"&Long Text:", text), text, table, act, grey})
            all->addWidget(each);
        all->addWidget(NewLabel(L"Says nothing\nto scripts"));
        all->addWidget(NewOkButton());
        all->addWidget(NewCancelButton());
        FillTable();
    }

    QLineEdit* edit;
    QCheckBox* box;
    QListWidget* list;
    QPlainTextEdit* text;
    grid::CGridCtrl* table;
    std::string log;
    bool staysOpen = false;
    std::function<void()> onInit, onOk;

  protected:
    bool OnInitDialog() override {
        if (onInit) onInit();
        return true;
    }
    void OnOK() override {
        if (onOk) onOk();
        if (!staysOpen) CAdUiDialog::OnOK();
    }

  private:
    void FillTable() {
        table->SetColumnCount(4);
        table->SetRowCount(3);
        table->SetFixedRowCount(1);
        table->SetListener(this);
        int column = 0;
        for (const wchar_t* const title : {L"Id", L"Layer", L"Layer Name", L"On"})
            table->SetItemText(0, column++, title);
        table->SetColumnWidth(0, 0);
        for (const int row : {1, 2}) {
            table->SetCellType(row, 2, grid::gridCellClass<grid::CGridCellCombo>());
            auto& cell = static_cast<grid::CGridCellCombo&>(*table->GetCell(row, 2));
            cell.SetOptions({L"Red", L"Green"});
            cell.SetStyle(3);
            table->SetCellType(row, 3, grid::gridCellClass<grid::CGridCheckCell>());
        }
    }
    bool OnBeginEdit(grid::CGridCtrl&, grid::CCellID cell) override {
        return !(cell.row == 2 && cell.col == 1);
    }
    bool OnEndEdit(grid::CGridCtrl&, grid::CCellID cell) override {
        log += "edited " + std::to_string(cell.row) + "," + std::to_string(cell.col) + " ";
        return true;
    }
    void OnSelectionChanged(grid::CGridCtrl&, grid::CCellID cell) override {
        log += "row " + std::to_string(cell.row) + " ";
    }
    void OnDoubleClick(grid::CGridCtrl&, grid::CCellID cell) override {
        log += "double " + std::to_string(cell.row) + " ";
    }
};

class DialogTest : public HostTest {
  protected:
    DialogTest() { start(); }

    // Runs the dialog with the lines of a script.
    intptr_t run(CDialog& dialog, std::wstring_view lines) {
        std::wstring error;
        auto script = ScriptInput::parse(
            lines, L"in.txt",
            [this](const std::wstring& what) { host().output().reportError(what); }, error);
        EXPECT_TRUE(script != nullptr) << toUtf8(error);
        host().setInput({script});
        return dialog.DoModal();
    }
};

TEST_F(DialogTest, EveryLineReachesItsControl) {
    const struct {
        const wchar_t* line;
        std::string log;
        const char* complaint;  // empty: none
    } cases[] = {
        {L"press 14", "act ", ""},
        {L"press act", "act ", ""},
        {L"press 15", "", "button 15 \"Grey\" is disabled"},
        {L"press 16", "", "has no control \"16\""},
        {L"press 14 15", "", "has no control"},
        {L"press 10", "", "edit 10 \"Name:\" is of the kind \"edit\", which cannot be pressed"},
        {L"check 11 on", "", ""},
        {L"check Solid & flat maybe", "", "takes on or off"},
        {L"check 14 on", "", "cannot be checked"},
        {L"choose 12 Three", "", "has no item \"Three\""},
        {L"row 13 2", "row 2 ", ""},
        {L"row 13 0", "", "has headings in row 0"},
        {L"row 13 3", "", "has no row 3"},
        {L"row 12 1", "", "which has no rows"},
        {L"cell 13 1 Layer X", "row 1 edited 1,1 ", ""},
        {L"cell 13 1 Layer Name green", "row 1 edited 1,2 ", ""},
        {L"cell 13 1 \"Layer\" Name", "row 1 edited 1,1 ", ""},
        {L"cell 13 1 2 Blue", "row 1 ", "has no item \"Blue\""},
        {L"cell 13 2 Layer X", "row 2 ", "refuses to edit row 2 column 1"},
        {L"cell 13 1 Id X", "", "does not show column 0"},
        {L"cell 13 1 Colour X", "", "has no column \"Colour X\""},
        {L"cell 13 1 9 X", "", "has no column 9"},
        {L"cell 13 x 1 X", "", "takes the number of a row"},
        {L"cell 13 1 On off", "row 1 edited 1,3 ", ""},
        {L"cell 13 1 On on", "row 1 edited 1,3 ", ""},
        {L"cell 13 1 On 1", "row 1 ", "takes on or off there"},
        {L"dblclick 13 2 Layer", "row 2 double 2 ", ""},
        {L"key 13 Wrong+Key", "", "knows no key \"Wrong+Key\""},
        {L"key 14 Space", "act ", ""},
        {L"shot /nowhere/at/all.png", "", "the picture cannot be written"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(toUtf8(one.line));
        SampleDialog dialog;
        EXPECT_EQ(run(dialog, std::wstring(one.line) + L"\ncancel\n"), IDCANCEL);
        EXPECT_EQ(dialog.log, one.log);
        const std::string said = errors();
        EXPECT_EQ(said.find("in.txt:1: ") == std::string::npos, *one.complaint == 0) << said;
        EXPECT_THAT(said, HasSubstr(one.complaint));
    }
}

TEST_F(DialogTest, TextsAndStatesAreTakenOver) {
    SampleDialog dialog;
    run(dialog,
        L"set 10 first\nset Name second one\nset Long Text one line\ncheck 11 on\nchoose 12 TWO\n"
        L"key 10 End ! Home a\ncell 13 2 2 GREEN\ncell 13 2 On off\nok\n");
    EXPECT_EQ(dialog.edit->text(), QStringLiteral("asecond one!"));
    EXPECT_EQ(dialog.text->toPlainText(), QStringLiteral("one line"));
    EXPECT_TRUE(dialog.box->isChecked());
    EXPECT_EQ(dialog.list->currentRow(), 1);
    EXPECT_EQ(dialog.table->GetItemText(2, 2), L"Green");
    EXPECT_EQ(dialog.table->GetItemText(2, 3), L"0");
    SampleDialog emptied;
    emptied.edit->setText(QStringLiteral("x"));
    run(emptied, L"set 10\nchoose 12 2\nok\n");
    EXPECT_EQ(emptied.edit->text(), QString());
    EXPECT_EQ(emptied.list->currentRow(), 2);
}

TEST_F(DialogTest, ShowTellsAllThatIsThere) {
    SampleDialog dialog;
    run(dialog, L"set 10 x\ncell 13 1 Layer A\nshow\ncancel\n");
    EXPECT_EQ(printed(),
              "\nDialog \"Sample\"\n"
              "  edit 10 \"Name:\": \"x\"\n"
              "  check box 11 \"Solid & flat\": off\n"
              "  list 12\n    0 One\n    1 Two\n    2 two\n"
              "  edit \"Long Text:\": \"\"\n"
              "  grid 13: 3 rows, at 1 1\n"
              "      0: (Id) | Layer | Layer Name | On\n"
              "    > 1: () | A |  | \n"
              "      2: () |  |  | \n"
              "  button 14 \"Act\"\n"
              "  button 15 \"Grey\" (disabled)\n"
              "  text: Says nothing\\nto scripts\n"
              "  button 1 \"OK\"\n"
              "  button 2 \"Cancel\"\n");
}

// Whoever closes it, its report says how it ended.
TEST_F(DialogTest, EndsAreReported) {
    const struct {
        const wchar_t* lines;
        bool staysOpen;
        intptr_t result;
        const char* report;
    } cases[] = {
        {L"ok\n", false, IDOK, "to scripts [answered: OK]"},
        {L"press 1\n", false, IDOK, "[answered: OK]"},
        {L"key 10 Return\n", false, IDOK, "[answered: OK]"},
        {L"key 2 Return\n", false, IDCANCEL, "[answered: Cancel]"},
        {L"key 11 Return\n", false, IDOK, "[answered: OK]"},
        {L"key 13 Esc\n", false, IDCANCEL, "[answered: Cancel]"},
        {L"ESC\n", false, IDCANCEL, "[answered: Cancel]"},
        {L"text what\n", false, IDCANCEL, "the program asked for the dialog \"Sample\""},
        {L"", false, IDCANCEL, "dialog \"Sample\": Says nothing"},
        {L"ok\nok\ncancel\n", true, IDCANCEL, "[answered: Cancel]"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(toUtf8(one.lines));
        SampleDialog dialog;
        dialog.staysOpen = one.staysOpen;
        EXPECT_EQ(run(dialog, one.lines), one.result);
        EXPECT_THAT(errors(), HasSubstr(one.report));
    }
}

// A dialog that does not want to close is closed all the same when nobody is there.
TEST_F(DialogTest, ADialogThatRefusesToBeCancelledEnds) {
    class Stubborn : public SampleDialog {
        void OnCancel() override { ++asked; }

      public:
        int asked = 0;
    } dialog;
    EXPECT_EQ(run(dialog, L""), IDCANCEL);
    EXPECT_EQ(dialog.asked, 1);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DialogTest, DialogsAndBoxesInsideTakeTheLinesThatFollow) {
    SampleDialog dialog;
    intptr_t inner = 0;
    int button = 0;
    dialog.onOk = [&] {
        SampleDialog second;
        second.setWindowTitle(QStringLiteral("Second"));
        inner = second.DoModal();
        button = MessageBoxW(nullptr, L"Sure?", L"Box", MB_YESNO);
    };
    EXPECT_EQ(run(dialog, L"ok\nset 10 x\ncancel\nbox no\n"), IDOK);
    EXPECT_EQ(inner, IDCANCEL);
    EXPECT_EQ(button, IDNO);
    const std::string said = errors();
    EXPECT_LT(said.find("dialog \"Second\""),
              said.find("message box \"Box\": Sure? [answered: No]"));
    EXPECT_LT(said.find("message box"), said.find("dialog \"Sample\""));
}

TEST_F(DialogTest, OneThatEndsWhileItIsFilledIsNeverSeen) {
    SampleDialog dialog;
    bool wasSeen = false;
    dialog.onInit = [&] { dialog.EndDialog(7); };
    dialog.onOk = [&] { wasSeen = true; };
    EXPECT_EQ(run(dialog, L"ok\n"), 7);
    EXPECT_FALSE(wasSeen);
    EXPECT_EQ(errors(), "");
}

// A dialog with somebody before it, who does `act` once it waits.
class AttendedDialog : public SampleDialog {
  public:
    std::function<void(AttendedDialog&)> act;

  private:
    bool HasDisplay() const override { return true; }
    void OnShown() override {
        SampleDialog::OnShown();
        QTimer::singleShot(0, this, [this] { act(*this); });
    }
};

TEST_F(DialogTest, APersonAnswersDialogsAndTheBoxesBeforeThem) {
    host().setInput({std::make_shared<DisplayInput>()});
    AttendedDialog dialog;
    int button = 0;
    dialog.onOk = [&] {
        QTimer::singleShot(0, &dialog, [] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->text(), QStringLiteral("Sure?"));
            EXPECT_EQ(box->defaultButton()->text(), QStringLiteral("No"));
            box->buttons().front()->click();
        });
        button = MessageBoxW(nullptr, L"Sure?", L"Box", MB_YESNO | MB_DEFBUTTON2);
    };
    dialog.act = [](AttendedDialog& shown) {
        EXPECT_TRUE(shown.isVisible());
        static_cast<QPushButton*>(shown.GetDlgItem(IDOK))->click();
    };
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(button, IDYES);
    EXPECT_EQ(errors(), "") << "nothing is reported of what a person answers";
    dialog.act = [](AttendedDialog& shown) { shown.close(); };
    EXPECT_EQ(dialog.DoModal(), IDCANCEL) << "closing the window cancels";
    EXPECT_FALSE(dialog.isVisible());
    // Without a dialog nobody looks at the display.
    EXPECT_EQ(MessageBoxW(nullptr, L"Sure?", L"Box", MB_YESNO | MB_DEFBUTTON2), IDNO);
    EXPECT_THAT(errors(), HasSubstr("[answered: No]"));
}

TEST_F(DialogTest, TabGoesThroughTheControlsInTheirOrder) {
    SampleDialog dialog;
    run(dialog, L"key 10 Tab\nkey 11 Space\nkey 11 Tab\nkey 12 Down\nkey 12 Tab\ncancel\n");
    EXPECT_TRUE(dialog.box->isChecked());
    EXPECT_EQ(dialog.list->currentRow(), 1) << "it came to the first one by Tab";
}

TEST_F(DialogTest, ReturnPressesTheButtonThatHasTheFocus) {
    SampleDialog dialog;
    EXPECT_EQ(run(dialog, L"key 14 Return\nkey 14 Enter\ncancel\n"), IDCANCEL);
    EXPECT_EQ(dialog.log, "act act ");
}

TEST_F(DialogTest, F1ShowsTheHelpOfANamedDialog) {
    SampleDialog nameless;
    run(nameless, L"key 10 F1\ncancel\n");
    EXPECT_EQ(errors().find("help:"), std::string::npos);
    SampleDialog named;
    named.SetDialogName(L"sg_test:Sample");
    run(named, L"key 13 F1\ncancel\n");
    EXPECT_THAT(errors(), HasSubstr("help: ")) << "here there are no documents to show";
}

// --- Places ---

class PlaceTest : public DialogTest {
  protected:
    // Runs a dialog under a name; `resized` is done while it is shown.
    QRect place(const std::function<void(SampleDialog&)>& resized) {
        SampleDialog dialog;
        dialog.SetDialogName(L"sg_test:Sample");
        dialog.SetControlProperty({{13, ELASTICX, 100},
                                   {13, ELASTICY, 100},
                                   {14, MOVEX, 50},
                                   {14, MOVEY, 100},
                                   {10, ELASTICX, 30}});
        QRect shown;
        dialog.staysOpen = true;
        dialog.onOk = [&] {
            shown = dialog.geometry();
            if (resized) resized(dialog);
        };
        run(dialog, L"ok\ncancel\n");
        return shown;
    }
};

TEST_F(PlaceTest, ControlsFollowTheirRules) {
    place([](SampleDialog& dialog) {
        QWidget& act = *dialog.GetDlgItem(14);
        QWidget& grey = *dialog.GetDlgItem(15);
        const QRect table = dialog.table->geometry(), edit = dialog.edit->geometry();
        const QRect button = act.geometry(), still = grey.geometry();
        const QSize size = dialog.size();
        dialog.resize(size + QSize(100, 60));
        EXPECT_EQ(dialog.table->geometry(), table.adjusted(0, 0, 100, 60));
        EXPECT_EQ(dialog.edit->geometry(), edit.adjusted(0, 0, 30, 0));
        EXPECT_EQ(act.geometry(), button.translated(50, 60));
        EXPECT_EQ(grey.geometry(), still);
        dialog.resize(10, 10);
        EXPECT_EQ(dialog.size(), size) << "never smaller than it was laid out";
        EXPECT_EQ(dialog.table->geometry(), table);
    });
}

TEST_F(PlaceTest, PositionAndSizeAreKeptFromOneTimeToTheNext) {
    const QRect first = place({});
    EXPECT_FALSE(host().registry().keyExists(L"HKEY_CURRENT_USER\\Software\\Swift Gate\\Dialogs"))
        << "nobody moved it";
    QRect moved(40, 50, first.width() + 20, first.height() + 10);
    place([&](SampleDialog& dialog) { dialog.setGeometry(moved); });
    EXPECT_EQ(place({}), moved);
    // Off every screen, and smaller than the dialog needs: it comes back.
    place([&](SampleDialog& dialog) { dialog.setGeometry({-9000, 7000, 5000, 5000}); });
    const QRect back = place({});
    EXPECT_GE(back.left(), 0);
    EXPECT_LE(back.width(), 800);
    for (const wchar_t* const nonsense : {L"", L"1 2 3", L"a b c d"}) {
        host().registry().write(L"HKEY_CURRENT_USER\\Software\\Swift Gate\\Dialogs",
                                L"sg_test:Sample", RegistryText{nonsense, false}, true);
        EXPECT_EQ(place({}).size(), first.size()) << toUtf8(nonsense);
    }
}

}  // namespace
}  // namespace sg::test

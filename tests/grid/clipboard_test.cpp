#include <QClipboard>
#include <QMimeData>

#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

class ClipboardTest : public GridTest {
  protected:
    static std::string Copied() { return QApplication::clipboard()->text().toStdString(); }
    static void Offer(const QString& text) { QApplication::clipboard()->setText(text); }
    void Paste() { Key(Qt::Key_V, Qt::ControlModifier); }
};

TEST_F(ClipboardTest, CopiesCellsWithTabsAndRowsWithEndsOfLines) {
    grid->SetFocusCell(2, 2);
    grid->SetSelectedRange({2, 2, 3, 3});
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "2:2\t2:3\r\n3:2\t3:3");
    grid->SetItemState(5, 4, GVIS_SELECTED);
    Key(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "2:2\t2:3\t\r\n3:2\t3:3\t\r\n\t\t\r\n\t\t5:4");
}

TEST_F(ClipboardTest, CutEmptiesTheFocusCellAlone) {
    grid->SetFocusCell(2, 2);
    grid->SetSelectedRange({2, 2, 2, 3});
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "2:2\t2:3");
    EXPECT_EQ(Text(2, 2), "");
    EXPECT_EQ(Text(2, 3), "2:3");
}

TEST_F(ClipboardTest, PasteFillsFromTheFocusOverWhatIsHidden) {
    grid->SetRowHeight(4, 0);
    grid->SetColumnWidth(3, 0);
    grid->SetFocusCell(3, 2);
    Offer(QStringLiteral(" a \tb\r\nc,d\n"));
    Paste();
    EXPECT_EQ(Text(3, 2), "a");
    EXPECT_EQ(Text(3, 4), "b");
    EXPECT_EQ(Text(5, 2), "c");
    EXPECT_EQ(Text(5, 4), "d");
    EXPECT_EQ(Text(3, 3), "3:3");
    EXPECT_EQ(Text(4, 2), "4:2");
    EXPECT_EQ(Text(6, 2), "6:2");  // the end of the last line begins no other one
    EXPECT_EQ(recorder.Take(), (Heard{"begin 3,2", "end 3,2", "begin 3,4", "end 3,4", "begin 5,2",
                                      "end 5,2", "begin 5,4", "end 5,4"}));
}

TEST_F(ClipboardTest, PasteKeepsWhatMustNotBeEdited) {
    grid->SetItemState(3, 3, GVIS_READONLY);
    grid->SetFocusCell(3, 2);
    Offer(QStringLiteral("a\tb\tc"));
    Key(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(Text(3, 2), "a");
    EXPECT_EQ(Text(3, 3), "3:3");
    EXPECT_EQ(Text(3, 4), "c");
    recorder.allowsEnd = false;
    Offer(QStringLiteral("x"));
    Paste();
    EXPECT_EQ(Text(3, 2), "a");
}

TEST_F(ClipboardTest, WhatDoesNotFitIsLeftOut) {
    grid->SetFocusCell(19, 5);
    Offer(QStringLiteral("a\tb\nc\td"));
    Paste();
    EXPECT_EQ(Text(19, 5), "a");
    EXPECT_EQ(grid->GetRowCount(), 20);
    // Megabytes in one line, and in many.
    Offer(QString(5'000'000, u'x') + u'\t' + QStringLiteral("y\n").repeated(1'000'000));
    Paste();
    EXPECT_EQ(grid->GetItemText(19, 5).size(), 5'000'000u);
}

TEST_F(ClipboardTest, RowsMayGoWhilePasting) {
    grid->SetFocusCell(3, 2);
    recorder.onEnd = [&] { grid->SetRowCount(4); };
    Offer(QStringLiteral("a\nb\nc\nd"));
    Paste();
    EXPECT_EQ(grid->GetRowCount(), 4);
    EXPECT_EQ(Text(3, 2), "a");
}

TEST_F(ClipboardTest, CommandsAreOfferedWhenTheyDoSomething) {
    const auto enabled = [&] {
        std::string names;
        for (const auto& [command, name] :
             {std::pair{GridCommand::Copy, "copy "}, std::pair{GridCommand::Cut, "cut "},
              std::pair{GridCommand::Paste, "paste "}, std::pair{GridCommand::SelectAll, "all "}}) {
            if (grid->IsCommandEnabled(command)) names += name;
        }
        return names;
    };
    QApplication::clipboard()->clear();
    EXPECT_EQ(enabled(), "all ");
    grid->SetFocusCell(3, 2);
    Offer(QStringLiteral("a"));
    EXPECT_EQ(enabled(), "paste all ");
    EXPECT_TRUE(grid->DoCommand(GridCommand::SelectAll));
    EXPECT_EQ(enabled(), "copy cut paste all ");
    grid->SetEditable(false);
    EXPECT_EQ(enabled(), "copy paste all ");
    EXPECT_FALSE(grid->DoCommand(GridCommand::Cut));
    auto* const picture = new QMimeData;
    picture->setImageData(QImage(2, 2, QImage::Format_RGB32));
    QApplication::clipboard()->setMimeData(picture);
    EXPECT_EQ(enabled(), "copy all ");
    grid->SetRowCount(1);
    EXPECT_EQ(enabled(), "");
}

}  // namespace
}  // namespace sg::grid

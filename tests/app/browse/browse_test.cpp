#include "app/browse/browse_window.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include "base/encoding.h"
#include "grid/picture_compare.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/schema/schema.h"
#include "host/jet/values/value_convert.h"
#include "host/system/temporary_folder.h"

namespace sg::app {
namespace {

using jet::ColumnType;

enum Columns { kId, kName, kCount, kBuilt, kPrice, kHeated, kNote, kBytes };

class BrowseTest : public FolderTest {
  protected:
    void SetUp() override {
        FolderTest::SetUp();
        jet::createTable(
            *database,
            {.name = L"Rooms",
             .columns = {{.name = L"Id", .type = ColumnType::Long, .autoNumber = true},
                         {.name = L"Name", .size = 10, .required = true, .allowZeroLength = false},
                         {.name = L"Count",
                          .type = ColumnType::Long,
                          .validationRule = L">0",
                          .validationText = L"There is no such count"},
                         {.name = L"Built", .type = ColumnType::Date},
                         {.name = L"Price", .type = ColumnType::Currency},
                         {.name = L"Heated", .type = ColumnType::Boolean},
                         {.name = L"Note", .type = ColumnType::Memo},
                         {.name = L"Bytes", .type = ColumnType::Binary, .size = 8}},
             .indexes = {{.name = L"Name", .columns = {{L"Name"}}, .unique = true}}});
        jet::createTable(*database, {.name = L"Empty", .columns = {{.name = L"A"}}});
        jet::TableRecordset rows(*database, L"Rooms");
        const struct {
            const wchar_t* name;
            int32_t count;
        } rooms[] = {{L"kitchen", 10}, {L"Bath", 9}, {L"attic", 100}};
        for (const auto& room : rooms) {
            rows.addNew();
            rows.setValue(kName, std::wstring(room.name));
            rows.setValue(kCount, room.count);
            rows.setValue(kBuilt, jet::Date{42766});
            rows.setValue(kNote, std::wstring(L"two\r\nlines"));
            rows.setValue(kBytes, jet::Bytes{1, 0xAB});
            rows.update();
        }
        Open();
    }

    void Open() {
        window = std::make_unique<BrowseWindow>(
            *database, BrowseRequest{.tables = {L"Rooms", L"Empty"}, .table = L"Rooms"});
        window->show();
        QApplication::setActiveWindow(window.get());
        window->Grid().setFocus();
        QApplication::processEvents();
    }

    std::string Text(int row, int column) {
        return toUtf8(window->Grid().GetItemText(row, column));
    }

    // What the file has in it, without the window.
    std::string Stored(int row, int column) {
        jet::TableRecordset rows(*database, L"Rooms");
        rows.move(row);
        return toUtf8(shownText(rows.value(size_t(column))));
    }

    static std::wstring shownText(const jet::Value& value) {
        jet::Value copy = value;
        jet::Column text;
        text.type = ColumnType::Memo;
        jet::convertTo(text, copy);
        return jet::isNull(copy) ? L"(null)" : std::get<std::wstring>(copy);
    }

    // Types into a cell as a user does.
    void Type(int row, int column, const char* text) {
        grid::CGridCtrl& grid = window->Grid();
        grid.SetFocusCell(row, column);
        QTest::keyClick(&grid, Qt::Key_F2);
        auto* const editor = grid.viewport()->findChild<QLineEdit*>();
        if (editor == nullptr) return;
        editor->selectAll();
        QTest::keyClick(editor, Qt::Key_Delete);
        QTest::keyClicks(editor, QString::fromUtf8(text));
        QTest::keyClick(editor, Qt::Key_Return);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::string Column(int column) {
        std::string texts;
        for (int row = 1; row < window->Grid().GetRowCount(); ++row)
            texts += (texts.empty() ? "" : " ") + Text(row, column);
        return texts;
    }

    jet::Database database_ = jet::Database::create(path("plan.mdb"));
    jet::Database* const database = &database_;
    std::unique_ptr<BrowseWindow> window;
};

TEST_F(BrowseTest, ShowsValuesAsTheyCanBeTyped) {
    EXPECT_EQ(Text(0, kPrice), "Price");
    EXPECT_EQ(Text(1, kName), "kitchen");
    EXPECT_EQ(Text(1, kBuilt), "2017-01-31");
    EXPECT_EQ(Text(1, kPrice), "");
    EXPECT_EQ(Text(1, kHeated), "False");
    EXPECT_EQ(Text(1, kNote), "two\r\nlines");
    EXPECT_EQ(Text(1, kBytes), "01AB");
    EXPECT_EQ(window->StatusText(), L"3 rows");
}

TEST_F(BrowseTest, WhatIsTypedGoesThroughTheEngine) {
    const struct {
        int column;
        const char* typed;
        const char* shown;
        const char* stored;
    } edits[] = {
        {kName, "hall", "hall", "hall"},
        {kCount, " 1,234 ", "1234", "1234"},
        {kBuilt, "January 31, 2018 2:30 PM", "2018-01-31 14:30:00", "1/31/2018 2:30:00 PM"},
        {kPrice, "$12.5", "12.5000", "12.5"},
        {kHeated, "yes", "True", "-1"},
        {kNote, "", "", "(null)"},
    };
    for (const auto& edit : edits) {
        Type(2, edit.column, edit.typed);
        EXPECT_EQ(window->StatusText(), L"Written") << edit.typed;
        EXPECT_EQ(Text(2, edit.column), edit.shown);
        EXPECT_EQ(Stored(1, edit.column), edit.stored);
    }
}

TEST_F(BrowseTest, WhatTheEngineRefusesIsTakenBackAndSaid) {
    const struct {
        int column;
        const char* typed;
        const char* said;
    } edits[] = {
        {kName, "a name that is too long", "3163"},
        {kName, "", "3314"},
        {kName, "BATH", "3022"},
        {kCount, "many", "3421"},
        {kCount, "-5", "There is no such count"},
        {kBuilt, "yesterday", "3421"},
        {kId, "77", "Id cannot be edited"},
        {kBytes, "00", "Bytes cannot be edited"},
    };
    for (const auto& edit : edits) {
        const std::string shown = Text(1, edit.column), stored = Stored(0, edit.column);
        Type(1, edit.column, edit.typed);
        EXPECT_NE(toUtf8(window->StatusText()).find(edit.said), std::string::npos)
            << edit.typed << ": " << toUtf8(window->StatusText());
        EXPECT_EQ(Text(1, edit.column), shown);
        EXPECT_EQ(Stored(0, edit.column), stored);
    }
    Type(1, kCount, "5");
    EXPECT_EQ(Stored(0, kCount), "5");
}

TEST_F(BrowseTest, AHeadingSortsAndEditsGoToTheirRows) {
    grid::CGridCtrl& grid = window->Grid();
    const auto click = [&](int column) {
        QRect rect;
        ASSERT_TRUE(grid.GetCellRect(0, column, rect));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, rect.center());
    };
    click(kName);
    EXPECT_EQ(Column(kName), "attic Bath kitchen");
    click(kName);
    EXPECT_EQ(Column(kName), "kitchen Bath attic");
    EXPECT_FALSE(grid.GetSortAscending());
    grid.SetFocusCell(1, kCount);
    QTest::keyClick(window.get(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(Column(kCount), "9 10 100");
    EXPECT_EQ(grid.GetSortColumn(), kCount);
    Type(1, kCount, "11");
    EXPECT_EQ(Stored(1, kCount), "11");
    EXPECT_EQ(Stored(0, kCount), "10");
}

TEST_F(BrowseTest, OthersMayChangeTheTableMeanwhile) {
    {
        jet::TableRecordset rows(*database, L"Rooms");
        rows.move(1);
        rows.erase();
    }
    Type(2, kCount, "5");
    EXPECT_NE(window->StatusText().find(L"3167"), std::wstring::npos)
        << toUtf8(window->StatusText());
    EXPECT_EQ(Text(2, kCount), "9");
    QTest::keyClick(window.get(), Qt::Key_F5);
    EXPECT_EQ(Column(kName), "kitchen attic");
    EXPECT_EQ(window->StatusText(), L"2 rows");
}

TEST_F(BrowseTest, CopiesAndPastesThroughTheEngine) {
    grid::CGridCtrl& grid = window->Grid();
    grid.SetFocusCell(1, kName);
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    grid.SetSelectedRange({1, kName, 2, kCount});
    grid.DoCommand(grid::GridCommand::Copy);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "kitchen\t10\r\nBath\t9");
    QApplication::clipboard()->setText(QStringLiteral("cellar\t3\nBath\t-1"));
    grid.DoCommand(grid::GridCommand::Paste);
    EXPECT_EQ(Column(kName), "cellar Bath attic");
    EXPECT_EQ(Column(kCount), "3 9 100");
    EXPECT_EQ(Stored(0, kName), "cellar");
}

TEST_F(BrowseTest, AnEmptyTableAndNoTableAreShown) {
    window->ShowTable(L"Empty");
    EXPECT_EQ(window->StatusText(), L"0 rows");
    EXPECT_EQ(window->Grid().GetRowCount(), 1);
    window->SortBy(0);
    window->SortBy(7);
    window = std::make_unique<BrowseWindow>(*database, BrowseRequest{});
    EXPECT_EQ(window->StatusText(), L"There is no table in this database.");
    window->SortBy(0);
}

TEST_F(BrowseTest, LooksAsTheDocumentsShowIt) {
    window->setWindowTitle({});
    window->resize(640, 220);
    window->SortBy(kName);
    Type(2, kCount, "-5");
    QApplication::processEvents();
    grid::comparePicture(window->grab().toImage().convertToFormat(QImage::Format_RGB32), "browse");
}

TEST_F(BrowseTest, AnOpenEditorGoesWithTheWindow) {
    window->Grid().SetFocusCell(1, kName);
    QTest::keyClick(&window->Grid(), Qt::Key_X);
    window.reset();
    EXPECT_EQ(Stored(0, kName), "kitchen");
}

TEST(SortKeys, PutNullFirstNumbersByValueAndTextByItsOrder) {
    const struct {
        ColumnType type;
        std::vector<const wchar_t*> texts;  // in their order
    } orders[] = {
        {ColumnType::Long, {L"", L"-20", L"-3", L"0", L"9", L"10"}},
        {ColumnType::Double, {L"", L"-1.5E-07", L"1E-07", L"2", L"1E+20"}},
        {ColumnType::Text, {L"", L"a", L"Ä", L"b", L"B1", L"z", L"\U0001F600"}},
        {ColumnType::Date, {L"", L"0100-01-01", L"2017-01-31", L"2017-01-31 14:30:00"}},
    };
    for (const auto& order : orders) {
        for (size_t i = 0; i < order.texts.size(); ++i) {
            for (size_t j = 0; j < order.texts.size(); ++j) {
                const int sign = compare(sortKey(order.texts[i], order.type),
                                         sortKey(order.texts[j], order.type));
                EXPECT_EQ(sign < 0, i < j)
                    << toUtf8(order.texts[i]) << " " << toUtf8(order.texts[j]);
                EXPECT_EQ(sign == 0, i == j) << toUtf8(order.texts[i]);
            }
        }
    }
}

}  // namespace
}  // namespace sg::app

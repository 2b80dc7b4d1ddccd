#pragma once

#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "grid/cell.h"
#include "grid/grid_ctrl.h"

namespace sg::grid {

inline std::ostream& operator<<(std::ostream& out, CCellID id) {
    return out << id.row << "," << id.col;
}

inline std::ostream& operator<<(std::ostream& out, const CCellRange& range) {
    return out << range.minRow << "," << range.minCol << "-" << range.maxRow << "," << range.maxCol;
}

// Writes down what it is told; the vetoes and what it does meanwhile are the test's.
class Recorder : public GridListener {
  public:
    std::vector<std::string> heard;
    bool allowsBegin = true, allowsEnd = true, takesKeys = false;
    std::function<void()> onBegin, onEnd, onChanging, onChanged, onClick;

    void OnSelectionChanging(CGridCtrl&, CCellID id) override { Hear("changing", id, onChanging); }
    void OnSelectionChanged(CGridCtrl&, CCellID id) override { Hear("changed", id, onChanged); }
    bool OnBeginEdit(CGridCtrl&, CCellID id) override {
        Hear("begin", id, onBegin);
        return allowsBegin;
    }
    bool OnEndEdit(CGridCtrl&, CCellID id) override {
        Hear("end", id, onEnd);
        return allowsEnd;
    }
    void OnClick(CGridCtrl&, CCellID id) override { Hear("click", id, onClick); }
    void OnDoubleClick(CGridCtrl&, CCellID id) override { Hear("double", id, nullptr); }
    void OnRightClick(CGridCtrl&, CCellID id) override { Hear("right", id, nullptr); }
    void OnFixedRowClick(CGridCtrl&, CCellID id) override { Hear("fixed row", id, nullptr); }
    bool OnKeyDown(CGridCtrl&, const GridKey& key) override {
        keys.push_back(key.key);
        return takesKeys;
    }

    // What was heard since the last time.
    std::vector<std::string> Take() { return std::exchange(heard, {}); }

    std::vector<int> keys;

  private:
    void Hear(const std::string& what, CCellID id, const std::function<void()>& act) {
        heard.push_back(what + " " + std::to_string(id.row) + "," + std::to_string(id.col));
        if (act) act();
    }
};

// A grid without a window's messages: what would be told in a box is kept.
class TestGrid : public CGridCtrl {
  public:
    std::vector<std::wstring> errors;

    using CGridCtrl::CutSelectedText;
    using CGridCtrl::OnEditCell;

  protected:
    void ReportError(const std::wstring& message) override { errors.push_back(message); }
};

// A grid of 6 columns by 20 rows, the first of each fixed, with its place for a text in each cell.
class GridTest : public testing::Test {
  protected:
    void SetUp() override {
        grid = std::make_unique<TestGrid>();
        grid->SetListener(&recorder);
        Fill(20, 6, 1, 1);
        grid->resize(500, 200);
        grid->show();
        QApplication::setActiveWindow(grid.get());
        grid->setFocus();
        QApplication::processEvents();
    }

    void Fill(int rows, int columns, int fixedRows, int fixedColumns) {
        grid->DeleteAllItems();
        grid->SetColumnCount(columns);
        grid->SetRowCount(rows);
        grid->SetFixedRowCount(fixedRows);
        grid->SetFixedColumnCount(fixedColumns);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column)
                grid->SetItemText(row, column, PlaceText(row, column));
        }
    }

    static std::wstring PlaceText(int row, int column) {
        return std::to_wstring(row) + L":" + std::to_wstring(column);
    }

    std::string Text(int row, int column) const { return toUtf8(grid->GetItemText(row, column)); }

    // The texts of a column, with blanks between them.
    std::string Column(int column, int first = 1) const {
        std::string texts;
        for (int row = first; row < grid->GetRowCount(); ++row)
            texts += (texts.empty() ? "" : " ") + Text(row, column);
        return texts;
    }

    QPoint Middle(int row, int column) const {
        QRect rect;
        EXPECT_TRUE(grid->GetCellRect(row, column, rect)) << row << "," << column;
        return rect.center();
    }

    void Click(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, Middle(row, column));
    }

    void Key(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(grid.get(), Qt::Key(key), modifiers);
    }

    // The open editor of text; null when there is none.
    QLineEdit* Editor() const {
        for (QLineEdit* const editor : grid->viewport()->findChildren<QLineEdit*>()) {
            if (!editor->isHidden()) return editor;
        }
        return nullptr;
    }

    // Lets windows that end delete themselves.
    static void Settle() {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    Recorder recorder;
    std::unique_ptr<TestGrid> grid;
};

using Heard = std::vector<std::string>;

}  // namespace sg::grid

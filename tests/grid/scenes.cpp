#include "grid/scenes.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QTest>

#include <string>

#include "grid/button_cell.h"
#include "grid/combo_cell.h"
#include "grid/grid_ctrl.h"
#include "grid/print_layout.h"
#include "grid/tree_cell.h"
#include "grid/tree_column.h"

namespace sg::grid {
namespace {

QImage picture(CGridCtrl& grid, int width, int height) {
    grid.resize(width, height);
    grid.show();
    QApplication::processEvents();
    return grid.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

void fill(CGridCtrl& grid, int rows, int columns, int fixedColumns) {
    grid.SetColumnCount(columns);
    grid.SetRowCount(rows);
    grid.SetFixedRowCount(1);
    grid.SetFixedColumnCount(fixedColumns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            std::wstring text = L"cell " + std::to_wstring(row) + L", " + std::to_wstring(column);
            if (row == 0) text = L"Column " + std::to_wstring(column);
            if (column < fixedColumns) text = row == 0 ? L"" : std::to_wstring(row);
            grid.SetItemText(row, column, text);
        }
    }
    if (fixedColumns > 0) grid.SetColumnWidth(0, 36);
}

QImage drawCells() {
    CGridCtrl grid;
    fill(grid, 12, 5, 1);
    grid.SetItemText(3, 1, L"a text that is too long for its cell");
    grid.SetItemBkColour(6, 1, gridColour(255, 240, 200));
    grid.SetItemFgColour(6, 1, gridColour(180, 0, 0));
    QFont bold = grid.font();
    bold.setBold(true);
    grid.SetItemFont(7, 1, bold);
    grid.SetItemFormat(7, 2, kHeadingFormat);
    grid.SetItemFormat(7, 3, kPlainFormat | kTextRight);
    grid.MergeCells(8, 1, 9, 2);
    grid.SetSortColumn(4);
    grid.SetFocusCell(2, 2);
    grid.SetSelectedRange({2, 2, 4, 3});
    return picture(grid, 480, 215);
}

QImage drawListMode() {
    CGridCtrl grid;
    fill(grid, 8, 4, 0);
    grid.SetListMode(true);
    grid.SetGridLines(kHorizontalLines);
    grid.SetFocusCell(3, 1);
    grid.SetSelectedRange({3, 1, 3, 1});
    return picture(grid, 440, 145);
}

QImage drawDropList() {
    CGridCtrl grid;
    fill(grid, 6, 3, 0);
    for (int row = 1; row < 6; ++row) {
        grid.SetCellType(row, 1, gridCellClass<CGridCellCombo>());
        auto& cell = dynamic_cast<CGridCellCombo&>(*grid.GetCell(row, 1));
        cell.SetOptions({L"Default", L"0.25 mm", L"0.50 mm"});
        cell.SetText(cell.GetOptions()[size_t(row % 3)]);
    }
    grid.SetFocusCell(2, 1);
    grid.SetSelectedRange({2, 1, 2, 1});
    return picture(grid, 340, 110);
}

QImage drawTree() {
    CGridCtrl grid;
    grid.SetColumnCount(2);
    grid.SetRowCount(1);
    grid.SetFixedRowCount(1);
    grid.SetItemText(0, 0, L"Name");
    grid.SetItemText(0, 1, L"Value");
    grid.SetTreeColumn(0);
    const uint8_t levels[] = {1, 2, 2, 3, 3, 2, 1, 2, 3, 3, 1, 2};
    grid.GetTreeColumn().InsertTreeBranch(levels);
    for (int row = 1; row < grid.GetRowCount(); ++row) {
        grid.SetItemText(row, 0, L"Row " + std::to_wstring(row));
        grid.SetItemText(row, 1, L"level " + std::to_wstring(levels[row - 1]));
    }
    grid.GetTreeColumn().Collapse(8);
    grid.SetColumnWidth(0, 180);
    return picture(grid, 300, 200);
}

void addRow(CGridCtrl& grid, const std::wstring& name, const std::vector<CellControl>& controls,
            const std::wstring& text = {}) {
    const int row = grid.InsertRow(name);
    grid.SetCellType(row, 1, gridCellClass<CGridBtnCell>());
    for (const CellControl& control : controls)
        dynamic_cast<CGridBtnCell&>(*grid.GetCell(row, 1)).Buttons().Add(control);
    grid.SetItemText(row, 1, text);
}

QImage drawButtons() {
    CGridCtrl grid;
    fill(grid, 1, 2, 0);
    addRow(grid, L"a push button", {{.text = L"&Push"}});
    addRow(grid, L"a check box", {{.state = DFCS_CHECKED}}, L"with text beside it");
    addRow(grid, L"radio buttons",
           {{.state = DFCS_BUTTONRADIO, .width = 70, .text = L"left"},
            {.state = DFCS_BUTTONRADIO | DFCS_CHECKED, .width = 70, .text = L"middle"},
            {.state = DFCS_BUTTONRADIO, .width = 70, .text = L"right"}});
    addRow(grid, L"one inactive",
           {{.width = 80, .text = L"Active"},
            {.state = DFCS_BUTTONPUSH | DFCS_INACTIVE, .width = 80, .text = L"Inactive"}});
    addRow(grid, L"pushed, with an arrow",
           {{.type = DFC_SCROLL, .state = DFCS_SCROLLDOWN, .width = 20},
            {.state = DFCS_BUTTONPUSH | DFCS_PUSHED, .width = 90, .text = L"pushed"}},
           L"text");
    std::vector<CellControl> sixteen;
    for (int i = 0; i < 16; ++i)
        sixteen.push_back({.width = 16, .text = std::wstring(1, wchar_t(L'a' + i))});
    addRow(grid, L"sixteen", sixteen);
    grid.SetColumnWidth(0, 150);
    grid.SetColumnWidth(1, 290);
    return picture(grid, 450, 130);
}

// Prints pages into a picture.
class PagePainter final : public CGridCtrl {
  public:
    QImage Page() {
        constexpr double dotsPerInch = 75;
        QImage image(int(8.27 * dotsPerInch), int(5.8 * dotsPerInch), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        PrintLayout layout;
        layout.page = image.rect();
        layout.dotsPerInchX = layout.dotsPerInchY = int(dotsPerInch);
        OnBeginPrinting(layout);
        painter.scale(layout.scale, layout.scale);
        OnPrint(painter, layout, 0);
        return image;
    }
};

QImage drawPage() {
    PagePainter grid;
    fill(grid, 40, 6, 1);
    grid.setWindowTitle(QStringLiteral("Parts"));
    grid.MergeCells(3, 2, 4, 3);
    grid.SetFocusCell(2, 2);
    return grid.Page();
}

QImage drawDark() {
    CGridCtrl grid;
    fill(grid, 6, 4, 1);
    QPalette dark(QColor(50, 50, 54));
    dark.setColor(QPalette::Base, QColor(30, 30, 33));
    dark.setColor(QPalette::Text, QColor(225, 225, 225));
    grid.setPalette(dark);
    QFont large = grid.font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    grid.setFont(large);
    grid.SetGridLineColour(gridColour(70, 70, 75));
    grid.SetFocusCell(2, 2);
    grid.SetSelectedRange({2, 2, 3, 2});
    return picture(grid, 560, 160);
}

}  // namespace

const std::vector<Scene>& scenes() {
    static const std::vector<Scene> all = {
        {"grid_cells", drawCells}, {"grid_list", drawListMode},   {"grid_drop_list", drawDropList},
        {"grid_tree", drawTree},   {"grid_buttons", drawButtons}, {"grid_page", drawPage},
        {"grid_dark", drawDark},
    };
    return all;
}

}  // namespace sg::grid

#include "standards/dialogs/grid_rows.h"

#include "base/text.h"
#include "standards/layer_rules.h"

namespace sg {

void setUpGrid(grid::CGridCtrl& grid, std::initializer_list<GridHeading> headings) {
    grid.DeleteAllItems();
    grid.SetColumnCount(int(headings.size()));
    grid.SetRowCount(1);
    grid.SetFixedRowCount(1);
    const int character = grid.fontMetrics().averageCharWidth();
    int column = 0;
    for (const GridHeading& heading : headings) {
        grid.SetItemText(0, column, heading.title);
        grid.SetColumnWidth(column, heading.width * character);
        ++column;
    }
}

void clearRows(grid::CGridCtrl& grid) {
    grid.EndEditing();
    grid.ResetSelectedRange();
    grid.SetRowCount(1);
}

int selectedRow(const grid::CGridCtrl& grid) {
    return std::max(grid.GetFocusCell().row, 0);
}

void goTo(grid::CGridCtrl& grid, int row, int column) {
    if (!grid.SetFocusCell(row, column)) return;
    grid.SetSelectedRange({row, column, row, column});
    grid.EnsureVisible(row, column);
}

int findRow(const grid::CGridCtrl& grid, int column, const std::wstring& text, bool ignoresCase) {
    for (int row = 1; row < grid.GetRowCount(); ++row) {
        const std::wstring& held = grid.GetCell(row, column)->GetText();
        if (held == text || (ignoresCase && equalIgnoringCase(held, text))) return row;
    }
    return -1;
}

void swapRows(grid::CGridCtrl& grid, int a, int b) {
    for (int column = 0; column < grid.GetColumnCount(); ++column) {
        const std::wstring text = grid.GetItemText(a, column);
        grid.SetItemText(a, column, grid.GetItemText(b, column));
        grid.SetItemText(b, column, text);
    }
    grid.Refresh();
}

int addRowLikeLast(grid::CGridCtrl& grid, const std::wstring& name, int nameColumn, int idColumn) {
    const std::wstring unused = freeName(
        name, [&](const std::wstring& one) { return findRow(grid, nameColumn, one, true) > 0; });
    const int row = grid.InsertRow(L"");
    for (int column = nameColumn; row > 1 && column < grid.GetColumnCount(); ++column) {
        const std::wstring above = grid.GetItemText(row - 1, column);
        if (above != L"To Scale" && above != L"Can Rotate") grid.SetItemText(row, column, above);
    }
    grid.SetItemText(row, nameColumn, unused);
    grid.SetItemText(row, idColumn, L"-1");
    return row;
}

}  // namespace sg

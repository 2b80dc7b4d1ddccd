#pragma once

#include <initializer_list>
#include <string>

#include "grid/grid_ctrl.h"

// What the dialogs do with rows of their grids, of which the first one is the heading.
namespace sg {

// A column with its title and, in average characters, its width; 0 hides it.
struct GridHeading {
    const wchar_t* title;
    int width;
};

// Takes everything out and sets up these columns under one heading row.
void setUpGrid(grid::CGridCtrl& grid, std::initializer_list<GridHeading> headings);

// Leaves the heading row alone.
void clearRows(grid::CGridCtrl& grid);

// The row that a user has chosen; 0 when there is none below the heading.
int selectedRow(const grid::CGridCtrl& grid);

// Gives the cell the focus and selects it, and brings it into view. Nobody is told.
void goTo(grid::CGridCtrl& grid, int row, int column);

// The row whose text in a column is this one, ignoring case if so told; -1: none.
int findRow(const grid::CGridCtrl& grid, int column, const std::wstring& text,
            bool ignoresCase = false);

// Exchanges what two rows show.
void swapRows(grid::CGridCtrl& grid, int a, int b);

// A row below the last one: its texts from the name's column on are those of the row above, but for
// texts that stand for a kind of block; its id is -1, and its name is `name`, with a number behind
// it where another row has that. Answers the row.
int addRowLikeLast(grid::CGridCtrl& grid, const std::wstring& name, int nameColumn, int idColumn);

// The cell of a class, in a grid that has it there.
template <class Cell>
Cell& cellAs(grid::CGridCtrl& grid, int row, int column) {
    if (dynamic_cast<Cell*>(grid.GetCell(row, column)) == nullptr) {
        grid.SetCellType(row, column, grid::gridCellClass<Cell>());
    }
    return static_cast<Cell&>(*grid.GetCell(row, column));
}

}  // namespace sg

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace sg::app {

// Rows in aligned columns for a terminal:
//
//     Id  Name    Height
//     --  ------  ------
//      1  Ground     3.5
//      3  Roof      Null
//
// Texts are cut to what the lines have room for. Where little would be left of them, each row is a
// block of lines, "Name  Ground", under its number.
struct TextTable {
    struct Column {
        std::wstring name;  // without control characters, as all texts here
        bool isNumber = false;
    };
    struct Cell {
        std::wstring text;
        bool isNull = false;
    };
    using Row = std::vector<Cell>;

    std::vector<Column> columns;
    // Hands every row to its argument. It is called twice, and gives the same rows both times.
    std::function<void(const std::function<void(const Row&)>&)> rows;

    // Hands piece after piece of the text to `out`. Lines are `width` cells wide at most; with
    // `isStyled` a Null is faint, else it stands in "<>".
    void print(int width, bool isStyled, const std::function<void(const std::wstring&)>& out) const;
};

}  // namespace sg::app

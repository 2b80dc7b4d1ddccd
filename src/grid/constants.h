#pragma once

#include <QColor>

#include <cstdint>

// Numbers that dialogs and cells give to the grid. Their values are fixed: dialogs hold some of
// them in data.
namespace sg::grid {

// Bits of a cell's state.
enum GridState : uint32_t {
    GVIS_FOCUSED = 1,
    GVIS_SELECTED = 2,
    GVIS_DROPHILITED = 4,
    GVIS_READONLY = 8,
    GVIS_FIXED = 16,
    GVIS_FIXEDROW = 32,
    GVIS_FIXEDCOL = 64,
    GVIS_MODIFIED = 128,
};

// Bits of a text format. Left, top and more than one line are what no bit says otherwise.
enum GridTextFormat : uint32_t {
    kTextCentre = 1,
    kTextRight = 2,
    kTextVCentre = 4,
    kTextBottom = 8,
    kTextWordBreak = 0x10,
    kTextSingleLine = 0x20,
    kTextExpandTabs = 0x40,
    kTextNoPrefix = 0x800,
    kTextEndEllipsis = 0x8000,
};
inline constexpr uint32_t kPlainFormat =
    kTextVCentre | kTextSingleLine | kTextNoPrefix | kTextEndEllipsis;
inline constexpr uint32_t kSharedFormat = kTextVCentre | kTextSingleLine | kTextEndEllipsis;
inline constexpr uint32_t kHeadingFormat = kTextCentre | kTextVCentre | kTextSingleLine;
// Text on a control of a button cell.
inline constexpr uint32_t kControlFormat = kSharedFormat | kTextCentre;
inline constexpr uint32_t kDefaultFormat = 0xFFFFFFFF;  // the default cell's
inline constexpr uint32_t kDefaultMargin = 0xFFFFFFFF;

// Red in the low byte, then green and blue.
using GridColour = uint32_t;
inline constexpr GridColour kDefaultColour = 0xFF000000;  // "use the default"

constexpr GridColour gridColour(int red, int green, int blue) {
    return uint32_t(red) | uint32_t(green) << 8 | uint32_t(blue) << 16;
}
inline GridColour gridColour(const QColor& colour) {
    return gridColour(colour.red(), colour.green(), colour.blue());
}
inline QColor toQColor(GridColour colour) {
    return QColor(int(colour & 0xFF), int(colour >> 8 & 0xFF), int(colour >> 16 & 0xFF));
}

// Lines between cells.
enum GridLines { kNoLines = 0, kHorizontalLines = 1, kVerticalLines = 2, kBothLines = 3 };

// Which cells count when a column is sized to its contents.
enum AutoSizeStyle { kSizeByFixed = 1, kSizeByPlain = 2, kSizeByAll = 3 };

// The menu commands, by the numbers that menus know them by.
enum class GridCommand { Copy = 57634, Cut = 57635, Paste = 57637, SelectAll = 57642 };

// Characters that begin an edit; any other one is the first of a new text.
enum EditStart : uint32_t {
    kEditByClick = 1,  // the caret stands at the end, as for a Return
    kEditByBackspace = 8,
    kEditByTab = 9,
    kEditByReturn = 13,
};

inline constexpr int kEditorId = 8;  // the control id of every in-place editor

}  // namespace sg::grid

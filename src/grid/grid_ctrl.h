#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QPixmap>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/export.h"
#include "grid/axis_sizes.h"
#include "grid/cell_base.h"
#include "grid/cell_class.h"
#include "grid/cell_selection.h"
#include "grid/cell_text.h"
#include "grid/cell_watch.h"
#include "grid/constants.h"
#include "grid/default_cell.h"
#include "grid/listener.h"
#include "platform/ui/scripted.h"

class QPrinter;

namespace sg::grid {

class CBtnDataBase;
class CTitleTip;
class CTreeColumn;
class GridScript;
struct PrintLayout;

// Images that cells index, each of the same size.
struct GridImageList {
    QSize size;
    std::vector<QPixmap> images;
};

// The room around a printed page and its parts: lines, and for left and right characters.
struct PrintMargins {
    int header = 2, footer = 2, left = 4, right = 4, top = 1, bottom = 1, gap = 1;
};

// Below zero, zero or above, as the first cell comes before the second, is equal, or comes behind.
using GridCompare = int (*)(const CGridCellBase& a, const CGridCellBase& b, intptr_t data);

// A table of cells with fixed heading rows and columns: it paints them, takes mouse and keyboard,
// edits cells in place, and tells its owner what happened. docs/grid.md explains it with pictures.
//
// Rows and columns count from 0, the fixed ones first. A height or width of 0 hides one. Columns
// are named by where they are displayed. Everything that is given a row or column outside the grid
// answers false, -1 or nothing and changes nothing.
class SG_API CGridCtrl : public QAbstractScrollArea, public ui::Scriptable {
  public:
    explicit CGridCtrl(QWidget* parent = nullptr);
    ~CGridCtrl() override;

    // Null: nobody is told. Not owned.
    void SetListener(GridListener* listener) { listener_ = listener; }
    GridListener* GetListener() const { return listener_; }

    // ---- Size. Growing makes cells of the default class; nothing is changed where memory ends.
    bool SetRowCount(int count);
    bool SetColumnCount(int count);
    bool SetFixedRowCount(int count = 1);
    bool SetFixedColumnCount(int count = 1);
    int GetRowCount() const { return rowHeights_.Count(); }
    int GetColumnCount() const { return columnWidths_.Count(); }
    int GetFixedRowCount() const { return fixedRows_; }
    int GetFixedColumnCount() const { return fixedColumns_; }
    bool SetRowHeight(int row, int height);
    bool SetColumnWidth(int column, int width);
    int GetRowHeight(int row) const;       // -1 outside
    int GetColumnWidth(int column) const;  // -1 outside

    // ---- Rows and columns. A place at which to insert is 0 to the count, or -1 for the end.
    int InsertRow(const std::wstring& text, int before = -1);
    bool DeleteRow(int row);
    // Rows, columns and what is known of them.
    bool DeleteAllItems();
    // The title becomes the text of row 0, which is made when there are no rows.
    int InsertColumn(const std::wstring& title, uint32_t format = kPlainFormat, int before = -1);
    bool DeleteColumn(int column);
    // The stored columns in the order in which they are displayed; refuses what is no permutation.
    bool SetColumnOrder(const std::vector<int>& order);
    const std::vector<int>& GetColumnOrder() const { return columnOrder_; }
    uint32_t GetColumnFormat(int column) const;
    bool SetColumnFormat(int column, uint32_t format);
    std::wstring GetColumnText(int column) const;
    bool SetColumnText(int column, const std::wstring& text);
    bool SetColumnName(const std::wstring& name, int column);
    int GetColumnByName(const std::wstring& name) const;

    // ---- Cells
    CGridCellBase* GetCell(int row, int column) const;
    // The cell keeps its text, look and state.
    bool SetCellType(int row, int column, const GridCellClass& type);
    void SetDefaultCellType(const GridCellClass& type) { defaultClass_ = &type; }
    bool SetItemText(int row, int column, const std::wstring& text);
    std::wstring GetItemText(int row, int column) const;
    std::wstring GetItemTextByName(int row, const std::wstring& name) const;
    bool SetItemTextByName(int row, const std::wstring& name, const std::wstring& text);
    // As a user who edits the cell: with the owner's leave, and validated. False when refused.
    bool SetItemTextWithNotify(int row, int column, const std::wstring& text);
    bool SetItemState(int row, int column, uint32_t state);
    uint32_t GetItemState(int row, int column) const;
    bool SetItemData(int row, int column, intptr_t data);
    intptr_t GetItemData(int row, int column) const;
    bool SetItemImage(int row, int column, int image);
    bool SetItemFormat(int row, int column, uint32_t format);
    bool SetItemBkColour(int row, int column, GridColour colour);
    bool SetItemFgColour(int row, int column, GridColour colour);
    bool SetItemFont(int row, int column, const QFont& font);
    bool RedrawCell(int row, int column);
    // The defaults of plain cells, of cells in fixed rows, in fixed columns, and in both.
    CGridDefaultCell& GetDefaultCell(bool fixedRow, bool fixedColumn) {
        return cellDefaults_[(fixedRow ? 1 : 0) + (fixedColumn ? 2 : 0)];
    }
    const CGridDefaultCell& GetDefaultCell(bool fixedRow, bool fixedColumn) const {
        return cellDefaults_[(fixedRow ? 1 : 0) + (fixedColumn ? 2 : 0)];
    }
    // Something was edited since it was last set to false; then no cell counts as modified.
    bool GetModified() const { return isModified_; }
    void SetModified(bool modified);

    // ---- Merging. Blocks that meet the new one are taken apart first.
    bool MergeCells(int minRow, int minColumn, int maxRow, int maxColumn);
    bool UnMergeCells(int minRow, int minColumn, int maxRow, int maxColumn);

    // ---- Layout
    void AutoSizeColumns(int style = 0, bool resetScroll = true);  // style 0: GetAutoSizeStyle()
    bool AutoSizeColumn(int column, int style = 0, bool resetScroll = true);
    // Widens or narrows the shown columns in proportion, so that they fill the width.
    void ExpandToFit();
    void ResetScrollBars();
    void Refresh();
    // In the viewport, without the lines at its right and below; of a merged block's top left cell
    // the block's. False for a cell that is hidden, or scrolled out to the left or above.
    bool GetCellRect(int row, int column, QRect& rect) const;
    // The cell under a point of the viewport; of a merged block its top left one. None beside all.
    CCellID GetCellFromPt(QPoint point) const;
    CCellID GetTopleftNonFixedCell() const;
    void EnsureVisible(int row, int column);

    // ---- Selection
    // Nobody is told. -1 and -1 take the focus away.
    bool SetFocusCell(int row, int column);
    CCellID GetFocusCell() const { return focusCell_; }
    // Takes the place of the selection. In list mode whole rows are selected.
    bool SetSelectedRange(const CCellRange& range);
    CCellRange GetSelectedCellRange() const { return selection_.Bounds(); }
    int64_t GetSelectedCount() const { return selection_.Count(); }
    void ResetSelectedRange();
    void SelectAllCells();
    bool IsCellSelected(int row, int column) const;

    // ---- Modes
    void SetEditable(bool on) { isEditable_ = on; }
    bool IsEditable() const { return isEditable_; }
    // Ends column and row selection by headings; see FixedRowClick.
    void SetListMode(bool on);
    bool GetListMode() const { return isListMode_; }
    void SetGridLines(int lines);  // GridLines
    int GetGridLines() const { return gridLines_; }
    void SetGridLineColour(GridColour colour);
    GridColour GetGridLineColour() const { return gridLineColour_; }
    void SetTitleTipColours(GridColour background, GridColour text);
    GridColour GetTitleTipBackColour() const { return titleTipBackColour_; }
    GridColour GetTitleTipTextColour() const { return titleTipTextColour_; }
    // While on, load, save, sorting and changes of single rows and cells' classes are refused.
    void SetVirtualMode(bool on) { isVirtual_ = on; }
    void SetFixedRowSelection(bool on) { fixedRowSelection_ = on; }
    bool GetFixedRowSelection() const { return fixedRowSelection_; }
    void SetFixedColumnSelection(bool on) { fixedColumnSelection_ = on; }
    void SetRowResize(bool on) { allowRowResize_ = on; }
    void SetColumnResize(bool on) { allowColumnResize_ = on; }
    void SetAutoSizeStyle(int style) { autoSizeStyle_ = style; }
    int GetAutoSizeStyle() const { return autoSizeStyle_; }
    void SetFrameFocus(bool on);
    bool GetFrameFocus() const { return frameFocus_; }
    void SetTrackFocusCell(bool on);
    bool GetTrackFocusCell() const { return trackFocusCell_; }
    void SetSortColumn(int column);  // -1: none shows the mark
    int GetSortColumn() const { return sortColumn_; }
    void SetSortAscending(bool on);
    bool GetSortAscending() const { return sortAscending_; }
    void SetTitleTips(bool on);
    bool GetTitleTips() const { return titleTips_; }
    // Tab is the grid's key, and not that of the dialog, unless Ctrl is held.
    void SetHandleTabKey(bool on) { handleTabKey_ = on; }
    void SetTabLeavesGrid(bool on) { tabLeavesGrid_ = on; }
    void SetWheelLines(int lines) { wheelLines_ = lines; }
    void SetImageList(const GridImageList* images);  // not owned
    const GridImageList* GetImageList() const { return images_; }
    QSize GetImageSize(int image) const;  // empty without such an image
    // At the rectangle's top left corner; false when it does not fit or is not there.
    bool DrawImage(QPainter& painter, int image, const QRect& rect) const;
    // The tree of this column, which has no rows yet, with lines.
    bool SetTreeColumn(int column);
    CTreeColumn& GetTreeColumn() { return *tree_; }
    CBtnDataBase& GetButtonData() { return *buttonData_; }

    // ---- Sorting. Rows change places as a whole, with their heights; focus and selection go with
    // them. Fixed rows stay. Refused while a merged block of several rows lies among the rows.
    bool SortItems(GridCompare compare, int column, bool ascending, intptr_t data = 0);
    bool SortItems(GridCompare compare, int column, bool ascending, intptr_t data, int low,
                   int high);
    // By text, ignoring case first, and by the numbers that texts begin with.
    static int CompareTexts(const CGridCellBase& a, const CGridCellBase& b, intptr_t data);
    static int CompareNumbers(const CGridCellBase& a, const CGridCellBase& b, intptr_t data);

    // ---- Files of text: a line a row, fields with one character between them. What cannot be read
    // or written is told in a message box, and answered by false.
    bool Load(const std::wstring& path, wchar_t separator = L',');
    bool Save(const std::wstring& path, wchar_t separator = L',');

    // ---- Clipboard
    virtual void OnEditCopy();
    virtual void OnEditCut();
    virtual void OnEditPaste();
    virtual void OnEditSelectAll();
    bool IsCommandEnabled(GridCommand command) const;
    // False when it is not enabled.
    bool DoCommand(GridCommand command);

    // ---- Printing
    // Asks for a printer, and prints on it.
    void Print();
    // False when nothing could be printed there.
    bool PrintTo(QPrinter& printer);
    void SetPrintMargins(const PrintMargins& margins) { margins_ = margins; }
    const PrintMargins& GetPrintMargins() const { return margins_; }
    const QFont* GetPrintFont() const { return printFont_; }  // null but while printing

    // Edits a cell as Return does; false when that is refused.
    bool BeginEdit(int row, int column);
    // Ends the edit that is under way, with its text.
    virtual void EndEditing();

    // ---- For cells and their editors
    CellText& Texts() const { return texts_; }
    // Stores what a cell takes for its new text in an edit that begins and ends at once. False when
    // the cell or the owner refuses it.
    bool CommitEdit(CCellID id, const std::wstring& text);
    // -176 for a cell that changed by itself.
    void TellEdited(CGridCellBase& cell, CCellID id);
    void OnEndInPlaceEdit(CellWatch& watch, const std::wstring& text, int key,
                          Qt::KeyboardModifiers modifiers);
    // Where the cell is; none when it is not in this grid.
    CCellID PlaceOf(const CGridCellBase& cell) const;

    // As scripts know it.
    ui::ScriptedControl& Script() override;

  protected:
    // What derived grids may do in another way.
    virtual void CutSelectedText();
    virtual std::wstring CopyTextFromGrid() const;
    virtual bool PasteTextToGrid(CCellID at, const std::wstring& text);
    virtual void OnFixedColumnClick(CCellID cell);
    virtual void OnFixedRowClick(CCellID cell);
    virtual void OnEditCell(int row, int column, QPoint point, uint32_t character);
    virtual void OnEndEditCell(CellWatch& watch, const std::wstring& text);
    virtual bool ValidateEdit(int row, int column, const std::wstring& text);
    virtual void OnDraw(QPainter& painter, const QRect& clip);
    virtual std::unique_ptr<CGridCellBase> CreateCell(int row, int column);
    // Shows it in a message box; on standard error where nobody could see one.
    virtual void ReportError(const std::wstring& message);
    virtual void DestroyCell(std::unique_ptr<CGridCellBase>& cell);
    virtual bool ReplaceCell(int row, int column, std::unique_ptr<CGridCellBase> cell);
    virtual void OnBeginPrinting(PrintLayout& layout);
    virtual void OnPrint(QPainter& painter, const PrintLayout& layout, int page);
    virtual void OnEndPrinting() {}
    virtual void PrintColumnHeadings(QPainter& painter, const PrintLayout& layout, int page);
    virtual void PrintHeader(QPainter& painter, const PrintLayout& layout);
    virtual void PrintFooter(QPainter& painter, const PrintLayout& layout, int page);
    // The fixed columns of a page's rows.
    virtual void PrintRowButtons(QPainter& painter, const PrintLayout& layout, int page);
    // One line at the left, in the middle or at the right of `rect`.
    virtual void PrintHeaderPart(QPainter& painter, const QRect& rect, const std::wstring& text,
                                 Qt::Alignment alignment);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    friend class CellWatch;
    friend class CTreeColumn;
    friend class GridScript;

    using Row = std::vector<std::unique_ptr<CGridCellBase>>;  // by stored column

    struct Column {
        uint32_t format = kPlainFormat;
        std::wstring text;
    };

    enum class MouseMode {
        Nothing,
        SelectAll,
        SelectColumn,
        SelectRow,
        SelectCells,
        ScrollFixedColumn,
        PrepareEdit,
        SizingColumn,
        SizingRow,
        PrepareDrag,
        Dragging,
    };

    // The system's colours as they were taken, so that a change is told from a user's choice.
    struct SystemColours {
        GridColour text = 0, window = 0, face = 0, shadow = 0;
    };

    // grid_model.cpp
    bool IsValid(int row, int column) const;
    bool IsValid(CCellID id) const { return IsValid(id.row, id.col); }
    bool IsPlain(CCellID id) const { return id.row >= fixedRows_ && id.col >= fixedColumns_; }
    uint32_t FixedBits(int row, int column) const;
    void UpdateFixedBits(int rows, int columns);
    void DestroyRow(Row& row);
    void FillRow(int row);
    bool InsertRowsAt(int row, int count);
    void EraseRowsAt(int row, int count);
    void Restructured();
    void DropFocusOutside();

    // grid_geometry.cpp
    int FixedWidth() const { return int(columnWidths_.Start(fixedColumns_)); }
    int FixedHeight() const { return int(rowHeights_.Start(fixedRows_)); }
    int TopRow() const;
    int LeftColumn() const;
    int64_t RowTop(int row) const;
    int64_t ColumnLeft(int column) const;
    QRect RangeRect(const CCellRange& range) const;
    void LayOut() const;
    void NeedLayout();
    int RowsInPage(int top) const;
    int ColumnsInPage(int left) const;
    void ScrollToRow(int row);
    void ScrollToColumn(int column);
    QRect PlainArea() const;
    // The column whose right edge, or the row whose lower edge, may be dragged from there; -1:
    // none.
    int SizedColumnAt(QPoint point) const;
    int SizedRowAt(QPoint point) const;

    // grid_selection.cpp
    CCellRange WholeRows(CCellRange range) const;
    void MarkSpan(int row, int first, int last, bool on);
    void AddToSelection(const CCellRange& range);
    void ClearSelection();
    // What a user does, of which the owner is told.
    void MoveFocus(CCellID cell, Qt::KeyboardModifiers modifiers);
    void SelectRangeByUser(const CCellRange& range, bool keepPrevious);

    // grid_merge.cpp
    const CCellRange* BlockAt(CCellID cell) const;
    void MarkBlock(const CCellRange& block, bool on);
    void MoveBlocksForRows(int at, int count);
    void MoveBlocksForColumns(int at, int count);
    void ReplaceBlocks(std::vector<CCellRange> blocks);

    // grid_keys.cpp
    void HandleKey(QKeyEvent& event);
    bool DoKeyCommand(const QKeyEvent& event);
    bool FoldByKey(const QKeyEvent& event);
    void MoveByKey(const QKeyEvent& event);
    CCellID KeyTarget(int key, Qt::KeyboardModifiers modifiers);
    CCellID TabTarget(bool back) const;
    CCellID PageTarget(bool down);
    CCellID HomeTarget(bool toTop);
    CCellID EndTarget(bool toBottom);
    int NextRow(int row) const;
    int PreviousRow(int row) const;
    int NextColumn(int column) const;
    int PreviousColumn(int column) const;
    bool TakeCharacter(const QKeyEvent& event);

    // grid_mouse.cpp
    bool BeginSizing(QPoint point);
    void Size(QPoint point);
    void PressCell(CCellID id, QPoint point, Qt::KeyboardModifiers modifiers);
    void DragTo(CCellID id);
    void ScrollWhileDragging();
    void EndPress(QPoint point);
    void LosePress();
    void ScrollRows(int rows);
    void HoverAt(QPoint point);
    bool ShowTip(QPoint point);
    QPoint InCell(CCellID id, QPoint point) const;
    CGridCellBase* CellForEvent(CCellID id);

    // grid_edit.cpp
    bool AskBeginEdit(CCellID id);
    bool CommitText(CellWatch& watch, const std::wstring& text);

    // grid_notify.cpp
    void TellChanging(CCellID id);
    void TellChanged(CCellID id);
    void Tell(void (GridListener::*what)(CGridCtrl&, CCellID), CCellID id);

    // grid_sort.cpp
    void FollowRows(int low, const std::vector<int>& origin);

    // grid_paint.cpp
    void DrawArea(QPainter& painter, const CCellRange& cells, const QRect& area, const QRect& clip);
    void DrawLines(QPainter& painter, const CCellRange& cells, const QRect& area,
                   const QRect& clip);
    void DrawBlocks(QPainter& painter, const CCellRange& cells, const QRect& area,
                    const QRect& clip);

    // grid_print.cpp
    void PrintCells(QPainter& painter, const PrintLayout& layout, const std::vector<int>& rows,
                    const std::vector<int>& columns, QPoint origin);

    // grid_style.cpp
    void TakeSystemColours();
    void TakeFont();

    GridListener* listener_ = nullptr;
    bool isBeingDestroyed_ = false;
    std::vector<CellWatch*> watches_;

    CGridDefaultCell cellDefaults_[4];
    const GridCellClass* defaultClass_;
    std::vector<Row> rows_;
    AxisSizes rowHeights_;
    AxisSizes columnWidths_;  // as displayed
    int fixedRows_ = 0, fixedColumns_ = 0;
    std::vector<int> columnOrder_;             // displayed to stored
    std::vector<Column> columns_;              // stored
    std::map<std::wstring, int> columnNames_;  // to stored columns
    std::vector<CCellRange> blocks_;           // merged ones; none meets another

    CellSelection selection_, previousSelection_;
    CCellID focusCell_, selectionStart_, previousSelectionStart_;

    bool isVirtual_ = false;
    bool isEditable_ = true, isListMode_ = false, isModified_ = false;
    bool fixedRowSelection_ = true, fixedColumnSelection_ = true;
    bool allowRowResize_ = true, allowColumnResize_ = true;
    bool frameFocus_ = true, trackFocusCell_ = true;
    bool sortAscending_ = true, titleTips_ = true;
    bool handleTabKey_ = false, tabLeavesGrid_ = false;
    int gridLines_ = kBothLines;
    int autoSizeStyle_ = kSizeByAll;
    int sortColumn_ = -1;
    int wheelLines_;
    SystemColours systemColours_;
    GridColour gridLineColour_ = gridColour(192, 192, 192);
    GridColour titleTipBackColour_ = kDefaultColour, titleTipTextColour_ = kDefaultColour;
    const GridImageList* images_ = nullptr;
    PrintMargins margins_;
    const QFont* printFont_ = nullptr;

    MouseMode mouseMode_ = MouseMode::Nothing;
    CCellID pressedCell_, hoveredCell_;
    bool isDoubleClick_ = false;  // the press that is under way is the second one
    int sizedItem_ = -1;          // while a row or column is sized
    QBasicTimer dragTimer_;
    QPoint dragPoint_;   // where the pointer is, in a drag
    int wheelRest_ = 0;  // of a notch
    mutable bool isLayoutStale_ = false;

    std::unique_ptr<CTreeColumn> tree_;
    std::unique_ptr<CBtnDataBase> buttonData_;
    std::unique_ptr<CTitleTip> titleTip_;  // made when first needed
    std::unique_ptr<GridScript> script_;   // made when first needed
    QPointer<QWidget> editor_;             // while a cell is edited
    mutable CellText texts_;
};

}  // namespace sg::grid

#pragma once

#include <QFont>
#include <QPoint>
#include <QRect>

#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "grid/cell_id.h"
#include "grid/constants.h"

class QPainter;
class QWidget;

namespace sg::grid {

class CGridCtrl;
class CGridDefaultCell;
class CGridTreeCellBase;

// What a cell draws with: its inner rectangle gets smaller from step to step.
struct CellCanvas {
    QPainter& painter;
    int row, col;
    QRect cell;  // without the lines around it
    QRect rect;  // what is left for the contents
    QColor textColour;
};

// A cell of a grid: it knows its text, look and state, draws itself, and edits itself when asked.
// The grid that it is in owns it. Points that a cell is given are relative to its top left corner.
//
// Getters of format, colours, font and margins answer the default cell's value when the cell has
// none of its own.
class SG_API CGridCellBase {
  public:
    CGridCellBase();
    virtual ~CGridCellBase();
    CGridCellBase(const CGridCellBase&) = delete;
    CGridCellBase& operator=(const CGridCellBase&) = delete;

    virtual void SetText(const std::wstring& text) = 0;
    // Of the title tip, where it differs from the cell's text; empty: it does not.
    virtual void SetTipText(const std::wstring& text);
    virtual void SetImage(int image) = 0;  // in the grid's image list; -1: none
    virtual void SetData(intptr_t data) = 0;
    virtual void SetState(uint32_t state) { state_ = state; }
    virtual void SetFormat(uint32_t format) = 0;  // kDefaultFormat: the default cell's
    virtual void SetTextClr(GridColour colour) = 0;
    virtual void SetBackClr(GridColour colour) = 0;
    virtual void SetFont(const QFont* font) = 0;  // copied; null: the default cell's
    virtual void SetMarginX(uint32_t margin) = 0;
    virtual void SetMarginY(uint32_t margin) = 0;
    virtual void SetGrid(CGridCtrl* grid) = 0;
    // Its place, which the grid tells before every event.
    virtual void SetCoords(int row, int col);

    virtual const std::wstring& GetText() const = 0;
    virtual const std::wstring& GetTipText() const;
    virtual const std::wstring& GetRawTipText() const;
    virtual int GetImage() const { return -1; }
    virtual intptr_t GetData() const { return 0; }
    virtual uint32_t GetState() const { return state_; }
    virtual uint32_t GetFormat() const;
    virtual GridColour GetTextClr() const;
    virtual GridColour GetBackClr() const;
    virtual const QFont& GetFont() const;
    virtual CGridCtrl* GetGrid() const = 0;
    virtual QWidget* GetEditWnd() const { return nullptr; }
    virtual int GetMarginX() const;
    virtual int GetMarginY() const;
    // Of the kind that the cell is by its fixed bits. Null without a grid.
    virtual const CGridDefaultCell* GetDefaultCell() const;
    virtual bool IsDefaultFont() const { return true; }
    virtual bool HasOwnBackClr() const { return false; }

    virtual bool IsEditing() const { return false; }
    virtual bool IsFocused() const { return Has(GVIS_FOCUSED); }
    virtual bool IsFixed() const { return Has(GVIS_FIXED); }
    virtual bool IsFixedCol() const { return Has(GVIS_FIXEDCOL); }
    virtual bool IsFixedRow() const { return Has(GVIS_FIXEDROW); }
    virtual bool IsSelected() const { return Has(GVIS_SELECTED); }
    virtual bool IsReadOnly() const { return Has(GVIS_READONLY); }
    virtual bool IsModified() const { return Has(GVIS_MODIFIED); }
    virtual bool IsDropHighlighted() const { return Has(GVIS_DROPHILITED); }

    // Takes over text, look, state and merging of a cell that may be of another class.
    virtual void CopyFrom(const CGridCellBase& source);
    virtual void Reset();

    // Draws the cell; a cell that a merged block covers draws nothing. False, with nothing drawn,
    // without a grid or with an empty rectangle.
    virtual bool Draw(QPainter& painter, int row, int col, QRect rect, bool eraseBackground);
    // As Draw, without focus and selection.
    virtual bool PrintCell(QPainter& painter, int row, int col, QRect rect);
    // What a rectangle leaves for text.
    virtual QRect GetTextRect(const QRect& rect) const;
    virtual QRect GetTipTextRect(const QRect& rect) const { return GetTextRect(rect); }
    // `width` is where lines are wrapped, if the format says so; 0: nowhere.
    virtual QSize GetTextExtent(const std::wstring& text, int width = 0) const;
    // With image and margins. An empty text takes the default cell's size.
    virtual QSize GetCellExtent() const;

    // Begins an edit in the rectangle. `character` is an EditStart or the character that was typed;
    // `point` lies outside the cell when nothing was clicked. The grid has looked that the cell may
    // be edited.
    virtual bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
                      uint32_t character);
    virtual bool ValidateEdit(const std::wstring& text);
    // Ends the edit, as if the editor had lost the focus.
    virtual void EndEdit() {}
    // The editor is gone.
    virtual void OnEndEdit() {}
    // Whether a click on the point is meant for something in the cell and so begins no edit.
    virtual bool TakesClick(QPoint) const { return false; }

    // Whether the cell paints by itself: it is in no merged block, or the top left one of it.
    virtual bool IsShown() const;
    virtual CCellRange GetMergeRange() const;  // of the top left cell of a block; else none
    virtual bool IsMergedIntoOther() const;
    virtual CCellID GetMergeCell() const;  // of a covered cell: the top left one; else none
    virtual void SetMergeRange(const CCellRange& range);
    virtual void SetMergeCell(CCellID cell);
    bool IsMerged() const { return GetMergeRange().Count() > 1; }

    virtual void OnMouseEnter() {}
    virtual void OnMouseOver() {}
    virtual void OnMouseLeave() {}
    virtual void OnClick(QPoint) {}
    virtual void OnClickDown(QPoint) {}
    virtual void OnRClick(QPoint) {}
    virtual void OnDblClick(QPoint) {}
    // Sets the pointer's shape; true when it did.
    virtual bool OnSetCursor();

    // The cell as one of a tree column; null when it is none.
    virtual CGridTreeCellBase* AsTreeCell() { return nullptr; }

  protected:
    // Paints the background, the frame of the focus, and the edges of fixed cells.
    void DrawBackground(CellCanvas& canvas, bool erase) const;
    // Image, sort mark and text.
    void DrawText(CellCanvas& canvas, bool withImage = true) const;
    // What stands on the background.
    virtual void DrawContents(CellCanvas& canvas) { DrawText(canvas); }
    // The font to draw with, which may be a printer's.
    const QFont& DrawingFont() const;
    bool Has(uint32_t bit) const { return (GetState() & bit) != 0; }

  private:
    // What few cells have.
    struct Extras {
        std::wstring tipText;
        CCellRange mergeRange;
        CCellID mergeCell;
        bool isMergedIntoOther = false;
        bool isHidden = false;
    };
    Extras& NeedExtras();

    uint32_t state_ = 0;
    std::unique_ptr<Extras> extras_;  // null for most
};

}  // namespace sg::grid

#pragma once

#include "grid/button_block.h"
#include "grid/cell_base.h"

namespace sg::grid {

class CTreeColumn;
struct TreeRowLook;

// A cell of a tree column: one byte holds its level and whether its row is shown. What all cells of
// the column share is in the column.
class SG_API CGridTreeCellBase : public CGridCellBase {
  public:
    CGridTreeCellBase();
    ~CGridTreeCellBase() override;

    // Bits 0 to 6 are the level, bit 7 is set while the row is shown.
    uint8_t GetLevelAndHide() const { return levelAndHide_; }
    void SetLevelAndHide(uint8_t levelAndHide) { levelAndHide_ = levelAndHide; }
    int GetLevel() const { return levelAndHide_ & 0x7F; }
    void SetTree(CTreeColumn* tree) { tree_ = tree; }
    CTreeColumn* GetTree() const { return tree_; }
    // Colours and font of another one.
    void CopyLook(const CGridTreeCellBase& other);

    void SetImage(int image) override { image_ = image; }
    void SetData(intptr_t data) override { data_ = data; }
    void SetFormat(uint32_t) override {}  // the column's
    void SetTextClr(GridColour colour) override { textColour_ = colour; }
    void SetBackClr(GridColour colour) override { backColour_ = colour; }
    void SetFont(const QFont* font) override;
    void SetMarginX(uint32_t) override {}
    void SetMarginY(uint32_t) override {}
    void SetGrid(CGridCtrl* grid) override { grid_ = grid; }
    void SetCoords(int row, int col) override;

    int GetImage() const override { return image_; }
    intptr_t GetData() const override { return data_; }
    uint32_t GetFormat() const override;
    GridColour GetTextClr() const override;
    GridColour GetBackClr() const override;
    const QFont& GetFont() const override;
    CGridCtrl* GetGrid() const override { return grid_; }
    bool IsDefaultFont() const override { return font_ == nullptr; }
    bool HasOwnBackClr() const override { return backColour_ != kDefaultColour; }

    void CopyFrom(const CGridCellBase& source) override;
    void Reset() override;
    QRect GetTextRect(const QRect& rect) const override;
    QSize GetCellExtent() const override;
    bool TakesClick(QPoint point) const override;
    void OnClickDown(QPoint point) override;
    void OnDblClick(QPoint point) override;
    CGridTreeCellBase* AsTreeCell() override { return this; }

  protected:
    void DrawContents(CellCanvas& canvas) override;
    // The lines and the box at the left of the cell, and the image.
    void DrawGraphic(CellCanvas& canvas);
    // What level and image take at the left.
    int GraphicWidth() const;
    int Row() const { return row_; }

  private:
    void DrawRails(CellCanvas& canvas, const TreeRowLook& look, const QRect& box) const;
    void DrawBox(CellCanvas& canvas, bool isCollapsed, const QRect& box) const;
    void DrawTreeImage(CellCanvas& canvas, int image);

    uint8_t levelAndHide_ = 0;
    int image_ = -1;
    int row_ = -1;  // as it was last told
    GridColour textColour_ = kDefaultColour;
    GridColour backColour_ = kDefaultColour;
    intptr_t data_ = 0;
    std::unique_ptr<QFont> font_;
    CTreeColumn* tree_ = nullptr;
    CGridCtrl* grid_ = nullptr;
};

// A tree cell with text.
class SG_API CGridTreeCell : public CGridTreeCellBase {
  public:
    CGridTreeCell();
    ~CGridTreeCell() override;

    void SetText(const std::wstring& text) override { text_ = text; }
    const std::wstring& GetText() const override { return text_; }
    QWidget* GetEditWnd() const override { return editor_; }
    bool IsEditing() const override { return editor_ != nullptr; }
    void Reset() override;
    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;
    void EndEdit() override;
    void OnEndEdit() override { editor_ = nullptr; }

  private:
    std::wstring text_;
    QWidget* editor_ = nullptr;  // while one is open
};

// A tree cell with controls behind the graphic.
class SG_API CGridTreeBtnCell : public CGridTreeCell {
  public:
    ButtonBlock& Buttons() { return buttons_; }
    const ButtonBlock& Buttons() const { return buttons_; }

    void CopyFrom(const CGridCellBase& source) override;
    QSize GetCellExtent() const override;
    bool TakesClick(QPoint point) const override;
    void SetCoords(int row, int col) override;
    void OnClickDown(QPoint point) override;
    void OnClick(QPoint point) override;
    void OnDblClick(QPoint point) override;
    void OnMouseLeave() override;
    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;

  protected:
    void DrawContents(CellCanvas& canvas) override;

  private:
    QRect ControlArea() const;
    CCellID Place() const { return {Row(), column_}; }

    ButtonBlock buttons_;
    int column_ = -1;
};

}  // namespace sg::grid

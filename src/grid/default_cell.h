#pragma once

#include "grid/cell.h"

namespace sg::grid {

// The look of all cells of one kind that have none of their own, and the size of new rows and
// columns. Never in a table, and never edited.
class SG_API CGridDefaultCell : public CGridCell {
  public:
    CGridDefaultCell();

    // Measures the font: it gives the margins and the default size. A null font is refused.
    void SetFont(const QFont* font) override;
    uint32_t GetState() const override { return CGridCell::GetState() | GVIS_READONLY; }

    uint32_t GetFormat() const override { return RawFormat(); }
    GridColour GetTextClr() const override { return RawTextClr(); }
    GridColour GetBackClr() const override { return RawBackClr(); }
    int GetMarginX() const override { return int(RawMarginX()); }
    int GetMarginY() const override { return int(RawMarginY()); }
    const CGridDefaultCell* GetDefaultCell() const override { return nullptr; }

    uint32_t GetStyle() const { return style_; }
    void SetStyle(uint32_t style) { style_ = style; }
    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }
    void SetWidth(int width) { width_ = width; }
    void SetHeight(int height) { height_ = height; }

  private:
    uint32_t style_ = 0;  // the owner's
    int width_ = 0;
    int height_ = 0;
};

}  // namespace sg::grid

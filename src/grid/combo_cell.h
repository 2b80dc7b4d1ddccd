#pragma once

#include <memory>
#include <string>
#include <vector>

#include "grid/cell.h"

namespace sg::grid {

// The room for an arrow at the right of a cell, and the arrow.
QRect dropArrowRect(const QRect& cell);
void drawDropArrow(QPainter& painter, const CGridCtrl& grid, const QRect& arrow, bool isPushed);

// What a drop list offers, and the owner's number for each.
struct GridOptions {
    std::vector<std::wstring> texts;
    std::vector<intptr_t> data;  // as many
};

// A cell that is edited in a drop list.
class SG_API CGridCellCombo : public CGridCell {
  public:
    // What the list offers, and the owner's number for each; those that are not given are 0.
    void SetOptions(std::vector<std::wstring> options, std::vector<intptr_t> data = {});
    // A list that many cells have.
    void SetOptions(std::shared_ptr<const GridOptions> options) { options_ = std::move(options); }
    const std::vector<std::wstring>& GetOptions() const { return options_->texts; }
    const std::vector<intptr_t>& GetOptionData() const { return options_->data; }
    // A GridListStyle.
    void SetStyle(int style) { style_ = style; }
    int GetStyle() const { return style_; }

    void CopyFrom(const CGridCellBase& source) override;
    QSize GetCellExtent() const override;
    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;

  protected:
    void DrawContents(CellCanvas& canvas) override;

  private:
    static std::shared_ptr<const GridOptions> noOptions();

    std::shared_ptr<const GridOptions> options_ = noOptions();
    int style_ = 1;
};

}  // namespace sg::grid

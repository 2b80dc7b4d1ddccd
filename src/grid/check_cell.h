#pragma once

#include "grid/cell.h"

namespace sg::grid {

// A check box: on unless its text is "0". A click on the box, a blank and Return change it, as an
// edit that begins and ends at once; "0" and "1" set it.
class SG_API CGridCheckCell : public CGridCell {
  public:
    bool IsOn() const { return GetText() != L"0"; }
    static const wchar_t* TextFor(bool on) { return on ? L"1" : L"0"; }

    QSize GetCellExtent() const override;
    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;
    bool ValidateEdit(const std::wstring& text) override;
    bool TakesClick(QPoint point) const override;
    void OnClick(QPoint point) override;

  protected:
    void DrawContents(CellCanvas& canvas) override;

  private:
    QSize BoxSize() const;
};

}  // namespace sg::grid

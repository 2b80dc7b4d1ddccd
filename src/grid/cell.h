#pragma once

#include "grid/cell_base.h"

namespace sg::grid {

// A plain cell: text, and a look of its own where it was given one.
class SG_API CGridCell : public CGridCellBase {
  public:
    CGridCell();
    ~CGridCell() override;

    void SetText(const std::wstring& text) override { text_ = text; }
    void SetImage(int image) override { image_ = image; }
    void SetData(intptr_t data) override { data_ = data; }
    void SetFormat(uint32_t format) override { format_ = format; }
    void SetTextClr(GridColour colour) override { textColour_ = colour; }
    void SetBackClr(GridColour colour) override { backColour_ = colour; }
    void SetFont(const QFont* font) override;
    void SetMarginX(uint32_t margin) override { marginX_ = margin; }
    void SetMarginY(uint32_t margin) override { marginY_ = margin; }
    void SetGrid(CGridCtrl* grid) override { grid_ = grid; }

    const std::wstring& GetText() const override { return text_; }
    int GetImage() const override { return image_; }
    intptr_t GetData() const override { return data_; }
    uint32_t GetFormat() const override;
    GridColour GetTextClr() const override;
    GridColour GetBackClr() const override;
    const QFont& GetFont() const override;
    CGridCtrl* GetGrid() const override { return grid_; }
    QWidget* GetEditWnd() const override { return editor_; }
    int GetMarginX() const override;
    int GetMarginY() const override;
    bool IsDefaultFont() const override { return font_ == nullptr; }
    bool HasOwnBackClr() const override { return backColour_ != kDefaultColour; }
    bool IsEditing() const override { return editor_ != nullptr; }

    void CopyFrom(const CGridCellBase& source) override;
    void Reset() override;

    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;
    void EndEdit() override;
    void OnEndEdit() override { editor_ = nullptr; }

  protected:
    void SetEditor(QWidget* editor) { editor_ = editor; }
    // The cell's own values, without the default cell's.
    uint32_t RawFormat() const { return format_; }
    GridColour RawTextClr() const { return textColour_; }
    GridColour RawBackClr() const { return backColour_; }
    uint32_t RawMarginX() const { return marginX_; }
    uint32_t RawMarginY() const { return marginY_; }

  private:
    int image_ = -1;
    std::wstring text_;
    intptr_t data_ = 0;
    uint32_t format_ = kDefaultFormat;
    GridColour textColour_ = kDefaultColour;
    GridColour backColour_ = kDefaultColour;
    uint32_t marginX_ = kDefaultMargin;
    uint32_t marginY_ = kDefaultMargin;
    std::unique_ptr<QFont> font_;  // null: the default cell's
    CGridCtrl* grid_ = nullptr;
    QWidget* editor_ = nullptr;  // while one is open
};

}  // namespace sg::grid

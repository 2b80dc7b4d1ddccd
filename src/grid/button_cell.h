#pragma once

#include <optional>

#include "grid/button_block.h"
#include "grid/button_data.h"
#include "grid/cell_base.h"
#include "grid/in_place_list.h"

namespace sg::grid {

// What cells with controls have in common: values that all of them share, and for a cell those that
// differ.
class SG_API CGridBtnCellBase : public CGridCellBase {
  public:
    CGridBtnCellBase();
    ~CGridBtnCellBase() override;

    // The store of its grid, unless it is given another one, which is not owned.
    void SetBtnDataBase(CBtnDataBase* data) { data_ = data; }
    CBtnDataBase* GetBtnDataBase() const { return data_; }

    void SetText(const std::wstring& text) override { Own().text = text; }
    void SetImage(int image) override { Own().image = image; }
    void SetData(intptr_t data) override { Own().data = data; }
    void SetFormat(uint32_t format) override;
    void SetTextClr(GridColour colour) override { Own().textColour = colour; }
    void SetBackClr(GridColour colour) override { Own().backColour = colour; }
    void SetFont(const QFont* font) override;
    void SetMarginX(uint32_t margin) override;
    void SetMarginY(uint32_t margin) override;
    void SetGrid(CGridCtrl* grid) override;
    void SetCoords(int row, int col) override;

    const std::wstring& GetText() const override;
    int GetImage() const override;
    intptr_t GetData() const override;
    uint32_t GetFormat() const override;
    GridColour GetTextClr() const override;
    GridColour GetBackClr() const override;
    const QFont& GetFont() const override;
    CGridCtrl* GetGrid() const override { return grid_; }
    QWidget* GetEditWnd() const override { return editor_; }
    int GetMarginX() const override;
    int GetMarginY() const override;
    bool IsDefaultFont() const override;
    bool HasOwnBackClr() const override;
    bool IsEditing() const override { return editor_ != nullptr; }

    void CopyFrom(const CGridCellBase& source) override;
    void Reset() override;
    void EndEdit() override;
    void OnEndEdit() override { editor_ = nullptr; }

  protected:
    CCellID Place() const { return {row_, col_}; }
    void SetEditor(QWidget* editor) { editor_ = editor; }

  private:
    // Each is there where the cell differs.
    struct OwnValues {
        std::optional<std::wstring> text;
        std::optional<int> image;
        std::optional<intptr_t> data;
        std::optional<uint32_t> format, marginX, marginY;
        std::optional<QFont> font;
        GridColour textColour = kDefaultColour, backColour = kDefaultColour;
    };
    OwnValues& Own();

    CBtnDataBase* data_ = nullptr;
    std::unique_ptr<OwnValues> own_;
    CGridCtrl* grid_ = nullptr;
    QWidget* editor_ = nullptr;  // while one is open
    int row_ = -1, col_ = -1;
};

// A cell with controls, and text to the right of them.
class SG_API CGridBtnCell : public CGridBtnCellBase {
  public:
    ButtonBlock& Buttons() { return buttons_; }
    const ButtonBlock& Buttons() const { return buttons_; }

    void CopyFrom(const CGridCellBase& source) override;
    QSize GetCellExtent() const override;
    bool TakesClick(QPoint point) const override;
    void OnClickDown(QPoint point) override;
    void OnClick(QPoint point) override;
    void OnDblClick(QPoint point) override;
    void OnMouseLeave() override;
    bool Edit(int row, int col, const QRect& rect, QPoint point, int id,
              uint32_t character) override;

  protected:
    void DrawContents(CellCanvas& canvas) override;
    // Opens the editor of the text.
    virtual QWidget* OpenEditor(CCellID cell, const QRect& rect, int id, uint32_t character);
    // Where the controls stand, in the cell.
    virtual QRect ControlArea() const;

  private:
    ButtonBlock buttons_;
};

// A cell with controls whose text is edited in a drop list.
class SG_API CGridBtnCellCombo : public CGridBtnCell {
  public:
    void SetOptions(std::vector<std::wstring> options) { options_ = std::move(options); }
    const std::vector<std::wstring>& GetOptions() const { return options_; }
    void SetStyle(int style) { style_ = style; }  // a GridListStyle
    int GetStyle() const { return style_; }

    void CopyFrom(const CGridCellBase& source) override;
    QSize GetCellExtent() const override;

  protected:
    void DrawContents(CellCanvas& canvas) override;
    QWidget* OpenEditor(CCellID cell, const QRect& rect, int id, uint32_t character) override;
    QRect ControlArea() const override;

  private:
    std::vector<std::wstring> options_;
    int style_ = kListEditable;
};

}  // namespace sg::grid

#pragma once

#include <QFont>

#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "grid/constants.h"

class QWidget;

namespace sg::grid {

class CGridCtrl;

// What button cells share: the values of all cells that have none of their own. A grid has one.
class SG_API CBtnDataBase {
  public:
    CBtnDataBase() = default;
    virtual ~CBtnDataBase();

    virtual void SetText(const std::wstring& text) { text_ = text; }
    virtual void SetImage(int image) { image_ = image; }
    virtual void SetData(intptr_t data) { data_ = data; }
    virtual void SetFormat(uint32_t format) { format_ = format; }
    virtual void SetTextClr(GridColour colour) { textColour_ = colour; }
    virtual void SetBackClr(GridColour colour) { backColour_ = colour; }
    virtual void SetFont(const QFont* font);  // null: the grid's default cell's
    virtual void SetMarginX(uint32_t margin) { marginX_ = margin; }
    virtual void SetMarginY(uint32_t margin) { marginY_ = margin; }
    virtual void SetGrid(CGridCtrl* grid) { grid_ = grid; }

    virtual const std::wstring& GetText() const { return text_; }
    virtual int GetImage() const { return image_; }
    virtual intptr_t GetData() const { return data_; }
    virtual uint32_t GetFormat() const { return format_; }
    virtual GridColour GetTextClr() const { return textColour_; }
    virtual GridColour GetBackClr() const { return backColour_; }
    virtual const QFont& GetFont() const;
    virtual int GetMarginX() const { return int(marginX_); }
    virtual int GetMarginY() const { return int(marginY_); }
    virtual CGridCtrl* GetGrid() const { return grid_; }
    virtual bool IsDefaultFont() const { return font_ == nullptr; }

  private:
    std::wstring text_;
    uint32_t format_ = kSharedFormat;
    int image_ = -1;
    GridColour textColour_ = kDefaultColour;
    GridColour backColour_ = kDefaultColour;
    intptr_t data_ = 0;
    std::unique_ptr<QFont> font_;
    uint32_t marginX_ = 1;
    uint32_t marginY_ = 3;
    CGridCtrl* grid_ = nullptr;
};

}  // namespace sg::grid

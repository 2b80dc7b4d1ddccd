#include "grid/cell.h"

#include "grid/in_place_edit.h"

namespace sg::grid {

CGridCell::CGridCell() = default;

CGridCell::~CGridCell() {
    if (editor_ != nullptr) abandonEditorOf(*editor_);
}

void CGridCell::SetFont(const QFont* font) {
    font_ = font == nullptr ? nullptr : std::make_unique<QFont>(*font);
}

uint32_t CGridCell::GetFormat() const {
    return format_ != kDefaultFormat ? format_ : CGridCellBase::GetFormat();
}

GridColour CGridCell::GetTextClr() const {
    return textColour_ != kDefaultColour ? textColour_ : CGridCellBase::GetTextClr();
}

GridColour CGridCell::GetBackClr() const {
    return backColour_ != kDefaultColour ? backColour_ : CGridCellBase::GetBackClr();
}

const QFont& CGridCell::GetFont() const {
    return font_ ? *font_ : CGridCellBase::GetFont();
}

int CGridCell::GetMarginX() const {
    return marginX_ != kDefaultMargin ? int(marginX_) : CGridCellBase::GetMarginX();
}

int CGridCell::GetMarginY() const {
    return marginY_ != kDefaultMargin ? int(marginY_) : CGridCellBase::GetMarginY();
}

void CGridCell::CopyFrom(const CGridCellBase& source) {
    CGridCellBase::CopyFrom(source);
    const auto* const cell = dynamic_cast<const CGridCell*>(&source);
    if (cell == nullptr) {
        image_ = source.GetImage();
        if (source.HasOwnBackClr()) backColour_ = source.GetBackClr();
        SetFont(source.IsDefaultFont() ? nullptr : &source.GetFont());
        return;
    }
    image_ = cell->image_;
    format_ = cell->format_;
    textColour_ = cell->textColour_;
    backColour_ = cell->backColour_;
    marginX_ = cell->marginX_;
    marginY_ = cell->marginY_;
    SetFont(cell->font_.get());
}

void CGridCell::Reset() {
    CGridCellBase::Reset();
    text_.clear();
    data_ = 0;
    image_ = -1;
    format_ = kDefaultFormat;
    textColour_ = backColour_ = kDefaultColour;
    marginX_ = marginY_ = kDefaultMargin;
    font_.reset();
}

bool CGridCell::Edit(int row, int col, const QRect& rect, QPoint, int id, uint32_t character) {
    if (IsEditing()) return true;
    editor_ = CInPlaceEdit::Open(*this, {row, col}, rect, id, character);
    return editor_ != nullptr;
}

void CGridCell::EndEdit() {
    if (editor_ != nullptr) endEditorOf(*editor_);
}

}  // namespace sg::grid

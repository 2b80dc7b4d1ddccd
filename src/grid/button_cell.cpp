#include "grid/button_cell.h"

#include "grid/combo_cell.h"
#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"

namespace sg::grid {

CGridBtnCellBase::CGridBtnCellBase() = default;

CGridBtnCellBase::~CGridBtnCellBase() {
    if (editor_ != nullptr) abandonEditorOf(*editor_);
}

CGridBtnCellBase::OwnValues& CGridBtnCellBase::Own() {
    if (!own_) own_ = std::make_unique<OwnValues>();
    return *own_;
}

void CGridBtnCellBase::SetFormat(uint32_t format) {
    Own().format = format == kDefaultFormat ? std::nullopt : std::optional(format);
}

void CGridBtnCellBase::SetMarginX(uint32_t margin) {
    Own().marginX = margin == kDefaultMargin ? std::nullopt : std::optional(margin);
}

void CGridBtnCellBase::SetMarginY(uint32_t margin) {
    Own().marginY = margin == kDefaultMargin ? std::nullopt : std::optional(margin);
}

void CGridBtnCellBase::SetFont(const QFont* font) {
    if (font != nullptr) {
        Own().font = *font;
    } else if (own_) {
        own_->font.reset();
    }
}

void CGridBtnCellBase::SetGrid(CGridCtrl* grid) {
    grid_ = grid;
    if (data_ == nullptr && grid != nullptr) data_ = &grid->GetButtonData();
}

void CGridBtnCellBase::SetCoords(int row, int col) {
    row_ = row;
    col_ = col;
}

const std::wstring& CGridBtnCellBase::GetText() const {
    static const std::wstring none;
    if (own_ && own_->text) return *own_->text;
    return data_ != nullptr ? data_->GetText() : none;
}

int CGridBtnCellBase::GetImage() const {
    if (own_ && own_->image) return *own_->image;
    return data_ != nullptr ? data_->GetImage() : -1;
}

intptr_t CGridBtnCellBase::GetData() const {
    if (own_ && own_->data) return *own_->data;
    return data_ != nullptr ? data_->GetData() : 0;
}

uint32_t CGridBtnCellBase::GetFormat() const {
    if (own_ && own_->format) return *own_->format;
    return data_ != nullptr ? data_->GetFormat() : kSharedFormat;
}

GridColour CGridBtnCellBase::GetTextClr() const {
    if (own_ && own_->textColour != kDefaultColour) return own_->textColour;
    const bool isShared = data_ != nullptr && data_->GetTextClr() != kDefaultColour;
    return isShared ? data_->GetTextClr() : CGridCellBase::GetTextClr();
}

GridColour CGridBtnCellBase::GetBackClr() const {
    if (own_ && own_->backColour != kDefaultColour) return own_->backColour;
    const bool isShared = data_ != nullptr && data_->GetBackClr() != kDefaultColour;
    return isShared ? data_->GetBackClr() : CGridCellBase::GetBackClr();
}

const QFont& CGridBtnCellBase::GetFont() const {
    if (own_ && own_->font) return *own_->font;
    return data_ != nullptr && !data_->IsDefaultFont() ? data_->GetFont()
                                                       : CGridCellBase::GetFont();
}

int CGridBtnCellBase::GetMarginX() const {
    if (own_ && own_->marginX) return int(*own_->marginX);
    return data_ != nullptr ? data_->GetMarginX() : 0;
}

int CGridBtnCellBase::GetMarginY() const {
    if (own_ && own_->marginY) return int(*own_->marginY);
    return data_ != nullptr ? data_->GetMarginY() : 0;
}

bool CGridBtnCellBase::IsDefaultFont() const {
    return !(own_ && own_->font) && (data_ == nullptr || data_->IsDefaultFont());
}

bool CGridBtnCellBase::HasOwnBackClr() const {
    return (own_ && own_->backColour != kDefaultColour) ||
           (data_ != nullptr && data_->GetBackClr() != kDefaultColour);
}

void CGridBtnCellBase::CopyFrom(const CGridCellBase& source) {
    CGridCellBase::CopyFrom(source);
    if (const auto* const cell = dynamic_cast<const CGridBtnCellBase*>(&source)) {
        own_ = cell->own_ ? std::make_unique<OwnValues>(*cell->own_) : nullptr;
        return;
    }
    if (source.HasOwnBackClr()) SetBackClr(source.GetBackClr());
    if (!source.IsDefaultFont()) SetFont(&source.GetFont());
    if (source.GetImage() >= 0) SetImage(source.GetImage());
}

void CGridBtnCellBase::Reset() {
    CGridCellBase::Reset();
    own_.reset();
}

void CGridBtnCellBase::EndEdit() {
    if (editor_ != nullptr) endEditorOf(*editor_);
}

void CGridBtnCell::CopyFrom(const CGridCellBase& source) {
    CGridBtnCellBase::CopyFrom(source);
    if (const auto* const cell = dynamic_cast<const CGridBtnCell*>(&source)) {
        buttons_ = cell->buttons_;
    }
}

QRect CGridBtnCell::ControlArea() const {
    QRect rect;
    if (!GetGrid()->GetCellRect(Place().row, Place().col, rect)) return {};
    return {QPoint(GetMarginX(), 0), rect.size() - QSize(GetMarginX(), 0)};
}

// Room for the controls that have a width, and a square for each other one.
QSize CGridBtnCell::GetCellExtent() const {
    QSize extent = CGridBtnCellBase::GetCellExtent();
    for (size_t i = 0; i < buttons_.Count(); ++i) {
        const int width = buttons_[i].width;
        const QSize text = GetTextExtent(buttons_[i].text);
        extent.rwidth() += width > 0 ? width : extent.height() + text.width();
    }
    return extent;
}

bool CGridBtnCell::TakesClick(QPoint point) const {
    return buttons_.ControlAt(point, ControlArea(), GetMarginX()) >= 0;
}

void CGridBtnCell::OnClickDown(QPoint point) {
    buttons_.OnClickDown(*this, Place(), point, ControlArea());
}

void CGridBtnCell::OnClick(QPoint) {
    buttons_.OnClick(*this, Place());
}

void CGridBtnCell::OnDblClick(QPoint point) {
    buttons_.OnDblClick(*this, Place(), point, ControlArea());
}

void CGridBtnCell::OnMouseLeave() {
    buttons_.OnMouseLeave(*this, Place());
}

void CGridBtnCell::DrawContents(CellCanvas& canvas) {
    buttons_.Draw(canvas, *GetGrid(), GetMarginX());
    if (!canvas.rect.isEmpty()) DrawText(canvas);
}

bool CGridBtnCell::Edit(int row, int col, const QRect& rect, QPoint, int id, uint32_t character) {
    if (IsEditing()) return true;
    SetCoords(row, col);
    const QRect area = ControlArea();
    if (buttons_.TakeCharacter(*this, {row, col}, character, area)) return true;
    const QRect text = buttons_.TextRect(area, GetMarginX()).translated(rect.topLeft());
    if (text.width() <= GetMarginX()) return false;
    SetEditor(OpenEditor({row, col}, text, id, character));
    return IsEditing();
}

QWidget* CGridBtnCell::OpenEditor(CCellID cell, const QRect& rect, int id, uint32_t character) {
    return CInPlaceEdit::Open(*this, cell, rect, id, character);
}

void CGridBtnCellCombo::CopyFrom(const CGridCellBase& source) {
    CGridBtnCell::CopyFrom(source);
    if (const auto* const combo = dynamic_cast<const CGridBtnCellCombo*>(&source)) {
        options_ = combo->options_;
        style_ = combo->style_;
    }
}

QSize CGridBtnCellCombo::GetCellExtent() const {
    const QSize extent = CGridBtnCell::GetCellExtent();
    return extent + QSize(dropArrowRect(QRect(QPoint(), extent)).width(), 0);
}

QRect CGridBtnCellCombo::ControlArea() const {
    QRect area = CGridBtnCell::ControlArea();
    if (!area.isEmpty()) area.setRight(dropArrowRect(area).left() - 1);
    return area;
}

void CGridBtnCellCombo::DrawContents(CellCanvas& canvas) {
    const QRect arrow = dropArrowRect(canvas.rect);
    canvas.rect.setRight(arrow.left() - 1);
    CGridBtnCell::DrawContents(canvas);
    drawDropArrow(canvas.painter, *GetGrid(), arrow, IsEditing());
}

QWidget* CGridBtnCellCombo::OpenEditor(CCellID cell, const QRect& rect, int id,
                                       uint32_t character) {
    const QRect whole = rect.adjusted(0, 0, dropArrowRect(rect).width(), 0);
    return CInPlaceList::Open(*this, cell, whole, id, character, options_, style_, false);
}

}  // namespace sg::grid

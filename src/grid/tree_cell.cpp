#include "grid/tree_cell.h"

#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"
#include "grid/tree_column.h"

namespace sg::grid {
namespace {

constexpr int kBoxSize = 9;
constexpr int kBoxTop = 4;
constexpr int kBoxLeft = 2;

// The box of a row, in its cell.
QRect boxOf(const CGridTreeCellBase& cell) {
    const CTreeColumn* const tree = cell.GetTree();
    const bool isDrawn = tree != nullptr && cell.GetLevel() > 0 && tree->GetIndent() >= 6;
    if (!isDrawn) return {};
    return {(cell.GetLevel() - 1) * tree->GetIndent() + kBoxLeft, kBoxTop, kBoxSize, kBoxSize};
}

}  // namespace

CGridTreeCellBase::CGridTreeCellBase() = default;
CGridTreeCellBase::~CGridTreeCellBase() = default;

void CGridTreeCellBase::SetCoords(int row, int) {
    row_ = row;
}

void CGridTreeCellBase::SetFont(const QFont* font) {
    font_ = font == nullptr ? nullptr : std::make_unique<QFont>(*font);
}

uint32_t CGridTreeCellBase::GetFormat() const {
    return tree_ != nullptr ? tree_->GetDefaultFormat() : CGridCellBase::GetFormat();
}

GridColour CGridTreeCellBase::GetTextClr() const {
    return textColour_ != kDefaultColour ? textColour_ : CGridCellBase::GetTextClr();
}

GridColour CGridTreeCellBase::GetBackClr() const {
    return backColour_ != kDefaultColour ? backColour_ : CGridCellBase::GetBackClr();
}

const QFont& CGridTreeCellBase::GetFont() const {
    return font_ ? *font_ : CGridCellBase::GetFont();
}

void CGridTreeCellBase::CopyLook(const CGridTreeCellBase& other) {
    textColour_ = other.textColour_;
    backColour_ = other.backColour_;
    SetFont(other.font_.get());
}

void CGridTreeCellBase::CopyFrom(const CGridCellBase& source) {
    CGridCellBase::CopyFrom(source);
    if (const auto* const cell = dynamic_cast<const CGridTreeCellBase*>(&source)) {
        CopyLook(*cell);
        image_ = cell->image_;
        levelAndHide_ = cell->levelAndHide_;
        tree_ = cell->tree_;
    } else {
        if (source.HasOwnBackClr()) backColour_ = source.GetBackClr();
        SetFont(source.IsDefaultFont() ? nullptr : &source.GetFont());
    }
}

void CGridTreeCellBase::Reset() {
    CGridCellBase::Reset();
    levelAndHide_ = 0;
    image_ = -1;
    textColour_ = backColour_ = kDefaultColour;
    data_ = 0;
    font_.reset();
}

int CGridTreeCellBase::GraphicWidth() const {
    if (tree_ == nullptr) return 0;
    const int image = tree_->GetTreeImages() && grid_ != nullptr
                          ? grid_->GetImageSize(tree_->GetImageOffset()).width()
                          : 0;
    return GetLevel() * tree_->GetIndent() + image;
}

QRect CGridTreeCellBase::GetTextRect(const QRect& rect) const {
    return rect.adjusted(GraphicWidth(), 0, 0, 0);
}

QSize CGridTreeCellBase::GetCellExtent() const {
    if (grid_ == nullptr) return {};
    const CGridDefaultCell& defaults = *GetDefaultCell();
    const QSize text = GetText().empty()
                           ? QSize(defaults.GetWidth(), defaults.GetHeight())
                           : GetTextExtent(GetText()) + QSize(2 * GetMarginX(), 2 * GetMarginY());
    return text + QSize(GraphicWidth(), 0);
}

bool CGridTreeCellBase::TakesClick(QPoint point) const {
    return boxOf(*this).contains(point);
}

void CGridTreeCellBase::OnClickDown(QPoint point) {
    if (boxOf(*this).contains(point)) tree_->Toggle(row_);
}

void CGridTreeCellBase::OnDblClick(QPoint point) {
    const bool isEdited = !IsReadOnly() && grid_->IsEditable();
    // The second press on the box counts as the first did.
    const bool isOnBox = boxOf(*this).contains(point);
    if (tree_ != nullptr && (isOnBox || !isEdited)) tree_->Toggle(row_);
}

CGridTreeCell::CGridTreeCell() = default;

CGridTreeCell::~CGridTreeCell() {
    if (editor_ != nullptr) abandonEditorOf(*editor_);
}

void CGridTreeCell::Reset() {
    CGridTreeCellBase::Reset();
    text_.clear();
}

bool CGridTreeCell::Edit(int row, int col, const QRect& rect, QPoint, int id, uint32_t character) {
    if (IsEditing()) return true;
    QRect text = rect.adjusted(GraphicWidth(), 0, 0, 0);
    if (text.width() < 1) text = rect;
    editor_ = CInPlaceEdit::Open(*this, {row, col}, text, id, character);
    return IsEditing();
}

void CGridTreeCell::EndEdit() {
    if (editor_ != nullptr) endEditorOf(*editor_);
}

void CGridTreeBtnCell::CopyFrom(const CGridCellBase& source) {
    CGridTreeCell::CopyFrom(source);
    if (const auto* const cell = dynamic_cast<const CGridTreeBtnCell*>(&source)) {
        buttons_ = cell->buttons_;
    }
}

QRect CGridTreeBtnCell::ControlArea() const {
    QRect rect;
    if (!GetGrid()->GetCellRect(Row(), column_, rect)) return {};
    const int left = GraphicWidth() + GetMarginX();
    return {QPoint(left, 0), rect.size() - QSize(left, 0)};
}

QSize CGridTreeBtnCell::GetCellExtent() const {
    QSize extent = CGridTreeCell::GetCellExtent();
    for (size_t i = 0; i < buttons_.Count(); ++i)
        extent.rwidth() += buttons_[i].width > 0 ? buttons_[i].width : extent.height();
    return extent;
}

bool CGridTreeBtnCell::TakesClick(QPoint point) const {
    return CGridTreeCell::TakesClick(point) ||
           buttons_.ControlAt(point, ControlArea(), GetMarginX()) >= 0;
}

void CGridTreeBtnCell::SetCoords(int row, int col) {
    CGridTreeCell::SetCoords(row, col);
    column_ = col;
}

void CGridTreeBtnCell::OnClickDown(QPoint point) {
    CGridTreeCell::OnClickDown(point);
    buttons_.OnClickDown(*this, Place(), point, ControlArea());
}

void CGridTreeBtnCell::OnClick(QPoint) {
    buttons_.OnClick(*this, Place());
}

void CGridTreeBtnCell::OnDblClick(QPoint point) {
    if (buttons_.ControlAt(point, ControlArea(), GetMarginX()) < 0) {
        CGridTreeCell::OnDblClick(point);
    }
    buttons_.OnDblClick(*this, Place(), point, ControlArea());
}

void CGridTreeBtnCell::OnMouseLeave() {
    buttons_.OnMouseLeave(*this, Place());
}

bool CGridTreeBtnCell::Edit(int row, int col, const QRect& rect, QPoint point, int id,
                            uint32_t character) {
    if (IsEditing()) return true;
    SetCoords(row, col);
    if (buttons_.TakeCharacter(*this, {row, col}, character, ControlArea())) return true;
    return CGridTreeCell::Edit(row, col, rect, point, id, character);
}

}  // namespace sg::grid

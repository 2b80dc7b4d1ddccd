#include "grid/cell_base.h"

#include "grid/default_cell.h"
#include "grid/grid_ctrl.h"

namespace sg::grid {
namespace {

const std::wstring noText;

}  // namespace

CGridCellBase::CGridCellBase() = default;
CGridCellBase::~CGridCellBase() = default;

CGridCellBase::Extras& CGridCellBase::NeedExtras() {
    if (!extras_) extras_ = std::make_unique<Extras>();
    return *extras_;
}

void CGridCellBase::SetTipText(const std::wstring& text) {
    if (!text.empty() || extras_) NeedExtras().tipText = text;
}

void CGridCellBase::SetCoords(int, int) {}

const std::wstring& CGridCellBase::GetTipText() const {
    const std::wstring& own = GetRawTipText();
    return own.empty() ? GetText() : own;
}

const std::wstring& CGridCellBase::GetRawTipText() const {
    return extras_ ? extras_->tipText : noText;
}

uint32_t CGridCellBase::GetFormat() const {
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetFormat() : kPlainFormat;
}

GridColour CGridCellBase::GetTextClr() const {
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetTextClr() : kDefaultColour;
}

GridColour CGridCellBase::GetBackClr() const {
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetBackClr() : kDefaultColour;
}

const QFont& CGridCellBase::GetFont() const {
    static const QFont plain;
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetFont() : plain;
}

int CGridCellBase::GetMarginX() const {
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetMarginX() : 0;
}

int CGridCellBase::GetMarginY() const {
    const CGridDefaultCell* const defaults = GetDefaultCell();
    return defaults != nullptr ? defaults->GetMarginY() : 0;
}

const CGridDefaultCell* CGridCellBase::GetDefaultCell() const {
    const CGridCtrl* const grid = GetGrid();
    return grid == nullptr ? nullptr : &grid->GetDefaultCell(IsFixedRow(), IsFixedCol());
}

void CGridCellBase::CopyFrom(const CGridCellBase& source) {
    SetText(source.GetText());
    SetTipText(source.GetRawTipText());
    SetState(source.GetState());
    SetData(source.GetData());
    if (source.extras_) {
        Extras& extras = NeedExtras();
        extras.mergeRange = source.extras_->mergeRange;
        extras.mergeCell = source.extras_->mergeCell;
        extras.isMergedIntoOther = source.extras_->isMergedIntoOther;
        extras.isHidden = source.extras_->isHidden;
    }
}

void CGridCellBase::Reset() {
    state_ = 0;
    extras_.reset();
}

QRect CGridCellBase::GetTextRect(const QRect& rect) const {
    QRect left = rect;
    const CGridCtrl* const grid = GetGrid();
    if (grid != nullptr && GetImage() >= 0) {
        left.setLeft(left.left() + grid->GetImageSize(GetImage()).width());
    }
    return left;
}

QSize CGridCellBase::GetTextExtent(const std::wstring& text, int width) const {
    const CGridCtrl* const grid = GetGrid();
    if (grid == nullptr) return {};
    return grid->Texts().Extent(DrawingFont(), text, GetFormat(), width);
}

QSize CGridCellBase::GetCellExtent() const {
    const CGridCtrl* const grid = GetGrid();
    if (grid == nullptr) return {};
    if (GetText().empty() && GetImage() < 0) {
        const CGridDefaultCell* const defaults = GetDefaultCell();
        return {defaults->GetWidth(), defaults->GetHeight()};
    }
    const QSize image = GetImage() >= 0 ? grid->GetImageSize(GetImage()) : QSize(0, 0);
    const QSize text = GetTextExtent(GetText());
    return {text.width() + image.width() + 2 * GetMarginX(),
            std::max(text.height(), image.height()) + 2 * GetMarginY()};
}

bool CGridCellBase::Edit(int, int, const QRect&, QPoint, int, uint32_t) {
    return false;
}

bool CGridCellBase::ValidateEdit(const std::wstring&) {
    return true;
}

bool CGridCellBase::IsShown() const {
    return !extras_ || !extras_->isHidden || IsMerged();
}

CCellRange CGridCellBase::GetMergeRange() const {
    return extras_ ? extras_->mergeRange : CCellRange();
}

bool CGridCellBase::IsMergedIntoOther() const {
    return extras_ && extras_->isMergedIntoOther;
}

CCellID CGridCellBase::GetMergeCell() const {
    return extras_ ? extras_->mergeCell : CCellID();
}

void CGridCellBase::SetMergeRange(const CCellRange& range) {
    if (!extras_ && !range.IsValid()) return;
    Extras& extras = NeedExtras();
    extras.mergeRange = range;
    extras.mergeCell = {};
    extras.isMergedIntoOther = false;
    extras.isHidden = range.Count() > 1;
}

void CGridCellBase::SetMergeCell(CCellID cell) {
    if (!extras_ && !cell.IsValid()) return;
    Extras& extras = NeedExtras();
    extras.mergeRange = {};
    extras.mergeCell = cell;
    extras.isMergedIntoOther = cell.IsValid();
    extras.isHidden = cell.IsValid();
}

bool CGridCellBase::OnSetCursor() {
    if (GetGrid() != nullptr) GetGrid()->viewport()->setCursor(Qt::ArrowCursor);
    return true;
}

}  // namespace sg::grid

#include "grid/grid_ctrl.h"

#include <QApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QPainter>

#include "grid/button_data.h"
#include "grid/cell.h"
#include "grid/grid_script.h"
#include "grid/in_place_edit.h"
#include "grid/title_tip.h"
#include "grid/tree_column.h"

// What the grid is made of, and its modes.
namespace sg::grid {

GridListener::~GridListener() = default;

CGridCtrl::CGridCtrl(QWidget* parent)
    : QAbstractScrollArea(parent),
      defaultClass_(&gridCellClass<CGridCell>()),
      wheelLines_(QApplication::wheelScrollLines()),
      tree_(std::make_unique<CTreeColumn>()),
      buttonData_(std::make_unique<CBtnDataBase>()) {
    constexpr uint32_t bits[] = {0, GVIS_FIXED | GVIS_FIXEDROW, GVIS_FIXED | GVIS_FIXEDCOL,
                                 GVIS_FIXED | GVIS_FIXEDROW | GVIS_FIXEDCOL};
    for (size_t i = 0; i < std::size(bits); ++i) {
        cellDefaults_[i].SetGrid(this);
        cellDefaults_[i].SetState(bits[i]);
    }
    tree_->SetGrid(this);
    buttonData_->SetGrid(this);
    TakeFont();
    TakeSystemColours();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    viewport()->setMouseTracking(true);
    // The background is painted with the cells.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
}

CGridCtrl::~CGridCtrl() {
    isBeingDestroyed_ = true;
    if (editor_ != nullptr) abandonEditorOf(*editor_);
    for (CellWatch* const watch : watches_) {
        watch->grid_ = nullptr;
        watch->cell_ = nullptr;
    }
    watches_.clear();
    rows_.clear();
}

ui::ScriptedControl& CGridCtrl::Script() {
    if (script_ == nullptr) script_ = std::make_unique<GridScript>(*this);
    return *script_;
}

void CGridCtrl::SetListMode(bool on) {
    ResetSelectedRange();
    sortColumn_ = -1;
    isListMode_ = on;
    fixedRowSelection_ = false;
    Refresh();
}

void CGridCtrl::SetGridLines(int lines) {
    gridLines_ = lines & kBothLines;
    Refresh();
}

void CGridCtrl::SetGridLineColour(GridColour colour) {
    gridLineColour_ = colour;
    Refresh();
}

void CGridCtrl::SetTitleTipColours(GridColour background, GridColour text) {
    titleTipBackColour_ = background;
    titleTipTextColour_ = text;
}

void CGridCtrl::SetFrameFocus(bool on) {
    frameFocus_ = on;
    Refresh();
}

void CGridCtrl::SetTrackFocusCell(bool on) {
    trackFocusCell_ = on;
    Refresh();
}

void CGridCtrl::SetSortColumn(int column) {
    sortColumn_ = column;
    Refresh();
}

void CGridCtrl::SetSortAscending(bool on) {
    sortAscending_ = on;
    Refresh();
}

void CGridCtrl::SetTitleTips(bool on) {
    titleTips_ = on;
    if (!on && titleTip_) titleTip_->Hide();
}

void CGridCtrl::SetImageList(const GridImageList* images) {
    images_ = images;
    Refresh();
}

QSize CGridCtrl::GetImageSize(int image) const {
    if (images_ == nullptr || image < 0 || size_t(image) >= images_->images.size()) return {0, 0};
    return images_->size;
}

bool CGridCtrl::DrawImage(QPainter& painter, int image, const QRect& rect) const {
    const QSize size = GetImageSize(image);
    if (size.isEmpty() || size.width() > rect.width() || size.height() > rect.height()) {
        return false;
    }
    painter.drawPixmap(QRect(rect.topLeft(), size), images_->images[size_t(image)]);
    return true;
}

bool CGridCtrl::SetTreeColumn(int column) {
    if (!SetColumnFormat(column, kTextVCentre)) return false;
    return tree_->TreeSetup(*this, column, fixedRows_, fixedRows_, {}, true, false, nullptr);
}

void CGridCtrl::SetModified(bool modified) {
    isModified_ = modified;
    if (modified) return;
    for (Row& row : rows_) {
        for (auto& cell : row)
            cell->SetState(cell->GetState() & ~uint32_t(GVIS_MODIFIED));
    }
}

void CGridCtrl::Refresh() {
    if (!isBeingDestroyed_) viewport()->update();
}

bool CGridCtrl::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) LayOut();
    return QAbstractScrollArea::event(event);
}

}  // namespace sg::grid

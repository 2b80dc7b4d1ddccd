#include "standards/dialogs/layers_grid.h"

#include "base/text.h"
#include "database/driver_offer.h"
#include "grid/check_cell.h"
#include "grid/in_place_list.h"
#include "standards/dialogs/acad_linetype_dialog.h"
#include "standards/dialogs/boxes.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/lisp_calls.h"
#include "standards/dialogs/query_rows.h"
#include "standards/layer_rules.h"

namespace sg {
namespace {

using grid::CGridCellCombo;
using grid::CGridCheckCell;
using grid::GridOptions;

constexpr const wchar_t* kSelectColor = L"Select color. . .";
constexpr const wchar_t* kSelectLinetype = L"Select linetype. . .";

constexpr const wchar_t* kDuplicateName = L"Layer name already exists in the database.";
// The apostrophe behind the last character is deliberate.
constexpr const wchar_t* kInvalidName =
    L"Invalid characters in layer name.\n\nThe following characters are not valid in layer "
    L"names:\n    < > / \\ ' \" : ; ? * | , = '";

std::shared_ptr<const GridOptions> optionsOf(std::vector<std::wstring> texts) {
    auto options = std::make_shared<GridOptions>();
    options->data.resize(texts.size());
    options->texts = std::move(texts);
    return options;
}

std::shared_ptr<const GridOptions> lineweightOptions() {
    std::vector<std::wstring> texts = {kDefaultLineweight};
    for (const wchar_t* const millimetres :
         {L"0.00", L"0.05", L"0.09", L"0.13", L"0.15", L"0.18", L"0.20", L"0.25",
          L"0.30", L"0.35", L"0.40", L"0.50", L"0.53", L"0.60", L"0.70", L"0.80",
          L"0.90", L"1.00", L"1.06", L"1.20", L"1.40", L"1.58", L"2.00", L"2.11"}) {
        texts.push_back(std::wstring(millimetres) + L" mm");
    }
    return optionsOf(std::move(texts));
}

template <class Type>
std::optional<Type> valueOf(const NullableColumn<Type>& column) {
    Type value{};
    return column.get(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

LayersGrid::LayersGrid(CDialog& dialog, grid::CGridCtrl& grid)
    : dialog_(dialog),
      grid_(grid),
      colors_(optionsOf({kSelectColor})),
      linetypes_(optionsOf({kSelectLinetype})),
      lineweights_(lineweightOptions()) {
    setUpGrid(grid_, {{L"ixLayer", 0},
                      {L"Layer Name", 34},
                      {L"Color", 12},
                      {L"Linetype", 20},
                      {L"Plot", 8},
                      {L"Lineweight", 15},
                      {L"Plot Style", 16}});
}

int32_t LayersGrid::idAt(int row) const {
    return wholeNumberIn(grid_.GetItemText(row, kId));
}

// --- Filling ---

void LayersGrid::fill() {
    clearRows(grid_);
    if (layers_ == nullptr || !layers_->setIndex(L"sName")) return;
    for (bool isRow = layers_->moveFirst(); isRow; isRow = layers_->moveNext())
        fillRow(grid_.InsertRow(L""));
    goTo(grid_, 1, kName);
}

void LayersGrid::fillRow(int row) {
    const auto color = valueOf(layers_->iColor);
    const auto plotstyle = valueOf(layers_->sPlotstyle);
    dressRow(row);
    grid_.SetItemText(row, kId, std::to_wstring(layers_->ixLayer.get()));
    grid_.SetItemText(row, kName, layers_->sName.get());
    grid_.SetItemText(row, kColor, color ? std::to_wstring(*color) : L"");
    grid_.SetItemText(row, kLinetype, layers_->sLinetype.get());
    grid_.SetItemText(row, kPlot, CGridCheckCell::TextFor(layers_->bPlot.get()));
    grid_.SetItemText(row, kLineweight, shownLineweight(valueOf(layers_->sLineweight)));
    grid_.SetItemText(row, kPlotstyle, plotstyle.value_or(L""));
}

// The kinds of its cells.
void LayersGrid::dressRow(int row) {
    const auto list = [&](int column, const std::shared_ptr<const GridOptions>& options,
                          int style) {
        CGridCellCombo& cell = cellAs<CGridCellCombo>(grid_, row, column);
        cell.SetOptions(options);
        cell.SetStyle(style);
    };
    list(kColor, colors_, grid::kListEditable);
    list(kLinetype, linetypes_, grid::kListEditable);
    list(kLineweight, lineweights_, grid::kListOnly);
    cellAs<CGridCheckCell>(grid_, row, kPlot);
}

std::shared_ptr<const GridOptions> LayersGrid::names() {
    auto names = std::make_shared<GridOptions>();
    if (layers_ == nullptr || !layers_->setIndex(L"sName")) return names;
    for (bool isRow = layers_->moveFirst(); isRow; isRow = layers_->moveNext()) {
        names->texts.push_back(layers_->sName.get());
        names->data.push_back(layers_->ixLayer.get());
    }
    return names;
}

void LayersGrid::showId(int32_t id) {
    const int row = findRow(grid_, kId, std::to_wstring(id));
    if (row > 0) goTo(grid_, row, kName);
}

int32_t LayersGrid::showName(const std::wstring& name) {
    const int row = findRow(grid_, kName, name);
    if (row < 0) return 0;
    goTo(grid_, row, kName);
    return idAt(row);
}

// --- Writing ---

// The record is being edited or new. True colours are left as they are.
void LayersGrid::takeRow(int row) {
    const auto text = [&](int column) { return grid_.GetItemText(row, column); };
    layers_->sName.set(text(kName));
    layers_->iColor.set(colorIndexOf(text(kColor)));
    layers_->sLinetype.set(text(kLinetype));
    layers_->bPlot.set(text(kPlot) != L"0");
    if (const auto lineweight = storedLineweight(text(kLineweight))) {
        layers_->sLineweight.set(*lineweight);
    } else {
        layers_->sLineweight.setNull();
    }
    if (trimmed(text(kPlotstyle)).empty()) {
        layers_->sPlotstyle.setNull();
    } else {
        layers_->sPlotstyle.set(text(kPlotstyle));
    }
}

void LayersGrid::save() {
    for (int row = 1; layers_ != nullptr && row < grid_.GetRowCount(); ++row) {
        if (!layers_->seekId(idAt(row))) continue;
        layers_->edit();
        takeRow(row);
        layers_->save();
    }
}

bool LayersGrid::addLayer() {
    if (layers_ == nullptr) return false;
    const int row = addRowLikeLast(grid_, L"New Layer", kName, kId);
    dressRow(row);
    if (row == 1) {
        grid_.SetItemText(row, kColor, L"7");
        grid_.SetItemText(row, kLinetype, L"Continuous");
        grid_.SetItemText(row, kPlot, CGridCheckCell::TextFor(true));
        grid_.SetItemText(row, kLineweight, kDefaultLineweight);
    }
    layers_->addNew();
    takeRow(row);
    if (!layers_->save()) {
        grid_.DeleteRow(row);
        return false;
    }
    grid_.SetItemText(row, kId, std::to_wstring(layers_->ixLayer.get()));
    goTo(grid_, row, kName);
    grid_.setFocus();
    return true;
}

bool LayersGrid::deleteLayer(CDBConnection& connection) {
    const int row = selectedRow(grid_);
    if (layers_ == nullptr || row < 1) return false;
    COleSafeArray keys;
    const std::wstring query =
        L"select ixLayerKey from tblLayerKey where ixLayer = " + std::to_wstring(idAt(row));
    if (!select(connection, query, keys)) return false;
    if (!keys.Variants().empty()) {
        tell(L"Layer is currently referenced by a layer key and cannot be deleted.",
             MB_ICONWARNING);
        return false;
    }
    if (!layers_->seekId(idAt(row))) return false;
    if (!ask(L"Are you sure you want to delete layer " + nameAt(row) + L"?")) return false;
    if (!layers_->deleteCurrent()) return false;
    grid_.DeleteRow(row);
    goTo(grid_, std::min(row, grid_.GetRowCount() - 1), kName);
    return true;
}

// --- Editing ---

bool LayersGrid::beginEdit(grid::CCellID cell) {
    if (cell.col == kColor || cell.col == kLinetype) kept_ = grid_.GetItemText(cell.row, cell.col);
    return true;
}

bool LayersGrid::endEdit(grid::CCellID cell, bool& renamed) {
    renamed = false;
    const std::wstring text = grid_.GetItemText(cell.row, cell.col);
    if (cell.col == kName) return rename(cell.row, renamed);
    if (cell.col == kColor && text == kSelectColor) chooseColor(cell.row);
    if (cell.col == kLinetype && text == kSelectLinetype) chooseLinetype(cell.row);
    return true;
}

bool LayersGrid::isDuplicate(const std::wstring& name, int32_t id) {
    if (!layers_->setIndex(L"sName")) return false;
    for (bool isRow = layers_->moveFirst(); isRow; isRow = layers_->moveNext()) {
        if (layers_->ixLayer.get() != id && equalIgnoringCase(layers_->sName.get(), name)) {
            return true;
        }
    }
    return false;
}

void LayersGrid::restoreName(int row) {
    if (!layers_->seekId(idAt(row))) return;
    grid_.SetItemText(row, kName, layers_->sName.get());
    grid_.RedrawCell(row, kName);
}

// The stored name is back in the cell, so that the edit counts as ended.
bool LayersGrid::refuseName(int row, const wchar_t* why) {
    tell(why, MB_ICONERROR);
    restoreName(row);
    return true;
}

// False leaves the grid to put the old name back, where the layer is gone.
bool LayersGrid::rename(int row, bool& renamed) {
    if (layers_ == nullptr) return false;
    const std::wstring name = nameAt(row);
    if (isDuplicate(name, idAt(row))) return refuseName(row, kDuplicateName);
    if (hasInvalidLayerCharacter(name)) return refuseName(row, kInvalidName);
    if (!layers_->seekId(idAt(row))) return false;
    layers_->edit();
    takeRow(row);
    renamed = layers_->save();
    return renamed;
}

void LayersGrid::chooseColor(int row) {
    const LispAnswer answer = callLisp(
        L"acad_colordlg", {LispArgument::shortNumber(colorIndexOf(kept_)), LispArgument::nil()});
    const auto chosen = answer.number();
    grid_.SetItemText(row, kColor, chosen ? std::to_wstring(*chosen) : kept_);
}

void LayersGrid::chooseLinetype(int row) {
    CAcadLinetypeDialog chooser(&dialog_, kept_);
    const bool isChosen = checkDialogResult(chooser.DoModal()) == IDOK;
    grid_.SetItemText(row, kLinetype, isChosen ? chooser.name() : kept_);
}

}  // namespace sg

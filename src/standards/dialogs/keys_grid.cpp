#include "standards/dialogs/keys_grid.h"

#include "database/connection.h"
#include "grid/in_place_list.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/lisp_calls.h"
#include "standards/dialogs/query_rows.h"
#include "standards/layer_rules.h"

namespace sg {
namespace {

constexpr const wchar_t* kNoText = L" ";  // of a key that LISP answers no text for

std::wstring queryOf(int32_t system) {
    const std::wstring which =
        system == kGeneralSystem ? L"is Null" : L"= " + std::to_wstring(system);
    return L"select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem " + which +
           L" order by sKey";
}

}  // namespace

KeysGrid::KeysGrid(grid::CGridCtrl& grid) : grid_(grid) {
    setUpGrid(grid_, {{L"Layer Key", 30},
                      {L"ixLayerKey", 0},
                      {L"colSort", 0},
                      {L"ixLayer", 0},
                      {L"Layer Name", 34}});
    options_ = std::make_shared<grid::GridOptions>();
}

void KeysGrid::attach(CDBConnection& connection, LayerKeyRecord& keys, LayerRecord& layers) {
    connection_ = &connection;
    keys_ = &keys;
    layers_ = &layers;
}

void KeysGrid::offer(std::shared_ptr<const grid::GridOptions> layers) {
    options_ = std::move(layers);
    for (int row = 1; row < grid_.GetRowCount(); ++row)
        cellAs<grid::CGridCellCombo>(grid_, row, kLayerName).SetOptions(options_);
}

void KeysGrid::load(int32_t system) {
    if (system == loaded_ || connection_ == nullptr) return;
    loaded_ = system;
    clearRows(grid_);
    const QueryRows rows(*connection_, queryOf(system));
    for (size_t row = 0; row < rows.count(); ++row) {
        addKey(columnValue(rows.value(row, L"ixLayerKey"), int32_t{}),
               columnValue(rows.value(row, L"ixLayer"), int32_t{}),
               columnValue(rows.value(row, L"sKey"), std::wstring()));
    }
    grid_.SortItems(grid::CGridCtrl::CompareTexts, kSort, true);
    goTo(grid_, 1, kName);
}

void KeysGrid::addKey(int32_t id, int32_t layer, const std::wstring& key) {
    callLisp(L"util-layerKeySetElecGlobals", {connection_->GetDatabaseName()});
    if (!callLisp(L"util-showLayerKey", {key}).isTrue()) return;
    const auto sortText = callLisp(L"util-createLayerKeySortText", {key}).text();
    const auto name = callLisp(L"util-LayerkeyRename", {key}).text();
    const int row = grid_.InsertRow(name.value_or(kNoText));
    grid_.SetItemText(row, kId, std::to_wstring(id));
    grid_.SetItemText(row, kSort, sortText.value_or(kNoText));
    grid_.SetItemText(row, kLayerId, std::to_wstring(layer));
    auto& cell = cellAs<grid::CGridCellCombo>(grid_, row, kLayerName);
    cell.SetOptions(options_);
    cell.SetStyle(grid::kListOnly);
    if (layers_->seekId(layer)) grid_.SetItemText(row, kLayerName, layers_->sName.get());
}

void KeysGrid::save() {
    for (int row = 1; keys_ != nullptr && row < grid_.GetRowCount(); ++row) {
        const int32_t layer = layerAt(row);
        if (layer == 0 || !keys_->seekId(wholeNumberIn(grid_.GetItemText(row, kId)))) continue;
        keys_->edit();
        keys_->ixLayer.set(layer);
        keys_->save();
    }
}

void KeysGrid::showRemembered() {
    constexpr int kFewRows = 11, kFromTheEnd = 5;
    const int rows = grid_.GetRowCount();
    if (remembered_ >= 1 && remembered_ < rows) {
        goTo(grid_, remembered_, kName);
        return;
    }
    if (rows < 2) return;
    goTo(grid_, rows - 1, kName);
    grid_.EnsureVisible(rows < kFewRows ? 2 : rows - kFromTheEnd, kName);
}

int32_t KeysGrid::layerAt(int row) const {
    const auto* const cell =
        dynamic_cast<const grid::CGridCellCombo*>(grid_.GetCell(row, kLayerName));
    if (cell == nullptr) return 0;
    const auto& texts = cell->GetOptions();
    // The names are those of an index, but its order is not that of the characters.
    const auto found = std::find(texts.begin(), texts.end(), cell->GetText());
    if (found == texts.end()) return 0;
    return int32_t(cell->GetOptionData()[size_t(found - texts.begin())]);
}

void KeysGrid::setLayerId(int row, int32_t layer) {
    grid_.SetItemText(row, kLayerId, std::to_wstring(layer));
}

void KeysGrid::renameLayer(int32_t layer, const std::wstring& name) {
    const std::wstring id = std::to_wstring(layer);
    for (int row = 1; row < grid_.GetRowCount(); ++row) {
        if (grid_.GetItemText(row, kLayerId) == id) grid_.SetItemText(row, kLayerName, name);
    }
    grid_.Refresh();
}

}  // namespace sg

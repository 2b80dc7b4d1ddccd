#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "grid/combo_cell.h"
#include "grid/grid_ctrl.h"
#include "standards/records.h"

namespace sg {

inline constexpr int32_t kGeneralSystem = -1;

// The grid of the keys of one layer system, each with the layer it stands for.
class KeysGrid {
  public:
    enum Column { kName, kId, kSort, kLayerId, kLayerName };

    explicit KeysGrid(grid::CGridCtrl& grid);

    void attach(CDBConnection& connection, LayerKeyRecord& keys, LayerRecord& layers);

    // The layers that a key may stand for, in every row.
    void offer(std::shared_ptr<const grid::GridOptions> layers);

    // Shows a system's keys, in the order of their sort texts. Nothing is done for the system whose
    // keys are shown.
    void load(int32_t system);
    // From now on `system` counts as the one whose keys are shown.
    void pretendLoaded(int32_t system) { loaded_ = system; }
    // Writes the layer of every key.
    void save();

    // The row that a user selected last goes on being selected where there is one; else the last
    // row is.
    void showRemembered();
    void remember(int row) { remembered_ = row; }

    // The layer of the drop list's current entry; 0: none.
    int32_t layerAt(int row) const;
    std::wstring layerNameAt(int row) const { return grid_.GetItemText(row, kLayerName); }
    void setLayerId(int row, int32_t layer);
    // Writes a layer's new name into the rows of its keys.
    void renameLayer(int32_t layer, const std::wstring& name);

  private:
    void addKey(int32_t id, int32_t layer, const std::wstring& key);

    grid::CGridCtrl& grid_;
    CDBConnection* connection_ = nullptr;
    LayerKeyRecord* keys_ = nullptr;
    LayerRecord* layers_ = nullptr;
    std::shared_ptr<const grid::GridOptions> options_;
    int32_t loaded_ = -100;  // no system has this id
    int remembered_ = 1;
};

}  // namespace sg

#pragma once

#include <memory>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"
#include "standards/dialogs/keys_grid.h"
#include "standards/dialogs/layers_grid.h"
#include "standards/records.h"

class QPushButton;

namespace sg {

class CDBConnection;

// "Layers": the layer systems of a database, the keys of the selected one, and all layers.
class CLayerCustomization final : public CAcUiDialog, private grid::GridListener {
  public:
    enum SystemColumn { kUnused, kSystemId, kSystemName, kSortOrder };

    explicit CLayerCustomization(QWidget* parent);
    ~CLayerCustomization() override;

    // Makes the records. The connection outlives the dialog; `openedByPath` tells that the caller
    // named its file.
    void AttachConnection(CDBConnection& connection, bool openedByPath);

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void MakeControls();
    void LayOut();
    void SetRules();

    // Systems.
    void FillSystems(int32_t selected);
    int32_t SelectedSystem() const;
    void SystemChanged();
    void EnableMoves();
    void MoveSystem(int step);
    void NewSystem();
    bool CopyKeys(int32_t from, int32_t to);
    void EditSystem();
    void DeleteSystem();
    bool IsSystemInUse(int32_t system);
    void SaveSystems();
    int LargestSortOrder() const;

    // Keys and layers.
    void RebuildNames();
    void MarkLayerOf(int keyRow);
    void NewLayer();
    void DeleteLayer();
    void DeleteUnusedLayers();
    void UndoLayers();
    void UndoKeys();
    void Import();
    void Export();

    void OnSelectionChanged(grid::CGridCtrl& grid, grid::CCellID cell) override;
    bool OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;
    bool OnEndEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;

    CDBConnection* connection_ = nullptr;
    bool openedByPath_ = false;
    std::unique_ptr<LayerRecord> layerRecord_;
    std::unique_ptr<LayerKeyRecord> keyRecord_;
    std::unique_ptr<LayerSystemRecord> systemRecord_;

    grid::CGridCtrl* systemsGrid_ = nullptr;
    grid::CGridCtrl* keysGrid_ = nullptr;
    grid::CGridCtrl* layersGrid_ = nullptr;
    std::unique_ptr<LayersGrid> layers_;
    std::unique_ptr<KeysGrid> keys_;
    QPushButton* moveUp_ = nullptr;
    QPushButton* moveDown_ = nullptr;
};

}  // namespace sg

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "standards/dialogs/grid_dialog_layout.h"
#include "standards/dialogs/layer_customization.h"

// The controls of the layers dialog and where they stand: systems, their buttons and keys above,
// the layers below.
namespace sg {
namespace {

enum Id {
    kKeys = 1049,
    kLayers = 1050,
    kSystems = 1051,
    kExport = 1053,
    kMoveUp = 1054,
    kMoveDown = 1055,
    kDeleteLayer = 1057,
    kNewSystem = 1058,
    kDeleteSystem = 1059,
    kNewLayer = 1060,
    kUndoLayers = 1061,
    kEditSystem = 1062,
    kUndoKeys = 1063,
    kImport = 1064,
    kDeleteUnused = 1080,
};

}  // namespace

// In the order of tabbing.
void CLayerCustomization::MakeControls() {
    systemsGrid_ = newDialogGrid(*this, 32, 13, kSystems);
    moveUp_ = NewButton(kMoveUp, L"Move &Up", [this] { MoveSystem(-1); });
    moveDown_ = NewButton(kMoveDown, L"Move Do&wn", [this] { MoveSystem(1); });
    NewButton(kNewSystem, L"New &System", [this] { NewSystem(); });
    NewButton(kEditSystem, L"&Edit System", [this] { EditSystem(); });
    NewButton(kDeleteSystem, L"D&elete System", [this] { DeleteSystem(); });
    NewButton(kImport, L"&Import Layers from Excel", [this] { Import(); });
    NewButton(kExport, L"E&xport Layers to Excel", [this] { Export(); });
    keysGrid_ = newDialogGrid(*this, 68, 11, kKeys);
    NewButton(kUndoKeys, L"Undo Layer &Key Changes", [this] { UndoKeys(); });
    layersGrid_ = newDialogGrid(*this, 108, 13, kLayers);
    NewButton(kDeleteUnused, L"Delete &All Unused Layers", [this] { DeleteUnusedLayers(); });
    NewButton(kNewLayer, L"&New Layer", [this] { NewLayer(); });
    NewButton(kDeleteLayer, L"&Delete Layer", [this] { DeleteLayer(); });
    NewButton(kUndoLayers, L"&Undo Layer Changes", [this] { UndoLayers(); });
    NewOkButton();
    NewCancelButton();
}

void CLayerCustomization::LayOut() {
    const auto control = [this](int id) { return GetDlgItem(id); };
    auto* const systemButtons = new QVBoxLayout;
    for (const int id :
         {kMoveUp, kMoveDown, kNewSystem, kEditSystem, kDeleteSystem, kImport, kExport})
        systemButtons->addWidget(control(id));
    systemButtons->addStretch();

    auto* const above = new QGridLayout;
    above->addWidget(systemsGrid_, 0, 0, 2, 1);
    above->addLayout(systemButtons, 0, 1, 2, 1);
    above->addWidget(keysGrid_, 0, 2);
    above->addWidget(control(kUndoKeys), 1, 2, Qt::AlignLeft);
    above->setColumnStretch(0, 2);
    above->setColumnStretch(2, 3);

    auto* const below = new QHBoxLayout;
    for (const int id : {kNewLayer, kDeleteLayer, kDeleteUnused, kUndoLayers})
        below->addWidget(control(id));
    below->addStretch();
    below->addWidget(control(1));
    below->addWidget(control(2));

    auto* const all = new QVBoxLayout(this);
    all->addLayout(above, 1);
    all->addSpacing(fontMetrics().height() / 2);
    all->addWidget(layersGrid_, 1);
    all->addLayout(below);
}

// Both halves grow alike; above, the keys get the larger part of the width.
void CLayerCustomization::SetRules() {
    SetControlProperty({
        {kSystems, ELASTICX, 40},
        {kSystems, ELASTICY, 50},
        {kMoveUp, MOVEX, 40},
        {kMoveDown, MOVEX, 40},
        {kNewSystem, MOVEX, 40},
        {kEditSystem, MOVEX, 40},
        {kDeleteSystem, MOVEX, 40},
        {kImport, MOVEX, 40},
        {kExport, MOVEX, 40},
        {kKeys, MOVEX, 40},
        {kKeys, ELASTICX, 60},
        {kKeys, ELASTICY, 50},
        {kUndoKeys, MOVEX, 40},
        {kUndoKeys, MOVEY, 50},
        {kLayers, ELASTICX, 100},
        {kLayers, MOVEY, 50},
        {kLayers, ELASTICY, 50},
        {kNewLayer, MOVEY, 100},
        {kDeleteLayer, MOVEY, 100},
        {kDeleteUnused, MOVEY, 100},
        {kUndoLayers, MOVEY, 100},
        {1, MOVEX, 100},
        {1, MOVEY, 100},
        {2, MOVEX, 100},
        {2, MOVEY, 100},
    });
}

}  // namespace sg

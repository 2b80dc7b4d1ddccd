#include "standards/dialogs/layer_customization.h"

#include <QPushButton>

#include "database/connection.h"
#include "database/driver_offer.h"
#include "standards/dialogs/boxes.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/lisp_calls.h"
#include "standards/dialogs/new_layer_system.h"
#include "standards/dialogs/query_rows.h"
#include "standards/layer_rules.h"

// The dialog as a whole, and its systems. Where things stand is in layer_customization_layout.cpp.
namespace sg {
namespace {

constexpr int kGeneralRow = 1;
constexpr const wchar_t* kGeneralName = L"General";

}  // namespace

CLayerCustomization::CLayerCustomization(QWidget* parent) : CAcUiDialog(parent) {
    setWindowTitle(QStringLiteral("Layers"));
    SetDialogName(L"qn_swiftgate:LayerCustomization");
    MakeControls();
    layers_ = std::make_unique<LayersGrid>(*this, *layersGrid_);
    keys_ = std::make_unique<KeysGrid>(*keysGrid_);
    setUpGrid(*systemsGrid_,
              {{L"", 0}, {L"ixLayerSystem", 0}, {L"Layer System", 30}, {L"iSortOrder", 0}});
    for (grid::CGridCtrl* const each : {systemsGrid_, keysGrid_, layersGrid_}) {
        each->SetListener(this);
        each->SetFixedColumnSelection(false);
    }
    LayOut();
    SetRules();
}

CLayerCustomization::~CLayerCustomization() = default;

void CLayerCustomization::AttachConnection(CDBConnection& connection, bool openedByPath) {
    constexpr bool reportsErrors = true;
    connection_ = &connection;
    openedByPath_ = openedByPath;
    layerRecord_ = std::make_unique<LayerRecord>(reportsErrors, connection_);
    keyRecord_ = std::make_unique<LayerKeyRecord>(reportsErrors, connection_);
    systemRecord_ = std::make_unique<LayerSystemRecord>(reportsErrors, connection_);
    layers_->attach(layerRecord_.get());
    keys_->attach(connection, *keyRecord_, *layerRecord_);
}

bool CLayerCustomization::OnInitDialog() {
    layers_->fill();
    RebuildNames();
    FillSystems(kGeneralSystem);
    keys_->load(SelectedSystem());
    EnableMoves();
    return true;
}

// Every system by its row in the grid, whatever its order was.
void CLayerCustomization::SaveSystems() {
    for (int row = 1; row < systemsGrid_->GetRowCount(); ++row) {
        if (!systemRecord_->seekId(wholeNumberIn(systemsGrid_->GetItemText(row, kSystemId)))) {
            continue;
        }
        systemRecord_->edit();
        systemRecord_->sDescription.set(systemsGrid_->GetItemText(row, kSystemName));
        systemRecord_->iSortOrder.set(static_cast<int16_t>(row));
        systemRecord_->save();
    }
}

void CLayerCustomization::OnOK() {
    SaveSystems();
    keys_->save();
    layers_->save();
    keys_->load(SelectedSystem());
    CAcUiDialog::OnOK();
}

// --- What the grids tell ---

void CLayerCustomization::OnSelectionChanged(grid::CGridCtrl& grid, grid::CCellID cell) {
    if (cell.row < 1) return;
    if (&grid == systemsGrid_) {
        SystemChanged();
    } else if (&grid == keysGrid_) {
        keys_->remember(cell.row);
        MarkLayerOf(cell.row);
    }
}

bool CLayerCustomization::OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) {
    if (&grid == systemsGrid_) {
        EditSystem();
        return false;
    }
    if (&grid == keysGrid_) return cell.col != KeysGrid::kName;
    return layers_->beginEdit(cell);
}

bool CLayerCustomization::OnEndEdit(grid::CGridCtrl& grid, grid::CCellID cell) {
    if (&grid == keysGrid_) {
        const int32_t layer = layers_->showName(keys_->layerNameAt(cell.row));
        if (layer != 0) keys_->setLayerId(cell.row, layer);
        return true;
    }
    bool renamed = false;
    const bool isAccepted = layers_->endEdit(cell, renamed);
    if (renamed) {
        keys_->renameLayer(layers_->idAt(cell.row), layers_->nameAt(cell.row));
        RebuildNames();
    }
    return isAccepted;
}

// --- Systems ---

void CLayerCustomization::FillSystems(int32_t selected) {
    clearRows(*systemsGrid_);
    const auto add = [&](int32_t id, const std::wstring& name, const std::wstring& order) {
        const int row = systemsGrid_->InsertRow(L"");
        systemsGrid_->SetItemText(row, kSystemId, std::to_wstring(id));
        systemsGrid_->SetItemText(row, kSystemName, name);
        systemsGrid_->SetItemText(row, kSortOrder, order);
    };
    add(kGeneralSystem, kGeneralName, L"");
    if (systemRecord_->setIndex(L"iSortOrder")) {
        for (bool isRow = systemRecord_->moveFirst(); isRow; isRow = systemRecord_->moveNext()) {
            add(systemRecord_->ixLayerSystem.get(), systemRecord_->sDescription.get(),
                std::to_wstring(systemRecord_->iSortOrder.get()));
        }
    }
    const int row = findRow(*systemsGrid_, kSystemId, std::to_wstring(selected));
    goTo(*systemsGrid_, std::max(row, kGeneralRow), kSystemName);
}

int32_t CLayerCustomization::SelectedSystem() const {
    return wholeNumberIn(systemsGrid_->GetItemText(selectedRow(*systemsGrid_), kSystemId));
}

// The keys of the system that is left are written at once.
void CLayerCustomization::SystemChanged() {
    keys_->save();
    keys_->load(SelectedSystem());
    EnableMoves();
    keys_->showRemembered();
    MarkLayerOf(selectedRow(*keysGrid_));
}

void CLayerCustomization::EnableMoves() {
    const bool canMove = selectedRow(*systemsGrid_) > kGeneralRow;
    moveUp_->setEnabled(canMove);
    moveDown_->setEnabled(canMove);
}

void CLayerCustomization::MoveSystem(int step) {
    const int row = selectedRow(*systemsGrid_);
    const int other = row + step;
    if (row <= kGeneralRow || other <= kGeneralRow || other >= systemsGrid_->GetRowCount()) return;
    swapRows(*systemsGrid_, row, other);
    goTo(*systemsGrid_, other, kSystemName);
}

int CLayerCustomization::LargestSortOrder() const {
    int largest = 0;
    for (int row = 1; row < systemsGrid_->GetRowCount(); ++row) {
        largest = std::max(largest, int(wholeNumberIn(systemsGrid_->GetItemText(row, kSortOrder))));
    }
    return largest;
}

void CLayerCustomization::NewSystem() {
    CNewLayerSystem chooser(this, *systemsGrid_);
    if (checkDialogResult(chooser.DoModal()) != IDOK) return;
    const int sourceRow = chooser.chosenIndex() + CNewLayerSystem::kFirstOffered;
    const int32_t source = wholeNumberIn(systemsGrid_->GetItemText(sourceRow, kSystemId));
    const int order = LargestSortOrder() + 1;
    systemRecord_->addNew();
    systemRecord_->sDescription.set(chooser.name());
    systemRecord_->iSortOrder.set(static_cast<int16_t>(order));
    if (!systemRecord_->save()) return;
    const int32_t added = systemRecord_->ixLayerSystem.get();
    CopyKeys(source, added);
    callLisp(L"util-createPipeLabels",
             {LispArgument::longNumber(added), LispArgument::longNumber(source)});
    const int row = systemsGrid_->InsertRow(L"");
    systemsGrid_->SetItemText(row, kSystemId, std::to_wstring(added));
    systemsGrid_->SetItemText(row, kSystemName, chooser.name());
    systemsGrid_->SetItemText(row, kSortOrder, std::to_wstring(order));
    goTo(*systemsGrid_, row, kSystemName);
    SystemChanged();
}

bool CLayerCustomization::CopyKeys(int32_t from, int32_t to) {
    return execute(*connection_, L"insert into tblLayerKey(ixLayerSystem, ixLayer, sKey) select " +
                                     std::to_wstring(to) +
                                     L", ixLayer, sKey from tblLayerKey where ixLayerSystem = " +
                                     std::to_wstring(from));
}

void CLayerCustomization::EditSystem() {
    const int row = selectedRow(*systemsGrid_);
    if (row < kGeneralRow) return;
    if (row == kGeneralRow) {
        tell(L"The general layer system cannot be edited.", MB_ICONWARNING);
        systemsGrid_->SetItemText(row, kSystemName, kGeneralName);
        return;
    }
    const int32_t system = SelectedSystem();
    callLisp(L"util-layersystemoptions",
             {LispArgument::longNumber(system), connection_->GetDatabaseName()});
    if (systemRecord_->seekId(system)) {
        systemsGrid_->SetItemText(row, kSystemName, systemRecord_->sDescription.get());
        systemsGrid_->RedrawCell(row, kSystemName);
    }
    activateWindow();
}

// Of a database that the caller named nobody knows which drawings use it.
bool CLayerCustomization::IsSystemInUse(int32_t system) {
    if (openedByPath_) return false;
    const auto message =
        callLisp(L"util-checkObjectsforLayersystem", {LispArgument::longNumber(system)}).text();
    if (message) tell(*message, MB_ICONWARNING);
    return message.has_value();
}

void CLayerCustomization::DeleteSystem() {
    constexpr int kHeadingGeneralAndOne = 3;
    const int row = selectedRow(*systemsGrid_);
    if (systemsGrid_->GetRowCount() <= kHeadingGeneralAndOne) {
        tell(L"You cannot delete the last layer system.", MB_ICONWARNING);
        return;
    }
    if (row <= kGeneralRow) {
        tell(L"The general layer system cannot be deleted.", MB_ICONWARNING);
        return;
    }
    const int32_t system = SelectedSystem();
    if (IsSystemInUse(system)) return;
    const std::wstring name = systemsGrid_->GetItemText(row, kSystemName);
    if (!ask(L"Are you sure you want to delete layer system " + name + L"?")) return;
    const std::wstring which = L" where ixLayerSystem = " + std::to_wstring(system);
    if (!execute(*connection_, L"delete from tblLayerKey" + which)) return;
    callLisp(L"util-deletePipeLabels", {LispArgument::longNumber(system)});
    if (!execute(*connection_, L"delete from tblLayerSystem" + which)) return;
    systemsGrid_->DeleteRow(row);
    // The keys that are shown are gone: those of the row that took the place are shown.
    goTo(*systemsGrid_, std::min(row, systemsGrid_->GetRowCount() - 1), kSystemName);
    keys_->load(SelectedSystem());
    EnableMoves();
}

// --- Keys and layers ---

void CLayerCustomization::RebuildNames() {
    keys_->offer(layers_->names());
}

void CLayerCustomization::MarkLayerOf(int keyRow) {
    if (keyRow > 0) layers_->showId(keys_->layerAt(keyRow));
}

void CLayerCustomization::NewLayer() {
    if (layers_->addLayer()) RebuildNames();
}

void CLayerCustomization::DeleteLayer() {
    if (layers_->deleteLayer(*connection_)) RebuildNames();
}

void CLayerCustomization::DeleteUnusedLayers() {
    if (!ask(L"Are you sure you want to delete all unused layers?")) return;
    execute(*connection_,
            L"delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)");
    layers_->fill();
    RebuildNames();
}

void CLayerCustomization::UndoLayers() {
    layers_->fill();
}

// The load stops for the system that is shown, so that this has no effect as a rule. That is kept
// deliberately.
void CLayerCustomization::UndoKeys() {
    keys_->load(SelectedSystem());
}

void CLayerCustomization::Import() {
    constexpr int32_t kImported = -1;
    const LispAnswer answer =
        callLisp(L"util-importLayerSystem-noName",
                 {LispArgument::shortNumber(SelectedSystem()), connection_->GetDatabaseName()});
    if (!answer.isTrue()) return;
    keys_->pretendLoaded(kImported);
    layers_->fill();
    RebuildNames();
    keys_->load(SelectedSystem());
}

void CLayerCustomization::Export() {
    keys_->save();
    callLisp(L"util-exportLayerSystem-noName",
             {LispArgument::shortNumber(SelectedSystem()), connection_->GetDatabaseName()});
}

}  // namespace sg

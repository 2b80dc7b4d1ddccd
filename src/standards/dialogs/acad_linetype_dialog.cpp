#include "standards/dialogs/acad_linetype_dialog.h"

#include <QPushButton>

#include "drawing/call_arguments.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/db/linetype_table.h"
#include "standards/dialogs/grid_dialog_layout.h"
#include "standards/dialogs/grid_rows.h"

namespace sg {
namespace {

enum Column { kName, kDescription };

// Those that stand for the linetype of something else are left out.
bool isChoice(const std::wstring& name) {
    return name != L"ByLayer" && name != L"ByBlock";
}

}  // namespace

CAcadLinetypeDialog::CAcadLinetypeDialog(QWidget* parent, std::wstring name)
    : CAcUiDialog(parent), name_(std::move(name)) {
    setWindowTitle(QStringLiteral("Select Linetype"));
    // Shorter by a letter than the names of the other dialogs, deliberately: places are kept by it.
    SetDialogName(L"qn_swiftgat:AcadLinetype");
    grid_ = newDialogGrid(*this, 70, 16);
    setUpGrid(*grid_, {{L"Linetype", 24}, {L"Description", 44}});
    grid_->SetListener(this);
    grid_->SetEditable(false);
    grid_->SetListMode(true);
    layOutUnderGrid(*this, *grid_, {}, {NewOkButton(), NewCancelButton()});
    SetControlProperty({{kDialogGrid, ELASTICX, 100},
                        {kDialogGrid, ELASTICY, 100},
                        {1, MOVEX, 100},
                        {1, MOVEY, 100},
                        {2, MOVEX, 100},
                        {2, MOVEY, 100}});
}

bool CAcadLinetypeDialog::OnInitDialog() {
    Fill();
    const int row = findRow(*grid_, kName, name_, true);
    goTo(*grid_, std::max(row, 1), kName);
    grid_->setFocus();
    return false;
}

void CAcadLinetypeDialog::Fill() {
    AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return;
    const Opened<AcDbLinetypeTable> table(database->linetypeTableId(), AcDb::kForRead);
    if (!table) return;
    for (const auto linetypes = table->newIterator(); !linetypes->done(); linetypes->step()) {
        const Opened<AcDbLinetypeTableRecord> linetype(linetypes->getRecordId(), AcDb::kForRead);
        std::wstring name;
        if (!linetype || linetype->getName(name) != Acad::eOk || !isChoice(name)) continue;
        const int row = grid_->InsertRow(name);
        grid_->SetItemText(row, kDescription, linetype->comments());
    }
}

void CAcadLinetypeDialog::OnDoubleClick(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.row > 0) OnOK();
}

void CAcadLinetypeDialog::OnOK() {
    const int row = selectedRow(*grid_);
    if (row > 0) name_ = grid_->GetItemText(row, kName);
    CAcUiDialog::OnOK();
}

}  // namespace sg

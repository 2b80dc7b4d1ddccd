#include "standards/dialogs/label_order.h"

#include <QPushButton>

#include "base/text.h"
#include "database/connection.h"
#include "grid/check_cell.h"
#include "grid/combo_cell.h"
#include "grid/in_place_list.h"
#include "standards/dialogs/grid_dialog_layout.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/query_rows.h"
#include "standards/layer_rules.h"

namespace sg {
namespace {

using grid::CGridCellCombo;
using grid::CGridCheckCell;

enum Id { kMoveUp = 3, kMoveDown = 4 };
enum Column { kUnused, kId, kKey, kLabel, kWidth, kJustification, kDisplay };

constexpr const wchar_t* kScheduleTitle = L"Schedule Title";
constexpr int kDigits = 4;

std::shared_ptr<const grid::GridOptions> justifications() {
    static const auto options = std::make_shared<const grid::GridOptions>(
        grid::GridOptions{{L"Left", L"Center", L"Right"}, {0, 0, 0}});
    return options;
}

}  // namespace

LabelOrderCustomization::LabelOrderCustomization(QWidget* parent, CDBConnection& connection,
                                                 LabelGroupRequest request)
    : CAcUiDialog(parent), connection_(connection), request_(std::move(request)) {
    setWindowTitle(QString::fromStdWString(request_.title + L" Label Display and Order"));
    SetDialogName(L"qn_swiftgate:LabelOrderCustomization");
    grid_ = newDialogGrid(*this, 96, 18);
    setUpGrid(*grid_, {{L"", 0},
                       {L"ixLabelGroup", 0},
                       {L"Key", 24},
                       {L"Label", 30},
                       {L"Width", ShowsWidth() ? 12 : 0},
                       {L"Justification", ShowsJustification() ? 16 : 0},
                       {L"Display", 10}});
    grid_->SetListener(this);
    QPushButton* const up = NewButton(kMoveUp, L"Move &Up", [this] { Move(-1); });
    QPushButton* const down = NewButton(kMoveDown, L"Move &Down", [this] { Move(1); });
    layOutUnderGrid(*this, *grid_, {up, down}, {NewOkButton(), NewCancelButton()});
    SetControlProperty({{kDialogGrid, ELASTICX, 100},
                        {kDialogGrid, ELASTICY, 100},
                        {kMoveUp, MOVEY, 100},
                        {kMoveDown, MOVEY, 100},
                        {1, MOVEX, 100},
                        {1, MOVEY, 100},
                        {2, MOVEX, 100},
                        {2, MOVEY, 100}});
}

bool LabelOrderCustomization::IsScheduleTitle(int row) const {
    return grid_->GetItemText(row, kKey) == kScheduleTitle;
}

bool LabelOrderCustomization::OnInitDialog() {
    Fill();
    RemoveHidden();
    goTo(*grid_, 1, kKey);
    grid_->setFocus();
    return false;
}

void LabelOrderCustomization::Fill() {
    const QueryRows rows(connection_,
                         L"select ixLabelGroup, sKey, sLabel, dWidth, sJustification, bDisplay "
                         L"from tblLabelGroup where sGroup = " +
                             sqlText(request_.group) + L" order by iSortOrder");
    for (size_t row = 0; row < rows.count(); ++row)
        AddRow(rows, row);
}

void LabelOrderCustomization::AddRow(const QueryRows& rows, size_t from) {
    const int row = grid_->InsertRow(L"");
    grid_->SetItemText(row, kId, shownValue(rows.value(from, L"ixLabelGroup")));
    grid_->SetItemText(row, kKey, shownValue(rows.value(from, L"sKey")));
    grid_->SetItemText(row, kLabel, shownValue(rows.value(from, L"sLabel")));
    const bool isTitle = IsScheduleTitle(row);
    if (ShowsWidth() && !isTitle) {
        grid_->SetItemText(row, kWidth, shownValue(rows.value(from, L"dWidth"), kDigits));
    }
    if (ShowsJustification()) {
        auto& cell = cellAs<CGridCellCombo>(*grid_, row, kJustification);
        cell.SetOptions(justifications());
        cell.SetStyle(grid::kListOnly);
        if (!isTitle) cell.SetText(shownValue(rows.value(from, L"sJustification")));
    }
    cellAs<CGridCheckCell>(*grid_, row, kDisplay)
        .SetText(shownValue(rows.value(from, L"bDisplay")));
}

// What is hidden is not written, and keeps its values.
void LabelOrderCustomization::RemoveHidden() {
    for (int row = grid_->GetRowCount() - 1; row >= 1; --row) {
        if (request_.hiddenKeys.count(grid_->GetItemText(row, kKey)) > 0) grid_->DeleteRow(row);
    }
}

// --- Editing ---

bool LabelOrderCustomization::OnBeginEdit(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.col == kKey) return false;
    return cell.col < kWidth || !IsScheduleTitle(cell.row);
}

bool LabelOrderCustomization::OnEndEdit(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.col == kWidth && IsOneWidth()) SpreadWidth(grid_->GetItemText(cell.row, kWidth));
    return true;
}

// A schedule's title has no column, so that it has no width either.
void LabelOrderCustomization::SpreadWidth(const std::wstring& width) {
    for (int row = 1; row < grid_->GetRowCount(); ++row) {
        if (IsScheduleTitle(row)) continue;
        grid_->SetItemText(row, kWidth, width);
        grid_->RedrawCell(row, kWidth);
    }
}

void LabelOrderCustomization::Move(int step) {
    const int row = selectedRow(*grid_);
    const int other = row + step;
    if (row < 1 || other < 1 || other >= grid_->GetRowCount()) return;
    swapRows(*grid_, row, other);
    goTo(*grid_, other, grid_->GetFocusCell().col);
}

// --- Writing ---

std::wstring LabelOrderCustomization::UpdateOf(int row) const {
    const auto text = [&](int column) {
        return std::wstring(trimmed(grid_->GetItemText(row, column)));
    };
    std::wstring sql = L"update tblLabelGroup set sLabel = " + sqlText(text(kLabel));
    if (ShowsWidth()) sql += L", dWidth = " + sqlNumber(text(kWidth));
    if (ShowsJustification()) {
        const std::wstring justification = text(kJustification);
        sql += L", sJustification = " + sqlText(justification.empty() ? L"Left" : justification);
    }
    // It is the check box's text that is compared with the title's key, deliberately.
    const std::wstring display = grid_->GetItemText(row, kDisplay);
    const bool isShown = display != kScheduleTitle && display != L"0";
    sql += std::wstring(L", bDisplay = ") + (isShown ? L"-1" : L"0");
    sql += L", iSortOrder = " + (IsScheduleTitle(row) ? L"-1" : std::to_wstring(row));
    return sql + L" where ixLabelGroup = " + grid_->GetItemText(row, kId);
}

// The heading row comes first, deliberately: its statement holds for every row of the table where
// no width is shown, and fails where one is. docs/decisions.md tells more. Failures are not looked
// at.
void LabelOrderCustomization::OnOK() {
    for (int row = 0; row < grid_->GetRowCount(); ++row)
        connection_.ExecuteAction(UpdateOf(row));
    CAcUiDialog::OnOK();
}

}  // namespace sg

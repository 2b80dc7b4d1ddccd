#include "support/dialogs/user_options.h"

#include "grid/combo_cell.h"
#include "grid/in_place_list.h"
#include "grid/tree_column.h"
#include "platform/win/message_box.h"
#include "support/dialogs/above_buttons.h"
#include "support/dialogs/option_rows.h"
#include "support/dialogs/product_icon.h"
#include "support/settings.h"

namespace sg {
namespace {

constexpr const wchar_t* kTitles[] = {L"Name", L"Value", L"sSubKey", L"sValueName", L"bIsYesNo"};
constexpr const wchar_t *kSwitch = L"-1", *kPlain = L"0";  // in the last column

}  // namespace

CUserOptions::CUserOptions(QWidget* parent, std::wstring discipline, std::wstring edition)
    : CAcUiDialog(parent), discipline_(std::move(discipline)), edition_(std::move(edition)) {
    setWindowTitle(QStringLiteral("Quillon User Settings"));
    SetDialogName(L"qn_swiftgate:UserOptions");
    setWindowIcon(productIcon());
    grid_ = new grid::CGridCtrl(this);
    SetControlId(*grid_, kGrid);
    grid_->SetListener(this);
    const QFontMetrics metrics = grid_->fontMetrics();
    grid_->setMinimumSize(108 * metrics.averageCharWidth(), 17 * metrics.height());

    QPushButton* const ok = NewOkButton();
    QPushButton* const cancel = NewCancelButton();
    layOutAboveButtons(*this, *grid_, kGrid, ok, cancel);
}

bool CUserOptions::OnInitDialog() {
    BuildRows();
    LoadValues();
    return true;
}

// ---- Rows
// ----------------------------------------------------------------------------------------

void CUserOptions::BuildRows() {
    grid_->SetColumnCount(kColumns);
    for (const int hidden : {kSubKey, kValueName, kIsYesNo})
        grid_->SetColumnWidth(hidden, 0);
    grid_->SetRowCount(1);
    grid_->SetFixedRowCount(1);
    grid_->SetFixedColumnCount(0);
    grid_->SetTreeColumn(kName);
    grid_->SetListMode(true);
    for (int column = 0; column < kColumns; ++column) {
        grid_->SetItemText(0, column, kTitles[column]);
        grid_->SetColumnName(kTitles[column], column);
    }
    for (const OptionRow& row : optionRows(discipline_, edition_))
        row.kind == OptionRow::Kind::group ? AddGroup(row.text) : AddSetting(row);
}

int CUserOptions::InsertRow(uint8_t level) {
    return grid_->GetTreeColumn().InsertTreeBranch({&level, 1});
}

// A new row looks as the one above it, which may be a heading.
void CUserOptions::SetPlain(int row) {
    for (const int column : {kName, kValue}) {
        grid_->GetCell(row, column)->SetFont(nullptr);
        grid_->SetItemFgColour(row, column, grid::kDefaultColour);
        grid_->SetItemBkColour(row, column, grid::kDefaultColour);
    }
}

// A heading over name and value.
void CUserOptions::AddGroup(const wchar_t* text) {
    const int row = InsertRow(1);
    grid_->SetItemText(row, kName, text);
    grid_->SetItemText(row, kSubKey, text);
    const grid::CGridDefaultCell& heading = grid_->GetDefaultCell(true, false);
    for (const int column : {kName, kValue}) {
        QFont font = grid_->GetCell(row, column)->GetFont();
        font.setWeight(QFont::Bold);
        grid_->SetItemFont(row, column, font);
        grid_->SetItemFgColour(row, column, heading.GetTextClr());
        grid_->SetItemBkColour(row, column, heading.GetBackClr());
    }
    grid_->MergeCells(row, kName, row, kValue);
}

void CUserOptions::AddSetting(const OptionRow& setting) {
    const int row = InsertRow(2);
    SetPlain(row);
    const bool isSwitch = setting.kind == OptionRow::Kind::yesNo;
    grid_->SetItemTextByName(row, L"Name", setting.text);
    grid_->SetItemTextByName(row, L"sSubKey", setting.section);
    grid_->SetItemTextByName(row, L"sValueName", setting.valueName);
    grid_->SetItemTextByName(row, L"bIsYesNo", isSwitch ? kSwitch : kPlain);
    if (!isSwitch) return;
    grid_->SetCellType(row, kValue, grid::gridCellClass<grid::CGridCellCombo>());
    auto& cell = static_cast<grid::CGridCellCombo&>(*grid_->GetCell(row, kValue));
    cell.SetOptions({L"No", L"Yes"});
    cell.SetStyle(grid::kListOnly);
}

bool CUserOptions::OnBeginEdit(grid::CGridCtrl&, grid::CCellID cell) {
    return cell.col != kName;
}

// ---- Values
// --------------------------------------------------------------------------------------

void CUserOptions::LoadValues() {
    for (int row = 1; row < grid_->GetRowCount(); ++row) {
        const std::wstring section = grid_->GetItemTextByName(row, L"sSubKey");
        const std::wstring name = grid_->GetItemTextByName(row, L"sValueName");
        std::wstring value;
        if (!section.empty() && !name.empty()) value = GetRegistryText(section, name);
        // A switch that was never set counts as on here.
        if (grid_->GetItemTextByName(row, L"bIsYesNo") == kSwitch)
            value = value == L"0" ? L"No" : L"Yes";
        grid_->SetItemTextByName(row, L"Value", value);
    }
    grid_->AutoSizeColumns();
    if (grid_->GetRowCount() > 2) grid_->SetFocusCell(2, kValue);
}

void CUserOptions::SaveValues() {
    for (int row = 1; row < grid_->GetRowCount(); ++row) {
        const std::wstring section = grid_->GetItemTextByName(row, L"sSubKey");
        const std::wstring name = grid_->GetItemTextByName(row, L"sValueName");
        if (section.empty() || name.empty()) continue;
        std::wstring value = grid_->GetItemTextByName(row, L"Value");
        if (grid_->GetItemTextByName(row, L"bIsYesNo") == kSwitch)
            value = value == L"Yes" ? L"1" : L"0";
        SetRegistryText(value, name, section);
    }
}

void CUserOptions::OnOK() {
    grid_->EndEditing();
    SaveValues();
    CAcUiDialog::OnOK();
}

}  // namespace sg

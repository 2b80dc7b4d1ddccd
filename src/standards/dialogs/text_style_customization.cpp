#include "standards/dialogs/text_style_customization.h"

#include <QLabel>
#include <QPushButton>

#include "base/text.h"
#include "database/connection.h"
#include "standards/dialogs/boxes.h"
#include "standards/dialogs/grid_dialog_layout.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/lisp_calls.h"
#include "standards/dialogs/query_rows.h"
#include "standards/layer_rules.h"
#include "standards/records.h"

namespace sg {
namespace {

enum Column { kKey, kId, kStyle, kHeight, kScaleFactor };
constexpr int kDigits = 4;

std::wstring shown(const NullableColumn<double>& column) {
    double value = 0;
    return column.get(value) ? fixedNumber(value, kDigits) : std::wstring();
}

std::wstring shown(const NullableColumn<std::wstring>& column) {
    std::wstring value;
    column.get(value);
    return value;
}

}  // namespace

CTextStyleCustomization::CTextStyleCustomization(QWidget* parent, CDBConnection& connection,
                                                 std::function<bool()> isThere, std::wstring key)
    : CAcUiDialog(parent),
      connection_(connection),
      isThere_(std::move(isThere)),
      key_(std::move(key)) {
    setWindowTitle(QStringLiteral("Text Styles"));
    SetDialogName(L"qn_swiftgate:TextStyleCustomization");
    grid_ = newDialogGrid(*this, 84, 18);
    setUpGrid(*grid_, {{L"Text Style Key", 26},
                       {L"ixTextStyle", 0},
                       {L"Text Style", 26},
                       {L"Height", 14},
                       {L"Scale Factor", 14}});
    layOutUnderGrid(*this, *grid_, {}, {NewOkButton(), NewCancelButton()},
                    NewLabel(L"Values left blank will use the default."));
    SetControlProperty({{kDialogGrid, ELASTICX, 100},
                        {kDialogGrid, ELASTICY, 100},
                        {1, MOVEX, 100},
                        {1, MOVEY, 100},
                        {2, MOVEX, 100},
                        {2, MOVEY, 100}});
}

bool CTextStyleCustomization::OnInitDialog() {
    Fill();
    goTo(*grid_, 1, kStyle);
    const int row = key_.empty() ? -1 : findRow(*grid_, kKey, key_, true);
    if (row > 0) {
        goTo(*grid_, row, kHeight);
        editedRow_ = row;
    }
    grid_->setFocus();
    return false;
}

std::vector<CTextStyleCustomization::Style> CTextStyleCustomization::ReadStyles() {
    constexpr bool reportsErrors = true;
    TextStyleRecord record(reportsErrors, &connection_);
    std::vector<Style> styles;
    if (!record.setIndex(L"sKey")) return styles;
    for (bool isRow = record.moveFirst(); isRow; isRow = record.moveNext()) {
        styles.push_back({std::to_wstring(record.ixTextStyle.get()), record.sKey.get(),
                          shown(record.sStyleName), shown(record.dHeight),
                          shown(record.dScaleFactor)});
    }
    return styles;
}

// All rows are read before LISP is called, which may move the table's cursor, or close it.
void CTextStyleCustomization::Fill() {
    for (const Style& style : ReadStyles()) {
        if (!callLisp(L"util-showTextStyle", {style.key}).isTrue()) continue;
        const int row = grid_->InsertRow(style.key);
        grid_->SetItemState(row, kKey, grid_->GetItemState(row, kKey) | grid::GVIS_READONLY);
        grid_->SetItemText(row, kId, style.id);
        grid_->SetItemText(row, kStyle, style.name);
        grid_->SetItemText(row, kHeight, style.height);
        grid_->SetItemText(row, kScaleFactor, style.scaleFactor);
    }
}

// An editor stands where its cell is seen.
void CTextStyleCustomization::OnShown() {
    CAcUiDialog::OnShown();
    if (editedRow_ > 0) grid_->BeginEdit(editedRow_, kHeight);
}

// The row that all others fall back on must have a style and a height.
bool CTextStyleCustomization::IsDefaultWhole() {
    for (int row = 0; row < grid_->GetRowCount(); ++row) {
        const std::wstring key = grid_->GetItemText(row, kKey);
        if (key != L"Default" && key != L"DEFAULT") continue;
        for (const auto& [column, title] :
             {std::pair{kStyle, L"Text Style"}, std::pair{kHeight, L"Height"}}) {
            if (!trimmed(grid_->GetItemText(row, column)).empty()) continue;
            tell(L"DEFAULT \"" + std::wstring(title) + L"\" must have a value.",
                 MB_ICONINFORMATION);
            goTo(*grid_, row, column);
            grid_->setFocus();
            return false;
        }
    }
    return true;
}

// The numbers go in as they were typed.
std::wstring CTextStyleCustomization::UpdateOf(int row) const {
    const auto text = [&](int column) {
        return std::wstring(trimmed(grid_->GetItemText(row, column)));
    };
    const std::wstring style = text(kStyle);
    return L"update tblTextStyle set sStyleName = " + (style.empty() ? L"NULL" : sqlText(style)) +
           L", dHeight = " + sqlNumber(text(kHeight)) + L", dScaleFactor = " +
           sqlNumber(text(kScaleFactor)) + L" where ixTextStyle = " + text(kId);
}

// A statement that fails, as with a number that is none, leaves its row as it was.
void CTextStyleCustomization::OnOK() {
    if (!IsDefaultWhole()) return;
    for (int row = 1; isThere_() && row < grid_->GetRowCount(); ++row)
        connection_.ExecuteAction(UpdateOf(row));
    CAcUiDialog::OnOK();
}

}  // namespace sg

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

#include "base/text.h"
#include "grid/check_cell.h"
#include "grid/combo_cell.h"
#include "grid/in_place_list.h"
#include "standards/dialogs/grid_dialog_layout.h"
#include "standards/dialogs/grid_rows.h"
#include "standards/dialogs/layer_system_options.h"
#include "standards/dialogs/lisp_calls.h"
#include "standards/layer_rules.h"

// The dialog for duct systems, with the hatches of their four kinds of ducts.
namespace sg {
namespace {

using grid::CGridCellCombo;
using grid::CGridCheckCell;

enum Id {
    kPrefix = 1058,
    kSuffix = 1059,
    kFlex = 1060,
    kOverhang = 1061,
    kHatches = 1067,
    kOverhangLabel = 5061,  // it moves with its edit
};
enum GridColumn { kUnused, kDucts, kDisplay, kType, kPattern, kAngle, kScale };

constexpr const wchar_t* kPredefined = L"Predefined";
constexpr const wchar_t* kCustom = L"Custom";

// The columns of one kind of ducts, in the order of the grid's rows.
struct HatchColumns {
    const wchar_t* ducts;
    Column<bool>& isOn;
    Column<std::wstring>& type;
    Column<std::wstring>& pattern;
    Column<double>& angle;
    Column<double>& scale;
};

std::array<HatchColumns, 4> hatchesOf(LayerSystemRecord& r) {
    return {{{L"Supply", r.supplyHatchOn, r.supplyHatchType, r.supplyHatchPattern,
              r.supplyHatchAngle, r.supplyHatchScale},
             {L"Return", r.returnHatchOn, r.returnHatchType, r.returnHatchPattern,
              r.returnHatchAngle, r.returnHatchScale},
             {L"Exhaust", r.exhaustHatchOn, r.exhaustHatchType, r.exhaustHatchPattern,
              r.exhaustHatchAngle, r.exhaustHatchScale},
             {L"Outside", r.outsideHatchOn, r.outsideHatchType, r.outsideHatchPattern,
              r.outsideHatchAngle, r.outsideHatchScale}}};
}

}  // namespace

CLayerSystemOptionsHVAC::CLayerSystemOptionsHVAC(QWidget* parent) : CAcUiDialog(parent) {
    setWindowTitle(QStringLiteral("Layer System Options"));
    SetDialogName(L"qn_swiftgate:LayerSystemOptionsHVAC");
    MakeControls();
    setUpGrid(*grid_, {{L"", 0},
                       {L"", 11},
                       {L"Display Hatch", 16},
                       {L"Type", 15},
                       {L"Pattern", 17},
                       {L"Angle", 11},
                       {L"Scale", 11}});
    grid_->SetFixedColumnCount(2);
    grid_->SetListener(this);
    LayOut();
    SetControlProperty({{kHatches, ELASTICX, 100},
                        {kHatches, ELASTICY, 100},
                        {kFlex, MOVEY, 100},
                        {kOverhangLabel, MOVEY, 100},
                        {kOverhang, MOVEY, 100},
                        {LayerSystemName::kNameEdit, ELASTICX, 100},
                        {1, MOVEX, 100},
                        {1, MOVEY, 100},
                        {2, MOVEX, 100},
                        {2, MOVEY, 100}});
}

// In the order of tabbing.
void CLayerSystemOptionsHVAC::MakeControls() {
    name_ = NewEdit(LayerSystemName::kNameEdit);
    solid_ = NewCheckBox(LayerSystemName::kSolidBox, L"Ducts are solid");
    prefix_ = NewEdit(kPrefix);
    suffix_ = NewEdit(kSuffix);
    grid_ = newDialogGrid(*this, 84, 7, kHatches);
    flex_ = NewCheckBox(kFlex, L"Hatch Flex Ductwork");
    overhang_ = NewEdit(kOverhang);
    NewOkButton();
    NewCancelButton();
}

void CLayerSystemOptionsHVAC::LayOut() {
    auto* const top = new QGridLayout;
    top->addWidget(NewLabel(L"Layer System:", name_), 0, 0);
    top->addWidget(name_, 0, 1, 1, 3);
    top->addWidget(solid_, 1, 1, 1, 3);
    top->addWidget(NewLabel(L"Label Prefix:", prefix_), 2, 0);
    top->addWidget(prefix_, 2, 1);
    top->addWidget(NewLabel(L"Label Suffix:", suffix_), 2, 2);
    top->addWidget(suffix_, 2, 3);

    QLabel* const overhangLabel = NewLabel(L"Hatch Overhang:", overhang_);
    SetControlId(*overhangLabel, kOverhangLabel);
    auto* const bottom = new QHBoxLayout;
    bottom->addWidget(flex_);
    bottom->addSpacing(fontMetrics().height());
    bottom->addWidget(overhangLabel);
    overhang_->setFixedWidth(14 * fontMetrics().averageCharWidth());
    bottom->addWidget(overhang_);
    bottom->addStretch();

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(GetDlgItem(1));
    buttons->addWidget(GetDlgItem(2));

    auto* const all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(NewLabel(L"Hatch Settings:", grid_));
    all->addWidget(grid_, 1);
    all->addLayout(bottom);
    all->addLayout(buttons);
}

bool CLayerSystemOptionsHVAC::OnInitDialog() {
    patterns_ = callLisp(L"hvac-getPatList").texts();
    if (system_.Show(*name_)) {
        const LayerSystemRecord& record = system_.record();
        prefix_->setText(QString::fromStdWString(record.sPrefix.get()));
        suffix_->setText(QString::fromStdWString(record.sSuffix.get()));
        solid_->setChecked(record.bSolid.get());
        flex_->setChecked(record.bHatchFlexDucts.get());
        overhang_->setText(QString::fromStdWString(fixedNumber(record.dHatchOverhang.get(), 4)));
        FillGrid();
    }
    return false;
}

void CLayerSystemOptionsHVAC::FillGrid() {
    static const auto types = std::make_shared<const grid::GridOptions>(
        grid::GridOptions{{kPredefined, kCustom}, {0, 0}});
    for (const HatchColumns& hatch : hatchesOf(system_.record())) {
        const int row = grid_->InsertRow(L"");
        grid_->SetItemText(row, kDucts, hatch.ducts);
        cellAs<CGridCheckCell>(*grid_, row, kDisplay)
            .SetText(CGridCheckCell::TextFor(hatch.isOn.get()));
        auto& type = cellAs<CGridCellCombo>(*grid_, row, kType);
        type.SetOptions(types);
        type.SetStyle(grid::kListOnly);
        type.SetText(hatch.type.get());
        SetPatternCell(row, hatch.type.get(), hatch.pattern.get());
        grid_->SetItemText(row, kAngle, fixedNumber(shownAngle(hatch.angle.get()), 2));
        grid_->SetItemText(row, kScale, fixedNumber(hatch.scale.get(), 2));
    }
    goTo(*grid_, 1, kDisplay);
}

// A predefined pattern is one of a list, any other one a text.
void CLayerSystemOptionsHVAC::SetPatternCell(int row, const std::wstring& type,
                                             std::wstring pattern) {
    if (type == kPredefined) {
        auto& cell = cellAs<CGridCellCombo>(*grid_, row, kPattern);
        cell.SetOptions(patterns_);
        cell.SetStyle(grid::kListOnly);
        if (trimmed(pattern).empty() && !patterns_.empty()) pattern = patterns_.front();
    } else {
        grid_->SetCellType(row, kPattern, grid::gridCellClass<grid::CGridCell>());
    }
    grid_->SetItemText(row, kPattern, pattern);
    grid_->RedrawCell(row, kPattern);
}

bool CLayerSystemOptionsHVAC::OnBeginEdit(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.col == kType) keptType_ = grid_->GetItemText(cell.row, kType);
    return cell.col != kDucts;
}

bool CLayerSystemOptionsHVAC::OnEndEdit(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.col != kType) return true;
    const std::wstring type = grid_->GetItemText(cell.row, kType);
    if (type != keptType_) {
        keptType_ = type;
        SetPatternCell(cell.row, type, grid_->GetItemText(cell.row, kPattern));
    }
    return true;
}

void CLayerSystemOptionsHVAC::TakeGrid() {
    int row = 1;
    for (const HatchColumns& hatch : hatchesOf(system_.record())) {
        if (row >= grid_->GetRowCount()) return;
        hatch.isOn.set(grid_->GetItemText(row, kDisplay) != L"0");
        hatch.type.set(grid_->GetItemText(row, kType));
        hatch.pattern.set(grid_->GetItemText(row, kPattern));
        hatch.angle.set(storedAngle(numberIn(grid_->GetItemText(row, kAngle))));
        hatch.scale.set(numberIn(grid_->GetItemText(row, kScale)));
        ++row;
    }
}

void CLayerSystemOptionsHVAC::OnOK() {
    if (system_.Take(*name_)) {
        LayerSystemRecord& record = system_.record();
        record.bSolid.set(solid_->isChecked());
        record.sPrefix.set(prefix_->text().toStdWString());
        record.sSuffix.set(suffix_->text().toStdWString());
        record.bHatchFlexDucts.set(flex_->isChecked());
        record.dHatchOverhang.set(numberIn(overhang_->text().toStdWString()));
        TakeGrid();
        record.save();
    }
    CAcUiDialog::OnOK();
}

}  // namespace sg

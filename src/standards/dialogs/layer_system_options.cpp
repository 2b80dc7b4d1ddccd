#include "standards/dialogs/layer_system_options.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

// The dialogs for electrical and plumbing systems, and what the one for ducts has in common with
// them.
namespace sg {
namespace {

constexpr const wchar_t* kNameLabel = L"Layer System:";

// The buttons, which are made in this order.
QHBoxLayout* buttonRow(std::initializer_list<QPushButton*> buttons) {
    auto* const row = new QHBoxLayout;
    row->addStretch();
    for (QPushButton* const button : buttons)
        row->addWidget(button);
    return row;
}

QHBoxLayout* nameRow(QWidget* label, QWidget* edit) {
    edit->setMinimumWidth(40 * edit->fontMetrics().averageCharWidth());
    auto* const row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(edit, 1);
    return row;
}

}  // namespace

// --- The system ---

void LayerSystemName::AttachConnection(CDBConnection& connection, int32_t system) {
    constexpr bool reportsErrors = true;
    record_ = std::make_unique<LayerSystemRecord>(reportsErrors, &connection);
    system_ = system;
}

bool LayerSystemName::Show(QLineEdit& edit) {
    const bool isFound = record_->seekId(system_);
    edit.setText(QString::fromStdWString(isFound ? record_->sDescription.get() : L""));
    edit.selectAll();
    edit.setFocus();
    return isFound;
}

bool LayerSystemName::Take(const QLineEdit& edit) {
    if (!record_->seekId(system_)) return false;
    record_->edit();
    record_->sDescription.set(edit.text().toStdWString());
    return true;
}

// --- Plumbing ---

CLayerSystemOptionsPlumb::CLayerSystemOptionsPlumb(QWidget* parent) : CDialog(parent) {
    setWindowTitle(QStringLiteral("Layer System Options"));
    name_ = NewEdit(LayerSystemName::kNameEdit);
    auto* const all = new QVBoxLayout(this);
    all->addLayout(nameRow(NewLabel(kNameLabel, name_), name_));
    all->addLayout(buttonRow({NewOkButton(), NewCancelButton()}));
}

bool CLayerSystemOptionsPlumb::OnInitDialog() {
    system_.Show(*name_);
    return false;
}

void CLayerSystemOptionsPlumb::OnOK() {
    if (system_.Take(*name_)) system_.record().save();
    CDialog::OnOK();
}

// --- Electrical ---

CLayerSystemOptionsElec::CLayerSystemOptionsElec(QWidget* parent, bool showSolid)
    : CDialog(parent), showSolid_(showSolid) {
    setWindowTitle(QStringLiteral("Layer System Options"));
    name_ = NewEdit(LayerSystemName::kNameEdit);
    solid_ = NewCheckBox(LayerSystemName::kSolidBox, L"Conduits and Cable Trays are solid");
    auto* const all = new QVBoxLayout(this);
    all->addLayout(nameRow(NewLabel(kNameLabel, name_), name_));
    all->addWidget(solid_);
    all->addLayout(buttonRow({NewOkButton(), NewCancelButton()}));
}

bool CLayerSystemOptionsElec::OnInitDialog() {
    if (system_.Show(*name_)) solid_->setChecked(system_.record().bSolid.get());
    solid_->setVisible(showSolid_);
    return false;
}

void CLayerSystemOptionsElec::OnOK() {
    if (system_.Take(*name_)) {
        system_.record().bSolid.set(solid_->isChecked());
        system_.record().save();
    }
    CDialog::OnOK();
}

}  // namespace sg

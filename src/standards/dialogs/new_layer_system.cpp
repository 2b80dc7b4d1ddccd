#include "standards/dialogs/new_layer_system.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/text.h"
#include "standards/dialogs/boxes.h"
#include "standards/dialogs/layer_customization.h"

namespace sg {

CNewLayerSystem::CNewLayerSystem(QWidget* parent, const grid::CGridCtrl& systems)
    : CDialog(parent), systems_(systems) {
    setWindowTitle(QStringLiteral("New Layer System"));
    edit_ = NewEdit(2006);
    list_ = new QListWidget(this);
    SetControlId(*list_, 1013);
    const QFontMetrics metrics = list_->fontMetrics();
    list_->setMinimumSize(40 * metrics.averageCharWidth(), 10 * metrics.height());

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(NewOkButton());
    buttons->addWidget(NewCancelButton());
    auto* const all = new QVBoxLayout(this);
    all->addWidget(NewLabel(L"Layer System &Name:", edit_));
    all->addWidget(edit_);
    all->addWidget(NewLabel(L"Copy &Layer Keys From:", list_));
    all->addWidget(list_);
    all->addLayout(buttons);
}

bool CNewLayerSystem::OnInitDialog() {
    for (int row = kFirstOffered; row < systems_.GetRowCount(); ++row) {
        list_->addItem(
            QString::fromStdWString(systems_.GetItemText(row, CLayerCustomization::kSystemName)));
    }
    list_->setCurrentRow(0);
    edit_->setFocus();
    return false;
}

void CNewLayerSystem::Refuse(const wchar_t* why) {
    tell(why, MB_ICONWARNING);
    edit_->setFocus();
}

void CNewLayerSystem::OnOK() {
    chosenIndex_ = list_->currentRow();
    name_ = trimmed(edit_->text().toStdWString());
    if (name_.empty() || equalIgnoringCase(name_, L"GENERAL")) {
        Refuse(L"Invalid layer system name.");
        return;
    }
    for (int i = 0; i < list_->count(); ++i) {
        if (!equalIgnoringCase(list_->item(i)->text().toStdWString(), name_)) continue;
        Refuse(L"A layer system with that name already exists.");
        return;
    }
    CDialog::OnOK();
}

}  // namespace sg

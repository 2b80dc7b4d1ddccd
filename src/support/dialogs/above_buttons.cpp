#include "support/dialogs/above_buttons.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/win/message_box.h"

namespace sg {

void layOutAboveButtons(CAcUiDialog& dialog, QWidget& control, int id, QPushButton* ok,
                        QPushButton* cancel) {
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    buttons->addStretch();
    auto* const all = new QVBoxLayout(&dialog);
    all->addWidget(&control);
    all->addLayout(buttons);
    dialog.SetControlProperty({{id, ELASTICX, 100},
                               {id, ELASTICY, 100},
                               {IDOK, MOVEX, 50},
                               {IDOK, MOVEY, 100},
                               {IDCANCEL, MOVEX, 50},
                               {IDCANCEL, MOVEY, 100}});
}

}  // namespace sg

#include <QMessageBox>
#include <QPushButton>

#include <map>

#include "host/editor/message_buttons.h"
#include "host/ui/widget_scripts.h"

namespace sg::ui {

int runBox(QMessageBox& box, unsigned flags) {
    std::map<QAbstractButton*, int> ids;
    for (const MessageButton& button : messageButtons(flags)) {
        QPushButton* const made =
            box.addButton(QString::fromWCharArray(button.name), QMessageBox::ActionRole);
        ids[made] = button.id;
        if (button.id == defaultButton(flags)) box.setDefaultButton(made);
        if (button.id == escapeButton(flags)) box.setEscapeButton(made);
    }
    box.exec();
    const auto pressed = ids.find(box.clickedButton());
    return pressed != ids.end() ? pressed->second : escapeButton(flags);
}

}  // namespace sg::ui

#pragma once

#include "platform/ui/adui_dialog.h"

class QPushButton;

namespace sg {

// Lays out a dialog of one control, which takes all the room, with two buttons in the middle below
// it: `ok` and `cancel` keep their place there when the dialog grows.
void layOutAboveButtons(CAcUiDialog& dialog, QWidget& control, int id, QPushButton* ok,
                        QPushButton* cancel);

}  // namespace sg

#pragma once

#include <QIcon>

namespace sg {

// The product's mark, 16 by 16 pixels, for the frames of dialogs.
QIcon productIcon();

}  // namespace sg

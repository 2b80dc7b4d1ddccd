#pragma once

#include "standards/dialogs/standards_dialogs.h"

namespace sg {

// The dialogs, whose library is opened for the first of them; null when it cannot be.
StandardsDialogs* standardsDialogs();

}  // namespace sg

#pragma once

#include "support/dialogs/support_dialogs.h"

namespace sg {

// The dialogs, whose library is opened for the first of them; null when it cannot be.
SupportDialogs* supportDialogs();

}  // namespace sg

#pragma once

#include "host/editor/system_variables.h"
#include "host/editor/undo_history.h"

namespace sg {

// Lets undo take back what programs set the variables of a drawing to, and those of the application
// through them, and makes "UNDOCTL" and "UNDOMARKS" tell of the history. The history must live as
// long as the set.
void joinUndo(SystemVariables& variables, UndoHistory& history);

}  // namespace sg

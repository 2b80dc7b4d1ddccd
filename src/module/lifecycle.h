#pragma once

#include "platform/rx/messages.h"

// What the module does on each application message. Exceptions pass through.
namespace sg {

// kInitAppMsg. kRetError, after the offer to fetch the database drivers, when the database engine
// cannot be started; none of the later steps is then done. `packet` is the entry point's.
AcRx::AppRetCode initializeModule(void* packet);

// kLoadDwgMsg: the current document gets its functions and its database entry.
void loadDrawing();

// kUnloadDwgMsg: the current document's database is closed; with the last document every
// connection is.
void unloadDrawing();

// kUnloadAppMsg.
void terminateModule();

}  // namespace sg

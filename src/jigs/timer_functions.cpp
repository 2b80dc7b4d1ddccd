#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "jigs/lisp_functions.h"
#include "platform/ap/documents.h"
#include "platform/win/timer.h"
#include "platform/win/window.h"

namespace sg {
namespace {

// From this period on a timer does not care whether the drawing is busy.
constexpr int32_t kPatience = 10000;  // milliseconds

// A dialog or a long step may have left the main window disabled.
void giveWindowBack(HWND, unsigned, uintptr_t id, uint32_t) {
    EnableWindow(adsw_acadMainWnd(), true);
    KillTimer(nullptr, id);
}

void giveWindowBackWhenQuiescent(HWND window, unsigned message, uintptr_t id, uint32_t time) {
    const AcApDocument* const document = acDocManagerPtr()->curDocument();
    if (document != nullptr && !document->isQuiescent()) return;  // at the next tick
    giveWindowBack(window, message, id, time);
}

}  // namespace

int createJigTimer() {
    acedRetNil();
    CallArguments arguments;
    int32_t milliseconds = 0;
    if (!nextInt(arguments.next, milliseconds)) return kLispWrongType;
    const TIMERPROC procedure =
        milliseconds < kPatience ? giveWindowBackWhenQuiescent : giveWindowBack;
    const uintptr_t id = SetTimer(nullptr, 0, static_cast<uint32_t>(milliseconds), procedure);
    acedRetInt(static_cast<int>(id));
    return kLispOk;
}

int killJigTimer() {
    acedRetNil();
    CallArguments arguments;
    int32_t id = 0;
    if (!nextInt(arguments.next, id)) return kLispWrongType;
    if (id != 0) KillTimer(nullptr, static_cast<uintptr_t>(id));
    return kLispOk;
}

}  // namespace sg

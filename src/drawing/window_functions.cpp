#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/ed/status_bar.h"
#include "platform/win/window.h"

namespace sg {

int enableMainWindow() {
    EnableWindow(adsw_acadMainWnd(), true);
    return kLispOk;
}

int disableMainWindow() {
    EnableWindow(adsw_acadMainWnd(), false);
    return kLispOk;
}

int mainWindowText() {
    std::wstring text;
    acedGetAcadFrame()->GetWindowText(text);
    acedRetStr(text.c_str());
    return kLispOk;
}

int setMainWindowText() {
    CallArguments arguments;
    std::wstring text;
    if (!nextString(arguments.next, text)) return kLispWrongType;
    acedGetAcadFrame()->SetWindowText(text.c_str());
    return kLispOk;
}

int startProgressMeter() {
    CallArguments arguments;
    std::wstring label;
    int32_t minimum = 0, maximum = 0;
    if (!nextString(arguments.next, label) || !nextInt(arguments.next, minimum) ||
        !nextInt(arguments.next, maximum)) {
        return kLispWrongType;
    }
    acedRetInt(acedSetStatusBarProgressMeter(label.c_str(), minimum, maximum));
    return kLispOk;
}

int moveProgressMeter() {
    CallArguments arguments;
    int32_t position = 0;
    if (!nextInt(arguments.next, position)) return kLispWrongType;
    acedRetInt(acedSetStatusBarProgressMeterPos(position));
    return kLispOk;
}

int restoreStatusBar() {
    acedRestoreStatusBar();
    return kLispOk;
}

}  // namespace sg

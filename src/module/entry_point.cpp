#include <cstdint>

#include "base/export.h"
#include "module/lifecycle.h"
#include "platform/ed/command_line.h"
#include "platform/rx/messages.h"
#include "platform/win/exceptions.h"
#include "platform/win/system.h"

namespace {

AcRx::AppRetCode deliver(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg:
            return sg::initializeModule(packet);
        case AcRx::kLoadDwgMsg:
            sg::loadDrawing();
            break;
        case AcRx::kUnloadDwgMsg:
            sg::unloadDrawing();
            break;
        case AcRx::kUnloadAppMsg:
            sg::terminateModule();
            break;
        default:
            break;
    }
    return AcRx::kRetOK;
}

void reportException(CException& exception) {
    wchar_t text[1000] = {};
    exception.GetErrorMessage(text, 1000);
    acutPrintf(L"\nSwift Gate General Error:  %s", text);
}

void reportSystemError() {
    if (const uint32_t code = GetLastError(); code != 0) {
        acutPrintf(L"\nSystem error %u.\n", code);
    } else {
        acutPrintf(L"\nSwift Gate error.\n");
    }
}

}  // namespace

// The host finds these two by name.

extern "C" SG_API AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    try {
        return deliver(message, packet);
    } catch (CException* exception) {
        reportException(*exception);
        exception->Delete();
    } catch (...) {
        reportSystemError();
    }
    return AcRx::kRetError;
}

extern "C" SG_API int acrxGetApiVersion() {
    return kAcRxApiVersion;
}

#include "base/export.h"
#include "companion/hvac_solid.h"
#include "platform/rx/messages.h"
#include "platform/rx/modules.h"

namespace {

AcRx::AppRetCode deliver(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg:
            acrxUnlockApplication(packet);
            acrxRegisterAppMDIAware(packet);
            sg::companion::HvacSolid::rxInit();
            acrxBuildClassHierarchy();
            break;
        case AcRx::kUnloadAppMsg:
            sg::companion::HvacSolid::rxTerm();
            break;
        default:
            break;
    }
    return AcRx::kRetOK;
}

}  // namespace

// The host finds these two by name.

extern "C" SG_API AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    return deliver(message, packet);
}

extern "C" SG_API int acrxGetApiVersion() {
    return kAcRxApiVersion;
}

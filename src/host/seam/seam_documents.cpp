#include "host/editor/documents.h"
#include "host/seam/host.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"

// platform/ap and platform/db on the Host.

using sg::Host;

AcApDocManager* acDocManagerPtr() {
    return &Host::the().documents();
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    return &Host::the().services();
}

#include "host/editor/documents.h"
#include "host/seam/host.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/db/object_id.h"

// platform/ap and platform/db on the Host.

using sg::Host;

AcApDocManager* acDocManagerPtr() {
    return &Host::the().documents();
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    return &Host::the().services();
}

Acad::ErrorStatus AcDbDatabase::getFilename(std::wstring& name) const {
    name = filename_;
    return filename_.empty() ? Acad::eFileNotFound : Acad::eOk;
}

// Databases hold no objects yet, so no name stands for one.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name) {
    id.setNull();
    return Acad::eUnknownHandle;
}

Acad::ErrorStatus acdbGetAdsName(ads_name name, AcDbObjectId id) {
    name[0] = name[1] = 0;
    return id.isNull() ? Acad::eNullObjectId : Acad::eUnknownHandle;
}

#include "host/model/tables/pointers.h"

namespace sg::model {
PointerKind pointerKind(int code) {
    if (code >= 340 && code <= 349) return PointerKind::hardPointer;
    if (code >= 350 && code <= 359) return PointerKind::softOwner;
    if (code >= 360 && code <= 369) return PointerKind::hardOwner;
    if (code >= 390 && code <= 399) return PointerKind::hardPointer;
    return PointerKind::softPointer;
}

Acad::ErrorStatus writePointer(AcDbDwgFiler* filer, PointerKind kind, AcDbObjectId id) {
    switch (kind) {
        case PointerKind::softPointer:
            return filer->writeSoftPointerId(id);
        case PointerKind::hardPointer:
            return filer->writeHardPointerId(id);
        case PointerKind::softOwner:
            return filer->writeSoftOwnershipId(id);
        case PointerKind::hardOwner:
            return filer->writeHardOwnershipId(id);
    }
    return Acad::eInvalidInput;
}

AcDbObjectId readPointer(AcDbDwgFiler* filer, PointerKind kind) {
    AcDbSoftPointerId softPointer;
    AcDbHardPointerId hardPointer;
    AcDbSoftOwnershipId softOwner;
    AcDbHardOwnershipId hardOwner;
    switch (kind) {
        case PointerKind::softPointer:
            filer->readSoftPointerId(&softPointer);
            return softPointer;
        case PointerKind::hardPointer:
            filer->readHardPointerId(&hardPointer);
            return hardPointer;
        case PointerKind::softOwner:
            filer->readSoftOwnershipId(&softOwner);
            return softOwner;
        case PointerKind::hardOwner:
            filer->readHardOwnershipId(&hardOwner);
            return hardOwner;
    }
    return {};
}

}  // namespace sg::model

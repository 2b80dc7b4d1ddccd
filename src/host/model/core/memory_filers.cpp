#include "host/model/core/memory_filers.h"

#include "host/model/core/database_table.h"
#include "platform/db/database.h"

namespace sg::model {

// ---- Ids ----------------------------------------------------------------------------------------

void BytesFiler::putId(Reference, AcDbObjectId id) {
    put(id.asOldId());
}

Acad::ErrorStatus BytesFiler::takeId(Reference kind, AcDbObjectId& id) {
    uint64_t value = 0;
    const Acad::ErrorStatus status = take(value);
    id = translated(kind, AcDbObjectId(value));
    return status;
}

Acad::ErrorStatus BytesFiler::readHardOwnershipId(AcDbHardOwnershipId* id) {
    return takeId(Reference::hardOwnership, *id);
}
Acad::ErrorStatus BytesFiler::writeHardOwnershipId(const AcDbHardOwnershipId& id) {
    if (status_ == Acad::eOk) putId(Reference::hardOwnership, id);
    return status_;
}
Acad::ErrorStatus BytesFiler::readSoftOwnershipId(AcDbSoftOwnershipId* id) {
    return takeId(Reference::softOwnership, *id);
}
Acad::ErrorStatus BytesFiler::writeSoftOwnershipId(const AcDbSoftOwnershipId& id) {
    if (status_ == Acad::eOk) putId(Reference::softOwnership, id);
    return status_;
}
Acad::ErrorStatus BytesFiler::readHardPointerId(AcDbHardPointerId* id) {
    return takeId(Reference::hardPointer, *id);
}
Acad::ErrorStatus BytesFiler::writeHardPointerId(const AcDbHardPointerId& id) {
    if (status_ == Acad::eOk) putId(Reference::hardPointer, id);
    return status_;
}
Acad::ErrorStatus BytesFiler::readSoftPointerId(AcDbSoftPointerId* id) {
    return takeId(Reference::softPointer, *id);
}
Acad::ErrorStatus BytesFiler::writeSoftPointerId(const AcDbSoftPointerId& id) {
    if (status_ == Acad::eOk) putId(Reference::softPointer, id);
    return status_;
}

// ---- Values of several parts --------------------------------------------------------------------

Acad::ErrorStatus BytesFiler::readBool(bool* value) {
    uint8_t byte = 0;
    const Acad::ErrorStatus status = take(byte);
    if (status == Acad::eOk) *value = byte != 0;
    return status;
}

Acad::ErrorStatus BytesFiler::readPoint2d(AcGePoint2d* value) {
    take(value->x);
    return take(value->y);
}
Acad::ErrorStatus BytesFiler::writePoint2d(const AcGePoint2d& value) {
    put(value.x);
    return put(value.y);
}
Acad::ErrorStatus BytesFiler::readPoint3d(AcGePoint3d* value) {
    take(value->x);
    take(value->y);
    return take(value->z);
}
Acad::ErrorStatus BytesFiler::writePoint3d(const AcGePoint3d& value) {
    put(value.x);
    put(value.y);
    return put(value.z);
}
Acad::ErrorStatus BytesFiler::readVector2d(AcGeVector2d* value) {
    take(value->x);
    return take(value->y);
}
Acad::ErrorStatus BytesFiler::writeVector2d(const AcGeVector2d& value) {
    put(value.x);
    return put(value.y);
}
Acad::ErrorStatus BytesFiler::readVector3d(AcGeVector3d* value) {
    take(value->x);
    take(value->y);
    return take(value->z);
}
Acad::ErrorStatus BytesFiler::writeVector3d(const AcGeVector3d& value) {
    put(value.x);
    put(value.y);
    return put(value.z);
}
Acad::ErrorStatus BytesFiler::readScale3d(AcGeScale3d* value) {
    take(value->sx);
    take(value->sy);
    return take(value->sz);
}
Acad::ErrorStatus BytesFiler::writeScale3d(const AcGeScale3d& value) {
    put(value.sx);
    put(value.sy);
    return put(value.sz);
}

Acad::ErrorStatus BytesFiler::readString(std::wstring& value) {
    uint32_t length = 0;
    if (take(length) != Acad::eOk) return status_;
    value.resize(length);
    return readBytes(value.data(), length * sizeof(wchar_t));
}
Acad::ErrorStatus BytesFiler::writeString(const std::wstring& value) {
    put(static_cast<uint32_t>(value.size()));
    return writeBytes(value.data(), value.size() * sizeof(wchar_t));
}

Acad::ErrorStatus BytesFiler::readAcDbHandle(AcDbHandle* value) {
    uint64_t number = 0;
    const Acad::ErrorStatus status = take(number);
    if (status == Acad::eOk) *value = translated(AcDbHandle(number));
    return status;
}
Acad::ErrorStatus BytesFiler::writeAcDbHandle(const AcDbHandle& value) {
    return put(static_cast<uint64_t>(value));
}

Acad::ErrorStatus BytesFiler::readBytes(void* bytes, size_t count) {
    if (status_ == Acad::eOk && !takeBytes(bytes, count)) status_ = Acad::eEndOfFile;
    return status_;
}
Acad::ErrorStatus BytesFiler::writeBytes(const void* bytes, size_t count) {
    if (status_ == Acad::eOk) putBytes(bytes, count);
    return status_;
}

// ---- TranslatingReader --------------------------------------------------------------------------

AcDbObjectId TranslatingReader::translated(Reference kind, AcDbObjectId id) const {
    if (id.isNull()) return id;
    if (const AcDbIdMapping::Pair* const pair = mapping_.find(id)) return pair->value;
    const AcDbDatabase* const home = id.database();
    if (home != mapping_.destination && home == mapping_.origin) return {};
    if (!isOwnership(kind)) return id;
    const AcDbObject* const owned = DatabaseTable::objectOf(id);
    return owned != nullptr && owned->ownerId() == copy_ ? id : AcDbObjectId();
}

AcDbHandle TranslatingReader::translated(AcDbHandle handle) const {
    AcDbObjectId id;
    if (mapping_.origin == nullptr ||
        mapping_.origin->getAcDbObjectId(id, false, handle) != Acad::eOk) {
        return handle;
    }
    const AcDbIdMapping::Pair* const pair = mapping_.find(id);
    return pair == nullptr ? handle : pair->value.handle();
}

// ---- References
// -----------------------------------------------------------------------------------

void writeReference(AcDbDwgFiler& filer, Reference kind, AcDbObjectId id) {
    switch (kind) {
        case Reference::hardOwnership:
            filer.writeHardOwnershipId(id);
            break;
        case Reference::softOwnership:
            filer.writeSoftOwnershipId(id);
            break;
        case Reference::hardPointer:
            filer.writeHardPointerId(id);
            break;
        case Reference::softPointer:
            filer.writeSoftPointerId(id);
            break;
    }
}

AcDbObjectId readReference(AcDbDwgFiler& filer, Reference kind) {
    AcDbHardOwnershipId hardOwnership;
    AcDbSoftOwnershipId softOwnership;
    AcDbHardPointerId hardPointer;
    AcDbSoftPointerId softPointer;
    switch (kind) {
        case Reference::hardOwnership:
            filer.readHardOwnershipId(&hardOwnership);
            return hardOwnership;
        case Reference::softOwnership:
            filer.readSoftOwnershipId(&softOwnership);
            return softOwnership;
        case Reference::hardPointer:
            filer.readHardPointerId(&hardPointer);
            return hardPointer;
        case Reference::softPointer:
            filer.readSoftPointerId(&softPointer);
            return softPointer;
    }
    return {};
}

}  // namespace sg::model

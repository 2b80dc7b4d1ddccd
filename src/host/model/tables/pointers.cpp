#include "host/model/tables/pointers.h"

#include <string>

namespace sg::model {
namespace {

// What a group with this code refers to; entity names elsewhere are soft pointers.
PointerKind pointerKind(int code) {
    if (code >= 340 && code <= 349) return PointerKind::hardPointer;
    if (code >= 350 && code <= 359) return PointerKind::softOwner;
    if (code >= 360 && code <= 369) return PointerKind::hardOwner;
    if (code >= 390 && code <= 399) return PointerKind::hardPointer;
    return PointerKind::softPointer;
}

void writeGroup(AcDbDwgFiler* filer, const resbuf& group) {
    const ads_u_val& value = group.resval;
    filer->writeInt16(group.restype);
    switch (acdbGroupCodeToType(group.restype)) {
        case RTSTR:
            filer->writeString(value.rstring == nullptr ? L"" : value.rstring);
            break;
        case RTREAL:
            filer->writeDouble(value.rreal);
            break;
        case RTSHORT:
            filer->writeInt16(value.rint);
            break;
        case RTLONG:
            filer->writeInt32(value.rlong);
            break;
        case RT3DPOINT:
            filer->writePoint3d({value.rpoint[0], value.rpoint[1], value.rpoint[2]});
            break;
        case RTENAME: {
            AcDbObjectId id;
            acdbGetObjectId(id, value.rlname);
            writePointer(filer, pointerKind(group.restype), id);
            break;
        }
        default:
            break;  // no value
    }
}

resbuf* readGroup(AcDbDwgFiler* filer) {
    int16_t code = 0;
    if (filer->readInt16(&code) != Acad::eOk) return nullptr;
    resbuf* const group = acutNewRb(code);
    ads_u_val& value = group->resval;
    switch (acdbGroupCodeToType(code)) {
        case RTSTR: {
            std::wstring text;
            filer->readString(text);
            value.rstring = acutNewString(text.c_str(), text.size());
            break;
        }
        case RTREAL:
            filer->readDouble(&value.rreal);
            break;
        case RTSHORT:
            filer->readInt16(&value.rint);
            break;
        case RTLONG:
            filer->readInt32(&value.rlong);
            break;
        case RT3DPOINT: {
            AcGePoint3d point;
            filer->readPoint3d(&point);
            value.rpoint[0] = point.x;
            value.rpoint[1] = point.y;
            value.rpoint[2] = point.z;
            break;
        }
        case RTENAME:
            acdbGetAdsName(value.rlname, readPointer(filer, pointerKind(code)));
            break;
        default:
            break;
    }
    return group;
}

}  // namespace

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

Acad::ErrorStatus writeGroups(AcDbDwgFiler* filer, const resbuf* groups) {
    uint32_t count = 0;
    for (const resbuf* group = groups; group != nullptr; group = group->rbnext)
        ++count;
    filer->writeUInt32(count);
    for (const resbuf* group = groups; group != nullptr; group = group->rbnext) {
        writeGroup(filer, *group);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus readGroups(AcDbDwgFiler* filer, resbuf*& groups) {
    groups = nullptr;
    resbuf** tail = &groups;
    uint32_t count = 0;
    filer->readUInt32(&count);
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        *tail = readGroup(filer);
        if (*tail == nullptr) break;
        tail = &(*tail)->rbnext;
    }
    return filer->filerStatus();
}

resbuf* copyGroups(const resbuf* groups) {
    resbuf* copy = nullptr;
    resbuf** tail = &copy;
    for (const resbuf* group = groups; group != nullptr; group = group->rbnext) {
        resbuf* const made = acutNewRb(group->restype);
        made->resval = group->resval;
        const int16_t kind = acdbGroupCodeToType(group->restype);
        if (kind == RTSTR) {
            made->resval.rstring =
                acutNewString(group->resval.rstring == nullptr ? L"" : group->resval.rstring);
        }
        *tail = made;
        tail = &made->rbnext;
    }
    return copy;
}

}  // namespace sg::model

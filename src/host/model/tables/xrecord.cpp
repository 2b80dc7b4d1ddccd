#include "host/model/tables/xrecord.h"

#include "host/model/tables/filing.h"
#include "host/model/tables/pointers.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, 0, 0, L"XRECORD", nullptr)

namespace {

bool isAllowed(int code) {
    return code >= 1 && code <= 369 && code != 5 && code != 105 &&
           acdbGroupCodeToType(code) != RTNONE;
}

// Files have more of them than programs may set.
bool isFiled(int code) {
    return code >= 1 && code < 1000 && code != 5 && code != 105 &&
           acdbGroupCodeToType(code) != RTNONE;
}

}  // namespace

AcDbXrecord::AcDbXrecord() = default;

AcDbXrecord::~AcDbXrecord() {
    acutRelRb(groups_);
}

void AcDbXrecord::take(resbuf* groups) {
    acutRelRb(groups_);
    groups_ = groups;
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** groups) const {
    assertReadEnabled();
    *groups = sg::model::copyGroups(groups_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& groups) {
    for (const resbuf* group = &groups; group != nullptr; group = group->rbnext) {
        if (!isAllowed(group->restype)) return Acad::eInvalidDxfCode;
    }
    assertWriteEnabled();
    take(sg::model::copyGroups(&groups));
    return Acad::eOk;
}

void AcDbXrecord::setMergeStyle(AcDb::DuplicateRecordCloning style) {
    assertWriteEnabled();
    mergeStyle_ = style;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeInt16(static_cast<int16_t>(mergeStyle_));
    return sg::model::writeGroups(filer, groups_);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    int16_t mergeStyle = 0;
    filer->readInt16(&mergeStyle);
    mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(mergeStyle);
    resbuf* groups = nullptr;
    const Acad::ErrorStatus status = sg::model::readGroups(filer, groups);
    take(groups);
    return status;
}

Acad::ErrorStatus AcDbXrecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbXrecord");
    filer->writeInt16(280, static_cast<int16_t>(mergeStyle_));
    for (const resbuf* group = groups_; group != nullptr; group = group->rbnext) {
        filer->writeItem(*group);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbXrecord")) return Acad::eBadDxfSequence;
    resbuf* groups = nullptr;
    resbuf** tail = &groups;
    resbuf group{};
    bool first = true;
    // Here a 100 is a group like any other.
    while (filer->readItem(&group) == Acad::eOk) {
        if (first && group.restype == 280) {
            mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(group.resval.rint);
        } else if (isFiled(group.restype)) {
            group.rbnext = nullptr;
            *tail = sg::model::copyGroups(&group);
            tail = &(*tail)->rbnext;
        }
        first = false;
    }
    take(groups);
    return filer->filerStatus();
}

#include "host/model/tables/xrecord.h"

#include "host/model/tables/filing.h"

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

AcDbXrecord::~AcDbXrecord() = default;

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** groups) const {
    assertReadEnabled();
    *groups = groups_.toList();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& groups) {
    sg::model::GroupData taken;
    for (const resbuf* group = &groups; group != nullptr; group = group->rbnext) {
        if (!isAllowed(group->restype)) return Acad::eInvalidDxfCode;
        taken.append(*group);
    }
    assertWriteEnabled();
    groups_ = std::move(taken);
    return Acad::eOk;
}

void AcDbXrecord::setMergeStyle(AcDb::DuplicateRecordCloning style) {
    assertWriteEnabled();
    mergeStyle_ = style;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeInt16(static_cast<int16_t>(mergeStyle_));
    return groups_.dwgOut(*filer);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    int16_t mergeStyle = 0;
    filer->readInt16(&mergeStyle);
    mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(mergeStyle);
    return groups_.dwgIn(*filer);
}

Acad::ErrorStatus AcDbXrecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbXrecord");
    filer->writeInt16(280, static_cast<int16_t>(mergeStyle_));
    return groups_.dxfOut(*filer);
}

Acad::ErrorStatus AcDbXrecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbXrecord")) return Acad::eBadDxfSequence;
    groups_.clear();
    resbuf group{};
    bool first = true;
    // Here a 100 is a group like any other.
    while (filer->readItem(&group) == Acad::eOk) {
        if (first && group.restype == 280) {
            mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(group.resval.rint);
        } else if (isFiled(group.restype)) {
            groups_.append(group);
        }
        first = false;
    }
    return filer->filerStatus();
}

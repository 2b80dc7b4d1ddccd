#include "host/model/tables/xrecord.h"

#include "host/model/core/dwg_form.h"
#include "host/model/core/group_bytes.h"

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
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writeInt16(static_cast<int16_t>(mergeStyle_));
    return groups_.dwgOut(*filer);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    int16_t mergeStyle = 0;
    filer->readInt16(&mergeStyle);
    mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(mergeStyle);
    return groups_.dwgIn(*filer);
}

// In files the groups are bytes, and the objects in them stand in the handle stream once more.
Acad::ErrorStatus AcDbXrecord::writeFile(AcDbDwgFiler& filer) const {
    const std::string bytes = sg::model::toFileBytes(groups_, *filer.dwgForm(), filer.dwgVersion());
    filer.writeUInt32(static_cast<uint32_t>(bytes.size()));
    filer.writeBytes(bytes.data(), bytes.size());
    filer.writeInt16(static_cast<int16_t>(mergeStyle_));
    for (sg::model::GroupData::Walk walk(groups_); walk.next();) {
        const sg::model::GroupData::Group& group = walk.group();
        if (group.kind != sg::model::GroupData::Kind::object || group.object.isNull()) continue;
        sg::model::writeReference(filer, sg::model::referenceOf(group.code), group.object);
    }
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbXrecord::readFile(AcDbDwgFiler& filer) {
    std::vector<uint8_t> bytes;
    if (sg::model::readBytes(&filer, bytes) != Acad::eOk) return filer.filerStatus();
    if (!sg::model::isBefore(&filer, AcDb::kDHL_1015)) {
        sg::model::readInt16As(&filer, mergeStyle_);
    }
    groups_.clear();
    const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool isWhole = sg::model::fromFileBytes(view, *filer.dwgForm(), filer.dwgVersion(),
                                                  *filer.database(), groups_);
    return isWhole ? filer.filerStatus() : Acad::eInvalidInput;
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

#include "leader/qn_leader.h"

#include "platform/ap/documents.h"
#include "platform/db/database.h"

namespace {

constexpr const wchar_t* kMarker = L"QNLeader";
constexpr int32_t kVersion = 2;

enum Group { kStartGroup = 10, kMiddleGroup = 11, kEndGroup = 12, kOffsetGroup = 40 };

AcGePoint3d pointOf(const resbuf& group) {
    return {group.resval.rpoint[0], group.resval.rpoint[1], group.resval.rpoint[2]};
}

}  // namespace

bool QNLeader::hasBlockToFile(const AcDbDwgFiler& filer) const {
    return blockId_.isValid() && (!blockId_.isErased() || filer.filerType() == AcDb::kUndoFiler);
}

Acad::ErrorStatus QNLeader::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    AcDbEntity::dwgOutFields(filer);
    Acad::ErrorStatus status = filer->writeInt32(kVersion);
    if (status == Acad::eOk) status = filer->writePoint3d(startPoint_);
    if (status == Acad::eOk) status = filer->writePoint3d(middlePoint_);
    if (status == Acad::eOk) status = filer->writePoint3d(endPoint_);
    if (status == Acad::eOk) status = filer->writeDouble(offset_);
    if (status == Acad::eOk) status = filer->writeBool(hasBlockToFile(*filer));
    if (status == Acad::eOk && hasBlockToFile(*filer)) status = filer->writeHardPointerId(blockId_);
    return status != Acad::eOk ? status : filer->filerStatus();
}

Acad::ErrorStatus QNLeader::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled(true, true);
    AcDbEntity::dwgInFields(filer);
    int32_t version = 0;
    if (const auto status = filer->readInt32(&version); status != Acad::eOk) return status;
    if (version > kVersion) return Acad::eMakeMeProxy;
    if (version == 1) return readVersion1(filer);
    if (version == 2) return readVersion2(filer);
    return filer->filerStatus();
}

// Version 1 has the offset as it is plotted. Its scale is that of the document that is current, not
// that of the drawing being read; and the symbol keeps its layer until the leader is given one.
Acad::ErrorStatus QNLeader::readVersion1(AcDbDwgFiler* filer) {
    if (const auto status = readParts(filer); status != Acad::eOk) return status;
    offset_ *= acDocManagerPtr()->curDocument()->database()->dimscale();
    if (const auto status = readBlock(filer); status != Acad::eOk) return status;
    return filer->filerStatus();
}

Acad::ErrorStatus QNLeader::readVersion2(AcDbDwgFiler* filer) {
    if (const auto status = readParts(filer); status != Acad::eOk) return status;
    if (const auto status = readBlock(filer); status != Acad::eOk) return status;
    blockReference_.setLayer(layerId(), true, false);
    return filer->filerStatus();
}

Acad::ErrorStatus QNLeader::readParts(AcDbDwgFiler* filer) {
    Acad::ErrorStatus status = filer->readPoint3d(&startPoint_);
    if (status == Acad::eOk) status = filer->readPoint3d(&middlePoint_);
    if (status == Acad::eOk) status = filer->readPoint3d(&endPoint_);
    if (status == Acad::eOk) status = filer->readDouble(&offset_);
    return status;
}

// A pointer to a block that the drawing has no more is no reason to stop.
Acad::ErrorStatus QNLeader::readBlock(AcDbDwgFiler* filer) {
    blockId_.setNull();
    bool hasBlock = false;
    if (const auto status = filer->readBool(&hasBlock); status != Acad::eOk) return status;
    if (hasBlock) {
        AcDbHardPointerId block;
        const Acad::ErrorStatus status = filer->readHardPointerId(&block);
        if (status != Acad::eOk && status != Acad::eUnknownHandle) return status;
        blockId_ = block;
    }
    blockReference_.setBlockTableRecord(blockId_);
    updateBlockPosition();
    setOffset(offset_);
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, kMarker);
    filer->writePoint3d(kStartGroup, startPoint_);
    filer->writePoint3d(kMiddleGroup, middlePoint_);
    filer->writePoint3d(kEndGroup, endPoint_);
    filer->writeDouble(kOffsetGroup, offset_);
    return filer->filerStatus();
}

Acad::ErrorStatus QNLeader::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled(true, true);
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubClassData(kMarker)) return Acad::eBadDxfSequence;
    resbuf group{};
    while (filer->readItem(&group) == Acad::eOk) {
        switch (group.restype) {
            case kStartGroup:
                startPoint_ = pointOf(group);
                break;
            case kMiddleGroup:
                middlePoint_ = pointOf(group);
                break;
            case kEndGroup:
                endPoint_ = pointOf(group);
                break;
            case kOffsetGroup:
                setOffset(group.resval.rreal);
                break;
            default:
                break;
        }
    }
    updateBlockPosition();
    return filer->filerStatus();
}

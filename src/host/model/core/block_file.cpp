#include "host/model/core/block_contents.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"

// Blocks as DWG files have them.

using sg::model::isBefore;

namespace {

// Of the record's flags, those of external references.
enum ReferenceFlag : int16_t { kIsReference = 4, kIsOverlaid = 8, kIsLoaded = 32 };
constexpr uint8_t kScalesUniformly = 1;

// A reference shows each as a byte that is not 0, and a 0 behind them.
void writeReferenceCount(AcDbDwgFiler& filer, size_t count) {
    while (count-- > 0)
        filer.writeUInt8(1);
    filer.writeUInt8(0);
}

uint32_t readReferenceCount(AcDbDwgFiler& filer) {
    uint32_t count = 0;
    uint8_t byte = 0;
    while (filer.readUInt8(&byte) == Acad::eOk && byte != 0)
        ++count;
    return count;
}

void skipIds(AcDbDwgFiler& filer, uint32_t count) {
    AcDbSoftPointerId unused;
    while (count-- > 0 && filer.filerStatus() == Acad::eOk)
        filer.readSoftPointerId(&unused);
}

bool isExternal(int16_t flags) {
    return (flags & (kIsReference | kIsOverlaid)) != 0;
}

// What an external reference shows is in no file but its own.
bool listsEntities(AcDbDwgFiler& filer, int16_t flags) {
    return !isExternal(flags) || !isBefore(&filer, AcDb::kDHL_1018);
}

}  // namespace

Acad::ErrorStatus AcDbBlockTableRecord::writeFile(AcDbDwgFiler& filer) const {
    std::vector<AcDbHardOwnershipId> entities;
    if (!isExternal(standardFlags_)) {
        for (const AcDbObjectId id : contents_->entities) {
            if (!id.isErased()) entities.emplace_back(id);
        }
    }
    const std::span<const AcDbObjectId> references = filer.dwgForm()->referencesTo(objectId());
    filer.writeBool(isAnonymous());
    filer.writeBool(hasAttributeDefinitions());
    for (const ReferenceFlag flag : {kIsReference, kIsOverlaid, kIsLoaded})
        filer.writeBool((standardFlags_ & flag) != 0);
    if (!isExternal(standardFlags_)) sg::model::writePartCount(&filer, entities.size());
    filer.writePoint3d(origin_);
    filer.writeString(contents_->path);
    writeReferenceCount(filer, references.size());
    filer.writeString(contents_->comments);
    filer.writeUInt32(static_cast<uint32_t>(contents_->preview.size()));
    filer.writeBytes(contents_->preview.data(), contents_->preview.size());
    if (!isBefore(&filer, AcDb::kDHL_1021)) {
        filer.writeInt16(units_);
        filer.writeBool(explodable_);
        filer.writeUInt8(scaleUniformly_ ? kScalesUniformly : 0);
    }
    filer.writeHardOwnershipId(contents_->begin);
    if (listsEntities(filer, standardFlags_)) sg::model::writePartIds(&filer, entities);
    filer.writeHardOwnershipId(contents_->end);
    for (const AcDbObjectId reference : references)
        filer.writeSoftPointerId(reference);
    return filer.writeHardPointerId(layout_);
}

Acad::ErrorStatus AcDbBlockTableRecord::readFile(AcDbDwgFiler& filer) {
    bool unused = false;
    uint32_t entityCount = 0;
    uint32_t referenceCount = 0;
    filer.readBool(&unused);
    filer.readBool(&unused);
    for (const ReferenceFlag flag : {kIsReference, kIsOverlaid, kIsLoaded}) {
        bool isSet = false;
        if (flag == kIsLoaded && isBefore(&filer, AcDb::kDHL_1015)) continue;
        filer.readBool(&isSet);
        if (isSet) standardFlags_ = static_cast<int16_t>(standardFlags_ | flag);
    }
    if (!isExternal(standardFlags_)) sg::model::readPartCount(&filer, entityCount);
    filer.readPoint3d(&origin_);
    filer.readString(contents_->path);
    if (!isBefore(&filer, AcDb::kDHL_1015)) {
        referenceCount = readReferenceCount(filer);
        filer.readString(contents_->comments);
        sg::model::readBytes(&filer, contents_->preview);
    }
    if (!isBefore(&filer, AcDb::kDHL_1021)) {
        uint8_t scaling = 0;
        filer.readInt16(&units_);
        filer.readBool(&explodable_);
        filer.readUInt8(&scaling);
        scaleUniformly_ = scaling == kScalesUniformly;
    }
    std::vector<AcDbHardOwnershipId> entities;
    filer.readHardOwnershipId(&contents_->begin);
    if (listsEntities(filer, standardFlags_)) {
        sg::model::readPartIds(&filer, entityCount, entities);
    }
    contents_->assign({entities.begin(), entities.end()});
    filer.readHardOwnershipId(&contents_->end);
    skipIds(filer, referenceCount);
    if (isBefore(&filer, AcDb::kDHL_1015)) return filer.filerStatus();
    return filer.readHardPointerId(&layout_);
}

// ---- Ends ---------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbBlockBegin::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    if (status != Acad::eOk || filer->dwgForm() == nullptr) return status;
    const auto* const block = sg::model::peek<AcDbBlockTableRecord>(ownerId());
    return filer->writeString(block == nullptr ? std::wstring() : block->name());
}

Acad::ErrorStatus AcDbBlockBegin::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    if (status != Acad::eOk || filer->dwgForm() == nullptr) return status;
    std::wstring nameOfBlock;
    return filer->readString(nameOfBlock);
}

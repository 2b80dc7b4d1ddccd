#include "host/model/core/block_contents.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/filing.h"

using sg::model::FieldReader;

namespace {

// For undo the list of entities is kept step by step, and a copy outside a database has none: there
// the block is filed alone.
bool isFiledAlone(const AcDbDwgFiler& filer) {
    return filer.filerType() == AcDb::kUndoFiler || filer.filerType() == AcDb::kCopyFiler;
}

}  // namespace

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writePoint3d(origin_);
    filer->writeString(contents_->comments);
    filer->writeString(contents_->path);
    filer->writeHardPointerId(layout_);
    filer->writeInt16(units_);
    filer->writeBool(explodable_);
    filer->writeBool(scaleUniformly_);
    filer->writeUInt32(static_cast<uint32_t>(contents_->preview.size()));
    filer->writeBytes(contents_->preview.data(), contents_->preview.size());
    if (isFiledAlone(*filer)) return filer->filerStatus();
    filer->writeHardOwnershipId(contents_->begin);
    filer->writeHardOwnershipId(contents_->end);
    const bool withErased = filer->filerType() == AcDb::kIdXlateFiler;
    std::vector<AcDbObjectId> present;
    for (const AcDbObjectId id : contents_->entities) {
        if (withErased || !id.isErased()) present.push_back(id);
    }
    filer->writeUInt32(static_cast<uint32_t>(present.size()));
    for (const AcDbObjectId id : present)
        filer->writeHardOwnershipId(id);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    filer->readPoint3d(&origin_);
    filer->readString(contents_->comments);
    filer->readString(contents_->path);
    filer->readHardPointerId(&layout_);
    filer->readInt16(&units_);
    filer->readBool(&explodable_);
    filer->readBool(&scaleUniformly_);
    sg::model::readBytes(filer, contents_->preview);
    if (isFiledAlone(*filer)) return filer->filerStatus();
    filer->readHardOwnershipId(&contents_->begin);
    filer->readHardOwnershipId(&contents_->end);
    uint32_t count = 0;
    filer->readUInt32(&count);
    std::vector<AcDbObjectId> ids;
    while (count-- > 0 && filer->filerStatus() == Acad::eOk) {
        AcDbHardOwnershipId id;
        filer->readHardOwnershipId(&id);
        if (!id.isNull()) ids.push_back(id);
    }
    contents_->assign(std::move(ids));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbBlockTableRecord");
    filer->writeString(2, name());
    filer->writeObjectId(340, layout_);
    filer->writeInt16(70, units_);
    filer->writeInt8(280, explodable_ ? 1 : 0);
    return filer->writeInt8(281, scaleUniformly_ ? 1 : 0);
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbBlockTableRecord")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                sg::model::ObjectAccess::setName(*this, fields.text());
                break;
            case 340:
                layout_ = fields.objectId();
                break;
            case 70:
                units_ = static_cast<int16_t>(fields.integer());
                break;
            case 280:
                explodable_ = fields.flag();
                break;
            case 281:
                scaleUniformly_ = fields.flag();
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

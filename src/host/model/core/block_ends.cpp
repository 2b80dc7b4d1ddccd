#include "host/model/core/block_ends.h"

#include "host/model/core/block_contents.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/filing.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockBegin, AcDbEntity, 0, 0, L"BLOCK", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockEnd, AcDbEntity, 0, 0, L"ENDBLK", nullptr)

using sg::model::FieldReader;
using sg::model::ObjectAccess;

namespace {

int16_t blockFlags(const AcDbBlockTableRecord& block) {
    if (block.isLayout()) return 0;
    int flags = ObjectAccess::standardFlags(block) & ~3;
    if (block.isAnonymous()) flags |= 1;
    if (block.hasAttributeDefinitions()) flags |= 2;
    return static_cast<int16_t>(flags);
}

// As a drawing file has the block.
void writeFiled(AcDbDxfFiler& filer, const AcDbBlockTableRecord& block) {
    filer.writeString(2, block.name());
    filer.writeInt16(70, blockFlags(block));
    filer.writePoint3d(10, block.origin());
    filer.writeString(3, block.name());
    filer.writeString(1, ObjectAccess::contents(block).path);
}

// As entget has it, with the first entity.
void writeListed(AcDbDxfFiler& filer, const AcDbBlockTableRecord& block) {
    filer.writeInt16(70, blockFlags(block));
    filer.writePoint3d(10, block.origin());
    const AcDbObjectId first = sg::model::entityAfter(block, AcDbObjectId());
    if (!first.isNull()) filer.writeObjectId(-2, first);
    filer.writeString(2, block.name());
    filer.writeString(1, ObjectAccess::contents(block).path);
}

}  // namespace

Acad::ErrorStatus AcDbBlockBegin::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbBlockBegin");
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, ownerId(), AcDb::kForRead) != Acad::eOk) return filer->filerStatus();
    if (filer->filerType() == AcDb::kBagFiler) {
        writeListed(*filer, *block);
    } else {
        writeFiled(*filer, *block);
    }
    if (!block->comments().empty()) filer->writeString(4, block->comments());
    block->close();
    return filer->filerStatus();
}

// Base point, comments and path go on to the block.
Acad::ErrorStatus AcDbBlockBegin::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbBlockBegin")) return status;
    AcDbBlockTableRecord* block = nullptr;
    acdbOpenObject(block, ownerId(), AcDb::kForWrite);
    FieldReader fields(filer);
    while (fields.next()) {
        if (block == nullptr) continue;
        switch (fields.code()) {
            case 10:
                block->setOrigin(fields.point());
                break;
            case 1:
                ObjectAccess::contents(*block).path = fields.text();
                break;
            case 4:
                block->setComments(fields.text().c_str());
                break;
            default:
                break;
        }
    }
    if (block != nullptr) block->close();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockEnd::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    return filer->writeString(100, L"AcDbBlockEnd");
}

Acad::ErrorStatus AcDbBlockEnd::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    filer->atSubclassData(L"AcDbBlockEnd");
    return filer->filerStatus();
}

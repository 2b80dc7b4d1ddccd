#include "host/model/sample_entity.h"

#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"
#include "platform/gi/draw.h"

ACRX_DXF_DEFINE_MEMBERS(SampleEntity, AcDbEntity, 1,
                        sg::model::kProxyEraseAllowed | sg::model::kProxyTransformAllowed |
                            sg::model::kProxyLayerChangeAllowed | sg::model::kProxyCloningAllowed,
                        L"SAMPLE", L"Samples")

void SampleEntity::setAt(const AcGePoint3d& at) {
    assertWriteEnabled();
    at_ = at;
}
void SampleEntity::setHard(AcDbObjectId id) {
    assertWriteEnabled();
    hard_ = id;
}
void SampleEntity::setSoft(AcDbObjectId id) {
    assertWriteEnabled();
    soft_ = id;
}

AcDbObjectId SampleEntity::addOwned() {
    assertWriteEnabled();
    auto* const part = new SampleEntity;
    AcDbObjectId id;
    EXPECT_EQ(database()->addAcDbObject(id, part), Acad::eOk);
    part->setOwnerId(objectId());
    part->close();
    owned_ = id;
    return id;
}

Acad::ErrorStatus SampleEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writePoint3d(at_);
    filer->writeHardPointerId(hard_);
    filer->writeSoftPointerId(soft_);
    return filer->writeHardOwnershipId(owned_);
}

Acad::ErrorStatus SampleEntity::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    if (asksForProxy && filer->filerType() != AcDb::kUndoFiler) return Acad::eMakeMeProxy;
    filer->readPoint3d(&at_);
    filer->readHardPointerId(&hard_);
    filer->readSoftPointerId(&soft_);
    return filer->readHardOwnershipId(&owned_);
}

Acad::ErrorStatus SampleEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"SampleEntity");
    filer->writePoint3d(10, at_);
    return filer->writeObjectId(340, hard_);
}

Acad::ErrorStatus SampleEntity::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"SampleEntity")) return status;
    sg::model::FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) at_ = fields.point();
        if (fields.code() == 340) hard_ = fields.objectId();
    }
    return filer->filerStatus();
}

Acad::ErrorStatus SampleEntity::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    at_.transformBy(transform);
    return Acad::eOk;
}

bool SampleEntity::subWorldDraw(AcGiWorldDraw* draw) {
    draw->geometry().circle(at_, 1, AcGeVector3d::kZAxis);
    return true;
}

#include "host/model/core/measuring_draw.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "platform/ed/command_line.h"
#include "platform/gi/draw.h"

// Geometry of an entity whose class says nothing of it.

Acad::ErrorStatus AcDbEntity::getPlane(AcGePlane&, AcDb::Planarity&) const {
    return Acad::eNotApplicable;
}

void AcDbEntity::getEcs(AcGeMatrix3d& matrix) const {
    matrix.setToIdentity();
}

Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d&) {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                    AcDbEntity*& copy) const {
    copy = nullptr;
    std::unique_ptr<AcRxObject> made(clone());
    AcDbEntity* const entity = AcDbEntity::cast(made.get());
    if (entity == nullptr) return Acad::eNotApplicable;
    const Acad::ErrorStatus status = entity->transformBy(transform);
    if (status != Acad::eOk) return status;
    made.release();
    copy = entity;
    return Acad::eOk;
}

// Drawing changes nothing in an entity, though it is no const operation.
Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents& extents) const {
    sg::model::MeasuringDraw draw;
    const_cast<AcDbEntity*>(this)->worldDraw(&draw);
    if (draw.extents().isEmpty()) return Acad::eInvalidExtents;
    extents.addExt(draw.extents());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&,
                                               AcDbIntArray&) const {
    return Acad::eOk;
}

// The offset is in the world, and the whole entity moves.
Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    if (indices.isEmpty()) return Acad::eOk;
    return transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbEntity::subGetStretchPoints(AcGePoint3dArray& points) const {
    AcDbIntArray modes, ids;
    return getGripPoints(points, modes, ids);
}

Acad::ErrorStatus AcDbEntity::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    return moveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, int64_t, const AcGePoint3d&,
                                                const AcGePoint3d&, const AcGeMatrix3d&,
                                                AcGePoint3dArray&, AcDbIntArray&) const {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity*, AcDb::Intersect,
                                               AcGePoint3dArray&, int64_t, int64_t) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity*, AcDb::Intersect, const AcGePlane&,
                                               AcGePoint3dArray&, int64_t, int64_t) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subExplode(AcDbVoidPtrArray&) const {
    return Acad::eNotApplicable;
}

uint32_t AcDbEntity::subSetAttributes(AcGiDrawableTraits*) {
    return 0;
}

// As the LIST command prints it: the class's name, layer, space and handle.
void AcDbEntity::subList() const {
    const AcRxClass* const descriptor = isA();
    const wchar_t* const kind =
        *descriptor->dxfName() != L'\0' ? descriptor->dxfName() : descriptor->name();
    acutPrintf(L"\n%18ls  Layer: \"%ls\"", kind, layer().c_str());
    if (AcDbDatabase* const owner = database()) {
        const bool isModel = blockId() == owner->modelSpaceId();
        const bool isPaper = blockId() == owner->paperSpaceId();
        if (isModel || isPaper) {
            acutPrintf(L"\n%28lsSpace: %ls space", L"", isModel ? L"Model" : L"Paper");
        }
        acutPrintf(L"\n%28lsHandle = %ls", L"", objectId().handle().text().c_str());
    }
    acutPrintf(L"\n");
}

#include "leader/qn_leader.h"

#include "platform/db/line.h"
#include "platform/ed/command_line.h"
#include "platform/gi/draw.h"

bool QNLeader::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    AcGiGeometry& geometry = draw->geometry();
    const AcGePoint3d first[] = {startPoint_, middlePoint_};
    geometry.polyline(2, first, nullptr, -1);
    const AcGePoint3d second[] = {middlePoint_, shortenedEndPoint()};
    geometry.polyline(2, second, nullptr, -1);
    // The symbol is drawn in the leader's layer, and what comes after it in the leader's colour.
    AcGiSubEntityTraits& traits = draw->subEntityTraits();
    const uint16_t color = traits.color();
    traits.setLayer(layerId());
    const bool result = geometry.draw(&blockReference_);
    traits.setColor(color);
    return result;
}

uint32_t QNLeader::subViewportDrawLogicalFlags(AcGiViewportDraw*) {
    assertReadEnabled();
    return 0;
}

void QNLeader::subList() const {
    assertReadEnabled();
    AcDbEntity::subList();
    const auto print = [](const wchar_t* format, const AcGePoint3d& point) {
        acutPrintf(format, point.x, point.y, point.z);
    };
    print(L"                   Starting point = %f, %f, %f\n", startPoint_);
    print(L"                   Middle point = %f, %f, %f\n", middlePoint_);
    print(L"                   End point = %f, %f, %f\n", endPoint_);
    acutPrintf(L"\n\n");
    blockReference_.list();
}

Acad::ErrorStatus QNLeader::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    return subGetStretchPoints(points);
}

Acad::ErrorStatus QNLeader::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    assertWriteEnabled(true, true);
    return moveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus QNLeader::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(startPoint_);
    points.append(middlePoint_);
    points.append(endPoint_);
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled(true, true);
    AcGePoint3d* const points[] = {&startPoint_, &middlePoint_, &endPoint_};
    bool moves[3] = {};
    for (const int index : indices) {
        if (index >= 0 && index < 3) moves[index] = true;
    }
    for (int i = 0; i < 3; ++i) {
        if (moves[i]) *points[i] += offset;
    }
    updateBlockPosition();
    return Acad::eOk;
}

// The symbol keeps its size, and is turned but never mirrored.
Acad::ErrorStatus QNLeader::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled(true, true);
    startPoint_.transformBy(transform);
    middlePoint_.transformBy(transform);
    endPoint_.transformBy(transform);
    updateBlockPosition();
    return Acad::eOk;
}

template <class Call>
Acad::ErrorStatus QNLeader::onEachPart(const Call& call) const {
    assertReadEnabled();
    const AcDbLine first(startPoint_, middlePoint_);
    const AcDbLine second(middlePoint_, shortenedEndPoint());
    for (const AcDbEntity* part :
         {static_cast<const AcDbEntity*>(&first), static_cast<const AcDbEntity*>(&second),
          static_cast<const AcDbEntity*>(&blockReference_)}) {
        if (const Acad::ErrorStatus status = call(*part); status != Acad::eOk) return status;
    }
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                              const AcGePoint3d& pick, const AcGePoint3d& last,
                                              const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                              AcDbIntArray& geomIds) const {
    return onEachPart([&](const AcDbEntity& part) {
        return part.getOsnapPoints(mode, marker, pick, last, view, points, geomIds);
    });
}

Acad::ErrorStatus QNLeader::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                             AcGePoint3dArray& points, int64_t thisMarker,
                                             int64_t otherMarker) const {
    return onEachPart([&](const AcDbEntity& part) {
        return part.intersectWith(other, mode, points, thisMarker, otherMarker);
    });
}

Acad::ErrorStatus QNLeader::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                             const AcGePlane& projection, AcGePoint3dArray& points,
                                             int64_t thisMarker, int64_t otherMarker) const {
    return onEachPart([&](const AcDbEntity& part) {
        return part.intersectWith(other, mode, projection, points, thisMarker, otherMarker);
    });
}

Acad::ErrorStatus QNLeader::subGetGeomExtents(AcDbExtents& extents) const {
    return onEachPart([&](const AcDbEntity& part) { return part.getGeomExtents(extents); });
}

// The symbol goes as the entities of its block, the lines without properties of their own.
Acad::ErrorStatus QNLeader::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    entities.append(new AcDbLine(startPoint_, middlePoint_));
    entities.append(new AcDbLine(middlePoint_, shortenedEndPoint()));
    return blockReference_.explode(entities);
}

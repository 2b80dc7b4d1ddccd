#pragma once

#include "platform/db/entity.h"

// A point in the drawing.
class SG_API AcDbPoint : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPoint)
    AcDbPoint();
    explicit AcDbPoint(const AcGePoint3d& position);
    ~AcDbPoint() override;

    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    double ecsRotation() const { return rotation_; }          // of its mark, in its plane
    Acad::ErrorStatus setEcsRotation(double rotation);

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    // One grip, one stretch point, and node for object snaps.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    // It meets a curve that goes through it.
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       AcGePoint3dArray& points, int64_t thisMarker,
                                       int64_t otherMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       const AcGePlane& projection, AcGePoint3dArray& points,
                                       int64_t thisMarker, int64_t otherMarker) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    void subList() const override;

  private:
    AcGePoint3d position_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
    double rotation_ = 0;
};

#pragma once

#include <array>

#include "platform/db/entity.h"

// A face with three or four corners in space; the last two are one in a triangle.
class SG_API AcDbFace : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbFace)
    AcDbFace();
    AcDbFace(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& p2,
             const AcGePoint3d& p3, bool e0Visible = true, bool e1Visible = true,
             bool e2Visible = true, bool e3Visible = true);
    ~AcDbFace() override;

    // Corner or edge 0 to 3; edge i runs from corner i to the next. eInvalidIndex.
    Acad::ErrorStatus getVertexAt(uint16_t index, AcGePoint3d& point) const;
    Acad::ErrorStatus setVertexAt(uint16_t index, const AcGePoint3d& point);
    Acad::ErrorStatus isEdgeVisibleAt(uint16_t index, bool& visible) const;
    Acad::ErrorStatus makeEdgeVisibleAt(uint16_t index);
    Acad::ErrorStatus makeEdgeInvisibleAt(uint16_t index);

    bool isPlanar() const override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    void subList() const override;

  private:
    std::array<AcGePoint3d, 4> corners_;
    uint8_t invisible_ = 0;  // a bit an edge
};

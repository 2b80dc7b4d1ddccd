#pragma once

#include <array>

#include "platform/db/entity.h"

// A filled area in a plane with three or four corners; the third and the fourth lie across from
// each other, so that they go round as first, second, fourth, third.
class SG_API AcDbSolid : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSolid)
    AcDbSolid();
    AcDbSolid(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& p2,
              const AcGePoint3d& p3);
    ~AcDbSolid() override;

    // In world coordinates; eInvalidIndex.
    Acad::ErrorStatus getPointAt(uint16_t index, AcGePoint3d& point) const;
    Acad::ErrorStatus setPointAt(uint16_t index, const AcGePoint3d& point);
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    virtual const wchar_t* marker() const { return L"AcDbTrace"; }

    bool subWorldDraw(AcGiWorldDraw* draw) override;
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
    std::array<AcGePoint3d, 4> corners_;  // in world coordinates
    double thickness_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
};

// A broad line of the older kind: a solid of four corners.
class SG_API AcDbTrace : public AcDbSolid {
  public:
    ACRX_DECLARE_MEMBERS(AcDbTrace)
    AcDbTrace();
    ~AcDbTrace() override;
};

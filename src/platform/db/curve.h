#pragma once

#include "platform/db/entity.h"

namespace sg::model {
struct CurveAccess;
struct CurveShape;
}  // namespace sg::model

// A curve: points at parameters from the start to the end.
//
// Lengths along it are measured from its start in drawing units. Points that are asked about lie on
// the curve within 1e-6 of its size, else eInvalidInput; so are parameters and distances that lie
// outside. A closed curve's end is its start again; an infinite one has no start, end or length
// (eInvalidInput).
class SG_API AcDbCurve : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbCurve)
    ~AcDbCurve() override;

    virtual bool isClosed() const;  // the base versions answer false
    virtual bool isPeriodic() const;
    virtual Acad::ErrorStatus getStartParam(double& parameter) const;
    virtual Acad::ErrorStatus getEndParam(double& parameter) const;
    virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const;
    virtual Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const;
    virtual Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const;
    virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& distance) const;
    virtual Acad::ErrorStatus getPointAtDist(double distance, AcGePoint3d& point) const;
    // With respect to the parameter. At a point where two pieces meet, that of the later one.
    virtual Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const;
    virtual Acad::ErrorStatus getFirstDeriv(const AcGePoint3d& point,
                                            AcGeVector3d& derivative) const;
    virtual Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const;
    virtual Acad::ErrorStatus getSecondDeriv(const AcGePoint3d& point,
                                             AcGeVector3d& derivative) const;
    // The nearest point of the curve; extended, of the line or circle that it is a part of.
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                bool extend = false) const;
    // The same as seen along a direction: nearest after projection on the plane that the direction
    // is the normal of; the answer lies on the curve.
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given,
                                                const AcGeVector3d& direction, AcGePoint3d& closest,
                                                bool extend = false) const;
    virtual Acad::ErrorStatus getArea(double& area) const;  // of a planar curve, its ends joined
    // Turns the direction of the curve round.
    virtual Acad::ErrorStatus reverseCurve();

    // New curves, which the caller owns. A positive distance lies to the outside of an arc or
    // closed curve that runs counter-clockwise, and to the right of a line.
    virtual Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const;
    // New curves: the pieces between these parameters, in rising order.
    virtual Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                             AcDbVoidPtrArray& pieces) const;
    // Moves the start or the end to the point at the parameter.
    virtual Acad::ErrorStatus extend(double parameter);

    bool isPlanar() const override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;

  protected:
    AcDbCurve();

    template <class Value>
    Acad::ErrorStatus assign(Value& member, const Value& value) {
        assertWriteEnabled();
        member = value;
        return Acad::eOk;
    }

    // What the host's own classes answer all of the above by: the pieces of the curve, and a new
    // curve, which the caller owns, of the points between two parameters, from < to; on a periodic
    // curve `to` may lie past the end. A class that answers everything itself has neither: the base
    // versions answer false and null, and what rests on them eNotImplementedYet.
    virtual bool subShape(sg::model::CurveShape& shape) const;
    virtual AcDbCurve* subPart(double from, double to) const;

    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       AcGePoint3dArray& points, int64_t thisMarker,
                                       int64_t otherMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       const AcGePlane& projection, AcGePoint3dArray& points,
                                       int64_t thisMarker, int64_t otherMarker) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;

  private:
    friend struct sg::model::CurveAccess;
};

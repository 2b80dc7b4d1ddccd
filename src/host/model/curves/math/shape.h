#pragma once

#include <vector>

#include "host/model/curves/math/piece.h"
#include "platform/db/entity.h"

namespace sg::model {

// A piece of a curve and the parameters of the whole curve that it covers, evenly.
class Span {
  public:
    Piece piece;
    double from = 0;
    double to = 0;

    // Its own parameters are the curve's.
    explicit Span(Piece p) : piece(std::move(p)), from(piece.first), to(piece.last) {}
    // A bounded piece over parameters of the curve.
    Span(Piece p, double start, double end);

    double rate() const { return rate_; }  // change of the piece's parameter per one of the curve's
    double toPiece(double parameter) const;
    double toCurve(double t) const;
    void extend(bool backward, bool forward);  // as Piece::extended

  private:
    // The even map between the parameters goes through these.
    double anchor_ = 0;
    double anchorInPiece_ = 0;
    double rate_ = 1;  // 0 for a piece that is a point
};

// What a curve entity looks like: the pieces from its start to its end, each beginning where the
// one before ends. All measuring of curves is done on it, in one way for all classes.
//
// Without spans there is nothing to ask. Parameters are those of the entity.
struct CurveShape {
    std::vector<Span> spans;
    bool closed = false;
    bool periodic = false;  // closed, and a parameter means the same a period further on
    AcDb::Planarity planarity = AcDb::kPlanar;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double thickness = 0;  // along the normal

    double startParam() const { return spans.front().from; }
    double endParam() const { return spans.back().to; }
    bool isBounded() const;
    // The tolerance for "on the curve": a millionth of its size.
    double tolerance() const;

    // The span of a parameter, of two the later one. False when it lies outside by more than
    // rounding, else it is moved inside.
    bool locate(double& parameter, size_t& span) const;
    Nurbs::Values values(const Span& span, double parameter) const;
    double length() const;
    double lengthTo(double parameter, size_t span) const;
    // False when the distance lies outside.
    bool paramAtLength(double distance, double& parameter) const;

    struct Nearest {
        size_t span = 0;
        double t = 0;  // of the piece
        double parameter = 0;
        AcGePoint3d point;
    };
    Nearest closest(const AcGePoint3d& point) const;
    // As seen along a direction (a unit vector).
    Nearest closestAlong(const AcGePoint3d& point, const AcGeVector3d& direction) const;
    // False when the point is not on the curve.
    bool paramAtPoint(const AcGePoint3d& point, double& parameter) const;

    // The first and the last piece going on backward and forward, or both ways when there is one.
    CurveShape extended() const;
    AcDbExtents extents() const;      // of a bounded shape, the thickness included
    AcGeVector3d areaVector() const;  // its ends joined; along the normal, as long as the area

    // Fills in planarity and normal from where the points lie.
    void findPlane();
};

}  // namespace sg::model

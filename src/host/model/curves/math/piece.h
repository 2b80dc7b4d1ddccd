#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/model/curves/math/nurbs.h"
#include "platform/db/extents.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace sg::model {

// One smooth stretch of a curve: its points p(t) for t from `first` to `last`.
//
//   line    p(t) = origin + t u; without end where a bound is infinite
//   conic   p(t) = origin + cos(t) u + sin(t) v; not more than one turn
//   spline  the B-spline's own parameter
//
// The u and v of a conic may have any lengths and any angle between them: seen along a direction, a
// conic is such a conic again, down to a flat one.
struct Piece {
    enum class Kind : uint8_t { Line, Conic, Spline };

    Kind kind = Kind::Line;
    AcGePoint3d origin;
    AcGeVector3d u, v;
    std::shared_ptr<const Nurbs> spline;
    std::shared_ptr<const std::vector<double>> splineSamples;
    double first = 0;
    double last = 0;

    static Piece line(const AcGePoint3d& from, const AcGePoint3d& to);  // t from 0 to 1
    static Piece line(const AcGePoint3d& origin, const AcGeVector3d& direction, double first,
                      double last);
    static Piece conic(const AcGePoint3d& center, const AcGeVector3d& u, const AcGeVector3d& v,
                       double first, double last);
    static Piece nurbs(Nurbs curve);

    bool isBounded() const;
    // A conic of which u and v are at right angles and equally long.
    bool isCircular() const;
    double radius() const { return u.length(); }             // of a circular one
    AcGeVector3d axis() const { return u.crossProduct(v); }  // of a conic: the normal, not unit

    Nurbs::Values values(double t) const;
    AcGePoint3d at(double t) const;
    AcGePoint3d start() const { return at(first); }
    AcGePoint3d end() const { return at(last); }
    AcGeVector3d derivative(double t) const { return values(t).first; }

    // From `from` to `to`, negative when `to` is before it.
    double length(double from, double to) const;
    // The parameter at this distance, which may be negative, from `from` along the piece or its
    // continuation.
    double paramAtLength(double from, double distance) const;
    // Of the parameters where the piece is nearest, the first; on the axis of a circle all are.
    double closest(const AcGePoint3d& point) const;
    // Appends the parameters where the line from `point` meets the piece at a right angle.
    void appendFeet(const AcGePoint3d& point, std::vector<double>& parameters) const;

    // Appends the parameters where a line from `point`, seen along the normal of the piece's plane,
    // touches the piece. Lines have none.
    void appendTangents(const AcGePoint3d& point, const AcGeVector3d& normal,
                        std::vector<double>& parameters) const;

    void addExtents(AcDbExtents& extents) const;  // of a bounded piece
    // Half the integral of (p - base) x dp: the area that the chord from the base sweeps, as a
    // vector along its normal.
    AcGeVector3d sweptArea(const AcGePoint3d& base, double from, double to) const;

    Piece transformed(const AcGeMatrix3d& transform) const;
    // Its picture on the plane through the origin, seen along the plane's normal (a unit vector),
    // at the same parameters.
    Piece projected(const AcGeVector3d& normal) const;
    // The line or conic of which it is a part; `backward` and `forward` say at which ends it goes
    // on. Splines stay as they are.
    Piece extended(bool backward, bool forward) const;

    // Parameters from first to last between which a bounded piece is simple: it turns by no more
    // than an eighth of a turn, and a spline changes its speed by no more than a factor of two,
    // unless it has a cusp there.
    std::vector<double> samples() const;

  private:
    // Appends the parameters between neighbouring samples where `f`, a callable of t, crosses zero.
    template <class Function>
    void appendRoots(const Function& f, std::vector<double>& roots) const;
};

// True for a conic that ends where it starts.
bool isWholeTurn(const Piece& piece);

}  // namespace sg::model

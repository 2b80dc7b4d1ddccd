#pragma once

#include <cstdint>
#include <vector>

#include "host/model/curves/math/piece.h"
#include "host/model/curves/planar.h"
#include "platform/db/filers.h"
#include "platform/ge/point2d.h"
#include "platform/ge/vector2d.h"

namespace sg::model {

// A hatch's boundary, in the coordinates of the hatch's plane.

// One edge of a loop that is given edge by edge.
struct HatchEdge {
    enum class Kind : int16_t { Line = 1, Arc = 2, Ellipse = 3, Spline = 4 };

    Kind kind = Kind::Line;
    AcGePoint2d start, end;  // of a line

    // An arc of a circle or an ellipse runs from `first` to `last`, parameters that grow in its own
    // direction: of a clockwise one they are measured clockwise. An end that is not behind the
    // start is a turn further on. The circle's major axis lies along x.
    AcGePoint2d center;
    AcGeVector2d major;
    double ratio = 1;  // of the minor axis to the major one
    double first = 0;
    double last = 0;
    bool counterClockwise = true;

    Nurbs spline;
    bool periodic = false;
    std::vector<AcGePoint2d> fitPoints;
    AcGeVector2d startTangent, endTangent;

    // False for a spline whose data makes no curve, and where a number is none.
    bool isValid() const;
    Piece piece() const;
    // The change is one of the plane at this elevation, and does not flatten it.
    void transform(const PlanarTransform& change, double elevation);
};

struct HatchLoop {
    enum Type : int32_t {
        kExternal = 1,
        kPolyline = 2,
        kDerived = 4,
        kTextBox = 8,
        kOutermost = 16,
    };
    struct Vertex {
        AcGePoint2d point;
        double bulge = 0;
    };

    int32_t type = 0;
    // Of a polyline.
    bool closed = true;
    std::vector<Vertex> vertices;
    // Of any other.
    std::vector<HatchEdge> edges;
    // What the loop was made from.
    std::vector<AcDbSoftPointerId> sources;

    bool isPolyline() const { return (type & kPolyline) != 0; }
    bool hasBulges() const;
    // The closed chain, at height 0; the gap of an open loop is closed by a line.
    std::vector<Piece> pieces() const;
    void transform(const PlanarTransform& change, double elevation);

    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    // As DWG files have it; reading fills a new loop.
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);
    // Angles are radians; a file's filer makes degrees of them.
    void dxfOut(AcDbDxfFiler* filer) const;
};

// A point of the plane as a group: with a third coordinate for programs, without one in files.
void writePlanePoint(AcDbDxfFiler* filer, int code, const AcGePoint2d& point);

// Ends of elliptic arcs: drawing files have the angle from the major axis to the point, and this
// program the parameter; whole turns are kept.
double angleOfParameter(double parameter, double ratio);
double parameterOfAngle(double angle, double ratio);

}  // namespace sg::model

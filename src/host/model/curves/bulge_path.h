#pragma once

#include <vector>

#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "platform/db/polyline.h"
#include "platform/gi/draw.h"

namespace sg::model {

// Straight segments and arcs in a plane, the form of light and of 2D polylines.
struct BulgePath {
    std::vector<BulgeVertex> vertices;
    bool closed = false;
    double elevation = 0;
    double thickness = 0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    size_t segments() const;
    // The piece from a vertex to the next, in the coordinates of the plane at elevation 0, and in
    // the world.
    Piece segmentInPlane(size_t index) const;
    Piece segment(size_t index) const;
    // False when there is no vertex. One vertex alone is a segment without length.
    bool addTo(CurveShape& shape) const;
    AcGePoint3d worldPoint(const AcGePoint2d& point) const;

    // The path between two parameters (vertex index and fraction); open.
    BulgePath part(double from, double to) const;
    BulgePath reversed() const;
    // By a transform that keeps arcs.
    void transformBy(const PlanarTransform& change);

    bool hasWidth() const;
    void addExtents(AcDbExtents& extents) const;  // with widths and thickness
    // The outline of each segment that has width, mitred where segments meet; chords stand off
    // arcs by no more than `deviation`.
    std::vector<std::vector<AcGePoint3d>> outlines(double deviation) const;
    // Fills the outlines; a path without width draws nothing.
    void drawWide(AcGiWorldDraw* draw) const;
    // Lines and arcs, new entities that the caller owns.
    void explode(AcDbVoidPtrArray& entities) const;
    // The paths at a distance, above 0 to the right; see AcDbPolyline::getOffsetCurves.
    std::vector<BulgePath> offset(double distance) const;
};

// The bulge of the arc from `start` to `end` over `middle`; 0 when they lie on a line.
double bulgeThrough(const AcGePoint2d& start, const AcGePoint2d& middle, const AcGePoint2d& end);
// The bulge of the arc from `start` to `end` that leaves in the direction.
double bulgeLeaving(const AcGePoint2d& start, const AcGeVector2d& direction,
                    const AcGePoint2d& end);

}  // namespace sg::model

#include "companion/kernel/bodies.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <BRep_Builder.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <GProp_GProps.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>
#include <algorithm>
#include <gp_Pln.hxx>
#include <numbers>

#include "companion/kernel/stitching.h"

namespace sg::companion {
namespace {

constexpr double kTolerance = 1e-7;
constexpr double kFullTurn = 2 * std::numbers::pi * (1 - 1e-12);

gp_Pnt point(const AcGePoint3d& p) {
    return {p.x, p.y, p.z};
}
gp_Vec vector(const AcGeVector3d& v) {
    return {v.x, v.y, v.z};
}

// Square to the outline; from where that points to, the outline is counter-clockwise.
AcGeVector3d normalOf(const Outline& outline) {
    AcGeVector3d normal;
    const AcGePoint3d& origin = outline.front().from;
    for (size_t i = 0; i < outline.size(); ++i) {
        const AcGePoint3d& next = outline[(i + 1) % outline.size()].from;
        const AcGePoint3d& middle = outline[i].isArc ? outline[i].via : next;
        normal += (outline[i].from - origin).crossProduct(middle - origin);
        normal += (middle - origin).crossProduct(next - origin);
    }
    return normal;
}

TopoDS_Wire wireOf(const Outline& outline) {
    BRep_Builder builder;
    std::vector<TopoDS_Vertex> corners(outline.size());
    for (size_t i = 0; i < outline.size(); ++i)
        builder.MakeVertex(corners[i], point(outline[i].from), kTolerance);
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    for (size_t i = 0; i < outline.size(); ++i) {
        const size_t next = (i + 1) % outline.size();
        if (!outline[i].isArc) {
            builder.Add(wire, BRepBuilderAPI_MakeEdge(corners[i], corners[next]).Edge());
            continue;
        }
        const Handle(Geom_TrimmedCurve) arc =
            GC_MakeArcOfCircle(point(outline[i].from), point(outline[i].via),
                               point(outline[next].from))
                .Value();
        builder.Add(wire, BRepBuilderAPI_MakeEdge(arc, corners[i], corners[next]).Edge());
    }
    wire.Closed(true);
    return wire;
}

// The area within the first outline and outside the others, which all run the same way round,
// facing where `ahead` points.
TopoDS_Face faceOf(const std::vector<Outline>& outlines, const AcGeVector3d& ahead) {
    AcGeVector3d normal = normalOf(outlines.front());
    const bool isTurned = normal.dotProduct(ahead) < 0;
    if (isTurned) normal = -normal;
    const gp_Pln plane(point(outlines.front().front().from), gp_Dir(vector(normal)));
    const auto oriented = [&](const Outline& outline, bool isHole) {
        TopoDS_Wire wire = wireOf(outline);
        if (isHole != isTurned) wire.Reverse();
        return wire;
    };
    BRepBuilderAPI_MakeFace face(plane, oriented(outlines.front(), false), false);
    for (size_t i = 1; i < outlines.size(); ++i)
        face.Add(oriented(outlines[i], true));
    return face.Face();
}

AcGePoint3d middleOf(const Outline& outline) {
    AcGeVector3d sum;
    for (const Segment& segment : outline)
        sum += segment.from.asVector();
    return AcGePoint3d::kOrigin + sum / static_cast<double>(outline.size());
}

struct Maker {
    TopoDS_Shape operator()(const Extrusion& body) const {
        const TopoDS_Face face = faceOf(body.outlines, body.along);
        return BRepPrimAPI_MakePrism(face, vector(body.along)).Shape();
    }
    TopoDS_Shape operator()(const Revolution& body) const {
        const AcGeVector3d ahead =
            body.axis.crossProduct(middleOf(body.outlines.front()) - body.center);
        const TopoDS_Face face = faceOf(body.outlines, ahead);
        const gp_Ax1 axis(point(body.center), gp_Dir(vector(body.axis)));
        if (body.angle >= kFullTurn) return BRepPrimAPI_MakeRevol(face, axis).Shape();
        return BRepPrimAPI_MakeRevol(face, axis, body.angle).Shape();
    }
    TopoDS_Shape operator()(const Patchwork& body) const { return stitched(body); }
};

}  // namespace

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps properties;
    BRepGProp::VolumeProperties(shape, properties);
    return properties.Mass();
}

bool isSound(const TopoDS_Shape& solid) {
    return !solid.IsNull() && solid.ShapeType() == TopAbs_SOLID && volumeOf(solid) > 0 &&
           BRepCheck_Analyzer(solid).IsValid();
}

TopoDS_Shape solidOf(const Body& body) {
    return std::visit(Maker(), body);
}

}  // namespace sg::companion

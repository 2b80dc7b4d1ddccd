#include "companion/kernel/stitching.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRep_Builder.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_BezierSurface.hxx>
#include <Geom_Plane.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>
#include <algorithm>
#include <cmath>
#include <deque>
#include <numbers>

namespace sg::companion {
namespace {

constexpr double kTolerance = 1e-7;  // of the library's edges and faces
constexpr double kNowhere = 1e-8;    // points that are nearer are one, in parts of the coordinates
constexpr double kArcWeight = std::numbers::sqrt2 / 2;

gp_Pnt point(const AcGePoint3d& p) {
    return {p.x, p.y, p.z};
}

bool isNear(const AcGePoint3d& a, const AcGePoint3d& b) {
    const double size = 1 + std::max({std::abs(a.x), std::abs(a.y), std::abs(a.z)});
    return a.distanceTo(b) <= kNowhere * size;
}

struct Corner {
    AcGePoint3d place;
    TopoDS_Vertex vertex;
};

struct Seam {
    size_t start = 0, end = 0;  // corners
    Curve curve;
    bool isOnPatch = false;  // then it runs from 0 to 1, as the patch does
    TopoDS_Edge edge;
    int forward = 0, backward = 0;  // faces that run along it, and against it
};

// A seam as a face runs along it.
struct Run {
    Seam* seam = nullptr;
    bool isForward = true;
};

class Stitcher {
  public:
    explicit Stitcher(const Patchwork& boundary) : boundary_(boundary) {}

    TopoDS_Shape solid() {
        markPatchSeams();
        builder_.MakeShell(shell_);
        for (const PlaneFace& face : boundary_.faces)
            addPlane(face);
        for (const Patch& patch : boundary_.patches)
            addPatch(patch);
        if (!isClosed()) return {};
        shell_.Closed(true);
        TopoDS_Solid solid;
        builder_.MakeSolid(solid);
        builder_.Add(solid, shell_);
        return solid;
    }

  private:
    static bool isPoint(const Curve& curve) { return isNear(curve.start(), curve.end()); }

    // ---- Corners and seams

    size_t cornerAt(const AcGePoint3d& place) {
        const auto found =
            std::find_if(corners_.begin(), corners_.end(),
                         [&](const Corner& corner) { return isNear(corner.place, place); });
        if (found != corners_.end()) return static_cast<size_t>(found - corners_.begin());
        Corner corner{place, {}};
        builder_.MakeVertex(corner.vertex, point(place), kTolerance);
        corners_.push_back(corner);
        return corners_.size() - 1;
    }

    Run runOf(const Curve& curve) {
        const size_t start = cornerAt(curve.start());
        const size_t end = cornerAt(curve.end());
        for (Seam& seam : seams_) {
            if (seam.curve.isArc != curve.isArc) continue;
            if (curve.isArc && !isNear(seam.curve.poles[1], curve.poles[1])) continue;
            if (seam.start == start && seam.end == end) return {&seam, true};
            if (seam.start == end && seam.end == start) return {&seam, false};
        }
        seams_.push_back({start, end, curve, curve.isArc, {}, 0, 0});
        return {&seams_.back(), true};
    }

    void markPatchSeams() {
        for (const Patch& patch : boundary_.patches) {
            for (const Curve& curve :
                 {patch.lower, patch.upper, Curve::line(patch.lower.start(), patch.upper.start()),
                  Curve::line(patch.lower.end(), patch.upper.end())}) {
                if (!isPoint(curve)) runOf(curve).seam->isOnPatch = true;
            }
        }
    }

    const TopoDS_Edge& edgeOf(Seam& seam) {
        if (!seam.edge.IsNull()) return seam.edge;
        const TopoDS_Vertex& start = corners_[seam.start].vertex;
        const TopoDS_Vertex& end = corners_[seam.end].vertex;
        if (!seam.isOnPatch) {
            seam.edge = BRepBuilderAPI_MakeEdge(start, end).Edge();
            return seam.edge;
        }
        builder_.MakeEdge(seam.edge, bezierOf(seam.curve), kTolerance);
        builder_.Add(seam.edge, start.Oriented(TopAbs_FORWARD));
        builder_.Add(seam.edge, end.Oriented(TopAbs_REVERSED));
        builder_.Range(seam.edge, 0, 1);
        return seam.edge;
    }

    static Handle(Geom_BezierCurve) bezierOf(const Curve& curve) {
        if (!curve.isArc) {
            TColgp_Array1OfPnt poles(1, 2);
            poles(1) = point(curve.start());
            poles(2) = point(curve.end());
            return new Geom_BezierCurve(poles);
        }
        TColgp_Array1OfPnt poles(1, 3);
        TColStd_Array1OfReal weights(1, 3);
        for (int i = 1; i <= 3; ++i) {
            poles(i) = point(curve.poles[static_cast<size_t>(i - 1)]);
            weights(i) = i == 2 ? kArcWeight : 1;
        }
        return new Geom_BezierCurve(poles, weights);
    }

    TopoDS_Edge take(const Run& run) {
        ++(run.isForward ? run.seam->forward : run.seam->backward);
        return TopoDS::Edge(
            edgeOf(*run.seam).Oriented(run.isForward ? TopAbs_FORWARD : TopAbs_REVERSED));
    }

    bool isClosed() const {
        return std::all_of(seams_.begin(), seams_.end(), [](const Seam& seam) {
            return seam.forward == 1 && seam.backward == 1;
        });
    }

    // ---- Faces

    void addFace(const Handle(Geom_Surface) & surface, TopoDS_Wire& wire) {
        TopoDS_Face face;
        builder_.MakeFace(face, surface, kTolerance);
        wire.Closed(true);
        builder_.Add(face, wire);
        builder_.Add(shell_, face);
    }

    void addPlane(const PlaneFace& curves) {
        AcGeVector3d normal;
        const AcGePoint3d& origin = curves.front().start();
        for (const Curve& curve : curves) {
            for (size_t i = 0; i < 2; ++i) {
                normal += (curve.poles[i] - origin).crossProduct(curve.poles[i + 1] - origin);
            }
        }
        const gp_Dir direction(normal.x, normal.y, normal.z);
        TopoDS_Wire wire;
        builder_.MakeWire(wire);
        for (const Curve& curve : curves) {
            if (!isPoint(curve)) builder_.Add(wire, take(runOf(curve)));
        }
        addFace(new Geom_Plane(point(origin), direction), wire);
    }

    static Handle(Geom_BezierSurface) surfaceOf(const Patch& patch) {
        const bool isCurved = patch.lower.isArc;
        const int count = isCurved ? 3 : 2;
        TColgp_Array2OfPnt poles(1, count, 1, 2);
        TColStd_Array2OfReal weights(1, count, 1, 2);
        weights.Init(1);
        for (int i = 1; i <= count; ++i) {
            const auto pole = static_cast<size_t>(isCurved ? i - 1 : 2 * (i - 1));
            poles(i, 1) = point(patch.lower.poles[pole]);
            poles(i, 2) = point(patch.upper.poles[pole]);
            if (!isCurved || i != 2) continue;
            weights(i, 1) = weights(i, 2) = kArcWeight;
        }
        if (!isCurved) return new Geom_BezierSurface(poles);
        return new Geom_BezierSurface(poles, weights);
    }

    // The place of an edge in a patch: from one place to another, as the face runs.
    void place(const Run& run, const Handle(Geom_Surface) & surface, const gp_Pnt2d& from,
               const gp_Pnt2d& to) {
        const gp_Pnt2d& start = run.isForward ? from : to;
        const gp_Dir2d along(gp_Vec2d(start, run.isForward ? to : from));
        builder_.UpdateEdge(edgeOf(*run.seam), new Geom2d_Line(start, along), surface,
                            TopLoc_Location(), kTolerance);
    }

    // The side of a patch that is a point.
    TopoDS_Edge tip(const AcGePoint3d& at, const Handle(Geom_Surface) & surface,
                    const gp_Pnt2d& from, const gp_Pnt2d& to) {
        const TopoDS_Vertex& vertex = corners_[cornerAt(at)].vertex;
        TopoDS_Edge edge;
        builder_.MakeEdge(edge);
        builder_.UpdateEdge(edge, new Geom2d_Line(from, gp_Dir2d(gp_Vec2d(from, to))), surface,
                            TopLoc_Location(), kTolerance);
        builder_.Add(edge, vertex.Oriented(TopAbs_FORWARD));
        builder_.Add(edge, vertex.Oriented(TopAbs_REVERSED));
        builder_.Range(edge, 0, 1);
        builder_.Degenerated(edge, true);
        return edge;
    }

    void addPatch(const Patch& patch) {
        const Handle(Geom_BezierSurface) surface = surfaceOf(patch);
        TopoDS_Wire wire;
        builder_.MakeWire(wire);
        const auto addSide = [&](const Curve& curve, const gp_Pnt2d& from, const gp_Pnt2d& to) {
            if (isPoint(curve)) {
                builder_.Add(wire, tip(curve.start(), surface, from, to));
                return;
            }
            const Run run = runOf(curve);
            place(run, surface, from, to);
            builder_.Add(wire, take(run));
        };
        addSide(patch.lower, {0, 0}, {1, 0});
        addSide(Curve::line(patch.lower.end(), patch.upper.end()), {1, 0}, {1, 1});
        addSide(patch.upper.reversed(), {1, 1}, {0, 1});
        addSide(Curve::line(patch.upper.start(), patch.lower.start()), {0, 1}, {0, 0});
        addFace(surface, wire);
    }

    const Patchwork& boundary_;
    BRep_Builder builder_;
    TopoDS_Shell shell_;
    std::deque<Corner> corners_;
    std::deque<Seam> seams_;
};

}  // namespace

TopoDS_Shape stitched(const Patchwork& boundary) {
    return Stitcher(boundary).solid();
}

}  // namespace sg::companion

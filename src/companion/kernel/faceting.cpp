#include "companion/kernel/faceting.h"

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_Plane.hxx>
#include <Poly_PolygonOnTriangulation.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <cmath>
#include <map>

#include "companion/facets.h"

namespace sg::companion {
namespace {

class Faceter {
  public:
    Faceter(const TopoDS_Shape& shape, double size, Polygons polygons, Facets& facets)
        : shape_(shape), grain_(1e-7 * size), polygons_(polygons), facets_(facets) {}

    bool run() {
        for (TopExp_Explorer face(shape_, TopAbs_FACE); face.More(); face.Next()) {
            if (!addFace(TopoDS::Face(face.Current()))) return false;
        }
        TopTools_IndexedDataMapOfShapeListOfShape edges;
        TopExp::MapShapesAndAncestors(shape_, TopAbs_EDGE, TopAbs_FACE, edges);
        for (int i = 1; i <= edges.Extent(); ++i)
            addEdge(TopoDS::Edge(edges.FindKey(i)), edges.FindFromIndex(i));
        for (const AcGePoint3d& p : facets_.points)
            facets_.extents.addPoint(p);
        return !facets_.points.empty();
    }

  private:
    // Points of faces that meet are one.
    int32_t indexOf(const gp_Pnt& p) {
        const std::array<int64_t, 3> key = {std::llround(p.X() / grain_),
                                            std::llround(p.Y() / grain_),
                                            std::llround(p.Z() / grain_)};
        const auto [place, isNew] =
            places_.emplace(key, static_cast<int32_t>(facets_.points.size()));
        if (isNew) facets_.points.emplace_back(p.X(), p.Y(), p.Z());
        return place->second;
    }

    bool addFace(const TopoDS_Face& face) {
        TopLoc_Location location;
        const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
        if (mesh.IsNull() || mesh->NbTriangles() == 0) return false;
        nodes_.clear();
        for (int i = 1; i <= mesh->NbNodes(); ++i)
            nodes_.push_back(indexOf(mesh->Node(i).Transformed(location)));
        facets_.starts.push_back(static_cast<uint32_t>(facets_.faces.size()));
        const bool isPlane = !Handle(Geom_Plane)::DownCast(BRep_Tool::Surface(face)).IsNull();
        if (!isPlane || !addLoops(face, mesh, location)) addTriangles(face, mesh);
        return true;
    }

    void addTriangles(const TopoDS_Face& face, const Handle(Poly_Triangulation) & mesh) {
        for (int i = 1; i <= mesh->NbTriangles(); ++i) {
            int a = 0, b = 0, c = 0;
            mesh->Triangle(i).Get(a, b, c);
            if (face.Orientation() == TopAbs_REVERSED) std::swap(b, c);
            const int32_t corners[] = {node(a), node(b), node(c)};
            if (corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0]) {
                continue;
            }
            facets_.faces.push_back(3);
            facets_.faces.insert(facets_.faces.end(), std::begin(corners), std::end(corners));
        }
    }
    int32_t node(int number) const { return nodes_[static_cast<size_t>(number - 1)]; }

    // A plane face by its bounds, the outer one first. False when it
    // has to be triangles.
    bool addLoops(const TopoDS_Face& face, const Handle(Poly_Triangulation) & mesh,
                  const TopLoc_Location& location) {
        std::vector<std::vector<int32_t>> loops;
        for (TopExp_Explorer wire(face, TopAbs_WIRE); wire.More(); wire.Next()) {
            std::vector<int32_t> loop;
            const TopoDS_Wire& bound = TopoDS::Wire(wire.Current());
            for (BRepTools_WireExplorer edge(bound, face); edge.More(); edge.Next()) {
                if (!addChords(edge.Current(), mesh, location, loop)) return false;
            }
            if (loop.size() < 3) return false;
            loops.push_back(std::move(loop));
        }
        const bool isSmall = loops.size() == 1 && loops.front().size() <= 4;
        if (polygons_ == Polygons::upToFour && !isSmall) return false;
        if (loops.size() > 1) putOutermostFirst(loops);
        for (size_t i = 0; i < loops.size(); ++i) {
            const auto count = static_cast<int32_t>(loops[i].size());
            facets_.faces.push_back(i == 0 ? count : -count);
            facets_.faces.insert(facets_.faces.end(), loops[i].begin(), loops[i].end());
        }
        return !loops.empty();
    }

    // The nodes along an edge but for the last one.
    bool addChords(const TopoDS_Edge& edge, const Handle(Poly_Triangulation) & mesh,
                   const TopLoc_Location& location, std::vector<int32_t>& loop) const {
        const Handle(Poly_PolygonOnTriangulation) chords =
            BRep_Tool::PolygonOnTriangulation(edge, mesh, location);
        if (chords.IsNull()) return false;
        const TColStd_Array1OfInteger& numbers = chords->Nodes();
        const bool isReversed = edge.Orientation() == TopAbs_REVERSED;
        for (int i = 0; i + 1 < numbers.Length(); ++i) {
            const int at = isReversed ? numbers.Upper() - i : numbers.Lower() + i;
            if (loop.empty() || loop.back() != node(numbers(at))) loop.push_back(node(numbers(at)));
        }
        return true;
    }

    double spreadOf(const std::vector<int32_t>& loop) const {
        AcDbExtents box;
        for (const int32_t index : loop)
            box.addPoint(facets_.points[static_cast<size_t>(index)]);
        return (box.maxPoint() - box.minPoint()).length();
    }
    void putOutermostFirst(std::vector<std::vector<int32_t>>& loops) const {
        for (size_t i = 1; i < loops.size(); ++i) {
            if (spreadOf(loops[i]) > spreadOf(loops[0])) std::swap(loops[i], loops[0]);
        }
    }

    // ---- Edges

    void addEdge(const TopoDS_Edge& edge, const TopTools_ListOfShape& faces) {
        if (BRep_Tool::Degenerated(edge) || faces.IsEmpty()) return;
        const TopoDS_Face& face = TopoDS::Face(faces.First());
        TopLoc_Location location;
        const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
        const Handle(Poly_PolygonOnTriangulation) chords =
            BRep_Tool::PolygonOnTriangulation(edge, mesh, location);
        if (chords.IsNull()) return;
        std::vector<AcGePoint3d> chain;
        for (const int number : chords->Nodes()) {
            const gp_Pnt p = mesh->Node(number).Transformed(location);
            chain.emplace_back(p.X(), p.Y(), p.Z());
        }
        const bool isSmooth =
            faces.Extent() != 2 || isSmoothEdge(edge, face, TopoDS::Face(faces.Last()));
        (isSmooth ? facets_.smoothEdges : facets_.edges).push_back(std::move(chain));
    }

    static bool isSmoothEdge(const TopoDS_Edge& edge, const TopoDS_Face& a, const TopoDS_Face& b) {
        if (a.IsSame(b)) return true;
        gp_Vec one, other;
        return normalAt(edge, a, one) && normalAt(edge, b, other) && one.Angle(other) < kSmoothEdge;
    }

    // Of a face at the middle of an edge.
    static bool normalAt(const TopoDS_Edge& edge, const TopoDS_Face& face, gp_Vec& normal) {
        double first = 0;
        double last = 0;
        const Handle(Geom2d_Curve) curve = BRep_Tool::CurveOnSurface(edge, face, first, last);
        if (curve.IsNull()) return false;
        const gp_Pnt2d place = curve->Value((first + last) / 2);
        gp_Pnt point;
        gp_Vec u, v;
        BRep_Tool::Surface(face)->D1(place.X(), place.Y(), point, u, v);
        normal = u.Crossed(v);
        if (normal.Magnitude() < 1e-12) return false;
        if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
        return true;
    }

    const TopoDS_Shape& shape_;
    const double grain_;
    const Polygons polygons_;
    Facets& facets_;
    std::map<std::array<int64_t, 3>, int32_t> places_;
    std::vector<int32_t> nodes_;  // of the face that is being added
};

}  // namespace

bool facetsOf(const TopoDS_Shape& shape, Polygons polygons, Facets& facets) {
    Bnd_Box box;
    BRepBndLib::Add(shape, box, false);
    if (box.IsVoid()) return false;
    const double size = std::sqrt(box.SquareExtent());
    const BRepMesh_IncrementalMesh mesh(shape, kFacetDeviation * size, false, kFacetTurn, false);
    return Faceter(shape, size, polygons, facets).run();
}

}  // namespace sg::companion

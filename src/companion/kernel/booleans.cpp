#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <Bnd_Box.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Face.hxx>
#include <algorithm>
#include <cmath>
#include <gp_Pln.hxx>

#include "companion/kernel/bodies.h"

namespace sg::companion {
namespace {

constexpr double kVolumeSlack = 1e-4;  // of what stays, in parts of what there was

Bnd_Box boxOf(const TopoDS_Shape& shape) {
    Bnd_Box box;
    BRepBndLib::Add(shape, box, false);
    return box;
}

bool collect(const TopoDS_Shape& result, Solids& parts) {
    parts.clear();
    for (TopExp_Explorer solid(result, TopAbs_SOLID); solid.More(); solid.Next()) {
        if (!isSound(solid.Current())) return false;
        parts.push_back(solid.Current());
    }
    return true;
}

double volumeOf(const Solids& solids) {
    double volume = 0;
    for (const TopoDS_Shape& solid : solids)
        volume += companion::volumeOf(solid);
    return volume;
}

bool run(BRepAlgoAPI_BooleanOperation& operation, const Solids& arguments, const Solids& tools,
         Solids& parts) {
    TopTools_ListOfShape first, second;
    for (const TopoDS_Shape& solid : arguments)
        first.Append(solid);
    for (const TopoDS_Shape& solid : tools)
        second.Append(solid);
    operation.SetArguments(first);
    operation.SetTools(second);
    operation.SetRunParallel(false);
    operation.Build();
    return operation.IsDone() && !operation.HasErrors() && collect(operation.Shape(), parts);
}

}  // namespace

bool cut(const TopoDS_Shape& solid, const TopoDS_Shape& tool, Solids& parts) {
    parts = {solid};
    if (boxOf(solid).IsOut(boxOf(tool))) return true;
    const double before = volumeOf(parts);
    BRepAlgoAPI_Cut operation;
    if (!run(operation, {solid}, {tool}, parts)) return false;
    const double after = volumeOf(parts);
    return after <= before * (1 + kVolumeSlack) &&
           after >= before - companion::volumeOf(tool) - before * kVolumeSlack;
}

bool fuse(const Solids& solids, Solids& parts) {
    parts = solids;
    if (solids.size() < 2) return true;
    const double sum = volumeOf(solids);
    double largest = 0;
    for (const TopoDS_Shape& solid : solids)
        largest = std::max(largest, companion::volumeOf(solid));
    BRepAlgoAPI_Fuse operation;
    if (!run(operation, {solids.front()}, Solids(solids.begin() + 1, solids.end()), parts)) {
        return false;
    }
    const double volume = volumeOf(parts);
    return volume <= sum * (1 + kVolumeSlack) && volume >= largest * (1 - kVolumeSlack);
}

bool slice(const TopoDS_Shape& solid, const AcGePoint3d& point, const AcGeVector3d& normal,
           Solids& parts) {
    double x0, y0, z0, x1, y1, z1;
    boxOf(solid).Get(x0, y0, z0, x1, y1, z1);
    double nearest = HUGE_VAL;
    double farthest = -HUGE_VAL;
    for (int corner = 0; corner < 8; ++corner) {
        const AcGePoint3d p(corner & 1 ? x1 : x0, corner & 2 ? y1 : y0, corner & 4 ? z1 : z0);
        nearest = std::min(nearest, (p - point).dotProduct(normal));
        farthest = std::max(farthest, (p - point).dotProduct(normal));
    }
    parts = {solid};
    if (nearest >= 0) return true;
    parts.clear();
    if (farthest <= 0) return true;
    const AcGePoint3d middle((x0 + x1) / 2, (y0 + y1) / 2, (z0 + z1) / 2);
    const double reach = AcGeVector3d(x1 - x0, y1 - y0, z1 - z0).length();
    const AcGePoint3d foot = middle - normal * (middle - point).dotProduct(normal);
    const gp_Pln plane(gp_Pnt(foot.x, foot.y, foot.z), gp_Dir(normal.x, normal.y, normal.z));
    const TopoDS_Face face = BRepBuilderAPI_MakeFace(plane, -reach, reach, -reach, reach).Face();
    const AcGeVector3d away = normal * (-2 * reach);
    const TopoDS_Shape tool = BRepPrimAPI_MakePrism(face, gp_Vec(away.x, away.y, away.z)).Shape();
    return cut(solid, tool, parts);
}

}  // namespace sg::companion

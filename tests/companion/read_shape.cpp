#include "companion/read_shape.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <BinTools.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shell.hxx>
#include <cmath>
#include <sstream>

namespace sg::test {
namespace {

ReadFace readFace(const TopoDS_Face& face) {
    ReadFace read;
    GProp_GProps properties;
    BRepGProp::SurfaceProperties(face, properties);
    const gp_Pnt center = properties.CentreOfMass();
    read.center = {center.X(), center.Y(), center.Z()};
    read.area = properties.Mass();
    const BRepAdaptor_Surface surface(face);
    read.isPlane = surface.GetType() == GeomAbs_Plane;
    if (!read.isPlane) return read;
    gp_Dir normal = surface.Plane().Axis().Direction();
    if (!surface.Plane().Direct()) normal.Reverse();
    if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    read.normal = {normal.X(), normal.Y(), normal.Z()};
    return read;
}

}  // namespace

bool ReadShape::hasEnd(const AcGePoint3d& center, const AcGeVector3d& outwards, double area) const {
    for (const ReadFace& face : faces) {
        const double size = std::sqrt(area);
        if (face.isPlane && face.center.distanceTo(center) < 1e-6 * (1 + size) &&
            std::abs(face.area - area) < 1e-4 * area && face.normal.dotProduct(outwards) > 0.999) {
            return true;
        }
    }
    return false;
}

ReadShape readShape(const std::string& bytes) {
    std::istringstream stream(bytes);
    TopoDS_Shape shape;
    BinTools::Read(shape, stream);
    ReadShape read;
    if (shape.IsNull()) return read;
    read.isValid = BRepCheck_Analyzer(shape).IsValid();
    for (TopExp_Explorer solid(shape, TopAbs_SOLID); solid.More(); solid.Next()) {
        ++read.solids;
        GProp_GProps properties;
        BRepGProp::VolumeProperties(solid.Current(), properties, 1e-6);
        if (!(properties.Mass() > 0)) read.isValid = false;
        read.volume += properties.Mass();
    }
    for (TopExp_Explorer shell(shape, TopAbs_SHELL); shell.More(); shell.Next()) {
        if (!BRep_Tool::IsClosed(TopoDS::Shell(shell.Current()))) read.isValid = false;
    }
    for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
        read.faces.push_back(readFace(TopoDS::Face(face.Current())));
    if (read.solids == 0) read.isValid = false;
    return read;
}

}  // namespace sg::test

#include "host/model/curves/filing_groups.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex, 0, 0, L"VERTEX", L"")

AcDb3dPolylineVertex::AcDb3dPolylineVertex() = default;
AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) : position_(position) {}
AcDb3dPolylineVertex::~AcDb3dPolylineVertex() = default;

namespace {

// Of group 70, in a vertex and in the polyline.
enum Vertex3dFlag { kSplineFitted = 8, kFrame = 16, kVertexIn3d = 32 };
enum Polyline3dFlag { kClosedFlag = 1, kSplineFlag = 4, kPolylineIn3d = 8 };
constexpr int kQuadratic = 5;  // of group 75
constexpr int kCubic = 6;

}  // namespace

Acad::ErrorStatus AcDb3dPolylineVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(position_);
    filer->writeUInt8(static_cast<uint8_t>(type_));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    uint8_t type = 0;
    filer->readPoint3d(&position_);
    filer->readUInt8(&type);
    type_ =
        type <= AcDb::k3dFitVertex ? static_cast<AcDb::Vertex3dType>(type) : AcDb::k3dSimpleVertex;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDb3dPolylineVertex")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) position_ = fields.point();
        if (fields.code() != 70) continue;
        const int flags = fields.integer();
        type_ = (flags & kFrame) != 0          ? AcDb::k3dControlVertex
                : (flags & kSplineFitted) != 0 ? AcDb::k3dFitVertex
                                               : AcDb::k3dSimpleVertex;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    const int kind = type_ == AcDb::k3dControlVertex ? kFrame
                     : type_ == AcDb::k3dFitVertex   ? kSplineFitted
                                                     : 0;
    filer->writeString(100, L"AcDb3dPolylineVertex");
    filer->writePoint3d(10, position_);
    if (all) {
        for (const int code : {40, 41, 42})
            filer->writeDouble(code, 0);
    }
    filer->writeInt16(70, static_cast<int16_t>(kVertexIn3d | kind));
    if (all) {
        filer->writeDouble(50, 0);
        for (const int code : {71, 72, 73, 74})
            filer->writeInt16(code, 0);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = VertexCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeUInt8(static_cast<uint8_t>(type_));
    filer->writeBool(closed_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = VertexCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    uint8_t type = 0;
    filer->readUInt8(&type);
    type_ = type <= AcDb::k3dCubicSplinePoly ? static_cast<AcDb::Poly3dType>(type)
                                             : AcDb::k3dSimplePoly;
    filer->readBool(&closed_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = VertexCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDb3dPolyline")) return status;
    int flags = -1;
    int surface = type_ == AcDb::k3dQuadSplinePoly ? kQuadratic : kCubic;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 70) flags = fields.integer();
        if (fields.code() == 75 && fields.integer() != 0) surface = fields.integer();
    }
    if (flags < 0) return filer->filerStatus();
    closed_ = (flags & kClosedFlag) != 0;
    type_ = (flags & kSplineFlag) == 0 ? AcDb::k3dSimplePoly
            : surface == kQuadratic    ? AcDb::k3dQuadSplinePoly
                                       : AcDb::k3dCubicSplinePoly;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = VertexCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    const bool spline = type_ != AcDb::k3dSimplePoly;
    const int flags = kPolylineIn3d | (closed_ ? kClosedFlag : 0) | (spline ? kSplineFlag : 0);
    const int surface = !spline ? 0 : type_ == AcDb::k3dQuadSplinePoly ? kQuadratic : kCubic;
    filer->writeString(100, L"AcDb3dPolyline");
    filer->writeInt16(66, 1);
    filer->writePoint3d(10, AcGePoint3d());
    filer->writeInt16(70, static_cast<int16_t>(flags));
    if (all) {
        for (const int code : {40, 41})
            filer->writeDouble(code, 0);
        filer->writeVector3d(210, AcGeVector3d::kZAxis);
        for (const int code : {71, 72, 73, 74})
            filer->writeInt16(code, 0);
    }
    if (all || surface != 0) filer->writeInt16(75, static_cast<int16_t>(surface));
    return filer->filerStatus();
}

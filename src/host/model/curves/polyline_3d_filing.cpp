#include "host/model/core/dwg_form.h"
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

AcDb::Vertex3dType typeOf(int flags) {
    if ((flags & kFrame) != 0) return AcDb::k3dControlVertex;
    return (flags & kSplineFitted) != 0 ? AcDb::k3dFitVertex : AcDb::k3dSimpleVertex;
}

int flagsOf(AcDb::Vertex3dType type) {
    if (type == AcDb::k3dControlVertex) return kVertexIn3d | kFrame;
    return type == AcDb::k3dFitVertex ? kVertexIn3d | kSplineFitted : kVertexIn3d;
}

// How a DWG object has the polyline's spline.
enum SplineBit : uint8_t { kQuadraticBit = 1, kCubicBit = 2 };

}  // namespace

Acad::ErrorStatus AcDb3dPolylineVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeUInt8(static_cast<uint8_t>(flagsOf(type_)));
    return filer->writePoint3d(position_);
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    uint8_t flags = 0;
    filer->readUInt8(&flags);
    type_ = typeOf(flags);
    return filer->readPoint3d(&position_);
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDb3dPolylineVertex")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) position_ = fields.point();
        if (fields.code() != 70) continue;
        type_ = typeOf(fields.integer());
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    filer->writeString(100, L"AcDb3dPolylineVertex");
    filer->writePoint3d(10, position_);
    if (all) {
        for (const int code : {40, 41, 42})
            filer->writeDouble(code, 0);
    }
    filer->writeInt16(70, static_cast<int16_t>(flagsOf(type_)));
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
    filer->writeUInt8(type_ == AcDb::k3dQuadSplinePoly    ? kQuadraticBit
                      : type_ == AcDb::k3dCubicSplinePoly ? kCubicBit
                                                          : 0);
    filer->writeUInt8(closed_ ? kClosedFlag : 0);
    return writeVertices(filer);
}

Acad::ErrorStatus AcDb3dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = VertexCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    uint8_t spline = 0;
    uint8_t flags = 0;
    filer->readUInt8(&spline);
    filer->readUInt8(&flags);
    type_ = (spline & kQuadraticBit) != 0 ? AcDb::k3dQuadSplinePoly
            : (spline & kCubicBit) != 0   ? AcDb::k3dCubicSplinePoly
                                          : AcDb::k3dSimplePoly;
    closed_ = (flags & kClosedFlag) != 0;
    return readVertices(filer);
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

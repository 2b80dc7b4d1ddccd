#include "host/model/core/dwg_form.h"
#include "host/model/entities/hatch/loop.h"

// Hatch boundaries as DWG files have them.

namespace sg::model {
namespace {

using Kind = HatchEdge::Kind;

bool hasFitData(const AcDbDwgFiler& filer) {
    return !isBefore(&filer, AcDb::kDHL_1024);
}

uint32_t countOf(size_t size) {
    return static_cast<uint32_t>(size);
}

// ---- Splines ------------------------------------------------------------------------------------

void writeFitData(AcDbDwgFiler& filer, const HatchEdge& edge) {
    filer.writeUInt32(countOf(edge.fitPoints.size()));
    if (edge.fitPoints.empty()) return;
    for (const AcGePoint2d& point : edge.fitPoints)
        filer.writePoint2d(point);
    filer.writeVector2d(edge.startTangent);
    filer.writeVector2d(edge.endTangent);
}

void writeSpline(AcDbDwgFiler& filer, const HatchEdge& edge) {
    const Nurbs& curve = edge.spline;
    filer.writeInt32(curve.degree);
    filer.writeBool(curve.isRational());
    filer.writeBool(edge.periodic);
    filer.writeUInt32(countOf(curve.knots.size()));
    filer.writeUInt32(countOf(curve.controls.size()));
    for (const double knot : curve.knots)
        filer.writeDouble(knot);
    for (size_t i = 0; i < curve.controls.size(); ++i) {
        filer.writePoint2d({curve.controls[i].x, curve.controls[i].y});
        if (curve.isRational()) filer.writeDouble(curve.weights[i]);
    }
    if (hasFitData(filer)) writeFitData(filer, edge);
}

void readFitData(AcDbDwgFiler& filer, HatchEdge& edge) {
    uint32_t count = 0;
    filer.readUInt32(&count);
    if (count == 0) return;
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i)
        filer.readPoint2d(&edge.fitPoints.emplace_back());
    filer.readVector2d(&edge.startTangent);
    filer.readVector2d(&edge.endTangent);
}

void readSpline(AcDbDwgFiler& filer, HatchEdge& edge) {
    Nurbs& curve = edge.spline;
    int32_t degree = 0;
    uint32_t knots = 0;
    uint32_t controls = 0;
    bool isRational = false;
    filer.readInt32(&degree);
    filer.readBool(&isRational);
    filer.readBool(&edge.periodic);
    filer.readUInt32(&knots);
    filer.readUInt32(&controls);
    curve.degree = degree;
    for (uint32_t i = 0; i < knots && filer.filerStatus() == Acad::eOk; ++i)
        filer.readDouble(&curve.knots.emplace_back());
    for (uint32_t i = 0; i < controls && filer.filerStatus() == Acad::eOk; ++i) {
        AcGePoint2d point;
        filer.readPoint2d(&point);
        curve.controls.emplace_back(point.x, point.y, 0);
        if (isRational) filer.readDouble(&curve.weights.emplace_back());
    }
    if (hasFitData(filer)) readFitData(filer, edge);
}

// ---- Arcs ---------------------------------------------------------------------------------------

void writeArc(AcDbDwgFiler& filer, const HatchEdge& edge) {
    filer.writePoint2d(edge.center);
    if (edge.kind == Kind::Arc) {
        filer.writeDouble(edge.major.length());
    } else {
        filer.writeVector2d(edge.major);
        filer.writeDouble(edge.ratio);
    }
    filer.writeDouble(angleOfParameter(edge.first, edge.ratio));
    filer.writeDouble(angleOfParameter(edge.last, edge.ratio));
    filer.writeBool(edge.counterClockwise);
}

void readArc(AcDbDwgFiler& filer, HatchEdge& edge) {
    filer.readPoint2d(&edge.center);
    if (edge.kind == Kind::Arc) {
        filer.readDouble(&edge.major.x);
    } else {
        filer.readVector2d(&edge.major);
        filer.readDouble(&edge.ratio);
    }
    filer.readDouble(&edge.first);
    filer.readDouble(&edge.last);
    filer.readBool(&edge.counterClockwise);
    edge.first = parameterOfAngle(edge.first, edge.ratio);
    edge.last = parameterOfAngle(edge.last, edge.ratio);
}

// ---- Loops --------------------------------------------------------------------------------------

void writeEdge(AcDbDwgFiler& filer, const HatchEdge& edge) {
    filer.writeUInt8(static_cast<uint8_t>(edge.kind));
    if (edge.kind == Kind::Spline) return writeSpline(filer, edge);
    if (edge.kind != Kind::Line) return writeArc(filer, edge);
    filer.writePoint2d(edge.start);
    filer.writePoint2d(edge.end);
}

bool readEdge(AcDbDwgFiler& filer, HatchEdge& edge) {
    uint8_t kind = 0;
    filer.readUInt8(&kind);
    if (kind < 1 || kind > 4) return false;
    edge.kind = static_cast<Kind>(kind);
    if (edge.kind == Kind::Spline) {
        readSpline(filer, edge);
    } else if (edge.kind != Kind::Line) {
        readArc(filer, edge);
    } else {
        filer.readPoint2d(&edge.start);
        filer.readPoint2d(&edge.end);
    }
    return true;
}

void writePolyline(AcDbDwgFiler& filer, const HatchLoop& loop) {
    const bool bulges = loop.hasBulges();
    filer.writeBool(bulges);
    filer.writeBool(loop.closed);
    filer.writeUInt32(countOf(loop.vertices.size()));
    for (const HatchLoop::Vertex& vertex : loop.vertices) {
        filer.writePoint2d(vertex.point);
        if (bulges) filer.writeDouble(vertex.bulge);
    }
}

void readPolyline(AcDbDwgFiler& filer, HatchLoop& loop) {
    bool bulges = false;
    uint32_t count = 0;
    filer.readBool(&bulges);
    filer.readBool(&loop.closed);
    filer.readUInt32(&count);
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
        HatchLoop::Vertex& vertex = loop.vertices.emplace_back();
        filer.readPoint2d(&vertex.point);
        if (bulges) filer.readDouble(&vertex.bulge);
    }
}

}  // namespace

Acad::ErrorStatus HatchLoop::writeFile(AcDbDwgFiler& filer) const {
    filer.writeInt32(type);
    if (isPolyline()) {
        writePolyline(filer, *this);
    } else {
        filer.writeUInt32(countOf(edges.size()));
        for (const HatchEdge& edge : edges)
            writeEdge(filer, edge);
    }
    filer.writeUInt32(countOf(sources.size()));
    for (const AcDbSoftPointerId& source : sources)
        filer.writeSoftPointerId(source);
    return filer.filerStatus();
}

Acad::ErrorStatus HatchLoop::readFile(AcDbDwgFiler& filer) {
    uint32_t count = 0;
    filer.readInt32(&type);
    if (isPolyline()) {
        readPolyline(filer, *this);
    } else {
        filer.readUInt32(&count);
        for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
            if (readEdge(filer, edges.emplace_back())) continue;
            filer.setFilerStatus(Acad::eInvalidInput);
        }
    }
    filer.readUInt32(&count);
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i)
        filer.readSoftPointerId(&sources.emplace_back());
    return filer.filerStatus();
}

}  // namespace sg::model

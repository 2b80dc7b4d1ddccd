#include "host/model/entities/hatch/loop.h"

// Filing of a hatch's boundary.

namespace sg::model {

namespace {

void writeSpline(AcDbDwgFiler* filer, const HatchEdge& edge) {
    const Nurbs& curve = edge.spline;
    filer->writeInt16(static_cast<int16_t>(curve.degree));
    filer->writeBool(edge.periodic);
    filer->writeUInt32(static_cast<uint32_t>(curve.knots.size()));
    for (const double knot : curve.knots)
        filer->writeDouble(knot);
    filer->writeUInt32(static_cast<uint32_t>(curve.controls.size()));
    for (const AcGePoint3d& point : curve.controls)
        filer->writePoint3d(point);
    filer->writeUInt32(static_cast<uint32_t>(curve.weights.size()));
    for (const double weight : curve.weights)
        filer->writeDouble(weight);
    filer->writeUInt32(static_cast<uint32_t>(edge.fitPoints.size()));
    for (const AcGePoint2d& point : edge.fitPoints)
        filer->writePoint2d(point);
    filer->writeVector2d(edge.startTangent);
    filer->writeVector2d(edge.endTangent);
}

// Reads as many values as a count in front says, and ends early where the filer fails.
template <class Value, class Read>
void readList(AcDbDwgFiler* filer, std::vector<Value>& values, const Read& read) {
    uint32_t count = 0;
    filer->readUInt32(&count);
    values.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        read(values.emplace_back());
    }
}

void readSpline(AcDbDwgFiler* filer, HatchEdge& edge) {
    int16_t degree = 0;
    filer->readInt16(&degree);
    edge.spline.degree = degree;
    filer->readBool(&edge.periodic);
    readList(filer, edge.spline.knots, [&](double& knot) { filer->readDouble(&knot); });
    readList(filer, edge.spline.controls, [&](AcGePoint3d& point) { filer->readPoint3d(&point); });
    readList(filer, edge.spline.weights, [&](double& weight) { filer->readDouble(&weight); });
    readList(filer, edge.fitPoints, [&](AcGePoint2d& point) { filer->readPoint2d(&point); });
    filer->readVector2d(&edge.startTangent);
    filer->readVector2d(&edge.endTangent);
}

void writeEdge(AcDbDwgFiler* filer, const HatchEdge& edge) {
    filer->writeInt16(static_cast<int16_t>(edge.kind));
    if (edge.kind == HatchEdge::Kind::Spline) return writeSpline(filer, edge);
    if (edge.kind == HatchEdge::Kind::Line) {
        filer->writePoint2d(edge.start);
        filer->writePoint2d(edge.end);
        return;
    }
    filer->writePoint2d(edge.center);
    filer->writeVector2d(edge.major);
    filer->writeDouble(edge.ratio);
    filer->writeDouble(edge.first);
    filer->writeDouble(edge.last);
    filer->writeBool(edge.counterClockwise);
}

void readEdge(AcDbDwgFiler* filer, HatchEdge& edge) {
    int16_t kind = 0;
    filer->readInt16(&kind);
    edge.kind = static_cast<HatchEdge::Kind>(kind);
    if (edge.kind == HatchEdge::Kind::Spline) return readSpline(filer, edge);
    if (edge.kind == HatchEdge::Kind::Line) {
        filer->readPoint2d(&edge.start);
        filer->readPoint2d(&edge.end);
        return;
    }
    filer->readPoint2d(&edge.center);
    filer->readVector2d(&edge.major);
    filer->readDouble(&edge.ratio);
    filer->readDouble(&edge.first);
    filer->readDouble(&edge.last);
    filer->readBool(&edge.counterClockwise);
}

void writeFitData(AcDbDxfFiler* filer, const HatchEdge& edge) {
    if (filer->dwgVersion() < AcDb::kDHL_1024) return;
    filer->writeInt32(97, static_cast<int32_t>(edge.fitPoints.size()));
    if (edge.fitPoints.empty()) return;
    for (const AcGePoint2d& point : edge.fitPoints)
        writePlanePoint(filer, 11, point);
    writePlanePoint(filer, 12, {edge.startTangent.x, edge.startTangent.y});
    writePlanePoint(filer, 13, {edge.endTangent.x, edge.endTangent.y});
}

void writeSpline(AcDbDxfFiler* filer, const HatchEdge& edge) {
    const Nurbs& curve = edge.spline;
    filer->writeInt32(94, curve.degree);
    filer->writeInt16(73, curve.isRational() ? 1 : 0);
    filer->writeInt16(74, edge.periodic ? 1 : 0);
    filer->writeInt32(95, static_cast<int32_t>(curve.knots.size()));
    filer->writeInt32(96, static_cast<int32_t>(curve.controls.size()));
    for (const double knot : curve.knots)
        filer->writeDouble(40, knot);
    for (size_t i = 0; i < curve.controls.size(); ++i) {
        writePlanePoint(filer, 10, {curve.controls[i].x, curve.controls[i].y});
        if (curve.isRational()) filer->writeDouble(42, curve.weights[i]);
    }
    writeFitData(filer, edge);
}

void writeEdge(AcDbDxfFiler* filer, const HatchEdge& edge) {
    filer->writeInt16(72, static_cast<int16_t>(edge.kind));
    switch (edge.kind) {
        case HatchEdge::Kind::Line:
            writePlanePoint(filer, 10, edge.start);
            writePlanePoint(filer, 11, edge.end);
            return;
        case HatchEdge::Kind::Spline:
            return writeSpline(filer, edge);
        case HatchEdge::Kind::Arc:
            writePlanePoint(filer, 10, edge.center);
            filer->writeDouble(40, edge.major.length());
            break;
        case HatchEdge::Kind::Ellipse:
            writePlanePoint(filer, 10, edge.center);
            writePlanePoint(filer, 11, {edge.major.x, edge.major.y});
            filer->writeDouble(40, edge.ratio);
            break;
    }
    filer->writeDouble(50, angleOfParameter(edge.first, edge.ratio));
    filer->writeDouble(51, angleOfParameter(edge.last, edge.ratio));
    filer->writeInt16(73, edge.counterClockwise ? 1 : 0);
}

void writePolyline(AcDbDxfFiler* filer, const HatchLoop& loop) {
    const bool bulges = loop.hasBulges();
    filer->writeInt16(72, bulges ? 1 : 0);
    filer->writeInt16(73, loop.closed ? 1 : 0);
    filer->writeInt32(93, static_cast<int32_t>(loop.vertices.size()));
    for (const HatchLoop::Vertex& vertex : loop.vertices) {
        writePlanePoint(filer, 10, vertex.point);
        if (bulges) filer->writeDouble(42, vertex.bulge);
    }
}

}  // namespace

Acad::ErrorStatus HatchLoop::dwgOut(AcDbDwgFiler* filer) const {
    filer->writeInt32(type);
    filer->writeBool(closed);
    filer->writeUInt32(static_cast<uint32_t>(vertices.size()));
    for (const Vertex& vertex : vertices) {
        filer->writePoint2d(vertex.point);
        filer->writeDouble(vertex.bulge);
    }
    filer->writeUInt32(static_cast<uint32_t>(edges.size()));
    for (const HatchEdge& edge : edges)
        writeEdge(filer, edge);
    filer->writeUInt32(static_cast<uint32_t>(sources.size()));
    for (const AcDbSoftPointerId& source : sources)
        filer->writeSoftPointerId(source);
    return filer->filerStatus();
}

Acad::ErrorStatus HatchLoop::dwgIn(AcDbDwgFiler* filer) {
    filer->readInt32(&type);
    filer->readBool(&closed);
    readList(filer, vertices, [&](Vertex& vertex) {
        filer->readPoint2d(&vertex.point);
        filer->readDouble(&vertex.bulge);
    });
    readList(filer, edges, [&](HatchEdge& edge) { readEdge(filer, edge); });
    readList(filer, sources, [&](AcDbSoftPointerId& source) { filer->readSoftPointerId(&source); });
    return filer->filerStatus();
}

void HatchLoop::dxfOut(AcDbDxfFiler* filer) const {
    filer->writeInt32(92, type);
    if (isPolyline()) {
        writePolyline(filer, *this);
    } else {
        filer->writeInt32(93, static_cast<int32_t>(edges.size()));
        for (const HatchEdge& edge : edges)
            writeEdge(filer, edge);
    }
    filer->writeInt32(97, static_cast<int32_t>(sources.size()));
    for (const AcDbSoftPointerId& source : sources)
        filer->writeObjectId(330, source);
}

}  // namespace sg::model

#include "host/model/curves/polyline_3d.h"

#include <algorithm>
#include <cmath>

#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/spline_settings.h"
#include "platform/db/line.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, 0, 0, L"POLYLINE", L"")

using Vertex = AcDb3dPolylineVertex;

AcDb3dPolyline::AcDb3dPolyline() = default;
AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& points, bool closed)
    : closed_(closed) {
    for (const AcGePoint3d& point : points)
        appendVertex(new Vertex(point));
    convertToPolyType(type);
}
AcDb3dPolyline::~AcDb3dPolyline() = default;

std::unique_ptr<AcDbEntity> AcDb3dPolyline::newVertex(uint8_t) const {
    return std::make_unique<Vertex>();
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, Vertex* vertex) {
    return appendVertexEntity(id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(Vertex* vertex) {
    AcDbObjectId id;
    return appendVertexEntity(id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::insertVertexAt(AcDbObjectId& id, AcDbObjectId after,
                                                 Vertex* vertex) {
    return insertVertexEntity(id, after, vertex);
}

std::vector<AcGePoint3d> AcDb3dPolyline::drawnPoints() const {
    std::vector<AcGePoint3d> points;
    forEachVertex<Vertex>([&](const Vertex& vertex) {
        if (vertex.vertexType() != AcDb::k3dControlVertex) points.push_back(vertex.position());
    });
    return points;
}

bool AcDb3dPolyline::subShape(CurveShape& shape) const {
    const std::vector<AcGePoint3d> points = drawnPoints();
    if (points.empty()) return false;
    const size_t segments = points.size() < 2 ? 0 : points.size() - (closed_ ? 0 : 1);
    for (size_t i = 0; i < segments; ++i) {
        const auto from = static_cast<double>(i);
        shape.spans.emplace_back(Piece::line(points[i], points[(i + 1) % points.size()]), from,
                                 from + 1);
    }
    if (segments == 0) {
        shape.spans.emplace_back(Piece::line(points.front(), AcGeVector3d(), 0, 0));
    }
    shape.closed = closed_;
    shape.findPlane();
    return true;
}

AcDbCurve* AcDb3dPolyline::subPart(double from, double to) const {
    CurveShape shape;
    if (!subShape(shape)) return nullptr;
    auto* const part = new AcDb3dPolyline;
    const auto append = [&](double parameter) {
        size_t span = 0;
        if (!shape.locate(parameter, span)) return;
        part->appendVertex(new Vertex(shape.values(shape.spans[span], parameter).point));
    };
    append(from);
    for (double at = std::floor(from) + 1; at < to; ++at)
        append(at);
    append(to);
    return part;
}

Acad::ErrorStatus AcDb3dPolyline::reverseCurve() {
    assertWriteEnabled();
    std::vector<AcGePoint3d> drawn = drawnPoints();
    std::vector<AcGePoint3d> frame;
    forEachVertex<Vertex>([&](const Vertex& vertex) {
        if (vertex.vertexType() == AcDb::k3dControlVertex) frame.push_back(vertex.position());
    });
    changeVertices<Vertex>([&](Vertex& vertex) {
        std::vector<AcGePoint3d>& from =
            vertex.vertexType() == AcDb::k3dControlVertex ? frame : drawn;
        vertex.setPosition(from.back());
        from.pop_back();
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::straighten() {
    assertWriteEnabled();
    std::vector<VertexSlot> kept;
    for (VertexSlot& slot : takeSlots()) {
        AcDbEntity* const entity = VertexCurve::openVertex(slot);
        Vertex* const vertex = Vertex::cast(entity);
        if (vertex == nullptr) continue;
        const bool fitted = vertex->vertexType() == AcDb::k3dFitVertex;
        if (!fitted) vertex->setVertexType(AcDb::k3dSimpleVertex);
        closeVertex(slot, entity);
        if (fitted) {
            eraseSlot(slot);
        } else {
            kept.push_back(std::move(slot));
        }
    }
    setSlots(std::move(kept));
    type_ = AcDb::k3dSimplePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::splineFit() {
    const SplineSettings settings = splineSettings(database());
    return splineFit(settings.quadratic ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly,
                     settings.segments);
}

Acad::ErrorStatus AcDb3dPolyline::splineFit(AcDb::Poly3dType splineType, int16_t splineSegments) {
    assertWriteEnabled();
    if (splineType == AcDb::k3dSimplePoly) return Acad::eInvalidInput;
    straighten();
    const std::vector<AcGePoint3d> frame = drawnPoints();
    if (frame.size() < 2) return Acad::eDegenerateGeometry;
    const int degree = splineType == AcDb::k3dQuadSplinePoly ? 2 : 3;
    const int segments = splineSegments == 0 ? splineSettings(database()).segments : splineSegments;
    changeVertices<Vertex>([](Vertex& vertex) { vertex.setVertexType(AcDb::k3dControlVertex); });
    std::vector<VertexSlot> slots = takeSlots();
    for (const AcGePoint3d& point : splinePoints(frame, degree, closed_, segments)) {
        auto vertex = std::make_unique<Vertex>(point);
        vertex->setVertexType(AcDb::k3dFitVertex);
        vertex->setPropertiesFrom(this);
        slots.push_back({AcDbObjectId(), std::move(vertex)});
    }
    setSlots(std::move(slots));
    type_ = splineType;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::convertToPolyType(AcDb::Poly3dType type) {
    if (type == type_) return Acad::eOk;
    if (type == AcDb::k3dSimplePoly) return straighten();
    return splineFit(type, splineSettings(database()).segments);
}

Acad::ErrorStatus AcDb3dPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    changeVertices<Vertex>(
        [&](Vertex& vertex) { vertex.setPosition(transform * vertex.position()); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDb3dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    return subMoveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcDb3dPolyline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    forEachVertex<Vertex>([&](const Vertex& vertex) {
        if (vertex.vertexType() != AcDb::k3dFitVertex) points.append(vertex.position());
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                         const AcGeVector3d& offset) {
    assertWriteEnabled();
    int index = 0;
    changeVertices<Vertex>([&](Vertex& vertex) {
        if (vertex.vertexType() == AcDb::k3dFitVertex) return;
        if (indices.contains(index++)) vertex.setPosition(vertex.position() + offset);
    });
    return type_ == AcDb::k3dSimplePoly ? Acad::eOk : splineFit(type_, 0);
}

Acad::ErrorStatus AcDb3dPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    CurveShape shape;
    if (!subShape(shape) || shape.startParam() == shape.endParam()) {
        return Acad::eCannotExplodeEntity;
    }
    for (const Span& span : shape.spans) {
        auto* const line = new AcDbLine(span.piece.start(), span.piece.end());
        line->setPropertiesFrom(this);
        entities.append(line);
    }
    return Acad::eOk;
}

void AcDb3dPolyline::subList() const {
    VertexCurve::subList();
    listText(L"", closed_ ? L"Closed space" : L"Open space");
    forEachVertex<Vertex>([](const Vertex& vertex) { listPoint(L"VERTEX at", vertex.position()); });
}

#include "platform/db/polyline.h"

#include <algorithm>
#include <cmath>

#include "host/model/curves/bulge_path.h"
#include "host/model/curves/listing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, 0, 0, L"LWPOLYLINE", L"")

AcDbPolyline::AcDbPolyline() = default;
AcDbPolyline::AcDbPolyline(unsigned int expectedVertices) {
    vertices_.reserve(std::min(expectedVertices, 65536U));
}
AcDbPolyline::~AcDbPolyline() = default;

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    assertReadEnabled();
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = vertices_[index].point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    AcGePoint2d inPlane;
    const Acad::ErrorStatus status = getPointAt(index, inPlane);
    if (status != Acad::eOk) return status;
    point = fromPlane(AcGeMatrix3d::planeToWorld(normal_), inPlane, elevation_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    return assign(vertices_[index].point, point);
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    assertReadEnabled();
    if (index >= numVerts()) return Acad::eInvalidIndex;
    bulge = vertices_[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    return assign(vertices_[index].bulge, bulge);
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& start, double& end) const {
    assertReadEnabled();
    if (index >= numVerts()) return Acad::eInvalidIndex;
    start = vertices_[index].startWidth;
    end = vertices_[index].endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double start, double end) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    vertices_[index].startWidth = std::max(start, 0.0);
    vertices_[index].endWidth = std::max(end, 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getVertexIdentifierAt(unsigned int index, int& identifier) const {
    assertReadEnabled();
    if (index >= numVerts()) return Acad::eInvalidIndex;
    identifier = identifiers_.empty() ? 0 : identifiers_[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setVertexIdentifierAt(unsigned int index, int identifier) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    if (identifiers_.empty()) identifiers_.resize(vertices_.size());
    identifiers_[index] = identifier;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
    if (index > numVerts()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    vertices_.insert(vertices_.begin() + index,
                     {point, bulge, std::max(startWidth, 0.0), std::max(endWidth, 0.0)});
    if (!identifiers_.empty()) identifiers_.insert(identifiers_.begin() + index, 0);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    vertices_.erase(vertices_.begin() + index);
    if (!identifiers_.empty()) identifiers_.erase(identifiers_.begin() + index);
    return Acad::eOk;
}

void AcDbPolyline::reset(bool reuse, unsigned int count) {
    assertWriteEnabled();
    if (!reuse) {
        vertices_.clear();
        identifiers_.clear();
    }
    vertices_.resize(count);
    if (!identifiers_.empty()) identifiers_.resize(count);
}

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
    assertReadEnabled();
    if (index >= numVerts()) return kEmpty;
    if (numVerts() == 1) return kPoint;
    if (index + 1 == numVerts() && !closed_) return kEmpty;
    const AcGePoint2d& next = vertices_[(index + 1) % vertices_.size()].point;
    if (vertices_[index].point.isEqualTo(next)) return kCoincident;
    return vertices_[index].bulge == 0 ? kLine : kArc;
}

void AcDbPolyline::setClosed(bool closed) {
    assign(closed_, closed);
}

bool AcDbPolyline::hasBulges() const {
    return std::any_of(vertices_.begin(), vertices_.end(),
                       [](const BulgeVertex& vertex) { return vertex.bulge != 0; });
}

bool AcDbPolyline::hasWidth() const {
    return path().hasWidth();
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
    assertReadEnabled();
    const double first = vertices_.empty() ? 0 : vertices_.front().startWidth;
    for (const BulgeVertex& vertex : vertices_) {
        if (vertex.startWidth != first || vertex.endWidth != first) return Acad::eInvalidInput;
    }
    width = first;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    if (!(width >= 0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    for (BulgeVertex& vertex : vertices_)
        vertex.startWidth = vertex.endWidth = width;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

void AcDbPolyline::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation({0, 0, elevation_});
}

BulgePath AcDbPolyline::path() const {
    return {vertices_, closed_, elevation_, thickness_, normal_};
}

void AcDbPolyline::setPath(const BulgePath& path) {
    vertices_ = path.vertices;
    closed_ = path.closed;
    elevation_ = path.elevation;
    thickness_ = path.thickness;
    normal_ = path.normal;
    if (identifiers_.size() != vertices_.size()) identifiers_.clear();
}

AcDbPolyline* AcDbPolyline::likeThis(const BulgePath& path) const {
    auto* const polyline = new AcDbPolyline;
    polyline->setPath(path);
    polyline->plinegen_ = plinegen_;
    return polyline;
}

bool AcDbPolyline::subShape(CurveShape& shape) const {
    return path().addTo(shape);
}

AcDbCurve* AcDbPolyline::subPart(double from, double to) const {
    return likeThis(path().part(from, to));
}

Acad::ErrorStatus AcDbPolyline::reverseCurve() {
    assertWriteEnabled();
    setPath(path().reversed());
    std::reverse(identifiers_.begin(), identifiers_.end());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const std::vector<BulgePath> paths = path().offset(distance);
    for (const BulgePath& offset : paths) {
        AcDbPolyline* const polyline = likeThis(offset);
        polyline->setPropertiesFrom(this);
        curves.append(polyline);
    }
    return paths.empty() ? Acad::eInvalidInput : Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::extend(double parameter) {
    assertWriteEnabled();
    const size_t count = vertices_.size();
    const auto end = static_cast<double>(count) - 1;
    const bool atStart = parameter < 0;
    if (closed_ || count < 2 || !std::isfinite(parameter) || (!atStart && parameter <= end)) {
        return Acad::eInvalidInput;
    }
    const size_t segment = atStart ? 0 : count - 2;
    const Piece piece = path().segmentInPlane(segment);
    const double share = parameter - static_cast<double>(segment);
    if (piece.kind == Piece::Kind::Conic) {
        // As a whole turn at most.
        BulgeVertex& vertex = vertices_[segment];
        const double sweep = piece.last * (atStart ? 1 - share : share);
        if (sweep >= 2 * std::numbers::pi) return Acad::eInvalidInput;
        const AcGePoint3d there = piece.at(piece.last * share);
        vertex.bulge = std::copysign(std::tan(sweep / 4), vertex.bulge);
        vertices_[atStart ? 0 : count - 1].point = {there.x, there.y};
        return Acad::eOk;
    }
    const AcGePoint3d there = piece.at(share);
    vertices_[atStart ? 0 : count - 1].point = {there.x, there.y};
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const PlanarTransform change(normal_, transform);
    if (!change.keepsArcs(thickness_)) return Acad::eCannotScaleNonUniformly;
    // Drags move many polylines many times: the vertices stay where they are in memory.
    BulgePath moved{std::move(vertices_), closed_, elevation_, thickness_, normal_};
    moved.transformBy(change);
    vertices_ = std::move(moved.vertices);
    elevation_ = moved.elevation;
    thickness_ = moved.thickness;
    normal_ = moved.normal;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    if (vertices_.empty()) return Acad::eInvalidExtents;
    path().addExtents(extents);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    const int before = entities.length();
    path().explode(entities);
    for (int i = before; i < entities.length(); ++i) {
        static_cast<AcDbCurve*>(entities[i])->setPropertiesFrom(this);
    }
    return entities.length() > before ? Acad::eOk : Acad::eCannotExplodeEntity;
}

bool AcDbPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    if (vertices_.empty()) return true;
    if (!hasWidth()) return AcDbCurve::subWorldDraw(draw);
    path().drawWide(draw);
    return true;
}

void AcDbPolyline::subList() const {
    AcDbCurve::subList();
    listText(L"", closed_ ? L"Closed" : L"Open");
    double width = 0;
    if (getConstantWidth(width) == Acad::eOk) listNumber(L"Constant width", width);
    double length = 0;
    double area = 0;
    double end = 0;
    if (getArea(area) == Acad::eOk) listNumber(L"area", area);
    if (getEndParam(end) == Acad::eOk && getDistAtParam(end, length) == Acad::eOk) {
        listNumber(closed_ ? L"perimeter" : L"length", length);
    }
    for (const BulgeVertex& vertex : vertices_) {
        listPoint(L"at", AcGePoint3d(vertex.point.x, vertex.point.y, elevation_));
        if (vertex.bulge != 0) listNumber(L"bulge", vertex.bulge);
        if (vertex.startWidth != vertex.endWidth) {
            listNumber(L"starting width", vertex.startWidth);
            listNumber(L"ending width", vertex.endWidth);
        }
    }
    listThickness(thickness_);
    listNormal(normal_);
}

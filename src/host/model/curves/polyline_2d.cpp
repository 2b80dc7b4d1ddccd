#include "platform/db/polyline_2d.h"

#include "host/model/core/dwg_form.h"
#include "host/model/curves/bulge_path.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, 0, 0, L"POLYLINE", L"")

AcDb2dPolyline::AcDb2dPolyline() = default;
AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& points,
                               double elevation, bool closed, double defaultStartWidth,
                               double defaultEndWidth, const AcGeDoubleArray* bulges)
    : startWidth_(defaultStartWidth),
      endWidth_(defaultEndWidth),
      elevation_(elevation),
      closed_(closed) {
    for (int i = 0; i < points.length(); ++i) {
        const double bulge = bulges != nullptr && i < bulges->length() ? bulges->at(i) : 0;
        appendVertex(new AcDb2dVertex(points[i], bulge, defaultStartWidth, defaultEndWidth));
    }
    convertToPolyType(type);
}
AcDb2dPolyline::~AcDb2dPolyline() = default;

std::unique_ptr<AcDbEntity> AcDb2dPolyline::newVertex(uint8_t) const {
    return std::make_unique<AcDb2dVertex>();
}

Acad::ErrorStatus AcDb2dPolyline::setElevation(double elevation) {
    assertWriteEnabled();
    elevation_ = elevation;
    changeVertices<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        const AcGePoint3d point = vertex.position();
        vertex.setPosition({point.x, point.y, elevation});
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex) {
    if (vertex == nullptr) return Acad::eNullEntityPointer;
    const AcGePoint3d point = vertex->position();
    vertex->setPosition({point.x, point.y, elevation_});
    return appendVertexEntity(id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* vertex) {
    AcDbObjectId id;
    return appendVertex(id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::insertVertexAt(AcDbObjectId& id, AcDbObjectId after,
                                                 AcDb2dVertex* vertex) {
    if (vertex == nullptr) return Acad::eNullEntityPointer;
    const AcGePoint3d point = vertex->position();
    vertex->setPosition({point.x, point.y, elevation_});
    return insertVertexEntity(id, after, vertex);
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vertex) const {
    const AcGePoint3d point = vertex.position();
    return fromPlane(AcGeMatrix3d::planeToWorld(normal_), {point.x, point.y}, elevation_);
}

void AcDb2dPolyline::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation({0, 0, elevation_});
}

namespace {

bool isDrawn(const AcDb2dVertex& vertex) {
    return vertex.vertexType() != AcDb::k2dSplineCtlVertex;
}

AcGePoint2d inPlane(const AcDb2dVertex& vertex) {
    return {vertex.position().x, vertex.position().y};
}

void setInPlane(AcDb2dVertex& vertex, const AcGePoint2d& point) {
    vertex.setPosition({point.x, point.y, vertex.position().z});
}

}  // namespace

BulgePath AcDb2dPolyline::path() const {
    BulgePath path;
    path.closed = closed_;
    path.elevation = elevation_;
    path.thickness = thickness_;
    path.normal = normal_;
    forEachVertex<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if (!isDrawn(vertex)) return;
        path.vertices.push_back(
            {inPlane(vertex), vertex.bulge(), vertex.startWidth(), vertex.endWidth()});
    });
    return path;
}

AcDb2dPolyline* AcDb2dPolyline::likeThis(const BulgePath& path) const {
    auto* const polyline = new AcDb2dPolyline;
    polyline->startWidth_ = startWidth_;
    polyline->endWidth_ = endWidth_;
    polyline->elevation_ = path.elevation;
    polyline->thickness_ = path.thickness;
    polyline->normal_ = path.normal;
    polyline->closed_ = path.closed;
    polyline->plinegen_ = plinegen_;
    for (const BulgeVertex& vertex : path.vertices) {
        polyline->appendVertex(new AcDb2dVertex({vertex.point.x, vertex.point.y, 0}, vertex.bulge,
                                                vertex.startWidth, vertex.endWidth));
    }
    return polyline;
}

bool AcDb2dPolyline::subShape(CurveShape& shape) const {
    return path().addTo(shape);
}

AcDbCurve* AcDb2dPolyline::subPart(double from, double to) const {
    return likeThis(path().part(from, to));
}

// The vertices stay where they are; what they hold goes round among those of one kind.
Acad::ErrorStatus AcDb2dPolyline::reverseCurve() {
    assertWriteEnabled();
    const BulgePath turned = path().reversed();
    std::vector<AcGePoint2d> frame;
    forEachVertex<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if (!isDrawn(vertex)) frame.push_back(inPlane(vertex));
    });
    size_t drawn = 0;
    changeVertices<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        if (!isDrawn(vertex)) {
            setInPlane(vertex, frame.back());
            frame.pop_back();
            return;
        }
        const BulgeVertex& from = turned.vertices[drawn++];
        setInPlane(vertex, from.point);
        vertex.setBulge(from.bulge);
        vertex.setStartWidth(from.startWidth);
        vertex.setEndWidth(from.endWidth);
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const std::vector<BulgePath> paths = path().offset(distance);
    for (const BulgePath& offset : paths) {
        AcDb2dPolyline* const polyline = likeThis(offset);
        polyline->setPropertiesFrom(this);
        curves.append(polyline);
    }
    return paths.empty() ? Acad::eInvalidInput : Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const PlanarTransform change(normal_, transform);
    if (!change.keepsArcs(thickness_)) return Acad::eCannotScaleNonUniformly;
    changeVertices<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        const AcGePoint2d point = inPlane(vertex);
        vertex.setPosition(change.ocs * AcGePoint3d(point.x, point.y, elevation_));
        if (change.turnsOver) vertex.setBulge(-vertex.bulge());
        vertex.setStartWidth(vertex.startWidth() * change.scale);
        vertex.setEndWidth(vertex.endWidth() * change.scale);
        if (vertex.isTangentUsed()) vertex.setTangent(change.angle(vertex.tangent()));
    });
    elevation_ = (change.ocs * AcGePoint3d(0, 0, elevation_)).z;
    startWidth_ *= change.scale;
    endWidth_ *= change.scale;
    thickness_ *= change.thicknessScale;
    normal_ = change.normal;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const BulgePath whole = path();
    if (whole.vertices.empty()) return Acad::eInvalidExtents;
    whole.addExtents(extents);
    return Acad::eOk;
}

namespace {

// What shapes the polyline: fitted vertices of a spline only follow its frame.
bool isGrip(const AcDb2dVertex& vertex) {
    return vertex.vertexType() != AcDb::k2dSplineFitVertex;
}

}  // namespace

Acad::ErrorStatus AcDb2dPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDb2dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    return subMoveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcDb2dPolyline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    forEachVertex<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if (isGrip(vertex)) points.append(vertexPosition(vertex));
    });
    return Acad::eOk;
}

// All together also move out of the plane; a spline follows its frame.
Acad::ErrorStatus AcDb2dPolyline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                         const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector3d own = AcGeMatrix3d::worldToPlane(normal_) * offset;
    int index = 0;
    bool all = true;
    changeVertices<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        if (!isGrip(vertex)) return;
        const bool moves = indices.contains(index++);
        all = all && moves;
        if (moves) setInPlane(vertex, inPlane(vertex) + AcGeVector2d(own.x, own.y));
    });
    if (index > 0 && all && own.z != 0) setElevation(elevation_ + own.z);
    const bool spline = type_ == AcDb::k2dQuadSplinePoly || type_ == AcDb::k2dCubicSplinePoly;
    return spline ? splineFit(type_, 0) : Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    const int before = entities.length();
    path().explode(entities);
    for (int i = before; i < entities.length(); ++i) {
        static_cast<AcDbCurve*>(entities[i])->setPropertiesFrom(this);
    }
    return entities.length() > before ? Acad::eOk : Acad::eCannotExplodeEntity;
}

bool AcDb2dPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    const BulgePath whole = path();
    if (whole.vertices.empty()) return true;
    if (!whole.hasWidth()) return VertexCurve::subWorldDraw(draw);
    whole.drawWide(draw);
    return true;
}

void AcDb2dPolyline::subList() const {
    VertexCurve::subList();
    listText(L"", closed_ ? L"Closed" : L"Open");
    listNumber(L"starting width", startWidth_);
    listNumber(L"ending width", endWidth_);
    forEachVertex<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        listPoint(L"VERTEX at", vertexPosition(vertex));
        if (vertex.bulge() != 0) listNumber(L"bulge", vertex.bulge());
    });
    double area = 0;
    if (getArea(area) == Acad::eOk) listNumber(L"area", area);
    listThickness(thickness_);
    listNormal(normal_);
}

namespace {

enum PolylineFlag { kClosedFlag = 1, kFitFlag = 2, kSplineFlag = 4, kPlinegenFlag = 128 };
constexpr int kQuadratic = 5;  // of group 75
constexpr int kCubic = 6;

AcDb::Poly2dType polyTypeOf(int flags, int surface) {
    if ((flags & kSplineFlag) != 0) {
        return surface == kQuadratic ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
    }
    return (flags & kFitFlag) != 0 ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

bool isSpline(AcDb::Poly2dType type) {
    return type == AcDb::k2dQuadSplinePoly || type == AcDb::k2dCubicSplinePoly;
}

int16_t flagsOf(const AcDb2dPolyline& line) {
    int flags = (line.isClosed() ? kClosedFlag : 0) | (isSpline(line.polyType()) ? kSplineFlag : 0);
    if (line.polyType() == AcDb::k2dFitCurvePoly) flags |= kFitFlag;
    if (line.isLinetypeGenerationOn()) flags |= kPlinegenFlag;
    return static_cast<int16_t>(flags);
}

int16_t surfaceOf(AcDb::Poly2dType type) {
    if (!isSpline(type)) return 0;
    return type == AcDb::k2dQuadSplinePoly ? kQuadratic : kCubic;
}

}  // namespace

Acad::ErrorStatus AcDb2dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = VertexCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeInt16(flagsOf(*this));
    filer->writeInt16(surfaceOf(type_));
    filer->writeDouble(startWidth_);
    filer->writeDouble(endWidth_);
    sg::model::writeThickness(filer, thickness_);
    filer->writeDouble(elevation_);
    writeExtrusion(filer, normal_);
    return writeVertices(filer);
}

Acad::ErrorStatus AcDb2dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = VertexCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    int16_t flags = 0;
    int16_t surface = 0;
    filer->readInt16(&flags);
    filer->readInt16(&surface);
    type_ = polyTypeOf(flags, surface);
    closed_ = (flags & kClosedFlag) != 0;
    plinegen_ = (flags & kPlinegenFlag) != 0;
    filer->readDouble(&startWidth_);
    filer->readDouble(&endWidth_);
    readThickness(filer, thickness_);
    filer->readDouble(&elevation_);
    readExtrusion(filer, normal_);
    return readVertices(filer);
}

Acad::ErrorStatus AcDb2dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = VertexCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDb2dPolyline")) return status;
    int flags = -1;
    int surface = type_ == AcDb::k2dQuadSplinePoly ? kQuadratic : kCubic;
    double elevation = elevation_;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 10:
                elevation = fields.point().z;
                break;
            case 39:
                thickness_ = fields.real();
                break;
            case 40:
                startWidth_ = fields.real();
                break;
            case 41:
                endWidth_ = fields.real();
                break;
            case 70:
                flags = fields.integer();
                break;
            case 75:
                surface = fields.integer();
                break;
            case 210:
                setUnit(normal_, fields.vector());
                break;
            default:
                break;
        }
    }
    if (flags >= 0) {
        type_ = polyTypeOf(flags, surface);
        closed_ = (flags & kClosedFlag) != 0;
        plinegen_ = (flags & kPlinegenFlag) != 0;
    }
    if (elevation != elevation_) setElevation(elevation);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = VertexCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    const int16_t flags = flagsOf(*this);
    const int16_t surface = surfaceOf(type_);
    filer->writeString(100, L"AcDb2dPolyline");
    filer->writeInt16(66, 1);
    filer->writePoint3d(10, {0, 0, elevation_});
    writeThickness(filer, thickness_);
    if (all || flags != 0) filer->writeInt16(70, flags);
    if (all || startWidth_ != 0 || endWidth_ != 0) {
        filer->writeDouble(40, startWidth_);
        filer->writeDouble(41, endWidth_);
    }
    writeNormal(filer, normal_);
    if (all) {
        for (const int code : {71, 72, 73, 74})
            filer->writeInt16(code, 0);
    }
    if (all || surface != 0) filer->writeInt16(75, surface);
    return filer->filerStatus();
}

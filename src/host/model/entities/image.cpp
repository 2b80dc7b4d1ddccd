#include "host/model/entities/image.h"

#include <memory>

#include "host/model/curves/listing.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"
#include "platform/gi/draw.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImage, AcDbEntity, 0, 0, L"IMAGE", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbWipeout, AcDbRasterImage, 0, 0, L"WIPEOUT", nullptr)

AcDbRasterImage::AcDbRasterImage() = default;
AcDbRasterImage::~AcDbRasterImage() = default;
AcDbWipeout::AcDbWipeout() = default;
AcDbWipeout::~AcDbWipeout() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbRasterImage::setImageDefId(AcDbObjectId definition) {
    assertWriteEnabled();
    definition_ = definition;
    return Acad::eOk;
}

void AcDbRasterImage::getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const {
    assertReadEnabled();
    origin = origin_;
    u = u_ * size_.x;
    v = v_ * size_.y;
}

Acad::ErrorStatus AcDbRasterImage::setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u,
                                                  const AcGeVector3d& v) {
    if (u.crossProduct(v).isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    origin_ = origin;
    u_ = u / size_.x;
    v_ = v / size_.y;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setImageSize(const AcGeVector2d& pixels) {
    if (!(pixels.x > 0) || !(pixels.y > 0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    size_ = pixels;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setClipBoundary(ClipType type, const AcGePoint2dArray& points) {
    if (points.length() < (type == kRectangle ? 2 : 3)) return Acad::eInvalidInput;
    assertWriteEnabled();
    clipType_ = type;
    clip_.assign(points.begin(), points.end());
    clipping_ = true;
    display_ |= kUsesClipping;
    return Acad::eOk;
}

AcGePoint3d AcDbRasterImage::fromPixels(const AcGePoint2d& point) const {
    return origin_ + u_ * (point.x + 0.5) + v_ * (size_.y - point.y - 0.5);
}

std::vector<AcGePoint3d> AcDbRasterImage::fromPixels(
    const std::vector<AcGePoint2d>& corners) const {
    std::vector<AcGePoint3d> points;
    for (const AcGePoint2d& corner : corners)
        points.push_back(fromPixels(corner));
    return points;
}

std::vector<AcGePoint2d> AcDbRasterImage::wholeFrame() const {
    return {
        {-0.5, size_.y - 0.5}, {size_.x - 0.5, size_.y - 0.5}, {size_.x - 0.5, -0.5}, {-0.5, -0.5}};
}

// The corners of the boundary, each once; empty without one.
std::vector<AcGePoint2d> AcDbRasterImage::clipFrame() const {
    if (!isClipped()) return {};
    if (clipType_ == kRectangle && clip_.size() >= 2) {
        const AcGePoint2d& a = clip_[0];
        const AcGePoint2d& b = clip_[1];
        return {{a.x, b.y}, {b.x, b.y}, {b.x, a.y}, {a.x, a.y}};
    }
    if (clipType_ != kPolygon || clip_.size() < 3) return {};
    std::vector<AcGePoint2d> corners = clip_;
    if (corners.front() == corners.back()) corners.pop_back();
    return corners;
}

std::vector<AcGePoint3d> AcDbRasterImage::frame() const {
    const std::vector<AcGePoint2d> clip = clipFrame();
    return fromPixels(clip.empty() || clipInverted_ ? wholeFrame() : clip);
}

std::vector<std::vector<AcGePoint3d>> AcDbRasterImage::shownArea() const {
    std::vector<std::vector<AcGePoint3d>> area = {frame()};
    if (const auto clip = clipFrame(); clipInverted_ && !clip.empty())
        area.push_back(fromPixels(clip));
    return area;
}

Acad::ErrorStatus AcDbRasterImage::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(origin_, u_.crossProduct(v_));
    type = AcDb::kPlanar;
    return Acad::eOk;
}

// ---- The reactor --------------------------------------------------------------------------------

void AcDbRasterImage::addReactor() {
    auto reactor = std::make_unique<AcDbRasterImageDefReactor>(objectId());
    AcDbRasterImageDef* definition = nullptr;
    if (acdbOpenObject(definition, definition_, AcDb::kForWrite) != Acad::eOk) return;
    AcDbObjectId id;
    if (database()->addAcDbObject(id, reactor.get()) == Acad::eOk) {
        AcDbRasterImageDefReactor* const given = reactor.release();
        given->setOwnerId(objectId());
        given->close();
        definition->addPersistentReactor(id);
        assertWriteEnabled();
        reactor_ = id;
    }
    definition->close();
}

Acad::ErrorStatus AcDbRasterImage::subClose() {
    const bool due = isNewObject() && !isUndoing() && !definition_.isNull() && reactor_.isNull();
    if (due && isWriteEnabled()) addReactor();
    return AcDbEntity::subClose();
}

Acad::ErrorStatus AcDbRasterImage::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbEntity::subErase(erasing);
    if (status == Acad::eOk) sg::model::eraseObject(reactor_, erasing);
    return status;
}

// ---- Geometry -----------------------------------------------------------------------------------

bool AcDbRasterImage::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    std::vector<AcGePoint3d> outline = frame();
    outline.push_back(outline.front());
    draw->geometry().polyline(static_cast<uint32_t>(outline.size()), outline.data());
    return true;
}

Acad::ErrorStatus AcDbRasterImage::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector3d u = transform * u_;
    const AcGeVector3d v = transform * v_;
    if (u.crossProduct(v).length() <= 1e-12 * u.length() * v.length()) return Acad::eInvalidInput;
    assertWriteEnabled();
    origin_ = transform * origin_;
    u_ = u;
    v_ = v;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                    AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : frame())
        points.append(corner);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    if (indices.isEmpty()) return Acad::eOk;
    const std::vector<AcGePoint3d> corners = frame();
    const auto grip = static_cast<size_t>(indices[0]);
    if (grip >= corners.size()) return Acad::eInvalidIndex;
    if (indices.length() > 1) return transformBy(AcGeMatrix3d::translation(offset));
    const AcGePoint3d& fixed = corners[(grip + corners.size() / 2) % corners.size()];
    const AcGeVector3d reach = corners[grip] - fixed;
    if (reach.isZeroLength()) return Acad::eOk;
    const double factor = 1 + offset.dotProduct(reach) / reach.lengthSqrd();
    return factor > 0 ? transformBy(AcGeMatrix3d::scaling(factor, fixed)) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbRasterImage::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(origin_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                          const AcGeVector3d& offset) {
    return indices.isEmpty() ? Acad::eOk : transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbRasterImage::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t,
                                                     const AcGePoint3d&, const AcGePoint3d&,
                                                     const AcGeMatrix3d&, AcGePoint3dArray& points,
                                                     AcDbIntArray&) const {
    assertReadEnabled();
    const std::vector<AcGePoint3d> corners = frame();
    for (size_t i = 0; i < corners.size(); ++i) {
        const AcGePoint3d& next = corners[(i + 1) % corners.size()];
        if (mode == AcDb::kOsModeEnd) points.append(corners[i]);
        if (mode == AcDb::kOsModeMid) points.append(corners[i] + (next - corners[i]) / 2);
    }
    if (mode == AcDb::kOsModeIns) points.append(origin_);
    return Acad::eOk;
}

namespace {

std::unique_ptr<AcDb3dPolyline> closedPolyline(const std::vector<AcGePoint3d>& frame) {
    AcGePoint3dArray points;
    for (const AcGePoint3d& point : frame)
        points.append(point);
    return std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, points, true);
}

}  // namespace

Acad::ErrorStatus AcDbRasterImage::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                                    AcGePoint3dArray& points, int64_t thisMarker,
                                                    int64_t otherMarker) const {
    assertReadEnabled();
    return closedPolyline(frame())->intersectWith(other, mode, points, thisMarker, otherMarker);
}

Acad::ErrorStatus AcDbRasterImage::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                                    const AcGePlane& projection,
                                                    AcGePoint3dArray& points, int64_t thisMarker,
                                                    int64_t otherMarker) const {
    assertReadEnabled();
    return closedPolyline(frame())->intersectWith(other, mode, projection, points, thisMarker,
                                                  otherMarker);
}

void AcDbRasterImage::subList() const {
    AcDbEntity::subList();
    sg::model::listPoint(L"at", origin_);
    sg::model::listNumber(L"Width:", (u_ * size_.x).length());
    sg::model::listNumber(L"Height:", (v_ * size_.y).length());
}

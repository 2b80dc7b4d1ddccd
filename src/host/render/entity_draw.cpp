#include "host/render/entity_draw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/curves/point.h"
#include "host/model/entities/hatch.h"
#include "host/model/entities/image.h"
#include "host/model/entities/shown_block.h"
#include "host/model/tables/header_variables.h"
#include "host/render/entity_geometry.h"
#include "host/render/image_files.h"
#include "host/render/kept_graphics.h"
#include "platform/db/attribute.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/mtext.h"
#include "platform/db/polyline.h"
#include "platform/db/polyline_2d.h"
#include "platform/db/text.h"

namespace sg::render {
namespace {

constexpr int kDeepestNesting = 64;

// Marks of points (PDMODE).
constexpr int kMark = 7;
constexpr int kWithCircle = 32;
constexpr int kWithSquare = 64;

EntityKind findKind(const AcDbEntity& entity) {
    if (entity.isKindOf(AcDbPolyline::desc())) return EntityKind::polyline;
    if (entity.isKindOf(AcDb2dPolyline::desc())) return EntityKind::polyline2d;
    if (entity.isKindOf(AcDbAttribute::desc())) return EntityKind::attribute;
    if (entity.isKindOf(AcDbText::desc()) || entity.isKindOf(AcDbMText::desc()))
        return EntityKind::text;
    if (entity.isKindOf(AcDbHatch::desc())) return EntityKind::hatch;
    if (entity.isKindOf(AcDbPoint::desc())) return EntityKind::point;
    if (entity.isKindOf(AcDbWipeout::desc())) return EntityKind::wipeout;
    if (entity.isKindOf(AcDbRasterImage::desc())) return EntityKind::image;
    if (entity.isKindOf(AcDbBlockReference::desc())) return EntityKind::reference;
    if (model::proxyData(entity) != nullptr) return EntityKind::proxy;
    return EntityKind::other;
}

bool isWide(const AcDbEntity& entity, EntityKind kind) {
    if (kind == EntityKind::polyline) return static_cast<const AcDbPolyline&>(entity).hasWidth();
    const auto& polyline = static_cast<const AcDb2dPolyline&>(entity);
    return polyline.defaultStartWidth() > 0 || polyline.defaultEndWidth() > 0;
}

PatternRun patternRun(bool isGenerated) {
    return isGenerated ? PatternRun::through : PatternRun::perSegment;
}

PatternRun patternRunOf(const AcDbEntity& entity, EntityKind kind) {
    switch (kind) {
        case EntityKind::polyline:
            return patternRun(static_cast<const AcDbPolyline&>(entity).hasPlinegen());
        case EntityKind::polyline2d:
            return patternRun(static_cast<const AcDb2dPolyline&>(entity).isLinetypeGenerationOn());
        case EntityKind::text:
        case EntityKind::attribute:
        case EntityKind::hatch:
        case EntityKind::point:
            return PatternRun::none;
        default:
            return PatternRun::through;
    }
}

}  // namespace

DisplaySettings DisplaySettings::of(const AcDbDatabase& database) {
    const model::HeaderVariables& header = model::DatabaseState::of(database).header();
    DisplaySettings settings;
    settings.fills = header.get<int32_t>(L"FILLMODE") != 0;
    settings.attributes = header.get<int32_t>(L"ATTMODE") != 0;
    settings.pointMode = header.get<int32_t>(L"PDMODE");
    settings.pointSize = header.get<double>(L"PDSIZE");
    settings.imageFrames = AcDbRasterVariables::showsFrames(database);
    settings.wipeoutFrames = AcDbWipeoutVariables::showsFrames(database);
    return settings;
}

// ---- The draw -----------------------------------------------------------------------------------

EntityDraw::EntityDraw(Canvas& canvas, Looks& looks, const DisplaySettings& settings)
    : canvas_(canvas),
      traits_(std::make_unique<Traits>(looks)),
      geometry_(std::make_unique<Geometry>(*this, canvas, settings)),
      isDragging_(settings.isDragging) {}

EntityDraw::~EntityDraw() = default;

void EntityDraw::drawSpace(AcDbObjectId block, const std::vector<AcDbObjectId>& except) {
    geometry_->drawSpace(block, except);
}

const Undrawn& EntityDraw::undrawn() const {
    return geometry_->undrawn;
}

size_t EntityDraw::boxed() const {
    return geometry_->boxed;
}

double EntityDraw::deviation(const AcGePoint3d&) const {
    return geometry_->deviation();
}

AcGiGeometry& EntityDraw::geometry() const {
    return *geometry_;
}

AcGiSubEntityTraits& EntityDraw::subEntityTraits() const {
    return *traits_;
}

// ---- Entities -----------------------------------------------------------------------------------

void EntityDraw::Geometry::drawSpace(AcDbObjectId block, const std::vector<AcDbObjectId>& except) {
    AcDbBlockTableRecord* record = nullptr;
    if (acdbOpenObject(record, block) != Acad::eOk) return;
    for (const AcDbObjectId id : model::drawOrder(*record)) {
        if (std::find(except.begin(), except.end(), id) != except.end()) continue;
        AcDbEntity* entity = nullptr;
        if (acdbOpenObject(entity, id) != Acad::eOk) continue;
        drawEntity(*entity);
        entity->close();
    }
    record->close();
}

bool EntityDraw::Geometry::draw(AcGiDrawable* drawable) {
    if (drawable == nullptr || depth_ == kDeepestNesting) return false;
    if (AcDbEntity* const entity = AcDbEntity::cast(drawable)) {
        drawEntity(*entity);
        return false;
    }
    const Traits::State before = traits().state();
    ++depth_;
    drawable->worldDraw(&draw_);
    --depth_;
    traits().begin(before);
    return false;
}

// An attribute stands beside the block, not in it.
void EntityDraw::Geometry::drawEntity(AcDbEntity& entity) {
    if (entity.visibility() != AcDb::kVisible) return;
    const EntityKind kind = findKind(entity);
    const Traits::State before = traits().state();
    Level* const outside = level_;
    Level* const outer =
        kind == EntityKind::attribute && outside != nullptr ? outside->outer : outside;

    Traits::State state;
    state.properties = Properties::of(entity);
    state.outer = outer == nullptr ? nullptr : &outer->plain;
    state.run = patternRunOf(entity, kind);
    traits().begin(state);
    Level level{traits().plain(), outer};
    if (!level.plain.isFrozen) {
        level_ = &level;
        ++depth_;
        if (outer != nullptr) ++inBlocks_;
        drawItself(entity, kind);
        --depth_;
        level_ = outside;
    }
    traits().begin(before);
}

void EntityDraw::Geometry::drawItself(AcDbEntity& entity, EntityKind kind) {
    switch (kind) {
        case EntityKind::point:
            if (isShown()) drawPoint(static_cast<const AcDbPoint&>(entity));
            return;
        case EntityKind::hatch:
            if (!settings_.fills || !isShown()) return;
            if (canvas_.isMeasuring()) {
                measureBox(entity);
                return;
            }
            break;
        case EntityKind::polyline:
        case EntityKind::polyline2d:
            // The outline of a wide one is fine where the view does not say how fine it may be.
            if (canvas_.isMeasuring() && isShown() && isWide(entity, kind)) {
                measureBox(entity);
                return;
            }
            break;
        case EntityKind::attribute:
            if (!settings_.attributes) return;
            break;
        case EntityKind::wipeout:
            if (isShown()) cover(static_cast<const AcDbWipeout&>(entity).frame());
            if (!settings_.wipeoutFrames && !canvas_.isMeasuring()) return;
            break;
        case EntityKind::image:
            if (canvas_.isMeasuring() || !isShown()) break;
            if (drawPixels(static_cast<const AcDbRasterImage&>(entity)) && !settings_.imageFrames) {
                return;
            }
            break;
        case EntityKind::reference:
            if (drawRoughly(entity)) return;
            break;
        case EntityKind::proxy:
            if (!drawKeptGraphics(draw_, entity) && !canvas_.isMeasuring()) {
                ++undrawn[model::dxfNameOf(entity)];
            }
            return;
        default:
            break;
    }
    entity.worldDraw(&draw_);
}

// Hides what was drawn before.
void EntityDraw::Geometry::cover(const std::vector<AcGePoint3d>& corners) {
    Look look = traits().look();
    look.color = settings_.ground;
    look.alpha = 255;
    const auto count = static_cast<uint32_t>(corners.size());
    canvas_.area(look, toWorld(count, corners.data()), {&count, 1}, Canvas::Rule::evenOdd);
}

bool EntityDraw::Geometry::drawPixels(const AcDbRasterImage& image) {
    const auto* const definition = model::peek<AcDbRasterImageDef>(image.imageDefId());
    if (settings_.images == nullptr || definition == nullptr || !image.isShown()) return false;
    const std::wstring& file = settings_.images->find(definition->sourceFileName());
    if (file.empty()) return false;
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    AcGePoint3d origin;
    AcGeVector3d u, v;
    image.getOrientation(origin, u, v);
    auto shown = std::make_shared<ShownImage>();
    shown->files = settings_.images;
    shown->file = file;
    shown->corner = matrix * (origin + v);
    shown->right = matrix * u;
    shown->down = matrix * -v;
    shown->brightness = image.brightness();
    shown->contrast = image.contrast();
    shown->fade = image.fade();
    shown->isTransparent = image.isTransparent();
    std::vector<AcGePoint3d> points;
    std::vector<uint32_t> counts;
    for (const std::vector<AcGePoint3d>& bound : image.shownArea()) {
        counts.push_back(static_cast<uint32_t>(bound.size()));
        points.insert(points.end(), bound.begin(), bound.end());
    }
    for (AcGePoint3d& point : points)
        point = matrix * point;
    canvas_.image(traits().look(), shown, points, counts);
    return true;
}

void EntityDraw::Geometry::measureBox(const AcDbEntity& entity) {
    AcDbExtents box;
    if (entity.getGeomExtents(box) == Acad::eOk) measureBox(box);
}

// A mark in the point's plane. Its size is absolute above 0, else a share of the view's height.
void EntityDraw::Geometry::drawPoint(const AcDbPoint& point) {
    const int mark = settings_.pointMode & kMark;
    const bool hasFrame = (settings_.pointMode & (kWithCircle | kWithSquare)) != 0;
    if (canvas_.isMeasuring() || (mark == 0 && !hasFrame)) {
        const std::array<AcGePoint3d, 2> dot = {point.position(), point.position()};
        if (point.thickness() != 0) traits().setThickness(point.thickness());
        const AcGeVector3d normal = point.normal();
        if (canvas_.isMeasuring() || mark != 1) polyline(2, dot.data(), &normal, -1);
        return;
    }
    constexpr double kUsualShare = 0.05;
    const double size = settings_.pointSize > 0 ? settings_.pointSize
                        : settings_.pointSize < 0
                            ? -settings_.pointSize / 100 * settings_.viewHeight
                            : kUsualShare * settings_.viewHeight;
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(point.normal()) *
                               AcGeMatrix3d::rotation(point.ecsRotation(), AcGeVector3d::kZAxis);
    const AcGePoint3d center = matrix * point.position();
    const auto at = [&](double x, double y) {
        return center + plane * AcGeVector3d(x * size, y * size, 0);
    };
    const auto line = [&](std::initializer_list<AcGePoint3d> points) {
        canvas_.line(traits().look(), {points.begin(), points.size()}, false, PatternRun::none);
    };
    if (mark == 0) line({center});
    if (mark == 2) line({at(-1, 0), at(1, 0)});
    if (mark == 2) line({at(0, -1), at(0, 1)});
    if (mark == 3) line({at(-1, -1), at(1, 1)});
    if (mark == 3) line({at(-1, 1), at(1, -1)});
    if (mark == 4) line({center, at(0, 0.5)});
    if ((settings_.pointMode & kWithSquare) != 0) {
        line({at(-0.5, -0.5), at(0.5, -0.5), at(0.5, 0.5), at(-0.5, 0.5), at(-0.5, -0.5)});
    }
    if ((settings_.pointMode & kWithCircle) != 0) {
        std::vector<AcGePoint3d> ring;
        for (int i = 0; i <= 48; ++i) {
            const double angle = i * std::numbers::pi / 24;
            ring.push_back(at(std::cos(angle) / 2, std::sin(angle) / 2));
        }
        canvas_.line(traits().look(), ring, true, PatternRun::none);
    }
}

}  // namespace sg::render

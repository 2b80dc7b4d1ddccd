#include <algorithm>
#include <array>

#include "host/model/core/measuring_draw.h"
#include "host/render/entity_geometry.h"
#include "platform/db/block_reference.h"

// Block references of a drawing whose blocks within blocks hold more than can be drawn one by one.

namespace sg::render {
namespace {

// So many objects in blocks are drawn as they are. Of those beyond, what is smaller than a pixel
// is a dot, and what is where the same has been drawn is left out; and with so many drawn, the rest
// are boxes.
constexpr size_t kMostExact = 200'000;
constexpr size_t kMostDrawn = 2'000'000;
constexpr size_t kMostShaded = 1'000'000;  // where faces hide what is behind them
constexpr double kSmallest = 1;            // pixels
constexpr double kNearest = 0.25;          // pixels; what is nearer is at the same place

size_t copiesOf(const AcDbEntity& reference) {
    const auto* const array = AcDbMInsertBlock::cast(&reference);
    return array == nullptr ? 1 : size_t{array->rows()} * array->columns();
}

using Corners = std::array<AcGePoint3d, 8>;

Corners cornersOf(const AcDbExtents& box, const AcGeMatrix3d& matrix) {
    Corners corners;
    for (size_t i = 0; i < corners.size(); ++i) {
        corners[i] = matrix * AcGePoint3d((i & 1 ? box.maxPoint() : box.minPoint()).x,
                                          (i & 2 ? box.maxPoint() : box.minPoint()).y,
                                          (i & 4 ? box.maxPoint() : box.minPoint()).z);
    }
    return corners;
}

}  // namespace

void EntityDraw::Geometry::measureBox(const AcDbExtents& box) {
    if (box.minPoint().x > box.maxPoint().x) return;
    const Corners corners = cornersOf(box, getModelToWorldTransform());
    canvas_.line(traits().look(), corners, false, PatternRun::none);
}

void EntityDraw::Geometry::drawBox(const AcDbExtents& box) {
    const Corners at = cornersOf(box, getModelToWorldTransform());
    const Look& look = traits().look();
    for (const size_t level : {0, 4}) {
        const std::array<AcGePoint3d, 5> ring = {at[level], at[level + 1], at[level + 3],
                                                 at[level + 2], at[level]};
        canvas_.line(look, ring, true, PatternRun::none);
    }
    for (size_t i = 0; i < 4; ++i) {
        const std::array<AcGePoint3d, 2> riser = {at[i], at[i + 4]};
        canvas_.line(look, riser, false, PatternRun::none);
    }
    ++boxed;
}

size_t EntityDraw::Geometry::PlaceHash::operator()(const Place& place) const {
    uint64_t hash = std::hash<AcDbObjectId>()(place.block);
    for (const int64_t number : place.numbers)
        hash = (hash ^ static_cast<uint64_t>(number)) * 0x9E3779B97F4A7C15 + (hash >> 29);
    return hash;
}

// Whether the reference is the first one there with its looks.
bool EntityDraw::Geometry::isNewPlace(AcDbEntity& reference,
                                      const std::array<AcGePoint3d, 4>& corners) {
    const double step = kNearest * canvas_.unitsPerPixel();
    const auto* const shown = AcDbBlockReference::cast(&reference);
    if (shown == nullptr || !(step > 0)) return true;
    const PlainProperties& plain = traits().plain();
    Place place{shown->blockTableRecord(), plain.layer, {}};
    auto number = place.numbers.begin();
    for (const AcGePoint3d& corner : corners) {
        for (const double part : {corner.x, corner.y, corner.z})
            *number++ = static_cast<int64_t>(std::clamp(part / step, -1e18, 1e18));
    }
    *number = traits().look().color;
    return places_.insert(place).second;
}

bool EntityDraw::Geometry::drawRoughly(AcDbEntity& reference) {
    const size_t due = inBlocks_ + copiesOf(reference);
    if (due <= kMostExact) return false;
    model::MeasuringDraw draw(boxes_);
    reference.worldDraw(&draw);
    const AcDbExtents box = draw.extents();
    if (box.minPoint().x > box.maxPoint().x) return true;
    if (canvas_.isMeasuring()) {
        measureBox(box);
        return true;
    }
    const Corners corners = cornersOf(box, getModelToWorldTransform());
    const auto isSmall = [&](size_t corner) {
        return canvas_.shownLength(corners[corner] - corners[0]) < kSmallest;
    };
    if (isSmall(1) && isSmall(2) && isSmall(4)) {
        if (isShown()) canvas_.line(traits().look(), {corners.data(), 1}, false, PatternRun::none);
        return true;
    }
    if (!isNewPlace(reference, {corners[0], corners[1], corners[2], corners[4]})) return true;
    if (due <= (canvas_.hasDepth() ? kMostShaded : kMostDrawn)) return false;
    if (isShown()) drawBox(box);
    return true;
}

}  // namespace sg::render

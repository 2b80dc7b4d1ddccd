#include "host/render/entity_geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "host/text/line.h"

namespace sg::render {
namespace {

constexpr double kDeviation = 0.1;            // of chords, in pixels
constexpr double kMeasuringDeviation = 1e-3;  // of a circle's radius
constexpr double kMostChords = 20000;
constexpr double kSmallestText = 1.5;  // pixels; the letters of a smaller one are a stroke
constexpr double kLeastRise = 0.25;    // pixels; less thickness does not show

std::vector<AcGePoint3d> raised(std::span<const AcGePoint3d> points, const AcGeVector3d& rise) {
    std::vector<AcGePoint3d> upper;
    for (const AcGePoint3d& p : points)
        upper.push_back(p + rise);
    return upper;
}

// Of a polygon, by its corners and upwards whichever way they go round; the zero vector for one
// without an area.
AcGeVector3d normalOf(std::span<const AcGePoint3d> points) {
    AcGeVector3d normal;
    for (size_t i = 1; i + 1 < points.size(); ++i)
        normal += (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
    if (normal.isZeroLength()) return normal;
    const bool isDown = normal.z < 0 || (normal.z == 0 && normal.x + normal.y < 0);
    return isDown ? -normal.normal() : normal.normal();
}

// Whether a face list has whole faces with indexes below the number of points.
bool isShell(uint32_t points, std::span<const int32_t> faces) {
    for (size_t at = 0; at < faces.size();) {
        const auto count = static_cast<size_t>(std::abs(static_cast<int64_t>(faces[at++])));
        if (count < 3 || count > faces.size() - at) return false;
        for (const size_t end = at + count; at < end; ++at) {
            if (faces[at] < 0 || static_cast<uint32_t>(faces[at]) >= points) return false;
        }
    }
    return true;
}

}  // namespace

EntityDraw::Geometry::Geometry(EntityDraw& draw, Canvas& canvas, const DisplaySettings& settings)
    : draw_(draw), canvas_(canvas), settings_(settings) {}

// ---- Transforms ---------------------------------------------------------------------------------

AcGeMatrix3d EntityDraw::Geometry::getModelToWorldTransform() const {
    return transforms_.empty() ? AcGeMatrix3d() : transforms_.back();
}

bool EntityDraw::Geometry::pushModelTransform(const AcGeMatrix3d& transform) {
    transforms_.push_back(transforms_.empty() ? transform : transforms_.back() * transform);
    return false;
}

bool EntityDraw::Geometry::popModelTransform() {
    if (!transforms_.empty()) transforms_.pop_back();
    return false;
}

std::span<const AcGePoint3d> EntityDraw::Geometry::toWorld(uint32_t count,
                                                           const AcGePoint3d* points) {
    if (transforms_.empty()) return {points, count};
    world_.clear();
    for (uint32_t i = 0; i < count; ++i)
        world_.push_back(transforms_.back() * points[i]);
    return world_;
}

double EntityDraw::Geometry::deviation() const {
    const double scale = transforms_.empty() ? 1 : transforms_.back().scale();
    return scale > 0 ? kDeviation * canvas_.unitsPerPixel() / scale : 0;
}

// ---- Lines --------------------------------------------------------------------------------------

// Points in the world. A thickness shows as a second line above the first, joined to it at the
// corners.
void EntityDraw::Geometry::stroke(std::span<const AcGePoint3d> points, bool isClosed,
                                  const AcGeVector3d* normal, bool hasCorners) {
    const Look& look = traits().look();
    PatternRun run = traits().state().run;
    if (!hasCorners && run == PatternRun::perSegment) run = PatternRun::through;
    canvas_.line(look, points, isClosed, run);
    const double thickness = traits().thickness();
    if (thickness == 0) return;
    const AcGeVector3d up = normal == nullptr ? AcGeVector3d::kZAxis : *normal;
    const AcGeVector3d rise = getModelToWorldTransform() * (up * thickness);
    if (canvas_.shownLength(rise) < (canvas_.isMeasuring() ? 0 : kLeastRise)) return;
    const std::vector<AcGePoint3d> upper = raised(points, rise);
    canvas_.line(look, upper, isClosed, run);
    const size_t step = hasCorners ? 1 : std::max<size_t>(points.size() - 1, 1);
    for (size_t i = 0; i < points.size(); i += step) {
        const std::array<AcGePoint3d, 2> riser = {points[i], upper[i]};
        canvas_.line(look, riser, false, run);
    }
}

bool EntityDraw::Geometry::polyline(uint32_t count, const AcGePoint3d* points,
                                    const AcGeVector3d* normal, int64_t) {
    if (count == 0 || !isShown()) return false;
    const bool isDot = count == 2 && points[0].x == points[1].x && points[0].y == points[1].y &&
                       points[0].z == points[1].z;
    stroke(toWorld(isDot ? 1 : count, points), false, normal, true);
    return false;
}

bool EntityDraw::Geometry::ray(const AcGePoint3d& first, const AcGePoint3d& second) {
    if (!isShown()) return false;
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    canvas_.endless(traits().look(), matrix * first, matrix * (second - first), false);
    return false;
}

bool EntityDraw::Geometry::xline(const AcGePoint3d& first, const AcGePoint3d& second) {
    if (!isShown()) return false;
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    canvas_.endless(traits().look(), matrix * first, matrix * (second - first), true);
    return false;
}

// ---- Arcs ---------------------------------------------------------------------------------------

// So many chords that the arc looks round, in the world.
std::vector<AcGePoint3d> EntityDraw::Geometry::arcPoints(const AcGePoint3d& center, double radius,
                                                         const AcGeVector3d& normal,
                                                         const AcGeVector3d& start,
                                                         double sweep) const {
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    const AcGeVector3d x = start.normal() * radius;
    const AcGeVector3d u = matrix * x;
    const AcGeVector3d v = matrix * normal.normal().crossProduct(x);
    const double largest = std::max(u.length(), v.length());
    const double unit = canvas_.unitsPerPixel();
    const double share = std::clamp(
        unit > 0 && largest > 0 ? kDeviation * unit / largest : kMeasuringDeviation, 1e-9, 0.5);
    const double step = 2 * std::acos(1 - share);
    const auto chords =
        static_cast<size_t>(std::clamp(std::ceil(std::abs(sweep) / step), 1.0, kMostChords));
    std::vector<AcGePoint3d> points;
    points.reserve(chords + 1);
    const AcGePoint3d middle = matrix * center;
    for (size_t i = 0; i <= chords; ++i) {
        const double angle = sweep * static_cast<double>(i) / static_cast<double>(chords);
        points.push_back(middle + u * std::cos(angle) + v * std::sin(angle));
    }
    return points;
}

bool EntityDraw::Geometry::circle(const AcGePoint3d& center, double radius,
                                  const AcGeVector3d& normal) {
    if (!isShown()) return false;
    // Quarters meet where the circle reaches furthest along the axes of its plane.
    std::vector<AcGePoint3d> points;
    constexpr double kQuarter = std::numbers::pi / 2;
    AcGeVector3d start = normal.perpVector();
    for (int quarter = 0; quarter < 4; ++quarter) {
        const auto part = arcPoints(center, radius, normal, start, kQuarter);
        points.insert(points.end(), part.begin() + (quarter == 0 ? 0 : 1), part.end());
        start = normal.crossProduct(start);
    }
    stroke(points, true, &normal, false);
    return false;
}

bool EntityDraw::Geometry::circularArc(const AcGePoint3d& center, double radius,
                                       const AcGeVector3d& normal, const AcGeVector3d& start,
                                       double sweep, AcGiArcType type) {
    if (!isShown()) return false;
    std::vector<AcGePoint3d> points = arcPoints(center, radius, normal, start, sweep);
    if (type == kAcGiArcSimple) {
        stroke(points, false, &normal, false);
        return false;
    }
    if (type == kAcGiArcSector) points.push_back(getModelToWorldTransform() * center);
    const auto count = static_cast<uint32_t>(points.size());
    fillOrOutline(points, {&count, 1});
    return false;
}

// ---- Areas --------------------------------------------------------------------------------------

// Points in the world.
void EntityDraw::Geometry::fillOrOutline(std::span<const AcGePoint3d> points,
                                         std::span<const uint32_t> counts) {
    if (traits().fillType() == kAcGiFillAlways && settings_.fills) {
        canvas_.area(traits().look(), points, counts, Canvas::Rule::evenOdd);
        return;
    }
    std::vector<AcGePoint3d> loop;
    for (const uint32_t count : counts) {
        if (count == 0) continue;
        loop.assign(points.begin(), points.begin() + count);
        loop.push_back(loop.front());
        canvas_.line(traits().look(), loop, true, traits().state().run);
        points = points.subspan(count);
    }
}

// A thickness makes a box of an area, of which the edges show.
void EntityDraw::Geometry::areaWithThickness(std::span<const AcGePoint3d> points,
                                             std::span<const uint32_t> counts,
                                             const AcGeVector3d& normal) {
    fillOrOutline(points, counts);
    const double thickness = traits().thickness();
    if (thickness == 0) return;
    const AcGeVector3d rise = normal * (thickness * getModelToWorldTransform().scale());
    if (canvas_.shownLength(rise) < (canvas_.isMeasuring() ? 0 : kLeastRise)) return;
    const std::vector<AcGePoint3d> upper = raised(points, rise);
    fillOrOutline(upper, counts);
    for (size_t i = 0; i < points.size(); ++i) {
        const std::array<AcGePoint3d, 2> riser = {points[i], upper[i]};
        canvas_.line(traits().look(), riser, false, PatternRun::through);
    }
}

bool EntityDraw::Geometry::polygon(uint32_t count, const AcGePoint3d* points) {
    if (count == 0 || !isShown()) return false;
    const std::span<const AcGePoint3d> placed = toWorld(count, points);
    areaWithThickness(placed, {&count, 1}, normalOf(placed));
    return false;
}

bool EntityDraw::Geometry::polyPolygon(uint32_t loops, const uint32_t* counts,
                                       const AcGePoint3d* points, const AcGeVector3d& normal) {
    if (loops == 0 || !isShown()) return false;
    uint32_t total = 0;
    for (uint32_t i = 0; i < loops; ++i)
        total += counts[i];
    if (total == 0) return false;
    const AcGeVector3d up = getModelToWorldTransform() * normal;
    areaWithThickness(toWorld(total, points), {counts, loops},
                      up.isZeroLength() ? up : up.normal());
    return false;
}

// Each face with its holes.
bool EntityDraw::Geometry::shell(uint32_t points, const AcGePoint3d* vertices,
                                 uint32_t faceListSize, const int32_t* faceList) {
    if (!isShown()) return false;
    if (canvas_.hasDepth() && isShell(points, {faceList, faceListSize})) {
        canvas_.shell(traits().look(), toWorld(points, vertices), {faceList, faceListSize});
        return false;
    }
    std::vector<AcGePoint3d> face;
    std::vector<uint32_t> counts;
    const auto flush = [&] {
        if (!counts.empty()) fillOrOutline(face, counts);
        face.clear();
        counts.clear();
    };
    const AcGeMatrix3d matrix = getModelToWorldTransform();
    for (uint32_t at = 0; at < faceListSize;) {
        const int32_t head = faceList[at++];
        const auto count = static_cast<uint32_t>(std::abs(static_cast<int64_t>(head)));
        if (count > faceListSize - at) break;
        if (head > 0) flush();
        for (uint32_t i = 0; i < count; ++i) {
            const auto vertex = static_cast<uint32_t>(faceList[at + i]);
            face.push_back(vertex < points ? matrix * vertices[vertex] : AcGePoint3d());
        }
        counts.push_back(count);
        at += count;
    }
    flush();
    return false;
}

// ---- Text ---------------------------------------------------------------------------------------

void EntityDraw::Geometry::measureText(const AcGeMatrix3d& toWorld, const std::wstring& line,
                                       const AcGiTextStyle& style) {
    const text::LineBox box = text::measureLine(line, style);
    if (box.isEmpty()) return;
    const double x = style.backward ? -1 : 1;
    const double y = style.upsideDown ? -1 : 1;
    const std::array<AcGePoint3d, 4> corners = {
        toWorld * AcGePoint3d(box.left * x, box.bottom * y, 0),
        toWorld * AcGePoint3d(box.right * x, box.bottom * y, 0),
        toWorld * AcGePoint3d(box.right * x, box.top * y, 0),
        toWorld * AcGePoint3d(box.left * x, box.top * y, 0)};
    canvas_.line(traits().look(), corners, false, PatternRun::none);
}

bool EntityDraw::Geometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                const AcGeVector3d& direction, const std::wstring& line,
                                const AcGiTextStyle& style) {
    if (!isShown() || direction.isZeroLength() || normal.isZeroLength()) return false;
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d up = normal.crossProduct(along).normal();
    AcGeMatrix3d toWorld;
    toWorld.setCoordSystem(position, along, up, along.crossProduct(up));
    if (!transforms_.empty()) toWorld = transforms_.back() * toWorld;
    if (canvas_.isMeasuring()) {
        measureText(toWorld, line, style);
        return false;
    }
    const Look& look = traits().look();
    const AcGeVector3d rise = toWorld * AcGeVector3d(0, style.height, 0);
    if (canvas_.shownLength(rise) < kSmallestText) {
        const text::LineBox box = text::measureLine(line, style);
        if (box.isEmpty()) return false;
        const double y = (box.bottom + box.top) / 2;
        const std::array<AcGePoint3d, 2> ends = {toWorld * AcGePoint3d(box.left, y, 0),
                                                 toWorld * AcGePoint3d(box.right, y, 0)};
        canvas_.line(look, ends, false, PatternRun::none);
        return false;
    }
    visitGlyphs(line, style, [&](const PlacedGlyph& glyph) {
        world_.clear();
        for (const AcGePoint2d& p : glyph.points)
            world_.push_back(toWorld * AcGePoint3d(p.x, p.y, 0));
        if (glyph.isOutline) {
            canvas_.area(look, world_, glyph.counts, Canvas::Rule::nonZero);
            return;
        }
        std::span<const AcGePoint3d> rest = world_;
        for (const uint32_t count : glyph.counts) {
            canvas_.line(look, rest.first(count), false, PatternRun::none);
            rest = rest.subspan(count);
        }
    });
    return false;
}

}  // namespace sg::render

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "host/model/curves/math/angles.h"
#include "host/model/curves/planar.h"
#include "host/model/entities/dimension/sketch.h"

// How dimensions of each kind are put together.

namespace sg::model {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

AcGeVector2d towards(double angle) {
    return {std::cos(angle), std::sin(angle)};
}

double crossOf(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}

// Where the line through `point` along `direction` meets the one through `on` along `along`; the
// point itself when they are parallel.
AcGePoint2d foot(const AcGePoint2d& point, const AcGeVector2d& direction, const AcGePoint2d& on,
                 const AcGeVector2d& along) {
    const double cross = crossOf(direction, along);
    if (std::abs(cross) < 1e-9) return point;
    return point + direction * (crossOf(on - point, along) / cross);
}

struct LinearEnds {
    AcGePoint2d first, second;
};

LinearEnds endsOf(const AcGePoint2d& first, const AcGePoint2d& second, const AcGePoint2d& through,
                  double angle, double oblique) {
    const AcGeVector2d along = towards(angle);
    const bool slanted = oblique != 0 && std::abs(crossOf(towards(oblique), along)) > 1e-9;
    const AcGeVector2d across = slanted ? towards(oblique) : along.perpVector();
    return {foot(first, across, through, along), foot(second, across, through, along)};
}

}  // namespace

// ---- Linear -------------------------------------------------------------------------------------

std::pair<AcGePoint3d, AcGePoint3d> DimensionSketch::lineEnds(const AcDbDimension& dimension,
                                                              const AcGePoint3d& first,
                                                              const AcGePoint3d& second,
                                                              const AcGePoint3d& through,
                                                              double angle, double oblique) {
    const LinearEnds ends = endsOf(flat(dimension, first), flat(dimension, second),
                                   flat(dimension, through), angle, oblique);
    const double height = (AcGeMatrix3d::worldToPlane(dimension.normal()) * through).z;
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(dimension.normal());
    return {fromPlane(toWorld, ends.first, height), fromPlane(toWorld, ends.second, height)};
}

// In the middle of the line, or where it does not fit there, behind its second end.
void DimensionSketch::linearText(const AcGePoint2d& from, const AcGePoint2d& to,
                                 bool arrowsInside) {
    const AcGeVector2d along = to - from;
    const AcGeVector2d unit = along.normal();
    const double arrows = arrowsInside ? 2 * arrowSize_ : 0;
    const bool inside = style_.flag(L"DIMTIX") || along.length() >= box_.width + 2 * gap_ + arrows;
    const double angle = lineTextAngle(along.angle(), inside);
    const bool level = std::abs(crossOf(towards(angle), unit)) > 1e-9;
    const AcGeVector2d lift = level ? AcGeVector2d() : lifted(angle);
    AcGePoint2d middle = from + along / 2;
    if (!inside) {
        const double tail = (arrowsInside ? 1 : 2) * arrowSize_;
        middle = to + unit * (tail + gap_ + box_.width / 2);
    }
    placeText(middle + lift, angle);
}

void DimensionSketch::linear(const AcGePoint3d& first, const AcGePoint3d& second,
                             const AcGePoint3d& through, double angle, double oblique) {
    const AcGePoint2d from = flat(first);
    const AcGePoint2d to = flat(second);
    const LinearEnds ends = endsOf(from, to, flat(through), angle, oblique);
    extension(from, ends.first, true);
    extension(to, ends.second, false);
    const AcGeVector2d along = ends.second - ends.first;
    if (along.isZeroLength()) return placeText(ends.first, lineTextAngle(angle, true));
    const AcGeVector2d unit = along.normal();
    const bool ticks = style_.real(L"DIMTSZ") > 0;
    const double room = along.length() - 2 * arrowSize_;
    const bool textFits = along.length() >= box_.width + 2 * gap_;
    const bool arrowsInside =
        ticks || room >= box_.width + 2 * gap_ || (!textFits && room >= arrowSize_);
    linearText(ends.first, ends.second, arrowsInside);
    if (arrowsInside) {
        const AcGeVector2d past = unit * (ticks ? style_.size(L"DIMDLE") : 0);
        brokenLine(ends.first - past, ends.second + past);
    } else {
        const AcGeVector2d tail = unit * (2 * arrowSize_);
        brokenLine(ends.first - tail, ends.first);
        brokenLine(ends.second, ends.second + tail);
        if (style_.flag(L"DIMTOFL")) brokenLine(ends.first, ends.second);
    }
    arrow(ends.first, arrowsInside ? -unit : unit, true);
    arrow(ends.second, arrowsInside ? unit : -unit, false);
}

// ---- Angular ------------------------------------------------------------------------------------

std::optional<AngleSector> AngleSector::betweenLines(const AcDbDimension& dimension,
                                                     const Line& first, const Line& second,
                                                     const AcGePoint3d& through) {
    const auto flat = [&](const AcGePoint3d& point) {
        return DimensionSketch::flat(dimension, point);
    };
    const std::array<std::array<AcGePoint2d, 2>, 2> lines = {
        {{flat(first.first), flat(first.second)}, {flat(second.first), flat(second.second)}}};
    const AcGeVector2d directions[] = {(lines[0][1] - lines[0][0]).normal(),
                                       (lines[1][1] - lines[1][0]).normal()};
    if (std::abs(crossOf(directions[0], directions[1])) < 1e-9) return std::nullopt;
    AngleSector sector;
    sector.center = foot(lines[0][0], directions[0], lines[1][0], directions[1]);
    const AcGeVector2d spoke = flat(through) - sector.center;
    sector.radius = spoke.length();
    // Of the four half lines from the vertex those next to the point on both sides.
    double before = kTurn;
    double behind = kTurn;
    for (size_t i = 0; i < 2; ++i) {
        for (const AcGeVector2d& ray : {directions[i], -directions[i]}) {
            const auto far = [&](const AcGePoint2d& p) {
                return (p - sector.center).dotProduct(ray);
            };
            const AcGePoint2d& reached =
                far(lines[i][0]) > far(lines[i][1]) ? lines[i][0] : lines[i][1];
            const double back = normalAngle(spoke.angle() - ray.angle());
            const double ahead = normalAngle(ray.angle() - spoke.angle());
            if (back < before) {
                before = back;
                sector.start = ray.angle();
                sector.first = reached;
            }
            if (ahead < behind) {
                behind = ahead;
                sector.second = reached;
            }
        }
    }
    sector.sweep = before + behind;
    return sector;
}

std::optional<AngleSector> AngleSector::atVertex(const AcDbDimension& dimension,
                                                 const AcGePoint3d& vertex,
                                                 const AcGePoint3d& first,
                                                 const AcGePoint3d& second,
                                                 const AcGePoint3d& through) {
    const auto flat = [&](const AcGePoint3d& point) {
        return DimensionSketch::flat(dimension, point);
    };
    AngleSector sector;
    sector.center = flat(vertex);
    sector.first = flat(first);
    sector.second = flat(second);
    const AcGeVector2d spoke = flat(through) - sector.center;
    const AcGeVector2d from = sector.first - sector.center;
    const AcGeVector2d to = sector.second - sector.center;
    if (spoke.isZeroLength() || from.isZeroLength() || to.isZeroLength()) return std::nullopt;
    sector.radius = spoke.length();
    sector.start = from.angle();
    sector.sweep = normalAngle(to.angle() - from.angle());
    if (normalAngle(spoke.angle() - from.angle()) > sector.sweep) {
        std::swap(sector.first, sector.second);
        sector.start = to.angle();
        sector.sweep = kTurn - sector.sweep;
    }
    return sector;
}

void DimensionSketch::angular(const AngleSector& sector) {
    const double end = sector.start + sector.sweep;
    const AcGePoint2d first = sector.center + towards(sector.start) * sector.radius;
    const AcGePoint2d second = sector.center + towards(end) * sector.radius;
    // Extension lines come from points that the arc lies beyond.
    if (sector.center.distanceTo(sector.first) < sector.radius)
        extension(sector.first, first, true);
    if (sector.center.distanceTo(sector.second) < sector.radius) {
        extension(sector.second, second, false);
    }
    const double middle = sector.start + sector.sweep / 2;
    const double angle = lineTextAngle(middle + kTurn / 4, true);
    const bool level = std::abs(crossOf(towards(angle), towards(middle).perpVector())) > 1e-9;
    const AcGeVector2d lift = level ? AcGeVector2d() : lifted(angle);
    placeText(sector.center + towards(middle) * sector.radius + lift, angle);
    const bool arrowsInside = sector.sweep * sector.radius >= 3 * arrowSize_;
    brokenArc(sector, sector.start, sector.sweep);
    const AcGeVector2d atFirst = -towards(sector.start).perpVector();
    const AcGeVector2d atSecond = towards(end).perpVector();
    arrow(first, arrowsInside ? atFirst : -atFirst, true);
    arrow(second, arrowsInside ? atSecond : -atSecond, false);
}

// ---- Circles ------------------------------------------------------------------------------------

void DimensionSketch::centerMark(const AcGePoint2d& center) {
    const double size = std::abs(style_.size(L"DIMCEN"));
    for (const AcGeVector2d& arm : {AcGeVector2d(size, 0), AcGeVector2d(0, size)})
        line(center - arm, center + arm, Role::DimensionLine);
}

// The line from the circle outwards to the text.
void DimensionSketch::leaderTo(const AcGePoint2d& chord, const AcGeVector2d& outward,
                               double leader) {
    const double length = std::max(leader, 2 * arrowSize_);
    const AcGePoint2d elbow = chord + outward * length;
    const double angle = lineTextAngle(outward.angle(), false);
    const AcGeVector2d side =
        towards(angle) * (outward.dotProduct(towards(angle)) < 0 ? -1.0 : 1.0);
    placeText(elbow + side * (arrowSize_ + gap_ + box_.width / 2), angle);
    const AcGePoint2d end = dimension_.isUsingDefaultTextPosition() ? elbow : box_.middle;
    brokenLine(chord, end);
    if (dimension_.isUsingDefaultTextPosition()) brokenLine(elbow, elbow + side * arrowSize_);
    arrow(chord, -outward, true);
}

void DimensionSketch::radial(const AcGePoint3d& center, const AcGePoint3d& chord, double leader) {
    const AcGePoint2d middle = flat(center);
    const AcGePoint2d end = flat(chord);
    const AcGeVector2d spoke = end - middle;
    if (spoke.isZeroLength()) return placeText(middle, 0);
    const bool placedInside = !dimension_.isUsingDefaultTextPosition() &&
                              flat(dimension_.textPosition()).distanceTo(middle) < spoke.length();
    if (!placedInside) {
        centerMark(middle);
        return leaderTo(end, spoke.normal(), leader);
    }
    placeText(middle + spoke / 2, lineTextAngle(spoke.angle(), true));
    brokenLine(middle, end);
    arrow(end, spoke.normal(), true);
}

void DimensionSketch::diametric(const AcGePoint3d& chord, const AcGePoint3d& farChord,
                                double leader) {
    const AcGePoint2d from = flat(farChord);
    const AcGePoint2d to = flat(chord);
    const AcGeVector2d across = to - from;
    if (across.isZeroLength()) return placeText(from, 0);
    const bool fits = across.length() >= box_.width + 2 * gap_ + 2 * arrowSize_;
    const bool inside =
        dimension_.isUsingDefaultTextPosition()
            ? fits && style_.flag(L"DIMTIX")
            : flat(dimension_.textPosition()).distanceTo(from + across / 2) < across.length() / 2;
    if (!inside) {
        centerMark(from + across / 2);
        return leaderTo(to, across.normal(), leader);
    }
    const double angle = lineTextAngle(across.angle(), true);
    placeText(from + across / 2, angle);
    brokenLine(from, to);
    arrow(from, -across.normal(), true);
    arrow(to, across.normal(), false);
}

// ---- Ordinates ----------------------------------------------------------------------------------

// The leader runs across the measured direction, with a jog where its end lies beside the point.
void DimensionSketch::ordinate(const AcGePoint3d& feature, const AcGePoint3d& end, bool xType) {
    const AcGePoint2d from = flat(feature);
    const AcGePoint2d to = flat(end);
    const AcGeVector2d level = horizontal(dimension_);
    const AcGeVector2d along = xType ? level.perpVector() : level;
    const double length = (to - from).dotProduct(along);
    const AcGeVector2d unit = length < 0 ? -along : along;
    const double angle = lineTextAngle(unit.angle(), false);
    const double reach = std::abs(crossOf(towards(angle), unit)) > 0.5 ? box_.height : box_.width;
    placeText(to + unit * (gap_ + reach / 2), angle);
    const AcGePoint2d start = from + unit * style_.size(L"DIMEXO");
    const double jog = std::max(0.0, std::abs(length) - 4 * arrowSize_);
    const bool straight = std::abs(crossOf(to - from, along)) < 1e-9;
    if (straight || jog == 0) return line(start, to, Role::ExtensionLine);
    const AcGePoint2d elbow = from + unit * (jog + arrowSize_);
    const AcGePoint2d last = to - unit * (2 * arrowSize_);
    line(start, elbow, Role::ExtensionLine);
    line(elbow, last, Role::ExtensionLine);
    line(last, to, Role::ExtensionLine);
}

}  // namespace sg::model

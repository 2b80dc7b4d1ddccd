#include <cmath>
#include <memory>
#include <optional>

#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/system_variables.h"
#include "platform/db/arc.h"
#include "platform/db/circle.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
constexpr int kNoNull = Prompter::Allowed::noNull;
constexpr int kPositive = Prompter::Allowed::noZero | Prompter::Allowed::noNegative;

// The centre of the circle through three points of one plane; nullopt when they lie on a line.
std::optional<AcGePoint3d> centerThrough(const AcGePoint3d& a, const AcGePoint3d& b,
                                         const AcGePoint3d& c) {
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double d = 2 * (bx * cy - by * cx);
    const double size = std::max(std::hypot(bx, by), std::hypot(cx, cy));
    if (std::abs(d) <= 1e-12 * size * size) return std::nullopt;
    const double bb = bx * bx + by * by, cc = cx * cx + cy * cy;
    return AcGePoint3d(a.x + (cy * bb - by * cc) / d, a.y + (bx * cc - cx * bb) / d, a.z);
}

void addCircle(Command& c, const AcGePoint3d& center, double radius) {
    c.variables().set(L"CIRCLERAD", radius);
    c.add(std::make_unique<AcDbCircle>(c.world(center), drawingNormal(c), radius));
}

double askRadius(Command& c, const AcGePoint3d& center) {
    const double before = c.number(L"CIRCLERAD");
    double radius = before;
    std::wstring prompt = L"Specify radius of circle or [Diameter]";
    if (before > 0) prompt += L" <" + c.lengthText(before) + L">";
    const int bits = kPositive | (before > 0 ? 0 : kNoNull);
    const Reply reply = c.distance({prompt + L": ", center, bits}, radius);
    if (reply != Reply::keyword) return reply == Reply::enter ? before : radius;
    double diameter = 2 * before;
    prompt = L"Specify diameter of circle";
    if (before > 0) prompt += L" <" + c.lengthText(diameter) + L">";
    c.distance({prompt + L": ", center, bits}, diameter);
    return diameter / 2;
}

void circleThroughThree(Command& c) {
    const AcGePoint3d first = c.needPoint({L"Specify first point on circle: "});
    const AcGePoint3d second = c.needPoint({L"Specify second point on circle: ", first});
    const AcGePoint3d third = c.needPoint({L"Specify third point on circle: ", second});
    const auto center = centerThrough(first, second, third);
    if (!center) {
        c.print(L"Circle does not exist.");
        return;
    }
    addCircle(c, *center, center->distanceTo(first));
}

void circleThroughTwo(Command& c) {
    const AcGePoint3d first = c.needPoint({L"Specify first end point of circle's diameter: "});
    const AcGePoint3d second =
        c.needPoint({L"Specify second end point of circle's diameter: ", first});
    const AcGePoint3d center = first + (second - first) / 2;
    if (center.distanceTo(first) == 0) {
        c.print(L"Circle does not exist.");
        return;
    }
    addCircle(c, center, center.distanceTo(first));
}

}  // namespace

void circle(Command& c) {
    AcGePoint3d center;
    const Reply reply =
        c.point({L"Specify center point for circle or [3P/2P]: ", std::nullopt, kNoNull}, center);
    if (reply == Reply::keyword) {
        c.is(L"3P") ? circleThroughThree(c) : circleThroughTwo(c);
        return;
    }
    addCircle(c, center, askRadius(c, center));
}

// ---- ARC ----------------------------------------------------------------------------------------

namespace {

// An arc in user coordinates, counter-clockwise from its start.
void addArc(Command& c, const AcGePoint3d& center, double radius, double from, double to) {
    if (!(radius > 0)) {
        c.print(L"Arc does not exist.");
        return;
    }
    c.add(std::make_unique<AcDbArc>(c.world(center), drawingNormal(c), radius,
                                    angleOnPlane(c, from), angleOnPlane(c, to)));
}

double angleTo(const AcGePoint3d& from, const AcGePoint3d& to) {
    return std::atan2(to.y - from.y, to.x - from.x);
}

// From the start around the centre: to a point, by an angle, or over a chord.
void arcAroundCenter(Command& c, const AcGePoint3d& start, const AcGePoint3d& center) {
    const double radius = start.distanceTo(center);
    const double from = angleTo(center, start);
    AcGePoint3d end;
    const Reply reply =
        c.point({L"Specify end point of arc or [Angle/chord Length]: ", center, kNoNull}, end);
    if (reply == Reply::value) {
        addArc(c, center, radius, from, angleTo(center, end));
    } else if (c.is(L"Angle")) {
        double angle = 0;
        c.angle({L"Specify included angle: ", center, kNoNull | Prompter::Allowed::noZero}, angle);
        addArc(c, center, radius, from, from + angle);
    } else {
        double chord = 0;
        c.distance({L"Specify length of chord: ", start, kNoNull | Prompter::Allowed::noZero},
                   chord);
        if (std::abs(chord) > 2 * radius) {
            c.print(L"*Invalid*");
            return;
        }
        // A negative length is that of the chord of the greater arc.
        const double turn = 2 * std::asin(std::abs(chord) / 2 / radius);
        addArc(c, center, radius, from, from + (chord > 0 ? turn : 2 * M_PI - turn));
    }
}

// From one end to the other that turns by an angle, counter-clockwise when that is above 0.
void arcOfAngle(Command& c, AcGePoint3d start, AcGePoint3d end, double turn) {
    if (turn < 0) {
        std::swap(start, end);
        turn = -turn;
    }
    const double half = turn / 2, chord = start.distanceTo(end);
    const double radius = chord / 2 / std::abs(std::sin(half));
    const double toCenter = angleTo(start, end) + M_PI / 2 - half;
    const AcGePoint3d center =
        start + AcGeVector3d(std::cos(toCenter), std::sin(toCenter), 0) * radius;
    addArc(c, center, std::isfinite(radius) ? radius : 0, angleTo(center, start),
           angleTo(center, end));
}

void arcBetweenEnds(Command& c, const AcGePoint3d& start, const AcGePoint3d& end) {
    AcGePoint3d center;
    const Reply reply = c.point(
        {L"Specify center point of arc or [Angle/Direction/Radius]: ", start, kNoNull}, center);
    if (reply == Reply::value) {
        addArc(c, center, start.distanceTo(center), angleTo(center, start), angleTo(center, end));
    } else if (c.is(L"Angle")) {
        double angle = 0;
        c.angle({L"Specify included angle: ", start, kNoNull | Prompter::Allowed::noZero}, angle);
        arcOfAngle(c, start, end, angle);
    } else if (c.is(L"Direction")) {
        double tangent = 0;
        c.direction({L"Specify tangent direction for the start point of arc: ", start, kNoNull},
                    tangent);
        arcOfAngle(c, start, end, 2 * std::remainder(angleTo(start, end) - tangent, 2 * M_PI));
    } else {
        double radius = 0;
        c.distance({L"Specify radius of arc: ", end, kNoNull | Prompter::Allowed::noZero}, radius);
        const double chord = start.distanceTo(end);
        if (chord > 2 * std::abs(radius)) {
            c.print(L"*Invalid*");
            return;
        }
        // A negative radius is that of the greater arc.
        const double turn = 2 * std::asin(chord / 2 / std::abs(radius));
        arcOfAngle(c, start, end, radius > 0 ? turn : 2 * M_PI - turn);
    }
}

}  // namespace

void arc(Command& c) {
    AcGePoint3d start, second;
    if (c.point({L"Specify start point of arc or [Center]: ", std::nullopt, kNoNull}, start) ==
        Reply::keyword) {
        const AcGePoint3d center = c.needPoint({L"Specify center point of arc: "});
        start = c.needPoint({L"Specify start point of arc: ", center});
        arcAroundCenter(c, start, center);
        return;
    }
    const Reply reply =
        c.point({L"Specify second point of arc or [Center/End]: ", start, kNoNull}, second);
    if (reply == Reply::keyword && c.is(L"Center")) {
        arcAroundCenter(c, start, c.needPoint({L"Specify center point of arc: ", start}));
    } else if (reply == Reply::keyword) {
        arcBetweenEnds(c, start, c.needPoint({L"Specify end point of arc: ", start}));
    } else {
        const AcGePoint3d end = c.needPoint({L"Specify end point of arc: ", second});
        const auto center = centerThrough(start, second, end);
        if (!center) {
            c.print(L"Points are collinear.");
            return;
        }
        const double turn =
            (second.x - start.x) * (end.y - start.y) - (second.y - start.y) * (end.x - start.x);
        const double from = angleTo(*center, start), to = angleTo(*center, end);
        addArc(c, *center, center->distanceTo(start), turn > 0 ? from : to, turn > 0 ? to : from);
    }
}

}  // namespace sg::commands

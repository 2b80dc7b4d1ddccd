#include <algorithm>
#include <cmath>

#include "host/model/curves/intersect.h"

namespace sg::model {

namespace {

// Directions whose sine is no larger are parallel.
const double kParallel = AcGeContext::gTol.equalVector();

void keepInside(const Piece& a, const Piece& b, double slack, double onA, double onB,
                std::vector<Meeting>& meetings) {
    if (!bringInside(a, slack, onA) || !bringInside(b, slack, onB)) return;
    meetings.push_back({onA, onB});
}

}  // namespace

void meetLines(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
               std::vector<Meeting>& meetings) {
    const AcGeVector3d across = a.u.crossProduct(b.u);
    const double size = a.u.length() * b.u.length();
    if (size == 0 || across.length() <= kParallel * size) return;
    const AcGeVector3d between = b.origin - a.origin;
    const double onA = between.crossProduct(b.u).dotProduct(across) / across.lengthSqrd();
    const double onB = between.crossProduct(a.u).dotProduct(across) / across.lengthSqrd();
    // Far away crossings are as exact as their coordinates.
    const double slack =
        tolerance.point + 1e-14 * (std::abs(onA) * a.u.length() + std::abs(onB) * b.u.length());
    if (a.at(onA).distanceTo(b.at(onB)) > slack) return;
    keepInside(a, b, tolerance.point, onA, onB, meetings);
}

namespace {

// A place in a conic's plane, in coordinates along its u and v: there the conic is the unit circle.
struct OnConic {
    double x = 0;
    double y = 0;

    double angle() const { return std::atan2(y, x); }
    double length() const { return std::hypot(x, y); }
};

OnConic coordinates(const Piece& conic, const AcGeVector3d& vector) {
    const AcGeVector3d axis = conic.axis();
    const double size = axis.lengthSqrd();
    return {vector.crossProduct(conic.v).dotProduct(axis) / size,
            conic.u.crossProduct(vector).dotProduct(axis) / size};
}

// The parameters on a line in the conic's plane, and the angles, where the two meet.
void meetInPlane(const Piece& line, const Piece& conic, const MeetingTolerance& tolerance,
                 std::vector<Meeting>& meetings) {
    const OnConic from = coordinates(conic, line.origin - conic.origin);
    const OnConic step = coordinates(conic, line.u);
    const double size = step.x * step.x + step.y * step.y;
    if (size == 0) return;
    const double middle = -(from.x * step.x + from.y * step.y) / size;
    const OnConic foot{from.x + middle * step.x, from.y + middle * step.y};
    const double distance = std::abs(from.x * step.y - from.y * step.x) / std::sqrt(size);
    const double shorter = std::min(conic.u.length(), conic.v.length());
    if (std::abs(distance - 1) <= tolerance.touch(shorter) / shorter) {
        meetings.push_back({middle, foot.angle()});
        return;
    }
    if (distance > 1) return;
    const double half = std::sqrt((1 - distance) * (1 + distance) / size);
    for (const double aside : {-half, half}) {
        const OnConic at{foot.x + aside * step.x, foot.y + aside * step.y};
        meetings.push_back({middle + aside, at.angle()});
    }
}

bool liesInPlane(const Piece& line, const Piece& conic, const AcGeVector3d& normal,
                 double tolerance) {
    const double speed = line.u.length();
    const double reach = std::max(conic.u.length(), conic.v.length()) / speed;
    const double near = (conic.origin - line.origin).dotProduct(line.u) / (speed * speed);
    const auto off = [&](double t) {
        return std::abs((line.at(t) - conic.origin).dotProduct(normal));
    };
    return off(near - reach) <= tolerance && off(near + reach) <= tolerance;
}

}  // namespace

void meetLineConic(const Piece& line, const Piece& conic, const MeetingTolerance& tolerance,
                   std::vector<Meeting>& meetings) {
    if (line.u.lengthSqrd() == 0) return;
    const AcGeVector3d normal = conic.axis() / conic.axis().length();
    std::vector<Meeting> found;
    if (liesInPlane(line, conic, normal, tolerance.point)) {
        meetInPlane(line, conic, tolerance, found);
    } else {
        const double climb = line.u.dotProduct(normal);
        if (climb == 0) return;
        const double t = (conic.origin - line.origin).dotProduct(normal) / climb;
        const AcGePoint3d through = line.at(t);
        const double angle = coordinates(conic, through - conic.origin).angle();
        if (through.distanceTo(conic.at(angle)) > tolerance.point) return;
        found.push_back({t, angle});
    }
    for (const Meeting& meeting : found) {
        keepInside(line, conic, tolerance.point, meeting.onFirst, meeting.onSecond, meetings);
    }
}

namespace {

double angleOn(const Piece& circle, const AcGeVector3d& spoke) {
    return std::atan2(spoke.dotProduct(circle.v), spoke.dotProduct(circle.u));
}

void meetInOnePlane(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                    std::vector<Meeting>& meetings) {
    const double ra = a.radius();
    const double rb = b.radius();
    const AcGeVector3d between = b.origin - a.origin;
    const double distance = between.length();
    // Coincident circles and concentric ones: only ends can meet.
    if (distance <= tolerance.point) return;
    const AcGeVector3d towards = between / distance;
    const auto keep = [&](const AcGeVector3d& spoke) {
        const AcGePoint3d at = a.origin + spoke;
        keepInside(a, b, tolerance.point, angleOn(a, spoke), angleOn(b, at - b.origin), meetings);
    };
    const double touch = tolerance.touch(std::min(ra, rb));
    if (std::abs(distance - (ra + rb)) <= touch) return keep(towards * ra);
    if (std::abs(distance - std::abs(ra - rb)) <= touch) {
        return keep(ra >= rb ? towards * ra : -towards * ra);
    }
    // Four times the area of the triangle of the centres and a crossing, squared.
    const double product =
        (ra + rb + distance) * (ra + rb - distance) * (distance + ra - rb) * (distance - ra + rb);
    if (product < 0) return;
    const double forward = ((distance - rb) * (distance + rb) + ra * ra) / (2 * distance);
    const double aside = std::sqrt(product) / (2 * distance);
    const AcGeVector3d up = a.axis() / a.axis().length();
    const AcGeVector3d across = up.crossProduct(towards);
    keep(towards * forward - across * aside);
    keep(towards * forward + across * aside);
}

}  // namespace

void meetCircles(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                 std::vector<Meeting>& meetings) {
    const AcGeVector3d normalA = a.axis() / a.axis().length();
    const AcGeVector3d normalB = b.axis() / b.axis().length();
    const AcGeVector3d along = normalA.crossProduct(normalB);
    const double tilt = along.length() * std::max(a.radius(), b.radius());
    const double apart = std::abs((b.origin - a.origin).dotProduct(normalA));
    if (tilt <= tolerance.point) {
        if (apart <= tolerance.point) meetInOnePlane(a, b, tolerance, meetings);
        return;
    }
    // The planes share a line, which both circles must meet in the same place.
    const AcGeVector3d downhill = normalA.crossProduct(along);
    const double climb = downhill.dotProduct(normalB);
    const AcGePoint3d on =
        a.origin + downhill * ((b.origin - a.origin).dotProduct(normalB) / climb);
    std::vector<Meeting> found;
    meetInPlane(Piece::line(on, along, 0, 0), a, tolerance, found);
    for (const Meeting& meeting : found) {
        const AcGePoint3d at = a.at(meeting.onSecond);
        const double angle = angleOn(b, at - b.origin);
        if (b.at(angle).distanceTo(at) > tolerance.touch(b.radius())) continue;
        keepInside(a, b, tolerance.point, meeting.onSecond, angle, meetings);
    }
}

}  // namespace sg::model

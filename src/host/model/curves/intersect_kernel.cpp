#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "host/model/curves/geometry_kernel.h"
#include "host/model/curves/intersect.h"
#include "host/model/curves/math/roots.h"

// Pairs with an ellipse or a spline are brought into a plane, intersected there by the geometry
// library, and each place is then sharpened in space. Curves of one plane are seen along its
// normal. Of curves in different planes one meets the other only where it goes through the other's
// plane, which is looked at place by place. Where a curve lies in no plane the two are seen along a
// direction in which neither is flat, where they cross wherever they meet, and what only seems to
// cross is dropped.

namespace sg::model {

namespace {

std::optional<AcGeVector3d> normalOf(const Piece& piece) {
    if (piece.kind == Piece::Kind::Line) return std::nullopt;
    CurveShape shape;
    shape.spans.emplace_back(piece);
    shape.findPlane();
    if (shape.planarity != AcDb::kPlanar) return std::nullopt;
    return shape.normal;
}

bool liesIn(const Piece& piece, const AcGePoint3d& on, const AcGeVector3d& normal,
            double tolerance) {
    const auto near = [&](const AcGePoint3d& point) {
        return std::abs((point - on).dotProduct(normal)) <= tolerance;
    };
    if (piece.kind == Piece::Kind::Spline) {
        const auto& controls = piece.spline->controls;
        return std::all_of(controls.begin(), controls.end(), near);
    }
    return near(piece.origin) && near(piece.origin + piece.u) && near(piece.origin + piece.v);
}

// The direction to look along.
AcGeVector3d sightFor(const Piece& a, const Piece& b, double tolerance) {
    const auto normalA = normalOf(a);
    const auto normalB = normalOf(b);
    if (normalA && liesIn(b, a.start(), *normalA, tolerance)) return *normalA;
    if (normalB && liesIn(a, b.start(), *normalB, tolerance)) return *normalB;
    // Odd directions, of which one is far from both planes.
    static const AcGeVector3d kDirections[] = {
        {0.3714, 0.5428, 0.7533}, {-0.6127, 0.2931, 0.7339}, {0.8311, -0.4721, 0.2939}};
    AcGeVector3d best;
    double clearest = -1;
    for (const AcGeVector3d& direction : kDirections) {
        const AcGeVector3d unit = direction / direction.length();
        const double clear = std::min(normalA ? std::abs(unit.dotProduct(*normalA)) : 1,
                                      normalB ? std::abs(unit.dotProduct(*normalB)) : 1);
        if (clear <= clearest) continue;
        clearest = clear;
        best = unit;
    }
    return best;
}

// Coordinates of the plane that is looked at, and parameters of the piece for those of its picture.
struct Picture {
    PlaneCurve curve;
    double shift = 0;  // piece parameter = picture parameter * scale + shift
    double scale = 1;
};

Picture pictureOfConic(const Piece& flat) {
    Picture picture;
    picture.curve.kind = PlaneCurve::Kind::Ellipse;
    const double turn =
        std::atan2(2 * flat.u.dotProduct(flat.v), flat.u.lengthSqrd() - flat.v.lengthSqrd()) / 2;
    const AcGeVector3d major = flat.u * std::cos(turn) + flat.v * std::sin(turn);
    const AcGeVector3d minor = flat.v * std::cos(turn) - flat.u * std::sin(turn);
    picture.shift = turn;
    picture.curve.first = flat.first - turn;
    picture.curve.last = flat.last - turn;
    picture.curve.axis[0] = major.x;
    picture.curve.axis[1] = major.y;
    picture.curve.minorRadius = minor.length();
    picture.curve.clockwise = major.x * minor.y - major.y * minor.x < 0;
    return picture;
}

Picture pictureOfLine(const Piece& flat, const AcGePoint3d& center, double radius) {
    Picture picture;
    const double size = flat.u.length();
    const AcGeVector3d unit = flat.u / size;
    picture.scale = 1 / size;
    // Only what can come near the other curve.
    const double near = (center - flat.origin).dotProduct(unit);
    picture.curve.first = std::max(flat.first * size, near - radius);
    picture.curve.last = std::min(flat.last * size, near + radius);
    picture.curve.axis[0] = unit.x;
    picture.curve.axis[1] = unit.y;
    return picture;
}

Picture pictureOfSpline(const Piece& flat) {
    Picture picture;
    picture.curve.kind = PlaneCurve::Kind::Spline;
    picture.curve.first = flat.first;
    picture.curve.last = flat.last;
    picture.curve.degree = flat.spline->degree;
    picture.curve.knots = flat.spline->knots;
    picture.curve.weights = flat.spline->weights;
    for (const AcGePoint3d& point : flat.spline->controls) {
        picture.curve.controls.insert(picture.curve.controls.end(), {point.x, point.y});
    }
    return picture;
}

void boundsOf(const Piece& piece, AcGePoint3d& center, double& radius) {
    AcDbExtents box;
    if (piece.kind == Piece::Kind::Spline) {
        for (const AcGePoint3d& point : piece.spline->controls)
            box.addPoint(point);
    } else {
        piece.addExtents(box);
    }
    center = box.minPoint() + (box.maxPoint() - box.minPoint()) / 2;
    radius = center.distanceTo(box.maxPoint()) * 1.01 + 1e-6;
}

Picture pictureOf(const Piece& flat, const Piece& other) {
    Picture picture;
    if (flat.kind == Piece::Kind::Conic) {
        picture = pictureOfConic(flat);
    } else if (flat.kind == Piece::Kind::Spline) {
        picture = pictureOfSpline(flat);
    } else {
        AcGePoint3d center;
        double radius = 0;
        boundsOf(other, center, radius);
        picture = pictureOfLine(flat, center, radius);
    }
    picture.curve.origin[0] = flat.origin.x;
    picture.curve.origin[1] = flat.origin.y;
    return picture;
}

// Gauss-Newton on the vector between the points; where the curves touch it halves the rest at each
// step.
Meeting sharpened(const Piece& a, const Piece& b, Meeting meeting) {
    for (int step = 0; step < 60; ++step) {
        const Nurbs::Values pa = a.values(meeting.onFirst);
        const Nurbs::Values pb = b.values(meeting.onSecond);
        const AcGeVector3d off = pb.point - pa.point;
        const double aa = pa.first.lengthSqrd();
        const double bb = pb.first.lengthSqrd();
        const double ab = pa.first.dotProduct(pb.first);
        const double det = aa * bb - ab * ab;
        if (det <= 1e-14 * aa * bb) break;
        const double stepA = (pa.first.dotProduct(off) * bb - pb.first.dotProduct(off) * ab) / det;
        const double stepB = (pa.first.dotProduct(off) * ab - pb.first.dotProduct(off) * aa) / det;
        meeting.onFirst += stepA;
        meeting.onSecond += stepB;
        if (std::abs(stepA) * std::sqrt(aa) + std::abs(stepB) * std::sqrt(bb) <=
            1e-15 * (pa.point.asVector().length() + off.length())) {
            break;
        }
    }
    return meeting;
}

// Appends the meeting at a place of the first piece, where the second one runs through it.
void appendAt(const Piece& a, const Piece& b, double onA, const MeetingTolerance& tolerance,
              std::vector<Meeting>& meetings) {
    Meeting meeting = sharpened(a, b, {onA, b.closest(a.at(onA))});
    if (!bringInside(a, tolerance.merge, meeting.onFirst) ||
        !bringInside(b, tolerance.merge, meeting.onSecond)) {
        return;
    }
    const double gap = a.at(meeting.onFirst).distanceTo(b.at(meeting.onSecond));
    if (gap <= 10 * tolerance.touch(tolerance.point)) meetings.push_back(meeting);
}

constexpr double kAside = 1e-4;  // how far planes and lines are to be from parallel

// A line that goes through the plane of a flat piece; false when it runs along the plane.
bool meetLineAndFlat(const Piece& line, const Piece& flat, const AcGeVector3d& normal,
                     const MeetingTolerance& tolerance, std::vector<Meeting>& meetings) {
    const double rise = line.u.dotProduct(normal);
    if (std::abs(rise) <= kAside * line.u.length()) return false;
    const double t = (flat.start() - line.origin).dotProduct(normal) / rise;
    if (t < line.first - 1 || t > line.last + 1) return true;
    appendAt(line, flat, t, tolerance, meetings);
    return true;
}

// Two flat pieces meet on the line that their planes share; false for planes that are parallel.
bool meetFlats(const Piece& a, const AcGeVector3d& normalA, const Piece& b,
               const AcGeVector3d& normalB, const MeetingTolerance& tolerance,
               std::vector<Meeting>& meetings) {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    const AcGeVector3d along = normalA.crossProduct(normalB);
    const double sine = along.length();
    if (sine <= kAside) return false;
    // From a's start within its plane up to b's.
    const AcGeVector3d across = along.crossProduct(normalA) / sine;
    const double way = (b.start() - a.start()).dotProduct(normalB) / across.dotProduct(normalB);
    const Piece shared = Piece::line(a.start() + across * way, along / sine, -kEndless, kEndless);
    std::vector<Meeting> places;
    meetPieces(a, shared, places);
    for (const Meeting& place : places)
        appendAt(a, b, place.onFirst, tolerance, meetings);
    return true;
}

// Appends where a piece that lies in no plane goes through the plane of the other one; of a line,
// through a plane that it lies in.
void meetThroughPlane(const Piece& spatial, const Piece& other, const AcGeVector3d& normal,
                      const MeetingTolerance& tolerance, std::vector<Meeting>& meetings) {
    constexpr int kParts = 24;
    const AcGePoint3d on = other.kind == Piece::Kind::Line ? other.origin : other.start();
    const auto height = [&](double t) { return (spatial.at(t) - on).dotProduct(normal); };
    const std::vector<double> stops = spatial.samples();
    for (size_t i = 1; i < stops.size(); ++i) {
        double low = stops[i - 1];
        double atLow = height(low);
        for (int part = 1; part <= kParts; ++part) {
            const double high = stops[i - 1] + (stops[i] - stops[i - 1]) * part / kParts;
            const double atHigh = height(high);
            if ((atLow < 0) != (atHigh < 0)) {
                appendAt(spatial, other, bisect(height, low, high, atLow), tolerance, meetings);
            }
            low = high;
            atLow = atHigh;
        }
    }
}

// The plane of a flat piece, or one of those through a line; none for a piece that lies in none.
std::optional<AcGeVector3d> planeOf(const Piece& piece) {
    if (piece.kind == Piece::Kind::Line) return piece.u.perpVector();
    return normalOf(piece);
}

void exchange(std::vector<Meeting>& from, std::vector<Meeting>& to) {
    for (const Meeting& meeting : from)
        to.push_back({meeting.onSecond, meeting.onFirst});
}

bool meetAcrossPlanes(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                      std::vector<Meeting>& meetings) {
    const auto normalA = normalOf(a);
    const auto normalB = normalOf(b);
    if (normalA && normalB) return meetFlats(a, *normalA, b, *normalB, tolerance, meetings);
    if (a.kind == Piece::Kind::Line && normalB) {
        return meetLineAndFlat(a, b, *normalB, tolerance, meetings);
    }
    std::vector<Meeting> crossings;
    if (const auto plane = planeOf(b); plane && !planeOf(a)) {
        meetThroughPlane(a, b, *plane, tolerance, meetings);
    } else if (const auto other = planeOf(a); other && !planeOf(b)) {
        meetThroughPlane(b, a, *other, tolerance, crossings);
        exchange(crossings, meetings);
    }
    // Touches, which cross no plane, are left to the library.
    if (b.kind != Piece::Kind::Line || !normalA) return false;
    std::vector<Meeting> exchanged;
    const bool done = meetLineAndFlat(b, a, *normalA, tolerance, exchanged);
    exchange(exchanged, meetings);
    return done;
}

// The pieces between the knots, each of which is smooth.
std::vector<Piece> smoothParts(const Piece& piece) {
    if (piece.kind != Piece::Kind::Spline) return {piece};
    const std::vector<double> breaks = piece.spline->breaks();
    if (breaks.size() == 2) return {piece};
    std::vector<Piece> parts;
    for (size_t i = 1; i < breaks.size(); ++i) {
        parts.push_back(Piece::nurbs(piece.spline->part(breaks[i - 1], breaks[i])));
    }
    return parts;
}

void meetSmooth(const GeometryKernel& kernel, const Piece& a, const Piece& b,
                const AcGeMatrix3d& toPlane, const MeetingTolerance& tolerance,
                std::vector<Meeting>& meetings) {
    const Piece flatA = a.transformed(toPlane);
    const Piece flatB = b.transformed(toPlane);
    const Picture onA = pictureOf(flatA, flatB);
    const Picture onB = pictureOf(flatB, flatA);
    if (onA.curve.first >= onA.curve.last || onB.curve.first >= onB.curve.last) return;
    const double allowed = tolerance.touch(tolerance.point);
    for (const auto& [ta, tb] : kernel.intersect(onA.curve, onB.curve, tolerance.point)) {
        const Meeting rough{ta * onA.scale + onA.shift, tb * onB.scale + onB.shift};
        const auto gap = [&](const Meeting& m) {
            return a.at(m.onFirst).distanceTo(b.at(m.onSecond));
        };
        const Meeting sharp = sharpened(a, b, rough);
        Meeting best = gap(sharp) <= gap(rough) ? sharp : rough;
        if (gap(best) > 10 * allowed) continue;
        if (!bringInside(a, tolerance.merge, best.onFirst) ||
            !bringInside(b, tolerance.merge, best.onSecond)) {
            continue;
        }
        if (gap(best) <= 10 * allowed) meetings.push_back(best);
    }
}

}  // namespace

void meetByKernel(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                  std::vector<Meeting>& meetings) {
    if ((a.kind == Piece::Kind::Line && a.u.lengthSqrd() == 0) ||
        (b.kind == Piece::Kind::Line && b.u.lengthSqrd() == 0)) {
        return;
    }
    if (meetAcrossPlanes(a, b, tolerance, meetings)) return;
    const GeometryKernel* const kernel = geometryKernel();
    if (kernel == nullptr) return;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(sightFor(a, b, tolerance.point * 10));
    const std::vector<Piece> partsOfB = smoothParts(b);
    for (const Piece& partA : smoothParts(a)) {
        for (const Piece& partB : partsOfB) {
            meetSmooth(*kernel, partA, partB, toPlane, tolerance, meetings);
        }
    }
}

}  // namespace sg::model

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/curves/intersect.h"
#include "host/model/curves/math/angles.h"

namespace sg::model {

namespace {

double sizeOf(const Piece& piece) {
    if (piece.kind == Piece::Kind::Line) return piece.u.length() * (piece.last - piece.first);
    if (piece.kind == Piece::Kind::Conic) return std::max(piece.u.length(), piece.v.length());
    AcDbExtents box;
    for (const AcGePoint3d& point : piece.spline->controls)
        box.addPoint(point);
    return box.minPoint().distanceTo(box.maxPoint());
}

// How far from the origin the piece reaches; of one without end, its defining point.
double reachOf(const Piece& piece) {
    double reach = 0;
    if (piece.kind == Piece::Kind::Spline) {
        for (const AcGePoint3d& point : piece.spline->controls) {
            reach = std::max(reach, point.asVector().length());
        }
        return reach;
    }
    reach = piece.origin.asVector().length();
    const double size = sizeOf(piece);
    return std::isfinite(size) ? reach + size : reach;
}

}  // namespace

MeetingTolerance::MeetingTolerance(const Piece& first, const Piece& second) {
    double size = std::min(sizeOf(first), sizeOf(second));
    if (!std::isfinite(size)) size = 1;
    const double reach = std::max(reachOf(first), reachOf(second));
    point = AcGeContext::gTol.equalPoint() * std::max(1.0, size) + 1e-14 * reach;
    merge = 100 * point;
}

bool isFlat(const Piece& piece) {
    return piece.kind == Piece::Kind::Conic &&
           piece.axis().length() <= 1e-10 * std::max(piece.u.lengthSqrd(), piece.v.lengthSqrd());
}

bool bringInside(const Piece& piece, double slack, double& t) {
    if (piece.kind == Piece::Kind::Conic) {
        t = angleFrom(t, piece.first);
        if (t <= piece.last) return true;
        // Between the end and a turn after the start: the nearer of them.
        const double turn = piece.first + 2 * std::numbers::pi;
        const bool nearEnd = t - piece.last <= turn - t;
        const double off = nearEnd ? t - piece.last : turn - t;
        t = nearEnd ? piece.last : piece.first;
        return off * std::max(piece.u.length(), piece.v.length()) <= slack;
    }
    const double inside = std::clamp(t, piece.first, piece.last);
    const double off = std::abs(t - inside);
    t = inside;
    if (off == 0) return true;
    return off * piece.derivative(inside).length() <= slack;
}

namespace {

// A conic seen from the side runs along the line p = origin + along cos(t - shift).
void meetFlat(const Piece& flat, const Piece& other, bool flatFirst,
              std::vector<Meeting>& meetings) {
    const AcGeVector3d& longer = flat.u.lengthSqrd() >= flat.v.lengthSqrd() ? flat.u : flat.v;
    if (longer.lengthSqrd() == 0) return;
    const AcGeVector3d unit = longer / longer.length();
    const double a = flat.u.dotProduct(unit);
    const double b = flat.v.dotProduct(unit);
    const double shift = std::atan2(b, a);
    const AcGeVector3d along = unit * std::hypot(a, b);
    std::vector<Meeting> onLine;
    meetPieces(Piece::line(flat.origin, along, -1, 1), other, onLine);
    const MeetingTolerance tolerance(flat, other);
    for (const Meeting& meeting : onLine) {
        const double aside = std::acos(std::clamp(meeting.onFirst, -1.0, 1.0));
        for (double t : {shift + aside, shift - aside}) {
            if (!bringInside(flat, tolerance.point, t)) continue;
            meetings.push_back(flatFirst ? Meeting{t, meeting.onSecond}
                                         : Meeting{meeting.onSecond, t});
        }
    }
}

void exchangeSides(std::vector<Meeting>& meetings, size_t from) {
    for (size_t i = from; i < meetings.size(); ++i) {
        std::swap(meetings[i].onFirst, meetings[i].onSecond);
    }
}

void meetInside(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                std::vector<Meeting>& meetings) {
    using Kind = Piece::Kind;
    if (a.kind == Kind::Line && b.kind == Kind::Line) {
        meetLines(a, b, tolerance, meetings);
    } else if (a.kind == Kind::Line && b.kind == Kind::Conic) {
        meetLineConic(a, b, tolerance, meetings);
    } else if (a.kind == Kind::Conic && b.kind == Kind::Line) {
        const size_t from = meetings.size();
        meetLineConic(b, a, tolerance, meetings);
        exchangeSides(meetings, from);
    } else if (a.isCircular() && b.isCircular()) {
        meetCircles(a, b, tolerance, meetings);
    } else {
        meetByKernel(a, b, tolerance, meetings);
    }
}

// Where the ends of `a` lie on `b`. This also finds ends that the formulas miss because the pieces
// are nearly parallel there.
void meetAtEnds(const Piece& a, const Piece& b, double tolerance, bool aFirst,
                std::vector<Meeting>& meetings) {
    if (isWholeTurn(a)) return;
    for (const double t : {a.first, a.last}) {
        if (!std::isfinite(t)) continue;
        const AcGePoint3d end = a.at(t);
        const double other = b.closest(end);
        if (b.at(other).distanceTo(end) > tolerance) continue;
        meetings.push_back(aFirst ? Meeting{t, other} : Meeting{other, t});
    }
}

bool boxesMeet(const Piece& a, const Piece& b, double tolerance) {
    if (!a.isBounded() || !b.isBounded()) return true;
    const auto boxOf = [](const Piece& piece) {
        AcDbExtents box;
        if (piece.kind == Piece::Kind::Spline) {
            for (const AcGePoint3d& point : piece.spline->controls)
                box.addPoint(point);
        } else {
            piece.addExtents(box);
        }
        return box;
    };
    const AcDbExtents one = boxOf(a);
    const AcDbExtents two = boxOf(b);
    for (unsigned int i = 0; i < 3; ++i) {
        if (one.minPoint()[i] > two.maxPoint()[i] + tolerance) return false;
        if (two.minPoint()[i] > one.maxPoint()[i] + tolerance) return false;
    }
    return true;
}

// True when the pieces do not leave each other between the two meetings: where they are nearly
// tangent, one contact is found in places that are far apart against the tolerance.
bool sameContact(const Piece& first, const Piece& second, const MeetingTolerance& tolerance,
                 const Meeting& a, const Meeting& b) {
    if (first.at(a.onFirst).distanceTo(first.at(b.onFirst)) <= tolerance.merge) return true;
    double middle = (a.onFirst + b.onFirst) / 2;
    if (first.kind == Piece::Kind::Conic && std::abs(a.onFirst - b.onFirst) > std::numbers::pi) {
        middle += std::numbers::pi;
    }
    const AcGePoint3d between = first.at(middle);
    const AcGePoint3d beside = second.at(second.closest(between));
    const double smaller = std::min(sizeOf(first), sizeOf(second));
    return beside.distanceTo(between) <= tolerance.touch(std::isfinite(smaller) ? smaller : 0);
}

template <class Test>
bool anyFrom(const std::vector<Meeting>& meetings, size_t from, const Test& test) {
    return std::any_of(meetings.begin() + static_cast<std::ptrdiff_t>(from), meetings.end(), test);
}

}  // namespace

void meetPieces(const Piece& first, const Piece& second, std::vector<Meeting>& meetings) {
    const MeetingTolerance tolerance(first, second);
    const double reach = tolerance.touch(std::max(first.u.length(), second.u.length()));
    if (!boxesMeet(first, second, reach)) return;
    if (isFlat(first)) return meetFlat(first, second, true, meetings);
    if (isFlat(second)) return meetFlat(second, first, false, meetings);

    // Ends first: they are exact. What the formulas find beside one is mostly the same contact.
    std::vector<Meeting> ends;
    meetAtEnds(first, second, tolerance.point, true, ends);
    meetAtEnds(second, first, tolerance.point, false, ends);
    const size_t from = meetings.size();
    for (const Meeting& meeting : ends) {
        const AcGePoint3d at = first.at(meeting.onFirst);
        if (!anyFrom(meetings, from, [&](const Meeting& known) {
                return first.at(known.onFirst).distanceTo(at) <= tolerance.merge;
            })) {
            meetings.push_back(meeting);
        }
    }
    std::vector<Meeting> inside;
    meetInside(first, second, tolerance, inside);
    for (const Meeting& meeting : inside) {
        if (!anyFrom(meetings, from, [&](const Meeting& known) {
                return sameContact(first, second, tolerance, known, meeting);
            })) {
            meetings.push_back(meeting);
        }
    }
}

}  // namespace sg::model

#include "host/model/curves/intersect.h"

#include <algorithm>
#include <cmath>

namespace sg::model {

namespace {

// Appends the meetings of the seen pieces; their points are on the piece itself.
void appendMeetings(const Span& span, const Piece& seen, const Piece& other, double merge,
                    std::vector<CurveMeeting>& result) {
    std::vector<Meeting> meetings;
    meetPieces(seen, other, meetings);
    for (const Meeting& meeting : meetings) {
        const AcGePoint3d point = span.piece.at(meeting.onFirst);
        const bool known = std::any_of(
            result.begin(), result.end(),
            [&](const CurveMeeting& there) { return there.point.distanceTo(point) <= merge; });
        if (!known) result.push_back({point, span.toCurve(meeting.onFirst)});
    }
}

void sortAlong(std::vector<CurveMeeting>& meetings) {
    std::stable_sort(
        meetings.begin(), meetings.end(),
        [](const CurveMeeting& a, const CurveMeeting& b) { return a.parameter < b.parameter; });
}

// A line seen along itself is a point: its defining one.
Piece seenAlong(const Piece& piece, const AcGeVector3d& direction) {
    Piece seen = piece.projected(direction);
    if (piece.kind == Piece::Kind::Line && seen.u.length() <= 1e-12 * piece.u.length()) {
        const double at = std::isfinite(piece.first) ? piece.first : 0;
        return Piece::line(seen.origin, AcGeVector3d(), at, at);
    }
    return seen;
}

}  // namespace

std::vector<CurveMeeting> meetShapes(const CurveShape& first, const CurveShape& second) {
    std::vector<CurveMeeting> result;
    for (const Span& span : first.spans) {
        for (const Span& other : second.spans) {
            const double merge = MeetingTolerance(span.piece, other.piece).merge;
            appendMeetings(span, span.piece, other.piece, merge, result);
        }
    }
    sortAlong(result);
    return result;
}

std::vector<CurveMeeting> meetShapesAlong(const CurveShape& first, const CurveShape& second,
                                          const AcGeVector3d& direction) {
    std::vector<Piece> others;
    for (const Span& other : second.spans)
        others.push_back(seenAlong(other.piece, direction));
    std::vector<CurveMeeting> result;
    for (const Span& span : first.spans) {
        const Piece seen = seenAlong(span.piece, direction);
        for (const Piece& other : others) {
            appendMeetings(span, seen, other, MeetingTolerance(seen, other).merge, result);
        }
    }
    sortAlong(result);
    return result;
}

}  // namespace sg::model

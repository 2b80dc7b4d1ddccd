#include "jigs/text_path.h"

#include <algorithm>

#include "drawing/current_drawing.h"

namespace sg {
namespace {

using Attachment = AcDbMText::AttachmentPoint;

// Half a turn as texts are turned by it, and the bounds of directions, all a little off the exact
// ones: that is deliberate, and so in every drawing that was made with them.
constexpr double kHalfTurn = 3.14159265;
constexpr double kUpright = 1.5706963250000001;
constexpr double kDownright = 4.712288975000001;
constexpr double kFirstUpsideDown = 1.570896325;
constexpr double kLastUpsideDown = 4.712488975;

constexpr int kRow = 3;  // attachments of a row of the nine

struct Segment {
    AcGePoint3d from, to;

    AcGePoint3d closestTo(const AcGePoint3d& point) const {
        const AcGeVector3d way = to - from;
        const double length = way.lengthSqrd();
        if (length == 0) return from;
        return from + way * std::clamp((point - from).dotProduct(way) / length, 0.0, 1.0);
    }
    double angle() const { return xyAngle(from, to); }
};

struct Nearest {
    Segment segment;
    AcGePoint3d point;
};

std::optional<Nearest> nearestSegment(const AcGePoint3dArray& path, const AcGePoint3d& cursor,
                                      double reach) {
    std::optional<Nearest> nearest;
    for (int i = 1; i < path.length(); ++i) {
        const Segment segment{path[i - 1], path[i]};
        const AcGePoint3d point = segment.closestTo(cursor);
        const double distance = point.distanceTo(cursor);
        if (distance >= reach) continue;
        reach = distance;
        nearest = Nearest{segment, point};
    }
    return nearest;
}

Attachment moved(Attachment attachment, int by) {
    return static_cast<Attachment>(attachment + by);
}

Attachment onMiddleRow(Attachment attachment) {
    return attachment <= AcDbMText::kTopRight ? moved(attachment, kRow) : attachment;
}

Attachment onOuterRow(Attachment attachment, double angle) {
    const bool isTop = angle <= kUpright || angle >= kDownright;
    if (isTop && attachment >= AcDbMText::kBottomLeft) return moved(attachment, -2 * kRow);
    if (!isTop && attachment <= AcDbMText::kTopRight) return moved(attachment, 2 * kRow);
    return attachment;
}

// From the line away from the cursor, at right angles to the segment; from a cursor on the line
// itself, to the right of the segment's direction.
AcGeVector3d acrossFrom(const AcGePoint3d& cursor, const Nearest& nearest) {
    const AcGeVector3d way = nearest.segment.to - nearest.segment.from;
    AcGeVector3d right(way.y, -way.x, 0);
    if (right.isZeroLength()) right = AcGeVector3d(0, -1, 0);
    return right.dotProduct(nearest.point - cursor) < 0 ? -right.normal() : right.normal();
}

}  // namespace

std::optional<TextPlace> placeAtPath(const AcGePoint3dArray& path, const AcGePoint3d& cursor,
                                     double textHeight, Attachment attachment, bool onLine) {
    const std::optional<Nearest> nearest = nearestSegment(path, cursor, 2 * textHeight);
    if (!nearest) return std::nullopt;
    TextPlace place;
    place.location = nearest->point;
    if (onLine) {
        place.attachment = onMiddleRow(attachment);
    } else {
        place.location += acrossFrom(cursor, *nearest) * (textHeight / 2);
        place.attachment = onOuterRow(attachment, xyAngle(cursor, nearest->point));
    }
    place.rotation = nearest->segment.angle();
    if (place.rotation > kFirstUpsideDown && place.rotation < kLastUpsideDown) {
        place.rotation += kHalfTurn;
    }
    return place;
}

}  // namespace sg

#include <algorithm>
#include <cmath>

#include "companion/hvac_solid.h"
#include "companion/shape/bend.h"
#include "companion/shape/skin.h"
#include "companion/shape/transition.h"
#include "companion/shape/wye.h"

// The operations that add fittings: each asks for the body of its fitting and gives that to the
// solid.

namespace sg::companion {
namespace {

constexpr size_t kStations = 8;  // of a section: where the arcs of its four corners begin and end

Section sectionOf(const AcGePoint3d& center, bool isRectangular, double width, double height,
                  const AcGeVector3d* frame) {
    if (frame == nullptr) return {};
    return {center, Frame::of(frame), width, height, isRectangular};
}

AcGePoint3d stationOf(const Ring& ring, size_t i) {
    const CornerArc& corner = ring.corners[i / 2];
    return i % 2 == 0 ? corner.start : corner.end;
}

AcGePoint3d placeOf(const AcGePoint3d& point) {
    return point;
}
AcGePoint3d placeOf(const AModeler::Point3d& point) {
    return {point.x, point.y, point.z};
}
void put(const AcGePoint3d& place, AcGePoint3d& point) {
    point = place;
}
void put(const AcGePoint3d& place, AModeler::Point3d& point) {
    point.x = place.x;
    point.y = place.y;
    point.z = place.z;
}

// Eight points as they are left for the building call, and looked at by it.
template <class Point, class PlaceAt>
void keep(Point* points, const PlaceAt& placeAt) {
    for (size_t i = 0; i < kStations; ++i)
        put(placeAt(i), points[i]);
}
template <class Point, class PlaceAt>
bool areKept(const Point* points, const PlaceAt& placeAt, double slack) {
    for (size_t i = 0; i < kStations; ++i) {
        if (!(placeOf(points[i]).distanceTo(placeAt(i)) <= slack)) return false;
    }
    return true;
}

auto stationsOf(const Ring& ring) {
    return [&ring](size_t i) { return stationOf(ring, i); };
}

double slackOf(const Section& section) {
    return kFit * std::max(section.width, section.height);
}

// The collar of a wye with these ends; nothing when its walls meet beyond its head.
std::optional<double> collarOf(const Section& head, const Section& tail1, const Section& tail2) {
    constexpr double kTried = 1;
    const auto tried = wye(head, tail1, tail2, kTried);
    if (!tried) return std::nullopt;
    const double collar = kTried + (tried->ends[0] - head.center).dotProduct(head.frame.x);
    return collar > kLeastLength ? std::optional(collar) : std::nullopt;
}

}  // namespace

// ---- Transitions and skins ----------------------------------------------------------------------

bool HvacSolid::addTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                              double headHeight, AcGePoint3d tail, bool tailRectangular,
                              double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                              const AcGeVector3d* tailFrame, int bodyOption) {
    return add(transitionBody(sectionOf(head, headRectangular, headWidth, headHeight, headFrame),
                              sectionOf(tail, tailRectangular, tailWidth, tailHeight, tailFrame)),
               bodyOption);
}

bool HvacSolid::subtractTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                                   double headHeight, AcGePoint3d tail, bool tailRectangular,
                                   double tailWidth, double tailHeight,
                                   const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                                   int) {
    auto body = transitionBody(sectionOf(head, headRectangular, headWidth, headHeight, headFrame),
                               sectionOf(tail, tailRectangular, tailWidth, tailHeight, tailFrame));
    return body && !steps_.empty() && apply({CutBody{std::move(*body)}});
}

bool HvacSolid::addSkin(const AcGePoint3dArray& points, double thickness) {
    return add(skinBody({points.asArrayPtr(), static_cast<size_t>(points.length())}, thickness),
               bodyOption_);
}

// ---- Elbows -------------------------------------------------------------------------------------

bool HvacSolid::addSquareElbowPrep(AcGePoint3d& head, double headWidth, double headHeight,
                                   AcGePoint3d& tail, double tailWidth, double tailHeight,
                                   const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                                   bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                                   AcGePoint3d* c, bool withCollars, double collarLength) {
    const auto elbow = squareElbow(sectionOf(head, rectangular, headWidth, headHeight, headFrame),
                                   sectionOf(tail, rectangular, tailWidth, tailHeight, tailFrame),
                                   withCollars ? collarLength : 0);
    if (!elbow) return false;
    keep(a, stationsOf(elbow->headRing));
    keep(b, stationsOf(elbow->tailRing));
    keep(c, stationsOf(elbow->mitre));
    head = elbow->head;
    tail = elbow->tail;
    return true;
}

bool HvacSolid::addSquareElbow(AcGePoint3d head, double headWidth, double headHeight,
                               AcGePoint3d tail, double tailWidth, double tailHeight,
                               const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                               bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                               AcGePoint3d* c, int bodyOption) {
    const Section from = sectionOf(head, rectangular, headWidth, headHeight, headFrame);
    const Section to = sectionOf(tail, rectangular, tailWidth, tailHeight, tailFrame);
    auto elbow = squareElbow(from, to, 0);
    const double slack = slackOf(from);
    if (!elbow || !elbow->moveEnds(head, tail) || !areKept(a, stationsOf(elbow->headRing), slack) ||
        !areKept(b, stationsOf(elbow->tailRing), slack) ||
        !areKept(c, stationsOf(elbow->mitre), slack)) {
        return false;
    }
    return add(elbow->body(), bodyOption);
}

bool HvacSolid::addRadiusElbow(AcGePoint3d& head, double headWidth, double headHeight, double wallA,
                               double wallB, AcGePoint3d& tail, double tailWidth, double tailHeight,
                               const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                               bool rectangular, double radiusRatio, bool movesEnds, int bodyOption,
                               bool standsAlone) {
    const double wall = standsAlone ? std::max(wallA + wallB, 0.0) : 0;
    auto elbow = radiusElbow(sectionOf(head, rectangular, headWidth, headHeight, headFrame),
                             sectionOf(tail, rectangular, tailWidth, tailHeight, tailFrame),
                             radiusRatio, wall);
    if (!elbow || !add(std::move(elbow->body), bodyOption)) return false;
    if (movesEnds) {
        head = elbow->head;
        tail = elbow->tail;
    }
    return true;
}

bool HvacSolid::addCableTraySquareRadiusElbow(AcGePoint3d& head, double width, double height,
                                              AcGePoint3d& tail, const AcGeVector3d* headFrame,
                                              const AcGeVector3d* tailFrame, double radiusRatio,
                                              int bodyOption) {
    auto elbow = trayElbow(sectionOf(head, true, width, height, headFrame),
                           sectionOf(tail, true, width, height, tailFrame), radiusRatio);
    if (!elbow || !add(std::move(elbow->body), bodyOption)) return false;
    head = elbow->head;
    tail = elbow->tail;
    return true;
}

// ---- Wyes ---------------------------------------------------------------------------------------

bool HvacSolid::addWyePrep(AcGePoint3d& head, double headWidth, double headHeight,
                           AcGePoint3d& tail1, double tailWidth1, double tailHeight1,
                           AcGePoint3d& tail2, double tailWidth2, double tailHeight2,
                           AcGeVector3d* headFrame, AcGeVector3d* tailFrame1,
                           AcGeVector3d* tailFrame2, bool rectangular, AModeler::Point3d* a1,
                           AModeler::Point3d* a2, AModeler::Point3d* a3, AcGePoint3d* c1,
                           AcGePoint3d* c2, AcGePoint3d* c3, bool withCollars,
                           double collarLength) {
    // The walls of a wye without collars would meet in its ends.
    constexpr double kLeastCollar = 0.01;
    const auto made = wye(sectionOf(head, rectangular, headWidth, headHeight, headFrame),
                          sectionOf(tail1, rectangular, tailWidth1, tailHeight1, tailFrame1),
                          sectionOf(tail2, rectangular, tailWidth2, tailHeight2, tailFrame2),
                          withCollars ? collarLength : kLeastCollar);
    if (!made) return false;
    AModeler::Point3d* const sections[] = {a1, a2, a3};
    AcGePoint3d* const knees[] = {c1, c2, c3};
    for (size_t i = 0; i < 3; ++i) {
        keep(sections[i], stationsOf(made->rings[i]));
        keep(knees[i], [&](size_t k) { return made->knees[i][k]; });
    }
    head = made->ends[0];
    tail1 = made->ends[1];
    tail2 = made->ends[2];
    return true;
}

bool HvacSolid::addWye(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                       double tailWidth1, double tailHeight1, AcGePoint3d& tail2, double tailWidth2,
                       double tailHeight2, AcGePoint3d&, const AcGeVector3d* headFrame,
                       const AcGeVector3d* tailFrame1, const AcGeVector3d* tailFrame2,
                       bool rectangular, AModeler::Point3d* a1, AModeler::Point3d* a2,
                       AModeler::Point3d* a3, AcGePoint3d* c1, AcGePoint3d* c2, AcGePoint3d* c3,
                       int bodyOption) {
    const Section sections[] = {sectionOf(head, rectangular, headWidth, headHeight, headFrame),
                                sectionOf(tail1, rectangular, tailWidth1, tailHeight1, tailFrame1),
                                sectionOf(tail2, rectangular, tailWidth2, tailHeight2, tailFrame2)};
    const auto collar = collarOf(sections[0], sections[1], sections[2]);
    auto made = collar ? wye(sections[0], sections[1], sections[2], *collar) : std::nullopt;
    if (!made) return false;
    const AModeler::Point3d* const rings[] = {a1, a2, a3};
    const AcGePoint3d* const knees[] = {c1, c2, c3};
    const double slack = slackOf(sections[0]);
    for (size_t i = 0; i < 3; ++i) {
        if (!areKept(rings[i], stationsOf(made->rings[i]), slack) ||
            !areKept(
                knees[i], [&](size_t k) { return made->knees[i][k]; }, slack)) {
            return false;
        }
    }
    return add(std::move(made->boundary), bodyOption);
}

}  // namespace sg::companion

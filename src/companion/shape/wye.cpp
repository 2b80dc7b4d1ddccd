#include "companion/shape/wye.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "companion/shape/outline_check.h"

namespace sg::companion {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kLeastAngle = 10 * kPi / 180;  // between the tails
constexpr double kLargestTurn = 150 * kPi / 180;
constexpr double kStraight = 3 * kPi / 180;  // walls that turn by less go over in a taper
constexpr double kFarthest = 25;  // of a knee from the junction, in parts of the largest section

// A straight piece, seen outwards from the junction.
struct Leg {
    const Section* section = nullptr;
    size_t place = 0;  // among the ends
    AcGeVector3d out;
    AcGeVector3d left;  // across it, seen against the normal
    PlaneSize size;
    double turn = 0;     // from the head's flow, counter-clockwise
    double setback = 0;  // of its end from the junction, without the collar
    AcGePoint3d end;
};

// A place of a wall's profile, by how far it stands out from its flat edge and how high.
struct ProfilePoint {
    double outward = 0;
    double up = 0;
};
struct ProfilePiece {
    std::array<ProfilePoint, 3> poles;
    bool isArc = false;
};

// From the upper flat edge round to the lower one.
std::vector<ProfilePiece> profileOf(const PlaneSize& size) {
    const double z = size.up / 2;
    const double r = size.radius;
    if (r == 0) return {{{{{0, z}, {0, z}, {0, -z}}}, false}};
    std::vector<ProfilePiece> pieces = {{{{{0, z}, {r, z}, {r, z - r}}}, true}};
    if (z - r > kLeastLength) pieces.push_back({{{{r, z - r}, {r, z - r}, {r, r - z}}}, false});
    pieces.push_back({{{{r, r - z}, {r, -z}, {0, -z}}}, true});
    return pieces;
}

class WyeMaker {
  public:
    WyeMaker(const Section& head, const Section& tail1, const Section& tail2, double collar)
        : sections_{&head, &tail1, &tail2}, collar_(collar) {}

    std::optional<Wye> make() {
        if (!findPlane() || !findLegs() || !fits()) return std::nullopt;
        profile_ = profileOf(legs_[0].size);
        for (size_t i = 0; i < 3; ++i)
            setBack(i);
        for (Leg& leg : legs_)
            leg.end = junction_ + leg.out * (leg.setback + collar_);
        if (!isPlanSimple()) return std::nullopt;
        build();
        return std::move(result_);
    }

  private:
    Leg& next(size_t i) { return legs_[(i + 1) % 3]; }

    // The junction, and the plane of the runs.
    bool findPlane() {
        for (const Section* section : sections_)
            if (!section->isValid()) return false;
        size_ = 0;
        for (const Section* section : sections_)
            size_ = std::max({size_, section->width, section->height});
        const double gap = kFit * size_;
        std::optional<AcGePoint3d> junction;
        for (const auto& [a, b] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
            const Section& one = *sections_[static_cast<size_t>(a)];
            const Section& other = *sections_[static_cast<size_t>(b)];
            if (junction) break;
            junction = crossingOf(one.center, one.frame.x, other.center, other.frame.x, gap);
            normal_ = one.frame.x.crossProduct(other.frame.x);
        }
        if (!junction) return false;
        junction_ = *junction;
        normal_ = normal_.normal();
        return std::all_of(sections_.begin(), sections_.end(), [&](const Section* section) {
            const AcGeVector3d off = section->center - junction_;
            return off.crossProduct(section->frame.x).length() <= gap &&
                   std::abs(section->frame.x.dotProduct(normal_)) < 1e-4;
        });
    }

    // The legs counter-clockwise: the tail on the right, the one on the left, the head.
    bool findLegs() {
        const AcGeVector3d flow = sections_[0]->frame.x;
        for (size_t i = 0; i < 3; ++i) {
            Leg& leg = legs_[(i + 2) % 3];
            leg.section = sections_[i];
            leg.place = i;
            leg.out = i == 0 ? -flow : sections_[i]->frame.x;
            leg.turn = std::atan2(leg.out.dotProduct(normal_.crossProduct(flow)),
                                  leg.out.dotProduct(flow));
        }
        if (legs_[0].turn > legs_[1].turn) std::swap(legs_[0], legs_[1]);
        for (size_t i = 0; i < 2; ++i) {
            if (std::abs(legs_[i].turn) > kLargestTurn) return false;
        }
        for (Leg& leg : legs_) {
            leg.left = normal_.crossProduct(leg.out);
            const auto size = sizeInPlane(*leg.section, leg.left);
            if (!size) return false;
            leg.size = *size;
        }
        return legs_[1].turn - legs_[0].turn >= kLeastAngle;
    }

    bool fits() const {
        const double tolerance = kFit * size_;
        const PlaneSize& first = legs_[0].size;
        const bool hasFlats = flat(legs_[0]) > kLeastLength;
        return std::all_of(legs_.begin(), legs_.end(), [&](const Leg& leg) {
            return leg.section->isRectangular == legs_[0].section->isRectangular &&
                   std::abs(leg.size.up - first.up) <= tolerance &&
                   std::abs(leg.size.radius - first.radius) <= tolerance &&
                   (flat(leg) > kLeastLength) == hasFlats;
        });
    }

    // Half of what is flat of a leg, seen from above.
    static double flat(const Leg& leg) { return leg.size.across / 2 - leg.size.radius; }

    double angleFrom(size_t i) const {
        const double from = i == 2 ? kPi : legs_[i].turn;
        const double to = i == 1 ? kPi : legs_[(i + 1) % 3].turn;
        const double angle = std::fmod(to - from, 2 * kPi);
        return angle < 0 ? angle + 2 * kPi : angle;
    }
    // Whether a wall goes straight on to a leg of another width.
    bool isTapered(size_t i) {
        return std::abs(angleFrom(i) - kPi) < kStraight &&
               std::abs(legs_[i].size.across - next(i).size.across) > kFit * size_;
    }

    // Where the wall from the left side of a leg meets that from the right side of the next one, of
    // places that stand out so far. Seen from above.
    AcGePoint3d meeting(size_t i, double outward) {
        const Leg& leg = legs_[i];
        const double a = flat(leg) + outward;
        const double b = flat(next(i)) + outward;
        const double angle = angleFrom(i);
        const double along = std::abs(a - b) <= kFit * size_
                                 ? a / std::tan(angle / 2)
                                 : (a * std::cos(angle) + b) / std::sin(angle);
        return junction_ + leg.left * a + leg.out * along;
    }

    void setBack(size_t i) {
        if (isTapered(i)) return;
        for (const double outward : {0.0, legs_[i].size.radius}) {
            const AcGeVector3d reach = meeting(i, outward) - junction_;
            for (Leg* leg : {&legs_[i], &next(i)})
                leg->setback = std::max(leg->setback, reach.dotProduct(leg->out));
        }
    }

    // The places of a wall that stand out so far, from the end of a leg to that of the next one.
    std::vector<AcGePoint3d> wallLine(size_t i, double outward) {
        const Leg& leg = legs_[i];
        const Leg& other = next(i);
        const AcGeVector3d a = leg.left * (flat(leg) + outward);
        const AcGeVector3d b = other.left * -(flat(other) + outward);
        if (!isTapered(i)) return {leg.end + a, meeting(i, outward), other.end + b};
        return {leg.end + a, leg.end - leg.out * collar_ + a, other.end - other.out * collar_ + b,
                other.end + b};
    }

    bool isPlanSimple() {
        std::vector<AcGePoint3d> plan;
        for (size_t i = 0; i < 3; ++i) {
            if (legs_[i].setback > kFarthest * size_) return false;
            const auto line = wallLine(i, legs_[i].size.radius);
            plan.insert(plan.end(), line.begin(), line.end());
        }
        return isSimple(plan, normal_);
    }

    // ---- The boundary

    void build() {
        PlaneFace upper, lower;
        for (size_t i = 0; i < 3; ++i) {
            buildWall(i);
            addFlatEdges(i, upper, lower);
        }
        std::reverse(lower.begin(), lower.end());
        for (Curve& curve : lower)
            curve = curve.reversed();
        if (flat(legs_[0]) > kLeastLength) {
            result_.boundary.faces.push_back(std::move(upper));
            result_.boundary.faces.push_back(std::move(lower));
        }
        for (const Leg& leg : legs_) {
            const Section section =
                planeSection(leg.end, leg.left, normal_, leg.size, leg.section->isRectangular);
            result_.boundary.faces.push_back(capOf(section.ring()));
            result_.ends[leg.place] = leg.end;
            result_.rings[leg.place] = section.ring();
        }
    }

    AcGePoint3d raised(const AcGePoint3d& point, double up) const { return point + normal_ * up; }

    // A piece of the profile at a station of the wall.
    Curve profileAt(size_t wall, const ProfilePiece& piece, size_t station) {
        Curve curve;
        curve.isArc = piece.isArc;
        for (size_t k = 0; k < 3; ++k) {
            const ProfilePoint& pole = piece.poles[k];
            curve.poles[k] = raised(wallLine(wall, pole.outward)[station], pole.up);
        }
        return curve;
    }

    void buildWall(size_t i) {
        const size_t stations = wallLine(i, 0).size();
        for (const ProfilePiece& piece : profile_) {
            for (size_t k = 0; k + 1 < stations; ++k) {
                const Curve from = profileAt(i, piece, k);
                const Curve to = profileAt(i, piece, k + 1);
                if (piece.isArc) {
                    result_.boundary.patches.push_back({from, to});
                    continue;
                }
                result_.boundary.faces.push_back({from, Curve::line(from.end(), to.end()),
                                                  to.reversed(),
                                                  Curve::line(to.start(), from.start())});
            }
        }
        keepKnees(i, stations);
    }

    void keepKnees(size_t i, size_t stations) {
        const size_t place = legs_[i].place + next(i).place;  // 1, 2, or 3 between the tails
        auto& knees = result_.knees[place == 3 ? 0 : place];
        for (size_t k = 0; k < 8; ++k) {
            const size_t station = k < 4 ? 1 : stations - 2;
            const ProfilePiece& piece = k % 4 < 2 ? profile_.front() : profile_.back();
            knees[k] = profileAt(i, piece, station).poles[k % 2 == 0 ? 0 : 2];
        }
    }

    // The edges of the flat faces above and below, counter-clockwise seen from above.
    void addFlatEdges(size_t i, PlaneFace& upper, PlaneFace& lower) {
        const double z = legs_[0].size.up / 2;
        std::vector<AcGePoint3d> line = wallLine(i, 0);
        line.push_back(wallLine((i + 1) % 3, 0).front());
        for (size_t k = 0; k + 1 < line.size(); ++k) {
            upper.push_back(Curve::line(raised(line[k], z), raised(line[k + 1], z)));
            lower.push_back(Curve::line(raised(line[k], -z), raised(line[k + 1], -z)));
        }
    }

    std::array<const Section*, 3> sections_;
    const double collar_;
    double size_ = 0;
    AcGePoint3d junction_;
    AcGeVector3d normal_;
    std::array<Leg, 3> legs_;
    std::vector<ProfilePiece> profile_;
    Wye result_;
};

}  // namespace

std::optional<Wye> wye(const Section& head, const Section& tail1, const Section& tail2,
                       double collar) {
    if (!(collar > kLeastLength) || !std::isfinite(collar)) return std::nullopt;
    return WyeMaker(head, tail1, tail2, collar).make();
}

}  // namespace sg::companion

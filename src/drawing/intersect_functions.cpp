#include <vector>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "drawing/lisp_functions.h"
#include "platform/db/arc.h"
#include "platform/db/line.h"

namespace sg {
namespace {

// A piece of a run: an arc that starts in a direction.
struct ArcSpecification {
    AcGePoint3d point;
    double tangentAngle = 0;
    int32_t direction = 0;  // 1 turns left, any other right
    double radius = 0;
    double sweep = 0;

    double length() const { return radius * sweep; }
};

bool nextFlatPoint(const resbuf*& position, AcGePoint3d& point) {
    if (!nextPoint3d(position, point)) return false;
    point.z = 0;
    return true;
}

bool nextArcSpecification(const resbuf*& position, ArcSpecification& arc) {
    return nextFlatPoint(position, arc.point) && nextReal(position, arc.tangentAngle) &&
           nextInt(position, arc.direction) && nextReal(position, arc.radius) &&
           nextReal(position, arc.sweep);
}

AcDbArc makeArc(const ArcSpecification& given) {
    const AcGePoint3d center =
        polar(given.point, given.direction * kQuarterTurn + given.tangentAngle, given.radius);
    const double a = xyAngle(center, given.point);
    return given.direction == 1 ? AcDbArc(center, given.radius, a, a + given.sweep)
                                : AcDbArc(center, given.radius, a - given.sweep, a);
}

// An arc with its straight extensions past both ends, where it is extended. An arc that turns right
// ends in its point: both extensions then run backwards along one line.
class ArcRun {
  public:
    ArcRun(const ArcSpecification& given, double extend)
        : arc_(makeArc(given)), given_(given), extended_(extend != 0) {
        if (!extended_) return;
        back_.setStartPoint(given.point);
        back_.setEndPoint(polar(given.point, given.tangentAngle, -extend));
        AcGePoint3d end;
        AcGeVector3d along;
        arc_.getEndPoint(end);
        arc_.getFirstDeriv(end, along);
        forward_.setStartPoint(end);
        forward_.setEndPoint(end + along.normalize(AcGeContext::gTol) * extend);
    }

    const AcDbArc& arc() const { return arc_; }
    const AcDbLine& backLine() const { return back_; }
    const AcDbLine& forwardLine() const { return forward_; }
    bool isExtended() const { return extended_; }

    // In the order in which crossings with them are looked for.
    std::vector<const AcDbEntity*> pieces() const {
        if (!extended_) return {&arc_};
        return {&back_, &arc_, &forward_};
    }

    // Distances along the run of a point at this distance on one of its pieces.
    double onBackLine(double d) const { return isRight() ? given_.length() + d : -d; }
    double onArc(double d) const { return isRight() ? given_.length() - d : d; }
    double onForwardLine(double d) const { return isRight() ? -d : given_.length() + d; }

  private:
    bool isRight() const { return given_.direction == -1; }

    AcDbArc arc_;
    AcDbLine back_, forward_;
    ArcSpecification given_;
    bool extended_;
};

// Pairs ("d" . distance), given to the host in the end; nil when there are none.
class Distances {
  public:
    Distances() { beginResultList(head_, tail_); }
    ~Distances() { acutRelRb(head_); }
    Distances(const Distances&) = delete;
    Distances& operator=(const Distances&) = delete;

    // One block: where the piece meets the others, each measured on the piece. A crossing that
    // fails ends the block without any.
    template <class Measure>
    void addBlock(const AcDbCurve& piece, const std::vector<const AcDbEntity*>& others,
                  const Measure& measure) {
        AcGePoint3dArray points(0, 8);
        for (const AcDbEntity* other : others) {
            if (piece.intersectWith(other, AcDb::kOnBothOperands, points, 0, 0) != Acad::eOk)
                return;
        }
        for (const AcGePoint3d& point : points) {
            double d = 0;
            if (piece.getDistAtPoint(point, d) != Acad::eOk) continue;
            appendPair(tail_, L"d", measure(d));
            any_ = true;
        }
    }

    void giveBack() {
        finishResultList(head_, tail_);
        if (!any_) acedRetNil();
    }

  private:
    resbuf* head_ = nullptr;
    resbuf* tail_ = nullptr;
    bool any_ = false;
};

void addCrossings(Distances& distances, const ArcRun& run,
                  const std::vector<const AcDbEntity*>& others) {
    if (run.isExtended()) {
        distances.addBlock(run.backLine(), others, [&](double d) { return run.onBackLine(d); });
    }
    distances.addBlock(run.arc(), others, [&](double d) { return run.onArc(d); });
    if (run.isExtended()) {
        distances.addBlock(run.forwardLine(), others,
                           [&](double d) { return run.onForwardLine(d); });
    }
}

// A line, longer by `extend` at both ends.
bool nextLine(const resbuf*& position, double extend, AcDbLine& line) {
    AcGePoint3d first, second;
    if (!nextFlatPoint(position, first) || !nextFlatPoint(position, second)) return false;
    if (extend != 0) {
        first = polar(first, xyAngle(second, first), extend);
        second = polar(second, xyAngle(first, second), extend);
    }
    line.setStartPoint(first);
    line.setEndPoint(second);
    return true;
}

// A missing or wrong value counts as 0.
double nextExtend(const resbuf*& position) {
    double extend = 0;
    nextReal(position, extend);
    return extend;
}

}  // namespace

int intersectArcArc() {
    CallArguments arguments;
    acedRetNil();
    const double extend = nextExtend(arguments.next);
    ArcSpecification a, b;
    if (!nextArcSpecification(arguments.next, a) || !nextArcSpecification(arguments.next, b)) {
        return kLispOk;
    }
    const ArcRun along(a, extend);
    const ArcRun other(b, extend);
    Distances distances;
    addCrossings(distances, along, other.pieces());
    distances.giveBack();
    return kLispOk;
}

int intersectArcLine() {
    CallArguments arguments;
    acedRetNil();
    const double extend = nextExtend(arguments.next);
    ArcSpecification a;
    AcDbLine line;
    if (!nextArcSpecification(arguments.next, a) || !nextLine(arguments.next, extend, line)) {
        return kLispOk;
    }
    Distances distances;
    addCrossings(distances, ArcRun(a, extend), {&line});
    distances.giveBack();
    return kLispOk;
}

int intersectLineArc() {
    CallArguments arguments;
    acedRetNil();
    const double extend = nextExtend(arguments.next);
    AcDbLine line;
    ArcSpecification b;
    if (!nextLine(arguments.next, extend, line) || !nextArcSpecification(arguments.next, b)) {
        return kLispOk;
    }
    const ArcRun other(b, extend);
    Distances distances;
    distances.addBlock(line, other.pieces(), [&](double d) { return d - extend; });
    distances.giveBack();
    return kLispOk;
}

}  // namespace sg

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"

namespace sg {
namespace {

struct HangerRequest {
    bool strap = false;
    AcGePoint3d point;  // the duct's centre
    double angle = 0;   // of its run
    double width = 0;
    double height = 0;
    bool rectangular = false;
    double rodSize = 0;
    double thickness = 0;  // of the strap, or the trapeze's bar
    double elevation = 0;  // the z at which the rods end
    int32_t bodyOption = 0;
};

bool nextHangerRequest(const resbuf*& position, HangerRequest& request) {
    return nextBool(position, request.strap) && nextPoint3d(position, request.point) &&
           nextReal(position, request.angle) && nextReal(position, request.width) &&
           nextReal(position, request.height) && nextBool(position, request.rectangular) &&
           nextReal(position, request.rodSize) && nextReal(position, request.thickness) &&
           nextReal(position, request.elevation) && nextInt(position, request.bodyOption);
}

AcGeVector3d direction(double angle) {
    return polar(AcGePoint3d::kOrigin, angle, 1.0).asVector();
}

AcGePoint3d atElevation(const AcGePoint3d& point, double z) {
    return {point.x, point.y, z};
}

// A hanger on a level duct: the bodies of a strap or a trapeze.
class Hanger {
  public:
    Hanger(const HangerRequest& request, qn_hvacSolid& solid)
        : r_(request),
          solid_(solid),
          x_(direction(request.angle)),
          y_(direction(request.angle + kQuarterTurn)),
          frame_{{x_, y_, z_}},
          rod_{request.rodSize, request.rodSize, false} {}

    bool buildStrap();
    bool buildTrapeze();

  private:
    // A band about the duct, as thick as `layers` thicknesses to either side, or a hole in it.
    Profile band(double layers) const {
        return {r_.width + r_.thickness * 2.0 * layers, r_.height + r_.thickness * 2.0 * layers,
                r_.rectangular};
    }
    bool addStrapRod();
    bool addTrapezeRods(const AcGePoint3d& barCentre, double offset);
    bool addRod(const AcGePoint3d& head, const AcGePoint3d& tail, const SectionFrame& frame) {
        return addTransition(solid_, {head, rod_, frame}, {tail, rod_, frame}, r_.bodyOption);
    }

    const HangerRequest& r_;
    qn_hvacSolid& solid_;
    const AcGeVector3d x_;
    const AcGeVector3d y_;
    const AcGeVector3d z_ = AcGeVector3d::kZAxis;
    const SectionFrame frame_;
    const Profile rod_;
};

// The hole is wider than the duct by a tenth of the strap's thickness on either side.
bool Hanger::buildStrap() {
    const AcGePoint3d a = r_.point - x_ * (r_.rodSize * 0.5);
    const AcGePoint3d b = r_.point + x_ * (r_.rodSize * 0.5);
    const Profile outer = band(1.0);
    const Profile hole = band(0.1);
    return addTransition(solid_, {a, outer, frame_}, {b, outer, frame_}, r_.bodyOption) &&
           addStrapRod() &&
           subtractTransition(solid_, {a, hole, frame_}, {b, hole, frame_}, r_.bodyOption);
}

// From the duct's top or bottom, whichever the elevation is at.
bool Hanger::addStrapRod() {
    const bool rises = r_.elevation > r_.point.z;
    const AcGeVector3d half(0, 0, r_.height * 0.5);
    const AcGePoint3d start = rises ? r_.point + half : r_.point - half;
    const SectionFrame frame =
        rises ? SectionFrame{{z_, x_, y_}} : SectionFrame{{AcGeVector3d(0, 0, -1), y_, x_}};
    const AcGePoint3d end = atElevation(start, r_.elevation);
    return start.z == end.z || addRod(start, end, frame);
}

bool Hanger::buildTrapeze() {
    const AcGePoint3d centre = r_.point - AcGeVector3d(0, 0, r_.height * 0.5 + r_.thickness * 0.5);
    const Profile bar = {r_.rodSize * 4.0 + r_.width, r_.thickness, true};
    if (!addTrapezeRods(centre, bar.width * 0.5 - r_.rodSize)) return false;
    const AcGeVector3d half = x_ * r_.rodSize;
    return addTransition(solid_, {centre + half, bar, frame_}, {centre - half, bar, frame_},
                         r_.bodyOption);
}

// The two rods differ on purpose. The first stands on the side of the bar where the elevation is;
// the second always stands on its top, is drawn from the elevation down, and is there only when the
// first one is.
bool Hanger::addTrapezeRods(const AcGePoint3d& barCentre, double offset) {
    const double half = r_.thickness * 0.5;
    AcGePoint3d foot1 = barCentre - y_ * offset;
    foot1.z += r_.elevation > foot1.z ? half : -half;
    const AcGePoint3d end1 = atElevation(foot1, r_.elevation);
    if (foot1.z == end1.z) return true;
    if (!addRod(foot1, end1, {{z_, x_, y_}})) return false;

    AcGePoint3d foot2 = barCentre + y_ * offset;
    foot2.z += half;
    const SectionFrame frame2 = {{z_, AcGeVector3d(-1, 0, 0), AcGeVector3d(0, -1, 0)}};
    return addRod(atElevation(foot2, r_.elevation), foot2, frame2);
}

}  // namespace

int drawHanger() {
    CallArguments arguments;
    HangerRequest request;
    if (!nextHangerRequest(arguments.next, request)) return kLispWrongType;
    acedRetNil();
    SolidPtr solid = newSolid();
    if (solid == nullptr) return kLispOk;
    Hanger hanger(request, *solid);
    if (!(request.strap ? hanger.buildStrap() : hanger.buildTrapeze())) return kLispOk;
    PairList().add(L"hanger", addToDrawing(std::move(solid))).finish();
    return kLispOk;
}

}  // namespace sg

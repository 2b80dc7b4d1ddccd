#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "solids/alignment.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"

namespace sg {
namespace {

// How far the main reaches past a branch, and a branch past the main's side.
constexpr double kCollar = 3.0;

struct TakeoffRequest {
    BuildOptions options;
    DuctSection mainBefore;
    DuctSection mainBehind;
    DuctSection branch;
    DuctSection secondBranch;  // none when its width is 0

    bool hasSecondBranch() const { return secondBranch.width != 0.0; }
};

// The second branch may be missing; of one that breaks off, what has been read is used.
bool nextTakeoffRequest(const resbuf*& position, TakeoffRequest& request) {
    bool unusedSwitch = false;
    double unusedNumber = 0;
    if (!nextBuildOptions(position, request.options) || !nextBool(position, unusedSwitch) ||
        !nextReal(position, unusedNumber) || !nextSection(position, request.mainBefore) ||
        !nextSection(position, request.mainBehind) || !nextSection(position, request.branch)) {
        return false;
    }
    nextSection(position, request.secondBranch);
    return true;
}

struct Branch {
    const DuctSection* section = nullptr;
    SectionFrame frame;
    Profile profile;
    AcGePoint3d head;
    // Lengths on the main from where the axes meet, and on the branch from its foot; 0 for a branch
    // that is not there, which counts in comparisons all the same.
    double before = 0;
    double after = 0;
    double reach = 0;
    AcGePoint3d foot;
    AcGePoint3d tip;
};

// A straight piece of a main with one or two spigots, and behind it a reducer where the main
// changes its size.
class Takeoff {
  public:
    explicit Takeoff(const TakeoffRequest& request);
    bool build();
    void addToDrawingAndReturn();

  private:
    std::span<Branch> branches() { return std::span(branches_).first(branchCount_); }
    void take(const DuctSection& section);
    bool measureBranches();
    bool measure(Branch& branch) const;
    void placeMain();
    void placeSpigots();
    bool buildBodies();
    bool addSpigot(const Branch& branch);
    void trimLastSpigot();
    bool addReducer();
    double longer(double Branch::*length) const {
        return std::max(branches_[0].*length, branches_[1].*length);
    }

    const TakeoffRequest& request_;
    const int bodyOption_;
    const bool convert_;

    SectionFrame frame_;  // the main's
    Profile main_;        // with the class of the section
    AcGePoint3d tail1_;   // where the main's sections meet
    AcGePoint3d head2_;
    AcGePoint3d start_;  // the fitting's ends on the main
    AcGePoint3d end_;
    AcGePoint3d mainEnd2_;  // where the second section begins

    std::array<Branch, 2> branches_;
    size_t branchCount_ = 0;

    SolidPtr fitting_;
    SolidPtr reducer_;
};

Takeoff::Takeoff(const TakeoffRequest& request)
    : request_(request),
      bodyOption_(request.options.bodyOption),
      convert_(request.options.convert),
      frame_(sectionFrame(request.mainBefore, &request.mainBehind, convert_)),
      main_(sectionProfile(request.mainBefore)) {
    const SectionFrame frame2 = sectionFrame(request.mainBehind, &request.mainBefore, convert_);
    take(request.branch);
    if (request.hasSecondBranch()) take(request.secondBranch);
    tail1_ = sectionTailPoint(request.mainBefore, &frame_, convert_);
    head2_ = sectionHeadPoint(request.mainBehind, &frame2, convert_);
    for (Branch& branch : branches()) {
        branch.head = sectionHeadPoint(*branch.section, &branch.frame, convert_);
        alignFrames(frame_, branch.frame, main_, branch.profile);
    }
}

void Takeoff::take(const DuctSection& section) {
    Branch& branch = branches_[branchCount_++];
    branch.section = &section;
    branch.frame = sectionFrame(section, &request_.mainBefore, convert_);
    branch.profile = shapeProfile(section);
}

bool Takeoff::build() {
    if (!measureBranches()) return false;
    placeMain();
    placeSpigots();
    fitting_ = newSolid();
    if (fitting_ == nullptr || !buildBodies()) return false;
    trimLastSpigot();
    return !sectionSizesDiffer(request_.mainBefore, request_.mainBehind) || addReducer();
}

bool Takeoff::measureBranches() {
    return std::ranges::all_of(branches(), [this](Branch& branch) { return measure(branch); });
}

// False for a branch that runs along the main, forth or back.
bool Takeoff::measure(Branch& branch) const {
    const double angle = angleOfCosine(frame_.x().dotProduct(branch.frame.x()));
    if (angle == 0.0 || angle == std::numbers::pi) return false;
    // A branch that rises or falls more steeply than the main's diagonal leaves through its top or
    // bottom.
    const double lift = angleOfSine(frame_.z().dotProduct(branch.frame.x()));
    const double diagonal = std::atan(main_.height / main_.width);
    const double faceSpan = lift > diagonal || lift < -diagonal ? main_.height : main_.width;

    double slant = 0.0;
    double branchSlant = 0.0;
    // Hardly any angle equals this quarter turn: for a right angle the tangent is huge, and the
    // lengths are next to nothing.
    if (angle != kQuarterTurn) {
        slant = faceSpan * 0.5 / std::tan(angle);
        branchSlant = std::abs(branch.profile.width * 0.5 / std::tan(angle));
    }
    const double upness = std::abs(frame_.z().dotProduct(branch.frame.x()));
    const double sideOnMain = upness < 1.0 ? branch.profile.width : branch.profile.height;
    const double halfOnMain = sideOnMain * 0.5 / std::sin(angle);
    branch.before = halfOnMain - slant;
    branch.after = halfOnMain + slant;
    branch.reach = branchSlant + faceSpan * 0.5 / std::sin(angle);
    return true;
}

// The fitting reaches from the first branch to the last, and lies about where the main's sections
// meet when there are two.
void Takeoff::placeMain() {
    const auto station = [this](const Branch& branch) {
        return frame_.x().dotProduct(branch.head - tail1_);
    };
    double shiftBack = station(branches_[0]);
    double shiftAhead = shiftBack;
    if (branchCount_ == 2) {
        const double other = station(branches_[1]);
        shiftBack = std::min({0.0, shiftAhead, other});
        shiftAhead = std::max({0.0, shiftAhead, other});
    }
    const double ahead = longer(&Branch::after) + kCollar + shiftAhead;
    start_ = tail1_ - frame_.x() * (longer(&Branch::before) + kCollar - shiftBack);
    end_ = tail1_ + frame_.x() * ahead;
    mainEnd2_ = head2_ + frame_.x() * ahead;
}

void Takeoff::placeSpigots() {
    for (Branch& branch : branches()) {
        const AcGeVector3d& along = branch.frame.x();
        branch.foot = branch.head + along * along.dotProduct(tail1_ - branch.head);
        branch.tip = branch.foot + along * (branch.reach + kCollar);
    }
}

bool Takeoff::buildBodies() {
    const Profile profile = shapeProfile(request_.mainBefore);
    if (!addTransition(*fitting_, {start_, profile, frame_}, {end_, profile, frame_},
                       bodyOption_)) {
        return false;
    }
    return std::ranges::all_of(branches(),
                               [this](const Branch& branch) { return addSpigot(branch); });
}

// A little smaller than the branch, so that no face of the spigot lies in one of the main's.
bool Takeoff::addSpigot(const Branch& branch) {
    constexpr double kLessWidth = 0.01;
    constexpr double kLessHeight = 0.001;
    Profile profile = branch.profile;
    profile.width -= kLessWidth;
    if (profile.height == main_.height) profile.height -= kLessHeight;
    return addTransition(*fitting_, {branch.foot, profile, branch.frame},
                         {branch.tip, profile, branch.frame}, bodyOption_);
}

// Cuts off what the spigot added last has beyond the main piece's ends. That the first of two
// spigots stays as it is is deliberate.
void Takeoff::trimLastSpigot() {
    fitting_->sliceLast(start_, start_ + frame_.y(), start_ + frame_.z(), end_);
    fitting_->sliceLast(end_, end_ + frame_.y(), end_ + frame_.z(), start_);
}

bool Takeoff::addReducer() {
    const DuctSection& first = request_.mainBefore;
    const DuctSection& second = request_.mainBehind;
    reducer_ = newSolid();
    if (reducer_ == nullptr) return false;
    mainEnd2_ +=
        frame_.x() * sizeChangeLength(sectionProfile(first), sectionProfile(second), kReducerAngle);
    return addTransition(*reducer_, {end_, shapeProfile(first), frame_},
                         {mainEnd2_, shapeProfile(second), frame_}, bodyOption_);
}

void Takeoff::addToDrawingAndReturn() {
    const AcDbObjectId reducer = addToDrawing(std::move(reducer_));
    const AcDbObjectId fitting = addToDrawing(std::move(fitting_));
    const auto spigotLength = [](const Branch& branch) {
        return branch.head.distanceTo(branch.tip);
    };
    PairList()
        .add(L"en1", fitting)
        .add(L"en2", reducer)
        .add(L"dHeadLength", tail1_.distanceTo(start_))
        .add(L"dTailLength1", head2_.distanceTo(mainEnd2_))
        .add(L"dTailLength2", spigotLength(branches_[0]))
        .add(L"dTailLength3", spigotLength(branches_[1]))
        .finish();
}

}  // namespace

int drawTripleTakeoff() {
    CallArguments arguments;
    TakeoffRequest request;
    if (!nextTakeoffRequest(arguments.next, request)) return kLispWrongType;
    acedRetNil();
    Takeoff takeoff(request);
    if (takeoff.build()) takeoff.addToDrawingAndReturn();
    return kLispOk;
}

}  // namespace sg

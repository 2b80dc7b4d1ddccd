#include <array>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "solids/alignment.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"

namespace sg {
namespace {

struct WyeRequest {
    BuildOptions options;
    DuctSection head;
    DuctSection tails[2];
};

bool nextWyeRequest(const resbuf*& position, WyeRequest& request) {
    bool unusedSwitch = false;
    double unusedNumber = 0;
    return nextBuildOptions(position, request.options) && nextBool(position, unusedSwitch) &&
           nextReal(position, unusedNumber) && nextSection(position, request.head) &&
           nextSection(position, request.tails[0]) && nextSection(position, request.tails[1]);
}

struct WyeTail {
    const DuctSection* section = nullptr;
    SectionFrame frame;
    AcGePoint3d head;
    AcGePoint3d tail;  // the wye's connection point, and then the end of the reducer
    Profile profile;   // of the wye at this end; the class is the section's
    bool needsReducer = false;
    SolidPtr reducer;
};

// A wye has its head's height throughout. A tail may have a width of its own unless everything
// about it is different; what it cannot have, a reducer behind it makes good.
void chooseProfile(WyeTail& tail, const Profile& head) {
    const bool otherWidth = tail.profile.width != head.width;
    const bool otherHeight = tail.profile.height != head.height;
    const bool otherClass = tail.profile.rectangular != head.rectangular;
    if ((otherWidth && otherHeight) || otherClass) tail.profile.width = head.width;
    if (otherHeight || otherClass) {
        tail.profile.height = head.height;
        tail.needsReducer = true;
    }
}

// A section that parts into two.
class Wye {
  public:
    explicit Wye(const WyeRequest& request);
    bool build();
    void addToDrawingAndReturn();

  private:
    bool prepare();
    bool addBody();
    void addReducer(WyeTail& tail);

    const int bodyOption_;
    SectionFrame frame_;
    Profile profile_;
    AcGePoint3d head_;  // the wye's connection point on the head's section
    AcGePoint3d junction_;
    std::array<WyeTail, 2> tails_;

    SolidPtr wye_;
    std::array<std::array<AModeler::Point3d, 8>, 3> a_;
    std::array<std::array<AcGePoint3d, 8>, 3> c_;
};

Wye::Wye(const WyeRequest& request)
    : bodyOption_(request.options.bodyOption), profile_(sectionProfile(request.head)) {
    const bool convert = request.options.convert;
    frame_ = sectionFrame(request.head, &request.tails[0], convert);
    for (size_t i = 0; i < tails_.size(); ++i) {
        tails_[i].section = &request.tails[i];
        tails_[i].frame = sectionFrame(request.tails[i], &request.head, convert);
    }
    head_ = sectionHeadPoint(request.head, &frame_, convert);
    junction_ = sectionTailPoint(request.head, &frame_, convert);
    for (WyeTail& tail : tails_) {
        tail.head = sectionHeadPoint(*tail.section, &tail.frame, convert);
        tail.tail = sectionTailPoint(*tail.section, &tail.frame, convert);
        tail.profile = sectionProfile(*tail.section);
        chooseProfile(tail, profile_);
    }
}

bool Wye::build() {
    wye_ = newSolid();
    if (wye_ == nullptr || !prepare() || !addBody()) return false;
    for (WyeTail& tail : tails_) {
        if (tail.needsReducer) addReducer(tail);
    }
    return true;
}

bool Wye::prepare() {
    constexpr double kCollar = 3.0;
    auto& [t1, t2] = tails_;
    return wye_->addWyePrep(head_, profile_.width, profile_.height, t1.tail, t1.profile.width,
                            t1.profile.height, t2.tail, t2.profile.width, t2.profile.height,
                            frame_.data(), t1.frame.data(), t2.frame.data(), profile_.rectangular,
                            a_[0].data(), a_[1].data(), a_[2].data(), c_[0].data(), c_[1].data(),
                            c_[2].data(), true, kCollar);
}

bool Wye::addBody() {
    auto& [t1, t2] = tails_;
    return wye_->addWye(head_, profile_.width, profile_.height, t1.tail, t1.profile.width,
                        t1.profile.height, t2.tail, t2.profile.width, t2.profile.height, junction_,
                        frame_.data(), t1.frame.data(), t2.frame.data(), profile_.rectangular,
                        a_[0].data(), a_[1].data(), a_[2].data(), c_[0].data(), c_[1].data(),
                        c_[2].data(), bodyOption_);
}

// Without its body the reducer is still in the drawing, and its length counts.
void Wye::addReducer(WyeTail& tail) {
    tail.reducer = newSolid();
    if (tail.reducer == nullptr) return;
    const Profile own = sectionProfile(*tail.section);
    const Profile wye = {tail.profile.width, tail.profile.height, profile_.rectangular};
    const AcGePoint3d end = tail.tail + tail.frame.x() * sizeChangeLength(wye, own, kReducerAngle);
    addTransition(*tail.reducer, {tail.tail, wye, tail.frame}, {end, own, tail.frame}, bodyOption_);
    tail.tail = end;
}

void Wye::addToDrawingAndReturn() {
    auto& [t1, t2] = tails_;
    const AcDbObjectId wye = addToDrawing(std::move(wye_));
    const AcDbObjectId reducer1 = addToDrawing(std::move(t1.reducer));
    const AcDbObjectId reducer2 = addToDrawing(std::move(t2.reducer));
    PairList()
        .add(L"en1", wye)
        .add(L"en2", reducer1)
        .add(L"en3", reducer2)
        .add(L"dHeadLength", junction_.distanceTo(head_))
        .add(L"dTailLength1", t1.head.distanceTo(t1.tail))
        .add(L"dTailLength2", t2.head.distanceTo(t2.tail))
        .finish();
}

}  // namespace

int drawTripleWye() {
    CallArguments arguments;
    WyeRequest request;
    if (!nextWyeRequest(arguments.next, request)) return kLispWrongType;
    acedRetNil();
    Wye wye(request);
    if (wye.build()) wye.addToDrawingAndReturn();
    return kLispOk;
}

}  // namespace sg

#include <array>
#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "solids/alignment.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"

namespace sg {
namespace {

struct ElbowRequest {
    BuildOptions options;
    bool tray = false;
    bool square = false;
    double radius = 0;
    DuctSection first;
    DuctSection second;
};

// A text in the place of the boolean asks for a tray's elbow; behind any other text the boolean
// follows.
bool nextElbowKind(const resbuf*& position, ElbowRequest& request) {
    std::wstring kind;
    request.tray = nextString(position, kind) && kind == L"CABLETRAY";
    return request.tray || nextBool(position, request.square);
}

bool nextElbowRequest(const resbuf*& position, ElbowRequest& request) {
    return nextBuildOptions(position, request.options) && nextElbowKind(position, request) &&
           nextReal(position, request.radius) && nextSection(position, request.first) &&
           nextSection(position, request.second);
}

// The radius in widths of the elbow. What is at most half a width would leave no inner side.
double radiusRatio(const ElbowRequest& request) {
    constexpr double kLeastRatio = 0.501;
    const double ratio = request.radius / request.first.width;
    return ratio > 0.0 && ratio <= 0.5 ? kLeastRatio : ratio;
}

bool isLevel(const DuctSection& section) {
    return section.headPoint.z == section.tailPoint.z;
}

// An elbow from one section to another, and a reducer behind it when the elbow cannot have the
// second one's size.
class Elbow {
  public:
    explicit Elbow(const ElbowRequest& request);
    bool build();
    void addToDrawingAndReturn();

  private:
    bool prepareSquare(double tailWidth, double tailHeight);
    bool fitSquare();
    bool buildSquare();
    bool buildRadius();
    void addReducer();

    const ElbowRequest& request_;
    const int bodyOption_;
    const bool rectangular_;  // by the first section's shape
    double ratio_;

    SectionFrame frame1_;
    SectionFrame frame2_;
    AcGePoint3d start_;  // the elbow's connection points, as the solid moves them
    AcGePoint3d end_;
    AcGePoint3d tail1_;  // where the sections would meet without an elbow
    AcGePoint3d head2_;

    Profile first_;
    Profile tail_;  // of the elbow at its end
    Profile run_;   // of the run behind the elbow
    bool needsReducer_ = false;

    SolidPtr elbow_;
    SolidPtr reducer_;
    std::array<AModeler::Point3d, 8> a_;
    std::array<AModeler::Point3d, 8> b_;
    std::array<AcGePoint3d, 8> c_;
};

Elbow::Elbow(const ElbowRequest& request)
    : request_(request),
      bodyOption_(request.options.bodyOption),
      rectangular_(shapeIsRectangular(request.first.shape)),
      ratio_(radiusRatio(request)),
      first_(sectionProfile(request.first)),
      tail_(sectionProfile(request.second)) {
    const DuctSection& first = request.first;
    const DuctSection& second = request.second;
    const bool convert = request.options.convert;
    frame1_ = sectionFrame(first, &second, convert);
    frame2_ = sectionFrame(second, &first, convert);
    start_ = sectionHeadPoint(first, &frame1_, convert);
    tail1_ = sectionTailPoint(first, &frame1_, convert);
    head2_ = sectionHeadPoint(second, &frame2_, convert);
    end_ = sectionTailPoint(second, &frame2_, convert);
    alignFrames(frame1_, frame2_, first_, tail_);
    run_ = tail_;
}

bool Elbow::build() {
    elbow_ = newSolid();
    if (elbow_ == nullptr) return false;
    if (!(request_.square ? buildSquare() : buildRadius())) return false;
    if (needsReducer_) addReducer();
    return true;
}

bool Elbow::prepareSquare(double tailWidth, double tailHeight) {
    constexpr double kCollar = 3.0;
    if (!elbow_->addSquareElbowPrep(start_, first_.width, first_.height, end_, tailWidth,
                                    tailHeight, frame1_.data(), frame2_.data(), rectangular_,
                                    a_.data(), b_.data(), c_.data(), true, kCollar)) {
        return false;
    }
    tail_.width = tailWidth;
    tail_.height = tailHeight;
    return true;
}

// The elbow keeps as much of the second section's size as it can.
bool Elbow::fitSquare() {
    if (prepareSquare(tail_.width, tail_.height)) return true;
    needsReducer_ = true;
    return prepareSquare(first_.width, tail_.height) || prepareSquare(tail_.width, first_.height) ||
           prepareSquare(first_.width, first_.height);
}

bool Elbow::buildSquare() {
    return fitSquare() &&
           elbow_->addSquareElbow(start_, first_.width, first_.height, end_, tail_.width,
                                  tail_.height, frame1_.data(), frame2_.data(), rectangular_,
                                  a_.data(), b_.data(), c_.data(), bodyOption_);
}

// A radius elbow has one size throughout. It is built for a flat tray too, whose own elbow then
// takes its place: the connection points come from it.
bool Elbow::buildRadius() {
    constexpr double kUsualRatio = 1.5;
    const DuctSection& first = request_.first;
    const DuctSection& second = request_.second;
    if (tail_.width != first_.width || tail_.height != first_.height ||
        tail_.rectangular != first_.rectangular) {
        needsReducer_ = true;
        tail_.width = first_.width;
        tail_.height = first_.height;
    }
    if (ratio_ == 0.0) ratio_ = kUsualRatio;
    const bool flatTray = request_.tray && isLevel(first) && isLevel(second) &&
                          first.tailPoint.z == second.headPoint.z;
    if (!elbow_->addRadiusElbow(start_, first_.width, first_.height, first.wallA, first.wallB, end_,
                                tail_.width, tail_.height, frame1_.data(), frame2_.data(),
                                rectangular_, ratio_, true, bodyOption_, !flatTray)) {
        return false;
    }
    if (!flatTray) return true;
    elbow_->clearBodies();
    return elbow_->addCableTraySquareRadiusElbow(start_, first_.width, first_.height, end_,
                                                 frame1_.data(), frame2_.data(), ratio_,
                                                 bodyOption_);
}

// Without its body the reducer is still in the drawing, and its length counts.
void Elbow::addReducer() {
    reducer_ = newSolid();
    if (reducer_ == nullptr) return;
    const Profile elbowProfile = {tail_.width, tail_.height, first_.rectangular};
    const double length = sizeChangeLength(elbowProfile, run_, kReducerAngle);
    const AcGePoint3d behind = end_ + frame2_.x() * length;
    addTransition(*reducer_, {end_, elbowProfile, frame2_}, {behind, run_, frame2_}, bodyOption_);
    end_ = behind;
}

void Elbow::addToDrawingAndReturn() {
    const AcDbObjectId elbow = addToDrawing(std::move(elbow_));
    const AcDbObjectId reducer = addToDrawing(std::move(reducer_));
    PairList()
        .add(L"en1", elbow)
        .add(L"en2", reducer)
        .add(L"dHeadLength", frame1_.x().dotProduct(tail1_ - start_))
        .add(L"dTailLength", frame2_.x().dotProduct(end_ - head2_))
        .finish();
}

}  // namespace

int drawTripleElbow() {
    CallArguments arguments;
    ElbowRequest request;
    if (!nextElbowRequest(arguments.next, request)) return kLispWrongType;
    acedRetNil();
    Elbow elbow(request);
    if (elbow.build()) elbow.addToDrawingAndReturn();
    return kLispOk;
}

}  // namespace sg

#include "jigs/rectangle_jig.h"

#include <array>
#include <cmath>

#include "drawing/current_drawing.h"
#include "jigs/world_angle.h"

namespace sg {
namespace {

constexpr int kCorners = 4;

using Corners = std::array<AcGePoint2d, kCorners>;

// From one corner of a rectangle along x, along y, and back.
Corners cornersFrom(double x, double y, double alongX, double alongY) {
    return {AcGePoint2d(x, y), AcGePoint2d(x + alongX, y), AcGePoint2d(x + alongX, y + alongY),
            AcGePoint2d(x, y + alongY)};
}

}  // namespace

AsdkRectangleJig::AsdkRectangleJig(double ySize, double xSize, int corner, bool rotate)
    : middleMode_(corner == 0),
      rotate_(rotate),
      corner_(corner),
      ySize_(ySize),
      xSize_(xSize),
      halfYSize_(ySize / 2),
      halfXSize_(xSize / 2) {}

bool AsdkRectangleJig::run() {
    makePolyline();
    askPoint();
    askRotation();
    takeVertices();
    polyline_.reset();
    return !cancelled_;
}

// The sizes are swapped against what update() makes of them. That is deliberate: these vertices are
// seen, and answered, only when the user confirms the point without a sample.
void AsdkRectangleJig::makePolyline() {
    polyline_ = std::make_unique<AcDbPolyline>(kCorners);
    const Corners corners = cornersFrom(insertionPoint_.x, insertionPoint_.y, ySize_, xSize_);
    for (unsigned int i = 0; i < kCorners; ++i)
        polyline_->addVertexAt(i, corners[i], 0, -1.0, -1.0);
    polyline_->setClosed(true);
}

// A keyword changes the shape, and the point is asked for again.
void AsdkRectangleJig::askPoint() {
    stage_ = Stage::point;
    setPlacePrompt();
    DragStatus status = kNormal;
    do {
        status = drag();
        if (status == kCancel || status == kNull) cancelled_ = true;
    } while (!cancelled_ && (status == kKW1 || status == kKW2));
}

void AsdkRectangleJig::askRotation() {
    stage_ = Stage::rotation;
    if (cancelled_ || !rotate_) return;
    setDispPrompt(L"\nSpecify rotation: ");
    if (drag() == kCancel) cancelled_ = true;
}

void AsdkRectangleJig::takeVertices() {
    vertices_.removeAll();
    for (unsigned int i = 0; i < polyline_->numVerts(); ++i) {
        AcGePoint2d vertex;
        polyline_->getPointAt(i, vertex);
        vertices_.append(vertex);
    }
}

AcGePoint3d AsdkRectangleJig::center() const {
    if (middleMode_) return insertionPoint_;
    const bool isLeft = corner_ == 2 || corner_ == 3;
    const bool isUp = corner_ == 1 || corner_ == 2;
    const AcGePoint3d beside = polar(insertionPoint_, rotation_, isLeft ? -halfXSize_ : halfXSize_);
    return polar(beside, rotation_ + (isUp ? kQuarterTurn : -kQuarterTurn), halfYSize_);
}

// ---- The drag -----------------------------------------------------------------------------------

AcEdJig::DragStatus AsdkRectangleJig::sampler() {
    setUserInputControls(kNullResponseAccepted);
    if (stage_ == Stage::point) return samplePlace();
    return rotate_ ? sampleRotation() : kNormal;
}

void AsdkRectangleJig::setPlacePrompt() {
    setDispPrompt(L"\nSpecify insertion point or [Corner/Middle]: ");
}

// Out of the middle the corner stays 0, which is drawn as corner 4.
void AsdkRectangleJig::nextCorner() {
    if (!middleMode_) corner_ = corner_ >= kCorners ? 1 : corner_ + 1;
    middleMode_ = false;
}

AcEdJig::DragStatus AsdkRectangleJig::samplePlace() {
    setKeywordList(L"Corner,C Middle,M");
    const DragStatus status = acquirePoint(samplePoint_);
    switch (status) {
        case kKW1:
            nextCorner();
            setPlacePrompt();
            return status;
        case kKW2:
            middleMode_ = true;
            corner_ = 0;
            setPlacePrompt();
            return status;
        default:
            break;
    }
    if (samplePoint_ == insertionPoint_ && status == kNormal) return kNoChange;
    insertionPoint_ = samplePoint_;
    return status;
}

AcEdJig::DragStatus AsdkRectangleJig::sampleRotation() {
    double angle = 0;
    const DragStatus status = acquireAngle(angle, insertionPoint_);
    if (status != kNormal) return status;
    rotation_ = worldAngle(angle);
    if (rotation_ == lastRotation_) return kNoChange;
    lastRotation_ = rotation_;
    return status;
}

bool AsdkRectangleJig::update() {
    if (stage_ == Stage::point) {
        place();
    } else if (rotate_) {
        turn();
    }
    return true;
}

void AsdkRectangleJig::place() {
    const double x = insertionPoint_.x;
    const double y = insertionPoint_.y;
    Corners corners;
    if (middleMode_) {
        corners = cornersFrom(x - halfXSize_, y + halfYSize_, xSize_, -ySize_);
    } else {
        const bool isLeft = corner_ == 2 || corner_ == 3;
        const bool isUp = corner_ == 1 || corner_ == 2;
        corners = cornersFrom(x, y, isLeft ? -xSize_ : xSize_, isUp ? ySize_ : -ySize_);
    }
    for (unsigned int i = 0; i < kCorners; ++i)
        polyline_->setPointAt(i, corners[i]);
}

// From the vertices as they were placed, not from the last frame: errors do not add up.
void AsdkRectangleJig::turn() {
    if (vertices_.isEmpty()) takeVertices();
    const double x = insertionPoint_.x;
    const double y = insertionPoint_.y;
    const double cosine = std::cos(rotation_);
    const double sine = std::sin(rotation_);
    for (int i = 0; i < vertices_.length(); ++i) {
        const AcGePoint2d& vertex = vertices_[i];
        polyline_->setPointAt(static_cast<unsigned int>(i),
                              {cosine * (vertex.x - x) - sine * (vertex.y - y) + x,
                               sine * (vertex.x - x) + cosine * (vertex.y - y) + y});
    }
}

}  // namespace sg

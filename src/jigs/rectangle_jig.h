#pragma once

#include <memory>

#include "platform/db/polyline.h"
#include "platform/ed/jig.h"
#include "platform/ge/arrays.h"

namespace sg {

// Places a rectangle of a known size by one of its corners or its middle, and then turns it about
// that point.
class AsdkRectangleJig : public AcEdJig {
  public:
    // Sizes before turning; `corner` is 1 to 4 for the corner that is placed, or 0 for the middle.
    AsdkRectangleJig(double ySize, double xSize, int corner, bool rotate);

    bool run();  // false when the user cancels, or answers the point with Enter

    // --- What it came to

    AcGePoint3d center() const;
    const AcGePoint2dArray& vertices() const { return vertices_; }  // from the placed corner on
    double rotation() const { return rotation_; }                   // in the world
    int corner() const { return corner_; }

    DragStatus sampler() override;
    bool update() override;
    AcDbEntity* entity() const override { return polyline_.get(); }

  private:
    enum class Stage { point, rotation };

    void makePolyline();
    void askPoint();
    void askRotation();
    void takeVertices();
    DragStatus samplePlace();
    DragStatus sampleRotation();
    void setPlacePrompt();
    void nextCorner();
    void place();
    void turn();

    AcGePoint2dArray vertices_{0, 8};  // not turned while the rotation is asked, final afterwards
    std::unique_ptr<AcDbPolyline> polyline_;
    AcGePoint3d insertionPoint_;
    AcGePoint3d samplePoint_;
    bool middleMode_;
    bool cancelled_ = false;
    const bool rotate_;
    int corner_;
    const double ySize_, xSize_;
    double rotation_ = 0;
    double lastRotation_ = 0;
    const double halfYSize_, halfXSize_;
    Stage stage_ = Stage::point;
};

}  // namespace sg

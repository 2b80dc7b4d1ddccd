#pragma once

#include <memory>
#include <string>

#include "platform/db/polyline.h"
#include "platform/ed/jig.h"

namespace sg {

// Asks for a chain of points, each with a rubber band from the one before, until Enter.
class LineJig : public AcEdJig {
  public:
    void setStartPoint(const AcGePoint3d& point);
    // Draws on a layer, unless its name is empty. False when the user cancels.
    bool run(const std::wstring& layer);
    // What was asked for; null before run() and when the user cancelled.
    const AcDbPolyline* polyline() const { return polyline_.get(); }

    DragStatus sampler() override;
    bool update() override { return true; }  // the polyline changes between the picks only
    AcDbEntity* entity() const override { return polyline_.get(); }

  private:
    void addVertex(const AcGePoint3d& point);

    std::unique_ptr<AcDbPolyline> polyline_;
    AcGePoint3d samplePoint_;
    AcGePoint3d lastPoint_;
    int vertexIndex_ = -1;
    bool isFirst_ = true;
};

}  // namespace sg

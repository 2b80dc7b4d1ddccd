#include "jigs/line_jig.h"

#include "platform/ed/display.h"

namespace sg {

void LineJig::setStartPoint(const AcGePoint3d& point) {
    isFirst_ = false;
    polyline_ = std::make_unique<AcDbPolyline>();
    lastPoint_ = point;
    addVertex(point);
}

void LineJig::addVertex(const AcGePoint3d& point) {
    ++vertexIndex_;
    polyline_->addVertexAt(static_cast<unsigned int>(vertexIndex_), {point.x, point.y}, 0, -1.0,
                           -1.0);
}

bool LineJig::run(const std::wstring& layer) {
    if (isFirst_) polyline_ = std::make_unique<AcDbPolyline>();
    if (!layer.empty()) polyline_->setLayer(layer.c_str(), true, false);
    setDispPrompt(isFirst_ ? L"\nSpecify start point: " : L"\nSpecify next point: ");
    DragStatus status = kNormal;
    do {
        status = drag();
        lastPoint_ = samplePoint_;
        addVertex(lastPoint_);
        setDispPrompt(L"\nSpecify next point: ");
    } while (status == kNormal);
    if (status == kCancel) {
        polyline_.reset();
    } else {
        // The vertex of the answer that ended it.
        polyline_->removeVertexAt(static_cast<unsigned int>(vertexIndex_));
    }
    acedRedraw(nullptr, 0);
    return status != kCancel;
}

AcEdJig::DragStatus LineJig::sampler() {
    setUserInputControls(kNullResponseAccepted);
    DragStatus status = kNormal;
    if (vertexIndex_ == -1) {
        status = acquirePoint(samplePoint_);
    } else {
        setSpecialCursorType(kRubberBand);
        status = acquirePoint(samplePoint_, lastPoint_);
    }
    return status == kNormal ? kNoChange : status;
}

}  // namespace sg

#pragma once

#include "platform/gi/draw.h"

namespace sg::model {

// Traits that keep what they are given, for drawings that put nothing on a screen.
class PlainTraits final : public AcGiSubEntityTraits {
  public:
    void setColor(uint16_t index) override { color_.setColorIndex(index); }
    void setTrueColor(const AcCmColor& color) override { color_ = color; }
    void setLayer(AcDbObjectId layer) override { layer_ = layer; }
    void setLineType(AcDbObjectId linetype) override { linetype_ = linetype; }
    void setLineTypeScale(double scale) override { linetypeScale_ = scale; }
    void setLineWeight(int weight) override { lineWeight_ = weight; }
    void setFillType(AcGiFillType type) override { fillType_ = type; }
    void setSelectionMarker(int64_t) override {}
    void setThickness(double thickness) override { thickness_ = thickness; }

    uint16_t color() const override { return color_.colorIndex(); }
    AcCmColor trueColor() const override { return color_; }
    AcDbObjectId layerId() const override { return layer_; }
    AcDbObjectId lineTypeId() const override { return linetype_; }
    double lineTypeScale() const override { return linetypeScale_; }
    int lineWeight() const override { return lineWeight_; }
    AcGiFillType fillType() const override { return fillType_; }
    double thickness() const override { return thickness_; }

  private:
    AcCmColor color_;
    AcDbObjectId layer_, linetype_;
    double linetypeScale_ = 1;
    int lineWeight_ = -1;
    AcGiFillType fillType_ = kAcGiFillNever;
    double thickness_ = 0;
};

}  // namespace sg::model

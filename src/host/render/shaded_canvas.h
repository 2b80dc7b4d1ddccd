#pragma once

#include <vector>

#include "host/render/canvas.h"
#include "host/render/depth_order.h"

namespace sg::render {

// Keeps what is drawn until all of it is there, and gives it to another canvas so that faces hide
// what is behind them. Faces are shaded by how they stand to the light, and have a line where they
// turn away from the eye. Without faces everything comes as it was drawn.
class ShadedCanvas final : public Canvas {
  public:
    // `towardsEye` and `up` are the view's, of length 1.
    ShadedCanvas(Canvas& target, const AcGeVector3d& towardsEye, const AcGeVector3d& up);

    void finish();

    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return target_.unitsPerPixel(); }
    double shownLength(const AcGeVector3d& vector) const override {
        return target_.shownLength(vector);
    }
    bool hasDepth() const override { return true; }
    void line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
              PatternRun run) override;
    void area(const Look& look, std::span<const AcGePoint3d> points,
              std::span<const uint32_t> counts, Rule rule) override;
    void image(const Look& look, const std::shared_ptr<const ShownImage>& image,
               std::span<const AcGePoint3d> points, std::span<const uint32_t> counts) override;
    void endless(const Look& look, const AcGePoint3d& base, const AcGeVector3d& direction,
                 bool isBoth) override;
    void shell(const Look& look, std::span<const AcGePoint3d> points,
               std::span<const int32_t> faces) override;

  private:
    enum class Kind : uint8_t { line, area, face, endless };
    struct Call {
        Kind kind = Kind::line;
        Look look;
        std::vector<AcGePoint3d> points;
        std::vector<uint32_t> counts;
        bool isClosed = false;  // of a line; of an endless one: it is so at both ends
        PatternRun run = PatternRun::none;
        Rule rule = Rule::evenOdd;
        std::shared_ptr<const ShownImage> image;  // what fills an area; null: its colour
        AcGeVector3d normal;                      // of a face, towards the eye
    };

    Look shaded(const Look& look, const AcGeVector3d& normal) const;
    void addItems(uint32_t source, std::vector<DepthItem>& items);
    void draw(const Call& call) const;
    void drawArea(const Call& call, std::span<const AcGePoint3d> points,
                  std::span<const uint32_t> counts) const;
    void drawPart(const DepthItem& part);

    Canvas& target_;
    const AcGeVector3d towardsEye_;
    const AcGeVector3d light_;
    std::vector<Call> calls_;
    bool hasFaces_ = false;
    std::vector<AcGePoint3d> bound_;  // of the part that is being drawn
};

}  // namespace sg::render

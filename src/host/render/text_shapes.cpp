#include "host/render/text_shapes.h"

#include <cmath>

#include "host/text/face.h"

namespace sg::render {
namespace {

constexpr double kColumnStep = 5.0 / 3;  // of vertical text, in heights

// Takes a face's coordinates to the text's.
class Setting {
  public:
    explicit Setting(const AcGiTextStyle& style)
        : height_(style.height),
          width_(style.height * style.widthFactor),
          slant_(std::tan(style.oblique)),
          mirrorX_(style.backward ? -1 : 1),
          mirrorY_(style.upsideDown ? -1 : 1),
          isVertical_(style.vertical) {
        if (isVertical_) y_ = -height_;
    }

    AcGePoint2d place(const AcGePoint2d& p, double advance) const {
        const double start = isVertical_ ? -advance / 2 : 0;
        const double y = p.y * height_;
        return {(x_ + (p.x + start) * width_ + y * slant_) * mirrorX_, (y_ + y) * mirrorY_};
    }
    void advance(double by) {
        if (isVertical_) {
            y_ -= height_ * kColumnStep;
        } else {
            x_ += by * width_;
        }
    }

  private:
    double height_, width_, slant_;
    double mirrorX_, mirrorY_;
    bool isVertical_;
    double x_ = 0;
    double y_ = 0;
};

}  // namespace

void visitGlyphs(std::wstring_view plain, const AcGiTextStyle& style,
                 const std::function<void(const PlacedGlyph&)>& visit) {
    const text::Face& face = text::faceOf(style);
    Setting setting(style);
    PlacedGlyph glyph;
    glyph.isOutline = face.isOutline();
    for (const wchar_t character : plain) {
        const double advance = face.box(character).advance;
        glyph.points.clear();
        glyph.counts.clear();
        for (const std::vector<AcGePoint2d>& chain : face.chains(character)) {
            for (const AcGePoint2d& p : chain)
                glyph.points.push_back(setting.place(p, advance));
            glyph.counts.push_back(static_cast<uint32_t>(chain.size()));
        }
        if (!glyph.counts.empty()) visit(glyph);
        setting.advance(advance);
    }
}

}  // namespace sg::render

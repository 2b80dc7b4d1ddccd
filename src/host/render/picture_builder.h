#pragma once

#include <span>
#include <string>
#include <unordered_map>

#include "host/render/picture.h"

namespace sg::render {

// Adds to a picture. What is drawn with the pen of what came just before goes to its stretch.
class PictureBuilder {
  public:
    explicit PictureBuilder(Picture& picture) : picture_(picture) {}

    uint32_t layer(const std::wstring& name);
    // The area that the polygon bounds, as pens name it.
    uint32_t clip(std::vector<PicturePoint> polygon);

    // What fills areas, as pens name it.
    uint32_t image(PicturePixels image);

    void line(const Pen& pen, std::span<const PicturePoint> points);
    // One area, of a filling pen.
    void beginArea(const Pen& pen);
    void boundary(std::span<const PicturePoint> points);
    void endArea();

  private:
    Picture::Stretch& stretch(const Pen& pen);
    void addChain(std::span<const PicturePoint> points);

    Picture& picture_;
    std::unordered_map<std::wstring, uint32_t> layers_;
};

}  // namespace sg::render

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/export.h"

namespace sg::render {

// A place in a picture: pixels from its upper left corner, y downwards.
struct PicturePoint {
    float x = 0;
    float y = 0;
};

// How a stretch of a picture is painted.
struct Pen {
    enum class Kind : uint8_t {
        line,     // chains are drawn, with round ends and corners
        evenOdd,  // chains bound areas together; a point in an even number of them is outside
        nonZero,  // chains bound areas together; those that turn the other way round are holes
    };

    Kind kind = Kind::line;
    uint8_t alpha = 255;  // 0 cannot be seen
    uint32_t color = 0;   // 0xRRGGBB
    float width = 1;      // of a line, in pixels
    uint32_t layer = 0;   // index of the layer's name
    uint32_t clip = 0;    // 0: none; else 1 above the index of the area that shows it
    uint32_t image = 0;   // of an area: 0: none; else 1 above the index of what fills it

    friend bool operator==(const Pen&, const Pen&) = default;
};

// Rows of pixels from the top, each 0xAARRGGBB; the colour is not multiplied by the alpha.
struct Pixels {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint32_t> argb;
};

// Pixels in a picture: where their upper left corner is, and how far they reach to the right and
// down.
struct PicturePixels {
    std::shared_ptr<const Pixels> pixels;
    PicturePoint corner, right, down;
};

// A drawing as it is painted: chains of points, in the order of painting, with as few changes of
// pens as that order allows.
struct Picture {
    double width = 0;  // pixels
    double height = 0;
    double pixelsPerMillimetre = 96 / 25.4;  // on paper
    uint32_t ground = 0xFFFFFF;              // 0xRRGGBB

    std::vector<std::wstring> layers;
    std::vector<std::vector<PicturePoint>> clips;  // closed polygons
    std::vector<PicturePixels> images;

    // A chain's points are those from the end of the chain before to its own. A chain of one point
    // is a dot.
    std::vector<PicturePoint> points;
    std::vector<uint32_t> chainEnds;
    // A stretch's chains are those from the end of the stretch before to its own. In a filled one
    // an area's chains are those up to the next area's start.
    struct Stretch {
        Pen pen;
        uint32_t chainsEnd = 0;
        uint32_t areasEnd = 0;  // among areaEnds
    };
    std::vector<Stretch> stretches;
    std::vector<uint32_t> areaEnds;  // chains; of filled stretches only
};

// A walk over the chains of a picture, stretch by stretch.
class PictureWalk {
  public:
    explicit PictureWalk(const Picture& picture) : picture_(picture) {}

    struct Chain {
        const PicturePoint* points = nullptr;
        uint32_t count = 0;
    };

    bool nextStretch() {
        if (started_) ++stretch_;
        started_ = true;
        return stretch_ < picture_.stretches.size();
    }
    const Picture::Stretch& stretch() const { return picture_.stretches[stretch_]; }
    const Pen& pen() const { return stretch().pen; }
    // The next chain of the stretch of lines.
    bool nextChain(Chain& chain) {
        if (chain_ == stretch().chainsEnd) return false;
        takeChain(chain);
        return true;
    }
    // The chains that bound the next area of a filled stretch.
    bool nextArea(std::vector<Chain>& chains) {
        chains.clear();
        if (area_ == stretch().areasEnd) return false;
        const uint32_t end = picture_.areaEnds[area_++];
        while (chain_ < end)
            takeChain(chains.emplace_back());
        return true;
    }

  private:
    void takeChain(Chain& chain) {
        const uint32_t end = picture_.chainEnds[chain_++];
        chain = {picture_.points.data() + point_, end - point_};
        point_ = end;
    }

    const Picture& picture_;
    size_t stretch_ = 0;
    bool started_ = false;
    uint32_t chain_ = 0;
    uint32_t point_ = 0;
    uint32_t area_ = 0;
};

}  // namespace sg::render

#pragma once

#include <memory>
#include <string>

#include "host/render/picture.h"

namespace sg::render {

// Paints pictures, behind the library that is opened when one is first to be painted.
class Painter {
  public:
    virtual ~Painter() = default;
    // The content of a file; empty when there is no memory for the pixels.
    virtual std::string png(const Picture& picture) = 0;
    virtual std::string png(const Pixels& pixels) = 0;
    // The pixels of an image file, made smaller where it has more of them in a direction than are
    // asked for. Null for a file that is no image.
    virtual std::shared_ptr<Pixels> read(const std::wstring& file, uint32_t mostWidth,
                                         uint32_t mostHeight) = 0;
};

// Null when the library cannot be opened.
SG_API Painter* painter();

// What the library exports under this name.
using PainterEntry = Painter* (*)();
inline constexpr const char* kPainterEntry = "swiftgatePainter";

}  // namespace sg::render

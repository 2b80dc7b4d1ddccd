#pragma once

#include <string>

#include "host/render/picture.h"

namespace sg::render {

// Paints pictures, behind the library that is opened when one is first to be painted.
class Painter {
  public:
    virtual ~Painter() = default;
    // The content of a file; empty when there is no memory for the pixels.
    virtual std::string png(const Picture& picture) = 0;
};

// Null when the library cannot be opened.
SG_API Painter* painter();

// What the library exports under this name.
using PainterEntry = Painter* (*)();
inline constexpr const char* kPainterEntry = "swiftgatePainter";

}  // namespace sg::render

#pragma once

#include <memory>
#include <string>

#include "host/text/face.h"

namespace sg::text {

// The outline fonts of the system, behind a library that is opened when a font is first asked for.
class OutlineFonts {
  public:
    virtual ~OutlineFonts() = default;
    // The font of this family, or of this file's name; the system chooses another one for what it
    // does not have.
    virtual std::unique_ptr<Face> face(const std::wstring& family, const std::wstring& file,
                                       bool bold, bool italic) = 0;
};

// Null when the library cannot be opened.
OutlineFonts* outlineFonts();

// What the library exports under this name.
using OutlineFontsEntry = OutlineFonts* (*)();
inline constexpr const char* kOutlineFontsEntry = "swiftgateOutlineFonts";
inline constexpr const char* kGraphicsLibrary = "libswiftgate-graphics.so";

}  // namespace sg::text

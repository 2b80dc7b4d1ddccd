#pragma once

#include <string>
#include <vector>

#include "platform/ge/matrix3d.h"

namespace sg::exchange {

// A shape on its way into a STEP file.
struct StepShape {
    std::string shape;  // as sgExactShapePE has it
    AcGeMatrix3d placement;
    std::wstring name;
    std::wstring layer;
    uint32_t color = 0;  // 0xRRGGBB
};

// Writes STEP files, behind the library that is opened when one is first to be written.
class StepLibrary {
  public:
    virtual ~StepLibrary() = default;
    // Writes a file at a path in UTF-8; `unit` is "MM", "INCH" and so on, that of the coordinates.
    // False when a shape is none, or the file cannot be written.
    virtual bool write(const std::vector<StepShape>& shapes, const std::string& unit,
                       const std::string& path) const = 0;
};

// Null when the library is not there.
const StepLibrary* stepLibrary();

// What the library exports under this name.
using StepLibraryEntry = const StepLibrary* (*)();
inline constexpr const char* kStepLibraryEntry = "swiftgateStepLibrary";
inline constexpr const char* kStepLibrary = "libswiftgate-step.so";

}  // namespace sg::exchange

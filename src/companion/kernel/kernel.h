#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "companion/shape/body.h"
#include "platform/db/extents.h"

namespace sg::companion {

// What steps have made: closed bodies. It does not change.
class Shape {
  public:
    virtual ~Shape() = default;
};
using ShapePtr = std::shared_ptr<const Shape>;

// A shape as it is drawn.
struct Facets {
    std::vector<AcGePoint3d> points;
    // Runs of a count and as many indexes into the points, counter-clockwise seen from outside; a
    // count below 0 is a hole in the face before. Curved faces are triangles.
    std::vector<int32_t> faces;
    // Where each boundary face begins among them.
    std::vector<uint32_t> starts;
    // Chains of points: edges at which faces meet at an angle, and the other ones.
    std::vector<std::vector<AcGePoint3d>> edges, smoothEdges;
    AcDbExtents extents;
};

// Plane faces as they are, or as triangles where they have more than four corners.
enum class Polygons : uint8_t { whole, upToFour };

struct Measures {
    bool isClosed = false;  // valid, closed solids
    double volume = 0;
    double area = 0;
    size_t bodies = 0;  // after those that overlap have been made one
};

// Exact modelling, behind a library that is opened when a shape is first needed. No operation
// throws, and none lets a fault of the modelling library out.
class SolidKernel {
  public:
    virtual ~SolidKernel() = default;

    // The shape that a step makes of another, of which null is one without bodies. Null when it
    // cannot be made. The bodies of a known step have been looked at when it was new, and are not
    // again, which takes longer than making them.
    virtual ShapePtr apply(const ShapePtr& before, const Step& step, bool isKnown) const = 0;
    // Bodies that overlap are one in all of these. False when the library gives up.
    virtual bool facets(const Shape& shape, Polygons polygons, Facets& facets) const = 0;
    virtual bool measure(const Shape& shape, Measures& measures) const = 0;
    // As sgExactShapePE has it.
    virtual bool exact(const Shape& shape, std::string& bytes) const = 0;
};

// Null when the library is not there.
const SolidKernel* solidKernel();

// What the library exports under this name.
using SolidKernelEntry = const SolidKernel* (*)();
inline constexpr const char* kSolidKernelEntry = "swiftgateSolidKernel";
inline constexpr const char* kSolidKernelLibrary = "libswiftgate-solids.so";

}  // namespace sg::companion

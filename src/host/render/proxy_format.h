#pragma once

#include <cstddef>
#include <cstdint>

// The list of drawing calls in which drawing files keep how an entity looks, for programs that do
// not know its class; docs/formats/proxy_graphics.md explains it.
namespace sg::render::proxy {

enum Call : int32_t {
    kCircle = 2,
    kCircleOfPoints = 3,
    kArc = 4,
    kArcOfPoints = 5,
    kPolyline = 6,
    kPolygon = 7,
    kMesh = 8,
    kShell = 9,
    kText = 10,
    kStyledText = 11,
    kXline = 12,
    kRay = 13,
    kColor = 14,
    kFill = 20,
    kTrueColor = 22,
    kLineWeight = 23,
    kLinetypeScale = 24,
    kThickness = 25,
    kPushTransform = 29,
    kPushOtherTransform = 30,
    kPopTransform = 31,
    kPolylineWithNormal = 32,
    kWideText = 36,
    kWideStyledText = 38,
};

// Of the list (its length and the number of its calls) and of each call (its length and its kind);
// lengths count the head too.
inline constexpr size_t kHeadBytes = 8;
// Arguments are padded to a multiple of this.
inline constexpr size_t kAlignment = 4;

}  // namespace sg::render::proxy

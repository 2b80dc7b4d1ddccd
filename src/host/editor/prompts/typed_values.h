#pragma once

#include <optional>
#include <string_view>

#include "base/export.h"
#include "host/lisp/text/units.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

namespace sg {

// Values as users type them at prompts.

// What typed coordinates depend on.
struct TypedContext {
    int lunits = 2;        // the form of lengths
    int aunits = 0;        // the form of angles
    UnitSettings units;    // the direction and sense of angles
    AcGePoint3d last;      // the last point, in user coordinates
    double elevation = 0;  // z of points without one
    AcGeMatrix3d toUser;   // from world to user coordinates
};

// A point in user coordinates:
//
//   x,y  x,y,z            "@" in front: from the last point; "@" alone is the last point
//   d<a  d<a,z  d<a<b     a distance and an angle (and a height, or an angle from the plane)
//   *x,y                  world coordinates, also behind "@"; "#" in front changes nothing
//
// nullopt for anything else.
SG_API std::optional<AcGePoint3d> parseTypedPoint(std::wstring_view text,
                                                  const TypedContext& context);

// A length in drawing units.
SG_API std::optional<double> parseTypedDistance(std::wstring_view text,
                                                const TypedContext& context);

// A direction, in radians from the x axis counter-clockwise.
SG_API std::optional<double> parseTypedAngle(std::wstring_view text, const TypedContext& context);

// A whole number of any size that fits 32 bits; nothing may follow it.
SG_API std::optional<int32_t> parseTypedInteger(std::wstring_view text);

}  // namespace sg

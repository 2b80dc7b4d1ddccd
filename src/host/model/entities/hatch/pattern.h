#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/model/curves/planar.h"
#include "platform/db/filers.h"
#include "platform/ge/point2d.h"
#include "platform/ge/vector2d.h"

namespace sg::model {

// A family of parallel lines of a hatch pattern, in the plane's coordinates, scaled and turned as
// they are drawn: the first runs through the base point, each next one is the offset further on,
// with its dashes.
struct HatchLine {
    double angle = 0;  // radians
    AcGePoint2d base;
    AcGeVector2d offset;
    // From the base point on: drawn above 0, left out below, a dot at 0. None: drawn throughout.
    std::vector<double> dashes;

    AcGeVector2d direction() const;
    void transform(const PlanarTransform& change, double elevation);

    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    void dxfOut(AcDbDxfFiler* filer) const;
};

// The lines of a predefined pattern, ignoring case, turned and scaled; in millimetres where
// `metric`, else in inches. Nothing for a name that is none of them.
std::optional<std::vector<HatchLine>> predefinedPattern(std::wstring_view name, double angle,
                                                        double scale, bool metric);
// Lines at a distance; doubled, crossed by others at a right angle.
std::vector<HatchLine> plainPattern(double angle, double spacing, bool doubled);

}  // namespace sg::model

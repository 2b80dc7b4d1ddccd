#include "host/model/entities/hatch/pattern.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "base/text.h"
#include "host/model/curves/math/angles.h"

namespace sg::model {

namespace {

constexpr double kMillimetres = 25.4;  // an inch
constexpr double kDegree = std::numbers::pi / 180;

// A family of lines as pattern files describe it: its angle in degrees, a point on the first line,
// from line to line the step along and across them, and the dashes. In inches.
struct Row {
    const wchar_t* pattern;
    double angle, x, y, along, across;
    std::array<double, 6> dashes{};
    size_t count = 0;

    constexpr Row(const wchar_t* name, double degrees, double baseX, double baseY, double stepAlong,
                  double stepAcross, std::initializer_list<double> lengths = {})
        : pattern(name), angle(degrees), x(baseX), y(baseY), along(stepAlong), across(stepAcross) {
        for (const double length : lengths)
            dashes[count++] = length;
    }
};

constexpr Row kRows[] = {
    {L"ANGLE", 0, 0, 0, 0, .275, {.2, -.075}},
    {L"ANGLE", 90, 0, 0, 0, .275, {.2, -.075}},
    {L"ANSI31", 45, 0, 0, 0, .125},
    {L"ANSI32", 45, 0, 0, 0, .375},
    {L"ANSI32", 45, .176776695, 0, 0, .375},
    {L"ANSI33", 45, 0, 0, 0, .25},
    {L"ANSI33", 45, .176776695, 0, 0, .25, {.125, -.0625}},
    {L"ANSI34", 45, 0, 0, 0, .75},
    {L"ANSI34", 45, .176776695, 0, 0, .75},
    {L"ANSI34", 45, .353553391, 0, 0, .75},
    {L"ANSI34", 45, .530330086, 0, 0, .75},
    {L"ANSI35", 45, 0, 0, 0, .25},
    {L"ANSI35", 45, .176776695, 0, 0, .25, {.3125, -.0625, 0, -.0625}},
    {L"ANSI36", 45, 0, 0, .21875, .125, {.3125, -.0625, 0, -.0625}},
    {L"ANSI37", 45, 0, 0, 0, .125},
    {L"ANSI37", 135, 0, 0, 0, .125},
    {L"ANSI38", 45, 0, 0, 0, .125},
    {L"ANSI38", 135, 0, 0, .25, .125, {.3125, -.1875}},
    {L"AR-B816", 0, 0, 0, 0, 8},
    {L"AR-B816", 90, 0, 0, 8, 8, {8, -8}},
    {L"AR-BRSTD", 0, 0, 0, 0, 2.667},
    {L"AR-BRSTD", 90, 0, 0, 2.667, 4, {2.667, -2.667}},
    {L"AR-HBONE", 45, 0, 0, 4, 4, {12, -4}},
    {L"AR-HBONE", 135, 2.828427125, 2.828427125, 4, -4, {12, -4}},
    {L"AR-SAND", 37.5, 0, 0, 1.123, 1.567, {0, -1.52, 0, -1.7, 0, -1.625}},
    {L"AR-SAND", 7.5, 0, 0, 2.123, 2.567, {0, -.82, 0, -1.37, 0, -.525}},
    {L"AR-SAND", -32.5, -1.23, 0, 2.6234, 1.678, {0, -.5, 0, -1.8, 0, -2.35}},
    {L"AR-SAND", -42.5, -1.23, 0, 1.6234, 2.678, {0, -.25, 0, -1.18, 0, -1.35}},
    {L"BOX", 90, 0, 0, 0, 1},
    {L"BOX", 90, .25, 0, 0, 1},
    {L"BOX", 0, 0, 0, 0, 1, {-.25, .25}},
    {L"BOX", 0, 0, .25, 0, 1, {-.25, .25}},
    {L"BOX", 0, 0, .5, 0, 1, {.25, -.25}},
    {L"BOX", 0, 0, .75, 0, 1, {.25, -.25}},
    {L"BOX", 90, .5, 0, 0, 1, {.25, -.25}},
    {L"BOX", 90, .75, 0, 0, 1, {.25, -.25}},
    {L"BRICK", 0, 0, 0, 0, .25},
    {L"BRICK", 90, 0, 0, 0, .5, {.25, -.25}},
    {L"BRICK", 90, .25, 0, 0, .5, {-.25, .25}},
    {L"CLAY", 0, 0, 0, 0, .1875},
    {L"CLAY", 0, 0, .03125, 0, .1875},
    {L"CLAY", 0, 0, .0625, 0, .1875},
    {L"CLAY", 0, 0, .125, 0, .1875, {.1875, -.125}},
    {L"CROSS", 0, 0, 0, .25, .25, {.125, -.375}},
    {L"CROSS", 90, .0625, -.0625, .25, .25, {.125, -.375}},
    {L"DASH", 0, 0, 0, .125, .125, {.125, -.125}},
    {L"DOLMIT", 0, 0, 0, 0, .25},
    {L"DOLMIT", 45, 0, 0, 0, .70710678, {.35355339, -.70710678}},
    {L"DOTS", 0, 0, 0, .03125, .0625, {0, -.0625}},
    {L"EARTH", 0, 0, 0, .25, .25, {.25, -.25}},
    {L"EARTH", 0, 0, .09375, .25, .25, {.25, -.25}},
    {L"EARTH", 0, 0, .1875, .25, .25, {.25, -.25}},
    {L"EARTH", 90, .03125, .21875, .25, .25, {.25, -.25}},
    {L"EARTH", 90, .125, .21875, .25, .25, {.25, -.25}},
    {L"EARTH", 90, .21875, .21875, .25, .25, {.25, -.25}},
    {L"FLEX", 0, 0, 0, 0, .25, {.25, -.25}},
    {L"FLEX", 45, .25, 0, .176776695, .176776695, {.0625, -.228553391, .0625, -.353553391}},
    {L"GRASS", 90, 0, 0, .707106781, .707106781, {.1875, -1.226713563}},
    {L"GRASS", 45, 0, 0, 0, 1, {.1875, -.8125}},
    {L"GRASS", 135, 0, 0, 0, 1, {.1875, -.8125}},
    {L"HEX", 0, 0, 0, 0, .216506351, {.125, -.25}},
    {L"HEX", 120, 0, 0, 0, .216506351, {.125, -.25}},
    {L"HEX", 60, .125, 0, 0, .216506351, {.125, -.25}},
    {L"HONEY", 0, 0, 0, .1875, .108253175, {.125, -.25}},
    {L"HONEY", 120, 0, 0, .1875, .108253175, {.125, -.25}},
    {L"HONEY", 60, 0, 0, .1875, .108253175, {-.25, .125}},
    {L"INSUL", 0, 0, 0, 0, .375},
    {L"INSUL", 0, 0, .125, 0, .375, {.125, -.125}},
    {L"INSUL", 0, 0, .25, 0, .375, {.125, -.125}},
    {L"LINE", 0, 0, 0, 0, .125},
    {L"MUDST", 0, 0, 0, .5, .25, {.25, -.25, 0, -.25, 0, -.25}},
    {L"NET", 0, 0, 0, 0, .125},
    {L"NET", 90, 0, 0, 0, .125},
    {L"NET3", 0, 0, 0, 0, .125},
    {L"NET3", 60, 0, 0, 0, .125},
    {L"NET3", 120, 0, 0, 0, .125},
    {L"PLAST", 0, 0, 0, 0, .25},
    {L"PLAST", 0, 0, .03125, 0, .25},
    {L"PLAST", 0, 0, .0625, 0, .25},
    {L"PLASTI", 0, 0, 0, 0, .25},
    {L"PLASTI", 0, 0, .03125, 0, .25},
    {L"PLASTI", 0, 0, .0625, 0, .25},
    {L"PLASTI", 0, 0, .15625, 0, .25},
    {L"SACNCR", 45, 0, 0, 0, .09375},
    {L"SACNCR", 45, .066291261, 0, 0, .09375, {0, -.09375}},
    {L"SQUARE", 0, 0, 0, 0, .125, {.125, -.125}},
    {L"SQUARE", 90, 0, 0, 0, .125, {.125, -.125}},
    {L"STARS", 0, 0, 0, 0, .216506351, {.125, -.125}},
    {L"STARS", 60, 0, 0, 0, .216506351, {.125, -.125}},
    {L"STARS", 120, .0625, .108253175, 0, .216506351, {.125, -.125}},
    {L"STEEL", 45, 0, 0, 0, .125},
    {L"STEEL", 45, 0, .0625, 0, .125},
    {L"TRANS", 0, 0, 0, 0, .25},
    {L"TRANS", 0, 0, .125, 0, .25, {.125, -.125}},
    {L"TRIANG", 60, 0, 0, .1875, .324759526, {.1875, -.1875}},
    {L"TRIANG", 120, 0, 0, .1875, .324759526, {.1875, -.1875}},
    {L"TRIANG", 0, -.09375, .162379763, .1875, .324759526, {.1875, -.1875}},
    {L"ZIGZAG", 0, 0, 0, .125, .125, {.125, -.125}},
    {L"ZIGZAG", 90, .125, 0, .125, .125, {.125, -.125}},
};

HatchLine lineOf(const Row& row, double angle, double scale) {
    HatchLine line;
    line.angle = row.angle * kDegree + angle;
    line.base = AcGePoint2d(row.x * scale, row.y * scale).rotateBy(angle);
    line.offset = AcGeVector2d(row.along * scale, row.across * scale).rotateBy(line.angle);
    for (size_t i = 0; i < row.count; ++i)
        line.dashes.push_back(row.dashes[i] * scale);
    return line;
}

}  // namespace

AcGeVector2d HatchLine::direction() const {
    return {std::cos(angle), std::sin(angle)};
}

void HatchLine::transform(const PlanarTransform& change, double elevation) {
    const AcGePoint3d moved = change.ocs * AcGePoint3d(base.x, base.y, elevation);
    const AcGeVector2d old = direction();
    const AcGeVector3d along = change.ocs * AcGeVector3d(old.x, old.y, 0);
    const AcGeVector3d step = change.ocs * AcGeVector3d(offset.x, offset.y, 0);
    base = {moved.x, moved.y};
    offset = {step.x, step.y};
    angle = normalAngle(std::atan2(along.y, along.x));
    for (double& dash : dashes)
        dash *= along.length();
}

Acad::ErrorStatus HatchLine::dwgOut(AcDbDwgFiler* filer) const {
    filer->writeDouble(angle);
    filer->writePoint2d(base);
    filer->writeVector2d(offset);
    filer->writeUInt32(static_cast<uint32_t>(dashes.size()));
    for (const double dash : dashes)
        filer->writeDouble(dash);
    return filer->filerStatus();
}

Acad::ErrorStatus HatchLine::dwgIn(AcDbDwgFiler* filer) {
    uint32_t count = 0;
    filer->readDouble(&angle);
    filer->readPoint2d(&base);
    filer->readVector2d(&offset);
    filer->readUInt32(&count);
    dashes.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i)
        filer->readDouble(&dashes.emplace_back());
    return filer->filerStatus();
}

void HatchLine::dxfOut(AcDbDxfFiler* filer) const {
    filer->writeDouble(53, angle);
    filer->writeDouble(43, base.x);
    filer->writeDouble(44, base.y);
    filer->writeDouble(45, offset.x);
    filer->writeDouble(46, offset.y);
    filer->writeInt16(79, static_cast<int16_t>(dashes.size()));
    for (const double dash : dashes)
        filer->writeDouble(49, dash);
}

std::optional<std::vector<HatchLine>> predefinedPattern(std::wstring_view name, double angle,
                                                        double scale, bool metric) {
    std::vector<HatchLine> lines;
    const double size = metric ? scale * kMillimetres : scale;
    for (const Row& row : kRows) {
        if (equalIgnoringCase(row.pattern, name)) lines.push_back(lineOf(row, angle, size));
    }
    if (lines.empty()) return std::nullopt;
    return lines;
}

std::vector<HatchLine> plainPattern(double angle, double spacing, bool doubled) {
    const Row row(L"", 0, 0, 0, 0, spacing);
    std::vector<HatchLine> lines{lineOf(row, angle, 1)};
    if (doubled) lines.push_back(lineOf(row, angle + std::numbers::pi / 2, 1));
    return lines;
}

}  // namespace sg::model

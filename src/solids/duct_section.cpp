#include "solids/duct_section.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/text.h"
#include "bridge/marshal_readers.h"

namespace sg {
namespace {

using ShapeCodes = std::array<std::wstring_view, 4>;
constexpr ShapeCodes kRoundCodes = {L"RD", L"OO", L"DX", L"OX"};
constexpr ShapeCodes kRoundCodesSmall = {L"rd", L"oo", L"dx", L"ox"};

bool isOneOf(const ShapeCodes& codes, std::wstring_view shape) {
    return std::ranges::find(codes, shape) != codes.end();
}

bool nextCoordinates(const resbuf*& position, AcGePoint3d& point) {
    return nextNumber(position, point.x) && nextNumber(position, point.y) &&
           nextNumber(position, point.z);
}

bool nextRun(const resbuf*& position, DuctSection& section) {
    return nextCoordinates(position, section.headPoint) &&
           nextCoordinates(position, section.tailPoint) && nextInt(position, section.viewCode) &&
           nextNumber(position, section.headSetback) && nextNumber(position, section.tailSetback);
}

// The sizes grow to the outer ones as soon as both walls are known.
bool nextSize(const resbuf*& position, DuctSection& section) {
    if (!nextNumber(position, section.width) || !nextNumber(position, section.height) ||
        !nextString(position, section.shape) || !nextNumber(position, section.wallA) ||
        !nextNumber(position, section.wallB)) {
        return false;
    }
    section.width += 2 * section.wallA + 2 * section.wallB;
    section.height += 2 * section.wallA + 2 * section.wallB;
    return true;
}

bool nextJustification(const resbuf*& position, DuctSection& section) {
    return nextString(position, section.justifyH) && nextString(position, section.justifyV) &&
           nextInt(position, section.hangFlag) && nextNumber(position, section.hangGap);
}

Profile outerProfile(const DuctSection& section, bool rectangular) {
    return {std::abs(section.width), std::abs(section.height), rectangular};
}

}  // namespace

bool nextSection(const resbuf*& position, DuctSection& section) {
    nextListBegin(position);
    if (!nextRun(position, section) || !nextSize(position, section) ||
        !nextJustification(position, section)) {
        return false;
    }
    nextListEnd(position);
    return true;
}

bool shapeIsRectangular(std::wstring_view shape) {
    return !isOneOf(kRoundCodes, upperCased(shape));
}

bool sectionIsRectangular(const DuctSection& section) {
    return !isOneOf(kRoundCodes, section.shape) && !isOneOf(kRoundCodesSmall, section.shape) &&
           section.fittingCode != L"FX";
}

Profile sectionProfile(const DuctSection& section) {
    return outerProfile(section, sectionIsRectangular(section));
}

Profile shapeProfile(const DuctSection& section) {
    return outerProfile(section, shapeIsRectangular(section.shape));
}

bool sectionSizesDiffer(const DuctSection& first, const DuctSection& second) {
    const Profile a = sectionProfile(first);
    const Profile b = sectionProfile(second);
    return a.rectangular != b.rectangular || a.width != b.width || a.height != b.height;
}

}  // namespace sg

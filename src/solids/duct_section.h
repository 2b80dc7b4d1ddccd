#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ge/point3d.h"
#include "platform/lisp/resbuf.h"

namespace sg {

// One straight section of duct, pipe or cable tray, as LISP programs describe it. Lengths are
// drawing units. Width and height are read as inner sizes and kept as outer ones, walls included.
struct DuctSection {
    AcGePoint3d headPoint;  // reference points: what they lie on the justification says
    AcGePoint3d tailPoint;
    int32_t viewCode = 0;  // for the LISP function that converts the points
    double headSetback = 0;
    double tailSetback = 0;
    double width = 0;
    double height = 0;
    std::wstring shape;  // a code of two letters
    double wallA = 0;
    double wallB = 0;
    std::wstring justifyH;  // "r", "l", or else centred
    std::wstring justifyV;  // "t", "b", "h", or else centred
    int32_t hangFlag = 0;   // not 0: what is justified "h" is higher by hangGap
    double hangGap = 1;

    // No list has these.
    std::wstring fixedLength;  // of a transition, as text; empty stands for 0
    std::wstring fittingCode;
    int32_t verticalOverride = 0;  // -1: the section counts as vertical
};

// What a body shows at one of its ends.
struct Profile {
    double width = 0;
    double height = 0;
    bool rectangular = true;
};

// Reads a flat list of the section's values in the order of DuctSection, with the coordinates of
// points as separate numbers; the marks of the list itself may be missing. False at the first value
// that cannot be read: `section` then has the values before it, and the position is there.
bool nextSection(const resbuf*& position, DuctSection& section);

// The codes "RD", "OO", "DX" and "OX" are round; all others are rectangular. For a shape the case
// does not matter. A section is round with a code in capitals or in small letters only, and with
// the fitting code "FX". Programs depend on the difference.
bool shapeIsRectangular(std::wstring_view shape);
bool sectionIsRectangular(const DuctSection& section);

// The absolute outer sizes, with the class of the section or that of its shape.
Profile sectionProfile(const DuctSection& section);
Profile shapeProfile(const DuctSection& section);

// True when the sections differ in class, absolute width or absolute height, compared exactly.
bool sectionSizesDiffer(const DuctSection& first, const DuctSection& second);

}  // namespace sg

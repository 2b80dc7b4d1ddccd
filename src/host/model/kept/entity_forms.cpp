#include "host/model/kept/kept_steps.h"

// Entities that no class reads.

namespace sg::model {

using namespace kept;

namespace {

// A number of lines is given ahead of the vertices, in each of which every line has its places: of
// its breaks (74) and of its fills (75).
KeptForm multipleLine() {
    return {
        L"MLINE",
        nullptr,
        {real(40), byte(70), point(10), point(210), int16(71), byte(73), int16(72),
         rows(72, {point(11), point(12), point(13),
                   rows(73, {int16(74), rows(74, {real(41)}), int16(75), rows(75, {real(42)})})}),
         id(340)},
        {{0,
          {marker("AcDbMline"), nameOf(2, 340), group(340), group(40), group(70), group(71),
           group(72), group(73), group(10), group(210),
           rows(72, {group(11), group(12), group(13),
                     rows(73, {group(74), rows(74, {group(41)}), group(75),
                               rows(75, {group(42)})})})}}}};
}

KeptForm tolerance() {
    return {L"TOLERANCE",
            nullptr,
            {point(10), point(11), point(210), text(1), id(3)},
            {{0,
              {marker("AcDbFcf"), named(3, 3, NamedIn::dimStyles), group(10), group(1),
               group(210, AcGePoint3d(0, 0, 1)), group(11, AcGePoint3d(1, 0, 0))}}}};
}

}  // namespace

const std::vector<KeptForm>& keptEntityForms() {
    static const std::vector<KeptForm> kForms = {multipleLine(), tolerance()};
    return kForms;
}

}  // namespace sg::model

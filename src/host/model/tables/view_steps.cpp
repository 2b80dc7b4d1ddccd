#include "host/model/tables/view_steps.h"

#include "platform/db/filers.h"

namespace sg::model {
namespace {

using enum DwgCoding;
using AcDb::kDHL_1015;
using AcDb::kDHL_1018;
using AcDb::kDHL_1021;

constexpr double kAmbientColor = 250;
constexpr int16_t kNone = 0;  // of a step that no field is kept of

}  // namespace

std::span<const DwgStep> viewSteps() {
    static constexpr DwgStep kSteps[] = {
        {40, real},
        {41, real},
        {10, flatPoint},
        {12, point},
        {11, point},
        {50, real},
        {42, real},
        {43, real},
        {44, real},
        {71, viewMode},
        {281, byte, kDHL_1015},
        {292, bit, kDHL_1021, DwgStep::kOpen, 1},
        {282, byte, kDHL_1021, DwgStep::kOpen, 1},
        {141, real, kDHL_1021},
        {142, real, kDHL_1021},
        {63, color, kDHL_1021, DwgStep::kOpen, kAmbientColor},
        {kNone, bit},
        {72, bit, kDHL_1015},
        {110, point, kDHL_1015, DwgStep::kOpen, 0, 72},
        {111, point, kDHL_1015, DwgStep::kOpen, 0, 72},
        {112, point, kDHL_1015, DwgStep::kOpen, 0, 72},
        {146, real, kDHL_1015, DwgStep::kOpen, 0, 72},
        {79, int16, kDHL_1015, DwgStep::kOpen, 0, 72},
        {73, bit, kDHL_1021},
        {332, id, kDHL_1021},
        {348, id, kDHL_1021},
        {361, id, kDHL_1021},
        {346, id, kDHL_1015, DwgStep::kOpen, 0, 72},
        {345, id, kDHL_1015, DwgStep::kOpen, 0, 72},
        {334, id, kDHL_1021},
    };
    return kSteps;
}

std::span<const DwgStep> viewportSteps() {
    static constexpr DwgStep kSteps[] = {
        {40, real},
        {41, timesHeight},
        {12, flatPoint},
        {17, point},
        {16, point},
        {51, real},
        {42, real},
        {43, real},
        {44, real},
        {71, viewMode},
        {281, byte, kDHL_1015},
        {292, bit, kDHL_1021},
        {282, byte, kDHL_1021},
        {141, real, kDHL_1021},
        {142, real, kDHL_1021},
        {63, color, kDHL_1021},
        {10, flatPoint},
        {11, flatPoint},
        {71, follow},
        {72, int16},
        {73, bit},
        {74, icon},
        {76, bit},
        {15, flatPoint},
        {75, bit},
        {77, bit},
        {78, int16},
        {50, real},
        {13, flatPoint},
        {14, flatPoint},
        {kNone, bit, kDHL_1015},
        {65, bit, kDHL_1015},
        {110, point, kDHL_1015},
        {111, point, kDHL_1015},
        {112, point, kDHL_1015},
        {146, real, kDHL_1015},
        {79, int16, kDHL_1015},
        {60, int16, kDHL_1021},
        {61, int16, kDHL_1021},
        {332, id, kDHL_1021},
        {348, id, kDHL_1021},
        {361, id, kDHL_1021},
        {345, id, kDHL_1015},
        {346, id, kDHL_1015},
    };
    return kSteps;
}

std::span<const DwgStep> ucsSteps() {
    static constexpr DwgStep kSteps[] = {
        {10, point},
        {11, point},
        {12, point},
        {146, real, kDHL_1015},
        {79, int16, kDHL_1015},
        {kNone, int16, kDHL_1015},  // the number of origins of orthographic systems
        {346, id, kDHL_1015},
        {kNone, hardId, kDHL_1015},
    };
    return kSteps;
}

std::span<const DwgStep> plotSteps() {
    static constexpr DwgStep kSteps[] = {
        {1, text},
        {2, text},
        {70, int16},
        {40, real},
        {41, real},
        {42, real},
        {43, real},
        {44, real},
        {45, real},
        {4, text},
        {46, real},
        {47, real},
        {72, int16},
        {73, int16},
        {74, int16},
        {48, real},
        {49, real},
        {140, real},
        {141, real},
        {6, text, 0, kDHL_1018},
        {kNone, softId, kDHL_1018},
        {142, real},
        {143, real},
        {7, text},
        {75, int16},
        {147, real},
        {148, real},
        {149, real},
        {76, int16, kDHL_1018},
        {77, int16, kDHL_1018},
        {78, int16, kDHL_1018},
        {333, id, kDHL_1021},
    };
    return kSteps;
}

std::span<const DwgStep> layoutSteps() {
    static constexpr DwgStep kSteps[] = {
        {1, text},   {71, int16}, {70, int16}, {12, point}, {10, flatPoint}, {11, flatPoint},
        {13, point}, {16, point}, {17, point}, {146, real}, {76, int16},     {14, point},
        {15, point}, {330, id},   {331, id},   {346, id},   {345, id},
    };
    return kSteps;
}

}  // namespace sg::model

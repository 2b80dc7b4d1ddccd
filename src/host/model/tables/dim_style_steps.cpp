#include "host/model/tables/dim_style_steps.h"

#include "platform/db/filers.h"

namespace sg::model {
namespace {

using enum DwgCoding;

constexpr int16_t k2007 = AcDb::kDHL_1021;
constexpr int16_t k2010 = AcDb::kDHL_1024;
constexpr double kUnlimited = 100;  // of the factors for zeros, which no variable is kept of

// Until release 14, with the blocks of arrows by their names.
constexpr DwgStep kOldSteps[] = {
    {71, bit},    {72, bit},   {73, bit},    {74, bit},    {75, bit},    {76, bit},    {170, bit},
    {172, bit},   {173, bit},  {174, bit},   {175, bit},   {171, byte},  {78, byte},   {281, bit},
    {282, bit},   {283, byte}, {280, byte},  {0, byte},    {288, bit},   {284, byte},  {285, byte},
    {286, byte},  {77, byte},  {0, int16},   {275, int16}, {271, int16}, {272, int16}, {273, int16},
    {274, int16}, {40, real},  {41, real},   {42, real},   {43, real},   {44, real},   {45, real},
    {46, real},   {47, real},  {48, real},   {140, real},  {141, real},  {142, real},  {143, real},
    {144, real},  {145, real}, {146, real},  {147, real},  {3, text},    {4, text},    {0, text},
    {0, text},    {0, text},   {176, color}, {177, color}, {178, color}, {340, id}};

constexpr DwgStep kSteps[] = {{3, text},
                              {4, text},
                              {40, real},
                              {41, real},
                              {42, real},
                              {43, real},
                              {44, real},
                              {45, real},
                              {46, real},
                              {47, real},
                              {48, real},
                              {49, real, k2007},
                              {50, real, k2007},
                              {69, int16, k2007},
                              {70, color, k2007},
                              {71, bit},
                              {72, bit},
                              {73, bit},
                              {74, bit},
                              {75, bit},
                              {76, bit},
                              {77, int16},
                              {78, int16},
                              {79, int16},
                              {90, int16, k2007},
                              {140, real},
                              {141, real},
                              {142, real},
                              {143, real},
                              {144, real},
                              {145, real},
                              {146, real},
                              {147, real},
                              {148, real},
                              {170, bit},
                              {171, int16},
                              {172, bit},
                              {173, bit},
                              {174, bit},
                              {175, bit},
                              {176, color},
                              {177, color},
                              {178, color},
                              {179, int16},
                              {271, int16},
                              {272, int16},
                              {273, int16},
                              {274, int16},
                              {275, int16},
                              {276, int16},
                              {277, int16},
                              {278, int16},
                              {279, int16},
                              {280, int16},
                              {281, bit},
                              {282, bit},
                              {283, int16},
                              {284, int16},
                              {285, int16},
                              {286, int16},
                              {288, bit},
                              {289, int16},
                              {290, bit, k2007},
                              {294, bit, k2010},
                              {0, real, k2010, DwgStep::kOpen, kUnlimited},
                              {0, text, k2010},
                              {0, real, k2010, DwgStep::kOpen, kUnlimited},
                              {0, text, k2010},
                              {371, int16},
                              {372, int16},
                              {340, id},
                              {341, id},
                              {342, id},
                              {343, id},
                              {344, id},
                              {345, id, k2007},
                              {346, id, k2007},
                              {347, id, k2007}};

}  // namespace

std::span<const DwgStep> dimStyleSteps(const AcDbDwgFiler& filer) {
    if (filer.dwgVersion() < AcDb::kDHL_1015) return kOldSteps;
    return kSteps;
}

}  // namespace sg::model

#include <string_view>

#include "host/model/kept/kept_steps.h"

// Objects that no class reads.

namespace sg::model {

using namespace kept;
using AcDb::kDHL_1021;
using AcDb::kDHL_1024;
using AcDb::kDHL_1027;

namespace {

template <class Step>
void append(std::vector<Step>& steps, std::vector<Step> more) {
    for (Step& step : more)
        steps.push_back(std::move(step));
}

KeptForm scale() {
    return {
        L"SCALE",
        nullptr,
        {int16(70), text(300), real(140), real(141), bit(290)},
        {{0, {marker("AcDbScale"), group(70), group(300), group(140), group(141), group(290)}}}};
}

// Files from release 2010 on begin with a version, and end in how texts are attached.
std::vector<Item> leaderStyleItems(bool isNew) {
    std::vector<Item> items = {marker("AcDbMLeaderStyle")};
    if (isNew) items.push_back(group(179));
    append(items, {group(170),  group(171),   group(172),  group(90),   group(40),   group(41),
                   group(173),  rawColor(91), object(340), group(92),   group(290),  group(42),
                   group(291),  group(43),    group(3),    object(341), group(44),   group(300),
                   object(342), group(174),   group(178),  group(175),  group(176),  rawColor(93),
                   group(45),   group(292),   group(297),  group(46),   object(343), rawColor(94),
                   group(47),   group(49),    group(140),  group(293),  group(141),  group(294),
                   group(177),  group(142),   group(295),  group(296),  group(143)});
    if (!isNew) return items;
    append(items, {group(271), group(272), group(273), group(298, number(0))});
    return items;
}

KeptForm leaderStyle() {
    return {L"MLEADERSTYLE",
            nullptr,
            {otherwise(2, int16(179, kDHL_1024)),
             int16(170),
             int16(171),
             int16(172),
             int32(90),
             real(40),
             real(41),
             int16(173),
             color(91),
             id(340),
             int32(92),
             bit(290),
             real(42),
             bit(291),
             real(43),
             text(3),
             id(341),
             real(44),
             text(300),
             id(342),
             int16(174),
             int16(178),
             int16(175),
             int16(176),
             color(93),
             real(45),
             bit(292),
             bit(297),
             real(46),
             id(343),
             color(94),
             real(47),
             real(49),
             real(140),
             bit(293),
             real(141),
             bit(294),
             int16(177),
             real(142),
             bit(296),
             bit(295),
             real(143),
             int16(271, kDHL_1024),
             otherwise(9, int16(273, kDHL_1024)),
             otherwise(9, int16(272, kDHL_1024)),
             bit(298, kDHL_1027)},
            {{0, leaderStyleItems(false)}, {kDHL_1024, leaderStyleItems(true)}}};
}

// ---- Materials ----------------------------------------------------------------------------------

constexpr int kOwnColor = 1;
constexpr int kFromFile = 1;
constexpr int kFromProgram = 2;

struct MaterialColor {
    int flag, factor, value;
};
struct MaterialMap {
    int blend, source, file, projection, tiling, transform, matrix;
};

constexpr MaterialColor kAmbient = {70, 40, 90};
constexpr MaterialColor kDiffuse = {71, 41, 91};
constexpr MaterialColor kSpecular = {76, 45, 92};
constexpr MaterialMap kDiffuseMap = {42, 72, 3, 73, 74, 75, 43};
constexpr MaterialMap kSpecularMap = {46, 77, 4, 78, 79, 170, 47};
constexpr MaterialMap kReflectionMap = {48, 171, 6, 172, 173, 174, 49};
constexpr MaterialMap kOpacityMap = {141, 175, 7, 176, 177, 178, 142};
constexpr MaterialMap kBumpMap = {143, 179, 8, 270, 271, 272, 144};
constexpr MaterialMap kRefractionMap = {146, 273, 9, 274, 275, 276, 147};
constexpr int kMatrixSize = 16;
constexpr int kAllChannels = 127;
constexpr int kBox = 2;  // how a map is projected

std::vector<Step> stepsOf(const MaterialColor& color) {
    return {byte(color.flag), real(color.factor),
            onlyIf(color.flag, kOwnColor, int32(color.value))};
}
std::vector<Step> stepsOf(const MaterialMap& map) {
    return {real(map.blend),
            byte(map.projection),
            byte(map.tiling),
            byte(map.transform),
            rows(map.matrix, {real(map.matrix)}, kMatrixSize),
            byte(map.source),
            onlyIf(map.source, kFromFile, text(map.file)),
            onlyIf(map.source, kFromProgram, step(KeptCoding::none, 0))};
}

std::vector<Item> itemsOf(const MaterialColor& color) {
    return {group(color.flag, number(0)), group(color.factor, 1.0), group(color.value, number(0))};
}
std::vector<Item> itemsOf(const MaterialMap& map, double blend, std::optional<KeptValue> source) {
    Item from = group(map.source);
    from.otherwise = std::move(source);
    return {group(map.blend, blend),        from,
            group(map.file, std::string()), group(map.projection, number(kBox)),
            group(map.tiling, number(1)),   group(map.transform, number(1)),
            matrix(map.matrix, kMatrixSize)};
}

KeptForm material() {
    KeptForm form{L"MATERIAL", nullptr, {text(1), text(2)}, {}};
    std::vector<Step>& dwg = form.dwg;
    append(dwg, stepsOf(kAmbient));
    append(dwg, stepsOf(kDiffuse));
    append(dwg, stepsOf(kDiffuseMap));
    append(dwg, stepsOf(kSpecular));
    append(dwg, stepsOf(kSpecularMap));
    append(dwg, {real(44)});
    append(dwg, stepsOf(kReflectionMap));
    append(dwg, {real(140)});
    append(dwg, stepsOf(kOpacityMap));
    append(dwg, stepsOf(kBumpMap));
    append(dwg, {real(145)});
    append(dwg, stepsOf(kRefractionMap));
    append(dwg, {real(148, kDHL_1021), real(149, kDHL_1021), real(468, kDHL_1021),
                 int32(93, kDHL_1021), int32(94, kDHL_1021), int32(282, kDHL_1021)});

    std::vector<Item> items = {marker("AcDbMaterial"), group(1), group(2, std::string())};
    append(items, itemsOf(kAmbient));
    append(items, itemsOf(kDiffuse));
    append(items, itemsOf(kDiffuseMap, 1, std::nullopt));
    append(items, {group(44, 0.5)});
    append(items, itemsOf(kSpecular));
    append(items, itemsOf(kSpecularMap, 1, std::nullopt));
    append(items, itemsOf(kReflectionMap, 1, std::nullopt));
    append(items, {group(140, 1.0)});
    append(items, itemsOf(kOpacityMap, 1, std::nullopt));
    append(items, itemsOf(kBumpMap, 1, std::nullopt));
    append(items, {group(145, 1.0)});
    append(items, itemsOf(kRefractionMap, 1, number(0)));
    append(items, {group(148, 0.0), group(149, 0.0), group(468, 0.0), group(93, number(0)),
                   group(94, number(kAllChannels)), group(282, number(0))});
    form.layouts = {{0, std::move(items)}};
    return form;
}

// ---- Tables -------------------------------------------------------------------------------------

constexpr int kTableRows = 3;
constexpr int kBorders = 6;

// The form of releases before 2010.
KeptForm tableStyle() {
    constexpr int kRow = 1;
    std::vector<Step> row = {id(7), real(140), int16(170), fullColor(62), fullColor(63), bit(283)};
    std::vector<Item> items = {named(7, 7, NamedIn::textStyles),
                               group(140),
                               group(170),
                               indexColor(62, 420),
                               indexColor(63, 421),
                               group(283)};
    for (int border = 0; border < kBorders; ++border) {
        append(row, {int16(274 + border), bit(284 + border), fullColor(64 + border)});
        append(items, {group(274 + border), group(284 + border), indexColor(64 + border)});
    }
    KeptForm form{L"TABLESTYLE",
                  nullptr,
                  {text(3), int16(70), int16(71), real(40), real(41), bit(280), bit(281),
                   rows(kRow, std::move(row), kTableRows)},
                  {{0,
                    {marker("AcDbTableStyle"), group(3), group(70), group(71), group(40), group(41),
                     group(280), group(281), rows(kRow, std::move(items), kTableRows)}}}};
    form.until = kDHL_1024;
    return form;
}

}  // namespace

const std::vector<KeptForm>& keptObjectForms() {
    static const std::vector<KeptForm> kForms = {scale(), leaderStyle(), material(),
                                                 keptVisualStyle(), tableStyle()};
    return kForms;
}

}  // namespace sg::model

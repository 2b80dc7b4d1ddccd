#include <iterator>

#include "host/model/kept/kept_steps.h"

// Visual styles. What a style has is a list of properties that grew with the releases: until 2007
// each has its own group and coding, in 2010 an operation stands behind each, and from 2013 on the
// properties are groups of their kinds, one after another.

namespace sg::model {

using namespace kept;
using AcDb::kDHL_1021;
using AcDb::kDHL_1024;
using AcDb::kDHL_1027;

namespace {

// L a whole number, D a real, C a colour, B a flag, T a text. `code`: its group until 2010; 0 for
// one that came with 2013.
struct Property {
    char kind;
    int code = 0;
};

constexpr Property kProperties[] = {
    {'L', 71},  {'L', 72}, {'L', 73}, {'L', 90},  {'D', 40},  {'D', 41}, {'C', 63},  {'L', 74},
    {'L', 91},  {'C', 64}, {'C', 65}, {'L', 75},  {'L', 175}, {'D', 42}, {'L', 92},  {'C', 66},
    {'D', 43},  {'L', 76}, {'L', 77}, {'L', 78},  {'C', 67},  {'L', 79}, {'L', 170}, {'L', 171},
    {'B', 290}, {'L', 93}, {'D', 44}, {'L', 173}, {'B'},      {'B'},     {'B'},      {'B'},
    {'B'},      {'B'},     {'B'},     {'B'},      {'B'},      {'L'},     {'D'},      {'D'},
    {'L'},      {'C'},     {'L'},     {'L'},      {'C'},      {'B'},     {'L'},      {'L'},
    {'L'},      {'B'},     {'L'},     {'C'},      {'D'},      {'L'},     {'T'},      {'B'},
    {'D'},      {'D'},
};
constexpr int kCount = static_cast<int>(std::size(kProperties));
constexpr int kFirstNew = 28;

constexpr int kProperty = 1000;  // the keys of the properties
constexpr int kOperation = 2000;
constexpr int kOperationCode = 176;
constexpr int64_t kSet = 1;  // the operation

// Of the style itself.
constexpr int kModel = 177;
constexpr int kInternal = 291;

int keyOf(int code) {
    for (int i = 0; i < kFirstNew; ++i) {
        if (kProperties[i].code == code) return kProperty + i;
    }
    return code;
}

// ---- DWG objects --------------------------------------------------------------------------------

Step newStep(const Property& property, int key) {
    switch (property.kind) {
        case 'D':
            return real(key);
        case 'C':
            return color(key);
        case 'B':
            return bit(key);
        case 'T':
            return text(key);
        default:
            return int32(key);
    }
}

// The codings until 2007, in the order of the object.
struct OldStep {
    KeptCoding coding;
    int code;
    int16_t since = 0;
};

constexpr OldStep kOldSteps[] = {
    {KeptCoding::int32, 71},      {KeptCoding::int32, 72},  {KeptCoding::int32, 73},
    {KeptCoding::real, 40},       {KeptCoding::real, 41},   {KeptCoding::color, 63},
    {KeptCoding::int32, 90},      {KeptCoding::int32, 74},  {KeptCoding::int32, 91},
    {KeptCoding::color, 64},      {KeptCoding::color, 65},  {KeptCoding::int32, 75},
    {KeptCoding::real, 42},       {KeptCoding::int32, 92},  {KeptCoding::color, 66},
    {KeptCoding::real, 43},       {KeptCoding::int16, 76},  {KeptCoding::int16, 77},
    {KeptCoding::int32, 78},      {KeptCoding::color, 67},  {KeptCoding::int16, 79},
    {KeptCoding::byte, 170},      {KeptCoding::int16, 171}, {KeptCoding::bit, 290},
    {KeptCoding::int16, 174},     {KeptCoding::int16, 175}, {KeptCoding::int32, 93},
    {KeptCoding::int32, 44},      {KeptCoding::int32, 173}, {KeptCoding::real, 45, kDHL_1021},
    {KeptCoding::bit, kInternal},
};

std::vector<Step> dwgSteps() {
    std::vector<Step> steps = {kept::text(2), kept::int32(70)};
    for (const OldStep& old : kOldSteps)
        steps.push_back(step(old.coding, keyOf(old.code), old.since, kDHL_1024));
    steps.push_back(otherwise(2, kept::int16(kModel, kDHL_1024)));
    steps.push_back(kept::bit(kInternal, kDHL_1024));
    for (int i = 0; i < kCount; ++i) {
        Step value = newStep(kProperties[i], kProperty + i);
        Step operation = otherwise(kSet, kept::int16(kOperation + i));
        value.since = operation.since = i < kFirstNew ? kDHL_1024 : kDHL_1027;
        steps.push_back(std::move(value));
        steps.push_back(std::move(operation));
    }
    return steps;
}

// ---- Groups -------------------------------------------------------------------------------------

Item propertyItem(char kind, int code, int key) {
    constexpr int kTrueColors = 358;  // from the code of an index to that of a true colour
    if (kind == 'C') {
        Item made = indexColor(code, code == 62 ? 420 : code + kTrueColors);
        made.key = key;
        return made;
    }
    return keyed(code, key);
}

std::vector<Item> oldItems() {
    constexpr int kOrder[] = {71, 72, 73, 90, 40, 41, 62, 63,  74,  91,  64,  65, 75, 175, 42,  92,
                              66, 43, 76, 77, 78, 67, 79, 170, 171, 290, 174, 93, 44, 173, 291, 45};
    std::vector<Item> items = {marker("AcDbVisualStyle"), group(2), group(70)};
    for (const int code : kOrder) {
        const bool isColor = code >= 63 && code <= 67;
        if (code == 62) {
            items.push_back(constant(62, number(5)));
        } else if (code == 45) {
            items.push_back(group(45, 0.0));
        } else {
            items.push_back(propertyItem(isColor ? 'C' : 'L', code, keyOf(code)));
        }
        items.back().isReal = code == 44;
    }
    return items;
}

std::vector<Item> items2010() {
    std::vector<Item> items = {marker("AcDbVisualStyle"), group(2), group(70), group(kModel),
                               group(kInternal)};
    for (int i = 0; i < kFirstNew; ++i) {
        items.push_back(propertyItem(kProperties[i].kind, kProperties[i].code, kProperty + i));
        items.push_back(keyed(kOperationCode, kOperation + i));
    }
    return items;
}

std::vector<Item> newItems() {
    std::vector<Item> items = {
        marker("AcDbVisualStyle"),   group(2), group(70), group(kModel), group(kInternal),
        constant(70, number(kCount))};
    for (int i = 0; i < kCount; ++i) {
        const char kind = kProperties[i].kind;
        const int code = kind == 'D'   ? 40
                         : kind == 'C' ? 62
                         : kind == 'B' ? 290
                         : kind == 'T' ? 1
                                       : 90;
        items.push_back(propertyItem(kind, code, kProperty + i));
        items.push_back(keyed(kOperationCode, kOperation + i));
    }
    return items;
}

}  // namespace

KeptForm keptVisualStyle() {
    return {L"VISUALSTYLE",
            nullptr,
            dwgSteps(),
            {{0, oldItems()}, {kDHL_1024, items2010()}, {kDHL_1027, newItems()}}};
}

}  // namespace sg::model

#include "host/model/access/group_checks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/text.h"
#include "host/model/access/entity_maker.h"

namespace sg::model {
namespace {

constexpr int kType = 0;
constexpr int kSize = 40;
constexpr int kColor = 62;
constexpr int kLastColor = 256;  // that of the layer
constexpr int kUnused = -1;

struct Kind {
    std::wstring_view name;
    bool hasSize;  // group 40 is a radius or a height
    std::array<int, 4> required;
};
constexpr std::array kKinds = {
    Kind{L"LINE", false, {10, 11, kUnused, kUnused}},
    Kind{L"RAY", false, {10, 11, kUnused, kUnused}},
    Kind{L"XLINE", false, {10, 11, kUnused, kUnused}},
    Kind{L"POINT", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"CIRCLE", true, {10, 40, kUnused, kUnused}},
    Kind{L"ARC", true, {10, 40, 50, 51}},
    Kind{L"ELLIPSE", true, {10, 11, 40, kUnused}},
    Kind{L"LWPOLYLINE", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"VERTEX", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"TEXT", true, {10, 40, 1, kUnused}},
    Kind{L"MTEXT", true, {1, kUnused, kUnused, kUnused}},
    Kind{L"ATTDEF", true, {10, 40, 2, kUnused}},
    Kind{L"ATTRIB", true, {10, 40, 2, kUnused}},
    Kind{L"INSERT", false, {2, 10, kUnused, kUnused}},
    Kind{L"SOLID", false, {10, 11, 12, kUnused}},
    Kind{L"TRACE", false, {10, 11, 12, kUnused}},
    Kind{L"3DFACE", false, {10, 11, 12, kUnused}},
};

const Kind* kindOf(const resbuf* groups) {
    const resbuf* const type = findGroup(groups, kType);
    if (type == nullptr || type->resval.rstring == nullptr) return nullptr;
    const auto found = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& kind) {
        return equalIgnoringCase(kind.name, type->resval.rstring);
    });
    return found == kKinds.end() ? nullptr : &*found;
}

}  // namespace

bool hasRequiredGroups(const resbuf* groups) {
    const Kind* const kind = kindOf(groups);
    return kind == nullptr ||
           std::all_of(kind->required.begin(), kind->required.end(), [&](int code) {
               return code == kUnused || findGroup(groups, code) != nullptr;
           });
}

bool hasValidValues(const resbuf* groups) {
    const resbuf* const color = findGroup(groups, kColor);
    if (color != nullptr && (color->resval.rint < 0 || color->resval.rint > kLastColor)) {
        return false;
    }
    const Kind* const kind = kindOf(groups);
    const resbuf* const size = findGroup(groups, kSize);
    return kind == nullptr || !kind->hasSize || size == nullptr || size->resval.rreal > 0;
}

}  // namespace sg::model

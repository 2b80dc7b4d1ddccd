#include "host/model/access/group_checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "host/model/access/entity_maker.h"
#include "host/model/core/line_weights.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/entity.h"

namespace sg::model {
namespace {

constexpr int kLinetype = 6;
constexpr int kPoint = 10;
constexpr int kDirection = 11;
constexpr int kSize = 40;
constexpr int kColor = 62;
constexpr int kMarker = 100;
constexpr int kLineWeight = 370;
constexpr int kLastColor = 256;  // that of the layer
constexpr int kUnused = -1;

struct Kind {
    std::wstring_view name;
    std::wstring_view marker;  // of the class that the groups belong to; empty for one of several
    bool hasSize;              // group 40 is a radius or a height
    std::array<int, 4> required;
};
constexpr std::array kKinds = {
    Kind{L"LINE", L"AcDbLine", false, {10, 11, kUnused, kUnused}},
    Kind{L"RAY", L"AcDbRay", false, {10, 11, kUnused, kUnused}},
    Kind{L"XLINE", L"AcDbXline", false, {10, 11, kUnused, kUnused}},
    Kind{L"POINT", L"AcDbPoint", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"CIRCLE", L"AcDbCircle", true, {10, 40, kUnused, kUnused}},
    Kind{L"ARC", L"AcDbCircle", true, {10, 40, 50, 51}},
    Kind{L"ELLIPSE", L"AcDbEllipse", true, {10, 11, 40, kUnused}},
    Kind{L"LWPOLYLINE", L"AcDbPolyline", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"VERTEX", L"AcDbVertex", false, {10, kUnused, kUnused, kUnused}},
    Kind{L"TEXT", L"AcDbText", true, {10, 40, 1, kUnused}},
    Kind{L"MTEXT", L"AcDbMText", true, {1, kUnused, kUnused, kUnused}},
    Kind{L"ATTDEF", L"AcDbText", true, {10, 40, 2, kUnused}},
    Kind{L"ATTRIB", L"AcDbText", true, {10, 40, 2, kUnused}},
    Kind{L"INSERT", L"", false, {2, 10, kUnused, kUnused}},
    Kind{L"SOLID", L"AcDbTrace", false, {10, 11, 12, kUnused}},
    Kind{L"TRACE", L"AcDbTrace", false, {10, 11, 12, kUnused}},
    Kind{L"3DFACE", L"AcDbFace", false, {10, 11, 12, kUnused}},
    Kind{L"LEADER", L"AcDbLeader", false, {10, kUnused, kUnused, kUnused}},
};

// Null for a kind that is not known here.
const Kind* kindOf(const AcDbObject& object) {
    const wchar_t* const name = object.isA()->dxfName();
    const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                    [&](const Kind& kind) { return kind.name == name; });
    return found == kKinds.end() ? nullptr : &*found;
}

// Whether the groups stand under the marker of their class, or under none.
bool isMarkedAs(const resbuf* groups, std::wstring_view marker) {
    bool isMarked = false;
    for (const resbuf* group = groups; group != nullptr; group = group->rbnext) {
        if (group->restype != kMarker || group->resval.rstring == nullptr) continue;
        if (group->resval.rstring == marker) return true;
        if (group->resval.rstring != std::wstring_view(L"AcDbEntity")) isMarked = true;
    }
    return !isMarked || marker.empty();
}

// One point makes no leader.
bool hasEnoughPoints(const Kind& kind, const resbuf* groups) {
    if (kind.name != L"LEADER") return true;
    const resbuf* const first = findGroup(groups, kPoint);
    return first != nullptr && findGroup(first->rbnext, kPoint) != nullptr;
}

}  // namespace

bool hasRequiredGroups(const AcDbObject& object, const resbuf* groups) {
    const Kind* const kind = kindOf(object);
    if (kind == nullptr) return true;
    return isMarkedAs(groups, kind->marker) && hasEnoughPoints(*kind, groups) &&
           std::all_of(kind->required.begin(), kind->required.end(), [&](int code) {
               return code == kUnused || findGroup(groups, code) != nullptr;
           });
}

namespace {

bool hasKnownLineWeight(const resbuf* groups) {
    const resbuf* const weight = findGroup(groups, kLineWeight);
    return weight == nullptr || isObjectLineWeight(weight->resval.rint);
}

bool hasKnownLinetype(const resbuf* groups, const AcDbDatabase& database) {
    const resbuf* const name = findGroup(groups, kLinetype);
    return name == nullptr || name->resval.rstring == nullptr ||
           !findRecord(database.linetypeTableId(), name->resval.rstring).isNull();
}

bool hasValidSize(const AcDbObject& object, const resbuf* groups) {
    const Kind* const kind = kindOf(object);
    const resbuf* const size = findGroup(groups, kSize);
    return kind == nullptr || !kind->hasSize || size == nullptr || size->resval.rreal > 0;
}

bool hasValidColor(const resbuf* groups) {
    const resbuf* const color = findGroup(groups, kColor);
    return color == nullptr || (color->resval.rint >= 0 && color->resval.rint <= kLastColor);
}

// A ray and a construction line go somewhere.
bool hasValidDirection(const AcDbObject& object, const resbuf* groups) {
    const Kind* const kind = kindOf(object);
    if (kind == nullptr || (kind->name != L"RAY" && kind->name != L"XLINE")) return true;
    const resbuf* const direction = findGroup(groups, kDirection);
    if (direction == nullptr) return true;
    const double* const v = direction->resval.rpoint;
    return v[0] != 0 || v[1] != 0 || v[2] != 0;
}

bool isFinite(const resbuf& group) {
    const double* const p = group.resval.rpoint;
    switch (acdbGroupCodeToType(group.restype)) {
        case RTREAL:
            return std::isfinite(group.resval.rreal);
        case RT3DPOINT:
            return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
        default:
            return true;
    }
}

bool hasFiniteNumbers(const resbuf* groups) {
    while (groups != nullptr && isFinite(*groups))
        groups = groups->rbnext;
    return groups == nullptr;
}

}  // namespace

bool hasValidValues(const AcDbObject& object, const resbuf* groups, const AcDbDatabase& database) {
    if (!hasFiniteNumbers(groups)) return false;
    if (AcDbLayerTableRecord::cast(&object) != nullptr) {
        return hasKnownLinetype(groups, database) && hasKnownLineWeight(groups);
    }
    if (AcDbEntity::cast(&object) == nullptr) return true;
    return hasValidColor(groups) && hasKnownLineWeight(groups) && hasValidSize(object, groups) &&
           hasValidDirection(object, groups);
}

}  // namespace sg::model

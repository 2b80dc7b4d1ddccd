#include "host/editor/prompts/object_snap.h"

#include "base/text.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"

namespace sg {
namespace {

struct SnapRow {
    const wchar_t* name;
    AcDb::OsnapMode mode;
};
constexpr SnapRow kSnaps[] = {
    {L"endpoint", AcDb::kOsModeEnd},       {L"midpoint", AcDb::kOsModeMid},
    {L"center", AcDb::kOsModeCen},         {L"node", AcDb::kOsModeNode},
    {L"quadrant", AcDb::kOsModeQuad},      {L"insertion", AcDb::kOsModeIns},
    {L"perpendicular", AcDb::kOsModePerp}, {L"tangent", AcDb::kOsModeTan},
    {L"nearest", AcDb::kOsModeNear},
};

bool isStartOf(std::wstring_view word, std::wstring_view name) {
    return word.size() >= 3 && word.size() <= name.size() &&
           equalIgnoringCase(name.substr(0, word.size()), word);
}

bool takeWord(std::wstring_view word, NamedSnaps& snaps) {
    if (isStartOf(word, L"none") || isStartOf(word, L"off")) return snaps.isNone = true;
    if (isStartOf(word, L"intersection")) return snaps.isCrossing = true;
    for (const SnapRow& row : kSnaps) {
        if (!isStartOf(word, row.name)) continue;
        snaps.modes.push_back(row.mode);
        return true;
    }
    return false;
}

// Appends the points, in world coordinates, that the snaps find on the entities.
void appendSnaps(const DrawingSelection::Ids& ids, const NamedSnaps& snaps, const AcGePoint3d& at,
                 const AcGePoint3d& last, const AcGeMatrix3d& view, AcGePoint3dArray& points) {
    for (size_t i = 0; i < ids.size(); ++i) {
        const auto* const entity = model::peek<AcDbEntity>(ids[i]);
        if (entity == nullptr) continue;
        const model::Unguarded guard(*entity);
        AcDbIntArray ignored;
        for (const AcDb::OsnapMode mode : snaps.modes)
            entity->getOsnapPoints(mode, 0, at, last, view, points, ignored);
        for (size_t other = i + 1; snaps.isCrossing && other < ids.size(); ++other) {
            const auto* const second = model::peek<AcDbEntity>(ids[other]);
            const model::Unguarded both(*second);
            entity->intersectWith(second, AcDb::kOnBothOperands, points);
        }
    }
}

}  // namespace

NamedSnaps namedSnaps(std::wstring_view text) {
    NamedSnaps snaps;
    for (;;) {
        const size_t comma = text.find(L',');
        std::wstring_view word = trimmed(text.substr(0, comma));
        if (word.starts_with(L'_')) word.remove_prefix(1);
        if (!takeWord(word, snaps)) return {};
        if (comma == std::wstring_view::npos) return snaps;
        text.remove_prefix(comma + 1);
    }
}

std::optional<AcGePoint3d> snapPoint(AcDbDatabase& database, DrawingSelection& selection,
                                     const NamedSnaps& snaps, const AcGePoint3d& at,
                                     const AcGePoint3d& last, double half) {
    if (snaps.isNone) return at;
    const AcGeMatrix3d toWorld = model::userToWorld(database);
    const AcGePoint3d place = toWorld * at;
    AcGePoint3dArray points;
    appendSnaps(selection.atPoint(at, half), snaps, place, toWorld * last,
                model::displayToWorld(database).inverse(), points);
    std::optional<AcGePoint3d> nearest;
    for (const AcGePoint3d& point : points) {
        if (!nearest || point.distanceTo(place) < nearest->distanceTo(place)) nearest = point;
    }
    if (nearest) *nearest = toWorld.inverse() * *nearest;
    return nearest;
}

}  // namespace sg

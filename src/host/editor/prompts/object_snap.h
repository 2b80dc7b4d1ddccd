#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/editor/selection/drawing_selection.h"
#include "platform/db/entity.h"

namespace sg {

// The object snaps that a text names ("mid", "end,cen"), by the first three letters of each or
// more; empty when a word is none. "non" and "off" are one that finds the point itself.
struct NamedSnaps {
    std::vector<AcDb::OsnapMode> modes;
    bool isNone = false;      // the point itself
    bool isCrossing = false;  // where two entities meet
    bool empty() const { return modes.empty() && !isNone && !isCrossing; }
};
SG_API NamedSnaps namedSnaps(std::wstring_view text);

// The point that the snaps find on what shows near `at`, the nearest of them: both in user
// coordinates. nullopt when they find none. `last` is the point before in the command.
SG_API std::optional<AcGePoint3d> snapPoint(AcDbDatabase& database, DrawingSelection& selection,
                                            const NamedSnaps& snaps, const AcGePoint3d& at,
                                            const AcGePoint3d& last, double half);

}  // namespace sg

#include <vector>

#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/editor/selection/region.h"
#include "host/model/tables/coordinate_systems.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;

// The part of the display that a selection looked at.
SelectionRegion regionOf(const SelectedBy& how, const AcGeMatrix3d& toDisplay) {
    Loop loop;
    for (const AcGePoint3d& point : how.points) {
        const AcGePoint3d at = toDisplay * point;
        loop.emplace_back(at.x, at.y);
    }
    if (loop.size() == 2) return SelectionRegion::rectangle(loop[0], loop[1]);
    return SelectionRegion::polygon(std::move(loop));
}

// Moves the points of an entity that are in the region; all of it when it was not found by one.
void stretchOne(AcDbEntity& entity, const SelectedBy& how, const AcGeMatrix3d& toDisplay,
                const AcGeVector3d& by) {
    AcGePoint3dArray points;
    const bool isWhole = how.method != SelectedBy::crossing || how.points.size() < 2 ||
                         entity.getStretchPoints(points) != Acad::eOk || points.isEmpty();
    if (isWhole) {
        entity.transformBy(AcGeMatrix3d::translation(by));
        return;
    }
    const SelectionRegion region = regionOf(how, toDisplay);
    AcDbIntArray inside;
    for (int i = 0; i < points.length(); ++i) {
        const AcGePoint3d at = toDisplay * points[i];
        if (region.contains({at.x, at.y})) inside.append(i);
    }
    if (!inside.isEmpty()) entity.moveStretchPointsAt(inside, by);
}

}  // namespace

void stretch(Command& c) {
    c.print(L"Select objects to stretch by crossing-window or crossing-polygon...");
    const SelectionSet set = c.select();
    if (set.size() == 0) return;
    AcGePoint3d base, second;
    AcGeVector3d by;
    if (c.point({L"Specify base point or [Displacement] <Displacement>: "}, base) == Reply::value) {
        const Reply reply =
            c.point({L"Specify second point or <use first point as displacement>: ", base}, second);
        by = reply == Reply::value ? second - base : base.asVector();
    } else {
        by = c.needPoint({L"Specify displacement <0.0000, 0.0000, 0.0000>: ", AcGePoint3d()})
                 .asVector();
    }
    const AcGeMatrix3d toDisplay = model::displayToWorld(c.database()).inverse();
    for (size_t i = 0; i < set.size(); ++i) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, set.at(i), AcDb::kForWrite) != Acad::eOk) continue;
        stretchOne(*entity, set.methods()[set.methodAt(i)], toDisplay, c.world(by));
        entity->close();
    }
}

}  // namespace sg::commands

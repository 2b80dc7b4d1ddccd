#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/editor/selection/space_index.h"
#include "platform/db/database.h"

namespace sg {

// How entities are found by a shape on the display.
enum class RegionMethod {
    window,           // all of it inside the rectangle of two corners
    crossing,         // inside or touching
    windowPolygon,    // the same with a polygon
    crossingPolygon,  //
    fence,            // touching a chain of lines
};

// Finds entities in one drawing, as its display shows them. Points are in the user coordinate
// system.
//
// Only entities of the current space that show are found by place: not erased, visible, on a layer
// that is neither off nor frozen. What comes first was made last; what a fence touches is in the
// order along it.
class SG_API DrawingSelection {
  public:
    using Ids = std::vector<AcDbObjectId>;
    using Points = std::span<const AcGePoint3d>;

    explicit DrawingSelection(AcDbDatabase& database);
    ~DrawingSelection();
    DrawingSelection(const DrawingSelection&) = delete;
    DrawingSelection& operator=(const DrawingSelection&) = delete;

    // Two corners, or the points of a polygon (three or more) or fence (two or more); with fewer
    // nothing is found.
    Ids inRegion(RegionMethod method, Points points);
    // What touches a square around the point; `half` is half its side, in drawing units.
    Ids atPoint(const AcGePoint3d& point, double half);
    // The entity of the current space that was made last of those that show; null without one.
    AcDbObjectId last();
    // The current space, without entities on frozen or locked layers.
    Ids all();
    // All spaces, whatever shows.
    Ids everything();
    // The members of the group of this name, ignoring case, as far as they stand in the current
    // space; false when there is no such group.
    bool group(const std::wstring& name, Ids& ids);
    // What selecting one of a group's entities selects: the entity, and the members of the
    // selectable groups that it is in.
    Ids withGroups(AcDbObjectId id);

    // What was selected last; erased ones are left out.
    Ids previous() const;
    void setPrevious(Ids ids) { previous_ = std::move(ids); }

    // What is selected before a command asks, and counts as its selection; erased ones are left
    // out. Whoever uses it makes it empty.
    Ids implied() const;
    void setImplied(Ids ids) { implied_ = std::move(ids); }

    // The entity inside a block reference, or the attribute, that is shown at the point. False when
    // nothing of the reference is there.
    struct Nested {
        AcDbObjectId id;
        Ids containers;        // block references around it, the innermost first
        AcGeMatrix3d toWorld;  // from its coordinates
    };
    bool nestedAt(AcDbObjectId reference, const AcGePoint3d& point, double half, Nested& found);

    static bool isOnLockedLayer(AcDbObjectId id);

  private:
    SpaceIndex& index();

    AcDbDatabase& database_;
    std::map<AcDbObjectId, std::unique_ptr<SpaceIndex>> indexes_;
    Ids previous_;
    Ids implied_;
};

}  // namespace sg

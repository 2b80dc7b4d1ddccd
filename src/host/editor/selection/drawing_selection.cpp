#include "host/editor/selection/drawing_selection.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "host/editor/selection/outline.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/object_access.h"
#include "host/model/entities/shown_block.h"
#include "host/model/tables/coordinate_systems.h"
#include "platform/db/block_reference.h"
#include "platform/db/group.h"

namespace sg {
namespace {

using Ids = DrawingSelection::Ids;
using model::peek;

// Which layers show, each asked once.
class LayersShown {
  public:
    bool operator()(AcDbObjectId layer) {
        const auto [found, isNew] = known_.try_emplace(layer, true);
        if (isNew) {
            const auto* const record = peek<AcDbLayerTableRecord>(layer);
            found->second = record == nullptr || !(record->isFrozen() || record->isOff());
        }
        return found->second;
    }

  private:
    std::map<AcDbObjectId, bool> known_;
};

bool isSelectable(const AcDbEntity& entity, LayersShown& layers) {
    const model::Unguarded guard(entity);
    return !entity.isErased() && entity.visibility() == AcDb::kVisible && layers(entity.layerId());
}

// Whether something of an entity touches a region, and where first.
class TouchTest final : public OutlineSink {
  public:
    TouchTest(const SelectionRegion& region, LayersShown& layers)
        : region_(region), layers_(layers) {}

    bool piece(const model::Piece& piece) override { return take(region_.meets(piece)); }
    bool area(const std::vector<Loop>& loops) override { return take(region_.meetsArea(loops)); }
    bool shows(AcDbObjectId layer) override { return layers_(layer); }

    const std::optional<double>& place() const { return place_; }

  private:
    // Along a fence the first place counts, which only the last shape tells.
    bool take(std::optional<double> place) {
        if (place && (!place_ || *place < *place_)) place_ = place;
        return place_.has_value() && !region_.isFence();
    }

    const SelectionRegion& region_;
    LayersShown& layers_;
    std::optional<double> place_;
};

// Whether all of an entity lies in a region.
class InsideTest final : public OutlineSink {
  public:
    InsideTest(const SelectionRegion& region, LayersShown& layers)
        : region_(region), layers_(layers) {}

    bool piece(const model::Piece& piece) override { return take(region_.encloses(piece)); }
    bool area(const std::vector<Loop>& loops) override { return take(region_.enclosesArea(loops)); }
    bool shows(AcDbObjectId layer) override { return layers_(layer); }

    bool passed() const { return any_ && !outside_; }

  private:
    bool take(bool inside) {
        any_ = true;
        outside_ = outside_ || !inside;
        return outside_;
    }

    const SelectionRegion& region_;
    LayersShown& layers_;
    bool any_ = false;
    bool outside_ = false;
};

// The display plane of a drawing's current view.
class Display {
  public:
    explicit Display(const AcDbDatabase& database)
        : user_(model::userToWorld(database)),
          world_(model::displayToWorld(database)),
          fromWorld_(world_.inverse()) {}

    const AcGeMatrix3d& fromWorld() const { return fromWorld_; }
    AcGePoint2d shown(const AcGePoint3d& user) const {
        const AcGePoint3d at = fromWorld_ * (user_ * user);
        return {at.x, at.y};
    }
    // The part of the world's plane that a part of the display lies over; all of it when the view
    // is not straight from above or below.
    Box2d onPlane(const Box2d& box) const {
        if (std::hypot(world_.entry[0][2], world_.entry[1][2]) > 1e-12) {
            return Box2d{0, 0, 0, 0}.grown(std::numeric_limits<double>::max());
        }
        Box2d plane;
        for (const double x : {box.left, box.right}) {
            for (const double y : {box.bottom, box.top}) {
                const AcGePoint3d at = world_ * AcGePoint3d(x, y, 0);
                plane.add(at.x, at.y);
            }
        }
        return plane.grown(1e-9 * std::max({1.0, std::abs(plane.left), std::abs(plane.top)}));
    }

  private:
    AcGeMatrix3d user_, world_, fromWorld_;
};

SelectionRegion regionOf(RegionMethod method, const Display& display,
                         DrawingSelection::Points points) {
    Loop loop;
    for (const AcGePoint3d& point : points)
        loop.push_back(display.shown(point));
    switch (method) {
        case RegionMethod::window:
        case RegionMethod::crossing:
            return SelectionRegion::rectangle(loop[0], loop[1]);
        case RegionMethod::fence:
            return SelectionRegion::fence(std::move(loop));
        default:
            return SelectionRegion::polygon(std::move(loop));
    }
}

size_t leastPoints(RegionMethod method) {
    const bool isPolygon =
        method == RegionMethod::windowPolygon || method == RegionMethod::crossingPolygon;
    return isPolygon ? 3 : 2;
}

void newestFirst(Ids& ids) {
    std::sort(ids.begin(), ids.end(), std::greater());
}

const AcDbGroup* groupNamed(AcDbDatabase& database, const std::wstring& name) {
    const auto* const groups = peek<AcDbDictionary>(database.groupDictionaryId());
    if (groups == nullptr) return nullptr;
    const model::Unguarded guard(*groups);
    for (auto each = groups->newIterator(); !each->done(); each->next()) {
        if (equalIgnoringCase(each->name(), name)) return peek<AcDbGroup>(each->objectId());
    }
    return nullptr;
}

Ids membersOf(const AcDbGroup& group) {
    const model::Unguarded guard(group);
    AcDbObjectIdArray members;
    group.allEntityIds(members);
    return {members.begin(), members.end()};
}

// The innermost entity of a reference, or of one inside it, that touches the region.
class NestedSearch {
  public:
    NestedSearch(const SelectionRegion& region, const AcGeMatrix3d& toDisplay)
        : region_(region), toDisplay_(toDisplay) {}

    bool search(const AcDbBlockReference& reference, const AcGeMatrix3d& toWorld,
                DrawingSelection::Nested& found) {
        constexpr size_t kDeepest = 32;
        if (found.containers.size() >= kDeepest) return false;
        const model::Unguarded guard(reference);
        for (const AcDbObjectId id : reference.attributeIds()) {
            const auto* const attribute = peek<AcDbEntity>(id);
            if (attribute != nullptr && touches(*attribute, toWorld)) {
                found.id = id;
                found.toWorld = toWorld;
                return true;
            }
        }
        const auto* const block = peek<AcDbBlockTableRecord>(reference.blockTableRecord());
        if (block == nullptr) return false;
        const AcGeMatrix3d inner = toWorld * reference.blockTransform();
        const std::vector<AcDbObjectId>& ids = block->entityIds();
        for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
            const auto* const entity = peek<AcDbEntity>(*id);
            if (entity == nullptr || !isShown(*entity) || !touches(*entity, inner)) continue;
            found.containers.insert(found.containers.begin(), reference.objectId());
            const auto* const nested = AcDbBlockReference::cast(entity);
            if (nested != nullptr && search(*nested, inner, found)) return true;
            found.id = *id;
            found.toWorld = inner;
            return true;
        }
        return false;
    }

  private:
    bool isShown(const AcDbEntity& entity) {
        const bool isZero = entity.layerId() == entity.database()->layerZero();
        const model::Unguarded guard(entity);
        return model::showsInReferences(entity) && !entity.isErased() &&
               entity.visibility() == AcDb::kVisible && (isZero || layers_(entity.layerId()));
    }
    bool touches(const AcDbEntity& entity, const AcGeMatrix3d& toWorld) {
        TouchTest test(region_, layers_);
        outline(entity, toDisplay_ * toWorld, test);
        return test.place().has_value();
    }

    const SelectionRegion& region_;
    const AcGeMatrix3d toDisplay_;
    LayersShown layers_;
};

}  // namespace

DrawingSelection::DrawingSelection(AcDbDatabase& database) : database_(database) {}
DrawingSelection::~DrawingSelection() = default;

SpaceIndex& DrawingSelection::index() {
    const AcDbObjectId space = database_.currentSpaceId();
    std::unique_ptr<SpaceIndex>& found = indexes_[space];
    if (!found) found = std::make_unique<SpaceIndex>(database_, space);
    return *found;
}

Ids DrawingSelection::inRegion(RegionMethod method, Points points) {
    if (points.size() < leastPoints(method)) return {};
    const Display display(database_);
    const SelectionRegion region = regionOf(method, display, points);
    const bool inside = method == RegionMethod::window || method == RegionMethod::windowPolygon;
    LayersShown layers;
    std::vector<std::pair<double, AcDbObjectId>> hits;
    index().find(display.onPlane(region.box()), [&](AcDbObjectId id) {
        const AcDbEntity& entity = *peek<AcDbEntity>(id);
        if (!isSelectable(entity, layers)) return;
        if (inside) {
            InsideTest test(region, layers);
            outline(entity, display.fromWorld(), test);
            if (test.passed()) hits.emplace_back(0, id);
        } else {
            TouchTest test(region, layers);
            outline(entity, display.fromWorld(), test);
            if (test.place()) hits.emplace_back(region.isFence() ? *test.place() : 0, id);
        }
    });
    std::sort(hits.begin(), hits.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second > b.second;
    });
    Ids ids;
    for (const auto& [place, id] : hits)
        ids.push_back(id);
    return ids;
}

Ids DrawingSelection::atPoint(const AcGePoint3d& point, double half) {
    const AcGeMatrix3d toUser =
        model::userToWorld(database_).inverse() * model::displayToWorld(database_);
    const AcGeVector3d diagonal = toUser * AcGeVector3d(half, half, 0);
    const AcGePoint3d corners[] = {point - diagonal, point + diagonal};
    return inRegion(RegionMethod::crossing, corners);
}

AcDbObjectId DrawingSelection::last() {
    LayersShown layers;
    AcDbObjectId latest;
    const auto* const space = peek<AcDbBlockTableRecord>(database_.currentSpaceId());
    if (space == nullptr) return latest;
    const std::vector<AcDbObjectId>& ids = space->entityIds();
    for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
        const auto* const entity = peek<AcDbEntity>(*id);
        if (entity != nullptr && isSelectable(*entity, layers)) return *id;
    }
    return latest;
}

Ids DrawingSelection::all() {
    Ids ids;
    const auto* const space = peek<AcDbBlockTableRecord>(database_.currentSpaceId());
    if (space == nullptr) return ids;
    std::map<AcDbObjectId, bool> layers;
    for (const AcDbObjectId id : space->entityIds()) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        const auto [layer, isNew] = layers.try_emplace(entity->layerId(), true);
        if (isNew) {
            const auto* const record = peek<AcDbLayerTableRecord>(layer->first);
            layer->second = record == nullptr || !(record->isFrozen() || record->isLocked());
        }
        if (layer->second) ids.push_back(id);
    }
    newestFirst(ids);
    return ids;
}

Ids DrawingSelection::everything() {
    Ids ids;
    const auto* const table = peek<AcDbBlockTable>(database_.blockTableId());
    if (table == nullptr) return ids;
    const model::Unguarded guard(*table);
    for (auto each = table->newIterator(); !each->done(); each->step()) {
        AcDbObjectId block;
        if (each->getRecordId(block) != Acad::eOk) continue;
        const auto* const record = peek<AcDbBlockTableRecord>(block);
        if (record == nullptr || !record->isLayout()) continue;
        for (const AcDbObjectId id : record->entityIds()) {
            if (!id.isErased()) ids.push_back(id);
        }
    }
    newestFirst(ids);
    return ids;
}

bool DrawingSelection::group(const std::wstring& name, Ids& ids) {
    const AcDbGroup* const found = groupNamed(database_, name);
    if (found == nullptr) return false;
    for (const AcDbObjectId id : membersOf(*found)) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity != nullptr && !entity->isErased() &&
            entity->ownerId() == database_.currentSpaceId()) {
            ids.push_back(id);
        }
    }
    return true;
}

// A group made by a program need not be known to its members.
Ids DrawingSelection::withGroups(AcDbObjectId id) {
    Ids ids{id};
    const auto* const groups = peek<AcDbDictionary>(database_.groupDictionaryId());
    if (groups == nullptr) return ids;
    const model::Unguarded guard(*groups);
    for (auto each = groups->newIterator(); !each->done(); each->next()) {
        const auto* const group = peek<AcDbGroup>(each->objectId());
        if (group == nullptr || !group->isSelectable()) continue;
        const Ids members = membersOf(*group);
        if (std::find(members.begin(), members.end(), id) == members.end()) continue;
        for (const AcDbObjectId member : members) {
            if (!member.isErased() && std::find(ids.begin(), ids.end(), member) == ids.end()) {
                ids.push_back(member);
            }
        }
    }
    return ids;
}

namespace {

Ids withoutErased(const Ids& all) {
    Ids ids;
    for (const AcDbObjectId id : all) {
        if (!id.isErased()) ids.push_back(id);
    }
    return ids;
}

}  // namespace

Ids DrawingSelection::previous() const {
    return withoutErased(previous_);
}

Ids DrawingSelection::implied() const {
    return withoutErased(implied_);
}

bool DrawingSelection::nestedAt(AcDbObjectId reference, const AcGePoint3d& point, double half,
                                Nested& found) {
    const auto* const whole = peek<AcDbBlockReference>(reference);
    if (whole == nullptr) return false;
    const Display display(database_);
    const AcGePoint2d at = display.shown(point);
    const SelectionRegion region =
        SelectionRegion::rectangle({at.x - half, at.y - half}, {at.x + half, at.y + half});
    return NestedSearch(region, display.fromWorld()).search(*whole, AcGeMatrix3d(), found);
}

bool DrawingSelection::isOnLockedLayer(AcDbObjectId id) {
    const auto* const entity = peek<AcDbEntity>(id);
    const auto* const layer =
        entity == nullptr ? nullptr : peek<AcDbLayerTableRecord>(entity->layerId());
    return layer != nullptr && layer->isLocked();
}

}  // namespace sg

#include "host/editor/selection/space_index.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/editor/selection/tile_order.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/db/block_reference.h"
#include "platform/db/curve.h"
#include "platform/db/leader.h"

namespace sg {
namespace {

using model::DatabaseState;
using model::DatabaseTable;
using model::peek;

using BlockBoxes = std::shared_ptr<model::MeasuringDraw::BlockBoxes>;

// Blocks are measured once for all of their references, whose boxes may be somewhat large then.
// Drawing changes nothing in an entity, though it is no const operation.
AcDbExtents reachOf(const AcDbEntity& entity, const BlockBoxes& boxes) {
    AcDbExtents reach;
    if (AcDbBlockReference::cast(&entity) != nullptr) {
        model::MeasuringDraw draw(boxes);
        const_cast<AcDbEntity&>(entity).worldDraw(&draw);
        return draw.extents();
    }
    return entity.getGeomExtents(reach) == Acad::eOk ? reach : AcDbExtents();
}

// Empty for what has no ends or shows nothing.
Box2d boxOf(const AcDbEntity& entity, const BlockBoxes& boxes) {
    const model::Unguarded guard(entity);
    const AcDbExtents reach = reachOf(entity, boxes);
    if (reach.isEmpty()) return {};
    const AcGePoint3d &low = reach.minPoint(), &high = reach.maxPoint();
    const double margin = 1e-9 * std::max({1.0, std::abs(low.x), std::abs(low.y), std::abs(high.x),
                                           std::abs(high.y)});
    return Box2d{low.x, low.y, high.x, high.y}.grown(margin);
}

// What it shows may follow from blocks, styles and so on.
bool isDependent(const AcDbEntity& entity) {
    return AcDbCurve::cast(&entity) == nullptr || AcDbLeader::cast(&entity) != nullptr;
}

bool isOpenForWrite(const AcDbObject& object) {
    return model::ObjectAccess::has(object, model::ObjectAccess::kOpenForWrite);
}

}  // namespace

SpaceIndex::SpaceIndex(AcDbDatabase& database, AcDbObjectId space)
    : database_(database), space_(space) {
    DatabaseState::of(database_).addListener(this);
}

SpaceIndex::~SpaceIndex() {
    DatabaseState::of(database_).removeListener(this);
}

void SpaceIndex::objectChanges(AcDbObjectId id) {
    if (!isMeasured_ || (!changed_.empty() && changed_.back() == id)) return;
    changed_.push_back(id);
    if (changed_.size() > 1000 + entries_.size()) {  // building anew costs less
        isMeasured_ = false;
        changed_.clear();
    }
}

// ---- Following ----------------------------------------------------------------------------------

const AcDbEntity* SpaceIndex::memberOf(AcDbObjectId id) const {
    const auto* const entity = peek<AcDbEntity>(id);
    const bool isHere = entity != nullptr && !entity->isErased() && entity->ownerId() == space_;
    return isHere ? entity : nullptr;
}

void SpaceIndex::measureAgain(AcDbObjectId id, const BlockBoxes& boxes) {
    const AcDbEntity* const entity = memberOf(id);
    if (entity == nullptr) return;
    const Box2d box = boxOf(*entity, boxes);
    loose_[id] = box;
    if (box.isEmpty()) endless_.insert(id);
    if (!isDependent(*entity)) return;
    const auto place = std::lower_bound(dependents_.begin(), dependents_.end(), id);
    if (place == dependents_.end() || *place != id) dependents_.insert(place, id);
}

void SpaceIndex::follow() {
    if (!isMeasured_) return measureAll();
    std::vector<AcDbObjectId> changed = std::exchange(changed_, {});
    std::sort(changed.begin(), changed.end());
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    const auto boxes = std::make_shared<model::MeasuringDraw::BlockBoxes>();
    bool othersChanged = false;  // what entities are shown by
    for (const AcDbObjectId id : changed) {
        const AcDbObject* object = DatabaseTable::objectOf(id);
        if (object == nullptr) continue;
        // Further changes within one open are not told.
        if (isOpenForWrite(*object)) changed_.push_back(id);
        // Parts of an entity count as the entity.
        while (peek<AcDbEntity>(object->ownerId()) != nullptr)
            object = DatabaseTable::objectOf(object->ownerId());
        if (object->ownerId() == space_) {
            measureAgain(object->objectId(), boxes);
        } else {
            const auto* const block = peek<AcDbBlockTableRecord>(object->ownerId());
            othersChanged = othersChanged || block == nullptr || !block->isLayout();
        }
    }
    if (othersChanged) {
        for (const AcDbObjectId id : dependents_)
            measureAgain(id, boxes);
    }
    if (loose_.size() > 256 + entries_.size() / 8) return measureAll();
    if (!isPacked_) pack();
}

void SpaceIndex::measureAll() {
    entries_.clear();
    order_.clear();
    levels_.clear();
    dependents_.clear();
    loose_.clear();
    endless_.clear();
    isMeasured_ = true;
    isPacked_ = false;
    const auto* const block = peek<AcDbBlockTableRecord>(space_);
    if (block == nullptr) return;
    const auto boxes = std::make_shared<model::MeasuringDraw::BlockBoxes>();
    entries_.reserve(block->entityIds().size());
    for (const AcDbObjectId id : block->entityIds()) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        if (isDependent(*entity)) dependents_.push_back(id);
        const Box2d box = boxOf(*entity, boxes);
        if (box.isEmpty()) {
            endless_.insert(id);
        } else {
            entries_.push_back({box, id});
        }
        if (isOpenForWrite(*entity)) changed_.push_back(id);
    }
    std::sort(dependents_.begin(), dependents_.end());
}

// ---- The tree -----------------------------------------------------------------------------------

void SpaceIndex::pack() {
    isPacked_ = true;
    std::vector<AcGePoint2d> middles;
    middles.reserve(entries_.size());
    for (const Entry& entry : entries_) {
        const Box2d& box = entry.box;
        middles.emplace_back((box.left + box.right) / 2, (box.bottom + box.top) / 2);
    }
    order_ = tileOrder(middles, kFanOut);

    const auto boxesAround = [](size_t count, const auto& boxOf) {
        std::vector<Box2d> level((count + kFanOut - 1) / kFanOut);
        for (size_t i = 0; i < count; ++i)
            level[i / kFanOut].add(boxOf(i));
        return level;
    };
    if (entries_.empty()) return;
    levels_.push_back(
        boxesAround(entries_.size(), [this](size_t i) { return entries_[order_[i]].box; }));
    while (levels_.back().size() > 1) {
        const std::vector<Box2d>& below = levels_.back();
        levels_.push_back(boxesAround(below.size(), [&](size_t i) { return below[i]; }));
    }
}

void SpaceIndex::findInTree(const Box2d& box, size_t level, size_t node, const Visit& visit) const {
    if (!levels_[level][node].meets(box)) return;
    const size_t first = node * kFanOut;
    if (level > 0) {
        const size_t end = std::min(first + kFanOut, levels_[level - 1].size());
        for (size_t child = first; child < end; ++child)
            findInTree(box, level - 1, child, visit);
        return;
    }
    const size_t end = std::min(first + kFanOut, order_.size());
    for (size_t i = first; i < end; ++i)
        findIn(entries_[order_[i]], box, visit);
}

// Those beside the tree are found there.
void SpaceIndex::findIn(const Entry& entry, const Box2d& box, const Visit& visit) const {
    if (!entry.box.meets(box) || loose_.contains(entry.id)) return;
    if (memberOf(entry.id) != nullptr) visit(entry.id);
}

void SpaceIndex::find(const Box2d& box, const Visit& visit) {
    follow();
    if (!isPacked_) {
        for (const Entry& entry : entries_)
            findIn(entry, box, visit);
    } else if (!levels_.empty()) {
        findInTree(box, levels_.size() - 1, 0, visit);
    }
    for (const auto& [id, own] : loose_) {
        if (!own.isEmpty() && own.meets(box) && memberOf(id) != nullptr) visit(id);
    }
    for (const AcDbObjectId id : endless_) {
        const auto beside = loose_.find(id);
        const bool isStill = beside == loose_.end() || beside->second.isEmpty();
        if (isStill && memberOf(id) != nullptr) visit(id);
    }
}

}  // namespace sg

#include "host/editor/selection/space_index.h"

#include <algorithm>
#include <cmath>

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/db/curve.h"
#include "platform/db/leader.h"

namespace sg {
namespace {

using model::DatabaseState;
using model::DatabaseTable;
using model::peek;

// Empty for what has no ends or shows nothing.
Box2d boxOf(const AcDbEntity& entity) {
    const model::Unguarded guard(entity);
    AcDbExtents reach;
    if (entity.getGeomExtents(reach) != Acad::eOk || reach.isEmpty()) return {};
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
    if (!isBuilt_ || (!changed_.empty() && changed_.back() == id)) return;
    changed_.push_back(id);
    if (changed_.size() > 1000 + entries_.size()) {  // building anew costs less
        isBuilt_ = false;
        changed_.clear();
    }
}

// ---- Following ----------------------------------------------------------------------------------

const AcDbEntity* SpaceIndex::memberOf(AcDbObjectId id) const {
    const auto* const entity = peek<AcDbEntity>(id);
    const bool isHere = entity != nullptr && !entity->isErased() && entity->ownerId() == space_;
    return isHere ? entity : nullptr;
}

void SpaceIndex::measureAgain(AcDbObjectId id) {
    const AcDbEntity* const entity = memberOf(id);
    if (entity == nullptr) return;
    const Box2d box = boxOf(*entity);
    loose_[id] = box;
    if (box.isEmpty()) endless_.insert(id);
    if (isDependent(*entity)) dependents_.insert(id);
}

void SpaceIndex::follow() {
    if (!isBuilt_) return build();
    std::vector<AcDbObjectId> changed = std::exchange(changed_, {});
    std::sort(changed.begin(), changed.end());
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
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
            measureAgain(object->objectId());
        } else {
            const auto* const block = peek<AcDbBlockTableRecord>(object->ownerId());
            othersChanged = othersChanged || block == nullptr || !block->isLayout();
        }
    }
    if (othersChanged) {
        for (const AcDbObjectId id : dependents_)
            measureAgain(id);
    }
    if (loose_.size() > 256 + entries_.size() / 8) build();
}

// ---- The tree -----------------------------------------------------------------------------------

// Packs it: slices of equal numbers from left to right, each ordered from bottom to top.
void SpaceIndex::build() {
    entries_.clear();
    levels_.clear();
    dependents_.clear();
    loose_.clear();
    endless_.clear();
    isBuilt_ = true;
    const auto* const block = peek<AcDbBlockTableRecord>(space_);
    if (block == nullptr) return;
    for (const AcDbObjectId id : block->entityIds()) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        if (isDependent(*entity)) dependents_.insert(id);
        const Box2d box = boxOf(*entity);
        if (box.isEmpty()) {
            endless_.insert(id);
        } else {
            entries_.push_back({box, id});
        }
        if (isOpenForWrite(*entity)) changed_.push_back(id);
    }

    const auto byX = [](const Entry& a, const Entry& b) {
        return a.box.left + a.box.right < b.box.left + b.box.right;
    };
    const auto byY = [](const Entry& a, const Entry& b) {
        return a.box.bottom + a.box.top < b.box.bottom + b.box.top;
    };
    std::sort(entries_.begin(), entries_.end(), byX);
    const double leaves = std::ceil(static_cast<double>(entries_.size()) / kFanOut);
    const size_t slice = kFanOut * static_cast<size_t>(std::ceil(std::sqrt(leaves)));
    for (size_t at = 0; at < entries_.size(); at += slice) {
        const auto first = entries_.begin() + static_cast<std::ptrdiff_t>(at);
        const auto count = std::min(slice, entries_.size() - at);
        std::sort(first, first + static_cast<std::ptrdiff_t>(count), byY);
    }

    std::vector<Box2d> below;
    for (const Entry& entry : entries_)
        below.push_back(entry.box);
    while (below.size() > 1 || (levels_.empty() && !below.empty())) {
        std::vector<Box2d> level((below.size() + kFanOut - 1) / kFanOut);
        for (size_t i = 0; i < below.size(); ++i)
            level[i / kFanOut].add(below[i]);
        levels_.push_back(level);
        below = std::move(level);
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
    const size_t end = std::min(first + kFanOut, entries_.size());
    for (size_t i = first; i < end; ++i) {
        const Entry& entry = entries_[i];
        if (!entry.box.meets(box) || loose_.contains(entry.id)) continue;
        if (memberOf(entry.id) != nullptr) visit(entry.id);
    }
}

void SpaceIndex::find(const Box2d& box, const Visit& visit) {
    follow();
    if (!levels_.empty()) findInTree(box, levels_.size() - 1, 0, visit);
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

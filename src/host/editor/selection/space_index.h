#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/export.h"
#include "host/editor/selection/region.h"
#include "host/model/core/change_listener.h"
#include "host/model/core/measuring_draw.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"

namespace sg {

// Finds the entities of one space by where they are: a tree of the boxes around them, on the
// world's XY plane. It hears of changes and follows when it is asked next; entities that have
// changed stand beside the tree until they are so many that it is built anew. The first question
// measures the entities and looks through them one by one; the second one makes the tree.
//
// The database must be open for as long as the index lives.
class SG_API SpaceIndex final : public model::ChangeListener {
  public:
    SpaceIndex(AcDbDatabase& database, AcDbObjectId space);
    ~SpaceIndex() override;
    SpaceIndex(const SpaceIndex&) = delete;
    SpaceIndex& operator=(const SpaceIndex&) = delete;

    using Visit = std::function<void(AcDbObjectId)>;
    // Calls `visit` once for each entity, erased ones left out, that may reach into the box: those
    // whose own boxes meet it, and those without ends. In no order. Boxes of turned references of
    // blocks may be too large.
    void find(const Box2d& box, const Visit& visit);

    void objectChanges(AcDbObjectId id) override;

  private:
    static constexpr size_t kFanOut = 16;
    using BlockBoxes = std::shared_ptr<model::MeasuringDraw::BlockBoxes>;

    struct Entry {
        Box2d box;
        AcDbObjectId id;
    };

    void follow();
    const AcDbEntity* memberOf(AcDbObjectId id) const;  // null for what is not, or erased
    void measureAll();
    void pack();
    void measureAgain(AcDbObjectId id, const BlockBoxes& boxes);
    void findInTree(const Box2d& box, size_t level, size_t node, const Visit& visit) const;
    void findIn(const Entry& entry, const Box2d& box, const Visit& visit) const;

    AcDbDatabase& database_;
    const AcDbObjectId space_;
    bool isMeasured_ = false;
    bool isPacked_ = false;
    std::vector<AcDbObjectId> changed_;  // heard of since it was asked last
    std::vector<Entry> entries_;
    std::vector<uint32_t> order_;  // packed: neighbours in the plane are neighbours here
    // The boxes around kFanOut entries of that order each, around kFanOut of those each, and so on
    // up to one.
    std::vector<std::vector<Box2d>> levels_;
    std::vector<AcDbObjectId> dependents_;  // whose boxes follow from other objects; in order
    std::unordered_map<AcDbObjectId, Box2d> loose_;  // those beside the tree
    std::unordered_set<AcDbObjectId> endless_;       // those without a box
};

}  // namespace sg

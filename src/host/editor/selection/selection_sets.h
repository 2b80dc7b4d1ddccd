#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/export.h"
#include "platform/db/object_id.h"
#include "platform/ge/point3d.h"

namespace sg {

// How an entity came into a selection set; `points` are in world coordinates: a pick's place, or
// the points of a window, polygon or fence.
struct SelectedBy {
    enum Method { other = 0, pick = 1, window = 2, crossing = 3, fence = 4 };
    Method method = other;
    std::vector<AcGePoint3d> points;
};

// Entities in an order, each once. Erased ones stay.
class SG_API SelectionSet {
  public:
    size_t size() const { return members_.size(); }
    AcDbObjectId at(size_t index) const { return members_[index].id; }
    bool has(AcDbObjectId id) const { return ids_.contains(id); }
    bool add(AcDbObjectId id) { return add(id, 0); }  // false: it is there already
    bool remove(AcDbObjectId id);                     // false: it is not there
    std::vector<AcDbObjectId> ids() const;

    // Adds what was found one way; answers how many were not there yet.
    size_t add(const std::vector<AcDbObjectId>& ids, SelectedBy how);
    const std::vector<SelectedBy>& methods() const { return methods_; }
    size_t methodAt(size_t index) const { return members_[index].method; }

  private:
    struct Member {
        AcDbObjectId id;
        size_t method;
    };
    bool add(AcDbObjectId id, size_t method);

    std::deque<Member> members_;  // from which the first goes as fast as the last
    std::unordered_set<AcDbObjectId> ids_;
    std::vector<SelectedBy> methods_{SelectedBy()};
};

// The selection sets of a host by their names, which are small numbers that no entity name equals.
class SG_API SelectionSets {
  public:
    uint64_t add(SelectionSet set);
    SelectionSet* find(uint64_t name);  // null for a name that stands for nothing
    bool free(uint64_t name);

    // LISP values that hold a set; with the last one it is freed.
    void retain(uint64_t name);
    void release(uint64_t name);

    size_t count() const { return sets_.size(); }

  private:
    struct Held {
        std::unique_ptr<SelectionSet> set;
        size_t holders = 0;
    };
    std::unordered_map<uint64_t, Held> sets_;
    uint64_t last_ = 0;
};

}  // namespace sg

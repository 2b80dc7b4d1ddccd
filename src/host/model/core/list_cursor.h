#pragma once

#include <cstddef>
#include <vector>

#include "platform/db/object_id.h"

namespace sg::model {

// A place in a list of objects that changes while it is walked: the object is known by its id, and
// by the place where it was seen last. One that has left the list leaves its place to those behind
// it. Ids that name no object are passed over.
class ListCursor {
  public:
    using Ids = std::vector<AcDbObjectId>;

    AcDbObjectId current() const { return current_; }  // null at the end
    bool done() const { return current_.isNull(); }

    // A null list is an empty one.
    void start(const Ids* ids, bool atBeginning, bool skipErased) {
        at_ = atBeginning ? 0 : size(ids) - 1;
        settle(ids, atBeginning ? 1 : -1, skipErased);
    }
    // `placeOf`: the place of an id in the list; negative when it is not there.
    template <class PlaceOf>
    void step(const Ids* ids, bool forward, bool skipErased, const PlaceOf& placeOf) {
        if (done()) return;
        const bool isThere = at_ < size(ids) && (*ids)[static_cast<size_t>(at_)] == current_;
        const ptrdiff_t place = isThere ? at_ : placeOf(current_);
        if (place >= 0) at_ = place;
        // Where it has left, those behind have moved up to its place.
        if (place >= 0 || !forward) at_ += forward ? 1 : -1;
        settle(ids, forward ? 1 : -1, skipErased);
    }
    void moveTo(ptrdiff_t place, AcDbObjectId id) {
        at_ = place;
        current_ = id;
    }

  private:
    static ptrdiff_t size(const Ids* ids) {
        return ids == nullptr ? 0 : static_cast<ptrdiff_t>(ids->size());
    }
    void settle(const Ids* ids, ptrdiff_t direction, bool skipErased) {
        current_.setNull();
        for (const ptrdiff_t end = size(ids); at_ >= 0 && at_ < end; at_ += direction) {
            const AcDbObjectId id = (*ids)[static_cast<size_t>(at_)];
            if (!id.isValid() || (skipErased && id.isErased())) continue;
            current_ = id;
            return;
        }
    }

    AcDbObjectId current_;
    ptrdiff_t at_ = 0;
};

}  // namespace sg::model

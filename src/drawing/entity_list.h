#pragma once

#include "platform/db/object_id.h"
#include "platform/lisp/resbuf.h"

namespace sg {

// A list of entity names that grows at its end, and becomes a call's result.
class EntityList {
  public:
    EntityList();
    ~EntityList() { acutRelRb(head_); }
    EntityList(const EntityList&) = delete;
    EntityList& operator=(const EntityList&) = delete;

    void add(const ads_name name);
    void add(AcDbObjectId id);  // nothing for an id without a name
    // Gives the list to the host; nothing may be added behind.
    void giveAsResult();

  private:
    resbuf* head_;
    resbuf* tail_;
};

}  // namespace sg

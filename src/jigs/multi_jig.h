#pragma once

#include "jigs/entity_list.h"
#include "platform/ed/jig.h"

namespace sg {

// A jig that drags several entities as one. Those that are in its list when it is destroyed are
// deleted with it.
class MultiJig : public AcEdJig {
  public:
    ~MultiJig() override;

    entityList& list() { return list_; }
    // The list. A message box complains when it has not been set.
    AcDbEntity* entity() const override;

  protected:
    // Calls `change` with each entity.
    template <class Class = AcDbEntity, class Change>
    void forEach(const Change& change) {
        for (void* const each : list_.entities()) {
            if (each != nullptr) change(*static_cast<Class*>(static_cast<AcDbEntity*>(each)));
        }
    }

  private:
    mutable entityList list_;  // drawing changes no entity, and yet takes it as one that may change
};

}  // namespace sg

#pragma once

#include <vector>

#include "host/editor/view/current_view.h"
#include "platform/ge/matrix3d.h"

namespace sg {

// What the commands of one drawing remember from one to the next.
struct CommandMemory {
    std::vector<CurrentView> views;     // before each ZOOM, for "Previous"
    std::vector<AcGeMatrix3d> systems;  // the same of UCS: to world coordinates
};

}  // namespace sg

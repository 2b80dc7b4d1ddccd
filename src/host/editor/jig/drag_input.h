#pragma once

#include <optional>
#include <string_view>

#include "platform/ge/point3d.h"

namespace sg {

// What a drag asks for, sample after sample. The texts are those of the jig that is dragged.
struct DragRequest {
    enum class Kind { point, angle, distance, text };
    Kind kind = Kind::point;
    std::wstring_view prompt;
    std::wstring_view keywords;            // as a program names them
    std::optional<AcGePoint3d> basePoint;  // where a rubber band starts, in user coordinates
    int cursor = -1;                       // of AcEdJig::CursorType
    int controls = 0;                      // of AcEdJig::UserInputControls
};

}  // namespace sg

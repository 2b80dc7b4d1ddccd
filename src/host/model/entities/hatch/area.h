#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/model/entities/hatch/loop.h"
#include "host/model/entities/hatch/pattern.h"

namespace sg::model {

// Which of the loops inside one another bound the area.
enum class HatchStyle : int16_t {
    Normal = 0,  // every second ring from the outside is filled
    Outer = 1,   // the outermost ring alone
    Ignore = 2,  // everything in the outermost loops
};

// A stretch of a pattern line; both ends are the same for a dot.
struct Dash {
    AcGePoint2d from, to;
};

// The area of a hatch. A point is inside when a line from it to the outside crosses the loops that
// count an odd number of times.
class HatchArea {
  public:
    HatchArea(const std::vector<HatchLoop>& loops, HatchStyle style);

    // The chains of pieces that bound it.
    const std::vector<std::vector<Piece>>& chains() const { return chains_; }

    // What shows of a family of lines, cut exactly at the boundary. Nothing where that would be
    // more than `most` stretches, and for lines that do not move on or whose dashes have no length.
    std::optional<std::vector<Dash>> dashes(const HatchLine& line, size_t most) const;

  private:
    std::vector<std::vector<Piece>> chains_;
};

}  // namespace sg::model

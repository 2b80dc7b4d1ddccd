#pragma once

#include <vector>

#include "base/export.h"
#include "host/editor/selection/region.h"
#include "platform/db/entity.h"
#include "platform/ge/matrix3d.h"

namespace sg {

// Takes the shapes that an entity is made of, seen on the display plane. Each operation answers
// true when no more are needed.
class OutlineSink {
  public:
    virtual ~OutlineSink() = default;
    virtual bool piece(const model::Piece& piece) = 0;
    // A filled area, by the even-odd rule; a text is the box around it.
    virtual bool area(const std::vector<Loop>& loops) = 0;
    // Whether entities of a layer inside a block show.
    virtual bool shows(AcDbObjectId layer) = 0;
};

// Gives all that an entity shows to the sink: curves as what they are, anything else as it draws
// itself, blocks through all their levels. `toDisplay` takes the world to the display plane. The
// entity need not be open.
SG_API void outline(const AcDbEntity& entity, const AcGeMatrix3d& toDisplay, OutlineSink& sink);

}  // namespace sg

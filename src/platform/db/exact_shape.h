#pragma once

#include <string>

#include "platform/db/entity.h"

// The exact shape of an entity that is more than what it draws, for programs that exchange shapes.
// A protocol extension: the module that brings a class of such entities adds one to its descriptor,
// and whoever wants a shape asks the entity's class for one.
class SG_API sgExactShapePE : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(sgExactShapePE)

    // The shape of an entity that is open for read, in world coordinates and drawing units: the
    // bytes in which Open CASCADE keeps shapes (its BinTools format), one compound of solids or
    // shells. False, and `shape` is unchanged, for an entity without one.
    virtual bool exactShape(const AcDbEntity* entity, std::string& shape) = 0;
};

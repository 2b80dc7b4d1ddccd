#pragma once

#include "base/export.h"
#include "platform/ge/matrix3d.h"

class AcDbDatabase;

namespace sg::model {

// What takes the coordinates of the current user coordinate system to the world's.
SG_API AcGeMatrix3d userToWorld(const AcDbDatabase& database);

// The same for the display of the current view: its origin is the view's target, z points at the
// eye, y upwards on the screen.
SG_API AcGeMatrix3d displayToWorld(const AcDbDatabase& database);

}  // namespace sg::model

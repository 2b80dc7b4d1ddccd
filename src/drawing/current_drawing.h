#pragma once

#include <string>

#include "platform/db/entity.h"
#include "platform/db/layer_table.h"
#include "platform/ge/point3d.h"

// Small operations on the current drawing that jigs, the leader and the fitting builders share. All
// of them run inside a LISP call or a callback of the host.
namespace sg {

// A quarter turn as the geometry helpers have it: short of the exact one, and so in every drawing
// that they have made.
inline constexpr double kQuarterTurn = 1.570796325;

// The database of the current document; null when no document is open.
AcDbDatabase* currentDatabase();

// Appends a new entity to model space. On true the caller still owes its close(). On false an alert
// has said why, and where the append itself failed the entity is deleted.
bool addToModelSpace(AcDbEntity* entity);
// The same, and closes the entity.
bool addToModelSpaceAndClose(AcDbEntity* entity);

// The block of this name, from the drawing or else from the file <name>.dwg on the support path,
// which is inserted. False, after the LISP function qnBlock-alertMissing was called with the name,
// when there is no such file; false when the file cannot be read or inserted.
bool findOrLoadBlock(const std::wstring& name, AcDbObjectId& id);

// False when the layer table has no such name.
bool getLayerId(const std::wstring& name, AcDbObjectId& id);

// From the user coordinate system to the world's.
AcGePoint3d convertToWCS(const AcGePoint3d& point);

// The point that lies from `point` in a direction of the XY plane; z stays.
AcGePoint3d polar(const AcGePoint3d& point, double angle, double distance);

// The angle of the way from one point to another on the XY plane, in [0, 2 pi).
double xyAngle(const AcGePoint3d& from, const AcGePoint3d& to);

}  // namespace sg

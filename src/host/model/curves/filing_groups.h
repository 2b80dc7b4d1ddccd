#pragma once

#include "platform/db/filers.h"
#include "platform/ge/vector3d.h"

// Groups that many entities have in common.
namespace sg::model {

// entget shows groups whose value is the default; files leave them out.
inline bool showsDefaults(const AcDbDxfFiler* filer) {
    return filer->filerType() == AcDb::kBagFiler || filer->includesDefaultValues();
}

inline void writeThickness(AcDbDxfFiler* filer, double thickness) {
    if (thickness != 0) filer->writeDouble(39, thickness);
}

inline void writeNormal(AcDbDxfFiler* filer, const AcGeVector3d& normal) {
    const bool upright = normal.x == 0 && normal.y == 0 && normal.z == 1;
    if (!upright || showsDefaults(filer)) filer->writeVector3d(210, normal);
}

}  // namespace sg::model

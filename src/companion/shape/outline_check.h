#pragma once

#include <span>

#include "platform/ge/point3d.h"

namespace sg::companion {

// Whether the closed chain of straight pieces, seen against the normal, touches itself nowhere.
bool isSimple(std::span<const AcGePoint3d> points, const AcGeVector3d& normal);

}  // namespace sg::companion

#pragma once

#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"
#include "platform/rx/array.h"

using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGeDoubleArray = AcArray<double>;

#pragma once

#include "platform/db/curve.h"

namespace sg::model {

// What getOffsetCurves answers for an ellipse or a spline: splines of degree 3 that stand off the
// curve by the distance to about a millionth of its size, without what comes nearer to it than
// that. eNonPlanarEntity, eInvalidInput where nothing is left.
Acad::ErrorStatus offsetSmoothly(const AcDbCurve& curve, double distance, AcDbVoidPtrArray& curves);

}  // namespace sg::model

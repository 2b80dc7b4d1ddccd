#pragma once

#include "host/model/curves/math/shape.h"
#include "platform/db/curve.h"

namespace sg::model {

// What the operations on curves of different classes need of each other.
struct CurveAccess {
    static bool shapeOf(const AcDbCurve& curve, CurveShape& shape) {
        return curve.subShape(shape) && !shape.spans.empty();
    }
};

}  // namespace sg::model

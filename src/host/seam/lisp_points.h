#pragma once

#include "host/lisp/interpreter.h"
#include "platform/ge/point3d.h"

namespace sg {

// Whether a value is a list of two or three numbers.
bool isPoint(lisp::Value value);
// A point, which must be one: else "bad argument type". One of two numbers has z 0.
AcGePoint3d pointArgument(lisp::Interpreter& in, lisp::Value value);
lisp::Value pointValue(lisp::Interpreter& in, const AcGePoint3d& point);

}  // namespace sg

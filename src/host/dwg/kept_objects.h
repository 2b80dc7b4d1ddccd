#pragma once

#include <memory>

#include "platform/db/object.h"

namespace sg::dwg {

// A new object of the class, in no database, that has read what a DWG file had of the proxy: the
// bits that the proxy keeps. What every object has goes over to it. Null, and the proxy is as it
// was, when the class cannot read them.
std::unique_ptr<AcDbObject> makeFromBits(const AcRxClass& descriptor, AcDbObject& proxy);

}  // namespace sg::dwg

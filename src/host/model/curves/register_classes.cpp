#include "host/model/curves/register_classes.h"

namespace sg::model {

void registerCurveClasses() {}

}  // namespace sg::model

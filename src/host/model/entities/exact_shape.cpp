#include "platform/db/exact_shape.h"

ACRX_NO_CONS_DEFINE_MEMBERS(sgExactShapePE, AcRxObject)

#include "host/model/entities/register_classes.h"

namespace sg::model {

void registerEntityClasses() {}

}  // namespace sg::model

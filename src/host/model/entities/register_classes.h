#pragma once

namespace sg::model {

// Registers the classes of entities that are no curves.
void registerEntityClasses();

}  // namespace sg::model

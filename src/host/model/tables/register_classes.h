#pragma once

namespace sg::model {

// Registers the classes of tables, dictionaries and the objects in them.
void registerTableClasses();

}  // namespace sg::model

#pragma once

namespace sg::model {

// Registers every class of the drawing database. Called when a host is made.
void registerDatabaseClasses();

// The classes of the core: objects, entities, blocks, proxies.
void registerCoreClasses();

}  // namespace sg::model

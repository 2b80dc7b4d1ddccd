#pragma once

namespace sg::model {

// Gives the classes that can be annotative their protocol extension, and takes it away.
void addAnnotativeExtensions();
void removeAnnotativeExtensions();

}  // namespace sg::model

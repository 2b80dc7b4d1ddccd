#pragma once

namespace sg::model {

// Gives the classes that can be annotative their protocol extension.
void addAnnotativeExtensions();

}  // namespace sg::model

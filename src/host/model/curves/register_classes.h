#pragma once

namespace sg::model {

// Registers the curves' classes.
void registerCurveClasses();

}  // namespace sg::model

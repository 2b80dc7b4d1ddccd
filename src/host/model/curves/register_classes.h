#pragma once

namespace sg::model {

// Registers the classes of curves, of points, and of what belongs to them. AcDbEntity comes before.
void registerCurveClasses();

}  // namespace sg::model

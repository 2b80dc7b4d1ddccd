#pragma once

#include "platform/ge/point3d.h"

// Lines of text as the LIST command prints them.
namespace sg::model {

void listPoint(const wchar_t* label, const AcGePoint3d& point);
void listNumber(const wchar_t* label, double value);
void listAngle(const wchar_t* label, double radians);  // printed in degrees
void listText(const wchar_t* label, const wchar_t* value);
void listThickness(double thickness);         // nothing when it is 0
void listNormal(const AcGeVector3d& normal);  // nothing when it is the world's Z axis

}  // namespace sg::model

#include "host/model/curves/listing.h"

#include <numbers>

#include "platform/ed/command_line.h"

namespace sg::model {

void listPoint(const wchar_t* label, const AcGePoint3d& point) {
    acutPrintf(L"%24s point, X=%10.4f  Y=%10.4f  Z=%10.4f\n", label, point.x, point.y, point.z);
}

void listNumber(const wchar_t* label, double value) {
    acutPrintf(L"%24s %10.4f\n", label, value);
}

void listAngle(const wchar_t* label, double radians) {
    acutPrintf(L"%24s %10.4f\n", label, radians * 180 / std::numbers::pi);
}

void listText(const wchar_t* label, const wchar_t* value) {
    acutPrintf(L"%24s %s\n", label, value);
}

void listThickness(double thickness) {
    if (thickness != 0) listNumber(L"thickness", thickness);
}

void listNormal(const AcGeVector3d& normal) {
    if (normal.x == 0 && normal.y == 0 && normal.z == 1) return;
    acutPrintf(L"%24s X=%10.4f  Y=%10.4f  Z=%10.4f\n", L"Extrusion direction relative to WCS:",
               normal.x, normal.y, normal.z);
}

}  // namespace sg::model

#include "host/model/curves/ray.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbRay, AcDbCurve, 0, 0, L"RAY", L"")

AcDbRay::AcDbRay() = default;
AcDbRay::AcDbRay(const AcGePoint3d& basePoint, const AcGeVector3d& direction)
    : EndlessLine(basePoint, direction) {}
AcDbRay::~AcDbRay() = default;

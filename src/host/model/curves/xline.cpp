#include "host/model/curves/xline.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbXline, AcDbCurve, 0, 0, L"XLINE", L"")

AcDbXline::AcDbXline() = default;
AcDbXline::AcDbXline(const AcGePoint3d& basePoint, const AcGeVector3d& direction)
    : EndlessLine(basePoint, direction) {}
AcDbXline::~AcDbXline() = default;

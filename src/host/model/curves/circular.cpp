#include "host/model/curves/circular.h"

#include <cmath>

#include "host/model/curves/filing_groups.h"

namespace sg::model {

bool CircleFields::transform(const AcGeMatrix3d& transform) {
    const PlanarTransform change(normal, transform);
    if (!change.keepsArcs(thickness)) return false;
    center = transform * center;
    radius *= change.scale;
    normal = change.normal;
    thickness *= change.thicknessScale;
    return true;
}

bool CircleFields::takeGroup(const FieldReader& field, AcGePoint3d& inPlane) {
    switch (field.code()) {
        case 10:
            inPlane = field.point();
            return true;
        case 39:
            thickness = field.real();
            return true;
        case 40:
            radius = std::abs(field.real());
            return true;
        case 210:
            setUnit(normal, field.vector());
            return true;
        default:
            return false;
    }
}

void writeCircle(AcDbDxfFiler* filer, const AcGePoint3d& center, double radius,
                 const AcGeVector3d& normal, double thickness) {
    filer->writeString(100, L"AcDbCircle");
    writeThickness(filer, thickness);
    filer->writePoint3d(10, AcGeMatrix3d::worldToPlane(normal) * center);
    filer->writeDouble(40, radius);
    writeNormal(filer, normal);
}

}  // namespace sg::model

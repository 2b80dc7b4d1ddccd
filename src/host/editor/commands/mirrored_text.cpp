#include "host/editor/commands/mirrored_text.h"

#include <cmath>

#include "platform/db/mtext.h"
#include "platform/db/text.h"

namespace sg::commands {
namespace {

// Along the lines of a text, and what they face; false for what is no text.
bool axesOf(const AcDbEntity& entity, AcGeVector3d& along, AcGeVector3d& normal) {
    if (const auto* const text = AcDbText::cast(&entity)) {
        normal = text->normal();
        const double angle = text->rotation();
        along =
            AcGeMatrix3d::planeToWorld(normal) * AcGeVector3d(std::cos(angle), std::sin(angle), 0);
        return true;
    }
    if (const auto* const text = AcDbMText::cast(&entity)) {
        normal = text->normal();
        along = text->direction();
        return true;
    }
    return false;
}

// From the left or from below, by the angle on its plane.
bool readsWell(const AcGeVector3d& along, const AcGeVector3d& normal) {
    const AcGeVector3d flat = AcGeMatrix3d::worldToPlane(normal) * along;
    constexpr double kTolerance = 1e-9;
    return flat.x > kTolerance || (flat.x > -kTolerance && flat.y > 0);
}

}  // namespace

AcGeMatrix3d readableMirroring(const AcDbEntity& entity, const AcGeMatrix3d& mirroring) {
    AcGeVector3d along, normal;
    AcDbExtents reach;
    if (!axesOf(entity, along, normal) || entity.getGeomExtents(reach) != Acad::eOk) {
        return mirroring;
    }
    const AcGePoint3d middle =
        mirroring * (reach.minPoint() + (reach.maxPoint() - reach.minPoint()) / 2);
    const AcGeVector3d turned = mirroring * along;
    // Turned over left to right it runs back; up and down it runs on.
    const bool runsOn = readsWell(turned, normal);
    const AcGeVector3d across = runsOn ? turned.crossProduct(normal) : turned;
    return AcGeMatrix3d::mirroring(middle, across.normal()) * mirroring;
}

}  // namespace sg::commands

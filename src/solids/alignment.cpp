#include "solids/alignment.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "platform/ge/matrix3d.h"

namespace sg {
namespace {

// A few units in the last place of 1.
constexpr double kCosineRounding = 1e-15;

// As coarse as the runs that programs draw.
AcGeTol alignmentTolerance() {
    AcGeTol tolerance;
    tolerance.setEqualVector(0.01);
    return tolerance;
}

// A round section has no sides of its own: those of both frames are laid into and square to the
// plane of the runs.
SectionFrame alignedToRound(SectionFrame& first, const SectionFrame& second,
                            const AcGeVector3d& axis) {
    SectionFrame target;
    target.x() = second.x();
    first.y() = axis;
    target.y() = first.y();
    first.z() = first.x().crossProduct(first.y());
    target.z() = target.x().crossProduct(target.y());
    first.y().normalize();
    first.z().normalize();
    target.y().normalize();
    target.z().normalize();
    return target;
}

SectionFrame turned(const SectionFrame& first, const SectionFrame& second,
                    const AcGeVector3d& axis) {
    const double angle = angleOfCosine(first.x().dotProduct(second.x()));
    const AcGeMatrix3d rotation = AcGeMatrix3d::rotation(angle, axis);
    SectionFrame target = first;
    for (AcGeVector3d& each : target.axes)
        each.transformBy(rotation);
    return target;
}

}  // namespace

double angleOfCosine(double cosine) {
    if (cosine > 1 - kCosineRounding) return 0;
    if (cosine < -1 + kCosineRounding) return std::numbers::pi;
    return std::acos(cosine);
}

double angleOfSine(double sine) {
    return std::asin(std::clamp(sine, -1.0, 1.0));
}

void alignFrames(SectionFrame& first, SectionFrame& second, const Profile& firstProfile,
                 Profile& secondProfile) {
    const AcGeVector3d axis = first.x().crossProduct(second.x());
    if (axis.isZeroLength()) return;
    const bool round = firstProfile.width == firstProfile.height && !firstProfile.rectangular;
    const SectionFrame target =
        round ? alignedToRound(first, second, axis) : turned(first, second, axis);

    const AcGeTol tolerance = alignmentTolerance();
    const auto meets = [&](const AcGeVector3d& axisOfSecond) {
        return target.y().isEqualTo(axisOfSecond, tolerance);
    };
    if (meets(second.y())) return;
    if (!meets(-second.y()) && (meets(second.z()) || meets(-second.z()))) {
        std::swap(secondProfile.width, secondProfile.height);
    }
    second = target;
}

double sizeChangeLength(const Profile& first, const Profile& second, double degrees) {
    const double change =
        std::max(std::abs(first.width - second.width), std::abs(first.height - second.height));
    const double length = change * 0.5 / std::tan(degrees * 3.14159265 / 180.0);
    if (first.rectangular == second.rectangular) return length;
    return std::max(length, std::max(first.width, first.height) * 0.5);
}

}  // namespace sg

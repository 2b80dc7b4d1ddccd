#include "solids/section_frame.h"

#include <cmath>

#include "drawing/current_drawing.h"
#include "platform/ge/point2d.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

AcGePoint3d convertedPoint(const AcGePoint3d& point, int32_t viewCode) {
    resbuf* const call = acutBuildList(RTSTR, L"convert_rp_dp", RTLB, RTREAL, point.x, RTREAL,
                                       point.y, RTREAL, point.z, RTLE, RTLONG, viewCode, 0);
    resbuf* result = nullptr;
    AcGePoint3d converted = point;
    if (acedInvoke(call, &result) == RTNORM && result != nullptr && result->restype == RT3DPOINT) {
        const ads_point& answer = result->resval.rpoint;
        converted.set(answer[0], answer[1], answer[2]);
    }
    acutRelRb(call);
    acutRelRb(result);
    return converted;
}

// From a reference point to the centre line, up the section.
AcGeVector3d verticalOffset(const DuctSection& section, const AcGeVector3d& up) {
    const double half = std::abs(section.height) * 0.5;
    if (section.justifyV == L"t") return -(up * half);
    if (section.justifyV == L"h" && section.hangFlag != 0) return up * (half + section.hangGap);
    if (section.justifyV == L"b" || section.justifyV == L"h") return up * half;
    return {};
}

AcGeVector3d horizontalOffset(const DuctSection& section, const AcGeVector3d& across) {
    const double half = std::abs(section.width) * 0.5;
    if (section.justifyH == L"r") return -(across * half);
    if (section.justifyH == L"l") return across * half;
    return {};
}

AcGePoint3d sectionPoint(const DuctSection& section, const AcGePoint3d& reference,
                         const SectionFrame* frame, bool convert) {
    const AcGePoint3d point = convert ? convertedPoint(reference, section.viewCode) : reference;
    if (frame == nullptr) return point;
    return point + verticalOffset(section, frame->z()) + horizontalOffset(section, frame->y());
}

}  // namespace

AcGePoint3d sectionHeadPoint(const DuctSection& section, const SectionFrame* frame, bool convert) {
    return sectionPoint(section, section.headPoint, frame, convert);
}

AcGePoint3d sectionTailPoint(const DuctSection& section, const SectionFrame* frame, bool convert) {
    return sectionPoint(section, section.tailPoint, frame, convert);
}

bool sectionIsVertical(const DuctSection& section) {
    if (section.verticalOverride == -1) return true;
    return AcGePoint2d(section.headPoint.x, section.headPoint.y) ==
           AcGePoint2d(section.tailPoint.x, section.tailPoint.y);
}

SectionFrame sectionFrame(const DuctSection& section, const DuctSection* next, bool convert) {
    const AcGePoint3d head = sectionHeadPoint(section, nullptr, convert);
    const AcGePoint3d tail = sectionTailPoint(section, nullptr, convert);
    SectionFrame frame;
    frame.x() = tail - head;
    if (!sectionIsVertical(section)) {
        const double left = xyAngle(head, tail) + kQuarterTurn;
        frame.y() = polar(head, left, 1.0) - head;
        frame.z() = frame.x().crossProduct(frame.y());
    } else if (next != nullptr && !sectionIsVertical(*next)) {
        frame.y() = sectionFrame(*next, nullptr, convert).x();
        frame.z() = frame.x().crossProduct(frame.y());
    } else {
        frame.z() = AcGeVector3d::kXAxis;
    }
    frame.y() = frame.z().crossProduct(frame.x());
    for (AcGeVector3d& axis : frame.axes)
        axis.normalize();
    return frame;
}

}  // namespace sg

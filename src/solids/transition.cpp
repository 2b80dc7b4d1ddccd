#include "solids/transition.h"

#include <cwchar>

#include "solids/alignment.h"

namespace sg {
namespace {

double transitionLength(const DuctSection& first, const DuctSection& second) {
    const double fixed = std::wcstod(first.fixedLength.c_str(), nullptr);
    if (fixed != 0.0) return fixed;
    return sizeChangeLength(sectionProfile(first), sectionProfile(second), kReducerAngle);
}

}  // namespace

Transition makeTransition(const DuctSection& first, const DuctSection& second,
                          const BuildOptions& options) {
    const SectionFrame frame1 = sectionFrame(first, &second, options.convert);
    const SectionFrame frame2 = sectionFrame(second, &first, options.convert);
    const AcGePoint3d start = sectionTailPoint(first, &frame1, options.convert);
    const AcGePoint3d end = sectionHeadPoint(second, &frame2, options.convert);
    const double length = transitionLength(first, second);
    if (!(length > 0.0)) return {};
    SolidPtr solid = newSolid();
    if (solid == nullptr) return {};
    // The frames may differ: the body then carries the twist.
    addTransition(*solid, {start, sectionProfile(first), frame1},
                  {end + frame2.x() * length, sectionProfile(second), frame2}, options.bodyOption);
    return {std::move(solid), length};
}

}  // namespace sg

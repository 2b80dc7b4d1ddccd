#include "bridge/call_guard.h"
#include "drawing/call_arguments.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"

namespace sg {
namespace {

constexpr double kShortestPiece = 0.01;

// The piece between the section's ends, its setbacks taken off; null when too little is left, or
// the solid cannot be built.
SolidPtr straightPiece(const DuctSection& section, const DuctSection* next,
                       const BuildOptions& options) {
    const SectionFrame frame = sectionFrame(section, next, options.convert);
    AcGePoint3d head = sectionHeadPoint(section, &frame, options.convert);
    AcGePoint3d tail = sectionTailPoint(section, &frame, options.convert);
    if (head.distanceTo(tail) < kShortestPiece) return nullptr;
    head += frame.x() * section.headSetback;
    tail -= frame.x() * section.tailSetback;
    if (head.distanceTo(tail) < kShortestPiece) return nullptr;

    const Profile profile = shapeProfile(section);
    SolidPtr solid = newSolid();
    const bool built =
        solid != nullptr &&
        addTransition(*solid, {head, profile, frame}, {tail, profile, frame}, options.bodyOption);
    return built ? std::move(solid) : nullptr;
}

}  // namespace

int getTripleCoord() {
    CallArguments arguments;
    DuctSection section, next;
    if (!nextSection(arguments.next, section)) return kLispWrongType;
    const bool hasNext = nextSection(arguments.next, next);
    const SectionFrame frame = sectionFrame(section, hasNext ? &next : nullptr, true);
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    beginResultList(head, tail);
    for (const AcGeVector3d& axis : frame.axes)
        appendPoint(tail, {axis.x, axis.y, axis.z});
    finishResultList(head, tail);
    return kLispOk;
}

int drawTripleCenter() {
    CallArguments arguments;
    BuildOptions options;
    DuctSection section, next;
    if (!nextBuildOptions(arguments.next, options) || !nextSection(arguments.next, section)) {
        return kLispWrongType;
    }
    const bool hasNext = nextSection(arguments.next, next);
    retEntity(addToDrawing(straightPiece(section, hasNext ? &next : nullptr, options)));
    return kLispOk;
}

}  // namespace sg

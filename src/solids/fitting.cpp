#include "solids/fitting.h"

#include "bridge/marshal_readers.h"
#include "drawing/current_drawing.h"
#include "platform/ed/command_line.h"

namespace sg {

SolidPtr newSolid() {
    SolidPtr solid(qn_hvacSolid::create());
    if (solid == nullptr) {
        acutPrintf(L"\nSolids need the module qn_qn-solid2017.dbx, which is not loaded.\n");
    }
    return solid;
}

AcDbObjectId addToDrawing(SolidPtr solid) {
    if (solid == nullptr) return {};
    qn_hvacSolid* const entity = solid.release();
    if (!addToModelSpace(entity)) return {};
    const AcDbObjectId id = entity->objectId();
    entity->close();
    return id;
}

bool nextBuildOptions(const resbuf*& position, BuildOptions& options) {
    return nextBool(position, options.convert) && nextInt(position, options.bodyOption);
}

bool addTransition(qn_hvacSolid& solid, const BodyEnd& head, const BodyEnd& tail, int bodyOption) {
    const Profile& a = head.profile;
    const Profile& b = tail.profile;
    return solid.addTransition(head.point, a.rectangular, a.width, a.height, tail.point,
                               b.rectangular, b.width, b.height, head.frame.data(),
                               tail.frame.data(), bodyOption);
}

bool subtractTransition(qn_hvacSolid& solid, const BodyEnd& head, const BodyEnd& tail,
                        int bodyOption) {
    const Profile& a = head.profile;
    const Profile& b = tail.profile;
    return solid.subtractTransition(head.point, a.rectangular, a.width, a.height, tail.point,
                                    b.rectangular, b.width, b.height, head.frame.data(),
                                    tail.frame.data(), bodyOption);
}

}  // namespace sg

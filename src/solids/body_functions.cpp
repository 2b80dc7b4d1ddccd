#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "solids/fitting.h"
#include "solids/lisp_functions.h"
#include "solids/transition.h"

namespace sg {
namespace {

// Adds what an explosion made; nil in the list stands for what could not be added.
void addFace(AcDbEntity* entity, PairList& result) {
    AcDbObjectId id;
    if (addToModelSpace(entity)) {
        id = entity->objectId();
        entity->close();
    }
    result.add(L"FACE", id);
}

}  // namespace

int drawTripleTransition() {
    CallArguments arguments;
    BuildOptions options;
    DuctSection first, second;
    if (!nextBuildOptions(arguments.next, options) || !nextSection(arguments.next, first) ||
        !nextSection(arguments.next, second)) {
        return kLispWrongType;
    }
    acedRetNil();
    Transition made = makeTransition(first, second, options);
    if (made.solid == nullptr) return kLispOk;
    PairList()
        .add(L"en1", addToDrawing(std::move(made.solid)))
        .add(L"dHeadLength", 0.0)
        .add(L"dTailLength", made.length)
        .finish();
    return kLispOk;
}

int drawTripleSkin() {
    CallArguments arguments;
    double amount = 0;
    if (!nextReal(arguments.next, amount) || !nextListBegin(arguments.next)) return kLispWrongType;
    AcGePoint3dArray points;
    for (AcGePoint3d point; nextPoint3d(arguments.next, point);)
        points.append(point);
    acedRetNil();
    SolidPtr solid = newSolid();
    if (solid == nullptr || !solid->addSkin(points, amount)) return kLispOk;
    PairList().add(L"en", addToDrawing(std::move(solid))).finish();
    return kLispOk;
}

int tripleUnion() {
    acedRetNil();
    CallArguments arguments;
    AcDbObjectId keptId, mergedId;
    if (!nextNamedObject(arguments.next, keptId) || !nextNamedObject(arguments.next, mergedId)) {
        return kLispWrongType;
    }
    const Opened<qn_hvacSolid> kept(keptId, AcDb::kForWrite);
    if (!kept) return kLispWrongType;
    const Opened<qn_hvacSolid> merged(mergedId, AcDb::kForWrite);
    if (!merged) return kLispWrongType;
    if (kept->doUnion(merged.get())) merged->erase();
    return kLispOk;
}

int explodeSolid() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextNamedObject(arguments.next, id)) return kLispWrongType;
    const Opened<qn_hvacSolid> solid(id, AcDb::kForWrite);
    if (!solid) return kLispBadData;
    AcDbVoidPtrArray faces;
    solid->explode(faces);
    PairList result;
    for (void* const face : faces)
        addFace(static_cast<AcDbEntity*>(face), result);
    result.finish();
    return kLispOk;
}

}  // namespace sg

#include <memory>
#include <string>
#include <vector>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "jigs/lisp_functions.h"
#include "jigs/multi_block_jig.h"
#include "jigs/multi_move_jig.h"
#include "jigs/multi_rotate_jig.h"

namespace sg {
namespace {

bool isNil(const resbuf* node) {
    return node != nullptr && node->restype == RTNIL;
}

// ---- Clones -------------------------------------------------------------------------------------

// The arguments of the functions that drag clones.
struct CloneArguments {
    std::wstring prompt;
    AcGePoint3d basePoint;
    AcDbVoidPtrArray clones;  // whoever takes them owns them
};

// Names are read up to the first thing that is none; what can't be opened is left out.
AcDbVoidPtrArray clonesOfNamed(const resbuf*& position) {
    AcDbVoidPtrArray clones{0, 8};
    ads_name name;
    while (nextEntityName(position, name)) {
        AcDbObjectId id;
        if (acdbGetObjectId(id, name) != Acad::eOk) continue;
        const Opened<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity) continue;
        if (auto* const clone = AcDbEntity::cast(entity->clone())) clones.append(clone);
    }
    return clones;
}

bool readCloneArguments(CloneArguments& arguments) {
    CallArguments given;
    if (!nextString(given.next, arguments.prompt) ||
        !nextPoint3d(given.next, arguments.basePoint)) {
        return false;
    }
    if (isNil(given.next)) return true;
    if (!nextListBegin(given.next)) return false;
    arguments.clones = clonesOfNamed(given.next);
    return true;
}

// Drags clones of entities; `answer` sets the result of a jig that was neither cancelled nor
// answered with Enter.
template <class Jig, class Answer>
int dragClones(const Answer& answer) {
    acedRetNil();
    CloneArguments arguments;
    if (!readCloneArguments(arguments)) return kLispWrongType;
    if (arguments.clones.isEmpty()) return kLispOk;
    Jig jig(arguments.prompt, arguments.basePoint);
    jig.list().setEntityList(arguments.clones);
    if (jig.run() && !jig.hasNullResponse()) answer(jig);
    return kLispOk;
}

// ---- Blocks -------------------------------------------------------------------------------------

struct BlockArguments {
    bool rotate = false;
    AcGeScale3d scale;
    bool hasBasePoint = false;
    AcGePoint3d basePoint;
    AcDbVoidPtrArray references{0, 8};  // whoever takes them owns them
};

// Names are read up to the first thing that is no string; a block that can't be found is left out.
AcDbVoidPtrArray referencesOfNamed(const resbuf*& position, const AcGeScale3d& scale) {
    AcDbVoidPtrArray references{0, 8};
    std::wstring name;
    while (nextString(position, name)) {
        AcDbObjectId block;
        if (!findOrLoadBlock(name, block)) continue;
        auto reference = std::make_unique<AcDbBlockReference>();
        reference->setBlockTableRecord(block);
        reference->setScaleFactors(scale);
        references.append(static_cast<AcDbEntity*>(reference.release()));
    }
    return references;
}

bool readBlockArguments(BlockArguments& arguments) {
    CallArguments given;
    double scale = 0;
    double scaleY = 0;
    if (!nextBool(given.next, arguments.rotate) || !nextReal(given.next, scale) ||
        !nextReal(given.next, scaleY)) {
        return false;
    }
    arguments.scale = AcGeScale3d(scale, scaleY, scale);
    arguments.hasBasePoint = nextPoint3d(given.next, arguments.basePoint);
    if (!arguments.hasBasePoint) {
        if (!isNil(given.next)) return false;
        skipNext(given.next);
    }
    arguments.references = referencesOfNamed(given.next, arguments.scale);
    return true;
}

}  // namespace

int dragMove() {
    return dragClones<MultiMoveJig>([](const MultiMoveJig& jig) { retPoint(jig.currentPoint()); });
}

int dragMultiRotation() {
    return dragClones<MultiRotateJig>(
        [](const MultiRotateJig& jig) { acedRetReal(jig.currentAngle()); });
}

int dragBlocks() {
    acedRetNil();
    BlockArguments arguments;
    if (!readBlockArguments(arguments)) return kLispWrongType;
    if (arguments.references.isEmpty()) return kLispOk;
    multiBlockJig jig(arguments.rotate);
    jig.list().setEntityList(arguments.references);
    if (arguments.hasBasePoint) jig.setBasePoint(arguments.basePoint);
    jig.run();
    return kLispOk;
}

}  // namespace sg

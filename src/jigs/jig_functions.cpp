#include <memory>
#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "jigs/line_jig.h"
#include "jigs/lisp_functions.h"
#include "jigs/rectangle_jig.h"
#include "jigs/rotate_jig.h"
#include "jigs/text_jig.h"

namespace sg {
namespace {

AcGePoint3d cornerOf(const AsdkRectangleJig& jig, int index) {
    if (index >= jig.vertices().length()) return {};
    return {jig.vertices()[index].x, jig.vertices()[index].y, 0};
}

void returnRectangle(const AsdkRectangleJig& jig) {
    const AcGePoint3d center = jig.center();
    resbuf *head, *tail;
    beginResultList(head, tail);
    appendPoint(tail, {center.x, center.y, 0});
    appendPoint(tail, cornerOf(jig, 0));
    appendPoint(tail, cornerOf(jig, 2));
    appendReal(tail, jig.rotation());
    appendInt(tail, jig.corner());
    finishResultList(head, tail);
}

void returnVertices(const AcDbPolyline& polyline) {
    resbuf *head, *tail;
    beginResultList(head, tail);
    for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
        AcGePoint3d vertex;
        polyline.getPointAt(i, vertex);
        appendPoint(tail, vertex);
    }
    finishResultList(head, tail);
}

// Something that may be missing, or nil in its place; false when something else stands there.
template <class Value>
bool nextOptional(const resbuf*& position, bool (*next)(const resbuf*&, Value&), Value& value,
                  bool& isThere) {
    isThere = next(position, value);
    if (isThere || position == nullptr) return true;
    return position->restype == RTNIL && skipNext(position);
}

}  // namespace

int dragRectangle() {
    acedRetNil();
    CallArguments arguments;
    double ySize = 0;
    double xSize = 0;
    int32_t corner = 0;
    bool rotate = false;
    if (!nextReal(arguments.next, ySize) || !nextReal(arguments.next, xSize) ||
        !nextInt(arguments.next, corner)) {
        return kLispWrongType;
    }
    // A missing flag is false; a list in its place is no flag.
    if (arguments.next != nullptr && !nextBool(arguments.next, rotate)) return kLispWrongType;
    AsdkRectangleJig jig(ySize, xSize, corner, rotate);
    if (jig.run()) returnRectangle(jig);
    return kLispOk;
}

int dragLine() {
    acedRetNil();
    CallArguments arguments;
    std::wstring layer;
    AcGePoint3d start;
    bool hasLayer = false;
    bool hasStart = false;
    const resbuf* const first = arguments.next;
    if (!nextOptional(arguments.next, nextString, layer, hasLayer)) arguments.next = first;
    if (!nextOptional(arguments.next, nextPoint3d, start, hasStart)) return kLispWrongType;
    LineJig jig;
    if (hasStart) jig.setStartPoint(start);
    if (jig.run(layer)) returnVertices(*jig.polyline());
    return kLispOk;
}

int dragText() {
    acedRetNil();
    CallArguments arguments;
    std::wstring contents, style, layer;
    double height = 0;
    if (!nextString(arguments.next, contents) || !nextString(arguments.next, style) ||
        !nextReal(arguments.next, height) || !nextString(arguments.next, layer)) {
        return kLispWrongType;
    }
    TextJig jig;
    if (!jig.setText(contents, style, height, layer)) return kLispOk;
    if (jig.run(L"", L"") != AcEdJig::kCancel) retPoint(jig.mtext()->location());
    return kLispOk;
}

int dragRotation() {
    acedRetNil();
    CallArguments arguments;
    AcDbObjectId entity;
    std::wstring prompt;
    if (!nextObjectId(arguments.next, entity) || !nextString(arguments.next, prompt)) {
        return kLispWrongType;
    }
    RotateJig jig(entity, prompt);
    if (!jig.run()) return kLispOk;
    if (jig.hasNullResponse()) {
        acedRetT();
    } else {
        acedRetReal(jig.angle());
    }
    return kLispOk;
}

}  // namespace sg

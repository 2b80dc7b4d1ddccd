#include "host/model/access/entity_parts.h"

#include <memory>

#include "platform/db/block_reference.h"
#include "platform/db/vertex_curve.h"

namespace sg::model {
namespace {

// Calls `visit` with each part until it answers true.
template <class Visit>
void findPart(const AcDbEntity& whole, const Visit& visit) {
    AcDbObjectId end;
    if (const auto* const reference = AcDbBlockReference::cast(&whole)) {
        for (const AcDbObjectId attribute : reference->attributeIds()) {
            if (!attribute.isErased() && visit(attribute)) return;
        }
        end = reference->sequenceEndId();
    } else if (const auto* const polyline = dynamic_cast<const VertexCurve*>(&whole)) {
        for (auto each = polyline->vertexIterator(); !each->done(); each->step()) {
            if (!each->objectId().isNull() && visit(each->objectId())) return;
        }
        end = polyline->sequenceEndId();
    }
    if (!end.isNull() && !end.isErased()) visit(end);
}

}  // namespace

AcDbObjectId firstPart(const AcDbEntity& whole) {
    AcDbObjectId first;
    findPart(whole, [&](AcDbObjectId part) {
        first = part;
        return true;
    });
    return first;
}

AcDbObjectId partAfter(const AcDbEntity& whole, AcDbObjectId part) {
    AcDbObjectId next;
    bool found = false;
    findPart(whole, [&](AcDbObjectId each) {
        if (found) next = each;
        const bool done = found;
        found = found || each == part;
        return done;
    });
    return next;
}

}  // namespace sg::model

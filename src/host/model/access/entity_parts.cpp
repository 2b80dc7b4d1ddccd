#include "host/model/access/entity_parts.h"

#include <algorithm>
#include <vector>

#include "host/model/core/object_access.h"
#include "platform/db/block_reference.h"
#include "platform/db/vertex_owner.h"

namespace sg::model {
namespace {

AcDbObjectId unlessErased(AcDbObjectId id) {
    return id.isNull() || id.isErased() ? AcDbObjectId() : id;
}

AcDbObjectId attributeAfter(const AcDbBlockReference& reference, AcDbObjectId attribute) {
    const std::vector<AcDbHardOwnershipId>& ids = reference.attributeIds();
    auto at = ids.begin();
    if (!attribute.isNull()) {
        at = std::find(ids.begin(), ids.end(), attribute);
        if (at != ids.end()) ++at;
    }
    at = std::find_if(at, ids.end(), [](AcDbObjectId id) { return !id.isErased(); });
    return at == ids.end() ? AcDbObjectId() : AcDbObjectId(*at);
}

// The part behind one of them, or the first for the null id.
AcDbObjectId nextPart(const AcDbEntity& whole, AcDbObjectId part) {
    AcDbObjectId next, end;
    if (const auto* const reference = AcDbBlockReference::cast(&whole)) {
        next = attributeAfter(*reference, part);
        end = reference->sequenceEndId();
    } else if (const auto* const polyline = dynamic_cast<const VertexList*>(&whole)) {
        next = polyline->vertexAfter(part);
        end = polyline->sequenceEndId();
    }
    if (!next.isNull()) return next;
    return part == end ? AcDbObjectId() : unlessErased(end);
}

}  // namespace

AcDbObjectId firstPart(const AcDbEntity& whole) {
    return nextPart(whole, AcDbObjectId());
}

AcDbObjectId partAfter(const AcDbEntity& whole, AcDbObjectId part) {
    const auto* const entity = peek<AcDbEntity>(part);
    const bool isPart = entity != nullptr && entity->ownerId() == whole.objectId();
    return isPart ? nextPart(whole, part) : AcDbObjectId();
}

}  // namespace sg::model

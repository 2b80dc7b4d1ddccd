#include "host/model/access/entity_parts.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/entities/mesh/mesh.h"
#include "platform/db/block_reference.h"
#include "platform/db/polyline_2d.h"

// The entities that a polyline or a block reference owns, as drawing files have them behind it.

namespace sg::model {

bool isPartOf(const AcRxClass* type, const AcDbEntity& whole) {
    const AcRxClass* const kind = whole.isA();
    if (kind->isDerivedFrom(AcDbBlockReference::desc())) {
        return type->isDerivedFrom(AcDbAttribute::desc());
    }
    if (kind == AcDb2dPolyline::desc()) return type == AcDb2dVertex::desc();
    if (kind == AcDb3dPolyline::desc()) return type == AcDb3dPolylineVertex::desc();
    if (kind == AcDbPolygonMesh::desc()) return type == AcDbPolygonMeshVertex::desc();
    return kind == AcDbPolyFaceMesh::desc() &&
           (type == AcDbPolyFaceMeshVertex::desc() || type == AcDbFaceRecord::desc());
}

bool ObjectAccess::adoptPart(AcDbEntity& whole, AcDbObjectId id) {
    const auto* const part = peek<AcDbEntity>(id);
    if (part == nullptr) return false;
    const bool isEnd = AcDbSequenceEnd::cast(part) != nullptr;
    if (auto* const proxy = AcDbProxyEntity::cast(&whole)) {
        auto& parts = proxy->data.parts;
        const bool hasEnd = !parts.empty() && peek<AcDbSequenceEnd>(parts.back()) != nullptr;
        if (!hasEnd || !isEnd) parts.emplace(parts.end() - (hasEnd ? 1 : 0), id);
        return true;
    }
    if (auto* const reference = AcDbBlockReference::cast(&whole)) {
        if (isEnd) {
            reference->sequenceEnd_ = id;
        } else if (AcDbAttribute::cast(part) != nullptr) {
            reference->attributes_.emplace_back(id);
        } else {
            return false;
        }
        return true;
    }
    auto* const list = dynamic_cast<VertexList*>(&whole);
    if (list == nullptr) return false;
    if (isEnd) {
        list->sequenceEnd_ = id;
        return true;
    }
    // Files take the vertices of one kind of mesh for those of the other.
    const bool isMeshVertex = dynamic_cast<const Mesh*>(&whole) != nullptr &&
                              dynamic_cast<const MeshVertex*>(part) != nullptr;
    if (!isMeshVertex && !isPartOf(part->isA(), whole)) return false;
    list->slots_.emplace_back().id = id;
    return true;
}

std::vector<AcDbObjectId> ObjectAccess::partsOf(const AcDbEntity& whole) {
    std::vector<AcDbObjectId> parts;
    AcDbObjectId end;
    if (const auto* const proxy = AcDbProxyEntity::cast(&whole)) {
        parts.assign(proxy->data.parts.begin(), proxy->data.parts.end());
    } else if (const auto* const reference = AcDbBlockReference::cast(&whole)) {
        parts.assign(reference->attributes_.begin(), reference->attributes_.end());
        end = reference->sequenceEnd_;
    } else if (const auto* const list = dynamic_cast<const VertexList*>(&whole)) {
        for (const VertexSlot& slot : list->slots_)
            parts.push_back(slot.id);
        end = list->sequenceEnd_;
    }
    std::erase_if(parts, [](AcDbObjectId id) { return id.isErased(); });
    if (!end.isErased()) parts.push_back(end);
    return parts;
}

}  // namespace sg::model

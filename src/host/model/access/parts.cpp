#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/sequence_end.h"
#include "platform/db/block_reference.h"
#include "platform/db/polyline_2d.h"

// The entities that a polyline or a block reference owns, as drawing files have them behind it.

namespace sg::model {
namespace {

bool isVertexOf(const AcDbEntity& whole, const AcDbEntity& part) {
    if (AcDb2dPolyline::cast(&whole) != nullptr) return AcDb2dVertex::cast(&part) != nullptr;
    return AcDb3dPolyline::cast(&whole) != nullptr && AcDb3dPolylineVertex::cast(&part) != nullptr;
}

}  // namespace

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
    if (AcDb2dPolyline::cast(&whole) == nullptr && AcDb3dPolyline::cast(&whole) == nullptr) {
        return false;
    }
    auto& curve = static_cast<VertexCurve&>(whole);
    if (isEnd) {
        curve.sequenceEnd_ = id;
        return true;
    }
    if (!isVertexOf(whole, *part)) return false;
    curve.slots_.emplace_back().id = id;
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
    } else if (AcDb2dPolyline::cast(&whole) != nullptr || AcDb3dPolyline::cast(&whole) != nullptr) {
        const auto& curve = static_cast<const VertexCurve&>(whole);
        for (const VertexSlot& slot : curve.slots_)
            parts.push_back(slot.id);
        end = curve.sequenceEnd_;
    }
    std::erase_if(parts, [](AcDbObjectId id) { return id.isErased(); });
    if (!end.isErased()) parts.push_back(end);
    return parts;
}

}  // namespace sg::model

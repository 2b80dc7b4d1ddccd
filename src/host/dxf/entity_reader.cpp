#include "host/dxf/entity_reader.h"

#include "base/encoding.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/filing.h"

namespace sg::dxf {
namespace {

using model::ObjectAccess;

constexpr int kHasParts = 66;
constexpr int kIsOnPaper = 67;

bool isPart(const ScannedObject& scanned) {
    return scanned.is("VERTEX") || scanned.is("ATTRIB") || scanned.is("SEQEND");
}

bool isSet(const Group* group) {
    return group != nullptr && group->whole != 0;
}

bool hasParts(const ScannedObject& scanned) {
    return scanned.is("POLYLINE") || (scanned.is("INSERT") && isSet(scanned.find(kHasParts)));
}

}  // namespace

AcDbObjectId EntityReader::spaceOf(const ScannedObject& scanned) {
    const AcDbObjectId owner = loader_.ownerOf(scanned);
    if (model::peek<AcDbBlockTableRecord>(owner) != nullptr) return owner;
    const model::DatabaseRoots& roots = reading_.state.roots;
    return isSet(scanned.find(kIsOnPaper)) ? roots.paperSpace : roots.modelSpace;
}

bool EntityReader::takePart(ScannedObject& scanned) {
    const bool isEnd = scanned.is("SEQEND");
    const size_t position = scanned.position;
    AcDbObject* const part = loader_.load(scanned, ObjectLoader::Role::entity, whole_->objectId());
    if (part != nullptr) {
        if (ObjectAccess::adoptPart(*whole_, part->objectId())) {
            loader_.checkLater(part->objectId(), position);
        } else {
            reading_.report.warn(
                position,
                fromUtf8(scanned.name()) + L" does not belong to what it follows and is left out");
            model::eraseObject(part->objectId());
        }
    }
    if (isEnd) whole_ = nullptr;
    return true;
}

void EntityReader::end(size_t position) {
    if (whole_ == nullptr) return;
    reading_.report.warn(position, L"a SEQEND is missing");
    whole_ = nullptr;
}

void EntityReader::take(ScannedObject& scanned, AcDbObjectId block) {
    if (isPart(scanned)) {
        if (whole_ != nullptr) {
            takePart(scanned);
            return;
        }
        reading_.report.warn(scanned.position,
                             fromUtf8(scanned.name()) + L" without what it belongs to is left out");
        return;
    }
    end(scanned.position);
    const bool isWhole = hasParts(scanned);
    if (block.isNull()) block = spaceOf(scanned);
    AcDbObject* const object = loader_.load(scanned, ObjectLoader::Role::entity, block);
    if (object == nullptr) return;
    const auto* const record = model::peek<AcDbBlockTableRecord>(block);
    ObjectAccess::contents(*record).append(object->objectId());
    if (isWhole) whole_ = static_cast<AcDbEntity*>(object);
    // Entities on paper say of which layout they are, which is read later.
    const bool isOnPaper = record->isLayout() && block != reading_.state.roots.modelSpace;
    if (isWhole || isOnPaper) {
        loader_.checkLater(object->objectId(), scanned.position);
    } else {
        loader_.keepForm(*object, scanned);
    }
}

}  // namespace sg::dxf

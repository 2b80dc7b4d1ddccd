#include "host/model/access/object_changer.h"

#include <string>

#include "base/text.h"
#include "host/model/access/block_cycles.h"
#include "host/model/access/entity_maker.h"
#include "host/model/access/group_checks.h"
#include "host/model/core/database_state.h"
#include "host/model/core/list_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "platform/db/block_reference.h"

namespace sg::model {
namespace {

bool read(AcDbObject& object, const resbuf* groups) {
    ListReader reader(groups, object.database());
    return object.dxfIn(&reader) == Acad::eOk;
}

bool isOfAnotherKind(const AcDbObject& object, const resbuf* groups) {
    const resbuf* const type = findGroup(groups, 0);
    return type != nullptr && type->resval.rstring != nullptr &&
           !equalIgnoringCase(dxfNameOf(object), type->resval.rstring);
}

// A reference that has come to show the block in which it stands.
bool showsItself(const AcDbObject& object) {
    const auto* const reference = AcDbBlockReference::cast(&object);
    return reference != nullptr && showsBlock(reference->blockTableRecord(), reference->ownerId());
}

bool changeEntity(AcDbEntity& entity, const resbuf* groups) {
    NeededLayer layer(*entity.database(), groups);
    if (!read(entity, groups) || showsItself(entity)) return false;
    layer.keep();
    return true;
}

bool hasFixedName(const AcDbSymbolTableRecord& record) {
    const DatabaseRoots& roots = DatabaseState::of(*record.database()).roots;
    for (const AcDbObjectId fixed :
         {roots.modelSpace, roots.paperSpace, roots.layerZero, roots.continuousLinetype,
          roots.byLayerLinetype, roots.byBlockLinetype}) {
        if (record.objectId() == fixed) return true;
    }
    return false;
}

// A record reads its name as it stands; whether the table takes it is asked afterwards.
bool changeRecord(AcDbSymbolTableRecord& record, const resbuf* groups) {
    const std::wstring before = record.name();
    const bool isRead = read(record, groups);
    const std::wstring after = record.name();
    if (after == before) return isRead;
    ObjectAccess::setName(record, before);
    return isRead && !hasFixedName(record) && record.setName(after.c_str()) == Acad::eOk;
}

// A dictionary that a list has given to the object belongs to it from then on. False for what is
// no dictionary, and for one that belongs to something else.
bool ownExtensionDictionary(const AcDbObject& object) {
    AcDbDictionary* dictionary = nullptr;
    if (acdbOpenObject(dictionary, object.extensionDictionary(), AcDb::kForWrite) != Acad::eOk) {
        return false;
    }
    const AcDbObjectId root = object.database()->namedObjectsDictionaryId();
    const AcDbObjectId owner = dictionary->ownerId();
    const bool isFree = owner.isNull() && dictionary->objectId() != root;
    if (isFree) dictionary->setOwnerId(object.objectId());
    dictionary->close();
    return isFree || owner == object.objectId();
}

}  // namespace

bool changeObject(AcDbObject& object, const resbuf* groups) {
    if (isOfAnotherKind(object, groups) || !hasValidValues(object, groups, *object.database())) {
        return false;
    }
    const AcDbObjectId dictionary = object.extensionDictionary();
    bool changed = false;
    if (auto* const entity = AcDbEntity::cast(&object)) {
        changed = changeEntity(*entity, groups);
    } else if (auto* const record = AcDbSymbolTableRecord::cast(&object)) {
        changed = changeRecord(*record, groups);
    } else {
        changed = read(object, groups);
    }
    const AcDbObjectId given = object.extensionDictionary();
    if (!changed || given == dictionary || given.isNull()) return changed;
    return ownExtensionDictionary(object);
}

}  // namespace sg::model

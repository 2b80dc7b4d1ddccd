#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/db/database.h"
#include "platform/db/group.h"
#include "platform/db/sortents.h"

namespace sg {
namespace {

Opened<AcDbDictionary> openGroups(AcDb::OpenMode mode) {
    AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
    return {database == nullptr ? AcDbObjectId() : database->groupDictionaryId(), mode};
}

// A new group of this name; null when it cannot be made.
AcDbObjectId createGroup(AcDbDictionary& groups, const std::wstring& name, bool selectable) {
    if (groups.upgradeOpen() != Acad::eOk) return {};
    auto* const group = new AcDbGroup;
    AcDbObjectId id;
    if (groups.setAt(name.c_str(), group, id) != Acad::eOk) {
        delete group;
        return {};
    }
    group->setSelectable(selectable);
    group->close();
    return id;
}

}  // namespace

int getGroup() {
    CallArguments arguments;
    std::wstring name;
    bool create = false, selectable = false;
    if (!nextString(arguments.next, name) || !nextBool(arguments.next, create) ||
        !nextBool(arguments.next, selectable)) {
        return kLispWrongType;
    }
    acedRetNil();
    const Opened<AcDbDictionary> groups = openGroups(AcDb::kForRead);
    if (!groups) return kLispOk;
    AcDbObjectId id;
    if (groups->getAt(name.c_str(), id) != Acad::eOk && create) {
        id = createGroup(*groups, name, selectable);
    }
    if (!id.isNull()) retEntity(id);
    return kLispOk;
}

int setGroupSelectable() {
    CallArguments arguments;
    std::wstring name;
    bool selectable = false;
    if (!nextString(arguments.next, name) || !nextBool(arguments.next, selectable)) {
        return kLispWrongType;
    }
    acedRetNil();
    const Opened<AcDbDictionary> groups = openGroups(AcDb::kForWrite);
    AcDbGroup* group = nullptr;
    if (!groups || groups->getAt(name.c_str(), group, AcDb::kForWrite) != Acad::eOk) {
        return kLispOk;
    }
    group->setSelectable(selectable);
    group->close();
    acedRetT();
    return kLispOk;
}

int sendToBack() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    acedRetNil();
    AcDbObjectId owner;
    {
        const Opened<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity) return kLispOk;
        owner = entity->ownerId();
    }
    if (owner == AcDbObjectId::kNull) return kLispOk;
    const Opened<AcDbBlockTableRecord> block(owner, AcDb::kForRead);
    AcDbSortentsTable* order = nullptr;
    if (!block || block->getSortentsTable(order, AcDb::kForWrite, false) != Acad::eOk) {
        return kLispOk;
    }
    AcDbObjectIdArray entities;
    entities.append(id);
    order->moveToBottom(entities);
    order->close();
    acedRetT();
    return kLispOk;
}

}  // namespace sg

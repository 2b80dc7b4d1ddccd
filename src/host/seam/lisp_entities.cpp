#include <algorithm>
#include <vector>

#include "host/editor/program_drawing.h"
#include "host/lisp/functions/list_builder.h"
#include "host/model/access/entity_parts.h"
#include "host/model/access/object_changer.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/references.h"
#include "host/seam/entity_lists.h"
#include "host/seam/host.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "platform/db/database.h"

// AutoLISP's functions on entities.

namespace sg {

Document& requireDocument(lisp::Interpreter& in) {
    Document* const document = Host::the().documents().current();
    if (document == nullptr) in.fail(L"no drawing is open");
    return *document;
}

AcDbDatabase& requireDatabase(lisp::Interpreter& in) {
    return *requireDocument(in).database();
}

namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ResbufList;
using lisp::Value;
using model::EntityMaker;

// ---- What an object is ------------------------------------------------------------------------

// (entget name [applications])
Value fnEntGet(Interpreter& in, Args a) {
    const AcDbObjectId id = entityArgument(in, a[0]);
    std::vector<std::wstring> applications;
    for (Value rest = in.checkList(a.get(1)); rest.isCons(); rest = rest.asCons()->cdr)
        applications.push_back(in.str(rest.asCons()->car));
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForRead) != Acad::eOk) return Value::nil();
    model::ListWriter writer(object->database(), std::move(applications));
    const Acad::ErrorStatus status = object->dxfOut(&writer);
    object->close();
    return status == Acad::eOk ? groupsToList(in, writer) : Value::nil();
}

// (entmod list): the list, or nil and nothing has changed.
Value fnEntMod(Interpreter& in, Args a) {
    const ResbufList groups = listToGroups(in, a[0]);
    const resbuf* const name = model::findGroup(groups.get(), -1);
    if (name == nullptr) return Value::nil();
    AcDbObjectId id;
    AcDbObject* object = nullptr;
    acdbGetObjectId(id, name->resval.rlname);
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) return Value::nil();
    if (!model::changeObject(*object, groups.get())) {
        object->cancel();
        return Value::nil();
    }
    object->close();
    return a[0];
}

Value fnEntUpd(Interpreter& in, Args a) {
    return entityArgument(in, a[0]).isErased() ? Value::nil() : a[0];
}

// ---- Making and erasing -------------------------------------------------------------------------

EntityMaker::Result make(Interpreter& in, Args a, bool objects) {
    EntityMaker& maker = requireDocument(in).programs().maker;
    if (!a.has(0)) {
        maker.reset();
        return {};
    }
    const ResbufList groups = listToGroups(in, a[0]);
    return maker.make(groups.get(), objects);
}

// (entmake [list]): the list, at a block's end the block's name.
Value fnEntMake(Interpreter& in, Args a) {
    const EntityMaker::Result result = make(in, a, false);
    if (!result.made) return Value::nil();
    return result.blockName.empty() ? a[0] : in.string(result.blockName);
}

// (entmakex [list]): the name of what is complete, else the list.
Value fnEntMakeX(Interpreter& in, Args a) {
    const EntityMaker::Result result = make(in, a, true);
    if (!result.made) return Value::nil();
    return result.id.isNull() ? a[0] : entityName(result.id);
}

bool isDrawingsOwn(const AcDbObject& object) {
    const auto* const dictionary = model::peek<AcDbDictionary>(object.ownerId());
    std::wstring key;
    if (dictionary == nullptr) return false;
    const model::Unguarded guard(*dictionary);
    return dictionary->nameAt(object.objectId(), key) == Acad::eOk &&
           isNeededEntry(*dictionary, key);
}

// What entdel works on: the main entities of a block, and what programs keep in dictionaries.
bool isDeletable(const AcDbObject& object) {
    if (AcDbEntity::cast(&object) != nullptr) {
        return model::peek<AcDbBlockTableRecord>(object.ownerId()) != nullptr &&
               AcDbBlockBegin::cast(&object) == nullptr && AcDbBlockEnd::cast(&object) == nullptr;
    }
    return model::peek<AcDbDictionary>(object.ownerId()) != nullptr &&
           AcDbLayout::cast(&object) == nullptr && !isDrawingsOwn(object);
}

// (entdel name): erases an entity or an object of a dictionary, or brings it back.
Value fnEntDel(Interpreter& in, Args a) {
    const AcDbObjectId id = entityArgument(in, a[0]);
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite, true) != Acad::eOk) return Value::nil();
    const bool done = isDeletable(*object) && object->erase(!object->isErased()) == Acad::eOk;
    object->close();
    return done ? a[0] : Value::nil();
}

// ---- Walking ------------------------------------------------------------------------------------

struct Tab {
    int32_t order;
    AcDbObjectId space;
    std::wstring name;
};

// The layouts in the order of their tabs: the model first.
std::vector<Tab> tabs(AcDbDatabase& database) {
    std::vector<Tab> found;
    AcDbDictionary* layouts = nullptr;
    if (database.getLayoutDictionary(layouts, AcDb::kForRead) == Acad::eOk) {
        for (auto each = layouts->newIterator(); !each->done(); each->next()) {
            AcDbLayout* layout = nullptr;
            if (acdbOpenObject(layout, each->objectId()) != Acad::eOk) continue;
            found.push_back(
                {layout->getTabOrder(), layout->getBlockTableRecordId(), layout->getLayoutName()});
            layout->close();
        }
        layouts->close();
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Tab& a, const Tab& b) { return a.order < b.order; });
    return found;
}

std::vector<AcDbObjectId> spaces(AcDbDatabase& database) {
    std::vector<AcDbObjectId> ids;
    for (const Tab& tab : tabs(database))
        ids.push_back(tab.space);
    if (ids.empty()) ids.push_back(database.modelSpaceId());
    return ids;
}

AcDbObjectId firstIn(AcDbDatabase& database, size_t space) {
    const std::vector<AcDbObjectId> all = spaces(database);
    for (; space < all.size(); ++space) {
        const auto* const block = model::peek<AcDbBlockTableRecord>(all[space]);
        if (block == nullptr) continue;
        const AcDbObjectId first = model::entityAfter(*block, AcDbObjectId());
        if (!first.isNull()) return first;
    }
    return {};
}

// The main entity behind one of a block; behind the last of a space that of the next space.
AcDbObjectId mainAfter(const AcDbBlockTableRecord& block, AcDbObjectId id) {
    const AcDbObjectId next = model::entityAfter(block, id);
    if (!next.isNull() || !block.isLayout()) return next;
    AcDbDatabase& database = *block.database();
    const std::vector<AcDbObjectId> all = spaces(database);
    const auto at = std::find(all.begin(), all.end(), block.objectId());
    return at == all.end() ? AcDbObjectId()
                           : firstIn(database, static_cast<size_t>(at - all.begin()) + 1);
}

AcDbObjectId entityAfter(AcDbObjectId id) {
    const AcDbEntity* const entity = model::peek<AcDbEntity>(id);
    if (entity == nullptr) return {};
    const AcDbObjectId part = model::firstPart(*entity);
    if (!part.isNull()) return part;
    const AcDbObjectId owner = entity->ownerId();
    if (const auto* const block = model::peek<AcDbBlockTableRecord>(owner)) {
        const bool isBegin = AcDbBlockBegin::cast(entity) != nullptr;
        return isBegin ? model::entityAfter(*block, AcDbObjectId()) : mainAfter(*block, id);
    }
    const AcDbEntity* const whole = model::peek<AcDbEntity>(owner);
    if (whole == nullptr) return {};
    const AcDbObjectId sibling = model::partAfter(*whole, id);
    if (!sibling.isNull()) return sibling;
    const auto* const block = model::peek<AcDbBlockTableRecord>(whole->ownerId());
    return block == nullptr ? AcDbObjectId() : mainAfter(*block, owner);
}

// (entnext [name])
Value fnEntNext(Interpreter& in, Args a) {
    AcDbDatabase& database = requireDatabase(in);
    if (!a.get(0)) return entityName(firstIn(database, 0));
    return entityName(entityAfter(entityArgument(in, a[0])));
}

// The latest of the spaces' last entities.
Value fnEntLast(Interpreter& in, Args) {
    AcDbObjectId latest;
    for (const AcDbObjectId space : spaces(requireDatabase(in))) {
        const auto* const block = model::peek<AcDbBlockTableRecord>(space);
        if (block == nullptr) continue;
        const AcDbObjectId last = model::lastEntity(*block);
        if (latest.isNull() || last.handle() > latest.handle()) latest = last;
    }
    return entityName(latest);
}

// (handent handle)
Value fnHandEnt(Interpreter& in, Args a) {
    const AcDbHandle handle(in.str(a[0]).c_str());
    AcDbObjectId id;
    if (requireDatabase(in).getAcDbObjectId(id, false, handle) != Acad::eOk || !id.isResident()) {
        return Value::nil();
    }
    return entityName(id);
}

// ---- Extended data ------------------------------------------------------------------------------

constexpr int32_t kMostExtendedData = 16383;

int32_t bytesOfExtendedData(AcDbObjectId id) {
    const AcDbObject* const object = model::DatabaseTable::objectOf(id);
    const model::Extras* const extras =
        object == nullptr ? nullptr : model::ObjectAccess::extras(*object);
    return extras == nullptr ? 0 : static_cast<int32_t>(extras->extendedData.fileBytes());
}

// (xdroom name): what is left for the entity's extended data, in bytes.
Value fnXdRoom(Interpreter& in, Args a) {
    const AcDbObjectId id = entityArgument(in, a[0]);
    if (id.isErased()) return Value::nil();
    return Value::integer(kMostExtendedData - bytesOfExtendedData(id));
}

// (xdsize list): what the list, or each of its applications, takes, in bytes.
Value fnXdSize(Interpreter& in, Args a) {
    const Value list = in.checkList(a[0]);
    const bool hasMark = list.isCons() && list.asCons()->car.isInt();
    const Value wrapped = hasMark ? list : in.cons(Value::integer(-3), list);
    in.push(wrapped);
    const Value whole = in.cons(wrapped, Value::nil());
    in.push(whole);
    const ResbufList groups = listToGroups(in, whole);
    model::GroupData data;
    for (const resbuf* group = groups->rbnext; group != nullptr; group = group->rbnext)
        data.append(*group);
    return Value::integer(static_cast<int32_t>(data.fileBytes()));
}

// (regapp name): the name, or nil when the application is there already.
Value fnRegApp(Interpreter& in, Args a) {
    AcDbDatabase& database = requireDatabase(in);
    const std::wstring name = in.str(a[0]);
    AcDbSymbolTable* table = nullptr;
    if (acdbOpenObject(table, database.regAppTableId()) != Acad::eOk) return Value::nil();
    const bool known = table->has(name.c_str());
    table->close();
    if (known) return Value::nil();
    return model::registerApplication(database, name.c_str()) ? a[0] : Value::nil();
}

// (layoutlist): the names of the sheets.
Value fnLayoutList(Interpreter& in, Args) {
    AcDbDatabase& database = requireDatabase(in);
    lisp::ListBuilder names(in);
    for (const Tab& tab : tabs(database)) {
        if (tab.space != database.modelSpaceId()) names.add(in.string(tab.name));
    }
    return names.list();
}

constexpr FunctionRow kRows[] = {
    {L"entget", fnEntGet, 1, 2},         {L"entmod", fnEntMod, 1, 1},
    {L"entupd", fnEntUpd, 1, 1},         {L"entmake", fnEntMake, 0, 1},
    {L"entmakex", fnEntMakeX, 0, 1},     {L"entdel", fnEntDel, 1, 1},
    {L"entnext", fnEntNext, 0, 1},       {L"entlast", fnEntLast, 0, 0},
    {L"handent", fnHandEnt, 1, 1},       {L"regapp", fnRegApp, 1, 1},
    {L"xdroom", fnXdRoom, 1, 1},         {L"xdsize", fnXdSize, 1, 1},
    {L"layoutlist", fnLayoutList, 0, 0},
};

}  // namespace

std::span<const FunctionRow> entityFunctions() {
    return kRows;
}

}  // namespace sg

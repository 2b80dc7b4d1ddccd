#include <algorithm>
#include <array>
#include <optional>

#include "base/text.h"
#include "host/editor/program_drawing.h"
#include "host/lisp/functions/list_builder.h"
#include "host/model/access/class_names.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/list_filers.h"
#include "host/model/core/object_access.h"
#include "host/seam/entity_lists.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "platform/db/database.h"
#include "platform/db/text.h"
#include "platform/db/viewport.h"
#include "platform/ed/transform.h"

// AutoLISP's functions on symbol tables, dictionaries, coordinate systems and viewports.

namespace sg {

bool isNeededEntry(const AcDbDictionary& dictionary, const std::wstring& key) {
    constexpr std::array kNeeded = {L"ACAD_GROUP", L"ACAD_LAYOUT", L"ACAD_MLINESTYLE",
                                    L"ACAD_PLOTSETTINGS", L"ACAD_PLOTSTYLENAME"};
    return dictionary.objectId() == dictionary.database()->namedObjectsDictionaryId() &&
           std::any_of(kNeeded.begin(), kNeeded.end(),
                       [&](const wchar_t* needed) { return equalIgnoringCase(needed, key); });
}

namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ResbufList;
using lisp::Value;

// ---- Symbol tables ------------------------------------------------------------------------------

// Throws "bad argument value" for a name that no table has.
AcDbObjectId tableArgument(Interpreter& in, Value name) {
    const AcDbObjectId table = model::tableNamed(requireDatabase(in), in.text(name));
    if (table.isNull()) in.badValue(L"AutoCAD table name " + in.toQuotedText(name));
    return table;
}

// What a table search shows of a record: its own groups, without what ties it into the drawing.
bool isShown(const resbuf& group, const std::wstring& type) {
    const int code = group.restype;
    if (code < 0 || code == 5 || code == 105 || code == 100 || code == 102) return false;
    if (acdbGroupCodeToType(code) == RTENAME) return false;
    if (type == L"LAYER") return code == 0 || code == 2 || code == 70 || code == 62 || code == 6;
    return !(type == L"LTYPE" && code == 74);
}

Value shownRecord(Interpreter& in, AcDbSymbolTableRecord& record) {
    model::ListWriter writer(record.database());
    record.dxfOut(&writer);
    const std::wstring type = record.isA()->dxfName();
    model::ListWriter shown(record.database());
    const ResbufList groups(writer.take());
    auto flat = writer.flatPoints().begin();
    for (const resbuf* group = groups.get(); group != nullptr; group = group->rbnext) {
        const bool isFlat = flat != writer.flatPoints().end() && *flat == group;
        if (isFlat) ++flat;
        if (!isShown(*group, type)) continue;
        if (isFlat) {
            shown.writePoint2d(group->restype, {group->resval.rpoint[0], group->resval.rpoint[1]},
                               -1);
        } else {
            shown.writeItem(*group);
        }
    }
    return groupsToList(in, shown);
}

// A block shows its first entity too.
Value shownBlock(Interpreter& in, const AcDbBlockTableRecord& block) {
    model::ListWriter shown(block.database());
    shown.writeString(0, L"BLOCK");
    AcDbEntity* begin = nullptr;
    int16_t flags = 0;
    std::wstring description = block.comments();
    if (block.openBlockBegin(begin, AcDb::kForRead) == Acad::eOk) {
        model::ListWriter groups(block.database());
        begin->dxfOutFields(&groups);
        begin->close();
        const ResbufList list(groups.take());
        if (const resbuf* const found = model::findGroup(list.get(), 70))
            flags = found->resval.rint;
    }
    shown.writeString(2, block.name().c_str());
    shown.writeInt16(70, flags);
    if (!description.empty()) shown.writeString(4, description.c_str());
    shown.writePoint3d(10, block.origin(), -1);
    const AcDbObjectId first = model::entityAfter(block, AcDbObjectId());
    if (!first.isNull()) shown.writeObjectId(-2, first);
    return groupsToList(in, shown);
}

Value shown(Interpreter& in, AcDbObjectId id) {
    AcDbSymbolTableRecord* record = nullptr;
    if (acdbOpenObject(record, id) != Acad::eOk) return Value::nil();
    const auto* const block = AcDbBlockTableRecord::cast(record);
    const Value list = block != nullptr ? shownBlock(in, *block) : shownRecord(in, *record);
    record->close();
    return list;
}

// Spaces are no blocks that programs see here, and the linetypes of the layer and the block are
// none that they could load.
bool isSkipped(AcDbObjectId id) {
    const AcDbDatabase& database = *id.database();
    if (id == database.byLayerLinetype() || id == database.byBlockLinetype()) return true;
    const auto* const block = model::peek<AcDbBlockTableRecord>(id);
    return block != nullptr && block->isLayout();
}

// The record behind this one; the first for the null id.
AcDbObjectId recordAfter(const AcDbSymbolTable& table, AcDbObjectId id) {
    auto each = table.newIterator();
    if (!id.isNull() && each->seek(id) == Acad::eOk) each->step();
    while (!each->done() && isSkipped(each->getRecordId()))
        each->step();
    return each->done() ? AcDbObjectId() : each->getRecordId();
}

AcDbObjectId findRecord(Interpreter& in, AcDbObjectId table, Value name) {
    AcDbObjectId found;
    AcDbSymbolTable* opened = nullptr;
    const std::wstring wanted = in.str(name);
    if (acdbOpenObject(opened, table) != Acad::eOk) return found;
    opened->getAt(wanted.c_str(), found);
    opened->close();
    return found;
}

// (tblsearch table name [set-next])
Value fnTblSearch(Interpreter& in, Args a) {
    const AcDbObjectId table = tableArgument(in, a[0]);
    const AcDbObjectId found = findRecord(in, table, a[1]);
    if (found.isNull()) return Value::nil();
    if (a.get(2)) requireDocument(in).programs().last[table] = found;
    return shown(in, found);
}

// (tblnext table [rewind])
Value fnTblNext(Interpreter& in, Args a) {
    const AcDbObjectId table = tableArgument(in, a[0]);
    auto& last = requireDocument(in).programs().last;
    if (a.get(1)) last.erase(table);
    const auto at = last.find(table);
    // Behind the end it stays there until it is rewound.
    if (at != last.end() && at->second.isNull()) return Value::nil();
    AcDbSymbolTable* opened = nullptr;
    if (acdbOpenObject(opened, table) != Acad::eOk) return Value::nil();
    const AcDbObjectId next = recordAfter(*opened, at == last.end() ? AcDbObjectId() : at->second);
    opened->close();
    last[table] = next;
    return next.isNull() ? Value::nil() : shown(in, next);
}

// (tblobjname table name): of a block, the entity that begins it.
Value fnTblObjName(Interpreter& in, Args a) {
    const AcDbObjectId found = findRecord(in, tableArgument(in, a[0]), a[1]);
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, found) != Acad::eOk) return entityName(found);
    AcDbEntity* begin = nullptr;
    AcDbObjectId id;
    if (block->openBlockBegin(begin, AcDb::kForRead) == Acad::eOk) {
        id = begin->objectId();
        begin->close();
    }
    block->close();
    return entityName(id);
}

// ---- Dictionaries -------------------------------------------------------------------------------

// A dictionary, open for as long as this lives; null for an entity name that is none.
class Dictionary {
  public:
    Dictionary(Interpreter& in, Value name, AcDb::OpenMode mode) : id(entityArgument(in, name)) {
        if (acdbOpenObject(opened_, id, mode) != Acad::eOk) opened_ = nullptr;
    }
    ~Dictionary() {
        if (opened_ != nullptr) opened_->close();
    }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    explicit operator bool() const { return opened_ != nullptr; }
    AcDbDictionary* operator->() const { return opened_; }
    AcDbDictionary& operator*() const { return *opened_; }

    const AcDbObjectId id;

  private:
    AcDbDictionary* opened_ = nullptr;
};

Value objectData(Interpreter& in, AcDbObjectId id) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForRead) != Acad::eOk) return Value::nil();
    model::ListWriter writer(object->database());
    object->dxfOut(&writer);
    object->close();
    return groupsToList(in, writer);
}

Value fnNamedObjDict(Interpreter& in, Args) {
    return entityName(requireDatabase(in).namedObjectsDictionaryId());
}

// (dictsearch dictionary key [set-next])
Value fnDictSearch(Interpreter& in, Args a) {
    const Dictionary dictionary(in, a[0], AcDb::kForRead);
    const std::wstring key = in.str(a[1]);
    AcDbObjectId found;
    if (!dictionary || dictionary->getAt(key.c_str(), found) != Acad::eOk) return Value::nil();
    if (a.get(2)) requireDocument(in).programs().last[dictionary.id] = found;
    return objectData(in, found);
}

// (dictnext dictionary [rewind])
Value fnDictNext(Interpreter& in, Args a) {
    const Dictionary dictionary(in, a[0], AcDb::kForRead);
    if (!dictionary) return Value::nil();
    auto& last = requireDocument(in).programs().last;
    if (a.get(1)) last.erase(dictionary.id);
    const auto at = last.find(dictionary.id);
    if (at != last.end() && at->second.isNull()) return Value::nil();
    const AcDbObjectId next =
        dictionary->objectAfter(at == last.end() ? AcDbObjectId() : at->second);
    last[dictionary.id] = next;
    return next.isNull() ? Value::nil() : objectData(in, next);
}

// Whether the object is the dictionary or owns it, by way of others too. Owners that never end, as
// a damaged drawing may have them, count as such.
bool holds(AcDbObjectId object, AcDbObjectId dictionary) {
    constexpr int kDeepest = 1000;
    AcDbObjectId at = dictionary;
    for (int depth = 0; depth < kDeepest; ++depth) {
        const auto* const inner = model::peek<AcDbObject>(at);
        if (inner == nullptr || at == object) return at == object;
        at = inner->ownerId();
    }
    return true;
}

// (dictadd dictionary key object): the object's name; nil when the key is taken, the object is an
// entity, or the dictionary is a part of it.
Value fnDictAdd(Interpreter& in, Args a) {
    const Dictionary dictionary(in, a[0], AcDb::kForWrite);
    const std::wstring key = in.str(a[1]);
    const AcDbObjectId id = entityArgument(in, a[2]);
    if (!dictionary || dictionary->has(key.c_str()) || holds(id, dictionary.id) ||
        id == requireDatabase(in).namedObjectsDictionaryId()) {
        return Value::nil();
    }
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) return Value::nil();
    AcDbObjectId set;
    const bool isEntity = AcDbEntity::cast(object) != nullptr;
    const bool added = !isEntity && dictionary->setAt(key.c_str(), object, set) == Acad::eOk;
    object->close();
    return added ? entityName(id) : Value::nil();
}

// (dictremove dictionary key): the name of what was there.
Value fnDictRemove(Interpreter& in, Args a) {
    const Dictionary dictionary(in, a[0], AcDb::kForWrite);
    const std::wstring key = in.str(a[1]);
    AcDbObjectId found;
    if (!dictionary || isNeededEntry(*dictionary, key) ||
        dictionary->getAt(key.c_str(), found) != Acad::eOk) {
        return Value::nil();
    }
    return dictionary->remove(key.c_str()) == Acad::eOk ? entityName(found) : Value::nil();
}

// (dictrename dictionary old new): the new key.
Value fnDictRename(Interpreter& in, Args a) {
    const Dictionary dictionary(in, a[0], AcDb::kForWrite);
    const std::wstring from = in.str(a[1]);
    const std::wstring to = in.str(a[2]);
    if (!dictionary || isNeededEntry(*dictionary, from)) return Value::nil();
    return dictionary->setName(from.c_str(), to.c_str()) ? a[2] : Value::nil();
}

// ---- Coordinate systems and measures ------------------------------------------------------------

resbuf systemArgument(Interpreter& in, Value value) {
    resbuf system{};
    if (value.isInt()) {
        system.restype = RTSHORT;
        system.resval.rint = static_cast<int16_t>(value.asInt());
    } else if (value.isEntityName()) {
        system.restype = RTENAME;
        lisp::payloadToName(value.asEntityName(), system.resval.rlname);
    } else {
        const Interpreter::Point p = in.point(value);
        system.restype = RT3DPOINT;
        system.resval.rpoint[0] = p.x;
        system.resval.rpoint[1] = p.y;
        system.resval.rpoint[2] = p.z;
    }
    return system;
}

Value pointValue(Interpreter& in, const ads_point point) {
    return in.list({Value::real(point[0]), Value::real(point[1]), Value::real(point[2])});
}

// (trans point from to [displacement])
Value fnTrans(Interpreter& in, Args a) {
    const Interpreter::Point p = in.point(a[0]);
    const resbuf from = systemArgument(in, a[1]);
    const resbuf to = systemArgument(in, a[2]);
    requireDatabase(in);
    const ads_point given = {p.x, p.y, p.z};
    ads_point moved;
    if (acedTrans(given, &from, &to, a.get(3) ? 1 : 0, moved) != RTNORM) {
        in.badValue(L"coordinate system");
    }
    return pointValue(in, moved);
}

// (textbox list): the lower left and the upper right corner around a text, as if it stood at the
// origin unturned; nil for what is no text.
Value fnTextBox(Interpreter& in, Args a) {
    const ResbufList groups = listToGroups(in, a[0]);
    AcDbDatabase& database = requireDatabase(in);
    AcDbText text;
    text.setDatabaseDefaults(&database);
    model::ListReader reader(groups.get(), &database);
    if (text.dxfIn(&reader) != Acad::eOk || text.textString().empty()) return Value::nil();
    text.setHorizontalMode(AcDb::kTextLeft);
    text.setVerticalMode(AcDb::kTextBase);
    text.setPosition(AcGePoint3d());
    text.setRotation(0);
    text.setNormal(AcGeVector3d::kZAxis);
    AcDbExtents extents;
    if (text.getGeomExtents(extents) != Acad::eOk) return Value::nil();
    const AcGePoint3d low = extents.minPoint();
    const AcGePoint3d high = extents.maxPoint();
    const ads_point corners[] = {{low.x, low.y, low.z}, {high.x, high.y, high.z}};
    const Value first = pointValue(in, corners[0]);
    in.push(first);
    return in.list({first, pointValue(in, corners[1])});
}

// ---- Viewports ----------------------------------------------------------------------------------

Value corner(Interpreter& in, double x, double y) {
    return in.list({Value::real(x), Value::real(y)});
}

// (number (left bottom) (right top)).
Value viewportValue(Interpreter& in, int32_t number, const double* low, const double* high) {
    const Value first = corner(in, low[0], low[1]);
    in.push(first);
    const Value second = corner(in, high[0], high[1]);
    in.push(second);
    return in.list({Value::integer(number), first, second});
}

// Of the model, whose viewports are numbered from 2 on, in parts of the screen.
void addTiles(Interpreter& in, AcDbDatabase& database, lisp::ListBuilder& list) {
    constexpr int32_t kFirst = 2;
    AcDbSymbolTable* table = nullptr;
    if (acdbOpenObject(table, database.viewportTableId()) != Acad::eOk) return;
    int32_t number = kFirst;
    for (auto each = table->newIterator(); !each->done(); each->step()) {
        AcDbSymbolTableRecord* record = nullptr;
        if (acdbOpenObject(record, each->getRecordId()) != Acad::eOk) continue;
        model::ListWriter writer(&database);
        const bool isShown = equalIgnoringCase(record->name(), L"*Active");
        record->dxfOut(&writer);
        record->close();
        const ResbufList groups(writer.take());
        const resbuf* const low = model::findGroup(groups.get(), 10);
        const resbuf* const high = model::findGroup(groups.get(), 11);
        if (!isShown || low == nullptr || high == nullptr) continue;
        list.add(viewportValue(in, number++, low->resval.rpoint, high->resval.rpoint));
    }
    table->close();
}

// Of a layout, on its sheet.
void addSheetViewports(Interpreter& in, AcDbDatabase& database, lisp::ListBuilder& list) {
    const auto* const sheet = model::peek<AcDbBlockTableRecord>(database.currentSpaceId());
    if (sheet == nullptr) return;
    for (const AcDbObjectId id : sheet->entityIds()) {
        const auto* const viewport = model::peek<AcDbViewport>(id);
        if (viewport == nullptr || viewport->isErased() || viewport->number() < 1) continue;
        const AcGePoint3d center = viewport->centerPoint();
        const AcGeVector3d half(viewport->width() / 2, viewport->height() / 2, 0);
        const AcGePoint3d low = center - half;
        const AcGePoint3d high = center + half;
        const double corners[] = {low.x, low.y, high.x, high.y};
        list.add(viewportValue(in, viewport->number(), corners, corners + 2));
    }
}

// (vports)
Value fnVports(Interpreter& in, Args) {
    AcDbDatabase& database = requireDatabase(in);
    lisp::ListBuilder list(in);
    if (database.currentSpaceId() == database.modelSpaceId()) {
        addTiles(in, database, list);
    } else {
        addSheetViewports(in, database, list);
    }
    return list.list();
}

constexpr FunctionRow kRows[] = {
    {L"tblsearch", fnTblSearch, 2, 3},   {L"tblnext", fnTblNext, 1, 2},
    {L"tblobjname", fnTblObjName, 2, 2}, {L"namedobjdict", fnNamedObjDict, 0, 0},
    {L"dictsearch", fnDictSearch, 2, 3}, {L"dictnext", fnDictNext, 1, 2},
    {L"dictadd", fnDictAdd, 3, 3},       {L"dictremove", fnDictRemove, 2, 2},
    {L"dictrename", fnDictRename, 3, 3}, {L"trans", fnTrans, 3, 4},
    {L"textbox", fnTextBox, 1, 1},       {L"vports", fnVports, 0, 0},
};

}  // namespace

std::span<const FunctionRow> tableFunctions() {
    return kRows;
}

}  // namespace sg

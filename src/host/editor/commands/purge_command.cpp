#include <string>
#include <vector>

#include "base/text.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/programs.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/core/object_access.h"
#include "platform/db/curve.h"
#include "platform/db/group.h"
#include "platform/db/text.h"
#include "platform/db/text_style_table.h"

namespace sg::commands {
namespace {

enum class Kind { blocks, dimStyles, layers, linetypes, textStyles, shapes, applications };

struct KindRow {
    const wchar_t* option;
    Kind kind;
    const wchar_t* what;  // in the messages
    const wchar_t* several;
};
constexpr KindRow kKinds[] = {
    {L"Blocks", Kind::blocks, L"block", L"blocks"},
    {L"Dimstyles", Kind::dimStyles, L"dimension style", L"dimension styles"},
    {L"LAyers", Kind::layers, L"layer", L"layers"},
    {L"LTypes", Kind::linetypes, L"linetype", L"linetypes"},
    {L"SHapes", Kind::shapes, L"shape file", L"shape files"},
    {L"textSTyles", Kind::textStyles, L"text style", L"text styles"},
    {L"Regapps", Kind::applications, L"registered application", L"registered applications"},
};

AcDbObjectId tableOf(const AcDbDatabase& database, Kind kind) {
    switch (kind) {
        case Kind::blocks:
            return database.blockTableId();
        case Kind::dimStyles:
            return database.dimStyleTableId();
        case Kind::layers:
            return database.layerTableId();
        case Kind::linetypes:
            return database.linetypeTableId();
        case Kind::textStyles:
        case Kind::shapes:
            return database.textStyleTableId();
        case Kind::applications:
            return database.regAppTableId();
    }
    return {};
}

bool isOfKind(AcDbObjectId id, Kind kind) {
    const auto* const style = model::peek<AcDbTextStyleTableRecord>(id);
    if (style != nullptr) return style->isShapeFile() == (kind == Kind::shapes);
    const auto* const block = model::peek<AcDbBlockTableRecord>(id);
    return block == nullptr || !block->isLayout();
}

// All records of the table, the anonymous ones too.
std::vector<NamedRecord> candidates(const AcDbDatabase& database, Kind kind,
                                    const std::wstring& names) {
    std::vector<NamedRecord> found;
    const auto* const table = model::peek<AcDbSymbolTable>(tableOf(database, kind));
    if (table == nullptr) return found;
    const model::Unguarded guard(*table);
    for (auto each = table->newIterator(); !each->done(); each->step()) {
        const AcDbObjectId id = each->getRecordId();
        const auto* const record = model::peek<AcDbSymbolTableRecord>(id);
        if (record == nullptr || !isOfKind(id, kind)) continue;
        const std::wstring name = upperCased(record->name());
        for (const std::wstring& pattern : namesIn(names)) {
            if (name != upperCased(pattern) && !wildcardMatch(name, upperCased(pattern))) continue;
            found.push_back({record->name(), id});
            break;
        }
    }
    return found;
}

// Erases what nothing needs. Answers how many.
size_t purgeKind(Command& c, const KindRow& row, const std::wstring& names, bool verifies) {
    const std::vector<NamedRecord> found = candidates(c.database(), row.kind, names);
    AcDbObjectIdArray ids;
    for (const NamedRecord& record : found)
        ids.append(record.id);
    c.database().purge(ids);
    size_t count = 0;
    for (const NamedRecord& record : found) {
        if (!ids.contains(record.id)) continue;
        if (verifies && !c.yes(L"Purge " + std::wstring(row.what) + L" \"" + record.name +
                                   L"\"? [Yes/No] <N>: ",
                               false)) {
            continue;
        }
        AcDbObject* object = nullptr;
        if (acdbOpenAcDbObject(object, record.id, AcDb::kForWrite) != Acad::eOk) continue;
        if (object->erase() == Acad::eOk) {
            ++count;
            c.print(L"Deleting " + std::wstring(row.what) + L" \"" + record.name + L"\".");
        }
        object->close();
    }
    return count;
}

void tellCount(Command& c, const KindRow& row, size_t count) {
    if (count == 0) {
        c.print(L"No unreferenced " + std::wstring(row.several) + L" found.");
    } else {
        c.print(std::to_wstring(count) + L" " + (count == 1 ? row.what : row.several) +
                L" deleted.");
    }
}

// Once: what is needed by what goes here stays until the next time.
void purgeOption(Command& c, const std::wstring& option) {
    std::wstring names(trimmed(c.text(L"Enter name(s) to purge <*>: ")));
    if (names.empty()) names = L"*";
    const bool verifies = c.yes(L"Verify each name to be purged? [Yes/No] <Y>: ", true);
    for (const KindRow& row : kKinds) {
        if (option == L"All" || option == row.option) {
            tellCount(c, row, purgeKind(c, row, names, verifies));
        }
    }
}

// Groups without members.
void purgeGroups(Command& c) {
    AcDbDictionary* groups = nullptr;
    size_t count = 0;
    if (c.database().getGroupDictionary(groups, AcDb::kForWrite) != Acad::eOk) return;
    for (auto each = groups->newIterator(); !each->done(); each->next()) {
        const auto* const group = model::peek<AcDbGroup>(each->objectId());
        if (group == nullptr) continue;
        const model::Unguarded guard(*group);
        AcDbObjectIdArray members;
        group->allEntityIds(members);
        bool isEmpty = true;
        for (const AcDbObjectId id : members)
            isEmpty = isEmpty && id.isErased();
        if (isEmpty) {
            groups->remove(each->name());
            ++count;
        }
    }
    groups->close();
    c.print(std::to_wstring(count) + (count == 1 ? L" group deleted." : L" groups deleted."));
}

// Curves without an extent, and texts that show nothing.
void purgeEmptyEntities(Command& c, bool texts) {
    std::vector<AcDbObjectId> ids;
    const auto* const space = model::peek<AcDbBlockTableRecord>(c.database().currentSpaceId());
    for (const AcDbObjectId id : space->entityIds()) {
        const auto* const entity = model::peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        const model::Unguarded guard(*entity);
        const bool isText = AcDbText::cast(entity) != nullptr;
        const auto* const curve = AcDbCurve::cast(entity);
        double length = 1, end = 0;
        if (curve != nullptr && curve->getEndParam(end) == Acad::eOk) {
            curve->getDistAtParam(end, length);
        }
        const bool isEmpty =
            texts ? isText && trimmed(AcDbText::cast(entity)->textString()).empty() : length == 0;
        if (isEmpty) ids.push_back(id);
    }
    c.erase(ids);
    c.print(std::to_wstring(ids.size()) +
            (ids.size() == 1 ? L" object deleted." : L" objects deleted."));
}

}  // namespace

void purge(Command& c) {
    const std::wstring option = c.option(
        L"Enter type of unused objects to purge "
        L"[Blocks/Dimstyles/Groups/LAyers/LTypes/SHapes/textSTyles/Regapps/Zero-length "
        L"geometry/Empty text objects/All]: ");
    if (option.empty()) return;
    if (option == L"Groups") return purgeGroups(c);
    if (option == L"Zero-length") return purgeEmptyEntities(c, false);
    if (option == L"Empty") return purgeEmptyEntities(c, true);
    purgeOption(c, option);
}

}  // namespace sg::commands

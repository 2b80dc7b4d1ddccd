#include "host/dxf/table_section.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/dxf/object_filer.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/view_tables.h"

namespace sg::dxf {
namespace {

using model::DatabaseRoots;
using model::ObjectAccess;

struct KnownTable {
    std::string_view name;
    AcDbObjectId DatabaseRoots::*root;
    std::unique_ptr<AcDbObject> (*make)();
};

template <class Table>
std::unique_ptr<AcDbObject> makeTable() {
    return std::make_unique<Table>();
}

// In the order in which they can be read: a record finds what it names.
constexpr KnownTable kTables[] = {
    {"APPID", &DatabaseRoots::regAppTable, makeTable<AcDbRegAppTable>},
    {"LTYPE", &DatabaseRoots::linetypeTable, makeTable<AcDbLinetypeTable>},
    {"STYLE", &DatabaseRoots::textStyleTable, makeTable<AcDbTextStyleTable>},
    {"BLOCK_RECORD", &DatabaseRoots::blockTable, makeTable<AcDbBlockTable>},
    {"LAYER", &DatabaseRoots::layerTable, makeTable<AcDbLayerTable>},
    {"DIMSTYLE", &DatabaseRoots::dimStyleTable, makeTable<AcDbDimStyleTable>},
    {"UCS", &DatabaseRoots::ucsTable, makeTable<AcDbUCSTable>},
    {"VIEW", &DatabaseRoots::viewTable, makeTable<AcDbViewTable>},
    {"VPORT", &DatabaseRoots::viewportTable, makeTable<AcDbViewportTable>},
};

std::string tableName(const ScannedObject& scanned) {
    const Group* const name = scanned.find(2);
    return name == nullptr ? std::string() : std::string(name->text);
}

// Two records of one name: the first one has it, where names are looked up.
bool isTaken(const AcDbSymbolTable& table, const AcDbSymbolTableRecord& record) {
    return !record.name().empty() && !ObjectAccess::allowsSameNames(table) &&
           !ObjectAccess::records(table).find(record.name(), false).isNull();
}

}  // namespace

std::vector<TableSection::Found> TableSection::find(size_t position) {
    std::vector<Found> found;
    ScannedObject scanned;
    reading_.scanner.seek(position);
    while (reading_.scanner.next(scanned) && !scanned.is("ENDSEC") && !scanned.is("SECTION")) {
        if (scanned.is("TABLE")) found.push_back({tableName(scanned), scanned.position});
    }
    return found;
}

void TableSection::read(size_t position) {
    const std::vector<Found> tables = find(position);
    for (const Found& table : tables)
        reading_.origin->tables.push_back({table.name, {}});
    for (const KnownTable& known : kTables) {
        for (const Found& table : tables) {
            if (table.name == known.name) readTable(table);
        }
    }
    for (const Found& table : tables) {
        const bool isKnown = std::any_of(std::begin(kTables), std::end(kTables),
                                         [&](const KnownTable& k) { return k.name == table.name; });
        if (!isKnown) keep(table);
    }
}

void TableSection::readTable(const Found& found) {
    const auto known = std::find_if(std::begin(kTables), std::end(kTables),
                                    [&](const KnownTable& k) { return k.name == found.name; });
    AcDbObjectId& root = reading_.state.roots.*(known->root);
    ScannedObject scanned;
    reading_.scanner.seek(found.position);
    reading_.scanner.next(scanned);
    if (root.isNull()) {
        std::erase_if(scanned.groups, [](const Group& group) { return group.code == 2; });
        AcDbObject* const table = loader_.loadAs(scanned, known->make(), {});
        if (table == nullptr) return;
        root = table->objectId();
        loader_.checkLater(root, found.position);
    }
    readRecords(root);
}

void TableSection::readRecords(AcDbObjectId tableId) {
    auto* const table = model::peek<AcDbSymbolTable>(tableId);
    ScannedObject scanned;
    while (reading_.scanner.next(scanned) && !scanned.is("ENDTAB") && !scanned.is("TABLE") &&
           !scanned.is("ENDSEC")) {
        std::unique_ptr<AcRxObject> made(table->recordClass()->create());
        auto* const record = AcDbSymbolTableRecord::cast(made.get());
        if (record == nullptr) continue;
        made.release();
        const size_t position = scanned.position;
        AcDbObject* const loaded =
            loader_.loadAs(scanned, std::unique_ptr<AcDbObject>(record), tableId);
        if (loaded == nullptr) continue;
        if (isTaken(*table, *record)) {
            reading_.report.warn(position, L"a second \"" + record->name() + L"\" in table " +
                                               fromUtf8(scanned.name()) + L" is left unnamed");
            ObjectAccess::setName(*record, L"");
        }
        ObjectAccess::records(*table).append(record->objectId());
        loader_.checkLater(record->objectId(), position);
    }
}

void TableSection::keep(const Found& found) {
    const auto table = std::find_if(reading_.origin->tables.begin(), reading_.origin->tables.end(),
                                    [&](const auto& one) { return one.name == found.name; });
    ScannedObject scanned;
    reading_.scanner.seek(found.position);
    while (reading_.scanner.next(scanned) && !scanned.is("ENDSEC")) {
        for (const Group& group : scanned.groups) {
            if (group.isMalformed) continue;
            appendGroup(table->groups, group, reading_.codec, reading_.handles);
        }
        if (scanned.is("ENDTAB")) break;
    }
}

}  // namespace sg::dxf

#include "host/dwg/drawing_reader.h"

#include <algorithm>
#include <unordered_set>

#include "base/encoding.h"
#include "base/text.h"
#include "host/dwg/code_pages.h"
#include "host/dwg/header_roots.h"
#include "host/dwg/header_section.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/default_drawing.h"
#include "platform/db/dictionary.h"

namespace sg::dwg {

using model::ObjectAccess;
using model::peek;

namespace {

// Sections whose content is in the drawing, or comes anew with every file.
constexpr std::string_view kReadSections[] = {
    section::kHeader,  section::kClasses,   section::kObjectMap,
    section::kObjects, section::kFreeSpace, section::kTemplate,
};

dxf::TextCodec codecOf(const FileContent& content) {
    constexpr bool kHasCarets = false;
    return {codePageName(content.codePage), false, kHasCarets};
}

// Where each table is, and the name of its class, which is that of its records but for an end.
struct Table {
    AcDbObjectId model::DatabaseRoots::*root;
    std::wstring_view className;
};
constexpr Table kTables[] = {
    {&model::DatabaseRoots::blockTable, L"AcDbBlockTable"},
    {&model::DatabaseRoots::layerTable, L"AcDbLayerTable"},
    {&model::DatabaseRoots::linetypeTable, L"AcDbLinetypeTable"},
    {&model::DatabaseRoots::textStyleTable, L"AcDbTextStyleTable"},
    {&model::DatabaseRoots::dimStyleTable, L"AcDbDimStyleTable"},
    {&model::DatabaseRoots::viewTable, L"AcDbViewTable"},
    {&model::DatabaseRoots::viewportTable, L"AcDbViewportTable"},
    {&model::DatabaseRoots::ucsTable, L"AcDbUCSTable"},
    {&model::DatabaseRoots::regAppTable, L"AcDbRegAppTable"},
};

bool isOfClass(AcDbObjectId id, const std::wstring& name) {
    const AcDbObject* const object = model::DatabaseTable::objectOf(id);
    return object != nullptr && object->isA()->name() == name;
}

}  // namespace

DrawingReader::DrawingReader(AcDbDatabase& database, FileContent& content, const std::wstring& file)
    : reading_(database, content, file, codecOf(content)) {}

std::vector<std::wstring> DrawingReader::read() {
    readOrigin();
    reading_.context.handles.begin();
    reading_.classes = readClasses(reading_.content, reading_.file, reading_.context);
    const std::vector<ObjectPlace> places = readObjectMap(reading_.content, reading_.file);
    // Ids are in the order of handles, wherever they are met first.
    for (const ObjectPlace& place : places)
        reading_.context.refer({kHardPointer, place.handle});
    readHeader(reading_);
    readTemplate();
    readObjects(places);
    checkTables();
    numberBlocks();
    model::completeTables(reading_.database);
    enterBlocks();
    findFixedRecords();
    findDictionaries();
    model::completeDictionaries(reading_.database);
    nameStyles(reading_);
    keepClasses();
    keepSections();
    reportDangling();
    reading_.context.handles.settle(reading_.seed);
    reading_.origin->dwg = reading_.own;
    reading_.state.origin = std::move(reading_.origin);
    if (reading_.hasWrapped) model::reviveProxies();
    return takeWarnings();
}

void DrawingReader::readOrigin() {
    const FileContent& content = reading_.content;
    reading_.origin->release = static_cast<int16_t>(content.release);
    reading_.origin->version = content.version;
    reading_.origin->isBinary = true;
    reading_.origin->codePage = codePageName(content.codePage);
    reading_.own->maintenance = content.maintenance;
}

// A text, which nothing is known of, and the system of units.
void DrawingReader::readTemplate() {
    const ByteSpan data = reading_.content.find(section::kTemplate);
    const size_t at =
        2 + shortAt(data, 0) * (reading_.context.release >= AcDb::kDHL_1021 ? 2u : 1u);
    if (at + 2 > data.size()) return;
    const int32_t measurement = shortAt(data, at) == 0 ? 0 : 1;
    reading_.state.changeHeader().set(L"MEASUREMENT", measurement);
}

// ---- Objects ------------------------------------------------------------------------------------

void DrawingReader::readObjects(const std::vector<ObjectPlace>& places) {
    ObjectReader reader(reading_);
    loadAll(reader, places);
    orderEntities(reader.links());
    checkParts();
    checkBlocks();
}

// Layers come first, whose names extended data have; then the other tables and their records,
// which entities refer to while they are read.
void DrawingReader::loadAll(ObjectReader& reader, const std::vector<ObjectPlace>& places) {
    constexpr uint16_t kLayerTable = 50, kLayer = 51;
    std::vector<const ObjectPlace*> tables, others;
    others.reserve(places.size());
    for (const ObjectPlace& place : places) {
        const uint16_t type = reader.typeAt(place);
        if (type == kLayerTable || type == kLayer) {
            reader.load(place);
        } else if (type >= kFirstTable && type <= kLastTable) {
            tables.push_back(&place);
        } else {
            others.push_back(&place);
        }
    }
    for (const ObjectPlace* const place : tables)
        reader.load(*place);
    for (const ObjectPlace* const place : others)
        reader.load(*place);
}

// From release 2004 on owners have lists of their own.
void DrawingReader::orderEntities(const Links& links) {
    for (const AcDbObjectId owner : links.owners()) {
        const std::vector<AcDbObjectId> entities = links.entitiesOf(owner);
        if (const auto* const block = peek<AcDbBlockTableRecord>(owner)) {
            ObjectAccess::contents(*block).assign(entities);
        } else if (auto* const whole = peek<AcDbEntity>(owner)) {
            for (const AcDbObjectId part : entities)
                ObjectAccess::adoptPart(*whole, part);
        }
    }
}

// Parts are of one whole, which has no part of its own in them: damaged files may have circles.
void DrawingReader::checkParts() {
    std::vector<AcDbObject*> damaged;
    reading_.state.forEach([&](AcDbObject& object) {
        const auto* const whole = AcDbEntity::cast(&object);
        if (whole == nullptr) return;
        for (const AcDbObjectId id : ObjectAccess::partsOf(*whole)) {
            const auto* const part = peek<AcDbEntity>(id);
            if (part == nullptr || part->ownerId() == object.objectId()) continue;
            damaged.push_back(&object);
            return;
        }
    });
    for (AcDbObject* const object : damaged) {
        reading_.warn(L"object " + object->objectId().handle().text() +
                      L" has parts of another object and is left out");
        reading_.state.forget(*object);
    }
}

// A block has the entities that are there and say that they are its, in its own order as far as it
// has one.
void DrawingReader::checkBlocks() {
    std::unordered_map<AcDbObjectId, std::vector<AcDbObjectId>> entities;
    reading_.state.forEach([&](const AcDbObject& object) {
        const bool isPart = AcDbEntity::cast(&object) != nullptr &&
                            AcDbBlockBegin::cast(&object) == nullptr &&
                            AcDbBlockEnd::cast(&object) == nullptr;
        if (isPart) entities[object.ownerId()].push_back(object.objectId());
    });
    reading_.state.forEach([&](const AcDbObject& object) {
        const auto* const block = AcDbBlockTableRecord::cast(&object);
        if (block == nullptr) return;
        auto& contents = ObjectAccess::contents(*block);
        const std::vector<AcDbObjectId>& own = entities[block->objectId()];
        std::unordered_set<AcDbObjectId> missing(own.begin(), own.end());
        std::vector<AcDbObjectId> ordered;
        ordered.reserve(own.size());
        for (const AcDbObjectId id : contents.entities) {
            if (missing.erase(id) != 0) ordered.push_back(id);
        }
        if (missing.empty() && ordered.size() == contents.entities.size()) return;
        for (const AcDbObjectId id : own) {
            if (missing.contains(id)) ordered.push_back(id);
        }
        contents.assign(std::move(ordered));
    });
}

// ---- What drawings are entered by ---------------------------------------------------------------

// A table that is not there, or is none, is made anew; records that are not there are in none.
void DrawingReader::checkTables() {
    for (const Table& known : kTables) {
        const std::wstring className(known.className);
        AcDbObjectId& id = reading_.state.roots.*known.root;
        if (!isOfClass(id, className)) {
            id.setNull();
            continue;
        }
        auto& records = ObjectAccess::records(*peek<AcDbSymbolTable>(id));
        std::vector<AcDbObjectId> present = records.ids;
        std::erase_if(present, [&](AcDbObjectId record) {
            return !isOfClass(record, className + L"Record");
        });
        records.assign(std::move(present));
        records.namesChanged();
    }
}

// Files have no numbers in the names of nameless blocks and further paper spaces: a nameless
// block's is its place among the blocks that are neither model nor paper space, paper spaces count
// from 0.
void DrawingReader::numberBlocks() {
    const model::DatabaseRoots& roots = reading_.state.roots;
    const auto* const table = peek<AcDbSymbolTable>(roots.blockTable);
    if (table == nullptr) return;
    const std::vector<AcDbObjectId>& ids = ObjectAccess::records(*table).ids;
    std::unordered_set<std::wstring> names;
    for (const AcDbObjectId id : ids)
        names.insert(peek<AcDbSymbolTableRecord>(id)->name());
    size_t place = 0;
    size_t paper = 0;
    for (const AcDbObjectId id : ids) {
        if (id == roots.modelSpace || id == roots.paperSpace) continue;
        auto* const block = peek<AcDbSymbolTableRecord>(id);
        const std::wstring bare = block->name();
        const bool isPaper = equalIgnoringCase(bare, ACDB_PAPER_SPACE);
        size_t number = isPaper ? paper++ : place;
        ++place;
        if (!isPaper && (bare.size() != 2 || bare[0] != L'*')) continue;
        while (!names.insert(bare + std::to_wstring(number)).second)
            number += ids.size();
        ObjectAccess::setName(*block, bare + std::to_wstring(number));
    }
    ObjectAccess::records(*table).namesChanged();
}

void DrawingReader::enterBlocks() {
    const auto* const table = peek<AcDbSymbolTable>(reading_.state.roots.blockTable);
    if (table == nullptr) return;
    for (const AcDbObjectId id : ObjectAccess::records(*table).ids) {
        if (auto* const block = peek<AcDbBlockTableRecord>(id)) ObjectAccess::enteredTable(*block);
    }
}

// The header is believed where it names what is there.
void DrawingReader::findFixedRecords() {
    model::DatabaseRoots& roots = reading_.state.roots;
    const auto find = [](AcDbObjectId& root, AcDbObjectId table, const wchar_t* name) {
        if (peek<AcDbSymbolTableRecord>(root) == nullptr) root = model::findRecord(table, name);
    };
    find(roots.modelSpace, roots.blockTable, ACDB_MODEL_SPACE);
    find(roots.paperSpace, roots.blockTable, ACDB_PAPER_SPACE);
    find(roots.layerZero, roots.layerTable, L"0");
    find(roots.continuousLinetype, roots.linetypeTable, L"Continuous");
    find(roots.byLayerLinetype, roots.linetypeTable, L"ByLayer");
    find(roots.byBlockLinetype, roots.linetypeTable, L"ByBlock");
}

void DrawingReader::findDictionaries() {
    model::DatabaseRoots& roots = reading_.state.roots;
    AcDbDictionary* named = nullptr;
    if (peek<AcDbDictionary>(roots.namedObjects) == nullptr) roots.namedObjects.setNull();
    if (acdbOpenObject(named, roots.namedObjects) != Acad::eOk) return;
    const auto find = [&](const wchar_t* name, AcDbObjectId& root) {
        root.setNull();
        AcDbObjectId id;
        if (named->getAt(name, id) == Acad::eOk && peek<AcDbDictionary>(id) != nullptr) root = id;
    };
    find(L"ACAD_GROUP", roots.groups);
    find(L"ACAD_LAYOUT", roots.layouts);
    find(L"ACAD_PLOTSTYLENAME", roots.plotStyleNames);
    named->close();
}

// ---- What is kept -------------------------------------------------------------------------------

void DrawingReader::keepClasses() {
    for (const ClassEntry& entry : reading_.classes) {
        model::FileOrigin::ClassRecord& record = reading_.origin->classes.emplace_back();
        record.dxfName = entry.dxfName;
        record.className = entry.className;
        record.applicationName = entry.applicationName;
        record.flags = entry.proxyFlags;
        record.groups.appendText(1, toUtf8(entry.dxfName));
        record.groups.appendText(2, toUtf8(entry.className));
        record.groups.appendText(3, toUtf8(entry.applicationName));
        record.groups.appendWhole(90, entry.proxyFlags);
        if (reading_.context.release >= AcDb::kDHL_1018) {
            record.groups.appendWhole(91, entry.instances);
        }
        record.groups.appendWhole(280, entry.wasProxy ? 1 : 0);
        record.groups.appendWhole(281, entry.kind == kEntityClass ? 1 : 0);
    }
}

void DrawingReader::keepSections() {
    for (const FileContent::Section& one : reading_.content.sections) {
        if (std::find(std::begin(kReadSections), std::end(kReadSections), one.name) !=
            std::end(kReadSections)) {
            continue;
        }
        reading_.own->sections.push_back({one.name, {one.data.begin(), one.data.end()}});
    }
}

void DrawingReader::reportDangling() {
    size_t count = 0;
    std::wstring first;
    model::IdRecords& records = reading_.state.records;
    for (uint32_t index = 1; index <= records.count(); ++index) {
        const model::IdRecord& record = *records.find(index);
        if (record.object != nullptr || record.handle > dxf::Handles::kGreatest) continue;
        if (count++ == 0) first = AcDbHandle(record.handle).text();
    }
    if (count == 0) return;
    reading_.warn(L"handle " + first +
                  (count == 1 ? L" is" : L" and " + std::to_wstring(count - 1) + L" others are") +
                  L" that of no object in the file");
}

std::vector<std::wstring> DrawingReader::takeWarnings() {
    std::vector<std::wstring> warnings = std::move(reading_.content.warnings);
    warnings.insert(warnings.end(), reading_.warnings.begin(), reading_.warnings.end());
    if (reading_.unsaid != 0) {
        warnings.push_back(reading_.file + L": and " + std::to_wstring(reading_.unsaid) +
                           L" warnings more");
    }
    return warnings;
}

}  // namespace sg::dwg

#include "host/dxf/drawing_writer.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "base/encoding.h"
#include "host/dxf/class_records.h"
#include "host/dxf/header_output.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/render/proxy_graphics.h"

namespace sg::dxf {
namespace {

using model::GroupData;
using model::ObjectAccess;
using model::peek;

// In the order in which a file must have them.
constexpr std::array<std::string_view, 6> kSections = {"HEADER", "CLASSES",  "TABLES",
                                                       "BLOCKS", "ENTITIES", "OBJECTS"};

struct Table {
    std::string_view name;
    AcDbObjectId model::DatabaseRoots::*root;
};
constexpr Table kTables[] = {
    {"VPORT", &model::DatabaseRoots::viewportTable},
    {"LTYPE", &model::DatabaseRoots::linetypeTable},
    {"LAYER", &model::DatabaseRoots::layerTable},
    {"STYLE", &model::DatabaseRoots::textStyleTable},
    {"VIEW", &model::DatabaseRoots::viewTable},
    {"UCS", &model::DatabaseRoots::ucsTable},
    {"APPID", &model::DatabaseRoots::regAppTable},
    {"DIMSTYLE", &model::DatabaseRoots::dimStyleTable},
    {"BLOCK_RECORD", &model::DatabaseRoots::blockTable},
};

template <class Range, class Name>
bool contains(const Range& range, const Name& name) {
    return std::find(std::begin(range), std::end(range), name) != std::end(range);
}

bool isTableOrPart(const AcDbObject& object) {
    return AcDbEntity::cast(&object) != nullptr || AcDbSymbolTable::cast(&object) != nullptr ||
           AcDbSymbolTableRecord::cast(&object) != nullptr;
}

}  // namespace

DrawingWriter::DrawingWriter(const AcDbDatabase& database, GroupOutput& output,
                             const Release& release)
    : database_(database),
      state_(model::DatabaseState::of(database)),
      output_(output),
      release_(release),
      objects_(output, release),
      origin_(state_.origin == nullptr ? none_ : *state_.origin) {}

// The file's own order, with what must be there.
std::vector<std::string> DrawingWriter::sectionNames() const {
    std::vector<std::string> names;
    for (const auto& section : origin_.sections) {
        // Data of modelled solids came with release 2013.
        const bool isTooNew = section.name == "ACDSDATA" && release_.number < AcDb::kDHL_1027;
        if (!isTooNew && !contains(names, section.name)) names.push_back(section.name);
    }
    size_t at = 0;
    for (const std::string_view needed : kSections) {
        const auto found = std::find(names.begin(), names.end(), needed);
        if (found == names.end()) {
            names.emplace(names.begin() + static_cast<ptrdiff_t>(at), needed);
            ++at;
        } else {
            at = static_cast<size_t>(found - names.begin()) + 1;
        }
    }
    return names;
}

void DrawingWriter::write() {
    for (const std::string& name : sectionNames()) {
        output_.name(0, "SECTION");
        output_.name(2, name);
        writeSection(name);
        output_.name(0, "ENDSEC");
    }
    output_.name(0, "EOF");
}

void DrawingWriter::writeSection(const std::string& name) {
    if (name == "HEADER") {
        writeHeader(output_, state_, origin_, release_,
                    origin_.codePage.empty() ? "ANSI_1252" : origin_.codePage);
    } else if (name == "CLASSES") {
        writeClasses();
    } else if (name == "TABLES") {
        writeTables();
    } else if (name == "BLOCKS") {
        writeBlocks();
    } else if (name == "ENTITIES") {
        writeEntities(state_.roots.modelSpace);
        writeEntities(state_.roots.paperSpace);
    } else if (name == "OBJECTS") {
        writeObjects();
    } else {
        for (const auto& section : origin_.sections) {
            if (section.name != name) continue;
            for (GroupData::Walk walk(section.groups); walk.next();)
                output_.group(walk.group());
        }
    }
}

void DrawingWriter::writeClasses() {
    ClassRecords(state_, origin_, release_).write(output_);
}

// ---- Tables -------------------------------------------------------------------------------------

void DrawingWriter::writeTables() {
    std::vector<std::string> names;
    for (const auto& table : origin_.tables) {
        if (!contains(names, table.name)) names.push_back(table.name);
    }
    for (const Table& table : kTables) {
        if (!contains(names, table.name)) names.emplace_back(table.name);
    }
    for (const std::string& name : names)
        writeTable(name);
}

void DrawingWriter::writeTable(const std::string& name) {
    const auto known = std::find_if(std::begin(kTables), std::end(kTables),
                                    [&](const Table& table) { return table.name == name; });
    if (known == std::end(kTables)) {
        for (const auto& table : origin_.tables) {
            if (table.name != name) continue;
            for (GroupData::Walk walk(table.groups); walk.next();)
                output_.group(walk.group());
        }
        return;
    }
    const auto* const table = peek<AcDbSymbolTable>(state_.roots.*(known->root));
    if (table == nullptr) return;
    objects_.writeTable(*table, name);
    for (const AcDbObjectId id : ObjectAccess::records(*table).ids) {
        const auto* const record = peek<AcDbSymbolTableRecord>(id);
        if (record != nullptr && !record->isErased()) objects_.write(*record);
    }
    output_.name(0, "ENDTAB");
}

// ---- Blocks and entities ------------------------------------------------------------------------

void DrawingWriter::writeBlocks() {
    const auto* const table = peek<AcDbSymbolTable>(state_.roots.blockTable);
    for (const AcDbObjectId id : ObjectAccess::records(*table).ids) {
        const auto* const block = peek<AcDbBlockTableRecord>(id);
        if (block == nullptr || block->isErased()) continue;
        const ObjectAccess::BlockContents& contents = ObjectAccess::contents(*block);
        if (const auto* const begin = peek<AcDbEntity>(contents.begin)) objects_.write(*begin);
        const bool isSpace = id == state_.roots.modelSpace || id == state_.roots.paperSpace;
        if (!isSpace) writeEntities(id);
        if (const auto* const end = peek<AcDbEntity>(contents.end)) objects_.write(*end);
    }
}

void DrawingWriter::writeEntities(AcDbObjectId blockId) {
    const auto* const block = peek<AcDbBlockTableRecord>(blockId);
    if (block == nullptr) return;
    for (const AcDbObjectId id : block->entityIds()) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity != nullptr && !entity->isErased()) writeEntity(*entity);
    }
}

// A proxy that a DWG file brought has bits that have no form here. Of an entity its graphics stay.
bool DrawingWriter::hasGroups(const AcDbObject& object) {
    const model::ProxyData* const data = model::proxyData(object);
    if (data == nullptr || !data->isOnlyBits()) return true;
    if (!render::graphicsForOthers(object).empty()) {
        ++onlyShown_[model::dxfNameOf(object)];
        return true;
    }
    // Tables of viewports that only old DWG files have, which every program makes anew.
    if (data->className.starts_with(L"AcDbVX")) return false;
    ++losses_[model::dxfNameOf(object)];
    return false;
}

void DrawingWriter::writeEntity(const AcDbEntity& entity) {
    if (!hasGroups(entity)) return;
    objects_.write(entity);
    for (const AcDbObjectId part : ObjectAccess::partsOf(entity)) {
        if (const auto* const object = peek<AcDbEntity>(part)) objects_.write(*object);
    }
}

// ---- Objects ------------------------------------------------------------------------------------

// What goes with an erased owner goes too.
bool DrawingWriter::isWritten(const AcDbObject& object) const {
    constexpr int kDeepest = 1000;  // owners of a damaged file may form a circle
    const AcDbObject* one = &object;
    for (int depth = 0; one != nullptr && depth < kDeepest; ++depth) {
        if (one->isErased()) return false;
        one = model::DatabaseTable::objectOf(one->ownerId());
    }
    return true;
}

void DrawingWriter::writeObjects() {
    std::set<AcDbObjectId> written;
    const auto write = [&](AcDbObjectId id) {
        const AcDbObject* const object = model::DatabaseTable::objectOf(id);
        if (object == nullptr || isTableOrPart(*object) || !isWritten(*object)) return;
        if (written.insert(id).second && hasGroups(*object)) objects_.write(*object);
    };
    write(state_.roots.namedObjects);
    for (const AcDbObjectId id : origin_.objects)
        write(id);
    state_.forEach([&](const AcDbObject& object) { write(object.objectId()); });
}

}  // namespace sg::dxf

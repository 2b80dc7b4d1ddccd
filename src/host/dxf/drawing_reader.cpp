#include "host/dxf/drawing_reader.h"

#include <algorithm>
#include <cstring>

#include "base/encoding.h"
#include "base/text.h"
#include "host/dxf/header_section.h"
#include "host/dxf/object_filer.h"
#include "host/dxf/table_section.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/default_drawing.h"
#include "platform/db/dictionary.h"

namespace sg::dxf {
namespace {

using model::ObjectAccess;
using model::peek;

constexpr std::string_view kReadSections[] = {"HEADER", "CLASSES",  "TABLES",
                                              "BLOCKS", "ENTITIES", "OBJECTS"};

bool isZero(std::string_view line) {
    const size_t from = line.find_first_not_of(" \t");
    const size_t to = line.find_last_not_of(" \t\r");
    return from != line.npos && line.substr(from, to - from + 1) == "0";
}

}  // namespace

DrawingReader::DrawingReader(AcDbDatabase& database, std::string_view content, std::wstring file)
    : content_(content),
      reading_(database, content, std::move(file)),
      loader_(reading_),
      entities_(reading_, loader_) {}

// ---- Sections -----------------------------------------------------------------------------------

// The word stands on a line of its own behind a group code 0, and nowhere else so.
void DrawingReader::findSectionsInText(std::string_view content) {
    constexpr std::string_view kWord = "SECTION";
    const char lineEnd = reading_.reader.lineEnd();
    for (size_t at = content.find(kWord); at != content.npos; at = content.find(kWord, at + 1)) {
        const size_t end = content.find_first_not_of(" \t", at + kWord.size());
        if (at == 0 || content[at - 1] != lineEnd) continue;
        if (end != content.npos && content[end] != '\r' && content[end] != '\n') continue;
        const size_t before = at >= 2 ? content.rfind(lineEnd, at - 2) : content.npos;
        const size_t line = before == content.npos ? reading_.reader.start() : before + 1;
        if (!isZero(content.substr(line, at - 1 - line))) continue;
        reading_.reader.seek(line);
        Group group;
        reading_.reader.next(group);
        if (reading_.reader.next(group) != GroupReader::Step::group || group.code != 2) {
            reading_.report.warn(at, L"a section without a name is left out");
            continue;
        }
        sections_.push_back({std::string(group.text), reading_.reader.position()});
    }
}

void DrawingReader::findSectionsInBinary() {
    ScannedObject scanned;
    reading_.scanner.seek(reading_.reader.start());
    while (reading_.scanner.next(scanned)) {
        if (!scanned.is("SECTION") || scanned.groups.size() < 2 || scanned.groups[1].code != 2) {
            continue;
        }
        const size_t next = reading_.scanner.position();
        reading_.reader.seek(scanned.position);
        Group group;
        reading_.reader.next(group);
        reading_.reader.next(group);
        sections_.push_back({std::string(group.text), reading_.reader.position()});
        reading_.scanner.seek(next);
    }
}

void DrawingReader::findSections() {
    if (reading_.reader.isBinary()) {
        findSectionsInBinary();
    } else {
        findSectionsInText(content_);
    }
    if (sections_.empty()) {
        throw Error(reading_.report.file() + L": this is no drawing file: it has no section");
    }
    for (const Section& section : sections_)
        reading_.origin->sections.push_back({section.name, {}});
}

const DrawingReader::Section* DrawingReader::section(std::string_view name) const {
    const auto found = std::find_if(sections_.begin(), sections_.end(),
                                    [&](const Section& one) { return one.name == name; });
    return found == sections_.end() ? nullptr : &*found;
}

// ---- The whole ----------------------------------------------------------------------------------

std::vector<std::wstring> DrawingReader::read() {
    findSections();
    reading_.origin->isBinary = reading_.reader.isBinary();
    reading_.origin->release = static_cast<int16_t>(reading_.release);
    const Section* const header = section("HEADER");
    if (header != nullptr) {
        readVersion(reading_, header->position);
    } else {
        reading_.origin->codePage = reading_.codec.codePage();
    }
    reading_.handles.begin();
    readClasses();
    if (reading_.release <= AcDb::kDHL_1009) prepareBlocks();
    if (const Section* const tables = section("TABLES")) {
        TableSection(reading_, loader_).read(tables->position);
    } else if (reading_.release > AcDb::kDHL_1009) {
        reading_.report.warn(L"the section of tables is missing");
    }
    model::completeTables(reading_.database);
    readBlocks();
    readEntities();
    readObjects();
    if (header != nullptr) readHeader(reading_, header->position);
    completeBlocks();
    findDictionaries();
    model::completeTables(reading_.database);
    model::completeDictionaries(reading_.database);
    leaveNames();
    keepSections();
    reading_.handles.settle(reading_.seed);
    loader_.checkForms();
    reportDangling();
    reading_.state.origin = std::move(reading_.origin);
    return reading_.report.take();
}

void DrawingReader::readClasses() {
    const Section* const classes = section("CLASSES");
    if (classes == nullptr) return;
    ScannedObject scanned;
    reading_.scanner.seek(classes->position);
    while (reading_.scanner.next(scanned) && scanned.is("CLASS")) {
        model::FileOrigin::ClassRecord& record = reading_.origin->classes.emplace_back();
        for (size_t i = 1; i < scanned.groups.size(); ++i) {
            const Group& group = scanned.groups[i];
            if (group.isMalformed) continue;
            if (group.code == 1) record.dxfName = reading_.text(group);
            if (group.code == 2) record.className = reading_.text(group);
            if (group.code == 3) record.applicationName = reading_.text(group);
            if (group.code == 90) record.flags = static_cast<int32_t>(group.whole);
            appendGroup(record.groups, group, reading_.codec, reading_.handles);
        }
    }
}

// A variable that names what is not there keeps the name as long as nobody sets it.
void DrawingReader::leaveNames() {
    for (model::FileOrigin::Variable& variable : reading_.origin->variables) {
        const auto* const id = std::get_if<AcDbObjectId>(&variable.value);
        if (variable.isKnown && id != nullptr && id->isNull()) {
            variable.value = reading_.state.header().at(variable.place);
        }
    }
}

// ---- Blocks and entities ------------------------------------------------------------------------

AcDbObjectId DrawingReader::addBlock(const std::wstring& name) {
    auto block = std::make_unique<AcDbBlockTableRecord>();
    ObjectAccess::setName(*block, name);
    const AcDbObjectId table = reading_.state.roots.blockTable;
    if (reading_.state.load(*block, 0, table) != Acad::eOk) return {};
    const AcDbObjectId id = block.release()->objectId();
    ObjectAccess::records(*peek<AcDbSymbolTable>(table)).append(id);
    return id;
}

// The block that a BLOCK begins: the one that owns it, else the one of its name.
AcDbObjectId DrawingReader::blockOf(const ScannedObject& scanned) {
    const AcDbObjectId owner = loader_.ownerOf(scanned);
    if (peek<AcDbBlockTableRecord>(owner) != nullptr) return owner;
    const Group* const group = scanned.find(2);
    std::wstring name = group == nullptr ? std::wstring() : reading_.text(*group);
    if (equalIgnoringCase(name, L"$MODEL_SPACE")) name = ACDB_MODEL_SPACE;
    if (equalIgnoringCase(name, L"$PAPER_SPACE")) name = ACDB_PAPER_SPACE;
    const AcDbObjectId known = model::findRecord(reading_.state.roots.blockTable, name);
    return known.isNull() ? addBlock(name) : known;
}

void DrawingReader::beginBlock(ScannedObject& scanned) {
    entities_.end(scanned.position);
    block_ = blockOf(scanned);
    const auto* const block = peek<AcDbBlockTableRecord>(block_);
    if (block == nullptr) return;
    if (!ObjectAccess::contents(*block).begin.isNull()) {
        reading_.report.warn(scanned.position, L"block \"" + block->name() +
                                                   L"\" is there twice; what is in both is its");
        return;
    }
    const size_t position = scanned.position;
    AcDbObject* const begin = loader_.loadAs(scanned, std::make_unique<AcDbBlockBegin>(), block_);
    if (begin == nullptr) return;
    ObjectAccess::contents(*block).begin = begin->objectId();
    loader_.checkLater(begin->objectId(), position);
}

void DrawingReader::endBlock(ScannedObject& scanned) {
    entities_.end(scanned.position);
    const auto* const block = peek<AcDbBlockTableRecord>(block_);
    block_.setNull();
    if (block == nullptr || !ObjectAccess::contents(*block).end.isNull()) return;
    const size_t position = scanned.position;
    AcDbObject* const end =
        loader_.loadAs(scanned, std::make_unique<AcDbBlockEnd>(), block->objectId());
    if (end == nullptr) return;
    ObjectAccess::contents(*block).end = end->objectId();
    loader_.checkLater(end->objectId(), position);
}

// Dimension styles and block references find the blocks that they name wherever those stand.
// Files of release 12 have no table of blocks.
void DrawingReader::prepareBlocks() {
    AcDbObjectId& table = reading_.state.roots.blockTable;
    if (table.isNull()) {
        auto made = std::make_unique<AcDbBlockTable>();
        if (reading_.state.load(*made, 0, {}) == Acad::eOk) table = made.release()->objectId();
    }
    const Section* const blocks = section("BLOCKS");
    if (blocks == nullptr) return;
    ScannedObject scanned;
    reading_.scanner.seek(blocks->position);
    while (reading_.scanner.next(scanned) && !scanned.is("ENDSEC") && !scanned.is("SECTION")) {
        if (scanned.is("BLOCK")) blockOf(scanned);
    }
}

void DrawingReader::readBlocks() {
    prepareBlocks();
    const Section* const blocks = section("BLOCKS");
    if (blocks == nullptr) return;
    ScannedObject scanned;
    reading_.scanner.seek(blocks->position);
    while (reading_.scanner.next(scanned) && !scanned.is("ENDSEC") && !scanned.is("SECTION")) {
        if (scanned.is("BLOCK")) {
            beginBlock(scanned);
        } else if (scanned.is("ENDBLK")) {
            endBlock(scanned);
        } else if (block_.isNull()) {
            reading_.report.warn(scanned.position,
                                 fromUtf8(scanned.name()) + L" outside any block is left out");
        } else {
            entities_.take(scanned, block_);
        }
    }
    entities_.end(reading_.scanner.position());
}

// A block that the section of blocks does not have begins and ends all the same.
void DrawingReader::completeBlocks() {
    const auto* const table = peek<AcDbSymbolTable>(reading_.state.roots.blockTable);
    for (const AcDbObjectId id : ObjectAccess::records(*table).ids) {
        if (auto* const block = peek<AcDbBlockTableRecord>(id)) ObjectAccess::enteredTable(*block);
    }
}

void DrawingReader::readEntities() {
    const Section* const entities = section("ENTITIES");
    if (entities == nullptr) {
        reading_.report.warn(L"the section of entities is missing");
        return;
    }
    ScannedObject scanned;
    reading_.scanner.seek(entities->position);
    bool isEnded = false;
    while (!isEnded && reading_.scanner.next(scanned)) {
        isEnded = scanned.is("ENDSEC") || scanned.is("SECTION") || scanned.is("EOF");
        if (!isEnded) entities_.take(scanned, {});
    }
    entities_.end(reading_.scanner.position());
    if (!isEnded || !scanned.is("ENDSEC")) {
        reading_.report.warn(reading_.scanner.position(), L"the section of entities has no end");
    }
}

// ---- Objects ------------------------------------------------------------------------------------

void DrawingReader::readObjects() {
    const Section* const objects = section("OBJECTS");
    if (objects == nullptr) return;
    ScannedObject scanned;
    reading_.scanner.seek(objects->position);
    while (reading_.scanner.next(scanned) && !scanned.is("ENDSEC") && !scanned.is("SECTION") &&
           !scanned.is("EOF")) {
        const size_t position = scanned.position;
        const AcDbObjectId owner = loader_.ownerOf(scanned);
        AcDbObject* const object = loader_.load(scanned, ObjectLoader::Role::object, owner);
        if (object == nullptr) continue;
        reading_.origin->objects.push_back(object->objectId());
        loader_.checkLater(object->objectId(), position);
        AcDbObjectId& root = reading_.state.roots.namedObjects;
        if (root.isNull() && owner.isNull() && AcDbDictionary::cast(object) != nullptr) {
            root = object->objectId();
        }
    }
}

void DrawingReader::findDictionaries() {
    model::DatabaseRoots& roots = reading_.state.roots;
    AcDbDictionary* named = nullptr;
    if (acdbOpenObject(named, roots.namedObjects) != Acad::eOk) return;
    const auto find = [&](const wchar_t* name, AcDbObjectId& root) {
        AcDbObjectId id;
        if (named->getAt(name, id) == Acad::eOk && peek<AcDbDictionary>(id) != nullptr) root = id;
    };
    find(L"ACAD_GROUP", roots.groups);
    find(L"ACAD_LAYOUT", roots.layouts);
    find(L"ACAD_PLOTSTYLENAME", roots.plotStyleNames);
    named->close();
}

void DrawingReader::keepSections() {
    for (size_t i = 0; i < sections_.size(); ++i) {
        const std::string& name = sections_[i].name;
        if (std::find(std::begin(kReadSections), std::end(kReadSections), name) !=
            std::end(kReadSections)) {
            continue;
        }
        reading_.reader.seek(sections_[i].position);
        Group group;
        while (reading_.reader.next(group) == GroupReader::Step::group) {
            if (group.is(0, "ENDSEC") || group.is(0, "EOF")) break;
            if (group.isMalformed) continue;
            appendGroup(reading_.origin->sections[i].groups, group, reading_.codec,
                        reading_.handles);
        }
    }
}

void DrawingReader::reportDangling() {
    for (const Handles::Awaited& awaited : reading_.handles.awaited()) {
        if (awaited.id.isResident()) continue;
        reading_.report.warn(
            reading_.reader.positionOf(awaited.group),
            L"handle " + awaited.id.handle().text() + L" is that of no object in the file");
    }
}

}  // namespace sg::dxf

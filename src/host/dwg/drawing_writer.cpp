#include "host/dwg/drawing_writer.h"

#include <algorithm>

#include "host/dwg/code_pages.h"
#include "host/dwg/file_descriptions.h"
#include "host/dwg/header_section.h"
#include "host/dwg/object_types.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"

namespace sg::dwg {

using model::DatabaseTable;
using model::ObjectAccess;
using model::peek;

namespace {

constexpr bool kHasCarets = false;
// Previews have been small since release 2013; readers refuse the pages of greater ones.
constexpr size_t kMostPreview = 0x7C00;

std::string_view codePageOf(const model::DatabaseState& state) {
    return state.origin == nullptr || state.origin->codePage.empty()
               ? std::string_view("ANSI_1252")
               : std::string_view(state.origin->codePage);
}

const model::DwgOrigin* originOf(const model::DatabaseState& state) {
    return state.origin == nullptr ? nullptr : state.origin->dwg.get();
}

AcDbObjectId model::DatabaseRoots::*const kTables[] = {
    &model::DatabaseRoots::blockTable,     &model::DatabaseRoots::layerTable,
    &model::DatabaseRoots::textStyleTable, &model::DatabaseRoots::linetypeTable,
    &model::DatabaseRoots::viewTable,      &model::DatabaseRoots::ucsTable,
    &model::DatabaseRoots::viewportTable,  &model::DatabaseRoots::regAppTable,
    &model::DatabaseRoots::dimStyleTable,
};

// Tables that drawings do not have, nor files from release 2004 on.
bool isViewportHeader(const model::ProxyData& data) {
    return data.className == L"AcDbVXTable" || data.className == L"AcDbVXTableRecord";
}

}  // namespace

DrawingWriter::DrawingWriter(const AcDbDatabase& database, const dxf::Release& release)
    : state_(model::DatabaseState::of(database)),
      own_(originOf(state_)),
      wanted_(release),
      context_{const_cast<AcDbDatabase&>(database),
               release.number,
               {codePageOf(state_), false, kHasCarets},
               [this](AcDbObjectId id) { return handleOf(id); },
               {}},
      classes_(state_.origin.get(), release.number),
      objects_(state_, context_, classes_),
      seed_(state_.nextHandle()) {}

uint64_t DrawingWriter::handleOf(AcDbObjectId id) const {
    if (id.isNull() || model::sequenceOf(id) != state_.sequence()) return 0;
    const uint32_t index = model::indexOf(id);
    return index < isIn_.size() && isIn_[index] != 0 ? DatabaseTable::recordOf(id)->handle : 0;
}

// ---- What is in the file ------------------------------------------------------------------------

// What goes with an erased owner goes too.
bool DrawingWriter::hasOwnerInFile(const AcDbObject& object) const {
    constexpr int kDeepest = 1000;  // owners of a damaged file may form a circle
    const AcDbObject* one = &object;
    for (int depth = 0; one != nullptr && depth < kDeepest; ++depth) {
        if (one->isErased()) return false;
        one = DatabaseTable::objectOf(one->ownerId());
    }
    return true;
}

bool DrawingWriter::isWritten(const AcDbObject& object) {
    if (!hasOwnerInFile(object)) return false;
    if (model::hasDwgForm(object, release())) return true;
    const model::ProxyData* const data = model::proxyData(object);
    if (data == nullptr || isViewportHeader(*data)) return false;
    ++wrapped_[data->dxfName];
    return true;
}

void DrawingWriter::findWritten() {
    const uint32_t count = const_cast<model::DatabaseState&>(state_).records.count();
    isIn_.assign(count + 1, 0);
    isDone_.assign(count + 1, 0);
    const_cast<model::DatabaseState&>(state_).forEach([&](const AcDbObject& object) {
        if (isWritten(object)) isIn_[model::indexOf(object.objectId())] = 1;
    });
}

void DrawingWriter::lose(const AcDbObject& object) {
    ++lost_[model::dxfNameOf(object)];
}

void DrawingWriter::tellLosses() {
    for (const auto& [name, count] : lost_) {
        losses_.push_back(std::to_wstring(count) + (count == 1 ? L" object " : L" objects ") +
                          (name.empty() ? L"without a name" : name) +
                          L" cannot be written in release " + fromUtf8(wanted_.name) +
                          (count == 1 ? L" and is left out" : L" and are left out"));
    }
    std::wstring names;
    for (const auto& [name, count] : wrapped_)
        names += (names.empty() ? L"" : L", ") + std::to_wstring(count) + L" " + name;
    if (names.empty()) return;
    losses_.push_back(L"kept in a form that other programs show only by its graphics: " + names);
}

void DrawingWriter::findReferences() {
    const_cast<model::DatabaseState&>(state_).forEach([&](const AcDbObject& object) {
        const auto* const reference = AcDbBlockReference::cast(&object);
        if (reference == nullptr || handleOf(object.objectId()) == 0) return;
        const model::Unguarded guard(*reference);
        context_.references[reference->blockTableRecord()].push_back(object.objectId());
    });
}

// ---- Objects ------------------------------------------------------------------------------------

void DrawingWriter::write(AcDbObjectId id, ObjectWriter::Neighbours neighbours) {
    if (handleOf(id) == 0) return;
    uint8_t& isDone = isDone_[model::indexOf(id)];
    if (isDone != 0) return;
    isDone = 1;
    const AcDbObject& object = *DatabaseTable::objectOf(id);
    if (!objects_.write(object, neighbours)) lose(object);
}

void DrawingWriter::write(AcDbObjectId id) {
    write(id, {});
}

void DrawingWriter::writeTables() {
    for (AcDbObjectId model::DatabaseRoots::*const root : kTables) {
        const AcDbObjectId id = state_.roots.*root;
        write(id);
        const auto* const table = peek<AcDbSymbolTable>(id);
        if (table == nullptr) continue;
        for (const AcDbObjectId record : ObjectAccess::records(*table).ids)
            write(record);
    }
}

// Entities of one owner in their order. The parts of one, which have no parts, are another row.
void DrawingWriter::writeRow(const std::vector<AcDbObjectId>& entities, bool areParts) {
    ObjectWriter::Neighbours neighbours;
    uint64_t own = 0;
    AcDbObjectId waiting;
    const auto put = [&](AcDbObjectId id, uint64_t behind) {
        if (id.isNull()) return;
        neighbours.behind = behind;
        write(id, neighbours);
        neighbours.before = own;
        if (!areParts) writeRow(ObjectAccess::partsOf(*peek<AcDbEntity>(id)), true);
    };
    for (const AcDbObjectId id : entities) {
        const uint64_t handle = handleOf(id);
        if (handle == 0 || peek<AcDbEntity>(id) == nullptr) continue;
        put(waiting, handle);
        waiting = id;
        own = handle;
    }
    put(waiting, 0);
}

void DrawingWriter::writeBlock(const AcDbBlockTableRecord& block) {
    const auto& contents = ObjectAccess::contents(block);
    write(contents.begin);
    writeRow(contents.entities, false);
    write(contents.end);
}

void DrawingWriter::writeBlocks() {
    const auto* const table = peek<AcDbSymbolTable>(state_.roots.blockTable);
    if (table == nullptr) return;
    for (const AcDbObjectId id : ObjectAccess::records(*table).ids) {
        const auto* const block = peek<AcDbBlockTableRecord>(id);
        if (block != nullptr && handleOf(id) != 0) writeBlock(*block);
    }
}

void DrawingWriter::writeOthers() {
    write(state_.roots.namedObjects);
    const_cast<model::DatabaseState&>(state_).forEach(
        [&](const AcDbObject& object) { write(object.objectId()); });
}

// Files up to release 2000 have the table, if only an empty one.
void DrawingWriter::writeViewportHeaders() {
    if (release() >= AcDb::kDHL_1018) return;
    if (own_ != nullptr) {
        const auto kept = own_->header.find(L"*VIEWPORT_HEADERS");
        if (kept != own_->header.end()) {
            viewportHeaders_ = handleOf(std::get<AcDbObjectId>(kept->second));
        }
    }
    if (viewportHeaders_ != 0) return;
    viewportHeaders_ = seed_++;
    objects_.writeEmptyTable(kViewportHeaders, viewportHeaders_);
}

void DrawingWriter::writeObjects() {
    findWritten();
    findReferences();
    writeTables();
    writeBlocks();
    writeOthers();
    writeViewportHeaders();
    tellLosses();
}

// ---- The file -----------------------------------------------------------------------------------

std::vector<uint64_t> DrawingWriter::rootHandles() const {
    std::vector<uint64_t> handles{seed_};
    for (AcDbObjectId model::DatabaseRoots::*const root : kTables)
        handles.push_back(handleOf(state_.roots.*root));
    handles.push_back(viewportHeaders_);
    handles.push_back(handleOf(state_.roots.namedObjects));
    handles.push_back(0);  // multiline styles, which the header has
    handles.push_back(handleOf(state_.roots.groups));
    return handles;
}

// Data of modelled solids came with release 2013; the texts of other sections are of their release.
void DrawingWriter::keepSections(FileParts& parts) const {
    if (own_ == nullptr) return;
    const bool hasSameTexts =
        (state_.origin->release >= AcDb::kDHL_1021) == (release() >= AcDb::kDHL_1021);
    for (const model::DwgOrigin::Section& one : own_->sections) {
        if (one.name == section::kPreview) {
            const bool isSmall = release() < AcDb::kDHL_1027 || one.data.size() <= kMostPreview;
            if (isSmall) parts.preview = one.data;
        } else if (one.name == section::kStoredData) {
            if (release() >= AcDb::kDHL_1027) parts.storedData = one.data;
        } else if (one.name == section::kSummary && hasSameTexts) {
            parts.summary = one.data;
        } else if (one.name == "AcDb:VBAProject" ||
                   (one.name == section::kDependencies && state_.origin->release == release())) {
            parts.kept.push_back({one.name, one.data});
        }
    }
}

Bytes DrawingWriter::write() {
    writeObjects();
    FileParts parts;
    parts.release = release();
    parts.version = wanted_.version;
    parts.codePage = codePageNumber(context_.codec.codePage());
    parts.header = writeHeader(state_, context_, seed_, viewportHeaders_);
    parts.classes = writeClasses(classes_.entries(), context_);
    parts.objects = std::move(objects_.objects());
    parts.places = objects_.places();
    parts.measurement = state_.header().get<int32_t>(L"MEASUREMENT");
    parts.auxiliaryHeader = auxiliaryHeader(state_, release(), seed_);
    parts.summary = emptySummary(state_, release());
    parts.application = applicationInfo(release());
    parts.secondHeaderHandles = rootHandles();
    keepSections(parts);
    return release() >= AcDb::kDHL_1018 ? writeContainer2004(parts) : writeContainer2000(parts);
}

}  // namespace sg::dwg

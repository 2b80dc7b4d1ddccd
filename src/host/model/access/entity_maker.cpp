#include "host/model/access/entity_maker.h"

#include <string_view>

#include "base/text.h"
#include "host/model/access/block_cycles.h"
#include "host/model/access/class_names.h"
#include "host/model/access/entity_parts.h"
#include "host/model/access/group_checks.h"
#include "host/model/core/list_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/entities/mesh/mesh.h"
#include "host/model/entities/ole_frame.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/references.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/view_tables.h"
#include "platform/db/polyline_2d.h"

namespace sg::model {
namespace {

enum : int {
    kType = 0,
    kName = 2,
    kLayer = 8,
    kOrigin = 10,
    kHasParts = 66,
    kPaper = 67,
    kFlags = 70
};
constexpr int kLayoutName = 410;

std::wstring_view textAt(const resbuf* groups, int code) {
    const resbuf* const group = findGroup(groups, code);
    if (group == nullptr || acdbGroupCodeToType(group->restype) != RTSTR ||
        group->resval.rstring == nullptr) {
        return {};
    }
    return group->resval.rstring;
}

int flagAt(const resbuf* groups, int code) {
    const resbuf* const group = findGroup(groups, code);
    return group == nullptr ? 0 : group->resval.rint;
}

// Gives a part to what it belongs to; the part is then the database's.
bool appendPart(AcDbEntity& whole, std::unique_ptr<AcDbEntity>& part) {
    Acad::ErrorStatus status = Acad::eIllegalEntityType;
    if (auto* const reference = AcDbBlockReference::cast(&whole)) {
        if (auto* const attribute = AcDbAttribute::cast(part.get())) {
            status = reference->appendAttribute(attribute);
        }
    } else if (auto* const flat = AcDb2dPolyline::cast(&whole)) {
        if (auto* const vertex = AcDb2dVertex::cast(part.get())) {
            status = flat->appendVertex(vertex);
        }
    } else if (auto* const spatial = AcDb3dPolyline::cast(&whole)) {
        if (auto* const vertex = AcDb3dPolylineVertex::cast(part.get())) {
            status = spatial->appendVertex(vertex);
        }
    } else if (auto* const net = AcDbPolygonMesh::cast(&whole)) {
        if (auto* const vertex = AcDbPolygonMeshVertex::cast(part.get())) {
            status = net->appendVertex(vertex);
        }
    } else if (auto* const mesh = AcDbPolyFaceMesh::cast(&whole)) {
        if (auto* const face = AcDbFaceRecord::cast(part.get())) {
            status = mesh->appendFaceRecord(face);
        } else if (auto* const vertex = AcDbPolyFaceMeshVertex::cast(part.get())) {
            status = mesh->appendVertex(vertex);
        }
    }
    if (status != Acad::eOk) return false;
    part.release()->close();
    return true;
}

// What a list of another object says of its reactors and its extension dictionary stays with that.
bool read(AcDbObject& object, ListReader& reader) {
    if (object.dxfIn(&reader) != Acad::eOk) return false;
    if (ObjectAccess::extras(object) != nullptr) {
        Extras& extras = ObjectAccess::needExtras(object);
        extras.reactors.removeAll();
        extras.extensionDictionary.setNull();
    }
    return true;
}

// Frames of other programs' objects, and what stands for an unknown class, need more than a list.
bool isBeyondLists(const AcRxClass* type) {
    return type->isDerivedFrom(AcDbOle2Frame::desc()) ||
           type->isDerivedFrom(AcDbProxyEntity::desc()) ||
           type->isDerivedFrom(AcDbProxyObject::desc());
}

// The name of a space, of which a layout may have one with a number.
bool isSpace(std::wstring_view name) {
    const std::wstring_view paper = ACDB_PAPER_SPACE;
    return equalIgnoringCase(name, ACDB_MODEL_SPACE) ||
           equalIgnoringCase(name.substr(0, paper.size()), paper);
}

// Vertices and attributes are made only for what they belong to.
bool isPart(const AcRxClass* type) {
    return type->isDerivedFrom(AcDbVertex::desc()) || type->isDerivedFrom(AcDbAttribute::desc());
}

// A vertex without widths of its own has the polyline's.
void takeWidths(AcDbEntity& part, const AcDbEntity& whole) {
    auto* const vertex = AcDb2dVertex::cast(&part);
    const auto* const polyline = AcDb2dPolyline::cast(&whole);
    if (vertex == nullptr || polyline == nullptr) return;
    vertex->setStartWidth(polyline->defaultStartWidth());
    vertex->setEndWidth(polyline->defaultEndWidth());
}

// A net has the vertices of all its rows and columns.
bool isWhole(const AcDbEntity& entity) {
    const auto* const net = AcDbPolygonMesh::cast(&entity);
    return net == nullptr || net->isComplete();
}

}  // namespace

const resbuf* findGroup(const resbuf* groups, int code) {
    while (groups != nullptr && groups->restype != code)
        groups = groups->rbnext;
    return groups;
}

NeededLayer::NeededLayer(AcDbDatabase& database, const resbuf* groups) {
    const std::wstring name(textAt(groups, kLayer));
    if (!name.empty() && recordNamed(&database, NamedIn::layers, name).isNull()) {
        made_ = addRecord(database, NamedIn::layers, name);
    }
}

NeededLayer::~NeededLayer() {
    if (!made_.isNull()) eraseObject(made_);
}

EntityMaker::~EntityMaker() = default;

void EntityMaker::reset() {
    whole_.reset();
    parts_.clear();
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, block_, AcDb::kForWrite) == Acad::eOk) {
        block->erase();
        block->close();
    }
    block_.setNull();
    blockName_.clear();
}

EntityMaker::Result EntityMaker::make(const resbuf* groups, bool objects) {
    const std::wstring_view type = textAt(groups, kType);
    const AcRxClass* const made = classOfGroups(groups);
    Result result;
    if (equalIgnoringCase(type, L"BLOCK")) {
        result = beginBlock(groups);
    } else if (equalIgnoringCase(type, L"ENDBLK")) {
        result = endBlock();
    } else if (equalIgnoringCase(type, L"SEQEND")) {
        result = endParts();
    } else if (made == nullptr || isBeyondLists(made)) {
        result = {};
    } else if (whole_ != nullptr) {
        result = addPart(groups, made);
    } else if (made->isDerivedFrom(AcDbEntity::desc())) {
        result = makeEntity(groups, made);
    } else if (made->isDerivedFrom(AcDbSymbolTableRecord::desc())) {
        result = makeRecord(groups, tableOfRecords(database_, made), made);
    } else if (objects) {
        result = makeObject(groups, made);
    }
    if (!result.made) reset();
    return result;
}

bool EntityMaker::fill(AcDbObject& object, const resbuf* groups) {
    ListReader reader(groups, &database_);
    if (!hasRequiredGroups(object, groups)) return false;
    if (!hasValidValues(object, groups, database_)) return false;
    if (AcDbEntity::cast(&object) == nullptr) return read(object, reader);
    NeededLayer layer(database_, groups);
    if (!read(object, reader)) return false;
    layer.keep();
    return true;
}

bool EntityMaker::append(AcDbEntity* entity, AcDbObjectId space, AcDbObjectId& id) {
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, space, AcDb::kForWrite) != Acad::eOk) return false;
    const Acad::ErrorStatus status = block->appendAcDbEntity(id, entity);
    block->close();
    return status == Acad::eOk;
}

AcDbObjectId EntityMaker::spaceOf(const resbuf* groups) const {
    if (!block_.isNull()) return block_;
    const std::wstring layoutName(textAt(groups, kLayoutName));
    AcDbDictionary* layouts = nullptr;
    AcDbObjectId space;
    if (!layoutName.empty() &&
        database_.getLayoutDictionary(layouts, AcDb::kForRead) == Acad::eOk) {
        AcDbLayout* layout = nullptr;
        if (layouts->getAt(layoutName.c_str(), layout, AcDb::kForRead) == Acad::eOk) {
            space = layout->getBlockTableRecordId();
            layout->close();
        }
        layouts->close();
    }
    if (!space.isNull()) return space;
    const resbuf* const paper = findGroup(groups, kPaper);
    if (paper == nullptr) return database_.currentSpaceId();
    return paper->resval.rint != 0 ? database_.paperSpaceId() : database_.modelSpaceId();
}

// A reference to a space, or one in the new definition of a block that it shows.
bool EntityMaker::wouldShowItself(const AcDbBlockReference& reference) const {
    const auto* const shown = peek<AcDbBlockTableRecord>(reference.blockTableRecord());
    if (shown != nullptr && shown->isLayout()) return true;
    if (block_.isNull()) return false;
    const AcDbObjectId existing = recordNamed(&database_, NamedIn::blocks, blockName_);
    return !existing.isNull() && showsBlock(reference.blockTableRecord(), existing);
}

EntityMaker::Result EntityMaker::makeEntity(const resbuf* groups, const AcRxClass* type) {
    if (isPart(type)) return {};
    std::unique_ptr<AcDbEntity> entity(AcDbEntity::cast(type->create()));
    if (entity == nullptr) return {};
    entity->setLayer(database_.clayer());
    entity->subSetDatabaseDefaults(&database_);
    entity->setColor(AcCmColor());
    entity->setLinetype(database_.byLayerLinetype());
    entity->setLinetypeScale(1);
    entity->setLineWeight(AcDb::kLnWtByLayer);
    if (!fill(*entity, groups)) return {};
    const auto* const reference = AcDbBlockReference::cast(entity.get());
    if (reference != nullptr && wouldShowItself(*reference)) return {};
    const bool isPolyline = equalIgnoringCase(textAt(groups, kType), L"POLYLINE");
    if (isPolyline || (reference != nullptr && flagAt(groups, kHasParts) != 0)) {
        whole_ = std::move(entity);
        parts_.clear();
        space_ = spaceOf(groups);
        return {true, {}, {}};
    }
    Result result;
    result.made = append(entity.get(), spaceOf(groups), result.id);
    if (result.made) entity.release()->close();
    return result;
}

EntityMaker::Result EntityMaker::addPart(const resbuf* groups, const AcRxClass* type) {
    if (!isPartOf(type, *whole_)) return {};
    std::unique_ptr<AcDbEntity> part(AcDbEntity::cast(type->create()));
    if (part == nullptr) return {};
    part->setLayer(whole_->layerId());
    part->subSetDatabaseDefaults(&database_);
    takeWidths(*part, *whole_);
    if (!fill(*part, groups)) return {};
    parts_.push_back(std::move(part));
    return {true, {}, {}};
}

EntityMaker::Result EntityMaker::endParts() {
    if (whole_ == nullptr) return {};
    Result result;
    result.made = append(whole_.get(), space_, result.id);
    if (!result.made) return result;
    AcDbEntity* const entity = whole_.release();
    for (std::unique_ptr<AcDbEntity>& part : parts_) {
        result.made = result.made && appendPart(*entity, part);
    }
    parts_.clear();
    result.made = result.made && isWhole(*entity);
    if (!result.made) entity->erase();
    entity->close();
    return result;
}

EntityMaker::Result EntityMaker::beginBlock(const resbuf* groups) {
    const std::wstring name(textAt(groups, kName));
    if (name.empty() || isSpace(name) || !block_.isNull() || whole_ != nullptr) return {};
    AcDbBlockTable* table = nullptr;
    if (database_.getBlockTable(table, AcDb::kForWrite) != Acad::eOk) return {};
    auto block = std::make_unique<AcDbBlockTableRecord>();
    Result result;
    // Until it is complete it has a number as its name, which an anonymous block keeps.
    const std::wstring prefix = name.front() == L'*' ? name.substr(0, 2) : L"*U";
    if (block->setName(prefix.c_str()) == Acad::eOk &&
        table->add(block_, block.get()) == Acad::eOk) {
        if (const resbuf* const origin = findGroup(groups, kOrigin)) {
            const double* const p = origin->resval.rpoint;
            block->setOrigin({p[0], p[1], p[2]});
        }
        block.release()->close();
        blockName_ = name;
        result.made = true;
    }
    table->close();
    return result;
}

// The entities of an existing block go, and those of the new one take their place.
bool EntityMaker::replaceContents(AcDbObjectId existing) {
    AcDbBlockTableRecord* block = nullptr;
    AcDbBlockTableRecord* made = nullptr;
    if (acdbOpenObject(block, existing, AcDb::kForWrite) != Acad::eOk) return false;
    if (acdbOpenObject(made, block_, AcDb::kForWrite) != Acad::eOk) {
        block->close();
        return false;
    }
    AcDbObjectIdArray entities;
    for (const AcDbObjectId id : block->entityIds())
        eraseObject(id);
    for (const AcDbObjectId id : made->entityIds())
        entities.append(id);
    block->setOrigin(made->origin());
    const bool moved = block->assumeOwnershipOf(entities) == Acad::eOk;
    made->erase();
    made->close();
    block->close();
    return moved;
}

EntityMaker::Result EntityMaker::endBlock() {
    if (block_.isNull() || whole_ != nullptr) return {};
    Result result;
    const AcDbObjectId existing = recordNamed(&database_, NamedIn::blocks, blockName_);
    const bool isAnonymous = blockName_.front() == L'*';
    if (isAnonymous) {
        result = {true, block_, nameOf(block_)};
    } else if (!existing.isNull()) {
        result = {replaceContents(existing), existing, blockName_};
    } else {
        AcDbBlockTableRecord* block = nullptr;
        if (acdbOpenObject(block, block_, AcDb::kForWrite) == Acad::eOk) {
            result = {block->setName(blockName_.c_str()) == Acad::eOk, block_, blockName_};
            block->close();
        }
    }
    if (result.made) block_.setNull();
    return result;
}

EntityMaker::Result EntityMaker::makeRecord(const resbuf* groups, AcDbObjectId table,
                                            const AcRxClass* type) {
    AcDbSymbolTable* opened = nullptr;
    Result result;
    std::unique_ptr<AcDbSymbolTableRecord> record(AcDbSymbolTableRecord::cast(type->create()));
    if (record == nullptr || !fill(*record, groups)) return result;
    if (acdbOpenObject(opened, table, AcDb::kForWrite) != Acad::eOk) return result;
    // The name is tested as any other is.
    const std::wstring name = record->name();
    result.made = record->setName(name.c_str()) == Acad::eOk &&
                  opened->add(result.id, record.get()) == Acad::eOk;
    if (result.made) record.release()->close();
    opened->close();
    return result;
}

EntityMaker::Result EntityMaker::makeObject(const resbuf* groups, const AcRxClass* type) {
    Result result;
    std::unique_ptr<AcDbObject> object(AcDbObject::cast(type->create()));
    if (object == nullptr || !fill(*object, groups)) return result;
    result.made = database_.addAcDbObject(result.id, object.get()) == Acad::eOk;
    if (result.made) object.release()->close();
    return result;
}

}  // namespace sg::model

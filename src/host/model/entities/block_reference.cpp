#include "platform/db/block_reference.h"

#include <cmath>

#include "host/model/curves/listing.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/entities/text_setting.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, 0, 0, L"INSERT", nullptr)

namespace {

// Blocks within blocks beyond this are not looked into: a block that shows itself ends so.
constexpr int kMostNesting = 32;

class Nesting {
  public:
    Nesting() { ++depth_; }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    static bool isTooDeep() { return depth_ > kMostNesting; }

  private:
    static thread_local int depth_;
};
thread_local int Nesting::depth_ = 0;

// Definitions of attributes show in references as attributes only, unless they are constant.
bool showsInReferences(const AcDbEntity& entity) {
    const auto* const definition = AcDbAttributeDefinition::cast(&entity);
    return definition == nullptr || (definition->isConstant() && !definition->isInvisible());
}

// What stands on layer 0 or takes its looks from the block gets those of the reference.
void takeLooks(AcDbEntity& entity, const AcDbBlockReference& reference) {
    const AcDbDatabase* const database = reference.database();
    if (database != nullptr && entity.layerId() == database->layerZero()) {
        entity.setLayer(reference.layerId());
    }
    if (entity.color().isByBlock()) entity.setColor(reference.color());
    if (database != nullptr && entity.linetypeId() == database->byBlockLinetype()) {
        entity.setLinetype(reference.linetypeId());
    }
    if (entity.lineWeight() == AcDb::kLnWtByBlock) entity.setLineWeight(reference.lineWeight());
}

}  // namespace

AcDbBlockReference::AcDbBlockReference() = default;
AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block)
    : block_(block), position_(position) {}
AcDbBlockReference::~AcDbBlockReference() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
    assertWriteEnabled();
    block_ = block;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    position_ = position;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
    assertWriteEnabled();
    scale_ = scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double rotation) {
    assertWriteEnabled();
    rotation_ = rotation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setLayer(AcDbObjectId layer, bool doSubents,
                                               bool allowHiddenLayer) {
    const Acad::ErrorStatus status = AcDbEntity::setLayer(layer, doSubents, allowHiddenLayer);
    if (status != Acad::eOk || sequenceEnd_.isNull()) return status;
    AcDbEntity* end = nullptr;
    if (acdbOpenObject(end, sequenceEnd_, AcDb::kForWrite) == Acad::eOk) {
        end->setLayer(layer, doSubents, allowHiddenLayer);
        end->close();
    }
    return Acad::eOk;
}

// From the block's directions and sizes, its base point at the origin, to the world.
AcGeMatrix3d AcDbBlockReference::placement() const {
    AcGeMatrix3d scaling;
    scaling.entry[0][0] = scale_.sx;
    scaling.entry[1][1] = scale_.sy;
    scaling.entry[2][2] = scale_.sz;
    return sg::model::Frame{position_, normal_, rotation_}.toWorld() * scaling;
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
    AcDbBlockTableRecord* block = nullptr;
    AcGePoint3d origin;
    if (acdbOpenObject(block, block_, AcDb::kForRead, true) == Acad::eOk) {
        origin = block->origin();
        block->close();
    }
    return placement() * AcGeMatrix3d::translation(-origin.asVector());
}

Acad::ErrorStatus AcDbBlockReference::place(const AcGeMatrix3d& placement) {
    AcGePoint3d origin;
    AcGeVector3d x, y, z;
    placement.getCoordSystem(origin, x, y, z);
    constexpr double kSquare = 1e-8;
    if (x.isZeroLength() || y.isZeroLength() || z.isZeroLength()) return Acad::eInvalidInput;
    const bool square = std::abs(x.normal().dotProduct(y.normal())) < kSquare &&
                        std::abs(y.normal().dotProduct(z.normal())) < kSquare &&
                        std::abs(z.normal().dotProduct(x.normal())) < kSquare;
    if (!square) return Acad::eCannotScaleNonUniformly;
    assertWriteEnabled();
    // A mirrored reference is scaled by a negative factor along x.
    const bool mirrored = x.crossProduct(y).dotProduct(z) < 0;
    const AcGeVector3d along = mirrored ? -x : x;
    position_ = origin;
    normal_ = z.normal();
    rotation_ = sg::model::rotationOf(along, normal_);
    scale_ = AcGeScale3d(mirrored ? -x.length() : x.length(), y.length(), z.length());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTransform(const AcGeMatrix3d& transform) {
    AcDbBlockTableRecord* block = nullptr;
    AcGePoint3d origin;
    if (acdbOpenObject(block, block_, AcDb::kForRead, true) == Acad::eOk) {
        origin = block->origin();
        block->close();
    }
    return place(transform * AcGeMatrix3d::translation(origin.asVector()));
}

void AcDbBlockReference::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

// ---- Attributes ---------------------------------------------------------------------------------

class AcDbBlockReference::Attributes final : public AcDbObjectIterator {
  public:
    explicit Attributes(const std::vector<AcDbHardOwnershipId>& ids) : ids_(ids) { start(); }

    void start(bool atBeginning = true, bool skipErased = true) override {
        at_ = atBeginning ? 0 : static_cast<ptrdiff_t>(ids_.size()) - 1;
        if (skipErased) skip(atBeginning ? 1 : -1);
    }
    bool done() const override { return at_ < 0 || at_ >= static_cast<ptrdiff_t>(ids_.size()); }
    AcDbObjectId objectId() const override {
        return done() ? AcDbObjectId() : AcDbObjectId(ids_[static_cast<size_t>(at_)]);
    }
    void step(bool backwards = false, bool skipErased = true) override {
        at_ += backwards ? -1 : 1;
        if (skipErased) skip(backwards ? -1 : 1);
    }

  private:
    void skip(ptrdiff_t way) {
        while (!done() && objectId().isErased())
            at_ += way;
    }

    std::vector<AcDbHardOwnershipId> ids_;
    ptrdiff_t at_ = 0;
};

std::unique_ptr<AcDbObjectIterator> AcDbBlockReference::attributeIterator() const {
    assertReadEnabled();
    return std::make_unique<Attributes>(attributes_);
}

Acad::ErrorStatus AcDbBlockReference::needSequenceEnd() {
    if (!sequenceEnd_.isNull()) return Acad::eOk;
    auto end = std::make_unique<AcDbSequenceEnd>();
    end->setPropertiesFrom(this);
    AcDbObjectId id;
    const Acad::ErrorStatus status = database()->addAcDbObject(id, end.get());
    if (status != Acad::eOk) return status;
    AcDbSequenceEnd* const given = end.release();
    given->setOwnerId(objectId());
    given->close();
    sequenceEnd_ = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
    if (attribute == nullptr) return Acad::eNullEntityPointer;
    if (database() == nullptr) return Acad::eNotInDatabase;
    assertWriteEnabled();
    Acad::ErrorStatus status = needSequenceEnd();
    if (status == Acad::eOk) status = database()->addAcDbObject(id, attribute);
    if (status != Acad::eOk) return status;
    attribute->setOwnerId(objectId());
    attributes_.emplace_back(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* attribute) {
    AcDbObjectId id;
    return appendAttribute(id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbEntity::subErase(erasing);
    if (status != Acad::eOk) return status;
    for (const AcDbObjectId attribute : attributes_)
        sg::model::eraseObject(attribute, erasing);
    sg::model::eraseObject(sequenceEnd_, erasing);
    return Acad::eOk;
}

// ---- Drawing and geometry -----------------------------------------------------------------------

bool AcDbBlockReference::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const Nesting nesting;
    AcDbBlockTableRecord* block = nullptr;
    if (Nesting::isTooDeep() || acdbOpenObject(block, block_) != Acad::eOk) return true;
    AcGiGeometry& geometry = draw->geometry();
    const AcGeMatrix3d transform = blockTransform();
    for (const AcGeVector3d& copy : copies()) {
        const AcGeVector3d moved = sg::model::Frame{{}, normal_, rotation_}.toWorld() * copy;
        geometry.pushModelTransform(AcGeMatrix3d::translation(moved) * transform);
        for (auto each = block->newIterator(); !each->done(); each->step()) {
            AcDbEntity* entity = nullptr;
            if (each->getEntity(entity) != Acad::eOk) continue;
            if (entity->visibility() == AcDb::kVisible && showsInReferences(*entity)) {
                geometry.draw(entity);
            }
            entity->close();
        }
        geometry.popModelTransform();
    }
    block->close();
    for (auto each = attributeIterator(); !each->done(); each->step()) {
        AcDbAttribute* attribute = nullptr;
        if (acdbOpenObject(attribute, each->objectId()) != Acad::eOk) continue;
        geometry.draw(attribute);
        attribute->close();
    }
    return true;
}

template <class Visit>
Acad::ErrorStatus AcDbBlockReference::forEachShown(const Visit& visit) const {
    const Nesting nesting;
    if (Nesting::isTooDeep()) return Acad::eSelfReference;
    AcDbBlockTableRecord* block = nullptr;
    Acad::ErrorStatus status = acdbOpenObject(block, block_);
    if (status != Acad::eOk) return status;
    const AcGeMatrix3d transform = blockTransform();
    for (const AcGeVector3d& copy : copies()) {
        const AcGeVector3d moved = sg::model::Frame{{}, normal_, rotation_}.toWorld() * copy;
        const AcGeMatrix3d whole = AcGeMatrix3d::translation(moved) * transform;
        for (auto each = block->newIterator(); !each->done() && status == Acad::eOk; each->step()) {
            AcDbEntity* entity = nullptr;
            if (each->getEntity(entity) != Acad::eOk) continue;
            AcDbEntity* shown = nullptr;
            status = entity->getTransformedCopy(whole, shown);
            entity->close();
            if (status == Acad::eOk) status = visit(std::unique_ptr<AcDbEntity>(shown));
        }
    }
    block->close();
    return status;
}

Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d& transform) {
    const Acad::ErrorStatus status = place(transform * placement());
    if (status != Acad::eOk) return status;
    for (const AcDbObjectId id : attributes_) {
        AcDbAttribute* attribute = nullptr;
        if (acdbOpenObject(attribute, id, AcDb::kForWrite) != Acad::eOk) continue;
        attribute->transformBy(transform);
        attribute->close();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    std::vector<std::unique_ptr<AcDbEntity>> made;
    const Acad::ErrorStatus status = forEachShown([&](std::unique_ptr<AcDbEntity> entity) {
        takeLooks(*entity, *this);
        made.push_back(std::move(entity));
        return Acad::eOk;
    });
    if (status != Acad::eOk) return status;
    for (std::unique_ptr<AcDbEntity>& entity : made)
        entities.append(entity.release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::explodeToOwnerSpace() const {
    AcDbVoidPtrArray entities;
    Acad::ErrorStatus status = explode(entities);
    AcDbBlockTableRecord* owner = nullptr;
    if (status == Acad::eOk) status = acdbOpenObject(owner, ownerId(), AcDb::kForWrite);
    for (void* const each : entities) {
        auto* const entity = static_cast<AcDbEntity*>(each);
        if (status == Acad::eOk) status = owner->appendAcDbEntity(entity);
        if (status == Acad::eOk) {
            entity->close();
        } else {
            delete entity;
        }
    }
    if (owner != nullptr) owner->close();
    return status;
}

Acad::ErrorStatus AcDbBlockReference::subIntersectWith(const AcDbEntity* other,
                                                       AcDb::Intersect mode,
                                                       AcGePoint3dArray& points, int64_t thisMarker,
                                                       int64_t otherMarker) const {
    assertReadEnabled();
    return forEachShown([&](const std::unique_ptr<AcDbEntity>& entity) {
        return showsInReferences(*entity)
                   ? entity->intersectWith(other, mode, points, thisMarker, otherMarker)
                   : Acad::eOk;
    });
}

Acad::ErrorStatus AcDbBlockReference::subIntersectWith(const AcDbEntity* other,
                                                       AcDb::Intersect mode,
                                                       const AcGePlane& projection,
                                                       AcGePoint3dArray& points, int64_t thisMarker,
                                                       int64_t otherMarker) const {
    assertReadEnabled();
    return forEachShown([&](const std::unique_ptr<AcDbEntity>& entity) {
        return showsInReferences(*entity)
                   ? entity->intersectWith(other, mode, projection, points, thisMarker, otherMarker)
                   : Acad::eOk;
    });
}

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                       AcDbIntArray&) const {
    assertReadEnabled();
    points.append(position_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                          const AcGeVector3d& offset) {
    return indices.isEmpty() ? Acad::eOk : transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbBlockReference::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(position_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                             const AcGeVector3d& offset) {
    return subMoveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(
    AcDb::OsnapMode mode, int64_t marker, const AcGePoint3d& pick, const AcGePoint3d& last,
    const AcGeMatrix3d& view, AcGePoint3dArray& points, AcDbIntArray& geomIds) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) {
        points.append(position_);
        return Acad::eOk;
    }
    if (block_.isNull()) return Acad::eOk;
    return forEachShown([&](const std::unique_ptr<AcDbEntity>& entity) {
        return showsInReferences(*entity)
                   ? entity->getOsnapPoints(mode, marker, pick, last, view, points, geomIds)
                   : Acad::eOk;
    });
}

void AcDbBlockReference::subList() const {
    AcDbEntity::subList();
    sg::model::listText(L"Block Name:", sg::model::nameOf(block_).c_str());
    sg::model::listPoint(L"at", position_);
    sg::model::listNumber(L"X scale factor:", scale_.sx);
    sg::model::listNumber(L"Y scale factor:", scale_.sy);
    sg::model::listAngle(L"rotation angle:", rotation_);
    sg::model::listNumber(L"Z scale factor:", scale_.sz);
    sg::model::listNormal(normal_);
}

#include "platform/db/block_reference.h"

#include <cmath>

#include "host/model/curves/listing.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/entities/shown_block.h"
#include "host/model/entities/text_setting.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, 0, 0, L"INSERT", nullptr)

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

std::vector<AcGeMatrix3d> AcDbBlockReference::shownAt(Copies which) const {
    const AcGeMatrix3d transform = blockTransform();
    const std::vector<AcGeVector3d> offsets = copies(which);
    if (offsets.size() == 1) return {transform};
    const AcGeMatrix3d turn = sg::model::Frame{{}, normal_, rotation_}.toWorld();
    std::vector<AcGeMatrix3d> places;
    for (const AcGeVector3d& copy : offsets)
        places.push_back(AcGeMatrix3d::translation(turn * copy) * transform);
    return places;
}

bool AcDbBlockReference::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const Copies which = draw->regenType() == kAcGiForExtents ? Copies::outermost : Copies::all;
    for (const AcGeMatrix3d& place : shownAt(which))
        sg::model::drawBlock(draw, block_, place);
    for (auto each = attributeIterator(); !each->done(); each->step()) {
        AcDbAttribute* attribute = nullptr;
        if (acdbOpenObject(attribute, each->objectId()) != Acad::eOk) continue;
        draw->geometry().draw(attribute);
        attribute->close();
    }
    return true;
}

template <class Ask>
Acad::ErrorStatus AcDbBlockReference::askShown(const Ask& ask) const {
    assertReadEnabled();
    Acad::ErrorStatus status = Acad::eOk;
    for (const AcGeMatrix3d& place : shownAt()) {
        if (status != Acad::eOk) break;
        status = sg::model::forEachShown(block_, place, [&](std::unique_ptr<AcDbEntity> entity) {
            return sg::model::showsInReferences(*entity) ? ask(*entity) : Acad::eOk;
        });
    }
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
    AcDbVoidPtrArray made;
    Acad::ErrorStatus status = Acad::eOk;
    for (const AcGeMatrix3d& place : shownAt()) {
        if (status == Acad::eOk) status = sg::model::explodeBlock(*this, block_, place, made);
    }
    if (status == Acad::eOk) {
        entities.append(made);
    } else {
        for (void* const each : made)
            delete static_cast<AcDbEntity*>(each);
    }
    return status;
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
    return askShown([&](const AcDbEntity& entity) {
        return entity.intersectWith(other, mode, points, thisMarker, otherMarker);
    });
}

Acad::ErrorStatus AcDbBlockReference::subIntersectWith(const AcDbEntity* other,
                                                       AcDb::Intersect mode,
                                                       const AcGePlane& projection,
                                                       AcGePoint3dArray& points, int64_t thisMarker,
                                                       int64_t otherMarker) const {
    return askShown([&](const AcDbEntity& entity) {
        return entity.intersectWith(other, mode, projection, points, thisMarker, otherMarker);
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
    return askShown([&](const AcDbEntity& entity) {
        return entity.getOsnapPoints(mode, marker, pick, last, view, points, geomIds);
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

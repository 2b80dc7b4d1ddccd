#include "host/model/entities/dimension/dimension.h"

#include <cmath>

#include "host/model/core/memory_filers.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/planar.h"
#include "host/model/entities/dimension/sketch.h"
#include "host/model/entities/shown_block.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"
#include "platform/gi/draw.h"

using sg::model::DimensionSketch;
using sg::model::PlanarTransform;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDimension, AcDbEntity)

AcDbDimension::AcDbDimension() = default;
AcDbDimension::~AcDbDimension() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDimension::put(Slot slot, const AcGePoint3d& point) {
    return put(points_[slot], point);
}

Acad::ErrorStatus AcDbDimension::setDimBlockId(AcDbObjectId block) {
    assertWriteEnabled();
    block_ = block;
    carried_.setToIdentity();
    moved_ = false;
    stale_ = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::setDimensionStyle(AcDbObjectId style) {
    return put(style_, AcDbHardPointerId(style));
}

Acad::ErrorStatus AcDbDimension::setTextPosition(const AcGePoint3d& position) {
    textPlaced_ = true;
    return put(kText, position);
}

Acad::ErrorStatus AcDbDimension::useDefaultTextPosition() {
    return put(textPlaced_, false);
}

Acad::ErrorStatus AcDbDimension::setDimensionText(const wchar_t* text) {
    return put(text_, std::wstring(text == nullptr ? L"" : text));
}

Acad::ErrorStatus AcDbDimension::setTextRotation(double rotation) {
    return put(textRotation_, rotation);
}

Acad::ErrorStatus AcDbDimension::setHorizontalRotation(double rotation) {
    return put(horizontal_, rotation);
}

Acad::ErrorStatus AcDbDimension::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    stale_ = true;
    return sg::model::setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

void AcDbDimension::subSetDatabaseDefaults(AcDbDatabase* database) {
    AcDbEntity::subSetDatabaseDefaults(database);
    if (database != nullptr) style_ = database->dimstyle();
}

Acad::ErrorStatus AcDbDimension::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(points_[kDefinition], normal_);
    type = AcDb::kPlanar;
    return Acad::eOk;
}

void AcDbDimension::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

std::wstring AcDbDimension::shownText() const {
    assertReadEnabled();
    return DimensionSketch(*this).text();
}

// ---- The block ----------------------------------------------------------------------------------

AcGeMatrix3d AcDbDimension::blockTransform() const {
    const AcGePoint3d position = AcGeMatrix3d::planeToWorld(normal_) * blockPosition_;
    return carried_ * AcGeMatrix3d::translation(position.asVector()) *
           AcGeMatrix3d::rotation(blockRotation_, normal_);
}

std::vector<std::unique_ptr<AcDbEntity>> AcDbDimension::sketch() const {
    assertReadEnabled();
    DimensionSketch made(*this);
    draw(made);
    return made.take();
}

// What the block, where it went, shows; or where it is out of date, what it is to show.
std::vector<std::unique_ptr<AcDbEntity>> AcDbDimension::shownParts() const {
    if (stale_ || block_.isNull()) return sketch();
    std::vector<std::unique_ptr<AcDbEntity>> parts;
    sg::model::forEachShown(block_, blockTransform(), [&](std::unique_ptr<AcDbEntity> part) {
        parts.push_back(std::move(part));
        return Acad::eOk;
    });
    return parts;
}

// A new block, because the old one may be shown by copies of the dimension. Where the table of
// blocks cannot be had, the dimension stays as it is until the next time.
void AcDbDimension::renewBlock() {
    AcDbBlockTable* table = nullptr;
    if (database()->getBlockTable(table, AcDb::kForWrite) != Acad::eOk) return;
    auto parts = shownParts();
    auto block = std::make_unique<AcDbBlockTableRecord>();
    block->setName(L"*D");
    AcDbObjectId id;
    const Acad::ErrorStatus status = table->add(id, block.get());
    table->close();
    if (status != Acad::eOk) return;
    for (std::unique_ptr<AcDbEntity>& part : parts) {
        if (block->appendAcDbEntity(part.get()) == Acad::eOk) part.release()->close();
    }
    block.release()->close();
    assertWriteEnabled();
    const bool drawn = stale_ || block_.isNull();
    if (drawn && !textPlaced_) points_[kText] = DimensionSketch::textPosition(*this);
    blockPosition_.set(0, 0, 0);
    blockRotation_ = 0;
    blockIsOwn_ = true;
    setDimBlockId(id);
}

Acad::ErrorStatus AcDbDimension::subClose() {
    const bool due = stale_ || moved_ || block_.isNull();
    if (due && isWriteEnabled() && !isErased() && !isUndoing() && database() != nullptr) {
        renewBlock();
    }
    return AcDbEntity::subClose();
}

bool AcDbDimension::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (!stale_ && !block_.isNull()) {
        sg::model::drawBlock(draw, block_, blockTransform());
        return true;
    }
    for (const std::unique_ptr<AcDbEntity>& part : sketch())
        draw->geometry().draw(part.get());
    return true;
}

Acad::ErrorStatus AcDbDimension::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    if (!stale_ && !block_.isNull()) {
        return sg::model::explodeBlock(*this, block_, blockTransform(), entities);
    }
    for (std::unique_ptr<AcDbEntity>& part : sketch()) {
        sg::model::takeLooks(*part, *this);
        entities.append(part.release());
    }
    return Acad::eOk;
}

// ---- Geometry -----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDimension::subTransformBy(const AcGeMatrix3d& transform) {
    const PlanarTransform change(normal_, transform);
    if (change.flattens) return Acad::eInvalidInput;
    assertWriteEnabled();
    const bool rigid = change.similar && !change.turnsOver && std::abs(change.scale - 1) < 1e-9;
    if (!rigid) stale_ = true;
    carried_ = transform * carried_;
    moved_ = true;
    for (AcGePoint3d& point : points_)
        point = transform * point;
    rotation_ = change.angle(rotation_);
    if (oblique_ != 0) oblique_ = change.angle(oblique_);
    if (textRotation_ != 0) textRotation_ = change.angle(textRotation_);
    // Counted the other way round: it is what turns the plane's x axis back.
    horizontal_ = -change.angle(-horizontal_);
    if (std::abs(std::sin(horizontal_ / 2)) < 1e-12) horizontal_ = 0;
    leaderLength_ *= change.scale;
    normal_ = change.normal;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                  AcDbIntArray&) const {
    assertReadEnabled();
    for (const Slot slot : grips())
        points.append(points_[slot]);
    return Acad::eOk;
}

// A point that is the grip of two is moved once.
Acad::ErrorStatus AcDbDimension::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::array<bool, kSlots> moved{};
    const auto slots = grips();
    for (const int index : indices) {
        if (index < 0 || static_cast<size_t>(index) >= slots.size()) continue;
        const Slot slot = slots[static_cast<size_t>(index)];
        if (std::exchange(moved[slot], true)) continue;
        points_[slot] += offset;
        stale_ = true;
    }
    const bool whole = std::all_of(slots.begin(), slots.end(), [&](Slot s) { return moved[s]; });
    if (moved[kText] && !whole) textPlaced_ = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                                   const AcGePoint3d& pick, const AcGePoint3d& last,
                                                   const AcGeMatrix3d& view,
                                                   AcGePoint3dArray& points,
                                                   AcDbIntArray& geomIds) const {
    assertReadEnabled();
    for (const std::unique_ptr<AcDbEntity>& part : shownParts())
        part->getOsnapPoints(mode, marker, pick, last, view, points, geomIds);
    return Acad::eOk;
}

void AcDbDimension::subList() const {
    AcDbEntity::subList();
    sg::model::listText(L"Dimension Style:", sg::model::nameOf(style_).c_str());
    sg::model::listPoint(L"defining point:", points_[kDefinition]);
    sg::model::listPoint(L"text position:", points_[kText]);
    sg::model::listText(L"text:", shownText().c_str());
    sg::model::listNormal(normal_);
}

// What the block follows from, in one row of bytes.
std::vector<uint8_t> AcDbDimension::definition() const {
    std::vector<uint8_t> bytes;
    sg::model::MemoryWriter writer(bytes, AcDb::kUndoFiler, nullptr);
    for (const AcGePoint3d& point : points_)
        writer.writePoint3d(point);
    writer.writeVector3d(normal_);
    for (const double value :
         {rotation_, oblique_, leaderLength_, textRotation_, horizontal_, lineSpacing_})
        writer.writeDouble(value);
    writer.writeHardPointerId(style_);
    writer.writeString(text_);
    writer.writeInt16(static_cast<int16_t>(attachment_));
    for (const bool flag : {xType_, textPlaced_, flipFirst_, flipSecond_})
        writer.writeBool(flag);
    return bytes;
}

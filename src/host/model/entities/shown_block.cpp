#include "host/model/entities/shown_block.h"

#include "host/model/core/measuring_draw.h"
#include "platform/db/attribute.h"
#include "platform/db/database.h"
#include "platform/db/sortents.h"

namespace sg::model {

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

}  // namespace

bool showsInReferences(const AcDbEntity& entity) {
    const auto* const definition = AcDbAttributeDefinition::cast(&entity);
    return definition == nullptr || (definition->isConstant() && !definition->isInvisible());
}

void takeLooks(AcDbEntity& entity, const AcDbEntity& whole) {
    const AcDbDatabase* const database = whole.database();
    if (database != nullptr && entity.layerId() == database->layerZero()) {
        entity.setLayer(whole.layerId());
    }
    if (entity.color().isByBlock()) entity.setColor(whole.color());
    if (database != nullptr && entity.linetypeId() == database->byBlockLinetype()) {
        entity.setLinetype(whole.linetypeId());
    }
    if (entity.lineWeight() == AcDb::kLnWtByBlock) entity.setLineWeight(whole.lineWeight());
}

std::vector<AcDbObjectId> drawOrder(AcDbBlockTableRecord& block) {
    std::vector<AcDbObjectId> order;
    AcDbSortentsTable* table = nullptr;
    if (!block.extensionDictionary().isNull() && block.getSortentsTable(table) == Acad::eOk) {
        AcDbObjectIdArray ids;
        const Acad::ErrorStatus status = table->getFullDrawOrder(ids);
        table->close();
        order.assign(ids.begin(), ids.end());
        if (status == Acad::eOk) return order;
    }
    order.clear();
    for (const AcDbObjectId id : block.entityIds()) {
        if (!id.isErased()) order.push_back(id);
    }
    return order;
}

namespace {

void drawContents(AcGiWorldDraw* draw, AcDbObjectId block, const AcGeMatrix3d& transform) {
    const Nesting nesting;
    AcDbBlockTableRecord* record = nullptr;
    if (Nesting::isTooDeep() || acdbOpenObject(record, block) != Acad::eOk) return;
    AcGiGeometry& geometry = draw->geometry();
    geometry.pushModelTransform(transform);
    for (const AcDbObjectId id : drawOrder(*record)) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenObject(entity, id) != Acad::eOk) continue;
        if (entity->visibility() == AcDb::kVisible && showsInReferences(*entity)) {
            geometry.draw(entity);
        }
        entity->close();
    }
    geometry.popModelTransform();
    record->close();
}

// The box around a block for a drawing in haste. A block within itself adds nothing to it.
AcDbExtents boxOfBlock(AcDbObjectId block,
                       const std::shared_ptr<MeasuringDraw::BlockBoxes>& boxes) {
    const auto [at, isNew] = boxes->try_emplace(block);
    if (!isNew) return at->second;
    MeasuringDraw draw(boxes);
    drawContents(&draw, block, AcGeMatrix3d());
    return (*boxes)[block] = draw.extents();
}

}  // namespace

void drawBlock(AcGiWorldDraw* draw, AcDbObjectId block, const AcGeMatrix3d& transform) {
    auto* const measuring = dynamic_cast<MeasuringDraw*>(draw);
    if (measuring != nullptr && measuring->isInHaste()) {
        measuring->addBox(boxOfBlock(block, measuring->blockBoxes()), transform);
    } else {
        drawContents(draw, block, transform);
    }
}

Acad::ErrorStatus forEachShown(AcDbObjectId block, const AcGeMatrix3d& transform,
                               const VisitShown& visit) {
    if (block.isNull()) return Acad::eOk;
    const Nesting nesting;
    if (Nesting::isTooDeep()) return Acad::eSelfReference;
    AcDbBlockTableRecord* record = nullptr;
    Acad::ErrorStatus status = acdbOpenObject(record, block);
    if (status != Acad::eOk) return status;
    for (auto each = record->newIterator(); !each->done() && status == Acad::eOk; each->step()) {
        AcDbEntity* entity = nullptr;
        if (each->getEntity(entity) != Acad::eOk) continue;
        AcDbEntity* shown = nullptr;
        status = entity->getTransformedCopy(transform, shown);
        entity->close();
        if (status == Acad::eOk) status = visit(std::unique_ptr<AcDbEntity>(shown));
    }
    record->close();
    return status;
}

Acad::ErrorStatus explodeBlock(const AcDbEntity& whole, AcDbObjectId block,
                               const AcGeMatrix3d& transform, AcDbVoidPtrArray& entities) {
    std::vector<std::unique_ptr<AcDbEntity>> made;
    const Acad::ErrorStatus status =
        forEachShown(block, transform, [&](std::unique_ptr<AcDbEntity> entity) {
            takeLooks(*entity, whole);
            made.push_back(std::move(entity));
            return Acad::eOk;
        });
    if (status != Acad::eOk) return status;
    for (std::unique_ptr<AcDbEntity>& entity : made)
        entities.append(entity.release());
    return Acad::eOk;
}

}  // namespace sg::model

#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "host/model/sample_entity.h"
#include "host/seam/host_fixture.h"
#include "platform/db/database.h"

namespace sg::test {

// A test with a drawing of its own and the sample class.
class ModelTest : public HostTest {
  protected:
    ModelTest() {
        make();
        SampleEntity::rxInit();
        acrxBuildClassHierarchy();
        database = std::make_unique<AcDbDatabase>();
    }
    ~ModelTest() override {
        database.reset();
        stop();
    }

    AcDbTransactionManager& transactions() { return *database->transactionManager(); }

    // A new sample in a block, model space unless said otherwise; it is closed.
    AcDbObjectId add(const AcGePoint3d& at = {}, AcDbObjectId block = {}) {
        auto* const entity = new SampleEntity;
        entity->setAt(at);
        const AcDbObjectId id = append(entity, block);
        entity->close();
        return id;
    }
    // Gives an entity to a block; it stays open for write.
    AcDbObjectId append(AcDbEntity* entity, AcDbObjectId block = {}) {
        AcDbObjectId id;
        Opened<AcDbBlockTableRecord> record(block.isNull() ? database->modelSpaceId() : block,
                                            AcDb::kForWrite);
        EXPECT_EQ(record->appendAcDbEntity(id, entity), Acad::eOk);
        return id;
    }
    AcDbObjectId addBlock(const wchar_t* name) { return addBlockTo(*database, name); }
    static AcDbObjectId addBlockTo(AcDbDatabase& target, const wchar_t* name) {
        Opened<AcDbBlockTable> table(target.blockTableId(), AcDb::kForWrite);
        auto* const block = new AcDbBlockTableRecord;
        EXPECT_EQ(block->setName(name), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(table->add(id, block), Acad::eOk);
        block->close();
        return id;
    }
    AcDbObjectId addLayer(const wchar_t* name) { return addLayerTo(*database, name); }
    static AcDbObjectId addLayerTo(AcDbDatabase& target, const wchar_t* name) {
        Opened<AcDbLayerTable> table(target.layerTableId(), AcDb::kForWrite);
        auto* const layer = new AcDbLayerTableRecord;
        EXPECT_EQ(layer->setName(name), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(table->add(id, layer), Acad::eOk);
        layer->close();
        return id;
    }

    static AcGePoint3d placeOf(AcDbObjectId id) {
        Opened<SampleEntity> entity(id, AcDb::kForRead, true);
        return entity ? entity->at() : AcGePoint3d(-1, -1, -1);
    }
    static void move(AcDbObjectId id, const AcGePoint3d& to) {
        Opened<SampleEntity>(id, AcDb::kForWrite)->setAt(to);
    }
    static void erase(AcDbObjectId id, bool erasing = true) {
        EXPECT_EQ((Opened<AcDbObject>(id, AcDb::kForWrite, true)->erase(erasing)), Acad::eOk);
    }
    // What stands in a block, as its iterator walks it.
    static std::vector<AcDbObjectId> entitiesIn(AcDbObjectId block, bool forward = true) {
        std::vector<AcDbObjectId> ids;
        Opened<AcDbBlockTableRecord> record(block);
        for (auto walk = record->newIterator(forward); !walk->done(); walk->step(forward)) {
            AcDbObjectId id;
            EXPECT_EQ(walk->getEntityId(id), Acad::eOk);
            ids.push_back(id);
        }
        return ids;
    }
    std::vector<AcDbObjectId> entities() { return entitiesIn(database->modelSpaceId()); }

    std::unique_ptr<AcDbDatabase> database;
};

}  // namespace sg::test

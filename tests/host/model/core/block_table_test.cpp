#include "platform/db/block_table.h"

#include "host/model/core/block_contents.h"
#include "host/model/model_fixture.h"
#include "platform/db/sortents.h"

namespace sg::model {
namespace {

using test::Opened;
using BlockTest = test::ModelTest;

TEST_F(BlockTest, EntitiesStandInTheOrderOfAppending) {
    const AcDbObjectId a = add(), b = add(), c = add();
    EXPECT_EQ(entities(), (std::vector{a, b, c}));
    erase(b);
    EXPECT_EQ(entities(), (std::vector{a, c}));
    EXPECT_EQ(entitiesIn(database->modelSpaceId(), false), (std::vector{c, a}));
    Opened<AcDbBlockTableRecord> space(database->modelSpaceId());
    EXPECT_EQ(space->entityIds(), (std::vector{a, b, c}));
    EXPECT_EQ(entityAfter(*space.get(), {}), a);
    EXPECT_EQ(entityAfter(*space.get(), a), c);
    EXPECT_EQ(entityAfter(*space.get(), b), c) << "from an erased one on";
    EXPECT_TRUE(entityAfter(*space.get(), c).isNull());
    EXPECT_TRUE(entityAfter(*space.get(), database->layerZero()).isNull());
    EXPECT_EQ(lastEntity(*space.get()), c);
}

TEST_F(BlockTest, AppendingNeedsANewEntityAndADrawing) {
    auto* const entity = new SampleEntity;
    const AcDbObjectId id = append(entity);
    EXPECT_EQ(entity->layerId(), database->layerZero());
    EXPECT_EQ(entity->linetype(), L"ByLayer");
    EXPECT_EQ(entity->blockId(), database->modelSpaceId());
    AcDbObjectId again;
    {
        Opened<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
        EXPECT_EQ(space->appendAcDbEntity(again, entity), Acad::eAlreadyInDb);
        EXPECT_EQ(space->appendAcDbEntity(again, nullptr), Acad::eNullEntityPointer);
    }
    entity->close();
    AcDbBlockTableRecord loose;
    SampleEntity other;
    EXPECT_EQ(loose.appendAcDbEntity(&other), Acad::eNotInDatabase);
    EXPECT_EQ(entities(), std::vector{id});
}

TEST_F(BlockTest, IteratorsFollowChanges) {
    const AcDbObjectId a = add(), b = add(), c = add(), d = add();
    const AcDbObjectId block = addBlock(L"Target");
    const auto walk = Opened<AcDbBlockTableRecord>(database->modelSpaceId())->newIterator();
    const auto current = [&] {
        AcDbObjectId id;
        walk->getEntityId(id);
        return id;
    };
    walk->step();
    EXPECT_EQ(current(), b);
    AcDbObjectIdArray moved;
    moved.append(a);
    moved.append(b);
    Opened<AcDbBlockTableRecord>(block, AcDb::kForWrite)->assumeOwnershipOf(moved);
    walk->step();
    erase(d);
    const AcDbObjectId e = add();
    EXPECT_EQ(walk->seek(c), Acad::eOk);
    walk->step();
    EXPECT_EQ(current(), e);
    walk->step();
    EXPECT_TRUE(walk->done());
    EXPECT_EQ(walk->seek(a), Acad::eKeyNotFound) << "it is in the other block now";
}

TEST_F(BlockTest, EachBlockHasItsEnds) {
    const AcDbObjectId block = addBlock(L"B");
    Opened<AcDbBlockTableRecord> record(block);
    AcDbEntity* end = nullptr;
    ASSERT_EQ(record->openBlockBegin(end, AcDb::kForRead), Acad::eOk);
    EXPECT_STREQ(end->isA()->dxfName(), L"BLOCK");
    EXPECT_EQ(end->ownerId(), block);
    end->close();
    ASSERT_EQ(record->openBlockEnd(end, AcDb::kForRead), Acad::eOk);
    EXPECT_STREQ(end->isA()->dxfName(), L"ENDBLK");
    end->close();
    EXPECT_TRUE(record->entityIds().empty());
}

TEST_F(BlockTest, TheDrawOrderTableIsMadeWhenAsked) {
    AcDbSortentsTable* table = nullptr;
    {
        Opened<AcDbBlockTableRecord> space(database->modelSpaceId());
        EXPECT_EQ(space->getSortentsTable(table), Acad::eKeyNotFound);
        EXPECT_EQ(space->getSortentsTable(table, AcDb::kForRead, true), Acad::eNotOpenForWrite);
    }
    Opened<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
    ASSERT_EQ(space->getSortentsTable(table, AcDb::kForWrite, true), Acad::eOk);
    const AcDbObjectId id = table->objectId();
    EXPECT_EQ(table->blockId(), database->modelSpaceId());
    table->close();
    ASSERT_EQ(space->getSortentsTable(table), Acad::eOk);
    EXPECT_EQ(table->objectId(), id);
    table->close();
}

TEST_F(BlockTest, PropertiesAreKept) {
    const AcDbObjectId id = addBlock(L"B");
    Opened<AcDbBlockTableRecord> block(id, AcDb::kForWrite);
    block->setOrigin({1, 2, 3});
    block->setComments(L"a door");
    block->setExplodable(false);
    block->setBlockInsertUnits(4);
    block->setScaleUniformly(true);
    const std::unique_ptr<AcRxObject> copy(block->clone());
    const auto* const same = AcDbBlockTableRecord::cast(copy.get());
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(same->origin(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(same->comments(), L"a door");
    EXPECT_FALSE(same->explodable());
    EXPECT_EQ(same->blockInsertUnits(), 4);
    EXPECT_TRUE(same->scaleUniformly());
    EXPECT_EQ(same->name(), L"B");
}

}  // namespace
}  // namespace sg::model

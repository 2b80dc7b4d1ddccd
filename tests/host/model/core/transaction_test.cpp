#include "host/model/core/database_state.h"
#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using test::Opened;

class TransactionTest : public test::ModelTest {
  protected:
    SampleEntity* get(AcDbObjectId id, AcDb::OpenMode mode,
                      Acad::ErrorStatus expected = Acad::eOk) {
        AcDbObject* object = nullptr;
        EXPECT_EQ(transactions().getObject(object, id, mode), expected);
        return SampleEntity::cast(object);
    }
    void abort() { EXPECT_EQ(transactions().abortTransaction(), Acad::eOk); }
    void end() { EXPECT_EQ(transactions().endTransaction(), Acad::eOk); }
};

TEST_F(TransactionTest, WithoutOneThereIsNothingToEnd) {
    AcDbObject* object = nullptr;
    EXPECT_EQ(transactions().endTransaction(), Acad::eNoActiveTransactions);
    EXPECT_EQ(transactions().abortTransaction(), Acad::eNoActiveTransactions);
    EXPECT_EQ(transactions().getObject(object, database->layerZero()), Acad::eNoActiveTransactions);
    EXPECT_EQ(transactions().topTransaction(), nullptr);
}

TEST_F(TransactionTest, ObjectsStayOpenUntilTheEnd) {
    const AcDbObjectId id = add({1, 0, 0});
    AcTransaction* const outer = transactions().startTransaction();
    EXPECT_EQ(transactions().topTransaction(), outer);
    SampleEntity* const entity = get(id, AcDb::kForRead);
    EXPECT_EQ(get(id, AcDb::kForWrite), entity) << "for write while it is held for read";
    entity->setAt({2, 0, 0});
    AcTransaction* const inner = transactions().startTransaction();
    AcDbObject* again = nullptr;
    EXPECT_EQ(inner->getObject(again, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(again, entity);
    EXPECT_EQ(transactions().numActiveTransactions(), 2);
    AcDbObject* outside = nullptr;
    EXPECT_EQ(acdbOpenAcDbObject(outside, id, AcDb::kForRead), Acad::eWasOpenForWrite);
    EXPECT_EQ(entity->close(), Acad::eInvalidOpenState) << "the transaction holds it";
    end();
    EXPECT_TRUE(entity->isWriteEnabled());
    end();
    EXPECT_FALSE(entity->isReadEnabled());
    EXPECT_EQ(placeOf(id), AcGePoint3d(2, 0, 0));
}

TEST_F(TransactionTest, AnotherReaderKeepsItFromWriting) {
    const AcDbObjectId id = add();
    Opened<SampleEntity> reader(id);
    transactions().startTransaction();
    get(id, AcDb::kForRead);
    get(id, AcDb::kForWrite, Acad::eWasOpenForRead);
    end();
    EXPECT_TRUE(reader->isReadEnabled());
}

TEST_F(TransactionTest, AbortPutsStatesBack) {
    const AcDbObjectId id = add({1, 0, 0});
    transactions().startTransaction();
    SampleEntity* const entity = get(id, AcDb::kForWrite);
    entity->setAt({2, 0, 0});
    entity->setAt({3, 0, 0});
    entity->setColorIndex(3);
    entity->setTransparency(0x020000FF);
    abort();
    Opened<SampleEntity> after(id);
    EXPECT_EQ(after->at(), AcGePoint3d(1, 0, 0));
    EXPECT_TRUE(after->color().isByLayer());
    EXPECT_EQ(after->transparency(), 0u);
}

TEST_F(TransactionTest, AbortTakesBackWhatWasOpenedWithoutIt) {
    const AcDbObjectId id = add({1, 0, 0});
    transactions().startTransaction();
    move(id, {2, 0, 0});
    move(id, {3, 0, 0});
    const AcDbObjectId made = add({9, 0, 0});
    abort();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
    EXPECT_FALSE(made.isValid());
    EXPECT_EQ(entities(), std::vector{id});
}

TEST_F(TransactionTest, InnerChangesBecomeThoseOfTheOuterOne) {
    const AcDbObjectId id = add({1, 0, 0});
    const struct {
        bool abortInner, abortOuter;
        double x;
    } cases[] = {{true, false, 2}, {false, false, 3}, {true, true, 1}, {false, true, 1}};
    for (const auto& c : cases) {
        move(id, {1, 0, 0});
        transactions().startTransaction();
        SampleEntity* const entity = get(id, AcDb::kForWrite);
        entity->setAt({2, 0, 0});
        transactions().startTransaction();
        entity->setAt({3, 0, 0});
        c.abortInner ? abort() : end();
        EXPECT_EQ(entity->at().x, c.abortInner ? 2 : 3);
        c.abortOuter ? abort() : end();
        EXPECT_EQ(placeOf(id).x, c.x) << c.abortInner << c.abortOuter;
    }
}

TEST_F(TransactionTest, NewObjectsOfAnOuterOneGetTheirInnerStateBack) {
    transactions().startTransaction();
    auto* const entity = new SampleEntity;
    const AcDbObjectId id = append(entity);
    entity->setAt({1, 0, 0});
    EXPECT_EQ(transactions().addNewlyCreatedDBRObject(entity), Acad::eOk);
    transactions().startTransaction();
    entity->setAt({2, 0, 0});
    abort();
    EXPECT_EQ(entity->at(), AcGePoint3d(1, 0, 0));
    end();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(transactions().addNewlyCreatedDBRObject(entity), Acad::eNoActiveTransactions);
    transactions().startTransaction();
    EXPECT_EQ(transactions().addNewlyCreatedDBRObject(entity), Acad::eNotOpenForWrite);
    abort();
}

TEST_F(TransactionTest, AbortDestroysWhatWasMade) {
    const int alive = SampleEntity::alive;
    transactions().startTransaction();
    auto* const held = new SampleEntity;
    append(held);
    transactions().addNewlyCreatedDBRObject(held);
    const AcDbObjectId block = addBlock(L"Made");
    const AcDbObjectId inBlock = add({}, block);
    auto* const open = new SampleEntity;
    const AcDbObjectId openId = append(open);
    abort();
    EXPECT_TRUE(entities().empty());
    EXPECT_FALSE(block.isValid());
    EXPECT_FALSE(inBlock.isValid());
    EXPECT_FALSE(openId.isValid());
    EXPECT_FALSE((Opened<AcDbBlockTable>(database->blockTableId())->has(L"Made")));
    EXPECT_EQ(open->close(), Acad::eOk) << "whoever has it open still may close it";
    EXPECT_EQ(SampleEntity::alive, alive + 1) << "it goes with the drawing";
    addBlock(L"Made");
}

TEST_F(TransactionTest, AbortPutsEraseStatusBack) {
    const AcDbObjectId gone = add();
    const AcDbObjectId there = add();
    erase(gone);
    transactions().startTransaction();
    erase(there);
    erase(gone, false);
    EXPECT_EQ(entities(), std::vector{gone});
    transactions().startTransaction();
    erase(there, false);
    abort();
    EXPECT_TRUE(there.isErased());
    abort();
    EXPECT_EQ(entities(), std::vector{there});
}

TEST_F(TransactionTest, AbortPutsEntitiesBackIntoTheirBlocks) {
    const AcDbObjectId a = add(), b = add(), c = add();
    const AcDbObjectId block = addBlock(L"Target");
    const AcDbObjectId d = add({}, block);
    transactions().startTransaction();
    AcDbObjectIdArray moved;
    moved.append(b);
    Opened<AcDbBlockTableRecord>(block, AcDb::kForWrite)->assumeOwnershipOf(moved);
    EXPECT_EQ(entities(), (std::vector{a, c}));
    EXPECT_EQ(entitiesIn(block), (std::vector{d, b}));
    EXPECT_EQ(Opened<AcDbEntity>(b)->blockId(), block);
    const AcDbObjectId e = add();
    EXPECT_EQ(entities(), (std::vector{a, c, e}));
    abort();
    EXPECT_EQ(entities(), (std::vector{a, b, c}));
    EXPECT_EQ(entitiesIn(block), std::vector{d});
    EXPECT_EQ(Opened<AcDbEntity>(b)->blockId(), database->modelSpaceId());
}

TEST_F(TransactionTest, AbortPutsNamesAndAttachmentsBack) {
    const AcDbObjectId layer = addLayer(L"Walls");
    const AcDbObjectId id = add();
    const AcDbObjectId other = add();
    transactions().startTransaction();
    {
        Opened<AcDbLayerTableRecord> record(layer, AcDb::kForWrite);
        EXPECT_EQ(record->setName(L"Doors"), Acad::eOk);
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        resbuf* const data = acutBuildList(1001, L"ACAD", 1070, 7, 0);
        EXPECT_EQ(entity->setXData(data), Acad::eOk);
        acutRelRb(data);
        entity->createExtensionDictionary();
        entity->addPersistentReactor(other);
    }
    const AcDbObjectId dictionary = Opened<SampleEntity>(id)->extensionDictionary();
    AcDbObjectId found;
    EXPECT_TRUE(Opened<AcDbLayerTable>(database->layerTableId())->has(L"DOORS"));
    abort();
    EXPECT_FALSE(dictionary.isValid());
    Opened<AcDbLayerTable> table(database->layerTableId());
    EXPECT_FALSE(table->has(L"Doors"));
    EXPECT_EQ(table->getAt(L"walls", found), Acad::eOk);
    EXPECT_EQ(found, layer);
    Opened<SampleEntity> entity(id);
    EXPECT_EQ(entity->xData(), nullptr);
    EXPECT_TRUE(entity->extensionDictionary().isNull());
    EXPECT_FALSE(entity->hasPersistentReactor(other));
}

TEST_F(TransactionTest, AbortPutsHeaderAndHandedOverObjectsBack) {
    const AcDbObjectId id = add({1, 0, 0});
    database->setDimscale(2);
    transactions().startTransaction();
    database->setDimscale(48);
    SampleEntity* before = nullptr;
    ASSERT_EQ(acdbOpenObject(before, id, AcDb::kForWrite), Acad::eOk);
    auto* const instead = new SampleEntity;
    instead->setAt({5, 0, 0});
    EXPECT_EQ(before->handOverTo(instead), Acad::eOk);
    EXPECT_TRUE(before->objectId().isNull());
    EXPECT_EQ(instead->objectId(), id);
    EXPECT_EQ(instead->ownerId(), database->modelSpaceId());
    instead->close();
    delete before;
    EXPECT_EQ(placeOf(id), AcGePoint3d(5, 0, 0));
    abort();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(database->dimscale(), 2);
}

TEST_F(TransactionTest, CancelInsideKeepsWhatAbortNeeds) {
    const AcDbObjectId id = add({1, 0, 0});
    transactions().startTransaction();
    move(id, {2, 0, 0});
    {
        SampleEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenObject(entity, id, AcDb::kForWrite), Acad::eOk);
        entity->setAt({3, 0, 0});
        EXPECT_EQ(entity->cancel(), Acad::eOk);
        EXPECT_EQ(placeOf(id), AcGePoint3d(2, 0, 0));
        auto* const made = new SampleEntity;
        append(made);
        EXPECT_EQ(made->cancel(), Acad::eOk);
    }
    abort();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(entities(), std::vector{id});
}

TEST_F(TransactionTest, ChangesAfterAnInnerAbortBelongToTheOuterOne) {
    const AcDbObjectId id = add({1, 0, 0});
    transactions().startTransaction();
    SampleEntity* const entity = get(id, AcDb::kForWrite);
    transactions().startTransaction();
    entity->setAt({2, 0, 0});
    abort();
    entity->setAt({3, 0, 0});
    abort();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
}

TEST_F(TransactionTest, CancelGoesBackToTheOpenAcrossTransactions) {
    const AcDbObjectId id = add({1, 0, 0});
    transactions().startTransaction();
    for (int i = 0; i < 20; ++i)
        move(id, {1, double(i), 0});
    move(id, {1, 0, 0});
    end();
    SampleEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenObject(entity, id, AcDb::kForWrite), Acad::eOk);
    entity->setAt({2, 0, 0});
    transactions().startTransaction();
    entity->setAt({3, 0, 0});
    abort();
    EXPECT_EQ(entity->at(), AcGePoint3d(2, 0, 0));
    transactions().startTransaction();
    entity->setAt({4, 0, 0});
    end();
    EXPECT_EQ(entity->cancel(), Acad::eOk);
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 0, 0));
}

class UndoTest : public TransactionTest {
  protected:
    UndoLog& log() { return DatabaseState::of(*database).undo; }
};

TEST_F(UndoTest, GoesFromMarkToMarkAndBack) {
    const AcDbObjectId id = add({1, 0, 0});
    EXPECT_FALSE(log().undo());
    log().startUndoRecord();
    move(id, {2, 0, 0});
    log().startUndoRecord();
    move(id, {3, 0, 0});
    erase(id);
    const AcDbObjectId made = add({7, 0, 0});
    move(made, {8, 0, 0});

    EXPECT_TRUE(log().undo());
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(placeOf(id).x, 2);
    EXPECT_FALSE(made.isValid());
    EXPECT_TRUE(log().undo());
    EXPECT_EQ(placeOf(id).x, 1);
    EXPECT_FALSE(log().undo());

    EXPECT_TRUE(log().redo());
    EXPECT_EQ(placeOf(id).x, 2);
    EXPECT_TRUE(log().redo());
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(placeOf(made).x, 8);
    EXPECT_EQ(entities(), std::vector{made});
    EXPECT_FALSE(log().redo());

    EXPECT_TRUE(log().undo());
    EXPECT_EQ(entities(), std::vector{id});
    move(id, {4, 0, 0});
    EXPECT_FALSE(log().redo()) << "something changed since";
}

TEST_F(UndoTest, AnAbortedTransactionLeavesNothingToUndo) {
    const AcDbObjectId id = add({1, 0, 0});
    log().startUndoRecord();
    transactions().startTransaction();
    move(id, {2, 0, 0});
    EXPECT_FALSE(log().undo()) << "while a transaction is active";
    abort();
    move(id, {3, 0, 0});
    EXPECT_TRUE(log().undo());
    EXPECT_EQ(placeOf(id).x, 1);
}

TEST_F(UndoTest, DisabledItKeepsNothing) {
    const AcDbObjectId id = add({1, 0, 0});
    log().startUndoRecord();
    move(id, {2, 0, 0});
    log().disableUndoRecording(true);
    log().startUndoRecord();
    move(id, {3, 0, 0});
    EXPECT_FALSE(log().undo());
    transactions().startTransaction();
    move(id, {4, 0, 0});
    abort();
    EXPECT_EQ(placeOf(id).x, 3) << "transactions do without";
}

TEST_F(UndoTest, RandomChangesAreTakenBackExactly) {
    std::vector<AcDbObjectId> ids;
    for (int i = 0; i < 8; ++i)
        ids.push_back(add({double(i), 0, 0}));
    const AcDbObjectId block = addBlock(L"Other");
    const auto snapshot = [&] {
        std::vector<std::tuple<AcDbObjectId, double, bool, AcDbObjectId>> state;
        for (const AcDbObjectId id : ids) {
            Opened<SampleEntity> entity(id, AcDb::kForRead, true);
            state.emplace_back(id, entity->at().x, id.isErased(), entity->ownerId());
        }
        return std::tuple(state, entities(), entitiesIn(block));
    };
    uint32_t seed = 12345;
    const auto next = [&](uint32_t below) {
        seed = seed * 1664525 + 1013904223;
        return (seed >> 16) % below;
    };
    const auto change = [&] {
        const AcDbObjectId id = ids[next(8)];
        switch (next(4)) {
            case 0:
                if (!id.isErased()) move(id, {double(next(1000)), 0, 0});
                break;
            case 1:
                erase(id, !id.isErased());
                break;
            case 2: {
                AcDbObjectIdArray one;
                one.append(id);
                const AcDbObjectId to = next(2) == 0 ? block : database->modelSpaceId();
                if (id.isErased() || Opened<AcDbEntity>(id)->ownerId() == to) break;
                Opened<AcDbBlockTableRecord>(to, AcDb::kForWrite)->assumeOwnershipOf(one);
                break;
            }
            default:
                add({double(next(1000)), 0, 0}, next(2) == 0 ? block : AcDbObjectId());
        }
    };
    for (int round = 0; round < 200; ++round) {
        const auto before = snapshot();
        transactions().startTransaction();
        for (uint32_t i = next(10); i > 0; --i)
            change();
        const auto middle = snapshot();
        transactions().startTransaction();
        for (uint32_t i = next(10); i > 0; --i)
            change();
        if (next(2) == 0) {
            abort();
            ASSERT_EQ(snapshot(), middle) << round;
        } else {
            end();
        }
        abort();
        ASSERT_EQ(snapshot(), before) << round;
    }
}

}  // namespace
}  // namespace sg::model

#include "host/model/core/database_state.h"
#include "host/model/model_fixture.h"
#include "host/model/tables/references.h"

namespace sg::model {
namespace {

using test::Opened;

class CopiesTest : public test::ModelTest {
  protected:
    static AcDbObjectIdArray list(std::initializer_list<AcDbObjectId> ids) {
        AcDbObjectIdArray array;
        for (const AcDbObjectId id : ids)
            array.append(id);
        return array;
    }
    // A sample that shows a block, as block references do.
    AcDbObjectId addShowing(AcDbObjectId shown, AcDbObjectId block = {}) {
        const AcDbObjectId id = add({}, block);
        Opened<SampleEntity>(id, AcDb::kForWrite)->setHard(shown);
        return id;
    }
    static AcDbObjectId blockNamed(AcDbDatabase& of, const wchar_t* name) {
        AcDbObjectId id;
        Opened<AcDbBlockTable>(of.blockTableId())->getAt(name, id);
        return id;
    }
    static AcDbObjectId layerNamed(AcDbDatabase& of, const wchar_t* name) {
        AcDbObjectId id;
        Opened<AcDbLayerTable>(of.layerTableId())->getAt(name, id);
        return id;
    }
};

TEST_F(CopiesTest, CloneIsOutsideAndTheSame) {
    const AcDbObjectId id = add({1, 2, 3});
    const AcDbObjectId other = add();
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        entity->setSoft(other);
        entity->createExtensionDictionary();
        entity->addPersistentReactor(other);
    }
    const std::unique_ptr<AcRxObject> made(Opened<SampleEntity>(id)->clone());
    const auto* const copy = SampleEntity::cast(made.get());
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->objectId().isNull());
    EXPECT_TRUE(copy->ownerId().isNull());
    EXPECT_EQ(copy->at(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(copy->soft(), other);
    EXPECT_EQ(copy->layerId(), database->layerZero());
    EXPECT_TRUE(copy->extensionDictionary().isNull());
    EXPECT_FALSE(copy->hasPersistentReactor(other));
}

TEST_F(CopiesTest, CopyFromKeepsIdentity) {
    const AcDbObjectId from = add({1, 0, 0}), to = add({2, 0, 0});
    {
        Opened<SampleEntity> target(to, AcDb::kForWrite);
        target->addPersistentReactor(from);
        EXPECT_EQ(target->copyFrom(Opened<SampleEntity>(from).get()), Acad::eOk);
        EXPECT_EQ(target->objectId(), to);
        EXPECT_EQ(target->ownerId(), database->modelSpaceId());
        EXPECT_TRUE(target->hasPersistentReactor(from));
        EXPECT_EQ(target->copyFrom(Opened<AcDbObject>(database->layerZero()).get()),
                  Acad::eNotThatKindOfClass);
    }
    EXPECT_EQ(placeOf(to), AcGePoint3d(1, 0, 0));
}

TEST_F(CopiesTest, PointersAmongCopiesPointAtCopies) {
    const AcDbObjectId a = add({1, 0, 0}), b = add({2, 0, 0}), outside = add();
    AcDbObjectId part;
    {
        Opened<SampleEntity> entity(a, AcDb::kForWrite);
        entity->setHard(b);
        entity->setSoft(outside);
        part = entity->addOwned();
        entity->createExtensionDictionary();
        entity->addPersistentReactor(outside);
        entity->addPersistentReactor(b);
        Opened<SampleEntity>(b, AcDb::kForWrite)->setSoft(a);
    }
    const AcDbObjectId block = addBlock(L"B");
    AcDbIdMapping mapping;
    ASSERT_EQ(database->deepCloneObjects(list({a, b}), block, mapping), Acad::eOk);
    const std::vector<AcDbObjectId> copies = entitiesIn(block);
    ASSERT_EQ(copies.size(), 2u);
    EXPECT_EQ(mapping.find(a)->value, copies[0]);
    EXPECT_TRUE(mapping.find(a)->isPrimary);
    EXPECT_FALSE(mapping.find(part)->isPrimary);
    Opened<SampleEntity> copy(copies[0]);
    EXPECT_EQ(copy->at(), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(copy->ownerId(), block);
    EXPECT_EQ(copy->hard(), copies[1]);
    EXPECT_EQ(copy->soft(), outside) << "what is not copied is shared";
    EXPECT_EQ(Opened<SampleEntity>(copies[1])->soft(), copies[0]);
    EXPECT_EQ(copy->owned(), mapping.find(part)->value);
    EXPECT_EQ(Opened<AcDbObject>(copy->owned())->ownerId(), copies[0]);
    EXPECT_NE(copy->extensionDictionary(), Opened<SampleEntity>(a)->extensionDictionary());
    EXPECT_EQ(Opened<AcDbObject>(copy->extensionDictionary())->ownerId(), copies[0]);
    EXPECT_FALSE(copy->hasPersistentReactor(outside));
    EXPECT_TRUE(copy->hasPersistentReactor(copies[1]));
    EXPECT_EQ(Opened<SampleEntity>(a)->hard(), b) << "the original stays as it was";
}

TEST_F(CopiesTest, HandlesInExtendedDataPointAtCopies) {
    const AcDbObjectId a = add(), b = add();
    registerApplication(*database, L"ONE");
    {
        Opened<SampleEntity> entity(a, AcDb::kForWrite);
        resbuf* const data = acutBuildList(1001, L"ONE", 1005, b.handle().text().c_str(), 0);
        EXPECT_EQ(entity->setXData(data), Acad::eOk);
        acutRelRb(data);
    }
    AcDbIdMapping mapping;
    ASSERT_EQ(database->deepCloneObjects(list({a, b}), {}, mapping), Acad::eOk);
    resbuf* const data = Opened<SampleEntity>(mapping.find(a)->value)->xData();
    EXPECT_EQ(data->rbnext->resval.rstring, mapping.find(b)->value.handle().text());
    acutRelRb(data);
}

TEST_F(CopiesTest, CopiesRefuseObjectsOfOtherDrawings) {
    AcDbDatabase other;
    const AcDbObjectId id = add();
    AcDbIdMapping mapping;
    EXPECT_EQ(other.deepCloneObjects(list({id}), other.modelSpaceId(), mapping),
              Acad::eWrongDatabase);
    EXPECT_EQ(database->wblockCloneObjects(list({id}), database->modelSpaceId(), mapping,
                                           AcDb::kDrcIgnore),
              Acad::eWrongDatabase);
    erase(id);
    EXPECT_EQ(database->deepCloneObjects(list({id}), {}, mapping), Acad::eWasErased);
}

TEST_F(CopiesTest, AnotherDrawingGetsWhatIsNeeded) {
    const AcDbObjectId layer = addLayer(L"Walls");
    const AcDbObjectId inner = addBlock(L"Inner"), outer = addBlock(L"Outer");
    const AcDbObjectId deep = add({7, 0, 0}, inner);
    Opened<AcDbEntity>(deep, AcDb::kForWrite)->setLayer(layer);
    addShowing(inner, outer);
    const AcDbObjectId shows = addShowing(outer), left = add();
    Opened<SampleEntity>(shows, AcDb::kForWrite)->setSoft(left);

    AcDbDatabase other;
    AcDbIdMapping mapping;
    ASSERT_EQ(
        other.wblockCloneObjects(list({shows}), other.modelSpaceId(), mapping, AcDb::kDrcIgnore),
        Acad::eOk);
    const std::vector<AcDbObjectId> copies = entitiesIn(other.modelSpaceId());
    ASSERT_EQ(copies.size(), 1u);
    Opened<SampleEntity> copy(copies[0]);
    EXPECT_EQ(copy->hard(), blockNamed(other, L"Outer"));
    EXPECT_TRUE(copy->soft().isNull()) << "nothing points into the other drawing";
    EXPECT_EQ(copy->layerId(), other.layerZero());
    EXPECT_EQ(copy->linetypeId(), other.byLayerLinetype());
    const std::vector<AcDbObjectId> inOuter = entitiesIn(blockNamed(other, L"Outer"));
    ASSERT_EQ(inOuter.size(), 1u);
    EXPECT_EQ(Opened<SampleEntity>(inOuter[0])->hard(), blockNamed(other, L"Inner"));
    const std::vector<AcDbObjectId> inInner = entitiesIn(blockNamed(other, L"Inner"));
    ASSERT_EQ(inInner.size(), 1u);
    EXPECT_EQ(Opened<AcDbEntity>(inInner[0])->layerId(), layerNamed(other, L"walls"));
    EXPECT_EQ(placeOf(inInner[0]), AcGePoint3d(7, 0, 0));
    DatabaseState::of(other).forEach([&](const AcDbObject& object) {
        EXPECT_EQ(object.objectId().database(), &other);
        const AcDbObjectId owner = object.ownerId();
        EXPECT_TRUE(owner.isNull() || owner.database() == &other) << toUtf8(object.isA()->name());
    });
}

TEST_F(CopiesTest, RecordsOfTheSameNameAreKeptReplacedOrRenamed) {
    const struct {
        AcDb::DuplicateRecordCloning mode;
        const wchar_t* layer;
        uint16_t color, oldColor;
    } cases[] = {
        {AcDb::kDrcIgnore, L"Walls", 1, 1},
        {AcDb::kDrcReplace, L"Walls", 2, 2},
        {AcDb::kDrcMangleName, L"$0$Walls", 2, 1},
    };
    const auto paint = [](AcDbObjectId layer, uint16_t index) {
        AcCmColor color;
        color.setColorIndex(index);
        Opened<AcDbLayerTableRecord>(layer, AcDb::kForWrite)->setColor(color);
    };
    const AcDbObjectId layer = addLayer(L"Walls");
    paint(layer, 2);
    const AcDbObjectId id = add();
    Opened<AcDbEntity>(id, AcDb::kForWrite)->setLayer(layer);
    for (const auto& c : cases) {
        AcDbDatabase other;
        const AcDbObjectId there = addLayerTo(other, L"WALLS");
        paint(there, 1);
        AcDbIdMapping mapping;
        ASSERT_EQ(other.wblockCloneObjects(list({id}), other.modelSpaceId(), mapping, c.mode),
                  Acad::eOk);
        const AcDbObjectId copy = mapping.find(id)->value;
        const AcDbObjectId of = Opened<AcDbEntity>(copy)->layerId();
        EXPECT_EQ(of, layerNamed(other, c.layer));
        EXPECT_EQ(Opened<AcDbLayerTableRecord>(of)->color().colorIndex(), c.color);
        EXPECT_EQ(Opened<AcDbLayerTableRecord>(there)->color().colorIndex(), c.oldColor);
    }
}

TEST_F(CopiesTest, InsertMakesABlockOfAnotherDrawing) {
    AcDbDatabase symbol;
    const AcDbObjectId theirLayer = addLayerTo(symbol, L"Walls");
    const AcDbObjectId anonymous = addBlockTo(symbol, L"*U");
    {
        Opened<AcDbBlockTableRecord> space(symbol.modelSpaceId(), AcDb::kForWrite);
        auto* const entity = new SampleEntity;
        space->appendAcDbEntity(entity);
        entity->setLayer(theirLayer);
        entity->setHard(anonymous);
        entity->setAt({3, 0, 0});
        entity->close();
    }
    symbol.setInsbase({1, 1, 0});
    const AcDbObjectId layer = addLayer(L"walls");
    const AcDbObjectId taken = addBlock(L"*U");

    AcDbObjectId block;
    ASSERT_EQ(database->insert(block, L"Door", &symbol), Acad::eOk);
    EXPECT_EQ(block, blockNamed(*database, L"Door"));
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(block)->origin(), AcGePoint3d(1, 1, 0));
    std::vector<AcDbObjectId> inside = entitiesIn(block);
    ASSERT_EQ(inside.size(), 1u);
    {
        Opened<SampleEntity> entity(inside[0]);
        EXPECT_EQ(entity->layerId(), layer);
        EXPECT_NE(entity->hard(), taken) << "anonymous blocks are not the same for their name";
        EXPECT_EQ(Opened<AcDbBlockTableRecord>(entity->hard())->name(), L"*U2");
    }
    EXPECT_EQ(entitiesIn(symbol.modelSpaceId()).size(), 1u);

    AcDbObjectId again;
    ASSERT_EQ(database->insert(again, L"DOOR", &symbol, false), Acad::eOk);
    EXPECT_EQ(again, block) << "the block gets the new content";
    EXPECT_EQ(entitiesIn(block).size(), 1u);
    EXPECT_NE(entitiesIn(block), inside);
    EXPECT_TRUE(entitiesIn(symbol.modelSpaceId()).empty());

    EXPECT_EQ(database->insert(again, L"Self", database.get()), Acad::eSelfReference);
    EXPECT_EQ(database->insert(again, L"a/b", &symbol), Acad::eInvalidBlockName);
    EXPECT_EQ(database->insert(again, L"", &symbol), Acad::eInvalidBlockName);
}

TEST_F(CopiesTest, AnInsertCanBeTakenBack) {
    AcDbDatabase symbol;
    addBlockTo(symbol, L"Inner");
    {
        Opened<AcDbBlockTableRecord> space(symbol.modelSpaceId(), AcDb::kForWrite);
        auto* const entity = new SampleEntity;
        space->appendAcDbEntity(entity);
        entity->setHard(blockNamed(symbol, L"Inner"));
        entity->close();
    }
    const AcDbObjectId old = addBlock(L"Door");
    const AcDbObjectId kept = add({}, old);
    transactions().startTransaction();
    AcDbObjectId block;
    ASSERT_EQ(database->insert(block, L"Door", &symbol), Acad::eOk);
    EXPECT_FALSE(blockNamed(*database, L"Inner").isNull());
    transactions().abortTransaction();
    EXPECT_EQ(entitiesIn(old), std::vector{kept});
    AcDbObjectId none;
    EXPECT_EQ(Opened<AcDbBlockTable>(database->blockTableId())->getAt(L"Inner", none),
              Acad::eKeyNotFound);
}

TEST_F(CopiesTest, InsertWithATransformGoesToTheCurrentSpace) {
    AcDbDatabase source;
    {
        Opened<AcDbBlockTableRecord> space(source.modelSpaceId(), AcDb::kForWrite);
        auto* const entity = new SampleEntity;
        space->appendAcDbEntity(entity);
        entity->setAt({1, 0, 0});
        entity->close();
    }
    ASSERT_EQ(database->insert(AcGeMatrix3d::translation({0, 5, 0}), &source), Acad::eOk);
    ASSERT_EQ(entities().size(), 1u);
    EXPECT_EQ(placeOf(entities()[0]), AcGePoint3d(1, 5, 0));
}

TEST_F(CopiesTest, WblockMakesADrawingOfABlock) {
    const AcDbObjectId block = addBlock(L"Door");
    Opened<AcDbBlockTableRecord>(block, AcDb::kForWrite)->setOrigin({2, 0, 0});
    add({3, 0, 0}, block);
    add({9, 0, 0});
    database->setDimscale(48);
    AcDbDatabase* made = nullptr;
    ASSERT_EQ(database->wblock(made, block), Acad::eOk);
    const std::unique_ptr<AcDbDatabase> output(made);
    EXPECT_EQ(output->insbase(), AcGePoint3d(2, 0, 0));
    EXPECT_EQ(output->dimscale(), 48);
    const std::vector<AcDbObjectId> copies = entitiesIn(output->modelSpaceId());
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(placeOf(copies[0]), AcGePoint3d(3, 0, 0));
    AcDbDatabase* none = nullptr;
    EXPECT_EQ(database->wblock(none, database->layerZero()), Acad::eInvalidInput);
    EXPECT_EQ(none, nullptr);
}

TEST_F(CopiesTest, PurgeLeavesWhatIsNeeded) {
    const AcDbObjectId used = addLayer(L"Used"), unused = addLayer(L"Unused");
    const AcDbObjectId inBlock = addLayer(L"InBlock"), current = addLayer(L"Current");
    const AcDbObjectId shown = addBlock(L"Shown"), nested = addBlock(L"Nested");
    const AcDbObjectId loose = addBlock(L"Loose"), inLoose = addBlock(L"InLoose");
    const AcDbObjectId softly = addLayer(L"Softly");
    Opened<AcDbEntity>(add(), AcDb::kForWrite)->setLayer(used);
    Opened<AcDbEntity>(add({}, nested), AcDb::kForWrite)->setLayer(inBlock);
    addShowing(nested, shown);
    addShowing(shown);
    addShowing(inLoose, loose);
    Opened<SampleEntity>(add(), AcDb::kForWrite)->setSoft(softly);
    const AcDbObjectId gone = add();
    Opened<AcDbEntity>(gone, AcDb::kForWrite)->setLayer(unused);
    erase(gone);
    EXPECT_EQ(database->setClayer(current), Acad::eOk);

    AcDbObjectIdArray ids = list({used, unused, inBlock, current, shown, nested, loose, inLoose,
                                  softly, database->layerZero(), database->modelSpaceId()});
    ASSERT_EQ(database->purge(ids), Acad::eOk);
    EXPECT_EQ(ids, list({unused, loose, inLoose, softly}));
    AcDbObjectIdArray inner = list({inLoose});
    database->purge(inner);
    EXPECT_TRUE(inner.isEmpty()) << "what shows it is not purged with it";
}

}  // namespace
}  // namespace sg::model

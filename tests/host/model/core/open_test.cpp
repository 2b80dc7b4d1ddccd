#include <stdexcept>

#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using test::Opened;
using OpenTest = test::ModelTest;

AcDbObject* open(AcDbObjectId id, AcDb::OpenMode mode, Acad::ErrorStatus expected = Acad::eOk) {
    AcDbObject* object = nullptr;
    EXPECT_EQ(acdbOpenAcDbObject(object, id, mode), expected);
    EXPECT_EQ(object == nullptr, expected != Acad::eOk);
    return object;
}

TEST_F(OpenTest, ModesConflictAsDocumented) {
    const AcDbObjectId id = add();
    const struct {
        AcDb::OpenMode first, second;
        Acad::ErrorStatus status;
    } cases[] = {
        {AcDb::kForRead, AcDb::kForRead, Acad::eOk},
        {AcDb::kForRead, AcDb::kForWrite, Acad::eWasOpenForRead},
        {AcDb::kForRead, AcDb::kForNotify, Acad::eOk},
        {AcDb::kForWrite, AcDb::kForRead, Acad::eWasOpenForWrite},
        {AcDb::kForWrite, AcDb::kForWrite, Acad::eWasOpenForWrite},
        {AcDb::kForWrite, AcDb::kForNotify, Acad::eOk},
        {AcDb::kForNotify, AcDb::kForRead, Acad::eWasOpenForNotify},
        {AcDb::kForNotify, AcDb::kForWrite, Acad::eWasOpenForNotify},
        {AcDb::kForNotify, AcDb::kForNotify, Acad::eWasOpenForNotify},
    };
    for (const auto& c : cases) {
        AcDbObject* const object = open(id, c.first);
        open(id, c.second, c.status);
        if (c.status == Acad::eOk) {
            EXPECT_EQ(object->close(), Acad::eOk);
        }
        EXPECT_EQ(object->close(), Acad::eOk) << c.first << ' ' << c.second;
        EXPECT_EQ(object->close(), Acad::eInvalidOpenState) << c.first << ' ' << c.second;
    }
}

TEST_F(OpenTest, ThereAre256Readers) {
    const AcDbObjectId id = add();
    AcDbObject* object = nullptr;
    for (int i = 0; i < 256; ++i)
        object = open(id, AcDb::kForRead);
    open(id, AcDb::kForRead, Acad::eAtMaxReaders);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(object->close(), Acad::eOk);
    EXPECT_EQ(object->close(), Acad::eInvalidOpenState);
}

TEST_F(OpenTest, UpgradeAndDowngrade) {
    const AcDbObjectId id = add();
    AcDbObject* const object = open(id, AcDb::kForRead);
    open(id, AcDb::kForRead);
    EXPECT_EQ(object->upgradeOpen(), Acad::eWasOpenForRead);
    object->close();
    EXPECT_EQ(object->downgradeOpen(), Acad::eInvalidOpenState);
    EXPECT_EQ(object->upgradeOpen(), Acad::eOk);
    EXPECT_TRUE(object->isWriteEnabled());
    EXPECT_EQ(object->upgradeOpen(), Acad::eInvalidOpenState);
    EXPECT_EQ(object->downgradeOpen(), Acad::eOk);
    EXPECT_FALSE(object->isWriteEnabled());
    EXPECT_TRUE(object->isReadEnabled());
    EXPECT_EQ(object->close(), Acad::eOk);
    EXPECT_EQ(object->upgradeOpen(), Acad::eInvalidOpenState);
}

TEST_F(OpenTest, UseWithoutOpeningThrows) {
    const AcDbObjectId id = add();
    SampleEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenObject(entity, id), Acad::eOk);
    EXPECT_THROW(entity->setAt({1, 2, 3}), std::logic_error);
    entity->close();
    EXPECT_THROW(entity->assertReadEnabled(), std::logic_error);
    const auto loose = std::make_unique<SampleEntity>();
    loose->setAt({1, 2, 3});
    EXPECT_EQ(loose->close(), Acad::eInvalidOpenState);
    EXPECT_EQ(loose->erase(), Acad::eNotInDatabase);
}

TEST_F(OpenTest, ErasedObjectsOpenWhenAskedFor) {
    const AcDbObjectId id = add({1, 0, 0});
    erase(id);
    EXPECT_TRUE(id.isErased());
    EXPECT_TRUE(id.isValid());
    open(id, AcDb::kForRead, Acad::eWasErased);
    AcDbObject* object = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForWrite, true), Acad::eOk);
    EXPECT_EQ(object->erase(), Acad::eWasErased);
    EXPECT_FALSE(object->isEraseStatusToggled());
    EXPECT_EQ(object->erase(false), Acad::eOk);
    EXPECT_TRUE(object->isEraseStatusToggled());
    EXPECT_EQ(object->erase(false), Acad::eWasNotErased);
    object->close();
    EXPECT_FALSE(id.isErased());
}

TEST_F(OpenTest, CancelTakesBackTheLastOpen) {
    const AcDbObjectId id = add({1, 0, 0});
    move(id, {2, 0, 0});
    SampleEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenObject(entity, id, AcDb::kForWrite), Acad::eOk);
    entity->setAt({3, 0, 0});
    entity->setColorIndex(4);
    entity->erase();
    EXPECT_EQ(entity->cancel(), Acad::eOk);
    EXPECT_EQ(placeOf(id), AcGePoint3d(2, 0, 0));
    EXPECT_EQ(Opened<SampleEntity>(id)->colorIndex(), 256);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(entity->cancel(), Acad::eInvalidOpenState);
}

TEST_F(OpenTest, CancelOfANewObjectTakesItAway) {
    const int before = SampleEntity::alive;
    auto* const entity = new SampleEntity;
    const AcDbObjectId id = append(entity);
    EXPECT_TRUE(entity->isNewObject());
    EXPECT_EQ(entity->cancel(), Acad::eOk);
    EXPECT_FALSE(id.isValid());
    EXPECT_TRUE(entities().empty());
    EXPECT_EQ(SampleEntity::alive, before);
}

TEST_F(OpenTest, LockedLayersRefuseWriting) {
    const AcDbObjectId layer = addLayer(L"Walls");
    const AcDbObjectId id = add();
    Opened<AcDbEntity>(id, AcDb::kForWrite)->setLayer(layer);
    Opened<AcDbLayerTableRecord>(layer, AcDb::kForWrite)->setIsLocked(true);
    open(id, AcDb::kForWrite, Acad::eOnLockedLayer);
    AcDbObject* const object = open(id, AcDb::kForRead);
    EXPECT_EQ(object->upgradeOpen(), Acad::eOnLockedLayer);
    object->close();
    Opened<AcDbLayerTableRecord>(layer, AcDb::kForWrite)->setIsLocked(false);
    EXPECT_EQ(open(id, AcDb::kForWrite)->close(), Acad::eOk);
}

TEST_F(OpenTest, AClassThatDoesNotFitIsNotLeftOpen) {
    const AcDbObjectId id = add();
    AcDbBlockTable* table = nullptr;
    EXPECT_EQ(acdbOpenObject(table, id), Acad::eNotThatKindOfClass);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(open(id, AcDb::kForWrite)->close(), Acad::eOk);
    open({}, AcDb::kForRead, Acad::eNullObjectId);
}

TEST_F(OpenTest, ErasingTakesTheExtensionDictionaryAlong) {
    const AcDbObjectId id = add();
    AcDbObjectId dictionary;
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        EXPECT_EQ(entity->createExtensionDictionary(), Acad::eOk);
        EXPECT_EQ(entity->createExtensionDictionary(), Acad::eAlreadyInDb);
        dictionary = entity->extensionDictionary();
    }
    EXPECT_TRUE(dictionary.isValid());
    erase(id);
    EXPECT_TRUE(dictionary.isErased());
    erase(id, false);
    EXPECT_FALSE(dictionary.isErased());
    Opened<SampleEntity> entity(id, AcDb::kForWrite);
    EXPECT_EQ(entity->releaseExtensionDictionary(), Acad::eOk);
    EXPECT_TRUE(entity->extensionDictionary().isNull());
}

TEST_F(OpenTest, TablesAndFixedRecordsStay) {
    const AcDbObjectId fixed[] = {database->blockTableId(), database->layerZero(),
                                  database->modelSpaceId(), database->byLayerLinetype()};
    for (const AcDbObjectId id : fixed) {
        EXPECT_EQ((Opened<AcDbObject>(id, AcDb::kForWrite)->erase()),
                  Acad::eCannotBeErasedByCaller);
    }
}

}  // namespace
}  // namespace sg::model

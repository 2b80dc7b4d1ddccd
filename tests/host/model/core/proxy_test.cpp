#include "host/model/core/proxies.h"

#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using test::Opened;

class ProxyTest : public test::ModelTest {
  protected:
    ~ProxyTest() override { SampleEntity::asksForProxy = false; }

    void unload() { deleteAcRxClass(SampleEntity::desc()); }
    void load() {
        SampleEntity::rxInit();
        acrxBuildClassHierarchy();
    }
};

TEST_F(ProxyTest, ObjectsOutliveTheirClass) {
    const AcDbObjectId id = add({1, 2, 3}), other = add();
    const AcDbObjectId gone = add();
    const AcDbObjectId layer = addLayer(L"Walls");
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        entity->setHard(other);
        entity->setLayer(layer);
        entity->createExtensionDictionary();
    }
    erase(gone);
    const int alive = SampleEntity::alive;
    unload();
    EXPECT_EQ(SampleEntity::alive, alive - 3);
    EXPECT_EQ(entities(), (std::vector{id, other}));
    {
        Opened<AcDbProxyEntity> proxy(id);
        EXPECT_EQ(proxy->layer(), L"Walls");
        EXPECT_FALSE(proxy->extensionDictionary().isNull());
        EXPECT_EQ(proxy->data.className, L"SampleEntity");
        EXPECT_EQ(proxy->data.dxfName, L"SAMPLE");
        EXPECT_EQ(proxy->data.applicationName, L"Samples");
    }
    EXPECT_TRUE(gone.isErased());
    load();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(Opened<SampleEntity>(id)->hard(), other);
    EXPECT_EQ(Opened<SampleEntity>(id)->layerId(), layer);
    EXPECT_TRUE(gone.isErased());
}

TEST_F(ProxyTest, WhatTheClassAllowsIsKeptUntilItIsBack) {
    const AcDbObjectId id = add({1, 0, 0});
    const AcDbObjectId layer = addLayer(L"Walls");
    unload();
    {
        Opened<AcDbProxyEntity> proxy(id, AcDb::kForWrite);
        EXPECT_EQ(proxy->AcDbEntity::setColorIndex(1), Acad::eNotApplicable);
        EXPECT_EQ(proxy->setLinetypeScale(2, true), Acad::eNotApplicable);
        EXPECT_EQ(proxy->setLayer(layer, true, false), Acad::eOk);
        EXPECT_EQ(proxy->transformBy(AcGeMatrix3d::translation({0, 4, 0})), Acad::eOk);
        EXPECT_EQ(proxy->erase(), Acad::eOk);
        EXPECT_EQ(proxy->erase(false), Acad::eOk);
    }
    load();
    EXPECT_EQ(placeOf(id), AcGePoint3d(1, 4, 0));
    EXPECT_EQ(Opened<AcDbEntity>(id)->layerId(), layer);
}

TEST_F(ProxyTest, CopiesOfProxiesPointAtCopies) {
    const AcDbObjectId id = add({1, 0, 0}), other = add({2, 0, 0});
    Opened<SampleEntity>(id, AcDb::kForWrite)->setHard(other);
    unload();
    AcDbObjectIdArray both;
    both.append(id);
    both.append(other);
    AcDbIdMapping mapping;
    ASSERT_EQ(database->deepCloneObjects(both, {}, mapping), Acad::eOk);
    ASSERT_NE(mapping.find(id), nullptr);
    load();
    // A copy that was made of a proxy is one; it is told of by the next class that comes.
    EXPECT_EQ(placeOf(mapping.find(id)->value), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(Opened<SampleEntity>(mapping.find(id)->value)->hard(), mapping.find(other)->value);
}

TEST_F(ProxyTest, AnObjectMayAskToBecomeOne) {
    const AcDbObjectId id = add({1, 0, 0});
    AcDbObjectIdArray one;
    one.append(id);
    SampleEntity::asksForProxy = true;
    AcDbIdMapping mapping;
    ASSERT_EQ(database->deepCloneObjects(one, {}, mapping), Acad::eOk);
    const AcDbObjectId copy = mapping.find(id)->value;
    EXPECT_TRUE(Opened<AcDbObject>(copy)->isKindOf(AcDbProxyEntity::desc()));
    SampleEntity::asksForProxy = false;
    load();
    EXPECT_EQ(placeOf(copy), AcGePoint3d(1, 0, 0));
}

TEST_F(ProxyTest, AProxyThatIsOpenWaits) {
    const AcDbObjectId id = add();
    unload();
    {
        Opened<AcDbProxyEntity> proxy(id);
        load();
        EXPECT_STREQ(Opened<AcDbObject>(id)->isA()->name(), L"AcDbProxyEntity");
    }
    load();
    EXPECT_STREQ(Opened<AcDbObject>(id)->isA()->name(), L"SampleEntity");
}

}  // namespace
}  // namespace sg::model

#include "host/dwg/dwg_fixture.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/sample_entity.h"

// Objects of applications' classes: with their class, without it, and with it again.
namespace sg {
namespace {

using test::kWrittenReleases;
using test::Opened;

class DwgClassTest : public test::DwgTest {
  protected:
    DwgClassTest() { loadClass(); }
    ~DwgClassTest() override { SampleEntity::asksForProxy = false; }

    static void loadClass() {
        SampleEntity::rxInit();
        acrxBuildClassHierarchy();
    }
    static void unloadClass() { deleteAcRxClass(SampleEntity::desc()); }

    AcDbDatabase& drawingWithSample() {
        AcDbDatabase& database = newDrawing();
        auto* const sample = new SampleEntity;
        sample->setAt({1, 2, 3});
        Opened<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, sample), Acad::eOk);
        sample->setHard(database.layerZero());
        sample->setColorIndex(3);
        sample->close();
        return database;
    }
    static AcDbObjectId onlyEntity(const AcDbDatabase& database) {
        const auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
        return *space->entityIds().begin();
    }
    void expectAlive(const AcDbDatabase& database, const char* release) {
        const auto* const sample = model::peek<SampleEntity>(onlyEntity(database));
        ASSERT_NE(sample, nullptr) << release;
        EXPECT_EQ(sample->at(), AcGePoint3d(1, 2, 3)) << release;
        EXPECT_EQ(sample->hard(), database.layerZero()) << release;
    }
};

TEST_F(DwgClassTest, AnObjectOutlivesAProgramWithoutItsClass) {
    AcDbDatabase& database = drawingWithSample();
    std::vector<std::string> files;
    for (const char* const release : kWrittenReleases) {
        files.push_back(written(database, release));
        expectAlive(load(files.back()), release);
    }
    unloadClass();
    for (size_t i = 0; i < files.size(); ++i) {
        AcDbDatabase& kept = load(files[i]);
        EXPECT_TRUE(warnings.empty());
        const auto* const proxy = model::peek<AcDbProxyEntity>(onlyEntity(kept));
        ASSERT_NE(proxy, nullptr) << kWrittenReleases[i];
        EXPECT_EQ(proxy->data.className, L"SampleEntity");
        EXPECT_EQ(proxy->data.applicationName, L"Samples");
        files[i] = written(kept, kWrittenReleases[i]);
        EXPECT_TRUE(losses.empty());
    }
    loadClass();
    for (size_t i = 0; i < files.size(); ++i)
        expectAlive(load(files[i]), kWrittenReleases[i]);
}

// The class comes when the drawing is open already.
TEST_F(DwgClassTest, ObjectsComeToLifeWithTheirClass) {
    AcDbDatabase& database = drawingWithSample();
    {
        Opened<AcDbEntity> entity(onlyEntity(database), AcDb::kForWrite);
        entity->createExtensionDictionary();
    }
    std::vector<std::string> files;
    for (const char* const release : kWrittenReleases)
        files.push_back(written(database, release));
    unloadClass();
    std::vector<AcDbDatabase*> drawings;
    for (const std::string& file : files)
        drawings.push_back(&load(file));
    loadClass();
    for (size_t i = 0; i < drawings.size(); ++i) {
        expectAlive(*drawings[i], kWrittenReleases[i]);
        const auto* const entity = model::peek<AcDbEntity>(onlyEntity(*drawings[i]));
        ASSERT_NE(entity, nullptr);
        EXPECT_EQ(entity->color().colorIndex(), 3);
        EXPECT_TRUE(entity->extensionDictionary().isValid());
        EXPECT_EQ(written(*drawings[i], kWrittenReleases[i]).size(), files[i].size());
    }
}

TEST_F(DwgClassTest, AClassMayAskForAProxy) {
    const std::string file = written(drawingWithSample(), "2018");
    SampleEntity::asksForProxy = true;
    AcDbDatabase& kept = load(file);
    EXPECT_TRUE(warnings.empty());
    EXPECT_NE(model::peek<AcDbProxyEntity>(onlyEntity(kept)), nullptr);
    const std::string again = written(kept, "2018");
    SampleEntity::asksForProxy = false;
    expectAlive(load(again), "2018");
}

// Bits of one release are not those of another before 2007; they are kept as they are.
TEST_F(DwgClassTest, BitsOfOneReleaseComeToLifeFromAnother) {
    const std::string file = written(drawingWithSample(), "2000");
    unloadClass();
    AcDbDatabase& kept = load(file);
    const std::string later = written(kept, "2018");
    ASSERT_EQ(losses.size(), 1u);
    EXPECT_EQ(losses[0], L"kept in a form that other programs show only by its graphics: 1 SAMPLE");
    AcDbDatabase& dead = load(later);
    EXPECT_TRUE(warnings.empty());
    loadClass();
    expectAlive(dead, "2000");
    expectAlive(load(later), "2000");
}

}  // namespace
}  // namespace sg

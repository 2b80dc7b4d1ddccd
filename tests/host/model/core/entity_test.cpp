#include "platform/db/entity.h"

#include <fmt/format.h>

#include "host/model/core/list_filers.h"
#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using test::Opened;

class EntityTest : public test::ModelTest {
  protected:
    // Groups as "code:value", names of objects left out.
    static std::string written(const AcDbObject& object, std::vector<std::wstring> apps = {},
                               AcDb::FilerType type = AcDb::kBagFiler) {
        ListWriter writer(object.database(), std::move(apps), type);
        EXPECT_EQ(object.dxfOut(&writer), Acad::eOk);
        resbuf* const list = writer.take();
        std::string text;
        for (const resbuf* node = list; node != nullptr; node = node->rbnext)
            text += (text.empty() ? "" : " ") + describe(*node);
        acutRelRb(list);
        return text;
    }
    static std::string describe(const resbuf& node) {
        const std::string code = std::to_string(node.restype) + ":";
        switch (acdbGroupCodeToType(node.restype)) {
            case RTSTR:
                return code + (node.restype == 5 ? "" : toUtf8(node.resval.rstring));
            case RTREAL:
                return code + fmt::format("{}", node.resval.rreal);
            case RT3DPOINT:
                return code + fmt::format("{},{}", node.resval.rpoint[0], node.resval.rpoint[1]);
            case RTSHORT:
                return code + std::to_string(node.resval.rint);
            case RTLONG:
                return code + std::to_string(node.resval.rlong);
            default:
                return code;
        }
    }
    AcDbObjectId named(const wchar_t* layer) { return addLayer(layer); }

    Acad::ErrorStatus read(AcDbObject& object, resbuf* list) {
        ListReader reader(list, database.get());
        const Acad::ErrorStatus status = object.dxfIn(&reader);
        message = reader.errorMessage();
        acutRelRb(list);
        return status;
    }

    std::wstring message;
};

TEST_F(EntityTest, WritesWhatDiffersFromTheUsual) {
    const AcDbObjectId id = add({1, 2, 0});
    EXPECT_EQ(
        written(*Opened<SampleEntity>(id).get()),
        "-1: 0:SAMPLE 330: 5: 100:AcDbEntity 67:0 410:Model 8:0 100:SampleEntity 10:1,2 340:");
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        entity->setLayer(named(L"Walls"));
        entity->setLinetype(L"continuous");
        entity->setColorIndex(3);
        entity->setLineWeight(AcDb::kLnWt025);
        entity->setLinetypeScale(2);
        entity->setVisibility(AcDb::kInvisible);
        entity->setTransparency(0x0200007F);
        entity->setPlotStyleName(AcDb::kPlotStyleNameById, database->layerZero());
        entity->setMaterial(database->layerZero());
    }
    EXPECT_EQ(written(*Opened<SampleEntity>(id).get()),
              "-1: 0:SAMPLE 330: 5: 100:AcDbEntity 67:0 410:Model 8:Walls 6:Continuous 62:3 48:2 "
              "60:1 370:25 440:33554559 380:3 390: 347: 100:SampleEntity 10:1,2 340:");
    AcCmColor color;
    color.setRGB(255, 0, 0);
    Opened<SampleEntity>(id, AcDb::kForWrite)->setColor(color);
    EXPECT_NE(written(*Opened<SampleEntity>(id).get()).find(" 62:1 420:16711680 "),
              std::string::npos);
}

TEST_F(EntityTest, FilesHaveTheirOwnOrder) {
    const AcDbObjectId id = add();
    const AcDbObjectId paper = add({}, database->paperSpaceId());
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        entity->createExtensionDictionary();
        entity->addPersistentReactor(paper);
    }
    EXPECT_EQ(written(*Opened<SampleEntity>(id).get(), {}, AcDb::kFileFiler),
              "0:SAMPLE 5: 102:{ACAD_XDICTIONARY 360: 102:} 102:{ACAD_REACTORS 330: 102:} 330: "
              "100:AcDbEntity 8:0 100:SampleEntity 10:0,0 340:");
    EXPECT_EQ(written(*Opened<SampleEntity>(paper).get(), {}, AcDb::kFileFiler),
              "0:SAMPLE 5: 330: 100:AcDbEntity 67:1 8:0 100:SampleEntity 10:0,0 340:");
}

TEST_F(EntityTest, ReadsListsWithMarkersAndWithout) {
    named(L"Walls");
    const ads_point at{4, 5, 6}, elsewhere{9, 9, 9};
    const struct {
        const char* what;
        resbuf* list;
    } cases[] = {
        {"all markers", acutBuildList(RTDXF0, L"SAMPLE", 100, L"AcDbEntity", 8, L"Walls", 62, 5,
                                      100, L"SampleEntity", 10, at, 0)},
        {"no markers", acutBuildList(RTDXF0, L"SAMPLE", 10, at, 62, 5, 8, L"Walls", 0)},
        {"the class's only",
         acutBuildList(RTDXF0, L"SAMPLE", 8, L"Walls", 62, 5, 100, L"SampleEntity", 10, at, 0)},
        {"a strange one between",
         acutBuildList(RTDXF0, L"SAMPLE", 100, L"AcDbEntity", 8, L"WALLS", 62, 5, 100, L"Strange",
                       10, elsewhere, 100, L"SampleEntity", 10, at, 0)},
    };
    for (const auto& c : cases) {
        SampleEntity entity;
        EXPECT_EQ(read(entity, c.list), Acad::eOk) << c.what;
        EXPECT_EQ(entity.at(), AcGePoint3d(4, 5, 6)) << c.what;
        EXPECT_EQ(entity.colorIndex(), 5) << c.what;
    }
}

TEST_F(EntityTest, AnUnknownLayerFailsTheEntity) {
    const AcDbObjectId id = add();
    Opened<SampleEntity> entity(id, AcDb::kForWrite);
    EXPECT_EQ(read(*entity.get(), acutBuildList(8, L"Nowhere", 0)), Acad::eKeyNotFound);
    EXPECT_EQ(message, L"group 8 does not fit: Nowhere");
    EXPECT_EQ(entity->layer(), L"0");
}

TEST_F(EntityTest, ListsOfOtherApplicationsStay) {
    const ads_point at{1, 0, 0};
    const AcDbObjectId id = add();
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        EXPECT_EQ(read(*entity.get(),
                       acutBuildList(RTDXF0, L"SAMPLE", 102, L"{OTHER", 300, L"kept", 102, L"}",
                                     100, L"AcDbEntity", 8, L"0", 100, L"SampleEntity", 10, at, 0)),
                  Acad::eOk);
    }
    EXPECT_NE(written(*Opened<SampleEntity>(id).get()).find("102:{OTHER 300:kept 102:} 330: 100:"),
              std::string::npos);
}

TEST_F(EntityTest, ReadingAgainReplaces) {
    const AcDbObjectId id = add();
    for (int round = 0; round < 2; ++round) {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        resbuf* const list = acutBuildList(RTDXF0, L"SAMPLE", 102, L"{OTHER", 300, L"kept", 102,
                                           L"}", 100, L"AcDbEntity", 8, L"0", 0);
        EXPECT_EQ(read(*entity.get(), list), Acad::eOk);
    }
    const std::string text = written(*Opened<SampleEntity>(id).get());
    EXPECT_EQ(text.find("{OTHER"), text.rfind("{OTHER"));
}

TEST_F(EntityTest, PropertiesThatDoNotFitAreRefused) {
    const AcDbObjectId id = add();
    AcDbDatabase other;
    Opened<SampleEntity> entity(id, AcDb::kForWrite);
    EXPECT_EQ(entity->setLayer(AcDbObjectId()), Acad::eNullObjectId);
    EXPECT_EQ(entity->setLayer(database->modelSpaceId()), Acad::eInvalidLayer);
    EXPECT_EQ(entity->setLayer(other.layerZero()), Acad::eWrongDatabase);
    EXPECT_EQ(entity->setLayer(L"?"), Acad::eKeyNotFound);
    EXPECT_EQ(entity->setLinetype(L"?"), Acad::eKeyNotFound);
    EXPECT_EQ(entity->setLinetypeScale(0), Acad::eInvalidInput);
    EXPECT_EQ(entity->setLineWeight(static_cast<AcDb::LineWeight>(212)), Acad::eInvalidInput);
    EXPECT_EQ(entity->setColorIndex(257), Acad::eInvalidInput);
    EXPECT_EQ(entity->layer(), L"0");
}

TEST_F(EntityTest, LineWeightsShareTheirWordWithOtherProperties) {
    SampleEntity entity;
    EXPECT_EQ(entity.lineWeight(), AcDb::kLnWtByLayer);
    for (const int weight : {-3, -2, -1, 0, 25, 211}) {
        entity.setVisibility(AcDb::kInvisible);
        entity.setPlotStyleName(AcDb::kPlotStyleNameByBlock);
        EXPECT_EQ(entity.setLineWeight(static_cast<AcDb::LineWeight>(weight)), Acad::eOk);
        EXPECT_EQ(entity.lineWeight(), weight);
        EXPECT_EQ(entity.visibility(), AcDb::kInvisible);
        EXPECT_EQ(entity.plotStyleNameType(), AcDb::kPlotStyleNameByBlock);
        entity.setVisibility(AcDb::kVisible);
        EXPECT_EQ(entity.lineWeight(), weight);
    }
}

TEST_F(EntityTest, DefaultsAndPropertiesOfAnother) {
    const AcDbObjectId layer = named(L"Walls");
    EXPECT_EQ(database->setClayer(layer), Acad::eOk);
    AcCmColor color;
    color.setColorIndex(2);
    database->setCecolor(color);
    SampleEntity entity;
    entity.setDatabaseDefaults(database.get());
    EXPECT_EQ(entity.layer(), L"Walls");
    EXPECT_EQ(entity.colorIndex(), 2);
    entity.setVisibility(AcDb::kInvisible);
    SampleEntity other;
    EXPECT_EQ(other.setPropertiesFrom(&entity), Acad::eOk);
    EXPECT_EQ(other.layerId(), layer);
    EXPECT_EQ(other.colorIndex(), 2);
    EXPECT_EQ(other.visibility(), AcDb::kInvisible);
}

TEST_F(EntityTest, ExtentsAreThoseOfTheDrawing) {
    SampleEntity entity;
    entity.setAt({10, 20, 0});
    AcDbExtents extents;
    ASSERT_EQ(entity.getGeomExtents(extents), Acad::eOk);
    EXPECT_EQ(extents.minPoint(), AcGePoint3d(9, 19, 0));
    EXPECT_EQ(extents.maxPoint(), AcGePoint3d(11, 21, 0));
    AcDbEntity* copy = nullptr;
    ASSERT_EQ(entity.getTransformedCopy(AcGeMatrix3d::translation({1, 0, 0}), copy), Acad::eOk);
    EXPECT_EQ(SampleEntity::cast(copy)->at(), AcGePoint3d(11, 20, 0));
    delete copy;
}

}  // namespace
}  // namespace sg::model

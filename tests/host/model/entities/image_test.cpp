#include "host/model/entities/image.h"

#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/ole_frame.h"

namespace sg::test {
namespace {

class ImageTest : public EntityTest {
  protected:
    AcDbObjectId addDefinition() {
        Opened<AcDbDictionary> images(AcDbRasterImageDef::imageDictionary(*database),
                                      AcDb::kForWrite);
        auto* const definition = new AcDbRasterImageDef;
        definition->setSourceFileName(L"plan.png");
        definition->setSize({4, 3});
        AcDbObjectId id;
        EXPECT_EQ(images->setAt(L"plan", definition, id), Acad::eOk);
        definition->close();
        return id;
    }
    static std::string framed(const AcDbRasterImage& image) {
        std::string text;
        for (const AcGePoint3d& corner : image.frame())
            text += number(corner.x) + number(corner.y) + ";";
        return text;
    }
};

TEST_F(ImageTest, DefinitionsStandInTheirDictionary) {
    const AcDbObjectId dictionary = AcDbRasterImageDef::imageDictionary(*database);
    EXPECT_EQ(AcDbRasterImageDef::imageDictionary(*database), dictionary);
    EXPECT_TRUE(
        Opened<AcDbDictionary>(database->namedObjectsDictionaryId())->has(L"ACAD_IMAGE_DICT"));
}

TEST_F(ImageTest, ReactorsComeAndGoWithTheImage) {
    const AcDbObjectId definition = addDefinition();
    auto* const image = new AcDbRasterImage;
    image->setImageDefId(definition);
    const AcDbObjectId id = append(image);
    image->close();
    const AcDbObjectIdArray reactors = Opened<AcDbObject>(definition)->persistentReactors();
    // The dictionary's and the image's.
    ASSERT_FALSE(reactors.isEmpty());
    const AcDbObjectId reactor = reactors.last();
    EXPECT_EQ(Opened<AcDbRasterImageDefReactor>(reactor)->image(), id);
    EXPECT_EQ(Opened<AcDbRasterImageDefReactor>(reactor)->ownerId(), id);
    erase(id);
    EXPECT_TRUE(reactor.isErased());
    erase(id, false);
    EXPECT_FALSE(reactor.isErased());
    // With the image in another drawing goes its definition, into the dictionary there.
    AcDbDatabase other;
    AcDbObjectIdArray ids;
    ids.append(id);
    AcDbIdMapping mapping;
    ASSERT_EQ(other.wblockCloneObjects(ids, other.modelSpaceId(), mapping, AcDb::kDrcIgnore),
              Acad::eOk);
    AcDbObjectId there;
    EXPECT_EQ(
        Opened<AcDbDictionary>(AcDbRasterImageDef::imageDictionary(other))->getAt(L"PLAN", there),
        Acad::eOk);
    EXPECT_EQ(Opened<AcDbRasterImage>(mapping.find(id)->value)->imageDefId(), there);
}

TEST_F(ImageTest, BoundariesCutTheFrame) {
    AcDbRasterImage image;
    image.setImageSize({4, 3});
    ASSERT_EQ(image.setOrientation({10, 20, 0}, {8, 0, 0}, {0, 6, 0}), Acad::eOk);
    EXPECT_EQ(framed(image), " 10 20; 18 20; 18 26; 10 26;");
    AcGePoint2dArray corners;
    corners.append(AcGePoint2d(0.5, 0.5));
    EXPECT_EQ(image.setClipBoundary(AcDbRasterImage::kRectangle, corners), Acad::eInvalidInput);
    corners.append(AcGePoint2d(2.5, 1.5));
    ASSERT_EQ(image.setClipBoundary(AcDbRasterImage::kRectangle, corners), Acad::eOk);
    EXPECT_EQ(framed(image), " 12 22; 16 22; 16 24; 12 24;");  // y downwards from the top
    EXPECT_EQ(image.setOrientation({}, {1, 0, 0}, {2, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(image.setImageSize({0, 3}), Acad::eInvalidInput);
}

TEST_F(ImageTest, CornersPullTheImageEvenly) {
    AcDbRasterImage image;
    image.setOrientation({0, 0, 0}, {4, 0, 0}, {0, 2, 0});
    AcDbIntArray upperRight;
    upperRight.append(2);
    ASSERT_EQ(image.moveGripPointsAt(upperRight, {4, 2, 0}), Acad::eOk);
    EXPECT_EQ(framed(image), " 0 0; 8 0; 8 4; 0 4;");
    EXPECT_EQ(image.moveGripPointsAt(upperRight, {-80, -40, 0}), Acad::eInvalidInput);
    EXPECT_EQ(framed(image), " 0 0; 8 0; 8 4; 0 4;");
}

TEST_F(ImageTest, OleFramesKeepTheirData) {
    AcDbOle2Frame frame;
    std::vector<uint8_t> data(1000);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<uint8_t>(i * 31);
    frame.setData(AcDbOle2Frame::Type::Embedded, data);
    frame.setPosition({0, 4, 0}, {3, 0, 0});
    EXPECT_EQ(throughGroups(frame, AcDb::kFileFiler)->data(), data);
    EXPECT_EQ(throughMemory(frame)->data(), data);
    EXPECT_EQ(described(frame).find("\n310 "), std::string::npos);  // programs do not see it
    AcDbIntArray upperRight;
    upperRight.append(3);
    frame.moveGripPointsAt(upperRight, {2, 1, 0});
    expectNear(frame.upperLeft(), {0, 5, 0});
    expectNear(frame.lowerRight(), {5, 0, 0});
}

}  // namespace
}  // namespace sg::test

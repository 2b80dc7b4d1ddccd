#include "host/model/entities/image.h"

#include <QImage>
#include <filesystem>
#include <memory>

#include "base/encoding.h"
#include "host/render/image_files.h"
#include "host/render/pdf_writer.h"
#include "host/render/render_fixture.h"
#include "host/render/svg_writer.h"
#include "platform/db/block_table.h"
#include "platform/db/dictionary.h"

namespace sg::test {
namespace {

// A drawing with an image file beside it: red in its left half, blue in the upper part of the right
// one, which is see-through below.
class ImageTest : public RenderTest {
  protected:
    ImageTest() {
        QImage pixels(40, 20, QImage::Format_ARGB32);
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 40; ++x)
                pixels.setPixel(x, y, x < 20 ? 0xFFFF0000 : y < 10 ? 0xFF0000FF : 0);
        }
        std::filesystem::create_directories(file("Images"));
        pixels.save(QString::fromStdString(file("Images/Plan.png").string()));
        options.findImage = render::findBesideDrawing(
            path("a.dxf"), [](const std::wstring&) { return std::wstring(); });
    }
    std::filesystem::path file(const std::string& name) const { return toUtf8(path(name)); }

    // An image from 20,20 to 100,60, with a clip boundary if there is one.
    void insert(const wchar_t* name, const std::vector<AcGePoint2d>& boundary = {}) {
        auto definition = std::make_unique<AcDbRasterImageDef>();
        definition->setSourceFileName(name);
        AcDbDictionary* definitions = nullptr;
        ASSERT_EQ(acdbOpenObject(definitions, AcDbRasterImageDef::imageDictionary(database()),
                                 AcDb::kForWrite),
                  Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(definitions->setAt(name, definition.get(), id), Acad::eOk);
        definition.release()->close();
        definitions->close();
        auto image = std::make_unique<AcDbRasterImage>();
        image->setImageSize({40, 20});
        image->setOrientation({20, 20, 0}, {80, 0, 0}, {0, 40, 0});
        image->setImageDefId(id);
        AcGePoint2dArray points;
        for (const AcGePoint2d& point : boundary)
            points.append(point);
        if (!boundary.empty()) image->setClipBoundary(AcDbRasterImage::kPolygon, points);
        AcDbBlockTableRecord* model = nullptr;
        ASSERT_EQ(acdbOpenObject(model, database().modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        EXPECT_EQ(model->appendAcDbEntity(image.get()), Acad::eOk);
        image.release()->close();
        model->close();
    }
    uint32_t pixelAt(int x, int y) const { return image.pixel(x, 149 - y) & 0xFFFFFF; }
};

TEST_F(ImageTest, ShowsPixelsUpright) {
    options.ground = 0x00FF00;
    insert(LR"(C:\Old place\images\plan.PNG)");
    paint();
    EXPECT_TRUE(rendering.complaints.empty());
    EXPECT_EQ(pixelAt(40, 40), kRed);
    EXPECT_EQ(pixelAt(80, 50), kBlue);
    EXPECT_EQ(pixelAt(80, 30), kWhite);  // not told to let the ground through
    EXPECT_EQ(pixelAt(110, 40), kGreen);
}

TEST_F(ImageTest, ShowsOnlyWhatItsBoundaryLeaves) {
    insert(L"Images/Plan.png", {{-0.5, -0.5}, {39.5, -0.5}, {-0.5, 19.5}});
    paint();
    EXPECT_EQ(pixelAt(30, 40), kRed);
    EXPECT_EQ(pixelAt(75, 55), kBlue);
    EXPECT_EQ(pixelAt(55, 24), kWhite);
}

TEST_F(ImageTest, FrameAndComplaintStandForMissingFile) {
    insert(L"gone.png");
    write("a.dxf", "none");
    insert(L"a.dxf");
    std::filesystem::copy_file(file("Images/Plan.png"), file("broken.png"));
    std::filesystem::resize_file(file("broken.png"), 20);
    insert(L"broken.png");
    paint();
    ASSERT_EQ(rendering.complaints.size(), 3u);
    EXPECT_NE(rendering.complaints[0].find(L"gone.png: no such"), std::wstring::npos);
    EXPECT_NE(rendering.complaints[2].find(L"broken.png: not an image"), std::wstring::npos);
    EXPECT_TRUE(isInked(60, 20));
    EXPECT_FALSE(isInked(60, 40));
}

TEST_F(ImageTest, EveryFormOfPictureHasThePixelsOnce) {
    insert(L"Images/Plan.png");
    insert(L"images/plan.png");
    paint();
    const std::string svg = render::toSvg(rendering.picture);
    EXPECT_EQ(svg.find("data:image/png;base64,iVBORw0KGgo"), svg.rfind("data:image"));
    const std::string pdf = render::toPdf(rendering.picture);
    EXPECT_NE(pdf.find("/Subtype /Image /Width 40 /Height 20 /ColorSpace /DeviceRGB"),
              std::string::npos);
    EXPECT_EQ(pdf.find("/DeviceRGB"), pdf.rfind("/DeviceRGB"));
}

struct Adjustment {
    int brightness, contrast, fade;
    uint32_t red, blue;
};

TEST_F(ImageTest, AdjustsPixels) {
    render::ImageFiles files(options.findImage, 0);
    render::ShownImage shown;
    shown.files = &files;
    shown.file = files.find(L"Images/Plan.png");
    const Adjustment cases[] = {
        {50, 50, 0, 0xFFFF0000, 0xFF0000FF},  {100, 50, 0, 0xFFFFFFFF, 0xFFFFFFFF},
        {0, 50, 0, 0xFF000000, 0xFF000000},   {50, 0, 0, 0xFF808080, 0xFF808080},
        {50, 100, 0, 0xFFFF0000, 0xFF0000FF}, {50, 50, 100, 0xFF000000, 0xFF000000},
        {50, 50, 60, 0xFF660000, 0xFF000066},
    };
    for (const Adjustment& each : cases) {
        shown.brightness = each.brightness;
        shown.contrast = each.contrast;
        shown.fade = each.fade;
        const auto pixels = files.pixels(shown, 1000, 1000);
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(pixels->argb[0], each.red) << each.brightness << ' ' << each.contrast;
        EXPECT_EQ(pixels->argb[39], each.blue) << each.brightness << ' ' << each.contrast;
        EXPECT_EQ(pixels->argb.back() >> 24, 0u);
    }
    EXPECT_EQ(files.pixels(shown, 9, 9)->width, 16u);
}

}  // namespace
}  // namespace sg::test

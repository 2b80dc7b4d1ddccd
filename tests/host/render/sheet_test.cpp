#include "host/model/sample_entity.h"
#include "host/model/tables/layout.h"
#include "host/render/render_fixture.h"
#include "platform/db/block_table.h"
#include "platform/db/polyline.h"
#include "platform/db/viewport.h"

namespace sg::test {
namespace {

// A sheet of 200 by 150 millimetres, as many pixels.
class SheetTest : public RenderTest {
  protected:
    SheetTest() {
        options.layout = L"Layout1";
        sheet_ = database().paperSpaceId();
        Opened<AcDbBlockTableRecord> block(sheet_);
        Opened<AcDbLayout> layout(block->getLayoutId(), AcDb::kForWrite);
        model::RecordFields& plot = layout->plotFields();
        plot.set(44, 200.0);
        plot.set(45, 150.0);
        plot.set(72, int32_t(1));
        for (const int margin : {40, 41, 42, 43})
            plot.set(margin, 0.0);
    }

    AcDbObjectId add(AcDbEntity* entity) {
        AcDbObjectId id;
        Opened<AcDbBlockTableRecord> block(sheet_, AcDb::kForWrite);
        EXPECT_EQ(block->appendAcDbEntity(id, entity), Acad::eOk);
        entity->close();
        return id;
    }
    AcDbObjectId window(const AcGePoint3d& center, double width, double height, double scale,
                        const AcGePoint2d& view) {
        auto* const viewport = new AcDbViewport;
        viewport->setCenterPoint(center);
        viewport->setWidth(width);
        viewport->setHeight(height);
        viewport->setCustomScale(scale);
        viewport->setViewCenter(view);
        return add(viewport);
    }

    AcDbObjectId sheet_;
};

TEST_F(SheetTest, WindowsShowTheModelAtTheirScaleAndCutItOff) {
    line(-1000, 0, 1000, 0, "(62 . 1)");
    line(100, -1000, 100, 1000, "(62 . 1)");
    window({50, 50, 0}, 60, 40, 0.5, {100, 20});
    paint();
    EXPECT_EQ(image.size(), QSize(200, 150));
    // The model's (100, 0) is 20 units below the centre: 10 on paper.
    EXPECT_TRUE(isTintOf(colorAt(30, 40), kRed));
    EXPECT_TRUE(isTintOf(colorAt(50, 60), kRed));
    EXPECT_FALSE(isInked(85, 40));
    EXPECT_FALSE(isInked(50, 75));
    EXPECT_TRUE(isTintOf(colorAt(35, 30), kBlack)) << "the frame";
}

TEST_F(SheetTest, WindowsMayBeOffOrTurnedOrHideLayers) {
    layer("A", 1);
    line(-1000, 0, 1000, 0, "(8 . \"A\")");
    const AcDbObjectId id = window({100, 75, 0}, 180, 140, 1, {0, 0});
    const auto change = [&](auto&& what) {
        {
            Opened<AcDbViewport> viewport(id, AcDb::kForWrite);
            what(*viewport.get());
        }
        paint();
    };
    change([](AcDbViewport& viewport) { viewport.setTwistAngle(std::acos(0.0) / 2); });
    EXPECT_TRUE(isInked(130, 105));
    EXPECT_FALSE(isInked(130, 75));
    change([](AcDbViewport& viewport) {
        viewport.setTwistAngle(0);
        AcDbObjectIdArray layers;
        AcDbObjectId layer;
        Opened<AcDbLayerTable>(viewport.database()->layerTableId())->getAt(L"A", layer);
        layers.append(layer);
        viewport.freezeLayersInViewport(layers);
    });
    EXPECT_FALSE(isInked(130, 75));
    change([](AcDbViewport& viewport) { viewport.thawAllLayersInViewport(); });
    EXPECT_TRUE(isInked(130, 75));
    change([](AcDbViewport& viewport) { viewport.setOff(); });
    EXPECT_FALSE(isInked(130, 75));
}

TEST_F(SheetTest, LinetypesAreMeasuredOnPaperWhereTheDrawingSaysSo) {
    linetype("DASHED", {20, -10});
    line(-1000, 0, 1000, 0, "(6 . \"DASHED\")");
    window({100, 75, 0}, 180, 140, 4, {0, 0});
    draw("(setvar \"PSLTSCALE\" 1)");
    paint();
    EXPECT_NEAR(inkedShare(20, 180, 75), 2.0 / 3, 0.1);
    bool wasInked = isInked(11, 75);
    int changes = 0;
    for (int x = 12; x < 190; ++x) {
        changes += isInked(x, 75) != wasInked ? 1 : 0;
        wasInked = isInked(x, 75);
    }
    EXPECT_NEAR(changes, 12, 2);
    draw("(progn (setvar \"PSLTSCALE\" 0) T)");
    paint();
    EXPECT_TRUE(isInked(30, 75) || isInked(60, 75)) << "dashes of 80, gaps of 40 on paper";
    int run = 0;
    int longest = 0;
    for (int x = 11; x < 190; ++x) {
        run = isInked(x, 75) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_GT(longest, 60);
}

TEST_F(SheetTest, WhatIsNotPrintedIsNotShown) {
    layer("QUIET", 7);
    {
        AcDbObjectId id;
        Opened<AcDbLayerTable>(database().layerTableId())->getAt(L"QUIET", id);
        Opened<AcDbLayerTableRecord>(id, AcDb::kForWrite)->setIsPlottable(false);
    }
    line(-50, 0, 50, 0, "(8 . \"QUIET\")");
    line(-50, 30, 50, 30);
    window({100, 75, 0}, 180, 140, 1, {0, 0});
    paint();
    EXPECT_FALSE(isInked(100, 75));
    EXPECT_TRUE(isInked(100, 105));
    options.layout.clear();
    options.window->add(-100, -75);
    options.window->high.set(100, 75);
    paint();
    EXPECT_TRUE(isInked(100, 75)) << "the model shows it";
}

TEST_F(SheetTest, PaperThatLiesAcrossAndUnknownSheets) {
    {
        Opened<AcDbBlockTableRecord> block(sheet_);
        Opened<AcDbLayout>(block->getLayoutId(), AcDb::kForWrite)->plotFields().set(73, int32_t(1));
    }
    paint();
    EXPECT_EQ(image.size(), QSize(113, 150));
    options.layout = L"layout1";
    paint();
    options.layout = L"None";
    try {
        paint();
        FAIL() << "an unknown sheet";
    } catch (const render::NotInDrawing& error) {
        EXPECT_NE(error.text().find(L"Layout1"), std::wstring::npos);
    }
}

}  // namespace
}  // namespace sg::test

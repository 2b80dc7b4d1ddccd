#include "host/render/render_fixture.h"

#include "platform/db/block_table.h"
#include "platform/db/sortents.h"

namespace sg::test {
namespace {

// ---- Linetypes and line weights -----------------------------------------------------------------

TEST_F(RenderTest, DashesAreWhereThePatternHasThem) {
    linetype("DASHED", {20, -10});
    draw("(setvar \"LTSCALE\" 1.0)");
    line(10, 100, 190, 100, "(6 . \"DASHED\")");
    line(10, 60, 190, 60, "(6 . \"DASHED\") (48 . 0.5)");
    line(10, 20, 190, 20);
    paint();
    // 180 long: six patterns, half a dash at either end.
    for (const double x : {12.0, 18.0, 35.0, 65.0, 155.0, 188.0})
        EXPECT_TRUE(isInked(x, 100)) << x;
    for (const double x : {25.0, 55.0, 85.0, 115.0, 145.0, 175.0})
        EXPECT_FALSE(isInked(x, 100)) << x;
    // Round ends make dashes longer.
    EXPECT_NEAR(inkedShare(10, 190, 100), 2.0 / 3, 0.08);
    EXPECT_NEAR(inkedShare(10, 190, 60), 2.0 / 3, 0.14);
    EXPECT_FALSE(isInked(17.5, 60));
    EXPECT_EQ(inkedShare(10, 190, 20), 1);

    draw("(setvar \"LTSCALE\" 2.0)");
    paint();
    EXPECT_TRUE(isInked(25, 100));
    EXPECT_FALSE(isInked(40, 100));  // dashes of 40, gaps of 20
    draw("(setvar \"LTSCALE\" 0.01)");
    paint();
    EXPECT_EQ(inkedShare(10, 190, 100), 1) << "a pattern too dense to be seen";
}

TEST_F(RenderTest, PolylinesStartTheirPatternAtEachCornerUnlessToldNotTo) {
    linetype("DASHED", {20, -10});
    const std::string corners =
        "(90 . 4) (43 . 0.0) (10 10.0 100.0) (10 35.0 100.0) (10 60.0 100.0) (10 190.0 100.0)))";
    const std::string head =
        "(entmake '((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (6 . \"DASHED\") (100 . "
        "\"AcDbPolyline\") ";
    draw(head + "(70 . 0) " + corners);
    paint();
    EXPECT_EQ(inkedShare(10, 60, 100), 1) << "too short for a pattern";
    draw("(entdel (entlast))");
    draw(head + "(70 . 128) " + corners);
    paint();
    EXPECT_NEAR(inkedShare(10, 190, 100), 2.0 / 3, 0.08);
}

TEST_F(RenderTest, LineWeightsAreMillimetresOfScreen) {
    line(10, 100, 190, 100, "(370 . 211)");
    line(10, 60, 190, 60, "(370 . 0)");
    layer("HEAVY", 7);
    line(10, 20, 190, 20, "(8 . \"HEAVY\") (370 . 100)");
    paint();
    EXPECT_NEAR(thicknessAt(100, 85, 115), 2.11 * 96 / 25.4, 1);
    EXPECT_NEAR(thicknessAt(100, 50, 70), 1, 1);
    EXPECT_NEAR(thicknessAt(100, 10, 30), 1.0 * 96 / 25.4, 1);
    options.lineWeights = false;
    paint();
    EXPECT_NEAR(thicknessAt(100, 85, 115), 1, 1);
}

// ---- Colours and layers -------------------------------------------------------------------------

TEST_F(RenderTest, ColoursComeFromEntitiesAndLayers) {
    layer("GREEN", 3);
    line(10, 140, 190, 140, "(62 . 1)");
    line(10, 120, 190, 120, "(8 . \"GREEN\")");
    line(10, 100, 190, 100, "(420 . 255)");
    line(10, 80, 190, 80);
    line(10, 60, 190, 60, "(62 . 0)");
    paint();
    EXPECT_TRUE(isTintOf(colorAt(100, 140), kRed));
    EXPECT_TRUE(isTintOf(colorAt(100, 120), kGreen));
    EXPECT_TRUE(isTintOf(colorAt(100, 100), kBlue));
    EXPECT_TRUE(isTintOf(colorAt(100, 80), kBlack));
    EXPECT_TRUE(isTintOf(colorAt(100, 60), kBlack)) << "by block in no block";
    options.ground = kBlack;
    paint();
    EXPECT_EQ(image.pixel(1, 1) & 0xFFFFFF, kBlack);
    EXPECT_GT(distance(colorAt(100, 80), kBlack), 300) << "the foreground is white on black";
}

TEST_F(RenderTest, HiddenLayersAndEntitiesAreBlank) {
    layer("FROZEN", 1, 1);
    layer("OFF", -1);
    layer("ON", 1);
    line(10, 140, 190, 140, "(8 . \"FROZEN\")");
    line(10, 120, 190, 120, "(8 . \"OFF\")");
    line(10, 100, 190, 100, "(8 . \"ON\")");
    line(10, 80, 190, 80, "(60 . 1)");
    line(10, 60, 190, 60);
    paint();
    EXPECT_FALSE(isInked(100, 140));
    EXPECT_FALSE(isInked(100, 120));
    EXPECT_TRUE(isInked(100, 100));
    EXPECT_FALSE(isInked(100, 80));
    options.layers = {L"o*"};
    paint();
    EXPECT_FALSE(isInked(100, 120)) << "what is off stays off";
    EXPECT_TRUE(isInked(100, 100));
    EXPECT_FALSE(isInked(100, 60));
    options.layers = {L"NONE"};
    EXPECT_THROW(paint(), render::NotInDrawing);
}

TEST_F(RenderTest, WhatIsTransparentLetsTheGroundThrough) {
    draw(
        "(entmake '((0 . \"SOLID\") (62 . 1) (440 . 33554559) (10 10.0 10.0 0.0) (11 100.0 10.0 "
        "0.0) (12 10.0 100.0 0.0) (13 100.0 100.0 0.0)))");  // an alpha of 127
    paint();
    EXPECT_LT(distance(image.pixel(50, 100) & 0xFFFFFF, 0xFF8080), 6);
}

// ---- Blocks -------------------------------------------------------------------------------------

class BlockPictureTest : public RenderTest {
  protected:
    void block(const std::string& name, const std::string& entities) {
        draw("(progn (entmake '((0 . \"BLOCK\") (2 . \"" + name +
             "\") (70 . 0) (10 0.0 0.0 0.0))) " + entities + " (entmake '((0 . \"ENDBLK\"))))");
    }
    static std::string blockLine(double y, const std::string& groups) {
        return "(entmake '((0 . \"LINE\")" + groups + "(10 0.0 " + std::to_string(y) +
               " 0.0) (11 100.0 " + std::to_string(y) + " 0.0)))";
    }
    void insert(const std::string& name, double x, double y, const std::string& groups = "") {
        draw("(entmake '((0 . \"INSERT\")" + groups + "(2 . \"" + name + "\") (10 " +
             std::to_string(x) + " " + std::to_string(y) + " 0.0)))");
    }
};

TEST_F(BlockPictureTest, LooksComeThroughNestedBlocks) {
    layer("GREEN", 3);
    layer("BLUE", 5);
    block("INNER", blockLine(0, "(62 . 0)") + blockLine(10, "(8 . \"0\")") +
                       blockLine(20, "(8 . \"BLUE\")") + blockLine(30, "(62 . 1)"));
    block("OUTER",
          "(entmake '((0 . \"INSERT\") (8 . \"0\") (62 . 0) (2 . \"INNER\") (10 0.0 0.0 "
          "0.0)))");
    insert("OUTER", 10, 100, "(8 . \"GREEN\") (62 . 6)");
    insert("OUTER", 10, 50, "(8 . \"GREEN\")");
    paint();
    EXPECT_TRUE(isTintOf(colorAt(50, 100), 0xFF00FF)) << "by block, of the outermost reference";
    EXPECT_TRUE(isTintOf(colorAt(50, 110), kGreen)) << "layer 0 becomes the reference's";
    EXPECT_TRUE(isTintOf(colorAt(50, 120), kBlue));
    EXPECT_TRUE(isTintOf(colorAt(50, 130), kRed));
    EXPECT_TRUE(isTintOf(colorAt(50, 50), kGreen)) << "by block, of a reference by layer";
}

TEST_F(BlockPictureTest, OffHidesWhatIsOnTheLayerAndFrozenHidesTheWholeReference) {
    layer("OFF", -3);
    layer("FROZEN", 3, 1);
    layer("BLUE", 5);
    block("PAIR", blockLine(0, "(8 . \"0\")") + blockLine(10, "(8 . \"BLUE\")") +
                      blockLine(20, "(8 . \"FROZEN\")"));
    insert("PAIR", 10, 100, "(8 . \"OFF\")");
    insert("PAIR", 10, 50, "(8 . \"FROZEN\")");
    insert("PAIR", 10, 10, "(8 . \"BLUE\")");
    paint();
    EXPECT_FALSE(isInked(50, 100));
    EXPECT_TRUE(isInked(50, 110));
    EXPECT_FALSE(isInked(50, 50));
    EXPECT_FALSE(isInked(50, 60));
    EXPECT_TRUE(isInked(50, 10));
    EXPECT_FALSE(isInked(50, 30)) << "a frozen layer of the block's contents";
}

TEST_F(BlockPictureTest, ReferencesTurnScaleAndRepeat) {
    block("BAR",
          "(entmake '((0 . \"SOLID\") (10 0.0 0.0 0.0) (11 10.0 0.0 0.0) (12 0.0 2.0 0.0) "
          "(13 10.0 2.0 0.0)))");
    insert("BAR", 20, 20,
           "(50 . 1.5707963267948966) (41 . 2.0) (42 . 3.0) (70 . 2) (71 . 3) (44 . 40.0) (45 . "
           "50.0)");
    paint();
    // Turned by a right angle: 20 high and 6 wide to the left; rows go left, columns up.
    EXPECT_TRUE(isInked(17, 38));
    EXPECT_FALSE(isInked(23, 30));
    EXPECT_TRUE(isInked(17, 78)) << "the second column";
    EXPECT_FALSE(isInked(17, 50));
}

TEST_F(BlockPictureTest, AttributesStandBesideTheBlock) {
    block("TAGGED",
          "(entmake '((0 . \"ATTDEF\") (10 0.0 0.0 0.0) (40 . 20.0) (1 . \"HHHH\") (2 . "
          "\"T\") (3 . \"\") (70 . 0)))");
    layer("GREEN", 3);
    draw(
        "(progn (entmake '((0 . \"INSERT\") (8 . \"GREEN\") (66 . 1) (2 . \"TAGGED\") (10 10.0 "
        "10.0 0.0))) (entmake '((0 . \"ATTRIB\") (8 . \"0\") (10 10.0 100.0 0.0) (40 . 30.0) (1 . "
        "\"HHH\") (2 . \"T\") (70 . 0))) (entmake '((0 . \"SEQEND\"))))");
    paint();
    const QImage picture = image;
    int dark = 0;
    for (int x = 0; x < 200; ++x) {
        for (int y = 20; y < 50; ++y)
            dark += isTintOf(picture.pixel(x, y) & 0xFFFFFF, kBlack) ? 1 : 0;
    }
    EXPECT_GT(dark, 60) << "the attribute is on layer 0 itself";
    EXPECT_FALSE(isInked(15, 20)) << "the definition does not show";
    draw("(setvar \"ATTMODE\" 0)");
    paint();
    EXPECT_EQ(inkedShare(10, 100, 115), 0);
}

// ---- Order, areas, curves -----------------------------------------------------------------------

TEST_F(RenderTest, WhatIsDrawnLaterCovers) {
    const auto solid = [&](int color) {
        draw("(entmake '((0 . \"SOLID\") (62 . " + std::to_string(color) +
             ") (10 10.0 10.0 0.0) (11 100.0 10.0 0.0) (12 10.0 100.0 0.0) (13 100.0 100.0 0.0)))");
    };
    solid(1);
    draw("(setq first (entlast))");
    solid(3);
    paint();
    EXPECT_EQ(image.pixel(50, 100) & 0xFFFFFF, kGreen);
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, database().modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbSortentsTable* order = nullptr;
    ASSERT_EQ(space->getSortentsTable(order, AcDb::kForWrite, true), Acad::eOk);
    AcDbObjectIdArray ids;
    ids.append(space->entityIds().front());
    EXPECT_EQ(order->moveToTop(ids), Acad::eOk);
    order->close();
    space->close();
    paint();
    EXPECT_EQ(image.pixel(50, 100) & 0xFFFFFF, kRed);
    draw("(progn (setvar \"FILLMODE\" 0) T)");
    paint();
    EXPECT_EQ(image.pixel(50, 100) & 0xFFFFFF, kWhite);
    EXPECT_TRUE(isInked(10, 50)) << "the outline";
}

TEST_F(RenderTest, HatchesFillTheirAreaAndLeaveIslandsOut) {
    draw(
        "(entmake '((0 . \"HATCH\") (100 . \"AcDbEntity\") (62 . 1) (100 . \"AcDbHatch\") (10 0.0 "
        "0.0 0.0) (210 0.0 0.0 1.0) (2 . \"SOLID\") (70 . 1) (71 . 0) (91 . 2)"
        "(92 . 3) (72 . 0) (73 . 1) (93 . 4) (10 10.0 10.0) (10 190.0 10.0) (10 190.0 140.0) (10 "
        "10.0 140.0) (97 . 0)"
        "(92 . 16) (93 . 1) (72 . 2) (10 100.0 75.0) (40 . 30.0) (50 . 0.0) (51 . "
        "6.283185307179586) (73 . 1) (97 . 0)"
        "(75 . 0) (76 . 1) (98 . 0)))");
    paint();
    EXPECT_EQ(image.pixel(20, 20) & 0xFFFFFF, kRed);
    EXPECT_EQ(image.pixel(100, 75) & 0xFFFFFF, kWhite);
    EXPECT_EQ(image.pixel(100, 75 - 35) & 0xFFFFFF, kRed);
    EXPECT_EQ(image.pixel(100, 75 - 25) & 0xFFFFFF, kWhite);
    EXPECT_EQ(image.pixel(5, 5) & 0xFFFFFF, kWhite);
}

TEST_F(RenderTest, WidePolylinesAreAreas) {
    draw(
        "(entmake '((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (62 . 1) (100 . \"AcDbPolyline\") "
        "(90 . 2) (70 . 0) (10 10.0 75.0) (40 . 40.0) (41 . 0.0) (10 190.0 75.0)))");
    paint();
    EXPECT_NEAR(thicknessAt(20, 40, 110), 38, 2);
    EXPECT_NEAR(thicknessAt(100, 40, 110), 20, 2);
}

TEST_F(RenderTest, ArcsAreRound) {
    draw("(entmake '((0 . \"CIRCLE\") (10 100.0 75.0 0.0) (40 . 70.0)))");
    draw(
        "(entmake '((0 . \"ARC\") (10 100.0 75.0 0.0) (40 . 40.0) (50 . 0.0) (51 . "
        "1.5707963267948966)))");
    paint();
    for (int degree = 0; degree < 360; degree += 7) {
        const double angle = degree * std::acos(-1.0) / 180;
        const double x = std::cos(angle);
        const double y = std::sin(angle);
        EXPECT_TRUE(isInked(100 + 70 * x, 75 + 70 * y)) << degree;
        EXPECT_FALSE(isInked(100 + 65 * x, 75 + 65 * y)) << degree;
        if (std::abs(degree - 90) < 3) continue;
        EXPECT_EQ(isInked(100 + 40 * x, 75 + 40 * y), degree < 90) << degree;
    }
}

TEST_F(RenderTest, EndlessLinesReachTheEdges) {
    draw(
        "(entmake '((0 . \"XLINE\") (100 . \"AcDbEntity\") (100 . \"AcDbXline\") (10 1e6 75.0 0.0) "
        "(11 1.0 0.0 0.0)))");
    draw(
        "(entmake '((0 . \"RAY\") (100 . \"AcDbEntity\") (100 . \"AcDbRay\") (10 100.0 20.0 0.0) "
        "(11 0.0 -1.0 0.0)))");
    paint();
    EXPECT_EQ(inkedShare(1, 199, 75), 1);
    EXPECT_TRUE(isInked(100, 2));
    EXPECT_FALSE(isInked(100, 30));
}

TEST_F(RenderTest, PointsHaveTheMarkOfTheDrawing) {
    draw("(entmake '((0 . \"POINT\") (10 100.0 75.0 0.0)))");
    draw("(setvar \"PDSIZE\" 20.0)");
    struct Case {
        int mode;
        bool center, right, corner, circle;  // (10, 0), (10, 10) and (7, 7) off it
    };
    const Case cases[] = {{0, true, false, false, false}, {1, false, false, false, false},
                          {2, true, true, false, false},  {3, true, false, true, true},
                          {32, true, true, false, true},  {65, false, true, true, false}};
    for (const Case& each : cases) {
        draw("(progn (setvar \"PDMODE\" " + std::to_string(each.mode) + ") T)");
        paint();
        EXPECT_EQ(isInked(100, 75), each.center) << each.mode;
        EXPECT_EQ(isInked(110, 75), each.right) << each.mode;
        EXPECT_EQ(isInked(110, 85), each.corner) << each.mode;
        EXPECT_EQ(isInked(107, 82), each.circle) << each.mode;
    }
}

TEST_F(RenderTest, ThicknessShowsFromTheSide) {
    draw("(entmake '((0 . \"LINE\") (39 . 60.0) (10 20.0 5.0 10.0) (11 180.0 5.0 10.0)))");
    options.view = render::View::front;
    paint();
    EXPECT_TRUE(isInked(100, 10));
    EXPECT_TRUE(isInked(100, 70));
    EXPECT_TRUE(isInked(20, 40)) << "the end";
    EXPECT_FALSE(isInked(100, 40));
    options.view = render::View::top;
    paint();
    EXPECT_TRUE(isInked(100, 5));
    EXPECT_FALSE(isInked(100, 70));
}

TEST_F(RenderTest, TextIsStrokesAndTooSmallTextALine) {
    draw("(entmake '((0 . \"TEXT\") (10 10.0 50.0 0.0) (40 . 50.0) (1 . \"HI\")))");
    draw("(entmake '((0 . \"TEXT\") (10 100.0 20.0 0.0) (40 . 1.0) (1 . \"HHHHHHHHHHHHHH\")))");
    paint();
    EXPECT_EQ(thicknessAt(30, 40, 110), 1) << "the bar of the H";
    EXPECT_NEAR(inkedShare(102, 108, 20), 1, 0.2);
}

TEST_F(RenderTest, TheWholeDrawingFillsThePictureWithAMargin) {
    line(-1000, 500, 3000, 500);
    line(0, 0, 0, 1000);
    options.window.reset();
    paint();
    EXPECT_FALSE(isInked(1, 75));
    EXPECT_TRUE(isInked(6, 75));
    EXPECT_TRUE(isInked(194, 75));
}

TEST_F(RenderTest, EmptyAndDamagedDrawingsGiveAPicture) {
    options.window.reset();
    paint();
    EXPECT_EQ(image.size(), QSize(200, 150));
    draw("(entmake '((0 . \"LINE\") (10 1e308 0.0 0.0) (11 -1e308 1e308 0.0)))");
    draw("(entmake '((0 . \"CIRCLE\") (10 0.0 0.0 0.0) (40 . 1e300)))");
    draw("(entmake '((0 . \"CIRCLE\") (10 5.0 5.0 0.0) (40 . 5.0)))");
    paint();
    EXPECT_EQ(image.size(), QSize(200, 150));
}

TEST_F(RenderTest, StretchesChangeWithPensOnly) {
    for (int i = 0; i < 50; ++i)
        line(10, i, 190, i, i < 25 ? "(62 . 1)" : "(62 . 3)");
    paint();
    EXPECT_EQ(rendering.picture.stretches.size(), 2U);
    EXPECT_EQ(rendering.picture.chainEnds.size(), 50U);
}

}  // namespace
}  // namespace sg::test

#include "jigs/text_jig.h"

#include <cmath>
#include <numbers>

#include "jigs/jig_fixture.h"
#include "jigs/text_path.h"

namespace sg {
namespace {

using namespace test;
using Attachment = AcDbMText::AttachmentPoint;

constexpr double kPi = std::numbers::pi;

class TextJigTest : public JigTest {
  protected:
    void SetUp() override {
        JigTest::SetUp();
        ASSERT_TRUE(jig.setText(L"HVAC", L"Standard", 2, L"0"));
    }
    AcEdJig::DragStatus run(std::vector<std::string> steps, const wchar_t* prompt = L"",
                            const wchar_t* keywords = L"") {
        hand->will(std::move(steps));
        return jig.run(prompt, keywords);
    }

    TextJig jig;
};

TEST_F(TextJigTest, APointFromABase) {
    jig.setMode(TextJig::Mode::pointFromBase, {1, 2, 0});
    jig.setAttachment(AcDbMText::kMiddleRight);
    hand->onDrag = [](const DragRequest& request) {
        EXPECT_EQ(request.kind, DragRequest::Kind::point);
        EXPECT_EQ(request.basePoint, AcGePoint3d(1, 2, 0));
    };
    EXPECT_EQ(run({"sample 3,3", "4,5"}, L"\nWhere: "), AcEdJig::kNormal);
    EXPECT_EQ(hand->prompts().front(), "\nWhere: ");
    EXPECT_EQ(jig.mtext()->location(), AcGePoint3d(4, 5, 0));
    EXPECT_EQ(jig.mtext()->attachment(), AcDbMText::kMiddleRight);
    EXPECT_GT(jig.actualWidth(), 0);
    EXPECT_EQ(jig.actualWidth(), jig.mtext()->actualWidth());
}

TEST_F(TextJigTest, ARotationAboutABase) {
    jig.setMode(TextJig::Mode::rotation, {1, 2, 0});
    EXPECT_EQ(run({"sample 5,2", "1,9"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.mtext()->location(), AcGePoint3d(1, 2, 0));
    EXPECT_NEAR(jig.mtext()->rotation(), kPi / 2, 1e-12);
    // The angle 0 it had before: no change, but what is confirmed is shown.
    EXPECT_EQ(counts().updates, 1u);
    EXPECT_EQ(run({"270"}), AcEdJig::kNormal);
    EXPECT_NEAR(jig.mtext()->rotation(), kPi * 3 / 2, 1e-12);
}

TEST_F(TextJigTest, KeywordsOfTheCallerEndIt) {
    EXPECT_EQ(run({"sample 1,1", "Right"}, L"", L"Left Right"), AcEdJig::kKW2);
    EXPECT_EQ(jig.mtext()->location(), AcGePoint3d(1, 1, 0));
    EXPECT_EQ(run({"sample 2,2", ""}, L"", L"Left Right"), AcEdJig::kNull) << "Enter is taken now";
    EXPECT_EQ(run({"sample 3,3", "ESC"}, L"", L"Left Right"), AcEdJig::kCancel);
    EXPECT_EQ(jig.mtext(), nullptr);
    EXPECT_GT(jig.actualWidth(), 0) << "of the text that was";
}

TEST_F(TextJigTest, SnapTurnsThePathOffAndOn) {
    AcGePoint3dArray path;
    path.append({0, 0, 0});
    path.append({100, 0, 0});
    jig.setPath(&path, true);
    jig.setSnapKeyword(L"\nAnywhere: ");
    std::vector<AcGePoint3d> places;
    hand->onDrag = [&](const DragRequest&) { places.push_back(jig.mtext()->location()); };
    EXPECT_EQ(run({"sample 5,1", "s", "sample 6,1", "Snap", "7,1"}, L"\nOn the line: ", L"Left"),
              AcEdJig::kNormal);
    EXPECT_EQ(hand->prompts(),
              (std::vector<std::string>{"\nOn the line: ", "\nOn the line: ", "\nAnywhere: ",
                                        "\nAnywhere: ", "\nOn the line: "}));
    EXPECT_EQ(places[1], AcGePoint3d(5, 0, 0));
    EXPECT_EQ(places[3], AcGePoint3d(6, 1, 0));
    EXPECT_EQ(jig.mtext()->location(), AcGePoint3d(7, 0, 0));
    EXPECT_TRUE(jig.isSnapOn());
    EXPECT_EQ(run({"L"}, L"", L"Left"), AcEdJig::kKW1) << "another keyword than Snap";
}

TEST_F(TextJigTest, AwayFromThePathTheTextIsUpright) {
    AcGePoint3dArray path;
    path.append({0, 0, 0});
    path.append({0, 100, 0});
    jig.setPath(&path);
    EXPECT_EQ(run({"sample 1,50", "50,50"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.mtext()->rotation(), 0);
    EXPECT_EQ(jig.mtext()->location(), AcGePoint3d(50, 50, 0));
    EXPECT_EQ(jig.mtext()->attachment(), AcDbMText::kTopLeft);
}

TEST_F(TextJigTest, AnUnknownStyleMakesNoText) {
    TextJig other;
    EXPECT_FALSE(other.setText(L"A", L"None", 1, L"0"));
    EXPECT_EQ(other.mtext(), nullptr);
}

// ---- Along paths --------------------------------------------------------------------------------

AcGePoint3dArray pathOf(const std::vector<AcGePoint3d>& points) {
    AcGePoint3dArray path;
    for (const AcGePoint3d& point : points)
        path.append(point);
    return path;
}

TEST(TextPath, TextsStandOnTheOtherSideOfTheLine) {
    struct Case {
        const char* name;
        AcGePoint3d from, to, cursor, location;
        Attachment before, after;
        double rotation;
    };
    const Case cases[] = {
        {"above",
         {0, 0, 0},
         {10, 0, 0},
         {4, 1, 0},
         {4, -1, 0},
         AcDbMText::kBottomCenter,
         AcDbMText::kTopCenter,
         0},
        {"below",
         {0, 0, 0},
         {10, 0, 0},
         {4, -1, 0},
         {4, 1, 0},
         AcDbMText::kTopRight,
         AcDbMText::kBottomRight,
         0},
        {"middle row",
         {0, 0, 0},
         {10, 0, 0},
         {4, 1, 0},
         {4, -1, 0},
         AcDbMText::kMiddleLeft,
         AcDbMText::kMiddleLeft,
         0},
        {"backwards",
         {10, 0, 0},
         {0, 0, 0},
         {4, 1, 0},
         {4, -1, 0},
         AcDbMText::kTopLeft,
         AcDbMText::kTopLeft,
         kPi + 3.14159265},
        {"upwards, from the right",
         {0, 0, 0},
         {0, 10, 0},
         {1, 4, 0},
         {-1, 4, 0},
         AcDbMText::kTopLeft,
         AcDbMText::kBottomLeft,
         kPi / 2},
        {"upwards, from the left",
         {0, 0, 0},
         {0, 10, 0},
         {-1, 4, 0},
         {1, 4, 0},
         AcDbMText::kTopLeft,
         AcDbMText::kTopLeft,
         kPi / 2},
        {"downwards",
         {0, 10, 0},
         {0, 0, 0},
         {-1, 4, 0},
         {1, 4, 0},
         AcDbMText::kBottomLeft,
         AcDbMText::kTopLeft,
         kPi * 3 / 2 + 3.14159265},
    };
    for (const Case& each : cases) {
        const auto place =
            placeAtPath(pathOf({each.from, each.to}), each.cursor, 2, each.before, false);
        ASSERT_TRUE(place) << each.name;
        EXPECT_EQ(place->location, each.location) << each.name;
        EXPECT_EQ(place->attachment, each.after) << each.name;
        EXPECT_NEAR(place->rotation, each.rotation, 1e-12) << each.name;
    }
}

TEST(TextPath, OnTheLineTheMiddleRowIsTaken) {
    const auto path = pathOf({{0, 0, 0}, {10, 0, 0}});
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const auto given = static_cast<Attachment>(1 + row * 3 + column);
            const auto place = placeAtPath(path, {4, 1, 0}, 2, given, true);
            ASSERT_TRUE(place);
            // The bottom row stays: only the top one is moved.
            const int wanted = row == 0 ? 4 + column : static_cast<int>(given);
            EXPECT_EQ(place->attachment, wanted);
            EXPECT_EQ(place->location, AcGePoint3d(4, 0, 0));
        }
    }
}

TEST(TextPath, TheNearestSegmentWithinReachIsTaken) {
    const auto path = pathOf({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {10, 10, 0}, {0, 10, 0}});
    const auto near = [&](const AcGePoint3d& cursor, double height) {
        return placeAtPath(path, cursor, height, AcDbMText::kTopLeft, true);
    };
    EXPECT_EQ(near({8, 3, 0}, 2)->location, AcGePoint3d(10, 3, 0));
    EXPECT_EQ(near({9, 1, 0}, 2)->location, AcGePoint3d(9, 0, 0)) << "the first of two as near";
    EXPECT_FALSE(near({5, 2, 0}, 1)) << "twice the height is too far";
    EXPECT_TRUE(near({5, 1.999, 0}, 1));
    EXPECT_FALSE(placeAtPath(pathOf({{0, 0, 0}}), {0, 0, 0}, 1, AcDbMText::kTopLeft, true));
    EXPECT_TRUE(
        placeAtPath(pathOf({{1, 1, 0}, {1, 1, 0}}), {1, 1, 0}, 1, AcDbMText::kTopLeft, false));
}

}  // namespace
}  // namespace sg

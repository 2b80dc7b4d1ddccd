#include "solids/alignment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "solids/transition.h"

namespace sg {
namespace {

constexpr double kPi = std::numbers::pi;

const AcGeVector3d X = AcGeVector3d::kXAxis;
const AcGeVector3d Y = AcGeVector3d::kYAxis;
const AcGeVector3d Z = AcGeVector3d::kZAxis;

SectionFrame turnedAboutRun(const SectionFrame& frame, double angle) {
    SectionFrame result = frame;
    result.y().rotateBy(angle, frame.x());
    result.z().rotateBy(angle, frame.x());
    return result;
}

void expectFrame(const SectionFrame& frame, const SectionFrame& expected, const char* what) {
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_LT((frame.axes[i] - expected.axes[i]).length(), 1e-7) << what << " axis " << i;
    }
}

constexpr Profile kRectangle = {12, 8, true};
constexpr Profile kCircle = {8, 8, false};

// The first run goes along x, with y to its left, and turns to the left.
TEST(Alignment, TheSecondFrameIsTheFirstOneTurned) {
    const SectionFrame first = {{X, Y, Z}};
    const SectionFrame turned = {{Y, -X, Z}};
    const struct {
        const char* what;
        SectionFrame second, expected;
        bool exchanged;
    } cases[] = {
        {"agrees", {{Y, -X, Z}}, turned, false},
        {"agrees nearly", turnedAboutRun(turned, 0.009), turnedAboutRun(turned, 0.009), false},
        {"is upside down", {{Y, X, -Z}}, turned, false},
        {"is upside down, nearly", turnedAboutRun(turned, kPi - 0.009), turned, false},
        {"lies on its left side", {{Y, -Z, -X}}, turned, true},
        {"lies on its right side", {{Y, Z, X}}, turned, true},
        {"stands on an edge", turnedAboutRun(turned, kPi / 4), turned, false},
        {"is turned a little", turnedAboutRun(turned, 0.011), turned, false},
    };
    for (const auto& c : cases) {
        SectionFrame frame1 = first, frame2 = c.second;
        Profile profile = {10, 6, true};
        alignFrames(frame1, frame2, kRectangle, profile);
        expectFrame(frame1, first, c.what);
        expectFrame(frame2, c.expected, c.what);
        EXPECT_EQ(profile.width, c.exchanged ? 6 : 10) << c.what;
        EXPECT_EQ(profile.height, c.exchanged ? 10 : 6) << c.what;
    }
}

// About a round head, y is square to the plane of the runs in both frames.
TEST(Alignment, ARoundHeadTurnsAboutItsRunToo) {
    const struct {
        SectionFrame second, expected;
        bool exchanged;
    } cases[] = {
        {{{Y, Z, X}}, {{Y, Z, X}}, false},
        {{{Y, -X, Z}}, {{Y, Z, X}}, true},
        {{{Y, -Z, -X}}, {{Y, Z, X}}, false},
    };
    for (const auto& c : cases) {
        SectionFrame first = {{X, Y, Z}}, second = c.second;
        Profile profile = {10, 6, true};
        alignFrames(first, second, kCircle, profile);
        expectFrame(first, {{X, Z, -Y}}, "first");
        expectFrame(second, c.expected, "second");
        EXPECT_EQ(profile.width, c.exchanged ? 6 : 10);
    }
    // An oval head has sides.
    SectionFrame first = {{X, Y, Z}}, second = {{Y, -X, Z}};
    Profile profile = {10, 6, true};
    alignFrames(first, second, {12, 8, false}, profile);
    expectFrame(first, {{X, Y, Z}}, "first");
}

TEST(Alignment, ParallelRunsStayAsTheyAre) {
    for (const Profile& head : {kRectangle, kCircle}) {
        for (const AcGeVector3d& run : {X, -X, AcGeVector3d()}) {
            const SectionFrame crooked = {{run, Z, -Y}};
            SectionFrame first = {{X, Y, Z}}, second = crooked;
            Profile profile = {10, 6, true};
            alignFrames(first, second, head, profile);
            expectFrame(first, {{X, Y, Z}}, "first");
            expectFrame(second, crooked, "second");
            EXPECT_EQ(profile.width, 10);
        }
    }
}

TEST(Alignment, CosinesAndSinesBeyondOneAreAngles) {
    const double beyond = std::nextafter(1.0, 2.0);
    EXPECT_EQ(angleOfCosine(beyond), 0.0);
    EXPECT_EQ(angleOfCosine(std::nextafter(1.0, 0.0)), 0.0);
    EXPECT_EQ(angleOfCosine(-beyond), kPi);
    EXPECT_EQ(angleOfCosine(std::nextafter(-1.0, 0.0)), kPi);
    EXPECT_LT(angleOfCosine(-1 + 1e-14), kPi);
    EXPECT_GT(angleOfCosine(1 - 1e-14), 0.0);
    EXPECT_DOUBLE_EQ(angleOfCosine(0.5), kPi / 3);
    EXPECT_DOUBLE_EQ(angleOfSine(beyond), kPi / 2);
    EXPECT_DOUBLE_EQ(angleOfSine(-beyond), -kPi / 2);
}

TEST(Alignment, ReducersAreAsLongAsTheirTaperAsks) {
    constexpr double kTan15 = 0.26794919243112270647;
    const struct {
        Profile first, second;
        double length;
    } cases[] = {
        {{12, 8, true}, {12, 8, true}, 0},           {{12, 8, true}, {8, 8, true}, 2 / kTan15},
        {{8, 8, true}, {12, 8, true}, 2 / kTan15},   {{12, 8, true}, {10, 2, true}, 3 / kTan15},
        {{12, 8, false}, {12, 8, true}, 6},           // the class alone
        {{8, 14, true}, {8, 14, false}, 7},           // half the larger size
        {{12, 8, true}, {8, 8, false}, 2 / kTan15},   // 7.46 is longer than 6
        {{12, 8, true}, {10, 8, false}, 6},           // 3.73 is not
        {{2, 2, false}, {20, 20, true}, 9 / kTan15},  // the first one's half counts
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(sizeChangeLength(c.first, c.second, 15.0), c.length, 1e-6)
            << c.first.width << " to " << c.second.width;
    }
}

}  // namespace
}  // namespace sg

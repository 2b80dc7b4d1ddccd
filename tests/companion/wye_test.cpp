#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "companion/companion_fixture.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;
constexpr double kCollar = 3;

struct Leg {
    double degrees = 0;  // from the head's flow, to the left
    double width = 0;
};

// A wye around the origin of a place in space, flat in its plane or upright.
class WyeTest : public CompanionTest {
  protected:
    AcGeMatrix3d place_ = turnAndMove(0.3, {1, 1, 2}, {5, 6, 7});
    TestFrame frames_[3];
    AcGePoint3d ends_[3];
    double widths_[3] = {};
    AModeler::Point3d a_[3][8];
    AcGePoint3d c_[3][8];

    void lay(double headWidth, Leg tail1, Leg tail2) {
        const double turns[] = {0, tail1.degrees, tail2.degrees};
        const double widths[] = {headWidth, tail1.width, tail2.width};
        for (int i = 0; i < 3; ++i) {
            frames_[i] = TestFrame(
                place_ * AcGeMatrix3d::rotation(turns[i] * kPi / 180, AcGeVector3d::kZAxis));
            ends_[i] = junction() + frames_[i].x() * (i == 0 ? -200 : 150);
            widths_[i] = widths[i];
        }
    }
    AcGePoint3d junction() const { return place_ * AcGePoint3d(0, 0, 0); }

    bool prepare(HvacSolid& solid, bool isRectangular, double height) {
        return solid.addWyePrep(ends_[0], widths_[0], height, ends_[1], widths_[1], height,
                                ends_[2], widths_[2], height, frames_[0].axes, frames_[1].axes,
                                frames_[2].axes, isRectangular, a_[0], a_[1], a_[2], c_[0], c_[1],
                                c_[2], true, kCollar);
    }
    bool build(HvacSolid& solid, bool isRectangular, double height) {
        AcGePoint3d at = junction();
        return solid.addWye(ends_[0], widths_[0], height, ends_[1], widths_[1], height, ends_[2],
                            widths_[2], height, at, frames_[0].get(), frames_[1].get(),
                            frames_[2].get(), isRectangular, a_[0], a_[1], a_[2], c_[0], c_[1],
                            c_[2], 0);
    }
    // Twice the area that the outline has, seen from above: by the ends and the knees in the
    // arrays.
    double planArea() {
        const AcGeMatrix3d back = place_.inverse();
        // Counter-clockwise from the right side of the first end: tail 2 lies to the left.
        const auto side = [&](int leg, double sign) {
            return back * (ends_[leg] + frames_[leg].y() * (sign * widths_[leg] / 2));
        };
        const auto knee = [&](int i) { return back * c_[i][0]; };
        std::vector<AcGePoint3d> plan = {side(1, -1), side(1, 1),  knee(0),
                                         side(2, -1), side(2, 1),  knee(2),
                                         side(0, 1),  side(0, -1), knee(1)};
        double twice = 0;
        for (size_t i = 0; i < plan.size(); ++i) {
            const AcGePoint3d& p = plan[i];
            const AcGePoint3d& q = plan[(i + 1) % plan.size()];
            twice += p.x * q.y - q.x * p.y;
        }
        return twice / 2;
    }
    void expectEnds(const ReadShape& shape, bool isRectangular, double height) {
        for (int i = 0; i < 3; ++i) {
            const double r = isRectangular ? 0 : std::min(widths_[i], height) / 2;
            const double area = widths_[i] * height - (4 - kPi) * r * r;
            EXPECT_TRUE(shape.hasEnd(ends_[i], i == 0 ? -frames_[0].x() : frames_[i].x(), area))
                << i;
            EXPECT_LT((ends_[i] - junction()).crossProduct(frames_[i].x()).length(), 1e-9);
        }
    }
};

TEST_F(WyeTest, JoinsRectanglesInAPrismOfTheirPlan) {
    const std::tuple<double, Leg, Leg> wyes[] = {
        {12, {-45, 12}, {45, 12}}, {12, {-45, 8}, {45, 10}}, {20, {-30, 10}, {60, 14}},
        {12, {-90, 12}, {90, 12}}, {12, {-90, 8}, {20, 12}}, {12, {30, 10}, {90, 10}},
    };
    for (const auto& [width, tail1, tail2] : wyes) {
        SCOPED_TRACE(testing::Message() << tail1.degrees << " " << tail2.degrees);
        lay(width, tail1, tail2);
        const auto solid = newSolid();
        ASSERT_TRUE(prepare(*solid, true, 8));
        ASSERT_TRUE(build(*solid, true, 8));
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        EXPECT_NEAR(shape.volume, 8 * planArea(), 1e-6 * shape.volume);
        expectEnds(shape, true, 8);
    }
}

// The ends stand a collar behind the furthest knee: for a symmetric wye of 90 degrees and width 12
// the crotch lies at 6 + 6 along each tail.
TEST_F(WyeTest, SetsItsEndsBackByTheCollar) {
    lay(12, {-45, 12}, {45, 12});
    ASSERT_TRUE(prepare(*newSolid(), true, 8));
    EXPECT_NEAR(ends_[1].distanceTo(junction()), 6 + kCollar, 1e-9);
    EXPECT_NEAR(ends_[0].distanceTo(junction()), 6 * std::tan(kPi / 8) + kCollar, 1e-9);
}

// Cylinders that meet in mitres: each half of a leg is a half cylinder cut slantwise, and what the
// slant takes off the middle line is the reach of its knee times the half moon's moment.
TEST_F(WyeTest, JoinsRoundAndOvalSections) {
    for (const auto& [width, height] : {std::pair(10.0, 10.0), std::pair(18.0, 8.0)}) {
        for (const auto& [one, other] : {std::pair(-45.0, 45.0), std::pair(-30.0, 75.0),
                                         std::pair(-90.0, 90.0), std::pair(0.0, 60.0)}) {
            SCOPED_TRACE(testing::Message() << width << ": " << one << " " << other);
            lay(width, {one, width}, {other, width});
            const auto solid = newSolid();
            ASSERT_TRUE(prepare(*solid, false, height));
            ASSERT_TRUE(build(*solid, false, height));
            const ReadShape shape = shapeOf(*solid);
            EXPECT_TRUE(shape.isValid);
            EXPECT_EQ(shape.solids, 1U);
            double lengths = 0;
            for (const AcGePoint3d& end : ends_)
                lengths += end.distanceTo(junction());
            const double area = width * height - (4 - kPi) * height * height / 4;
            EXPECT_LT(shape.volume, area * lengths);
            EXPECT_GT(shape.volume, area * (lengths - 1.5 * width));
            expectEnds(shape, false, height);
            if (width != height) continue;
            // Half a disc's moment about its diameter is 2 r^3 / 3; each knee takes that times its
            // slope from both legs.
            double cut = 0;
            const double turns[] = {other - one, 180 - other, 180 + one};
            for (const double turn : turns)
                cut += 2 * (2.0 / 3 * 125) / std::tan(turn * kPi / 360);
            const double volume = area * lengths - cut;
            EXPECT_NEAR(shape.volume, volume, 1e-3 * volume);
        }
    }
}

TEST_F(WyeTest, TapersAWallThatGoesStraightOn) {
    lay(20, {0, 14}, {60, 10});
    const auto solid = newSolid();
    ASSERT_TRUE(prepare(*solid, true, 8));
    ASSERT_TRUE(build(*solid, true, 8));
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    expectEnds(shape, true, 8);
}

TEST_F(WyeTest, PreparationRefusesWhatDoesNotFit) {
    const std::tuple<const char*, double, Leg, Leg> refusals[] = {
        {"tails too near", 12, {10, 12}, {15, 12}},
        {"one tail on the other", 12, {30, 12}, {30, 12}},
        {"back along the head", 12, {170, 12}, {-45, 12}},
        {"no width", 12, {-45, 0}, {45, 12}},
    };
    for (const auto& [name, width, tail1, tail2] : refusals) {
        SCOPED_TRACE(name);
        lay(width, tail1, tail2);
        const AcGePoint3d before = ends_[0];
        EXPECT_FALSE(prepare(*newSolid(), true, 8));
        EXPECT_EQ(ends_[0], before);
    }
    lay(12, {-45, 12}, {45, 12});
    ends_[1] += frames_[1].z();
    EXPECT_FALSE(prepare(*newSolid(), true, 8)) << "a run beside the junction";
    lay(12, {-45, 10}, {45, 12});
    EXPECT_FALSE(prepare(*newSolid(), false, 10)) << "corners of other radius";
}

TEST_F(WyeTest, BuildsOnlyWhatWasPrepared) {
    lay(12, {-45, 12}, {45, 12});
    const auto solid = newSolid();
    EXPECT_FALSE(build(*solid, true, 8));
    ASSERT_TRUE(prepare(*solid, true, 8));
    widths_[1] = 10;
    EXPECT_FALSE(build(*solid, true, 8));
    EXPECT_TRUE(solid->steps().empty());
}

}  // namespace
}  // namespace sg

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "companion/companion_fixture.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;
constexpr double kCollar = 3;

double areaOf(bool isRectangular, double width, double height) {
    const double r = isRectangular ? 0 : std::min(width, height) / 2;
    return width * height - (4 - kPi) * r * r;
}

// Two runs in the plane of the first frame's x and y, seen from anywhere: the first comes from the
// left to the origin, the second leaves it to the left by the angle.
class ElbowTest : public CompanionTest {
  protected:
    const AcGeMatrix3d place_ = turnAndMove(1.1, {3, -1, 2}, {-50, 20, 9});
    const TestFrame in_{place_};
    TestFrame out_;
    AcGePoint3d head_, tail_;
    AModeler::Point3d a_[8], b_[8];
    AcGePoint3d c_[8];

    // `roll` turns both sections about their runs.
    void turnBy(double degrees, double roll = 0) {
        const AcGeMatrix3d rolled = AcGeMatrix3d::rotation(roll, AcGeVector3d::kXAxis);
        const AcGeMatrix3d turn = AcGeMatrix3d::rotation(degrees * kPi / 180, AcGeVector3d::kZAxis);
        out_ = TestFrame(place_ * turn * rolled);
        rolledIn_ = TestFrame(place_ * rolled);
        head_ = at(-100);
        tail_ = corner() + out_.x() * 80;
    }
    AcGePoint3d corner() const { return place_ * AcGePoint3d(0, 0, 0); }
    AcGePoint3d at(double along) const { return corner() + in_.x() * along; }

    struct Size {
        double width, height;
    };
    bool prepare(HvacSolid& solid, bool isRectangular, Size in, Size out) {
        return solid.addSquareElbowPrep(head_, in.width, in.height, tail_, out.width, out.height,
                                        rolledIn_.get(), out_.get(), isRectangular, a_, b_, c_,
                                        true, kCollar);
    }
    bool buildSquare(HvacSolid& solid, bool isRectangular, Size in, Size out) {
        return solid.addSquareElbow(head_, in.width, in.height, tail_, out.width, out.height,
                                    rolledIn_.get(), out_.get(), isRectangular, a_, b_, c_, 0);
    }
    bool buildRadius(HvacSolid& solid, bool isRectangular, Size size, double ratio,
                     double wall = 0) {
        return solid.addRadiusElbow(head_, size.width, size.height, wall / 4, wall * 3 / 4, tail_,
                                    size.width, size.height, rolledIn_.get(), out_.get(),
                                    isRectangular, ratio, true, 0, true);
    }
    void expectEnds(const ReadShape& shape, double headArea, double tailArea) {
        EXPECT_TRUE(shape.hasEnd(head_, -in_.x(), headArea));
        EXPECT_TRUE(shape.hasEnd(tail_, out_.x(), tailArea));
    }

    TestFrame rolledIn_;
};

// A mitred elbow has the section's area along its centre line: the mitre cuts off on one side what
// it adds on the other.
TEST_F(ElbowTest, MitresSectionsOfOneSize) {
    for (const double angle : {5.0, 30.0, 45.0, 90.0, 120.0}) {
        for (const auto& [isRectangular, size] :
             {std::pair(true, Size{12, 8}), std::pair(false, Size{10, 10}),
              std::pair(false, Size{16, 6}), std::pair(false, Size{6, 16})}) {
            SCOPED_TRACE(testing::Message()
                         << angle << ", " << size.width << (isRectangular ? "" : " round"));
            turnBy(angle);
            const auto solid = newSolid();
            ASSERT_TRUE(prepare(*solid, isRectangular, size, size));
            const double setback = size.width / 2 * std::tan(angle * kPi / 360) + kCollar;
            EXPECT_NEAR(head_.distanceTo(at(-setback)), 0, 1e-9);
            EXPECT_NEAR(tail_.distanceTo(corner() + out_.x() * setback), 0, 1e-9);
            ASSERT_TRUE(buildSquare(*solid, isRectangular, size, size));
            const ReadShape shape = shapeOf(*solid);
            EXPECT_TRUE(shape.isValid);
            const double area = areaOf(isRectangular, size.width, size.height);
            EXPECT_NEAR(shape.volume, area * 2 * setback, 1e-4 * area * 2 * setback);
            expectEnds(shape, area, area);
        }
    }
}

// Seen from above a square elbow is a polygon: two widths that meet in a mitre.
TEST_F(ElbowTest, MitresSectionsOfTwoWidths) {
    turnBy(90);
    const auto solid = newSolid();
    ASSERT_TRUE(prepare(*solid, true, {12, 8}, {10, 8}));
    EXPECT_NEAR(head_.distanceTo(at(-5 - kCollar)), 0, 1e-9);
    EXPECT_NEAR(tail_.distanceTo(corner() + out_.x() * (6 + kCollar)), 0, 1e-9);
    ASSERT_TRUE(buildSquare(*solid, true, {12, 8}, {10, 8}));
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    EXPECT_NEAR(shape.volume, 8 * (12 * kCollar + 10 * kCollar + 12 * 10), 0.01);
    expectEnds(shape, 96, 80);

    turnBy(90);
    EXPECT_TRUE(prepare(*newSolid(), false, {16, 6}, {12, 6})) << "ovals with the same corners";
}

// Each refusal leaves the points where they were, so that the next try starts from them.
TEST_F(ElbowTest, PreparationRefusesWhatDoesNotFit) {
    struct Refusal {
        const char* name;
        double angle;
        double roll;
        bool isRectangular;
        Size in, out;
    };
    const Refusal refusals[] = {
        {"other height", 90, 0, true, {12, 8}, {12, 6}},
        {"other sizes turned upright", 90, kPi / 2, true, {8, 12}, {6, 12}},
        {"circles of two sizes", 90, 0, false, {10, 10}, {8, 8}},
        {"corners of other radius", 90, 0, false, {6, 16}, {8, 16}},
        {"rolled with another size", 90, 0.5, true, {12, 8}, {10, 8}},
        {"straight on", 0.5, 0, true, {12, 8}, {12, 8}},
        {"back", 175, 0, true, {12, 8}, {12, 8}},
        {"no width", 90, 0, true, {0, 8}, {12, 8}},
    };
    for (const Refusal& each : refusals) {
        SCOPED_TRACE(each.name);
        turnBy(each.angle, each.roll);
        const AcGePoint3d head = head_;
        const AcGePoint3d tail = tail_;
        EXPECT_FALSE(prepare(*newSolid(), each.isRectangular, each.in, each.out));
        EXPECT_EQ(head_, head);
        EXPECT_EQ(tail_, tail);
    }
    turnBy(90);
    head_ += in_.z() * 2;  // the runs pass each other
    EXPECT_FALSE(prepare(*newSolid(), true, {12, 8}, {12, 8}));
}

TEST_F(ElbowTest, MitresRolledSections) {
    turnBy(60, 0.4);
    const auto solid = newSolid();
    ASSERT_TRUE(prepare(*solid, true, {12, 8}, {12, 8}));
    ASSERT_TRUE(buildSquare(*solid, true, {12, 8}, {12, 8}));
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    const double length = head_.distanceTo(corner()) + tail_.distanceTo(corner());
    EXPECT_NEAR(shape.volume, 96 * length, 0.01 * length);
    expectEnds(shape, 96, 96);
}

TEST_F(ElbowTest, BuildsOnlyWhatWasPrepared) {
    turnBy(90);
    const auto solid = newSolid();
    EXPECT_FALSE(buildSquare(*solid, true, {12, 8}, {12, 8})) << "nothing is prepared";
    ASSERT_TRUE(prepare(*solid, true, {12, 8}, {12, 8}));
    EXPECT_FALSE(buildSquare(*solid, true, {12, 8}, {10, 8})) << "other sizes";
    head_ += in_.x();
    EXPECT_FALSE(buildSquare(*solid, true, {12, 8}, {12, 8})) << "another place";
    EXPECT_TRUE(solid->steps().empty());
}

// By Pappus: the area times the way of its centre.
TEST_F(ElbowTest, SweepsSections) {
    for (const double angle : {15.0, 45.0, 90.0, 135.0}) {
        for (const auto& [isRectangular, size, wall] :
             {std::tuple(true, Size{12, 8}, 0.0), std::tuple(true, Size{12, 8}, 1.0),
              std::tuple(false, Size{10, 10}, 0.0), std::tuple(false, Size{10, 10}, 0.5),
              std::tuple(false, Size{20, 8}, 0.0)}) {
            SCOPED_TRACE(testing::Message() << angle << ", " << size.width << ", wall " << wall);
            turnBy(angle);
            const auto solid = newSolid();
            const double radius = 1.5 * size.width;
            ASSERT_TRUE(buildRadius(*solid, isRectangular, size, 1.5, wall));
            const double tangent = radius * std::tan(angle * kPi / 360);
            EXPECT_NEAR(head_.distanceTo(at(-tangent)), 0, 1e-9);
            EXPECT_NEAR(tail_.distanceTo(corner() + out_.x() * tangent), 0, 1e-9);
            double area = areaOf(isRectangular, size.width, size.height);
            if (wall > 0) {
                area -= areaOf(isRectangular, size.width - 2 * wall, size.height - 2 * wall);
            }
            const ReadShape shape = shapeOf(*solid);
            EXPECT_TRUE(shape.isValid);
            const double volume = area * radius * angle * kPi / 180;
            EXPECT_NEAR(shape.volume, volume, 1e-4 * volume);
            expectEnds(shape, area, area);
        }
    }
}

// The tightest radius leaves a thousandth of the width on the inner side, also where an upright
// section reaches further into the bend than it is wide.
TEST_F(ElbowTest, BendsNoTighterThanItCan) {
    turnBy(90);
    ASSERT_TRUE(buildRadius(*newSolid(), true, {12, 8}, 0.501));
    EXPECT_NEAR(head_.distanceTo(corner()), 0.501 * 12, 1e-9);
    turnBy(90, kPi / 2);
    ASSERT_TRUE(buildRadius(*newSolid(), true, {8, 30}, 1.5));
    EXPECT_NEAR(head_.distanceTo(corner()), 0.501 * 30, 1e-9);
    for (const double ratio : {0.0, -1.0, std::nan("")}) {
        turnBy(90);
        EXPECT_FALSE(buildRadius(*newSolid(), true, {12, 8}, ratio));
    }
    turnBy(90);
    EXPECT_FALSE(buildRadius(*newSolid(), true, {12, 8}, 1.5, 4)) << "walls that leave nothing";
}

// Seen from above: a kite of the outer corner without the sector within the inner arc.
TEST_F(ElbowTest, MakesTrayElbowsWithAnOuterCorner) {
    for (const double angle : {30.0, 90.0}) {
        turnBy(angle);
        const auto solid = newSolid();
        ASSERT_TRUE(buildRadius(*solid, true, {12, 4}, 1));
        const AcGePoint3d head = head_;
        const AcGePoint3d tail = tail_;
        solid->clearBodies();
        ASSERT_TRUE(
            solid->addCableTraySquareRadiusElbow(head_, 12, 4, tail_, in_.get(), out_.get(), 1, 0));
        EXPECT_NEAR(head_.distanceTo(head), 0, 1e-9);
        EXPECT_NEAR(tail_.distanceTo(tail), 0, 1e-9);
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        const double turn = angle * kPi / 180;
        const double volume = 4 * (18 * 18 * std::tan(turn / 2) - 6 * 6 * turn / 2);
        EXPECT_NEAR(shape.volume, volume, 1e-4 * volume);
        expectEnds(shape, 48, 48);
    }
}

}  // namespace
}  // namespace sg

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "companion/companion_fixture.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;

struct End {
    bool isRectangular = true;
    double width = 0;
    double height = 0;

    double radius() const { return isRectangular ? 0 : std::min(width, height) / 2; }
    double area() const { return width * height - (4 - kPi) * radius() * radius(); }
};

// Twice the area that two sections with the same frame have in common as bodies of one sum: what
// the area of their sum has beyond their own ones. A section is a rectangle and a disc.
double mixed(const End& a, const End& b) {
    const double ra = a.radius(), rb = b.radius();
    const double wa = a.width - 2 * ra, ha = a.height - 2 * ra;
    const double wb = b.width - 2 * rb, hb = b.height - 2 * rb;
    return wa * hb + wb * ha + 2 * (rb * (wa + ha) + ra * (wb + hb)) + 2 * kPi * ra * rb;
}

// Of the body in which each section between the two is a sum of parts of them.
double loftVolume(const End& a, const End& b, double length) {
    return length * (a.area() / 3 + b.area() / 3 + mixed(a, b) / 6);
}

struct Loft {
    const char* name;
    End head, tail;
    AcGeVector3d off = {};  // of the tail from the head's axis
};

constexpr double kLength = 20;

const Loft kLofts[] = {
    {"straight rectangle", {true, 12, 8}, {true, 12, 8}},
    {"straight circle", {false, 10, 10}, {false, 10, 10}},
    {"straight oval", {false, 20, 8}, {false, 20, 8}},
    {"upright oval", {false, 6, 14}, {false, 6, 14}},
    {"rectangles", {true, 12, 8}, {true, 7, 10}},
    {"one side only", {true, 12, 8}, {true, 9, 8}},
    {"beside each other", {true, 12, 8}, {true, 12, 8}, {0, 5, 2}},
    {"cone", {false, 10, 10}, {false, 4, 4}},
    {"cone beside its axis", {false, 10, 10}, {false, 6, 6}, {0, 2, 0}},
    {"square to round", {true, 12, 8}, {false, 9, 9}},
    {"round to square", {false, 9, 9}, {true, 12, 12}, {0, 0, -3}},
    {"square to round of its size", {true, 10, 10}, {false, 10, 10}},
    {"rectangle to oval", {true, 20, 10}, {false, 18, 6}},
    {"oval to round", {false, 20, 8}, {false, 12, 12}},
    {"oval to upright oval", {false, 20, 8}, {false, 8, 18}},
    {"oval to oval", {false, 20, 8}, {false, 16, 8}},
    {"flat", {true, 60, 0.5}, {true, 60, 1}},
};

class LoftTest : public CompanionTest {
  protected:
    // In a frame that looks nowhere in particular.
    const AcGeMatrix3d place_ = turnAndMove(0.7, {1, 2, 3}, {100, -40, 7});
    const TestFrame frame_{place_};

    bool build(HvacSolid& solid, const Loft& loft, const TestFrame& tailFrame) {
        const AcGePoint3d head = place_ * AcGePoint3d(0, 0, 0);
        const AcGePoint3d tail = place_ * (AcGePoint3d(kLength, 0, 0) + loft.off);
        return solid.addTransition(head, loft.head.isRectangular, loft.head.width, loft.head.height,
                                   tail, loft.tail.isRectangular, loft.tail.width, loft.tail.height,
                                   frame_.get(), tailFrame.get(), 0);
    }
};

TEST_F(LoftTest, HasTheVolumeOfItsFormulaAndEndsInItsSections) {
    for (const Loft& loft : kLofts) {
        SCOPED_TRACE(loft.name);
        const auto solid = newSolid();
        ASSERT_TRUE(build(*solid, loft, frame_));
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        EXPECT_EQ(shape.solids, 1U);
        const double volume = loftVolume(loft.head, loft.tail, kLength);
        EXPECT_NEAR(shape.volume, volume, 1e-4 * volume);
        EXPECT_TRUE(shape.hasEnd(place_ * AcGePoint3d(0, 0, 0), -frame_.x(), loft.head.area()));
        EXPECT_TRUE(shape.hasEnd(place_ * (AcGePoint3d(kLength, 0, 0) + loft.off), frame_.x(),
                                 loft.tail.area()));
    }
}

// A frame that looks back, or is turned by a quarter with sizes to match, changes nothing.
TEST_F(LoftTest, LooksTheSameWhicheverWayFramesSeeIt) {
    const Loft loft = {"", {true, 12, 8}, {true, 7, 10}};
    const double volume = loftVolume(loft.head, loft.tail, kLength);
    TestFrame back;
    back.axes[0] = -frame_.x();
    back.axes[1] = -frame_.y();
    back.axes[2] = frame_.z();
    TestFrame quarter;
    quarter.axes[0] = frame_.x();
    quarter.axes[1] = frame_.z();
    quarter.axes[2] = -frame_.y();
    const Loft turned = {"", {true, 12, 8}, {true, 10, 7}};
    for (const auto& [given, frame] :
         {std::pair(loft, back), std::pair(turned, quarter), std::pair(loft, frame_)}) {
        const auto solid = newSolid();
        ASSERT_TRUE(build(*solid, given, frame));
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        EXPECT_NEAR(shape.volume, volume, 1e-4 * volume);
    }
}

// A square that is rolled on the way: each section between is the square turned and shrunk.
TEST_F(LoftTest, CarriesTheTwistOfItsFrames) {
    for (const double roll : {10.0, 30.0, 45.0, 60.0, 80.0}) {
        SCOPED_TRACE(roll);
        const TestFrame rolled(place_ *
                               AcGeMatrix3d::rotation(roll * kPi / 180, AcGeVector3d::kXAxis));
        const auto solid = newSolid();
        ASSERT_TRUE(build(*solid, {"", {true, 10, 10}, {true, 10, 10}}, rolled));
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        // The nearest corners are never more than an eighth of a turn away.
        const double twist = (roll > 45 ? 90 - roll : roll) * kPi / 180;
        const double volume = 100 * kLength * (2 + std::cos(twist)) / 3;
        EXPECT_NEAR(shape.volume, volume, 1e-4 * volume);
    }
    const auto round = newSolid();
    const TestFrame rolled(place_ * AcGeMatrix3d::rotation(1, AcGeVector3d::kXAxis));
    ASSERT_TRUE(build(*round, {"", {false, 10, 10}, {false, 10, 10}}, rolled));
    EXPECT_NEAR(shapeOf(*round).volume, 25 * kPi * kLength, 0.1);
}

TEST_F(LoftTest, RefusesWhatIsNoBody) {
    const double nan = std::nan("");
    const double huge = std::numeric_limits<double>::infinity();
    const TestFrame across(place_ * AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis));
    const auto solid = newSolid();
    for (const double bad : {0.0, -5.0, nan, huge, 1e-9}) {
        EXPECT_FALSE(build(*solid, {"", {true, bad, 8}, {true, 12, 8}}, frame_)) << bad;
        EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {false, 12, bad}}, frame_)) << bad;
    }
    EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {true, 12, 8}, {-kLength, 0, 0}}, frame_));
    EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {true, 12, 8}, {nan, 0, 0}}, frame_));
    EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {true, 12, 8}}, across)) << "ends that cut";
    EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {true, 12, 8}, {-kLength, 5, 0}}, frame_));
    TestFrame none;
    none.axes[1] = {};
    EXPECT_FALSE(build(*solid, {"", {true, 12, 8}, {true, 12, 8}}, none));
    EXPECT_TRUE(solid->steps().empty());
    EXPECT_EQ(solid->shape(), nullptr);
}

}  // namespace
}  // namespace sg

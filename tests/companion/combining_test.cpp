#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "companion/companion_fixture.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;

class CombiningTest : public CompanionTest {
  protected:
    static bool addPiece(HvacSolid& solid, const AcGePoint3d& head, const AcGePoint3d& tail,
                         bool isRectangular, double width, double height, const TestFrame& frame) {
        return solid.addTransition(head, isRectangular, width, height, tail, isRectangular, width,
                                   height, frame.get(), frame.get(), 0);
    }
    static bool cutPiece(HvacSolid& solid, const AcGePoint3d& head, const AcGePoint3d& tail,
                         bool isRectangular, double width, double height, const TestFrame& frame) {
        return solid.subtractTransition(head, isRectangular, width, height, tail, isRectangular,
                                        width, height, frame.get(), frame.get(), 0);
    }
    const TestFrame along_ = flatFrame(0);
    const TestFrame across_ = flatFrame(90);
};

// A main of 20 by 10 with a branch of 10 by 10 to its left: as one body, what the branch has
// outside the main.
TEST_F(CombiningTest, BodiesThatOverlapAreOne) {
    const auto solid = newSolid();
    ASSERT_TRUE(addPiece(*solid, {-8, 0, 0}, {8, 0, 0}, true, 20, 10, along_));
    ASSERT_TRUE(addPiece(*solid, {0, 0, 0}, {0, 13, 0}, true, 9.99, 9.999, across_));
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    EXPECT_EQ(shape.solids, 1U);
    EXPECT_NEAR(shape.volume, 16 * 20 * 10 + 3 * 9.99 * 9.999, 0.01);
    EXPECT_TRUE(shape.hasEnd({0, 13, 0}, across_.x(), 9.99 * 9.999));
}

TEST_F(CombiningTest, RoundBranchesMeetRoundMains) {
    const auto solid = newSolid();
    ASSERT_TRUE(addPiece(*solid, {-12, 0, 0}, {12, 0, 0}, false, 16, 16, along_));
    ASSERT_TRUE(addPiece(*solid, {0, 0, 0}, {0, 14, 0}, false, 9.99, 9.999, across_));
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    EXPECT_EQ(shape.solids, 1U);
    const double main = 24 * 64 * kPi;
    EXPECT_GT(shape.volume, main + 6 * 9.99 * 9.999 * kPi / 4);
    EXPECT_LT(shape.volume, main + 8 * 10 * 10 * kPi / 4);
}

// The slices that trim a branch at the ends of its main take the branch only.
TEST_F(CombiningTest, SlicesTheLastBody) {
    const auto solid = newSolid();
    const TestFrame slanted = flatFrame(30);
    ASSERT_TRUE(addPiece(*solid, {-10, 0, 0}, {10, 0, 0}, true, 10, 10, along_));
    ASSERT_TRUE(addPiece(*solid, {0, 0, 0}, AcGePoint3d() + slanted.x() * 30, true, 6, 6, slanted));
    solid->sliceLast({10, 0, 0}, {10, 1, 0}, {10, 0, 1}, {-10, 0, 0});
    const ReadShape shape = shapeOf(*solid);
    EXPECT_TRUE(shape.isValid);
    double farthest = 0;
    for (const ReadFace& face : shape.faces)
        farthest = std::max(farthest, face.center.x);
    EXPECT_NEAR(farthest, 10, 1e-6);

    // What lies wholly on the side to keep stays as it is, and what lies beyond it goes.
    const auto whole = newSolid();
    ASSERT_TRUE(addPiece(*whole, {0, 0, 0}, {10, 0, 0}, true, 4, 4, along_));
    whole->sliceLast({20, 0, 0}, {20, 1, 0}, {20, 0, 1}, {0, 0, 0});
    EXPECT_NEAR(shapeOf(*whole).volume, 160, 1e-6);
    whole->sliceLast({4, 0, 0}, {4, 1, 0}, {4, 0, 1}, {20, 0, 0});
    EXPECT_NEAR(shapeOf(*whole).volume, 96, 1e-6);
    whole->sliceLast({4, 0, 0}, {5, 0, 0}, {6, 0, 0}, {0, 0, 0});  // no plane
    whole->sliceLast({4, 0, 0}, {4, 1, 0}, {4, 0, 1}, {4, 5, 5});  // no side
    EXPECT_NEAR(shapeOf(*whole).volume, 96, 1e-6);
    whole->sliceLast({0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0});
    EXPECT_EQ(shapeOf(*whole).solids, 0U);
    EXPECT_TRUE(addPiece(*whole, {0, 0, 0}, {10, 0, 0}, true, 4, 4, along_));
}

// A band around a duct, with a rod out of its top: ends of the hole lie in those of the band.
TEST_F(CombiningTest, HollowsABand) {
    for (const bool isRectangular : {true, false}) {
        const auto solid = newSolid();
        const TestFrame up(AcGeMatrix3d::rotation(-kPi / 2, AcGeVector3d::kYAxis));
        ASSERT_TRUE(addPiece(*solid, {-1, 0, 0}, {1, 0, 0}, isRectangular, 12, 12, along_));
        ASSERT_TRUE(addPiece(*solid, {0, 0, 5}, {0, 0, 20}, false, 0.5, 0.5, up));
        ASSERT_TRUE(cutPiece(*solid, {-1, 0, 0}, {1, 0, 0}, isRectangular, 10.2, 10.2, along_));
        const ReadShape shape = shapeOf(*solid);
        EXPECT_TRUE(shape.isValid);
        EXPECT_EQ(shape.solids, 1U);
        const double share = isRectangular ? 1 : kPi / 4;
        const double band = 2 * share * (144 - 10.2 * 10.2);
        EXPECT_NEAR(shape.volume, band + 14 * kPi / 16, 0.01);
    }
    const auto empty = newSolid();
    EXPECT_FALSE(cutPiece(*empty, {-1, 0, 0}, {1, 0, 0}, true, 5, 5, along_));
    ASSERT_TRUE(addPiece(*empty, {-1, 0, 0}, {1, 0, 0}, true, 5, 5, along_));
    EXPECT_FALSE(cutPiece(*empty, {-1, 0, 0}, {1, 0, 0}, true, 0, 5, along_));
    EXPECT_TRUE(cutPiece(*empty, {50, 0, 0}, {60, 0, 0}, true, 5, 5, along_)) << "it is not there";
    EXPECT_NEAR(shapeOf(*empty).volume, 50, 1e-6);
}

TEST_F(CombiningTest, UnitesSolids) {
    const auto one = newSolid();
    const auto other = newSolid();
    ASSERT_TRUE(addPiece(*one, {0, 0, 0}, {10, 0, 0}, true, 4, 4, along_));
    EXPECT_FALSE(one->doUnion(nullptr));
    EXPECT_FALSE(one->doUnion(one.get()));
    EXPECT_FALSE(one->doUnion(other.get())) << "it has no bodies";
    ASSERT_TRUE(addPiece(*other, {5, 0, 0}, {5, 8, 0}, true, 4, 4, across_));
    ASSERT_TRUE(one->doUnion(other.get()));
    EXPECT_NEAR(shapeOf(*other).volume, 128, 1e-6) << "the other stays as it is";
    EXPECT_NEAR(shapeOf(*one).volume, 160 + 6 * 16, 1e-6);
    const auto apart = newSolid();
    ASSERT_TRUE(addPiece(*apart, {50, 0, 0}, {60, 0, 0}, true, 4, 4, along_));
    ASSERT_TRUE(one->doUnion(apart.get()));
    const ReadShape shape = shapeOf(*one);
    EXPECT_TRUE(shape.isValid);
    EXPECT_EQ(shape.solids, 2U);
    EXPECT_NEAR(shape.volume, 256 + 160, 1e-6);
}

TEST_F(CombiningTest, SkinsArePlaneOrBentAlongTheirRows) {
    const auto add = [](HvacSolid& solid, std::initializer_list<AcGePoint3d> points, double t) {
        AcGePoint3dArray array;
        for (const AcGePoint3d& p : points)
            array.append(p);
        return solid.addSkin(array, t);
    };
    const auto plane = newSolid();
    ASSERT_TRUE(
        add(*plane, {{0, 0, 0}, {10, 0, 0}, {10, 6, 0}, {4, 6, 0}, {4, 8, 0}, {0, 8, 0}}, 0.5));
    ReadShape shape = shapeOf(*plane);
    EXPECT_TRUE(shape.isValid);
    EXPECT_NEAR(shape.volume, 0.5 * (60 + 8), 1e-9);
    // A bent strip of two panels: its bound comes back to where it began.
    const auto bent = newSolid();
    ASSERT_TRUE(add(
        *bent, {{0, 0, 0}, {10, 0, 0}, {20, 0, 10}, {20, 5, 10}, {10, 5, 0}, {0, 5, 0}, {0, 0, 0}},
        -0.1));
    shape = shapeOf(*bent);
    EXPECT_TRUE(shape.isValid);
    EXPECT_NEAR(shape.volume, 0.1 * 5 * (10 + 10 * std::sqrt(2)), 0.01 * shape.volume);

    const auto none = newSolid();
    EXPECT_FALSE(add(*none, {}, 1));
    EXPECT_FALSE(add(*none, {{0, 0, 0}, {1, 0, 0}}, 1));
    EXPECT_FALSE(add(*none, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, 1)) << "in one line";
    EXPECT_FALSE(add(*none, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, 0)) << "no thickness";
    EXPECT_FALSE(add(*none, {{0, 0, 0}, {5, 5, 0}, {5, 0, 0}, {0, 5, 0}}, 1)) << "a bow";
    EXPECT_FALSE(add(*none, {{0, 0, 0}, {std::nan(""), 0, 0}, {1, 1, 0}}, 1));
    EXPECT_TRUE(none->steps().empty());
}

}  // namespace
}  // namespace sg

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

#include "platform/ge/matrix3d.h"
#include "platform/ge/near.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector2d.h"
#include "platform/ge/vector3d.h"

namespace sg::test {
namespace {

constexpr double kPi = std::numbers::pi;
const AcGeVector3d kX = AcGeVector3d::kXAxis;
const AcGeVector3d kY = AcGeVector3d::kYAxis;
const AcGeVector3d kZ = AcGeVector3d::kZAxis;

TEST(GeVector2d, AngleIsBelowAFullTurn) {
    const struct {
        AcGeVector2d vector;
        double angle;
    } rows[] = {
        {{1, 0}, 0},       {{1, 1}, kPi / 4},      {{0, 2}, kPi / 2},      {{-3, 0}, kPi},
        {{-3, -0.0}, kPi}, {{0, -1}, 3 * kPi / 2}, {{1, -1e-30}, 0},       {{0, 0}, 0},
        {{-0.0, -0.0}, 0}, {{1, -0.0}, 0},         {{1, -1}, 7 * kPi / 4},
    };
    for (const auto& row : rows) {
        EXPECT_DOUBLE_EQ(row.vector.angle(), row.angle) << row.vector.x << " " << row.vector.y;
    }
}

TEST(GeVector2d, TurnsCounterClockwise) {
    EXPECT_TRUE(AcGeVector2d::kXAxis.perpVector() == AcGeVector2d::kYAxis);
    EXPECT_TRUE(AcGeVector2d(3, 4).rotateBy(kPi / 2) == AcGeVector2d(-4, 3));
    EXPECT_DOUBLE_EQ(AcGeVector2d(3, 4).angleTo({4, -3}), kPi / 2);
    EXPECT_DOUBLE_EQ(AcGeVector2d(1, 0).angleTo({-1, 0}), kPi);
}

TEST(GeVector2d, Directions) {
    const AcGeVector2d v(3, 4);
    EXPECT_EQ(v.length(), 5);
    EXPECT_TRUE(v.normal().isUnitLength());
    EXPECT_TRUE(v.isParallelTo(-2 * v));
    EXPECT_FALSE(v.isCodirectionalTo(-2 * v));
    EXPECT_TRUE(v.isPerpendicularTo(v.perpVector()));
    EXPECT_FALSE(v.isPerpendicularTo({}));
    EXPECT_FALSE(v.isParallelTo({}));
}

TEST(GeVector3d, Arithmetic) {
    const AcGeVector3d a(1, 2, 3);
    const AcGeVector3d b(4, 5, 6);
    EXPECT_TRUE(near(2 * a - b / 2, {0, 1.5, 3}));
    EXPECT_EQ(a.dotProduct(b), 32);
    EXPECT_TRUE(near(a.crossProduct(b), {-3, 6, -3}));
    EXPECT_TRUE(near(kX.crossProduct(kY), kZ));
    EXPECT_EQ(AcGeVector3d(2, 3, 6).length(), 7);
    AcGeVector3d c = a;
    c += b;
    c *= 2;
    c -= a;
    c.negate();
    EXPECT_TRUE(near(c, {-9, -12, -15}));
    c[0] = 1;
    c[2] = 3;
    EXPECT_EQ(c.x, 1);
    EXPECT_EQ(c[1], -12);
    EXPECT_EQ(c.z, 3);
}

TEST(GeVector3d, NormalLeavesAZeroVector) {
    EXPECT_TRUE(near(AcGeVector3d(0, 0, -5).normal(), -kZ));
    const AcGeVector3d tiny(1e-11, 0, 0);
    EXPECT_EQ(tiny.normal().x, 1e-11);
    AcGeTol fine;
    fine.setEqualVector(1e-15);
    EXPECT_EQ(tiny.normal(fine).x, 1);
    EXPECT_EQ(AcGeVector3d::kIdentity.normal().length(), 0);
    EXPECT_EQ(AcGeVector3d(3, 0, 0).normalize().x, 1);
}

TEST(GeVector3d, AngleKeepsItsDigitsNearZeroAndPi) {
    EXPECT_NEAR(kX.angleTo({1, 1e-9, 0}), 1e-9, 1e-20);
    EXPECT_NEAR(kX.angleTo({-1, 1e-5, 0}), kPi - 1e-5, 1e-14);
    EXPECT_EQ(kX.angleTo({}), 0);
}

TEST(GeVector3d, AngleSeenAgainstAReference) {
    EXPECT_DOUBLE_EQ(kX.angleTo(kY, kZ), kPi / 2);
    EXPECT_DOUBLE_EQ(kX.angleTo(kY, -kZ), 3 * kPi / 2);
    EXPECT_DOUBLE_EQ(kX.angleTo(-kX, kZ), kPi);
    EXPECT_DOUBLE_EQ(kX.angleTo(-kX, -kZ), kPi);
    EXPECT_EQ(kX.angleTo(3 * kX, kZ), 0);
    EXPECT_EQ(kX.angleTo({1, -1e-30, 0}, kZ), 0);
}

TEST(GeVector3d, PerpVectorFollowsTheArbitraryAxisRule) {
    EXPECT_TRUE(near(kZ.perpVector(), kX));
    EXPECT_TRUE(near((-kZ).perpVector(), -kX));
    EXPECT_TRUE(near(kX.perpVector(), kY));
    EXPECT_TRUE(near(kY.perpVector(), -kX));
    // On either side of the bound of 1/64 the other axis is crossed.
    EXPECT_TRUE(near(AcGeVector3d(0, 0.0156, 1).perpVector(), kX));
    EXPECT_TRUE(near(AcGeVector3d(0, 0.0157, 1).perpVector(), -kX));
    EXPECT_TRUE(AcGeVector3d(0.0157, 0, 50).perpVector().isPerpendicularTo({0.0157, 0, 50}));
    EXPECT_EQ(AcGeVector3d().perpVector().length(), 0);
}

TEST(GeVector3d, RotatesAndMirrors) {
    EXPECT_TRUE(near(AcGeVector3d(1, 0, 5).rotateBy(kPi / 2, 7 * kZ), {0, 1, 5}));
    EXPECT_TRUE(near(AcGeVector3d(1, 2, 3).rotateBy(2 * kPi / 3, {1, 1, 1}), {3, 1, 2}));
    EXPECT_TRUE(near(AcGeVector3d(1, 2, 3).rotateBy(1, {}), {1, 2, 3}));
    EXPECT_TRUE(near(AcGeVector3d(1, 2, 3).mirror(9 * kZ), {1, 2, -3}));
}

TEST(GeVector3d, TranslationMovesNoVector) {
    AcGeMatrix3d m = AcGeMatrix3d::rotation(kPi / 2, kZ);
    m.setTranslation({100, 100, 100});
    EXPECT_TRUE(near(AcGeVector3d(1, 0, 0).transformBy(m), kY));
}

TEST(GeVector3d, ComparisonsWithinATolerance) {
    AcGeTol coarse;
    coarse.setEqualVector(0.01);
    EXPECT_TRUE(kX.isEqualTo({1, 0.009, 0}, coarse));
    EXPECT_FALSE(kX.isEqualTo({1, 0.011, 0}, coarse));
    EXPECT_FALSE(kX == AcGeVector3d(1, 2e-10, 0));
    EXPECT_TRUE(kX == AcGeVector3d(1, 5e-11, 0));
    EXPECT_TRUE(kX.isCodirectionalTo({50, 0.4, 0}, coarse));
    EXPECT_TRUE(kX.isParallelTo({-50, 0.4, 0}, coarse));
    EXPECT_FALSE(kX.isCodirectionalTo({-50, 0, 0}, coarse));
    EXPECT_TRUE(kX.isPerpendicularTo({0.4, 50, 0}, coarse));
    EXPECT_FALSE(kX.isPerpendicularTo({0.6, 50, 0}, coarse));
    EXPECT_TRUE(AcGeVector3d(0.01, 0, 0).isZeroLength(coarse));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(AcGeVector3d(nan, 0, 0) == AcGeVector3d(nan, 0, 0));
}

TEST(GeScale3d, ComposesAndInverts) {
    const AcGeScale3d scale(2, -2, 4);
    EXPECT_TRUE(scale * scale.inverse() == AcGeScale3d::kIdentity);
    EXPECT_TRUE(0.5 * AcGeScale3d(4) == AcGeScale3d(2, 2, 2));
    EXPECT_FALSE(scale.isProportional());
    EXPECT_TRUE(AcGeScale3d(2, -2, 2).isProportional());
    AcGeMatrix3d m = AcGeMatrix3d::translation(kX);
    scale.getMatrix(m);
    EXPECT_TRUE(near(m * AcGePoint3d(1, 1, 1), {2, -2, 4}));
}

}  // namespace
}  // namespace sg::test

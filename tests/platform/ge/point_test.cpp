#include <gtest/gtest.h>

#include <numbers>

#include "platform/ge/matrix3d.h"
#include "platform/ge/near.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"

namespace sg::test {
namespace {

constexpr double kPi = std::numbers::pi;

TEST(GePoint2d, PointsAndVectors) {
    const AcGePoint2d p(1, 2);
    const AcGeVector2d toQ = AcGePoint2d(4, 6) - p;
    EXPECT_TRUE(p + toQ == AcGePoint2d(4, 6));
    EXPECT_EQ(p.distanceTo({4, 6}), 5);
    EXPECT_TRUE(AcGePoint2d(2, 1).rotateBy(kPi / 2, {1, 1}) == AcGePoint2d(1, 2));
    EXPECT_TRUE(AcGePoint2d(3, 1).scaleBy(0.5, {1, 1}) == AcGePoint2d(2, 1));
    EXPECT_EQ(p[0], 1);
    EXPECT_EQ(p[1], 2);
}

TEST(GePoint2d, EqualWithinADistance) {
    AcGeTol tol;
    tol.setEqualPoint(0.5);
    EXPECT_TRUE(AcGePoint2d(1, 1).isEqualTo({1.3, 1.4}, tol));
    EXPECT_FALSE(AcGePoint2d(1, 1).isEqualTo({1.4, 1.4}, tol));
    EXPECT_TRUE(AcGePoint2d(1, 1) != AcGePoint2d(1, 1 + 1e-9));
}

TEST(GePoint3d, PointsAndVectors) {
    AcGePoint3d p(1, 2, 3);
    EXPECT_TRUE(near(p + AcGeVector3d(1, 1, 1), {2, 3, 4}));
    EXPECT_TRUE(near(p - AcGeVector3d(1, 1, 1), {0, 1, 2}));
    EXPECT_TRUE(near(p - AcGePoint3d(1, 1, 1), AcGeVector3d(0, 1, 2)));
    EXPECT_TRUE(near(2 * p / 4, {0.5, 1, 1.5}));
    EXPECT_EQ(p.distanceTo({3, 5, 9}), 7);
    EXPECT_TRUE(near(p.set(4, 5, 6).asVector(), {4, 5, 6}));
}

TEST(GePoint3d, TurnsAboutALine) {
    AcGePoint3d p(2, 1, 9);
    p.rotateBy(kPi, AcGeVector3d::kZAxis, {1, 1, 0});
    EXPECT_TRUE(near(p, {0, 1, 9}));
    EXPECT_TRUE(near(p.scaleBy(3, {0, 0, 9}), {0, 3, 9}));
    EXPECT_TRUE(near(p.transformBy(AcGeMatrix3d::translation({1, 0, -9})), {1, 3, 0}));
}

}  // namespace
}  // namespace sg::test

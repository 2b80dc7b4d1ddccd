#include "platform/ge/matrix3d.h"

#include <gtest/gtest.h>

#include <numbers>

#include "platform/ge/near.h"

namespace sg::test {
namespace {

constexpr double kPi = std::numbers::pi;
const AcGePoint3d kOrigin = AcGePoint3d::kOrigin;
const AcGeVector3d kX = AcGeVector3d::kXAxis;
const AcGeVector3d kY = AcGeVector3d::kYAxis;
const AcGeVector3d kZ = AcGeVector3d::kZAxis;

// A turn, a skew scale and a long way.
AcGeMatrix3d general() {
    AcGeMatrix3d m;
    m.setCoordSystem({1e6, -20, 3}, {2, 1, 0}, {-1, 3, 0.5}, {0.25, 0, -4});
    return m;
}

TEST(GeMatrix3d, RightFactorActsFirst) {
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(kPi / 2, kZ);
    const AcGeMatrix3d move = AcGeMatrix3d::translation({10, 0, 0});
    const AcGePoint3d p(1, 0, 0);
    EXPECT_TRUE(near(turn * move * p, {0, 11, 0}));
    EXPECT_TRUE(near(move * turn * p, {10, 1, 0}));
    AcGeMatrix3d m = turn;
    EXPECT_TRUE(m.preMultBy(move) == move * turn);
    m = turn;
    EXPECT_TRUE(m.postMultBy(move) == turn * move);
    EXPECT_TRUE(m.setToProduct(move, turn) == move * turn);
    EXPECT_TRUE((m *= AcGeMatrix3d::kIdentity) == move * turn);
    EXPECT_TRUE((m *= m) == move * turn * move * turn);
}

TEST(GeMatrix3d, InverseUndoes) {
    const AcGeMatrix3d rows[] = {
        AcGeMatrix3d(),
        AcGeMatrix3d::translation({1, 2, 3}),
        AcGeMatrix3d::rotation(1, {1, 2, 3}, {4, 5, 6}),
        AcGeMatrix3d::scaling(1e-5, {1, 0, 0}),
        AcGeMatrix3d::scaling(-1e5),
        AcGeMatrix3d::mirroring({1, 1, 1}, {0, 1, 1}),
        AcGeMatrix3d::translation({1, 2, 3}).transpose(),
    };
    for (const AcGeMatrix3d& m : rows) {
        EXPECT_FALSE(m.isSingular());
        EXPECT_TRUE(m * m.inverse() == AcGeMatrix3d::kIdentity);
        EXPECT_TRUE(m.inverse() * m == AcGeMatrix3d::kIdentity);
    }
    AcGeMatrix3d m = general();
    const AcGePoint3d p = m * AcGePoint3d(1, 2, 3);
    EXPECT_NEAR((m.invert() * p).distanceTo({1, 2, 3}), 0, 1e-9);
    EXPECT_EQ(m(3, 3), 1);
}

TEST(GeMatrix3d, SingularStaysAsItIs) {
    AcGeMatrix3d flat;
    flat.setCoordSystem({1, 2, 3}, kX, kY, kX + kY);
    EXPECT_TRUE(flat.isSingular());
    EXPECT_TRUE(flat.inverse() == flat);
    EXPECT_TRUE(AcGeMatrix3d::scaling(0).isSingular());
    AcGeTol coarse;
    coarse.setEqualVector(0.1);
    flat.setCoordSystem(kOrigin, kX, kY, {1, 1, 0.1});
    EXPECT_TRUE(flat.isSingular(coarse));
    EXPECT_FALSE(flat.isSingular());
}

TEST(GeMatrix3d, Determinant) {
    EXPECT_EQ(AcGeMatrix3d().det(), 1);
    EXPECT_DOUBLE_EQ(AcGeMatrix3d::scaling(2, {5, 5, 5}).det(), 8);
    EXPECT_DOUBLE_EQ(AcGeMatrix3d::rotation(1, {1, 2, 3}, {4, 5, 6}).det(), 1);
    EXPECT_DOUBLE_EQ(AcGeMatrix3d::mirroring({1, 2, 3}, {1, 1, 0}).det(), -1);
    EXPECT_DOUBLE_EQ(general().det(), -27.875);
    EXPECT_DOUBLE_EQ(general().transpose().det(), -27.875);
}

TEST(GeMatrix3d, TransposeTurnsATurnBack) {
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(0.7, {3, -1, 2});
    EXPECT_TRUE(turn.transpose() == turn.inverse());
    AcGeMatrix3d m = general();
    EXPECT_EQ(m.transposeIt()(3, 0), 1e6);
}

TEST(GeMatrix3d, Rotation) {
    EXPECT_TRUE(near(AcGeMatrix3d::rotation(kPi / 2, kX) * kY, kZ));
    EXPECT_TRUE(near(AcGeMatrix3d::rotation(kPi / 2, kY) * kZ, kX));
    EXPECT_TRUE(near(AcGeMatrix3d::rotation(kPi / 2, -5 * kZ) * kX, -kY));
    const AcGePoint3d center(3, 2, 1);
    const AcGeMatrix3d m = AcGeMatrix3d::rotation(1.1, {1, 1, 0}, center);
    EXPECT_TRUE(near(m * (center + AcGeVector3d(7, 7, 0)), center + AcGeVector3d(7, 7, 0)));
    EXPECT_TRUE(AcGeMatrix3d::rotation(1, {}, center) == AcGeMatrix3d::kIdentity);
}

TEST(GeMatrix3d, ScalingAndMirroring) {
    EXPECT_TRUE(near(AcGeMatrix3d::scaling(3, {1, 1, 1}) * AcGePoint3d(2, 1, 0), {4, 1, -2}));
    EXPECT_TRUE(near(AcGeMatrix3d::mirroring({1, 1, 1}) * AcGePoint3d(2, 1, 0), {0, 1, 2}));
    const AcGeMatrix3d m = AcGeMatrix3d::mirroring({0, 0, 5}, 3 * kZ);
    EXPECT_TRUE(near(m * AcGePoint3d(1, 2, 7), {1, 2, 3}));
    EXPECT_TRUE(m * m == AcGeMatrix3d::kIdentity);
    EXPECT_TRUE(AcGeMatrix3d::mirroring({0, 0, 5}, {}) == AcGeMatrix3d::kIdentity);
}

TEST(GeMatrix3d, CoordinateSystems) {
    AcGePoint3d origin;
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    general().getCoordSystem(origin, x, y, z);
    EXPECT_TRUE(near(origin, {1e6, -20, 3}));
    EXPECT_TRUE(near(x, {2, 1, 0}));
    EXPECT_TRUE(near(y, {-1, 3, 0.5}));
    EXPECT_TRUE(near(z, {0.25, 0, -4}));
    EXPECT_TRUE(near(general() * kOrigin, origin));
    EXPECT_TRUE(near(general() * kY, y));
}

TEST(GeMatrix3d, AlignTakesTheOneSystemToTheOther) {
    const AcGePoint3d from(1, 2, 3);
    const AcGePoint3d to(-5, 0, 9);
    const AcGeMatrix3d m =
        AcGeMatrix3d::alignCoordSys(from, kX, kY, kZ, to, 2 * kY, {-2, 0, 0}, 2 * kZ);
    EXPECT_TRUE(near(m * from, to));
    EXPECT_TRUE(near(m * (from + kX), to + 2 * kY));
    EXPECT_TRUE(near(m * kY, {-2, 0, 0}));
    EXPECT_TRUE(near(m * kZ, 2 * kZ));
    EXPECT_TRUE(AcGeMatrix3d::alignCoordSys(from, kX, kX, kZ, to, kX, kY, kZ) ==
                AcGeMatrix3d::kIdentity);
}

TEST(GeMatrix3d, PlanesByTheArbitraryAxisAlgorithm) {
    EXPECT_TRUE(AcGeMatrix3d::planeToWorld(kZ) == AcGeMatrix3d::kIdentity);
    EXPECT_TRUE(AcGeMatrix3d::planeToWorld({}) == AcGeMatrix3d::kIdentity);
    // An extrusion downwards mirrors x, as drawings have it.
    EXPECT_TRUE(near(AcGeMatrix3d::planeToWorld(-kZ) * AcGePoint3d(1, 2, 3), {-1, 2, -3}));
    EXPECT_TRUE(near(AcGeMatrix3d::planeToWorld(kX) * AcGePoint3d(1, 2, 3), {3, 1, 2}));
    EXPECT_TRUE(near(AcGeMatrix3d::planeToWorld(2 * kY) * AcGePoint3d(1, 2, 3), {-1, 3, 2}));
    for (const AcGeVector3d& normal : {kX, -kY, AcGeVector3d(1, 2, 3), AcGeVector3d(0.01, 0, -1)}) {
        const AcGeMatrix3d m = AcGeMatrix3d::planeToWorld(normal);
        EXPECT_DOUBLE_EQ(m.det(), 1);
        EXPECT_TRUE(m.isUniScaledOrtho());
        EXPECT_TRUE(near(m * kZ, normal.normal()));
        EXPECT_TRUE(m * AcGeMatrix3d::worldToPlane(normal) == AcGeMatrix3d::kIdentity);
        const AcGeVector3d other(-3, 1, 1);
        const AcGePoint3d world(4, 5, 6);
        EXPECT_TRUE(near(AcGeMatrix3d::planeToPlane(normal, other) *
                             (AcGeMatrix3d::worldToPlane(normal) * world),
                         AcGeMatrix3d::worldToPlane(other) * world));
    }
}

TEST(GeMatrix3d, UniformScale) {
    const AcGeMatrix3d m = AcGeMatrix3d::scaling(1e-6) * AcGeMatrix3d::rotation(1, {1, 1, 1});
    EXPECT_DOUBLE_EQ(m.scale(), 1e-6);
    EXPECT_TRUE(m.isUniScaledOrtho());
    EXPECT_FALSE(general().isUniScaledOrtho());
    EXPECT_TRUE(AcGeMatrix3d::mirroring({1, 2, 3}, kX).isUniScaledOrtho());
    AcGeMatrix3d stretched;
    stretched(2, 2) = 1.001;
    EXPECT_FALSE(stretched.isUniScaledOrtho());
    EXPECT_DOUBLE_EQ(stretched.scale(), 1.001);
}

TEST(GeMatrix3d, EqualityHasTwoTolerances) {
    AcGeTol tol;
    tol.setEqualPoint(0.1);
    AcGeMatrix3d m;
    m.setTranslation({0.05, 0, 0});
    EXPECT_TRUE(m.isEqualTo(AcGeMatrix3d::kIdentity, tol));
    EXPECT_TRUE(m != AcGeMatrix3d::kIdentity);
    m(0, 1) = 0.05;
    EXPECT_FALSE(m.isEqualTo(AcGeMatrix3d::kIdentity, tol));
}

}  // namespace
}  // namespace sg::test

#include "host/model/curves/curve_fixture.h"

namespace sg::test {
namespace {

class SmoothOffsetTest : public CurveTest {
  protected:
    static std::vector<CurvePtr> offsets(const AcDbCurve& curve, double distance) {
        AcDbVoidPtrArray made;
        const Acad::ErrorStatus status = curve.getOffsetCurves(distance, made);
        EXPECT_EQ(status, made.isEmpty() ? Acad::eInvalidInput : Acad::eOk);
        std::vector<CurvePtr> curves;
        for (void* const each : made)
            curves.emplace_back(static_cast<AcDbCurve*>(each));
        return curves;
    }
    // Every point of the offset stands off the curve by the distance.
    static void expectDistance(const AcDbCurve& curve, const AcDbCurve& offset, double distance,
                               double tolerance) {
        const double from = startParam(offset);
        const double to = endParam(offset);
        for (int i = 0; i <= 200; ++i) {
            const AcGePoint3d point = pointAt(offset, from + (to - from) * i / 200);
            AcGePoint3d nearest;
            ASSERT_EQ(curve.getClosestPointTo(point, nearest), Acad::eOk);
            ASSERT_NEAR(point.distanceTo(nearest), std::abs(distance), tolerance);
        }
    }
};

// The length of a closed convex curve grows by the distance times a whole turn.
TEST_F(SmoothOffsetTest, EllipsesGrowAndShrinkEvenly) {
    const AcDbEllipse ellipse({3, 4, 5}, {1, 2, 2}, AcGeVector3d(2, -2, 1) * 4, 0.5);
    const double length = lengthOf(ellipse);
    for (const double distance : {3.0, 0.1, -0.1, -2.5}) {
        const std::vector<CurvePtr> made = offsets(ellipse, distance);
        ASSERT_EQ(made.size(), 1u) << distance;
        EXPECT_TRUE(made[0]->isClosed());
        EXPECT_NEAR(lengthOf(*made[0]), length + 2 * kPi * distance, 1e-3);
        expectDistance(ellipse, *made[0], distance, 1e-4);
    }
}

// Further in than its sharpest bend the offset has corners; beyond the minor axis there is none.
TEST_F(SmoothOffsetTest, InnerOnesLoseWhatFoldsOver) {
    const AcDbEllipse ellipse({0, 0, 0}, AcGeVector3d::kZAxis, {10, 0, 0}, 0.4);
    const std::vector<CurvePtr> made = offsets(ellipse, -3);
    ASSERT_EQ(made.size(), 1u);
    expectDistance(ellipse, *made[0], 3, 1e-4);
    AcDbExtents box;
    made[0]->getGeomExtents(box);
    EXPECT_NEAR(box.maxPoint().y, 1, 1e-4);
    EXPECT_LT(box.maxPoint().x, 7);
    EXPECT_TRUE(offsets(ellipse, -4.5).empty());
}

// A narrow waist parts the inside in two.
TEST_F(SmoothOffsetTest, WaistsPartTheInside) {
    AcGePoint3dArray controls;
    for (const AcGePoint3d& point :
         {AcGePoint3d(0, 1, 0), AcGePoint3d(-6, 9, 0), AcGePoint3d(-12, 0, 0),
          AcGePoint3d(-6, -9, 0), AcGePoint3d(0, -1, 0), AcGePoint3d(6, -9, 0),
          AcGePoint3d(12, 0, 0), AcGePoint3d(6, 9, 0), AcGePoint3d(0, 1, 0)})
        controls.append(point);
    AcGeDoubleArray knots;
    for (const double knot : {0., 0., 0., 1., 2., 3., 4., 5., 6., 7., 7., 7.})
        knots.append(knot);
    const AcDbSpline spline(2, false, true, false, controls, knots, AcGeDoubleArray());
    // The curve goes through (0, 1), with a corner, and through (0, -3).
    const double narrow = 1.5;
    const double wide = 2.5;
    EXPECT_EQ(offsets(spline, -narrow).size(), 1u);
    const std::vector<CurvePtr> parted = offsets(spline, -wide);
    ASSERT_EQ(parted.size(), 2u);
    for (const CurvePtr& each : parted) {
        EXPECT_TRUE(each->isClosed());
        expectDistance(spline, *each, wide, 1e-3);
    }
}

TEST_F(SmoothOffsetTest, CornersAreGoneRound) {
    AcGePoint3dArray controls;
    for (const AcGePoint3d& point :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0), AcGePoint3d(5, 5, 0)})
        controls.append(point);
    AcGeDoubleArray knots;
    for (const double knot : {0., 0., 1., 2., 2.})
        knots.append(knot);
    const AcDbSpline spline(1, false, false, false, controls, knots, AcGeDoubleArray());
    const std::vector<CurvePtr> outside = offsets(spline, 2);
    ASSERT_EQ(outside.size(), 1u);
    EXPECT_NEAR(lengthOf(*outside[0]), 10 + kPi, 1e-6);
    const std::vector<CurvePtr> inside = offsets(spline, -2);
    ASSERT_EQ(inside.size(), 1u);
    EXPECT_NEAR(lengthOf(*inside[0]), 6, 1e-6);
}

TEST_F(SmoothOffsetTest, RandomCurvesKeepTheirDistance) {
    RandomCurves random(31);
    int made = 0;
    for (int round = 0; round < 60; ++round) {
        const CurvePtr curve = random.makeFlat(round % 2 == 0 ? 3 : 4);
        const double distance = random.real(-1, 1);
        SCOPED_TRACE(round);
        for (const CurvePtr& offset : offsets(*curve, distance)) {
            expectDistance(*curve, *offset, distance, 2e-4);
            ++made;
        }
    }
    EXPECT_GT(made, 50);
    AcGePoint3dArray points;
    for (const AcGePoint3d& point :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 1), AcGePoint3d(1, 1, 2), AcGePoint3d(0, 1, 5)})
        points.append(point);
    const AcDbSpline spatial(points);
    AcDbVoidPtrArray none;
    EXPECT_EQ(spatial.getOffsetCurves(1, none), Acad::eNonPlanarEntity);
}

}  // namespace
}  // namespace sg::test

#include "host/model/core/measuring_draw.h"
#include "host/model/curves/curve_fixture.h"
#include "host/model/curves/point.h"

// Hand-computed cases of the single classes.

namespace sg::test {
namespace {

class CurveClassesTest : public CurveTest {
  protected:
    static AcGePoint3dArray osnaps(const AcDbEntity& entity, AcDb::OsnapMode mode,
                                   const AcGePoint3d& last = {}) {
        AcGePoint3dArray points;
        AcDbIntArray ids;
        EXPECT_EQ(entity.getOsnapPoints(mode, 0, {0, 9, 9}, last, AcGeMatrix3d(), points, ids),
                  Acad::eOk);
        return points;
    }
    static AcGePoint3dArray grips(const AcDbEntity& entity) {
        AcGePoint3dArray points;
        AcDbIntArray modes;
        AcDbIntArray ids;
        EXPECT_EQ(entity.getGripPoints(points, modes, ids), Acad::eOk);
        return points;
    }
    static AcGePoint3dArray stretches(const AcDbEntity& entity) {
        AcGePoint3dArray points;
        EXPECT_EQ(entity.getStretchPoints(points), Acad::eOk);
        return points;
    }
    static void moveGrip(AcDbEntity& entity, int index, const AcGeVector3d& offset) {
        AcDbIntArray indices;
        indices.append(index);
        EXPECT_EQ(entity.moveGripPointsAt(indices, offset), Acad::eOk);
    }
    static AcGePoint3dArray ends(const AcDbCurve& curve) {
        AcGePoint3dArray points(2);
        points.setLogicalLength(2);
        EXPECT_EQ(curve.getStartPoint(points[0]), Acad::eOk);
        EXPECT_EQ(curve.getEndPoint(points[1]), Acad::eOk);
        return points;
    }
    // A closed square of 4 by 4 from the origin.
    struct Square : AcDbPolyline {
        Square() {
            for (const AcGePoint2d& point :
                 {AcGePoint2d(0, 0), AcGePoint2d(4, 0), AcGePoint2d(4, 4), AcGePoint2d(0, 4)}) {
                addVertexAt(numVerts(), point);
            }
            setClosed(true);
        }
    };
};

constexpr double kHalf = 0.41421356237309503;  // the bulge of a quarter turn

TEST_F(CurveClassesTest, ALineIsSmall) {
    EXPECT_LE(sizeof(AcDbLine), sizeof(AcDbCurve) + 80);
}

TEST_F(CurveClassesTest, ParametersAreThoseOfTheInterface) {
    EXPECT_EQ(endParam(AcDbLine({0, 0, 0}, {3, 4, 0})), 5);
    const AcDbArc arc({0, 0, 0}, 2, 1.5 * kPi, 0.5 * kPi);
    EXPECT_DOUBLE_EQ(startParam(arc), 1.5 * kPi);
    EXPECT_DOUBLE_EQ(endParam(arc), 2.5 * kPi);
    EXPECT_DOUBLE_EQ(arc.length(), 2 * kPi);
    const AcDbArc turned({0, 0, 0}, 2, -0.5 * kPi, 4.5 * kPi);
    EXPECT_NEAR(turned.startAngle(), 1.5 * kPi, 1e-15);
    EXPECT_NEAR(turned.totalAngle(), kPi, 1e-14);
    EXPECT_DOUBLE_EQ(AcDbArc({0, 0, 0}, 2, 1, 1).totalAngle(), 2 * kPi);
    EXPECT_DOUBLE_EQ(endParam(AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 2)), 2 * kPi);
    Square polyline;
    EXPECT_EQ(endParam(polyline), 4);
    polyline.setClosed(false);
    EXPECT_EQ(endParam(polyline), 3);
    EXPECT_EQ(pointAt(polyline, 1.25).y, 1);
}

TEST_F(CurveClassesTest, EndlessCurvesHaveNoEnds) {
    const AcDbRay ray({1, 2, 3}, {0, 2, 0});
    const AcDbXline xline({1, 2, 3}, {0, 2, 0});
    double value = 0;
    AcGePoint3d point;
    AcDbExtents extents;
    EXPECT_EQ(ray.getStartParam(value), Acad::eOk);
    EXPECT_EQ(ray.getEndParam(value), Acad::eInvalidInput);
    EXPECT_EQ(ray.getEndPoint(point), Acad::eInvalidInput);
    EXPECT_EQ(ray.getPointAtDist(5, point), Acad::eOk);
    EXPECT_EQ(point.y, 7);
    EXPECT_EQ(ray.getPointAtDist(-1, point), Acad::eInvalidInput);
    EXPECT_EQ(ray.getDistAtPoint({1, 1e9, 3}, value), Acad::eOk);
    EXPECT_EQ(ray.getGeomExtents(extents), Acad::eInvalidExtents);
    EXPECT_EQ(ray.getArea(value), Acad::eInvalidInput);
    EXPECT_EQ(xline.getStartPoint(point), Acad::eInvalidInput);
    EXPECT_EQ(xline.getDistAtParam(3, value), Acad::eInvalidInput);
    EXPECT_EQ(xline.getPointAtParam(-4, point), Acad::eOk);
    EXPECT_EQ(point.y, -2);
    AcGeDoubleArray cut;
    cut.append(1);
    AcDbVoidPtrArray pieces;
    EXPECT_EQ(xline.getSplitCurves(cut, pieces), Acad::eOk);
    ASSERT_EQ(pieces.length(), 2);
    for (void* const piece : pieces) {
        const std::unique_ptr<AcDbEntity> entity(static_cast<AcDbEntity*>(piece));
        EXPECT_TRUE(entity->isKindOf(AcDbRay::desc()));
    }
}

TEST_F(CurveClassesTest, AreaClosesTheEnds) {
    double area = 0;
    EXPECT_EQ(AcDbArc({5, 5, 0}, 2, 0, kPi).getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 2 * kPi, 1e-12);
    EXPECT_EQ(AcDbEllipse({0, 0, 0}, AcGeVector3d::kZAxis, {3, 0, 0}, 0.5).getArea(area),
              Acad::eOk);
    EXPECT_NEAR(area, 4.5 * kPi, 1e-12);
    Square polyline;
    EXPECT_EQ(polyline.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 16, 1e-12);
    polyline.setBulgeAt(0, 1);  // a half circle outside
    EXPECT_EQ(polyline.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 16 + 2 * kPi, 1e-12);
    AcGePoint3dArray points;
    points.append({0, 0, 0});
    points.append({4, 0, 0});
    points.append({4, 4, 0});
    points.append({0, 4, 1});
    EXPECT_EQ(AcDb3dPolyline(AcDb::k3dSimplePoly, points).getArea(area), Acad::eNonPlanarEntity);
    EXPECT_EQ(AcDbLine({0, 0, 0}, {1, 0, 0}).getArea(area), Acad::eOk);
    EXPECT_EQ(area, 0);
}

TEST_F(CurveClassesTest, TheLengthOfAnEllipseIsTheCompleteIntegral) {
    // 4 E(sqrt(1 - b^2)), from tables of elliptic integrals.
    const AcDbEllipse half({0, 0, 0}, AcGeVector3d::kZAxis, {1, 0, 0}, 0.5);
    EXPECT_NEAR(lengthOf(half), 4.844224110273838, 1e-12);
    const AcDbEllipse thin({0, 0, 0}, AcGeVector3d::kZAxis, {1, 0, 0}, 1e-6);
    EXPECT_NEAR(lengthOf(thin), 4, 1e-9);
}

TEST_F(CurveClassesTest, ClosestPointsExtend) {
    AcGePoint3d closest;
    const AcDbLine line({0, 0, 0}, {4, 0, 0});
    line.getClosestPointTo({9, 3, 0}, closest);
    EXPECT_EQ(closest.x, 4);
    line.getClosestPointTo({9, 3, 0}, closest, true);
    EXPECT_EQ(closest.x, 9);
    const AcDbArc arc({0, 0, 0}, 2, 0, kPi / 2);
    arc.getClosestPointTo({-5, -0.1, 0}, closest);
    EXPECT_NEAR(closest.y, 2, 1e-12);
    arc.getClosestPointTo({0, -5, 0}, closest, true);
    EXPECT_NEAR(closest.y, -2, 1e-12);
    // The point of a sloping line under another one.
    const AcDbLine slope({0, 0, 0}, {10, 0, 10});
    slope.getClosestPointTo({4, 3, 99}, AcGeVector3d::kZAxis, closest);
    EXPECT_NEAR(closest.z, 4, 1e-12);
}

TEST_F(CurveClassesTest, OffsetsLieToTheRight) {
    AcDbVoidPtrArray made;
    ASSERT_EQ(AcDbLine({0, 0, 0}, {4, 0, 0}).getOffsetCurves(1, made), Acad::eOk);
    ASSERT_EQ(AcDbArc({0, 0, 0}, 2, 0, kPi).getOffsetCurves(1, made), Acad::eOk);
    ASSERT_EQ(AcDbArc({0, 0, 0}, 2, 0, kPi).getOffsetCurves(-1, made), Acad::eOk);
    std::vector<CurvePtr> curves;
    for (void* const curve : made)
        curves.emplace_back(static_cast<AcDbCurve*>(curve));
    EXPECT_EQ(text(ends(*curves[0])), "0,-1,0 4,-1,0");
    EXPECT_EQ(text(ends(*curves[1])), "3,0,0 -3,0,0");
    EXPECT_EQ(text(ends(*curves[2])), "1,0,0 -1,0,0");
    AcDbVoidPtrArray none;
    EXPECT_EQ(AcDbArc({0, 0, 0}, 2, 0, kPi).getOffsetCurves(-2, none), Acad::eInvalidInput);
    EXPECT_EQ(AcDbRay().getOffsetCurves(1, none), Acad::eNotImplementedYet);
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(CurveClassesTest, PolylinesAreOffsetWithMitresAndWithoutLoops) {
    struct Case {
        double distance;
        double area;
        int count;
    };
    // Outside with corners, inside, and inside until nothing is left.
    for (const Case& c : {Case{1, 36, 1}, Case{-1, 4, 1}, Case{-2.5, 0, 0}}) {
        AcDbVoidPtrArray made;
        Square().getOffsetCurves(c.distance, made);
        EXPECT_EQ(made.length(), c.count) << c.distance;
        for (void* const curve : made) {
            const CurvePtr offset(static_cast<AcDbCurve*>(curve));
            double area = 0;
            EXPECT_EQ(offset->getArea(area), Acad::eOk);
            EXPECT_NEAR(area, c.area, 1e-9);
            EXPECT_TRUE(offset->isClosed());
        }
    }
    // A notch that is narrower than twice the distance is closed.
    AcDbPolyline notched;
    for (const AcGePoint2d& point :
         {AcGePoint2d(0, 0), AcGePoint2d(10, 0), AcGePoint2d(10, 6), AcGePoint2d(6, 6),
          AcGePoint2d(6, 3), AcGePoint2d(5, 3), AcGePoint2d(5, 6), AcGePoint2d(0, 6)}) {
        notched.addVertexAt(notched.numVerts(), point);
    }
    notched.setClosed(true);
    AcDbVoidPtrArray made;
    notched.getOffsetCurves(1, made);
    ASSERT_EQ(made.length(), 1);
    const std::unique_ptr<AcDbPolyline> offset(static_cast<AcDbPolyline*>(made[0]));
    double area = 0;
    offset->getArea(area);
    EXPECT_NEAR(area, 12 * 8, 1e-6);
}

// Every point of an offset polyline is as far away as it should be, or at a mitre further.
TEST_F(CurveClassesTest, RandomPolylinesAreOffsetAtTheDistance) {
    RandomCurves random(5);
    int made = 0;
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        const CurvePtr polyline = random.makeFlat(5);
        const double distance = random.real(-1.5, 1.5);
        AcDbVoidPtrArray curves;
        polyline->getOffsetCurves(distance, curves);
        for (void* const curve : curves) {
            const CurvePtr offset(static_cast<AcDbCurve*>(curve));
            ++made;
            const double from = startParam(*offset);
            const double to = endParam(*offset);
            for (int i = 0; i <= 50; ++i) {
                const AcGePoint3d point = pointAt(*offset, from + (to - from) * i / 50);
                AcGePoint3d nearest;
                polyline->getClosestPointTo(point, nearest);
                EXPECT_GT(point.distanceTo(nearest), std::abs(distance) * (1 - 1e-4)) << round;
                EXPECT_LT(point.distanceTo(nearest), std::abs(distance) * 3.3) << round;
            }
        }
    }
    EXPECT_GT(made, 150);
}

TEST_F(CurveClassesTest, ExtendingMovesAnEnd) {
    AcDbLine line({0, 0, 0}, {4, 0, 0});
    EXPECT_EQ(line.extend(6), Acad::eOk);
    EXPECT_EQ(line.extend(-1), Acad::eOk);
    EXPECT_EQ(text(ends(line)), "-1,0,0 6,0,0");
    EXPECT_EQ(line.extend(3), Acad::eInvalidInput);
    AcDbArc arc({0, 0, 0}, 2, 0, kPi / 2);
    EXPECT_EQ(arc.extend(kPi), Acad::eOk);
    EXPECT_EQ(text(ends(arc)), "2,0,0 -2,0,0");
    EXPECT_EQ(arc.extend(7), Acad::eInvalidInput);
    Square polyline;
    EXPECT_EQ(polyline.extend(5), Acad::eInvalidInput);
    polyline.setClosed(false);
    EXPECT_EQ(polyline.extend(4), Acad::eOk);
    EXPECT_EQ(text(ends(polyline)), "0,0,0 -4,4,0");
}

TEST_F(CurveClassesTest, SplittingACircleGivesArcsRoundIt) {
    AcGeDoubleArray cuts;
    cuts.append(1);
    cuts.append(2);
    AcDbVoidPtrArray pieces;
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 1);
    ASSERT_EQ(circle.getSplitCurves(cuts, pieces), Acad::eOk);
    ASSERT_EQ(pieces.length(), 2);
    const CurvePtr first(static_cast<AcDbCurve*>(pieces[0]));
    const CurvePtr second(static_cast<AcDbCurve*>(pieces[1]));
    EXPECT_NEAR(lengthOf(*first), 1, 1e-12);
    EXPECT_NEAR(lengthOf(*second), 2 * kPi - 1, 1e-12);
    cuts.reverse();
    EXPECT_EQ(circle.getSplitCurves(cuts, pieces), Acad::eInvalidInput);
}

TEST_F(CurveClassesTest, MirroredArcsTurnRoundAndKeepTheirNormal) {
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring({0, 0, 0}, AcGeVector3d::kXAxis);
    AcDbArc arc({3, 0, 0}, 1, 0, kPi / 2);
    EXPECT_EQ(arc.transformBy(mirror), Acad::eOk);
    EXPECT_EQ(arc.normal().z, 1);
    EXPECT_EQ(text(ends(arc)), "-3,1,0 -4,0,0");
    Square polyline;
    polyline.setBulgeAt(0, 0.5);
    EXPECT_EQ(polyline.transformBy(mirror), Acad::eOk);
    double bulge = 0;
    polyline.getBulgeAt(0, bulge);
    EXPECT_EQ(bulge, -0.5);
    EXPECT_EQ(polyline.normal().z, 1);
    // From above to below: what stands on it hangs from it then.
    AcDbCircle circle({0, 0, 1}, AcGeVector3d::kZAxis, 1);
    circle.setThickness(2);
    EXPECT_EQ(circle.transformBy(AcGeMatrix3d::mirroring({0, 0, 0}, AcGeVector3d::kZAxis)),
              Acad::eOk);
    AcDbExtents extents;
    circle.getGeomExtents(extents);
    EXPECT_NEAR(extents.minPoint().z, -3, 1e-12);
    EXPECT_NEAR(extents.maxPoint().z, -1, 1e-12);
}

TEST_F(CurveClassesTest, StretchedCirclesAreEllipses) {
    AcGeMatrix3d stretch;
    stretch(0, 0) = 3;
    AcDbCircle circle({1, 1, 0}, AcGeVector3d::kZAxis, 2);
    EXPECT_EQ(circle.transformBy(stretch), Acad::eCannotScaleNonUniformly);
    EXPECT_EQ(circle.radius(), 2);
    AcDbEntity* copy = nullptr;
    ASSERT_EQ(circle.getTransformedCopy(stretch, copy), Acad::eOk);
    const std::unique_ptr<AcDbEntity> owned(copy);
    const AcDbEllipse* const ellipse = AcDbEllipse::cast(copy);
    ASSERT_NE(ellipse, nullptr);
    EXPECT_NEAR(ellipse->majorAxis().length(), 6, 1e-12);
    EXPECT_NEAR(ellipse->radiusRatio(), 1.0 / 3, 1e-12);
    Square polyline;
    EXPECT_EQ(polyline.transformBy(stretch), Acad::eCannotScaleNonUniformly);
    AcDbLine line({1, 0, 0}, {2, 1, 0});
    EXPECT_EQ(line.transformBy(stretch), Acad::eOk);
    EXPECT_EQ(text(ends(line)), "3,0,0 6,1,0");
    // An ellipse goes through the stretched points whatever the matrix.
    RandomCurves random(9);
    for (int round = 0; round < 200; ++round) {
        const CurvePtr curve = random.make(3);
        AcGeMatrix3d matrix;
        for (int i = 0; i < 12; ++i) {
            matrix.entry[i / 4][i % 4] = random.real(-2, 2);
        }
        if (std::abs(matrix.det()) < 0.1) continue;
        const double middle = (startParam(*curve) + endParam(*curve)) / 2;
        const AcGePoint3d point = matrix * pointAt(*curve, middle);
        if (curve->transformBy(matrix) != Acad::eOk) continue;
        AcGePoint3d closest;
        curve->getClosestPointTo(point, closest);
        EXPECT_LT(closest.distanceTo(point), 1e-7) << round;
    }
}

TEST_F(CurveClassesTest, WidthsBelowZeroAreNone) {
    AcDbPolyline polyline;
    EXPECT_EQ(polyline.addVertexAt(0, {0, 0}, 0, -1, -1), Acad::eOk);
    EXPECT_EQ(polyline.addVertexAt(2, {0, 0}), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.addVertexAt(0, {5, 5}, 0.5, 1, 2), Acad::eOk);
    double start = -1;
    double end = -1;
    EXPECT_EQ(polyline.getWidthsAt(1, start, end), Acad::eOk);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, 0);
    double width = 0;
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eInvalidInput);
    EXPECT_EQ(polyline.removeVertexAt(2), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.removeVertexAt(0), Acad::eOk);
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(polyline.segType(0), AcDbPolyline::kPoint);
    AcGePoint3d point;
    EXPECT_EQ(polyline.getStartPoint(point), Acad::eOk);
    EXPECT_EQ(polyline.removeVertexAt(0), Acad::eOk);
    EXPECT_NE(polyline.getStartPoint(point), Acad::eOk);
}

TEST_F(CurveClassesTest, ExtentsOfPolylinesHoldTheirWidth) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {0, 0}, 1, 2, 2);
    polyline.addVertexAt(1, {4, 0}, 0, 2, 2);
    AcDbExtents extents;
    EXPECT_EQ(polyline.getGeomExtents(extents), Acad::eOk);
    EXPECT_NEAR(extents.minPoint().y, -3, 1e-12);
    EXPECT_NEAR(extents.minPoint().x, -1, 1e-12);
    EXPECT_NEAR(extents.maxPoint().x, 5, 1e-12);
    // What is drawn is as large, but for its chords.
    model::MeasuringDraw draw;
    polyline.worldDraw(&draw);
    EXPECT_NEAR(draw.extents().minPoint().y, -3, 0.05);
}

TEST_F(CurveClassesTest, DrawnCurvesFillTheirExtents) {
    RandomCurves random(17);
    for (int kind = 0; kind < RandomCurves::kBoundedKinds; ++kind) {
        for (int round = 0; round < 20; ++round) {
            const CurvePtr curve = random.make(kind);
            AcDbExtents extents;
            ASSERT_EQ(curve->getGeomExtents(extents), Acad::eOk);
            model::MeasuringDraw draw;
            EXPECT_TRUE(curve->worldDraw(&draw));
            const double size = extents.minPoint().distanceTo(extents.maxPoint());
            EXPECT_LT(draw.extents().minPoint().distanceTo(extents.minPoint()), 0.01 * size)
                << RandomCurves::name(kind);
            EXPECT_LT(draw.extents().maxPoint().distanceTo(extents.maxPoint()), 0.01 * size)
                << RandomCurves::name(kind);
        }
    }
}

TEST_F(CurveClassesTest, ObjectSnaps) {
    const AcDbLine line({0, 0, 0}, {4, 0, 0});
    const AcDbArc arc({0, 0, 0}, 2, 0, kPi);
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 3);
    const AcDbPoint point({1, 2, 3});
    Square polyline;
    struct Case {
        const AcDbEntity* entity;
        AcDb::OsnapMode mode;
        AcGePoint3d last;
        const char* points;
    };
    const Case cases[] = {
        {&line, AcDb::kOsModeEnd, {}, "0,0,0 4,0,0"},
        {&line, AcDb::kOsModeMid, {}, "2,0,0"},
        {&line, AcDb::kOsModeCen, {}, ""},
        {&line, AcDb::kOsModePerp, {7, 5, 0}, "7,0,0"},
        {&line, AcDb::kOsModeNear, {}, "0,0,0"},
        {&arc, AcDb::kOsModeEnd, {}, "2,0,0 -2,0,0"},
        {&arc, AcDb::kOsModeMid, {}, "0,2,0"},
        {&arc, AcDb::kOsModeCen, {}, "0,0,0"},
        {&arc, AcDb::kOsModeQuad, {}, "2,0,0 0,2,0 -2,0,0"},
        {&arc, AcDb::kOsModePerp, {0, 5, 0}, "0,2,0"},
        {&circle, AcDb::kOsModePerp, {0, 5, 0}, "0,3,0 0,-3,0"},
        {&circle, AcDb::kOsModeTan, {5, 0, 0}, "1.8,-2.4,0 1.8,2.4,0"},
        {&circle, AcDb::kOsModeTan, {1, 0, 0}, ""},
        {&circle, AcDb::kOsModeNode, {}, ""},
        {&polyline, AcDb::kOsModeEnd, {}, "0,0,0 4,0,0 4,4,0 0,4,0"},
        {&polyline, AcDb::kOsModeMid, {}, "2,0,0 4,2,0 2,4,0 0,2,0"},
        {&point, AcDb::kOsModeNode, {}, "1,2,3"},
        {&point, AcDb::kOsModeEnd, {}, ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(text(osnaps(*c.entity, c.mode, c.last)), c.points)
            << c.entity->isA()->name() << " mode " << c.mode;
    }
}

TEST_F(CurveClassesTest, GripsStandInTheirOrderAndMove) {
    AcDbLine line({0, 0, 0}, {4, 0, 0});
    EXPECT_EQ(text(grips(line)), "0,0,0 4,0,0 2,0,0");
    moveGrip(line, 2, {1, 1, 0});
    moveGrip(line, 0, {0, 0, 5});
    EXPECT_EQ(text(grips(line)), "1,1,5 5,1,0 3,1,2.5");
    AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 3);
    EXPECT_EQ(text(grips(circle)), "0,0,0 3,0,0 0,3,0 -3,0,0 0,-3,0");
    moveGrip(circle, 2, {0, 2, 0});
    EXPECT_EQ(circle.radius(), 5);
    AcDbArc arc({0, 0, 0}, 2, 0, kPi);
    EXPECT_EQ(text(grips(arc)), "2,0,0 -2,0,0 0,2,0 0,0,0");
    moveGrip(arc, 2, {0, -1, 0});
    EXPECT_EQ(text(grips(arc)), "2,0,0 -2,0,0 0,1,0 0,-1.5,0");
    Square polyline;
    polyline.setBulgeAt(1, kHalf);
    EXPECT_EQ(text(grips(polyline)), "0,0,0 4,0,0 4,4,0 0,4,0 2,0,0 4.8284,2,0 2,4,0 0,2,0");
    moveGrip(polyline, 4, {0, -1, 0});
    EXPECT_EQ(text(stretches(polyline)), "0,-1,0 4,-1,0 4,4,0 0,4,0");
    Square bent;
    bent.setBulgeAt(1, kHalf);
    moveGrip(bent, 5, {6 - 4.82842712474619, 0, 0});
    double bulge = 0;
    bent.getBulgeAt(1, bulge);
    EXPECT_NEAR(bulge, 1, 1e-12);
    AcDbEllipse ellipse({0, 0, 0}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5);
    EXPECT_EQ(text(grips(ellipse)), "0,0,0 4,0,0 -4,0,0 0,2,0 0,-2,0");
    moveGrip(ellipse, 3, {0, 1, 0});
    EXPECT_NEAR(ellipse.radiusRatio(), 0.75, 1e-12);
}

TEST_F(CurveClassesTest, StretchedArcsKeepTheirHeight) {
    AcDbArc arc({0, 0, 0}, 2, 0, kPi);
    EXPECT_EQ(text(stretches(arc)), "2,0,0 -2,0,0");
    AcDbIntArray start;
    start.append(0);
    EXPECT_EQ(arc.moveStretchPointsAt(start, {4, 0, 0}), Acad::eOk);
    EXPECT_EQ(text(ends(arc)), "6,0,0 -2,0,0");
    AcDbExtents extents;
    arc.getGeomExtents(extents);
    EXPECT_NEAR(extents.maxPoint().y, 2, 1e-9);
}

TEST_F(CurveClassesTest, PolylinesExplodeToLinesAndArcs) {
    Square polyline;
    polyline.setClosed(false);
    polyline.setBulgeAt(0, 1);
    polyline.setBulgeAt(1, -1);
    polyline.setElevation(3);
    AcDbVoidPtrArray made;
    ASSERT_EQ(polyline.explode(made), Acad::eOk);
    ASSERT_EQ(made.length(), 3);
    std::vector<CurvePtr> pieces;
    for (void* const piece : made)
        pieces.emplace_back(static_cast<AcDbCurve*>(piece));
    EXPECT_EQ(text(ends(*pieces[0])), "0,0,3 4,0,3");
    EXPECT_EQ(text(ends(*pieces[1])), "4,4,3 4,0,3");  // arcs run counter-clockwise
    EXPECT_EQ(text(ends(*pieces[2])), "4,4,3 0,4,3");
    EXPECT_TRUE(pieces[0]->isKindOf(AcDbArc::desc()));
    EXPECT_EQ(AcDbLine().explode(made), Acad::eNotApplicable);
}

TEST_F(CurveClassesTest, ListTellsTheGeometry) {
    AcDbLine({0, 0, 0}, {3, 4, 0}).list();
    const std::string shown = printed();
    EXPECT_NE(shown.find("from point, X=    0.0000  Y=    0.0000"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Length =     5.0000"), std::string::npos) << shown;
}

TEST_F(CurveClassesTest, SplinesKeepTheirPointsAndFollowThem) {
    AcGePoint3dArray points;
    points.append({0, 0, 0});
    points.append({2, 2, 0});
    points.append({4, 0, 0});
    AcDbSpline spline(points, {0, 1, 0}, AcGeVector3d());
    EXPECT_EQ(spline.numControlPoints(), 5);
    AcGeVector3d first;
    spline.getFirstDeriv(0.0, first);
    EXPECT_NEAR(first.x, 0, 1e-12);
    AcGeVector3d second;
    spline.getSecondDeriv(endParam(spline), second);
    EXPECT_NEAR(second.length(), 0, 1e-9);
    EXPECT_EQ(spline.setFitPointAt(1, {2, 3, 0}), Acad::eOk);
    double parameter = 0;
    EXPECT_EQ(spline.getParamAtPoint({2, 3, 0}, parameter), Acad::eOk);
    EXPECT_EQ(spline.setFitPointAt(3, {2, 3, 0}), Acad::eInvalidIndex);
    EXPECT_EQ(text(grips(spline)), "0,0,0 2,3,0 4,0,0");
    EXPECT_EQ(spline.setControlPointAt(1, {9, 9, 9}), Acad::eOk);
    EXPECT_FALSE(spline.hasFitData());
    EXPECT_EQ(AcDbSpline().getPointAtParam(0, points[0]), Acad::eNotImplementedYet);
}

// A quarter circle as a rational spline of degree 2 is that circle.
TEST_F(CurveClassesTest, RationalSplinesAreExact) {
    AcGePoint3dArray points;
    points.append({1, 0, 0});
    points.append({1, 1, 0});
    points.append({0, 1, 0});
    AcGeDoubleArray knots;
    for (const double knot : {0.0, 0.0, 0.0, 1.0, 1.0, 1.0})
        knots.append(knot);
    AcGeDoubleArray weights;
    for (const double weight : {1.0, std::sqrt(0.5), 1.0})
        weights.append(weight);
    AcDbSpline spline(2, true, false, false, points, knots, weights);
    EXPECT_NEAR(lengthOf(spline), kPi / 2, 1e-12);
    for (int i = 0; i <= 10; ++i) {
        EXPECT_NEAR(pointAt(spline, i / 10.0).asVector().length(), 1, 1e-14);
    }
    double area = 0;
    EXPECT_EQ(spline.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, kPi / 4 - 0.5, 1e-12);
    knots[2] = 2;  // does not rise
    EXPECT_EQ(spline.setNurbsData(2, true, false, false, points, knots, weights),
              Acad::eInvalidInput);
}

}  // namespace
}  // namespace sg::test

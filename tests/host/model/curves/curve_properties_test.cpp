#include <algorithm>

#include "host/model/curves/curve_fixture.h"

// The operations of curves answered against each other on thousands of random curves.

namespace sg::test {
namespace {

constexpr int kRounds = 250;

class CurvePropertiesTest : public CurveTest, public testing::WithParamInterface<int> {
  protected:
    // Calls `check` with random curves of the kind, and their bounds of parameters.
    void forEachCurve(const std::function<void(AcDbCurve&, double, double)>& check) {
        RandomCurves random(100U + static_cast<unsigned int>(GetParam()));
        for (int round = 0; round < kRounds && !HasFailure(); ++round) {
            SCOPED_TRACE(std::string(RandomCurves::name(GetParam())) + " " + std::to_string(round));
            const CurvePtr curve = random.make(GetParam());
            check(*curve, startParam(*curve), endParam(*curve));
        }
    }
    double between(double from, double to, int i, int count) const {
        return from + (to - from) * i / count;
    }
};

TEST_P(CurvePropertiesTest, PointAtDistanceAndDistanceAtPointAgree) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const double length = lengthOf(curve);
        double before = -1;
        for (int i = 0; i <= 7; ++i) {
            double distance = 0;
            double parameter = 0;
            const double asked = between(from, to, i, 7);
            ASSERT_EQ(curve.getDistAtParam(asked, distance), Acad::eOk);
            EXPECT_GT(distance, before);
            before = distance;
            ASSERT_EQ(curve.getParamAtDist(distance, parameter), Acad::eOk);
            EXPECT_NEAR(parameter, asked, 1e-8 * (1 + to - from));
            AcGePoint3d point;
            ASSERT_EQ(curve.getPointAtDist(distance, point), Acad::eOk);
            EXPECT_LT(point.distanceTo(pointAt(curve, asked)), 1e-9 * (1 + length));
            // Another pass through the point may be nearer to the start.
            double found = 0;
            ASSERT_EQ(curve.getDistAtPoint(point, found), Acad::eOk);
            AcGePoint3d there;
            ASSERT_EQ(curve.getPointAtDist(found, there), Acad::eOk);
            EXPECT_LT(there.distanceTo(point), 1e-8 * (1 + length));
        }
    });
}

TEST_P(CurvePropertiesTest, LengthIsThatOfFineChords) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        constexpr int kChords = 400;
        double chords = 0;
        for (int i = 0; i < kChords; ++i) {
            chords += pointAt(curve, between(from, to, i, kChords))
                          .distanceTo(pointAt(curve, between(from, to, i + 1, kChords)));
        }
        const double length = lengthOf(curve);
        EXPECT_LE(chords, length * (1 + 1e-12));
        EXPECT_GT(chords, length * 0.96);
    });
}

TEST_P(CurvePropertiesTest, ClosestPointIsNoFurtherThanAnySample) {
    RandomCurves random(7);
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const AcGePoint3d given = random.point(15);
        const AcGeVector3d sight = random.direction();
        const auto seen = [&](const AcGePoint3d& p) {
            const AcGeVector3d off = p - given;
            return (off - sight * off.dotProduct(sight)).length();
        };
        AcGePoint3d closest;
        AcGePoint3d seenClosest;
        ASSERT_EQ(curve.getClosestPointTo(given, closest), Acad::eOk);
        ASSERT_EQ(curve.getClosestPointTo(given, sight, seenClosest), Acad::eOk);
        double unused = 0;
        EXPECT_EQ(curve.getParamAtPoint(closest, unused), Acad::eOk);
        EXPECT_EQ(curve.getParamAtPoint(seenClosest, unused), Acad::eOk);
        for (int i = 0; i <= 500; ++i) {
            const AcGePoint3d sample = pointAt(curve, between(from, to, i, 500));
            EXPECT_LE(closest.distanceTo(given), sample.distanceTo(given) + 1e-9);
            EXPECT_LE(seen(seenClosest), seen(sample) + 1e-9);
        }
    });
}

TEST_P(CurvePropertiesTest, DerivativesAreThoseOfDifferences) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const double step = 1e-5 * (to - from);
        for (const double share : {0.137, 0.411, 0.733}) {
            // Inside of a piece: polylines have corners at whole parameters.
            const double at = from + (to - from) * share;
            if (std::abs(at - std::round(at)) < 3 * step) continue;
            AcGeVector3d first;
            AcGeVector3d second;
            ASSERT_EQ(curve.getFirstDeriv(at, first), Acad::eOk);
            ASSERT_EQ(curve.getSecondDeriv(at, second), Acad::eOk);
            const AcGePoint3d before = pointAt(curve, at - step);
            const AcGePoint3d here = pointAt(curve, at);
            const AcGePoint3d after = pointAt(curve, at + step);
            const double size = first.length() + second.length() * (to - from) + 1e-3;
            EXPECT_LT(((after - before) / (2 * step) - first).length(), 1e-3 * size);
            AcGeVector3d firstBefore;
            AcGeVector3d firstAfter;
            curve.getFirstDeriv(at - step, firstBefore);
            curve.getFirstDeriv(at + step, firstAfter);
            const AcGeVector3d difference = (firstAfter - firstBefore) / (2 * step);
            // A spline's second derivative jumps at knots, which may lie between.
            if (GetParam() == 4) continue;
            EXPECT_LT((difference - second).length(), 1e-2 * (second.length() + size));
            EXPECT_LT(here.distanceTo(before), size * step * 10);
        }
    });
}

TEST_P(CurvePropertiesTest, PiecesOfASplitAddUp) {
    RandomCurves random(11);
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        AcGeDoubleArray cuts;
        for (int i = 1; i <= 3; ++i)
            cuts.append(from + (to - from) * (i - random.real(0, 0.9)) / 3);
        std::sort(cuts.begin(), cuts.end());
        AcDbVoidPtrArray made;
        ASSERT_EQ(curve.getSplitCurves(cuts, made), Acad::eOk);
        EXPECT_EQ(made.length(), curve.isPeriodic() ? 3 : 4);
        double sum = 0;
        for (void* const piece : made) {
            const CurvePtr part(static_cast<AcDbCurve*>(piece));
            sum += lengthOf(*part);
            const double middle = (startParam(*part) + endParam(*part)) / 2;
            double unused = 0;
            EXPECT_EQ(curve.getParamAtPoint(pointAt(*part, middle), unused), Acad::eOk);
        }
        const double length = lengthOf(curve);
        EXPECT_NEAR(sum, length, 1e-9 * length);
    });
}

// A similarity of space, mirrored every other time.
AcGeMatrix3d similarity(RandomCurves& random) {
    AcGeMatrix3d matrix = AcGeMatrix3d::translation(random.point().asVector()) *
                          AcGeMatrix3d::rotation(random.real(0, 7), random.direction()) *
                          AcGeMatrix3d::scaling(random.real(0.2, 4));
    if (random.whole(0, 1) == 1) {
        matrix = matrix * AcGeMatrix3d::mirroring(random.point(), random.direction());
    }
    return matrix;
}

TEST_P(CurvePropertiesTest, TransformedCurvesGoThroughTransformedPoints) {
    RandomCurves random(13);
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const AcGeMatrix3d matrix = similarity(random);
        std::vector<AcGePoint3d> points;
        for (int i = 0; i <= 10; ++i) {
            points.push_back(matrix * pointAt(curve, between(from, to, i, 10)));
        }
        const double length = lengthOf(curve);
        double area = -1;
        const bool hasArea = curve.getArea(area) == Acad::eOk;
        ASSERT_EQ(curve.transformBy(matrix), Acad::eOk);
        const double scale = matrix.scale();
        EXPECT_NEAR(lengthOf(curve), length * scale, 1e-8 * length * scale);
        for (const AcGePoint3d& point : points) {
            AcGePoint3d closest;
            ASSERT_EQ(curve.getClosestPointTo(point, closest), Acad::eOk);
            EXPECT_LT(closest.distanceTo(point), 1e-8 * (1 + length * scale));
        }
        double newArea = -1;
        if (hasArea && curve.getArea(newArea) == Acad::eOk) {
            EXPECT_NEAR(newArea, area * scale * scale,
                        1e-7 * (1 + length * length) * scale * scale);
        }
    });
}

TEST_P(CurvePropertiesTest, ExtentsTouchTheCurveOnAllSides) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        AcDbExtents extents;
        ASSERT_EQ(curve.getGeomExtents(extents), Acad::eOk);
        AcDbExtents sampled;
        for (int i = 0; i <= 1000; ++i)
            sampled.addPoint(pointAt(curve, between(from, to, i, 1000)));
        const double size = extents.minPoint().distanceTo(extents.maxPoint());
        for (unsigned int i = 0; i < 3; ++i) {
            EXPECT_LE(extents.minPoint()[i], sampled.minPoint()[i] + 1e-9);
            EXPECT_GE(extents.maxPoint()[i], sampled.maxPoint()[i] - 1e-9);
            // A corner of a polyline may lie between two samples.
            EXPECT_NEAR(extents.minPoint()[i], sampled.minPoint()[i], 1e-2 * size);
            EXPECT_NEAR(extents.maxPoint()[i], sampled.maxPoint()[i], 1e-2 * size);
        }
    });
}

TEST_P(CurvePropertiesTest, ReversedCurvesRunTheOtherWay) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const double length = lengthOf(curve);
        std::vector<AcGePoint3d> points(6);
        for (size_t i = 0; i < 6; ++i) {
            curve.getPointAtDist(length * static_cast<double>(i) / 5, points[i]);
        }
        if (GetParam() == 2) {
            EXPECT_EQ(curve.reverseCurve(), Acad::eNotApplicable);
            return;
        }
        ASSERT_EQ(curve.reverseCurve(), Acad::eOk);
        EXPECT_NEAR(lengthOf(curve), length, 1e-9 * length);
        // A closed curve of vertices starts at another one then, a closed curve anywhere.
        if (curve.isClosed()) return;
        for (size_t i = 0; i < 6; ++i) {
            AcGePoint3d point;
            curve.getPointAtDist(length * static_cast<double>(5 - i) / 5, point);
            EXPECT_LT(point.distanceTo(points[i]), 1e-8 * (1 + length));
        }
        EXPECT_NEAR(endParam(curve) - startParam(curve), to - from, 1e-9 * (1 + to - from));
    });
}

TEST_P(CurvePropertiesTest, WhatLiesOutsideIsRefused) {
    forEachCurve([&](AcDbCurve& curve, double from, double to) {
        const double length = lengthOf(curve);
        AcGePoint3d point;
        double value = 0;
        EXPECT_EQ(curve.getPointAtParam(to + 0.01 * (to - from), point), Acad::eInvalidInput);
        EXPECT_EQ(curve.getPointAtParam(from - 0.01 * (to - from), point), Acad::eInvalidInput);
        EXPECT_EQ(curve.getPointAtDist(length * 1.001, point), Acad::eInvalidInput);
        EXPECT_EQ(curve.getPointAtDist(-0.001 * length, point), Acad::eInvalidInput);
        EXPECT_EQ(curve.getPointAtDist(std::nan(""), point), Acad::eInvalidInput);
        EXPECT_EQ(curve.getDistAtPoint({500, 500, 500}, value), Acad::eInvalidInput);
        EXPECT_EQ(curve.getClosestPointTo({0, 0, 0}, AcGeVector3d(), point), Acad::eInvalidInput);
    });
}

INSTANTIATE_TEST_SUITE_P(AllKinds, CurvePropertiesTest,
                         testing::Range(0, RandomCurves::kBoundedKinds));

}  // namespace
}  // namespace sg::test

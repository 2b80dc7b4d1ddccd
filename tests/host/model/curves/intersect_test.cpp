#include "host/model/curves/geometry_kernel.h"

#include "host/model/curves/curve_fixture.h"

namespace sg::test {
namespace {

class IntersectTest : public CurveTest {};

using P = AcGePoint3d;

TEST_F(IntersectTest, LinesMeetInOnePointOrInTheEndsThatTheyShare) {
    struct Case {
        P a, b, c, d;
        AcDb::Intersect mode;
        const char* points;
    };
    constexpr auto kOn = AcDb::kOnBothOperands;
    const Case cases[] = {
        {{0, 0, 0}, {4, 4, 0}, {0, 4, 0}, {4, 0, 0}, kOn, "2,2,0"},
        {{0, 0, 0}, {4, 0, 0}, {4, 0, 0}, {4, 3, 0}, kOn, "4,0,0"},  // a corner
        {{0, 0, 0}, {4, 0, 0}, {2, 0, 0}, {2, 3, 0}, kOn, "2,0,0"},  // an end on a line
        {{0, 0, 0}, {4, 0, 0}, {5, 1, 0}, {5, 3, 0}, kOn, ""},
        {{0, 0, 0}, {4, 0, 0}, {5, 1, 0}, {5, 3, 0}, AcDb::kExtendThis, ""},
        {{0, 0, 0}, {4, 0, 0}, {3, 1, 0}, {3, 3, 0}, AcDb::kExtendArg, "3,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {5, -1, 0}, {5, 3, 0}, AcDb::kExtendThis, "5,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {5, 1, 0}, {5, 3, 0}, AcDb::kExtendBoth, "5,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {0, 1, 0}, {4, 1, 0}, AcDb::kExtendBoth, ""},  // parallel
        {{0, 0, 0}, {4, 0, 0}, {2, 0, 0}, {6, 0, 0}, kOn, "2,0,0 4,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {3, 0, 0}, {1, 0, 0}, kOn, "1,0,0 3,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {4, 0, 0}, {6, 0, 0}, kOn, "4,0,0"},
        {{0, 0, 0}, {4, 0, 0}, {5, 0, 0}, {6, 0, 0}, kOn, ""},
        {{0, 0, 0}, {4, 4, 0}, {0, 4, 1}, {4, 0, 1}, kOn, ""},  // skew
        {{0, 0, 0}, {4, 4, 4}, {0, 4, 2}, {4, 0, 2}, kOn, "2,2,2"},
        {{2, 2, 0}, {2, 2, 0}, {0, 4, 0}, {4, 0, 0}, kOn, "2,2,0"},  // a point on a line
    };
    for (const Case& c : cases) {
        const AcDbLine first(c.a, c.b);
        const AcDbLine second(c.c, c.d);
        EXPECT_EQ(text(meet(first, second, c.mode)), c.points)
            << c.a.x << "," << c.a.y << " to " << c.c.x << "," << c.c.y << " mode " << c.mode;
    }
}

TEST_F(IntersectTest, ProjectedLinesMeetOnTheFirst) {
    const AcDbLine low({0, 0, 0}, {4, 4, 4});
    const AcDbLine high({0, 4, 9}, {4, 0, 9});
    AcGePoint3dArray points;
    EXPECT_EQ(low.intersectWith(&high, AcDb::kOnBothOperands, AcGePlane(), points), Acad::eOk);
    EXPECT_EQ(text(points), "2,2,2");
    EXPECT_EQ(text(meet(low, high)), "");
    // Seen along the y axis a vertical circle is round, a lying one a line.
    const AcDbCircle lying({0, 0, 3}, AcGeVector3d::kZAxis, 2);
    const AcDbLine standing({1, 5, 0}, {1, 5, 9});
    const AcGePlane fromFront({0, 0, 0}, AcGeVector3d::kYAxis);
    points.removeAll();
    EXPECT_EQ(standing.intersectWith(&lying, AcDb::kOnBothOperands, fromFront, points), Acad::eOk);
    EXPECT_EQ(text(points), "1,5,3");
    points.removeAll();
    EXPECT_EQ(lying.intersectWith(&standing, AcDb::kOnBothOperands, fromFront, points), Acad::eOk);
    EXPECT_EQ(text(points), "1,1.7321,3 1,-1.7321,3");
}

TEST_F(IntersectTest, LinesMeetArcs) {
    struct Case {
        P from, to;
        double start, end;
        AcDb::Intersect mode;
        const char* points;
    };
    constexpr auto kOn = AcDb::kOnBothOperands;
    const Case cases[] = {
        {{-9, 3, 0}, {9, 3, 0}, 0, kPi, kOn, "-4,3,0 4,3,0"},
        {{9, 3, 0}, {-9, 3, 0}, 0, kPi, kOn, "4,3,0 -4,3,0"},  // in order along the line
        {{-9, 3, 0}, {0, 3, 0}, 0, kPi, kOn, "-4,3,0"},
        {{-9, 3, 0}, {0, 3, 0}, 0, kPi, AcDb::kExtendThis, "-4,3,0 4,3,0"},
        {{-9, -3, 0}, {9, -3, 0}, 0, kPi, kOn, ""},
        {{-9, -3, 0}, {9, -3, 0}, 0, kPi, AcDb::kExtendArg, "-4,-3,0 4,-3,0"},
        {{-9, 5, 0}, {9, 5, 0}, 0, kPi, kOn, "0,5,0"},  // touches
        {{5, -9, 0}, {5, 9, 0}, 0, kPi, kOn, "5,0,0"},  // touches in the arc's end
        {{5, 0, 0}, {5, 9, 0}, 0, kPi, kOn, "5,0,0"},   // goes on where it ends
        {{0, 0, 0}, {5, 0, 0}, 0, kPi, kOn, "5,0,0"},   // ends in the arc's end
        {{-9, 5.0001, 0}, {9, 5.0001, 0}, 0, kPi, kOn, ""},
        {{3, 4, -2}, {3, 4, 2}, 0, kPi, kOn, "3,4,0"},  // through the plane
        {{3, 4.001, -2}, {3, 4.001, 2}, 0, kPi, kOn, ""},
        {{-9, 3, 1}, {9, 3, 1}, 0, kPi, kOn, ""},  // above it
    };
    for (const Case& c : cases) {
        const AcDbLine line(c.from, c.to);
        const AcDbArc arc({0, 0, 0}, 5, c.start, c.end);
        EXPECT_EQ(text(meet(line, arc, c.mode)), c.points) << c.from.x << "," << c.from.y;
    }
}

TEST_F(IntersectTest, CirclesMeetTwiceOnceOrNever) {
    struct Case {
        P center;
        double radius;
        const char* points;
    };
    const Case cases[] = {
        {{6, 0, 0}, 5, "3,4,0 3,-4,0"},
        {{10, 0, 0}, 5, "5,0,0"},  // from outside
        {{3, 0, 0}, 2, "5,0,0"},   // from inside
        {{-4, 0, 0}, 9, "5,0,0"},  // around it
        {{10.001, 0, 0}, 5, ""},
        {{3, 0, 0}, 1.99, ""},
        {{0, 0, 0}, 4, ""},  // concentric
        {{0, 0, 0}, 5, ""},  // the same
        {{6, 0, 1}, 5, ""},  // higher
    };
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 5);
    for (const Case& c : cases) {
        const AcDbCircle other(c.center, AcGeVector3d::kZAxis, c.radius);
        EXPECT_EQ(text(meet(circle, other)), c.points) << c.center.x << " " << c.radius;
    }
    // Of circles in different planes, where both go through the shared line.
    const AcDbCircle standing({3, 0, 0}, AcGeVector3d::kXAxis, 4);
    EXPECT_EQ(text(meet(circle, standing)), "3,4,0 3,-4,0");
    const AcDbCircle smaller({3, 0, 0}, AcGeVector3d::kXAxis, 3);
    EXPECT_EQ(text(meet(circle, smaller)), "");
}

TEST_F(IntersectTest, ArcsOfOneCircleMeetInTheEndsThatLieOnBoth) {
    const AcDbArc first({0, 0, 0}, 5, 0, kPi);
    EXPECT_EQ(text(meet(first, AcDbArc({0, 0, 0}, 5, kPi / 2, 1.5 * kPi))), "0,5,0 -5,0,0");
    EXPECT_EQ(text(meet(first, AcDbArc({0, 0, 0}, 5, kPi, 2 * kPi))), "5,0,0 -5,0,0");
    EXPECT_EQ(text(meet(first, AcDbArc({0, 0, 0}, 5, 1.2 * kPi, 1.8 * kPi))), "");
    EXPECT_EQ(text(meet(first, AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5))), "5,0,0 -5,0,0");
}

// Programs compute tangent arcs with quarter turns of nine digits.
TEST_F(IntersectTest, ATouchWithinTheErrorsOfShortConstantsCountsOnce) {
    constexpr double kShort = 1.570796325;
    for (const double size : {1e-2, 1.0, 250.0, 1e5}) {
        for (const double direction : {0.0, 0.3, 2.0, 4.5}) {
            const AcGePoint2d contact = AcGePoint2d(7 * size, -3 * size);
            const auto centerOf = [&](double turn, double radius) {
                const double angle = direction + turn;
                return P(contact.x + radius * std::cos(angle), contact.y + radius * std::sin(angle),
                         0);
            };
            const AcDbArc left(centerOf(kShort, size), size, 0, 2 * kPi);
            const AcDbArc right(centerOf(-kShort, 3 * size), 3 * size, 0, 2 * kPi);
            const AcDbArc around(centerOf(kShort, 3 * size), 3 * size, 0, 2 * kPi);
            EXPECT_EQ(meet(left, right).length(), 1) << size << " " << direction;
            EXPECT_EQ(meet(left, around).length(), 1) << size << " " << direction;
            const P ahead(contact.x + size * std::cos(direction),
                          contact.y + size * std::sin(direction), 0);
            const P back(contact.x - size * std::cos(direction),
                         contact.y - size * std::sin(direction), 0);
            EXPECT_EQ(meet(AcDbLine(back, ahead), left).length(), 1) << size << " " << direction;
            // A line that begins in the contact.
            EXPECT_EQ(meet(AcDbLine({contact.x, contact.y, 0}, ahead), left).length(), 1)
                << size << " " << direction;
        }
    }
}

TEST_F(IntersectTest, EndlessLines) {
    const AcDbRay ray({0, 0, 0}, {1, 0, 0});
    const AcDbXline xline({3, 5, 0}, {0, 1, 0});
    const AcDbLine behind({-2, -1, 0}, {-2, 1, 0});
    EXPECT_EQ(text(meet(ray, xline)), "3,0,0");
    EXPECT_EQ(text(meet(ray, behind)), "");
    EXPECT_EQ(text(meet(ray, behind, AcDb::kExtendThis)), "-2,0,0");
    EXPECT_EQ(text(meet(xline, AcDbCircle({3, 0, 0}, AcGeVector3d::kZAxis, 2))), "3,-2,0 3,2,0");
    EXPECT_EQ(text(meet(ray, AcDbXline({9, 0, 0}, {1, 0, 0}))), "0,0,0");
    EXPECT_EQ(text(meet(ray, AcDbRay({4, 0, 0}, {-1, 0, 0}))), "0,0,0 4,0,0");
}

TEST_F(IntersectTest, PolylinesMeetSegmentBySegmentInTheirOwnOrder) {
    AcDbPolyline zigzag;
    const AcGePoint2d corners[] = {{0, 0}, {2, 2}, {4, 0}, {6, 2}, {8, 0}};
    for (const AcGePoint2d& corner : corners)
        zigzag.addVertexAt(zigzag.numVerts(), corner);
    const AcDbLine across({9, 1, 0}, {-1, 1, 0});
    EXPECT_EQ(text(meet(zigzag, across)), "1,1,0 3,1,0 5,1,0 7,1,0");
    EXPECT_EQ(text(meet(across, zigzag)), "7,1,0 5,1,0 3,1,0 1,1,0");
    // In a vertex once.
    EXPECT_EQ(text(meet(zigzag, AcDbLine({2, -5, 0}, {2, 5, 0}))), "2,2,0");
    EXPECT_EQ(text(meet(zigzag, AcDbLine({-3, -5, 0}, {-3, 5, 0}))), "");
    EXPECT_EQ(text(meet(zigzag, AcDbLine({-3, -5, 0}, {-3, 5, 0}), AcDb::kExtendThis)), "-3,-3,0");
    zigzag.setBulgeAt(0, 1);
    zigzag.setElevation(2);
    EXPECT_EQ(text(meet(zigzag, AcDbLine({0, 1, 2}, {9, 1, 2}))), "2.4142,1,2 3,1,2 5,1,2 7,1,2");
}

TEST_F(IntersectTest, EllipsesAndSplinesMeetThroughTheGeometryLibrary) {
    const AcGeVector3d up = AcGeVector3d::kZAxis;
    const AcDbEllipse ellipse({0, 0, 0}, up, {5, 0, 0}, 0.4);
    EXPECT_EQ(text(meet(ellipse, AcDbLine({0, 0, 0}, {9, 0, 0}))), "5,0,0");
    EXPECT_EQ(text(meet(AcDbLine({-9, 2, 0}, {9, 2, 0}), ellipse)), "0,2,0");
    EXPECT_EQ(text(meet(AcDbXline({4, 0, 0}, {0, 1, 0}), ellipse)), "4,-1.2,0 4,1.2,0");
    if (model::geometryKernel() == nullptr) GTEST_SKIP() << "the geometry library is not built";
    EXPECT_EQ(meet(ellipse, AcDbEllipse({0, 0, 0}, up, {0, 5, 0}, 0.4)).length(), 4);
    EXPECT_EQ(text(meet(ellipse, AcDbCircle({7, 0, 0}, up, 2))), "5,0,0");
    EXPECT_EQ(text(meet(ellipse, AcDbCircle({0, 0, 0}, up, 2))), "0,2,0 0,-2,0");
    AcGePoint3dArray points;
    for (const P& point : {P(0, 0, 0), P(2, 3, 0), P(4, -3, 0), P(6, 0, 0)})
        points.append(point);
    const AcDbSpline spline(points);
    EXPECT_EQ(text(meet(spline, AcDbLine({-1, 0, 0}, {7, 0, 0}))), "0,0,0 3,0,0 6,0,0");
    EXPECT_EQ(text(meet(spline, AcDbXline({2, 0, 0}, {0, 0, 1}))), "");
    EXPECT_EQ(text(meet(spline, AcDbXline({2, 3, 0}, {0, 0, 1}))), "2,3,0");
    // Twisted ones, which meet in space where they go through the same point.
    points.append({9, 2, 5});
    const AcDbSpline lifted(points);
    AcGePoint3dArray others;
    for (const P& point : {P(4, -9, 1), P(6, 0, 0), P(4, 8, 7)})
        others.append(point);
    EXPECT_EQ(text(meet(lifted, AcDbSpline(others))), "6,0,0");
}

// Points of intersection lie on both curves, whichever is asked, and none is missed that samples
// show.
TEST_F(IntersectTest, RandomCurvesMeetOnBoth) {
    const bool kernel = model::geometryKernel() != nullptr;
    RandomCurves random(3);
    int found = 0;
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const int kindA = random.whole(0, RandomCurves::kBoundedKinds - 1);
        const int kindB = random.whole(0, RandomCurves::kBoundedKinds - 1);
        const CurvePtr a = random.makeFlat(kindA);
        const CurvePtr b = random.makeFlat(kindB);
        const auto beyond = [](int kind) { return kind == 3 || kind == 4; };
        if (!kernel && (beyond(kindA) || beyond(kindB))) continue;
        SCOPED_TRACE(std::string(RandomCurves::name(kindA)) + " with " + RandomCurves::name(kindB) +
                     " " + std::to_string(round));
        const AcGePoint3dArray points = meet(*a, *b);
        EXPECT_EQ(meet(*b, *a).length(), points.length());
        found += points.length();
        double before = -1;
        for (const P& point : points) {
            AcGePoint3d onA;
            AcGePoint3d onB;
            a->getClosestPointTo(point, onA);
            b->getClosestPointTo(point, onB);
            EXPECT_LT(onA.distanceTo(point), 1e-8);
            EXPECT_LT(onB.distanceTo(point), 1e-8);
            double distance = 0;
            EXPECT_EQ(a->getDistAtPoint(point, distance), Acad::eOk);
            if (kindA < 5) {
                EXPECT_GE(distance, before);
            }
            before = distance;
        }
        // Chords of one that lie on two sides of a straight line show a crossing.
        if (kindA == 0) {
            AcGePoint3d from;
            AcGePoint3d to;
            a->getStartPoint(from);
            a->getEndPoint(to);
            int crossings = 0;
            constexpr int kChords = 400;
            const double first = startParam(*b);
            const double step = (endParam(*b) - first) / kChords;
            for (int i = 0; i < kChords; ++i) {
                const P p = pointAt(*b, first + step * i);
                const P q = pointAt(*b, i + 1 == kChords ? endParam(*b) : first + step * (i + 1));
                const auto side = [](const P& s, const P& e, const P& x) {
                    return (e.x - s.x) * (x.y - s.y) - (e.y - s.y) * (x.x - s.x);
                };
                const bool crosses = side(from, to, p) * side(from, to, q) < 0 &&
                                     side(p, q, from) * side(p, q, to) < 0;
                crossings += crosses ? 1 : 0;
            }
            EXPECT_GE(points.length(), crossings);
        }
    }
    EXPECT_GT(found, 1000);
}

// Curves in space that are moved so that they go through one point meet there.
TEST_F(IntersectTest, CurvesThroughOnePointMeetThere) {
    RandomCurves random(43);
    int missed = 0;
    int pairs = 0;
    for (int kind = 0; kind < RandomCurves::kBoundedKinds; ++kind) {
        for (int other = 0; other < RandomCurves::kBoundedKinds; ++other) {
            for (int round = 0; round < 6; ++round) {
                const CurvePtr a = random.make(kind);
                const CurvePtr b = random.make(other);
                // Two splines in no plane are looked for by their pictures, where one may hide.
                if (!a->isPlanar() && !b->isPlanar() && kind == 4 && other == 4) continue;
                const auto somewhere = [&](const AcDbCurve& curve) {
                    const double from = startParam(curve);
                    return pointAt(curve, from + (endParam(curve) - from) * random.real(0.1, 0.9));
                };
                const AcGePoint3d point = somewhere(*a);
                b->transformBy(AcGeMatrix3d::translation(point - somewhere(*b)));
                double nearest = 1e9;
                for (const AcGePoint3d& meeting : meet(*a, *b))
                    nearest = std::min(nearest, meeting.distanceTo(point));
                ++pairs;
                if (nearest > 1e-5) {
                    ++missed;
                    ADD_FAILURE() << RandomCurves::name(kind) << " and "
                                  << RandomCurves::name(other) << " miss by " << nearest;
                }
            }
        }
    }
    EXPECT_EQ(missed, 0) << "of " << pairs;
}

}  // namespace
}  // namespace sg::test

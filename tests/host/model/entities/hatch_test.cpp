#include "host/model/entities/hatch.h"

#include <cmath>
#include <numbers>
#include <random>

#include "host/model/curves/math/shape.h"
#include "host/model/model_fixture.h"
#include "platform/db/line.h"

namespace sg::test {
namespace {

using model::HatchArea;
using model::HatchEdge;
using model::HatchLine;
using model::HatchLoop;
using model::HatchStyle;

constexpr double kPi = std::numbers::pi;

HatchLoop polyline(std::vector<HatchLoop::Vertex> vertices) {
    HatchLoop loop;
    loop.type = HatchLoop::kPolyline;
    loop.vertices = std::move(vertices);
    return loop;
}

HatchLoop square(double half) {
    return polyline(
        {{{-half, -half}, 0}, {{half, -half}, 0}, {{half, half}, 0}, {{-half, half}, 0}});
}

HatchEdge line(const AcGePoint2d& from, const AcGePoint2d& to) {
    HatchEdge edge;
    edge.start = from;
    edge.end = to;
    return edge;
}

HatchEdge ellipse(const AcGePoint2d& center, const AcGeVector2d& major, double ratio, double first,
                  double last, bool counterClockwise = true) {
    HatchEdge edge;
    edge.kind = ratio == 1 ? HatchEdge::Kind::Arc : HatchEdge::Kind::Ellipse;
    edge.center = center;
    edge.major = major;
    edge.ratio = ratio;
    edge.first = first;
    edge.last = last;
    edge.counterClockwise = counterClockwise;
    return edge;
}

HatchLoop edges(std::vector<HatchEdge> list) {
    HatchLoop loop;
    loop.edges = std::move(list);
    return loop;
}

double lengthOf(const std::vector<model::Dash>& dashes) {
    double sum = 0;
    for (const model::Dash& dash : dashes)
        sum += dash.from.distanceTo(dash.to);
    return sum;
}

HatchLine lines(double angle, double spacing) {
    return model::plainPattern(angle, spacing, false).front();
}

// The area as thin lines measure it.
double areaOf(const std::vector<HatchLoop>& loops, HatchStyle style, double angle = 0.3) {
    const auto dashes = HatchArea(loops, style).dashes(lines(angle, 1e-3), 10000000);
    EXPECT_TRUE(dashes.has_value());
    return dashes ? lengthOf(*dashes) * 1e-3 : 0;
}

TEST(HatchAreaTest, LinesCoverWhatTheLoopsBound) {
    const double half = kPi;
    const double quarter = kPi / 2;
    struct Case {
        const char* name;
        HatchLoop loop;
        double area;
    };
    model::Nurbs flat;
    flat.degree = 1;
    flat.knots = {0, 0, 1, 2, 3, 3};
    flat.controls = {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}};
    HatchEdge spline;
    spline.kind = HatchEdge::Kind::Spline;
    spline.spline = flat;
    const Case cases[] = {
        {"square", square(2), 16},
        {"circle of two bulges", polyline({{{-1, 0}, 1}, {{1, 0}, 1}}), kPi},
        {"lens", polyline({{{-1, 0}, std::tan(kPi / 8)}, {{1, 0}, std::tan(kPi / 8)}}), kPi - 2},
        {"circle", edges({ellipse({1, 1}, {2, 0}, 1, 0, 2 * kPi)}), 4 * kPi},
        {"clockwise circle", edges({ellipse({1, 1}, {2, 0}, 1, 0, 2 * kPi, false)}), 4 * kPi},
        {"turned ellipse", edges({ellipse({0, 0}, {1, 2}, 0.5, 1, 1)}), 2.5 * kPi},
        {"half disc", edges({ellipse({0, 0}, {2, 0}, 1, 0, half), line({-2, 0}, {2, 0})}), 2 * kPi},
        {"clockwise half", edges({ellipse({0, 0}, {2, 0}, 1, half, 2 * kPi, false)}), 2 * kPi},
        {"quarter, closed by itself",
         edges({line({0, 0}, {2, 0}), ellipse({0, 0}, {2, 0}, 1, 0, quarter)}), kPi},
        {"spline, closed by itself", edges({spline}), 12},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        for (const double angle : {0.0, 0.3, quarter})
            EXPECT_NEAR(areaOf({each.loop}, HatchStyle::Normal, angle), each.area, 0.02);
    }
}

TEST(HatchAreaTest, StylesChooseAmongIslands) {
    const std::vector<HatchLoop> nested = {square(1), square(5), square(3)};  // in any order
    EXPECT_NEAR(areaOf(nested, HatchStyle::Normal), 100 - 36 + 4, 0.1);
    EXPECT_NEAR(areaOf(nested, HatchStyle::Outer), 100 - 36, 0.1);
    EXPECT_NEAR(areaOf(nested, HatchStyle::Ignore), 100, 0.1);
    HatchLoop beside = square(1);
    for (HatchLoop::Vertex& vertex : beside.vertices)
        vertex.point.x += 10;
    for (const HatchStyle style : {HatchStyle::Normal, HatchStyle::Outer, HatchStyle::Ignore})
        EXPECT_NEAR(areaOf({square(2), beside}, style), 20, 0.1);
}

// Lines through corners, along edges and on tops of arcs.
TEST(HatchAreaTest, LinesThroughCornersAreCutOnce) {
    const auto along = HatchArea({square(2)}, HatchStyle::Normal).dashes(lines(0, 1), 100);
    ASSERT_TRUE(along.has_value());
    EXPECT_EQ(along->size(), 4u);  // of the two that run along an edge, one
    EXPECT_DOUBLE_EQ(lengthOf(*along), 16);

    const HatchLine slanted = lines(kPi / 4, std::sqrt(0.5));
    const auto across = HatchArea({square(2)}, HatchStyle::Normal).dashes(slanted, 100);
    ASSERT_TRUE(across.has_value());
    EXPECT_EQ(across->size(), 7u);  // the diagonal and three on each side
    EXPECT_NEAR(lengthOf(*across), 16 * std::sqrt(2), 1e-9);

    const HatchLoop round = edges({ellipse({0, 0}, {2, 0}, 1, 0, 2 * kPi)});
    const auto touching = HatchArea({round}, HatchStyle::Normal).dashes(lines(0, 1), 100);
    ASSERT_TRUE(touching.has_value());
    EXPECT_EQ(touching->size(), 3u);
    EXPECT_NEAR(lengthOf(*touching), 4 + 4 * std::sqrt(3), 1e-9);
}

TEST(HatchAreaTest, DashesKeepTheirPhase) {
    HatchLine dashed = lines(0, 1);
    dashed.base = {0.25, 0};
    dashed.offset = {0.5, 1};
    dashed.dashes = {1, -0.5, 0, -0.5};
    const HatchLoop box = polyline({{{0, -0.5}, 0}, {{4, -0.5}, 0}, {{4, 1.5}, 0}, {{0, 1.5}, 0}});
    const auto dashes = HatchArea({box}, HatchStyle::Normal).dashes(dashed, 100);
    ASSERT_TRUE(dashes.has_value());
    std::string text;
    for (const model::Dash& dash : *dashes) {
        char part[80];
        std::snprintf(part, sizeof part, "%g,%g-%g ", dash.from.y, dash.from.x, dash.to.x);
        text += part;
    }
    EXPECT_EQ(text,
              "0,0.25-1.25 0,1.75-1.75 0,2.25-3.25 0,3.75-3.75 "
              "1,0.25-0.25 1,0.75-1.75 1,2.25-2.25 1,2.75-3.75 ");
}

TEST(HatchAreaTest, RefusesWhatCannotBeDrawn) {
    const HatchArea area({square(100)}, HatchStyle::Normal);
    HatchLine still = lines(0, 1);
    still.offset = {1, 0};
    HatchLine empty = lines(0, 1);
    empty.dashes = {0, 0};
    HatchLine fine = lines(0, 1);
    fine.dashes = {1e-6, -1e-6};
    EXPECT_FALSE(area.dashes(still, 1000));
    EXPECT_FALSE(area.dashes(empty, 1000));
    EXPECT_FALSE(area.dashes(fine, 1000000));
    EXPECT_FALSE(area.dashes(lines(0, 1e-9), 1000000));
    EXPECT_FALSE(area.dashes(lines(0, std::numeric_limits<double>::quiet_NaN()), 1000));
    EXPECT_TRUE(area.dashes(lines(0, 1), 1000));
}

TEST(HatchPatternTest, PredefinedOnesTurnAndScale) {
    const auto found = model::predefinedPattern(L"Ansi38", kPi / 2, 2, false);
    ASSERT_TRUE(found && found->size() == 2);
    const HatchLine& second = found->back();
    EXPECT_NEAR(second.angle, 225 * kPi / 180, 1e-12);
    EXPECT_NEAR(second.offset.x, 0.25 * std::sqrt(2) * (-2 + 1) / 2, 1e-12);
    EXPECT_NEAR(second.offset.y, 0.25 * std::sqrt(2) * (-2 - 1) / 2, 1e-12);
    EXPECT_EQ(second.dashes, (std::vector<double>{0.625, -0.375}));
    EXPECT_NEAR(model::predefinedPattern(L"LINE", 0, 1, true)->front().offset.y, 3.175, 1e-12);
    EXPECT_FALSE(model::predefinedPattern(L"no such", 0, 1, false));
}

class HatchTest : public ModelTest {
  protected:
    static std::unique_ptr<AcDbHatch> hatch(HatchLoop loop) {
        auto made = std::make_unique<AcDbHatch>();
        EXPECT_EQ(made->setPattern(AcDbHatch::kPreDefined, L"ANSI38", 0.2, 3), Acad::eOk);
        EXPECT_EQ(made->appendLoop(std::move(loop)), Acad::eOk);
        return made;
    }
    static std::vector<AcGePoint3d> ends(const AcDbHatch& hatch) {
        std::vector<AcGePoint3d> points;
        const auto lines = hatch.shownLines();
        EXPECT_TRUE(lines.has_value());
        if (!lines) return points;
        for (const auto& [from, to] : *lines)
            points.insert(points.end(), {from, to});
        return points;
    }
    static double distanceTo(const AcGePoint3d& point, const std::vector<AcGePoint3d>& points) {
        double least = 1e20;
        for (const AcGePoint3d& each : points)
            least = std::min(least, point.distanceTo(each));
        return least;
    }
};

// The pattern goes along with whatever a transform does to the plane.
TEST_F(HatchTest, TransformsTakeTheLinesAlong) {
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> any(-2, 2);
    const auto vector = [&] { return AcGeVector3d(any(engine), any(engine), any(engine)); };
    model::Nurbs curve;
    curve.degree = 2;
    curve.knots = {0, 0, 0, 1, 1, 1};
    curve.controls = {{4, 0, 0}, {5, 4, 0}, {0, 4, 0}};
    HatchEdge spline;
    spline.kind = HatchEdge::Kind::Spline;
    spline.spline = curve;
    const HatchLoop shapes[] = {
        polyline({{{0, 0}, 0.4}, {{5, 0}, -0.2}, {{4, 5}, 1}}),
        edges({line({0, 0}, {4, 0}), spline, line({0, 4}, {0, 0})}),
        edges({ellipse({1, 1}, {2, 3}, 0.4, 0.5, 3, false)}),
        edges({ellipse({1, 1}, {3, 0}, 1, 1, 5)}),
    };
    for (int round = 0; round < 40; ++round) {
        const auto original = hatch(shapes[round % 4]);
        original->setElevation(any(engine));
        original->setNormal(round % 3 == 0 ? AcGeVector3d::kZAxis : vector());
        AcGeMatrix3d change;
        change.setCoordSystem({any(engine), any(engine), any(engine)}, vector(), vector(),
                              vector());
        AcDbEntity* copy = nullptr;
        ASSERT_EQ(original->getTransformedCopy(change, copy), Acad::eOk);
        const std::unique_ptr<AcDbHatch> moved(AcDbHatch::cast(copy));
        const std::vector<AcGePoint3d> before = ends(*original);
        const std::vector<AcGePoint3d> after = ends(*moved);
        ASSERT_GT(before.size(), 10u);
        EXPECT_NEAR(static_cast<double>(before.size()), static_cast<double>(after.size()), 2);
        size_t astray = 0;  // a dash that ends in a corner may come or go
        for (const AcGePoint3d& point : before)
            astray += distanceTo(change * point, after) > 1e-6 ? 1 : 0;
        EXPECT_LE(astray, 2u);
    }
}

TEST_F(HatchTest, ExplodesIntoItsLines) {
    const auto filled = hatch(square(3));
    AcDbVoidPtrArray parts;
    ASSERT_EQ(filled->explode(parts), Acad::eOk);
    EXPECT_EQ(static_cast<size_t>(parts.length()), filled->shownLines()->size());
    for (void* const part : parts) {
        const std::unique_ptr<AcDbEntity> entity(static_cast<AcDbEntity*>(part));
        EXPECT_NE(AcDbLine::cast(entity.get()), nullptr);
    }
    ASSERT_EQ(filled->setPattern(AcDbHatch::kPreDefined, L"SOLID"), Acad::eOk);
    EXPECT_EQ(filled->explode(parts), Acad::eCannotExplodeEntity);
    EXPECT_EQ(filled->setPattern(AcDbHatch::kPreDefined, L"none such"), Acad::eInvalidInput);
    EXPECT_EQ(filled->appendLoop(HatchLoop()), Acad::eDegenerateGeometry);
}

}  // namespace
}  // namespace sg::test

#include "companion/prism_facets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>

#include "companion/shape/section.h"

namespace {

using namespace sg::companion;

Section sectionOf(double width, double height, bool isRectangular) {
    return {{3, -2, 5}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, width, height, isRectangular};
}

Steps prism(const Section& section, const AcGeVector3d& along) {
    return {{AddBody{Extrusion{{section.outline()}, along}}}};
}

// Six times the volume inside, below 0 when the faces look inwards; nothing unless each edge is
// gone along once in each direction.
std::optional<double> volumeOf(const Facets& facets) {
    std::map<std::pair<int32_t, int32_t>, int> uses;
    double sum = 0;
    for (size_t at = 0; at < facets.faces.size();) {
        const auto count = static_cast<size_t>(facets.faces[at++]);
        const auto corner = [&](size_t i) { return facets.faces[at + i % count]; };
        const auto place = [&](size_t i) {
            return facets.points[static_cast<size_t>(corner(i))].asVector();
        };
        for (size_t i = 0; i < count; ++i)
            ++uses[{corner(i), corner(i + 1)}];
        for (size_t i = 1; i + 1 < count; ++i)
            sum += place(0).dotProduct(place(i).crossProduct(place(i + 1)));
        at += count;
    }
    for (const auto& [edge, count] : uses) {
        if (count != 1 || !uses.contains({edge.second, edge.first})) return std::nullopt;
    }
    return sum / 6;
}

struct Case {
    const char* name;
    Section section;
    AcGeVector3d along;
    size_t edges, smoothEdges, faces;
};
const Case cases[] = {
    {"rectangular", sectionOf(4, 3, true), {10, 0, 0}, 12, 0, 6},
    {"rectangular, the other way", sectionOf(4, 3, true), {-10, 0, 0}, 12, 0, 6},
    {"round", sectionOf(4, 4, false), {10, 0, 0}, 8, 4, 6},
    {"flat oval", sectionOf(6, 4, false), {10, 0, 0}, 12, 6, 8},
    {"oblique", sectionOf(4, 4, false), {10, 5, -3}, 8, 4, 6},
    {"very thin", sectionOf(4, 4, false), {0.001, 0, 0}, 8, 4, 6},
    {"very long", sectionOf(0.04, 0.04, false), {1000, 0, 0}, 8, 4, 6},
};

TEST(PrismFacets, AreClosedLookOutwardsAndHaveTheirEdges) {
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const auto facets = prismFacets(prism(each.section, each.along));
        ASSERT_NE(facets, nullptr);
        const double volume = each.section.area() * std::abs(each.along.x);
        const auto found = volumeOf(*facets);
        ASSERT_TRUE(found.has_value());
        EXPECT_LE(*found, volume * (1 + 1e-9));
        EXPECT_GT(*found, volume * 0.97);
        EXPECT_EQ(facets->edges.size(), each.edges);
        EXPECT_EQ(facets->smoothEdges.size(), each.smoothEdges);
        EXPECT_EQ(facets->starts.size(), each.faces);
    }
}

TEST(PrismFacets, AreAsTheKernelHasThem) {
    const SolidKernel* const kernel = solidKernel();
    ASSERT_NE(kernel, nullptr);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Steps steps = prism(each.section, each.along);
        const auto facets = prismFacets(steps);
        const ShapePtr shape = kernel->apply(nullptr, steps.front(), false);
        ASSERT_NE(shape, nullptr);
        Facets others;
        ASSERT_TRUE(kernel->facets(*shape, Polygons::whole, others));
        EXPECT_EQ(facets->edges.size(), others.edges.size());
        EXPECT_EQ(facets->smoothEdges.size(), others.smoothEdges.size());
        EXPECT_EQ(facets->starts.size(), others.starts.size());
        const double size = (others.extents.maxPoint() - others.extents.minPoint()).length();
        EXPECT_LT(facets->extents.minPoint().distanceTo(others.extents.minPoint()), 2e-3 * size);
        EXPECT_LT(facets->extents.maxPoint().distanceTo(others.extents.maxPoint()), 2e-3 * size);
    }
}

TEST(PrismFacets, AreNothingForOtherBodies) {
    const Extrusion straight{{sectionOf(4, 3, true).outline()}, {10, 0, 0}};
    Extrusion hollow = straight;
    hollow.outlines.push_back(sectionOf(2, 1, true).outline());
    Extrusion flat = straight;
    flat.along = {0, 1, 0};
    Extrusion line = straight;
    line.outlines = {{{{0, 0, 0}, false, {}}, {{0, 1, 0}, false, {}}}};
    const struct {
        const char* name;
        Steps steps;
    } others[] = {
        {"nothing", {}},
        {"two bodies", {{AddBody{straight}}, {AddBody{straight}}}},
        {"something cut off", {{AddBody{straight}}, {SliceLast{{5, 0, 0}, {1, 0, 0}}}}},
        {"only cut", {{CutBody{straight}}}},
        {"a hole", {{AddBody{hollow}}}},
        {"moved within its plane", {{AddBody{flat}}}},
        {"no area", {{AddBody{line}}}},
        {"turned", {{AddBody{Revolution{straight.outlines, {0, 0, 0}, {0, 0, 1}, 1}}}}},
    };
    for (const auto& each : others)
        EXPECT_EQ(prismFacets(each.steps), nullptr) << each.name;
}

}  // namespace

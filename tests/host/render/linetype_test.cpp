#include "host/render/linetype.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/render/clipping.h"
#include "host/render/projection.h"

namespace sg::test {
namespace {

using render::LaidPattern;
using render::Linetype;
using render::PixelBox;

using Dashes = std::vector<std::pair<double, double>>;

Linetype linetype(const std::vector<double>& lengths) {
    Linetype result;
    for (const double length : lengths) {
        result.elements.emplace_back().length = length;
        result.length += std::abs(length);
    }
    return result;
}

Dashes laid(const std::vector<double>& lengths, double length, bool isClosed = false,
            double from = 0, double to = -1, double scale = 1) {
    const Linetype pattern = linetype(lengths);
    Dashes dashes;
    LaidPattern(pattern, scale, length, isClosed)
        .visit(
            from, to < 0 ? length : to,
            [&](double a, double b) {
                // Dashes that touch are one.
                if (!dashes.empty() && a != b && std::abs(dashes.back().second - a) < 1e-9) {
                    dashes.back().second = b;
                } else {
                    dashes.emplace_back(a, b);
                }
            },
            [](const Linetype::Element&, double) {});
    return dashes;
}

void expectDashes(const Dashes& actual, const Dashes& expected, const char* what) {
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (size_t i = 0; i < actual.size(); ++i) {
        EXPECT_NEAR(actual[i].first, expected[i].first, 1e-9) << what << ", dash " << i;
        EXPECT_NEAR(actual[i].second, expected[i].second, 1e-9) << what << ", dash " << i;
    }
}

TEST(LaidPatternTest, LinesBeginAndEndInADash) {
    struct Case {
        const char* what;
        std::vector<double> pattern;
        double length;
        Dashes dashes;
    };
    const Case cases[] = {
        {"ends share what is over", {2, -1}, 8, {{0, 2}, {3, 5}, {6, 8}}},
        {"ends grow up to a pattern more", {2, -1}, 8.9, {{0, 2.45}, {3.45, 5.45}, {6.45, 8.9}}},
        {"a whole number of patterns has half a dash at either end",
         {2, -1},
         9,
         {{0, 1}, {2, 4}, {5, 7}, {8, 9}}},
        {"one pattern", {2, -1}, 3, {{0, 1}, {2, 3}}},
        {"no room for one", {2, -1}, 2.9, {{0, 2.9}}},
        {"a dot within", {2, -1, 0, -1}, 10, {{0, 2}, {3, 3}, {4, 6}, {7, 7}, {8, 10}}},
        {"dots alone are in the middle", {0, -2}, 5, {{0.5, 0.5}, {2.5, 2.5}, {4.5, 4.5}}},
        {"no gap", {2}, 5, {{0, 5}}},
    };
    for (const Case& each : cases)
        expectDashes(laid(each.pattern, each.length), each.dashes, each.what);
}

TEST(LaidPatternTest, ClosedLinesComeOutEven) {
    const Dashes dashes = laid({2, -2}, 9, true);  // two patterns of 4.5
    expectDashes(dashes, {{0, 1.125}, {3.375, 5.625}, {7.875, 9}}, "stretched");
}

TEST(LaidPatternTest, PartsHaveTheDashesOfTheWhole) {
    const std::vector<double> pattern = {3, -1, 0.5, -1};
    const Dashes whole = laid(pattern, 40);
    Dashes parts;
    for (int i = 0; i < 80; ++i) {
        for (const auto& [a, b] : laid(pattern, 40, false, i * 0.5, i * 0.5 + 0.5)) {
            if (!parts.empty() && std::abs(parts.back().second - a) < 1e-9) {
                parts.back().second = b;
            } else {
                parts.emplace_back(a, b);
            }
        }
    }
    expectDashes(parts, whole, "in parts");
}

TEST(LaidPatternTest, FarPartsOfLongLinesAreFoundAtOnce) {
    const Dashes dashes = laid({2, -1}, 3e12, false, 1.5e12, 1.5e12 + 30);
    EXPECT_NEAR(static_cast<double>(dashes.size()), 10, 1);
}

TEST(ClippingTest, LinesAndAreasAreCut) {
    const PixelBox box{0, 0, 10, 10};
    double from = 0;
    double to = 0;
    EXPECT_TRUE(box.clipLine({-10, 5}, {30, 5}, from, to));
    EXPECT_DOUBLE_EQ(from, 0.25);
    EXPECT_DOUBLE_EQ(to, 0.5);
    EXPECT_FALSE(box.clipLine({-3, 8}, {3, 14}, from, to));
    EXPECT_TRUE(box.clipEndless({5, 5}, {6, 5}, false, from, to));
    EXPECT_DOUBLE_EQ(from, 0);
    EXPECT_DOUBLE_EQ(to, 5);
    EXPECT_TRUE(box.clipEndless({50, 5}, {49, 5}, true, from, to));
    EXPECT_DOUBLE_EQ(from, 40);
    EXPECT_FALSE(box.clipEndless({50, 5}, {51, 5}, false, from, to));
    const std::vector<AcGePoint2d> square = {{5, 5}, {50, 5}, {50, 50}, {5, 50}};
    const PixelBox cut = render::boxOf(box.clipArea(square));
    EXPECT_DOUBLE_EQ(cut.left, 5);
    EXPECT_DOUBLE_EQ(cut.right, 10);
    EXPECT_DOUBLE_EQ(cut.bottom, 10);
    EXPECT_TRUE(box.clipArea(std::vector<AcGePoint2d>{{11, 0}, {20, 0}, {20, 5}}).empty());
}

TEST(ProjectionTest, ViewsSeeTheAxesWhereTheyBelong) {
    struct Case {
        const char* what;
        AcGeVector3d eye;
        double twist;
        AcGePoint3d world;
        AcGePoint2d seen;
    };
    const double half = std::sqrt(0.5);
    const Case cases[] = {
        {"top", {0, 0, 1}, 0, {3, 4, 5}, {3, 4}},
        {"bottom", {0, 0, -1}, 0, {3, 4, 5}, {-3, 4}},
        {"front", {0, -1, 0}, 0, {3, 4, 5}, {3, 5}},
        {"right", {1, 0, 0}, 0, {3, 4, 5}, {4, 5}},
        {"turned", {0, 0, 1}, std::acos(0.0), {3, 4, 5}, {-4, 3}},
        {"isometric x", {-1, -1, 1}, 0, {1, 0, 0}, {half, std::sqrt(1 / 6.0)}},
        {"isometric z", {-1, -1, 1}, 0, {0, 0, 1}, {0, std::sqrt(2 / 3.0)}},
    };
    for (const Case& each : cases) {
        const AcGePoint3d seen = render::worldToView(each.eye, {}, each.twist) * each.world;
        EXPECT_NEAR(seen.x, each.seen.x, 1e-12) << each.what;
        EXPECT_NEAR(seen.y, each.seen.y, 1e-12) << each.what;
    }
    const render::Projection projection(render::worldToView({0, 0, 1}, {10, 0, 0}), 2, {5, 5},
                                        {100, 50});
    EXPECT_NEAR(projection.at({15, 5, 9}).x, 100, 1e-12);
    EXPECT_NEAR(projection.at({15, 5, 9}).y, 50, 1e-12);
    EXPECT_NEAR(projection.at({15, 6, 9}).y, 48, 1e-12);
}

}  // namespace
}  // namespace sg::test

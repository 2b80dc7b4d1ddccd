#include <random>

#include "host/render/depth_order.h"
#include "host/render/render_fixture.h"

namespace sg::test {
namespace {

// ---- The order of painting ----------------------------------------------------------------------

constexpr double kSize = 100;

// Where a sight line from a place of the picture meets a triangle; nothing beside it.
std::optional<double> depthAt(std::span<const AcGePoint3d> corners, double x, double y) {
    const AcGePoint3d& a = corners[0];
    const AcGeVector3d u = corners[1] - a;
    const AcGeVector3d v = corners[2] - a;
    const double area = u.x * v.y - u.y * v.x;
    const double s = ((x - a.x) * v.y - (y - a.y) * v.x) / area;
    const double t = (u.x * (y - a.y) - u.y * (x - a.x)) / area;
    if (s < 0 || t < 0 || s + t > 1) return std::nullopt;
    return a.z + s * u.z + t * v.z;
}

// Whether a place lies within a convex part, seen from above.
bool covers(const render::DepthItem& part, double x, double y) {
    bool isLeft = true;
    bool isRight = true;
    for (size_t i = 0; i < part.points.size(); ++i) {
        const AcGePoint3d& p = part.points[i];
        const AcGePoint3d& q = part.points[(i + 1) % part.points.size()];
        const double side = (q.x - p.x) * (y - p.y) - (q.y - p.y) * (x - p.x);
        isLeft = isLeft && side >= 0;
        isRight = isRight && side <= 0;
    }
    return isLeft || isRight;
}

// Triangles through each other, as they come: what is painted last at a place is what is nearest.
TEST(DepthOrder, TheNearestIsPaintedLast) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0, kSize);
    std::vector<std::vector<AcGePoint3d>> triangles;
    std::vector<render::DepthItem> items;
    for (uint32_t i = 0; i < 40; ++i) {
        std::vector<AcGePoint3d> corners;
        for (int corner = 0; corner < 3; ++corner)
            corners.emplace_back(place(random), place(random), place(random));
        const AcGeVector3d normal =
            (corners[1] - corners[0]).crossProduct(corners[2] - corners[0]).normal();
        items.push_back({i, false, corners, {3}, normal});
        triangles.push_back(corners);
    }
    std::vector<render::DepthItem> painted;
    render::drawFromBehind(items, AcGeVector3d::kZAxis,
                           [&](const render::DepthItem& part) { painted.push_back(part); });
    int looked = 0;
    for (int i = 0; i < 3000; ++i) {
        const double x = place(random);
        const double y = place(random);
        double nearest = -1;
        for (const auto& triangle : triangles)
            nearest = std::max(nearest, depthAt(triangle, x, y).value_or(-1));
        double shown = -1;
        for (const render::DepthItem& part : painted) {
            if (covers(part, x, y)) shown = depthAt(triangles[part.source], x, y).value_or(shown);
        }
        looked += nearest >= 0 ? 1 : 0;
        EXPECT_NEAR(shown, nearest, 1e-6);
    }
    EXPECT_GT(looked, 1000);
}

// An edge of a face comes behind it, a line that goes through it half before and half behind.
TEST(DepthOrder, LinesComeInTheirPlaces) {
    const render::DepthItem face = {
        0, false, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {4}, AcGeVector3d::kZAxis};
    const render::DepthItem edge = {1, true, {{0, 0, 0}, {10, 0, 0}}, {}, {}};
    const render::DepthItem through = {2, true, {{5, 5, -3}, {5, 5, 6}}, {}, {}};
    std::vector<uint32_t> order;
    std::vector<double> ends;
    render::drawFromBehind({edge, through, face}, AcGeVector3d::kZAxis,
                           [&](const render::DepthItem& part) {
                               order.push_back(part.source);
                               if (part.source == 2) ends.push_back(part.points.back().z);
                           });
    EXPECT_EQ(order, (std::vector<uint32_t>{2, 0, 1, 2}));
    EXPECT_EQ(ends, (std::vector<double>{0, 6}));
}

// ---- Pictures -----------------------------------------------------------------------------------

class ShadingTest : public RenderTest {
  protected:
    // A face that stands in the way of who looks from the front, at this distance from the origin.
    void wall(double y, double left, double right, const std::string& color) {
        const auto corner = [&](int group, double x, double z) {
            return "(" + std::to_string(group) + " " + std::to_string(x) + " " + std::to_string(y) +
                   " " + std::to_string(z) + ")";
        };
        draw("(entmake '((0 . \"3DFACE\") (62 . " + color + ") " + corner(10, left, 20) +
             corner(11, right, 20) + corner(12, right, 120) + corner(13, left, 120) + "))");
    }
    // A line up, at a place of the picture from the front.
    void pole(double x, double y) {
        draw("(entmake '((0 . \"LINE\") (62 . 1) (370 . 100) (10 " + std::to_string(x) + " " +
             std::to_string(y) + " 10.0) (11 " + std::to_string(x) + " " + std::to_string(y) +
             " 140.0)))");
    }
};

TEST_F(ShadingTest, FacesHideWhatIsBehindThem) {
    options.view = render::View::front;
    wall(0, 50, 150, "3");
    pole(80, 5);
    pole(120, -5);
    paint();
    EXPECT_EQ(colorAt(120, 70), kRed);
    EXPECT_EQ(colorAt(80, 135), kRed) << "above the face";
    EXPECT_NE(colorAt(80, 70), kRed);
    EXPECT_TRUE(isInked(80, 70)) << "the face itself";
    EXPECT_FALSE(isInked(20, 70));
    // From above lines and faces come in the order of the drawing.
    options.view = render::View::top;
    EXPECT_NO_THROW(paint());
}

TEST_F(ShadingTest, NearFacesHideFarOnesWhateverTheirOrder) {
    options.view = render::View::front;
    wall(-10, 50, 110, "1");
    wall(10, 90, 150, "3");
    paint();
    const uint32_t near = colorAt(70, 70);
    EXPECT_EQ(colorAt(100, 70), near);
    EXPECT_NE(colorAt(130, 70), near);
}

}  // namespace
}  // namespace sg::test

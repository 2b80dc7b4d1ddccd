#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include "companion/companion_fixture.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;

// Fittings of all kinds with sizes and places that nobody has chosen. What can be built is valid
// when it is opened again, has a volume between the bounds of its kind, and ends where it says.
// What cannot be built leaves nothing.
class RandomFittingsTest : public CompanionTest {
  protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    bool chance(double share) { return between(0, 1) < share; }
    AcGeMatrix3d anyPlace() {
        return turnAndMove(between(0, 2 * kPi), {between(-1, 1), between(-1, 1), between(0.1, 1)},
                           {between(-1e4, 1e4), between(-1e4, 1e4), between(-100, 100)});
    }

    struct Size {
        bool isRectangular;
        double width, height;

        double area() const {
            const double r = isRectangular ? 0 : std::min(width, height) / 2;
            return width * height - (4 - kPi) * r * r;
        }
    };
    Size anySize() {
        const bool isRectangular = chance(0.5);
        const double width = std::exp(between(0, 4));
        const bool isRound = !isRectangular && chance(0.6);
        return {isRectangular, width, isRound ? width : std::exp(between(0, 4))};
    }

    // Builds a number of fittings; `one` answers whether it could, and has checked it then. At
    // least `least` of them have to succeed.
    void make(int count, double least, const std::function<bool(HvacSolid&)>& one) {
        int made = 0;
        for (int i = 0; i < count; ++i) {
            SCOPED_TRACE(i);
            const auto solid = newSolid();
            const bool isMade = one(*solid);
            made += isMade ? 1 : 0;
            EXPECT_EQ(solid->steps().empty(), !isMade);
            if (HasFailure()) return;
        }
        EXPECT_GE(made, count * least);
    }

    void expectBody(const HvacSolid& solid, double leastVolume, double mostVolume,
                    const std::vector<std::tuple<AcGePoint3d, AcGeVector3d, double>>& ends) {
        const ReadShape shape = shapeOf(solid);
        EXPECT_TRUE(shape.isValid);
        EXPECT_EQ(shape.solids, 1U);
        EXPECT_GE(shape.volume, leastVolume * (1 - 1e-3));
        EXPECT_LE(shape.volume, mostVolume * (1 + 1e-3));
        for (const auto& [center, outwards, area] : ends)
            EXPECT_TRUE(shape.hasEnd(center, outwards, area));
    }

    std::mt19937 random_{20170131};
};

// In line: between what both ends share and what holds both.
TEST_F(RandomFittingsTest, TransitionsInLine) {
    make(800, 1, [&](HvacSolid& solid) {
        const TestFrame frame(anyPlace());
        const Size a = anySize();
        const Size b = chance(0.3) ? a : anySize();
        const double length = std::exp(between(-1, 5));
        const AcGePoint3d head(between(-1e3, 1e3), between(-1e3, 1e3), between(-10, 10));
        const AcGePoint3d tail = head + frame.x() * length +
                                 (chance(0.5) ? frame.y() * between(-20, 20) : AcGeVector3d());
        if (!solid.addTransition(head, a.isRectangular, a.width, a.height, tail, b.isRectangular,
                                 b.width, b.height, frame.get(), frame.get(), 0)) {
            return false;
        }
        const double least = std::min(a.area(), b.area()) * length / 3;
        const double most = std::max(a.width, b.width) * std::max(a.height, b.height) * length;
        expectBody(solid, least, most, {{head, -frame.x(), a.area()}, {tail, frame.x(), b.area()}});
        return true;
    });
}

TEST_F(RandomFittingsTest, TransitionsThatTurnAndTwist) {
    make(500, 0.5, [&](HvacSolid& solid) {
        const AcGeMatrix3d place = anyPlace();
        const TestFrame from(place);
        const TestFrame to(place * AcGeMatrix3d::rotation(between(-1, 1), AcGeVector3d::kYAxis) *
                           AcGeMatrix3d::rotation(between(-kPi, kPi), AcGeVector3d::kXAxis));
        const Size a = anySize();
        const Size b = anySize();
        const double length = between(20, 120);
        const AcGePoint3d head = place * AcGePoint3d();
        const AcGePoint3d tail = head + from.x() * length;
        if (!solid.addTransition(head, a.isRectangular, a.width, a.height, tail, b.isRectangular,
                                 b.width, b.height, from.get(), to.get(), 0)) {
            return false;
        }
        const double reach = std::max({a.width, a.height, b.width, b.height});
        expectBody(solid, 0, 2 * reach * reach * (length + reach),
                   {{head, -from.x(), a.area()}, {tail, to.x(), b.area()}});
        return true;
    });
}

TEST_F(RandomFittingsTest, Elbows) {
    AModeler::Point3d a[8], b[8];
    AcGePoint3d c[8];
    int kind = 0;
    make(900, 0.95, [&](HvacSolid& solid) {
        const AcGeMatrix3d place = anyPlace();
        const double angle = between(0.03, 2.5);
        const AcGeMatrix3d roll =
            AcGeMatrix3d::rotation(chance(0.5) ? 0 : between(-kPi, kPi), AcGeVector3d::kXAxis);
        const TestFrame in(place * roll);
        const TestFrame out(place * AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis) * roll);
        const Size s = anySize();
        const AcGePoint3d corner = place * AcGePoint3d();
        AcGePoint3d head = corner - in.x() * between(1, 100);
        AcGePoint3d tail = corner + out.x() * between(1, 100);
        double length = 0;
        double hole = 0;
        if (++kind % 2 == 0) {
            if (!solid.addSquareElbowPrep(head, s.width, s.height, tail, s.width, s.height,
                                          in.get(), out.get(), s.isRectangular, a, b, c, true, 3) ||
                !solid.addSquareElbow(head, s.width, s.height, tail, s.width, s.height, in.get(),
                                      out.get(), s.isRectangular, a, b, c, 0)) {
                return false;
            }
            length = head.distanceTo(corner) + tail.distanceTo(corner);
        } else {
            const double wall = chance(0.5) ? 0 : std::min(s.width, s.height) * between(0.01, 0.4);
            const Size inner = {s.isRectangular, s.width - 2 * wall, s.height - 2 * wall};
            if (!solid.addRadiusElbow(head, s.width, s.height, wall, 0, tail, s.width, s.height,
                                      in.get(), out.get(), s.isRectangular, between(0.501, 4), true,
                                      0, true)) {
                return false;
            }
            length = head.distanceTo(corner) / std::tan(angle / 2) * angle;
            hole = wall > 0 ? inner.area() : 0;
        }
        const double area = s.area() - hole;
        expectBody(solid, area * length, area * length,
                   {{head, -in.x(), area}, {tail, out.x(), area}});
        return true;
    });
}

TEST_F(RandomFittingsTest, Wyes) {
    AModeler::Point3d a[3][8];
    AcGePoint3d c[3][8];
    make(500, 0.6, [&](HvacSolid& solid) {
        const AcGeMatrix3d place = anyPlace();
        const double turns[] = {0, between(-2, 0.2), between(-0.2, 2)};
        Size sizes[3] = {anySize(), {}, {}};
        sizes[1] = sizes[2] = sizes[0];
        if (sizes[0].isRectangular) {
            sizes[1].width *= between(0.4, 1);
            sizes[2].width *= between(0.4, 1);
        }
        TestFrame frames[3];
        AcGePoint3d ends[3];
        AcGePoint3d junction = place * AcGePoint3d();
        for (int i = 0; i < 3; ++i) {
            frames[i] = TestFrame(place * AcGeMatrix3d::rotation(turns[i], AcGeVector3d::kZAxis));
            ends[i] = junction + frames[i].x() * (i == 0 ? -100.0 : 100.0);
        }
        const bool isRectangular = sizes[0].isRectangular;
        if (!solid.addWyePrep(ends[0], sizes[0].width, sizes[0].height, ends[1], sizes[1].width,
                              sizes[1].height, ends[2], sizes[2].width, sizes[2].height,
                              frames[0].axes, frames[1].axes, frames[2].axes, isRectangular, a[0],
                              a[1], a[2], c[0], c[1], c[2], true, 3)) {
            return false;
        }
        EXPECT_TRUE(solid.addWye(ends[0], sizes[0].width, sizes[0].height, ends[1], sizes[1].width,
                                 sizes[1].height, ends[2], sizes[2].width, sizes[2].height,
                                 junction, frames[0].get(), frames[1].get(), frames[2].get(),
                                 isRectangular, a[0], a[1], a[2], c[0], c[1], c[2], 0));
        if (solid.steps().empty()) return false;
        double legs = 0;
        double longest = 0;
        for (int i = 0; i < 3; ++i) {
            const double leg = sizes[i].area() * (ends[i].distanceTo(junction) + sizes[0].width);
            legs += leg;
            longest = std::max(longest, sizes[i].area() * 3);
        }
        expectBody(solid, longest, legs * 1.5,
                   {{ends[0], -frames[0].x(), sizes[0].area()},
                    {ends[1], frames[1].x(), sizes[1].area()},
                    {ends[2], frames[2].x(), sizes[2].area()}});
        return true;
    });
}

// Mains with branches that leave them slantwise, trimmed at the ends of the main, as one body.
TEST_F(RandomFittingsTest, Takeoffs) {
    make(150, 1, [&](HvacSolid& solid) {
        const AcGeMatrix3d place = anyPlace();
        const TestFrame main(place);
        const Size m = anySize();
        Size s = anySize();
        s.width = std::min(s.width, m.width) * 0.7;
        s.height = s.isRectangular ? std::min(s.height, m.height) * 0.7 : s.width;
        if (s.height > 0.7 * m.height) s = {s.isRectangular, 0.7 * m.height, 0.7 * m.height};
        const double angle = between(0.5, kPi - 0.5);
        const TestFrame branch(place * AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis));
        const double half = (m.width + s.width) / std::sin(angle) + 3;
        const AcGePoint3d foot = place * AcGePoint3d();
        const AcGePoint3d start = foot - main.x() * half;
        const AcGePoint3d end = foot + main.x() * half;
        const AcGePoint3d tip = foot + branch.x() * (m.width / std::sin(angle) + s.width + 3);
        EXPECT_TRUE(solid.addTransition(start, m.isRectangular, m.width, m.height, end,
                                        m.isRectangular, m.width, m.height, main.get(), main.get(),
                                        0));
        EXPECT_TRUE(solid.addTransition(foot, s.isRectangular, s.width, s.height, tip,
                                        s.isRectangular, s.width, s.height, branch.get(),
                                        branch.get(), 0));
        solid.sliceLast(end, end + main.y(), end + main.z(), start);
        const double mainVolume = m.area() * 2 * half;
        expectBody(solid, mainVolume, mainVolume + s.area() * tip.distanceTo(foot),
                   {{start, -main.x(), m.area()}, {end, main.x(), m.area()}});
        return true;
    });
}

}  // namespace
}  // namespace sg

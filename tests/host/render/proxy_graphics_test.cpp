#include "host/render/proxy_graphics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "host/model/core/measuring_draw.h"

namespace sg::test {
namespace {

// Writes lists of drawing calls.
class Calls {
  public:
    Calls& begin(int32_t kind) {
        end();
        start_ = bytes_.size();
        return whole(0).whole(kind);
    }
    Calls& whole(int32_t value) { return put(&value, sizeof(value)); }
    Calls& reals(std::initializer_list<double> values) {
        for (const double value : values)
            put(&value, sizeof(value));
        return *this;
    }
    Calls& text(std::string text) {
        text.resize(text.size() / 4 * 4 + 4);
        return put(text.data(), text.size());
    }
    std::string take() {
        end();
        const auto size = static_cast<int32_t>(bytes_.size() + 8);
        std::string head(8, '\0');
        std::memcpy(head.data(), &size, 4);
        return head + bytes_;
    }

  private:
    Calls& put(const void* data, size_t size) {
        bytes_.append(static_cast<const char*>(data), size);
        return *this;
    }
    void end() {
        if (start_ == std::string::npos) return;
        const auto size = static_cast<int32_t>(bytes_.size() - start_);
        std::memcpy(bytes_.data() + start_, &size, 4);
        start_ = std::string::npos;
    }

    std::string bytes_;
    size_t start_ = std::string::npos;
};

void expectBox(const std::string& list, const AcGePoint3d& low, const AcGePoint3d& high,
               const char* what) {
    model::MeasuringDraw draw;
    EXPECT_TRUE(render::playProxyGraphics(draw, list)) << what;
    EXPECT_LT(draw.extents().minPoint().distanceTo(low), 1e-9) << what;
    EXPECT_LT(draw.extents().maxPoint().distanceTo(high), 1e-9) << what;
}

TEST(ProxyGraphicsTest, CallsDraw) {
    expectBox(Calls().begin(6).whole(3).reals({0, 0, 0, 4, 0, 0, 4, 5, 0}).take(), {0, 0, 0},
              {4, 5, 0}, "a polyline");
    expectBox(Calls().begin(2).reals({1, 2, 3, 10, 0, 0, 1}).take(), {-9, -8, 3}, {11, 12, 3},
              "a circle");
    expectBox(Calls().begin(3).reals({5, 0, 0, 0, 5, 0, -5, 0, 0}).take(), {-5, -5, 0}, {5, 5, 0},
              "a circle of three points");
    expectBox(Calls().begin(5).reals({5, 0, 0, 0, 5, 0, -5, 0, 0}).whole(0).take(), {-5, 0, 0},
              {5, 5, 0}, "an arc of three points");
    expectBox(Calls().begin(5).reals({-5, 0, 0, 0, 5, 0, 5, 0, 0}).whole(0).take(), {-5, 0, 0},
              {5, 5, 0}, "an arc of three points the other way round");
    expectBox(
        Calls().begin(4).reals({0, 0, 0, 2, 0, 0, 1, 1, 0, 0, std::acos(0.0)}).whole(0).take(),
        {0, 0, 0}, {2, 2, 0}, "an arc");
    expectBox(Calls()
                  .begin(9)
                  .whole(4)
                  .reals({0, 0, 0, 3, 0, 0, 3, 3, 0, 0, 3, 7})
                  .whole(5)
                  .whole(4)
                  .whole(0)
                  .whole(1)
                  .whole(2)
                  .whole(3)
                  .take(),
              {0, 0, 0}, {3, 3, 7}, "a shell");
    expectBox(Calls()
                  .begin(29)
                  .reals({1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1})
                  .begin(7)
                  .whole(3)
                  .reals({0, 0, 0, 1, 0, 0, 0, 1, 0})
                  .begin(31)
                  .take(),
              {10, 20, 30}, {11, 21, 30}, "a transform");
    expectBox(Calls().begin(8).whole(2).whole(2).reals({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 2}).take(),
              {0, 0, 0}, {1, 1, 2}, "a mesh");
}

TEST(ProxyGraphicsTest, TextIsAsHighAsItSays) {
    model::MeasuringDraw draw;
    render::playProxyGraphics(
        draw, Calls().begin(10).reals({0, 0, 0, 0, 0, 1, 1, 0, 0, 10, 1, 0}).text("HHH").take());
    EXPECT_NEAR(draw.extents().maxPoint().y, 10, 0.01);
    EXPECT_GT(draw.extents().maxPoint().x, 10);
}

TEST(ProxyGraphicsTest, DamageEndsTheListAndHurtsNobody) {
    const std::string whole = Calls()
                                  .begin(30)
                                  .reals({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
                                  .begin(6)
                                  .whole(2)
                                  .reals({0, 0, 0, 4, 0, 0})
                                  .begin(9)
                                  .whole(1)
                                  .reals({0, 0, 0})
                                  .whole(2)
                                  .whole(9)
                                  .whole(7)
                                  .begin(36)
                                  .reals({0, 0, 0, 0, 0, 1, 1, 0, 0, 10, 1, 0})
                                  .text("H\0H\0")
                                  .take();
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 3; ++i)
            damaged[8 + random() % (damaged.size() - 8)] = static_cast<char>(random());
        damaged.resize(random() % (damaged.size() + 1));
        model::MeasuringDraw draw;
        render::playProxyGraphics(draw, damaged);
        EXPECT_TRUE(draw.geometry().getModelToWorldTransform().isEqualTo(AcGeMatrix3d()));
    }
}

}  // namespace
}  // namespace sg::test

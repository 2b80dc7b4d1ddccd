#include "host/editor/commands/fiber.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace sg {
namespace {

TEST(FiberTest, RunsInTurns) {
    std::vector<int> order;
    Fiber* self = nullptr;
    Fiber fiber([&] {
        for (int i = 0; i < 3; ++i) {
            order.push_back(i);
            self->suspend();
        }
    });
    self = &fiber;
    EXPECT_FALSE(fiber.isDone());
    for (int i = 10; !fiber.isDone(); ++i) {
        fiber.resume();
        order.push_back(i);
    }
    EXPECT_EQ(order, (std::vector<int>{0, 10, 1, 11, 2, 12, 13}));
}

TEST(FiberTest, AnExceptionComesOutOfResume) {
    Fiber* self = nullptr;
    Fiber fiber([&] {
        const std::string kept(100, 'x');  // has to be destroyed on the way
        self->suspend();
        try {
            throw std::runtime_error("inner");
        } catch (const std::exception&) {
        }
        throw std::runtime_error(kept);
    });
    self = &fiber;
    fiber.resume();
    EXPECT_THROW(fiber.resume(), std::runtime_error);
    EXPECT_TRUE(fiber.isDone());
}

TEST(FiberTest, SeveralAtOnceAndDeepInside) {
    struct Counter {
        explicit Counter(int depth) : depth(depth), fiber([this] { descend(this->depth); }) {}
        void descend(int levels) {
            volatile char room[2000] = {};
            if (levels == 0) {
                fiber.suspend();
            } else {
                descend(levels - 1);
            }
            sum += 1 + room[0];
        }
        int depth;
        int sum = 0;
        Fiber fiber;
    };
    Counter shallow(1), deep(1000);
    shallow.fiber.resume();
    deep.fiber.resume();
    shallow.fiber.resume();
    EXPECT_TRUE(shallow.fiber.isDone());
    EXPECT_FALSE(deep.fiber.isDone());
    deep.fiber.resume();
    EXPECT_EQ(deep.sum, 1001);
}

}  // namespace
}  // namespace sg

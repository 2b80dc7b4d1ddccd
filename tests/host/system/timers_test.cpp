#include "host/system/timers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sg {
namespace {

using std::chrono::milliseconds;

class TimersTest : public ::testing::Test {
  protected:
    TimersTest() {
        timers.setClock([this] { return now; });
    }
    uintptr_t set(int period, uintptr_t replaced = 0, const void* owner = nullptr) {
        return timers.set(replaced, milliseconds(period), owner,
                          [this](uintptr_t id, auto) { calls.push_back(id); });
    }
    std::vector<uintptr_t> callsAfter(int pause) {
        calls.clear();
        now += milliseconds(pause);
        timers.runDue();
        return calls;
    }

    Timers::Clock::time_point now{};
    Timers timers;
    std::vector<uintptr_t> calls;
};

using Ids = std::vector<uintptr_t>;

TEST_F(TimersTest, TheyCallAgainAndAgainButNotMoreOftenThanSomebodyLooks) {
    const uintptr_t fast = set(10);
    const uintptr_t slow = set(25);
    EXPECT_NE(fast, 0u);
    EXPECT_EQ(callsAfter(9), Ids{});
    EXPECT_EQ(callsAfter(1), Ids{fast});
    EXPECT_EQ(callsAfter(0), Ids{});
    EXPECT_EQ(callsAfter(100), (Ids{fast, slow}));
    EXPECT_EQ(callsAfter(9), Ids{});
    EXPECT_TRUE(timers.kill(fast));
    EXPECT_FALSE(timers.kill(fast));
    EXPECT_EQ(callsAfter(100), Ids{slow});
}

TEST_F(TimersTest, OneMayTakeThePlaceOfAnother) {
    const uintptr_t id = set(10);
    EXPECT_EQ(set(50, id), id);
    EXPECT_EQ(callsAfter(20), Ids{});
    EXPECT_EQ(callsAfter(30), Ids{id});
    EXPECT_NE(set(10, 77), 77u) << "an id that no timer has means nothing";
}

TEST_F(TimersTest, CallsMayChangeTheTimers) {
    uintptr_t other = 0;
    const uintptr_t killer = timers.set(0, milliseconds(10), nullptr, [&](uintptr_t id, auto) {
        calls.push_back(id);
        timers.kill(other);
        timers.kill(id);
        set(1);
        timers.runDue();  // as something that waits inside of the call does
    });
    other = set(10);
    EXPECT_EQ(callsAfter(10), Ids{killer}) << "neither the killed nor the new one";
    EXPECT_EQ(timers.size(), 1u);
    EXPECT_EQ(callsAfter(1).size(), 1u);
}

TEST_F(TimersTest, AnExceptionStopsNoOther) {
    timers.set(0, milliseconds(10), nullptr, [](uintptr_t, auto) { throw std::string("no"); });
    now += milliseconds(10);
    EXPECT_THROW(timers.runDue(), std::string);
    EXPECT_NO_THROW(timers.runDue()) << "it has had its turn";
    now += milliseconds(10);
    EXPECT_THROW(timers.runDue(), std::string);
}

TEST_F(TimersTest, TheyGoWithTheirOwner) {
    const int module = 0;
    set(10, 0, &module);
    const uintptr_t left = set(10);
    timers.killAllOf(&module);
    EXPECT_EQ(callsAfter(10), Ids{left});
}

TEST_F(TimersTest, TheyTellWhenTheNextIsDue) {
    EXPECT_EQ(timers.untilDue(), std::nullopt);
    set(40);
    set(15);
    EXPECT_EQ(timers.untilDue(), milliseconds(15));
    now += milliseconds(100);
    EXPECT_EQ(timers.untilDue(), milliseconds(0));
}

}  // namespace
}  // namespace sg

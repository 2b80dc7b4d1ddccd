#include "companion/kernel/fault_guard.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

namespace sg::companion {
namespace {

TEST(FaultGuard, LetsNothingOut) {
    EXPECT_TRUE(withoutFaults([] { return true; }));
    EXPECT_FALSE(withoutFaults([] { return false; }));
    EXPECT_FALSE(withoutFaults([]() -> bool { throw std::runtime_error("no such curve"); }));
    EXPECT_FALSE(withoutFaults([]() -> bool { throw 5; }));
    for (const int signal : {SIGSEGV, SIGFPE, SIGBUS, SIGILL}) {
        EXPECT_FALSE(withoutFaults([&] { return raise(signal) == 0; })) << signal;
        EXPECT_TRUE(withoutFaults([] { return true; })) << "it works again after " << signal;
    }
}

// Within each other, as operations call operations; and what others do about signals is theirs
// again.
TEST(FaultGuard, GivesSignalsBack) {
    static int caught = 0;
    caught = 0;
    struct sigaction own = {};
    struct sigaction before = {};
    own.sa_handler = [](int) { ++caught; };
    sigaction(SIGFPE, &own, &before);
    EXPECT_TRUE(withoutFaults([] {
        EXPECT_FALSE(withoutFaults([] { return raise(SIGFPE) == 0; }));
        return true;
    }));
    EXPECT_EQ(caught, 0);
    raise(SIGFPE);
    EXPECT_EQ(caught, 1);
    sigaction(SIGFPE, &before, nullptr);
}

}  // namespace
}  // namespace sg::companion

#include "host/system/timers.h"
#include "jigs/jig_fixture.h"
#include "platform/win/timer.h"
#include "platform/win/window.h"

namespace sg {
namespace {

using namespace test;

class JigTimerTest : public JigTest {
  protected:
    void SetUp() override {
        JigTest::SetUp();
        host().timers().setClock([this] { return now; });
        EnableWindow(adsw_acadMainWnd(), false);
    }
    void pass(int milliseconds) { now += std::chrono::milliseconds(milliseconds); }
    static bool isEnabled() { return IsWindowEnabled(adsw_acadMainWnd()); }

    Timers::Clock::time_point now{};
};

TEST_F(JigTimerTest, TheWindowComesBackWhenTheDrawingIsIdle) {
    EXPECT_EQ(eval("(setq timer (qn_qn-createJigTimer 50))"), "1");
    bool wasAsked = false;
    hand->onDrag = [&](const DragRequest&) {
        wasAsked = true;
        EXPECT_FALSE(isEnabled()) << "a program is running";
        pass(50);
    };
    pass(50);
    hand->will({"sample 1,1", "sample 2,2", ""});
    type("(qn_qn-lineJig)");
    EXPECT_TRUE(wasAsked);
    EXPECT_FALSE(isEnabled());
    host().timers().runDue();
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(host().timers().size(), 0u);
}

TEST_F(JigTimerTest, ALongTimerDoesNotWait) {
    eval("(qn_qn-createJigTimer 10000)");
    bool inDrag = false;
    hand->onDrag = [&](const DragRequest&) { inDrag = isEnabled(); };
    hand->will({""});
    pass(9999);
    type("(qn_qn-lineJig)");
    EXPECT_FALSE(inDrag);
    pass(1);
    hand->will({""});
    type("(qn_qn-lineJig)");
    EXPECT_TRUE(inDrag);
    EXPECT_EQ(host().timers().size(), 0u);
}

TEST_F(JigTimerTest, AKilledTimerDoesNothing) {
    EXPECT_EQ(eval("(qn_qn-killJigTimer (qn_qn-createJigTimer 50))"), "nil");
    EXPECT_EQ(eval("(qn_qn-killJigTimer 77)"), "nil");
    eval("(qn_qn-createJigTimer 50)");
    EXPECT_EQ(eval("(qn_qn-killJigTimer 0)"), "nil");
    EXPECT_EQ(host().timers().size(), 1u);
}

// Below 0 the system takes its shortest period.
TEST_F(JigTimerTest, PeriodsHaveAShortest) {
    for (const char* period : {"-1", "0", "9"}) {
        EnableWindow(adsw_acadMainWnd(), false);
        eval(std::string("(qn_qn-createJigTimer ") + period + ")");
        pass(9);
        host().timers().runDue();
        EXPECT_FALSE(isEnabled()) << period;
        pass(1);
        host().timers().runDue();
        EXPECT_TRUE(isEnabled()) << period;
    }
}

TEST_F(JigTimerTest, TimersGoWithTheModuleThatHasSetThem) {
    eval("(qn_qn-createJigTimer 50)");
    const uintptr_t other = SetTimer(nullptr, 0, 50, [](HWND, unsigned, uintptr_t, uint32_t) {});
    host().modules().unloadAll();
    EXPECT_EQ(host().timers().size(), 1u);
    EXPECT_TRUE(KillTimer(nullptr, other));
    EXPECT_FALSE(KillTimer(nullptr, other));
    EXPECT_EQ(SetTimer(nullptr, 0, 50, nullptr), 0u);
}

TEST_F(JigTimerTest, AFailingProcedureIsReported) {
    SetTimer(nullptr, 0, 50,
             [](HWND, unsigned, uintptr_t, uint32_t) { throw std::runtime_error("no luck"); });
    pass(50);
    errors();
    host().timers().runDue();
    EXPECT_NE(errors().find("a timer's procedure failed: "), std::string::npos);
}

}  // namespace
}  // namespace sg

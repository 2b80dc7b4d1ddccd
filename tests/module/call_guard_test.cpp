#include "bridge/call_guard.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "module/bridge/list_notation.h"
#include "module/module_fixture.h"
#include "platform/db/database.h"
#include "platform/ed/command_line.h"
#include "platform/win/exceptions.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class CallGuardTest : public ModuleTest {
  protected:
    // "<mode> <count>" of a drawing's locks.
    static std::string locks(const Document& document) {
        return std::to_string(document.lockMode()) + " " + std::to_string(document.lockCount());
    }
};

constexpr const char* kUnlocked = "0 0";

TEST_F(CallGuardTest, TheLockIsHeldDuringTheCallAndCountsWithNestedOnes) {
    start();
    guarded = [&] {
        log.push_back("outer " + locks(active()));
        resbuf* answer = nullptr;
        EXPECT_EQ(acedInvoke(makeList("'guarded-inner'").get(), &answer), RTNORM);
        EXPECT_EQ(describe(List(answer).get()), "7s");
        log.push_back("outer " + locks(active()));
        return kLispOk;
    };
    guardedInner = [&] {
        log.push_back("inner " + locks(active()));
        acedRetInt(7);
        return kLispOk;
    };
    EXPECT_EQ(eval("(guarded)"), "nil") << "the inner result is not the outer's";
    EXPECT_THAT(log, ElementsAre("outer 4 1", "inner 4 2", "outer 4 1"));
    EXPECT_EQ(locks(active()), kUnlocked);
}

TEST_F(CallGuardTest, ARefusedLockDoesNotStopTheCall) {
    start();
    const auto orphan = std::make_unique<AcDbDatabase>();
    acdbHostApplicationServices()->setWorkingDatabase(orphan.get());
    guarded = [&] {
        log.push_back(locks(active()));
        acedRetT();
        return kLispOk;
    };
    EXPECT_EQ(eval("(guarded)"), "T");
    EXPECT_THAT(log, ElementsAre(kUnlocked));
    EXPECT_EQ(locks(active()), kUnlocked);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

TEST_F(CallGuardTest, TheUnlockFollowsTheWorkingDatabase) {
    start();
    Document& first = active();
    Document& second = documents().create();
    AcDbHostApplicationServices& services = *acdbHostApplicationServices();
    for (const bool throws : {false, true}) {
        acDocManagerPtr()->lockDocument(&first, AcAp::kRead);
        guarded = [&]() -> int {
            services.setWorkingDatabase(first.database());
            if (throws) throw 1;
            return kLispOk;
        };
        eval("(guarded)");
        EXPECT_EQ(locks(first), kUnlocked) << throws;
        EXPECT_EQ(locks(second), "4 1") << throws;
        services.setWorkingDatabase(nullptr);
        acDocManagerPtr()->unlockDocument(&second);
    }
}

TEST_F(CallGuardTest, ACallWorksOnTheDrawingThatIsActiveByThen) {
    start();
    guarded = [&] {
        log.push_back(locks(documentAt(0)) + " / " + locks(documentAt(1)));
        return kLispOk;
    };
    eval("(progn (host-new-drawing) (guarded))");
    EXPECT_THAT(log, ElementsAre("0 0 / 4 1"));
    EXPECT_EQ(locks(documentAt(1)), kUnlocked);
}

TEST_F(CallGuardTest, ResultCodes) {
    start();
    const struct {
        int code;
        const char *printed, *answer;
        bool textScreen;
    } cases[] = {
        {0, "own", "5", false},
        {1, "own\nToo few arguments passed.\n", "; error: ADS request error", false},
        {2, "own\nWrong type of arguments passed.\n", "; error: ADS request error", false},
        {3, "own\nBad data passed .\n", "; error: ADS request error", false},
        {4, "own", "; error: ADS request error", true},
        {5, "own", "5", false},
        {9, "own", "5", false},
        {-1, "own", "5", false},
        {5100, "own", "5", false},
    };
    for (const auto& c : cases) {
        acedGraphScr();
        guarded = [&] {
            acutPrintf(L"own");
            acedRetInt(5);
            return c.code;
        };
        EXPECT_EQ(eval("(guarded)"), c.answer) << c.code;
        EXPECT_EQ(printed(), c.printed) << c.code;
        EXPECT_EQ(host().textScreen, c.textScreen) << c.code;
        EXPECT_EQ(locks(active()), kUnlocked) << c.code;
    }
    EXPECT_EQ(eval("(getvar \"SCREENMODE\")"), "1");
}

TEST_F(CallGuardTest, WhatIsThrownPassesOnAfterTheUnlock) {
    start();
    const struct {
        std::function<void()> thrower;
        const char *printed, *answer;
    } cases[] = {
        {[] { AfxThrowInvalidArgException(); }, "own\nGeneral Exception",
         "; error: exception in guarded: "},
        {[] { throw new CMemoryException; }, "own\nGeneral Exception",
         "; error: exception in guarded: Out of memory."},
        {[] { throw 5; }, "own\nError", "; error: exception in guarded: an unknown exception"},
        {[] { throw std::runtime_error("odd"); }, "own\nError",
         "; error: exception in guarded: odd"},
    };
    for (const auto& c : cases) {
        guarded = [&]() -> int {
            acutPrintf(L"own");
            const List notGiven = makeList("1 2 3");
            c.thrower();
            return kLispOk;
        };
        EXPECT_THAT(eval("(guarded '(1 2))"), StartsWith(c.answer));
        EXPECT_EQ(printed(), c.printed);
        EXPECT_EQ(locks(active()), kUnlocked);
        EXPECT_EQ(eval("(vl-catch-all-error-p (vl-catch-all-apply 'guarded '(1)))"), "T");
        EXPECT_EQ(eval("(setq n 1) (vl-catch-all-apply '(lambda (n) (guarded)) '(2)) n"), "1");
        printed();
    }
    EXPECT_EQ(acedRetNil(), RTERROR) << "no call is in progress any more";
}

TEST_F(CallGuardTest, TheSameExceptionObjectPassesOn) {
    start();
    static CException* thrown;
    thrown = new CMemoryException;
    try {
        callGuard([]() -> int { throw thrown; });
        ADD_FAILURE() << "nothing was thrown";
    } catch (CException* caught) {
        EXPECT_EQ(caught, thrown);
        caught->Delete();
    }
    EXPECT_EQ(locks(active()), kUnlocked);
}

TEST_F(CallGuardTest, AnEndedProgramIsNoErrorOfTheGuardsCaller) {
    start();
    guarded = [] {
        EXPECT_EQ(acedInvoke(makeList("'leave'").get(), nullptr), RTERROR);
        acedRetInt(1);
        return kLispOk;
    };
    EXPECT_EQ(eval("(defun leave () (exit)) (guarded)"), "1");
    EXPECT_EQ(errors().find("; error"), std::string::npos);
}

// The database is selected ahead of the guard, by every function of the sg_ table and by no other.
TEST_F(CallGuardTest, SelectingTheDatabaseIsOutsideTheGuard) {
    start();
    FakeConnection connection("a", log);
    connect(L"Drawing1.dwg", &connection, L"a.mdb");
    connection.onIsOpen = [&] { log.push_back("asked " + locks(active())); };
    eval("(sg_beep)");
    EXPECT_THAT(log, ElementsAre("asked 0 0"));
    log.clear();
    eval("(asin 1.0)");
    EXPECT_THAT(log, IsEmpty());
    printed();

    connection.onIsOpen = [] { throw new CMemoryException; };
    EXPECT_EQ(eval("(sg_count)"), "; error: exception in sg_count: Out of memory.");
    EXPECT_EQ(printed(), "") << "the guard's messages do not cover this step";
    EXPECT_EQ(locks(active()), kUnlocked);

    connection.onIsOpen = nullptr;
    connect(L"Drawing1.dwg", nullptr, L"");
    setCurrentDatabase(nullptr, L"", 0);
}

}  // namespace
}  // namespace sg

#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

// A head of 20 by 10 along x that parts at x = 30, to both sides. The solid takes 10 off the head
// and 15 off the tails.
class WyeTest : public SolidsTest {
  protected:
    WyeTest() {
        solids.moveWye = [](AcGePoint3d& head, AcGePoint3d& tail1, AcGePoint3d& tail2) {
            head.set(20, 0, 0);
            tail1.set(30, 15, 0);
            tail2.set(30, -15, 0);
        };
    }
    void SetUp() override {
        SolidsTest::SetUp();
        eval("(setq left (run 30 0 0 30 30 0 20 10) right (run 30 0 0 30 -30 0 20 10))");
    }
    std::string wye(const std::string& tail1 = "left", const std::string& tail2 = "right",
                    const std::string& head = "(run 0 0 0 30 0 0 20 10)") {
        return call("(qn_qn-drawTripleWye nil 2 t 1.5 " + head + " " + tail1 + " " + tail2 + ")");
    }
};

constexpr const char* kFrames = " [+X, +Y, +Z] [+Y, -X, +Z] [-Y, +X, +Z] ";

TEST_F(WyeTest, TheBodyIsBuiltFromWhatThePreparationLeft) {
    EXPECT_EQ(wye(),
              "((\"en1\" . E) (\"en2\") (\"en3\") (\"dHeadLength\" . 10.0) "
              "(\"dTailLength1\" . 15.0) (\"dTailLength2\" . 15.0))");
    EXPECT_THAT(lines(), ElementsAre("addWyePrep (0 0 0) 20x10 (30 30 0) 20x10 (30 -30 0) 20x10"s +
                                         kFrames + "true 3",
                                     "addWye (20 0 0) 20x10 (30 15 0) 20x10 (30 -15 0) 20x10 "
                                     "junction (30 0 0)"s +
                                         kFrames + "arrays 123456 2"));
}

TEST_F(WyeTest, ATailKeepsItsWidthAlone) {
    const struct {
        const char* size;
        const char* inWye;
        const char* reducer;  // the tail's own end, and where it is
        const char* length;
    } cases[] = {
        {"14 10", "14x10", nullptr, "15.0"},
        {"20 8", "20x10", "(30 18.7321 0) 20x8", "18.7321"},
        {"14 8", "20x10", "(30 26.1962 0) 14x8", "26.1962"},  // 3 / tan 15 degrees
        {"-20 -10", "20x10", nullptr, "15.0"},
    };
    for (const auto& c : cases) {
        const std::string result = wye("(run 30 0 0 30 30 0 "s + c.size + ")");
        EXPECT_THAT(result, HasSubstr("(\"dTailLength1\" . "s + c.length + ")")) << c.size;
        EXPECT_THAT(lines().at(0), HasSubstr("(30 30 0) "s + c.inWye + " (30 -30 0) 20x10 "));
        ASSERT_EQ(lines().size(), c.reducer == nullptr ? 2u : 3u) << c.size;
        if (c.reducer == nullptr) continue;
        EXPECT_EQ(lines()[2], "addTransition (30 15 0) 20x10 "s + c.reducer + " [+Y, -X, +Z] 2");
    }
    // Another class takes everything from the head.
    wye("left", "(with (run 30 0 0 30 -30 0 14 10) 12 \"rd\")");
    EXPECT_THAT(lines().at(0), HasSubstr("(30 -30 0) 20x10 "));
    EXPECT_EQ(lines().at(2),
              "addTransition (30 -15 0) 20x10 (30 -26.1962 0) o14x10 [-Y, +X, +Z] 2");
}

TEST_F(WyeTest, ReducersFollowTheWyeInTheDrawing) {
    solids.answers["addTransition"] = {false, false};  // which changes nothing
    eval(
        "(setq r (qn_qn-drawTripleWye nil 2 t 1.5 (run 0 0 0 30 0 0 20 10) "
        "(run 30 0 0 30 30 0 20 8) (run 30 0 0 30 -30 0 20 8)))");
    EXPECT_EQ(eval("(mapcar '(lambda (key) (cdr (assoc key r))) "
                   "'(\"dHeadLength\" \"dTailLength1\" \"dTailLength2\"))"),
              "(10.0 18.7321 18.7321)");
    EXPECT_EQ(eval("(and (equal (entnext (cdr (assoc \"en1\" r))) (cdr (assoc \"en2\" r))) "
                   "(equal (entnext (cdr (assoc \"en2\" r))) (cdr (assoc \"en3\" r))))"),
              "T");
    EXPECT_EQ(entities(), 3);
}

TEST_F(WyeTest, WhatCannotBeBuiltIsNilAndLeavesNothing) {
    for (const char* operation : {"addWyePrep", "addWye"}) {
        solids.answers[operation] = {false};
        EXPECT_EQ(wye("(run 30 0 0 30 30 0 20 8)"), "nil") << operation;
        EXPECT_EQ(lines().back().substr(0, lines().back().find(' ')), operation);
        EXPECT_EQ(solids.alive, 0);
    }
    EXPECT_EQ(entities(), 0);
}

}  // namespace
}  // namespace sg

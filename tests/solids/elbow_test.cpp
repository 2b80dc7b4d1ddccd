#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

// From the section `level`, along x, to `onward`, along y. The solid takes 12 off the first run,
// which is 20 long, and 12 off the second.
class ElbowTest : public SolidsTest {
  protected:
    ElbowTest() {
        solids.moveElbow = [](AcGePoint3d& head, AcGePoint3d& tail) {
            head.set(8, 0, 0);
            tail.set(20, 12, 0);
        };
    }
    std::string elbow(const std::string& kindAndRadius, const std::string& first = "level",
                      const std::string& second = "onward") {
        return call("(qn_qn-drawTripleElbow nil 7 " + kindAndRadius + " " + first + " " + second +
                    ")");
    }
};

constexpr const char* kFrames = " [+X, +Y, +Z] [+Y, -X, +Z] ";
constexpr const char* kNoReducer =
    "((\"en1\" . E) (\"en2\") (\"dHeadLength\" . 12.0) (\"dTailLength\" . 12.0))";

// A reducer tapers by one unit a side in 3.7321, which is 1 / tan 15 degrees.
TEST_F(ElbowTest, ASquareElbowKeepsAsMuchOfTheSecondSizeAsItCan) {
    const struct {
        size_t refused;
        const char* tail;
        const char* reducer;  // from what to what
    } cases[] = {
        {0, "10x6", nullptr},
        {1, "12x6", "12x6 (20 15.7321 0) 10x6"},
        {2, "10x8", "10x8 (20 15.7321 0) 10x6"},
        {3, "12x8", "12x8 (20 15.7321 0) 10x6"},
    };
    const char* const tries[] = {"10x6", "12x6", "10x8", "12x8"};
    for (const auto& c : cases) {
        solids.answers["addSquareElbowPrep"].assign(c.refused, false);
        const std::string result = elbow("t 5.0", "level", "(run 20 0 0 20 20 0 10 6)");
        std::vector<std::string> expected;
        for (size_t i = 0; i <= c.refused; ++i) {
            expected.push_back("addSquareElbowPrep (0 0 0) 12x8 (20 20 0) "s + tries[i] + kFrames +
                               "true 3");
        }
        expected.push_back("addSquareElbow (8 0 0) 12x8 (20 12 0) "s + c.tail + kFrames +
                           "arrays 112233 7");
        if (c.reducer != nullptr) {
            expected.push_back("addTransition (20 12 0) "s + c.reducer + " [+Y, -X, +Z] 7");
            EXPECT_EQ(result,
                      "((\"en1\" . E) (\"en2\" . E) (\"dHeadLength\" . 12.0) "
                      "(\"dTailLength\" . 15.7321))");
        } else {
            EXPECT_EQ(result, kNoReducer);
        }
        EXPECT_EQ(lines(), expected) << c.refused;
    }
    EXPECT_EQ(entities(), 4 + 3);
}

// The tries go by their order, not by what they change.
TEST_F(ElbowTest, ARefusedTryCallsForAReducerWhateverTheSizes) {
    solids.answers["addSquareElbowPrep"] = {false};
    elbow("t 5.0");
    EXPECT_THAT(lines(), SizeIs(4));
    EXPECT_EQ(lines().back(), "addTransition (20 12 0) 12x8 (20 12 0) 12x8 [+Y, -X, +Z] 7");
}

TEST_F(ElbowTest, WhatCannotBeBuiltIsNilAndLeavesNothing) {
    const struct {
        const char* operation;
        size_t refused;
        const char* call;
        size_t lines;
    } cases[] = {
        {"addSquareElbowPrep", 4, "t 5.0", 4},
        {"addSquareElbow", 1, "t 5.0", 2},
        {"addRadiusElbow", 1, "nil 5.0", 1},
        {"addRadiusElbow", 1, "\"CABLETRAY\" 5.0", 1},
        {"addCableTraySquareRadiusElbow", 1, "\"CABLETRAY\" 5.0", 3},
    };
    for (const auto& c : cases) {
        solids.answers[c.operation].assign(c.refused, false);
        EXPECT_EQ(elbow(c.call), "nil") << c.operation;
        EXPECT_THAT(lines(), SizeIs(c.lines)) << c.operation;
        EXPECT_EQ(solids.alive, 0) << c.operation;
    }
    EXPECT_EQ(entities(), 0);
}

TEST_F(ElbowTest, TheRadiusIsCountedInWidths) {
    const struct {
        const char* radius;
        const char* width;
        const char* ratio;
    } cases[] = {
        {"0.0", "12", "1.5"},  {"0.4", "1.0", "0.501"}, {"0.5", "1", "0.501"},
        {"0.51", "1", "0.51"}, {"18.0", "12", "1.5"},   {"-12.0", "12", "-1"},
        {"12.0", "-12", "-1"}, {"1e-9", "12", "0.501"},
    };
    for (const auto& c : cases) {
        elbow("nil "s + c.radius, "(with level 10 "s + c.width + ")");
        ASSERT_FALSE(lines().empty());
        EXPECT_THAT(lines()[0], HasSubstr(" ratio "s + c.ratio + " true 7 true")) << c.radius;
    }
    // Of the outer width, which is 12 + 2 + 1.
    elbow("nil 30.0", "(with (with level 13 1.0) 14 0.5)");
    EXPECT_THAT(lines().at(0), HasSubstr("15x11 walls 1 0.5 "));
    EXPECT_THAT(lines().at(0), HasSubstr(" ratio 2 "));
}

TEST_F(ElbowTest, ARadiusElbowHasOneSizeThroughout) {
    EXPECT_EQ(elbow("nil 18.0"), kNoReducer);
    EXPECT_THAT(lines(), ElementsAre("addRadiusElbow (0 0 0) 12x8 walls 0 0 (20 20 0) 12x8"s +
                                     kFrames + "ratio 1.5 true 7 true"));
    const struct {
        const char* second;
        const char* reducer;
        const char* length;
    } cases[] = {
        {"(run 20 0 0 20 20 0 10 8)", "12x8 (20 15.7321 0) 10x8", "15.7321"},
        {"(run 20 0 0 20 20 0 12 12)", "12x8 (20 19.4641 0) 12x12", "19.4641"},
        {"(with onward 12 \"RD\")", "12x8 (20 18 0) o12x8", "18.0"},
        // A riser, whose sides are exchanged: across the first run's width lies its height.
        {"(run 20 0 0 20 0 20 8 12)", nullptr, "0.0"},
    };
    for (const auto& c : cases) {
        const std::string result = elbow("nil 18.0", "level", c.second);
        EXPECT_THAT(result, HasSubstr("(\"dTailLength\" . "s + c.length + ")")) << c.second;
        EXPECT_THAT(lines().at(0), HasSubstr(" 12x8 [")) << c.second;
        if (c.reducer == nullptr) {
            EXPECT_THAT(lines(), SizeIs(1));
        } else {
            EXPECT_EQ(lines().at(1), "addTransition (20 12 0) "s + c.reducer + " [+Y, -X, +Z] 7");
        }
    }
}

TEST_F(ElbowTest, ARefusedReducerIsAddedAllTheSame) {
    solids.answers["addTransition"] = {false};
    EXPECT_EQ(elbow("nil 18.0", "level", "(run 20 0 0 20 20 0 10 8)"),
              "((\"en1\" . E) (\"en2\" . E) (\"dHeadLength\" . 12.0) (\"dTailLength\" . 15.7321))");
    EXPECT_EQ(entities(), 2);
}

TEST_F(ElbowTest, AFlatTrayTakesOnlyTheEndsOfARadiusElbow) {
    EXPECT_EQ(elbow("\"CABLETRAY\" 0.0"), kNoReducer);
    EXPECT_THAT(lines(), ElementsAre("addRadiusElbow (0 0 0) 12x8 walls 0 0 (20 20 0) 12x8"s +
                                         kFrames + "ratio 1.5 true 7 false",
                                     "clearBodies",
                                     "addCableTraySquareRadiusElbow (8 0 0) 12x8 (20 12 0)"s +
                                         kFrames + "ratio 1.5 7"));
    // Not flat: a section that slopes, or the two at different heights.
    const struct {
        const char* first;
        const char* second;
    } cases[] = {
        {"(run 0 0 1 20 0 0 12 8)", "onward"},
        {"level", "(run 20 0 0 20 20 1 12 8)"},
        {"(run 0 0 1 20 0 1 12 8)", "onward"},
    };
    for (const auto& c : cases) {
        elbow("\"CABLETRAY\" 0.0", c.first, c.second);
        EXPECT_EQ(lines().at(0).substr(lines().at(0).rfind(' ')), " true");
        for (const std::string& line : lines())
            EXPECT_EQ(line.find("clearBodies"), std::string::npos) << c.first << c.second;
    }
}

TEST_F(ElbowTest, BehindAnotherTextTheSwitchFollows) {
    const struct {
        const char* call;
        const char* operation;
    } cases[] = {
        {"\"SQUARE\" t 5.0", "addSquareElbowPrep"},
        {"\"SQUARE\" nil 5.0", "addRadiusElbow"},
        {"\"cabletray\" nil 5.0", "addRadiusElbow"},
        {"0 5.0", "addSquareElbowPrep"},
        {"nil 5.0", "addRadiusElbow"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(elbow(c.call), kNoReducer) << c.call;
        EXPECT_THAT(lines().at(0), testing::StartsWith(c.operation)) << c.call;
        EXPECT_THAT(lines().back(), testing::Not(HasSubstr("Tray"))) << c.call;
    }
    for (const char* wrong :
         {"\"SQUARE\" 5.0", "\"CABLETRAY\" nil 5.0", "t 5", "'(1 2) 5.0", "t"}) {
        EXPECT_EQ(elbow(wrong), "; error: ADS request error") << wrong;
    }
}

// Across a round duct the frames are turned so that y stands square to both runs.
TEST_F(ElbowTest, RoundDuctsTurnTheirFrames) {
    elbow("nil 12.0", "(with (run 0 0 0 20 0 0 8 8) 12 \"RD\")",
          "(with (run 20 0 0 20 20 0 8 8) 12 \"RD\")");
    EXPECT_THAT(lines(), ElementsAre("addRadiusElbow (0 0 0) o8x8 walls 0 0 (20 20 0) o8x8 "
                                     "[+X, +Z, -Y] [+Y, +Z, +X] ratio 1.5 true 7 true"));
}

}  // namespace
}  // namespace sg

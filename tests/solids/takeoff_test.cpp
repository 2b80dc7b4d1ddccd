#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

// A main of 20 by 10 along x, whose sections meet at x = 50.
class TakeoffTest : public SolidsTest {
  protected:
    void SetUp() override {
        SolidsTest::SetUp();
        eval("(setq main (run 0 0 0 50 0 0 20 10) behind (run 50 0 0 100 0 0 20 10))");
    }
    std::string takeoff(const std::string& branches, const std::string& behind = "behind",
                        const std::string& main = "main") {
        return call("(qn_qn-drawTripleTakeoff nil 4 nil 0.0 " + main + " " + behind + " " +
                    branches + ")");
    }
    static std::string mainPiece(const char* start, const char* end) {
        return "addTransition ("s + start + " 0 0) 20x10 (" + end + " 0 0) 20x10 [+X, +Y, +Z] 4";
    }
    // The planes square to the main at its piece's ends.
    static std::string slice(const std::string& at, const std::string& keep) {
        return "sliceLast (" + at + " 0 0) (" + at + " 1 0) (" + at + " 0 1) keep (" + keep +
               " 0 0)";
    }
    static std::string lengths(const char* head, const char* main, const char* branch,
                               const char* second = "0.0") {
        return "((\"en1\" . E) (\"en2\") (\"dHeadLength\" . "s + head + ") (\"dTailLength1\" . " +
               main + ") (\"dTailLength2\" . " + branch + ") (\"dTailLength3\" . " + second + "))";
    }
};

constexpr const char* kSquareBranch = "(run 50 0 0 50 40 0 10 10)";

TEST_F(TakeoffTest, TheMainReachesPastItsBranches) {
    const struct {
        const char* what;
        const char* branches;
        const char* start;
        const char* end;
        std::vector<std::string> spigots;
        std::string result;
    } cases[] = {
        {"square",
         kSquareBranch,
         "42",
         "58",
         {"(50 0 0) 9.99x9.999 (50 13 0) 9.99x9.999 [+Y, -X, +Z]"},
         lengths("8.0", "8.0", "13.0")},
        {"square, another height",
         "(run 50 0 0 50 40 0 10 8)",
         "42",
         "58",
         {"(50 0 0) 9.99x8 (50 13 0) 9.99x8 [+Y, -X, +Z]"},
         lengths("8.0", "8.0", "13.0")},
        {"beginning at the main's side",
         "(run 50 10 0 50 40 0 10 10)",
         "42",
         "58",
         {"(50 0 0) 9.99x9.999 (50 13 0) 9.99x9.999 [+Y, -X, +Z]"},
         lengths("8.0", "8.0", "3.0")},
        {"off the meeting point",
         "(run 54 0 0 54 40 0 10 10)",
         "46",
         "62",
         {"(54 0 0) 9.99x9.999 (54 13 0) 9.99x9.999 [+Y, -X, +Z]"},
         lengths("4.0", "12.0", "13.0")},
        // At 45 degrees the slant is 10 and half the branch 7.0711 of the main: -2.9289 before,
        // where the branch that is not there counts with 0, and 17.0711 after. The spigot reaches
        // 5 + 14.1421 + 3 along the diagonal.
        {"slanting",
         "(run 50 0 0 90 40 0 10 10)",
         "47",
         "70.0711",
         {"(50 0 0) 9.99x9.999 (65.6569 15.6569 0) 9.99x9.999 "
          "[<0.7071 0.7071 0>, <-0.7071 0.7071 0>, +Z]"},
         lengths("3.0", "20.0711", "22.1421")},
        // From the top: the branch's sides are exchanged, its height is what counts on the main,
        // and it leaves the main at half the main's height.
        {"straight up",
         "(run 50 0 0 50 0 40 8 6)",
         "43",
         "57",
         {"(50 0 0) 5.99x8 (50 0 8) 5.99x8 [+Z, +Y, -X]"},
         lengths("7.0", "7.0", "8.0")},
        // Steeper than the main's diagonal of 26.57 degrees, but not straight up: 5 + 3 from the
        // axis, and the width counts.
        {"up and aside",
         "(run 50 0 0 50 40 40 10 10)",
         "42",
         "58",
         {"(50 0 0) 9.99x9.999 (50 5.6569 5.6569) 9.99x9.999 "
          "[<0 0.7071 0.7071>, <-0.7071 0.5 -0.5>, <-0.7071 -0.5 0.5>]"},
         lengths("8.0", "8.0", "8.0")},
        {"down and aside, as steep",
         "(run 50 0 0 50 40 -40 10 10)",
         "42",
         "58",
         {"(50 0 0) 9.99x9.999 (50 5.6569 -5.6569) 9.99x9.999 "
          "[<0 0.7071 -0.7071>, <-0.7071 0.5 0.5>, <0.7071 0.5 0.5>]"},
         lengths("8.0", "8.0", "8.0")},
        {"two, about the meeting point",
         "(run 48 0 0 48 40 0 10 10) (run 52 0 0 52 -40 0 10 10)",
         "40",
         "60",
         {"(48 0 0) 9.99x9.999 (48 13 0) 9.99x9.999 [+Y, -X, +Z]",
          "(52 0 0) 9.99x9.999 (52 -13 0) 9.99x9.999 [-Y, +X, +Z]"},
         lengths("10.0", "10.0", "13.0", "13.0")},
        {"two, opposite each other",
         "(run 50 0 0 50 40 0 10 10) (run 50 0 0 50 -40 0 6 10)",
         "42",
         "58",
         {"(50 0 0) 9.99x9.999 (50 13 0) 9.99x9.999 [+Y, -X, +Z]",
          "(50 0 0) 5.99x9.999 (50 -13 0) 5.99x9.999 [-Y, +X, +Z]"},
         lengths("8.0", "8.0", "13.0", "13.0")},
        {"two, both ahead, the farther one first",
         "(run 56 0 0 56 40 0 10 8) (run 54 0 0 54 -40 0 10 8)",
         "42",
         "64",
         {"(56 0 0) 9.99x8 (56 13 0) 9.99x8 [+Y, -X, +Z]",
          "(54 0 0) 9.99x8 (54 -13 0) 9.99x8 [-Y, +X, +Z]"},
         lengths("8.0", "14.0", "13.0", "13.0")},
        {"two, both behind",
         "(run 47 0 0 47 40 0 10 8) (run 45 0 0 45 -40 0 10 8)",
         "37",
         "58",
         {"(47 0 0) 9.99x8 (47 13 0) 9.99x8 [+Y, -X, +Z]",
          "(45 0 0) 9.99x8 (45 -13 0) 9.99x8 [-Y, +X, +Z]"},
         lengths("13.0", "8.0", "13.0", "13.0")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(takeoff(c.branches), c.result) << c.what;
        std::vector<std::string> expected = {mainPiece(c.start, c.end)};
        for (const std::string& spigot : c.spigots)
            expected.push_back("addTransition " + spigot + " 4");
        expected.push_back(slice(c.start, c.end));
        expected.push_back(slice(c.end, c.start));
        EXPECT_THAT(lines(), ElementsAreArray(expected)) << c.what;
    }
}

TEST_F(TakeoffTest, AMainThatChangesGetsAReducer) {
    // From 20 to 12 takes 4 / tan 15 degrees = 14.9282.
    EXPECT_EQ(takeoff(kSquareBranch, "(run 50 0 0 100 0 0 12 10)"),
              "((\"en1\" . E) (\"en2\" . E) (\"dHeadLength\" . 8.0) (\"dTailLength1\" . 22.9282) "
              "(\"dTailLength2\" . 13.0) (\"dTailLength3\" . 0.0))");
    EXPECT_EQ(lines().back(), "addTransition (58 0 0) 20x10 (72.9282 0 0) 12x10 [+X, +Y, +Z] 4");
    EXPECT_EQ(entities(), 2);
    // A change of class alone, and the reducer is in the drawing ahead of the fitting.
    EXPECT_THAT(takeoff(kSquareBranch, "(with behind 12 \"ox\")"),
                HasSubstr("(\"dTailLength1\" . 18.0)"));
    EXPECT_EQ(lines().back(), "addTransition (58 0 0) 20x10 (68 0 0) o20x10 [+X, +Y, +Z] 4");
    eval(
        "(setq r (qn_qn-drawTripleTakeoff nil 4 nil 0.0 main (run 50 0 0 90 0 0 18 10) "
        "(run 50 0 0 50 40 0 10 10)))");
    EXPECT_EQ(eval("(equal (entnext (cdr (assoc \"en2\" r))) (cdr (assoc \"en1\" r)))"), "T");
    // Bodies go by the shape, sizes by the section: "Rd" is round for the one only.
    takeoff(kSquareBranch, "(with behind 12 \"Rd\")");
    EXPECT_EQ(lines().size(), 4u);
}

TEST_F(TakeoffTest, ARefusedBodyIsNilAndLeavesNothing) {
    const char* const branches = "(run 48 0 0 48 40 0 10 10) (run 52 0 0 52 -40 0 10 10)";
    for (size_t body = 0; body < 4; ++body) {  // main, two spigots, reducer
        solids.answers["addTransition"].assign(body, true);
        solids.answers["addTransition"].push_back(false);
        EXPECT_EQ(takeoff(branches, "(run 50 0 0 100 0 0 12 10)"), "nil");
        EXPECT_EQ(lines().size(), body < 3 ? body + 1 : 6) << body;
        EXPECT_EQ(solids.alive, 0) << body;
    }
    EXPECT_EQ(entities(), 0);
}

TEST_F(TakeoffTest, ABranchAlongTheMainIsNil) {
    EXPECT_EQ(takeoff("(run 50 0 0 90 0 0 10 10)"), "nil");
    EXPECT_EQ(takeoff("(run 50 0 0 50 40 0 10 10) (run 50 0 0 90 0 0 10 10)"), "nil");
    EXPECT_EQ(takeoff("(run 50 0 0 10 0 0 10 10)"), "nil");
    // Directions whose unit vectors are not exact.
    for (const char* end : {"1 1 0", "1 2 3", "-7 3 0.1", "0.3 0.1 0"}) {
        const std::string to = end;
        const std::string main = "(run 0 0 0 " + to + " 20 10)";
        const std::string behind = "(run 0 0 0 9 0 0 20 10)";
        EXPECT_EQ(takeoff("(run 0 0 0 " + to + " 10 10)", behind, main), "nil") << to;
        EXPECT_EQ(takeoff("(run " + to + " 0 0 0 10 10)", behind, main), "nil") << to;
    }
    EXPECT_EQ(solids.made, 0);
}

TEST_F(TakeoffTest, TheFourthSectionMayBeMissing) {
    const std::string one = lengths("8.0", "8.0", "13.0");
    for (const char* fourth :
         {"", "nil", "5", "\"none\"", "(run 52 0 0 52 -40 0 0 10)", "'(52 0 0 52 -40 0 0 0)",
          "(with (with (run 52 0 0 52 -40 0 -3 10) 13 1.0) 14 0.5)"}) {
        EXPECT_EQ(takeoff(kSquareBranch + " "s + fourth), one) << fourth;
    }
    // One that breaks off behind its width is used: here without a shape, and with inner sizes.
    EXPECT_EQ(takeoff(kSquareBranch + " '(52 0 0 52 -40 0 0 0 0 10)"s),
              lengths("8.0", "10.0", "13.0", "13.0"));
    EXPECT_EQ(lines().at(2), "addTransition (52 0 0) 9.99x0 (52 -13 0) 9.99x0 [-Y, +X, +Z] 4");
}

}  // namespace
}  // namespace sg

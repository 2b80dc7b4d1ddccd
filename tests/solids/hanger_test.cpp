#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class HangerTest : public SolidsTest {
  protected:
    // About a duct at (0, 0, 10); rod 0.5, thickness 0.25.
    std::string hanger(const std::string& kind, const std::string& size,
                       const std::string& elevation, const std::string& angle = "0.0",
                       const std::string& rectangular = "t") {
        return call("(qn_qn-drawHanger " + kind + " '(0.0 0.0 10.0) " + angle + " " + size + " " +
                    rectangular + " 0.5 0.25 " + elevation + " 6)");
    }
};

TEST_F(HangerTest, AStrapHangsByOneRod) {
    const std::string band =
        "addTransition (-0.25 0 10) 12.5x8.5 (0.25 0 10) 12.5x8.5 "
        "[+X, +Y, +Z] 6";
    // A tenth of the thickness on either side is hollow too.
    const std::string hole =
        "subtractTransition (-0.25 0 10) 12.05x8.05 (0.25 0 10) 12.05x8.05 "
        "[+X, +Y, +Z] 6";
    const struct {
        const char* elevation;
        const char* rod;
    } cases[] = {
        {"20.0", "(0 0 14) o0.5x0.5 (0 0 20) o0.5x0.5 [+Z, +X, +Y]"},
        {"0.0", "(0 0 6) o0.5x0.5 (0 0 0) o0.5x0.5 [-Z, +Y, +X]"},
        // Inside the duct: the rod begins at the side that the centre's elevation decides on.
        {"12.0", "(0 0 14) o0.5x0.5 (0 0 12) o0.5x0.5 [+Z, +X, +Y]"},
        {"10.0", "(0 0 6) o0.5x0.5 (0 0 10) o0.5x0.5 [-Z, +Y, +X]"},
        {"14.0", nullptr},
        {"6.0", nullptr},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(hanger("t", "12.0 8.0", c.elevation), "((\"hanger\" . E))") << c.elevation;
        std::vector<std::string> expected = {band};
        if (c.rod != nullptr) expected.push_back("addTransition "s + c.rod + " 6");
        expected.push_back(hole);
        EXPECT_THAT(lines(), ElementsAreArray(expected)) << c.elevation;
    }
}

TEST_F(HangerTest, AStrapFollowsTheDuctsShapeAndDirection) {
    hanger("t", "8.0 8.0", "20.0", "(/ pi 2)", "nil");
    EXPECT_THAT(lines(),
                ElementsAre("addTransition (0 -0.25 10) o8.5x8.5 (0 0.25 10) o8.5x8.5 "
                            "[+Y, -X, +Z] 6",
                            "addTransition (0 0 14) o0.5x0.5 (0 0 20) o0.5x0.5 [+Z, +Y, -X] 6",
                            "subtractTransition (0 -0.25 10) o8.05x8.05 (0 0.25 10) o8.05x8.05 "
                            "[+Y, -X, +Z] 6"));
}

// A bar of 26 by 0.25 under a duct of 24 by 12, its centre at 10 - 6 - 0.125.
TEST_F(HangerTest, ATrapezeHangsByTwoRodsThatDiffer) {
    const std::string bar =
        "addTransition (0.5 0 3.875) 26x0.25 (-0.5 0 3.875) 26x0.25 "
        "[+X, +Y, +Z] 6";
    const struct {
        const char* elevation;
        std::vector<std::string> rods;
    } cases[] = {
        {"20.0",
         {"(0 -12.5 4) o0.5x0.5 (0 -12.5 20) o0.5x0.5 [+Z, +X, +Y]",
          "(0 12.5 20) o0.5x0.5 (0 12.5 4) o0.5x0.5 [+Z, -X, -Y]"}},
        // From below: the first stands on the underside, the second on the top.
        {"0.0",
         {"(0 -12.5 3.75) o0.5x0.5 (0 -12.5 0) o0.5x0.5 [+Z, +X, +Y]",
          "(0 12.5 0) o0.5x0.5 (0 12.5 4) o0.5x0.5 [+Z, -X, -Y]"}},
        // At the first rod's foot there are none, though the second would have some length.
        {"4.0", {}},
        {"3.75", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(hanger("nil", "24.0 12.0", c.elevation), "((\"hanger\" . E))") << c.elevation;
        std::vector<std::string> expected;
        for (const std::string& rod : c.rods)
            expected.push_back("addTransition " + rod + " 6");
        expected.push_back(bar);
        EXPECT_THAT(lines(), ElementsAreArray(expected)) << c.elevation;
    }
    // The second rod's frame does not turn with the duct; the bar is rectangular for a round one.
    hanger("nil", "24.0 12.0", "20.0", "(/ pi 2)", "nil");
    EXPECT_THAT(lines(), ElementsAre("addTransition (12.5 0 4) o0.5x0.5 (12.5 0 20) o0.5x0.5 "
                                     "[+Z, +Y, -X] 6",
                                     "addTransition (-12.5 0 20) o0.5x0.5 (-12.5 0 4) o0.5x0.5 "
                                     "[+Z, -X, -Y] 6",
                                     "addTransition (0 0.5 3.875) 26x0.25 (0 -0.5 3.875) 26x0.25 "
                                     "[+Y, -X, +Z] 6"));
}

TEST_F(HangerTest, ARefusedBodyIsNilAndLeavesNothing) {
    for (const char* kind : {"t", "nil"}) {
        for (size_t body = 0; body < 3; ++body) {
            solids.answers.clear();
            solids.answers["addTransition"].assign(body, true);
            solids.answers["addTransition"].push_back(false);
            solids.answers["subtractTransition"] = {false};
            EXPECT_EQ(hanger(kind, "24.0 12.0", "20.0"), "nil") << kind << body;
            EXPECT_EQ(lines().size(), body + 1) << kind << body;
            EXPECT_EQ(solids.alive, 0);
        }
    }
    EXPECT_EQ(entities(), 0);
}

}  // namespace
}  // namespace sg

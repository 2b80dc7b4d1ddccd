#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class SectionTest : public SolidsTest {};

TEST_F(SectionTest, FramesFollowTheRun) {
    const struct {
        const char* sections;
        const char* frame;
    } cases[] = {
        {"level", "((1.0 0.0 0.0) (0.0 1.0 0.0) (0.0 0.0 1.0))"},
        {"(run 0 5 0 0 0 0 12 8)", "((0.0 -1.0 0.0) (1.0 0.0 0.0) (0.0 0.0 1.0))"},
        // Sloped: 3 along and 4 up.
        {"(run 0 0 0 3 0 4 12 8)", "((0.6 0.0 0.8) (0.0 1.0 0.0) (-0.8 0.0 0.6))"},
        // Vertical: z is the world's x, whatever the height, down as well as up.
        {"(run 1 2 0 1 2 5 12 8)", "((0.0 0.0 1.0) (0.0 -1.0 0.0) (1.0 0.0 0.0))"},
        {"(run 1 2 0 1 2 -5 12 8)", "((0.0 0.0 -1.0) (0.0 1.0 0.0) (1.0 0.0 0.0))"},
        {"(run 1 2 0 1.00000000001 2 5 12 8)", "((0.0 0.0 1.0) (0.0 -1.0 0.0) (1.0 0.0 0.0))"},
        // Vertical with a next section, which says where y is.
        {"(run 0 0 0 0 0 5 12 8) (run 0 0 5 0 9 5 12 8)",
         "((0.0 0.0 1.0) (0.0 1.0 0.0) (-1.0 0.0 0.0))"},
        // The next one is vertical too, breaks off, or comes behind a section that is not vertical.
        {"(run 0 0 0 0 0 5 12 8) (run 0 0 5 0 0 9 12 8)",
         "((0.0 0.0 1.0) (0.0 -1.0 0.0) (1.0 0.0 0.0))"},
        {"(run 0 0 0 0 0 5 12 8) '(0 0 5 0 9 5)", "((0.0 0.0 1.0) (0.0 -1.0 0.0) (1.0 0.0 0.0))"},
        {"level (run 20 0 0 20 9 0 12 8)", "((1.0 0.0 0.0) (0.0 1.0 0.0) (0.0 0.0 1.0))"},
        // Without length there is nothing to follow.
        {"(run 1 1 1 1 1 1 12 8)", "((0.0 0.0 0.0) (0.0 0.0 0.0) (1.0 0.0 0.0))"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(call(std::string("(qn_qn-getTripleCoord ") + c.sections + ")"), c.frame)
            << c.sections;
    }
}

// On a run of 3 along and 4 up, y is (0.64, 1, -0.48) times what the quarter turn lacks in x and z.
TEST_F(SectionTest, TheQuarterTurnIsShort) {
    const double lack = 3.141592653589793 / 2 - 1.570796325;
    const std::string x =
        eval("(caadr (qn_qn-getTripleCoord (run 0.0 0.0 0.0 3.0 0.0 4.0 12.0 8.0)))");
    EXPECT_NEAR(std::stod(x), 0.64 * lack, 1e-14);
}

// The centre line of a piece 13 by 9 outside, along x.
TEST_F(SectionTest, JustificationMovesTheCentreLine) {
    const struct {
        const char* horizontal;
        const char* vertical;
        const char* flagAndGap;
        const char* head;
    } cases[] = {
        {"", "", "0 1.0", "(0 0 0)"},        {"", "t", "0 1.0", "(0 0 -4.5)"},
        {"", "b", "1 1.0", "(0 0 4.5)"},     {"", "h", "0 1.0", "(0 0 4.5)"},
        {"", "h", "1 1.0", "(0 0 5.5)"},     {"", "h", "-1 2.25", "(0 0 6.75)"},
        {"", "T", "0 1.0", "(0 0 0)"},       {"r", "", "0 1.0", "(0 -6.5 0)"},
        {"l", "", "0 1.0", "(0 6.5 0)"},     {"R", "c", "0 1.0", "(0 0 0)"},
        {"l", "t", "0 1.0", "(0 6.5 -4.5)"},
    };
    for (const auto& c : cases) {
        const std::string section = std::string("(list 0 0 0 9 0 0 0 0 0 10 6 \"RC\" 1 0.5 \"") +
                                    c.horizontal + "\" \"" + c.vertical + "\" " + c.flagAndGap +
                                    ")";
        EXPECT_EQ(call("(qn_qn-drawTripleCenter nil 3 " + section + ")"), "E");
        ASSERT_EQ(lines().size(), 1u);
        EXPECT_THAT(lines()[0], testing::StartsWith("addTransition "s + c.head + " 13x9 "))
            << section;
    }
}

TEST_F(SectionTest, AStraightPieceHasOneBody) {
    EXPECT_EQ(call("(qn_qn-drawTripleCenter nil 3 (with (with level 8 2.0) 9 3))"), "E");
    EXPECT_THAT(lines(), ElementsAre("addTransition (2 0 0) 12x8 (17 0 0) 12x8 [+X, +Y, +Z] 3"));
    EXPECT_EQ(entities(), 1);
    EXPECT_EQ(eval("(cdr (assoc 0 (entget (entlast))))"), "\"QN_HVACSOLID\"");

    // A riser that turns to y: its width lies along y.
    call("(qn_qn-drawTripleCenter nil -1 (run 0 0 0 0 0 5 12 8) (run 0 0 5 0 9 5 12 8))");
    EXPECT_THAT(lines(), ElementsAre("addTransition (0 0 0) 12x8 (0 0 5) 12x8 [+Z, +Y, -X] -1"));

    // Setbacks may pass each other, and sizes are taken without their sign.
    call("(qn_qn-drawTripleCenter nil 0 (with (with (run 0 0 0 10 0 0 -12 8) 8 8) 9 8))");
    EXPECT_THAT(lines(), ElementsAre("addTransition (8 0 0) 12x8 (2 0 0) 12x8 [+X, +Y, +Z] 0"));
}

TEST_F(SectionTest, APieceThatIsTooShortOrRefusedIsNil) {
    for (const char* section : {"(run 0 0 0 0.009 0 0 12 8)", "(run 1 1 1 1 1 1 12 8)",
                                "(with (with level 8 15.0) 9 4.995)"}) {
        EXPECT_EQ(call(std::string("(qn_qn-drawTripleCenter nil 0 ") + section + ")"), "nil");
        EXPECT_THAT(lines(), IsEmpty()) << section;
    }
    solids.answers["addTransition"] = {false};
    EXPECT_EQ(call("(qn_qn-drawTripleCenter nil 0 level)"), "nil");
    EXPECT_EQ(lines().size(), 1u);
    EXPECT_EQ(entities(), 0);
    EXPECT_EQ(solids.alive, 0);
}

// A piece asks the shape's class, a transition the section's.
TEST_F(SectionTest, ShapesAndSectionsDifferInTheirClass) {
    const struct {
        const char* code;
        bool pieceRound, sectionRound;
    } cases[] = {
        {"RD", true, true},   {"rd", true, true},    {"Rd", true, false},   {"OO", true, true},
        {"dx", true, true},   {"dX", true, false},   {"OX", true, true},    {"oX", true, false},
        {"RC", false, false}, {"RDX", false, false}, {" RD", false, false}, {"", false, false},
    };
    for (const auto& c : cases) {
        const std::string section = std::string("(with level 12 \"") + c.code + "\")";
        call("(qn_qn-drawTripleCenter nil 0 " + section + ")");
        EXPECT_EQ(lines().at(0).find(" o12x8 ") != std::string::npos, c.pieceRound) << c.code;
        // A change of class gives a transition from 12x8 to 12x8 its length.
        call("(qn_qn-drawTripleTransition nil 0 " + section + " onward)");
        EXPECT_EQ(lines().size(), c.sectionRound ? 1u : 0u) << c.code;
    }
}

TEST_F(SectionTest, PointsGoThroughAFunctionOfTheProgram) {
    // The one that comes with the product answers them as they are.
    EXPECT_EQ(call("(qn_qn-drawTripleCenter t 0 level)"), "E");
    EXPECT_THAT(lines(), ElementsAre("addTransition (0 0 0) 12x8 (20 0 0) 12x8 [+X, +Y, +Z] 0"));

    eval(
        "(defun convert_rp_dp (p v) (setq given (cons (list p v) given)) "
        "(list (car p) (cadr p) (+ 100.0 v)))");
    call("(qn_qn-drawTripleCenter t 0 (with level 7 70000))");
    EXPECT_THAT(lines(),
                ElementsAre("addTransition (0 0 70100) 12x8 (20 0 70100) 12x8 [+X, +Y, +Z] 0"));
    EXPECT_EQ(eval("(car given)"), "((20.0 0.0 0.0) 70000)");

    eval("(setq given nil)");
    call("(qn_qn-drawTripleCenter nil 0 level)");
    EXPECT_EQ(eval("given"), "nil");
    EXPECT_EQ(call("(qn_qn-getTripleCoord level)"), "((1.0 0.0 0.0) (0.0 1.0 0.0) (0.0 0.0 1.0))");
    EXPECT_EQ(eval("(length given)"), "2");
}

TEST_F(SectionTest, AnythingButAPointInSpaceConvertsNothing) {
    for (const char* body : {"nil", "'(1.0 2.0)", "'(1 2 3)", "\"point\"", "(/ 1 0)",
                             "'(1.0 2.0 3.0 4.0)", "(exit)"}) {
        eval(std::string("(defun convert_rp_dp (p v) ") + body + ")");
        EXPECT_EQ(call("(qn_qn-drawTripleCenter t 0 level)"), "E") << body;
        EXPECT_THAT(lines(),
                    ElementsAre("addTransition (0 0 0) 12x8 (20 0 0) 12x8 [+X, +Y, +Z] 0"));
        errors();
    }
    eval("(setq convert_rp_dp 5)");
    EXPECT_EQ(call("(qn_qn-drawTripleCenter t 0 level)"), "E");
}

TEST_F(SectionTest, ListsReadNumbersOfEitherKindAndNothingElse) {
    EXPECT_EQ(call("(apply 'qn_qn-getTripleCoord level)"),  // a list without its marks
              "((1.0 0.0 0.0) (0.0 1.0 0.0) (0.0 0.0 1.0))");
    for (int place = 1; place <= 18; ++place) {
        const bool isText = place == 12 || place == 15 || place == 16;
        for (const char* wrong : {isText ? "1.0" : "\"1\"", "nil", "t", "'(1 2)"}) {
            const std::string section = "(with level " + std::to_string(place) + " " + wrong + ")";
            EXPECT_EQ(eval("(qn_qn-getTripleCoord " + section + ")"), "; error: ADS request error")
                << section;
            EXPECT_EQ(eval("(qn_qn-drawTripleCenter nil 0 " + section + ")"),
                      "; error: ADS request error")
                << section;
        }
    }
    EXPECT_EQ(solids.made, 0);
}

TEST_F(SectionTest, WithoutTheCompanionNothingIsMade) {
    eval("(arxunload \"qn_qn-solid2017.dbx\")");
    ASSERT_EQ(qn_hvacSolid::desc(), nullptr);
    printed();
    EXPECT_EQ(eval("(qn_qn-drawTripleCenter nil 0 level)"), "nil");
    EXPECT_EQ(eval("(qn_qn-drawTripleElbow nil 0 t 5.0 level onward)"), "nil");
    EXPECT_EQ(eval("(qn_qn-drawHanger t '(0.0 0.0 0.0) 0.0 1.0 1.0 t 1.0 1.0 1.0 0)"), "nil");
    EXPECT_THAT(printed(), testing::HasSubstr("qn_qn-solid2017.dbx, which is not loaded."));
    EXPECT_EQ(entities(), 0);
}

}  // namespace
}  // namespace sg

#include "solids/solids_fixture.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;

class SolidArgumentsTest : public SolidsTest {};

// What stands for each kind of argument, and what does not.
struct Kind {
    const char* good;
    std::vector<const char*> wrong;
};
const Kind kSwitch = {"nil", {"'(1 2)"}};
const Kind kInteger = {"3", {"\"3\"", "nil", "t", "'(1 2)"}};
const Kind kReal = {"1.5", {"1", "\"1.5\"", "nil", "t", "'(1.0 2.0)"}};
const Kind kPoint = {"'(0.0 0.0 9.0)", {"'(0 0 9)", "\"0,0\"", "nil", "(entlast)"}};
const Kind kSection = {"(run 0.0 0.0 0.0 9.0 0.0 0.0 12.0 8.0)",
                       {"nil", "\"section\"", "'(1.0 2.0 3.0)", "'((0.0 0.0 0.0) (9.0 0.0 0.0) 0)",
                        "(cdr level)", "(entlast)"}};
const Kind kPoints = {"'((0.0 0.0) (1.0 1.0))", {"nil", "1.0", "\"points\"", "'(0.0 0.0 0.0)"}};
const Kind kName = {"(entlast)", {"nil", "5", "\"name\"", "(ssget \"X\")", "'(1 2)"}};

struct Function {
    const char* name;
    std::vector<Kind> arguments;
};
const Function kFunctions[] = {
    {"qn_qn-getTripleCoord", {kSection}},
    {"qn_qn-drawTripleCenter", {kSwitch, kInteger, kSection}},
    {"qn_qn-drawTripleElbow", {kSwitch, kInteger, kSwitch, kReal, kSection, kSection}},
    {"qn_qn-drawTripleTakeoff", {kSwitch, kInteger, kSwitch, kReal, kSection, kSection, kSection}},
    {"qn_qn-drawTripleWye", {kSwitch, kInteger, kSwitch, kReal, kSection, kSection, kSection}},
    {"qn_qn-drawTripleTransition", {kSwitch, kInteger, kSection, kSection}},
    {"qn_qn-drawTripleSkin", {kReal, kPoints}},
    {"qn_qn-drawHanger",
     {kSwitch, kPoint, kReal, kReal, kReal, kSwitch, kReal, kReal, kReal, kInteger}},
    {"qn_qn-tripleUnion", {kName, kName}},
    {"qn_qn-explodeSolid", {kName}},
};

std::string callOf(const Function& function, size_t count, size_t place = 0,
                   const char* wrong = nullptr) {
    std::string form = "("s + function.name;
    for (size_t i = 0; i < count; ++i)
        form += " "s + (wrong != nullptr && i == place ? wrong : function.arguments[i].good);
    return form + ")";
}

TEST_F(SolidArgumentsTest, EveryMissingOrWrongOneIsAnErrorAndMakesNothing) {
    eval("(setq a (qn_qn-drawTripleCenter nil 0 level))");
    const int made = solids.made;
    for (const Function& function : kFunctions) {
        const size_t count = function.arguments.size();
        for (size_t given = 0; given < count; ++given) {
            EXPECT_EQ(eval(callOf(function, given)), "; error: ADS request error")
                << function.name << " with " << given;
        }
        for (size_t place = 0; place < count; ++place) {
            for (const char* wrong : function.arguments[place].wrong) {
                const std::string form = callOf(function, count, place, wrong);
                printed();
                EXPECT_EQ(eval(form), "; error: ADS request error") << form;
                EXPECT_THAT(printed(), testing::HasSubstr("Wrong type of arguments")) << form;
            }
        }
    }
    EXPECT_EQ(solids.made, made);
    EXPECT_EQ(entities(), 1);
}

// Sizes of nothing, coincident points and what else has no shape goes to the solid, which refuses
// it; the steps before it go through.
TEST_F(SolidArgumentsTest, WhatHasNoShapeIsForTheSolidToRefuse) {
    const char* const odd[] = {
        "(run 0 0 0 9 0 0 0 0)",
        "(run 0 0 0 9 0 0 -12 -8)",
        "(run 0 0 0 0 0 0 12 8)",
        "(run 9 0 0 0 0 0 12 8)",
        "(run 0 0 0 0 0 9 12 8)",
        "(run 0 0 0 0 0 -9 12 8)",
        "(run 0 0 0 9 9 9 12 8)",
        "(run 1e300 0 0 -1e300 0 0 12 8)",
        "(run 0 0 0 9 0 0 1e300 1e-300)",
        "(run 9 0 0 9 9 0 40 40)",
        "level",
    };
    for (const char* a : odd) {
        for (const char* b : odd) {
            for (const char* operation :
                 {"addTransition", "addSquareElbowPrep", "addRadiusElbow", "addWyePrep"}) {
                solids.answers[operation].assign(4, false);
            }
            const std::string two = " "s + a + " " + b;
            for (const std::string& form :
                 {"(qn_qn-drawTripleElbow nil 0 t 5.0" + two + ")",
                  "(qn_qn-drawTripleElbow nil 0 nil 0.0" + two + ")",
                  "(qn_qn-drawTripleTakeoff nil 0 nil 0.0 level" + two + two + ")",
                  "(qn_qn-drawTripleTakeoff nil 0 nil 0.0" + two + " level)",
                  "(qn_qn-drawTripleWye nil 0 nil 0.0 level" + two + ")",
                  "(qn_qn-drawTripleWye nil 0 nil 0.0" + two + " level)"}) {
                EXPECT_EQ(eval(form), "nil") << form;
            }
        }
    }
    EXPECT_EQ(solids.alive, 0);
}

}  // namespace
}  // namespace sg

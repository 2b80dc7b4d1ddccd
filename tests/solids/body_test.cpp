#include "platform/db/circle.h"
#include "platform/db/line.h"
#include "solids/solids_fixture.h"
#include "solids/transition.h"

namespace sg {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class BodyTest : public SolidsTest {};

TEST_F(BodyTest, ATransitionIsAsLongAsItsTaper) {
    const struct {
        const char* first;
        const char* second;
        const char* length;  // null for none
        const char* line;
    } cases[] = {
        {"level", "(run 20 0 0 40 0 0 12 8)", nullptr, nullptr},
        {"level", "(run 20 0 0 40 0 0 -12 -8)", nullptr, nullptr},
        // 1 / tan 15 degrees, along the second run from its head.
        {"level", "(run 20 0 0 40 0 0 10 8)", "3.7321",
         "(20 0 0) 12x8 (23.7321 0 0) 10x8 [+X, +Y, +Z]"},
        {"level", "(run 21 0 5 40 0 5 10 8)", "3.7321",
         "(20 0 0) 12x8 (24.7321 0 5) 10x8 [+X, +Y, +Z]"},
        {"level", "(with (run 20 0 0 40 0 0 12 8) 12 \"RD\")", "6.0",
         "(20 0 0) 12x8 (26 0 0) o12x8 [+X, +Y, +Z]"},
        {"(with level 12 \"RD\")", "(run 20 0 0 40 0 0 12 8)", "6.0",
         "(20 0 0) o12x8 (26 0 0) 12x8 [+X, +Y, +Z]"},
        // The ends keep frames of their own.
        {"level", "(run 20 0 0 20 20 0 10 8)", "3.7321",
         "(20 0 0) 12x8 (20 3.7321 0) 10x8 [+X, +Y, +Z] [+Y, -X, +Z]"},
        {"level", "(run 20 0 0 20 0 20 10 8)", "3.7321",
         "(20 0 0) 12x8 (20 0 3.7321) 10x8 [+X, +Y, +Z] [+Z, +X, +Y]"},
    };
    int made = 0;
    for (const auto& c : cases) {
        const std::string result =
            call("(qn_qn-drawTripleTransition nil 5 "s + c.first + " " + c.second + ")");
        if (c.length == nullptr) {
            EXPECT_EQ(result, "nil") << c.second;
            EXPECT_THAT(lines(), IsEmpty());
            continue;
        }
        EXPECT_EQ(result,
                  "((\"en1\" . E) (\"dHeadLength\" . 0.0) (\"dTailLength\" . "s + c.length + "))");
        EXPECT_THAT(lines(), ElementsAre("addTransition "s + c.line + " 5"));
        EXPECT_EQ(entities(), ++made);
    }
    // What the solid answers does not matter.
    solids.answers["addTransition"] = {false};
    EXPECT_NE(call("(qn_qn-drawTripleTransition nil 5 level (run 20 0 0 40 0 0 10 8))"), "nil");
    EXPECT_EQ(entities(), made + 1);
}

TEST_F(BodyTest, AFixedLengthTakesTheTapersPlace) {
    DuctSection first, second;
    first.tailPoint = {20, 0, 0};
    second.headPoint = {20, 0, 0};
    second.tailPoint = {40, 0, 0};
    first.width = first.height = second.height = 8;
    second.width = 10;
    const struct {
        const wchar_t* fixed;
        double length;
    } cases[] = {
        {L"7.5", 7.5}, {L" 2 units", 2}, {L"-4", 0}, {L"0.0", 3.7320508}, {L"long", 3.7320508}};
    for (const auto& c : cases) {
        first.fixedLength = c.fixed;
        EXPECT_NEAR(makeTransition(first, second, {}).length, c.length, 1e-6) << c.fixed;
    }
}

TEST_F(BodyTest, ASkinGoesThroughEveryPoint) {
    const struct {
        const char* points;
        const char* line;
    } cases[] = {
        {"(list '(0.0 0.0 1.0) '(1.0 0.0) '(1.0 1.0 5.0))", "addSkin (0 0 1) (1 0 0) (1 1 5) 2.5"},
        {"'(1 2 3 4.0 5.0 6.0)", "addSkin (1 2 3) (4 5 6) 2.5"},
        {"(list '(0.0 0.0) \"end\" '(1.0 1.0))", "addSkin (0 0 0) 2.5"},
        {"(list '(0.0 0.0) '(1 2 3))", "addSkin (0 0 0) 2.5"},
        {"'(\"none\")", "addSkin 2.5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(call("(qn_qn-drawTripleSkin 2.5 "s + c.points + ")"), "((\"en\" . E))");
        EXPECT_THAT(lines(), ElementsAre(c.line));
    }
    solids.answers["addSkin"] = {false};
    EXPECT_EQ(call("(qn_qn-drawTripleSkin 2.5 '((0.0 0.0) (1.0 1.0)))"), "nil");
    EXPECT_EQ(entities(), 5);
    EXPECT_EQ(solids.alive, 5);
}

TEST_F(BodyTest, AUnionErasesWhatItTook) {
    eval(
        "(setq a (qn_qn-drawTripleCenter nil 0 level) b (qn_qn-drawTripleCenter nil 0 onward) "
        "line (entmakex '((0 . \"LINE\") (10 0 0 0) (11 1 0 0))))");
    solids.answers["doUnion"] = {false};
    EXPECT_EQ(call("(qn_qn-tripleUnion a b)"), "nil");
    EXPECT_EQ(entities(), 3);
    for (const char* wrong : {"", "a", "a line", "line a", "a a", "a 5", "nil a", "\"a\" b"}) {
        EXPECT_EQ(eval("(qn_qn-tripleUnion "s + wrong + ")"), "; error: ADS request error")
            << wrong;
    }
    EXPECT_EQ(call("(qn_qn-tripleUnion a b)"), "nil");
    EXPECT_THAT(lines(), ElementsAre("doUnion another"));
    EXPECT_EQ(eval("(list (not (entget a)) (entget b))"), "(nil nil)");
    EXPECT_EQ(eval("(qn_qn-tripleUnion a b)"), "; error: ADS request error");
    // Nothing was left open.
    EXPECT_EQ(eval("(and (entdel a) (entdel b) (entget b) t)"), "T");
}

TEST_F(BodyTest, AnExplosionsEntitiesAreAddedInTheirOrder) {
    eval(
        "(setq a (qn_qn-drawTripleCenter nil 0 level) "
        "line (entmakex '((0 . \"LINE\") (10 0 0 0) (11 1 0 0))))");
    EXPECT_EQ(call("(qn_qn-explodeSolid a)"), "nil");
    solids.explode = [](AcDbVoidPtrArray& entities) {
        entities.append(new AcDbLine({0, 0, 0}, {1, 0, 0}));
        entities.append(new AcDbCircle({0, 0, 0}, {0, 0, 1}, 2));
    };
    EXPECT_EQ(eval("(setq r (qn_qn-explodeSolid a)) "
                   "(mapcar '(lambda (p) (list (car p) (cdr (assoc 0 (entget (cdr p)))))) r)"),
              "((\"FACE\" \"LINE\") (\"FACE\" \"CIRCLE\"))");
    EXPECT_EQ(entities(), 4);  // the solid stays
    printed();
    for (const char* wrong : {"line", "(progn (entdel a) a)"}) {
        EXPECT_EQ(eval("(qn_qn-explodeSolid "s + wrong + ")"), "; error: ADS request error");
        EXPECT_THAT(printed(), testing::HasSubstr("Bad data passed")) << wrong;
    }
    for (const char* wrong : {"", "nil", "5", "\"a\""}) {
        EXPECT_EQ(eval("(qn_qn-explodeSolid "s + wrong + ")"), "; error: ADS request error");
        EXPECT_THAT(printed(), testing::HasSubstr("Wrong type")) << wrong;
    }
}

}  // namespace
}  // namespace sg

#include "jigs/jig_fixture.h"

namespace sg {
namespace {

using namespace test;

class MultiJigTest : public JigTest {
  protected:
    void SetUp() override {
        JigTest::SetUp();
        eval(R"((defun block (name base / )
                  (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 2) (cons 10 base)))
                  (entmake '((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))
                  (entmake '((0 . "ATTDEF") (10 0.0 0.0 0.0) (40 . 1.0) (1 . "none") (2 . "TAG")
                             (3 . "Tag") (70 . 0)))
                  (entmake '((0 . "ATTDEF") (10 0.0 0.0 0.0) (40 . 1.0) (1 . "fix") (2 . "FIX")
                             (3 . "") (70 . 2)))
                  (entmake '((0 . "ENDBLK"))))
                (block "A" '(0.0 0.0 0.0))
                (block "B" '(2.0 1.0 0.0))
                (defun of (code entity) (cdr (assoc code (entget entity))))
                (defun line (x)
                  (entmake (list '(0 . "LINE") (list 10 x 0.0 0.0) (list 11 (+ x 1.0) 0.0 0.0)))
                  (entlast))
                (defun missing (name) (setq missed (cons name missed)))
                (defun qnBlock-alertMissing (name) (missing name)))");
    }
};

// ---- Moving and turning -------------------------------------------------------------------------

struct Ending {
    const char* name;
    std::vector<std::string> steps;
    const char* move;
    const char* turn;
};

TEST_F(MultiJigTest, MovesAndTurnsAnswerByHowTheyEnd) {
    const Ending endings[] = {
        {"a point", {"10,0"}, "(10.0 0.0 0.0)", "0.0"},
        {"samples before it", {"sample 1,1", "sample 2,2", "5,5"}, "(5.0 5.0 0.0)", "0.785398"},
        {"the base point", {"0,0"}, "(0.0 0.0 0.0)", "0.0"},
        {"Enter", {"sample 1,1", ""}, "nil", "nil"},
        {"Esc", {"sample 1,1", "ESC"}, "nil", "nil"},
        {"nobody there", {"sample 1,1"}, "nil", "nil"},
    };
    eval("(setq a (line 0.0) b (line 5.0))");
    const std::string before = eval("(list (entget a) (entget b))");
    for (const Ending& each : endings) {
        EXPECT_EQ(drag(each.steps, "(qn_qn-multiMoveJig \"\\nTo: \" '(0.0 0.0 0.0) (list a b))"),
                  each.move)
            << each.name;
        EXPECT_EQ(drag(each.steps, "(qn_qn-multiRotateJig \"Turn: \" '(0.0 0.0) (list a b))"),
                  each.turn)
            << each.name;
    }
    EXPECT_EQ(eval("(list (entget a) (entget b))"), before) << "only clones are dragged";
    EXPECT_EQ(hand->prompts().front(), "\nTo: ");
    EXPECT_EQ(hand->prompts().back(), "Turn: ");
}

TEST_F(MultiJigTest, NothingToDragAsksNothing) {
    eval("(setq gone (line 0.0)) (entdel gone)");
    for (const char* list : {"nil", "(list gone)", "(list 1 gone)"}) {
        EXPECT_EQ(
            drag({"1,1"}, std::string("(qn_qn-multiMoveJig \"To: \" '(0.0 0.0 0.0) ") + list + ")"),
            "nil")
            << list;
        EXPECT_EQ(hand->left(), 1u) << list;
    }
}

TEST_F(MultiJigTest, NamesEndAtTheFirstThingThatIsNone) {
    eval("(setq a (line 0.0) gone (line 5.0)) (entdel gone)");
    EXPECT_EQ(drag({"1,1"}, "(qn_qn-multiMoveJig \"To: \" '(0.0 0.0 0.0) (list gone a 1))"),
              "(1.0 1.0 0.0)");
}

TEST_F(MultiJigTest, WrongArgumentsFail) {
    const char* calls[] = {
        "(qn_qn-multiMoveJig)",
        "(qn_qn-multiMoveJig 1 '(0.0 0.0) nil)",
        "(qn_qn-multiMoveJig \"\" 1 nil)",
        "(qn_qn-multiRotateJig \"\" '(0.0 0.0) \"x\")",
        "(AcDbBlockReference::Jig)",
        "(AcDbBlockReference::Jig T 1 1.0 nil \"A\")",
        "(AcDbBlockReference::Jig T 1.0 1.0 \"A\")",
        "(qn_qn-createJigTimer \"x\")",
        "(qn_qn-killJigTimer)",
    };
    for (const char* call : calls) {
        EXPECT_EQ(eval(call), "; error: ADS request error") << call;
        EXPECT_EQ(printed(), "\nWrong type of arguments passed.\n") << call;
    }
    EXPECT_EQ(counts().drags, 0u);
}

TEST_F(MultiJigTest, AttributesOfTheOriginalsStay) {
    eval(R"((setq made (AcDbBlockReference::Jig nil 1.0 1.0 '(0.0 0.0 0.0) "A")
                  reference (cdar made)))");
    const std::string before = eval("(entget (entnext reference))");
    EXPECT_NE(before.find("ATTRIB"), std::string::npos);
    drag({"sample 3,3", "5,5"}, "(qn_qn-multiMoveJig \"\" '(0.0 0.0 0.0) (list reference))");
    drag({"sample 3,3", "5,5"}, "(qn_qn-multiRotateJig \"\" '(0.0 0.0 0.0) (list reference))");
    EXPECT_EQ(eval("(entget (entnext reference))"), before);
}

// ---- Blocks -------------------------------------------------------------------------------------

TEST_F(MultiJigTest, BlocksAreInsertedWithTheirAttributes) {
    EXPECT_EQ(drag({"sample 1,1", "4,5", "90"},
                   "(length (setq made (AcDbBlockReference::Jig T 2.0 3.0 nil \"A\" \"B\")))"),
              "2");
    EXPECT_EQ(hand->prompts(), (std::vector<std::string>{
                                   "\nSpecify insertion point: ", "\nSpecify insertion point: ",
                                   "\nSpecify rotation angle <0>: "}));
    EXPECT_EQ(eval("(mapcar 'car made)"), "(\"obj\" \"obj\")");
    EXPECT_EQ(eval("(mapcar '(lambda (e) (of 2 (cdr e))) made)"), "(\"A\" \"B\")");
    EXPECT_EQ(eval("(mapcar '(lambda (e) (of 10 (cdr e))) made)"), "((4.0 5.0 0.0) (4.0 5.0 0.0))");
    EXPECT_EQ(eval("(mapcar '(lambda (c) (of c (cdar made))) '(41 42 43 50))"),
              "(2.0 3.0 2.0 1.5708)");
    EXPECT_EQ(eval("(list (of 0 (entnext (cdar made))) (of 2 (entnext (cdar made))) "
                   "(of 0 (entnext (entnext (cdar made)))))"),
              "(\"ATTRIB\" \"TAG\" \"SEQEND\")")
        << "not the constant one";
    EXPECT_EQ(counts().drags, 2u);
}

struct BlockEnding {
    const char* name;
    const char* rotate;
    const char* base;
    std::vector<std::string> steps;
    const char* rotation;  // of the first reference; nil when there is none
    size_t drags;
};

TEST_F(MultiJigTest, BlocksAskForWhatIsMissing) {
    const BlockEnding endings[] = {
        {"point only", "nil", "nil", {"1,2"}, "0.0", 1},
        {"both", "T", "nil", {"1,2", "90"}, "1.5708", 2},
        {"Enter turns back", "T", "nil", {"1,2", "sample 1,9", ""}, "0.0", 2},
        {"point is given", "T", "'(1.0 2.0 0.0)", {"180"}, "3.14159", 1},
        {"all is given", "nil", "'(1.0 2.0 0.0)", {}, "0.0", 0},
        {"Enter for the point", "T", "nil", {"sample 1,2", ""}, "nil", 1},
        {"Esc for the point", "T", "nil", {"sample 1,2", "ESC"}, "nil", 1},
        {"Esc for the rotation", "T", "nil", {"1,2", "ESC"}, "nil", 2},
        {"nobody there", "T", "'(1.0 2.0 0.0)", {"sample 1,9"}, "nil", 1},
    };
    for (const BlockEnding& each : endings) {
        const size_t before = counts().drags;
        const std::string call = std::string("(AcDbBlockReference::Jig ") + each.rotate +
                                 " 1.0 1.0 " + each.base + " \"A\")";
        drag(each.steps, "(setq made " + call + ")");
        const std::string count = eval("(if (ssget \"X\") (sslength (ssget \"X\")) 0)");
        if (std::string_view(each.rotation) == "nil") {
            EXPECT_EQ(eval("made"), "nil") << each.name;
            EXPECT_EQ(count, "0") << each.name;
        } else {
            EXPECT_EQ(eval("(of 50 (cdar made))"), each.rotation) << each.name;
            EXPECT_EQ(eval("(of 10 (cdar made))"), "(1.0 2.0 0.0)") << each.name;
            eval("(entdel (cdar made))");
        }
        EXPECT_EQ(counts().drags - before, each.drags) << each.name;
    }
}

TEST_F(MultiJigTest, BlocksThatCannotBeFoundAreLeftOut) {
    EXPECT_EQ(eval("(length (AcDbBlockReference::Jig nil 1.0 1.0 '(0.0 0.0 0.0) \"NONE\" \"A\" "
                   "\"OTHER\" 7 \"B\"))"),
              "1");
    EXPECT_EQ(eval("missed"), "(\"OTHER\" \"NONE\")");
    EXPECT_EQ(drag({"1,1"}, "(AcDbBlockReference::Jig T 1.0 1.0 nil \"NONE\")"), "nil");
    EXPECT_EQ(hand->left(), 1u);
}

// The block's base point goes to the point in the end, whatever was shown on the way.
TEST_F(MultiJigTest, BlocksEndOnThePoint) {
    drag({"sample 5,5", "sample 6,6", "10,10"},
         "(setq made (AcDbBlockReference::Jig nil 1.0 1.0 nil \"B\"))");
    EXPECT_EQ(eval("(of 10 (cdar made))"), "(10.0 10.0 0.0)");
}

// A quarter turn of the user's axes: angles come in his, and stay in his where nothing is inserted.
TEST_F(MultiJigTest, InsertedBlocksAreTurnedInTheWorld) {
    turnUserAxes();
    drag({"0"}, "(setq made (AcDbBlockReference::Jig T 1.0 1.0 '(0.0 0.0 0.0) \"A\"))");
    EXPECT_EQ(eval("(of 50 (cdar made))"), "1.5708");
    eval("(setq a (line 0.0))");
    EXPECT_EQ(drag({"45"}, "(qn_qn-multiRotateJig \"\" '(0.0 0.0 0.0) (list a))"), "0.785398");
    EXPECT_EQ(drag({"1,0"}, "(qn_qn-multiMoveJig \"\" '(0.0 0.0 0.0) (list a))"), "(0.0 1.0 0.0)");
}

}  // namespace
}  // namespace sg

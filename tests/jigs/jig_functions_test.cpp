#include "jigs/jig_fixture.h"

namespace sg {
namespace {

using namespace test;

// ---- Rectangles ---------------------------------------------------------------------------------

struct Rectangle {
    const char* name;
    const char* arguments;
    std::vector<std::string> steps;
    const char* result;
};

// 2 high and 4 wide, at (10,10) but for the origin.
TEST_F(JigTest, RectanglesArePlacedByAnyCornerAndTurned) {
    const Rectangle rectangles[] = {
        {"middle", "0 nil", {"10,10"}, "((10.0 10.0 0.0) (8.0 11.0 0.0) (12.0 9.0 0.0) 0.0 0)"},
        {"corner 1", "1 nil", {"10,10"}, "((12.0 11.0 0.0) (10.0 10.0 0.0) (14.0 12.0 0.0) 0.0 1)"},
        {"corner 2", "2 nil", {"10,10"}, "((8.0 11.0 0.0) (10.0 10.0 0.0) (6.0 12.0 0.0) 0.0 2)"},
        {"corner 3", "3 nil", {"10,10"}, "((8.0 9.0 0.0) (10.0 10.0 0.0) (6.0 8.0 0.0) 0.0 3)"},
        {"corner 4", "4 nil", {"10,10"}, "((12.0 9.0 0.0) (10.0 10.0 0.0) (14.0 8.0 0.0) 0.0 4)"},
        {"the origin is no change",
         "1 nil",
         {"0,0"},
         "((2.0 1.0 0.0) (0.0 0.0 0.0) (4.0 2.0 0.0) 0.0 1)"},
        {"out of the middle",
         "0 nil",
         {"Corner", "10,10"},
         "((12.0 9.0 0.0) (10.0 10.0 0.0) (14.0 8.0 0.0) 0.0 0)"},
        {"and on",
         "0 nil",
         {"Corner", "C", "10,10"},
         "((12.0 11.0 0.0) (10.0 10.0 0.0) (14.0 12.0 0.0) 0.0 1)"},
        {"all the way round",
         "1 nil",
         {"C", "C", "C", "C", "C", "10,10"},
         "((8.0 11.0 0.0) (10.0 10.0 0.0) (6.0 12.0 0.0) 0.0 2)"},
        {"into the middle",
         "3 nil",
         {"sample 1,1", "M", "10,10"},
         "((10.0 10.0 0.0) (8.0 11.0 0.0) (12.0 9.0 0.0) 0.0 0)"},
        {"turned",
         "1 T",
         {"10,10", "sample 20,20", "90"},
         "((9.0 12.0 0.0) (10.0 10.0 0.0) (8.0 14.0 0.0) 1.5708 1)"},
        {"turned about the middle",
         "0 T",
         {"10,10", "10,20"},
         "((10.0 10.0 0.0) (9.0 8.0 0.0) (11.0 12.0 0.0) 1.5708 0)"},
        {"Enter keeps the sample",
         "1 T",
         {"10,10", "sample 10,20", ""},
         "((9.0 12.0 0.0) (10.0 10.0 0.0) (8.0 14.0 0.0) 1.5708 1)"},
        {"Enter without a sample",
         "1 T",
         {"10,10", ""},
         "((12.0 11.0 0.0) (10.0 10.0 0.0) (14.0 12.0 0.0) 0.0 1)"},
        {"the flag may be missing",
         "1",
         {"10,10"},
         "((12.0 11.0 0.0) (10.0 10.0 0.0) (14.0 12.0 0.0) 0.0 1)"},
        {"Enter for the point", "1 T", {"sample 1,1", ""}, "nil"},
        {"Esc for the point", "1 T", {"sample 1,1", "ESC"}, "nil"},
        {"Esc behind a keyword", "1 T", {"C", "ESC"}, "nil"},
        {"Esc for the rotation", "1 T", {"10,10", "sample 1,1", "ESC"}, "nil"},
        {"nobody there", "1 T", {"10,10"}, "nil"},
    };
    for (const Rectangle& each : rectangles) {
        EXPECT_EQ(drag(each.steps, std::string("(RectangleJig 2.0 4.0 ") + each.arguments + ")"),
                  each.result)
            << each.name;
        EXPECT_EQ(hand->left(), 0u) << each.name;
    }
    EXPECT_EQ(eval("(ssget \"X\")"), "nil");
}

TEST_F(JigTest, RectanglesAreTurnedInTheWorld) {
    turnUserAxes();
    for (const char* last : {"0", "sample 9,0"}) {
        std::vector<std::string> steps = {"0,0", last};
        if (steps.back().starts_with("sample")) steps.push_back("");
        EXPECT_EQ(drag(steps, "(cadddr (RectangleJig 2.0 4.0 1 T))"), "1.5708") << last;
    }
}

TEST_F(JigTest, RectanglesPromptForWhatTheyAsk) {
    drag({"C", "1,1", "5"}, "(RectangleJig 2.0 4.0 1 T)");
    EXPECT_EQ(hand->prompts(),
              (std::vector<std::string>{
                  "\nSpecify insertion point or [Corner/Middle]: ",
                  "\nSpecify insertion point or [Corner/Middle]: ", "\nSpecify rotation: "}));
}

// ---- Lines --------------------------------------------------------------------------------------

TEST_F(JigTest, LinesEndWithEnter) {
    struct Case {
        const char* call;
        std::vector<std::string> steps;
        const char* result;
    };
    const Case cases[] = {
        {"(qn_qn-lineJig)",
         {"1,1", "sample 2,2", "3,3", "@0,1", ""},
         "((1.0 1.0 0.0) (3.0 3.0 0.0) (3.0 4.0 0.0))"},
        {"(qn_qn-lineJig \"0\" '(5.0 5.0 0.0))", {"6,6", ""}, "((5.0 5.0 0.0) (6.0 6.0 0.0))"},
        {"(qn_qn-lineJig \"0\" '(5.0 5.0))", {""}, "((5.0 5.0 0.0))"},
        {"(qn_qn-lineJig nil '(5.0 5.0))", {""}, "((5.0 5.0 0.0))"},
        {"(qn_qn-lineJig \"no such layer\")", {"1,1", ""}, "((1.0 1.0 0.0))"},
        {"(qn_qn-lineJig \"0\")", {""}, "nil"},
        {"(qn_qn-lineJig \"0\")", {"1,1", "2,2", "ESC"}, "nil"},
        {"(qn_qn-lineJig \"0\" '(5.0 5.0))", {"sample 1,1"}, "nil"},
        {"(qn_qn-lineJig 5)", {}, "; error: ADS request error"},
        {"(qn_qn-lineJig \"0\" \"1\")", {}, "; error: ADS request error"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(drag(each.steps, each.call), each.result) << each.call;
    EXPECT_EQ(eval("(ssget \"X\")"), "nil");
}

TEST_F(JigTest, LinesHaveARubberBandFromTheLastPoint) {
    std::vector<std::string> bands;
    hand->onDrag = [&](const DragRequest& request) {
        bands.push_back(request.basePoint ? std::to_string(static_cast<int>(request.basePoint->x)) +
                                                " " + std::to_string(request.cursor)
                                          : "none " + std::to_string(request.cursor));
    };
    drag({"1,1", "sample 9,9", "3,3", ""}, "(qn_qn-lineJig)");
    EXPECT_EQ(bands, (std::vector<std::string>{"none -1", "1 2", "1 2", "3 2"}));
    EXPECT_EQ(hand->prompts(),
              (std::vector<std::string>{"\nSpecify start point: ", "\nSpecify next point: ",
                                        "\nSpecify next point: ", "\nSpecify next point: "}));
    bands.clear();
    drag({""}, "(qn_qn-lineJig \"\" '(5.0 5.0 0.0))");
    EXPECT_EQ(bands, std::vector<std::string>{"5 2"});
    EXPECT_EQ(hand->prompts().back(), "\nSpecify next point: ");
    EXPECT_EQ(counts().clears, 2u);
}

// ---- Texts and rotations ------------------------------------------------------------------------

TEST_F(JigTest, TextsAnswerWhereTheyArePut) {
    struct Case {
        const char* arguments;
        std::vector<std::string> steps;
        const char* result;
    };
    const Case cases[] = {
        {"\"A\" \"Standard\" 2.5 \"0\"", {"sample 1,1", "3,4"}, "(3.0 4.0 0.0)"},
        {"\"A\" \"Standard\" 2.5 \"no such layer\"", {"0,0"}, "(0.0 0.0 0.0)"},
        {"\"A\" \"Standard\" 2.5 \"0\"", {"", "3,4"}, "(3.0 4.0 0.0)"},
        {"\"A\" \"Standard\" 2.5 \"0\"", {"sample 1,1", "ESC"}, "nil"},
        {"\"A\" \"no such style\" 2.5 \"0\"", {}, "nil"},
        {"\"A\" \"Standard\" 2 \"0\"", {}, "; error: ADS request error"},
        {"\"A\" \"Standard\" 2.5", {}, "; error: ADS request error"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(drag(each.steps, std::string("(qn_qn-textJig ") + each.arguments + ")"),
                  each.result)
            << each.arguments;
        EXPECT_EQ(hand->left(), 0u) << each.arguments;
    }
    EXPECT_EQ(hand->prompts().front(), "\nSpecify text insertion point: ");
    EXPECT_EQ(eval("(ssget \"X\")"), "nil");
}

TEST_F(JigTest, RotationsAreAboutTheEntitysPlace) {
    eval(R"((entmake '((0 . "BLOCK") (2 . "A") (70 . 0) (10 0.0 0.0 0.0)))
            (entmake '((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))
            (entmake '((0 . "ENDBLK")))
            (entmake '((0 . "INSERT") (2 . "A") (10 5.0 5.0 0.0)))
            (setq insert (entlast))
            (entmake '((0 . "MTEXT") (100 . "AcDbEntity") (100 . "AcDbMText") (10 5.0 5.0 0.0)
                       (40 . 1.0) (1 . "text")))
            (setq text (entlast))
            (entmake '((0 . "LINE") (10 5.0 9.0 0.0) (11 7.0 5.0 0.0)))
            (setq line (entlast))
            (entmake '((0 . "LINE") (10 5.0 9.0 0.0) (11 7.0 5.0 0.0)))
            (setq gone (entlast))
            (entdel gone))");
    for (const char* name : {"insert", "text", "line"}) {
        const std::string call = std::string("(qn_qn-rotateJig ") + name + " \"Turn: \")";
        const std::string before = eval(std::string("(entget ") + name + ")");
        EXPECT_EQ(drag({"sample 9,9", "5,20"}, call), "1.5708") << name;
        EXPECT_EQ(drag({"45"}, call), "0.785398") << name;
        EXPECT_EQ(drag({"sample 9,9", ""}, call), "T") << name;
        EXPECT_EQ(drag({"sample 9,9", "ESC"}, call), "nil") << name;
        EXPECT_EQ(eval(std::string("(entget ") + name + ")"), before) << name;
    }
    EXPECT_EQ(hand->prompts().back(), "Turn: ");
    EXPECT_EQ(drag({"0,1"}, "(qn_qn-rotateJig gone \"\")"), "1.5708") << "about the origin";
    EXPECT_EQ(drag({}, "(qn_qn-rotateJig \"\" insert)"), "; error: ADS request error");
    turnUserAxes();
    EXPECT_EQ(drag({"90"}, "(qn_qn-rotateJig insert \"\")"), "1.5708") << "of the user's axes";
}

}  // namespace
}  // namespace sg

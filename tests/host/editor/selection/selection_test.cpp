#include <gmock/gmock.h>

#include "host/seam/host_fixture.h"

// Selection by LISP programs: what is in a window, touched, filtered, and followed through changes.
namespace sg {
namespace {

class SelectionTest : public test::HostTest {
  protected:
    SelectionTest() {
        start();
        eval(R"((defun line (x1 y1 x2 y2)
                  (entmakex (list '(0 . "LINE") (list 10 x1 y1 0) (list 11 x2 y2 0))))
                (defun circle (x y r) (entmakex (list '(0 . "CIRCLE") (list 10 x y 0) (cons 40 r))))
                (defun names (set / i out)
                  (if set (repeat (setq i (sslength set))
                    (setq out (cons (ssname set (setq i (1- i))) out))))
                  out)
                (defun handles (set) (mapcar '(lambda (e) (cdr (assoc 0 (entget e)))) (names set))))");
    }
    std::string count(const std::string& arguments) {
        return eval("(if (setq ss (ssget " + arguments + ")) (sslength ss) 0)");
    }
};

TEST_F(SelectionTest, WindowsAndWhatTheyTouch) {
    eval("(setq c (circle 10. 10. 5.))");
    const struct {
        const char* arguments;
        const char* count;
    } cases[] = {
        {"\"_W\" '(5 5) '(15 15)", "1"},  // the edges belong to it
        {"\"_W\" '(5.1 5) '(15 15)", "0"},
        {"\"_C\" '(14.9 9) '(20 11)", "1"},
        {"\"_C\" '(15.1 9) '(20 11)", "0"},
        {"\"_C\" '(9 9) '(11 11)", "0"},  // within the circle, touching nothing
        {"\"_C\" '(5 5) '(6 6)", "0"},    // in its box only
        {"\"_CP\" '((0 0) (10 0) (0 20))", "1"},
        {"\"_CP\" '((0 0) (6 0) (0 6))", "0"},
        {"\"_WP\" '((0 0) (40 0) (0 40))", "1"},
        {"\"_WP\" '((0 0) (26 0) (0 26))", "0"},
        {"\"_F\" '((0 10) (6 10))", "1"},
        {"\"_F\" '((0 0) (0 30) (30 30))", "0"},
        {"'(15 10)", "1"},
        {"'(10 10)", "0"},
    };
    for (const auto& [arguments, expected] : cases)
        EXPECT_EQ(count(arguments), expected) << arguments;
}

TEST_F(SelectionTest, OrderAndTheFence) {
    eval("(setq a (line 3. -1. 3. 1.) b (line 1. -1. 1. 1.) c (line 2. -1. 2. 1.))");
    EXPECT_EQ(eval("(equal (names (ssget \"_X\")) (list c b a))"), "T");
    EXPECT_EQ(eval("(equal (names (ssget \"_F\" '((0 0) (5 0)))) (list b c a))"), "T");
    EXPECT_EQ(eval("(equal (names (ssget \"_F\" '((5 0) (0 0)))) (list a c b))"), "T");
    EXPECT_EQ(eval("(equal (names (ssget \"_P\")) (list a c b))"), "T");
    EXPECT_EQ(eval("(equal (names (ssget \"_L\")) (list c))"), "T");
}

TEST_F(SelectionTest, TheIndexFollowsChanges) {
    eval("(setq a (line 0. 0. 1. 1.) b (line 50. 50. 51. 51.))");
    const std::string here = "\"_C\" '(-1 -1) '(2 2)";
    EXPECT_EQ(count(here), "1");
    eval("(entmod (list (cons -1 b) '(10 0.0 1.0 0.0) '(11 1.0 0.0 0.0)))");
    EXPECT_EQ(count(here), "2");
    eval("(entmod (list (cons -1 a) '(10 80.0 1.0 0.0) '(11 81.0 0.0 0.0)))");
    EXPECT_EQ(count(here), "1");
    eval("(entdel b)");
    EXPECT_EQ(count(here), "0");
    eval("(entdel b) (setq c (circle 0. 0. 1.))");
    EXPECT_EQ(count(here), "2");
    eval("(repeat 600 (line 0. 0. 1. 0.))");
    EXPECT_EQ(count(here), "602");
}

// The first window looks at all entities, the later ones go down a tree; turned references have
// boxes that are too large.
TEST_F(SelectionTest, EachWindowFindsTheSame) {
    eval(R"((entmake '((0 . "BLOCK") (2 . "BAR") (70 . 0) (10 0 0 0)))
            (entmake '((0 . "LINE") (10 0 0 0) (11 10 0 0)))
            (entmake '((0 . "ENDBLK")))
            (setq i 0)
            (repeat 400
              (setq x (* 20.0 (rem i 20)) y (* 20.0 (/ i 20)) i (1+ i))
              (entmake (list '(0 . "INSERT") '(2 . "BAR") (list 10 x y 0.0)
                             (cons 50 (* i 0.01))))
              (line x y (+ x 1.0) y)))");
    for (const char* const turn : {"first", "second", "third"}) {
        SCOPED_TRACE(turn);
        EXPECT_EQ(count("\"_C\" '(-1 -1) '(41 21)"), "12");
        EXPECT_EQ(count("\"_C\" '(346 61) '(347 62)"), "0");  // in the box of a turned one
        EXPECT_EQ(count("\"_W\" '(-20 -20) '(800 800)"), "800");
    }
}

TEST_F(SelectionTest, LayersThatDoNotShow) {
    eval(R"((foreach each '(("Off" -7 0) ("Frozen" 7 1) ("Locked" 7 4))
              (entmake (list '(0 . "LAYER") (cons 2 (car each)) (cons 62 (cadr each))
                             (cons 70 (caddr each))))
              (entmake (list '(0 . "LINE") (cons 8 (car each)) '(10 0 0 0) '(11 1 1 0))))
            (line 0. 0. 1. 1.))");
    EXPECT_EQ(count("\"_C\" '(-1 -1) '(2 2)"), "2");
    EXPECT_EQ(count("\"_C:L\" '(-1 -1) '(2 2)"), "1");
    EXPECT_EQ(count("\"_A\""), "2");
    EXPECT_EQ(count("\"_X\""), "4");
}

TEST_F(SelectionTest, Filters) {
    eval(R"((line 0. 0. 1. 0.) (circle 0. 0. 2.) (circle 5. 5. 4.)
            (entmake '((0 . "TEXT") (10 1 1 0) (40 . 1.0) (1 . "Supply") (8 . "Notes") (62 . 3))))");
    const struct {
        const char* filter;
        const char* count;
    } cases[] = {
        {"((0 . \"circle\"))", "2"},
        {"((0 . \"LINE,CIRCLE\"))", "3"},
        {"((0 . \"~CIRCLE\"))", "2"},
        {"((8 . \"NOTES\"))", "1"},
        {"((1 . \"Sup*\"))", "1"},
        {"((1 . \"sup*\"))", "0"},
        {"((62 . 256))", "3"},
        {"((-4 . \">\") (40 . 2.0))", "1"},
        {"((0 . \"CIRCLE\") (-4 . \">=\") (40 . 2.0))", "2"},
        {"((-4 . \">,>,*\") (10 4 4 0))", "1"},
        {"((-4 . \"&\") (62 . 2))", "1"},
        {"((-4 . \"&=\") (62 . 6))", "0"},
        {"((-4 . \"<OR\") (0 . \"LINE\") (0 . \"TEXT\") (-4 . \"OR>\"))", "2"},
        {"((-4 . \"<NOT\") (0 . \"LINE\") (-4 . \"NOT>\"))", "3"},
        {"((-4 . \"<XOR\") (0 . \"CIRCLE\") (40 . 2.0) (-4 . \"XOR>\"))", "1"},
        {"((410 . \"model\") (67 . 0))", "4"},
        {"((-3 (\"NONE\")))", "0"},
    };
    for (const auto& [filter, expected] : cases) {
        EXPECT_EQ(count("\"_X\" '" + std::string(filter)), expected) << filter;
    }
    for (const char* filter :
         {"((-4 . \"<AND\") (0 . \"LINE\"))", "((0 . \"LINE\") (-4 . \"OR>\"))",
          "((-4 . \"<NOT\") (0 . \"A\") (0 . \"B\") (-4 . \"NOT>\"))",
          "((-4 . \"<XOR\") (0 . \"A\") (-4 . \"XOR>\"))", "((-4 . \"?\") (40 . 1.0))",
          "((-4 . \">\"))"}) {
        EXPECT_EQ(count("\"_X\" '" + std::string(filter)), "; error: bad SSGET list") << filter;
    }
}

TEST_F(SelectionTest, SetsAreFreedWithTheirLastValue) {
    eval("(setq a (line 0. 0. 1. 1.) ss (ssadd a) other ss)");
    EXPECT_EQ(eval("(list (sslength ss) (equal (ssmemb a ss) a) (ssname ss 1))"), "(1 T nil)");
    EXPECT_EQ(eval("(eq (ssadd a ss) ss)"), "T");
    EXPECT_EQ(eval("(progn (ssdel a ss) (list (sslength other) (ssdel a ss) (ssmemb a ss)))"),
              "(0 nil nil)");
    EXPECT_EQ(eval("(sslength a)").substr(0, 8), "; error:");
}

}  // namespace
}  // namespace sg

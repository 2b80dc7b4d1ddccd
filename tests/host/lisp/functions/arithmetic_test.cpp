#include "host/lisp/evaluate.h"

namespace sg::lisp {
namespace {

TEST(Arithmetic, FourOperations) {
    expectAll({
        {L"(list (+) (-) (*) (/))", L"(0 0 0 0)"},
        {L"(list (+ 5) (- 5) (* 5) (/ 5))", L"(5 -5 5 5)"},
        {L"(list (+ 5.5) (- 5.5) (/ 5.5))", L"(5.5 -5.5 5.5)"},
        {L"(list (+ 1 2 3) (- 10 2 3) (* 2 3 4) (/ 100 3 4))", L"(6 5 24 8)"},
        {L"(list (/ 7 2) (/ -7 2) (/ 7 -2) (/ 7 2.0))", L"(3 -3 -3 3.5)"},
        // One real makes the whole a calculation of reals.
        {L"(list (/ 7 2 2.0) (+ 2147483647 1 0.5) (* 65536 65536 1.0))",
         L"(1.75 2.14748e+09 4.29497e+09)"},
        {L"(+ 2147483647 1)", L"-2147483648"},
        {L"(apply '+ '(2147483647 1 0))", L"-2147483648"},
        {L"(- -2147483648 1)", L"2147483647"},
        {L"(- -2147483648)", L"-2147483648"},
        {L"(* 65536 65536)", L"0"},
        {L"(/ -2147483648 -1)", L"-2147483648"},
        {L"(apply '/ '(-2147483648 -1 1))", L"-2147483648"},
        {L"(list (1+ 2147483647) (1- -2147483648) (1+ 1.5) (1- 0.5))",
         L"(-2147483648 2147483647 2.5 -0.5)"},
        {L"(/ 1 0)", L"; error: divide by zero"},
        {L"(/ 1.0 0)", L"; error: divide by zero"},
        {L"(/ 6 3 0)", L"; error: divide by zero"},
        {L"(/ 1 0.0)", L"; error: divide by zero"},
        {L"(+ 1 nil)", L"; error: bad argument type: numberp: nil"},
        {L"(+ nil)", L"; error: bad argument type: numberp: nil"},
        {L"(- \"a\")", L"; error: bad argument type: numberp: \"a\""},
        {L"(* 1 2 'x)", L"; error: bad argument type: numberp: X"},
        {L"(1+)", L"; error: too few arguments"},
        {L"(1+ 1 2)", L"; error: too many arguments"},
        {L"(1- nil)", L"; error: bad argument type: numberp: nil"},
    });
}

TEST(Arithmetic, Remainders) {
    expectAll({
        {L"(list (rem) (rem 5) (rem 42 12) (rem -42 12) (rem 42 -12))", L"(0 5 6 -6 6)"},
        {L"(list (rem 26 7 2) (rem 5.5 2) (rem 12.0 16))", L"(1 1.5 12.0)"},
        {L"(rem -2147483648 -1)", L"0"},
        {L"(rem 5 0)", L"; error: divide by zero"},
        {L"(rem 5.0 0)", L"; error: divide by zero"},
        {L"(list (gcd 81 57) (gcd -12 20) (gcd 0 0) (gcd 12 18 27) (gcd 7))", L"(3 4 0 3 7)"},
        {L"(list (lcm 4 6) (lcm 0 5) (lcm -4 6) (lcm 2 3 5))", L"(12 0 12 30)"},
        {L"(gcd -2147483648 -2147483648)", L"-2147483648"},
        {L"(gcd 1.0 2)", L"; error: bad argument type: fixnump: 1.0"},
    });
}

TEST(Arithmetic, FunctionsOfReals) {
    expectAll({
        {L"(list (abs -5) (abs 5.5) (abs -5.5) (abs -2147483648))", L"(5 5.5 5.5 -2147483648)"},
        {L"(list (sin 0) (cos 0) (exp 0) (atan 0))", L"(0.0 1.0 1.0 0.0)"},
        {L"(list (atan 1) (atan 1 1) (atan -1.0 -1) (atan 1 0) (atan 0 0))",
         L"(0.785398 0.785398 -2.35619 1.5708 0.0)"},
        {L"(list (sqrt 4) (sqrt 2.0) (sqrt 0) (log 1) (log 4.5))",
         L"(2.0 1.41421 0.0 0.0 1.50408)"},
        {L"(sqrt -1)", L"; error: function undefined for argument: -1"},
        {L"(sqrt -2.5)", L"; error: function undefined for argument: -2.5"},
        {L"(log 0)", L"; error: function undefined for argument: 0"},
        {L"(log -1.0)", L"; error: function undefined for argument: -1.0"},
        {L"(sin \"1\")", L"; error: bad argument type: numberp: \"1\""},
        {L"(list (expt 2 10) (expt 2.0 3) (expt 3 0) (expt 0 0) (expt 2 0.5))",
         L"(1024 8.0 1 1 1.41421)"},
        {L"(list (expt 2 30) (expt 2 31) (expt -2 31) (expt -2 32) (expt -3 3))",
         L"(1073741824 2.14748e+09 -2147483648 4.29497e+09 -27)"},
        {L"(list (expt 46340 2) (expt 46341 2) (expt 10 2147483647) (expt -1 2147483647))",
         L"(2147395600 2.14749e+09 1.#INF -1)"},
        {L"(list (expt 2 -1) (expt 1 -5) (expt -1 -5) (expt -1 -2147483648) (expt 2.0 -1))",
         L"(0 1 -1 1 0.5)"},
        {L"(expt 0 -1)", L"; error: divide by zero"},
        {L"(expt 0.0 -1)", L"; error: divide by zero"},
        {L"(expt -8 0.5)", L"; error: function undefined for argument: -8"},
        {L"(list (fix 3) (fix 3.7) (fix -3.7) (fix 2147483647.5) (fix -2147483648.9))",
         L"(3 3 -3 2147483647 -2147483648)"},
        {L"(list (fix 2147483648.5) (type (fix 1e300)) (float 3) (float 3.5))",
         L"(2.14748e+09 REAL 3.0 3.5)"},
        {L"(= (fix 2147483648.5) 2147483648.0)", L"T"},
        {L"(list (max) (max 3) (max 4.07 -144) (max 1 3 2) (max 1 2.0) (max 3 2.0))",
         L"(0 3 4.07 3 2.0 3.0)"},
        {L"(list (min) (min 683 -10.0) (min 73 2 48 5) (min 2 4 6.7))", L"(0 -10.0 2 2.0)"},
        {L"(max 1 nil)", L"; error: bad argument type: numberp: nil"},
        {L"(list (zerop 0) (zerop 0.0) (zerop 1) (minusp -1) (minusp -0.5) (minusp 0))",
         L"(T T nil T T nil)"},
        {L"(zerop nil)", L"; error: bad argument type: numberp: nil"},
        {L"(minusp 'a)", L"; error: bad argument type: numberp: A"},
        {L"(list (numberp 1) (numberp 1.5) (numberp nil) (numberp \"1\"))", L"(T T nil nil)"},
        {L"(list (null nil) (not nil) (null 0) (not 'a))", L"(T T nil nil)"},
    });
}

TEST(Arithmetic, Bits) {
    expectAll({
        {L"(list (~ 3) (~ 100) (~ -4) (~ -2147483648))", L"(-4 -101 3 2147483647)"},
        {L"(list (logand) (logand 7 15 3) (logand 2 3 15) (logand 8 3 4) (logand -1))",
         L"(0 3 2 0 -1)"},
        {L"(list (logior) (logior 1 2 4) (logior 9 3) (logior -1 5))", L"(0 7 11 -1)"},
        {L"(list (boole 1 12 10) (boole 2 12 10) (boole 4 12 10) (boole 6 12 10) (boole 7 12 10))",
         L"(8 4 2 6 14)"},
        {L"(list (boole 8 12 10) (boole 0 12 10) (boole 15 12 10) (boole 7 1 2 4))",
         L"(-15 0 -1 7)"},
        {L"(list (lsh 2 1) (lsh 2 -1) (lsh 40 2) (lsh -1 -1) (lsh -1 -31) (lsh 1 31))",
         L"(4 1 160 2147483647 1 -2147483648)"},
        {L"(list (lsh 1 32) (lsh -1 -32) (lsh 5 0) (lsh 1 -2147483648) (lsh 1 2147483647))",
         L"(0 0 5 0 0)"},
        {L"(~ 1.0)", L"; error: bad argument type: fixnump: 1.0"},
        {L"(logand 1 nil)", L"; error: bad argument type: fixnump: nil"},
        {L"(lsh 1)", L"; error: too few arguments"},
    });
}

TEST(Arithmetic, Comparison) {
    expectAll({
        {L"(list (= 4 4.0) (= 20 388) (= 2.4 2.4 2.4) (= 499 499 500) (= \"me\" \"me\"))",
         L"(T nil T nil T)"},
        {L"(list (= nil nil) (= 'a 'a) (= 'a 'b) (= 1 \"1\") (= '(1) '(1)))", L"(T T nil nil nil)"},
        {L"(list (/= 10 20) (/= \"you\" \"you\") (/= 10 20 10 20 20) (/= 10 20 10 20))",
         L"(T nil nil T)"},
        {L"(list (/= nil 1) (/= 5.43 5.44))", L"(T T)"},
        {L"(list (< 10 20) (< \"b\" \"c\") (< 357 33.2) (< 2 3 88) (< 2 3 4 4))",
         L"(T T nil T nil)"},
        {L"(list (<= 2 9 9) (<= 2 9 4 5) (<= \"b\" \"b\"))", L"(T nil T)"},
        {L"(list (> 120 17) (> \"c\" \"b\") (> 77 4 9) (> 77 4 2))", L"(T T nil T)"},
        {L"(list (>= 77 4 4) (>= 77 4 9) (>= \"a\" \"b\"))", L"(T nil nil)"},
        {L"(list (< nil) (= nil) (> 'a) (< \"Z\" \"a\") (< \"a\" \"ab\") (< \"\" \"a\"))",
         L"(T T T T T T)"},
        {L"(< 1 nil)", L"; error: bad argument type for compare: 1 nil"},
        {L"(>= nil 1 2)", L"; error: bad argument type for compare: nil 1"},
        {L"(> 1 \"a\")", L"; error: bad argument type for compare: 1 \"a\""},
        {L"(<= 'a 'b)", L"; error: bad argument type for compare: A B"},
        // 2147483647 and 2147483648.0 are different numbers.
        {L"(list (< 2147483647 2147483648.0) (= 16777217 16777216.0))", L"(T nil)"},
    });
}

TEST(Arithmetic, Identity) {
    expectAll({
        {L"(list (eq 1 1) (eq 1.5 1.5) (eq 1 1.0) (eq 'a 'a) (eq nil '()) (eq '(1) '(1)))",
         L"(T T nil T T nil)"},
        {L"(setq x '(1 2) y x) (list (eq x y) (eq (cdr x) (cdr y)))", L"(T T)"},
        {L"(setq s \"a\" u s) (list (eq s u) (eq 0.0 (- 0.0)) (apply 'eq '(2.5 2.5)))", L"(T T T)"},
    });
}

TEST(Arithmetic, Equality) {
    expectAll({
        {L"(list (equal 1 1.0) (equal \"a\" \"a\") (equal \"a\" \"A\") (equal nil nil))",
         L"(T T nil T)"},
        {L"(equal '(1 (2.0 . \"x\")) (list 1.0 (cons 2 \"x\")))", L"T"},
        {L"(list (equal '(1 2) '(1 2 3)) (equal '(1 2 3) '(1 2)) (equal '(1 . 2) '(1 2)))",
         L"(nil nil nil)"},
        {L"(list (equal 1.123456 1.123457) (equal 1.123456 1.123457 0.000001)"
         L" (equal 1 1.5 0.5) (equal 1 1.6 0.5))",
         L"(nil T T nil)"},
        {L"(list (equal '(1.0 (2.0)) '(1.01 (1.99)) 0.011) (equal '(1.0 (2.0)) '(1.01 (1.9)) "
         L"0.011))",
         L"(T nil)"},
        {L"(list (equal \"a\" 1) (equal 'a \"A\") (equal '(1) 1) (equal 1e400 1e400))",
         L"(nil nil nil T)"},
        {L"(equal 1 1 'a)", L"; error: bad argument type: numberp: A"},
    });
}

TEST(Arithmetic, EqualityOfLongAndDeepLists) {
    Session session;
    session.evaluate(
        L"(defun long (n / l) (repeat n (setq l (cons n l))))"
        L"(defun deep (n / l) (repeat n (setq l (list l))))");
    EXPECT_EQ(session.evaluate(L"(equal (long 300000) (long 300000))"), L"T");
    EXPECT_EQ(session.evaluate(L"(equal (deep 1000) (deep 1000))"), L"T");
    EXPECT_EQ(session.evaluate(L"(equal (deep 2000000) (deep 2000000))"),
              L"; error: AutoLISP stack overflow");
}

}  // namespace
}  // namespace sg::lisp

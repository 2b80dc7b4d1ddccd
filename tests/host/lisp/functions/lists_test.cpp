#include "host/lisp/evaluate.h"

namespace sg::lisp {
namespace {

TEST(Lists, Making) {
    expectAll({
        {L"(list (cons 1 2) (cons 1 nil) (cons 1 '(2)) (cons '(1) 2))",
         L"((1 . 2) (1) (1 2) ((1) . 2))"},
        {L"(list (list) (list 1 nil \"a\"))", L"(nil (1 nil \"a\"))"},
        {L"(list (vl-list* 1) (vl-list* 1 2) (vl-list* 1 2 '(3)) (vl-list* nil))",
         L"(1 (1 . 2) (1 2 3) nil)"},
        {L"(list (append) (append nil) (append nil nil) (append '(a b) '(c) nil '(d e)))",
         L"(nil nil nil (A B C D E))"},
        {L"(list (append '(1) 2) (append '(1) '(2 . 3)) (append nil 5))", L"((1 . 2) (1 2 . 3) 5)"},
        {L"(setq tail '(3)) (eq tail (cddr (append '(1 2) tail)))", L"T"},
        {L"(append '(1 . 2) '(3))", L"; error: bad argument type: listp 2"},
        {L"(append 1 '(3))", L"; error: bad argument type: listp 1"},
        {L"(list (reverse nil) (reverse '(1)) (reverse '(1 (2 3) 4)))", L"(nil (1) (4 (2 3) 1))"},
        {L"(reverse 'a)", L"; error: bad argument type: listp A"},
        {L"(reverse '(1 . 2))", L"; error: bad argument type: listp 2"},
        {L"(list (subst 'x 'a '(a b (a) a)) (subst 1 2 nil) (subst '(8 . 1) '(8 . 0) '((0 . 5) (8 "
         L". 0))))",
         L"((X B (A) X) nil ((0 . 5) (8 . 1)))"},
        {L"(list (subst 9 1 '(1.0 1)) (subst 9 1 '(1 . 2)))", L"((9 9) (9 . 2))"},
        {L"(list (vl-remove 1 '(1 2 1.0 (1))) (vl-remove '(1) '(1 (1) 2)) (vl-remove 1 nil))",
         L"((2 (1)) (1 2) nil)"},
        {L"(acad_strlsort '(\"b\" \"B\" \"a\" \"\" \"ab\"))", L"(\"\" \"B\" \"a\" \"ab\" \"b\")"},
        {L"(acad_strlsort nil)", L"nil"},
        {L"(acad_strlsort '(\"b\" 1))", L"; error: bad argument type: stringp 1"},
    });
}

TEST(Lists, Parts) {
    expectAll({
        {L"(list (car '(1 2)) (cdr '(1 2)) (cdr '(1 . 2)) (car nil) (cdr nil) (cddddr nil))",
         L"(1 (2) 2 nil nil nil)"},
        {L"(setq x '((a b (p q)) (c d) e f)) (list (caar x) (cdar x) (cadar x) (cadr x) (cddr x)"
         L" (caadr x) (cdadr x) (caddr x) (cadddr x) (cddddr x) (caddar x))",
         L"(A (B (P Q)) B (C D) (E F) C (D) E F nil (P Q))"},
        {L"(setq x '((((1 . 2) 3 . 4) (5 . 6) 7 . 8) ((9 . 10) . 11) (12 . 13) 14))"
         L"(list (caaaar x) (cdaaar x) (cadaar x) (cddaar x) (caadar x) (cdadar x) (caddar x)"
         L" (cdddar x) (caaadr x) (cdaadr x) (cdadr x) (caaddr x) (cdaddr x) (cadddr x) (cddddr "
         L"x))",
         L"(1 2 3 4 5 6 7 8 9 10 11 12 13 14 nil)"},
        {L"(car 5)", L"; error: bad argument type: consp 5"},
        {L"(cdr \"a\")", L"; error: bad argument type: consp \"a\""},
        {L"(cadr '(1 . 2))", L"; error: bad argument type: consp 2"},
        {L"(caar '(1))", L"; error: bad argument type: consp 1"},
        {L"(apply 'caddr '((1 . 2)))", L"; error: bad argument type: consp 2"},
        {L"(list (last '(a b (c))) (last nil) (last '(1)) (last '(1 2 . 3)))", L"((C) nil 1 2)"},
        {L"(last 5)", L"; error: bad argument type: listp 5"},
        {L"(list (nth 0 '(a b)) (nth 1 '(a b)) (nth 2 '(a b)) (nth 5 nil))", L"(A B nil nil)"},
        {L"(nth -1 '(a))", L"; error: bad argument value: non-negative: -1"},
        {L"(nth 1.0 '(a))", L"; error: bad argument type: fixnump: 1.0"},
        {L"(nth 0 'a)", L"; error: bad argument type: listp A"},
        {L"(nth 1 '(a . b))", L"; error: bad argument type: listp B"},
    });
}

TEST(Lists, Looking) {
    expectAll({
        {L"(list (member 'c '(a b c d e)) (member 'q '(a b)) (member 1 '(0 1.0 2)) (member 1 nil))",
         L"((C D E) nil (1.0 2) nil)"},
        {L"(member '(1 \"a\") '(0 (1 \"a\") 2))", L"((1 \"a\") 2)"},
        {L"(member 1 2)", L"; error: bad argument type: listp 2"},
        {L"(list (vl-position 'b '(a b c)) (vl-position 3 '(1 2)) (vl-position \"x\" '(\"x\")))",
         L"(1 nil 0)"},
        {L"(setq al '((name box) (width 3) (5 . 4.7) (\"k\" . 1) nil))"
         L"(list (assoc 'width al) (assoc 5.0 al) (assoc \"k\" al) (assoc 'none al))",
         L"((WIDTH 3) (5 . 4.7) (\"k\" . 1) nil)"},
        {L"(assoc 1 '((0 . 1) 1))", L"; error: bad association list: ((0 . 1) 1)"},
        {L"(assoc 0 '((0 . 1) 1))", L"(0 . 1)"},
        {L"(assoc 0 5)", L"; error: bad argument type: listp 5"},
    });
}

TEST(Lists, Asking) {
    expectAll({
        {L"(list (length nil) (length '(1 2 3)) (length '((1 2))))", L"(0 3 1)"},
        {L"(length '(1 . 2))", L"; error: bad argument type: listp (1 . 2)"},
        {L"(length \"abc\")", L"; error: bad argument type: listp \"abc\""},
        {L"(list (vl-list-length nil) (vl-list-length '(1 2)) (vl-list-length '(1 . 2)))",
         L"(0 2 nil)"},
        {L"(vl-list-length 5)", L"; error: bad argument type: listp 5"},
        {L"(list (listp nil) (listp '(1 . 2)) (listp 1))", L"(T T nil)"},
        {L"(list (atom nil) (atom 'a) (atom '(1)) (vl-consp nil) (vl-consp '(1)) (vl-consp 1))",
         L"(T T nil nil T nil)"},
        {L"(mapcar 'atom '(nil (1)))", L"(T nil)"},
    });
}

TEST(Lists, LongOnes) {
    Session session;
    session.evaluate(L"(setq l nil) (repeat 1000000 (setq l (cons 1 l)))");
    EXPECT_EQ(session.evaluate(L"(list (length l) (length (append l l)) (length (reverse l))"
                               L" (last l) (nth 999999 l) (vl-position 2 l) (vl-remove 1 l)"
                               L" (car (subst 2 1 l)))"),
              L"(1000000 2000000 1000000 1 1 nil nil 2)");
}

}  // namespace
}  // namespace sg::lisp

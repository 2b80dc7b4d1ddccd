#include "host/lisp/evaluate.h"

namespace sg::lisp {
namespace {

TEST(Sequences, Mapcar) {
    expectAll({
        {L"(mapcar '1+ '(10 20 30))", L"(11 21 31)"},
        {L"(mapcar '+ '(1 2 3) '(10 20) '(100 200 300))", L"(111 222)"},
        {L"(mapcar '(lambda (x) (* x x)) '(1 2 3))", L"(1 4 9)"},
        {L"(mapcar (function (lambda (x y) (cons y x))) '(1 2) '(a b))", L"((A . 1) (B . 2))"},
        {L"(list (mapcar '1+ nil) (mapcar '+ '(1) nil))", L"(nil nil)"},
        {L"(defun twice (x) (+ x x)) (mapcar 'twice '(1 2))", L"(2 4)"},
        {L"(defun-q twice (x) (+ x x)) (mapcar 'twice '(1 2))", L"(2 4)"},
        {L"(mapcar 'set '(a b) '(1 2)) (list a b)", L"(1 2)"},
        {L"(mapcar 'mapcar '(1+ 1-) '((1 2) (3 4)))", L"((2 3) (2 3))"},
        {L"(mapcar 'and '(1 nil) '(2 3))", L"(T nil)"},
        {L"(mapcar '1+ 5)", L"; error: bad argument type: listp 5"},
        {L"(mapcar '1+ '(1 . 2))", L"; error: bad argument type: listp 2"},
        {L"(mapcar '1+ '(1 a))", L"; error: bad argument type: numberp: A"},
        {L"(mapcar '(lambda (x) x) '(1) '(2))", L"; error: too many arguments"},
        {L"(mapcar 'nofunction '(1))", L"; error: no function definition: NOFUNCTION"},
        {L"(mapcar 5 '(1))", L"; error: bad function: 5"},
        {L"(mapcar 'car)", L"; error: too few arguments"},
    });
}

TEST(Sequences, Predicates) {
    expectAll({
        {L"(list (vl-every 'numberp '(1 2)) (vl-every 'numberp '(1 a)) (vl-every 'numberp nil))",
         L"(T nil T)"},
        {L"(list (vl-every '= '(1 2) '(1 2 3)) (vl-every '< '(1 5) '(2 4)))", L"(T nil)"},
        {L"(list (vl-some 'cdr '((1) (2 3) (4 5))) (vl-some 'numberp '(a b)) (vl-some '= '(1 2) "
         L"'(3 2)))",
         L"((3) nil T)"},
        {L"(list (vl-member-if 'numberp '(a 1 b)) (vl-member-if 'numberp '(a)) (vl-member-if "
         L"'numberp nil))",
         L"((1 B) nil nil)"},
        {L"(list (vl-member-if-not 'numberp '(1 a 2)) (vl-member-if-not 'numberp '(1)))",
         L"((A 2) nil)"},
        {L"(list (vl-remove-if 'numberp '(1 a 2 b)) (vl-remove-if-not 'numberp '(1 a 2 b)))",
         L"((A B) (1 2))"},
        {L"(list (vl-remove-if 'null nil) (vl-remove-if 'null '(nil)) (vl-remove-if 'null '(1 "
         L"nil)))",
         L"(nil nil (1))"},
        // What comes after the deciding item is not asked about.
        {L"(setq seen nil) (defun see (x) (setq seen (cons x seen)) (> x 1))"
         L"(vl-some 'see '(1 2 3)) (vl-member-if 'see '(0 5 6)) (vl-every 'see '(2 1 9)) seen",
         L"(1 2 5 0 2 1)"},
        {L"(vl-remove-if 'numberp '(1 . 2))", L"; error: bad argument type: listp 2"},
        {L"(vl-some 'numberp 7)", L"; error: bad argument type: listp 7"},
    });
}

TEST(Sequences, Sorting) {
    expectAll({
        // Integers and symbols that stand twice are left once; everything else stays.
        {L"(vl-sort '(3 2 1 3) '<)", L"(1 2 3)"},
        {L"(vl-sort '(3 2 1 3) '>)", L"(3 2 1)"},
        {L"(vl-sort '(3 3 3) '<=)", L"(3)"},
        {L"(vl-sort '(b a b) '(lambda (x y) (< (vl-symbol-name x) (vl-symbol-name y))))", L"(A B)"},
        {L"(vl-sort '(1.0 0.5 1.0) '<)", L"(0.5 1.0 1.0)"},
        {L"(vl-sort '(\"b\" \"a\" \"b\") '<)", L"(\"a\" \"b\" \"b\")"},
        {L"(vl-sort '((2 a) (1 b) (2 c) (1 d)) '(lambda (x y) (< (car x) (car y))))",
         L"((1 B) (1 D) (2 A) (2 C))"},
        {L"(vl-sort '(1 1.0 1) '<)", L"(1 1.0 1)"},
        {L"(list (vl-sort nil '<) (vl-sort '(1) '<) (vl-sort-i nil '<) (vl-sort-i '(9) '<))",
         L"(nil (1) nil (0))"},
        {L"(list (vl-sort-i '(3 2 1 3) '<) (vl-sort-i '(\"c\" \"a\" \"b\") '>))",
         L"((2 1 0 3) (0 2 1))"},
        {L"(vl-sort '(1 a) '<)", L"; error: bad argument type for compare: A 1"},
        {L"(vl-sort '(1 2) 'none)", L"; error: no function definition: NONE"},
        {L"(vl-sort '(1 . 2) '<)", L"; error: bad argument type: listp 2"},
        {L"(vl-sort 1 '<)", L"; error: bad argument type: listp 1"},
    });
}

TEST(Sequences, SortingKeepsEveryItemWhateverTheComparisonSays) {
    const wchar_t* const kComparisons[] = {
        L"'(lambda (x y) t)",
        L"'(lambda (x y) nil)",
        L"'(lambda (x y) (setq n (rem (+ (* n 75) 74) 6553)) (= 0 (rem n 2)))",
    };
    for (const wchar_t* comparison : kComparisons) {
        Session session;
        const std::wstring sort = L"(vl-sort l " + std::wstring(comparison) + L")";
        session.evaluate(
            L"(setq n 1 l nil i 0)"
            L"(while (< i 1001) (setq l (cons (float i) l) i (1+ i)))");
        EXPECT_EQ(session.evaluate(L"(apply '+ " + sort + L")"), L"500500.0");
        EXPECT_EQ(session.evaluate(L"(length " + sort + L")"), L"1001");
    }
}

TEST(Sequences, SortingManyTakesFewComparisons) {
    EXPECT_EQ(evaluate(L"(setq n 1 l nil calls 0)"
                       L"(repeat 20000 (setq n (rem (+ (* n 75) 74) 65537) l (cons (float n) l)))"
                       L"(setq s (vl-sort l '(lambda (x y) (setq calls (1+ calls)) (< x y))))"
                       L"(list (length s) (apply '<= s) (< calls 300000))"),
              L"(20000 T T)");
}

}  // namespace
}  // namespace sg::lisp

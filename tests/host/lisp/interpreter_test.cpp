#include "host/lisp/interpreter.h"

#include "host/lisp/evaluate.h"

namespace sg::lisp {
namespace {

TEST(Evaluation, Forms) {
    expectAll({
        {L"(list 1 \"a\" 'b nil t)", L"(1 \"a\" B nil T)"},
        {L"unbound", L"nil"},
        {L"(setq a 1 b (1+ a) c (+ a b))", L"3"},
        {L"(setq)", L"; error: too few arguments"},
        {L"(setq a 1 b)", L"; error: too few arguments"},
        {L"(setq 5 1)", L"; error: bad argument type: symbolp 5"},
        {L"(setq t 1)", L"; error: bad argument type: symbolp T"},
        {L"(set 'a 5) a", L"5"},
        {L"(list (if t 1 2) (if nil 1 2) (if nil 1))", L"(1 2 nil)"},
        {L"(if t)", L"; error: too few arguments"},
        {L"(if t 1 2 3)", L"; error: too many arguments"},
        {L"(list (cond) (cond (nil 1)) (cond (5)) (cond (nil) (t 1 2)) (cond ((= 1 1))))",
         L"(nil nil 5 2 T)"},
        {L"(cond (nil) 5)", L"; error: bad cond clause: 5"},
        {L"(list (and) (and 1 2) (and 1 nil) (or) (or nil nil) (or nil 5))",
         L"(T T nil nil nil T)"},
        {L"(and nil (setq a 1)) (or 1 (setq a 1)) a", L"nil"},
        {L"(list (progn) (progn 1 2))", L"(nil 2)"},
        {L"(list (quote a) '(b c) (function car))", L"(A (B C) CAR)"},
        {L"(quote)", L"; error: too few arguments"},
        {L"(quote a b)", L"; error: too many arguments"},
        {L"((lambda (x y) (cons x y)) 1 2)", L"(1 . 2)"},
        {L"(apply '(lambda (x / y) (setq y 5) (+ x y)) '(1))", L"6"},
        {L"(apply 'apply (list '+ '(1 2)))", L"3"},
        {L"(eval '(+ 1 (eval (list '* 2 3))))", L"7"},
        {L"(setq f 'car) (f '(1))", L"1"},
        {L"(setq f car g 'f) (g '(1))", L"1"},
        {L"(setq f 'g g 'f) (f 1)", L"; error: bad function: F"},
        {L"(setq f '(lambda (x) (* x 2))) (f 21)", L"42"},
        {L"(nothing 1)", L"; error: no function definition: NOTHING"},
        {L"(setq five 5) (five)", L"; error: bad function: 5"},
        {L"(5 6)", L"; error: bad function: 5"},
        {L"(\"a\")", L"; error: bad function: \"a\""},
        {L"((lambda (x)) 1)", L"nil"},
        {L"((lambda (x) x))", L"; error: too few arguments"},
        {L"((lambda () 1) 2)", L"; error: too many arguments"},
        {L"(car)", L"; error: too few arguments"},
        {L"(car 1 2)", L"; error: too many arguments"},
        {L"(defun 5 () 1)", L"; error: bad argument type: symbolp 5"},
        {L"(defun f (1) 1)", L"; error: bad formal argument list: (1)"},
        {L"(defun f (a . b) 1)", L"; error: bad formal argument list: (A . B)"},
        {L"(list (defun f (a) a) (f 1))", L"(F 1)"},
        // A mistake counts only where it runs.
        {L"(if nil (quote) (if t 1))", L"1"},
        {L"(+ 1 . 2)", L"; error: bad argument list: 2"},
    });
}

TEST(Evaluation, Loops) {
    expectAll({
        {L"(setq i 0) (list (while (< i 3) (setq i (1+ i)) (* i 10)) i)", L"(30 3)"},
        {L"(while nil 1)", L"nil"},
        {L"(setq i 3) (while (< 0 (setq i (1- i)))) i", L"0"},
        {L"(list (repeat 3 'a) (repeat 0 'a) (repeat -1 'a) (repeat 2))", L"(A nil nil nil)"},
        {L"(repeat 1.0 1)", L"; error: bad argument type: fixnump: 1.0"},
        {L"(repeat nil 1)", L"; error: bad argument type: fixnump: nil"},
        {L"(setq x 'mine l nil) (list (foreach x '(1 2 3) (setq l (cons x l)) (* x x)) l x)",
         L"(9 (3 2 1) MINE)"},
        {L"(list (foreach x nil 1) (foreach x '(1)))", L"(nil nil)"},
        {L"(foreach x 5 1)", L"; error: bad argument type: listp 5"},
        {L"(foreach 5 '(1) 1)", L"; error: bad argument type: symbolp 5"},
        {L"(foreach x '(1 2) (foreach x '(a b) x) (setq last x)) last", L"2"},
    });
}

TEST(Evaluation, DynamicScope) {
    expectAll({
        {L"(defun inner () x) (defun outer (x) (inner)) (setq x 'global)"
         L"(list (outer 'bound) (inner))",
         L"(BOUND GLOBAL)"},
        {L"(defun f (a / b) (setq a (1+ a) b a c b) (list a b)) (setq a 1 b 2)"
         L"(list (f 5) a b c)",
         L"((6 6) 1 2 6)"},
        {L"(defun f (/ x) x) (setq x 5) (f)", L"nil"},
        {L"(defun f (x) (if (< x 3) (f (1+ x))) x) (f 0)", L"0"},
        // A function may be a local variable.
        {L"(defun f (/ car) (defun car (l) 'mine) (car '(1))) (list (f) (car '(1)))", L"(MINE 1)"},
        {L"(defun f (x x) x) (setq x 0) (list (f 1 2) x)", L"(2 0)"},
        {L"(defun f (x / x) x) (setq x 0) (list (f 1) x)", L"(nil 0)"},
    });
}

TEST(Evaluation, FunctionsOfTheLanguageMayBeRedefined) {
    Session session;
    session.evaluate(L"(defun add (a b) (+ a b)) (defun first (l) (car l)) (setq plus + head car)");
    EXPECT_EQ(session.evaluate(L"(list (add 3 4) (first '(1 2)))"), L"(7 1)");
    session.evaluate(L"(defun + (a b) (* a b)) (defun car (l) 'redefined)");
    EXPECT_EQ(session.evaluate(L"(list (add 3 4) (first '(1 2)) (+ 5 6))"), L"(12 REDEFINED 30)");
    session.evaluate(L"(setq + nil)");
    EXPECT_EQ(session.evaluate(L"(add 3 4)"), L"; error: no function definition: +");
    session.evaluate(L"(setq + plus car head)");
    EXPECT_EQ(session.evaluate(L"(list (add 3 4) (first '(1 2)) (+ 5 6))"), L"(7 1 11)");
    // The second operand may redefine the operation under way.
    EXPECT_EQ(session.evaluate(L"(+ 1 (progn (setq + -) 5))"), L"-4");
}

TEST(Evaluation, DefunQ) {
    expectAll({
        {L"(list (defun-q f (x) (list x x)) f (f 2))", L"(F ((X) (LIST X X)) (2 2))"},
        {L"(defun-q s () (setq n 1)) (defun-q-list-set 's (append s '((setq n (+ n 5))))) (s) n",
         L"6"},
        {L"(defun-q f () 1) (defun g () 1) (list (defun-q-list-ref 'f) (defun-q-list-ref 'g))",
         L"((nil 1) nil)"},
    });
}

TEST(Evaluation, NestsOnlySoDeep) {
    const auto nested = [](size_t depth) {
        std::wstring form = L"1";
        for (size_t i = 0; i < depth; ++i)
            form += L")";
        std::wstring open;
        for (size_t i = 0; i < depth; ++i)
            open += L"(1+ ";
        return open + form;
    };
    EXPECT_EQ(evaluate(nested(900)), L"901");
    EXPECT_EQ(evaluate(nested(100000)), L"; error: AutoLISP stack overflow");
    // The deepest form still runs at the end of the deepest recursion.
    EXPECT_EQ(evaluate(L"(defun f () " + nested(900) + L" (f) 1) (f)"),
              L"; error: AutoLISP stack overflow");
}

// ---- Errors ------------------------------------------------------------------------------------

TEST(Errors, Caught) {
    expectAll({
        {L"(setq e (vl-catch-all-apply '/ '(1 0)))"
         L"(list (vl-catch-all-error-p e) (vl-catch-all-error-message e))",
         L"(T \"divide by zero\")"},
        {L"(vl-catch-all-apply '+ '(1 2))", L"3"},
        {L"(vl-catch-all-error-message (vl-catch-all-apply 'exit nil))", L"\"quit / exit abort\""},
        {L"(vl-catch-all-error-message (vl-catch-all-apply 'vl-exit-with-error '(\"mine\")))",
         L"\"mine\""},
        {L"(vl-catch-all-apply 'car '(1 . 2))", L"#<%catch-all-apply-error%>"},
        {L"(list (vl-catch-all-error-p nil) (vl-catch-all-error-p 1))", L"(nil nil)"},
        {L"(vl-catch-all-error-message 1)",
         L"; error: bad argument type: %catch-all-apply-error% 1"},
        {L"(defun f () (vl-exit-with-value 5) 6) (list (f))", L"; exit"},
        {L"(vl-catch-all-apply '(lambda () (vl-exit-with-value 5)) nil) 6", L"; exit"},
        {L"(princ) (exit) 5", L"; exit"},
        {L"(quit)", L"; exit"},
    });
}

TEST(Errors, PutLocalsBack) {
    Session session;
    session.evaluate(
        L"(setq x 'global y 'global z 'global)"
        L"(defun f (x / y) (setq y 'local) (foreach z '(1 2) (car 5)))");
    EXPECT_EQ(session.evaluate(L"(f 1)"), L"; error: bad argument type: consp 5");
    EXPECT_EQ(session.evaluate(L"(list x y z)"), L"(GLOBAL GLOBAL GLOBAL)");
    EXPECT_EQ(session.evaluate(L"(defun g (x) (vl-catch-all-apply 'f '(2)) (list x y z)) (g 3)"),
              L"(3 GLOBAL GLOBAL)");
    EXPECT_EQ(session.evaluate(L"(mapcar 'f '(1))"), L"; error: bad argument type: consp 5");
    EXPECT_EQ(session.evaluate(L"(list x y z)"), L"(GLOBAL GLOBAL GLOBAL)");
}

TEST(Errors, StackOverflowLeavesEverythingAsItWas) {
    Session session;
    EXPECT_EQ(session.evaluate(L"(setq n 'global) (defun down (n) (1+ (down (1+ n))))"
                               L"(setq e (vl-catch-all-apply 'down '(0)))"
                               L"(list (vl-catch-all-error-message e) n)"),
              L"(\"AutoLISP stack overflow\" GLOBAL)");
    EXPECT_EQ(session.evaluate(L"(defun sum (n) (if (= n 0) 0 (+ n (sum (1- n))))) (sum 1000)"),
              L"500500");
    EXPECT_EQ(session.evaluate(L"(defun f () (mapcar '(lambda (x) (f)) '(1))) (f)"),
              L"; error: AutoLISP stack overflow");
    EXPECT_EQ(session.evaluate(L"(defun f () (eval '(f))) (f)"),
              L"; error: AutoLISP stack overflow");
    EXPECT_EQ(session.evaluate(L"(defun f () (vl-catch-all-apply '(lambda () (f) (car 1)) nil))"
                               L"(vl-catch-all-error-p (f))"),
              L"T");
}

TEST(Errors, TheHandlerRunsWhereTheErrorArose) {
    Session session;
    session.evaluate(
        L"(defun *error* (msg) (princ (list msg depth)))"
        L"(defun f (depth) (if (= depth 3) (car 'x) (f (1+ depth))))");
    EXPECT_EQ(session.run(L"(f 0)"), L"; error: bad argument type: consp X");
    EXPECT_EQ(session.takePrinted(), L"(bad argument type: consp X 3)");
    EXPECT_EQ(session.evaluate(L"depth"), L"nil");
    session.run(L"(exit)");
    EXPECT_EQ(session.takePrinted(), L"(quit / exit abort nil)");
    // Errors that are caught do not reach it.
    session.run(L"(vl-catch-all-apply 'car '(1))");
    EXPECT_EQ(session.takePrinted(), L"");
}

TEST(Errors, TheHandlerMayBeLocal) {
    Session session;
    session.evaluate(
        L"(defun *error* (m) (princ \"global\"))"
        L"(defun c:go (/ *error*) (defun *error* (m) (princ \"local\")) (car 1))");
    session.run(L"(c:go)");
    EXPECT_EQ(session.takePrinted(), L"local");
    session.run(L"(car 1)");
    EXPECT_EQ(session.takePrinted(), L"global");
}

TEST(Errors, HandlersThatFail) {
    Session session;
    session.run(L"(defun *error* (m) (car 5)) (cdr 6)");
    EXPECT_NE(session.takeReported().find(
                  L"An error has occurred inside the *error* function: bad argument type: consp 5"),
              std::wstring::npos);
    session.run(L"(defun *error* (m) (princ m) (quit)) (cdr 6)");
    EXPECT_EQ(session.takePrinted(), L"bad argument type: consp 6");
    session.run(
        L"(defun *error* (m) (princ (vl-catch-all-error-p (vl-catch-all-apply 'car '(1)))))"
        L"(cdr 6)");
    EXPECT_EQ(session.takePrinted(), L"T");
    session.run(L"(setq *error* nil) (cdr 7)");
    EXPECT_NE(session.takeReported().find(L"; error: bad argument type: consp 7"),
              std::wstring::npos);
}

TEST(Errors, TheHandlerRunsAfterAnyOverflow) {
    Session session;
    session.evaluate(
        L"(defun *error* (m) (princ (list m (sum 100))))"
        L"(defun sum (n) (if (= n 0) 0 (+ n (sum (1- n)))))");
    session.run(L"(defun down (n) (1+ (down (1+ n)))) (down 0)");
    EXPECT_EQ(session.takePrinted(), L"(AutoLISP stack overflow 5050)");
    // Many arguments fill the value stack before the native one is used up.
    session.run(
        L"(setq l nil) (repeat 3000000 (setq l (cons 1 l))) (apply '+ l)"
        L"(apply '(lambda (a) 1) (list (apply 'apply (list '+ l))))");
    session.takePrinted();
    session.run(L"(apply 'list (append l l))");
    EXPECT_EQ(session.takePrinted(), L"(AutoLISP stack overflow 5050)");
}

TEST(Errors, Backtrace) {
    Session session;
    session.run(
        L"(defun inner (x)\n  (strlen x))\n\n(defun outer (x)\n  (inner x)\n  1)\n"
        L"(outer 5)",
        L"plan.lsp");
    const std::vector<std::wstring> expected = {
        L"STRLEN, called at plan.lsp:2",
        L"INNER, called at plan.lsp:5",
        L"OUTER, called at plan.lsp:7",
        L"top-level form at plan.lsp:7",
    };
    EXPECT_EQ(session.outcome.error.backtrace, expected);
    // A native function that has returned is not blamed for what follows.
    session.run(L"(strlen \"a\")\n(repeat 'x)", L"plan.lsp");
    EXPECT_EQ(session.outcome.error.backtrace,
              std::vector<std::wstring>{L"top-level form at plan.lsp:2"});
    session.run(L"(eval (list 'nothing))", L"plan.lsp");
    EXPECT_EQ(session.outcome.error.backtrace,
              (std::vector<std::wstring>{L"top-level form at plan.lsp:1"}));
}

TEST(Errors, LoadsWithinLoads) {
    Session session;
    session.define(L"INNER",
                   [](Interpreter& in, Args a) { return in.loadText(in.str(a[0]), L"inner.lsp"); });
    EXPECT_EQ(session.evaluate(L"(list (inner \"1\\n2\") (inner \"\"))"), L"(2 nil)");
    session.evaluate(L"\n(inner \"\\n\\n(car 5)\")", L"outer.lsp");
    EXPECT_EQ(session.outcome.error.backtrace,
              (std::vector<std::wstring>{L"CAR", L"top-level form at inner.lsp:3",
                                         L"top-level form at outer.lsp:2"}));
    EXPECT_EQ(session.in.loadDepth(), 0u);
    // A caught error of an inner text leaves the outer one running where it was.
    session.evaluate(L"(vl-catch-all-apply 'inner '(\"(car 5\"))\n(cdr 6)", L"outer.lsp");
    EXPECT_EQ(session.outcome.error.backtrace,
              (std::vector<std::wstring>{L"CDR", L"top-level form at outer.lsp:2"}));
}

TEST(Errors, Interrupts) {
    Session session;
    session.define(L"PRESS", [](Interpreter& in, Args) {
        in.interrupt();
        return Value::nil();
    });
    for (const wchar_t* program :
         {L"(press) (while t)", L"(press) (repeat 2000000000)", L"(defun f () (f)) (press) (f)",
          L"(press) (mapcar '1+ '(1 2))", L"(press) (vl-sort '(2 1) '<)"}) {
        EXPECT_EQ(session.evaluate(program), L"; error: Function cancelled");
        EXPECT_EQ(session.outcome.error.kind, ErrorKind::Cancel);
        EXPECT_FALSE(session.in.interruptPending());
    }
    EXPECT_EQ(session.evaluate(L"(+ 1 2)"), L"3");
}

// ---- Namespaces --------------------------------------------------------------------------------

TEST(Namespaces, KeepTheirValuesApart) {
    Session session;
    session.evaluate(L"(setq a 'own) (defun f () a) (vl-bb-set 'shared 5)");
    const auto other = session.in.newNamespace(L"other");
    Namespace* const own = session.in.enterNamespace(other.get());
    EXPECT_EQ(session.evaluate(L"(list a f (vl-bb-ref 'shared) (+ 1 2) pi)"),
              L"(nil nil 5 3 3.14159)");
    session.evaluate(
        L"(setq a 'others later 1) (vl-bb-set 'shared 6) (setq p 7) (vl-propagate 'p)");
    EXPECT_EQ(session.in.enterNamespace(own), other.get());
    EXPECT_EQ(session.evaluate(L"(list a (f) later (vl-bb-ref 'shared) p)"), L"(OWN OWN nil 6 7)");
    const auto third = session.in.newNamespace(L"third");
    session.in.enterNamespace(third.get());
    EXPECT_EQ(session.evaluate(L"(list a p)"), L"(nil 7)");
    // A function of the language that is spoilt here works elsewhere.
    session.evaluate(L"(setq + nil)");
    session.in.forgetNamespace(third.get());
    EXPECT_EQ(session.evaluate(L"(list a (+ 1 2))"), L"(OWN 3)");
    session.in.forgetNamespace(other.get());
}

TEST(Namespaces, AProgramInOneDoesNotDisturbAnother) {
    Session session;
    const auto other = session.in.newNamespace(L"other");
    session.define(L"ELSEWHERE", [&](Interpreter& in, Args a) {
        Namespace* const before = in.enterNamespace(other.get());
        const Interpreter::Outcome outcome =
            in.runProtected([&] { return in.loadText(in.str(a[0]), L""); });
        in.enterNamespace(before);
        return in.boolean(outcome.failed);
    });
    EXPECT_EQ(session.evaluate(L"(setq x 1) (defun f (x) (list (elsewhere \"(setq x 'there)\")"
                               L" x (elsewhere \"(defun g (x) (car x)) (g 9)\") x))"
                               L"(list (f 2) x)"),
              L"((nil 2 T 2) 1)");
    session.in.enterNamespace(other.get());
    EXPECT_EQ(session.evaluate(L"x"), L"THERE");
    session.in.forgetNamespace(other.get());
}

}  // namespace
}  // namespace sg::lisp

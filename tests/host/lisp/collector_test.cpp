#include "host/lisp/evaluate.h"

// Programs that make garbage far beyond the size at which a collection starts, while they hold
// values in every place that a value can be held in.
namespace sg::lisp {
namespace {

class Collector : public testing::Test {
  protected:
    Collector() {
        // Lists, strings and functions, some 40 MB of them.
        session.evaluate(
            L"(defun churn (/ l) (repeat 75 (setq l nil) (repeat 20000 (setq l (cons (list 1) l))))"
            L" (repeat 2000 (strcat \"some\" \"garbage\") (eval '(lambda (x) x))) nil)");
    }

    // Runs a program that calls (churn), and checks that it was enough for collections.
    std::wstring run(std::wstring_view program) {
        const size_t before = session.in.heap().collections();
        std::wstring result = session.evaluate(program);
        EXPECT_GT(session.in.heap().collections(), before + 1);
        return result;
    }

    Session session;
};

TEST_F(Collector, KeepsWhatProgramsHold) {
    const Expected kTable[] = {
        {L"(setq g (list 1 (strcat \"a\" \"b\") (list 2.5))) (churn) g", L"(1 \"ab\" (2.5))"},
        {L"(defun f (x / y) (setq y (strcat \"lo\" \"cal\")) (churn) (list x y))"
         L"(f (list (strcat \"ar\" \"gument\")))",
         L"((\"argument\") \"local\")"},
        {L"(list (list (strcat \"a\" \"b\")) (churn) (cons 1 (strcat \"c\" \"d\")) (churn))",
         L"((\"ab\") nil (1 . \"cd\") nil)"},
        {L"(cons (list (strcat \"a\" \"b\")) (churn))", L"((\"ab\"))"},
        {L"(setq r nil) (foreach x (list (list 1) (list 2)) (churn) (setq r (cons x r))) r",
         L"((2) (1))"},
        {L"(mapcar '(lambda (x y) (churn) (list x y)) (list (list 1) (list 2))"
         L" (list (strcat \"a\" \"b\") \"c\"))",
         L"(((1) \"ab\") ((2) \"c\"))"},
        {L"(vl-remove-if '(lambda (x) (churn) (null x)) (list (list 1) nil (list 2)))",
         L"((1) (2))"},
        {L"(vl-member-if '(lambda (x) (churn) (= x 2)) (list 1 2 3))", L"(2 3)"},
        {L"(vl-some '(lambda (x) (churn) (cdr x)) (list (list 1) (list 2 3)))", L"(3)"},
        {L"(vl-sort (list (list 3) (list 1) (list 2))"
         L" '(lambda (x y) (churn) (< (car x) (car y))))",
         L"((1) (2) (3))"},
        {L"(apply '(lambda (x y) (churn) (list x y)) (list (list 1) (strcat \"a\" \"b\")))",
         L"((1) \"ab\")"},
        {L"(setq f (eval (list 'lambda '(x) (list 'list (strcat \"in\" \"code\") 'x)))) (churn)"
         L"(f 1)",
         L"(\"incode\" 1)"},
        {L"(setq q (list (list 'x) (list '* 'x 2))) (q 1) (churn) (q 4)", L"8"},
        {L"(defun f () (defun f () 'new) (churn) (list 'o 'l 'd)) (list (f) (f))",
         L"((O L D) NEW)"},
        {L"(eval (list 'progn '(churn) (list 'quote (list (strcat \"a\" \"b\")))))", L"(\"ab\")"},
        {L"(vl-bb-set 'held (list (strcat \"a\" \"b\"))) (churn) (vl-bb-ref 'held)", L"(\"ab\")"},
        {L"(setq e (vl-catch-all-apply '(lambda () (vl-exit-with-error (strcat \"a\" \"b\"))) nil))"
         L"(churn) (vl-catch-all-error-message e)",
         L"\"ab\""},
        // The value of the last turn outlives the test that ends the loop.
        {L"(setq i 0) (while (progn (churn) (churn) (churn) (< i 2)) (setq i (1+ i)) (list i "
         L"(strcat \"a\" "
         L"\"b\")))",
         L"(2 \"ab\")"},
        {L"(setq big (list nil)) (repeat 14 (setq big (list big big))) (churn)"
         L"(defun leaves (x) (if (car x) (+ (leaves (car x)) (leaves (cadr x))) 1)) (leaves big)",
         L"16384"},
    };
    for (const auto& [program, result] : kTable) {
        EXPECT_EQ(run(program), result) << testing::PrintToString(std::wstring(program));
    }
}

TEST_F(Collector, KeepsOtherNamespaces) {
    const auto other = session.in.newNamespace(L"other");
    Namespace* const own = session.in.enterNamespace(other.get());
    session.evaluate(L"(setq held (list (strcat \"a\" \"b\")))");
    session.in.enterNamespace(own);
    EXPECT_EQ(run(L"(churn)"), L"nil");
    session.in.enterNamespace(other.get());
    EXPECT_EQ(session.evaluate(L"held"), L"(\"ab\")");
    session.in.forgetNamespace(other.get());
}

TEST_F(Collector, ErrorHandlersSeeLiveValues) {
    session.evaluate(
        L"(defun *error* (m) (churn) (princ (list m x y)))"
        L"(defun f (x / y) (setq y (list (strcat \"lo\" \"cal\"))) (car (f2)))"
        L"(defun f2 () (vl-exit-with-error (strcat \"fai\" \"led\")))");
    session.run(L"(f (list (strcat \"a\" \"b\")))");
    EXPECT_EQ(session.takePrinted(), L"(failed (ab) (local))");
}

TEST_F(Collector, FreesWhatNobodyHolds) {
    session.in.heap().setLimit(size_t{64} << 20);
    EXPECT_EQ(run(L"(repeat 10 (churn))"), L"nil");
    session.evaluate(L"(setq s \"\")");
    EXPECT_EQ(run(L"(repeat 3000 (setq s (strcat s \"0123456789\"))) (strlen s)"), L"30000");
    session.in.heap().collectFully();
    session.evaluate(L"(setq s nil)");
    session.in.heap().collectFully();
    EXPECT_LT(session.in.heap().bytesInUse(), size_t{8} << 20);
}

TEST_F(Collector, LargeLiveDataKeepsPausesSmallAndReported) {
    session.in.heap().resetLongestPause();
    EXPECT_EQ(run(L"(setq l nil) (repeat 1000000 (setq l (cons 1 l))) (churn) (churn)"
                  L"(apply '+ (mapcar '1+ (list (car l) (last l))))"),
              L"4");
    EXPECT_GT(session.in.heap().longestPause(), 0);
}

TEST_F(Collector, AProgramThatHoldsTooMuchEndsInAnError) {
    constexpr size_t kLimit = size_t{48} << 20;
    session.in.heap().setLimit(kLimit);
    const std::wstring message =
        L"; error: out of memory: the program holds more than 48 MB (--memory-limit)";
    const wchar_t* const kEndless[] = {
        L"(while t (setq endless (cons 1 endless)))",
        L"(defun f (l) (f (list l l l l l l l l l l l l l l l l l l l l l l l l l l l l l l))) (f "
        L"1)",
        L"(setq endless \"x\") (while t (setq endless (strcat endless endless)))",
        L"(while t (setq endless (cons (strcat \"a\" \"string\") endless)))",
        L"(setq endless '(1 2)) (while t (setq endless (append endless endless)))",
        L"(setq endless '(1 2)) (while t (setq endless (mapcar 'list endless endless)"
        L" endless (list endless endless endless)))",
    };
    for (const wchar_t* program : kEndless) {
        const std::wstring result = session.evaluate(program);
        if (result != L"; error: AutoLISP stack overflow") {
            EXPECT_EQ(result, message) << testing::PrintToString(std::wstring(program));
        }
        EXPECT_LE(session.in.heap().bytesInUse(), kLimit + kLimit / 8 + (size_t{16} << 20));
        session.evaluate(L"(setq endless nil)");
        // What the program leaves to collect is no hindrance for the next one.
        EXPECT_EQ(session.evaluate(L"(setq l nil) (repeat 500000 (setq l (cons 1 l))) (length l)"),
                  L"500000")
            << testing::PrintToString(std::wstring(program));
        session.evaluate(L"(setq l nil)");
    }
}

TEST_F(Collector, OutOfMemoryMayBeCaught) {
    session.in.heap().setLimit(size_t{48} << 20);
    EXPECT_EQ(session.evaluate(
                  L"(defun f (/ l) (while t (setq l (cons 1 l))))"
                  L"(setq n 0) (repeat 3 (if (vl-catch-all-error-p (vl-catch-all-apply 'f nil))"
                  L" (setq n (1+ n)))) (list n (length (mapcar '1+ '(1 2))))"),
              L"(3 2)");
}

TEST(CollectorTeardown, InterpretersEndAtAnyPointOfACollection) {
    const std::wstring function = L"(function (lambda (x) x))";
    for (int turns = 0; turns < 100; ++turns) {
        Session session;
        session.evaluate(L"(repeat 9000 " + function + L")");
        session.in.heap().startCollection();
        session.evaluate(L"(repeat " + std::to_wstring(turns) + L" " + function + L")");
    }
}

}  // namespace
}  // namespace sg::lisp

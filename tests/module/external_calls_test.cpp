#include <gmock/gmock.h>

#include "bridge/marshal_builders.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "host/seam/external_functions.h"
#include "module/bridge/list_notation.h"
#include "module/function_tables.h"
#include "module/module_fixture.h"
#include "platform/lisp/external_functions.h"

// Values on their way from LISP into a module and back.
namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ExternalCallsTest : public ModuleTest {
  protected:
    // Makes (outer ...) a function that sets its result with `body` and succeeds.
    void answer(std::function<void()> body) {
        probe.outer = [body = std::move(body)] {
            body();
            return RSRSLT;
        };
    }
    // Evaluates a program, which leaves no node behind.
    std::string evalExactly(std::string_view program) {
        const size_t nodes = acutLiveNodeCount();
        const std::string value = eval(program);
        EXPECT_EQ(acutLiveNodeCount(), nodes) << program;
        return value;
    }
};

TEST_F(ExternalCallsTest, Arguments) {
    start();
    std::string arguments;
    answer([&] { arguments = describe(List(acedGetArgs()).get()); });
    const struct {
        const char *lisp, *nodes;
    } cases[] = {
        {"", ""},
        {"0 -1", "0s -1s"},
        {"32767 32768", "32767s 32768"},
        {"-32768 -32769", "-32768s -32769"},
        {"2147483647 -2147483648", "2147483647 -2147483648"},
        {"2.5 -0.0 1e300", "2.5r -0r 1e+300r"},
        {"\"\" \"a b\" \"\\U+4E2D\"", "'' 'a_b' '\u4e2d'"},
        {"nil T '() 't", "nil T nil T"},
        {"'(1.0 2.0)", "<1,2>"},
        {"'(1.0 2.0 3.0)", "<1,2,3>"},
        {"'(1.0)", "( 1r )"},
        {"'(1.0 2.0 3.0 4.0)", "( 1r 2r 3r 4r )"},
        {"'(1.0 2)", "( 1r 2s )"},
        {"'(1 2 3)", "( 1s 2s 3s )"},
        {"'(1.0 nil)", "( 1r nil )"},
        {"'(1.0 . 2.0)", "( 1r . 2r )"},
        {"'(1.0 2.0 . 3.0)", "( 1r 2r . 3r )"},
        {"'(\"a\" . 1)", "( 'a' . 1s )"},
        {"'(\"a\" . nil)", "( 'a' )"},
        {"'(\"a\" 1.0 2.0)", "( 'a' 1r 2r )"},
        {"'(10 (1.0 2.0 3.0))", "( 10s <1,2,3> )"},
        {"'(10 1.0 2.0 3.0)", "( 10s 1r 2r 3r )"},
        {"'(10 . (1.0 2.0))", "( 10s 1r 2r )"},
        {"'((1.0 2.0) . 3)", "( <1,2> . 3s )"},
        {"'((\"a\" . 1) (\"b\" (nil)))", "( ( 'a' . 1s ) ( 'b' ( nil ) ) )"},
        {"'(()) '((()))", "( nil ) ( ( nil ) )"},
        {"1 '(2) \"3\"", "1s ( 2s ) '3'"},
    };
    for (const auto& c : cases) {
        arguments = "not called";
        EXPECT_EQ(evalExactly("(outer " + std::string(c.lisp) + ")"), "nil") << c.lisp;
        EXPECT_EQ(arguments, c.nodes) << c.lisp;
    }
}

TEST_F(ExternalCallsTest, ArgumentsThatNoNodeHolds) {
    start();
    answer([] { ADD_FAILURE() << "the module is called"; });
    const struct {
        const char *lisp, *error;
    } cases[] = {
        {"'a", "; error: bad argument type: A"},
        {"1 '(2 (3 . b))", "; error: bad argument type: B"},
        {"car", "; error: bad argument type: #<SUBR"},
        {"outer", "; error: bad argument type: #<"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(evalExactly("(outer " + std::string(c.lisp) + ")"),
                    testing::StartsWith(c.error));
    }
}

TEST_F(ExternalCallsTest, ArgumentsCanBeAskedForAgainOrNotAtAll) {
    start();
    answer([] {
        EXPECT_EQ(describe(List(acedGetArgs()).get()), "1s 'a'");
        EXPECT_EQ(describe(List(acedGetArgs()).get()), "1s 'a'");
    });
    evalExactly("(outer 1 \"a\")");
    answer([] {});
    evalExactly("(outer 1 \"a\" '(1 2 3))");
    probe.outer = [] { return RSERR; };
    EXPECT_EQ(evalExactly("(outer 1 '(1 . 2))"), "; error: ADS request error");
    EXPECT_EQ(acedGetArgs(), nullptr) << "outside a call";
    EXPECT_EQ(acedGetFunCode(), RTERROR);
}

TEST_F(ExternalCallsTest, ListsAsResults) {
    start();
    const struct {
        const char *nodes, *lisp;  // null: refused
    } cases[] = {
        {"", "nil"},
        {"( )", "nil"},
        {"( 1 )", "(1)"},
        {"( 1s )", "(1)"},
        {"1", "(1)"},
        {"nil", "(nil)"},
        {"1 2", "(1 2)"},
        {"( 1 ) 2", "((1) 2)"},
        {"( 1 ) ( 2 )", "((1) (2))"},
        {"( ( ) )", "(nil)"},
        {"( ( 1 ) )", "((1))"},
        {"( 'a' . 1 )", "(\"a\" . 1)"},
        {"( 'a' . nil )", "(\"a\")"},
        {"( 'a' . ( 1 2 ) )", "(\"a\" 1 2)"},
        {"( 'a' . <1,2> )", "(\"a\" 1.0 2.0)"},
        {"( 1 2 . 3 )", "(1 2 . 3)"},
        {"1 . 2", "(1 . 2)"},
        {"( <1,2> <1,2,3> )", "((1.0 2.0) (1.0 2.0 3.0))"},
        {"<1,2>", "((1.0 2.0))"},
        {"( 2.5r 'a_b' nil T )", "(2.5 \"a b\" nil T)"},
        {"( -32769 32768 )", "(-32769 32768)"},
        {"( 0:'LINE' 10:<1,2,3> 70:5s )", "((0 . \"LINE\") (10 1.0 2.0 3.0) (70 . 5))"},
        {"(", nullptr},
        {")", nullptr},
        {"( 1 ) )", nullptr},
        {"( ( 1 )", nullptr},
        {"( . 1 )", nullptr},
        {"( 1 . )", nullptr},
        {"( 1 . 2 3 )", nullptr},
        {"( 1 . . 2 )", nullptr},
        {".", nullptr},
        {"1 .", nullptr},
        {"1 . 2 3", nullptr},
    };
    for (const auto& c : cases) {
        answer([&] {
            acedRetStr(L"before");
            const int result = acedRetList(makeList(c.nodes).get());
            EXPECT_EQ(result, c.lisp != nullptr ? int{RTNORM} : int{RTERROR}) << c.nodes;
        });
        EXPECT_EQ(evalExactly("(outer)"), c.lisp != nullptr ? c.lisp : "\"before\"") << c.nodes;
    }
}

TEST_F(ExternalCallsTest, WhatGoesInComesOut) {
    start();
    answer([] { EXPECT_EQ(acedRetList(List(acedGetArgs()).get()), RTNORM); });
    for (const char* value : {"(1 2.5 \"a\" nil T (1.0 2.0) ((1 . 2) (\"b\" nil 3.0)))", "(nil)",
                              "((1.0 2.0 3.0) (1.0 2.0 3.0))", "((a . b))"}) {
        const std::string program = "(apply 'outer '" + std::string(value) + ")";
        const std::string expected =
            std::string(value) == "((a . b))" ? "; error: bad argument type: A" : value;
        EXPECT_EQ(evalExactly(program), expected);
    }
    // Far deeper than the native stack would stand.
    EXPECT_EQ(evalExactly("(setq l nil) (repeat 2000 (setq l (list 1 l)))"
                          "(equal (outer l 2) (list l 2))"),
              "T");
}

TEST_F(ExternalCallsTest, SingleResults) {
    start();
    const ads_point point = {1, 2, 3};
    const ads_name name = {5, 1};
    const struct {
        std::function<int()> set;
        const char* lisp;
    } cases[] = {
        {acedRetNil, "nil"},
        {acedRetT, "T"},
        {[] { return acedRetInt(-70000); }, "-70000"},
        {[] { return acedRetReal(2.5); }, "2.5"},
        {[] { return acedRetStr(L"a\"b"); }, "\"a\\\"b\""},
        {[&] { return acedRetPoint(point); }, "(1.0 2.0 3.0)"},
        {[] { return acedRetVal(makeList("'x'").get()); }, "\"x\""},
        {[] { return acedRetVal(makeList("<1,2>").get()); }, "(1.0 2.0)"},
        {[] { return acedRetVal(makeList("62:3s").get()); }, "(62 . 3)"},
        {[] {
             acedRetInt(1);
             return acedRetInt(2);
         },
         "2"},
        {[] { return retIntOrReal(32767); }, "32767"},
        {[] { return retIntOrReal(32768); }, "32768.0"},
        {[] { return retIntOrReal(-32768); }, "-32768"},
        {[] { return retIntOrReal(-32769); }, "-32769.0"},
        {[] { return retIntOrReal(0); }, "0"},
        {[] {
             acedRetT();
             return retEntity(AcDbObjectId());
         },
         "nil"},
        {[] {
             acedRetT();
             return retEntity(AcDbObjectId(77));
         },
         "nil"},
    };
    for (const auto& c : cases) {
        answer([&] { EXPECT_EQ(c.set(), RTNORM); });
        EXPECT_EQ(evalExactly("(outer)"), c.lisp);
        EXPECT_EQ(c.set(), RTERROR) << "no call is in progress";
    }
    answer([&] {
        EXPECT_EQ(acedRetName(name, RTENAME), RTNORM);
        EXPECT_EQ(acedRetName(name, RTSTR), RTERROR);
        EXPECT_EQ(acedRetStr(nullptr), RTERROR);
        EXPECT_EQ(acedRetVal(nullptr), RTERROR);
    });
    EXPECT_EQ(evalExactly("(type (outer))"), "ENAME");
    std::string seen;
    probe.inner = [&] {
        seen = describe(List(acedGetArgs()).get());
        return RSRSLT;
    };
    evalExactly("(inner (outer))");
    EXPECT_EQ(seen, "e:5,1");
    answer([&] { acedRetName(name, RTPICKS); });
    EXPECT_EQ(evalExactly("(type (outer))"), "PICKSET");
    evalExactly("(inner (outer))");
    EXPECT_EQ(seen, "p:5,1");
}

TEST_F(ExternalCallsTest, VariantArraysAsResults) {
    start();
    const auto text = [](const wchar_t* value) { return COleVariant::fromString(value); };
    const auto number = [](int32_t value) { return COleVariant::fromInt32(value); };
    const std::vector<COleVariant> items = {
        text(L"*NewRecord*"), text(L"a"),           number(100000), text(L"s_b"),
        text(L"x "),          text(L"*NewRecord*"), text(L"a"),     COleVariant::null()};
    const std::vector<COleVariant> plain = {text(L"a"), number(1), text(L"b "), text(L"c ")};
    const struct {
        void (*give)(const COleSafeArray&);
        const std::vector<COleVariant>* items;
        const char* lisp;
    } cases[] = {
        {returnPairList, &plain, "((\"a\" . 1) (\"b \" . \"c\"))"},
        {returnValueList, &plain, "(\"a\" 1 \"b\" \"c\")"},
        {returnRecordList, &plain, "(\"a\" 1 \"b\" \"c\")"},
        {returnRecordList, &items, "(((\"a\" . 100000) (\"s_b\" . \"x \")) ((\"a\")))"},
    };
    for (const auto& c : cases) {
        answer([&] {
            COleSafeArray array;
            array.CreateFromVariants(*c.items);
            c.give(array);
        });
        EXPECT_EQ(evalExactly("(outer)"), c.lisp);
    }
}

TEST_F(ExternalCallsTest, DatesAreTextOfTheUsersLocale) {
    const struct {
        const wchar_t* locale;
        const char* lisp;
    } cases[] = {
        {L"en-US", "(\"1/31/2017 2:30:00 PM\" \"1/31/2017\" \"Invalid DateTime\")"},
        {L"de-DE", "(\"31.01.2017 14:30:00\" \"31.01.2017\" \"Invalid DateTime\")"},
        {L"de_DE.UTF-8", "(\"31.01.2017 14:30:00\" \"31.01.2017\" \"Invalid DateTime\")"},
        {L"xx-XX", "(\"1/31/2017 2:30:00 PM\" \"1/31/2017\" \"Invalid DateTime\")"},
    };
    for (const auto& c : cases) {
        options.locale = c.locale;
        start();
        answer([] {
            const double day = 42766;  // 2017-01-31
            COleSafeArray array;
            array.CreateFromVariants({COleVariant::fromDate(day + 14.5 / 24),
                                      COleVariant::fromDate(day), COleVariant::fromDate(1e9)});
            returnValueList(array);
        });
        EXPECT_EQ(evalExactly("(outer)"), c.lisp) << toUtf8(c.locale);
        stop();
    }
}

// A list that pairs cannot be made of is answered with nil at once; no other failure sets a result.
TEST_F(ExternalCallsTest, PairsSetNilForANameThatIsNone) {
    start();
    const struct {
        const char *arguments, *lisp;
    } cases[] = {
        {"'((1 . 2))", "nil"}, {"'((\"a\" . 1) (2 . 3))", "nil"}, {"nil", "nil"},
        {"", "\"before\""},    {"\"a\"", "\"before\""},           {"'((\"a\" . (1.0 2.0)))", "nil"},
    };
    for (const auto& c : cases) {
        answer([] {
            acedRetStr(L"before");
            const List arguments(acedGetArgs());
            COleSafeArray array;
            EXPECT_FALSE(pairsToVariantArray(arguments.get(), array));
        });
        EXPECT_EQ(evalExactly("(outer " + std::string(c.arguments) + ")"), c.lisp) << c.arguments;
    }
}

TEST_F(ExternalCallsTest, MissingFunctionsAreListedOnceForAllDrawings) {
    start();
    EXPECT_TRUE(host().externals().missing().empty());
    for (const wchar_t* const name : {L"later", L"at_last", L"later"})
        acedDeclareMissing(name);
    documents().create();
    EXPECT_EQ(host().externals().missing(), (std::vector<std::wstring>{L"later", L"at_last"}));
}

TEST_F(ExternalCallsTest, FunctionsBelongToADrawingAndAModule) {
    start();
    answer([] {
        EXPECT_EQ(acedDefun(L"", 50), RTERROR);
        EXPECT_EQ(acedDefun(nullptr, 50), RTERROR);
        EXPECT_EQ(acedRegFunc(nullptr, 50), RTERROR) << "no such number";
        EXPECT_EQ(acedDefun(L"added", 50), RTNORM);
        EXPECT_EQ(acedRegFunc([] { return acedRetInt(acedGetFunCode()), int{RSRSLT}; }, 50),
                  RTNORM);
        EXPECT_EQ(acedGetFunCode(), 0);
    });
    EXPECT_EQ(acedDefun(L"added", 50), RTERROR) << "no module is running";
    eval("(outer)");
    EXPECT_EQ(eval("(added)"), "50");
    documents().create();
    EXPECT_EQ(eval("(added)"), "; error: no function definition: ADDED");
    documents().close(active());

    answer([] {
        EXPECT_EQ(acedRegFunc(nullptr, 50), RTNORM);
        EXPECT_EQ(acedUndef(L"other", 50), RTERROR) << "50 is the number of another name";
    });
    probe.messages.clear();
    eval("(outer)");
    EXPECT_EQ(eval("(added 1)"), "nil");
    EXPECT_THAT(probe.messages, ElementsAre("message 5 for function 50"));
    answer([] {
        EXPECT_EQ(acedDefun(L"second", 50), RTNORM);
        EXPECT_EQ(acedUndef(L"ADDED", 50), RTERROR) << "the number has passed on";
    });
    eval("(outer)");
    EXPECT_EQ(eval("(added)"), "; error: no function definition: ADDED");
    answer([] {
        EXPECT_EQ(acedUndef(L"SECOND", 50), RTNORM);
        EXPECT_EQ(acedUndef(L"second", 50), RTERROR);
    });
    EXPECT_EQ(eval("(outer) (second)"), "; error: no function definition: SECOND");
}

TEST_F(ExternalCallsTest, AFunctionMayTakeItselfAway) {
    start();
    answer([] {
        acedUndef(L"outer", 0);
        acedInvoke(makeList("'churn'").get(), nullptr);
        acedRetStr(L"done");
    });
    EXPECT_EQ(evalExactly("(defun churn () (setq l nil) (repeat 300000 (setq l (cons 1 l))) (gc))"
                          "(list (outer) outer)"),
              "(\"done\" nil)");
}

TEST_F(ExternalCallsTest, OwnDefinitionsOfAProgramStay) {
    start();
    eval("(defun sg_count () 5)");
    EXPECT_EQ(eval("(arxunload \"SwiftGate2017\") (sg_count)"), "5");
}

// ---- Into LISP ----------------------------------------------------------------------------------

class InvokeTest : public ExternalCallsTest {
  protected:
    InvokeTest() { start(); }
    // What acedInvoke answers to a list, from within a call.
    std::string invoke(const std::string& list) {
        std::string text;
        answer([&] {
            resbuf* result = nullptr;
            const int status = acedInvoke(makeList(list).get(), &result);
            text = status == RTNORM ? "" : status == RTCAN ? "cancelled " : "error ";
            text += describe(List(result).get());
        });
        EXPECT_EQ(evalExactly("(outer)"), "nil");
        return text;
    }
};

TEST_F(InvokeTest, ValuesComeBack) {
    eval(
        "(defun echo (x) x) (defun none () nil) (defun void () (princ)) (defun sym () 'a)"
        "(defun many (a b c / l) (setq l (list a b c)) l) (setq alias echo) (defun fun () car)"
        "(setq text \"no function\")");
    const struct {
        const char *list, *answer;
    } cases[] = {
        {"'echo' 5", "5s"},
        {"'ECHO' 70000", "70000"},
        {"'echo' <1,2,3>", "<1,2,3>"},
        {"'echo' ( 1 . 2 )", "( 1s . 2s )"},
        {"'echo' ( 1 )", "( 1s )"},
        {"'echo' nil", "nil"},
        {"'echo' T", "T"},
        {"'alias' 'x_y'", "'x_y'"},
        {"'none'", "nil"},
        {"'void'", ""},
        {"'sym'", ""},
        {"'fun'", ""},
        {"'many' 1 2.5r ( 'a' )", "( 1s 2.5r ( 'a' ) )"},
        {"'strcat' 'a' 'b'", "'ab'"},
        {"'many' 1", "error "},
        {"'echo' (", "error "},
        {"'echo' )", "error "},
        {"'text'", "error "},
        {"'nosuch' 1", "error "},
        {"1", "error "},
        {"", "error "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(invoke(c.list), c.answer) << c.list;
}

TEST_F(InvokeTest, FailuresAreReported) {
    eval("(defun fails (x) (setq x 2) (car x)) (setq x 1)");
    host().output().reportError(L"a line of its own");
    errors();
    EXPECT_EQ(invoke("'fails' 5"), "error ");
    EXPECT_EQ(errors(), "; error: bad argument type: consp 2\n");
    EXPECT_EQ(eval("x"), "1") << "the variable is put back";
    EXPECT_EQ(invoke("'nosuch'"), "error ");
    EXPECT_EQ(errors(), "; error: no function definition: NOSUCH\n");

    eval("(defun stops () (getstring))");
    EXPECT_EQ(invoke("'stops'"), "cancelled ");
    EXPECT_EQ(errors(), "; error: Function cancelled\n");
    probe.inner = [&] {
        host().interpreter().interrupt();
        return int{RSRSLT};
    };
    eval("(defun interrupted () (inner) (while T (setq i 1)))");
    EXPECT_EQ(invoke("'interrupted'"), "cancelled ");
    errors();
    eval("(defun leaves () (vl-exit-with-value 3)) (defun quits () (quit))");
    EXPECT_EQ(invoke("'leaves'"), "error ");
    EXPECT_EQ(invoke("'quits'"), "error ");
    EXPECT_EQ(errors(), "");
}

TEST_F(InvokeTest, NestedCallsKeepArgumentsAndResultsApart) {
    probe.inner = [] {
        const List arguments(acedGetArgs());
        EXPECT_EQ(acedGetFunCode(), 1);
        acedRetInt(arguments->resval.rint * 10);
        return RSRSLT;
    };
    eval("(defun twice (n) (+ (inner n) (inner (1+ n))))");
    answer([] {
        acedRetStr(L"mine");
        resbuf* result = nullptr;
        EXPECT_EQ(acedInvoke(makeList("'twice' 4").get(), &result), RTNORM);
        EXPECT_EQ(describe(List(result).get()), "90s");
        EXPECT_EQ(describe(List(acedGetArgs()).get()), "'outer' 1s");
        EXPECT_EQ(acedGetFunCode(), 0);
    });
    EXPECT_EQ(evalExactly("(outer \"outer\" 1)"), "\"mine\"");
    probe.inner = [] { return RSERR; };
    answer([] {
        acedRetStr(L"mine");
        EXPECT_EQ(acedInvoke(makeList("'twice' 4").get(), nullptr), RTERROR);
    });
    EXPECT_EQ(evalExactly("(outer)"), "\"mine\"");
}

TEST_F(InvokeTest, AnErrorInANestedCallRestoresVariables) {
    probe.inner = [] { return RSERR; };
    eval(
        "(defun deep (a b) (setq b 7) (foreach a '(8 9) (inner)))"
        "(defun caller (b / c) (setq c 5) (list (outer) b c))"
        "(setq a 1 b 2 c 3)");
    answer([] {
        EXPECT_EQ(acedInvoke(makeList("'deep' 1 2").get(), nullptr), RTERROR);
        acedRetT();
    });
    EXPECT_EQ(evalExactly("(list (caller 4) a b c)"), "((T 4 5) 1 2 3)");
}

TEST_F(InvokeTest, CallsWithoutAnEndOverflowTheStackAndNothingElse) {
    eval("(defun again () (outer))");
    int refused = 0;
    answer([&] {
        if (acedInvoke(makeList("'again'").get(), nullptr) != RTNORM) ++refused;
        acedRetInt(refused);
    });
    EXPECT_EQ(evalExactly("(outer)"), "1") << "the innermost call alone fails";
    EXPECT_THAT(errors(), HasSubstr("; error: AutoLISP stack overflow"));
}

TEST_F(InvokeTest, TheActiveDrawingsFunctionIsCalled) {
    eval("(defun where () \"first\")");
    documents().create();
    eval("(defun where () \"second\")");
    std::string seen;
    answer([&] {
        resbuf* result = nullptr;
        acedInvoke(makeList("'where'").get(), &result);
        seen += describe(List(result).get());
    });
    eval("(outer)");
    eval("(progn (host-activate-drawing \"Drawing1.dwg\") (outer))");
    EXPECT_EQ(seen, "'second''first'");
    EXPECT_EQ(eval("(where)"), "\"first\"");
}

TEST_F(InvokeTest, Variables) {
    eval("(setq a '(1 2.5) b nil) (defun f () 1)");
    const auto get = [](const wchar_t* name) {
        resbuf* value = nullptr;
        const int status = acedGetSym(name, &value);
        return (status == RTNORM ? "" : "error ") + describe(List(value).get());
    };
    EXPECT_EQ(get(L"A"), "( 1s 2.5r )");
    EXPECT_EQ(get(L"a"), "( 1s 2.5r )");
    EXPECT_EQ(get(L"b"), "");
    EXPECT_EQ(get(L"never"), "");
    EXPECT_EQ(get(L"f"), "error ");
    EXPECT_EQ(acedGetSym(nullptr, nullptr), RTERROR);
    const struct {
        const char *nodes, *lisp;
    } cases[] = {
        {"5", "5"},       {"'x'", "\"x\""},       {"nil", "nil"},
        {"( 1 )", "(1)"}, {"<1,2>", "(1.0 2.0)"}, {"1 2", "(1 2)"},
        {"", "nil"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(acedPutSym(L"put", makeList(c.nodes).get()), RTNORM) << c.nodes;
        EXPECT_EQ(eval("put"), c.lisp) << c.nodes;
    }
    EXPECT_EQ(acedPutSym(L"put", makeList("( 1").get()), RTERROR);
    EXPECT_EQ(acedPutSym(nullptr, nullptr), RTERROR);
}

}  // namespace
}  // namespace sg

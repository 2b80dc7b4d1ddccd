#include <gmock/gmock.h>

#include "base/encoding.h"
#include "host/lisp/evaluate.h"
#include "host/lisp/interpreter.h"

namespace sg::lisp {
namespace {

struct Case {
    const wchar_t* program;
    const wchar_t* answer;
};

class StringFunctions : public testing::Test {
  protected:
    void check(std::initializer_list<Case> cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(session.evaluate(each.program), each.answer) << toUtf8(each.program);
        }
    }

    Session session;
    Interpreter& in = session.in;
};

TEST_F(StringFunctions, JoinAndMeasure) {
    check({
        {LR"((strcat))", LR"("")"},
        {LR"((strcat "a" "" "bcd"))", LR"("abcd")"},
        {LR"((strcat "a" nil))", L"; error: bad argument type: stringp nil"},
        {LR"((strcat "a" 1))", L"; error: bad argument type: stringp 1"},
        {LR"((strlen))", L"0"},
        {LR"((strlen "ab" "" "c"))", L"3"},
        {LR"((strlen "a\000b"))", L"3"},
        {LR"((strlen 'a))", L"; error: bad argument type: stringp A"},
    });
}

// One long string many times over, so that the sum leaves the range of integers.
TEST_F(StringFunctions, LengthsBeyondIntegersAreErrors) {
    EXPECT_EQ(session.evaluate(LR"((setq s "0123456789abcdef") (repeat 16 (setq s (strcat s s)))
                           (strlen s))"),
              L"1048576");
    in.define(std::initializer_list<FunctionRow>{{L"copies",
                                                  [](Interpreter& interpreter, Args a) {
                                                      Value list;
                                                      for (int32_t i = 0; i < a[1].asInt(); ++i)
                                                          list = interpreter.cons(a[0], list);
                                                      return list;
                                                  },
                                                  2, 2}});
    check({
        {L"(apply 'strlen (copies s 2047))", L"2146435072"},
        {L"(apply 'strlen (copies s 2048))",
         L"; error: bad argument value: string length: 2147483648"},
    });
    EXPECT_THAT(session.evaluate(L"(apply 'strcat (copies s 2048))"),
                testing::StartsWith(L"; error: out of memory"));
}

TEST_F(StringFunctions, Substrings) {
    check({
        {LR"((substr "abcde" 2))", LR"("bcde")"},
        {LR"((substr "abcde" 2 1))", LR"("b")"},
        {LR"((substr "abcde" 1 99))", LR"("abcde")"},
        {LR"((substr "abcde" 5 nil))", LR"("e")"},
        {LR"((substr "abcde" 6))", LR"("")"},
        {LR"((substr "abcde" 2147483647 2147483647))", LR"("")"},
        {LR"((substr "abcde" 2 0))", LR"("")"},
        {LR"((substr "" 1))", LR"("")"},
        {LR"((substr "abcde" 0))", L"; error: bad argument value: positive 0"},
        {LR"((substr "abcde" -2147483648))", L"; error: bad argument value: positive -2147483648"},
        {LR"((substr "abcde" 1 -1))", L"; error: bad argument value: non-negative -1"},
        {LR"((substr "abcde" 1.0))", L"; error: bad argument type: fixnump: 1.0"},
        {LR"((substr nil 1))", L"; error: bad argument type: stringp nil"},
        {LR"((substr "abc"))", L"; error: too few arguments"},
        {LR"((substr "abc" 1 1 1))", L"; error: too many arguments"},
    });
}

TEST_F(StringFunctions, CaseAndCharacters) {
    check({
        {LR"((strcase "Sample 1 ä"))", LR"("SAMPLE 1 Ä")"},
        {LR"((strcase "Sample 1 Ä" nil))", LR"("SAMPLE 1 Ä")"},
        {LR"((strcase "Sample 1 Ä" T))", LR"("sample 1 ä")"},
        {LR"((xstrcase "Sample"))", LR"("SAMPLE")"},
        {LR"((ascii "BIG"))", L"66"},
        {LR"((ascii ""))", L"0"},
        {LR"((ascii "€"))", L"8364"},
        {LR"((chr 65))", LR"("A")"},
        {LR"((chr 0))", LR"("")"},
        {LR"((ascii (chr 1114111)))", L"1114111"},
        {LR"((chr 1114112))", L"; error: bad argument value: character code: 1114112"},
        {LR"((chr -1))", L"; error: bad argument value: character code: -1"},
        {LR"((chr 65.0))", L"; error: bad argument type: fixnump: 65.0"},
        {LR"((wcmatch "Name" "???,*m*"))", L"T"},
        {LR"((wcmatch "Name" "~*m*"))", L"nil"},
        {LR"((wcmatch "Name" nil))", L"; error: bad argument type: stringp nil"},
    });
}

TEST_F(StringFunctions, Numbers) {
    check({
        {LR"((atoi "17"))", L"17"},
        {LR"((atoi "-3.9"))", L"-3"},
        {LR"((atoi "x"))", L"0"},
        {LR"((atof "97.1"))", L"97.1"},
        {LR"((atof "3"))", L"3.0"},
        {LR"((itoa 0))", LR"("0")"},
        {LR"((itoa -17))", LR"("-17")"},
        {LR"((itoa 2147483647))", LR"("2147483647")"},
        {LR"((itoa -2147483648))", LR"("-2147483648")"},
        {LR"((itoa 1.5))", L"; error: bad argument type: fixnump: 1.5"},
        {LR"((atoi 1))", L"; error: bad argument type: stringp 1"},
    });
}

TEST_F(StringFunctions, SearchAndCompare) {
    check({
        {LR"((vl-string-elt "May" 0))", L"77"},
        {LR"((vl-string-elt "May" 2))", L"121"},
        {LR"((vl-string-elt "May" 3))",
         L"; error: bad argument value: string position out of range 3"},
        {LR"((vl-string-elt "May" -1))",
         L"; error: bad argument value: string position out of range -1"},
        {LR"((vl-string-search "foo" "pfooyey on you"))", L"1"},
        {LR"((vl-string-search "you" "pfooyey on you" 1))", L"11"},
        {LR"((vl-string-search "you" "pfooyey on you" nil))", L"11"},
        {LR"((vl-string-search "you" "pfooyey on you" 12))", L"nil"},
        {LR"((vl-string-search "a" "a" -1))", L"; error: bad argument value: non-negative -1"},
        {LR"((vl-string-position (ascii "z") "azbzlmnqc"))", L"1"},
        {LR"((vl-string-position 122 "azbzlmnqc" 2))", L"3"},
        {LR"((vl-string-position 122 "azbzlmnqc" 4))", L"nil"},
        {LR"((vl-string-position 122 "azbzlmnqc" nil t))", L"3"},
        {LR"((vl-string-position 122 "azbzlmnqc" 3 t))", L"3"},
        {LR"((vl-string-position 122 "azbzlmnqc" 4 t))", L"nil"},
        {LR"((vl-string-position 97 "" 0 t))", L"nil"},
        {LR"((vl-string-mismatch "VL-FUN" "VL-VAR"))", L"3"},
        {LR"((vl-string-mismatch "vl-fun" "avl-var" 0 1))", L"3"},
        {LR"((vl-string-mismatch "VL-FUN" "Vl-vAR" nil nil T))", L"3"},
    });
}

TEST_F(StringFunctions, TrimSubstituteTranslate) {
    check({
        {LR"((vl-string-left-trim " \t" "\t  x "))", LR"("x ")"},
        {LR"((vl-string-right-trim " \t" " x \t"))", LR"(" x")"},
        {LR"((vl-string-trim " " " x "))", LR"("x")"},
        {LR"((vl-string-trim "ab" "abba"))", LR"("")"},
        {LR"((vl-string-subst "Obi-wan" "Ben" "Ben Kenobi"))", LR"("Obi-wan Kenobi")"},
        {LR"((vl-string-subst "x" "a" "banana" 2))", LR"("banxna")"},
        {LR"((vl-string-subst "x" "a" "abc" 9))", LR"("abc")"},
        {LR"((vl-string-translate "abc" "123" "A is a, B is b"))", LR"("A is 1, B is 2")"},
        {LR"((vl-string-translate "abc" "" "cab"))", LR"("cab")"},
    });
}

TEST_F(StringFunctions, WhatChangesNothingAnswersItsArgument) {
    for (const wchar_t* call :
         {LR"((substr s 1))", LR"((substr s 1 9))", LR"((vl-string-trim "xyz" s))",
          LR"((vl-string-left-trim "l" s))", LR"((vl-string-right-trim "a" s))",
          LR"((vl-string-subst "1" "x" s))", LR"((vl-string-translate "xyz" "123" s))"}) {
        bool same = false;
        in.runProtected([&] {
            in.loadText(LR"((setq s "a label"))", L"");
            same = in.loadText(call, L"") == in.valueOf(in.intern(L"S"));
            return Value::nil();
        });
        EXPECT_TRUE(same) << toUtf8(call);
    }
}

TEST_F(StringFunctions, ListsOfCodes) {
    check({
        {LR"((vl-string->list "1A€"))", L"(49 65 8364)"},
        {LR"((vl-string->list ""))", L"nil"},
        {LR"((vl-list->string '(49 65 8364)))", LR"("1A€")"},
        {LR"((vl-list->string '(65 0 66)))", LR"("A\000B")"},
        {LR"((vl-list->string nil))", LR"("")"},
        {LR"((vl-list->string '(65 66.0)))", L"; error: bad argument type: fixnump: 66.0"},
        {LR"((vl-list->string '(65 -1)))", L"; error: bad argument value: character code: -1"},
        {LR"((vl-list->string '(65 . 66)))", L"; error: bad argument type: listp (65 . 66)"},
        {LR"((vl-list->string "A"))", LR"(; error: bad argument type: listp "A")"},
    });
}

TEST_F(StringFunctions, SymbolTableNames) {
    const Case extended[] = {
        {LR"((snvalid "hocus-pocus"))", L"T"},
        {LR"((snvalid "hocus pocus"))", L"T"},
        {LR"((snvalid "hocus%pocus"))", L"T"},
        {LR"((snvalid "hocus|pocus"))", L"nil"},
        {LR"((snvalid "hocus|pocus" 1))", L"T"},
        {LR"((snvalid "hocus|pocus" 0))", L"nil"},
        {LR"((snvalid "|pocus" 1))", L"nil"},
        {LR"((snvalid "hocus|" 1))", L"nil"},
        {LR"((snvalid ""))", L"nil"},
        {LR"((snvalid "*U3"))", L"T"},
        {LR"((snvalid "*"))", L"nil"},
        {LR"((snvalid "U*3"))", L"nil"},
        {LR"((snvalid "a`b"))", L"nil"},
        {LR"((snvalid "a\tb"))", L"nil"},
        {LR"((snvalid " a"))", L"nil"},
        {LR"((snvalid "a "))", L"nil"},
        {LR"((snvalid "Lüftung"))", L"T"},
    };
    for (const Case& each : extended)
        check({each});
    EXPECT_EQ(session.evaluate(L"(snvalid \"" + std::wstring(255, L'a') + L"\")"), L"T");
    EXPECT_EQ(session.evaluate(L"(snvalid \"" + std::wstring(256, L'a') + L"\")"), L"nil");

    Hooks hooks = in.hooks();
    hooks.systemVariable = [](std::wstring_view name) -> std::optional<Value> {
        if (name != L"EXTNAMES") return std::nullopt;
        return Value::integer(0);
    };
    in.setHooks(hooks);
    check({
        {LR"((snvalid "hocus-pocus_$1"))", L"T"},
        {LR"((snvalid "hocus pocus"))", L"nil"},
        {LR"((snvalid "hocus%pocus"))", L"nil"},
        {LR"((snvalid "Lüftung"))", L"nil"},
        {LR"((snvalid "hocus|pocus" 1))", L"T"},
        {LR"((snvalid "abcdefghijklmnopqrstuvwxyz12345"))", L"T"},
        {LR"((snvalid "abcdefghijklmnopqrstuvwxyz123456"))", L"nil"},
    });
}

}  // namespace
}  // namespace sg::lisp

#include "host/lisp/reader.h"

#include "host/lisp/evaluate.h"

namespace sg::lisp {
namespace {

std::wstring readBack(const std::wstring& text) {
    return evaluate(L"'" + text);
}

TEST(Reader, Literals) {
    struct Row {
        const wchar_t* text;
        const wchar_t* type;
        const wchar_t* printed;
    };
    const Row kTable[] = {
        {L"0", L"INT", L"0"},
        {L"-0", L"INT", L"0"},
        {L"+7", L"INT", L"7"},
        {L"2147483647", L"INT", L"2147483647"},
        {L"-2147483648", L"INT", L"-2147483648"},
        {L"2147483648", L"REAL", L"2.14748e+09"},
        {L"-2147483649", L"REAL", L"-2.14748e+09"},
        {L"0.5", L"REAL", L"0.5"},
        {L"-0.5", L"REAL", L"-0.5"},
        {L"5.", L"REAL", L"5.0"},
        {L"1e3", L"REAL", L"1000.0"},
        {L"1E+3", L"REAL", L"1000.0"},
        {L"1.e2", L"REAL", L"100.0"},
        {L"1.5e-3", L"REAL", L"0.0015"},
        {L"1e400", L"REAL", L"1.#INF"},
        {L"-1e400", L"REAL", L"-1.#INF"},
        {L"1e-400", L"REAL", L"0.0"},
        {L"\"\"", L"STR", L"\"\""},
        {L"abc", L"SYM", L"ABC"},
        {L"1+", L"SYM", L"1+"},
        {L"-", L"SYM", L"-"},
        {L"+", L"SYM", L"+"},
        {L"1e", L"SYM", L"1E"},
        {L"1.2.3", L"SYM", L"1.2.3"},
        {L"a.b", L"SYM", L"A.B"},
        {L"c:Go", L"SYM", L"C:GO"},
        {L"\u00E4", L"SYM", L"\u00C4"},
        {L"t", L"SYM", L"T"},
        {L"nil", L"nil", L"nil"},
        {L"NIL", L"nil", L"nil"},
        {L"()", L"nil", L"nil"},
        {L"( )", L"nil", L"nil"},
        {L"(1 . 2)", L"LIST", L"(1 . 2)"},
        {L"(1 .2)", nullptr, L"; error: misplaced dot on input"},
        {L"(1 2 . (3 4))", L"LIST", L"(1 2 3 4)"},
        {L"(1 . nil)", L"LIST", L"(1)"},
        {L"(a(b)c)", L"LIST", L"(A (B) C)"},
        {L"('a ''b)", L"LIST", L"((QUOTE A) (QUOTE (QUOTE B)))"},
        {L"(a . 'b)", L"LIST", L"(A QUOTE B)"},
        {L"'(a)", L"LIST", L"(QUOTE (A))"},
        {L"(a'b)", L"LIST", L"(A (QUOTE B))"},
        {L"(1\"x\"2)", L"LIST", L"(1 \"x\" 2)"},
    };
    for (const auto& [text, type, printed] : kTable) {
        EXPECT_EQ(readBack(text), printed) << testing::PrintToString(std::wstring(text));
        if (type == nullptr) continue;
        EXPECT_EQ(evaluate(L"(type '" + std::wstring(text) + L")"), type);
    }
}

TEST(Reader, StringEscapes) {
    struct Row {
        const wchar_t* text;  // between the quotes
        std::wstring value;
    };
    const Row kTable[] = {
        {L"a\\\\b", L"a\\b"},
        {L"\\\"", L"\""},
        {L"\\n\\r\\t\\e", L"\n\r\t\x1B"},
        {L"\\101\\60", L"A0"},
        {L"\\1018", L"A8"},
        {L"\\7x", L"\x07x"},
        {L"\\U+00e4\\U+20AC", L"\u00E4\u20AC"},
        {L"\\U+12", L"U+12"},
        {L"\\q", L"q"},
        {L"line\r\nend", L"line\nend"},
        {L"(;|", L"(;|"},
        {L"\u00E4\U0001F600", L"\u00E4\U0001F600"},
    };
    for (const Row& row : kTable) {
        Session session;
        std::wstring got;
        session.in.runProtected([&] {
            got = session.in.str(session.in.loadText(L"\"" + std::wstring(row.text) + L"\"", L""));
            return Value::nil();
        });
        EXPECT_EQ(got, row.value) << testing::PrintToString(std::wstring(row.text));
    }
}

TEST(Reader, BlanksAndComments) {
    expectAll({
        {L"", L"nil"},
        {L" \t\r\n", L"nil"},
        {L"; nothing", L"nil"},
        {L"1 ; one\n2", L"2"},
        {L"(list 1 ; ) not the end\n 2)", L"(1 2)"},
        {L"(list 1 ;| 2\n 3 |; 4)", L"(1 4)"},
        {L"(list 1 ;||; 2 ;| ; | |; 3)", L"(1 2 3)"},
        {L"1;| never ended", L"1"},
        {L"5\x1A", L"5"},
        {L"'abc;comment", L"ABC"},
    });
}

TEST(Reader, Mistakes) {
    struct Row {
        const wchar_t* text;
        const wchar_t* plain;
        const wchar_t* withFile;
    };
    const Row kTable[] = {
        {L"(a\n(b\n", L"malformed list on input",
         L"malformed list on input: plan.lsp:3: the text ends, \")\" is expected for the \"(\" in "
         L"line 2"},
        {L"1\n\n(a", L"malformed list on input",
         L"malformed list on input: plan.lsp:3: the text ends, \")\" is expected for the \"(\" in "
         L"line 3"},
        {L"(a ;| b)", L"malformed list on input",
         L"malformed list on input: plan.lsp:1: the text ends, \")\" is expected for the \"(\" in "
         L"line 1"},
        {L"\n'", L"malformed list on input",
         L"malformed list on input: plan.lsp:2: a form is expected after \"'\""},
        {L"')", L"malformed list on input",
         L"malformed list on input: plan.lsp:1: a form is expected after \"'\""},
        {L"(a ')", L"malformed list on input",
         L"malformed list on input: plan.lsp:1: a form is expected after \"'\""},
        {L"(princ 1)\n)", L"extra right paren on input",
         L"extra right paren on input: plan.lsp:2: this \")\" closes no list"},
        {L"\n(a \"b\n\nc", L"malformed string on input",
         L"malformed string on input: plan.lsp:4: the text ends, '\"' is expected for the string "
         L"that begins in line 2"},
        {L"\"a\\", L"malformed string on input",
         L"malformed string on input: plan.lsp:1: the text ends inside the string"},
        {L"(. a)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:1: \".\" stands between two items"},
        {L"(a .\n)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:2: an item is expected after \".\""},
        {L"(a . b c)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:1: one item is expected after \".\""},
        {L"(a . . b)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:1: \".\" stands between two items"},
        {L"(a '. b)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:1: \".\" stands between two items"},
        {L".", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:1: a number needs a digit before its point"},
        {L"(a\n.5)", L"misplaced dot on input",
         L"misplaced dot on input: plan.lsp:2: a number needs a digit before its point"},
    };
    for (const auto& [text, plain, withFile] : kTable) {
        Session session;
        EXPECT_EQ(session.evaluate(text), L"; error: " + std::wstring(plain));
        EXPECT_EQ(session.evaluate(text, L"plan.lsp"), L"; error: " + std::wstring(withFile));
    }
}

TEST(Reader, FormsBeforeAMistakeHaveRun) {
    Session session;
    EXPECT_EQ(session.evaluate(L"(setq a 1) (setq b 2"), L"; error: malformed list on input");
    EXPECT_EQ(session.evaluate(L"(list a b)"), L"(1 nil)");
}

TEST(Reader, Depth) {
    const auto nested = [](size_t depth) {
        return std::wstring(depth, L'(') + std::wstring(depth, L')');
    };
    EXPECT_EQ(evaluate(L"(vl-consp '" + nested(100000) + L")"), L"T");
    EXPECT_EQ(evaluate(L"(vl-consp '(" + std::wstring(100000, L'\'') + L"a))"), L"T");
    EXPECT_EQ(evaluate(std::wstring(3000000, L'\'') + L"a"), L"; error: AutoLISP stack overflow");
    EXPECT_EQ(evaluate(std::wstring(1000000, L'(')), L"; error: malformed list on input");
}

TEST(Reader, FunctionRead) {
    expectAll({
        {L"(list (read \"hello\") (read \"(a b) c\") (read \"\") (read \" ; \") (read))",
         L"(HELLO (A B) nil nil nil)"},
        {L"(read \"(a\")", L"; error: malformed list on input"},
        {L"(read \"\\\"a\")", L"; error: malformed string on input"},
        {L"(read 5)", L"; error: bad argument type: stringp 5"},
    });
}

TEST(Reader, Incomplete) {
    for (const wchar_t* text : {L"(", L"(a (b)", L"\"a", L"(a \"b)", L";| a", L"(a \"\\\""}) {
        EXPECT_TRUE(isIncomplete(text)) << testing::PrintToString(std::wstring(text));
    }
    for (const wchar_t* text :
         {L"", L"a", L"(a)", L")", L"; (", L"\"(\"", L";| ( |;", L"(a ; (\n)"}) {
        EXPECT_FALSE(isIncomplete(text)) << testing::PrintToString(std::wstring(text));
    }
}

}  // namespace
}  // namespace sg::lisp

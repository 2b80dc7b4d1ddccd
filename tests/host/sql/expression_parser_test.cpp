#include <gtest/gtest.h>

#include "host/sql/parse_cases.h"

namespace sg::sql {
namespace {

struct Case {
    const wchar_t* text;
    const char* printed;
};

void check(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(parsedExpression(c.text), c.printed) << toUtf8(c.text);
    }
}

TEST(SqlExpressions, OperatorsBindByTheirRank) {
    check({
        {L"a + b * c", "a + (b * c)"},
        {L"a - b - c", "(a - b) - c"},
        {L"2 ^ 3 ^ 2", "(2 ^ 3) ^ 2"},
        {L"-2 ^ 2", "-(2 ^ 2)"},
        {L"2 ^ -3 ^ 4", "2 ^ (-(3 ^ 4))"},
        {L"-a * b", "(-a) * b"},
        {L"+a * b", "a * b"},
        {L"a / b \\ c mod d", "((a / b) \\ c) Mod d"},
        {L"a mod b + c", "(a Mod b) + c"},
        {L"a & b + c", "a & (b + c)"},
        {L"a & b = c & d", "(a & b) = (c & d)"},
        {L"a = b = c", "(a = b) = c"},
        {L"not a = b and c", "(Not (a = b)) And c"},
        {L"not not a", "Not (Not a)"},
        {L"a or b and c", "a Or (b And c)"},
        {L"a imp b eqv c xor d or e", "a Imp (b Eqv (c Xor (d Or e)))"},
        {L"a<=b or a>=c or a<>d", "((a <= b) Or (a >= c)) Or (a <> d)"},
        {L"(a + b) * c", "(a + b) * c"},
    });
}

TEST(SqlExpressions, ComparisonsWithWords) {
    check({
        {L"a between 1 and 2 and b", "(a Between 1 And 2) And b"},
        {L"a not between b & c and d + 1", "a Not Between (b & c) And (d + 1)"},
        {L"a like 'x*' & b", "a Like (\"x*\" & b)"},
        {L"a not like '[!a-z]#'", "a Not Like \"[!a-z]#\""},
        {L"not a like b", "Not (a Like b)"},
        {L"a is null or b is not null", "(a Is Null) Or (b Is Not Null)"},
        {L"a in (1, -2, 'x')", "a In (1, -2, \"x\")"},
        {L"a + 1 not in (b)", "(a + 1) Not In (b)"},
        {L"a in (select b from t)", "a In (SELECT b FROM t)"},
        {L"a not in (select b from t)", "a Not In (SELECT b FROM t)"},
        {L"exists (select * from t) and b", "Exists (SELECT * FROM t) And b"},
        {L"not exists(select 1)", "Not Exists (SELECT 1)"},
        {L"a = (select max(b) from t) + 1", "a = ((SELECT Max(b) FROM t) + 1)"},
        {L"a > any (select b from t) and c", "(a > Any (SELECT b FROM t)) And c"},
        {L"a >= some (select b from t)", "a >= Any (SELECT b FROM t)"},
        {L"a <> all(select b from t)", "a <> All (SELECT b FROM t)"},
        {L"a = any", "a = [any]"},
        {L"((select a from t) union select b from u)", "(SELECT a FROM t UNION SELECT b FROM u)"},
        {L"x in ((select a from t) union all (select b from u))",
         "x In (SELECT a FROM t UNION ALL SELECT b FROM u)"},
    });
}

TEST(SqlExpressions, NamesAndValues) {
    check({
        {L"a!b.[c d]", "a.b.[c d]"},
        {L"[Forms]![Main]![No]", "Forms.Main.[No]"},
        {L"t.order", "t.[order]"},
        {L"[Enter a date:] + [?]", "[Enter a date:] + [?]"},
        {L"? + ?", "? + ?"},
        {L"true or NO or [true] or yes.x", "((True Or False) Or [true]) Or [yes].x"},
        {L"null", "Null"},
        {L"\"a\"\"b'c\" & 'd''e\"'", "\"a\"\"b'c\" & \"d'e\"\"\""},
        {L"#1/31/2017# + #14:30#", "#2017-01-31 00:00:00# + #1899-12-30 14:30:00#"},
        {L"&HFF & &HFFFF & &H7FFFFFFF & &HFFFFFFFF", "((255 & &HFFFF) & 2147483647) & &HFFFFFFFF"},
        {L"a &HFF", "a & HFF"},
        {L"t.order &HFF", "t.[order] & HFF"},
        {L"1.50 + .5 + 5. + 1e3 + 1E-7 + 3000000000",
         "((((1.5 + 0.5) + 5.0) + 1000.0) + 1E-07) + 3000000000"},
        {L"1e300", "1E+300"},
        {L"K\u00fcche = \u0416", "K\u00fcche = \u0416"},
    });
}

TEST(SqlExpressions, Calls) {
    check({
        {L"left(a, 2) & right$(b, 1) & asc(c)", "(left(a, 2) & right$(b, 1)) & asc(c)"},
        {L"now()", "now()"},
        {L"iif(a > 1 and b, 'x', f(c + 1))", "iif((a > 1) And b, \"x\", f(c + 1))"},
        {L"count(*) + COUNT(a) + sum(a * 2)", "(Count(*) + Count(a)) + Sum(a * 2)"},
        {L"first(a) & last(b) & stdevp(c) & varp(d)",
         "((First(a) & Last(b)) & StDevP(c)) & VarP(d)"},
        {L"count + first", "count + first"},
    });
}

TEST(SqlExpressions, MinimalParenthesesKeepTheTree) {
    for (const wchar_t* text :
         {L"(2 ^ -3) ^ 4", L"2 ^ -3 ^ 4", L"(-2) ^ 2", L"-(2 ^ 2)", L"a - (b - c)", L"(not a) = b",
          L"a = not b = c", L"(a in (1)) in (2)", L"a like (b like c)", L"not (a and b)",
          L"(a between 1 and 2) between 3 and (4 = 5)", L"(a is null) is null", L"- - a",
          L"(a & b) + c", L"a = (any)", L"(a or b) and c imp d"}) {
        const ExpressionPtr tree = parseExpression(text);
        const std::wstring minimal = toText(*tree);
        EXPECT_EQ(toUtf8(toText(*parseExpression(minimal), Parentheses::All)),
                  toUtf8(toText(*tree, Parentheses::All)))
            << toUtf8(minimal);
    }
    EXPECT_EQ(toText(*parseExpression(L"((a)) + (b * (c)) = d")), L"a + b * c = d");
}

TEST(SqlExpressions, WhatIsWrongIsQuoted) {
    check({
        {L"a b", "error 3075 Syntax error (missing operator) in query expression 'a b'."},
        {L"a = ", "error 3075 Syntax error (missing operator) in query expression 'a ='."},
        {L"a = 'x", "error 3075 Syntax error in string in query expression 'a = 'x'."},
        {L"a = #x#", "error 3075 Syntax error in date in query expression 'a = #x#'."},
        {L"a = 1x", "error 3075 Syntax error in number in query expression 'a = 1x'."},
        {L"(a + 1", "error 3075 Missing ), ], or Item in query expression '(a + 1'."},
        {L"a + 1)", "error 3075 Extra ) in query expression 'a + 1)'."},
        {L"a in 5", "error 3075 In operator without () in query expression 'a in 5'."},
        {L"a in (1", "error 3075 Missing ), ], or Item in query expression 'a in (1'."},
        {L"a between 1 or 2",
         "error 3075 Between operator without And in query expression 'a between 1 or 2'."},
        {L"a is 5", "error 3075 Syntax error in query expression 'a is 5'."},
        {L"count(distinct a)",
         "error 3075 Syntax error (missing operator) in query expression 'count(distinct a)'."},
        {L"sum(*)", "error 3075 Syntax error (missing operator) in query expression 'sum(*)'."},
        {L"sum(a, b)",
         "error 3075 Wrong number of arguments used with function in query expression 'sum(a, "
         "b)'."},
        {L"a.f(1)", "error 3075 Invalid use of '.', '!', or '()'. in query expression 'a.f(1)'."},
        {L"a.*", "error 3075 Invalid use of '.', '!', or '()'. in query expression 'a.*'."},
        {L"[a", "error 3126 Invalid bracketing of name '[a'."},
        {L"[a[b]]", "error 3126 Invalid bracketing of name '[a[b]]'."},
        {L"", "error 3075 Syntax error in query expression ''."},
        {L"a; b", "error 3075 Syntax error in query expression 'a'."},
        {L"a @ b", "error 3075 Syntax error in query expression 'a @ b'."},
        {L"a in (select b from t",
         "error 3075 Missing ), ], or Item in query expression 'a in (select b from t'."},
    });
}

TEST(SqlExpressions, RangesIncludeParenthesesAndCountInTheText) {
    const std::wstring text = L"  (a + [b c]) * Len( x.y )";
    const ExpressionPtr tree = parseExpression(text);
    EXPECT_EQ(tree->range.of(text), L"(a + [b c]) * Len( x.y )");
    const auto& product = std::get<Binary>(tree->node);
    EXPECT_EQ(product.left->range.of(text), L"(a + [b c])");
    EXPECT_EQ(product.right->range.of(text), L"Len( x.y )");
    const auto& sum = std::get<Binary>(product.left->node);
    EXPECT_EQ(sum.right->range.of(text), L"[b c]");
    const auto& call = std::get<Call>(product.right->node);
    EXPECT_EQ(call.function.range.of(text), L"Len");
    const auto& column = std::get<ColumnName>(call.arguments[0]->node);
    EXPECT_EQ(column.qualifiers[0].range.of(text), L"x");
    EXPECT_EQ(column.name.range.of(text), L"y");
    EXPECT_TRUE(std::get<ColumnName>(sum.right->node).name.bracketed);
}

TEST(SqlExpressions, DepthIsLimited) {
    EXPECT_EQ(parsedExpression(repeated(L"(", 100) + L"a" + repeated(L")", 100)), "a");
    const std::string tooComplex = "error 3360 Query is too complex.";
    EXPECT_EQ(parsedExpression(repeated(L"(", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"-", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"not ", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"a in (", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"f(", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"(select ", 100000)), tooComplex);
    EXPECT_EQ(parsedExpression(repeated(L"a and ", 300) + L"a").find("error"), std::string::npos);
    EXPECT_EQ(parsedExpression(repeated(L"a and ", 100000) + L"a"), tooComplex);
    EXPECT_EQ(parsedExpression(L"a" + repeated(L" is null", 100000)), tooComplex);
    // The height of a query's expressions counts on in those around it.
    std::wstring inner = repeated(L"a+", 150) + L"a";
    inner = L"(select " + inner + L" from t)" + repeated(L"+a", 150);
    EXPECT_EQ(parsedExpression(inner).find("error"), std::string::npos);
    EXPECT_EQ(
        parsedExpression(L"(select x from t where b = " + inner + L")" + repeated(L"+a", 150)),
        tooComplex);
}

}  // namespace
}  // namespace sg::sql

#include "host/lisp/text/wildcard.h"

#include <gtest/gtest.h>

#include <string>

#include "base/encoding.h"

namespace sg {
namespace {

struct Row {
    const wchar_t* text;
    const wchar_t* pattern;
    bool matches;
};

void check(std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(wildcardMatch(row.text, row.pattern), row.matches)
            << toUtf8(row.text) << " against " << toUtf8(row.pattern);
    }
}

TEST(Wildcard, TakesOneCharacterForEachMark) {
    check({
        {L"A1", L"@#", true},
        {L"1A", L"@#", false},
        {L"a", L"@", true},
        {L"\u00e9", L"@", true},
        {L"\u0436", L"@", true},
        {L"_", L"@", false},
        {L"12", L"#", false},
        {L"\u00b2", L"#", false},
        {L"-", L".", true},
        {L" ", L".", true},
        {L"\u00d7", L".", true},
        {L"x", L".", false},
        {L"7", L".", false},
        {L"\u00c4", L".", false},
        {L"", L"?", false},
        {L"?", L"?", true},
        {L"abc", L"???", true},
        {L"abcd", L"???", false},
    });
}

TEST(Wildcard, CaseAndLengthCount) {
    check({
        {L"Name", L"Name", true},
        {L"Name", L"name", false},
        {L"Name", L"Nam", false},
        {L"Nam", L"Name", false},
        {L"", L"", true},
        {L"a", L"", false},
        {L"", L"a", false},
    });
}

TEST(Wildcard, StarTakesAnySequence) {
    check({
        {L"Name", L"N*", true},
        {L"Name", L"*", true},
        {L"", L"*", true},
        {L"", L"**", true},
        {L"Name", L"*am*", true},
        {L"Name", L"*m", false},
        {L"mississippi", L"m*iss*pi", true},
        {L"mississippi", L"*issip*i*", true},
        {L"mississippi", L"m*issx*", false},
        {L"aab", L"*ab", true},
        {L"DUCT-200x100", L"DUCT-#*x#*", true},
    });
}

TEST(Wildcard, TildeNegatesItsOwnAlternative) {
    check({
        {L"Name", L"~*m*", false},
        {L"Line", L"~*m*", true},
        {L"Name", L"???,~*m*,N*", true},
        {L"Name", L"~N*,~*e", false},
        {L"Name", L"~N*,~*x", true},
        {L"Name", L"X,~N*", false},
        {L"", L"~", false},
        {L"a", L"~", true},
        {L"a~b", L"a~b", true},
        {L"~b", L"~~b", false},
        {L"b", L"~~b", true},
    });
}

TEST(Wildcard, CommaSeparatesAlternatives) {
    check({
        {L"LINE", L"LINE,ARC", true},
        {L"ARC", L"LINE,ARC", true},
        {L"LINE,ARC", L"LINE,ARC", false},
        {L"", L"A,", true},
        {L"", L",A", true},
        {L"", L"A,B", false},
        {L"Name,Name", L"*`,*", true},
        {L"Name", L"*`,*", false},
    });
}

TEST(Wildcard, BracketsHoldASet) {
    check({
        {L"b", L"[abc]", true},     {L"d", L"[abc]", false}, {L"d", L"[~abc]", true},
        {L"b", L"[~abc]", false},   {L"", L"[~abc]", false}, {L"~", L"[a~]", true},
        {L"m", L"[a-z]", true},     {L"M", L"[a-z]", false}, {L"M", L"[a-zA-Z]", true},
        {L"5", L"[~0-46-9]", true}, {L"-", L"[-a]", true},   {L"-", L"[a-]", true},
        {L"-", L"[~-]", false},     {L"b", L"[a-]", false},  {L"m", L"[z-a]", false},
        {L",", L"[,;]", true},      {L"*", L"[*#]", true},   {L"1", L"[*#]", false},
        {L"]", L"[]a]", true},      {L"]", L"[~]]", false},  {L"]", L"[a`]]", true},
        {L"a", L"[`a-c]", true},    {L"b", L"[`a-c]", true}, {L"x1y", L"x[0-9]y", true},
    });
}

TEST(Wildcard, UnclosedBracketStandsForItself) {
    check({
        {L"[", L"[", true},
        {L"[ab", L"[ab", true},
        {L"a", L"[ab", false},
        {L"[]", L"[]", true},
        {L"b", L"[a,b", true},
        {L"[a", L"[a,b", true},
        {L"[~]", L"[~]", true},
    });
}

TEST(Wildcard, BackquoteTakesTheNextCharacterAsItIs) {
    check({
        {L"*", L"`*", true},
        {L"x", L"`*", false},
        {L"100#", L"###`#", true},
        {L"~x", L"`~x", true},
        {L"[x]", L"`[x`]", true},
        {L"`", L"``", true},
        {L"a`", L"a`", true},
        {L"a", L"`a", true},
    });
}

TEST(Wildcard, ManyStarsDoNotExplode) {
    const std::wstring text(20'000, L'a');
    std::wstring pattern;
    for (int i = 0; i < 100; ++i)
        pattern += L"*a";
    EXPECT_FALSE(wildcardMatch(text, pattern + L"*b"));
    EXPECT_TRUE(wildcardMatch(text + L'b', pattern + L"*b"));
    EXPECT_FALSE(wildcardMatch(L"a", std::wstring(50'000, L'[')));
}

}  // namespace
}  // namespace sg

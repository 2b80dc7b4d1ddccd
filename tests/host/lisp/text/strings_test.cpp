#include "host/lisp/text/strings.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

TEST(Strings, SearchAnswersAPositionInTheWholeText) {
    EXPECT_EQ(stringSearch(L"foo", L"pfooyey on you"), 1u);
    EXPECT_EQ(stringSearch(L"you", L"pfooyey on you", 1), 11u);
    EXPECT_EQ(stringSearch(L"foo", L"fofo"), std::nullopt);
    EXPECT_EQ(stringSearch(L"FOO", L"foo"), std::nullopt);
    EXPECT_EQ(stringSearch(L"foo", L"foo", 1), std::nullopt);
    EXPECT_EQ(stringSearch(L"", L"abc"), 0u);
    EXPECT_EQ(stringSearch(L"", L"abc", 3), 3u);
    EXPECT_EQ(stringSearch(L"", L"abc", 4), std::nullopt);
}

TEST(Strings, MismatchCountsTheCommonStart) {
    EXPECT_EQ(stringMismatch(L"VL-FUN", L"VL-VAR"), 3u);
    EXPECT_EQ(stringMismatch(L"vl-fun", L"avl-var"), 0u);
    EXPECT_EQ(stringMismatch(L"vl-fun", L"avl-var", 0, 1), 3u);
    EXPECT_EQ(stringMismatch(L"VL-FUN", L"Vl-vAR"), 1u);
    EXPECT_EQ(stringMismatch(L"VL-FUN", L"Vl-vAR", 0, 0, true), 3u);
    EXPECT_EQ(stringMismatch(L"abc", L"abcd"), 3u);
    EXPECT_EQ(stringMismatch(L"abcd", L"abc"), 3u);
    EXPECT_EQ(stringMismatch(L"abc", L"abc", 9, 0), 0u);
    EXPECT_EQ(stringMismatch(L"", L""), 0u);
}

TEST(Strings, SubstReplacesTheFirstOnly) {
    EXPECT_EQ(stringSubst(L"Obi-wan", L"Ben", L"Ben Kenobi"), L"Obi-wan Kenobi");
    EXPECT_EQ(stringSubst(L"Obi-wan", L"Ben", L"Ben, Ben", 1), L"Ben, Obi-wan");
    EXPECT_EQ(stringSubst(L"x", L"ben", L"Ben"), L"Ben");
    EXPECT_EQ(stringSubst(L"", L"b", L"abab"), L"aab");
    EXPECT_EQ(stringSubst(L"x", L"a", L"abc", 9), L"abc");
    EXPECT_EQ(stringSubst(L"x", L"", L"abc", 1), L"axbc");
}

TEST(Strings, TranslateMapsCharacterByCharacter) {
    EXPECT_EQ(stringTranslate(L"abcABC", L"123123", L"A is a, B is b, C is C"),
              L"1 is 1, 2 is 2, 3 is 3");
    EXPECT_EQ(stringTranslate(L"abc", L"123", L"A is a, B is b, C is C"),
              L"A is 1, B is 2, C is C");
    EXPECT_EQ(stringTranslate(L"abc", L"12", L"aabbcc"), L"112222");
    EXPECT_EQ(stringTranslate(L"ab", L"ba", L"abba"), L"baab");
    EXPECT_EQ(stringTranslate(L"aa", L"12", L"aa"), L"11");
    EXPECT_EQ(stringTranslate(L"a", L"12", L"a"), L"1");
    EXPECT_EQ(stringTranslate(L"abc", L"", L"abc"), L"abc");
    EXPECT_EQ(stringTranslate(L"", L"123", L"abc"), L"abc");
}

TEST(Strings, TrimTakesOffAnyOfTheSet) {
    EXPECT_EQ(stringTrim(L" \t\n", L" \t\n STR \n\t "), L"STR");
    EXPECT_EQ(stringLeftTrim(L" \t\n", L"\n\t STR "), L"STR ");
    EXPECT_EQ(stringRightTrim(L" \t\n", L" STR \n\t "), L" STR");
    EXPECT_EQ(stringTrim(L"this is junk", L"this is junk Don't call this junk! this is junk"),
              L"Don't call this junk!");
    EXPECT_EQ(stringTrim(L"a", L"aaaa"), L"");
    EXPECT_EQ(stringTrim(L"", L" a "), L" a ");
    EXPECT_EQ(stringTrim(L"a", L""), L"");
    EXPECT_EQ(stringTrim(L"A", L"aAa"), L"aAa");
}

}  // namespace
}  // namespace sg

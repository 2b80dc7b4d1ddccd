#include "host/editor/prompts/keywords.h"

#include <gtest/gtest.h>

#include "host/editor/prompts/typed_values.h"

namespace sg {
namespace {

TEST(Keywords, WhatIsTypedMustHoldTheRequiredPart) {
    const struct {
        const wchar_t* words;
        const wchar_t* typed;
        const wchar_t* keyword;  // null: none
    } cases[] = {
        {L"Corner Middle", L"c", L"Corner"},
        {L"Corner Middle", L"CORN", L"Corner"},
        {L"Corner Middle", L"cornerx", nullptr},
        {L"Corner Middle", L"cx", nullptr},
        {L"eXit", L"x", L"eXit"},
        {L"eXit", L"e", nullptr},
        {L"eXit", L"ex", L"eXit"},
        {L"LType LTScale", L"lt", L"LType"},
        {L"LType LTScale", L"lts", L"LTScale"},
        {L"LType", L"l", nullptr},
        {L"LTYPE,LT", L"lt", L"LTYPE"},
        {L"LTYPE,LT", L"ltyp", L"LTYPE"},
        {L"LTYPE,LT", L"l", nullptr},
        {L"YES", L"y", nullptr},
        {L"none", L"no", nullptr},
        {L"none", L"NONE", L"none"},
        {L"2P", L"2p", L"2P"},
        {L"Mitte Ende _Middle End", L"m", L"Middle"},
        {L"Mitte Ende _Middle End", L"ende", L"End"},
        {L"Mitte Ende _Middle End", L"_mid", L"Middle"},
        {L"Mitte Ende _Middle End", L"mid", nullptr},
        {L"", L"a", nullptr},
        {L"A", L"", nullptr},
    };
    for (const auto& [words, typed, keyword] : cases) {
        const auto found = Keywords(words).find(typed);
        EXPECT_EQ(found.has_value(), keyword != nullptr);
        EXPECT_EQ(found.value_or(L""), keyword == nullptr ? L"" : keyword);
    }
}

TEST(TypedPoint, FormsAndWhatIsNone) {
    TypedContext context;
    context.last = {10, 20, 30};
    context.elevation = 7;
    context.toUser = AcGeMatrix3d::translation({-100, 0, 0});
    const struct {
        const wchar_t* text;
        double x, y, z;
    } cases[] = {
        {L"1,2", 1, 2, 7},      {L"1,2,3", 1, 2, 3},     {L"-1.5,1/2", -1.5, 0.5, 7},
        {L"@5,-1", 15, 19, 30}, {L"@1,1,1", 11, 21, 31}, {L"@", 10, 20, 30},
        {L"8<90", 0, 8, 7},     {L"@8<180", 2, 20, 30},  {L"2<0,5", 2, 0, 5},
        {L"2<0<90", 0, 0, 2},   {L"*101,2", 1, 2, 0},    {L"@*1,0", 11, 20, 30},
        {L"#3,4", 3, 4, 7},     {L" 1 , 2 ", 1, 2, 7},
    };
    for (const auto& [text, x, y, z] : cases) {
        const auto point = parseTypedPoint(text, context);
        ASSERT_TRUE(point.has_value());
        EXPECT_NEAR(point->x, x, 1e-12);
        EXPECT_NEAR(point->y, y, 1e-12);
        EXPECT_NEAR(point->z, z, 1e-12);
    }
    for (const wchar_t* text : {L"", L"5", L"1,", L",1", L"1,2,3,4", L"a,b", L"8<", L"<45",
                                L"1<2<3<4", L"2<0,", L"@5", L"1,2x"}) {
        EXPECT_FALSE(parseTypedPoint(text, context).has_value());
    }
}

}  // namespace
}  // namespace sg

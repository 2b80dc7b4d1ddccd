#include "host/editor/commands/linetype_file.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

TEST(LinetypeFileTest, WhatALineIs) {
    const struct {
        const wchar_t* content;
        std::vector<double> dashes;  // empty: none is read
        size_t problems;
    } cases[] = {
        {L"*A,dash\nA,.5,-.25", {0.5, -0.25}, 0},
        {L";;; comment\n*A,dash ; more\n a, 1 , -2,0 ; end\n", {1, -2, 0}, 0},
        {L"*A\r\nA,1,-1\r\n", {1, -1}, 0},
        {L"*A,gap first\nA,-1,1", {}, 1},
        {L"*A,one\nA,1", {}, 1},
        {L"*A,words\nA,1,x", {}, 1},
        {L"*A,shape\nA,1,-1,[TRACK1,ltypeshp.shx,S=.25],-1", {}, 1},
        {L"*A,nothing behind it", {}, 0},
        {L"A,1,-1", {}, 0},
        {L"*A,too many\nA,1,-1,1,-1,1,-1,1,-1,1,-1,1,-1,1", {}, 1},
        {L"", {}, 0},
    };
    for (const auto& c : cases) {
        std::vector<std::wstring> problems;
        const auto read = parseLinetypes(c.content, problems);
        EXPECT_EQ(problems.size(), c.problems) << testing::PrintToString(c.content);
        ASSERT_EQ(read.size(), c.dashes.empty() ? 0u : 1u) << testing::PrintToString(c.content);
        if (!read.empty()) {
            EXPECT_EQ(read[0].dashes, c.dashes);
        }
    }
}

TEST(LinetypeFileTest, TheStandardOnesAreWhole) {
    std::vector<std::wstring> problems;
    const auto all = parseLinetypes(standardLinetypes(), problems);
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(all.size(), 24u);
}

}  // namespace
}  // namespace sg

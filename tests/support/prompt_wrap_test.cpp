#include "support/prompt_wrap.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

TEST(PromptWrapTest, LinesBreakAtBlanks) {
    const auto x = [](size_t count) { return std::wstring(count, L'x'); };
    const struct {
        std::wstring prompt, wrapped;
        int lines;
    } cases[] = {
        {L"", L"", 0},
        {L"   ", L"", 0},
        {L"one   two ", L"one two ", 1},
        // The blank behind a word counts, but not against the last one of a line.
        {x(37) + L" " + x(37), x(37) + L" " + x(37) + L" ", 1},
        {x(37) + L" " + x(38), x(37) + L" \n" + x(38) + L" ", 2},
        {x(75), x(75) + L" ", 1},
        {x(80), L"\n" + x(80) + L" ", 1},
        {L"a " + x(80) + L" b", L"a \n" + x(80) + L" \nb ", 3},
        // A word with a line feed starts anew, and counts with what stands before it.
        {x(70) + L" a\nb " + x(70), x(70) + L" a\nb " + x(70) + L" ", 2},
        {x(70) + L" a\nb " + x(72), x(70) + L" a\nb \n" + x(72) + L" ", 3},
        {L"a\n\nb", L"a\n\nb ", 2},
        {std::wstring(37, L'\U0001F600') + L" b", std::wstring(37, L'\U0001F600') + L" \nb ", 2},
    };
    for (const auto& each : cases) {
        std::wstring text = each.prompt;
        EXPECT_EQ(WrapPrompt(text), each.lines);
        EXPECT_EQ(text, each.wrapped);
    }
}

}  // namespace
}  // namespace sg

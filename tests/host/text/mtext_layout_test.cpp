#include "host/text/mtext_layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "host/text/line.h"
#include "host/text/mtext_parser.h"

namespace sg::text {
namespace {

LayoutOptions options(double height = 1, double width = 0) {
    LayoutOptions made;
    made.style.height = height;
    made.width = width;
    return made;
}

double advance(std::wstring_view text, double height = 1) {
    AcGiTextStyle style;
    style.height = height;
    return measureLine(text, style).advance;
}

// The characters of the runs, line for line.
std::wstring shown(const TextLayout& layout) {
    std::wstring text;
    for (size_t i = 0; i < layout.lines.size(); ++i) {
        if (i > 0) text += L'|';
        for (const TextRun& run : layout.lines[i].runs)
            text += run.text;
    }
    return text;
}

const TextRun& runOf(const TextLayout& layout, std::wstring_view text) {
    for (const TextLine& line : layout.lines) {
        for (const TextRun& run : line.runs) {
            if (run.text == text) return run;
        }
    }
    ADD_FAILURE() << "no such run";
    return layout.lines.front().runs.front();
}

TEST(MTextLayoutTest, PlainTextLosesTheCodes) {
    struct Case {
        const wchar_t* contents;
        const wchar_t* plain;
    };
    const Case cases[] = {
        {L"", L""},
        {L"two words", L"two words"},
        {L"one\\Ptwo", L"one\ntwo"},
        {L"{\\fArial|b1|i0;bold} text", L"bold text"},
        {L"{\\H2.5;high}{\\H2x;twice}", L"hightwice"},
        {L"\\W0.5;\\Q15;\\T2;\\A1;\\C3;\\c255;looks", L"looks"},
        {L"\\Lunder\\l \\Oover\\o \\Kthrough\\k", L"under over through"},
        {L"\\S1/2; \\Sa#b; \\Sx^y;", L"1/2 a#b x^y"},
        {L"\\pi2,l1,qc;centred", L"centred"},
        {L"a\\~b\\\\c\\{d\\}",
         L"a\xA0"
         L"b\\c{d}"},
        {L"\\U+00B0", L"\xB0"},
        {L"5%%d %%c3 %%p1",
         L"5\xB0 \x2205"
         L"3 \xB1"
         L"1"},
        {L"a\tb^Ic", L"a\tb\tc"},
        {L"{open", L"open"},
        {L"closed}", L"closed"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(plainText(each.contents), each.plain)
            << std::string(plainText(each.contents).begin(), plainText(each.contents).end());
}

TEST(MTextLayoutTest, EachFormatShowsInItsRun) {
    const TextLayout layout =
        layOut(L"{\\H3;h}{\\H2x;t}{\\W0.5;w}{\\Q10;q}{\\C1;c}{\\fArial|b1|i1;f}{\\Lu\\l}{\\T2;ab}n",
               options(2));
    EXPECT_DOUBLE_EQ(runOf(layout, L"h").style.height, 3);
    EXPECT_DOUBLE_EQ(runOf(layout, L"t").style.height, 4);
    EXPECT_DOUBLE_EQ(runOf(layout, L"w").style.widthFactor, 0.5);
    EXPECT_NEAR(runOf(layout, L"q").style.oblique, 10 * 3.14159265358979 / 180, 1e-9);
    ASSERT_TRUE(runOf(layout, L"c").color.has_value());
    EXPECT_EQ(runOf(layout, L"c").color->colorIndex(), 1);
    EXPECT_EQ(runOf(layout, L"f").style.typeface, L"Arial");
    EXPECT_TRUE(runOf(layout, L"f").style.bold);
    EXPECT_TRUE(runOf(layout, L"f").style.italic);
    EXPECT_NEAR(runOf(layout, L"ab").width, 2 * advance(L"ab", 2), 1e-9);
    const TextRun& plain = runOf(layout, L"n");
    EXPECT_DOUBLE_EQ(plain.style.height, 2);
    EXPECT_FALSE(plain.color.has_value());
    ASSERT_EQ(layout.lines.size(), 1u);
    EXPECT_DOUBLE_EQ(layout.lines[0].height, 4);
    // The rule runs under its own run.
    ASSERT_EQ(layout.lines[0].rules.size(), 1u);
    const TextRule& rule = layout.lines[0].rules[0];
    EXPECT_DOUBLE_EQ(rule.x1, runOf(layout, L"u").x);
    EXPECT_DOUBLE_EQ(rule.x2, rule.x1 + runOf(layout, L"u").width);
    EXPECT_LT(rule.y1, 0);
}

TEST(MTextLayoutTest, StacksStandOverOrBesideEachOther) {
    const TextLayout over = layOut(L"\\A1;\\S1/2;", options());
    EXPECT_GT(runOf(over, L"1").y, runOf(over, L"2").y);
    EXPECT_EQ(over.lines[0].rules.size(), 1u);
    const TextLayout without = layOut(L"\\S1^2;", options());
    EXPECT_TRUE(without.lines[0].rules.empty());
    const TextLayout beside = layOut(L"\\S1#2;", options());
    EXPECT_LT(runOf(beside, L"1").x, runOf(beside, L"2").x);
    EXPECT_EQ(beside.lines[0].rules.size(), 1u);
}

TEST(MTextLayoutTest, ParagraphsAreIndentedAndAligned) {
    const TextLayout layout =
        layOut(L"\\pi1,l2,qr;first\\Psecond\\P\\pi0,l0,qc;third", options(1, 20));
    ASSERT_EQ(layout.lines.size(), 3u);
    EXPECT_DOUBLE_EQ(layout.lines[0].indent, 3);
    EXPECT_EQ(layout.lines[0].alignment, LineAlignment::right);
    EXPECT_EQ(layout.lines[1].alignment, LineAlignment::right);
    EXPECT_DOUBLE_EQ(layout.lines[2].indent, 0);
    EXPECT_EQ(layout.lines[2].alignment, LineAlignment::center);
}

TEST(MTextLayoutTest, TabsGoToTheirStops) {
    const TextLayout usual = layOut(L"a\tb\tc", options(2));
    EXPECT_DOUBLE_EQ(runOf(usual, L"b").x, 8);  // every four heights
    EXPECT_DOUBLE_EQ(runOf(usual, L"c").x, 16);
    const TextLayout set = layOut(L"\\pt5,11;a\tb\tc", options(2));
    EXPECT_DOUBLE_EQ(runOf(set, L"b").x, 10);  // in heights too
    EXPECT_DOUBLE_EQ(runOf(set, L"c").x, 22);
}

TEST(MTextLayoutTest, LinesStandApartAsAsked) {
    const TextLayout usual = layOut(L"a\\Pb\\Pc", options(3));
    ASSERT_EQ(usual.lines.size(), 3u);
    EXPECT_DOUBLE_EQ(usual.height, 3 + 2 * 5);  // a line's height and two steps of 5/3 of it
    LayoutOptions wide = options(3);
    wide.lineSpacing = 2;
    EXPECT_DOUBLE_EQ(layOut(L"a\\Pb\\Pc", wide).height, 3 + 2 * 10);
    // A higher line pushes the next ones down, unless they are to stay where they are.
    const TextLayout pushed = layOut(L"a\\P{\\H6;b}\\Pc", options(3));
    EXPECT_DOUBLE_EQ(pushed.lines[1].baseline - pushed.lines[0].baseline, 10);
    wide.lineSpacing = 1;
    wide.exactSpacing = true;
    const TextLayout exact = layOut(L"a\\P{\\H6;b}\\Pc", wide);
    EXPECT_DOUBLE_EQ(exact.lines[1].baseline - exact.lines[0].baseline, 5);
    EXPECT_TRUE(layOut(L"", options()).lines.empty());
    EXPECT_DOUBLE_EQ(layOut(L"a\\P\\Pb", options(3)).height, 3 + 2 * 5);
}

std::wstring randomContents(std::mt19937& engine) {
    static const wchar_t* const kParts[] = {
        L"a",   L"word",          L"longer",        L" ",       L"  ",
        L"\\P", L"{\\H1.5x;big}", L"{\\W0.7;thin}", L"\\S1/2;", L"\\Lline\\l",
        L"\t",  L"{\\C2;red}",    L"%%d",           L"\\~",     L"{",
        L"}",   L"\\pi1;",        L"{\\fTxt;s}",
    };
    std::uniform_int_distribution<size_t> part(0, std::size(kParts) - 1);
    std::uniform_int_distribution<int> count(1, 30);
    std::wstring contents;
    for (int i = count(engine); i > 0; --i)
        contents += kParts[part(engine)];
    return contents;
}

// A line goes beyond the width only where a single word does.
TEST(MTextLayoutTest, WrappedLinesKeepTheWidth) {
    std::mt19937 engine(11);
    std::uniform_real_distribution<double> any(3, 30);
    for (int round = 0; round < 2000; ++round) {
        const std::wstring contents = randomContents(engine);
        const double width = any(engine);
        SCOPED_TRACE(std::string(contents.begin(), contents.end()));
        const TextLayout layout = layOut(contents, options(1, width));
        for (const TextLine& line : layout.lines) {
            const bool isWide = line.indent + line.width > width * (1 + 1e-9);
            if (!isWide) continue;
            // Nothing but blanks, tabs and rules in front of its only word.
            size_t words = 0;
            bool inWord = false;
            for (const TextRun& run : line.runs) {
                const bool blank = run.text == L" ";
                if (!blank && !inWord) ++words;
                inWord = !blank;
            }
            EXPECT_LE(words, 1u);
        }
    }
}

// Wrapping loses and reorders nothing, and lines follow each other from the top down.
TEST(MTextLayoutTest, WrappingKeepsTheText) {
    std::mt19937 engine(12);
    std::uniform_real_distribution<double> any(2, 20);
    for (int round = 0; round < 2000; ++round) {
        const std::wstring contents = randomContents(engine);
        SCOPED_TRACE(std::string(contents.begin(), contents.end()));
        const TextLayout whole = layOut(contents, options());
        const TextLayout wrapped = layOut(contents, options(1, any(engine)));
        EXPECT_GE(wrapped.lines.size(), whole.lines.size());
        std::wstring a = shown(whole);
        std::wstring b = shown(wrapped);
        for (std::wstring* const text : {&a, &b})
            std::erase_if(*text, [](wchar_t c) { return c == L'|' || c == L' '; });
        EXPECT_EQ(a, b);
        double last = 0;
        double widest = 0;
        for (const TextLine& line : wrapped.lines) {
            EXPECT_GT(line.baseline, last);
            last = line.baseline;
            widest = std::max(widest, line.indent + line.width);
            double x = -1e9;
            for (const TextRun& run : line.runs) {
                EXPECT_GE(run.width, 0);
                x = std::max(x, run.x + run.width);
            }
            EXPECT_LE(line.width, std::max(x, 0.0) + 1e-9);
        }
        EXPECT_DOUBLE_EQ(wrapped.height, last);
        EXPECT_DOUBLE_EQ(wrapped.width, widest);
    }
}

}  // namespace
}  // namespace sg::text

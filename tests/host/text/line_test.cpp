#include "host/text/line.h"

#include <gtest/gtest.h>

#include <string>

#include "host/text/stroke_font.h"

namespace sg::text {
namespace {

TEST(LineTextTest, CodesBecomeCharactersAndLines) {
    struct Case {
        const wchar_t* text;
        const wchar_t* plain;
        const char* decorations;  // kind, first, end
    };
    const Case cases[] = {
        {L"plain", L"plain", ""},
        {L"45%%d %%p1 %%C3",
         L"45\xB0 \xB1"
         L"1 \x2205"
         L"3",
         ""},
        {L"100%%%", L"100%", ""},
        {L"%%065%%0", L"A%%0", ""},
        {L"a%%ub%%uc", L"abc", "0 1 2;"},
        {L"%%oab", L"ab", "1 0 2;"},
        {L"%%k%%k", L"", ""},
        {L"%%ua%%ob%%uc", L"abc", "0 0 2;1 1 3;"},
        {L"\\U+00e4\\U+20", L"\xE4\\U+20", ""},
        {L"%", L"%", ""},
        {L"%%", L"%%", ""},
        {L"%%x", L"%%x", ""},
    };
    for (const Case& each : cases) {
        const PlainLine line = decodeLine(each.text);
        EXPECT_EQ(line.text, each.plain);
        std::string decorations;
        for (const Decoration& decoration : line.decorations) {
            decorations += std::to_string(static_cast<int>(decoration.kind)) + " " +
                           std::to_string(decoration.first) + " " + std::to_string(decoration.end) +
                           ";";
        }
        EXPECT_EQ(decorations, each.decorations);
    }
}

// Boxes follow the style: higher, wider, the other way round.
TEST(LineTextTest, MeasuresFollowTheStyle) {
    AcGiTextStyle style;
    const LineBox box = measureLine(L"Hxg", style);
    ASSERT_FALSE(box.isEmpty());
    EXPECT_NEAR(box.top, 1, 0.02);  // capitals are 1 high
    EXPECT_LT(box.bottom, -0.1);    // and g sinks
    EXPECT_GT(box.left, -0.01);
    EXPECT_LE(box.right, box.advance);

    style.height = 3;
    const LineBox high = measureLine(L"Hxg", style);
    EXPECT_NEAR(high.top, 3 * box.top, 1e-9);
    EXPECT_NEAR(high.advance, 3 * box.advance, 1e-9);
    style.widthFactor = 0.5;
    EXPECT_NEAR(measureLine(L"Hxg", style).advance, 1.5 * box.advance, 1e-9);
    EXPECT_NEAR(measureLine(L"Hxg", style).top, 3 * box.top, 1e-9);
    style.oblique = 0.5;
    const double upright = measureLine(L"H", AcGiTextStyle()).right;
    EXPECT_GT(measureLine(L"H", style).right, upright);

    EXPECT_TRUE(measureLine(L"", style).isEmpty());
    EXPECT_TRUE(measureLine(L"  ", style).isEmpty());
    EXPECT_GT(measureLine(L"  ", style).advance, 0);
}

// A line is as long as its parts.
TEST(LineTextTest, AdvancesAddUp) {
    const AcGiTextStyle style;
    const std::wstring text = L"Several w\xF6rds, 12 \xD8";
    double sum = 0;
    for (const wchar_t c : text)
        sum += measureLine(std::wstring(1, c), style).advance;
    EXPECT_NEAR(measureLine(text, style).advance, sum, 1e-9);
}

TEST(StrokeFontTest, CoversLatin1) {
    const StrokeGlyph& unknown = strokeGlyph(0x4E00);
    EXPECT_EQ(&unknown, &strokeGlyph(L'?'));
    for (wchar_t c = 0x21; c < 0x100; ++c) {
        if ((c >= 0x7F && c <= 0xA0) || c == 0xAD) continue;
        const StrokeGlyph& glyph = strokeGlyph(c);
        EXPECT_GT(glyph.advance, 0) << std::hex << static_cast<int>(c);
        EXPECT_FALSE(glyph.strokes.empty()) << std::hex << static_cast<int>(c);
        EXPECT_EQ(&glyph == &unknown, c == L'?') << std::hex << static_cast<int>(c);
        for (const auto& stroke : glyph.strokes) {
            for (const AcGePoint2d& point : stroke) {
                EXPECT_GT(point.y, -0.6);
                EXPECT_LT(point.y, 1.7);
            }
        }
    }
    EXPECT_TRUE(strokeGlyph(L' ').strokes.empty());
    EXPECT_GT(strokeGlyph(L' ').advance, 0);
}

}  // namespace
}  // namespace sg::text

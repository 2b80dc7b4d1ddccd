#include "standards/layer_rules.h"

#include <gtest/gtest.h>

#include <set>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

TEST(LayerRules, NamesRefuseEachOfTheCharacters) {
    for (const wchar_t c : std::wstring(L"<>/\\'\":;?*|,="))
        EXPECT_TRUE(hasInvalidLayerCharacter(std::wstring(L"A") + c + L"B")) << char(c);
    EXPECT_FALSE(hasInvalidLayerCharacter(L"A-B_c (1) #$%&+ Ä"));
}

TEST(LayerRules, ColorsAreClamped) {
    const struct {
        const wchar_t* text;
        int color;
    } cases[] = {{L"", 1},
                 {L"red", 1},
                 {L"0", 1},
                 {L"-5", 1},
                 {L"1", 1},
                 {L"7", 7},
                 {L"255", 255},
                 {L"256", 255},
                 {L"300", 255},
                 {L"12x", 12},
                 {L"99999999999999999999", 255},
                 {L" 9", 9}};
    for (const auto& one : cases)
        EXPECT_EQ(colorIndexOf(one.text), one.color) << toUtf8(one.text);
}

TEST(LayerRules, LineweightsGoBothWays) {
    const struct {
        const wchar_t* shown;
        const wchar_t* stored;
    } cases[] = {{L"0.25 mm", L"25"}, {L"0.00 mm", L"0"},   {L"0.05 mm", L"5"},
                 {L"0.53 mm", L"53"}, {L"1.06 mm", L"106"}, {L"2.11 mm", L"211"}};
    for (const auto& one : cases) {
        EXPECT_EQ(storedLineweight(one.shown), one.stored);
        EXPECT_EQ(shownLineweight(std::wstring(one.stored)), one.shown);
    }
    for (const wchar_t* const none : {L"Default", L"", L"  "})
        EXPECT_EQ(storedLineweight(none), std::nullopt);
    EXPECT_EQ(shownLineweight(std::nullopt), L"Default");
    EXPECT_EQ(storedLineweight(L"0.259"), L"25") << "cut, not rounded";
    EXPECT_EQ(storedLineweight(L"thick"), L"0");
}

TEST(LayerRules, AFreeNameIsFoundWhateverIsTaken) {
    std::set<std::wstring> taken = {L"NEW LAYER", L"NEW LAYER (2)"};
    const auto isTaken = [&](const std::wstring& name) {
        return taken.count(upperCased(name)) > 0;
    };
    EXPECT_EQ(freeName(L"Other", isTaken), L"Other");
    EXPECT_EQ(freeName(L"New Layer", isTaken), L"New Layer (1)");
    taken.insert(L"NEW LAYER (1)");
    EXPECT_EQ(freeName(L"New Layer", isTaken), L"New Layer (3)");
}

TEST(LayerRules, AnglesUseTheTruncatedPi) {
    EXPECT_DOUBLE_EQ(storedAngle(45), 0.7853981625);
    EXPECT_EQ(fixedNumber(shownAngle(0.7853981625), 2), L"45.00");
    EXPECT_EQ(storedAngle(0), 0);
}

TEST(LayerRules, TextsInStatementsAreQuoted) {
    EXPECT_EQ(sqlText(L""), L"''");
    EXPECT_EQ(sqlText(L"O'Brien''s"), L"'O''Brien''''s'");
    EXPECT_EQ(sqlNumber(L"  "), L"NULL");
    EXPECT_EQ(sqlNumber(L" 1.50 "), L"1.50");
}

}  // namespace
}  // namespace sg

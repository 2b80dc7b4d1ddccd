#include <gtest/gtest.h>

#include <numbers>

#include "base/encoding.h"
#include "host/lisp/text/units.h"

namespace sg {
namespace {

constexpr double kPi = std::numbers::pi;

TEST(ParseDistance, EveryFormInEveryMode) {
    const struct {
        const wchar_t* text;
        double value;
    } rows[] = {
        {L"17.5", 17.5},
        {L" 17.5 ", 17.5},
        {L"+17.5", 17.5},
        {L"-17.5", -17.5},
        {L"1.75E+01", 17.5},
        {L"1.75e1", 17.5},
        {L".5", 0.5},
        {L"5.", 5},
        {L"0", 0},
        {L"1/2", 0.5},
        {L"-1/2", -0.5},
        {L"17 1/2", 17.5},
        {L"17-1/2", 17.5},
        {L"17  1/2\"", 17.5},
        {L"6\"", 6},
        {L"3'", 36},
        {L"1.5'", 18},
        {L"1-1/2'", 18},
        {L"5'6", 66},
        {L"5'6\"", 66},
        {L"5'-6\"", 66},
        {L"5' 6\"", 66},
        {L"1'-5.50\"", 17.5},
        {L"1'-5 1/2\"", 17.5},
        {L"1'5-1/2\"", 17.5},
        {L"1'-5-1/2\"", 17.5},
        {L"1'-1/2\"", 12.5},
        {L"1'1/2", 12.5},
        {L"-1'-5 1/2\"", -17.5},
        {L"0'-0 3/4\"", 0.75},
        {L"1'15\"", 27},
    };
    for (const auto& row : rows) {
        for (int mode = 1; mode <= 5; ++mode) {
            EXPECT_EQ(parseDistance(row.text, mode), row.value) << toUtf8(row.text);
        }
    }
}

TEST(ParseDistance, WhatIsNoDistance) {
    for (const wchar_t* text :
         {L"",      L" ",    L"-",     L"+-5",  L"--5", L".",     L"abc",   L"5x",
          L"5 6",   L"5-6",  L"1e",    L"1/0",  L"1/",  L"/2",    L"1.5/2", L"1.5 1/2",
          L"1/2/3", L"1'-",  L"1'--5", L"1'2'", L"1''", L"6\"1'", L"6\"\"", L"'",
          L"\"",    L"1'+5", L"1e999", L"1,5",  L"nan", L"inf"}) {
        EXPECT_EQ(parseDistance(text, 4), std::nullopt) << toUtf8(text);
    }
    EXPECT_EQ(parseDistance(L"1", 0), std::nullopt);
    EXPECT_EQ(parseDistance(L"1", 6), std::nullopt);
}

TEST(ParseDistance, ReadsWhatIsWritten) {
    for (int unitmode : {0, 1}) {
        for (int dimzin = 0; dimzin < 16; ++dimzin) {
            for (int mode = 1; mode <= 5; ++mode) {
                for (double value : {0.0, 0.5, 6.0, 11.75, 12.0, 12.5, 17.25, 1200.0, -17.5}) {
                    UnitSettings settings;
                    settings.dimzin = dimzin;
                    settings.unitmode = unitmode;
                    const std::wstring text = formatDistance(value, mode, 6, settings);
                    EXPECT_EQ(parseDistance(text, mode), value) << toUtf8(text);
                }
            }
        }
    }
}

struct AngleRow {
    const wchar_t* text;
    int mode;
    double radians;
};

TEST(ParseAngle, Forms) {
    const AngleRow rows[] = {
        {L"45", 0, kPi / 4},
        {L"45.0000", 0, 0.785398163397448},
        {L"45.0000", 3, 1.0177028497429},  // 45 radians are seven turns and this
        {L"-45", 0, 7 * kPi / 4},
        {L"405", 0, kPi / 4},
        {L"360", 0, 0},
        {L"50", 2, kPi / 4},
        {L"50g", 0, kPi / 4},
        {L"50G", 3, kPi / 4},
        {L"0.5r", 0, 0.5},
        {L"0.5", 3, 0.5},
        {L"45d", 2, kPi / 4},
        {L"45d30'", 1, 45.5 * kPi / 180},
        {L"45d30", 1, 45.5 * kPi / 180},
        {L"45d30'45\"", 1, 45.5125 * kPi / 180},
        {L"45D30'45", 1, 45.5125 * kPi / 180},
        {L"45d 30' 45\"", 1, 45.5125 * kPi / 180},
        {L"45d36\"", 1, 45.01 * kPi / 180},
        {L"-0d30'", 1, 359.5 * kPi / 180},
        {L"N 45d0'0\" E", 4, kPi / 4},
        {L"N45dE", 4, kPi / 4},
        {L"n 45 e", 4, kPi / 4},
        {L"N10dW", 4, 100 * kPi / 180},
        {L"S70dW", 0, 200 * kPi / 180},
        {L"S10d30'E", 4, 280.5 * kPi / 180},
        {L"E", 4, 0},
        {L"N", 4, kPi / 2},
        {L"w", 4, kPi},
        {L" S ", 4, 3 * kPi / 2},
        {L"N90E", 4, 0},
    };
    for (const AngleRow& row : rows) {
        const auto angle = parseAngle(row.text, row.mode);
        ASSERT_TRUE(angle) << toUtf8(row.text);
        EXPECT_NEAR(*angle, row.radians, 1e-12) << toUtf8(row.text);
    }
}

TEST(ParseAngle, WhatIsNoAngle) {
    for (const wchar_t* text :
         {L"",           L"-",           L"abc",   L"45x",   L"45 5", L"30'",  L"45d30'15'",
          L"45d15\"30'", L"45d30'15\"1", L"d",     L"N45",   L"N91E", L"45E",  L"NE",
          L"N45E5",      L"E45",         L"-N45E", L"N-45E", L"nan",  L"1e999"}) {
        EXPECT_EQ(parseAngle(text, 1), std::nullopt) << toUtf8(text);
    }
    EXPECT_EQ(parseAngle(L"1", -1), std::nullopt);
    EXPECT_EQ(parseAngle(L"1", 5), std::nullopt);
}

TEST(ParseAngle, UndoesFormattingWithTheSameSettings) {
    for (double base : {0.0, kPi / 2, 1.0}) {
        for (int direction : {0, 1}) {
            for (int mode = 0; mode <= 4; ++mode) {
                for (int i = 0; i < 24; ++i) {
                    UnitSettings settings;
                    settings.angbase = base;
                    settings.angdir = direction;
                    const double angle = i * kPi / 12 + 0.01;
                    const std::wstring text = formatAngle(angle, mode, 10, settings);
                    const auto read = parseAngle(text, mode, settings);
                    ASSERT_TRUE(read) << toUtf8(text);
                    EXPECT_NEAR(*read, angle, 1e-9) << toUtf8(text);
                }
            }
        }
    }
}

}  // namespace
}  // namespace sg

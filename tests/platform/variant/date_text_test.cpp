#include "platform/variant/date_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace sg {
namespace {

struct Case {
    double date;
    const wchar_t* text;
};

TEST(FormatDate, AmericanText) {
    const Case cases[] = {
        {42766.604166666664, L"1/31/2017 2:30:00 PM"},
        {42766.0, L"1/31/2017"},
        {42766.5, L"1/31/2017 12:00:00 PM"},
        {42766.0 + 59.0 / 86400, L"1/31/2017 12:00:59 AM"},
        {42794.0, L"2/28/2017"},
        {42795.0, L"3/1/2017"},
        {42429.0, L"2/29/2016"},
        {36585.0, L"2/29/2000"},
        {61.0, L"3/1/1900"},
        {60.0, L"2/28/1900"},
        {2.0, L"1/1/1900"},
        {1.0, L"12/31/1899"},
        // Day 0 is left out, midnight is not.
        {0.0, L"12:00:00 AM"},
        {0.25, L"6:00:00 AM"},
        {-0.25, L"6:00:00 AM"},
        // Below 0 the days count backwards and the time of day forwards.
        {-1.0, L"12/29/1899"},
        {-1.25, L"12/29/1899 6:00:00 AM"},
        {-1.75, L"12/29/1899 6:00:00 PM"},
        {-657434.0, L"1/1/0100"},
        {-657434.75, L"1/1/0100 6:00:00 PM"},
        {2958465.0, L"12/31/9999"},
        {2958465.75, L"12/31/9999 6:00:00 PM"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(formatDate(c.date, L"en-US"), c.text) << c.date;
    }
}

TEST(FormatDate, RoundsToTheNearestSecond) {
    const double second = 1.0 / 86400;
    EXPECT_EQ(formatDate(42766.5 + 0.4 * second, L"en-US"), L"1/31/2017 12:00:00 PM");
    EXPECT_EQ(formatDate(42766.5 + 0.6 * second, L"en-US"), L"1/31/2017 12:00:01 PM");
    EXPECT_EQ(formatDate(42766.0 + 1e-9, L"en-US"), L"1/31/2017");
    EXPECT_EQ(formatDate(42767.0 - 0.4 * second, L"en-US"), L"2/1/2017");
    EXPECT_EQ(formatDate(1.0 - 0.4 * second, L"en-US"), L"12/31/1899");
    EXPECT_EQ(formatDate(-1.0 - (1.0 - 0.4 * second), L"en-US"), L"12:00:00 AM");
}

TEST(FormatDate, OutsideTheCalendarIsRefused) {
    for (const double date :
         {-657435.0, 2958466.0, 2958465.999999, 1e300, -1e300,
          std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(formatDate(date, L"en-US"), std::nullopt) << date;
    }
}

TEST(FormatDate, EveryLocaleHasItsOrderAndMarks) {
    const struct {
        const wchar_t* locale;
        const wchar_t* text;
    } cases[] = {
        {L"en-US", L"2/3/2017 9:05:07 AM"},
        {L"en-GB", L"03/02/2017 09:05:07"},
        {L"en-CA", L"2017-02-03 9:05:07 AM"},
        {L"en-AU", L"3/02/2017 9:05:07 AM"},
        {L"de-DE", L"03.02.2017 09:05:07"},
        {L"fr-CA", L"2017-02-03 09:05:07"},
        {L"es-ES", L"03/02/2017 9:05:07"},
        {L"es-MX", L"03/02/2017 09:05:07 a. m."},
        {L"nl-NL", L"3-2-2017 09:05:07"},
        {L"fi-FI", L"3.2.2017 9.05.07"},
        {L"hu-HU", L"2017. 02. 03. 9:05:07"},
        {L"el-GR", L"3/2/2017 9:05:07 \u03C0\u03BC"},
        {L"zh-TW", L"2017/2/3 \u4E0A\u5348 09:05:07"},
        {L"ko-KR", L"2017-02-03 \uC624\uC804 9:05:07"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(formatDate(42769.0 + (9 * 3600 + 5 * 60 + 7) / 86400.0, c.locale), c.text);
    }
}

TEST(FormatDate, LocaleNames) {
    const std::wstring german = L"31.01.2017";
    for (const wchar_t* name :
         {L"de-DE", L"de_DE.UTF-8", L"de_DE@euro", L"DE-de", L"de", L"de.utf8", L"de-LU"}) {
        EXPECT_EQ(formatDate(42766.0, name), german) << name;
    }
    for (const wchar_t* name : {L"", L"C", L"POSIX", L"xx-YY"}) {
        EXPECT_EQ(formatDate(42766.0, name), L"1/31/2017") << name;
    }
}

TEST(IsKnownLocale, NeedsAnEntryOfItsOwn) {
    for (const wchar_t* name : {L"de-CH", L"de_ch.UTF-8", L"pt", L"ZH-tw"}) {
        EXPECT_TRUE(isKnownLocale(name)) << name;
    }
    for (const wchar_t* name : {L"", L"C", L"de-LU", L"xx", L"-", L"de-", L".UTF-8"}) {
        EXPECT_FALSE(isKnownLocale(name)) << name;
    }
}

}  // namespace
}  // namespace sg

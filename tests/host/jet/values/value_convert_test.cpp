#include "host/jet/values/value_convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "base/encoding.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

Column column(ColumnType type, uint16_t length = 0) {
    Column made;
    made.name = L"Area";
    made.type = type;
    made.length = length;
    return made;
}

Column numeric(uint8_t precision, uint8_t scale) {
    Column made = column(ColumnType::Numeric, 17);
    made.precision = precision;
    made.scale = scale;
    return made;
}

Value text(const wchar_t* content) {
    return std::wstring(content);
}

Decimal decimal(bool negative, uint8_t scale, uint64_t magnitude) {
    return {negative,
            scale,
            {0, 0, static_cast<uint32_t>(magnitude >> 32), static_cast<uint32_t>(magnitude)}};
}

struct Case {
    Value from;
    std::optional<Value> to;  // none: ConversionError
};

void check(const Column& column, const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        const std::string shown = toUtf8(toInvariantText(c.from)) + " from " +
                                  std::to_string(c.from.index()) + " to type " +
                                  std::to_string(static_cast<int>(column.type));
        Value value = c.from;
        try {
            convertTo(column, value);
            ASSERT_TRUE(c.to.has_value()) << shown;
            EXPECT_EQ(value, *c.to) << shown;
        } catch (const Error& error) {
            EXPECT_FALSE(c.to.has_value()) << shown;
            EXPECT_EQ(error.code(), ConversionError) << shown;
            EXPECT_EQ(error.names(), std::vector<std::wstring>{L"Area"});
            EXPECT_EQ(value.index(), c.from.index()) << shown;
        }
    }
}

TEST(JetConvertTest, WholeNumbersRoundToEvenAndAreNeverCut) {
    check(column(ColumnType::Byte), {{int32_t(255), uint8_t(255)},
                                     {int32_t(256), {}},
                                     {int16_t(-1), {}},
                                     {true, {}},
                                     {-0.5, uint8_t(0)},
                                     {-0.51, {}},
                                     {255.5, {}},
                                     {254.5, uint8_t(254)},
                                     {text(L"12.5"), uint8_t(12)}});
    check(column(ColumnType::Integer), {{true, int16_t(-1)},
                                        {false, int16_t(0)},
                                        {0.5, int16_t(0)},
                                        {1.5, int16_t(2)},
                                        {-2.5, int16_t(-2)},
                                        {32767.49, int16_t(32767)},
                                        {32767.5, {}},
                                        {-32768.5, int16_t(-32768)},
                                        {-32769.0, {}},
                                        {Currency{25000}, int16_t(2)},
                                        {Currency{25001}, int16_t(3)},
                                        {Currency{-35000}, int16_t(-4)},
                                        {decimal(true, 2, 150), int16_t(-2)},
                                        {decimal(false, 200, 150), int16_t(0)},
                                        {Date{36584.75}, {}},
                                        {Bytes{1, 2}, {}},
                                        {Guid(), {}}});
    check(column(ColumnType::Long), {{2147483647.0, int32_t(2147483647)},
                                     {2147483648.0, {}},
                                     {-2147483648.0, std::numeric_limits<int32_t>::min()},
                                     {1e300, {}},
                                     {std::nan(""), {}},
                                     {3.5f, int32_t(4)},
                                     {Date{36584.75}, int32_t(36585)},
                                     {int64_t(1) << 40, {}}});
    const int64_t least = std::numeric_limits<int64_t>::min();
    check(column(ColumnType::BigInteger), {{text(L"-9223372036854775808"), least},
                                           {text(L"9223372036854775807"), ~least},
                                           {text(L"9223372036854775808"), {}},
                                           {text(L"-9223372036854775809"), {}},
                                           {-0x1p63, least},
                                           {0x1p63, {}}});
}

TEST(JetConvertTest, TextsAreNumbersInTheInvariantForm) {
    check(column(ColumnType::Double),
          {{text(L" 12.5 "), 12.5},
           {text(L"-.5"), -0.5},
           {text(L"5."), 5.0},
           {text(L"+1e3"), 1000.0},
           {text(L"1.5D-2"), 0.015},
           {text(L"$1,234.50"), 1234.5},
           {text(L"-$ 1,234,567"), -1234567.0},
           {text(L"$-5"), -5.0},
           {text(L"(12)"), -12.0},
           {text(L"12-"), -12.0},
           {text(L"&H10"), 16.0},
           {text(L"&hffffffff"), -1.0},
           {text(L"&O17"), 15.0},
           {text(L"0.1"), 0.1},
           {text(L"123456789012345678901234567890"), 1.2345678901234568e29},
           {text(L"1e-400"), 0.0},
           {text(L"1e400"), {}},
           {text(L"0"), 0.0},
           {text(L"000012"), 12.0},
           {text(L"\u00a07\t"), 7.0},
           {text(L""), {}},
           {text(L"   "), {}},
           {text(L"1,5"), {}},
           {text(L"1234,567"), {}},
           {text(L"1,234,56"), {}},
           {text(L",123"), {}},
           {text(L"1,,234"), {}},
           {text(L"1.2.3"), {}},
           {text(L"--1"), {}},
           {text(L"-1-"), {}},
           {text(L"(-1)"), {}},
           {text(L"()"), {}},
           {text(L"$"), {}},
           {text(L"."), {}},
           {text(L"1e"), {}},
           {text(L"1e+"), {}},
           {text(L"1 2"), {}},
           {text(L"12m"), {}},
           {text(L"nan"), {}},
           {text(L"inf"), {}},
           {text(L"0x10"), {}},
           {text(L"&H"), {}},
           {text(L"&HG"), {}},
           {text(L"&H100000000"), {}},
           {text(L"&O8"), {}},
           {text(L"True"), {}},
           {text(L"1/31/2000"), {}}});
    const std::wstring long0 = L"0." + std::wstring(500, L'0') + L"1";
    const std::wstring longOne = L"1" + std::wstring(400, L'0') + L"e-400";
    check(column(ColumnType::Double), {{long0, 0.0}, {longOne, 1.0}});
}

TEST(JetConvertTest, NumbersWithDecimals) {
    check(column(ColumnType::Currency),
          {{1.00005, Currency{10000}},
           {1.00015, Currency{10002}},
           {0.1f, Currency{1000}},
           {123456.789f, Currency{1234567891}},
           {123456789012.34567, Currency{1234567890123457}},
           {true, Currency{-10000}},
           {text(L"12.34565"), Currency{123456}},
           {text(L"12.34566"), Currency{123457}},
           {text(L"922337203685477.5807"), Currency{std::numeric_limits<int64_t>::max()}},
           {text(L"922337203685477.5808"), {}},
           {text(L"-922337203685477.5808"), Currency{std::numeric_limits<int64_t>::min()}},
           {1e15, {}},
           {decimal(false, 28, 50000), Currency{0}}});
    check(column(ColumnType::Single), {{0.1, 0.1f},
                                       {3.5e38, {}},
                                       {-3.4028235e38, -std::numeric_limits<float>::max()},
                                       {int32_t(16777217), 16777216.0f}});
    check(column(ColumnType::Double),
          {{Currency{1}, 0.0001},
           {decimal(true, 1, 1), -0.1},
           {Decimal{false, 28, {0xffffffff, 0, 0, 0}}, 0xffffffffp96 / 1e28},
           {0.5f, 0.5},
           {Date{-1.25}, -1.25}});
    check(numeric(6, 2), {{text(L"1.005"), decimal(false, 2, 100)},
                          {text(L"1.015"), decimal(false, 2, 102)},
                          {0.1, decimal(false, 2, 10)},
                          {1.005, decimal(false, 2, 100)},
                          {-1e-9, decimal(false, 2, 0)},
                          {9999.994, decimal(false, 2, 999999)},
                          {9999.995, {}},
                          {1e30, {}},
                          {std::nan(""), {}},
                          {decimal(true, 3, 1235), decimal(true, 2, 124)},
                          {decimal(true, 0, 0), decimal(false, 2, 0)},
                          {Decimal{false, 0, {1, 0, 0, 0}}, {}},
                          {int16_t(-3), decimal(true, 2, 300)},
                          {Currency{12345}, decimal(false, 2, 123)}});
    check(numeric(28, 0), {{text(L"9999999999999999999999999999"),
                            Decimal{false, 0, {0, 0x204FCE5E, 0x3E250261, 0x0FFFFFFF}}},
                           {text(L"10000000000000000000000000000"), {}}});
}

TEST(JetConvertTest, TruthDatesAndGuids) {
    check(column(ColumnType::Boolean), {{Value(), false},
                                        {int32_t(7), true},
                                        {0.1, true},
                                        {-0.0, false},
                                        {text(L" yes"), true},
                                        {text(L"TRUE"), true},
                                        {text(L"on"), true},
                                        {text(L"No"), false},
                                        {text(L"false"), false},
                                        {text(L"off"), false},
                                        {text(L"-1"), true},
                                        {text(L"0.0"), false},
                                        {text(L"perhaps"), {}},
                                        {Guid(), {}}});
    check(column(ColumnType::Date), {{36584.5, Date{36584.5}},
                                     {int32_t(-657434), Date{-657434}},
                                     {-657434.75, Date{-657434.75}},
                                     {int32_t(-657435), {}},
                                     {2958465.9, Date{2958465.9}},
                                     {int32_t(2958466), {}},
                                     {Date{1e300}, {}},
                                     {Date{std::nan("")}, {}},
                                     {text(L"2000-02-29"), Date{36585}},
                                     {text(L"36585"), {}},
                                     {Bytes(8, 0), {}}});
    Guid guid;
    for (size_t i = 0; i < guid.bytes.size(); ++i) {
        guid.bytes[i] = static_cast<uint8_t>(0x10 + 9 * i);
    }
    std::wstring shown = toText(guid);
    check(column(ColumnType::Guid, 16), {{shown, guid},
                                         {L" " + shown + L" ", guid},
                                         {shown.substr(1, 36), guid},
                                         {Bytes(guid.bytes.begin(), guid.bytes.end()), guid},
                                         {shown.substr(1), {}},
                                         {shown.substr(0, 20), {}},
                                         {Bytes(15, 0), {}},
                                         {int32_t(0), {}}});
    for (size_t i = 0; i < shown.size(); ++i) {
        std::wstring wrong = shown;
        wrong[i] = L'x';
        check(column(ColumnType::Guid, 16), {{wrong, {}}});
    }
}

TEST(JetConvertTest, TextsAndBytes) {
    check(column(ColumnType::Text, 20), {{Value(), Value()},
                                         {text(L"a  "), text(L"a  ")},
                                         {true, text(L"-1")},
                                         {1.5, text(L"1.5")},
                                         {Bytes{'a', 0, 0x22, 0x4e}, text(L"a\u4e22")},
                                         {Bytes{'a', 0, 'b'}, {}},
                                         {Bytes{0x00, 0xd8}, {}}});
    check(column(ColumnType::Memo), {{Date{1.5}, text(L"12/31/1899 12:00:00 PM")}});
    check(column(ColumnType::Ole),
          {{text(L"a\u4e22"), Bytes{'a', 0, 0x22, 0x4e}}, {int32_t(5), {}}});
    check(column(ColumnType::Binary, 16), {{Bytes{1}, Bytes{1}}, {Guid(), Bytes(16, 0)}});
    Column fixed = column(ColumnType::Text, 8);
    fixed.flags = columns::fixedFlag;
    check(
        fixed,
        {{text(L"ab"), text(L"ab  ")}, {text(L""), text(L"    ")}, {int32_t(1234), text(L"1234")}});
    fixed.type = ColumnType::Binary;
    check(fixed, {{Bytes{1}, Bytes{1, 0, 0, 0, 0, 0, 0, 0}}});
}

TEST(JetConvertTest, WhatIsTooLongIsRefusedWithTheColumnsName) {
    const std::pair<Column, Value> cases[] = {
        {column(ColumnType::Text, 20), text(L"elevenchars")},
        {column(ColumnType::Text, 20), text(L"ninechars\U0001F600")},
        {column(ColumnType::Text, 6), int32_t(1234)},
        {column(ColumnType::Binary, 3), Bytes(4, 0)},
        {column(ColumnType::Binary, 15), Guid()},
    };
    for (const auto& [to, from] : cases) {
        Value value = from;
        try {
            convertTo(to, value);
            ADD_FAILURE();
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), FieldTooSmall);
            EXPECT_EQ(error.names(), std::vector<std::wstring>{L"Area"});
            EXPECT_EQ(value, from);
        }
    }
    Value fits = text(L"8 chars \U0001F600");
    convertTo(column(ColumnType::Text, 20), fits);
}

TEST(JetConvertTest, ValuesAsText) {
    const std::pair<Value, const wchar_t*> cases[] = {
        {Value(), L""},
        {false, L"0"},
        {uint8_t(200), L"200"},
        {std::numeric_limits<int64_t>::min(), L"-9223372036854775808"},
        {Currency{123400}, L"12.34"},
        {Currency{-1200000}, L"-120"},
        {decimal(true, 3, 1500), L"-1.5"},
        {decimal(true, 0, 120), L"-120"},
        {0.1, L"0.1"},
        {-0.0, L"0"},
        {0.1f, L"0.1"},
        {100.0, L"100"},
        {1.0 / 3, L"0.333333333333333"},
        {1.0 / 300, L"3.33333333333333E-03"},
        {0.0001, L"0.0001"},
        {0.00001, L"1E-05"},
        {123456789012345.0, L"123456789012345"},
        {1e15, L"1E+15"},
        {-1.5e-300, L"-1.5E-300"},
        {16777216.0f, L"1.677722E+07"},
        {std::numeric_limits<double>::infinity(), L"1.#INF"},
        {Date{0}, L"12:00:00 AM"},
        {Date{0.5}, L"12:00:00 PM"},
        {Date{36584}, L"2/28/2000"},
        {Date{36584.604166666664}, L"2/28/2000 2:30:00 PM"},
        {Date{36584.9999999}, L"2/29/2000"},
        {Date{-657434}, L"1/1/0100"},
        {Guid(), L"{00000000-0000-0000-0000-000000000000}"},
        {Bytes{'o', 0, 'k', 0}, L"ok"},
    };
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(toInvariantText(value), expected);
    }
}

TEST(JetConvertTest, DatesAreReadInTheirForms) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"2000-01-31", L"2000-01-31 00:00:00"},
        {L" 2000/1/31 5:07 ", L"2000-01-31 05:07:00"},
        {L"2000-01-31T23:59:59", L"2000-01-31 23:59:59"},
        {L"1/31/2000", L"2000-01-31 00:00:00"},
        {L"1-31-2000 12:00 AM", L"2000-01-31 00:00:00"},
        {L"1/31/2000 12:30:15pm", L"2000-01-31 12:30:15"},
        {L"1/31/2000 11 PM", L"2000-01-31 23:00:00"},
        {L"1/31/29", L"2029-01-31 00:00:00"},
        {L"1/31/30", L"1930-01-31 00:00:00"},
        {L"1/2/0100 6:00", L"0100-01-02 06:00:00"},
        {L"12/31/9999 23:59:59", L"9999-12-31 23:59:59"},
        {L"12/29/1899 18:00", L"1899-12-29 18:00:00"},
        {L"14:30", L"1899-12-30 14:30:00"},
        {L"2:30:00.4 PM", L"1899-12-30 14:30:00"},
        {L"2/29/2000", L"2000-02-29 00:00:00"},
        {L"13/1/2000", L"2000-01-13 00:00:00"},
        {L"Jan 31, 2000", L"2000-01-31 00:00:00"},
        {L"31 january 2000 2:30 PM", L"2000-01-31 14:30:00"},
        {L"31-Jan-29", L"2029-01-31 00:00:00"},
        {L"May 1 2000", L"2000-05-01 00:00:00"},
    };
    for (const auto& [given, expected] : cases) {
        Date date;
        EXPECT_TRUE(parseDate(given, date)) << toUtf8(given);
        EXPECT_EQ(toText(date), expected);
        Date again;
        EXPECT_TRUE(parseDate(toInvariantText(date), again));
        EXPECT_EQ(toText(again), expected);
    }
    for (const wchar_t* wrong : {L"",
                                 L" ",
                                 L"2/29/1900",
                                 L"13/13/2000",
                                 L"1/13/2000/1",
                                 L"1/32/2000",
                                 L"0/1/2000",
                                 L"1/31",
                                 L"1/31/99999",
                                 L"1/31/0099",
                                 L"2000-1/31",
                                 L"2000-01-31T",
                                 L"2000-01-31 5",
                                 L"2000-01-3114:30",
                                 L"24:00",
                                 L"1:60",
                                 L"1:30:60",
                                 L"13:00 PM",
                                 L"0:30 AM",
                                 L"1:30:",
                                 L"1:30:15.",
                                 L"5",
                                 L"20000131",
                                 L"1:30 AMx",
                                 L"-5",
                                 L"Janu 31, 2000",
                                 L"Jan 32, 2000",
                                 L"Jan31, 2000",
                                 L"Jan 31",
                                 L"Jan",
                                 L"2000 Jan 31",
                                 L"31.1.2000",
                                 L"2000-01-31 14:30 2"}) {
        Date date{77};
        EXPECT_FALSE(parseDate(wrong, date)) << toUtf8(wrong);
    }
}

TEST(JetConvertTest, EveryDayIsTheReverseOfItsParts) {
    for (double day = -657434; day < 2958466; day += 89) {
        Date date;
        ASSERT_TRUE(dateOfParts(partsOf(Date{day}), date));
        ASSERT_EQ(date.days, day);
    }
}

TEST(JetConvertTest, NumbersAreToldFromWhatIsNone) {
    const std::pair<Value, std::optional<double>> cases[] = {
        {Value(), {}},     {Bytes{1}, {}},         {Guid(), {}},
        {text(L"x"), {}},  {true, -1.0},           {Date{1.5}, 1.5},
        {text(L"7"), 7.0}, {Currency{15000}, 1.5}, {int64_t(1) << 60, 0x1p60}};
    for (const auto& [value, expected] : cases) {
        double number = 0;
        EXPECT_EQ(toDouble(value, number), expected.has_value());
        EXPECT_EQ(number, expected.value_or(0));
    }
}

}  // namespace
}  // namespace sg::jet

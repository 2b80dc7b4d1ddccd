#include "host/jet/value.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/jet/error.h"
#include "host/jet/text_codec.h"
#include "host/jet/value_codec.h"

namespace sg::jet {
namespace {

TEST(JetValueTest, DatesHaveTheirPartsOnBothSidesOfTheFirstDay) {
    const std::pair<double, const wchar_t*> cases[] = {
        {0, L"1899-12-30 00:00:00"},
        {1, L"1899-12-31 00:00:00"},
        {2, L"1900-01-01 00:00:00"},
        {-1.25, L"1899-12-29 06:00:00"},
        {-0.25, L"1899-12-30 06:00:00"},
        {60, L"1900-02-28 00:00:00"},
        {61, L"1900-03-01 00:00:00"},
        {36584.99999, L"2000-02-28 23:59:59"},
        {36584.9999999, L"2000-02-29 00:00:00"},
        {42766.604166666664, L"2017-01-31 14:30:00"},
        {-657434, L"0100-01-01 00:00:00"},
        {2958465.9999, L"9999-12-31 23:59:51"},
        {1e300, L"9999-12-31 23:59:59"},
        {-1e300, L"0100-01-01 00:00:00"},
        {std::numeric_limits<double>::quiet_NaN(), L"1899-12-30 00:00:00"},
    };
    for (const auto& [days, expected] : cases) {
        EXPECT_EQ(toText(Date{days}), expected) << days;
    }
}

TEST(JetValueTest, NumbersShowAllDigitsOfTheirScale) {
    EXPECT_EQ(toText(Currency{123400}), L"12.3400");
    EXPECT_EQ(toText(Currency{-5}), L"-0.0005");
    EXPECT_EQ(toText(Currency{std::numeric_limits<int64_t>::min()}), L"-922337203685477.5808");
    EXPECT_EQ(toText(Decimal{true, 2, {0, 0, 0, 5}}), L"-0.05");
    EXPECT_EQ(toText(Decimal{true, 0, {}}), L"0");
    EXPECT_EQ(toText(Decimal{false, 3, {}}), L"0.000");
    EXPECT_EQ(toText(Decimal{false, 0, {0, 0, 1, 0}}), L"4294967296");
    EXPECT_EQ(toText(Decimal{false, 28, {0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff}}),
              L"34028236692.0938463463374607431768211455");
}

TEST(JetValueTest, BytesBecomeValuesOfEveryType) {
    const uint8_t bytes[] = {1,    2,    3,    4,    5,    6,    7,    8,   0x89,
                             0xAB, 0xCD, 0xEF, 0x10, 0x20, 0x30, 0x40, 0x50};
    const Format& format = formatOf(Version::Jet4);
    const auto decoded = [&](ColumnType type, size_t size) {
        Value value;
        decodeValue(type, {bytes, size}, format, 4, value);
        return value;
    };
    EXPECT_EQ(decoded(ColumnType::Boolean, 1), Value(true));
    EXPECT_EQ(decoded(ColumnType::Byte, 1), Value(uint8_t(1)));
    EXPECT_EQ(decoded(ColumnType::Integer, 2), Value(int16_t(0x0201)));
    EXPECT_EQ(decoded(ColumnType::Long, 4), Value(int32_t(0x04030201)));
    EXPECT_EQ(decoded(ColumnType::Complex, 4), Value(int32_t(0x04030201)));
    EXPECT_EQ(decoded(ColumnType::BigInteger, 8), Value(int64_t(0x0807060504030201)));
    EXPECT_EQ(decoded(ColumnType::Currency, 8), Value(Currency{0x0807060504030201}));
    EXPECT_EQ(toText(std::get<Guid>(decoded(ColumnType::Guid, 16))),
              L"{04030201-0605-0807-89AB-CDEF10203040}");
    EXPECT_EQ(decoded(ColumnType::Numeric, 17),
              Value(Decimal{true, 4, {0x05040302, 0x89080706, 0x10EFCDAB, 0x50403020}}));
    EXPECT_EQ(decoded(ColumnType::Binary, 3), Value(Bytes{1, 2, 3}));
    EXPECT_EQ(decoded(static_cast<ColumnType>(17), 2), Value(Bytes{1, 2}));
    const std::pair<ColumnType, size_t> sizes[] = {
        {ColumnType::Boolean, 1},  {ColumnType::Byte, 1},       {ColumnType::Integer, 2},
        {ColumnType::Long, 4},     {ColumnType::Currency, 8},   {ColumnType::Single, 4},
        {ColumnType::Double, 8},   {ColumnType::Date, 8},       {ColumnType::Guid, 16},
        {ColumnType::Numeric, 17}, {ColumnType::BigInteger, 8}, {ColumnType::Complex, 4}};
    for (const auto& [type, size] : sizes) {
        EXPECT_THROW(decoded(type, size - 1), Error) << static_cast<int>(type);
    }
}

TEST(JetValueTest, TheExtendedDateIsDecimalText) {
    const std::string text = "0000000000000736359:0000000522000000000:7";
    Value value;
    decodeValue(ColumnType::DateTimeExtended,
                {reinterpret_cast<const uint8_t*>(text.data()), text.size()},
                formatOf(Version::Ace17), 0, value);
    EXPECT_EQ(toText(std::get<Date>(value)), L"2017-01-31 14:30:00");
}

TEST(JetTextTest, CompressedAndPlainTextsAreRead) {
    struct Case {
        Bytes bytes;
        std::wstring text;
    };
    const Case cases[] = {
        {{}, L""},
        {{'a', 0}, L"a"},
        {{'a', 0, 'b'}, L"a"},
        {{0xff, 0xfe}, L""},
        {{0xff, 0xfe, 'a', 'b'}, L"ab"},
        {{0xff, 0xfe, 0xe9}, L"\u00e9"},
        {{0xff, 0xfe, 'a', 0, 0x22, 0x4e, 'x', 0, 0, 'b'}, L"a\u4e22xb"},
        {{0xff, 0xfe, 0, 0x22, 0x4e}, L"\u4e22"},
        {{0xff, 0xfe, 'a', 0}, L"a"},
        {{0xff, 0xfe, 'a', 0, 0x22}, L"a"},
        {{0x3d, 0xd8, 0x00, 0xde}, L"\U0001F600"},
        {{0x3d, 0xd8}, L"\ufffd"},
        {{0xff, 0xfe, 0, 0x3d, 0xd8, 0, 0xff}, L"\ufffd\u00ff"},
    };
    for (const Case& c : cases) {
        std::wstring text = L"what was there";
        decodeText({c.bytes.data(), c.bytes.size()}, formatOf(Version::Jet4), text);
        EXPECT_EQ(text, c.text) << testing::PrintToString(c.bytes);
    }
    std::wstring text;
    const Bytes narrow = {0x80, 'a', 0xff, 0xfe};
    decodeText({narrow.data(), narrow.size()}, formatOf(Version::Jet3), text);
    EXPECT_EQ(text, L"\u20aca\u00ff\u00fe");
}

}  // namespace
}  // namespace sg::jet

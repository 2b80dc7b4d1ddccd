#include "host/jet/values/value.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/jet/format/error.h"
#include "host/jet/values/text_codec.h"
#include "host/jet/values/value_codec.h"

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
        {-657434.75, L"0100-01-01 18:00:00"},
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

Bytes encoded(const std::wstring& text, bool compress) {
    Bytes bytes = {9, 9, 9};
    encodeText(text, compress, bytes);
    return bytes;
}

TEST(JetTextTest, TextsAreCompressedWhereThatMakesThemShorter) {
    EXPECT_EQ(encoded(L"", true), Bytes());
    EXPECT_EQ(encoded(L"ab", true), (Bytes{'a', 0, 'b', 0}));
    EXPECT_EQ(encoded(L"abc", true), (Bytes{0xff, 0xfe, 'a', 'b', 'c'}));
    EXPECT_EQ(encoded(L"abc", false), (Bytes{'a', 0, 'b', 0, 'c', 0}));
    EXPECT_EQ(encoded(L"a\u00ff\u0001", true), (Bytes{0xff, 0xfe, 'a', 0xff, 1}));
    EXPECT_EQ(encoded(L"ab\u0100", true), (Bytes{'a', 0, 'b', 0, 0, 1}));
    EXPECT_EQ(encoded(std::wstring(L"a\0b", 3), true), (Bytes{'a', 0, 0, 0, 'b', 0}));
    EXPECT_EQ(encoded(L"ab\U0001F600", true), (Bytes{'a', 0, 'b', 0, 0x3d, 0xd8, 0x00, 0xde}));
    EXPECT_EQ(encoded(std::wstring(4094, L'x'), true).size(), 4096u);
    EXPECT_EQ(encoded(std::wstring(4095, L'x'), true).size(), 2 * 4095u);
}

TEST(JetTextTest, NoPlainTextIsTakenForACompressedOne) {
    for (const std::wstring text : {L"\ufeff", L"\ufeffabc", L"\ufeff\u4e22\U0001F601"}) {
        for (const bool compress : {false, true}) {
            const Bytes bytes = encoded(text, compress);
            std::wstring read;
            decodeText({bytes.data(), bytes.size()}, formatOf(Version::Jet4), read);
            EXPECT_EQ(read, text);
        }
    }
    try {
        encoded(L"\ufeff\u0100", true);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ConversionError);
    }
    Bytes name;
    encodeName(L"\ufeff\u0100", name);
    EXPECT_EQ(name, (Bytes{0xff, 0xfe, 0x00, 0x01}));
}

Column columnOf(ColumnType type, uint16_t length) {
    Column column;
    column.name = L"Area";
    column.type = type;
    column.length = length;
    column.precision = 5;
    column.scale = 2;
    return column;
}

TEST(JetValueTest, ValuesOfEveryTypeComeBackFromTheirBytes) {
    Guid guid;
    guid.bytes[3] = 7;
    const std::pair<Column, Value> cases[] = {
        {columnOf(ColumnType::Byte, 1), uint8_t(255)},
        {columnOf(ColumnType::Integer, 2), int16_t(-2)},
        {columnOf(ColumnType::Long, 4), std::numeric_limits<int32_t>::min()},
        {columnOf(ColumnType::Complex, 4), int32_t(5)},
        {columnOf(ColumnType::BigInteger, 8), std::numeric_limits<int64_t>::max()},
        {columnOf(ColumnType::Currency, 8), Currency{-5}},
        {columnOf(ColumnType::Single, 4), 1.5f},
        {columnOf(ColumnType::Double, 8), -1e300},
        {columnOf(ColumnType::Date, 8), Date{-1.25}},
        {columnOf(ColumnType::Text, 20), std::wstring(L"ten chars!")},
        {columnOf(ColumnType::Memo, 0), std::wstring(300, L'm')},
        {columnOf(ColumnType::Binary, 3), Bytes{1, 2, 3}},
        {columnOf(static_cast<ColumnType>(17), 3), Bytes{1}},
        {columnOf(ColumnType::Ole, 0), Bytes(300, 1)},
        {columnOf(ColumnType::Guid, 16), guid},
        {columnOf(ColumnType::Numeric, 17), Decimal{true, 2, {0, 0, 0, 99999}}},
        {columnOf(ColumnType::DateTimeExtended, 42), Date{42766.604166666664}},
        {columnOf(ColumnType::DateTimeExtended, 42), Date{-1.25}},
        {columnOf(ColumnType::DateTimeExtended, 42), Date{2958465.75}},
    };
    const Format& format = formatOf(Version::Jet4);
    Bytes bytes;
    for (const auto& [column, value] : cases) {
        encodeValue(column, value, format, bytes);
        EXPECT_TRUE(column.length == 0 || bytes.size() <= column.length);
        Value read;
        decodeValue(column.type, {bytes.data(), bytes.size()}, format, column.scale, read);
        EXPECT_EQ(read, value) << static_cast<int>(column.type);
    }
    encodeValue(columnOf(ColumnType::Boolean, 1), true, format, bytes);
    EXPECT_TRUE(bytes.empty());
    encodeValue(columnOf(ColumnType::Numeric, 17), Decimal{true, 2, {0, 0, 0, 0x0102}}, format,
                bytes);
    EXPECT_EQ(bytes, (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 1, 0, 0}));
    encodeValue(columnOf(ColumnType::Numeric, 17), Decimal{true, 2, {}}, format, bytes);
    EXPECT_EQ(bytes, Bytes(17, 0));
}

TEST(JetValueTest, FixedTextsAndBytesAreFilledUp) {
    const Format& format = formatOf(Version::Jet4);
    Column column = columnOf(ColumnType::Text, 12);
    column.flags = columns::fixedFlag;
    column.extraFlags = columns::compressedFlag;
    Bytes bytes;
    encodeValue(column, std::wstring(L"abcd"), format, bytes);
    EXPECT_EQ(bytes, (Bytes{'a', 0, 'b', 0, 'c', 0, 'd', 0, ' ', 0, ' ', 0}));
    column.type = ColumnType::Binary;
    encodeValue(column, Bytes{1, 2}, format, bytes);
    EXPECT_EQ(bytes, (Bytes{1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(JetValueTest, WhatTheColumnHasNoRoomForIsRefused) {
    Column compressed = columnOf(ColumnType::Text, 20);
    compressed.extraFlags = columns::compressedFlag;
    const std::tuple<Column, Value, int> cases[] = {
        {compressed, std::wstring(L"elevenchars"), FieldTooSmall},
        {compressed, std::wstring(L"ninechars\U0001F600"), FieldTooSmall},
        {columnOf(ColumnType::Binary, 3), Bytes(4, 0), FieldTooSmall},
        {columnOf(ColumnType::Long, 4), int16_t(1), ConversionError},
        {columnOf(ColumnType::Long, 4), Value(), ConversionError},
        {columnOf(ColumnType::Numeric, 17), Decimal{false, 2, {0, 0, 0, 100000}}, ConversionError},
        {columnOf(ColumnType::Numeric, 17), Decimal{false, 2, {1, 0, 0, 0}}, ConversionError},
        {columnOf(ColumnType::Numeric, 17), Decimal{false, 1, {}}, ConversionError},
        {columnOf(ColumnType::DateTimeExtended, 42), Date{1e9}, ConversionError},
        {columnOf(ColumnType::DateTimeExtended, 42), Date{std::numeric_limits<double>::quiet_NaN()},
         ConversionError},
    };
    for (const auto& [column, value, code] : cases) {
        Bytes bytes;
        try {
            encodeValue(column, value, formatOf(Version::Jet4), bytes);
            ADD_FAILURE() << static_cast<int>(column.type);
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), code);
            EXPECT_EQ(error.names(), std::vector<std::wstring>{L"Area"});
        }
    }
}

}  // namespace
}  // namespace sg::jet

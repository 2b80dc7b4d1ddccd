#include "host/jet/index/index_key.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "host/jet/format/error.h"
#include "host/jet/hex.h"

namespace sg::jet {
namespace {

std::string key(const KeyColumn& column, const Value& value) {
    KeyBytes bytes;
    appendKey(column, value, bytes);
    return hex(bytes);
}

Decimal decimal(bool negative, uint32_t digits, uint8_t scale) {
    Decimal number;
    number.negative = negative;
    number.scale = scale;
    number.words[3] = digits;
    return number;
}

Bytes counting(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i + 1);
    return bytes;
}

constexpr Guid kGuid{{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC,
                      0xDD, 0xEE, 0xFF}};

TEST(IndexKey, EachTypeInBothDirections) {
    struct Case {
        ColumnType type;
        Value value;
        std::string ascending, descending;
    };
    const Case cases[] = {
        {ColumnType::Boolean, true, "7F00", "80FF"},
        {ColumnType::Boolean, false, "7FFF", "8000"},
        {ColumnType::Boolean, Value(), "7FFF", "8000"},  // there is no Null of this type
        {ColumnType::Byte, Value(), "00", "FF"},
        {ColumnType::Byte, uint8_t(0x2A), "7F2A", "80D5"},
        {ColumnType::Integer, int16_t(1), "7F8001", "807FFE"},
        {ColumnType::Integer, int16_t(-2), "7F7FFE", "808001"},
        {ColumnType::Long, int32_t(258), "7F80000102", "807FFFFEFD"},
        {ColumnType::Complex, int32_t(1), "7F80000001", "807FFFFFFE"},
        {ColumnType::BigInteger, int64_t(-1), "7F7FFFFFFFFFFFFFFF", "808000000000000000"},
        {ColumnType::Currency, Currency{10000}, "7F8000000000002710", "807FFFFFFFFFFFD8EF"},
        {ColumnType::Single, 1.0f, "7FBF800000", "80407FFFFF"},
        {ColumnType::Single, -1.0f, "7F407FFFFF", "80BF800000"},
        {ColumnType::Double, 1.0, "7FBFF0000000000000", "80400FFFFFFFFFFFFF"},
        {ColumnType::Date, Date{-1.0}, "7F400FFFFFFFFFFFFF", "80BFF0000000000000"},
        {ColumnType::Text, std::wstring(L"a"), "7F4A0100", "80B5FEFF00"},
        {ColumnType::Memo, std::wstring(), "7F0100", "80FEFF00"},
        {ColumnType::Text, Value(), "00", "FF"},
        {ColumnType::Binary, Bytes(), "7F", "80"},
        {ColumnType::Binary, counting(3), "7F010203000000000003", "80FEFDFCFFFFFFFFFFFC"},
        {ColumnType::Binary, counting(8), "7F010203040506070808", "80FEFDFCFBFAF9F8F7F7"},
        {ColumnType::Binary, counting(9), "7F010203040506070809090000000000000001",
         "80FEFDFCFBFAF9F8F709F6FFFFFFFFFFFFFFFE"},
        {ColumnType::Guid, kGuid,
         "7F00112233445566770988"
         "99AABBCCDDEEFF08",
         "80FFEEDDCCBBAA99880977"
         "66554433221100F7"},
    };
    for (const Case& c : cases) {
        KeyColumn column{.type = c.type};
        EXPECT_EQ(key(column, c.value), c.ascending) << int(c.type);
        column.ascending = false;
        EXPECT_EQ(key(column, c.value), c.descending) << int(c.type);
    }
}

TEST(IndexKey, Decimals) {
    struct Case {
        bool negative, ascending, old;
        uint8_t sign, filler, last;
    };
    const Case cases[] = {
        {false, true, false, 0xFF, 0x00, 0x7D},  {true, true, false, 0x00, 0xFF, 0x82},
        {false, false, false, 0x00, 0xFF, 0x82}, {true, false, false, 0xFF, 0x00, 0x7D},
        {false, true, true, 0xFF, 0x00, 0x7D},   {true, true, true, 0x00, 0xFF, 0x82},
        {false, false, true, 0xFF, 0xFF, 0x82},  {true, false, true, 0x00, 0x00, 0x7D},
    };
    for (const Case& c : cases) {
        KeyBytes expected(18, c.filler);
        expected[0] = c.ascending ? 0x7F : 0x80;
        expected[1] = c.sign;
        expected[17] = c.last;
        const KeyColumn column{
            .type = ColumnType::Numeric, .ascending = c.ascending, .scale = 2, .oldNumeric = c.old};
        // 1.25 in a column of two decimals, whatever the value's own scale.
        EXPECT_EQ(key(column, decimal(c.negative, 125, 2)), hex(expected));
        EXPECT_EQ(key(column, decimal(c.negative, 12500, 4)), hex(expected));
    }
    const KeyColumn column{.type = ColumnType::Numeric, .scale = 1};
    EXPECT_EQ(key(column, decimal(true, 0, 0)), key(column, decimal(false, 0, 0)));
    EXPECT_EQ(key(column, decimal(false, 7, 0)), key(column, decimal(false, 70, 1)));
    EXPECT_THROW(key(column, decimal(false, 125, 2)), Error);
    Decimal huge = decimal(false, 0, 0);
    huge.words[0] = 0xFFFFFFFF;
    EXPECT_THROW(key(column, huge), Error);
}

// Keys of values in ascending order rise in an ascending column and fall in a descending one, with
// Null first and last.
void expectOrder(ColumnType type, const std::vector<Value>& values) {
    for (bool ascending : {true, false}) {
        const KeyColumn column{.type = type, .ascending = ascending};
        std::string last = key(column, Value());
        for (const Value& value : values) {
            const std::string next = key(column, value);
            EXPECT_TRUE(ascending ? last < next : next < last) << last << " " << next;
            last = next;
        }
    }
}

TEST(IndexKey, KeysSortAsValuesDo) {
    using Limits = std::numeric_limits<double>;
    expectOrder(ColumnType::Long, {INT32_MIN, -256, -1, 0, 1, 255, 256, INT32_MAX});
    expectOrder(ColumnType::Currency,
                {Currency{INT64_MIN}, Currency{-1}, Currency{0}, Currency{1}, Currency{INT64_MAX}});
    expectOrder(ColumnType::Double, {-Limits::infinity(), -1e300, -1.5, -1e-300, 0.0,
                                     Limits::denorm_min(), 1.5, 1e300, Limits::infinity()});
    expectOrder(ColumnType::Numeric,
                {decimal(true, 300, 0), decimal(true, 2, 0), decimal(false, 0, 0),
                 decimal(false, 2, 0), decimal(false, 300, 0)});
    expectOrder(ColumnType::Binary, {Bytes{0}, Bytes{0, 0}, Bytes{0, 1}, Bytes{1}, counting(8),
                                     counting(9), counting(16), counting(17), Bytes{2}});
    // A hyphen counts only between texts that are equal without it.
    expectOrder(ColumnType::Text, {std::wstring(L""), std::wstring(L"a"), std::wstring(L"ab"),
                                   std::wstring(L"a-b"), std::wstring(L"b")});
}

TEST(IndexKey, WhatHasNoKeyIsAnError) {
    const auto codeOf = [](const KeyColumn& column, const Value& value) {
        try {
            key(column, value);
            return 0;
        } catch (const Error& error) {
            return error.code();
        }
    };
    EXPECT_EQ(codeOf({.type = ColumnType::Long}, 1.0), ConversionError);
    EXPECT_EQ(codeOf({.type = ColumnType::Text}, int32_t(1)), ConversionError);
    EXPECT_EQ(codeOf({.type = ColumnType::Text}, std::wstring(L"\U0001F600")),
              OperationNotSupported);
    EXPECT_EQ(codeOf({.type = ColumnType::Text, .order = TextOrder::Unknown}, std::wstring(L"a")),
              OperationNotSupported);
    EXPECT_EQ(codeOf({.type = ColumnType::Ole}, Bytes{1}), OperationNotSupported);
}

// A table of one text column, with number 3, and one of whole numbers, with number 7.
TableDefinition smallTable() {
    TableDefinition table;
    Column text;
    text.name = L"City";
    text.type = ColumnType::Text;
    text.number = 3;
    text.sortOrder = {0x0409, 0};
    Column number;
    number.name = L"Count";
    number.type = ColumnType::Long;
    number.number = 7;
    table.columns = {text, number};
    return table;
}

RealIndex smallIndex(uint8_t flags = 0) {
    RealIndex index;
    index.columns = {{7, false}, {3, true}};
    index.flags = flags;
    return index;
}

TEST(IndexKey, EncoderOfSeveralColumns) {
    const KeyEncoder encoder(formatOf(Version::Jet4), smallTable(), smallIndex());
    EXPECT_TRUE(encoder.usable());
    EXPECT_EQ(encoder.places(), (std::vector<size_t>{1, 0}));
    KeyBytes bytes{1, 2, 3};
    const Value values[] = {int32_t(1), std::wstring(L"a")};
    encoder.encode(values, bytes);
    EXPECT_EQ(hex(bytes), "807FFFFFFE7F4A0100");
    encoder.encode(std::span(values).first(1), bytes);
    EXPECT_EQ(hex(bytes), "807FFFFFFE");
    const Value tooMany[3] = {};
    EXPECT_THROW(encoder.encode(tooMany, bytes), Error);
}

TEST(IndexKey, Jet3HasItsOwnTextKeys) {
    const KeyEncoder encoder(formatOf(Version::Jet3), smallTable(), smallIndex());
    KeyBytes bytes;
    const Value values[] = {Value(), std::wstring(L"a")};
    encoder.encode(values, bytes);
    EXPECT_EQ(hex(bytes), "FF7F6000");
}

TEST(IndexKey, RowsOfNullsMayBeLeftOut) {
    const Value nulls[2] = {};
    const Value one[] = {Value(), std::wstring(L"a")};
    const KeyEncoder all(formatOf(Version::Jet4), smallTable(), smallIndex());
    EXPECT_TRUE(all.hasEntry(nulls));
    const KeyEncoder some(formatOf(Version::Jet4), smallTable(),
                          smallIndex(indexes::ignoreNullsFlag));
    EXPECT_FALSE(some.hasEntry(nulls));
    EXPECT_TRUE(some.hasEntry(one));
}

TEST(IndexKey, UnknownOrdersMakeAnIndexUnusable) {
    for (const SortOrder order : {SortOrder{0x0409, 1}, SortOrder{0x0407, 0}}) {
        TableDefinition table = smallTable();
        table.columns[0].sortOrder = order;
        const KeyEncoder encoder(formatOf(Version::Ace14), table, smallIndex());
        EXPECT_FALSE(encoder.usable());
        EXPECT_NE(encoder.problem().find(L"'City'"), std::wstring::npos);
        KeyBytes bytes{1};
        try {
            encoder.encode({}, bytes);
            ADD_FAILURE() << "no error";
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), OperationNotSupported);
            EXPECT_EQ(error.place().detail, encoder.problem());
        }
        EXPECT_EQ(hex(bytes), "01");
    }
}

}  // namespace
}  // namespace sg::jet

#include "host/jet/pages/row.h"

#include <gtest/gtest.h>

#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

using test::Cell;
using test::ColumnSpec;

// A table read from a file that has it, and a reader for its rows.
class RowTest : public testing::TestWithParam<Version> {
  protected:
    void define(const std::vector<ColumnSpec>& columns) {
        columns_ = columns;
        const uint32_t page = builder_.addTable(L"T", columns);
        bytes_ = builder_.bytes();
        store_ = std::make_unique<MemoryPageStore>(bytes_, L"t.mdb");
        table_ = TableDefinition::read(*store_, page);
    }

    RowReader reader(const Bytes& row) {
        RowReader reader(*store_, table_);
        reader.reset({row.data(), row.size()});
        return reader;
    }

    test::FileBuilder builder_{GetParam()};
    std::vector<ColumnSpec> columns_;
    Bytes bytes_;
    std::unique_ptr<MemoryPageStore> store_;
    TableDefinition table_;
};

TEST_P(RowTest, OffsetsAreRightAroundEveryMultipleOf256) {
    define({{L"A", ColumnType::Text, 255},
            {L"B", ColumnType::Text, 255},
            {L"N", ColumnType::Long, 4},
            {L"C", ColumnType::Text, 255},
            {L"D", ColumnType::Text, 255},
            {L"E", ColumnType::Binary, 255}});
    const size_t unit = GetParam() == Version::Jet3 ? 1 : 2;
    for (size_t length = 0; length < 255; ++length) {
        const std::wstring a(length, L'a');
        const std::wstring b(255 - length, L'b');
        const std::wstring c(length / 2, L'c');
        const auto text = [&](const std::wstring& t) { return test::text(GetParam(), t); };
        const Bytes row = builder_.encodeRow(columns_, {text(a),
                                                        text(b),
                                                        test::number(-7, 4),
                                                        text(c),
                                                        test::null(),
                                                        {Bytes(length, 0xEE), false}});
        const RowReader r = reader(row);
        Value value;
        r.decode(0, value);
        ASSERT_EQ(value, Value(a));
        r.decode(1, value);
        ASSERT_EQ(value, Value(b)) << length;
        r.decode(2, value);
        ASSERT_EQ(value, Value(int32_t(-7)));
        r.decode(3, value);
        ASSERT_EQ(value, Value(c)) << length;
        r.decode(4, value);
        ASSERT_TRUE(isNull(value));
        ASSERT_EQ(r.bytes(5).size(), length);
        ASSERT_EQ(r.bytes(0).size(), length * unit);
    }
}

TEST_P(RowTest, ColumnsThatCameLaterAreNullAndFalse) {
    define({{L"A", ColumnType::Long, 4},
            {L"T", ColumnType::Text, 20},
            {L"B", ColumnType::Boolean, 1},
            {L"N", ColumnType::Double, 8}});
    const Bytes row = builder_.encodeRow({columns_[0]}, {test::number(5, 4)});
    const RowReader r = reader(row);
    EXPECT_EQ(r.columnCount(), 1u);
    Value value;
    r.decode(0, value);
    EXPECT_EQ(value, Value(int32_t(5)));
    r.decode(1, value);
    EXPECT_TRUE(isNull(value));
    r.decode(2, value);
    EXPECT_EQ(value, Value(false));
    r.decode(3, value);
    EXPECT_TRUE(isNull(value));
    EXPECT_TRUE(r.bytes(3).empty());
}

TEST_P(RowTest, ACutOrSpoiledRowIsAnErrorOrAnotherValueAndNothingElse) {
    define({{L"A", ColumnType::Long, 4},
            {L"T", ColumnType::Text, 255},
            {L"M", ColumnType::Memo, 0},
            {L"U", ColumnType::Text, 255}});
    const Bytes row = builder_.encodeRow(
        columns_, {test::number(5, 4), test::text(GetParam(), std::wstring(200, L't')),
                   test::inlineLong({1, 2, 3, 4}), test::text(GetParam(), std::wstring(90, L'u'))});
    const auto readAll = [&](const Bytes& bytes) {
        Value value;
        for (size_t i = 0; i < columns_.size(); ++i) {
            try {
                reader(bytes).decode(i, value);
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), Damaged);
            }
        }
    };
    for (size_t size = 0; size < row.size(); ++size) {
        readAll(Bytes(row.begin(), row.begin() + static_cast<ptrdiff_t>(size)));
        readAll(Bytes(row.end() - static_cast<ptrdiff_t>(size), row.end()));
    }
    for (size_t at = 0; at < row.size(); ++at) {
        for (const uint8_t byte : {0x00, 0x01, 0x7f, 0xff}) {
            Bytes spoiled = row;
            spoiled[at] = byte;
            readAll(spoiled);
        }
    }
}

TEST_P(RowTest, ACalculatedColumnIsUnwrapped) {
    if (GetParam() == Version::Jet3) {
        return;  // has no extra flags, and so no such columns
    }
    define({{L"T", ColumnType::Text, 255, columns::calculatedMask}});
    Cell cell{Bytes(16), false};
    const Bytes content = test::text(GetParam(), L"sum").bytes;
    const Bytes length = test::number(static_cast<int64_t>(content.size()), 4).bytes;
    cell.bytes.insert(cell.bytes.end(), length.begin(), length.end());
    cell.bytes.insert(cell.bytes.end(), content.begin(), content.end());
    cell.bytes.resize(cell.bytes.size() + 3);
    Value value;
    const Bytes row = builder_.encodeRow(columns_, {cell});
    reader(row).decode(0, value);
    EXPECT_EQ(value, Value(std::wstring(L"sum")));
    cell.bytes[16] = 200;
    const Bytes tooLong = builder_.encodeRow(columns_, {cell});
    EXPECT_THROW(reader(tooLong).decode(0, value), Error);
}

INSTANTIATE_TEST_SUITE_P(Versions, RowTest,
                         testing::Values(Version::Jet3, Version::Jet4, Version::Ace12));

}  // namespace
}  // namespace sg::jet

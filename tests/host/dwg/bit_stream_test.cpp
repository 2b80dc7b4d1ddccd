#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "host/dwg/bit_reader.h"
#include "host/dwg/bit_writer.h"

namespace sg::dwg {
namespace {

// The bits as text.
std::string bitsOf(BitWriter& writer) {
    const size_t count = writer.position();
    BitReader reader(writer.bytes(), 0, count);
    std::string text;
    while (reader.left() > 0)
        text += reader.bit() ? '1' : '0';
    return text;
}

struct Coding {
    const char* name;
    std::function<void(BitWriter&)> write;
    std::string bits;
};

TEST(BitStreamTest, NumbersTakeTheirShortestForm) {
    const Coding codings[] = {
        {"BS 0", [](auto& to) { to.bitShort(0); }, "10"},
        {"BS 1", [](auto& to) { to.bitShort(1); }, "0100000001"},
        {"BS 255", [](auto& to) { to.bitShort(255); }, "0111111111"},
        {"BS 256", [](auto& to) { to.bitShort(256); }, "11"},
        {"BS 257", [](auto& to) { to.bitShort(257); }, "000000000100000001"},
        {"BS -1", [](auto& to) { to.bitShort(-1); }, "001111111111111111"},
        {"BL 0", [](auto& to) { to.bitLong(0); }, "10"},
        {"BL 7", [](auto& to) { to.bitLong(7); }, "0100000111"},
        {"BL 256", [](auto& to) { to.bitLong(256); }, "0000000000000000010000000000000000"},
        {"BLL 0", [](auto& to) { to.bitLongLong(0); }, "000"},
        {"BLL 257", [](auto& to) { to.bitLongLong(257); }, "0100000000100000001"},
        {"BD 0", [](auto& to) { to.bitDouble(0); }, "10"},
        {"BD 1", [](auto& to) { to.bitDouble(1); }, "01"},
        {"DD same", [](auto& to) { to.doubleWithDefault(2.5, 2.5); }, "00"},
        {"3B",
         [](auto& to) {
             for (const unsigned value : {0u, 2u, 6u, 7u})
                 to.bit3(value);
         },
         "010110111"},
        {"H 5.0", [](auto& to) { to.handle(5, 0); }, "01010000"},
        {"H 4.1FF", [](auto& to) { to.handle(4, 0x1FF); }, "010000100000000111111111"},
        {"MC 5", [](auto& to) { to.modularChar(5); }, "00000101"},
        {"MC -5", [](auto& to) { to.modularChar(-5); }, "01000101"},
        {"MC 64", [](auto& to) { to.modularChar(64); }, "1100000000000000"},
        {"MS 4", [](auto& to) { to.modularShort(4); }, "0000010000000000"},
        {"OT 19", [](auto& to) { to.objectType(19); }, "0000010011"},
        {"OT 500", [](auto& to) { to.objectType(500); }, "0100000100"},
        {"OT 800", [](auto& to) { to.objectType(800); }, "100010000000000011"},
    };
    for (const Coding& coding : codings) {
        BitWriter writer;
        coding.write(writer);
        EXPECT_EQ(bitsOf(writer), coding.bits) << coding.name;
    }
}

// Values come back at every place within a byte.
TEST(BitStreamTest, EveryCodingComesBackAtEveryBit) {
    const double numbers[] = {0, -0.0, 1, -1, 1e-300, 4631.25, std::nextafter(1.0, 2.0), HUGE_VAL};
    const int64_t wholes[] = {0,   1,    -1,   63,     64,     -64,     127,
                              128, 8191, 8192, 0x7FFF, 0x8000, -0x8000, 0x3FFFFFFF};
    for (unsigned shift = 0; shift < 8; ++shift) {
        BitWriter writer;
        writer.bits(0, shift);
        for (const double number : numbers) {
            writer.bitDouble(number);
            writer.rawDouble(number);
            for (const double known : numbers)
                writer.doubleWithDefault(number, known);
        }
        for (const int64_t whole : wholes) {
            writer.bitShort(static_cast<int16_t>(whole));
            writer.bitLong(static_cast<int32_t>(whole));
            writer.modularChar(whole);
            writer.handle(3, static_cast<uint64_t>(whole));
            writer.unsignedModularChar(static_cast<uint64_t>(std::abs(whole)));
            writer.modularShort(static_cast<uint32_t>(std::abs(whole)));
            writer.bitLongLong(static_cast<uint64_t>(std::abs(whole)));
            writer.objectType(static_cast<uint16_t>(whole));
        }
        const size_t end = writer.position();
        BitReader reader(writer.bytes(), shift, end);
        for (const double number : numbers) {
            EXPECT_EQ(std::bit_cast<uint64_t>(reader.bitDouble()), std::bit_cast<uint64_t>(number));
            EXPECT_EQ(reader.rawDouble(), number);
            for (const double known : numbers)
                EXPECT_EQ(reader.doubleWithDefault(known), number) << known;
        }
        for (const int64_t whole : wholes) {
            EXPECT_EQ(reader.bitShort(), static_cast<int16_t>(whole));
            EXPECT_EQ(reader.bitLong(), static_cast<int32_t>(whole));
            EXPECT_EQ(reader.modularChar(), whole);
            const FileHandle handle = reader.handle();
            EXPECT_EQ(handle.code, 3);
            EXPECT_EQ(handle.value, static_cast<uint64_t>(whole));
            EXPECT_EQ(reader.unsignedModularChar(), static_cast<uint64_t>(std::abs(whole)));
            EXPECT_EQ(reader.modularShort(), static_cast<uint32_t>(std::abs(whole)));
            EXPECT_EQ(reader.bitLongLong(), static_cast<uint64_t>(std::abs(whole)));
            EXPECT_EQ(reader.objectType(), static_cast<uint16_t>(whole));
        }
        EXPECT_EQ(reader.left(), 0u);
        EXPECT_FALSE(reader.hasFailed());
    }
}

TEST(BitStreamTest, NothingIsReadPastTheEnd) {
    const uint8_t bytes[] = {0x00, 0xFF, 0xFF};
    BitReader reader(bytes, 0, 20);
    EXPECT_EQ(reader.bitDouble(), 0);  // its eight bytes are not there
    EXPECT_TRUE(reader.hasFailed());
    EXPECT_EQ(reader.left(), 0u);
    EXPECT_EQ(reader.rawChar(), 0);

    BitReader handles(bytes, 8, 24);  // a handle of fifteen bytes
    EXPECT_EQ(handles.handle().value, 0u);
    EXPECT_TRUE(handles.hasFailed());

    BitReader text(bytes);
    EXPECT_EQ(text.rawBytes(4), "");
    EXPECT_TRUE(text.hasFailed());

    BitReader outside(bytes, 25, 30);
    EXPECT_TRUE(outside.hasFailed());
}

TEST(BitStreamTest, RelativeHandlesCountFromTheirObject) {
    const struct {
        FileHandle handle;
        uint64_t meant;
    } cases[] = {
        {{4, 0x20}, 0x20}, {{6, 0}, 0x101}, {{8, 0}, 0xFF}, {{10, 3}, 0x103}, {{12, 3}, 0xFD},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.handle.resolved(0x100), one.meant) << int(one.handle.code);
}

TEST(BitStreamTest, ANumberIsPatchedAtAnyBit) {
    for (unsigned shift = 0; shift < 8; ++shift) {
        BitWriter writer;
        writer.bits(0x55, shift);
        const size_t at = writer.position();
        writer.rawLong(0);
        writer.bits(0x2A, 6);
        writer.patchLongAt(at, 0x12345678);
        const size_t end = writer.position();
        BitReader reader(writer.bytes(), at, end);
        EXPECT_EQ(reader.rawLong(), 0x12345678u) << shift;
        EXPECT_EQ(reader.bits(6), 0x2Au) << shift;
    }
}

}  // namespace
}  // namespace sg::dwg

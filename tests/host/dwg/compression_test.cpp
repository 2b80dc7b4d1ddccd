#include <gtest/gtest.h>

#include <random>

#include "host/dwg/checksums.h"
#include "host/dwg/compression.h"

namespace sg::dwg {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(CompressionTest, WhatIsPackedIsUnpackedAgain) {
    std::mt19937 random(7);
    std::vector<Bytes> cases;
    for (size_t size = 1; size < 40; ++size)
        cases.push_back(Bytes(size, 0xA5));
    cases.push_back(bytesOf("abcdabcdabcd-abcd"));
    cases.push_back(Bytes(0x7400, 0));
    // Matches near and far, of all lengths, between literal runs of all lengths.
    for (int turn = 0; turn < 200; ++turn) {
        Bytes plain;
        while (plain.size() < 0x7400) {
            const size_t run = random() % (turn % 2 == 0 ? 6 : 300);
            for (size_t i = 0; i < run; ++i)
                plain.push_back(static_cast<uint8_t>(random()));
            if (plain.empty()) continue;
            const size_t length = random() % 400;
            size_t from = random() % plain.size();
            for (size_t i = 0; i < length; ++i)
                plain.push_back(plain[from++]);
        }
        cases.push_back(std::move(plain));
    }
    for (const Bytes& plain : cases) {
        const auto again = unpack2004(pack2004(plain), plain.size());
        ASSERT_TRUE(again.has_value()) << plain.size();
        EXPECT_EQ(*again, plain) << plain.size();
    }
}

TEST(CompressionTest, DamageEndsInNothingOrInFewerBytes) {
    std::mt19937 random(11);
    const Bytes packed = pack2004(Bytes(2000, 3));
    for (int turn = 0; turn < 5000; ++turn) {
        Bytes damaged(random() % 200);
        for (uint8_t& byte : damaged)
            byte = static_cast<uint8_t>(random());
        for (const auto unpack : {unpack2004, unpack2007}) {
            const auto plain = unpack(damaged, 1000);
            if (plain) {
                EXPECT_LE(plain->size(), 1000u);
            }
        }
    }
    // A copy from ahead of the first byte.
    EXPECT_FALSE(unpack2004(Bytes{0x01, 'a', 'b', 'c', 'd', 0x40, 0x10, 0x11}, 100).has_value());
}

// Literal bytes of release 2007 are out of order; here they come out as the alphabet.
TEST(CompressionTest, LiteralRunsOf2007AreOutOfOrder) {
    const struct {
        uint8_t code;
        const char* packed;
        const char* plain;
    } cases[] = {
        {0x00, "abcdefgh", "abcdefgh"},
        {0x01, "bcdefghia", "abcdefghi"},
        {0x02, "jbcdefghia", "abcdefghij"},
        {0x04, "efghijklabcd", "abcdefghijkl"},
        {0x08, "ijklmnopabcdefgh", "abcdefghijklmnop"},
        {0x0B, "lmnopqrsdefghijkcba", "abcdefghijklmnopqrs"},
    };
    for (const auto& one : cases) {
        Bytes packed{one.code};
        const Bytes run = bytesOf(one.packed);
        packed.insert(packed.end(), run.begin(), run.end());
        const auto plain = unpack2007(packed, run.size());
        ASSERT_TRUE(plain.has_value()) << one.plain;
        EXPECT_EQ(*plain, bytesOf(one.plain));
    }
}

TEST(CompressionTest, CheckNumbersAreThoseOfTheirFamilies) {
    const Bytes digits = bytesOf("123456789");
    EXPECT_EQ(crc16(0, digits), 0xBB3D);
    EXPECT_EQ(crc32(0, digits), 0xCBF43926);
    EXPECT_EQ(pageSum(1, bytesOf("Wikipedia")), 0x11E60398u);
    // The sums stay below the modulus over more than one run.
    Bytes many(0x15B0 * 2 + 5, 0xFF);
    const uint32_t sum = pageSum(0, many);
    EXPECT_EQ(sum & 0xFFFF, many.size() * 0xFF % 0xFFF1);
}

}  // namespace
}  // namespace sg::dwg

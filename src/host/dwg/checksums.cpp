#include "host/dwg/checksums.h"

namespace sg::dwg {
namespace {

template <class Word>
constexpr std::array<Word, 256> tableOf(Word polynomial) {
    std::array<Word, 256> table{};
    for (unsigned i = 0; i < 256; ++i) {
        auto word = static_cast<Word>(i);
        for (int bit = 0; bit < 8; ++bit) {
            const bool isOdd = (word & 1) != 0;
            word = static_cast<Word>(word >> 1);
            if (isOdd) word = static_cast<Word>(word ^ polynomial);
        }
        table[i] = word;
    }
    return table;
}

constexpr auto kTable16 = tableOf<uint16_t>(0xA001);
constexpr auto kTable32 = tableOf<uint32_t>(0xEDB88320);

}  // namespace

uint16_t crc16(uint16_t seed, std::span<const uint8_t> bytes) {
    uint16_t crc = seed;
    for (const uint8_t byte : bytes) {
        crc = static_cast<uint16_t>(crc >> 8 ^ kTable16[(crc ^ byte) & 0xFF]);
    }
    return crc;
}

uint32_t crc32(uint32_t seed, std::span<const uint8_t> bytes) {
    uint32_t crc = ~seed;
    for (const uint8_t byte : bytes)
        crc = crc >> 8 ^ kTable32[(crc ^ byte) & 0xFF];
    return ~crc;
}

uint32_t pageSum(uint32_t seed, std::span<const uint8_t> bytes) {
    constexpr uint32_t kModulus = 0xFFF1;
    constexpr size_t kRun = 0x15B0;  // the sums of as many bytes fit 32 bits
    uint32_t low = seed & 0xFFFF;
    uint32_t high = seed >> 16;
    while (!bytes.empty()) {
        const auto run = bytes.first(bytes.size() < kRun ? bytes.size() : kRun);
        for (const uint8_t byte : run) {
            low += byte;
            high += low;
        }
        low %= kModulus;
        high %= kModulus;
        bytes = bytes.subspan(run.size());
    }
    return high << 16 | low;
}

}  // namespace sg::dwg

#pragma once

#include <cstdint>
#include <span>

// The weights behind sort_order.h, in the packed form in which they are kept. The kinds, and how a
// key is put together from them, are described in docs/formats/jet_index.md.
namespace sg::jet {

enum class WeightKind : uint8_t {
    Ignored,        // leaves nothing in the key
    Simple,         // inline bytes
    Unprintable,    // one byte with its position, in the last section of the key
    Accent,         // is added to the extra byte of the character before it
    International,  // inline bytes and one extra byte
    Kana,           // inline bytes, perhaps an extra byte, and a flag
    Wide,           // the weight is an index into WeightTable::wide
};

// What the characters of a run have in common.
struct WeightClass {
    WeightKind kind;
    uint8_t inlineLength;  // 0 to 2
    uint8_t extra;         // 0 for none
    uint8_t flag;          // Kana: 2 or 3
};

// A run covers `count` characters. Its weight advances by `step` from each to the next; a two-byte
// weight that would get past XXFF goes on at the next page's 02.
struct RunShape {
    uint16_t count;
    uint8_t step;
};

// Characters whose inline or extra bytes are longer than a class has room for.
struct WideWeight {
    uint8_t inlineLength;
    uint8_t inlineBytes[4];
    uint8_t extraLength;
    uint8_t extraBytes[2];
};

// `runs` follow each other from U+0000 to U+FFFF and leave out the surrogates. A run is
// its first weight << 16 | its class << 8 | its shape; two-byte weights are numbered through:
// (high byte) * 254 + (low byte - 2).
struct WeightTable {
    std::span<const WeightClass> classes;
    std::span<const RunShape> shapes;
    std::span<const WideWeight> wide;
    std::span<const uint32_t> runs;
};

const WeightTable& generalLegacyWeights();

}  // namespace sg::jet

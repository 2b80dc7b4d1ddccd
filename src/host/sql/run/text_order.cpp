#include "host/sql/run/text_order.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/encoding.h"
#include "host/jet/index/sort_order.h"

namespace sg::sql {
namespace {

constexpr jet::TextOrder general = jet::TextOrder::GeneralLegacy;
constexpr size_t endSize = 2;  // of a key without further sections: 01 00

// Of a character of ASCII that leaves one or two bytes in a key and nothing else: these bytes, the
// one byte alone in the upper half; 0 for all other characters. No weight of one byte is the
// beginning of another one's two, so that the numbers compare as keys do.
using PlainWeights = std::array<uint16_t, 256>;

PlainWeights makeWeights() {
    PlainWeights weights{};
    jet::KeyBytes other;
    jet::appendTextKey(general, L"0", false, other);
    const size_t otherSize = other.size() - endSize;
    for (wchar_t c = 1; c < 0x80; ++c) {
        // Between others, where a blank counts.
        jet::KeyBytes key;
        const wchar_t text[] = {L'0', c, L'0'};
        jet::appendTextKey(general, {text, 3}, false, key);
        const size_t size = key.size() - 2 * otherSize - endSize;
        const bool isPlain = key[key.size() - endSize] == other[otherSize] &&
                             std::equal(other.begin(), other.end(), key.end() - other.size());
        if (isPlain && (size == 1 || size == 2)) {
            const uint8_t* bytes = key.data() + otherSize;
            weights[static_cast<size_t>(c)] =
                static_cast<uint16_t>(bytes[0] << 8 | (size == 2 ? bytes[1] : 0));
        }
    }
    return weights;
}

const PlainWeights& plainWeights() {
    static const PlainWeights weights = makeWeights();
    return weights;
}

uint16_t weightOf(const PlainWeights& weights, char c) {
    return weights[static_cast<unsigned char>(c)];
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

bool isAscii(std::string_view text) {
    uint8_t all = 0;
    for (const char c : text) {
        all |= static_cast<uint8_t>(c);
    }
    return all < 0x80;
}

int compareByKeys(std::string_view a, std::string_view b) {
    const auto order = jet::compareTexts(fromUtf8(a), fromUtf8(b));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

class Hash {
  public:
    void add(uint8_t byte) { value_ = (value_ ^ byte) * 0x100000001b3u; }
    uint64_t value() const { return value_; }

  private:
    uint64_t value_ = 0xcbf29ce484222325u;
};

}  // namespace

// The first character that differs decides where both that one and all before it are plain: what
// comes behind can only add to the keys there, unless it has no weight.
int compareTexts(std::string_view a, std::string_view b) {
    const PlainWeights& weights = plainWeights();
    a = withoutBlanks(a);
    b = withoutBlanks(b);
    const size_t common = std::min(a.size(), b.size());
    size_t at = 0;
    uint16_t x = 0;
    uint16_t y = 0;
    for (; at < common; ++at) {
        x = weightOf(weights, a[at]);
        y = weightOf(weights, b[at]);
        if (x != y || x == 0) {
            break;
        }
    }
    if (at >= jet::kIndexedTextUnits) {
        return compareByKeys(a, b);
    }
    if (at == a.size() || at == b.size()) {
        constexpr uint16_t end = 1;  // below every weight
        x = at < a.size() ? weightOf(weights, a[at]) : end;
        y = at < b.size() ? weightOf(weights, b[at]) : end;
    }
    if (x == 0 || y == 0 || !isAscii(a.substr(at)) || !isAscii(b.substr(at))) {
        return compareByKeys(a, b);
    }
    return x < y ? -1 : x > y ? 1 : 0;
}

// Of the bytes of the key.
uint64_t hashOf(std::string_view text) {
    const PlainWeights& weights = plainWeights();
    text = withoutBlanks(text);
    Hash hash;
    const bool isPlain =
        text.size() <= jet::kIndexedTextUnits &&
        std::all_of(text.begin(), text.end(), [&](char c) { return weightOf(weights, c) != 0; });
    if (isPlain) {
        for (const char c : text) {
            const uint16_t weight = weightOf(weights, c);
            hash.add(static_cast<uint8_t>(weight >> 8));
            if ((weight & 0xff) != 0) {
                hash.add(static_cast<uint8_t>(weight));
            }
        }
        return hash.value();
    }
    jet::KeyBytes key;
    jet::appendTextKey(general, fromUtf8(text), false, key);
    // Without the end, which the bytes of plain texts are without.
    if (key.size() >= endSize && key[key.size() - endSize] == 1) {
        key.resize(key.size() - endSize);
    }
    for (const uint8_t byte : key) {
        hash.add(byte);
    }
    return hash.value();
}

std::string_view keptByKeys(std::string_view text) {
    const PlainWeights& weights = plainWeights();
    const auto end =
        std::find_if(text.begin(), text.end(), [&](char c) { return weightOf(weights, c) == 0; });
    return withoutBlanks(text.substr(0, static_cast<size_t>(end - text.begin())));
}

}  // namespace sg::sql

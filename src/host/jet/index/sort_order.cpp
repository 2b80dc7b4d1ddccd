#include "host/jet/index/sort_order.h"

#include <algorithm>
#include <memory>

#include "base/text.h"
#include "host/jet/index/sort_order_general97.h"
#include "host/jet/index/sort_order_table.h"

namespace sg::jet {

namespace {

constexpr uint16_t kGeneralLanguage = 0x0409;

constexpr uint8_t kEndOfText = 0x01;   // ends the inline bytes, and each further section
constexpr uint8_t kEndOfKey = 0x00;    // ends the whole key
constexpr uint8_t kPlainExtra = 0x02;  // extra byte of a character that has none
constexpr uint8_t kPlainKana = 0x03;   // kana flag that need not be written at the end
constexpr uint8_t kKanaPrefix = 0x80;  // high bits of a byte of three kana flags
constexpr uint8_t kKanaEnd[] = {0xFF, 0x02, 0x80, 0xFF, 0x80};
constexpr uint8_t kKanaMore = 0xFF;     // kana section followed by unprintable characters
constexpr uint8_t kPositionEnd = 0x06;  // between an unprintable character's position and code
constexpr unsigned kPositionFlag = 0x8000;
constexpr unsigned kPositionStart = 7;
constexpr unsigned kPositionStep = 4;

constexpr unsigned kFirstSurrogate = 0xD800;
constexpr unsigned kPastSurrogates = 0xE000;
constexpr unsigned kPastTable = 0x10000;

// Two-byte weights leave out 00 and 01 as a low byte, which would read as an end.
constexpr unsigned kPageWeights = 254;

struct Weight {
    uint16_t value = 0;  // as it stands in the key
    uint8_t classIndex = 0;
};

// The packed runs laid out, one weight a character.
class Weights {
  public:
    explicit Weights(const WeightTable& table)
        : table_(table), weights_(std::make_unique<Weight[]>(kPastTable)) {
        unsigned character = 0;
        for (uint32_t run : table.runs)
            character = layOut(run, character);
    }

    const Weight& operator[](wchar_t c) const { return weights_[static_cast<size_t>(c)]; }
    const WeightClass& classOf(const Weight& weight) const {
        return table_.classes[weight.classIndex];
    }
    const WideWeight& wide(const Weight& weight) const { return table_.wide[weight.value]; }

  private:
    unsigned layOut(uint32_t run, unsigned character) {
        const auto classIndex = static_cast<uint8_t>(run >> 8);
        const RunShape& shape = table_.shapes[run & 0xFF];
        const bool paged = table_.classes[classIndex].inlineLength == 2;
        unsigned value = run >> 16;
        for (unsigned i = 0; i < shape.count && character < kPastTable; ++i, value += shape.step) {
            const unsigned bytes =
                paged ? (value / kPageWeights) << 8 | (value % kPageWeights + 2) : value;
            weights_[character] = {static_cast<uint16_t>(bytes), classIndex};
            if (++character == kFirstSurrogate) character = kPastSurrogates;
        }
        return character;
    }

    const WeightTable& table_;
    std::unique_ptr<Weight[]> weights_;
};

const Weights& weights() {
    static const Weights laidOut(generalLegacyWeights());
    return laidOut;
}

bool hasWeight(wchar_t c) {
    const auto code = static_cast<unsigned long>(c);
    return code < kPastTable && (code < kFirstSurrogate || code >= kPastSurrogates);
}

// Builds the sections of one text's key: inline bytes go straight to the key, the others are kept
// until the inline bytes have ended.
class LegacyKey {
  public:
    explicit LegacyKey(KeyBytes& key) : key_(key) {}

    void add(wchar_t c) {
        const Weights& all = weights();
        const Weight& weight = all[c];
        const WeightClass& kind = all.classOf(weight);
        switch (kind.kind) {
            case WeightKind::Ignored:
                break;
            case WeightKind::Simple:
                addInline(weight.value, kind.inlineLength);
                break;
            case WeightKind::Unprintable:
                addUnprintable(static_cast<uint8_t>(weight.value));
                break;
            case WeightKind::Accent:
                addAccent(static_cast<uint8_t>(weight.value));
                break;
            case WeightKind::International:
            case WeightKind::Kana:
                if (kind.extra != 0) addExtra({&kind.extra, 1});
                if (kind.kind == WeightKind::Kana) kanaFlags_.push_back(kind.flag);
                addInline(weight.value, kind.inlineLength);
                break;
            case WeightKind::Wide:
                addWide(all.wide(weight));
                break;
        }
    }

    void finish() {
        key_.push_back(kEndOfText);
        while (!extra_.empty() && extra_.back() <= kPlainExtra)
            extra_.pop_back();
        key_.insert(key_.end(), extra_.begin(), extra_.end());
        if (!kanaFlags_.empty() || !unprintable_.empty()) {
            key_.insert(key_.end(), 2, kEndOfText);
            writeKana();
            writeUnprintable();
        }
    }

  private:
    void addInline(uint16_t value, uint8_t length) {
        if (length == 2) key_.push_back(static_cast<uint8_t>(value >> 8));
        key_.push_back(static_cast<uint8_t>(value));
        ++characters_;
    }

    void addWide(const WideWeight& wide) {
        if (wide.extraLength != 0) addExtra({wide.extraBytes, wide.extraLength});
        key_.insert(key_.end(), wide.inlineBytes, wide.inlineBytes + wide.inlineLength);
        ++characters_;
    }

    void fillExtra() {
        if (extraCharacters_ >= characters_) return;
        extra_.insert(extra_.end(), characters_ - extraCharacters_, kPlainExtra);
        extraCharacters_ = characters_;
    }

    void addExtra(std::span<const uint8_t> bytes) {
        fillExtra();
        extra_.insert(extra_.end(), bytes.begin(), bytes.end());
        ++extraCharacters_;
    }

    // An accent with nothing before it stands alone, and is not counted in positions.
    void addAccent(uint8_t code) {
        fillExtra();
        if (extra_.empty()) {
            extra_.push_back(code);
            leadingAccent_ = 1;
        } else {
            extra_.back() = static_cast<uint8_t>(extra_.back() + code);
        }
    }

    // Positions count extra bytes, also those that are dropped when the key is finished.
    void addUnprintable(uint8_t code) {
        const size_t position = extra_.size() + characters_ - extraCharacters_ - leadingAccent_;
        const unsigned coded =
            (kPositionStart + kPositionStep * static_cast<unsigned>(position)) | kPositionFlag;
        const uint8_t bytes[] = {static_cast<uint8_t>(coded >> 8), static_cast<uint8_t>(coded),
                                 kPositionEnd, code};
        unprintable_.insert(unprintable_.end(), std::begin(bytes), std::end(bytes));
    }

    // Three flags of two bits a byte, from the high end.
    void writeKana() {
        if (kanaFlags_.empty()) return;
        while (!kanaFlags_.empty() && kanaFlags_.back() == kPlainKana)
            kanaFlags_.pop_back();
        for (size_t i = 0; i < kanaFlags_.size(); i += 3) {
            unsigned packed = kKanaPrefix;
            for (size_t j = 0; j < 3 && i + j < kanaFlags_.size(); ++j)
                packed |= static_cast<unsigned>(kanaFlags_[i + j]) << (2 * (2 - j));
            key_.push_back(static_cast<uint8_t>(packed));
        }
        key_.insert(key_.end(), std::begin(kKanaEnd), std::end(kKanaEnd));
        if (!unprintable_.empty()) key_.push_back(kKanaMore);
    }

    void writeUnprintable() {
        if (unprintable_.empty()) return;
        key_.push_back(kEndOfText);
        key_.insert(key_.end(), unprintable_.begin(), unprintable_.end());
    }

    KeyBytes& key_;
    size_t characters_ = 0;       // with inline bytes
    size_t extraCharacters_ = 0;  // of those, the ones that extra_ covers
    size_t leadingAccent_ = 0;    // bytes of extra_ before the first character's
    KeyBytes extra_;
    KeyBytes unprintable_;
    KeyBytes kanaFlags_;
};

std::wstring_view indexedPart(std::wstring_view text) {
    text = text.substr(0, kIndexedTextUnits);
    while (!text.empty() && text.back() == L' ')
        text.remove_suffix(1);
    return text;
}

void invert(KeyBytes& key, size_t from) {
    for (size_t i = from; i < key.size(); ++i)
        key[i] = static_cast<uint8_t>(~key[i]);
}

}  // namespace

TextOrder textOrder(uint16_t language, uint8_t version) {
    const bool general = language == kGeneralLanguage || language == 0;
    return general && version == 0 ? TextOrder::GeneralLegacy : TextOrder::Unknown;
}

bool appendTextKey(TextOrder order, std::wstring_view text, bool descending, KeyBytes& key) {
    text = indexedPart(text);
    const size_t start = key.size();
    switch (order) {
        case TextOrder::General97:
            appendGeneral97Key(text, key);
            if (descending) invert(key, start);
            return true;
        case TextOrder::GeneralLegacy: {
            if (!std::all_of(text.begin(), text.end(), hasWeight)) return false;
            LegacyKey builder(key);
            for (wchar_t c : text)
                builder.add(c);
            builder.finish();
            break;
        }
        case TextOrder::Unknown:
            return false;
    }
    // A descending key has an end byte that is inverted with the rest, and one after it.
    if (descending) {
        key.push_back(kEndOfKey);
        invert(key, start);
    }
    key.push_back(kEndOfKey);
    return true;
}

namespace {

// Texts of these characters alone sort by their capitals.
bool isSimple(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

std::weak_ordering compareCapitals(std::wstring_view a, std::wstring_view b) {
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const wchar_t x = toUpper(a[i]);
        const wchar_t y = toUpper(b[i]);
        if (x != y) return x <=> y;
    }
    return a.size() <=> b.size();
}

std::wstring_view withoutBlanks(std::wstring_view text) {
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

}  // namespace

std::weak_ordering compareTexts(std::wstring_view a, std::wstring_view b) {
    a = withoutBlanks(a);
    b = withoutBlanks(b);
    if (std::all_of(a.begin(), a.end(), isSimple) && std::all_of(b.begin(), b.end(), isSimple)) {
        return compareCapitals(a, b);
    }
    KeyBytes left;
    KeyBytes right;
    const bool hasLeft = appendTextKey(TextOrder::GeneralLegacy, a, false, left);
    const bool hasRight = appendTextKey(TextOrder::GeneralLegacy, b, false, right);
    if (hasLeft != hasRight) {
        return hasLeft ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    const bool areWhole = a.size() < kIndexedTextUnits && b.size() < kIndexedTextUnits;
    if (hasLeft && (left != right || areWhole)) return left <=> right;
    return compareCapitals(a, b);
}

}  // namespace sg::jet

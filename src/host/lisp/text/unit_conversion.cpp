#include <algorithm>
#include <cmath>
#include <vector>

#include "base/text.h"
#include "host/lisp/text/numbers.h"
#include "host/lisp/text/unit_table.h"
#include "host/lisp/text/units.h"

namespace sg {

namespace {

// A unit or an expression of units.
struct Measure {
    long double factor = 1;
    Dimension dimension;
    const Unit* scale = nullptr;  // the unit when it stands alone, with no exponent

    Measure power(int n) const {
        return {std::pow(factor, static_cast<long double>(n)), dimension.power(n),
                n == 1 ? scale : nullptr};
    }
    Measure times(const Measure& other) const {
        return {factor * other.factor, dimension * other.dimension, nullptr};
    }
};

struct Token {
    enum Kind { Word, Power, Times, Over };
    Kind kind;
    std::wstring word;
    int exponent = 1;
};

constexpr int kMaxExponent = 9;

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool isWordCharacter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || isDigit(c) || (c > 0x80 && !isBlank(c));
}

Token wordToken(std::wstring_view word) {
    if (word == L"per") return {Token::Over, {}};
    if (word == L"squared") return {Token::Power, {}, 2};
    if (word == L"cubed") return {Token::Power, {}, 3};
    return {Token::Word, std::wstring(word)};
}

// Splits a lower-case expression; nothing when a character or an exponent is not allowed.
std::optional<std::vector<Token>> tokensOf(std::wstring_view text) {
    std::vector<Token> tokens;
    for (size_t at = 0; at < text.size();) {
        const wchar_t c = text[at];
        size_t end = at + 1;
        if (isWordCharacter(c)) {
            while (end < text.size() && isWordCharacter(text[end]))
                ++end;
            tokens.push_back(wordToken(text.substr(at, end - at)));
        } else if (c == L'^') {
            if (end < text.size() && text[end] == L'-') ++end;
            if (end >= text.size() || !isDigit(text[end])) return std::nullopt;
            const int exponent = parseInteger(text.substr(at + 1));
            if (std::abs(exponent) > kMaxExponent) return std::nullopt;
            while (end < text.size() && isDigit(text[end]))
                ++end;
            tokens.push_back({Token::Power, {}, exponent});
        } else if (c == L'*' || c == L'/') {
            tokens.push_back({c == L'*' ? Token::Times : Token::Over, {}});
        } else if (!isBlank(c) && c != L'_' && c != L'-' && c != L'.') {
            return std::nullopt;
        }
        at = end;
    }
    return tokens;
}

struct Prefix {
    std::wstring_view name;
    long double factor;
};

constexpr Prefix kPrefixes[] = {
    {L"deca", 1e1L},   {L"deka", 1e1L},   {L"hecto", 1e2L}, {L"kilo", 1e3L},   {L"mega", 1e6L},
    {L"giga", 1e9L},   {L"tera", 1e12L},  {L"peta", 1e15L}, {L"deci", 1e-1L},  {L"centi", 1e-2L},
    {L"milli", 1e-3L}, {L"micro", 1e-6L}, {L"nano", 1e-9L}, {L"pico", 1e-12L},
};

std::optional<Measure> measureOfName(std::wstring_view name) {
    if (const Unit* unit = findUnit(name)) return Measure{unit->factor, unit->dimension, unit};
    constexpr size_t kShortestFullName = 3;
    for (const Prefix& prefix : kPrefixes) {
        if (!name.starts_with(prefix.name)) continue;
        const std::wstring_view rest = name.substr(prefix.name.size());
        const Unit* unit = rest.size() >= kShortestFullName ? findUnit(rest) : nullptr;
        if (unit && unit->takesPrefixes) {
            return Measure{prefix.factor * unit->factor, unit->dimension, nullptr};
        }
    }
    return std::nullopt;
}

// The power that a word gives to the unit after it; 0 for any other word.
int powerOfWord(std::wstring_view word) {
    if (word == L"sq" || word == L"square") return 2;
    if (word == L"cu" || word == L"cubic") return 3;
    return 0;
}

// A name, or one written together with a power before ("sqft") or after it ("m3").
std::optional<Measure> measureOfWord(std::wstring_view word) {
    if (const auto measure = measureOfName(word)) return measure;
    if (word.size() > 1 && isDigit(word.back()) && !isDigit(word[word.size() - 2])) {
        const auto measure = measureOfName(word.substr(0, word.size() - 1));
        if (measure) return measure->power(word.back() - L'0');
    }
    if (word.size() > 2 && powerOfWord(word.substr(0, 2)) != 0) {
        const auto measure = measureOfName(word.substr(2));
        if (measure) return measure->power(powerOfWord(word.substr(0, 2)));
    }
    return std::nullopt;
}

class ExpressionReader {
  public:
    explicit ExpressionReader(const std::vector<Token>& tokens) : tokens_(tokens) {}

    std::optional<Measure> read();

  private:
    bool isAt(Token::Kind kind) const { return at_ < tokens_.size() && tokens_[at_].kind == kind; }
    std::optional<Measure> readProduct();
    std::optional<Measure> readPower();
    std::optional<Measure> readLongestName();

    const std::vector<Token>& tokens_;
    size_t at_ = 0;
};

// Products with "*" or "/" between them.
std::optional<Measure> ExpressionReader::read() {
    auto result = readProduct();
    while (result && at_ < tokens_.size()) {
        const bool isOver = isAt(Token::Over);
        if (!isOver && !isAt(Token::Times)) return std::nullopt;
        ++at_;
        const auto next = readProduct();
        if (!next) return std::nullopt;
        result = result->times(isOver ? next->power(-1) : *next);
    }
    return result;
}

// Units side by side.
std::optional<Measure> ExpressionReader::readProduct() {
    auto result = readPower();
    while (result && isAt(Token::Word)) {
        const auto next = readPower();
        if (!next) return std::nullopt;
        result = result->times(*next);
    }
    return result;
}

std::optional<Measure> ExpressionReader::readPower() {
    int power = 1;
    if (isAt(Token::Word) && powerOfWord(tokens_[at_].word) != 0) {
        power = powerOfWord(tokens_[at_++].word);
    }
    auto result = readLongestName();
    if (result && isAt(Token::Power)) power *= tokens_[at_++].exponent;
    if (result) result = result->power(power);
    return result;
}

// The unit with the name of the most words: "foot pound" is an energy, no foot times a pound.
std::optional<Measure> ExpressionReader::readLongestName() {
    constexpr size_t kMostWords = 4;
    size_t end = at_;
    while (end < tokens_.size() && end < at_ + kMostWords && tokens_[end].kind == Token::Word) {
        ++end;
    }
    for (; end > at_; --end) {
        std::wstring name = tokens_[at_].word;
        for (size_t i = at_ + 1; i < end; ++i)
            name += L'_' + tokens_[i].word;
        if (const auto measure = measureOfWord(name)) {
            at_ = end;
            return measure;
        }
    }
    return std::nullopt;
}

std::optional<Measure> measureOf(std::wstring_view text) {
    const auto tokens = tokensOf(lowerCased(text));
    return tokens ? ExpressionReader(*tokens).read() : std::nullopt;
}

bool isTemperatureScale(const Measure& measure) {
    return measure.scale && measure.dimension == Dimension::of(Dimension::Temperature);
}

}  // namespace

std::optional<double> convertUnit(double value, std::wstring_view from, std::wstring_view to) {
    const auto source = measureOf(from);
    const auto target = measureOf(to);
    if (!source || !target || source->dimension != target->dimension) return std::nullopt;

    long double sourceZero = 0;
    long double targetZero = 0;
    if (isTemperatureScale(*source) && isTemperatureScale(*target)) {
        sourceZero = source->scale->freezingPoint;
        targetZero = target->scale->freezingPoint;
    }
    // Extended precision keeps exact factors exact: 1 acre is 4840 square yards, with no rest.
    const long double ratio = source->factor / target->factor;
    const auto result = static_cast<double>((value - sourceZero) * ratio + targetZero);
    if (!std::isfinite(result)) return std::nullopt;
    return result;
}

}  // namespace sg

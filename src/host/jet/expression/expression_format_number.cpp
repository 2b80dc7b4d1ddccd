// Patterns of numbers.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "base/text.h"
#include "host/jet/expression/expression_format.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

// One element of a section.
struct Element {
    enum class Kind { Literal, Zero, Hash, Point, Exponent };
    Kind kind = Kind::Literal;
    wchar_t character = 0;  // Literal: itself; Exponent: E or e
    bool plus = false;      // Exponent: a sign also when it isn't negative
    int digits = 0;         // Exponent: at least so many
};

// A section taken apart.
struct Section {
    std::vector<Element> elements;
    int whole = 0;         // places before the point
    int fraction = 0;      // behind it
    int fractionKept = 0;  // behind it, up to the last "0"
    int hundreds = 0;      // "%"
    int thousands = 0;     // "," behind the last place
    bool groups = false;
    bool hasExponent = false;

    bool hasPlaces() const { return whole + fraction > 0; }
};

// Digits with a point somewhere: 0.DIGITS * 10^point. No zeros at either end; zero has no digits.
struct Digits {
    bool negative = false;
    std::string digits;  // characters
    int point = 0;

    void trim() {
        const size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
        digits.erase(0, zeros);
        point -= static_cast<int>(zeros);
        digits.erase(digits.find_last_not_of('0') + 1);
    }
    char at(int place) const {  // 0 is the first digit
        return place >= 0 && place < static_cast<int>(digits.size())
                   ? digits[static_cast<size_t>(place)]
                   : '0';
    }
    // Keeps `count` digits, rounding half away from zero.
    void keep(int count);
};

void Digits::keep(int count) {
    if (count >= static_cast<int>(digits.size())) {
        return;
    }
    const bool up = count >= 0 && digits[static_cast<size_t>(count)] >= '5';
    digits.erase(static_cast<size_t>(std::max(count, 0)));
    if (up) {
        size_t i = digits.size();
        while (i > 0 && digits[i - 1] == '9') {
            digits[--i] = '0';
        }
        if (i > 0) {
            ++digits[i - 1];
        } else {
            digits.insert(0, 1, '1');
            ++point;
        }
    }
    trim();
}

// All digits of a Currency and a Decimal, the 15 that count of everything else.
Digits digitsOf(const Value& value) {
    std::wstring exact;
    if (const auto* currency = std::get_if<Currency>(&value)) {
        exact = sg::jet::toText(*currency);
    } else if (const auto* decimal = std::get_if<Decimal>(&value)) {
        exact = sg::jet::toText(*decimal);
    }
    Digits result;
    if (!exact.empty()) {
        result.negative = exact[0] == L'-';
        const size_t start = result.negative ? 1 : 0;
        const size_t point = std::min(exact.find(L'.'), exact.size());
        result.point = static_cast<int>(point - start);
        for (size_t i = start; i < exact.size(); ++i) {
            if (i != point) {
                result.digits += static_cast<char>(exact[i]);
            }
        }
    } else {
        const double number = numberOf(value);
        char text[40] = {};  // D.DDDDDDDDDDDDDDe+XX
        std::to_chars(text, text + sizeof text - 1, std::abs(number), std::chars_format::scientific,
                      14);
        result.negative = number < 0;
        result.digits = std::string(1, text[0]) + std::string(text + 2, 14);
        result.point = std::atoi(text + 17) + 1;
    }
    result.trim();
    return result;
}

// --- taking a pattern apart ---

class SectionReader {
  public:
    explicit SectionReader(std::wstring_view pattern) : pattern_(pattern) {}

    Section read() {
        for (size_t at = 0; at < pattern_.size();) {
            at = element(at);
        }
        section_.thousands = commas_;
        return std::move(section_);
    }

  private:
    size_t element(size_t at);
    void place(Element::Kind kind);
    size_t exponent(size_t at);
    void literals(std::wstring_view text) {
        for (const wchar_t c : text) {
            section_.elements.push_back({Element::Kind::Literal, c});
        }
    }

    std::wstring_view pattern_;
    Section section_;
    bool behindPoint_ = false;
    int commas_ = 0;  // since the last place before the point
};

// "0" or "#".
void SectionReader::place(Element::Kind kind) {
    section_.elements.push_back({kind});
    if (behindPoint_) {
        ++section_.fraction;
        if (kind == Element::Kind::Zero) {
            section_.fractionKept = section_.fraction;
        }
        return;
    }
    // Commas between places group the digits.
    section_.groups = section_.groups || (commas_ > 0 && section_.whole > 0);
    commas_ = 0;
    ++section_.whole;
}

// "E+00" and its kin, which answers where it ends; a lone "E" is a literal.
size_t SectionReader::exponent(size_t at) {
    const wchar_t sign = at + 1 < pattern_.size() ? pattern_[at + 1] : L'\0';
    if ((sign != L'+' && sign != L'-') || section_.hasExponent || !section_.hasPlaces()) {
        literals(pattern_.substr(at, 1));
        return at + 1;
    }
    Element element{Element::Kind::Exponent, pattern_[at], sign == L'+'};
    for (at += 2; at < pattern_.size() && (pattern_[at] == L'0' || pattern_[at] == L'#'); ++at) {
        element.digits += pattern_[at] == L'0' ? 1 : 0;
    }
    section_.elements.push_back(element);
    section_.hasExponent = true;
    return at;
}

size_t SectionReader::element(size_t at) {
    const wchar_t c = pattern_[at];
    const size_t end = formatElementEnd(pattern_, at);
    switch (c) {
        case L'0':
            place(Element::Kind::Zero);
            break;
        case L'#':
            place(Element::Kind::Hash);
            break;
        case L'.':
            if (behindPoint_) {
                literals(L".");
            } else {
                section_.elements.push_back({Element::Kind::Point});
                behindPoint_ = true;
            }
            break;
        case L',':
            commas_ += behindPoint_ || section_.whole == 0 ? 0 : 1;
            break;
        case L'%':
            ++section_.hundreds;
            literals(L"%");
            break;
        case L'E':
        case L'e':
            return exponent(at);
        case L'"':
            literals(pattern_.substr(at + 1, end - at - (pattern_[end - 1] == L'"' ? 2 : 1)));
            break;
        case L'\\':
            literals(pattern_.substr(at + 1, end - at - 1));
            break;
        default:
            literals(pattern_.substr(at, 1));
            break;
    }
    return end;
}

// --- putting digits into a section ---

class Writer {
  public:
    Writer(const Section& section, Digits digits) : section_(section), digits_(std::move(digits)) {}

    std::wstring write();

  private:
    void scale();
    void wholePlace(Element::Kind kind, int place);
    void wholeDigit(int fromRight);
    void fractionPlace(int place);
    void exponent(const Element& element);

    const Section& section_;
    Digits digits_;
    int exponent_ = 0;
    bool anyWhole_ = false;  // a digit before the point is written
    std::wstring text_;
};

// Shifts the point for percents, thousands and the exponent, and rounds.
void Writer::scale() {
    if (!digits_.digits.empty()) {
        digits_.point += 2 * section_.hundreds - 3 * section_.thousands;
    }
    if (!section_.hasExponent) {
        digits_.keep(digits_.point + section_.fraction);
    } else if (!digits_.digits.empty()) {
        exponent_ = digits_.point - section_.whole;
        digits_.point = section_.whole;
        digits_.keep(section_.whole + section_.fraction);
        exponent_ += digits_.point - section_.whole;  // 9.99 may have become 10.0
        digits_.point = section_.whole;
    }
    if (digits_.digits.empty()) {
        digits_.point = 0;
    }
}

void Writer::wholeDigit(int fromRight) {
    text_ += static_cast<wchar_t>(digits_.at(digits_.point - 1 - fromRight));
    anyWhole_ = true;
    if (section_.groups && fromRight > 0 && fromRight % 3 == 0) {
        text_ += L',';
    }
}

// The first place also takes the digits that have no place of their own.
void Writer::wholePlace(Element::Kind kind, int place) {
    const int fromRight = section_.whole - 1 - place;
    if (place == 0) {
        for (int i = digits_.point - 1; i > fromRight; --i) {
            wholeDigit(i);
        }
    }
    if (kind == Element::Kind::Zero || anyWhole_ || fromRight < digits_.point) {
        wholeDigit(fromRight);
    }
}

void Writer::fractionPlace(int place) {
    const int last = static_cast<int>(digits_.digits.size()) - digits_.point;
    if (place < std::max(last, section_.fractionKept)) {
        text_ += static_cast<wchar_t>(digits_.at(digits_.point + place));
    }
}

void Writer::exponent(const Element& element) {
    text_ += element.character;
    if (exponent_ < 0) {
        text_ += L'-';
    } else if (element.plus) {
        text_ += L'+';
    }
    const std::wstring digits = std::to_wstring(std::abs(exponent_));
    const auto missing = element.digits - static_cast<int>(digits.size());
    text_.append(static_cast<size_t>(std::max(missing, 0)), L'0').append(digits);
}

std::wstring Writer::write() {
    scale();
    int place = 0;
    for (const Element& element : section_.elements) {
        switch (element.kind) {
            case Element::Kind::Zero:
            case Element::Kind::Hash:
                if (place < section_.whole) {
                    wholePlace(element.kind, place);
                } else {
                    fractionPlace(place - section_.whole);
                }
                ++place;
                break;
            case Element::Kind::Literal:
                text_ += element.character;
                break;
            case Element::Kind::Point:
                if (section_.whole == 0) {  // the digits before the point have no place at all
                    for (int i = digits_.point - 1; i >= 0; --i) {
                        wholeDigit(i);
                    }
                }
                text_ += L'.';
                break;
            case Element::Kind::Exponent:
                exponent(element);
                break;
        }
    }
    return text_;
}

// Whether rounding to the section's places leaves nothing.
bool vanishes(const Section& section, Digits digits) {
    if (section.hasExponent) {
        return digits.digits.empty();
    }
    digits.keep(digits.point + 2 * section.hundreds - 3 * section.thousands + section.fraction);
    return digits.digits.empty();
}

}  // namespace

std::wstring formattedNumber(const Value& value, std::wstring_view pattern) {
    const std::vector<std::wstring_view> sections = formatSections(pattern);
    const auto has = [&](size_t place) {
        return place < sections.size() && !sections[place].empty();
    };
    if (isNull(value)) {
        return has(3) ? Writer(SectionReader(sections[3]).read(), {}).write() : std::wstring();
    }
    Digits digits = digitsOf(value);
    const bool isZero = digits.digits.empty();
    const size_t which = isZero && has(2) ? 2 : digits.negative && !isZero && has(1) ? 1 : 0;
    const Section section = SectionReader(sections[which]).read();
    // The section for negative numbers has its own signs.
    const bool sign =
        digits.negative && which == 0 && section.hasPlaces() && !vanishes(section, digits);
    return (sign ? L"-" : L"") + Writer(section, std::move(digits)).write();
}

}  // namespace sg::jet::detail

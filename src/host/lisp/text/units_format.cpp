#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "host/lisp/text/numbers.h"
#include "host/lisp/text/units.h"

namespace sg {

namespace {

constexpr int kMaxDecimals = 16;
constexpr int kMaxFractionPower = 8;

// Digits written beyond the last one wanted. They stand in for the exact value: a double that lies
// next to a tie differs from it well before them.
constexpr size_t kGuardDigits = 40;

// Adds one to the last digit of a number that may have a point.
void increment(std::wstring& digits) {
    for (size_t at = digits.size(); at-- > 0;) {
        if (digits[at] == L'.') continue;
        if (digits[at] != L'9') {
            ++digits[at];
            return;
        }
        digits[at] = L'0';
    }
    digits.insert(0, L"1");
}

// Takes the guard digits off again and rounds half up: the C library would round half to even, but
// 2.5 is expected to become 3.
void roundOffGuardDigits(std::wstring& digits) {
    const size_t end = digits.size() - kGuardDigits;
    const bool up = digits[end] >= L'5';
    digits.resize(end);
    if (digits.back() == L'.') digits.pop_back();
    if (up) increment(digits);
}

std::wstring written(double magnitude, std::chars_format format, int places) {
    char buffer[512];  // the largest double has 309 digits before its point
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, magnitude, format,
                                   places + static_cast<int>(kGuardDigits));
    return std::wstring(buffer, end.ptr);
}

std::wstring fixedText(double magnitude, int places) {
    std::wstring text = written(magnitude, std::chars_format::fixed, places);
    roundOffGuardDigits(text);
    return text;
}

bool isZeroText(std::wstring_view text) {
    return text.find_first_of(L"123456789") == std::wstring_view::npos;
}

// Leaves out the zeros that DIMZIN does not want in a decimal number.
std::wstring withoutZeros(std::wstring text, int dimzin) {
    if ((dimzin & 8) != 0 && text.find(L'.') != std::wstring::npos) {
        text.resize(text.find_last_not_of(L'0') + 1);
        if (text.back() == L'.') text.pop_back();
    }
    if ((dimzin & 4) != 0 && text.starts_with(L"0.")) text.erase(0, 1);
    return text;
}

std::wstring scientificText(double magnitude, int places, int dimzin) {
    const std::wstring text = written(magnitude, std::chars_format::scientific, places);
    const size_t mark = text.find(L'e');
    std::wstring mantissa = text.substr(0, mark);
    int exponent = parseInteger(std::wstring_view(text).substr(mark + 1));
    roundOffGuardDigits(mantissa);
    if (mantissa.starts_with(L"10")) {
        mantissa = fixedText(1, places);
        ++exponent;
    }
    const std::wstring digits = std::to_wstring(std::abs(exponent));
    return withoutZeros(mantissa, dimzin) + (exponent < 0 ? L"E-" : L"E+") +
           (digits.size() < 2 ? L"0" : L"") + digits;
}

// A number of whole units and of parts, 2^power of which make a unit.
struct Fraction {
    double whole;
    int numerator;
    int denominator;
};

Fraction nearestFraction(double magnitude, int power) {
    const int denominator = 1 << power;
    // Beyond this every double is whole, and multiplying might overflow.
    if (magnitude >= 0x1p52) return {magnitude, 0, 1};
    const double parts = std::round(magnitude * denominator);
    const double whole = std::floor(parts / denominator);
    Fraction fraction{whole, static_cast<int>(parts - whole * denominator), denominator};
    while (fraction.numerator != 0 && fraction.numerator % 2 == 0) {
        fraction.numerator /= 2;
        fraction.denominator /= 2;
    }
    return fraction;
}

std::wstring fractionText(const Fraction& fraction, bool writeZeroWhole, int unitmode) {
    std::wstring text;
    if (fraction.whole != 0 || fraction.numerator == 0 || writeZeroWhole) {
        text = fixedText(fraction.whole, 0);
    }
    if (fraction.numerator == 0) return text;
    if (!text.empty()) text += unitmode == 1 ? L'-' : L' ';
    return text + std::to_wstring(fraction.numerator) + L'/' +
           std::to_wstring(fraction.denominator);
}

struct FeetAndInchesShown {
    bool feet;
    bool inches;
};

FeetAndInchesShown shownFeetAndInches(bool feetAreZero, bool inchesAreZero, int dimzin) {
    const int rule = dimzin & 3;
    const bool feet = !feetAreZero || rule == 1 || rule == 2;
    const bool inches = !inchesAreZero || rule == 1 || rule == 3;
    return {feet, inches || !feet};
}

std::wstring feetAndInchesText(double feet, const std::wstring& inches,
                               const FeetAndInchesShown& shown, int unitmode) {
    std::wstring text;
    if (shown.feet) text = fixedText(feet, 0) + L'\'';
    if (!shown.inches) return text;
    if (shown.feet && unitmode != 1) text += L'-';
    return text + inches + L'"';
}

std::wstring engineeringText(double magnitude, int places, const UnitSettings& settings) {
    double feet = std::floor(magnitude / 12);
    std::wstring inches = fixedText(std::fmod(magnitude, 12.0), places);
    if (inches.starts_with(L"12")) {
        ++feet;
        inches = fixedText(0, places);
    }
    const auto shown = shownFeetAndInches(feet == 0, isZeroText(inches), settings.dimzin);
    return feetAndInchesText(feet, withoutZeros(inches, settings.dimzin), shown, settings.unitmode);
}

std::wstring architecturalText(double magnitude, int power, const UnitSettings& settings) {
    Fraction fraction = nearestFraction(magnitude, power);
    const double feet = std::floor(fraction.whole / 12);
    fraction.whole = std::fmod(fraction.whole, 12.0);
    const bool inchesAreZero = fraction.whole == 0 && fraction.numerator == 0;
    const auto shown = shownFeetAndInches(feet == 0, inchesAreZero, settings.dimzin);
    return feetAndInchesText(feet, fractionText(fraction, shown.feet, settings.unitmode), shown,
                             settings.unitmode);
}

std::wstring magnitudeText(double magnitude, int mode, int precision,
                           const UnitSettings& settings) {
    const int places = std::clamp(precision, 0, kMaxDecimals);
    const int power = std::clamp(precision, 0, kMaxFractionPower);
    switch (mode) {
        case 1:
            return scientificText(magnitude, places, settings.dimzin);
        case 3:
            return engineeringText(magnitude, places, settings);
        case 4:
            return architecturalText(magnitude, power, settings);
        case 5:
            return fractionText(nearestFraction(magnitude, power), false, settings.unitmode);
        default:
            return withoutZeros(fixedText(magnitude, places), settings.dimzin);
    }
}

// A part of a turn as text, in a unit of which `wholeTurn` make one; the whole turn as 0.
std::wstring turnText(double turns, int wholeTurn, int places, int dimzin) {
    std::wstring text = fixedText(turns * wholeTurn, places);
    if (text == fixedText(wholeTurn, places)) text = fixedText(0, places);
    return withoutZeros(text, dimzin);
}

// An angle counted in its smallest unit: degrees, minutes, seconds or decimals of a second.
class SexagesimalAngle {
  public:
    SexagesimalAngle(double turns, int precision)
        : parts_(precision <= 0   ? 1
                 : precision <= 2 ? 2
                                  : 3),
          places_(std::clamp(precision - 4, 0, kMaxSecondPlaces)) {
        degree_ = parts_ == 1 ? 1 : parts_ == 2 ? 60 : 3600;
        for (int i = 0; i < places_; ++i)
            degree_ *= 10;
        count_ = std::llround(turns * 360 * static_cast<double>(degree_)) % (360 * degree_);
    }

    std::wstring text(int dimzin) const { return text(count_, dimzin); }
    std::wstring bearing(const UnitSettings& settings) const;

  private:
    // More decimals than a double has for a full turn.
    static constexpr int kMaxSecondPlaces = 8;

    std::wstring text(int64_t count, int dimzin) const;

    int parts_;           // 1 degrees, 2 with minutes, 3 with seconds
    int places_;          // decimals of a second
    int64_t degree_ = 1;  // smallest units in a degree
    int64_t count_ = 0;   // smallest units, less than a full turn
};

std::wstring SexagesimalAngle::text(int64_t count, int dimzin) const {
    std::wstring result = std::to_wstring(count / degree_) + L'd';
    if (parts_ == 1) return result;
    const int64_t minute = degree_ / 60;
    count %= degree_;
    result += std::to_wstring(count / minute) + L'\'';
    if (parts_ == 2) return result;
    const int64_t second = minute / 60;
    count %= minute;
    std::wstring seconds = std::to_wstring(count / second);
    if (places_ > 0) {
        const std::wstring decimals = std::to_wstring(count % second + second);
        seconds += L'.' + decimals.substr(1);
    }
    return result + withoutZeros(seconds, dimzin) + L'"';
}

std::wstring SexagesimalAngle::bearing(const UnitSettings& settings) const {
    const int64_t quarter = 90 * degree_;
    const auto quadrant = static_cast<size_t>(count_ / quarter);
    const int64_t fromItsStart = count_ % quarter;
    if (fromItsStart == 0) return std::wstring(1, L"ENWS"[quadrant]);
    // East of north and west of south the quadrant ends at the pole, in the others it starts there.
    const bool endsAtPole = quadrant % 2 == 0;
    const std::wstring space = settings.unitmode == 1 ? L"" : L" ";
    return std::wstring(1, L"NNSS"[quadrant]) + space +
           text(endsAtPole ? quarter - fromItsStart : fromItsStart, settings.dimzin) + space +
           L"EWWE"[quadrant];
}

}  // namespace

std::wstring formatDistance(double value, int mode, int precision, const UnitSettings& settings) {
    if (!std::isfinite(value)) return formatReal(value);
    const std::wstring text = magnitudeText(std::abs(value), mode, precision, settings);
    return value < 0 && !isZeroText(text) ? L'-' + text : text;
}

std::wstring formatAngle(double radians, int mode, int precision, const UnitSettings& settings) {
    constexpr double kTurn = 2 * std::numbers::pi;
    if (!std::isfinite(radians)) return formatReal(radians);
    const double counted = settings.angdir == 1 ? settings.angbase - radians  //
                                                : radians - settings.angbase;
    double reduced = std::fmod(counted, kTurn);
    if (reduced < 0) reduced += kTurn;
    const double turns = reduced / kTurn;
    const int places = std::clamp(precision, 0, kMaxDecimals);
    switch (mode) {
        case 1:
            return SexagesimalAngle(turns, precision).text(settings.dimzin);
        case 2:
            return turnText(turns, 400, places, settings.dimzin) + L'g';
        case 3:
            return withoutZeros(fixedText(reduced, places), settings.dimzin) + L'r';
        case 4:
            return SexagesimalAngle(turns, precision).bearing(settings);
        default:
            return turnText(turns, 360, places, settings.dimzin);
    }
}

}  // namespace sg

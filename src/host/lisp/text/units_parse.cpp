#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/text.h"
#include "host/lisp/text/numbers.h"
#include "host/lisp/text/units.h"

namespace sg {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// A position in a text that is read from left to right.
class Cursor {
  public:
    explicit Cursor(std::wstring_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    // The next character as a capital; 0 at the end.
    wchar_t peek() const { return rest_.empty() ? L'\0' : toUpper(rest_.front()); }

    bool take(wchar_t capital) {
        if (peek() != capital || atEnd()) return false;
        rest_.remove_prefix(1);
        return true;
    }
    bool takeBlanks() {
        const size_t before = rest_.size();
        while (!rest_.empty() && isBlank(rest_.front()))
            rest_.remove_prefix(1);
        return rest_.size() != before;
    }
    // True for a minus.
    bool takeSign() {
        if (take(L'-')) return true;
        take(L'+');
        return false;
    }
    std::optional<double> takeReal() {
        const ScannedReal scanned = scanReal(rest_);
        if (scanned.length == 0) return std::nullopt;
        rest_.remove_prefix(scanned.length);
        return scanned.value;
    }
    std::optional<double> takeWhole() {
        const size_t end = std::min(rest_.find_first_not_of(L"0123456789"), rest_.size());
        if (end == 0) return std::nullopt;
        const double value = scanReal(rest_.substr(0, end)).value;
        rest_.remove_prefix(end);
        return value;
    }

  private:
    std::wstring_view rest_;
};

// Two whole numbers with a bar between them.
std::optional<double> takeFraction(Cursor& cursor) {
    Cursor ahead = cursor;
    const auto numerator = ahead.takeWhole();
    if (!numerator || !ahead.take(L'/')) return std::nullopt;
    const auto denominator = ahead.takeWhole();
    if (!denominator || *denominator == 0) return std::nullopt;
    cursor = ahead;
    return *numerator / *denominator;
}

// A real, a fraction, or a whole number and a fraction with blanks or a hyphen between them.
std::optional<double> takeQuantity(Cursor& cursor) {
    if (const auto fraction = takeFraction(cursor)) return fraction;
    Cursor ahead = cursor;
    if (const auto whole = ahead.takeWhole()) {
        if (ahead.take(L'-') || ahead.takeBlanks()) {
            if (const auto fraction = takeFraction(ahead)) {
                cursor = ahead;
                return *whole + *fraction;
            }
        }
    }
    return cursor.takeReal();
}

std::optional<double> takeDistance(Cursor& cursor) {
    const auto first = takeQuantity(cursor);
    if (!first) return std::nullopt;
    if (!cursor.take(L'\'')) {
        cursor.take(L'"');
        return first;
    }
    if (cursor.atEnd()) return *first * 12;
    if (!cursor.take(L'-')) cursor.takeBlanks();
    const auto inches = takeQuantity(cursor);
    if (!inches) return std::nullopt;
    cursor.take(L'"');
    return *first * 12 + *inches;
}

// The minutes and seconds that may follow degrees, in degrees. The last mark may be missing.
std::optional<double> takeMinutesAndSeconds(Cursor& cursor) {
    double degrees = 0;
    double divisor = 60;  // of the part that comes next if it has no mark
    for (cursor.takeBlanks(); divisor <= 3600; cursor.takeBlanks()) {
        const auto part = cursor.takeReal();
        if (!part) break;
        if (cursor.take(L'"')) {
            divisor = 3600;
        } else if (cursor.take(L'\'')) {
            if (divisor != 60) return std::nullopt;
        } else if (!cursor.atEnd()) {
            return std::nullopt;
        }
        degrees += *part / divisor;
        divisor *= 60;
    }
    return degrees;
}

double fromDegrees(double degrees) {
    return std::fmod(degrees, 360.0) * std::numbers::pi / 180;
}
double fromGrads(double grads) {
    return std::fmod(grads, 400.0) * std::numbers::pi / 200;
}

// An angle without a sign. `mode` gives the unit of a number without a letter.
std::optional<double> takeAngle(Cursor& cursor, int mode) {
    const auto number = cursor.takeReal();
    if (!number) return std::nullopt;
    if (cursor.take(L'G')) return fromGrads(*number);
    if (cursor.take(L'R')) return *number;
    if (cursor.take(L'D')) {
        const auto rest = takeMinutesAndSeconds(cursor);
        if (!rest) return std::nullopt;
        return fromDegrees(*number + *rest);
    }
    return mode == 2 ? fromGrads(*number) : mode == 3 ? *number : fromDegrees(*number);
}

// A bearing as an angle counter-clockwise from the east.
std::optional<double> takeBearing(Cursor& cursor) {
    constexpr double kQuarter = kTurn / 4;
    if (cursor.take(L'E')) return 0.0;
    if (cursor.take(L'W')) return 2 * kQuarter;
    const bool isNorth = cursor.take(L'N');
    if (!isNorth) cursor.take(L'S');
    const double pole = isNorth ? kQuarter : 3 * kQuarter;
    cursor.takeBlanks();
    if (cursor.atEnd()) return pole;
    const auto fromPole = takeAngle(cursor, 4);
    if (!fromPole || *fromPole > kQuarter) return std::nullopt;
    cursor.takeBlanks();
    const bool isEast = cursor.take(L'E');
    if (!isEast && !cursor.take(L'W')) return std::nullopt;
    return isEast == isNorth ? pole - *fromPole : pole + *fromPole;
}

bool startsBearing(const Cursor& cursor) {
    return !cursor.atEnd() &&
           std::wstring_view(L"NSEW").find(cursor.peek()) != std::wstring_view::npos;
}

}  // namespace

std::optional<double> parseDistance(std::wstring_view text, int mode) {
    if (mode < 1 || mode > 5) return std::nullopt;
    Cursor cursor(trimmed(text));
    const bool negative = cursor.takeSign();
    const auto distance = takeDistance(cursor);
    if (!distance || !cursor.atEnd() || !std::isfinite(*distance)) return std::nullopt;
    return negative ? -*distance : *distance;
}

std::optional<double> parseAngle(std::wstring_view text, int mode, const UnitSettings& settings) {
    if (mode < 0 || mode > 4) return std::nullopt;
    Cursor cursor(trimmed(text));
    std::optional<double> counted;
    if (startsBearing(cursor)) {
        counted = takeBearing(cursor);
    } else {
        const bool negative = cursor.takeSign();
        counted = takeAngle(cursor, mode);
        if (counted && negative) counted = -*counted;
    }
    if (!counted || !cursor.atEnd() || !std::isfinite(*counted)) return std::nullopt;

    double angle = settings.angbase + (settings.angdir == 1 ? -*counted : *counted);
    angle = std::fmod(angle, kTurn);
    if (angle < 0) angle += kTurn;
    // An angle barely below zero rounds to the full turn.
    return angle < kTurn ? angle : 0;
}

}  // namespace sg

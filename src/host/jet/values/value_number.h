#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/jet/values/value.h"

// Numbers of any kind on their way from one type to another, for value_convert.cpp and
// value_text.cpp alone. They stay exact where the types on both sides are.
namespace sg::jet::numbers {

__extension__ typedef unsigned __int128 Magnitude;

// Digits of a double and of a float that are taken to be meant.
inline constexpr int doubleDigits = 15;
inline constexpr int floatDigits = 7;

struct Number {
    bool isExact = true;
    // Exact ones: magnitude / 10^scale.
    bool negative = false;
    Magnitude magnitude = 0;
    unsigned scale = 0;
    // The others:
    double floating = 0;
    int digits = doubleDigits;
};

// The digits of a floating number and the power of ten of the first of them: 0.012 is "12" and -2.
// No trailing zeros, but for zero, which is "0" and 0.
struct Digits {
    bool negative = false;
    std::string text;
    int exponent = 0;
};

// Rounded to so many digits. The number must be finite.
Digits digitsOf(double number, int digits);

// None for Null, Bytes and Guids, and for text that parseNumber() refuses.
std::optional<Number> numberOf(const Value& value);

// The number in a text, which has nothing else but blanks around it: digits with "." as decimal
// mark and an exponent, thousands separated by ",", "$" and a sign before them or a sign behind or
// parentheses around for a negative one; "&H" and "&O" before hexadecimal and octal digits of 32
// bits, of which the highest is the sign. None for a text that is not so or is beyond a double.
std::optional<Number> parseNumber(std::wstring_view text);

// Makes an exact number of any with `scale` decimals, rounding to even. False when it gets more
// digits than a Magnitude holds.
bool rescale(Number& number, unsigned scale);

double floatingOf(const Number& number);

// The nearest whole number, halves to even; none beyond `smallest` and `largest`.
std::optional<int64_t> wholeOf(Number number, int64_t smallest, int64_t largest);

}  // namespace sg::jet::numbers

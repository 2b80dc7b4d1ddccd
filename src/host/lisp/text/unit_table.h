#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

// The units of measure that convertUnit knows.
namespace sg {

// The kind of a quantity: its exponents of the base quantities.
struct Dimension {
    enum Base { Length, Mass, Time, Temperature, Angle, Current, Luminosity, BaseCount };

    std::array<int, BaseCount> exponents{};

    static constexpr Dimension of(Base base) {
        Dimension d;
        d.exponents[base] = 1;
        return d;
    }
    constexpr Dimension power(int n) const {
        Dimension d;
        for (size_t i = 0; i < BaseCount; ++i)
            d.exponents[i] = exponents[i] * n;
        return d;
    }
    constexpr Dimension operator*(const Dimension& other) const {
        Dimension d;
        for (size_t i = 0; i < BaseCount; ++i)
            d.exponents[i] = exponents[i] + other.exponents[i];
        return d;
    }
    constexpr Dimension operator/(const Dimension& other) const { return *this * other.power(-1); }
    constexpr bool operator==(const Dimension&) const = default;
};

struct Unit {
    std::wstring_view names;  // lower case, blanks between them; "_" joins the words of a name
    long double factor;       // in metres, kilograms, seconds, kelvins, radians, amperes, candelas
    Dimension dimension;
    bool takesPrefixes = false;  // the metric prefixes, before full names
    double freezingPoint = 0;    // for a temperature: the reading at 0 degrees Celsius
};

std::span<const Unit> allUnits();

// The unit with this name in singular or plural, lower case; null when there is none.
// A metric prefix is not part of a unit's name.
const Unit* findUnit(std::wstring_view name);

}  // namespace sg

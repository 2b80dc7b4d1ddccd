#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// How the standards' values are written for their reader, and what may stand in them.
namespace sg {

inline constexpr const wchar_t* kDefaultLineweight = L"Default";

// What no layer's name may hold, as the message about it lists them.
bool hasInvalidLayerCharacter(const std::wstring& name);

// A colour index from a text: 1 to 255, the nearest one for other numbers; 1 for what is none.
int16_t colorIndexOf(const std::wstring& text);

// "25" is shown as "0.25 mm" and back; none is "Default". What is shown is read up to its first
// character that is no number, and cut to a whole number of hundredths.
std::wstring shownLineweight(const std::optional<std::wstring>& stored);
std::optional<std::wstring> storedLineweight(const std::wstring& shown);

// The name as it is when no row has it, ignoring case; else with " (1)", " (2)" and so on behind
// it.
std::wstring freeName(const std::wstring& name,
                      const std::function<bool(const std::wstring&)>& isTaken);

// A number with this many digits behind the point.
std::wstring fixedNumber(double value, int digits);

// The number that a text begins with, after blanks; 0 when there is none.
double numberIn(const std::wstring& text);
int32_t wholeNumberIn(const std::wstring& text);

// Angles are stored in radians of a truncated pi: every file written so far has them so.
inline constexpr double kStoredPi = 3.14159265;
inline double storedAngle(double degrees) {
    return degrees * kStoredPi / 180.0;
}
inline double shownAngle(double radians) {
    return radians * 180.0 / kStoredPi;
}

// As a text in an SQL statement: between apostrophes, those in it doubled.
std::wstring sqlText(const std::wstring& text);

// As a value in an SQL statement: what was typed; NULL for blanks alone.
std::wstring sqlNumber(const std::wstring& typed);

}  // namespace sg

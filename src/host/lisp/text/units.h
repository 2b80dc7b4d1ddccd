#pragma once

#include <optional>
#include <string>
#include <string_view>

// Distances and angles as text, and conversion between units of measure: what stands behind `rtos`,
// `angtos`, `distof`, `angtof` and `cvunit`. Numbers are rounded half away from zero.
namespace sg {

// The system variables that the formats depend on.
struct UnitSettings {
    // Feet and inches, in the low two bits: 0 leaves out zero feet and zero inches, 1 writes both,
    // 2 writes zero feet only, 3 zero inches only. 4 leaves out the zero before a decimal point,
    // 8 the zeros at the end of decimals.
    int dimzin = 0;
    int unitmode = 0;    // 1 writes as one types: 1'5-1/2" for 1'-5 1/2", N45dE for N 45d E
    double angbase = 0;  // the direction of angle 0, in radians counter-clockwise from the x axis
    int angdir = 0;      // 0 counts angles counter-clockwise, 1 clockwise
};

// A distance in drawing units (inches in modes 3 and 4) as text. Modes, with 17.5 at precision 2:
// 1 scientific 1.75E+01, 2 decimal 17.50, 3 engineering 1'-5.50", 4 architectural 1'-5 1/2",
// 5 fractional 17 1/2; any other is read as 2. The precision counts decimals, up to 16; in modes 4
// and 5 it is the power of two, up to 8, of the smallest fraction. What is no number is written as
// formatReal writes it.
std::wstring formatDistance(double value, int mode, int precision, const UnitSettings& settings);

// An angle in radians as text, reduced to less than a full turn; one that rounds to 360 degrees or
// 400 grads is written as 0. Modes, with pi/4 at precision 4: 0 degrees 45.0000, 1 degrees, minutes
// and seconds 45d0'0", 2 grads 50.0000g, 3 radians 0.7854r, 4 surveyor's bearing N 45d0'0" E; any
// other is read as 0. In modes 1 and 4 precision 0 ends with degrees, 1 and 2 with minutes, 3 and 4
// with seconds, and higher ones are for decimals of a second. The four main bearings are one
// letter.
std::wstring formatAngle(double radians, int mode, int precision, const UnitSettings& settings);

// Reads any of the five forms of a distance, whichever the mode: 17.5, 1.75E+01, 1/2, 17 1/2,
// 17-1/2, 3', 1'5", 1'-5.5", 1'-5 1/2". Feet count 12; the mark of inches may be missing. Nothing
// when the text is no distance or the mode is not 1 to 5.
std::optional<double> parseDistance(std::wstring_view text, int mode);

// Reads an angle to radians in [0, 2 pi): 45, 45d30'15.5", 50g, 0.7854r, or a bearing as
// N 45d0'0" E, N45E or W. A number without a letter is in grads in mode 2, in radians in mode 3,
// in degrees otherwise. Nothing when the text is no angle or the mode is not 0 to 4.
std::optional<double> parseAngle(std::wstring_view text, int mode,
                                 const UnitSettings& settings = {});

// Converts `value` between two units of the same kind, temperatures as readings on their scales.
// A unit is a name or abbreviation of the table, whatever its case, singular or plural, with the
// prefixes of the metric system before full names; or an expression: "meter/second", "sq ft",
// "sq_in", "sqft", "in2", "foot^3", "Btu/hr-ft2-F", "kilowatt hour", "liters per second". Words
// side by side are multiplied before "/", so that the last but two divides by all three; "*" and
// "/" go from left to right. A temperature within an expression is a difference. Nothing when a
// unit is unknown or the two are not of one kind.
std::optional<double> convertUnit(double value, std::wstring_view from, std::wstring_view to);

}  // namespace sg

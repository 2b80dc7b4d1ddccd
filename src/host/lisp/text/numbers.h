#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Numbers as text, as AutoLISP reads and prints them. Nothing here depends on the process's locale.
namespace sg {

struct ScannedReal {
    double value = 0;   // infinite when the number is too large for a double
    size_t length = 0;  // characters read; 0 when the text starts with no number
};

// The unsigned decimal number that `text` starts with: digits with or without a point, at least one
// of them, and an exponent if one is complete.
ScannedReal scanReal(std::wstring_view text);

// `atoi`: blanks, a sign and the digits that follow; what comes after them is ignored, and text
// that starts otherwise is 0. Beyond 32 bits the nearest end of their range is answered.
int32_t parseInteger(std::wstring_view text);

// `atof`: as parseInteger, for a real. Text that starts with no number is 0.0.
double parseReal(std::wstring_view text);

// A real as `princ` prints it: six significant digits, always with a point ("1.0", "1.23457e+06",
// "1.0e-05"). Minus zero prints as "0.0"; what is no number as "1.#INF", "-1.#INF", "1.#QNAN".
std::wstring formatReal(double value);

}  // namespace sg

#pragma once

#include "host/jet/values/value.h"

// Exact arithmetic on decimals of 28 digits. A result with more digits behind the point than fit is
// rounded to the even neighbour; one that is too large throws ConversionError.
namespace sg::jet::detail {

Decimal add(const Decimal& a, const Decimal& b);
Decimal subtract(const Decimal& a, const Decimal& b);
Decimal multiply(const Decimal& a, const Decimal& b);
// Throws ConversionError when `b` is zero.
Decimal divide(const Decimal& a, const Decimal& b);
Decimal negated(const Decimal& a);
// With at most `places` digits (0 to 28) behind the point: the nearest, and the even one of two.
Decimal rounded(const Decimal& a, int places);
// Without what is behind the point.
Decimal truncated(const Decimal& a);
// Less than, equal to or greater than zero as `a` is than `b`.
int compare(const Decimal& a, const Decimal& b);
bool isZero(const Decimal& a);

Decimal decimalOf(int64_t value);
Decimal decimalOf(Currency value);
// The first 15 digits.
Decimal decimalOf(double value);
// Throws ConversionError when it is too large.
Currency currencyOf(const Decimal& value);

}  // namespace sg::jet::detail

#pragma once

#include <optional>
#include <string>

#include "base/export.h"

// Dates as text, in the short date and long time formats that the system of origin has for a
// locale.
namespace sg {

// The text of `date`, in days since 1899-12-30. A negative date counts its days backwards and its
// time of day forwards: -1.25 is 1899-12-29 6:00. The moment is rounded to the nearest second. A
// time of day of zero is left out; on day 0 the date is left out and the time stands alone.
// nullopt for a moment outside the years 100 to 9999 and for what is no number.
//
// `locale` is "de-DE", "de_DE.UTF-8" or "de", in any case. A language alone, or with a region that
// has no entry, takes the language's first entry; an unknown language takes that of en-US.
SG_API std::optional<std::wstring> formatDate(double date, const std::wstring& locale);

// True when the locale's region, or the language when no region is named, has an entry of its own.
SG_API bool isKnownLocale(const std::wstring& locale);

}  // namespace sg

// The locale of the user, as formatDate takes it.
SG_API std::wstring sgUserLocale();

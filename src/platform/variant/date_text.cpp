#include "platform/variant/date_text.h"

#include <cmath>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "base/text.h"

namespace sg {
namespace {

// The patterns use the letters of the system of origin: d, dd, M, MM, yyyy; h (12 hours), H (24
// hours), m, s, each doubled for two digits; tt the half of the day. Everything else is literal.
struct LocaleFormat {
    std::wstring_view name;
    std::wstring_view date;
    std::wstring_view time;
    std::wstring_view am = L"";
    std::wstring_view pm = L"";
};

// The first entry of a language is the one that the language alone stands for.
constexpr LocaleFormat kLocales[] = {
    {L"en-US", L"M/d/yyyy", L"h:mm:ss tt", L"AM", L"PM"},
    {L"en-GB", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"en-CA", L"yyyy-MM-dd", L"h:mm:ss tt", L"AM", L"PM"},
    {L"en-AU", L"d/MM/yyyy", L"h:mm:ss tt", L"AM", L"PM"},
    {L"en-NZ", L"d/MM/yyyy", L"h:mm:ss tt", L"a.m.", L"p.m."},
    {L"en-IE", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"en-IN", L"dd-MM-yyyy", L"HH:mm:ss"},
    {L"de-DE", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"de-AT", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"de-CH", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"fr-FR", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"fr-CA", L"yyyy-MM-dd", L"HH:mm:ss"},
    {L"fr-CH", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"it-IT", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"es-ES", L"dd/MM/yyyy", L"H:mm:ss"},
    {L"es-MX", L"dd/MM/yyyy", L"hh:mm:ss tt", L"a. m.", L"p. m."},
    {L"pt-BR", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"pt-PT", L"dd/MM/yyyy", L"HH:mm:ss"},
    {L"nl-NL", L"d-M-yyyy", L"HH:mm:ss"},
    {L"nl-BE", L"d/MM/yyyy", L"HH:mm:ss"},
    {L"sv-SE", L"yyyy-MM-dd", L"HH:mm:ss"},
    {L"nb-NO", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"da-DK", L"dd-MM-yyyy", L"HH:mm:ss"},
    {L"fi-FI", L"d.M.yyyy", L"H.mm.ss"},
    {L"pl-PL", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"cs-CZ", L"dd.MM.yyyy", L"H:mm:ss"},
    {L"hu-HU", L"yyyy. MM. dd.", L"H:mm:ss"},
    {L"ru-RU", L"dd.MM.yyyy", L"H:mm:ss"},
    {L"uk-UA", L"dd.MM.yyyy", L"H:mm:ss"},
    {L"ro-RO", L"dd.MM.yyyy", L"HH:mm:ss"},
    {L"tr-TR", L"d.MM.yyyy", L"HH:mm:ss"},
    {L"el-GR", L"d/M/yyyy", L"h:mm:ss tt", L"\u03C0\u03BC", L"\u03BC\u03BC"},
    {L"ja-JP", L"yyyy/MM/dd", L"H:mm:ss"},
    {L"zh-CN", L"yyyy/M/d", L"H:mm:ss"},
    {L"zh-TW", L"yyyy/M/d", L"tt hh:mm:ss", L"\u4E0A\u5348", L"\u4E0B\u5348"},
    {L"ko-KR", L"yyyy-MM-dd", L"tt h:mm:ss", L"\uC624\uC804", L"\uC624\uD6C4"},
};

// Equal but for case and for "_" in the place of "-".
bool namesMatch(std::wstring_view entry, std::wstring_view name) {
    if (entry.size() != name.size()) return false;
    for (size_t i = 0; i < entry.size(); ++i) {
        const wchar_t c = name[i] == L'_' ? L'-' : name[i];
        if (toLower(entry[i]) != toLower(c)) return false;
    }
    return true;
}

// "de_DE" of "de_DE.UTF-8" and of "de_DE@euro".
std::wstring_view withoutEncoding(std::wstring_view name) {
    return name.substr(0, name.find_first_of(L".@"));
}

std::wstring_view languageOf(std::wstring_view name) {
    return name.substr(0, name.find_first_of(L"-_"));
}

const LocaleFormat* findExact(std::wstring_view name) {
    for (const LocaleFormat& locale : kLocales) {
        if (namesMatch(locale.name, name)) return &locale;
    }
    return nullptr;
}

const LocaleFormat* findLanguage(std::wstring_view language) {
    for (const LocaleFormat& locale : kLocales) {
        if (namesMatch(languageOf(locale.name), language)) return &locale;
    }
    return nullptr;
}

const LocaleFormat& formatOf(std::wstring_view name) {
    name = withoutEncoding(name);
    const LocaleFormat* found = findExact(name);
    if (found == nullptr) found = findLanguage(languageOf(name));
    return found != nullptr ? *found : kLocales[0];
}

struct Moment {
    int64_t day;  // since 1899-12-30
    int second;   // of the day
};

struct CalendarDay {
    int year, month, day;
};

constexpr int kSecondsPerDay = 86400;
constexpr int64_t kFirstDay = -657434;  // 0100-01-01
constexpr int64_t kLastDay = 2958465;   // 9999-12-31

std::optional<Moment> momentOf(double date) {
    // The fraction of a negative date counts forwards, so -657434.99 is still on the first day.
    if (!(date > static_cast<double>(kFirstDay - 1) && date < static_cast<double>(kLastDay + 1))) {
        return std::nullopt;
    }
    const double whole = std::trunc(date);
    Moment moment{static_cast<int64_t>(whole),
                  static_cast<int>(std::floor(std::abs(date - whole) * kSecondsPerDay + 0.5))};
    if (moment.second == kSecondsPerDay) {
        moment.second = 0;
        ++moment.day;
        if (moment.day > kLastDay) return std::nullopt;
    }
    return moment;
}

// The proleptic Gregorian calendar, counted in years that begin on March 1 so that the leap day is
// the last one, in eras of 400 years (146097 days).
CalendarDay calendarDay(int64_t daysSince18991230) {
    constexpr int64_t kDaysFrom00000301 = 693899;  // to 1899-12-30
    const int64_t days = daysSince18991230 + kDaysFrom00000301;
    const int64_t era = days / 146097;
    const int64_t dayOfEra = days % 146097;
    const int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    const int month =
        static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    const int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    return {static_cast<int>(year), month, day};
}

void appendNumber(std::wstring& out, int value, size_t digits) {
    wchar_t text[12];
    size_t start = std::size(text);
    do {
        text[--start] = static_cast<wchar_t>(L'0' + value % 10);
        value /= 10;
    } while (value != 0 || std::size(text) - start < digits);
    out.append(text + start, std::size(text) - start);
}

// Writes `pattern`; `field` writes one run of equal letters, and answers false for a literal run.
template <typename Field>
void appendPattern(std::wstring& out, std::wstring_view pattern, const Field& field) {
    for (size_t i = 0; i < pattern.size();) {
        size_t end = pattern.find_first_not_of(pattern[i], i);
        if (end == std::wstring_view::npos) end = pattern.size();
        if (!field(pattern[i], end - i)) out.append(pattern, i, end - i);
        i = end;
    }
}

void appendDate(std::wstring& out, const LocaleFormat& format, const CalendarDay& date) {
    appendPattern(out, format.date, [&](wchar_t letter, size_t width) {
        switch (letter) {
            case L'd':
                appendNumber(out, date.day, width);
                return true;
            case L'M':
                appendNumber(out, date.month, width);
                return true;
            case L'y':
                appendNumber(out, date.year, width);
                return true;
            default:
                return false;
        }
    });
}

void appendTime(std::wstring& out, const LocaleFormat& format, int secondOfDay) {
    const int hour = secondOfDay / 3600;
    appendPattern(out, format.time, [&](wchar_t letter, size_t width) {
        switch (letter) {
            case L'h':
                appendNumber(out, (hour + 11) % 12 + 1, width);
                return true;
            case L'H':
                appendNumber(out, hour, width);
                return true;
            case L'm':
                appendNumber(out, secondOfDay / 60 % 60, width);
                return true;
            case L's':
                appendNumber(out, secondOfDay % 60, width);
                return true;
            case L't':
                out += hour < 12 ? format.am : format.pm;
                return true;
            default:
                return false;
        }
    });
}

}  // namespace

std::optional<std::wstring> formatDate(double date, const std::wstring& locale) {
    const std::optional<Moment> moment = momentOf(date);
    if (!moment) return std::nullopt;
    const LocaleFormat& format = formatOf(locale);
    std::wstring text;
    if (moment->day != 0) appendDate(text, format, calendarDay(moment->day));
    if (moment->day == 0 || moment->second != 0) {
        if (!text.empty()) text += L' ';
        appendTime(text, format, moment->second);
    }
    return text;
}

bool isKnownLocale(const std::wstring& locale) {
    const std::wstring_view name = withoutEncoding(locale);
    const std::wstring_view language = languageOf(name);
    if (language.size() == name.size()) return findLanguage(language) != nullptr;
    return findExact(name) != nullptr;
}

}  // namespace sg

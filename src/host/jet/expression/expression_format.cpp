#include "host/jet/expression/expression_format.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "base/text.h"
#include "host/jet/expression/expression_dates.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

struct NamedFormat {
    std::wstring_view name;
    std::wstring_view pattern;
};

constexpr NamedFormat numberFormats[] = {
    {L"Currency", L"$#,##0.00;($#,##0.00)"},
    {L"Fixed", L"0.00"},
    {L"Standard", L"#,##0.00"},
    {L"Percent", L"0.00%"},
    {L"Scientific", L"0.00E+00"},
    {L"Yes/No", L"\"Yes\";\"Yes\";\"No\""},
    {L"On/Off", L"\"On\";\"On\";\"Off\""},
    {L"True/False", L"\"True\";\"True\";\"False\""},
};

constexpr NamedFormat dateFormats[] = {
    {L"General Date", L"c"},          {L"Long Date", L"dddd, mmmm d, yyyy"},
    {L"Medium Date", L"dd-mmm-yy"},   {L"Short Date", L"m/d/yyyy"},
    {L"Long Time", L"h:nn:ss AM/PM"}, {L"Medium Time", L"hh:nn AM/PM"},
    {L"Short Time", L"hh:nn"},
};

template <size_t Count>
const NamedFormat* findNamed(const NamedFormat (&formats)[Count], std::wstring_view name) {
    const auto* found = std::find_if(
        std::begin(formats), std::end(formats),
        [&](const NamedFormat& format) { return equalIgnoringCase(format.name, name); });
    return found != std::end(formats) ? found : nullptr;
}

enum class PatternKind { Number, Date, Text };

// What the pattern's characters outside quotes are of.
PatternKind kindOf(std::wstring_view pattern) {
    bool dates = false;
    bool quoted = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const wchar_t c = pattern[i];
        if (c == L'"') {
            quoted = !quoted;
        } else if (quoted) {
            continue;
        } else if (c == L'\\') {
            ++i;
        } else if (c == L'0' || c == L'#' || c == L'%') {
            return PatternKind::Number;
        } else if (c == L'@' || c == L'&' || c == L'<' || c == L'>' || c == L'!') {
            return PatternKind::Text;
        } else {
            dates =
                dates || std::wstring_view(L"cdwmqyhnst").find(toLower(c)) != std::wstring::npos;
        }
    }
    return dates ? PatternKind::Date : PatternKind::Number;
}

// --- dates ---

class DateWriter {
  public:
    DateWriter(Date date, std::wstring_view pattern, int firstDayOfWeek, int firstWeek)
        : pattern_(pattern),
          date_(date),
          parts_(partsOf(date)),
          day_(momentOf(date).day),
          firstDayOfWeek_(firstDayOfWeek),
          firstWeek_(firstWeek),
          twelveHours_(upperCased(pattern).find(L"AM/PM") != std::wstring::npos ||
                       upperCased(pattern).find(L"A/P") != std::wstring::npos ||
                       upperCased(pattern).find(L"AMPM") != std::wstring::npos) {}

    std::wstring write();

  private:
    size_t element(size_t at);
    bool noon(size_t& at);
    void letters(wchar_t letter, size_t count);
    void days(size_t count);
    void months(size_t count);
    void number(int64_t value, size_t width);
    void general(wchar_t letter, size_t count);

    std::wstring_view pattern_;
    Date date_;
    DateParts parts_;
    int64_t day_;
    int firstDayOfWeek_;
    int firstWeek_;
    bool twelveHours_;
    bool behindHour_ = false;  // the last letters were of an hour: "m" then is a minute
    std::wstring text_;
};

void DateWriter::number(int64_t value, size_t width) {
    const std::wstring digits = std::to_wstring(value);
    text_.append(width > digits.size() ? width - digits.size() : 0, L'0').append(digits);
}

void DateWriter::days(size_t count) {
    const std::wstring_view name = weekdayName(weekdayOf(day_, 1));
    if (count <= 2) {
        number(parts_.day, count);
    } else if (count <= 4) {
        text_ += count == 3 ? name.substr(0, 3) : name;
    } else {
        text_ += DateWriter(date_, count == 5 ? dateFormats[3].pattern : dateFormats[1].pattern,
                            firstDayOfWeek_, firstWeek_)
                     .write();
    }
}

void DateWriter::months(size_t count) {
    if (count <= 2) {
        number(behindHour_ ? parts_.minute : parts_.month, count);
    } else {
        const std::wstring_view name = monthName(parts_.month);
        text_ += count == 3 ? name.substr(0, 3) : name;
    }
}

// "c", and "ttttt" for the whole time.
void DateWriter::general(wchar_t letter, size_t count) {
    if (letter == L'c') {
        text_ += toInvariantText(date_);
    } else if (count == 5) {
        text_ += DateWriter(date_, dateFormats[4].pattern, firstDayOfWeek_, firstWeek_).write();
    } else {
        text_.append(count, letter);
    }
}

void DateWriter::letters(wchar_t letter, size_t count) {
    switch (letter) {
        case L'd':
            days(count);
            break;
        case L'w':
            number(count == 1 ? weekdayOf(day_, firstDayOfWeek_)
                              : weekOfYear(day_, firstDayOfWeek_, firstWeek_),
                   1);
            break;
        case L'm':
            months(count);
            break;
        case L'q':
            number((parts_.month + 2) / 3, 1);
            break;
        case L'y':
            if (count == 1) {
                number(dayOfYear(parts_, day_), 1);
            } else {
                number(count == 2 ? parts_.year % 100 : parts_.year, count == 2 ? 2 : 4);
            }
            break;
        case L'h':
            number(twelveHours_ ? (parts_.hour + 11) % 12 + 1 : parts_.hour, count);
            break;
        case L'n':
            number(parts_.minute, count);
            break;
        case L's':
            number(parts_.second, count);
            break;
        default:
            general(letter, count);
            break;
    }
    behindHour_ = letter == L'h';
}

// "AM/PM", "A/P" and "AMPM" in either case.
bool DateWriter::noon(size_t& at) {
    const bool morning = parts_.hour < 12;
    for (const std::wstring_view mark : {L"AM/PM", L"A/P", L"AMPM"}) {
        const std::wstring_view given = pattern_.substr(at, mark.size());
        if (!equalIgnoringCase(given, mark)) {
            continue;
        }
        std::wstring half = morning ? L"AM" : L"PM";
        half.resize(mark.size() == 3 ? 1 : 2);
        text_ += given[0] == L'a' ? lowerCased(half) : half;
        at += mark.size();
        return true;
    }
    return false;
}

size_t DateWriter::element(size_t at) {
    const wchar_t letter = toLower(pattern_[at]);
    if (letter == L'"') {
        const size_t end = std::min(pattern_.find(L'"', at + 1), pattern_.size());
        text_ += pattern_.substr(at + 1, end - at - 1);
        return end + 1;
    }
    if (letter == L'\\') {
        text_ += pattern_.substr(at + 1, 1);
        return at + 2;
    }
    if (letter == L'a' && noon(at)) {
        return at;
    }
    static constexpr std::wstring_view known = L"dwmqyhnstc";
    static constexpr size_t longest[] = {6, 2, 4, 1, 4, 2, 2, 2, 5, 1};
    const size_t which = known.find(letter);
    if (which == known.npos) {
        text_ += pattern_[at];
        return at + 1;
    }
    size_t end = at;
    while (end < pattern_.size() && end - at < longest[which] && toLower(pattern_[end]) == letter) {
        ++end;
    }
    letters(letter, end - at);
    return end;
}

std::wstring DateWriter::write() {
    for (size_t at = 0; at < pattern_.size();) {
        at = element(at);
    }
    return std::move(text_);
}

}  // namespace

std::wstring formatted(const Value& value, std::wstring_view pattern, int firstDayOfWeek,
                       int firstWeek) {
    double number = 0;
    const bool isDate = std::holds_alternative<Date>(value);
    const bool isNumber = toDouble(value, number) && std::isfinite(number);
    if (pattern.empty() || equalIgnoringCase(pattern, L"General Number")) {
        return toInvariantText(!pattern.empty() && isNumber && isDate ? Value(number) : value);
    }
    if (const NamedFormat* named = findNamed(numberFormats, pattern)) {
        pattern = named->pattern;
    }
    const NamedFormat* namedDate = findNamed(dateFormats, pattern);
    const PatternKind kind = namedDate != nullptr ? PatternKind::Date : kindOf(pattern);
    if (kind == PatternKind::Text) {
        return formattedText(toInvariantText(value), pattern);
    }
    if (kind == PatternKind::Number) {
        const bool fits = isNumber || isNull(value);
        return fits ? formattedNumber(value, pattern) : toInvariantText(value);
    }
    Date date;
    const auto* text = std::get_if<std::wstring>(&value);
    const bool readsAsDate = text != nullptr && parseDate(*text, date);
    if (isNull(value) || (!readsAsDate && !isNumber)) {
        return toInvariantText(value);
    }
    return DateWriter(dateOf(value), namedDate != nullptr ? namedDate->pattern : pattern,
                      firstDayOfWeek, firstWeek)
        .write();
}

}  // namespace sg::jet::detail

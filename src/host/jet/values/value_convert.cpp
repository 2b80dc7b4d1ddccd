#include "host/jet/values/value_convert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/text_codec.h"
#include "host/jet/values/value_number.h"

namespace sg::jet {
namespace {

using numbers::Number;

constexpr double firstDay = -657434;   // 0100-01-01
constexpr double endOfDays = 2958466;  // 10000-01-01
constexpr size_t shownCharacters = 40;

[[noreturn]] void refuse(const Column& column, const Value& value) {
    const std::wstring text = toInvariantText(value);
    const std::wstring shown =
        text.size() > shownCharacters ? text.substr(0, shownCharacters) + L"..." : text;
    throw Error(ConversionError, {column.name},
                {.detail = L"column " + column.name + L" can't hold \"" + shown + L"\""});
}

[[noreturn]] void refuseTooLong(const Column& column, size_t bytes) {
    throw Error(FieldTooSmall, {column.name},
                {.detail = L"column " + column.name + L" holds " + std::to_wstring(column.length) +
                           L" bytes and was given " + std::to_wstring(bytes)});
}

template <class T>
bool holds(const Value& value) {
    return std::holds_alternative<T>(value);
}

Number requireNumber(const Column& column, const Value& value) {
    const std::optional<Number> number = numbers::numberOf(value);
    if (!number) {
        refuse(column, value);
    }
    return *number;
}

std::optional<bool> truthWord(const Value& value) {
    const auto* text = std::get_if<std::wstring>(&value);
    if (text == nullptr) {
        return std::nullopt;
    }
    const std::wstring_view word = trimmed(*text);
    for (const wchar_t* yes : {L"True", L"Yes", L"On"}) {
        if (equalIgnoringCase(word, yes)) {
            return true;
        }
    }
    for (const wchar_t* no : {L"False", L"No", L"Off"}) {
        if (equalIgnoringCase(word, no)) {
            return false;
        }
    }
    return std::nullopt;
}

void toBoolean(const Column& column, Value& value) {
    if (holds<bool>(value)) {
        return;
    }
    if (const std::optional<bool> truth = truthWord(value)) {
        value = *truth;
        return;
    }
    const Number number = requireNumber(column, value);
    value = number.isExact ? number.magnitude != 0 : number.floating != 0;
}

template <class T>
void toWhole(const Column& column, Value& value) {
    if (holds<T>(value)) {
        return;
    }
    const std::optional<int64_t> whole = numbers::wholeOf(
        requireNumber(column, value), std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
    if (!whole) {
        refuse(column, value);
    }
    value = static_cast<T>(*whole);
}

void toCurrency(const Column& column, Value& value) {
    if (holds<Currency>(value)) {
        return;
    }
    constexpr unsigned decimals = 4;
    // Below this the digits that a double is sure of reach beyond the fourth decimal.
    constexpr double sure = 1e11;
    Number number = requireNumber(column, value);
    if (number.isExact || std::abs(number.floating) < sure) {
        number.digits = numbers::doubleDigits;
        if (!rescale(number, decimals)) {
            refuse(column, value);
        }
        number.scale = 0;
    } else {
        number.floating *= 10000;
    }
    const std::optional<int64_t> scaled = numbers::wholeOf(
        number, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max());
    if (!scaled) {
        refuse(column, value);
    }
    value = Currency{*scaled};
}

void toSingle(const Column& column, Value& value) {
    if (holds<float>(value)) {
        return;
    }
    // From here on a number is nearer to the next power of two than to the largest float.
    constexpr double limit = 0x1.ffffffp127;
    const double number = floatingOf(requireNumber(column, value));
    if (std::isfinite(number) && std::abs(number) >= limit) {
        refuse(column, value);
    }
    value = static_cast<float>(number);
}

void toDoubleColumn(const Column& column, Value& value) {
    if (!holds<double>(value)) {
        value = floatingOf(requireNumber(column, value));
    }
}

void toDate(const Column& column, Value& value) {
    Date date;
    if (const Date* held = std::get_if<Date>(&value)) {
        date = *held;
    } else if (const auto* text = std::get_if<std::wstring>(&value)) {
        if (!parseDate(*text, date)) {
            refuse(column, value);
        }
    } else {
        date.days = floatingOf(requireNumber(column, value));
    }
    if (!(date.days > firstDay - 1 && date.days < endOfDays)) {
        refuse(column, value);
    }
    value = date;
}

void toDecimal(const Column& column, Value& value) {
    Number number = requireNumber(column, value);
    if (!rescale(number, column.scale)) {
        refuse(column, value);
    }
    numbers::Magnitude rest = number.magnitude;
    for (unsigned i = 0; i < column.precision && rest != 0; ++i) {
        rest /= 10;
    }
    if (rest != 0) {
        refuse(column, value);
    }
    Decimal decimal{number.negative, column.scale, {}};
    for (size_t i = decimal.words.size(); i-- > 0;) {
        decimal.words[i] = static_cast<uint32_t>(number.magnitude);
        number.magnitude >>= 32;
    }
    value = decimal;
}

// "{00112233-4455-6677-8899-AABBCCDDEEFF}", also without braces or as "{guid {...}}".
std::optional<Guid> parseGuid(std::wstring_view text) {
    // Where in the bytes each pair of digits goes; the dashes stand before those that are marked.
    static constexpr uint8_t order[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr uint16_t dashes = 1 << 4 | 1 << 6 | 1 << 8 | 1 << 10;
    static constexpr std::wstring_view opening = L"{guid ";
    text = trimmed(text);
    if (equalIgnoringCase(text.substr(0, opening.size()), opening) && text.back() == L'}') {
        text = text.substr(opening.size(), text.size() - opening.size() - 1);
    }
    if (text.size() == 38 && text.front() == L'{' && text.back() == L'}') {
        text = text.substr(1, 36);
    }
    if (text.size() != 36) {
        return std::nullopt;
    }
    const auto digit = [](wchar_t c) {
        const wchar_t upper = toUpper(c);
        return c >= L'0' && c <= L'9'           ? static_cast<int>(c - L'0')
               : upper >= L'A' && upper <= L'F' ? static_cast<int>(upper - L'A' + 10)
                                                : -1;
    };
    Guid guid;
    size_t at = 0;
    for (size_t i = 0; i < guid.bytes.size(); ++i, at += 2) {
        if ((dashes >> i & 1) != 0 && text[at++] != L'-') {
            return std::nullopt;
        }
        const int high = digit(text[at]);
        const int low = digit(text[at + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        guid.bytes[order[i]] = static_cast<uint8_t>(high << 4 | low);
    }
    return guid;
}

void toGuid(const Column& column, Value& value) {
    if (holds<Guid>(value)) {
        return;
    }
    std::optional<Guid> guid;
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        guid = parseGuid(*text);
    } else if (const auto* bytes = std::get_if<Bytes>(&value); bytes && bytes->size() == 16) {
        guid.emplace();
        std::copy(bytes->begin(), bytes->end(), guid->bytes.begin());
    }
    if (!guid) {
        refuse(column, value);
    }
    value = *guid;
}

// In bytes of UTF-16.
size_t plainSize(const std::wstring& text) {
    const auto twice =
        std::count_if(text.begin(), text.end(), [](wchar_t c) { return c > 0xffff; });
    return 2 * (text.size() + static_cast<size_t>(twice));
}

void toMemo(const Column& column, Value& value) {
    if (holds<std::wstring>(value)) {
        return;
    }
    std::wstring text = toInvariantText(value);
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
        Bytes back;
        encodeName(text, back);
        if (back != *bytes) {
            throw Error(ConversionError, {column.name},
                        {.detail = L"bytes for column " + column.name + L" are no UTF-16 text"});
        }
    }
    value = std::move(text);
}

void toTextColumn(const Column& column, Value& value) {
    const auto checkSize = [&](const std::wstring& text) {
        // Most texts are so short that their characters need not be looked at.
        const size_t size = 4 * text.size() <= column.length ? 0 : plainSize(text);
        if (size > column.length) {
            refuseTooLong(column, size);
        }
    };
    if (const auto* held = std::get_if<std::wstring>(&value)) {
        checkSize(*held);
    } else {
        Value text = value;
        toMemo(column, text);
        checkSize(std::get<std::wstring>(text));
        value = std::move(text);
    }
    if (column.isFixed()) {
        auto& text = std::get<std::wstring>(value);
        text.append((column.length - plainSize(text)) / 2, L' ');
    }
}

void toOle(const Column& column, Value& value) {
    if (holds<Bytes>(value)) {
        return;
    }
    Bytes bytes;
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        encodeName(*text, bytes);
    } else if (const Guid* guid = std::get_if<Guid>(&value)) {
        bytes.assign(guid->bytes.begin(), guid->bytes.end());
    } else {
        refuse(column, value);
    }
    value = std::move(bytes);
}

void toBinaryColumn(const Column& column, Value& value) {
    const auto checkSize = [&](size_t size) {
        if (size > column.length) {
            refuseTooLong(column, size);
        }
    };
    if (const auto* held = std::get_if<Bytes>(&value)) {
        checkSize(held->size());
    } else {
        Value bytes = value;
        toOle(column, bytes);
        checkSize(std::get<Bytes>(bytes).size());
        value = std::move(bytes);
    }
    if (column.isFixed()) {
        std::get<Bytes>(value).resize(column.length);
    }
}

}  // namespace

void convertTo(const Column& column, Value& value) {
    if (isNull(value)) {
        if (column.type == ColumnType::Boolean) {
            value = false;
        }
        return;
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return toBoolean(column, value);
        case ColumnType::Byte:
            return toWhole<uint8_t>(column, value);
        case ColumnType::Integer:
            return toWhole<int16_t>(column, value);
        case ColumnType::Long:
        case ColumnType::Complex:
            return toWhole<int32_t>(column, value);
        case ColumnType::BigInteger:
            return toWhole<int64_t>(column, value);
        case ColumnType::Currency:
            return toCurrency(column, value);
        case ColumnType::Single:
            return toSingle(column, value);
        case ColumnType::Double:
            return toDoubleColumn(column, value);
        case ColumnType::Date:
        case ColumnType::DateTimeExtended:
            return toDate(column, value);
        case ColumnType::Guid:
            return toGuid(column, value);
        case ColumnType::Numeric:
            return toDecimal(column, value);
        case ColumnType::Text:
            return toTextColumn(column, value);
        case ColumnType::Memo:
            return toMemo(column, value);
        case ColumnType::Ole:
            return toOle(column, value);
        case ColumnType::Binary:
            break;
    }
    // Binary, and the types that are not known.
    toBinaryColumn(column, value);
}

bool toDouble(const Value& value, double& number) {
    const std::optional<Number> found = numbers::numberOf(value);
    if (found) {
        number = floatingOf(*found);
    }
    return found.has_value();
}

}  // namespace sg::jet

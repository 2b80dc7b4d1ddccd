#include "host/sql/run/sqlite_values.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

#include "base/encoding.h"
#include "host/jet/expression/expression_decimal.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/expression/expression_operators.h"
#include "host/jet/format/error.h"
#include "host/sql/run/text_order.h"

namespace sg::sql {
namespace {

// A decimal's digits, 28 before and 28 behind the point, behind a byte for the sign; of a negative
// number all of them are taken from 9, so that bytes compare as numbers.
constexpr size_t wholeDigits = 28;
constexpr size_t allDigits = 56;
using DecimalBytes = std::array<char, 1 + allDigits>;

DecimalBytes packed(const jet::Decimal& decimal) {
    DecimalBytes bytes;
    bytes.fill('0');
    std::wstring text = jet::toText(decimal);
    const bool negative = text[0] == L'-';
    if (negative) {
        text.erase(0, 1);
    }
    const size_t point = std::min(text.find(L'.'), text.size());
    for (size_t i = 0; i < point && i < wholeDigits; ++i) {
        bytes[wholeDigits - i] = static_cast<char>(text[point - 1 - i]);
    }
    for (size_t i = point + 1; i < text.size() && i - point <= wholeDigits; ++i) {
        bytes[wholeDigits + (i - point)] = static_cast<char>(text[i]);
    }
    bytes[0] = negative ? '0' : '1';
    if (negative) {
        for (size_t i = 1; i < bytes.size(); ++i) {
            bytes[i] = static_cast<char>('0' + '9' - bytes[i]);
        }
    }
    return bytes;
}

jet::Decimal unpacked(std::string_view bytes) {
    jet::Decimal decimal;
    decimal.negative = bytes[0] == '0';
    std::string digits(bytes.substr(1));
    if (decimal.negative) {
        for (char& digit : digits) {
            digit = static_cast<char>('0' + '9' - digit);
        }
    }
    size_t end = digits.size();
    while (end > wholeDigits && digits[end - 1] == '0') {
        --end;
    }
    decimal.scale = static_cast<uint8_t>(end - wholeDigits);
    for (size_t i = 0; i < end; ++i) {
        uint64_t carry = static_cast<uint64_t>(digits[i] - '0');
        for (size_t word = decimal.words.size(); word-- > 0;) {
            carry += uint64_t(decimal.words[word]) * 10;
            decimal.words[word] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
    }
    return decimal;
}

// What SQLite is given of a value: called with its form.
template <class Whole, class Real, class Text, class Blob, class Nothing>
void passOn(const jet::Value& value, Whole whole, Real real, Text text, Blob blob,
            Nothing nothing) {
    std::visit(
        [&]<class T>(const T& held) {
            if constexpr (std::is_same_v<T, std::monostate>) {
                nothing();
            } else if constexpr (std::is_same_v<T, bool>) {
                whole(held ? -1 : 0);
            } else if constexpr (std::is_integral_v<T>) {
                whole(static_cast<int64_t>(held));
            } else if constexpr (std::is_same_v<T, jet::Currency>) {
                whole(held.scaled);
            } else if constexpr (std::is_floating_point_v<T>) {
                real(static_cast<double>(held));
            } else if constexpr (std::is_same_v<T, jet::Date>) {
                real(held.days);
            } else if constexpr (std::is_same_v<T, std::wstring>) {
                text(held);
            } else if constexpr (std::is_same_v<T, jet::Bytes>) {
                blob(reinterpret_cast<const char*>(held.data()), held.size());
            } else if constexpr (std::is_same_v<T, jet::Guid>) {
                blob(reinterpret_cast<const char*>(held.bytes.data()), held.bytes.size());
            } else {
                const DecimalBytes bytes = packed(held);
                blob(bytes.data(), bytes.size());
            }
        },
        value);
}

std::string_view blobOf(sqlite3_value* from) {
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(from));
    const auto size = static_cast<size_t>(sqlite3_value_bytes(from));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, size);
}

[[noreturn]] void throwOverflow() {
    jet::detail::throwConversion(L"overflow");
}

// In the narrowest of the type's own C++ type and those wider.
void takeWhole(int64_t number, ColumnType type, jet::Value& into) {
    if (type == ColumnType::Boolean) {
        into = number != 0;
    } else if (type == ColumnType::Byte && number >= 0 && number <= 255) {
        into = static_cast<uint8_t>(number);
    } else if (type <= ColumnType::Integer && number == static_cast<int16_t>(number)) {
        into = static_cast<int16_t>(number);
    } else if (type == ColumnType::BigInteger) {
        into = number;
    } else if (number == static_cast<int32_t>(number)) {
        into = static_cast<int32_t>(number);
    } else {
        into = static_cast<double>(number);
    }
}

void takeText(std::string_view text, jet::Value& into) {
    auto* held = std::get_if<std::wstring>(&into);
    std::wstring& wide = held != nullptr ? *held : into.emplace<std::wstring>();
    wide.resize(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto unit = static_cast<unsigned char>(text[i]);
        if (unit >= 0x80) {
            wide = fromUtf8(text);
            return;
        }
        wide[i] = static_cast<wchar_t>(unit);
    }
}

// Longer texts are bound.
constexpr size_t longestLiteral = 256;

std::string quoted(std::string_view text) {
    std::string made = "'";
    for (const char c : text) {
        made += c == '\'' ? "''" : std::string(1, c);
    }
    return made + "'";
}

uint64_t hashOfNumber(double number) {
    return std::bit_cast<uint64_t>(number == 0 ? 0.0 : number);  // whatever the zero's sign
}

uint64_t hashOfBytes(std::string_view bytes) {
    return std::hash<std::string_view>()(bytes);
}

}  // namespace

void answer(sqlite3_context* context, const jet::Value& value) {
    passOn(
        value, [&](int64_t number) { sqlite3_result_int64(context, number); },
        [&](double number) { sqlite3_result_double(context, number); },
        [&](const std::wstring& text) {
            const std::string bytes = toUtf8(text);
            sqlite3_result_text64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8);
        },
        [&](const char* bytes, size_t size) {
            sqlite3_result_blob64(context, bytes == nullptr ? "" : bytes, size, SQLITE_TRANSIENT);
        },
        [&] { sqlite3_result_null(context); });
}

void bind(sqlite3_stmt* statement, int place, const jet::Value& value) {
    passOn(
        value, [&](int64_t number) { sqlite3_bind_int64(statement, place, number); },
        [&](double number) { sqlite3_bind_double(statement, place, number); },
        [&](const std::wstring& text) {
            const std::string bytes = toUtf8(text);
            sqlite3_bind_text64(statement, place, bytes.data(), bytes.size(), SQLITE_TRANSIENT,
                                SQLITE_UTF8);
        },
        [&](const char* bytes, size_t size) {
            sqlite3_bind_blob64(statement, place, bytes == nullptr ? "" : bytes, size,
                                SQLITE_TRANSIENT);
        },
        [&] { sqlite3_bind_null(statement, place); });
}

void take(sqlite3_value* from, const Type& type, jet::Value& into) {
    const int held = sqlite3_value_type(from);
    if (held == SQLITE_NULL || !type.column) {
        into = std::monostate();
        return;
    }
    const bool isNumber = held == SQLITE_INTEGER || held == SQLITE_FLOAT;
    switch (formOf(type)) {
        case Form::Whole:
            if (held == SQLITE_INTEGER) {
                takeWhole(sqlite3_value_int64(from), *type.column, into);
                return;
            }
            if (held == SQLITE_FLOAT) {
                into = sqlite3_value_double(from);
                return;
            }
            break;
        case Form::Single:
        case Form::Real:
        case Form::Date:
            if (isNumber) {
                const double number = sqlite3_value_double(from);
                if (!std::isfinite(number)) {
                    throwOverflow();
                }
                if (formOf(type) == Form::Single) {
                    into = static_cast<float>(number);
                } else if (formOf(type) == Form::Date) {
                    into = jet::Date{number};
                } else {
                    into = number;
                }
                return;
            }
            break;
        case Form::Currency:
            if (held == SQLITE_INTEGER) {
                into = jet::Currency{sqlite3_value_int64(from)};
                return;
            }
            throwOverflow();
        case Form::Text:
            if (held == SQLITE_TEXT) {
                takeText(textOf(from), into);
                return;
            }
            break;
        case Form::Guid:
            if (const std::string_view blob = blobOf(from); blob.size() == 16) {
                jet::Guid guid;
                std::memcpy(guid.bytes.data(), blob.data(), blob.size());
                into = guid;
                return;
            }
            break;
        case Form::Bytes:
            if (held == SQLITE_BLOB) {
                const std::string_view blob = blobOf(from);
                into = jet::Bytes(blob.begin(), blob.end());
                return;
            }
            break;
        case Form::Decimal:
            if (const std::string_view blob = blobOf(from); blob.size() == 1 + allDigits) {
                into = unpacked(blob);
                return;
            }
            break;
        case Form::Null:
            break;
    }
    jet::detail::throwConversion(L"a value of another type than its expression's");
}

std::string literalOf(const jet::Value& value) {
    std::string text;
    passOn(
        value,
        [&](int64_t number) {
            // The smallest number has no literal.
            if (number != std::numeric_limits<int64_t>::min()) {
                text = std::to_string(number);
                if (number < 0) {
                    text.insert(text.begin(), '(');
                    text += ')';
                }
            }
        },
        [&](double number) {
            char digits[40];
            std::snprintf(digits, sizeof digits, "%.17g", number);
            text = digits;
            if (!std::isfinite(number)) {
                text.clear();
            } else if (text.find_first_of(".e") == text.npos) {
                text += ".0";
            }
            if (number < 0 && !text.empty()) {
                text.insert(text.begin(), '(');
                text += ')';
            }
        },
        [&](const std::wstring& held) {
            if (held.size() <= longestLiteral && held.find(L'\0') == held.npos) {
                text = quoted(toUtf8(held));
            }
        },
        [](const char*, size_t) {}, [&] { text = "NULL"; });
    return text;
}

// To ask for the text itself would make SQLite put an end behind it, for which there may be no
// room.
std::string_view textOf(sqlite3_value* value) {
    return blobOf(value);
}

bool areSame(sqlite3_value* a, sqlite3_value* b) {
    const int held = sqlite3_value_type(a);
    const int other = sqlite3_value_type(b);
    if (held == SQLITE_INTEGER && other == SQLITE_INTEGER) {
        return sqlite3_value_int64(a) == sqlite3_value_int64(b);
    }
    if (held == SQLITE_INTEGER || held == SQLITE_FLOAT) {
        return (other == SQLITE_INTEGER || other == SQLITE_FLOAT) &&
               sqlite3_value_double(a) == sqlite3_value_double(b);
    }
    if (held != other) {
        return false;
    }
    return held == SQLITE_NULL ||
           (held == SQLITE_TEXT ? compareTexts(textOf(a), textOf(b)) == 0 : blobOf(a) == blobOf(b));
}

// A whole number that equals a real one is that one when it is made real.
std::optional<uint64_t> hashOf(const jet::Value& value) {
    std::optional<uint64_t> hash;
    passOn(
        value, [&](int64_t number) { hash = hashOfNumber(static_cast<double>(number)); },
        [&](double number) { hash = hashOfNumber(number); },
        [&](const std::wstring& text) { hash = hashOf(std::string_view(toUtf8(text))); },
        [&](const char* bytes, size_t size) {
            hash = hashOfBytes({bytes, size});
        },
        [] {});
    return hash;
}

std::optional<uint64_t> hashOf(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return hashOfNumber(sqlite3_value_double(value));
        case SQLITE_TEXT:
            return hashOf(textOf(value));
        case SQLITE_BLOB:
            return hashOfBytes(blobOf(value));
        default:
            return std::nullopt;
    }
}

}  // namespace sg::sql

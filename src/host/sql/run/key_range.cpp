#include "host/sql/run/key_range.h"

#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/text_order.h"

namespace sg::sql {
namespace {

enum class Fit : uint8_t { Exact, None, Unbounded };

// The whole number of the column that bounds what is asked for.
Fit wholeBound(ColumnType type, double number, Bound bound, jet::Value& into) {
    const double whole = bound == Bound::Low ? std::floor(number) : std::ceil(number);
    if (bound == Bound::Equal && whole != number) {
        return Fit::None;
    }
    const bool isByte = type == ColumnType::Byte;
    const bool isShort = type == ColumnType::Integer;
    const double least = isByte ? 0 : isShort ? -32768.0 : -2147483648.0;
    const double most = isByte ? 255 : isShort ? 32767.0 : 2147483647.0;
    if (!(whole >= least && whole <= most)) {
        const bool outside = bound == Bound::Equal || (bound == Bound::Low) == (whole > most);
        return outside ? Fit::None : Fit::Unbounded;
    }
    if (isByte) {
        into = static_cast<uint8_t>(whole);
    } else if (isShort) {
        into = static_cast<int16_t>(whole);
    } else {
        into = static_cast<int32_t>(whole);
    }
    return Fit::Exact;
}

Fit numberBound(ColumnType type, sqlite3_value* given, Bound bound, jet::Value& into) {
    const int held = sqlite3_value_type(given);
    if (held != SQLITE_INTEGER && held != SQLITE_FLOAT) {
        return Fit::Unbounded;
    }
    const double number = sqlite3_value_double(given);
    switch (type) {
        case ColumnType::Double:
        case ColumnType::Date:
            take(given, type, into);
            return Fit::Exact;
        case ColumnType::Boolean:
            into = number != 0;
            return number == 0 || number == -1 ? Fit::Exact : Fit::None;
        case ColumnType::Currency:
            if (held != SQLITE_INTEGER) {
                return Fit::Unbounded;
            }
            take(given, type, into);
            return Fit::Exact;
        default:
            return wholeBound(type, number, bound, into);
    }
}

// The part of a pattern before its first sign, as far as keys keep it.
Fit patternBound(sqlite3_value* given, jet::Value& into) {
    if (sqlite3_value_type(given) != SQLITE_TEXT) {
        return Fit::Unbounded;
    }
    const std::string_view pattern = textOf(given);
    const std::string_view kept = keptByKeys(pattern.substr(0, pattern.find_first_of("*?#[")));
    into = std::wstring(kept.begin(), kept.end());
    return kept.empty() || kept.size() > jet::kIndexedTextUnits ? Fit::Unbounded : Fit::Exact;
}

// The value of the column that bounds what is asked for. None: no value can fulfil it.
Fit boundValue(ColumnType type, sqlite3_value* given, Bound bound, jet::Value& into) {
    const int held = sqlite3_value_type(given);
    if (held == SQLITE_NULL) {
        return Fit::None;
    }
    if (bound == Bound::Like) {
        return patternBound(given, into);
    }
    if (type == ColumnType::Text) {
        if (held != SQLITE_TEXT) {
            return Fit::Unbounded;
        }
        take(given, ColumnType::Text, into);
        return Fit::Exact;
    }
    if (type == ColumnType::Guid) {
        if (held != SQLITE_BLOB || sqlite3_value_bytes(given) != 16) {
            return Fit::None;
        }
        take(given, ColumnType::Guid, into);
        return Fit::Exact;
    }
    return numberBound(type, given, bound, into);
}

// The number in it, where it is a real one.
double* realIn(jet::Value& value) {
    if (auto* date = std::get_if<jet::Date>(&value)) {
        return &date->days;
    }
    return std::get_if<double>(&value);
}

// To an index zeros have two signs.
jet::Value withSign(jet::Value value, bool negative) {
    double* real = realIn(value);
    if (real != nullptr && *real == 0) {
        *real = negative ? -0.0 : 0.0;
    }
    return value;
}

bool isAscending(const jet::KeyEncoder& encoder, size_t part) {
    return part >= encoder.columns().size() || encoder.columns()[part].ascending;
}

}  // namespace

// False when the rest of the arguments is of no use.
bool RangeMaker::add(ColumnType type, Bound bound, sqlite3_value* argument) {
    jet::Value value;
    const Fit fit = boundValue(type, argument, bound, value);
    isEmpty_ = isEmpty_ || fit == Fit::None;
    if (fit != Fit::Exact) {
        return fit == Fit::Unbounded && bound != Bound::Equal;
    }
    isPattern_ = bound == Bound::Like;
    const double* real = realIn(value);
    if (bound == Bound::Equal && (real == nullptr || *real != 0)) {
        equal_.push_back(std::move(value));
        return true;
    }
    if (bound != Bound::High) {
        low_ = withSign(value, true);
    }
    if (bound != Bound::Low) {
        high_ = withSign(value, false);
    }
    return bound != Bound::Equal;
}

// Without a value it is of the values before it alone, and of those whose next column isn't Null.
void RangeMaker::makeEnd(const jet::KeyEncoder& encoder, const std::optional<jet::Value>& value,
                         jet::KeyBytes& key) {
    const bool ascending = isAscending(encoder, equal_.size());
    if (!value) {
        encoder.encode(equal_, key);
        key.push_back(ascending ? jet::keyOfValue : jet::keyOfValueDescending);
        return;
    }
    equal_.push_back(*value);
    encoder.encode(equal_, key);
    equal_.pop_back();
    if (isPattern_) {
        // The end bytes of a text.
        key.erase(key.end() - (ascending ? 2 : 3), key.end());
    }
}

void RangeMaker::make(const JetTable& table, const AccessPath& path, sqlite3_value** arguments,
                      KeyRange& range) {
    const jet::KeyEncoder& encoder = table.encoders[path.index];
    equal_.clear();
    low_.reset();
    high_.reset();
    isPattern_ = isEmpty_ = false;
    for (size_t i = 0; i < path.bounds.size(); ++i) {
        const ColumnType type = encoder.columns()[equal_.size()].type;
        if (!add(type, static_cast<Bound>(path.bounds[i]), arguments[i])) {
            break;
        }
    }
    range.isEmpty = isEmpty_;
    if (isEmpty_) {
        return;
    }
    if (!low_ && !high_) {
        encoder.encode(equal_, range.low);
        range.high = range.low;
        return;
    }
    const bool ascending = isAscending(encoder, equal_.size());
    makeEnd(encoder, ascending ? low_ : high_, range.low);
    makeEnd(encoder, ascending ? high_ : low_, range.high);
}

}  // namespace sg::sql

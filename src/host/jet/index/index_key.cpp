#include "host/jet/index/index_key.h"

#include <algorithm>
#include <bit>
#include <cwchar>
#include <iterator>

#include "host/jet/format/error.h"

namespace sg::jet {

namespace {

constexpr uint8_t kNull = 0x00;  // inverted in a descending column, as the other marks are
constexpr uint8_t kTrue = 0x00;
constexpr uint8_t kFalse = 0xFF;
constexpr size_t kGroupSize = 8;    // of binary values
constexpr uint8_t kMoreGroups = 9;  // in place of a group's length: another one follows
constexpr uint8_t kSignBit = 0x80;
constexpr uint8_t kNotNegative = 0xFF;  // sign byte of numbers with a scale

template <class T>
const T& require(const Value& value) {
    const T* held = std::get_if<T>(&value);
    if (held == nullptr) throw Error(ConversionError);
    return *held;
}

// The bytes of `bits`, most significant first.
template <class T>
void appendBig(T bits, KeyBytes& key) {
    for (size_t i = sizeof(T); i-- > 0;)
        key.push_back(static_cast<uint8_t>(bits >> (8 * i)));
}

void invert(KeyBytes& key, size_t from) {
    for (size_t i = from; i < key.size(); ++i)
        key[i] = static_cast<uint8_t>(~key[i]);
}

// Two's complement with the sign bit turned over sorts as the numbers do.
template <class T>
void appendInteger(T number, bool ascending, KeyBytes& key) {
    using Bits = std::make_unsigned_t<T>;
    const size_t start = key.size();
    appendBig(static_cast<Bits>(number), key);
    key[start] ^= kSignBit;
    if (!ascending) invert(key, start);
}

// IEEE numbers sort as their bits do, but for the sign: negative ones run backwards.
template <class Bits>
void appendFloating(Bits bits, bool ascending, KeyBytes& key) {
    const size_t start = key.size();
    appendBig(bits, key);
    if ((key[start] & kSignBit) != 0) {
        invert(key, start);
    } else {
        key[start] ^= kSignBit;
    }
    if (!ascending) invert(key, start);
}

// Groups of eight bytes, each followed by its length or by the sign that another one comes, which
// stays as it is in a descending column.
void appendBinary(std::span<const uint8_t> bytes, bool ascending, KeyBytes& key) {
    for (size_t at = 0; at < bytes.size(); at += kGroupSize) {
        const size_t length = std::min(kGroupSize, bytes.size() - at);
        const bool isLast = at + kGroupSize >= bytes.size();
        const size_t start = key.size();
        const auto group = bytes.subspan(at, length);
        key.insert(key.end(), group.begin(), group.end());
        key.insert(key.end(), kGroupSize - length, 0);
        if (isLast) key.push_back(static_cast<uint8_t>(length));
        if (!ascending) invert(key, start);
        if (!isLast) key.push_back(kMoreGroups);
    }
}

// Keys have the order of the text form: the first three groups most significant byte first.
void appendGuid(const Guid& guid, bool ascending, KeyBytes& key) {
    std::array<uint8_t, 16> bytes = guid.bytes;
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    appendBinary(bytes, ascending, key);
}

using Magnitude = std::array<uint32_t, 4>;

Magnitude timesTen(Magnitude words) {
    uint64_t carry = 0;
    for (size_t i = words.size(); i-- > 0;) {
        carry += uint64_t(words[i]) * 10;
        words[i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    if (carry != 0) throw Error(ConversionError);
    return words;
}

Magnitude byTen(Magnitude words) {
    uint64_t rest = 0;
    for (uint32_t& word : words) {
        const uint64_t part = rest << 32 | word;
        word = static_cast<uint32_t>(part / 10);
        rest = part % 10;
    }
    if (rest != 0) throw Error(ConversionError);
    return words;
}

Magnitude scaledTo(const Decimal& decimal, uint8_t scale) {
    Magnitude words = decimal.words;
    for (int i = decimal.scale; i < scale; ++i)
        words = timesTen(words);
    for (int i = decimal.scale; i > scale; --i)
        words = byTen(words);
    return words;
}

// A sign byte and sixteen bytes of magnitude. Engines before ACE did not invert the sign byte of
// descending columns, so that negative numbers came first there too.
void appendDecimal(const KeyColumn& column, const Decimal& decimal, KeyBytes& key) {
    const Magnitude words = scaledTo(decimal, column.scale);
    const bool isZero = std::all_of(words.begin(), words.end(), [](uint32_t w) { return w == 0; });
    const bool negative = decimal.negative && !isZero;
    const size_t start = key.size();
    key.push_back(kNotNegative);
    for (uint32_t word : words)
        appendBig(word, key);
    if (negative == column.ascending) invert(key, start);
    if (column.oldNumeric) key[start] = negative ? uint8_t(~kNotNegative) : kNotNegative;
}

[[noreturn]] void refuse(std::wstring detail) {
    ErrorPlace place;
    place.detail = std::move(detail);
    throw Error(OperationNotSupported, {}, std::move(place));
}

void appendText(const KeyColumn& column, const std::wstring& text, KeyBytes& key) {
    if (!appendTextKey(column.order, text, !column.ascending, key))
        refuse(L"the text has a character that the sort order of the index has no weight for");
}

bool hasKeys(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
        case ColumnType::Binary:
        case ColumnType::Text:
        case ColumnType::Memo:
        case ColumnType::Guid:
        case ColumnType::Numeric:
        case ColumnType::Complex:
        case ColumnType::BigInteger:
            return true;
        default:  // a DateTimeExtended's key has more digits than a Date
            return false;
    }
}

void appendValue(const KeyColumn& column, const Value& value, KeyBytes& key) {
    const bool ascending = column.ascending;
    switch (column.type) {
        case ColumnType::Boolean:
            break;
        case ColumnType::Byte: {
            const uint8_t number = require<uint8_t>(value);
            key.push_back(ascending ? number : static_cast<uint8_t>(~number));
            return;
        }
        case ColumnType::Integer:
            return appendInteger(require<int16_t>(value), ascending, key);
        case ColumnType::Long:
        case ColumnType::Complex:
            return appendInteger(require<int32_t>(value), ascending, key);
        case ColumnType::BigInteger:
            return appendInteger(require<int64_t>(value), ascending, key);
        case ColumnType::Currency:
            return appendInteger(require<Currency>(value).scaled, ascending, key);
        case ColumnType::Single:
            return appendFloating(std::bit_cast<uint32_t>(require<float>(value)), ascending, key);
        case ColumnType::Double:
            return appendFloating(std::bit_cast<uint64_t>(require<double>(value)), ascending, key);
        case ColumnType::Date:
            return appendFloating(std::bit_cast<uint64_t>(require<Date>(value).days), ascending,
                                  key);
        case ColumnType::Text:
        case ColumnType::Memo:
            return appendText(column, require<std::wstring>(value), key);
        case ColumnType::Binary:
            return appendBinary(require<Bytes>(value), ascending, key);
        case ColumnType::Guid:
            return appendGuid(require<Guid>(value), ascending, key);
        case ColumnType::Numeric:
            return appendDecimal(column, require<Decimal>(value), key);
        case ColumnType::Ole:
        case ColumnType::DateTimeExtended:
            break;
    }
    refuse(L"columns of this type have no index keys");
}

TextOrder orderOf(const Format& format, const Column& column) {
    const TextOrder order = textOrder(column.sortOrder.id, column.sortOrder.version);
    if (!format.isJet3() || order == TextOrder::Unknown) return order;
    return TextOrder::General97;
}

std::wstring problemOf(const KeyColumn& key, const Column& column) {
    if (!hasKeys(key.type))
        return L"the keys of column '" + column.name + L"' are of a type that is not supported";
    if (!column.isText() || key.order != TextOrder::Unknown) return {};
    wchar_t order[64];
    std::swprintf(order, std::size(order), L"0x%04x, version %u", unsigned(column.sortOrder.id),
                  unsigned(column.sortOrder.version));
    return L"the sort order of column '" + column.name + L"' (" + order + L") is not supported";
}

}  // namespace

void appendKey(const KeyColumn& column, const Value& value, KeyBytes& key) {
    const auto marked = [&](uint8_t byte) {
        return column.ascending ? byte : static_cast<uint8_t>(~byte);
    };
    if (column.type == ColumnType::Boolean) {
        const bool isTrue = !isNull(value) && require<bool>(value);
        key.push_back(marked(keyOfValue));
        key.push_back(marked(isTrue ? kTrue : kFalse));
    } else if (isNull(value)) {
        key.push_back(marked(kNull));
    } else {
        key.push_back(marked(keyOfValue));
        appendValue(column, value, key);
    }
}

KeyEncoder::KeyEncoder(const Format& format, const TableDefinition& table, const RealIndex& index)
    : ignoresNulls_(index.ignoresNulls()) {
    for (const IndexColumn& part : index.columns) {
        const std::optional<size_t> place = table.columnByNumber(part.column);
        if (!place) throwDamaged(L"an index over a column that is not there", table.page);
        const Column& column = table.columns[*place];
        KeyColumn key;
        key.type = column.type;
        key.ascending = part.ascending;
        key.scale = column.scale;
        key.oldNumeric = !format.isAce();
        if (column.isText()) key.order = orderOf(format, column);
        if (problem_.empty()) problem_ = problemOf(key, column);
        columns_.push_back(key);
        places_.push_back(*place);
    }
}

void KeyEncoder::requireUsable() const {
    if (!usable()) refuse(problem_);
}

void KeyEncoder::encode(std::span<const Value> values, KeyBytes& key) const {
    requireUsable();
    if (values.size() > columns_.size()) throw Error(InvalidArgument);
    key.clear();
    for (size_t i = 0; i < values.size(); ++i)
        appendKey(columns_[i], values[i], key);
}

bool KeyEncoder::hasEntry(std::span<const Value> values) const {
    return !ignoresNulls_ || !std::all_of(values.begin(), values.end(), isNull);
}

}  // namespace sg::jet

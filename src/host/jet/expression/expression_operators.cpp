#include "host/jet/expression/expression_operators.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "base/text.h"
#include "host/jet/expression/expression_decimal.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/index/sort_order.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

// Numbers in the order in which operators prefer them for a result.
enum class Rank : uint8_t { Byte, Integer, Long, Single, Double, Currency, Decimal, Date };

Rank rankOf(const Value& value) {
    return std::visit(
        [](const auto& v) {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, uint8_t>) {
                return Rank::Byte;
            } else if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, int16_t>) {
                return Rank::Integer;
            } else if constexpr (std::is_same_v<T, int32_t>) {
                return Rank::Long;
            } else if constexpr (std::is_same_v<T, float>) {
                return Rank::Single;
            } else if constexpr (std::is_same_v<T, Currency>) {
                return Rank::Currency;
            } else if constexpr (std::is_same_v<T, Decimal> || std::is_same_v<T, int64_t>) {
                return Rank::Decimal;
            } else if constexpr (std::is_same_v<T, Date>) {
                return Rank::Date;
            } else {
                return Rank::Double;
            }
        },
        value);
}

bool isWhole(Rank rank) {
    return rank <= Rank::Long;
}

// Of a value whose rank is Byte, Integer or Long.
int64_t integerOf(const Value& value) {
    if (const auto* byte = std::get_if<uint8_t>(&value)) {
        return *byte;
    }
    if (const auto* integer = std::get_if<int16_t>(&value)) {
        return *integer;
    }
    if (const auto* boolean = std::get_if<bool>(&value)) {
        return *boolean ? -1 : 0;
    }
    return std::get<int32_t>(value);
}

Decimal toDecimal(const Value& value) {
    if (const auto* decimal = std::get_if<Decimal>(&value)) {
        return *decimal;
    }
    if (const auto* currency = std::get_if<Currency>(&value)) {
        return decimalOf(*currency);
    }
    if (const auto* big = std::get_if<int64_t>(&value)) {
        return decimalOf(*big);
    }
    return isWhole(rankOf(value)) ? decimalOf(integerOf(value)) : decimalOf(numberOf(value));
}

// Whole numbers of `rank` that overflow become the next wider ones.
Value wholeResult(int64_t value, Rank rank) {
    if (rank == Rank::Byte && value >= 0 && value <= 255) {
        return static_cast<uint8_t>(value);
    }
    if (rank == Rank::Long && value >= std::numeric_limits<int32_t>::min() &&
        value <= std::numeric_limits<int32_t>::max()) {
        return static_cast<int32_t>(value);
    }
    return wholeValue(value);
}

Value doubleResult(double value) {
    if (!std::isfinite(value)) {
        throwConversion(L"overflow");
    }
    return value;
}

Value singleResult(double value) {
    const auto single = static_cast<float>(value);
    return std::isfinite(single) ? Value(single) : doubleResult(value);
}

Value dateResult(double days) {
    return dateOf(days);
}

double calculate(Operator op, double a, double b) {
    switch (op) {
        case Operator::Add:
            return a + b;
        case Operator::Subtract:
            return a - b;
        default:
            return a * b;
    }
}

Decimal calculate(Operator op, const Decimal& a, const Decimal& b) {
    switch (op) {
        case Operator::Add:
            return add(a, b);
        case Operator::Subtract:
            return subtract(a, b);
        default:
            return multiply(a, b);
    }
}

// Of the operands of +, - and *: the higher of the two, but that a Long doesn't fit in a Single,
// that times a Single or a Double a Currency is a Double, and that dates keep to adding and
// subtracting.
Rank resultRank(Operator op, Rank a, Rank b) {
    const Rank low = std::min(a, b);
    const Rank high = std::max(a, b);
    if (high == Rank::Single && low == Rank::Long) {
        return Rank::Double;
    }
    const bool isReal = low == Rank::Single || low == Rank::Double;
    if (op == Operator::Multiply && high == Rank::Currency && isReal) {
        return Rank::Double;
    }
    if (high == Rank::Date &&
        (op == Operator::Multiply || (op == Operator::Subtract && low == Rank::Date))) {
        return Rank::Double;
    }
    return high;
}

// +, - and *.
Value arithmetic(Operator op, const Value& a, const Value& b) {
    const Rank rank = resultRank(op, rankOf(a), rankOf(b));
    switch (rank) {
        case Rank::Byte:
        case Rank::Integer:
        case Rank::Long: {
            const int64_t x = integerOf(a);
            const int64_t y = integerOf(b);
            const int64_t result = op == Operator::Add        ? x + y
                                   : op == Operator::Subtract ? x - y
                                                              : x * y;
            return wholeResult(result, rank);
        }
        case Rank::Currency:
            return currencyOf(calculate(op, toDecimal(a), toDecimal(b)));
        case Rank::Decimal:
            return calculate(op, toDecimal(a), toDecimal(b));
        default:
            break;
    }
    const double result = calculate(op, numberOf(a), numberOf(b));
    return rank == Rank::Single ? singleResult(result)
           : rank == Rank::Date ? dateResult(result)
                                : doubleResult(result);
}

Value divided(const Value& a, const Value& b) {
    const Rank left = rankOf(a);
    const Rank right = rankOf(b);
    const Rank high = std::max(left, right);
    if (high == Rank::Decimal) {
        return divide(toDecimal(a), toDecimal(b));
    }
    const double divisor = numberOf(b);
    if (divisor == 0) {
        throwConversion(L"division by zero");
    }
    const double quotient = numberOf(a) / divisor;
    const bool single = high == Rank::Single && left != Rank::Long && right != Rank::Long;
    return single ? singleResult(quotient) : doubleResult(quotient);
}

// \ and Mod, of both operands rounded.
Value dividedWhole(Operator op, const Value& a, const Value& b) {
    const int64_t dividend = wholeOf(a);
    const int64_t divisor = wholeOf(b);
    if (divisor == 0) {
        throwConversion(L"division by zero");
    }
    const Rank rank = std::max(rankOf(a), rankOf(b));
    return wholeResult(op == Operator::Modulo ? dividend % divisor : dividend / divisor,
                       std::min(rank, Rank::Long));
}

Value power(const Value& a, const Value& b) {
    const double base = numberOf(a);
    const double exponent = numberOf(b);
    if (base == 0 && exponent < 0) {
        throwConversion(L"division by zero");
    }
    return doubleResult(std::pow(base, exponent));
}

bool isText(const Value& value) {
    return std::holds_alternative<std::wstring>(value);
}

Value concatenated(const Value& a, const Value& b) {
    if (isNull(a) && isNull(b)) {
        return {};
    }
    return toInvariantText(a) + toInvariantText(b);
}

// --- logic ---

bool isBoolean(const Value& value) {
    return std::holds_alternative<bool>(value);
}

// The bits that And, Or and their kin work on.
int32_t bitsOf(const Value& value) {
    if (isText(value)) {
        double number = 0;
        if (!toDouble(value, number)) {
            return truthOf(value) ? -1 : 0;
        }
    }
    return wholeOf(value);
}

int32_t combined(Operator op, int32_t a, int32_t b) {
    switch (op) {
        case Operator::And:
            return a & b;
        case Operator::Or:
            return a | b;
        case Operator::Xor:
            return a ^ b;
        case Operator::Eqv:
            return ~(a ^ b);
        default:
            return ~a | b;
    }
}

Value logical(Operator op, const Value& a, const Value& b) {
    if (isNull(a) || isNull(b)) {
        // One side may decide alone: 0 And, what is not zero Or, False Imp, Imp True.
        const Value& given = isNull(a) ? b : a;
        if (isNull(given)) {
            return {};
        }
        const int32_t bits = bitsOf(given);
        const bool decides = op == Operator::And   ? bits == 0
                             : op == Operator::Or  ? bits != 0
                             : op == Operator::Imp ? (isNull(a) ? bits == -1 : bits == 0)
                                                   : false;
        if (!decides) {
            return {};
        }
        return op == Operator::Imp ? Value(true) : given;
    }
    const int32_t bits = combined(op, bitsOf(a), bitsOf(b));
    if (isBoolean(a) && isBoolean(b)) {
        return bits != 0;
    }
    const bool narrow = rankOf(a) <= Rank::Integer && rankOf(b) <= Rank::Integer;
    return narrow ? wholeValue(bits) : Value(bits);
}

// --- comparison ---

// What both sides of a comparison with a Single are taken to, so that a stored 0.1 equals 0.1.
std::partial_ordering compareSingles(double a, double b) {
    return static_cast<float>(a) <=> static_cast<float>(b);
}

std::partial_ordering compareNumbers(const Value& a, const Value& b) {
    const Rank left = rankOf(a);
    const Rank right = rankOf(b);
    if (isWhole(left) && isWhole(right)) {
        return integerOf(a) <=> integerOf(b);
    }
    const auto isExact = [](Rank rank) {
        return isWhole(rank) || rank == Rank::Currency || rank == Rank::Decimal;
    };
    if (isExact(left) && isExact(right)) {
        return compare(toDecimal(a), toDecimal(b)) <=> 0;
    }
    double x = numberOf(a);
    double y = numberOf(b);
    // An amount has four digits behind the point, and so gets what it is compared with.
    if (left == Rank::Currency || right == Rank::Currency) {
        double& other = left == Rank::Currency ? y : x;
        if (std::abs(other) < 9e14) {
            other = std::nearbyint(other * 1e4) / 1e4;
        }
    } else if (left == Rank::Single || right == Rank::Single) {
        return compareSingles(x, y);
    }
    return x <=> y;
}

// `text` as a value of the kind of `beside`.
Value readBeside(const Value& text, const Value& beside) {
    if (isBoolean(beside)) {
        return truthOf(text);
    }
    if (std::holds_alternative<Date>(beside)) {
        return dateOf(text);
    }
    return numberOf(text);
}

bool isOrdered(Operator op, std::partial_ordering order) {
    switch (op) {
        case Operator::Equal:
            return order == 0;
        case Operator::NotEqual:
            return order != 0;
        case Operator::Less:
            return order < 0;
        case Operator::LessOrEqual:
            return order <= 0;
        case Operator::Greater:
            return order > 0;
        default:
            return order >= 0;
    }
}

}  // namespace

std::partial_ordering compareValues(const Value& a, const Value& b) {
    const auto isOfBytes = [](const Value& value) {
        return std::holds_alternative<Bytes>(value) || std::holds_alternative<Guid>(value);
    };
    if (const auto* x = std::get_if<Bytes>(&a), *y = std::get_if<Bytes>(&b); x && y) {
        return *x <=> *y;
    }
    if ((isText(a) && isText(b)) || isOfBytes(a) || isOfBytes(b)) {
        if (std::holds_alternative<Bytes>(a) || std::holds_alternative<Bytes>(b) ||
            (isOfBytes(a) != isOfBytes(b) && !isText(a) && !isText(b))) {
            throwConversion(L"binary data in a comparison");
        }
        return compareTexts(toInvariantText(a), toInvariantText(b));
    }
    if (isText(a)) {
        return compareNumbers(readBeside(a, b), b);
    }
    return isText(b) ? compareNumbers(a, readBeside(b, a)) : compareNumbers(a, b);
}

Value negate(const Value& value) {
    if (isNull(value)) {
        return {};
    }
    const Rank rank = rankOf(value);
    switch (rank) {
        case Rank::Byte:
        case Rank::Integer:
        case Rank::Long:
            return wholeResult(-integerOf(value), std::max(rank, Rank::Integer));
        case Rank::Currency:
            return currencyOf(negated(toDecimal(value)));
        case Rank::Decimal:
            return negated(toDecimal(value));
        case Rank::Single:
            return -std::get<float>(value);
        case Rank::Date:
            return dateResult(-numberOf(value));
        default:
            return -numberOf(value);
    }
}

Value invert(const Value& value) {
    if (isNull(value)) {
        return {};
    }
    if (isBoolean(value)) {
        return !std::get<bool>(value);
    }
    const int32_t bits = ~bitsOf(value);
    return rankOf(value) <= Rank::Integer ? wholeValue(bits) : Value(bits);
}

Value applyOperator(Operator op, const Value& a, const Value& b) {
    if (op == Operator::Concatenate) {
        return concatenated(a, b);
    }
    if (op >= Operator::And) {
        return logical(op, a, b);
    }
    if (isNull(a) || isNull(b)) {
        return {};
    }
    switch (op) {
        case Operator::Power:
            return power(a, b);
        case Operator::Divide:
            return divided(a, b);
        case Operator::IntegerDivide:
        case Operator::Modulo:
            return dividedWhole(op, a, b);
        case Operator::Add:
            return isText(a) && isText(b) ? concatenated(a, b) : arithmetic(op, a, b);
        case Operator::Subtract:
        case Operator::Multiply:
            return arithmetic(op, a, b);
        default:
            return isOrdered(op, compareValues(a, b));
    }
}

}  // namespace sg::jet::detail

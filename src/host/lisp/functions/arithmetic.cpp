#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

#include "host/lisp/functions/equality.h"
#include "host/lisp/functions/tables.h"

// Numbers, comparison and bits. Integers have 32 bits and wrap around; one real among the numbers
// of a calculation makes it one of reals from its start.
namespace sg::lisp {
namespace {

constexpr int64_t kLeastInt = std::numeric_limits<int32_t>::min();
constexpr int64_t kMostInt = std::numeric_limits<int32_t>::max();

int32_t wrap(int64_t i) {
    return static_cast<int32_t>(static_cast<uint32_t>(i));
}

// True when all are integers; fails when one is no number.
bool allIntegers(Interpreter& in, Args a) {
    bool integers = true;
    for (const Value v : a) {
        if (v.isInt()) continue;
        if (!v.isReal()) in.badArgument(L"numberp:", v);
        integers = false;
    }
    return integers;
}

[[noreturn]] void divideByZero(Interpreter& in) {
    in.fail(L"divide by zero");
}

[[noreturn]] void undefinedFor(Interpreter& in, Value v) {
    in.fail(L"function undefined for argument: " + in.toQuotedText(v));
}

// ---- The four operations, and others that go over any number of numbers -------------------------

struct Add {
    static int32_t ints(Interpreter&, int64_t a, int64_t b) { return wrap(a + b); }
    static double reals(Interpreter&, double a, double b) { return a + b; }
};
struct Subtract {
    static int32_t ints(Interpreter&, int64_t a, int64_t b) { return wrap(a - b); }
    static double reals(Interpreter&, double a, double b) { return a - b; }
};
struct Multiply {
    static int32_t ints(Interpreter&, int64_t a, int64_t b) { return wrap(a * b); }
    static double reals(Interpreter&, double a, double b) { return a * b; }
};
struct Divide {
    static int32_t ints(Interpreter& in, int64_t a, int64_t b) {
        if (b == 0) divideByZero(in);
        return wrap(a / b);
    }
    static double reals(Interpreter& in, double a, double b) {
        if (b == 0) divideByZero(in);
        return a / b;
    }
};
struct Remainder {
    static int32_t ints(Interpreter& in, int64_t a, int64_t b) {
        if (b == 0) divideByZero(in);
        return wrap(a % b);
    }
    static double reals(Interpreter& in, double a, double b) {
        if (b == 0) divideByZero(in);
        return std::fmod(a, b);
    }
};
struct Greatest {
    static int32_t ints(Interpreter&, int64_t a, int64_t b) { return wrap(std::max(a, b)); }
    static double reals(Interpreter&, double a, double b) { return std::max(a, b); }
};
struct Least {
    static int32_t ints(Interpreter&, int64_t a, int64_t b) { return wrap(std::min(a, b)); }
    static double reals(Interpreter&, double a, double b) { return std::min(a, b); }
};

// From the first number onwards; no number at all gives 0.
template <class Operation>
Value fnFold(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::integer(0);
    if (allIntegers(in, a)) {
        int32_t result = a[0].asInt();
        for (const Value v : a.from(1))
            result = Operation::ints(in, result, v.asInt());
        return Value::integer(result);
    }
    double result = a[0].asNumber();
    for (const Value v : a.from(1))
        result = Operation::reals(in, result, v.asNumber());
    return Value::real(result);
}

Value fnSubtract(Interpreter& in, Args a) {
    if (a.size() != 1) return fnFold<Subtract>(in, a);
    if (a[0].isInt()) return Value::integer(wrap(-int64_t{a[0].asInt()}));
    return Value::real(0 - in.number(a[0]));
}

template <int Step>
Value fnStep(Interpreter& in, Args a) {
    if (a[0].isInt()) return Value::integer(wrap(int64_t{a[0].asInt()} + Step));
    return Value::real(in.number(a[0]) + Step);
}

Value fnAbs(Interpreter& in, Args a) {
    if (a[0].isInt()) return Value::integer(wrap(std::abs(int64_t{a[0].asInt()})));
    return Value::real(std::fabs(in.number(a[0])));
}

struct CommonDivisor {
    static int64_t of(int64_t a, int64_t b) { return std::gcd(a, b); }
};
struct CommonMultiple {
    static int64_t of(int64_t a, int64_t b) { return a == 0 || b == 0 ? 0 : std::lcm(a, b); }
};

template <class Operation>
Value fnCommon(Interpreter& in, Args a) {
    int32_t result = a.size() == 0 ? 0 : wrap(std::abs(int64_t{in.integer(a[0])}));
    for (size_t i = 1; i < a.size(); ++i) {
        result = wrap(Operation::of(result, in.integer(a[i])));
    }
    return Value::integer(result);
}

// ---- Functions of reals -------------------------------------------------------------------------

template <double (*F)(double)>
Value fnReal(Interpreter& in, Args a) {
    return Value::real(F(in.number(a[0])));
}

Value fnAtan(Interpreter& in, Args a) {
    const double first = in.number(a[0]);
    return Value::real(a.has(1) ? std::atan2(first, in.number(a[1])) : std::atan(first));
}

Value fnSqrt(Interpreter& in, Args a) {
    if (in.number(a[0]) < 0) undefinedFor(in, a[0]);
    return Value::real(std::sqrt(a[0].asNumber()));
}

Value fnLog(Interpreter& in, Args a) {
    if (in.number(a[0]) <= 0) undefinedFor(in, a[0]);
    return Value::real(std::log(a[0].asNumber()));
}

// A power of two integers: an integer, cut off towards zero, unless it needs more than 32 bits.
Value integerPower(Interpreter& in, int32_t base, int32_t exponent) {
    if (exponent < 0) {
        if (base == 0) divideByZero(in);
        if (base != 1 && base != -1) return Value::integer(0);
        return Value::integer(base == 1 || exponent % 2 == 0 ? 1 : -1);
    }
    int64_t result = 1;
    int64_t factor = base;
    for (uint32_t left = static_cast<uint32_t>(exponent); left != 0;) {
        if (left & 1) result *= factor;
        left >>= 1;
        if (left != 0) factor *= factor;
        const bool fits =
            result >= kLeastInt && result <= kMostInt && (left == 0 || factor <= kMostInt + 1);
        if (!fits) return Value::real(std::pow(double{1} * base, exponent));
    }
    return Value::integer(static_cast<int32_t>(result));
}

Value fnExpt(Interpreter& in, Args a) {
    if (a[0].isInt() && a[1].isInt()) return integerPower(in, a[0].asInt(), a[1].asInt());
    const double base = in.number(a[0]);
    const double exponent = in.number(a[1]);
    if (base == 0 && exponent < 0) divideByZero(in);
    const double result = std::pow(base, exponent);
    if (std::isnan(result) && !std::isnan(base) && !std::isnan(exponent)) undefinedFor(in, a[0]);
    return Value::real(result);
}

// A real beyond 32 bits stays a real without its fraction.
Value fnFix(Interpreter& in, Args a) {
    if (a[0].isInt()) return a[0];
    const double whole = std::trunc(in.number(a[0]));
    if (whole >= kLeastInt && whole <= kMostInt) {
        return Value::integer(static_cast<int32_t>(whole));
    }
    return Value::real(whole);
}

Value fnFloat(Interpreter& in, Args a) {
    return Value::real(in.number(a[0]));
}

// ---- Tests of one value -------------------------------------------------------------------------

Value fnNumberp(Interpreter& in, Args a) {
    return in.boolean(a[0].isNumber());
}
Value fnZerop(Interpreter& in, Args a) {
    return in.boolean(in.number(a[0]) == 0);
}
Value fnMinusp(Interpreter& in, Args a) {
    return in.boolean(in.number(a[0]) < 0);
}
Value fnNull(Interpreter& in, Args a) {
    return in.boolean(a[0].isNil());
}

// ---- Bits ---------------------------------------------------------------------------------------

Value fnBitNot(Interpreter& in, Args a) {
    return Value::integer(~in.integer(a[0]));
}

Value fnBitAnd(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::integer(0);
    int32_t result = -1;
    for (const Value v : a)
        result &= in.integer(v);
    return Value::integer(result);
}

Value fnBitOr(Interpreter& in, Args a) {
    int32_t result = 0;
    for (const Value v : a)
        result |= in.integer(v);
    return Value::integer(result);
}

// Bits of the operator: 1 takes the bits that both have, 2 those of the first only, 4 those of the
// second only, 8 those of neither.
Value fnBoole(Interpreter& in, Args a) {
    const int32_t operation = in.integer(a[0]);
    int32_t result = in.integer(a[1]);
    for (size_t i = 2; i < a.size(); ++i) {
        const int32_t other = in.integer(a[i]);
        int32_t next = 0;
        if (operation & 1) next |= result & other;
        if (operation & 2) next |= result & ~other;
        if (operation & 4) next |= ~result & other;
        if (operation & 8) next |= ~(result | other);
        result = next;
    }
    return Value::integer(result);
}

// Zeros come in on either side.
Value fnShift(Interpreter& in, Args a) {
    const auto bits = static_cast<uint32_t>(in.integer(a[0]));
    const int32_t count = in.integer(a[1]);
    if (count <= -32 || count >= 32) return Value::integer(0);
    return Value::integer(static_cast<int32_t>(count >= 0 ? bits << count : bits >> -count));
}

// ---- Comparison ---------------------------------------------------------------------------------

struct Less {
    template <class T>
    static bool test(const T& a, const T& b) {
        return a < b;
    }
};
struct LessOrEqual {
    template <class T>
    static bool test(const T& a, const T& b) {
        return a <= b;
    }
};
struct Greater {
    template <class T>
    static bool test(const T& a, const T& b) {
        return a > b;
    }
};
struct GreaterOrEqual {
    template <class T>
    static bool test(const T& a, const T& b) {
        return a >= b;
    }
};

template <class Test>
bool isOrdered(Interpreter& in, Value a, Value b) {
    if (a.isNumber() && b.isNumber()) return Test::test(a.asNumber(), b.asNumber());
    if (a.isString() && b.isString()) {
        return Test::test(a.asString()->view(), b.asString()->view());
    }
    in.fail(L"bad argument type for compare: " + in.toQuotedText(a) + L" " + in.toQuotedText(b));
}

bool isSameValue(Value a, Value b) {
    if (a.isNumber() && b.isNumber()) return a.asNumber() == b.asNumber();
    if (a.isString() && b.isString()) return a.asString()->view() == b.asString()->view();
    return isIdentical(a, b);
}

// True when the test holds for every two neighbours.
template <class Test>
Value compareNeighbours(Interpreter& in, Args a, Test test) {
    for (size_t i = 1; i < a.size(); ++i) {
        if (!test(a[i - 1], a[i])) return Value::nil();
    }
    return in.t();
}

template <class Test>
Value fnOrder(Interpreter& in, Args a) {
    return compareNeighbours(in, a, [&](Value x, Value y) { return isOrdered<Test>(in, x, y); });
}

Value fnSame(Interpreter& in, Args a) {
    return compareNeighbours(in, a, isSameValue);
}

// Only neighbours are compared: (/= 10 20 10) is T.
Value fnDifferent(Interpreter& in, Args a) {
    return compareNeighbours(in, a, [](Value x, Value y) { return !isSameValue(x, y); });
}

Value fnEq(Interpreter& in, Args a) {
    return in.boolean(isIdentical(a[0], a[1]));
}

Value fnEqual(Interpreter& in, Args a) {
    const double fuzz = a.has(2) ? in.number(a[2]) : 0;
    return in.boolean(isEqual(in, a[0], a[1], fuzz));
}

constexpr FunctionRow kRows[] = {
    {L"+", fnFold<Add>, 0, kAnyCount},
    {L"-", fnSubtract, 0, kAnyCount},
    {L"*", fnFold<Multiply>, 0, kAnyCount},
    {L"/", fnFold<Divide>, 0, kAnyCount},
    {L"1+", fnStep<1>, 1, 1},
    {L"1-", fnStep<-1>, 1, 1},
    {L"abs", fnAbs, 1, 1},
    {L"atan", fnAtan, 1, 2},
    {L"cos", fnReal<std::cos>, 1, 1},
    {L"sin", fnReal<std::sin>, 1, 1},
    {L"exp", fnReal<std::exp>, 1, 1},
    {L"expt", fnExpt, 2, 2},
    {L"sqrt", fnSqrt, 1, 1},
    {L"log", fnLog, 1, 1},
    {L"fix", fnFix, 1, 1},
    {L"float", fnFloat, 1, 1},
    {L"gcd", fnCommon<CommonDivisor>, 0, kAnyCount},
    {L"lcm", fnCommon<CommonMultiple>, 0, kAnyCount},
    {L"max", fnFold<Greatest>, 0, kAnyCount},
    {L"min", fnFold<Least>, 0, kAnyCount},
    {L"rem", fnFold<Remainder>, 0, kAnyCount},
    {L"minusp", fnMinusp, 1, 1},
    {L"zerop", fnZerop, 1, 1},
    {L"numberp", fnNumberp, 1, 1},
    {L"~", fnBitNot, 1, 1},
    {L"logand", fnBitAnd, 0, kAnyCount},
    {L"logior", fnBitOr, 0, kAnyCount},
    {L"boole", fnBoole, 2, kAnyCount},
    {L"lsh", fnShift, 2, 2},
    {L"=", fnSame, 0, kAnyCount},
    {L"/=", fnDifferent, 0, kAnyCount},
    {L"<", fnOrder<Less>, 0, kAnyCount},
    {L"<=", fnOrder<LessOrEqual>, 0, kAnyCount},
    {L">", fnOrder<Greater>, 0, kAnyCount},
    {L">=", fnOrder<GreaterOrEqual>, 0, kAnyCount},
    {L"eq", fnEq, 2, 2},
    {L"equal", fnEqual, 2, 3},
    {L"null", fnNull, 1, 1},
    {L"not", fnNull, 1, 1},
};

}  // namespace

std::span<const FunctionRow> arithmeticFunctions() {
    return kRows;
}

}  // namespace sg::lisp

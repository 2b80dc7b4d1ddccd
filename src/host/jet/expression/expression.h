#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/values/value.h"

// The expressions that a table's design holds as text: default values and validation rules.
namespace sg::jet {

namespace detail {
struct ExpressionNode;
}

// What names in an expression stand for.
class SG_API ExpressionNames {
  public:
    virtual ~ExpressionNames() = default;
    // False when there is no such name. Names come without brackets, qualified ones ([Table].Column
    // or [Table]![Column]) as "Table.Column"; neither part holds a point.
    virtual bool value(std::wstring_view name, Value& into) const = 0;
};

// The time that Now(), Date() and Time() tell: local, in whole seconds.
using Clock = Date (*)();
// Tells another time from now on, in the whole process; nullptr is the system's clock. Answers the
// clock before. For tests.
SG_API Clock setExpressionClock(Clock clock);

// An expression taken apart once and evaluated often. Knows literals ("text", 'text', numbers,
// &Hff, #dates#, True, False, Null), [names] and Table.Column names, parentheses, + - * / \ ^ Mod
// &, comparisons, Like, Between, In, Is [Not] Null, Not And Or Xor Eqv Imp with the dialect's rules
// for Null, and the functions of dates, text, numbers, choice and conversion that table designs use
// (expression_functions.cpp and its kin list them).
//
// Precedence, tightest first: ^ (to the left: 2^3^2 is 64), sign (-2^2 is -4), * and /, \, Mod,
// + and -, &, comparisons, Not, And, Or, Xor, Eqv, Imp. A comparison's result is a Boolean and
// counts as -1 or 0. Integers that overflow go on as the next wider type. Text is compared
// ignoring case. A Null operand gives Null, but for & (where it is ""), And and Or (where the other
// side may decide), and functions that ask for it. IIf, Switch and Choose evaluate only what they
// answer.
class SG_API Expression {
  public:
    // A value's expression, with or without a "=" before it. Throws ExpressionSyntax with what is
    // wrong and the text, also for one that is longer than 16,384 characters or nested more than
    // some hundred levels deep; InvalidBracketing for a "[" without its "]"; UndefinedFunction with
    // the function's name.
    static Expression parse(std::wstring_view text);
    // A validation rule of a column: a comparison may leave out its left side ("> 0 And < 100",
    // "In ('a','b')", "Is Not Null", or a bare value, which must be equal), which then is the
    // column's value: the name "" asks for it. A bare value in an expression that names columns
    // stands as it is.
    static Expression parseRule(std::wstring_view text);

    Expression(Expression&&) noexcept;
    Expression& operator=(Expression&&) noexcept;
    ~Expression();

    // Throws UnknownName for a name that `names` lacks (it is in the error's detail),
    // ConversionError where operands don't fit, on division by zero and on overflow,
    // InvalidArgument for arguments out of range, and for a text of more than a million characters
    // or more work than a row is worth: what a file holds cannot make it run for long.
    Value evaluate(const ExpressionNames& names) const;
    // evaluate() as a condition: Null counts as met.
    bool isMet(const ExpressionNames& names) const;

  private:
    explicit Expression(std::unique_ptr<detail::ExpressionNode> root);
    std::unique_ptr<detail::ExpressionNode> root_;
};

// The dialect's LIKE, ignoring case: "*" any text, "?" a character, "#" a digit, "[a-z_]" one of
// these, "[!a-z]" none of these, "[]" nothing. A "[" without its "]" and a range that runs
// backwards match nothing.
SG_API bool isLike(std::wstring_view text, std::wstring_view pattern);

}  // namespace sg::jet

#pragma once

#include <string_view>

#include "host/sql/syntax.h"

// How the dialect's operators are written and how tightly they bind: for parser and printer.
namespace sg::sql::detail {

enum Precedence : int {
    ImpLevel = 1,
    EqvLevel,
    XorLevel,
    OrLevel,
    AndLevel,
    NotLevel,
    ComparisonLevel,  // = <> < <= > >= Like Between In Is
    ConcatenateLevel,
    AddLevel,
    ModuloLevel,
    IntegerDivideLevel,
    MultiplyLevel,
    SignLevel,
    PowerLevel,
    OperandLevel,
};

struct Infix {
    std::wstring_view text;
    int level;
};

// In the order of BinaryOperator. All bind to the left.
inline constexpr Infix infixes[] = {
    {L"^", PowerLevel},      {L"*", MultiplyLevel},
    {L"/", MultiplyLevel},   {L"\\", IntegerDivideLevel},
    {L"Mod", ModuloLevel},   {L"+", AddLevel},
    {L"-", AddLevel},        {L"&", ConcatenateLevel},
    {L"=", ComparisonLevel}, {L"<>", ComparisonLevel},
    {L"<", ComparisonLevel}, {L"<=", ComparisonLevel},
    {L">", ComparisonLevel}, {L">=", ComparisonLevel},
    {L"And", AndLevel},      {L"Or", OrLevel},
    {L"Xor", XorLevel},      {L"Eqv", EqvLevel},
    {L"Imp", ImpLevel},
};

inline const Infix& infixOf(BinaryOperator op) {
    return infixes[static_cast<size_t>(op)];
}

inline BinaryOperator operatorOf(const Infix& infix) {
    return static_cast<BinaryOperator>(&infix - infixes);
}

}  // namespace sg::sql::detail

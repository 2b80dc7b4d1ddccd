#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The dialect's operators between two operands: how they are written and how tightly they bind.
namespace sg::jet::detail {

enum class Operator : uint8_t {
    Power,
    Multiply,
    Divide,
    IntegerDivide,
    Modulo,
    Add,
    Subtract,
    Concatenate,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Like,
    And,
    Or,
    Xor,
    Eqv,
    Imp,
};

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
    Operator op;
    int level;
};

// In the order of Operator. All bind to the left.
inline constexpr Infix infixes[] = {
    {L"^", Operator::Power, PowerLevel},
    {L"*", Operator::Multiply, MultiplyLevel},
    {L"/", Operator::Divide, MultiplyLevel},
    {L"\\", Operator::IntegerDivide, IntegerDivideLevel},
    {L"Mod", Operator::Modulo, ModuloLevel},
    {L"+", Operator::Add, AddLevel},
    {L"-", Operator::Subtract, AddLevel},
    {L"&", Operator::Concatenate, ConcatenateLevel},
    {L"=", Operator::Equal, ComparisonLevel},
    {L"<>", Operator::NotEqual, ComparisonLevel},
    {L"<", Operator::Less, ComparisonLevel},
    {L"<=", Operator::LessOrEqual, ComparisonLevel},
    {L">", Operator::Greater, ComparisonLevel},
    {L">=", Operator::GreaterOrEqual, ComparisonLevel},
    {L"Like", Operator::Like, ComparisonLevel},
    {L"And", Operator::And, AndLevel},
    {L"Or", Operator::Or, OrLevel},
    {L"Xor", Operator::Xor, XorLevel},
    {L"Eqv", Operator::Eqv, EqvLevel},
    {L"Imp", Operator::Imp, ImpLevel},
};

constexpr const Infix& infixOf(Operator op) {
    return infixes[static_cast<size_t>(op)];
}

struct Token;

// The operator that the token is, ignoring case; nullptr for any other token.
const Infix* infixOf(const Token& token);

}  // namespace sg::jet::detail

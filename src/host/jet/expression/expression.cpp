#include "host/jet/expression/expression.h"

#include <utility>

#include "host/jet/expression/expression_functions.h"
#include "host/jet/expression/expression_node.h"
#include "host/jet/expression/expression_operators.h"
#include "host/jet/expression/expression_parser.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace detail {
namespace {

constexpr uint64_t maxText = 1 << 20;
// About a second's at worst; a sensible rule stays far below even over a long memo.
constexpr uint64_t maxWork = 1 << 26;

// Whether `value` alone makes `op` False or True, so that the other side need not be asked.
bool decides(Operator op, const Value& value) {
    const auto* boolean = std::get_if<bool>(&value);
    return boolean != nullptr &&
           ((op == Operator::And && !*boolean) || (op == Operator::Or && *boolean));
}

size_t textSize(const Value& value) {
    const auto* text = std::get_if<std::wstring>(&value);
    return text != nullptr ? text->size() : 0;
}

}  // namespace

void Evaluation::charge(uint64_t units) {
    work_ += units;
    if (work_ > maxWork) {
        throwInvalidArgument(L"an expression that takes too much work");
    }
}

void Evaluation::checkText(uint64_t length) {
    if (length > maxText) {
        throwInvalidArgument(L"a text that is too long");
    }
}

Value Evaluation::evaluate(const ExpressionNode& node) {
    charge(1);
    using Kind = ExpressionNode::Kind;
    switch (node.kind) {
        case Kind::Literal:
            charge(textSize(node.literal));
            return node.literal;
        case Kind::Name:
            return name(node);
        case Kind::Negate:
            return negate(evaluate(*node.children[0]));
        case Kind::Not:
            return invert(evaluate(*node.children[0]));
        case Kind::Binary:
            return binary(node);
        case Kind::Between:
            return between(node);
        case Kind::In:
            return in(node);
        case Kind::IsNull:
            return isNull(evaluate(*node.children[0]));
        case Kind::Call:
            return call(node);
    }
    return {};
}

bool Evaluation::isTrue(const ExpressionNode& node) {
    return truthOf(evaluate(node));
}

Value Evaluation::name(const ExpressionNode& node) {
    Value value;
    if (!names_->value(node.text, value)) {
        throw Error(UnknownName, {L"1"}, {.detail = node.text});
    }
    charge(textSize(value));
    return value;
}

Value Evaluation::binary(const ExpressionNode& node) {
    Value left = evaluate(*node.children[0]);
    if (decides(node.op, left)) {
        return left;
    }
    const Value right = evaluate(*node.children[1]);
    if (node.op == Operator::Like) {
        if (isNull(left) || isNull(right)) {
            return {};
        }
        const std::wstring text = toInvariantText(left);
        const std::wstring pattern = toInvariantText(right);
        // Without a "*" the first character that doesn't fit ends it.
        const bool mayGoBack = pattern.find(L'*') != pattern.npos;
        charge(text.size() * (mayGoBack ? pattern.size() : 1));
        return isLike(text, pattern);
    }
    if (node.op == Operator::Concatenate || node.op == Operator::Add) {
        checkText(textSize(left) + textSize(right));
    }
    charge(textSize(left) + textSize(right));
    return applyOperator(node.op, left, right);
}

// The bounds may come in either order; both belong to the range.
Value Evaluation::between(const ExpressionNode& node) {
    const Value value = evaluate(*node.children[0]);
    const Value low = evaluate(*node.children[1]);
    const Value high = evaluate(*node.children[2]);
    if (isNull(value) || isNull(low) || isNull(high)) {
        return {};
    }
    const std::partial_ordering toLow = compareValues(value, low);
    const std::partial_ordering toHigh = compareValues(value, high);
    return (toLow >= 0 && toHigh <= 0) || (toLow <= 0 && toHigh >= 0);
}

// Null when the value is not in the list but a Null is.
Value Evaluation::in(const ExpressionNode& node) {
    const Value value = evaluate(*node.children[0]);
    if (isNull(value)) {
        return {};
    }
    bool anyNull = false;
    for (size_t i = 1; i < node.children.size(); ++i) {
        const Value item = evaluate(*node.children[i]);
        if (isNull(item)) {
            anyNull = true;
        } else if (compareValues(value, item) == 0) {
            return true;
        }
    }
    return anyNull ? Value() : Value(false);
}

Value Evaluation::call(const ExpressionNode& node) {
    const Function& function = *node.function;
    if (function.call == nullptr) {
        return function.callLazily(*this, node.children);
    }
    std::vector<Value> arguments;
    arguments.reserve(node.children.size());
    bool anyNull = false;
    for (const NodePtr& child : node.children) {
        arguments.push_back(evaluate(*child));
        anyNull = anyNull || isNull(arguments.back());
    }
    if (anyNull && function.nulls == NullArguments::GiveNull) {
        return {};
    }
    return function.call(*this, arguments);
}

}  // namespace detail

Expression::Expression(std::unique_ptr<detail::ExpressionNode> root) : root_(std::move(root)) {}
Expression::Expression(Expression&&) noexcept = default;
Expression& Expression::operator=(Expression&&) noexcept = default;
Expression::~Expression() = default;

Expression Expression::parse(std::wstring_view text) {
    return Expression(detail::parseExpression(text));
}

Expression Expression::parseRule(std::wstring_view text) {
    return Expression(detail::parseRuleExpression(text));
}

Value Expression::evaluate(const ExpressionNames& names) const {
    return detail::Evaluation(names).evaluate(*root_);
}

bool Expression::isMet(const ExpressionNames& names) const {
    const Value value = evaluate(names);
    return isNull(value) || detail::truthOf(value);
}

}  // namespace sg::jet

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/jet/expression/expression.h"
#include "host/jet/expression/operators.h"
#include "host/jet/values/value.h"

// The tree that an expression is taken apart into, and what walks it.
namespace sg::jet::detail {

struct Function;
struct ExpressionNode;
using NodePtr = std::unique_ptr<ExpressionNode>;

struct ExpressionNode {
    enum class Kind : uint8_t {
        Literal,
        Name,     // `text`
        Negate,   // one child
        Not,      // one child
        Binary,   // `op`, two children
        Between,  // value and the two bounds
        In,       // value and the list
        IsNull,   // one child
        Call,     // `function`, its arguments
    };

    Kind kind = Kind::Literal;
    Operator op = Operator::Add;
    uint16_t height = 1;  // of the tree from here: what evaluating it takes of the stack
    const Function* function = nullptr;
    std::wstring text;
    Value literal;
    std::vector<NodePtr> children;
};

// One evaluation of a tree.
class Evaluation {
  public:
    explicit Evaluation(const ExpressionNames& names) : names_(&names) {}

    Value evaluate(const ExpressionNode& node);
    // evaluate() of a condition that need not be met: Null is false.
    bool isTrue(const ExpressionNode& node);

    // Counts work, about one unit for each character that is looked at or made. Throws
    // InvalidArgument when it is more than any sensible rule needs.
    void charge(uint64_t units);
    // Throws InvalidArgument when a text of this length is too long to be made.
    static void checkText(uint64_t length);

  private:
    Value name(const ExpressionNode& node);
    Value binary(const ExpressionNode& node);
    Value between(const ExpressionNode& node);
    Value in(const ExpressionNode& node);
    Value call(const ExpressionNode& node);

    const ExpressionNames* names_;
    uint64_t work_ = 0;
};

}  // namespace sg::jet::detail

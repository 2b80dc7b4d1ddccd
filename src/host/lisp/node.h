#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/lisp/interpreter.h"

namespace sg::lisp {

// A piece of compiled code. Nodes are immutable once compiled and may run recursively.
//
// A node that holds a heap value while it evaluates another node pushes it on the value stack;
// whoever called a function pops what the function left there.
class Node {
  public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    virtual ~Node() = default;
    virtual Value eval(Interpreter& in) const = 0;
};

using NodePtr = std::unique_ptr<const Node>;

// A sub-expression. Constants and variables, which most of them are, need no virtual call.
class Operand {
  public:
    static Operand constant(Value value) { return Operand(Kind::Constant, value, 0, nullptr); }
    static Operand variable(uint32_t slot) { return Operand(Kind::Variable, {}, slot, nullptr); }
    static Operand node(NodePtr node) { return Operand(Kind::Node, {}, 0, std::move(node)); }

    Value get(Interpreter& in) const {
        if (kind_ == Kind::Variable) return in.globals[slot_];
        if (kind_ == Kind::Constant) return constant_;
        return node_->eval(in);
    }
    // True when evaluating it runs no code, so that no safepoint lies in it.
    bool simple() const { return kind_ != Kind::Node; }

  private:
    enum class Kind : uint8_t { Constant, Variable, Node };
    Operand(Kind kind, Value constant, uint32_t slot, NodePtr node)
        : kind_(kind), slot_(slot), constant_(constant), node_(std::move(node)) {}
    Kind kind_;
    uint32_t slot_;
    Value constant_;
    NodePtr node_;
};

// Forms that are evaluated in order; the value is that of the last, nil when there is none.
class Body {
  public:
    Body() = default;
    explicit Body(std::vector<Operand> forms) : forms_(std::move(forms)) {}
    Value eval(Interpreter& in) const {
        Value value;
        for (const Operand& form : forms_)
            value = form.get(in);
        return value;
    }

  private:
    std::vector<Operand> forms_;
};

// A function written in LISP, compiled. `slots` holds the parameters, then the local variables.
struct FunctionCode {
    std::wstring name;  // empty for a lambda
    std::vector<uint32_t> slots;
    size_t parameters = 0;
    Body body;
    Value source;  // the list that it was compiled from; keeps the constants in the nodes alive
    const std::wstring* file = nullptr;
    uint32_t line = 0;
};

// A call of the function that a symbol names at that moment.
class CallNode final : public Node {
  public:
    CallNode(const CallSite& site, std::vector<Operand> arguments)
        : site_(site), arguments_(std::move(arguments)) {}
    Value eval(Interpreter& in) const override;

  private:
    CallSite site_;
    std::vector<Operand> arguments_;
};

}  // namespace sg::lisp

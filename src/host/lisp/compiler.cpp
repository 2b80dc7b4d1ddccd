#include "host/lisp/compiler.h"

#include <fmt/xchar.h>

#include <algorithm>

namespace sg::lisp {
namespace {

// Code nests no deeper than evaluation can follow with what the stack checks leave in reserve,
// since only calls check the stack.
constexpr int kMostNesting = 1000;

class FailingNode final : public Node {
  public:
    explicit FailingNode(std::wstring message) : message_(std::move(message)) {}
    Value eval(Interpreter& in) const override { in.fail(message_); }

  private:
    std::wstring message_;
};

// A call whose head is not a symbol: ((lambda (x) ...) 1), or something that is no function at all.
class ComputedCallNode final : public Node {
  public:
    ComputedCallNode(Operand head, std::vector<Operand> arguments)
        : head_(std::move(head)), arguments_(std::move(arguments)) {}
    Value eval(Interpreter& in) const override {
        Value* const keep = in.sp;
        const Value function = in.resolveFunction(head_.get(in));
        in.push(function);
        Value* const base = in.sp;
        for (const Operand& argument : arguments_)
            in.push(argument.get(in));
        const Value result = in.call(function, base, arguments_.size(), nullptr);
        in.sp = keep;
        return result;
    }

  private:
    Operand head_;
    std::vector<Operand> arguments_;
};

}  // namespace

uint32_t Compiler::lineOf(Value form) const {
    if (lines_ == nullptr || !form.isCons()) return 0;
    const auto found = lines_->find(form.asCons());
    return found == lines_->end() ? 0 : found->second;
}

Operand Compiler::failing(std::wstring message) {
    return Operand::node(std::make_unique<FailingNode>(std::move(message)));
}

Operand Compiler::compile(Value form) {
    in_.checkStack();
    if (form.isSymbol()) return Operand::variable(form.asSymbol());
    if (!form.isCons()) return Operand::constant(form);
    if (++depth_ > kMostNesting) in_.fail(L"AutoLISP stack overflow");
    Operand call = compileCall(form);
    --depth_;
    return call;
}

std::vector<Operand> Compiler::operands(Value forms) {
    std::vector<Operand> out;
    for (; forms.isCons(); forms = forms.asCons()->cdr)
        out.push_back(compile(forms.asCons()->car));
    if (!forms.isNil()) {
        out.clear();
        out.push_back(failing(L"bad argument list: " + in_.toQuotedText(forms)));
    }
    return out;
}

Body Compiler::body(Value forms) {
    return Body(operands(forms));
}

Operand Compiler::compileCall(Value form) {
    const Value head = form.asCons()->car;
    const Value tail = form.asCons()->cdr;
    if (head.isSymbol()) {
        const uint32_t slot = head.asSymbol();
        if (const SpecialForm* special = in_.specialForm(slot)) {
            return special->compile(*this, form);
        }
        std::vector<Operand> arguments = operands(tail);
        Operand result = Operand::constant({});
        if (compileInline(*this, slot, arguments, form, result)) return result;
        return Operand::node(
            std::make_unique<CallNode>(CallSite{file_, lineOf(form), slot}, std::move(arguments)));
    }
    // A list as the head stands for a function as it is; it is not evaluated, unless it is a form
    // whose value is one.
    if (!head.isCons()) return failing(L"bad function: " + in_.toQuotedText(head));
    const Value inner = head.asCons()->car;
    const bool isFunctionList = inner.isList() || inner == in_.symbol(L"LAMBDA");
    Operand function = isFunctionList ? Operand::constant(head) : compile(head);
    return Operand::node(std::make_unique<ComputedCallNode>(std::move(function), operands(tail)));
}

std::shared_ptr<const FunctionCode> Compiler::function(std::wstring name, Value parameters,
                                                       Value body, Value source,
                                                       std::wstring& error) {
    auto code = std::make_shared<FunctionCode>();
    code->name = std::move(name);
    code->source = source;
    code->file = file_;
    code->line = lineOf(source);
    const Value slash = in_.symbol(L"/");
    bool locals = false;
    for (Value rest = parameters; !rest.isNil(); rest = rest.asCons()->cdr) {
        if (!rest.isCons() || !rest.asCons()->car.isSymbol()) {
            error = L"bad formal argument list: " + in_.toQuotedText(parameters);
            return nullptr;
        }
        const Value one = rest.asCons()->car;
        if (one == slash) {
            if (locals) {
                error = L"bad formal argument list: " + in_.toQuotedText(parameters);
                return nullptr;
            }
            locals = true;
            code->parameters = code->slots.size();
            continue;
        }
        if (one == in_.t()) {
            error = L"bad formal argument list: " + in_.toQuotedText(parameters);
            return nullptr;
        }
        code->slots.push_back(one.asSymbol());
    }
    if (!locals) code->parameters = code->slots.size();
    code->body = this->body(body);
    return code;
}

}  // namespace sg::lisp

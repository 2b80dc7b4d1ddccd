#include <fmt/xchar.h>

#include <array>

#include "host/lisp/compiler.h"

// The forms of the language that do not evaluate all their arguments.
namespace sg::lisp {
namespace {

Value car(Value v) {
    return v.isCons() ? v.asCons()->car : Value::nil();
}
Value cdr(Value v) {
    return v.isCons() ? v.asCons()->cdr : Value::nil();
}

size_t lengthOf(Value list) {
    size_t n = 0;
    for (; list.isCons(); list = list.asCons()->cdr)
        ++n;
    return n;
}

template <class N, class... A>
Operand make(A&&... arguments) {
    return Operand::node(std::make_unique<N>(std::forward<A>(arguments)...));
}

Operand tooFew(Compiler& c) {
    return c.failing(L"too few arguments");
}
Operand tooMany(Compiler& c) {
    return c.failing(L"too many arguments");
}

// ---- quote, function ---------------------------------------------------------------------------

Operand compileQuote(Compiler& c, Value form) {
    const size_t count = lengthOf(cdr(form));
    if (count < 1) return tooFew(c);
    if (count > 1) return tooMany(c);
    return Operand::constant(car(cdr(form)));
}

class LambdaNode final : public Node {
  public:
    explicit LambdaNode(std::shared_ptr<const FunctionCode> code) : code_(std::move(code)) {}
    Value eval(Interpreter& in) const override {
        return Value::object(in.heap().adopt(new Function(code_)));
    }

  private:
    std::shared_ptr<const FunctionCode> code_;
};

Operand compileLambda(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 1) return tooFew(c);
    std::wstring error;
    auto code = c.function(L"", car(cdr(form)), cdr(cdr(form)), form, error);
    return code ? make<LambdaNode>(std::move(code)) : c.failing(error);
}

Operand compileFunction(Compiler& c, Value form) {
    const Value what = car(cdr(form));
    if (what.isCons() && car(what) == c.interpreter().symbol(L"LAMBDA")) {
        return compileLambda(c, what);
    }
    return compileQuote(c, form);
}

// ---- defun, defun-q ----------------------------------------------------------------------------

class DefunNode final : public Node {
  public:
    DefunNode(uint32_t slot, std::shared_ptr<const FunctionCode> code)
        : slot_(slot), code_(std::move(code)) {}
    Value eval(Interpreter& in) const override {
        in.globals[slot_] = Value::object(in.heap().adopt(new Function(code_)));
        return Value::symbol(slot_);
    }

  private:
    uint32_t slot_;
    std::shared_ptr<const FunctionCode> code_;
};

Operand compileDefun(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 2) return tooFew(c);
    const Value name = car(cdr(form));
    Interpreter& in = c.interpreter();
    if (!name.isSymbol() || name == in.t()) {
        return c.failing(L"bad argument type: symbolp " + in.toQuotedText(name));
    }
    std::wstring error;
    auto code =
        c.function(in.symbolName(name), car(cdr(cdr(form))), cdr(cdr(cdr(form))), form, error);
    return code ? make<DefunNode>(name.asSymbol(), std::move(code)) : c.failing(error);
}

class SetConstantNode final : public Node {
  public:
    SetConstantNode(uint32_t slot, Value value) : slot_(slot), value_(value) {}
    Value eval(Interpreter& in) const override {
        in.globals[slot_] = value_;
        return Value::symbol(slot_);
    }

  private:
    uint32_t slot_;
    Value value_;
};

Operand compileDefunQ(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 2) return tooFew(c);
    const Value name = car(cdr(form));
    if (!name.isSymbol() || name == c.interpreter().t()) {
        return c.failing(L"bad argument type: symbolp " + c.interpreter().toQuotedText(name));
    }
    return make<SetConstantNode>(name.asSymbol(), cdr(cdr(form)));
}

// ---- setq --------------------------------------------------------------------------------------

class SetqNode final : public Node {
  public:
    SetqNode(uint32_t slot, Operand value) : slot_(slot), value_(std::move(value)) {}
    Value eval(Interpreter& in) const override {
        const Value value = value_.get(in);
        in.globals[slot_] = value;
        return value;
    }

  private:
    uint32_t slot_;
    Operand value_;
};

class SequenceNode final : public Node {
  public:
    explicit SequenceNode(Body body) : body_(std::move(body)) {}
    Value eval(Interpreter& in) const override { return body_.eval(in); }

  private:
    Body body_;
};

Operand compileSetq(Compiler& c, Value form) {
    Value rest = cdr(form);
    if (rest.isNil()) return tooFew(c);
    Interpreter& in = c.interpreter();
    std::vector<Operand> steps;
    for (; rest.isCons(); rest = cdr(cdr(rest))) {
        const Value name = car(rest);
        if (!name.isSymbol() || name == in.t()) {
            steps.push_back(c.failing(L"bad argument type: symbolp " + in.toQuotedText(name)));
        } else if (!cdr(rest).isCons()) {
            steps.push_back(tooFew(c));
        } else {
            steps.push_back(make<SetqNode>(name.asSymbol(), c.compile(car(cdr(rest)))));
        }
    }
    if (steps.size() == 1) return std::move(steps.front());
    return make<SequenceNode>(Body(std::move(steps)));
}

// ---- if, cond, and, or, progn ------------------------------------------------------------------

class IfNode final : public Node {
  public:
    IfNode(Operand test, Operand then, Operand otherwise)
        : test_(std::move(test)), then_(std::move(then)), otherwise_(std::move(otherwise)) {}
    Value eval(Interpreter& in) const override {
        return test_.get(in) ? then_.get(in) : otherwise_.get(in);
    }

  private:
    Operand test_, then_, otherwise_;
};

Operand compileIf(Compiler& c, Value form) {
    const size_t count = lengthOf(cdr(form));
    if (count < 2) return tooFew(c);
    if (count > 3) return tooMany(c);
    const Value rest = cdr(form);
    return make<IfNode>(
        c.compile(car(rest)), c.compile(car(cdr(rest))),
        count == 3 ? c.compile(car(cdr(cdr(rest)))) : Operand::constant(Value::nil()));
}

class CondNode final : public Node {
  public:
    struct Clause {
        Operand test;
        bool hasBody;  // a clause without one answers the value of its test
        Body body;
    };
    explicit CondNode(std::vector<Clause> clauses) : clauses_(std::move(clauses)) {}
    Value eval(Interpreter& in) const override {
        for (const Clause& clause : clauses_) {
            const Value value = clause.test.get(in);
            if (value) return clause.hasBody ? clause.body.eval(in) : value;
        }
        return Value::nil();
    }

  private:
    std::vector<Clause> clauses_;
};

Operand compileCond(Compiler& c, Value form) {
    std::vector<CondNode::Clause> clauses;
    for (Value rest = cdr(form); rest.isCons(); rest = cdr(rest)) {
        const Value clause = car(rest);
        if (!clause.isCons()) {
            clauses.push_back(
                {c.failing(L"bad cond clause: " + c.interpreter().toQuotedText(clause)), false,
                 Body()});
            continue;
        }
        clauses.push_back({c.compile(car(clause)), cdr(clause).isCons(), c.body(cdr(clause))});
    }
    return make<CondNode>(std::move(clauses));
}

class AndNode final : public Node {
  public:
    explicit AndNode(std::vector<Operand> forms) : forms_(std::move(forms)) {}
    Value eval(Interpreter& in) const override {
        for (const Operand& form : forms_) {
            if (!form.get(in)) return Value::nil();
        }
        return in.t();
    }

  private:
    std::vector<Operand> forms_;
};

class OrNode final : public Node {
  public:
    explicit OrNode(std::vector<Operand> forms) : forms_(std::move(forms)) {}
    Value eval(Interpreter& in) const override {
        for (const Operand& form : forms_) {
            if (form.get(in)) return in.t();
        }
        return Value::nil();
    }

  private:
    std::vector<Operand> forms_;
};

Operand compileAnd(Compiler& c, Value form) {
    return make<AndNode>(c.operands(cdr(form)));
}
Operand compileOr(Compiler& c, Value form) {
    return make<OrNode>(c.operands(cdr(form)));
}
Operand compileProgn(Compiler& c, Value form) {
    return make<SequenceNode>(c.body(cdr(form)));
}

// ---- loops -------------------------------------------------------------------------------------

class WhileNode final : public Node {
  public:
    WhileNode(Operand test, Body body) : test_(std::move(test)), body_(std::move(body)) {}
    Value eval(Interpreter& in) const override {
        // The value of the last turn must outlive the test that ends the loop.
        Value* const value = in.sp;
        in.push(Value::nil());
        Value* const keep = in.sp;
        while (test_.get(in)) {
            *value = body_.eval(in);
            in.sp = keep;
            in.safepoint();
        }
        in.sp = value;
        return *value;
    }

  private:
    Operand test_;
    Body body_;
};

Operand compileWhile(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 1) return tooFew(c);
    return make<WhileNode>(c.compile(car(cdr(form))), c.body(cdr(cdr(form))));
}

class RepeatNode final : public Node {
  public:
    RepeatNode(Operand count, Body body) : count_(std::move(count)), body_(std::move(body)) {}
    Value eval(Interpreter& in) const override {
        const int32_t count = in.integer(count_.get(in));
        Value* const keep = in.sp;
        Value value;
        for (int32_t i = 0; i < count; ++i) {
            value = body_.eval(in);
            in.push(value);
            in.safepoint();
            in.sp = keep;
        }
        return value;
    }

  private:
    Operand count_;
    Body body_;
};

Operand compileRepeat(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 1) return tooFew(c);
    return make<RepeatNode>(c.compile(car(cdr(form))), c.body(cdr(cdr(form))));
}

class ForeachNode final : public Node {
  public:
    ForeachNode(uint32_t slot, Operand list, Body body)
        : slot_(slot), list_(std::move(list)), body_(std::move(body)) {}
    Value eval(Interpreter& in) const override {
        Value* const keep = in.sp;
        Value rest = in.checkList(list_.get(in));
        in.push(rest);
        in.bindVariable(slot_);
        Value* const inner = in.sp;
        Value value;
        for (; rest.isCons(); rest = rest.asCons()->cdr) {
            in.globals[slot_] = rest.asCons()->car;
            value = body_.eval(in);
            in.push(value);
            in.safepoint();
            in.sp = inner;
        }
        in.popFrame();
        in.sp = keep;
        return value;
    }

  private:
    uint32_t slot_;
    Operand list_;
    Body body_;
};

Operand compileForeach(Compiler& c, Value form) {
    if (lengthOf(cdr(form)) < 2) return tooFew(c);
    const Value name = car(cdr(form));
    if (!name.isSymbol() || name == c.interpreter().t()) {
        return c.failing(L"bad argument type: symbolp " + c.interpreter().toQuotedText(name));
    }
    return make<ForeachNode>(name.asSymbol(), c.compile(car(cdr(cdr(form)))),
                             c.body(cdr(cdr(cdr(form)))));
}

// ---- trace, untrace ----------------------------------------------------------------------------

template <bool On>
class TraceNode final : public Node {
  public:
    explicit TraceNode(Value names) : names_(names) {}
    Value eval(Interpreter& in) const override {
        Value last;
        for (Value rest = names_; rest.isCons(); rest = rest.asCons()->cdr) {
            last = rest.asCons()->car;
            const uint32_t slot = in.checkSymbol(last);
            std::erase(in.traced, slot);
            if (On) in.traced.push_back(slot);
        }
        return last;
    }

  private:
    Value names_;
};

template <bool On>
Operand compileTrace(Compiler&, Value form) {
    return make<TraceNode<On>>(cdr(form));
}

constexpr SpecialForm kForms[] = {
    {L"QUOTE", compileQuote},
    {L"FUNCTION", compileFunction},
    {L"LAMBDA", compileLambda},
    {L"DEFUN", compileDefun},
    {L"DEFUN-Q", compileDefunQ},
    {L"SETQ", compileSetq},
    {L"IF", compileIf},
    {L"COND", compileCond},
    {L"AND", compileAnd},
    {L"OR", compileOr},
    {L"PROGN", compileProgn},
    {L"WHILE", compileWhile},
    {L"REPEAT", compileRepeat},
    {L"FOREACH", compileForeach},
    {L"TRACE", compileTrace<true>},
    {L"UNTRACE", compileTrace<false>},
    {nullptr, nullptr},
};

}  // namespace

const SpecialForm* specialForms() {
    return kForms;
}

}  // namespace sg::lisp

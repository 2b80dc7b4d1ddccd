#include <array>
#include <cstdint>

#include "host/lisp/compiler.h"

// Nodes for the much-used functions of one or two arguments: while the symbol still names the
// function of the language, the common case runs without an argument list; everything else, errors
// included, goes to the function itself.
namespace sg::lisp {
namespace {

int32_t wrap(int64_t i) {
    return static_cast<int32_t>(static_cast<uint32_t>(i));
}

// Each operation answers true and sets `out` when it covers the case.

struct Add {
    static bool ints(int64_t a, int64_t b, Value& out) {
        out = Value::integer(wrap(a + b));
        return true;
    }
    static bool reals(double a, double b, Value& out) {
        out = Value::real(a + b);
        return true;
    }
};

struct Subtract {
    static bool ints(int64_t a, int64_t b, Value& out) {
        out = Value::integer(wrap(a - b));
        return true;
    }
    static bool reals(double a, double b, Value& out) {
        out = Value::real(a - b);
        return true;
    }
};

struct Multiply {
    static bool ints(int64_t a, int64_t b, Value& out) {
        out = Value::integer(wrap(a * b));
        return true;
    }
    static bool reals(double a, double b, Value& out) {
        out = Value::real(a * b);
        return true;
    }
};

struct Divide {
    static bool ints(int64_t a, int64_t b, Value& out) {
        if (b == 0) return false;
        out = Value::integer(wrap(a / b));
        return true;
    }
    static bool reals(double a, double b, Value& out) {
        if (b == 0) return false;
        out = Value::real(a / b);
        return true;
    }
};

template <class Operation>
struct Arithmetic {
    static bool run(Interpreter&, Value a, Value b, Value& out) {
        if (a.isInt() && b.isInt()) return Operation::ints(a.asInt(), b.asInt(), out);
        if (a.isNumber() && b.isNumber()) {
            return Operation::reals(a.asNumber(), b.asNumber(), out);
        }
        return false;
    }
};

struct Less {
    template <class T>
    static bool test(T a, T b) {
        return a < b;
    }
};
struct LessOrEqual {
    template <class T>
    static bool test(T a, T b) {
        return a <= b;
    }
};
struct Greater {
    template <class T>
    static bool test(T a, T b) {
        return a > b;
    }
};
struct GreaterOrEqual {
    template <class T>
    static bool test(T a, T b) {
        return a >= b;
    }
};
struct Same {
    template <class T>
    static bool test(T a, T b) {
        return a == b;
    }
};
struct Different {
    template <class T>
    static bool test(T a, T b) {
        return a != b;
    }
};

template <class Test>
struct Comparison {
    static bool run(Interpreter& in, Value a, Value b, Value& out) {
        if (a.isInt() && b.isInt()) {
            out = in.boolean(Test::test(a.asInt(), b.asInt()));
            return true;
        }
        if (a.isNumber() && b.isNumber()) {
            out = in.boolean(Test::test(a.asNumber(), b.asNumber()));
            return true;
        }
        return false;
    }
};

struct MakeCons {
    static bool run(Interpreter& in, Value a, Value b, Value& out) {
        out = in.cons(a, b);
        return true;
    }
};

struct Identical {
    static bool run(Interpreter& in, Value a, Value b, Value& out) {
        // Integers and reals of the same value are the same word; strings compare by identity.
        if (a.isReal() && b.isReal()) {
            out = in.boolean(a.asReal() == b.asReal());
        } else {
            out = in.boolean(a == b);
        }
        return true;
    }
};

struct Car {
    static bool run(Interpreter&, Value a, Value& out) {
        if (!a.isCons()) {
            out = Value::nil();
            return a.isNil();
        }
        out = a.asCons()->car;
        return true;
    }
};
struct Cdr {
    static bool run(Interpreter&, Value a, Value& out) {
        if (!a.isCons()) {
            out = Value::nil();
            return a.isNil();
        }
        out = a.asCons()->cdr;
        return true;
    }
};
template <class Outer, class Inner>
struct Chain {
    static bool run(Interpreter& in, Value a, Value& out) {
        Value middle;
        return Inner::run(in, a, middle) && Outer::run(in, middle, out);
    }
};
struct IsNull {
    static bool run(Interpreter& in, Value a, Value& out) {
        out = in.boolean(a.isNil());
        return true;
    }
};
struct IsAtom {
    static bool run(Interpreter& in, Value a, Value& out) {
        out = in.boolean(!a.isCons());
        return true;
    }
};
template <int Step>
struct AddConstant {
    static bool run(Interpreter&, Value a, Value& out) {
        if (a.isInt()) {
            out = Value::integer(wrap(int64_t{a.asInt()} + Step));
            return true;
        }
        if (a.isReal()) {
            out = Value::real(a.asReal() + Step);
            return true;
        }
        return false;
    }
};
struct IsZero {
    static bool run(Interpreter& in, Value a, Value& out) {
        if (!a.isNumber()) return false;
        out = in.boolean(a.asNumber() == 0);
        return true;
    }
};
struct IsMinus {
    static bool run(Interpreter& in, Value a, Value& out) {
        if (!a.isNumber()) return false;
        out = in.boolean(a.asNumber() < 0);
        return true;
    }
};

// What the symbol named when the code was compiled, and the way to it when that still holds but the
// inlined case does not.
class InlineNode : public Node {
  protected:
    InlineNode(uint32_t slot, Value function) : slot_(slot), function_(function) {}
    bool stillNamed(Interpreter& in) const { return in.globals[slot_] == function_; }
    Value callGeneral(Interpreter& in, Value* base, size_t count) const {
        const Value function = in.globals[slot_];
        return in.call(function.isObject() ? function : in.resolveFunction(Value::symbol(slot_)),
                       base, count, nullptr);
    }

  private:
    uint32_t slot_;
    Value function_;
};

template <class Operation>
class UnaryNode final : public InlineNode {
  public:
    UnaryNode(uint32_t slot, Value function, Operand a)
        : InlineNode(slot, function), a_(std::move(a)) {}
    Value eval(Interpreter& in) const override {
        const Value a = a_.get(in);
        Value out;
        if (stillNamed(in) && Operation::run(in, a, out)) [[likely]]
            return out;
        Value* const base = in.sp;
        in.push(a);
        return callGeneral(in, base, 1);
    }

  private:
    Operand a_;
};

template <class Operation>
class BinaryNode final : public InlineNode {
  public:
    BinaryNode(uint32_t slot, Value function, Operand a, Operand b)
        : InlineNode(slot, function), a_(std::move(a)), b_(std::move(b)) {}
    Value eval(Interpreter& in) const override {
        const Value a = a_.get(in);
        Value* const base = in.sp;
        // Numbers need no keeping alive, whatever the second operand runs.
        Value b;
        if (b_.simple() || !a.isHeap()) {
            b = b_.get(in);
        } else {
            in.push(a);
            b = b_.get(in);
            in.sp = base;
        }
        Value out;
        if (stillNamed(in) && Operation::run(in, a, b, out)) [[likely]]
            return out;
        in.push(a);
        in.push(b);
        return callGeneral(in, base, 2);
    }

  private:
    Operand a_, b_;
};

using Maker = Operand (*)(uint32_t slot, Value function, std::vector<Operand>& arguments);

template <class Operation>
Operand makeUnary(uint32_t slot, Value function, std::vector<Operand>& a) {
    return Operand::node(std::make_unique<UnaryNode<Operation>>(slot, function, std::move(a[0])));
}
template <class Operation>
Operand makeBinary(uint32_t slot, Value function, std::vector<Operand>& a) {
    return Operand::node(
        std::make_unique<BinaryNode<Operation>>(slot, function, std::move(a[0]), std::move(a[1])));
}

struct InlineRow {
    const wchar_t* name;
    size_t arguments;
    Maker make;
};

constexpr InlineRow kRows[] = {
    {L"+", 2, makeBinary<Arithmetic<Add>>},
    {L"-", 2, makeBinary<Arithmetic<Subtract>>},
    {L"*", 2, makeBinary<Arithmetic<Multiply>>},
    {L"/", 2, makeBinary<Arithmetic<Divide>>},
    {L"<", 2, makeBinary<Comparison<Less>>},
    {L"<=", 2, makeBinary<Comparison<LessOrEqual>>},
    {L">", 2, makeBinary<Comparison<Greater>>},
    {L">=", 2, makeBinary<Comparison<GreaterOrEqual>>},
    {L"=", 2, makeBinary<Comparison<Same>>},
    {L"/=", 2, makeBinary<Comparison<Different>>},
    {L"EQ", 2, makeBinary<Identical>},
    {L"CONS", 2, makeBinary<MakeCons>},
    {L"CAR", 1, makeUnary<Car>},
    {L"CDR", 1, makeUnary<Cdr>},
    {L"CADR", 1, makeUnary<Chain<Car, Cdr>>},
    {L"CDDR", 1, makeUnary<Chain<Cdr, Cdr>>},
    {L"CAAR", 1, makeUnary<Chain<Car, Car>>},
    {L"CDAR", 1, makeUnary<Chain<Cdr, Car>>},
    {L"CADDR", 1, makeUnary<Chain<Car, Chain<Cdr, Cdr>>>},
    {L"NULL", 1, makeUnary<IsNull>},
    {L"NOT", 1, makeUnary<IsNull>},
    {L"ATOM", 1, makeUnary<IsAtom>},
    {L"1+", 1, makeUnary<AddConstant<1>>},
    {L"1-", 1, makeUnary<AddConstant<-1>>},
    {L"ZEROP", 1, makeUnary<IsZero>},
    {L"MINUSP", 1, makeUnary<IsMinus>},
};

}  // namespace

bool compileInline(Compiler& compiler, uint32_t slot, std::vector<Operand>& arguments, Value,
                   Operand& result) {
    Interpreter& in = compiler.interpreter();
    const Value function = in.valueOf(slot);
    const Subr* subr = asSubr(function);
    if (subr == nullptr) return false;
    const std::wstring& name = in.symbolName(Value::symbol(slot));
    if (subr->name != name) return false;
    for (const InlineRow& row : kRows) {
        if (row.arguments == arguments.size() && name == row.name) {
            result = row.make(slot, function, arguments);
            return true;
        }
    }
    return false;
}

}  // namespace sg::lisp

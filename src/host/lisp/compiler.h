#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/lisp/node.h"

namespace sg::lisp {

// Lines of the lists that were read from a text, by their first cell.
using LineMap = std::unordered_map<const Cons*, uint32_t>;

// Turns forms into nodes. Mistakes in a form (an odd setq, a bad parameter list) become nodes that
// raise the error when they run, since a program is free never to run them.
class Compiler {
  public:
    explicit Compiler(Interpreter& in, const std::wstring* file = nullptr,
                      const LineMap* lines = nullptr)
        : in_(in), file_(file), lines_(lines) {}

    // The form must stay reachable as long as the code may run.
    Operand compile(Value form);
    // The code of a function from its parameter list and its body; `source` contains both. Null
    // and `error` set when the parameter list is bad.
    std::shared_ptr<const FunctionCode> function(std::wstring name, Value parameters, Value body,
                                                 Value source, std::wstring& error);
    Body body(Value forms);
    std::vector<Operand> operands(Value forms);
    Operand failing(std::wstring message);

    Interpreter& interpreter() { return in_; }
    uint32_t lineOf(Value form) const;
    const std::wstring* file() const { return file_; }

  private:
    Operand compileCall(Value form);

    Interpreter& in_;
    const std::wstring* file_;
    const LineMap* lines_;
    int depth_ = 0;  // of the form being compiled
};

// A form that does not evaluate its arguments like a function.
struct SpecialForm {
    const wchar_t* name;
    Operand (*compile)(Compiler& compiler, Value form);
};

// All special forms, ended by a row with a null name.
const SpecialForm* specialForms();

// The node for a call of a much-used function of the language that needs no argument list, or
// nothing: `slot` names the function, `arguments` are taken only on success.
bool compileInline(Compiler& compiler, uint32_t slot, std::vector<Operand>& arguments, Value form,
                   Operand& result);

}  // namespace sg::lisp

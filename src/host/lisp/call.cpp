#include <algorithm>

#include "host/lisp/compiler.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/node.h"

// How functions are called: binding, the safepoint of each call, and the frames that put bindings
// back.
namespace sg::lisp {

void Function::trace(Marker& marker) const {
    marker.visit(code->source);
}

Value CallNode::eval(Interpreter& in) const {
    Value* const base = in.sp;
    for (const Operand& argument : arguments_)
        in.push(argument.get(in));
    const Value function = in.globals[site_.symbol];
    if (function.isObject()) [[likely]] {
        const Object* object = function.asObject();
        if (object->kind() == ObjectKind::Function && in.traced.empty()) {
            return in.invoke(static_cast<const Function*>(object), base, arguments_.size(), &site_);
        }
        return in.call(function, base, arguments_.size(), &site_);
    }
    in.currentSite = site_;
    in.currentSubr = nullptr;
    return in.call(in.resolveFunction(Value::symbol(site_.symbol)), base, arguments_.size(),
                   &site_);
}

Value Interpreter::invoke(const Function* function, Value* arguments, size_t count,
                          const CallSite* site) {
    const FunctionCode& code = *function->code;
    if (count != code.parameters) [[unlikely]] {
        currentSubr = nullptr;
        currentSite = site != nullptr ? *site : CallSite{};
        fail(count < code.parameters ? L"too few arguments" : L"too many arguments");
    }
    const size_t slots = code.slots.size();
    if (stackEnd_ - sp < static_cast<ptrdiff_t>(slots + 8) || frameTop_ == frameEnd_) {
        stackOverflow();
    }
    checkStack();
    // Each argument and the variable's former value change places: what stays on the stack is what
    // to put back.
    const uint32_t* slot = code.slots.data();
    for (size_t i = 0; i < count; ++i)
        std::swap(globals[slot[i]], arguments[i]);
    for (size_t i = count; i < slots; ++i) {
        *sp++ = globals[slot[i]];
        globals[slot[i]] = Value::nil();
    }
    currentSubr = nullptr;
    *frameTop_++ = {function, arguments, 0, site != nullptr ? *site : CallSite{}};
    safepoint();
    const Value result = code.body.eval(*this);
    --frameTop_;
    for (size_t i = slots; i-- > 0;)
        globals[slot[i]] = arguments[i];
    sp = arguments;
    return result;
}

void Interpreter::bindVariable(uint32_t slot) {
    if (frameTop_ == frameEnd_) stackOverflow();
    push(globals[slot]);
    *frameTop_++ = {nullptr, sp - 1, slot, {}};
}

void Interpreter::popFrame() {
    const Frame& frame = *--frameTop_;
    if (frame.function == nullptr) {
        globals[frame.slot] = *frame.saved;
        return;
    }
    const auto& slots = frame.function->code->slots;
    for (size_t i = slots.size(); i-- > 0;)
        globals[slots[i]] = frame.saved[i];
}

void Interpreter::unwind(size_t height, Value* stack) {
    while (frameHeight() > height)
        popFrame();
    sp = stack;
}

Value Interpreter::call(Value function, Value* arguments, size_t count, const CallSite* site) {
    if (!traced.empty()) {
        return callTraced(function, arguments, count, site);
    }
    return callDirect(function, arguments, count, site);
}

Value Interpreter::callDirect(Value function, Value* arguments, size_t count,
                              const CallSite* site) {
    if (!function.isObject()) {
        push(function = resolveFunction(function));
        // The resolved function lies above the arguments; it goes with them when the call ends.
    }
    Object* object = function.asObject();
    switch (object->kind()) {
        case ObjectKind::Subr: {
            const auto* subr = static_cast<const Subr*>(object);
            currentSubr = subr;
            currentSite = site != nullptr ? *site : CallSite{};
            const int given = static_cast<int>(count);
            if (given < subr->least) fail(L"too few arguments");
            if (given > subr->most) fail(L"too many arguments");
            const Value result = subr->function(*this, Args(arguments, count));
            currentSubr = nullptr;
            sp = arguments;
            return result;
        }
        case ObjectKind::Function: {
            sp = arguments + count;
            return invoke(static_cast<const Function*>(object), arguments, count, site);
        }
        case ObjectKind::ExternalFunction: {
            checkStack();
            push(function);  // it may put another in its own place
            safepoint();
            currentSubr = nullptr;
            currentSite = site != nullptr ? *site : CallSite{};
            const Value result =
                static_cast<const ExternalFunction*>(object)->call(*this, Args(arguments, count));
            sp = arguments;
            return result;
        }
        default:
            fail(L"bad function: " + toQuotedText(function));
    }
}

// (trace) shows a call and what it answers, indented by depth.
Value Interpreter::callTraced(Value function, Value* arguments, size_t count,
                              const CallSite* site) {
    const uint32_t slot = site != nullptr ? site->symbol : 0;
    const bool shown =
        site != nullptr && std::find(traced.begin(), traced.end(), slot) != traced.end();
    if (!shown) return callDirect(function, arguments, count, site);
    const std::wstring indent(2 * ++traceDepth_, L' ');
    std::wstring line = L"\n" + indent + L"Entering (" + symbols_.name(slot);
    for (size_t i = 0; i < count; ++i)
        line += L" " + toQuotedText(arguments[i]);
    print(line + L")");
    const Value result = callDirect(function, arguments, count, site);
    print(L"\n" + indent + L"Result:  " + toQuotedText(result));
    --traceDepth_;
    return result;
}

Value Interpreter::resolveFunction(Value function) {
    // A symbol may name a symbol; a chain of them longer than this is a circle.
    for (int hops = 0; hops < 8; ++hops) {
        if (function.isObject()) {
            const ObjectKind kind = function.asObject()->kind();
            if (kind == ObjectKind::Subr || kind == ObjectKind::Function ||
                kind == ObjectKind::ExternalFunction) {
                return function;
            }
            break;
        }
        if (function.isCons()) return functionOfList(function);
        if (!function.isSymbol()) break;
        const Value value = valueOf(function.asSymbol());
        if (value.isNil()) {
            unknownFunction(symbolName(function));
        }
        function = value;
    }
    fail(L"bad function: " + toQuotedText(function));
}

Value Interpreter::functionOfList(Value list) {
    const auto found = lambdaCache_.find(list.asCons());
    if (found != lambdaCache_.end()) return found->second;
    // Either (lambda (x) ...) or what defun-q stores: ((x) ...).
    Value parts = list;
    if (list.asCons()->car == symbol(L"LAMBDA")) parts = list.asCons()->cdr;
    if (!parts.isCons() || !parts.asCons()->car.isList()) {
        fail(L"bad function: " + toQuotedText(list));
    }
    std::wstring error;
    auto code =
        Compiler(*this).function(L"", parts.asCons()->car, parts.asCons()->cdr, list, error);
    if (!code) fail(error);
    const Value function = Value::object(heap_.adopt(new Function(std::move(code))));
    lambdaCache_.emplace(list.asCons(), function);
    return function;
}

Value Interpreter::apply(Value function, std::span<const Value> arguments) {
    Value* const keep = sp;
    push(function);
    function = resolveFunction(function);
    push(function);
    Value* const base = sp;
    for (const Value argument : arguments)
        push(argument);
    const Value result = call(function, base, arguments.size(), nullptr);
    sp = keep;
    return result;
}

Value Interpreter::eval(Value form) {
    if (form.isSymbol()) return valueOf(form.asSymbol());
    if (!form.isCons()) return form;
    checkStack();
    Value* const keep = sp;
    push(form);
    const Operand code = Compiler(*this).compile(form);
    const Value result = code.get(*this);
    sp = keep;
    return result;
}

}  // namespace sg::lisp

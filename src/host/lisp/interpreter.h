#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/export.h"
#include "host/lisp/error.h"
#include "host/lisp/heap.h"
#include "host/lisp/objects.h"
#include "host/lisp/symbols.h"
#include "host/lisp/value.h"

namespace sg::lisp {

struct ProgramState;
struct SpecialForm;

// Where a function is called: what backtraces and (trace) show. A value, so that it outlives the
// code that it was taken from.
struct CallSite {
    const std::wstring* file = nullptr;  // null for code that came from no file
    uint32_t line = 0;
    uint32_t symbol = 0;  // that names the function
};

// What the language asks of the program around it. Each has a working default, so that an
// interpreter alone can run programs.
struct Hooks {
    // Text that a program prints.
    std::function<void(std::wstring_view)> print;
    // A line about an error, for the error stream.
    std::function<void(std::wstring_view)> report;
    // The full path of a file that a program names; nullopt when it is not found.
    std::function<std::optional<std::wstring>(const std::wstring& name)> findFile;
    // A line that the user types, without its end; nullopt when there is nobody to type one.
    std::function<std::optional<std::wstring>()> readLine;
    // A value that holds the selection set of this name has been made, and is gone.
    std::function<void(uint64_t name)> retainPickSet;
    std::function<void(uint64_t name)> releasePickSet;
    // A system variable's value, for conversions that follow them (LUNITS, DIMZIN, ...).
    std::function<std::optional<Value>(std::wstring_view name)> systemVariable;
};

// The variables of one document: a value for each symbol of the interpreter.
struct Namespace {
    std::wstring name;
    std::vector<Value> values;
};

// A call or binding in progress: what to put back when it ends.
struct Frame {
    const Function* function;  // null for the variable of a foreach
    Value* saved;              // the values that its variables had before
    uint32_t slot;             // of a foreach
    CallSite site;             // where it was called; no file when called from native code
};

// A row of a table of functions.
struct FunctionRow {
    const wchar_t* name;  // as users write it
    NativeFunction function;
    int least;
    int most;  // kAnyCount: no limit
};

// The AutoLISP interpreter: source is read into lists, compiled to trees of nodes with resolved
// variable slots, and run with dynamic scope.
//
// Not thread-safe, but for interrupt().
class SG_API Interpreter {
  public:
    explicit Interpreter(Hooks hooks = {});
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    // ---- Namespaces -------------------------------------------------------------------------

    // A new namespace with the functions of the language in it.
    std::unique_ptr<Namespace> newNamespace(std::wstring name);
    // Makes `ns` the one that symbols are looked up in, null the interpreter's own; answers the one
    // before. A running program goes on in the namespace that was current when it started.
    Namespace* enterNamespace(Namespace* ns);
    Namespace* currentNamespace() const { return namespace_; }
    bool isAlive(const Namespace* ns) const;
    // All of them. The first is the interpreter's own, which belongs to no document.
    const std::vector<Namespace*>& namespaces() const { return namespaces_; }
    // Must be called before a namespace is destroyed.
    void forgetNamespace(Namespace* ns);

    // ---- Symbols and functions --------------------------------------------------------------

    uint32_t intern(std::wstring_view name);  // upper-cases nothing
    Value symbol(std::wstring_view name) { return Value::symbol(intern(name)); }
    const std::wstring& symbolName(Value symbol) const { return symbols_.name(symbol.asSymbol()); }
    const SymbolTable& symbols() const { return symbols_; }

    // The value of a symbol in the current namespace. References do not survive the interning of a
    // symbol: take them anew after anything that may read or evaluate.
    Value& valueOf(uint32_t symbol) { return globals[symbol]; }
    Value valueIn(const Namespace& ns, uint32_t symbol) const {
        return symbol < ns.values.size() ? ns.values[symbol] : Value::nil();
    }
    void setValueIn(Namespace& ns, uint32_t symbol, Value value);
    // Gives a symbol's value to every namespace, those that are made later included.
    void propagate(uint32_t symbol);

    // Defines functions of the language: in every namespace that is made from now on, and in the
    // current one.
    void define(std::span<const FunctionRow> rows);
    const SpecialForm* specialForm(uint32_t symbol) const;

    // ---- Running ----------------------------------------------------------------------------

    // Evaluates a form.
    Value eval(Value form);
    // Calls a function: a subr, a function, a lambda list, or a symbol that names one. The
    // arguments must lie on the value stack or be otherwise reachable.
    Value apply(Value function, std::span<const Value> arguments);
    // A function as a LISP value made callable: looks up symbols, compiles lambda lists. Throws
    // "bad function" or "no function definition".
    Value resolveFunction(Value function);

    // Reads and evaluates every form of a program text; answers the last value. `file` names it in
    // backtraces. Errors are thrown.
    Value loadText(std::wstring_view text, const std::wstring& file);

    // How many program texts are being loaded, one from within another.
    size_t loadDepth() const { return loading_.size(); }

    struct Outcome {
        bool failed = false;  // a LISP error ended it
        bool exited = false;  // (exit) or (quit) did
        Value value;          // what it answered otherwise; keep it on the stack or use it at once
        LispError error;
    };
    // Runs `body` as a program at the top level: an error goes to *error*, or is reported as
    // "; error: ..." with a backtrace, and all variables that were bound are put back.
    Outcome runTopLevel(const std::function<Value()>& body);
    // The same without any report; for callers that show errors themselves.
    Outcome runProtected(const std::function<Value()>& body);

    // Ends the running program with the usual cancel error at its next step. May be called from a
    // signal handler.
    void interrupt() { attention.fetch_or(kInterrupt); }
    bool interruptPending() const { return (attention.load() & kInterrupt) != 0; }
    void clearInterrupt() { attention.fetch_and(~kInterrupt); }

    // True while a program is running.
    bool running() const { return depth_ > 0; }

    // ---- Values -----------------------------------------------------------------------------

    Heap& heap() { return heap_; }
    Value cons(Value car, Value cdr) { return heap_.cons(car, cdr); }
    Value string(std::wstring_view text) { return heap_.string(text); }
    Value boolean(bool b) const { return b ? t_ : Value::nil(); }
    Value t() const { return t_; }
    Value list(std::initializer_list<Value> items);
    Value list(std::span<const Value> items, Value tail = Value::nil());

    // As princ and prin1 write it.
    std::wstring toText(Value value);
    std::wstring toQuotedText(Value value);

    // ---- Errors -----------------------------------------------------------------------------

    // The hint is told to a person only, not to the program.
    [[noreturn]] void fail(std::wstring message, std::wstring hint = {});
    // "no function definition: <name>".
    [[noreturn]] void unknownFunction(const std::wstring& name);
    // "bad argument type: <predicate> <value>"; the predicate as it is printed: L"numberp:",
    // L"stringp", ...
    [[noreturn]] void badArgument(const wchar_t* predicate, Value value);
    // "bad argument value: <what>".
    [[noreturn]] void badValue(const std::wstring& what);
    [[noreturn]] void cancel();

    // An argument as a C++ value, or the usual error.
    double number(Value v) {
        if (!v.isNumber()) badArgument(L"numberp:", v);
        return v.asNumber();
    }
    int32_t integer(Value v) {
        if (!v.isInt()) badArgument(L"fixnump:", v);
        return v.asInt();
    }
    std::wstring_view text(Value v) {
        if (!v.isString()) badArgument(L"stringp", v);
        return v.asString()->view();
    }
    std::wstring str(Value v) { return std::wstring(text(v)); }
    Value checkList(Value v) {
        if (!v.isList()) badArgument(L"listp", v);
        return v;
    }
    uint32_t checkSymbol(Value v) {
        if (!v.isSymbol()) badArgument(L"symbolp", v);
        return v.asSymbol();
    }
    // A point: a list of two or three numbers. Missing z is 0.
    struct Point {
        double x, y, z;
        bool is3d;
    };
    Point point(Value v);

    // ---- The value stack --------------------------------------------------------------------

    // Keeps a value alive until the running native function returns.
    void push(Value v) {
        if (sp == stackEnd_) stackOverflow();
        *sp++ = v;
    }
    // Throws "AutoLISP stack overflow" when the native stack is nearly used up. For every recursion
    // of C++ code over LISP data.
    void checkStack() {
        if (static_cast<char*>(__builtin_frame_address(0)) < nativeStackLimit_) stackOverflow();
    }

    // The place where the function that is running now was called, innermost first.
    std::vector<std::wstring> backtrace();

    // The text hooks.
    void print(std::wstring_view text) {
        if (hooks_.print) hooks_.print(text);
    }
    const Hooks& hooks() const { return hooks_; }
    void setHooks(Hooks hooks) { hooks_ = std::move(hooks); }

    // Values that live as long as the interpreter: the blackboard.
    std::unordered_map<uint32_t, Value> blackboard;
    // Names that (trace) was asked to follow.
    std::vector<uint32_t> traced;
    // What the file and program functions keep between calls; see functions/program_state.h.
    std::shared_ptr<ProgramState> programState;

    // ---- For nodes --------------------------------------------------------------------------
    // Hot state of evaluation. Only nodes and the call machinery use it.

    static constexpr uint32_t kInterrupt = 1;

    Value* globals = nullptr;  // values of the current namespace, by symbol
    Value* sp = nullptr;       // the next free place of the value stack
    std::atomic<uint32_t> attention{0};
    const Subr* currentSubr = nullptr;  // the native function called last, for backtraces
    CallSite currentSite;               // the call being made

    // A safepoint: collections start and interrupts are noticed here.
    void safepoint() {
        if (heap_.wantsCollection() || attention.load(std::memory_order_relaxed) != 0)
            [[unlikely]] {
            handleAttention();
        }
    }
    // Calls `function` with `count` arguments that lie on the stack from `arguments` up to sp; pops
    // them. `site` is null for a call from native code.
    Value invoke(const Function* function, Value* arguments, size_t count, const CallSite* site);
    // Calls any callable with arguments on the stack; pops them.
    Value call(Value function, Value* arguments, size_t count, const CallSite* site);
    // Binds one variable until the matching popFrame.
    void bindVariable(uint32_t slot);
    void popFrame();
    // Puts back the variables of all frames above `height`.
    void unwind(size_t height, Value* stack);
    size_t frameHeight() const { return static_cast<size_t>(frameTop_ - frames_); }
    // The function that a lambda list stands for; compiled once for each list.
    Value functionOfList(Value list);

  private:
    Value callDirect(Value function, Value* arguments, size_t count, const CallSite* site);
    Value callTraced(Value function, Value* arguments, size_t count, const CallSite* site);
    void handleAttention();
    [[noreturn]] void stackOverflow();
    void traceRoots(Marker& marker);
    void findNativeStack();
    Outcome runGuarded(const std::function<Value()>& body, bool report);
    void reportError(const LispError& error);
    // The line behind the backtrace that may help; empty for none.
    std::wstring hintOf(const LispError& error);
    void openReserve(bool open);
    bool runErrorHandler(const LispError& error);
    void growNamespace(Namespace& ns);
    std::wstring outOfMemoryText() const;

    Hooks hooks_;
    Heap heap_;
    SymbolTable symbols_;
    Value t_;
    std::vector<Value> subrs_;  // compiled code knows them by identity, so they live for ever
    Namespace* namespace_ = nullptr;
    std::vector<Namespace*> namespaces_;
    std::vector<Value> initial_;  // what every namespace starts with
    std::unique_ptr<Namespace> ownNamespace_;

    Value* stack_ = nullptr;
    Value* stackEnd_ = nullptr;
    Frame* frames_ = nullptr;
    Frame* frameTop_ = nullptr;
    Frame* frameEnd_ = nullptr;
    char* nativeStackLimit_ = nullptr;
    int depth_ = 0;  // of runGuarded
    size_t traceDepth_ = 0;
    bool handlingError_ = false;
    uint32_t errorSymbol_ = 0;
    std::unordered_map<const Cons*, Value> lambdaCache_;
    std::unordered_map<uint32_t, const SpecialForm*> specialForms_;
    std::deque<std::wstring> files_;  // names of loaded texts; nodes point at them
    struct Loading {
        const std::wstring* file;
        uint32_t line;  // of the top-level form that is running
    };
    std::vector<Loading> loading_;
};

}  // namespace sg::lisp

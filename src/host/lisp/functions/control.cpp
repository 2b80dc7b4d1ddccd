#include <fmt/xchar.h>

#include <algorithm>

#include "base/text.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/node.h"
#include "host/lisp/reader.h"

// Evaluation, errors, symbols and namespaces.
namespace sg::lisp {
namespace {

Value fnEval(Interpreter& in, Args a) {
    return in.eval(a[0]);
}

Value fnApply(Interpreter& in, Args a) {
    const Value function = in.resolveFunction(a[0]);
    in.push(function);
    Value* const base = in.sp;
    size_t count = 0;
    Value rest = in.checkList(a[1]);
    for (; rest.isCons(); rest = rest.asCons()->cdr, ++count)
        in.push(rest.asCons()->car);
    if (!rest.isNil()) in.badArgument(L"listp", a[1]);
    return in.call(function, base, count, nullptr);
}

Value fnSet(Interpreter& in, Args a) {
    const uint32_t slot = in.checkSymbol(a[0]);
    if (a[0] == in.t()) in.badArgument(L"symbolp", a[0]);
    return in.valueOf(slot) = a[1];
}

// The special forms as functions, for (apply 'and ...) and (mapcar 'setq ...).
Value fnProgn(Interpreter&, Args a) {
    return a.size() == 0 ? Value::nil() : a[a.size() - 1];
}
Value fnAnd(Interpreter& in, Args a) {
    return in.boolean(std::all_of(a.begin(), a.end(), [](Value v) { return bool(v); }));
}
Value fnOr(Interpreter& in, Args a) {
    return in.boolean(std::any_of(a.begin(), a.end(), [](Value v) { return bool(v); }));
}
Value fnIf(Interpreter&, Args a) {
    return a[0] ? a[1] : a.get(2);
}
Value fnSetq(Interpreter& in, Args a) {
    if (a.size() % 2 != 0) in.fail(L"too few arguments");
    for (size_t i = 0; i < a.size(); i += 2)
        fnSet(in, a.from(i));
    return a[a.size() - 1];
}
// The rest take unevaluated parts, so an argument list stands for the form itself.
template <const wchar_t* const& Name>
Value fnForm(Interpreter& in, Args a) {
    const Value form =
        in.cons(in.symbol(Name), in.list(std::span<const Value>(a.begin(), a.size())));
    return in.eval(form);
}
constexpr const wchar_t* kCond = L"COND";
constexpr const wchar_t* kWhile = L"WHILE";
constexpr const wchar_t* kRepeat = L"REPEAT";
constexpr const wchar_t* kForeach = L"FOREACH";
constexpr const wchar_t* kDefun = L"DEFUN";
constexpr const wchar_t* kDefunQ = L"DEFUN-Q";
constexpr const wchar_t* kLambda = L"LAMBDA";
constexpr const wchar_t* kTrace = L"TRACE";
constexpr const wchar_t* kUntrace = L"UNTRACE";
Value fnQuote(Interpreter&, Args a) {
    return a[0];
}

Value fnRead(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::nil();
    Reader reader(in, in.text(a[0]));
    return reader.more() ? reader.read() : Value::nil();
}

// ---- Errors and endings ------------------------------------------------------------------------

[[noreturn]] void leave() {
    throw LispError{L"quit / exit abort", ErrorKind::Exit};
}
Value fnExit(Interpreter&, Args) {
    leave();
}

Value fnCatchAllApply(Interpreter& in, Args a) {
    in.checkList(a[1]);
    Value* const arguments = a.begin();
    const size_t count = a.size();
    const Interpreter::Outcome outcome =
        in.runProtected([&in, arguments, count] { return fnApply(in, Args(arguments, count)); });
    if (!outcome.failed && !outcome.exited) return outcome.value;
    if (!outcome.failed && outcome.error.message.empty()) throw ExitWithValue{outcome.value};
    return Value::object(in.heap().adopt(new CatchError(outcome.error.message)));
}

Value fnCatchAllErrorP(Interpreter& in, Args a) {
    return in.boolean(asCatchError(a[0]) != nullptr);
}

Value fnCatchAllErrorMessage(Interpreter& in, Args a) {
    const CatchError* error = asCatchError(a[0]);
    if (error == nullptr) in.badArgument(L"%catch-all-apply-error%", a[0]);
    return in.string(error->message);
}

Value fnExitWithError(Interpreter& in, Args a) {
    in.fail(in.str(a[0]));
}
Value fnExitWithValue(Interpreter&, Args a) {
    throw ExitWithValue{a[0]};
}

Value fnBacktrace(Interpreter& in, Args) {
    in.currentSubr = nullptr;
    in.print(L"\nBacktrace:\n");
    size_t number = 0;
    for (const std::wstring& line : in.backtrace()) {
        in.print(fmt::format(L"[{}] {}\n", ++number, line));
    }
    return Value::nil();
}

// ---- Symbols -----------------------------------------------------------------------------------

Value fnBoundp(Interpreter& in, Args a) {
    return in.boolean(!in.valueOf(in.checkSymbol(a[0])).isNil());
}

Value fnType(Interpreter& in, Args a) {
    const Value v = a[0];
    if (v.isNil() || v.isVoid()) return Value::nil();
    if (v.isInt()) return in.symbol(L"INT");
    if (v.isReal()) return in.symbol(L"REAL");
    if (v.isString()) return in.symbol(L"STR");
    if (v.isSymbol()) return in.symbol(L"SYM");
    if (v.isCons()) return in.symbol(L"LIST");
    if (v.isEntityName()) return in.symbol(L"ENAME");
    switch (v.asObject()->kind()) {
        case ObjectKind::Subr:
            return in.symbol(L"SUBR");
        case ObjectKind::Function:
            return in.symbol(L"USUBR");
        case ObjectKind::ExternalFunction:
            return in.symbol(L"EXRXSUBR");
        case ObjectKind::File:
            return in.symbol(L"FILE");
        case ObjectKind::PickSet:
            return in.symbol(L"PICKSET");
        case ObjectKind::CatchError:
            break;
    }
    return in.symbol(L"%CATCH-ALL-APPLY-ERROR%");
}

Value fnSymbolName(Interpreter& in, Args a) {
    in.checkSymbol(a[0]);
    return in.string(in.symbolName(a[0]));
}

Value fnSymbolValue(Interpreter& in, Args a) {
    return in.valueOf(in.checkSymbol(a[0]));
}

Value fnSymbolp(Interpreter& in, Args a) {
    return in.boolean(a[0].isSymbol());
}

// (atoms-family format [names]): the symbols that have a value; with names, nil stands for one that
// has none.
Value fnAtomsFamily(Interpreter& in, Args a) {
    const bool asStrings = in.integer(a[0]) == 1;
    ListBuilder out(in);
    const auto item = [&](const std::wstring& name) {
        return asStrings ? in.string(name) : in.symbol(name);
    };
    if (a.get(1)) {
        for (Value rest = in.checkList(a[1]); rest.isCons(); rest = rest.asCons()->cdr) {
            const std::wstring name = upperCased(in.text(rest.asCons()->car));
            const int64_t slot = in.symbols().find(name);
            const bool known = slot >= 0 && !in.valueOf(static_cast<uint32_t>(slot)).isNil();
            out.add(known ? item(name) : Value::nil());
        }
        return out.list();
    }
    for (uint32_t slot = 0; slot < in.symbols().size(); ++slot) {
        if (!in.valueOf(slot).isNil()) out.add(item(in.symbols().name(slot)));
    }
    return out.list();
}

// ---- defun-q -----------------------------------------------------------------------------------

Value fnDefunQListRef(Interpreter& in, Args a) {
    const Value value = in.valueOf(in.checkSymbol(a[0]));
    return value.isCons() ? value : Value::nil();
}

Value fnDefunQListSet(Interpreter& in, Args a) {
    const uint32_t slot = in.checkSymbol(a[0]);
    if (!a[1].isCons() || !a[1].asCons()->car.isList()) in.badArgument(L"listp", a[1]);
    in.valueOf(slot) = a[1];
    return a[0];
}

// ---- The blackboard, document variables --------------------------------------------------------

Value fnBlackboardRef(Interpreter& in, Args a) {
    const auto found = in.blackboard.find(in.checkSymbol(a[0]));
    return found == in.blackboard.end() ? Value::nil() : found->second;
}

Value fnBlackboardSet(Interpreter& in, Args a) {
    return in.blackboard[in.checkSymbol(a[0])] = a[1];
}

// Programs run in their document's own namespace here, so a document's variables are its symbols.
Value fnDocRef(Interpreter& in, Args a) {
    return in.valueOf(in.checkSymbol(a[0]));
}

Value fnPropagate(Interpreter& in, Args a) {
    in.propagate(in.checkSymbol(a[0]));
    return in.valueOf(a[0].asSymbol());
}

Value fnIdentity(Interpreter&, Args a) {
    return a.get(0);
}

// ---- Housekeeping ------------------------------------------------------------------------------

Value fnGc(Interpreter& in, Args) {
    in.heap().collectFully();
    return Value::nil();
}

Value fnMem(Interpreter& in, Args) {
    in.print(fmt::format(L"; memory in use: {} KB, limit: {} KB, collections: {}\n",
                         in.heap().bytesInUse() >> 10, in.heap().limit() >> 10,
                         in.heap().collections()));
    return Value::nil();
}

Value fnNothing(Interpreter&, Args) {
    return Value::nil();
}
Value fnVoid(Interpreter&, Args) {
    return Value::voidValue();
}
Value fnTrue(Interpreter& in, Args) {
    return in.t();
}
Value fnVer(Interpreter& in, Args) {
    return in.string(L"Swift Gate LISP " SWIFTGATE_VERSION);
}

constexpr FunctionRow kRows[] = {
    {L"eval", fnEval, 1, 1},
    {L"apply", fnApply, 2, 2},
    {L"set", fnSet, 2, 2},
    {L"quote", fnQuote, 1, 1},
    {L"function", fnQuote, 1, 1},
    {L"progn", fnProgn, 0, kAnyCount},
    {L"and", fnAnd, 0, kAnyCount},
    {L"or", fnOr, 0, kAnyCount},
    {L"if", fnIf, 2, 3},
    {L"setq", fnSetq, 2, kAnyCount},
    {L"cond", fnForm<kCond>, 0, kAnyCount},
    {L"while", fnForm<kWhile>, 1, kAnyCount},
    {L"repeat", fnForm<kRepeat>, 1, kAnyCount},
    {L"foreach", fnForm<kForeach>, 2, kAnyCount},
    {L"defun", fnForm<kDefun>, 2, kAnyCount},
    {L"defun-q", fnForm<kDefunQ>, 2, kAnyCount},
    {L"lambda", fnForm<kLambda>, 1, kAnyCount},
    {L"trace", fnForm<kTrace>, 0, kAnyCount},
    {L"untrace", fnForm<kUntrace>, 0, kAnyCount},
    {L"read", fnRead, 0, 1},
    {L"exit", fnExit, 0, 0},
    {L"quit", fnExit, 0, 0},
    {L"vl-catch-all-apply", fnCatchAllApply, 2, 2},
    {L"vl-catch-all-error-p", fnCatchAllErrorP, 1, 1},
    {L"vl-catch-all-error-message", fnCatchAllErrorMessage, 1, 1},
    {L"vl-exit-with-error", fnExitWithError, 1, 1},
    {L"vl-exit-with-value", fnExitWithValue, 1, 1},
    {L"*push-error-using-command*", fnNothing, 0, 0},
    {L"*push-error-using-stack*", fnNothing, 0, 0},
    {L"*pop-error-mode*", fnNothing, 0, 0},
    {L"vl-bt", fnBacktrace, 0, 0},
    {L"boundp", fnBoundp, 1, 1},
    {L"type", fnType, 1, 1},
    {L"vl-symbol-name", fnSymbolName, 1, 1},
    {L"vl-symbol-value", fnSymbolValue, 1, 1},
    {L"vl-symbolp", fnSymbolp, 1, 1},
    {L"atoms-family", fnAtomsFamily, 1, 2},
    {L"defun-q-list-ref", fnDefunQListRef, 1, 1},
    {L"defun-q-list-set", fnDefunQListSet, 2, 2},
    {L"vl-bb-ref", fnBlackboardRef, 1, 1},
    {L"vl-bb-set", fnBlackboardSet, 2, 2},
    {L"vl-doc-ref", fnDocRef, 1, 1},
    {L"vl-doc-set", fnSet, 2, 2},
    {L"vl-propagate", fnPropagate, 1, 1},
    {L"vl-doc-export", fnIdentity, 1, 1},
    {L"vl-doc-import", fnIdentity, 1, 2},
    {L"vl-load-com", fnVoid, 0, 0},
    {L"vl-load-reactors", fnVoid, 0, 0},
    {L"vl-acad-defun", fnIdentity, 1, 1},
    {L"vl-acad-undefun", fnNothing, 1, 1},
    {L"vl-arx-import", fnIdentity, 1, 1},
    {L"setfunhelp", fnIdentity, 1, 4},
    {L"initdia", fnNothing, 0, 1},
    {L"initcommandversion", fnTrue, 0, 1},
    {L"gc", fnGc, 0, 0},
    {L"mem", fnMem, 0, 0},
    {L"alloc", fnIdentity, 1, 1},
    {L"expand", fnIdentity, 1, 1},
    {L"ver", fnVer, 0, 0},
};

}  // namespace

std::span<const FunctionRow> controlFunctions() {
    return kRows;
}

}  // namespace sg::lisp

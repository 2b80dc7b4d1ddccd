#include <fmt/xchar.h>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/lisp/functions/program_state.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/marshal.h"
#include "host/seam/external_functions.h"
#include "host/seam/host.h"
#include "host/system/paths.h"
#include "platform/lisp/external_functions.h"

// platform/lisp/external_functions.h on the Host.

using namespace sg;
using lisp::Value;

namespace {

ExternalFunctions::Call* callInProgress() {
    return Host::exists() ? Host::the().externals().innermost() : nullptr;
}

int setResult(Value value) {
    ExternalFunctions::Call* call = callInProgress();
    if (call == nullptr) return RTERROR;
    *call->result = value;
    return RTNORM;
}

// Runs `body` in the namespace of the current document; what it does with variables stays there.
template <class Body>
lisp::Interpreter::Outcome inCurrentDocument(Host& host, const Body& body) {
    lisp::Interpreter& in = host.interpreter();
    Document* const document = host.documents().current();
    if (document == nullptr) {
        lisp::Interpreter::Outcome outcome;
        outcome.failed = true;
        outcome.error.message = L"no drawing is open";
        return outcome;
    }
    lisp::Namespace* const before = in.enterNamespace(&document->variables());
    auto outcome = in.runProtected(body);
    // A program may have closed the drawing that it began in; its variables are gone with it.
    in.enterNamespace(in.isAlive(before) ? before : nullptr);
    return outcome;
}

// Null for a value that no node holds: a function, a symbol other than T, void.
lisp::ResbufList resultToResbuf(lisp::Interpreter& in, Value value) {
    if (value.isVoid()) return nullptr;
    try {
        return lisp::valueToResbuf(in, value);
    } catch (const lisp::LispError&) {
        return nullptr;
    }
}

// A function that no program has defined may stand in a program of its name on the support path.
void loadUndefined(Host& host, Value symbol, const std::wstring& name) {
    lisp::Interpreter& in = host.interpreter();
    if (!in.valueOf(symbol.asSymbol()).isNil()) return;
    const std::wstring path = host.supportPath().find(name + L".lsp");
    if (!path.empty()) lisp::loadProgram(in, path);
}

int report(Host& host, const lisp::LispError& error) {
    host.output().reportError(L"; error: " + error.message);
    return error.kind == lisp::ErrorKind::Cancel ? RTCAN : RTERROR;
}

}  // namespace

int acedDefun(const wchar_t* name, int code) {
    Host& host = Host::the();
    Document* const document = host.documents().current();
    Module* const module = host.modules().currentModule();
    if (name == nullptr || document == nullptr || module == nullptr) return RTERROR;
    return host.externals().define(*document, *module, name, code) ? RTNORM : RTERROR;
}

int acedUndef(const wchar_t* name, int code) {
    Host& host = Host::the();
    Document* const document = host.documents().current();
    Module* const module = host.modules().currentModule();
    if (name == nullptr || document == nullptr || module == nullptr) return RTERROR;
    return host.externals().undefine(*document, *module, name, code) ? RTNORM : RTERROR;
}

int acedRegFunc(int (*handler)(), int code) {
    Host& host = Host::the();
    Document* const document = host.documents().current();
    Module* const module = host.modules().currentModule();
    if (document == nullptr || module == nullptr) return RTERROR;
    return host.externals().setHandler(*document, *module, handler, code) ? RTNORM : RTERROR;
}

int acedGetFunCode() {
    const ExternalFunctions::Call* call = callInProgress();
    return call == nullptr ? RTERROR : call->code;
}

resbuf* acedGetArgs() {
    ExternalFunctions::Call* call = callInProgress();
    if (call == nullptr) return nullptr;
    // The list made for the call is handed out once; who asks again gets a new one.
    if (call->arguments) return call->arguments.release();
    return lisp::argumentsToResbuf(Host::the().interpreter(), call->given).release();
}

int acedRetNil() {
    return setResult(Value::nil());
}
int acedRetT() {
    return setResult(Host::the().interpreter().t());
}
int acedRetVoid() {
    return setResult(Value::voidValue());
}
int acedRetInt(int value) {
    return setResult(Value::integer(value));
}
int acedRetReal(double value) {
    return setResult(Value::real(value));
}

int acedRetStr(const wchar_t* value) {
    if (value == nullptr || callInProgress() == nullptr) return RTERROR;
    return setResult(Host::the().interpreter().string(value));
}

int acedRetPoint(const ads_point value) {
    if (callInProgress() == nullptr) return RTERROR;
    return setResult(Host::the().interpreter().list(
        {Value::real(value[0]), Value::real(value[1]), Value::real(value[2])}));
}

int acedRetName(const ads_name name, int type) {
    if (callInProgress() == nullptr || (type != RTENAME && type != RTPICKS)) return RTERROR;
    resbuf node{};
    node.restype = static_cast<int16_t>(type);
    node.resval.rlname[0] = name[0];
    node.resval.rlname[1] = name[1];
    return setResult(lisp::nodeToValue(Host::the().interpreter(), node));
}

int acedRetVal(const resbuf* value) {
    if (value == nullptr || callInProgress() == nullptr) return RTERROR;
    return setResult(lisp::nodeToValue(Host::the().interpreter(), *value));
}

int acedRetList(const resbuf* list) {
    if (callInProgress() == nullptr) return RTERROR;
    Value value;
    if (!lisp::listToValue(Host::the().interpreter(), list, value)) return RTERROR;
    return setResult(value);
}

int sgRetListPart(const resbuf* items, bool first) {
    ExternalFunctions::Call* const call = callInProgress();
    if (call == nullptr) return RTERROR;
    if (first) *call->result = call->last = Value::nil();
    const bool taken =
        lisp::appendItems(Host::the().interpreter(), items, *call->result, call->last);
    return taken ? RTNORM : RTERROR;
}

int acedInvoke(const resbuf* arguments, resbuf** result) {
    if (result != nullptr) *result = nullptr;
    if (arguments == nullptr || arguments->restype != RTSTR ||
        arguments->resval.rstring == nullptr) {
        return RTERROR;
    }
    Host& host = Host::the();
    lisp::Interpreter& in = host.interpreter();
    lisp::ResbufList answer;
    const auto outcome = inCurrentDocument(host, [&] {
        const Value name = in.symbol(upperCased(arguments->resval.rstring));
        loadUndefined(host, name, arguments->resval.rstring);
        const Value function = in.resolveFunction(name);
        in.push(function);
        Value* const base = in.sp;
        const int count = lisp::pushItems(in, arguments->rbnext);
        if (count < 0) in.fail(L"malformed argument list");
        const Value value = in.call(function, base, static_cast<size_t>(count), nullptr);
        in.push(value);
        if (result != nullptr) answer = resultToResbuf(in, value);
        return value;
    });
    if (outcome.failed || outcome.exited) {
        // (exit) ends the function without an answer.
        return outcome.failed ? report(host, outcome.error) : RTERROR;
    }
    if (result != nullptr) *result = answer.release();
    return RTNORM;
}

int acedGetSym(const wchar_t* name, resbuf** value) {
    if (name == nullptr || value == nullptr) return RTERROR;
    *value = nullptr;
    Host& host = Host::the();
    lisp::Interpreter& in = host.interpreter();
    lisp::ResbufList answer;
    const auto outcome = inCurrentDocument(host, [&] {
        const Value held = in.valueOf(in.intern(upperCased(name)));
        if (held) answer = lisp::valueToResbuf(in, held);
        return held;
    });
    if (outcome.failed) return RTERROR;
    *value = answer.release();
    return RTNORM;
}

int acedPutSym(const wchar_t* name, const resbuf* value) {
    if (name == nullptr) return RTERROR;
    Host& host = Host::the();
    lisp::Interpreter& in = host.interpreter();
    const auto outcome = inCurrentDocument(host, [&] {
        Value held;
        if (!lisp::chainToValue(in, value, held)) in.fail(L"malformed list");
        const uint32_t slot = in.intern(upperCased(name));
        return in.valueOf(slot) = held;
    });
    return outcome.failed ? RTERROR : RTNORM;
}

void acedDeclareMissing(const wchar_t* name) {
    if (name != nullptr) Host::the().externals().declareMissing(name);
}

#include <fmt/xchar.h>

#include <algorithm>
#include <filesystem>

#include "base/encoding.h"
#include "base/text.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/program_state.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/text/filenames.h"
#include "host/system/paths.h"

// Programs loaded from files.
namespace sg::lisp {
namespace {

// A file that loads itself would otherwise hold its text once for every level of a deep stack.
constexpr size_t kMostNestedLoads = 200;

bool isCompiled(std::string_view bytes) {
    return bytes.starts_with("FAS") || bytes.starts_with(" FAS") || bytes.starts_with("VRTLIB");
}

// The text of a program file; nullopt for what is no readable program.
std::optional<std::wstring> programText(Interpreter& in, const std::wstring& path) {
    std::error_code error;
    const std::filesystem::path file(toUtf8(path));
    if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
    if (std::filesystem::file_size(file, error) > in.heap().limit() / 8) throw OutOfMemory{};
    const std::optional<std::string> bytes = readFile(path);
    if (!bytes || isCompiled(*bytes)) return std::nullopt;
    return decodeTextFile(*bytes);
}

// The names under which a program named so may lie, likeliest first.
std::vector<std::wstring> candidates(const std::wstring& name) {
    if (filenameExtension(name)) return {name, name + L".lsp"};
    return {name + L".lsp", name};
}

[[noreturn]] void loadFailed(Interpreter& in, const std::wstring& name) {
    std::wstring hint = L"there is no such file in the current folder and on the support path";
    for (const std::wstring& candidate : candidates(name)) {
        if (const auto path = locateFile(in, candidate)) hint = *path + L" is no readable program";
    }
    in.fail(L"LOAD failed: \"" + name + L"\"", hint);
}

void addOnce(std::vector<std::wstring>& names, const std::wstring& name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

}  // namespace

std::optional<Value> loadProgram(Interpreter& in, const std::wstring& name) {
    in.checkStack();
    if (in.loadDepth() >= kMostNestedLoads) {
        in.fail(fmt::format(L"LOAD failed: \"{}\": more than {} files load one another", name,
                            kMostNestedLoads));
    }
    for (const std::wstring& candidate : candidates(name)) {
        const std::optional<std::wstring> path = locateFile(in, candidate);
        if (!path) continue;
        const std::optional<std::wstring> text = programText(in, *path);
        if (!text) continue;
        const Value value = in.loadText(*text, *path);
        addOnce(programState(in).loaded, *path);
        return value;
    }
    return std::nullopt;
}

void loadProgramsForNewNamespace(Interpreter& in) {
    // A copy: a program may use vl-load-all itself.
    const std::vector<std::wstring> paths = programState(in).forNewSpaces;
    for (const std::wstring& path : paths) {
        if (!loadProgram(in, path)) loadFailed(in, path);
    }
}

namespace {

bool isLambdaList(Interpreter& in, Value value) {
    return value.isCons() && value.asCons()->car == in.symbol(L"LAMBDA");
}

bool isFunctionObject(Value value) {
    return asSubr(value) != nullptr || asFunction(value) != nullptr || asExternal(value) != nullptr;
}

// (load name [onfailure])
Value fnLoad(Interpreter& in, Args a) {
    const std::wstring name(fileName(in, a[0]));
    if (const std::optional<Value> value = loadProgram(in, name)) return *value;
    if (!a.has(1)) loadFailed(in, name);
    const Value instead = a[1];
    const Value function = instead.isSymbol() ? in.valueOf(instead.asSymbol()) : instead;
    if (isFunctionObject(function) || isLambdaList(in, function)) return in.apply(function, {});
    return instead;
}

// ---- autoload -----------------------------------------------------------------------------------

// What stands for a command until its program is loaded.
Value autoloader(Interpreter& in, const std::wstring& file, uint32_t command) {
    const std::wstring name = in.symbols().name(command);
    const auto self = std::make_shared<const Object*>(nullptr);
    const auto run = [file, command, name, self](Interpreter& interpreter, Args a) {
        // The program puts its own function in this one's place; this one must outlive the call.
        interpreter.push(Value::object(*self));
        const auto waiting = [&] {
            const Value value = interpreter.valueOf(command);
            return value.isObject() && value.asObject() == *self;
        };
        if (waiting() && !loadProgram(interpreter, file)) loadFailed(interpreter, file);
        if (waiting() || interpreter.valueOf(command).isNil()) {
            interpreter.fail(L"the program \"" + file + L"\" does not define " + name);
        }
        return interpreter.apply(Value::symbol(command), {a.begin(), a.size()});
    };
    ExternalFunction* function = in.heap().adopt(new ExternalFunction(name, run));
    *self = function;
    return Value::object(function);
}

// (autoload file commands). A command that has a definition keeps it.
Value fnAutoload(Interpreter& in, Args a) {
    const std::wstring file(fileName(in, a[0]));
    for (Value rest = in.checkList(a[1]); rest.isCons(); rest = rest.asCons()->cdr) {
        const uint32_t command = in.intern(L"C:" + upperCased(in.text(rest.asCons()->car)));
        if (!in.valueOf(command).isNil()) continue;
        const Value function = autoloader(in, file, command);
        in.valueOf(command) = function;
    }
    return Value::nil();
}

// ---- All documents ------------------------------------------------------------------------------

// Loads the program into another document's namespace. Whatever ends the program there also ends
// the one that asked for it, once the namespace is its own again.
void loadInto(Interpreter& in, Namespace* space, const std::wstring& path) {
    Namespace* const here = in.enterNamespace(space);
    const Interpreter::Outcome outcome = in.runProtected([&] {
        if (!loadProgram(in, path)) loadFailed(in, path);
        return Value::nil();
    });
    in.enterNamespace(here);
    if (!outcome.failed && !outcome.exited) return;
    if (outcome.exited && outcome.error.message.empty()) throw ExitWithValue{outcome.value};
    throw outcome.error;
}

Value fnLoadAll(Interpreter& in, Args a) {
    const std::wstring name(fileName(in, a[0]));
    std::optional<std::wstring> path;
    for (const std::wstring& candidate : candidates(name)) {
        if (!path) path = locateFile(in, candidate);
    }
    if (!path) loadFailed(in, name);
    Namespace* const here = in.currentNamespace();
    if (!loadProgram(in, *path)) loadFailed(in, name);
    const std::vector<Namespace*> spaces = in.namespaces();
    for (size_t i = 1; i < spaces.size(); ++i) {
        // A program may close documents.
        const auto& open = in.namespaces();
        if (spaces[i] == here || std::find(open.begin(), open.end(), spaces[i]) == open.end()) {
            continue;
        }
        loadInto(in, spaces[i], *path);
    }
    addOnce(programState(in).forNewSpaces, *path);
    return Value::nil();
}

Value fnListLoadedLisp(Interpreter& in, Args) {
    ListBuilder names(in);
    for (const std::wstring& path : programState(in).loaded) {
        names.add(in.string(lastComponent(path)));
    }
    return names.list();
}

// Compiled applications are not loaded here, so there never is one.
Value fnNoApplication(Interpreter&, Args) {
    return Value::nil();
}

Value fnVlxLoadedP(Interpreter& in, Args a) {
    in.text(a[0]);
    return Value::nil();
}

constexpr FunctionRow kRows[] = {
    {L"load", fnLoad, 1, 2},
    {L"autoload", fnAutoload, 2, 2},
    {L"vl-load-all", fnLoadAll, 1, 1},
    {L"vl-list-loaded-lisp", fnListLoadedLisp, 0, 0},
    {L"vl-list-loaded-vlx", fnNoApplication, 0, 0},
    {L"vl-vlx-loaded-p", fnVlxLoadedP, 1, 1},
};

}  // namespace

std::span<const FunctionRow> programFunctions() {
    return kRows;
}

}  // namespace sg::lisp

#include "host/lisp/interpreter.h"

#include <fmt/xchar.h>
#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "base/encoding.h"
#include "base/nearest_names.h"
#include "base/text.h"
#include "host/lisp/compiler.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/node.h"
#include "host/lisp/objects.h"
#include "host/lisp/reader.h"

namespace sg::lisp {
namespace {

constexpr size_t kStackValues = size_t{4} << 20;
constexpr size_t kFrames = size_t{1} << 20;
constexpr size_t kNativeStackMost = size_t{100} << 20;
constexpr size_t kNativeStackReserve = size_t{1} << 20;  // for native code below the last check
// What a program cannot use of the other two stacks, so that *error* can run after they overflow.
constexpr size_t kReservedValues = size_t{64} << 10;
constexpr size_t kReservedFrames = size_t{8} << 10;

// Address space that costs memory only where it is touched.
template <class T>
T* reserve(size_t count) {
    void* p = mmap(nullptr, count * sizeof(T), PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (p == MAP_FAILED) throw std::runtime_error("no address space for the interpreter's stacks");
    return static_cast<T*>(p);
}

void printToStream(std::FILE* stream, std::wstring_view text) {
    const std::string bytes = toUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

}  // namespace

Interpreter::Interpreter(Hooks hooks) : hooks_(std::move(hooks)) {
    if (!hooks_.print) hooks_.print = [](std::wstring_view text) { printToStream(stdout, text); };
    if (!hooks_.report) {
        hooks_.report = [](std::wstring_view text) {
            printToStream(stderr, std::wstring(text) + L"\n");
        };
    }
    stack_ = sp = reserve<Value>(kStackValues);
    frames_ = frameTop_ = reserve<Frame>(kFrames);
    openReserve(false);
    findNativeStack();
    heap_.setRoots([this](Marker& marker) { traceRoots(marker); });
    heap_.setWeakSweep([this](const Heap& heap) {
        std::erase_if(lambdaCache_, [&](const auto& entry) {
            if (!heap.isMarked(Value::cons(entry.first))) return true;
            heap_.keep(entry.second);
            return false;
        });
    });
    ownNamespace_ = std::make_unique<Namespace>();
    ownNamespace_->name = L"";
    namespaces_.push_back(ownNamespace_.get());
    enterNamespace(ownNamespace_.get());
    t_ = symbol(L"T");
    valueOf(t_.asSymbol()) = t_;
    errorSymbol_ = intern(L"*ERROR*");
    for (const SpecialForm* form = specialForms(); form->name != nullptr; ++form) {
        specialForms_[intern(form->name)] = form;
    }
    defineLanguage(*this);
    setValueIn(*ownNamespace_, intern(L"PI"), Value::real(3.14159265358979323846));
    setValueIn(*ownNamespace_, intern(L"PAUSE"), string(L"\\"));
    initial_ = ownNamespace_->values;
}

Interpreter::~Interpreter() {
    munmap(stack_, kStackValues * sizeof(Value));
    munmap(frames_, kFrames * sizeof(Frame));
}

void Interpreter::openReserve(bool open) {
    stackEnd_ = stack_ + kStackValues - 64 - (open ? 0 : kReservedValues);
    frameEnd_ = frames_ + kFrames - (open ? 0 : kReservedFrames);
}

void Interpreter::findNativeStack() {
    pthread_attr_t attributes;
    void* lowest = nullptr;
    size_t size = 0;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        pthread_attr_getstack(&attributes, &lowest, &size);
        pthread_attr_destroy(&attributes);
    }
    char* const here = static_cast<char*>(__builtin_frame_address(0));
    char* bottom = static_cast<char*>(lowest);
    if (bottom == nullptr || bottom + kNativeStackMost < here) bottom = here - kNativeStackMost;
    nativeStackLimit_ = bottom + kNativeStackReserve;
}

// ---- Namespaces ---------------------------------------------------------------------------------

std::unique_ptr<Namespace> Interpreter::newNamespace(std::wstring name) {
    auto ns = std::make_unique<Namespace>();
    ns->name = std::move(name);
    ns->values = initial_;
    growNamespace(*ns);
    namespaces_.push_back(ns.get());
    return ns;
}

void Interpreter::growNamespace(Namespace& ns) {
    if (ns.values.size() < symbols_.size()) {
        ns.values.reserve(std::max<size_t>(4096, symbols_.size() + symbols_.size() / 2));
        ns.values.resize(symbols_.size());
    }
    if (&ns == namespace_) globals = ns.values.data();
}

Namespace* Interpreter::enterNamespace(Namespace* ns) {
    Namespace* const before = namespace_;
    if (ns == nullptr) ns = ownNamespace_.get();
    namespace_ = ns;
    growNamespace(*ns);
    globals = ns->values.data();
    return before;
}

bool Interpreter::isAlive(const Namespace* ns) const {
    return std::find(namespaces_.begin(), namespaces_.end(), ns) != namespaces_.end();
}

void Interpreter::forgetNamespace(Namespace* ns) {
    std::erase(namespaces_, ns);
    if (namespace_ == ns) enterNamespace(ownNamespace_.get());
}

void Interpreter::propagate(uint32_t symbol) {
    const Value value = valueOf(symbol);
    if (initial_.size() < symbols_.size()) initial_.resize(symbols_.size());
    initial_[symbol] = value;
    for (Namespace* ns : namespaces_)
        setValueIn(*ns, symbol, value);
}

void Interpreter::setValueIn(Namespace& ns, uint32_t symbol, Value value) {
    growNamespace(ns);
    ns.values[symbol] = value;
}

uint32_t Interpreter::intern(std::wstring_view name) {
    const size_t before = symbols_.size();
    const uint32_t index = symbols_.intern(name);
    if (symbols_.size() != before) {
        heap_.addExternal(static_cast<ptrdiff_t>(160 + name.size() * sizeof(wchar_t)));
        growNamespace(*namespace_);
    }
    return index;
}

// ---- Functions ----------------------------------------------------------------------------------

void Interpreter::define(std::span<const FunctionRow> rows) {
    for (const FunctionRow& row : rows) {
        const std::wstring name = upperCased(row.name);
        const uint32_t slot = intern(name);
        const Value subr =
            Value::object(heap_.adopt(new Subr(name, row.function, row.least, row.most)));
        subrs_.push_back(subr);
        if (initial_.size() < symbols_.size()) initial_.resize(symbols_.size());
        initial_[slot] = subr;
        valueOf(slot) = subr;
    }
}

const SpecialForm* Interpreter::specialForm(uint32_t symbol) const {
    const auto found = specialForms_.find(symbol);
    return found == specialForms_.end() ? nullptr : found->second;
}

// ---- Values -------------------------------------------------------------------------------------

Value Interpreter::list(std::span<const Value> items, Value tail) {
    for (size_t i = items.size(); i-- > 0;)
        tail = cons(items[i], tail);
    return tail;
}

Value Interpreter::list(std::initializer_list<Value> items) {
    return list(std::span<const Value>(items.begin(), items.size()));
}

Interpreter::Point Interpreter::point(Value v) {
    double xyz[3] = {0, 0, 0};
    int count = 0;
    Value rest = v;
    for (; rest.isCons() && count < 3; rest = rest.asCons()->cdr) {
        if (!rest.asCons()->car.isNumber()) break;
        xyz[count++] = rest.asCons()->car.asNumber();
    }
    if (count < 2 || !rest.isNil()) badArgument(L"2D/3D point:", v);
    return {xyz[0], xyz[1], xyz[2], count == 3};
}

// ---- Errors -------------------------------------------------------------------------------------

void Interpreter::fail(std::wstring message, std::wstring hint) {
    throw LispError{.message = std::move(message), .hint = std::move(hint)};
}

void Interpreter::unknownFunction(const std::wstring& name) {
    throw LispError{.message = L"no function definition: " + name, .unknownFunction = name};
}

void Interpreter::badArgument(const wchar_t* predicate, Value value) {
    fail(fmt::format(L"bad argument type: {} {}", predicate, toQuotedText(value)));
}

void Interpreter::badValue(const std::wstring& what) {
    fail(L"bad argument value: " + what);
}

void Interpreter::cancel() {
    clearInterrupt();
    throw LispError{L"Function cancelled", ErrorKind::Cancel};
}

void Interpreter::stackOverflow() {
    currentSubr = nullptr;
    throw LispError{L"AutoLISP stack overflow"};
}

void Interpreter::handleAttention() {
    if (interruptPending()) cancel();
    if (!heap_.wantsCollection()) return;
    if (!heap_.overLimit()) {
        heap_.startCollection();
        return;
    }
    // Twice: the first may only have finished a collection whose snapshot is old.
    heap_.collectFully();
    if (heap_.liveOverLimit()) heap_.collectFully();
    if (heap_.liveOverLimit()) throw OutOfMemory{};
}

void Interpreter::traceRoots(Marker& marker) {
    marker.visitAll(stack_, sp);
    marker.visitAll(initial_.data(), initial_.data() + initial_.size());
    for (const Namespace* ns : namespaces_) {
        marker.visitAll(ns->values.data(), ns->values.data() + ns->values.size());
    }
    for (const auto& [symbol, value] : blackboard)
        marker.visit(value);
    for (const Frame* frame = frames_; frame != frameTop_; ++frame) {
        if (frame->function != nullptr) marker.visit(Value::object(frame->function));
    }
    marker.visitAll(subrs_.data(), subrs_.data() + subrs_.size());
}

std::vector<std::wstring> Interpreter::backtrace() {
    std::vector<std::wstring> lines;
    const auto place = [](const CallSite& site) {
        return site.file == nullptr ? std::wstring()
                                    : fmt::format(L", called at {}:{}", *site.file, site.line);
    };
    if (currentSubr != nullptr) lines.push_back(currentSubr->name + place(currentSite));
    constexpr size_t kShown = 20;
    size_t hidden = 0;
    for (const Frame* frame = frameTop_; frame-- != frames_;) {
        if (frame->function == nullptr) continue;
        if (lines.size() >= kShown) {
            ++hidden;
            continue;
        }
        const std::wstring& name = frame->function->code->name;
        lines.push_back((name.empty() ? L"lambda" : name) + place(frame->site));
    }
    if (hidden > 0) lines.push_back(fmt::format(L"... and {} more calls", hidden));
    for (size_t i = loading_.size(); i-- > 0;) {
        lines.push_back(
            fmt::format(L"top-level form at {}:{}", *loading_[i].file, loading_[i].line));
    }
    return lines;
}

// ---- Programs -----------------------------------------------------------------------------------

Value Interpreter::loadText(std::wstring_view text, const std::wstring& file) {
    Value* const keep = sp;
    LineMap lines;
    if (files_.empty() || files_.back() != file) files_.push_back(file);
    const std::wstring* name = &files_.back();
    Reader reader(*this, text, file, &lines);
    Value value;
    loading_.push_back({name, 0});
    while (reader.more()) {
        lines.clear();
        loading_.back().line = reader.nextLine();
        const Value form = reader.read();
        push(form);
        const Operand code = Compiler(*this, name, &lines).compile(form);
        value = code.get(*this);
        sp = keep;
    }
    loading_.pop_back();
    push(value);
    sp = keep;
    return value;
}

bool Interpreter::runErrorHandler(const LispError& error) {
    const Value handler = valueOf(errorSymbol_);
    if (handler.isNil() || handlingError_) return false;
    handlingError_ = true;
    openReserve(true);
    clearInterrupt();
    try {
        push(string(error.message));
        const Value message = sp[-1];
        apply(handler, {&message, 1});
    } catch (const LispError& inner) {
        // (quit) and (exit) at a handler's end are the usual way to leave quietly.
        if (inner.kind != ErrorKind::Exit) {
            hooks_.report(L"; error: An error has occurred inside the *error* function: " +
                          inner.message);
        }
    } catch (const OutOfMemory&) {
        hooks_.report(L"; error: " + error.message);
    } catch (const std::bad_alloc&) {
        hooks_.report(L"; error: " + error.message);
    } catch (const ExitWithValue&) {
    }
    openReserve(false);
    handlingError_ = false;
    return true;
}

void Interpreter::reportError(const LispError& error) {
    const bool handled = runErrorHandler(error);
    if (error.kind == ErrorKind::Exit) return;
    if (!handled) hooks_.report(L"; error: " + error.message);
    if (error.kind == ErrorKind::Cancel || error.backtrace.empty()) return;
    hooks_.report(handled ? L"; backtrace of \"" + error.message + L"\":" : L"; backtrace:");
    for (const std::wstring& line : error.backtrace)
        hooks_.report(L";   " + line);
    const std::wstring hint = hintOf(error);
    if (!hint.empty()) hooks_.report(hint);
}

std::wstring Interpreter::hintOf(const LispError& error) {
    constexpr size_t kMostNames = 3;
    if (error.unknownFunction.empty()) return error.hint.empty() ? L"" : L"; " + error.hint;
    std::vector<std::wstring> functions;
    for (uint32_t symbol = 0; symbol < symbols_.size(); ++symbol) {
        const Value value = valueOf(symbol);
        if (asSubr(value) || asFunction(value) || asExternal(value)) {
            functions.push_back(symbols_.name(symbol));
        }
    }
    return suggestion(nearestNames(functions, error.unknownFunction, kMostNames));
}

Interpreter::Outcome Interpreter::runGuarded(const std::function<Value()>& body, bool report) {
    Outcome outcome;
    const size_t height = frameHeight();
    const size_t loads = loading_.size();
    const size_t traces = traceDepth_;
    bool memoryExhausted = false;
    Value* const stack = sp;
    ++depth_;
    const auto failed = [&](LispError error) {
        outcome.failed = error.kind != ErrorKind::Exit;
        outcome.exited = error.kind == ErrorKind::Exit;
        // The error's function and frames are all still in place: *error* sees the variables that
        // were bound where the error arose.
        error.backtrace = backtrace();
        if (report) reportError(error);
        outcome.error = std::move(error);
    };
    try {
        outcome.value = body();
    } catch (const LispError& error) {
        failed(error);
    } catch (const OutOfMemory&) {
        memoryExhausted = true;
    } catch (const std::bad_alloc&) {
        memoryExhausted = true;
    } catch (const ExitWithValue& exit) {
        outcome.exited = true;
        outcome.value = exit.value;
    }
    if (memoryExhausted) failed({outOfMemoryText()});
    --depth_;
    loading_.resize(loads);
    traceDepth_ = traces;
    currentSubr = nullptr;
    unwind(height, stack);
    // What the program held is garbage now; without it there is room to go on.
    if (memoryExhausted) {
        heap_.collectFully();
        if (heap_.liveOverLimit()) heap_.collectFully();
    }
    return outcome;
}

std::wstring Interpreter::outOfMemoryText() const {
    return fmt::format(L"out of memory: the program holds more than {} MB (--memory-limit)",
                       heap_.limit() >> 20);
}

Interpreter::Outcome Interpreter::runTopLevel(const std::function<Value()>& body) {
    return runGuarded(body, true);
}

Interpreter::Outcome Interpreter::runProtected(const std::function<Value()>& body) {
    return runGuarded(body, false);
}

}  // namespace sg::lisp

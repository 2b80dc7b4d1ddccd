#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/lisp/heap.h"
#include "host/lisp/value.h"

namespace sg::lisp {

class Interpreter;
struct FunctionCode;

// The evaluated arguments of a call. They lie on the interpreter's value stack, so they stay alive
// during the call; the function may overwrite them.
class Args {
  public:
    Args(Value* first, size_t count) : first_(first), count_(count) {}
    size_t size() const { return count_; }
    Value& operator[](size_t i) const { return first_[i]; }
    // The i-th argument, nil when it was not given.
    Value get(size_t i) const { return i < count_ ? first_[i] : Value::nil(); }
    bool has(size_t i) const { return i < count_; }
    Value* begin() const { return first_; }
    Value* end() const { return first_ + count_; }
    Args from(size_t i) const { return {first_ + i, count_ - i}; }

  private:
    Value* first_;
    size_t count_;
};

using NativeFunction = Value (*)(Interpreter&, Args);
inline constexpr int kAnyCount = 0x7FFFFFFF;

// A function of the language, written in C++.
class Subr final : public Object {
  public:
    Subr(std::wstring name, NativeFunction function, int least, int most)
        : Object(ObjectKind::Subr),
          name(std::move(name)),
          function(function),
          least(least),
          most(most) {}
    const std::wstring name;  // upper case
    const NativeFunction function;
    const int least, most;  // how many arguments it takes
};

// A function that was written in LISP.
class Function final : public Object {
  public:
    explicit Function(std::shared_ptr<const FunctionCode> code)
        : Object(ObjectKind::Function), code(std::move(code)) {}
    void trace(Marker& marker) const override;
    const std::shared_ptr<const FunctionCode> code;
};

// A function that something outside the language answers, such as a loaded module.
class ExternalFunction final : public Object {
  public:
    using Call = std::function<Value(Interpreter&, Args)>;
    ExternalFunction(std::wstring name, Call call)
        : Object(ObjectKind::ExternalFunction), name(std::move(name)), call(std::move(call)) {}
    const std::wstring name;
    const Call call;
};

// A selection set; released when no program holds it any more.
class PickSet final : public Object {
  public:
    PickSet(uint64_t name, std::function<void(uint64_t)> release)
        : Object(ObjectKind::PickSet), name(name), release_(std::move(release)) {}
    ~PickSet() override {
        if (release_) release_(name);
    }
    const uint64_t name;

  private:
    std::function<void(uint64_t)> release_;
};

// What vl-catch-all-apply answers when the function failed.
class CatchError final : public Object {
  public:
    explicit CatchError(std::wstring message)
        : Object(ObjectKind::CatchError), message(std::move(message)) {}
    const std::wstring message;
};

// The object as a T, or null when it is none; T's kind is found by its constructor's tag.
template <class T>
T* as(Value value, ObjectKind kind) {
    return value.isObject() && value.asObject()->kind() == kind ? static_cast<T*>(value.asObject())
                                                                : nullptr;
}
inline Subr* asSubr(Value v) {
    return as<Subr>(v, ObjectKind::Subr);
}
inline Function* asFunction(Value v) {
    return as<Function>(v, ObjectKind::Function);
}
inline ExternalFunction* asExternal(Value v) {
    return as<ExternalFunction>(v, ObjectKind::ExternalFunction);
}
inline PickSet* asPickSet(Value v) {
    return as<PickSet>(v, ObjectKind::PickSet);
}
inline CatchError* asCatchError(Value v) {
    return as<CatchError>(v, ObjectKind::CatchError);
}

}  // namespace sg::lisp

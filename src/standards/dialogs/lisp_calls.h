#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/lisp/resbuf.h"

// Calls of LISP functions that belong to programs. They run in the same document, and may fail or
// answer anything.
namespace sg {

// What a LISP function is given. A short is an RTSHORT, a long an RTLONG.
struct LispArgument {
    int type;
    std::wstring text{};
    int32_t number = 0;

    LispArgument(const std::wstring& value) : type(RTSTR), text(value) {}
    static LispArgument shortNumber(int32_t value) { return {RTSHORT, value}; }
    static LispArgument longNumber(int32_t value) { return {RTLONG, value}; }
    static LispArgument nil() { return {RTNIL, 0}; }

  private:
    LispArgument(int type_, int32_t number_) : type(type_), number(number_) {}
};

// What it answered.
class LispAnswer {
  public:
    LispAnswer(bool isGiven, resbuf* list);

    // False for nil, and when the function is unknown or failed.
    bool isTrue() const;
    std::optional<std::wstring> text() const;
    std::optional<int32_t> number() const;
    // The texts of a list; none for anything else.
    std::vector<std::wstring> texts() const;

  private:
    struct Release {
        void operator()(resbuf* list) const { acutRelRb(list); }
    };
    bool isGiven_;
    std::unique_ptr<resbuf, Release> list_;  // null for an answer that no list holds
};

LispAnswer callLisp(const wchar_t* function, std::initializer_list<LispArgument> arguments = {});

}  // namespace sg

#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"

// The number under which a drawing file knows an object; 0 names none. As text it is written in
// hexadecimal digits without leading zeros.
class SG_API AcDbHandle {
  public:
    constexpr AcDbHandle() = default;
    constexpr explicit AcDbHandle(uint64_t value) : value_(value) {}
    // Digits in either case; anything else, and more than 16 digits, gives the null handle.
    explicit AcDbHandle(const wchar_t* text);

    constexpr bool isNull() const { return value_ == 0; }
    constexpr operator uint64_t() const { return value_; }
    std::wstring text() const;  // upper case; "0" for the null handle

  private:
    uint64_t value_ = 0;
};

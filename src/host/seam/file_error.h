#pragma once

#include <stdexcept>
#include <string>

#include "base/encoding.h"
#include "base/export.h"

namespace sg {

// A file that cannot be read or written; the text names it and says what was being done.
class SG_API FileError : public std::runtime_error {
  public:
    explicit FileError(const std::wstring& text) : std::runtime_error(toUtf8(text)), text_(text) {}
    const std::wstring& text() const { return text_; }

  private:
    std::wstring text_;
};

}  // namespace sg

#pragma once

#include <stdexcept>
#include <string>

#include "base/encoding.h"
#include "base/export.h"

namespace sg::dxf {

// A drawing file that cannot be read or written; the text names it and the place in it.
class SG_API Error : public std::runtime_error {
  public:
    explicit Error(const std::wstring& text) : std::runtime_error(toUtf8(text)), text_(text) {}
    const std::wstring& text() const { return text_; }

  private:
    std::wstring text_;
};

}  // namespace sg::dxf

#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace sg::lisp {

// All symbols of one interpreter, by name and by index. Symbols are never removed.
class SymbolTable {
  public:
    // The index of the symbol with this name, made when it is new. Names are kept as given; the
    // reader upper-cases them.
    uint32_t intern(std::wstring_view name) {
        const auto found = byName_.find(name);
        if (found != byName_.end()) return found->second;
        const auto index = static_cast<uint32_t>(names_.size());
        names_.emplace_back(name);
        byName_.emplace(names_.back(), index);
        return index;
    }
    // The symbol with this name, or -1.
    int64_t find(std::wstring_view name) const {
        const auto found = byName_.find(name);
        return found == byName_.end() ? -1 : static_cast<int64_t>(found->second);
    }
    const std::wstring& name(uint32_t index) const { return names_[index]; }
    size_t size() const { return names_.size(); }

  private:
    std::deque<std::wstring> names_;  // a deque, so that the views in byName_ stay valid
    std::unordered_map<std::wstring_view, uint32_t> byName_;
};

}  // namespace sg::lisp

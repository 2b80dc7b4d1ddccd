#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

// Those of `names` that `name` may be a slip for, the nearest first, at most `most`, each once.
SG_API std::vector<std::wstring> nearestNames(const std::vector<std::wstring>& names,
                                              std::wstring_view name, size_t most);

// "; did you mean: A, B" for a message about an unknown name; empty when there are none.
SG_API std::wstring suggestion(const std::vector<std::wstring>& near);

}  // namespace sg

#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "base/text.h"

namespace sg::model {

// The form in which names that differ by case only are the same.
inline std::wstring foldName(std::wstring_view name) {
    std::wstring folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), toUpper);
    return folded;
}

}  // namespace sg::model

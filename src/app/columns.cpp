#include "app/columns.h"

#include <algorithm>

#include "base/text.h"

namespace sg::app {

std::wstring inColumns(const std::vector<std::wstring>& names, int width) {
    size_t widest = 0;
    for (const std::wstring& name : names)
        widest = std::max(widest, name.size());
    const size_t columns = std::max<size_t>(1, static_cast<size_t>(width) / (widest + 2));
    const size_t rows = (names.size() + columns - 1) / columns;
    std::wstring text;
    for (size_t row = 0; row < rows; ++row) {
        std::wstring line;
        for (size_t at = row; at < names.size(); at += rows) {
            line += L"  " + names[at] + std::wstring(widest - names[at].size(), L' ');
        }
        text += std::wstring(trimmedRight(line)) + L'\n';
    }
    return text;
}

}  // namespace sg::app

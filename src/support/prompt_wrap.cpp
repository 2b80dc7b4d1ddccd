#include "support/prompt_wrap.h"

#include <algorithm>
#include <string_view>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr size_t kLineLength = 75;

// Calls `take` with each piece between the separators that is not empty.
template <class Take>
void eachPiece(std::wstring_view text, wchar_t separator, const Take& take) {
    while (!text.empty()) {
        const std::wstring_view piece = text.substr(0, text.find(separator));
        if (!piece.empty()) take(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
}

}  // namespace

int WrapPrompt(std::wstring& text) {
    std::wstring wrapped;
    size_t lineLength = 0;
    eachPiece(text, L' ', [&](std::wstring_view word) {
        const size_t length = toUtf16(word).size();
        if (word.find(L'\n') != std::wstring_view::npos) lineLength = 0;
        if (length + lineLength > kLineLength) {
            wrapped += L'\n';
            lineLength = 0;
        }
        wrapped.append(word).append(1, L' ');
        lineLength += length + 1;
    });
    text = std::move(wrapped);
    int lines = 0;
    eachPiece(text, L'\n', [&](std::wstring_view) { ++lines; });
    return lines;
}

}  // namespace sg

#include "support/scramble.h"

#include "base/encoding.h"

namespace sg {
namespace {

std::u16string shifted(std::u16string_view text, int by) {
    std::u16string out(text);
    for (char16_t& unit : out)
        unit = static_cast<char16_t>(unit + by);
    return out;
}

}  // namespace

std::wstring UnscrambleText(std::u16string_view stored) {
    return fromUtf16(shifted(stored, -1));
}

std::u16string ScrambleText(std::wstring_view text) {
    return shifted(toUtf16(text), 1);
}

}  // namespace sg

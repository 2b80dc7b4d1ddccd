#include "host/editor/commands/colors.h"

#include <fmt/xchar.h>

#include <cmath>
#include <cwchar>

#include "base/numbers.h"
#include "base/text.h"
#include "host/lisp/text/numbers.h"
#include "host/model/core/line_weights.h"

namespace sg::commands {
namespace {

constexpr const wchar_t* kNames[] = {L"red",  L"yellow",  L"green", L"cyan",
                                     L"blue", L"magenta", L"white"};

}  // namespace

std::optional<AcCmColor> colorNamed(std::wstring_view text) {
    text = trimmed(text);
    if (text.starts_with(L'_')) text.remove_prefix(1);
    const std::wstring typed(text);
    AcCmColor color;
    for (size_t i = 0; i < std::size(kNames); ++i) {
        if (equalIgnoringCase(typed, kNames[i]) ||
            (typed.size() == 1 && equalIgnoringCase(typed, std::wstring_view(kNames[i], 1)))) {
            color.setColorIndex(static_cast<uint16_t>(i + 1));
            return color;
        }
    }
    unsigned red = 0, green = 0, blue = 0;
    int end = 0;
    if (std::swscanf(typed.c_str(), L"%3u,%3u,%3u%n", &red, &green, &blue, &end) == 3 &&
        static_cast<size_t>(end) == typed.size() && red < 256 && green < 256 && blue < 256) {
        color.setRGB(static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                     static_cast<uint8_t>(blue));
        return color;
    }
    if (std::swscanf(typed.c_str(), L"%3u%n", &red, &end) == 1 &&
        static_cast<size_t>(end) == typed.size() && red >= 1 && red <= 255) {
        color.setColorIndex(static_cast<uint16_t>(red));
        return color;
    }
    return std::nullopt;
}

std::wstring askColor(Command& c, const std::wstring& prompt) {
    const std::wstring typed(trimmed(c.text(prompt)));
    const std::wstring_view word = std::wstring_view(typed).substr(typed.starts_with(L'_') ? 1 : 0);
    if (equalIgnoringCase(word, L"T") || equalIgnoringCase(word, L"Truecolor")) {
        return c.text(L"Red,Green,Blue: ");
    }
    return typed;
}

std::wstring colorText(const AcCmColor& color) {
    if (color.isByColor()) {
        return fmt::format(L"{},{},{}", color.red(), color.green(), color.blue());
    }
    const uint16_t index = color.colorIndex();
    if (index < 1 || index > std::size(kNames)) return std::to_wstring(index);
    return fmt::format(L"{} ({})", index, kNames[index - 1]);
}

std::optional<AcDb::LineWeight> lineWidthNamed(std::wstring_view text) {
    text = trimmed(text);
    const ScannedReal width = scanReal(text);
    const std::wstring_view unit = trimmed(text.substr(width.length));
    if (width.length == 0 || (!unit.empty() && !equalIgnoringCase(unit, L"mm"))) {
        return std::nullopt;
    }
    const int weight = wholeOf<int>(std::round(width.value * 100));
    if (!model::isLineWidth(weight)) return std::nullopt;
    return static_cast<AcDb::LineWeight>(weight);
}

}  // namespace sg::commands

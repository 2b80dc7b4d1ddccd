#include "host/system/screen.h"

#include <charconv>
#include <optional>
#include <string>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"

namespace sg {
namespace {

constexpr ScreenSize kDefault = {1920, 1080};

// "1600x1200"; what follows, such as the "i" of an interlaced mode, does not count.
std::optional<ScreenSize> sizeOf(std::string_view text) {
    ScreenSize size;
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x') return std::nullopt;
    const auto height = std::from_chars(width.ptr + 1, end, size.height);
    const bool good = height.ec == std::errc() && size.width > 0 && size.height > 0;
    return good ? std::optional(size) : std::nullopt;
}

// The first mode that a connector lists is the screen's own.
std::optional<ScreenSize> sizeAt(const std::wstring& connector) {
    const std::string state = readFile(joinPath(connector, L"enabled")).value_or("");
    if (trimmed(fromUtf8(state)) != L"enabled") return std::nullopt;
    return sizeOf(readFile(joinPath(connector, L"modes")).value_or(""));
}

}  // namespace

ScreenSize screenSize(std::wstring_view folder) {
    const std::string set = toUtf8(environmentVariable(L"SWIFTGATE_SCREEN").value_or(L""));
    if (const auto size = sizeOf(set)) return *size;
    for (const std::wstring& name : listFolder(folder, L"card*-*", ListedEntries::all)) {
        if (const auto size = sizeAt(joinPath(folder, name))) return *size;
    }
    return kDefault;
}

}  // namespace sg

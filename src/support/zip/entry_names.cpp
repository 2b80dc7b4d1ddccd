#include "support/zip/entry_names.h"

#include <algorithm>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr int kFat = 0, kHpfs = 6, kNtfs = 10;

bool hasDriveLetter(std::wstring_view name) {
    const auto isLetter = [](wchar_t c) {
        return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
    };
    return name.size() >= 2 && name[1] == L':' && isLetter(name[0]);
}

bool isSeparator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

// The parts between separators, without empty ones and ".".
std::vector<std::wstring> componentsOf(std::wstring_view path) {
    std::vector<std::wstring> parts;
    for (auto start = path.begin(); start != path.end();) {
        const auto end = std::find_if(start, path.end(), isSeparator);
        const std::wstring_view part(start, end);
        if (!part.empty() && part != L".") parts.emplace_back(part);
        start = end == path.end() ? end : end + 1;
    }
    return parts;
}

}  // namespace

std::wstring entryName(std::string_view bytes, bool declaredUtf8, int system,
                       std::wstring_view cp437) {
    if (declaredUtf8 || isUtf8(bytes)) return fromUtf8(bytes);
    const bool isDosRelative = system == kFat || system == kHpfs || system == kNtfs;
    return isDosRelative ? std::wstring(cp437) : fromCp1252(bytes);
}

std::optional<std::vector<std::wstring>> entryPath(std::wstring_view name, std::wstring& reason) {
    std::vector<std::wstring> parts = componentsOf(name);
    const bool isControl =
        std::any_of(name.begin(), name.end(), [](wchar_t c) { return c < 0x20 || c == 0x7F; });
    if (isControl) {
        reason = L"its name has control characters";
    } else if (!name.empty() && isSeparator(name[0])) {
        reason = L"its name is absolute";
    } else if (hasDriveLetter(name)) {
        reason = L"its name has a drive letter";
    } else if (std::find(parts.begin(), parts.end(), L"..") != parts.end()) {
        reason = L"its name leads out of the folder";
    } else if (parts.empty() && !isFolderName(name)) {
        reason = L"it has no name";
    } else {
        return parts;
    }
    return std::nullopt;
}

bool isFolderName(std::wstring_view name) {
    return !name.empty() && isSeparator(name.back());
}

std::wstring storedPath(std::wstring_view path) {
    if (hasDriveLetter(path)) path.remove_prefix(2);
    std::wstring stored;
    for (const std::wstring& part : componentsOf(path)) {
        if (part == L"..") continue;
        if (!stored.empty()) stored += L'/';
        stored += part;
    }
    return stored;
}

std::wstring numberedName(std::wstring_view name, unsigned number) {
    const size_t slash = name.rfind(L'/');
    const size_t start = slash == std::wstring_view::npos ? 0 : slash + 1;
    size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos || dot <= start) dot = name.size();
    return std::wstring(name.substr(0, dot)) + L" (" + std::to_wstring(number) + L")" +
           std::wstring(name.substr(dot));
}

}  // namespace sg

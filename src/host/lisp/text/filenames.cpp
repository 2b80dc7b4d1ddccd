#include "host/lisp/text/filenames.h"

namespace sg {

namespace {

constexpr std::wstring_view kSeparators = L"/\\";

size_t driveLength(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':' ? 2 : 0;
}

// Where the name starts that follows the last separator or the drive.
size_t nameStart(std::wstring_view path) {
    const size_t separator = path.find_last_of(kSeparators);
    return separator == std::wstring_view::npos ? driveLength(path) : separator + 1;
}

}  // namespace

std::wstring_view filenameBase(std::wstring_view path) {
    const std::wstring_view name = path.substr(nameStart(path));
    return name.substr(0, name.rfind(L'.'));
}

std::wstring_view filenameDirectory(std::wstring_view path) {
    const std::wstring_view folder = path.substr(0, nameStart(path));
    const size_t last = folder.find_last_not_of(kSeparators);
    const size_t end = last == std::wstring_view::npos ? 0 : last + 1;
    // Without its separator a root would be another folder, or none: "c:" is a drive's current one.
    const bool isRoot = end == driveLength(path) && end < folder.size();
    return folder.substr(0, isRoot ? end + 1 : end);
}

std::optional<std::wstring_view> filenameExtension(std::wstring_view path) {
    const std::wstring_view name = path.substr(nameStart(path));
    const size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos) return std::nullopt;
    return name.substr(dot);
}

}  // namespace sg

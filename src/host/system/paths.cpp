#include "host/system/paths.h"

#include <algorithm>
#include <filesystem>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

bool isThere(const std::wstring& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(toUtf8(path), error));
}

bool isFolder(const std::wstring& path) {
    std::error_code error;
    return fs::is_directory(toUtf8(path), error);
}

// The components of a path with "/" separators; repeated separators count as one.
std::vector<std::wstring> componentsOf(std::wstring_view path) {
    std::vector<std::wstring> parts;
    size_t start = 0;
    while (start < path.size()) {
        const size_t end = std::min(path.find(L'/', start), path.size());
        if (end > start) parts.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::wstring child(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty()) return name;
    return folder.back() == L'/' ? folder + name : folder + L'/' + name;
}

// The entries of `folder` (empty: the current one) that are `name` but for case, sorted.
std::vector<std::wstring> spellings(const std::wstring& folder, const std::wstring& name) {
    std::vector<std::wstring> found;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : toUtf8(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::wstring each = fromUtf8(entry->path().filename().native());
        if (each != name && equalIgnoringCase(each, name)) found.push_back(std::move(each));
    }
    std::sort(found.begin(), found.end());
    return found;
}

// Walks the components from `index` on below `folder`. `best` keeps the deepest existing path seen
// first, with what remains appended as written.
class IgnoringCase {
  public:
    explicit IgnoringCase(std::vector<std::wstring> parts) : parts_(std::move(parts)) {}

    ResolvedPath resolve(const std::wstring& root) {
        remember(root, 0);
        const bool exists = walk(root, 0);
        return {best_, exists};
    }

  private:
    bool walk(const std::wstring& folder, size_t index) {
        if (index == parts_.size()) return true;
        const std::wstring exact = child(folder, parts_[index]);
        if (isThere(exact) && enter(exact, index + 1)) return true;
        for (const std::wstring& each : spellings(folder, parts_[index])) {
            if (enter(child(folder, each), index + 1)) return true;
        }
        return false;
    }

    bool enter(const std::wstring& path, size_t index) {
        remember(path, index);
        return (index == parts_.size() || isFolder(path)) && walk(path, index);
    }

    void remember(const std::wstring& path, size_t index) {
        if (hasBest_ && index <= depth_) return;
        hasBest_ = true;
        depth_ = index;
        best_ = path;
        for (size_t i = index; i < parts_.size(); ++i)
            best_ = child(best_, parts_[i]);
    }

    const std::vector<std::wstring> parts_;
    std::wstring best_;
    size_t depth_ = 0;
    bool hasBest_ = false;
};

std::wstring foldedForSort(const std::wstring& name) {
    return lowerCased(name);
}

}  // namespace

std::wstring withSlashes(std::wstring_view path) {
    std::wstring out(path);
    std::replace(out.begin(), out.end(), L'\\', L'/');
    return out;
}

ResolvedPath resolvePath(std::wstring_view path) {
    std::wstring written = withSlashes(path);
    if (written.empty()) return {written, false};
    if (isThere(written)) return {std::move(written), true};
    return IgnoringCase(componentsOf(written)).resolve(written[0] == L'/' ? L"/" : L"");
}

bool isAbsolutePath(std::wstring_view path) {
    return !path.empty() && (path[0] == L'/' || path[0] == L'\\');
}

std::wstring joinPath(std::wstring_view folder, std::wstring_view name) {
    if (folder.empty() || isAbsolutePath(name)) return withSlashes(name);
    return child(withSlashes(folder), withSlashes(name));
}

std::wstring absolutePath(std::wstring_view path) {
    std::error_code error;
    const std::wstring here =
        isAbsolutePath(path) ? L"" : fromUtf8(fs::current_path(error).native()) + L"/";
    std::wstring out;
    for (const std::wstring& part : componentsOf(here + withSlashes(path))) {
        if (part == L"..") {
            out.erase(std::min(out.rfind(L'/'), out.size()));
        } else if (part != L".") {
            out += L'/' + part;
        }
    }
    return out.empty() ? L"/" : out;
}

std::wstring_view lastComponent(std::wstring_view path) {
    const size_t slash = path.find_last_of(L"/\\");
    return slash == std::wstring_view::npos ? path : path.substr(slash + 1);
}

std::wstring_view parentFolder(std::wstring_view path) {
    const size_t slash = path.find_last_of(L"/\\");
    if (slash == std::wstring_view::npos) return {};
    return path.substr(0, slash == 0 ? 1 : slash);
}

namespace {

// With "*" and "?" alone as special characters.
bool matchesWhole(std::wstring_view name, std::wstring_view pattern) {
    // The last "*" is the only one that needs a second try: what stands before it has matched.
    size_t n = 0, p = 0;
    size_t star = std::wstring_view::npos, afterStar = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            afterStar = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == L'?' || toLower(pattern[p]) == toLower(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::wstring_view::npos) {
            p = star + 1;
            n = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

}  // namespace

bool matchesFilePattern(std::wstring_view name, std::wstring_view pattern) {
    if (pattern.ends_with(L"*.")) {
        const bool hasDot = name.find(L'.') != std::wstring_view::npos;
        return !hasDot && matchesWhole(name, pattern.substr(0, pattern.size() - 1));
    }
    return matchesWhole(name, pattern) ||
           (pattern.ends_with(L".*") && matchesWhole(name, pattern.substr(0, pattern.size() - 2)));
}

std::vector<std::wstring> listFolder(std::wstring_view folder, std::wstring_view pattern,
                                     ListedEntries entries) {
    if (pattern.empty()) pattern = L"*";
    const ResolvedPath resolved = resolvePath(folder.empty() ? L"." : folder);
    std::error_code error;
    fs::directory_iterator entry(toUtf8(resolved.path), error);
    if (error) return {};
    std::vector<std::wstring> names;
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::wstring name = fromUtf8(entry->path().filename().native());
        if (!matchesFilePattern(name, pattern)) continue;
        std::error_code ignored;
        const bool isAFolder = entry->is_directory(ignored);
        if (entries == ListedEntries::all || isAFolder == (entries == ListedEntries::foldersOnly)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end(), [](const std::wstring& a, const std::wstring& b) {
        const int order = foldedForSort(a).compare(foldedForSort(b));
        return order != 0 ? order < 0 : a < b;
    });
    if (entries != ListedEntries::filesOnly) {
        for (const wchar_t* const dots : {L"..", L"."}) {
            if (matchesFilePattern(dots, pattern)) names.insert(names.begin(), dots);
        }
    }
    return names;
}

void SupportPath::add(std::wstring_view folder) {
    std::wstring absolute = absolutePath(resolvePath(folder).path);
    if (std::find(folders_.begin(), folders_.end(), absolute) == folders_.end()) {
        folders_.push_back(std::move(absolute));
    }
}

std::wstring SupportPath::find(std::wstring_view name) const {
    if (name.empty()) return {};
    for (const std::wstring& place : places(name)) {
        const ResolvedPath found = resolvePath(place);
        if (found.exists && !isFolder(found.path)) return absolutePath(found.path);
    }
    return {};
}

std::vector<std::wstring> SupportPath::places(std::wstring_view name) const {
    if (isAbsolutePath(name)) return {withSlashes(name)};
    std::vector<std::wstring> files;
    for (const std::wstring& folder : folders_)
        files.push_back(joinPath(folder, name));
    return files;
}

std::wstring SupportPath::text() const {
    std::wstring out;
    for (const std::wstring& folder : folders_) {
        if (!out.empty()) out += L';';
        out += folder;
        if (out.back() != L'/') out += L'/';
    }
    return out;
}

}  // namespace sg

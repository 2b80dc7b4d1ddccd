#include "host/system/folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg {
namespace {

std::wstring absoluteFromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? absolutePath(fromUtf8(value)) : std::wstring();
}

std::wstring firstOf(std::initializer_list<const char*> names, std::wstring otherwise) {
    for (const char* const name : names) {
        std::wstring path = absoluteFromEnvironment(name);
        if (!path.empty()) return path;
    }
    return otherwise;
}

std::wstring userEntry(char* passwd::*field) {
    const passwd* const user = ::getpwuid(::getuid());
    return user != nullptr && user->*field != nullptr ? fromUtf8(user->*field) : std::wstring();
}

std::wstring home() {
    std::wstring folder = firstOf({"HOME"}, userEntry(&passwd::pw_dir));
    return folder.empty() ? L"/" : folder;
}

std::wstring belowHome(const wchar_t* name) {
    return joinPath(home(), name);
}

std::wstring sharedData() {
    const char* const folders = std::getenv("XDG_DATA_DIRS");
    const std::wstring all = fromUtf8(folders != nullptr ? folders : "");
    const std::wstring first = all.substr(0, all.find(L':'));
    return first.starts_with(L'/') ? absolutePath(first) : L"/usr/local/share";
}

// A line of user-dirs.dirs: XDG_DESKTOP_DIR="$HOME/Desktop".
std::wstring userFolder(std::wstring_view key, const wchar_t* otherwise) {
    const std::wstring file = joinPath(knownFolder(KnownFolder::configuration), L"user-dirs.dirs");
    const std::wstring text = fromUtf8(readFile(file).value_or(""));
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(L'\n', start), text.size());
        std::wstring_view line = trimmed(std::wstring_view(text).substr(start, end - start));
        start = end + 1;
        if (!line.starts_with(key) || !line.ends_with(L'"')) continue;
        line.remove_prefix(key.size());
        if (!line.starts_with(L"=\"") || line.size() < 3) continue;
        line = line.substr(2, line.size() - 3);
        if (line.starts_with(L"$HOME/")) return absolutePath(joinPath(home(), line.substr(6)));
        if (line.starts_with(L'/')) return absolutePath(line);
    }
    return belowHome(otherwise);
}

std::optional<std::wstring> counterpart(std::wstring_view name) {
    const std::wstring upper = upperCased(name);
    if (upper == L"TEMP" || upper == L"TMP") return knownFolder(KnownFolder::temporary);
    if (upper == L"USERPROFILE" || upper == L"HOMEPATH") return home();
    if (upper == L"APPDATA") return knownFolder(KnownFolder::configuration);
    if (upper == L"LOCALAPPDATA") return knownFolder(KnownFolder::data);
    if (upper == L"USERNAME") {
        const std::wstring user = userEntry(&passwd::pw_name);
        return user.empty() ? std::nullopt : std::optional(user);
    }
    if (upper == L"COMPUTERNAME") {
        char host[256] = "";
        if (::gethostname(host, sizeof(host) - 1) == 0) return upperCased(fromUtf8(host));
    }
    return std::nullopt;
}

}  // namespace

std::wstring knownFolder(KnownFolder folder) {
    switch (folder) {
        case KnownFolder::home:
            return home();
        case KnownFolder::configuration:
            return firstOf({"XDG_CONFIG_HOME"}, belowHome(L".config"));
        case KnownFolder::data:
            return firstOf({"XDG_DATA_HOME"}, belowHome(L".local/share"));
        case KnownFolder::cache:
            return firstOf({"XDG_CACHE_HOME"}, belowHome(L".cache"));
        case KnownFolder::state:
            return firstOf({"XDG_STATE_HOME"}, belowHome(L".local/state"));
        case KnownFolder::temporary:
            return firstOf({"TMPDIR", "TMP", "TEMP"}, L"/tmp");
        case KnownFolder::desktop:
            return userFolder(L"XDG_DESKTOP_DIR", L"Desktop");
        case KnownFolder::documents:
            return userFolder(L"XDG_DOCUMENTS_DIR", L"Documents");
        case KnownFolder::pictures:
            return userFolder(L"XDG_PICTURES_DIR", L"Pictures");
        case KnownFolder::publicShare:
            return userFolder(L"XDG_PUBLICSHARE_DIR", L"Public");
        case KnownFolder::sharedData:
            return sharedData();
    }
    return {};
}

std::optional<std::wstring> environmentVariable(std::wstring_view name) {
    const std::string exact = toUtf8(name);
    if (exact.empty() || exact.find('=') != std::string::npos) return std::nullopt;
    if (const char* const value = std::getenv(exact.c_str())) return fromUtf8(value);
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const size_t equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        if (equalIgnoringCase(fromUtf8(text.substr(0, equals)), name)) {
            return fromUtf8(text.substr(equals + 1));
        }
    }
    return counterpart(name);
}

}  // namespace sg

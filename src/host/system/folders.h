#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/export.h"

// The user's folders and the environment.
namespace sg {

enum class KnownFolder {
    home,
    configuration,  // XDG_CONFIG_HOME, else ~/.config
    data,           // XDG_DATA_HOME, else ~/.local/share
    cache,          // XDG_CACHE_HOME, else ~/.cache
    state,          // XDG_STATE_HOME, else ~/.local/state
    temporary,      // TMPDIR, TMP or TEMP, else /tmp
    desktop,        // these four as the user's user-dirs.dirs names them, else ~/Desktop,
    documents,      // ~/Documents,
    pictures,       // ~/Pictures
    publicShare,    // and ~/Public
    sharedData,     // the first of XDG_DATA_DIRS, else /usr/local/share
};

// The folder's absolute path, with no "/" at its end. It need not exist. Relative paths in the
// environment do not count.
SG_API std::wstring knownFolder(KnownFolder folder);

// The value of an environment variable: of that name, or of that name ignoring case. For the names
// that programs of the system of origin rely on (TEMP, USERPROFILE, APPDATA, ...), where the
// environment has none, what corresponds here. nullopt when there is no such variable.
SG_API std::optional<std::wstring> environmentVariable(std::wstring_view name);

}  // namespace sg

#include "host/system/database_files.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "base/encoding.h"
#include "host/jet/storage/foreign_lock.h"
#include "host/system/paths.h"

namespace sg {

jet::StorageOptions databaseOptions() {
    jet::StorageOptions options;
    // A project's database is held whole: programs seek in it all day.
    options.cacheBytes = size_t(64) << 20;
    options.findFile = [](const std::wstring& path) {
        return absolutePath(resolvePath(path).path);
    };
    options.beforeWriting = reportForeignLock;
    return options;
}

void reportForeignLock(const std::wstring& database) {
    const std::optional<jet::ForeignLock> lock = jet::findForeignLock(database);
    if (!lock) return;
    std::wstring line = database + L": another program may have the file open and does not heed " +
                        L"our locks: there is " + lock->file;
    const wchar_t* separator = L", with the entries ";
    for (const std::wstring& machine : lock->machines) {
        line += separator + machine;
        separator = L", ";
    }
    // What stands in the file must not reach a terminal's controls.
    std::replace_if(
        line.begin(), line.end(),
        [](wchar_t c) { return c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029; },
        L' ');
    std::fputs(("swiftgate: " + toUtf8(line) + "\n").c_str(), stderr);
}

}  // namespace sg

#include "host/system/database_files.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>

#include "base/encoding.h"
#include "host/jet/format/error.h"
#include "host/jet/storage/foreign_lock.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg {
namespace {

// How long others may stand in the way of a file that is to come to rest.
constexpr int settleAttempts = 200;
constexpr std::chrono::milliseconds settlePause{10};

bool isDatabase(const std::wstring& path) {
    constexpr size_t enough = 256;
    if (!isRegularFile(path)) return false;
    const std::optional<std::string> start = readFileStart(path, enough);
    if (!start) return false;
    try {
        jet::identifyFormat({reinterpret_cast<const uint8_t*>(start->data()), start->size()}, path);
        return true;
    } catch (const jet::Error&) {
        return false;
    }
}

}  // namespace

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

WholeDatabaseFile::WholeDatabaseFile(const std::wstring& path) {
    if (!isFile(jet::Storage::logPath(path)) || !isDatabase(path)) return;
    try {
        storage_ = jet::Storage::open(path, jet::OpenMode::Shared);
    } catch (const jet::Error& error) {
        // What else keeps a database from being opened does not keep its bytes from being copied.
        isWhole_ = error.code() != jet::FileInUse;
        return;
    }
    isWhole_ = settle();
}

WholeDatabaseFile::~WholeDatabaseFile() = default;

bool WholeDatabaseFile::settle() {
    try {
        scope_.emplace(*storage_);
        for (int attempt = 0; attempt < settleAttempts; ++attempt) {
            if (storage_->settle()) return true;
            std::this_thread::sleep_for(settlePause);
        }
    } catch (const jet::Error&) {
        // The log can't be read, or the file not be written.
    }
    return false;
}

bool isDatabaseInUse(const std::wstring& path) {
    if (!isDatabase(path)) return false;
    try {
        const auto file = jet::posixFiles().open(path, jet::FileAccess::ReadWrite);
        return !jet::Storage::lockAlone(*file);
    } catch (const jet::Error&) {
        return false;
    }
}

}  // namespace sg

#include "support/zip/extraction_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr size_t kDeepest = 200;  // folders; each costs a descriptor

std::string newUnfinishedName() {
    static std::atomic<unsigned> counter = 0;
    return ".swiftgate-" + std::to_string(::getpid()) + "-x" + std::to_string(counter++);
}

bool existsIn(int folder, const std::string& name) {
    struct stat info;
    return ::fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

}  // namespace

ExtractionFolder::~ExtractionFolder() {
    abandonFile();
    while (!levels_.empty())
        leave();
}

bool ExtractionFolder::fail(int code, std::wstring_view name) {
    reason_ = L"cannot write \"" + std::wstring(name) + L"\": ";
    reason_ += code == ELOOP || code == ENOTDIR ? L"a link or a file is in the way"
                                                : fromUtf8(std::strerror(code));
    return false;
}

bool ExtractionFolder::open(const std::wstring& folder) {
    std::error_code error;
    fs::create_directories(toUtf8(folder), error);
    Level level;
    level.descriptor = ::open(toUtf8(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (level.descriptor < 0) return fail(errno, folder);
    levels_.push_back(std::move(level));
    return true;
}

void ExtractionFolder::leave() {
    ::close(levels_.back().descriptor);
    levels_.pop_back();
}

void ExtractionFolder::readNames(Level& level) {
    level.namesAreKnown = true;
    const int copy = ::openat(level.descriptor, ".", kFolderFlags);
    DIR* const folder = copy >= 0 ? ::fdopendir(copy) : nullptr;
    if (folder == nullptr) {
        if (copy >= 0) ::close(copy);
        return;
    }
    while (const dirent* const entry = ::readdir(folder))
        level.names.emplace(lowerCased(fromUtf8(entry->d_name)), entry->d_name);
    ::closedir(folder);
}

std::string ExtractionFolder::spelling(Level& level, const std::wstring& name) {
    const std::string exact = toUtf8(name);
    if (existsIn(level.descriptor, exact)) return exact;
    if (!level.namesAreKnown) readNames(level);
    return level.names.try_emplace(lowerCased(name), exact).first->second;
}

bool ExtractionFolder::enter(const std::wstring& name) {
    if (levels_.size() > kDeepest) return fail(ENAMETOOLONG, name);
    Level& level = levels_.back();
    const std::string spelt = spelling(level, name);
    Level next;
    next.key = lowerCased(name);
    next.namesAreKnown = ::mkdirat(level.descriptor, spelt.c_str(), 0777) == 0;
    if (!next.namesAreKnown && errno != EEXIST) return fail(errno, name);
    next.descriptor = ::openat(level.descriptor, spelt.c_str(), kFolderFlags);
    if (next.descriptor < 0) return fail(errno, name);
    levels_.push_back(std::move(next));
    return true;
}

// Leaves the folders that the way does not share with the one before, and enters the others.
bool ExtractionFolder::goTo(Path::const_iterator first, Path::const_iterator last) {
    size_t shared = 1;
    while (first != last && shared < levels_.size() && levels_[shared].key == lowerCased(*first)) {
        ++shared;
        ++first;
    }
    while (levels_.size() > shared)
        leave();
    for (; first != last; ++first) {
        if (!enter(*first)) return false;
    }
    return true;
}

bool ExtractionFolder::makeFolder(const Path& path) {
    abandonFile();
    return goTo(path.begin(), path.end());
}

bool ExtractionFolder::beginFile(const Path& path) {
    abandonFile();
    if (!goTo(path.begin(), path.end() - 1)) return false;
    finished_ = spelling(levels_.back(), path.back());
    do {
        unfinished_ = newUnfinishedName();
        file_ = ::openat(levels_.back().descriptor, unfinished_.c_str(),
                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    } while (file_ < 0 && errno == EEXIST);
    return file_ >= 0 || fail(errno, path.back());
}

bool ExtractionFolder::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return fail(errno, fromUtf8(finished_));
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool ExtractionFolder::finishFile(std::time_t changed) {
    const int folder = levels_.back().descriptor;
    const std::timespec times[2] = {{0, UTIME_NOW}, {changed, 0}};
    ::futimens(file_, times);  // a file system that keeps no times is no failure
    const bool closed = ::close(std::exchange(file_, -1)) == 0;
    if (closed && ::renameat(folder, unfinished_.c_str(), folder, finished_.c_str()) == 0) {
        return true;
    }
    const int code = errno;
    ::unlinkat(folder, unfinished_.c_str(), 0);
    return fail(code, fromUtf8(finished_));
}

void ExtractionFolder::abandonFile() {
    if (file_ < 0) return;
    ::close(std::exchange(file_, -1));
    ::unlinkat(levels_.back().descriptor, unfinished_.c_str(), 0);
}

uint64_t freeBytes(std::wstring_view folder) {
    std::error_code error;
    fs::path place = fs::absolute(toUtf8(folder), error);
    struct statvfs info;
    while (::statvfs(place.c_str(), &info) != 0) {
        if (place == place.parent_path()) return 0;
        place = place.parent_path();
    }
    return static_cast<uint64_t>(info.f_bavail) * info.f_frsize;
}

}  // namespace sg

#include "host/system/file_lock.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/encoding.h"

namespace sg {
namespace {

std::string ownName() {
    char host[256] = "";
    gethostname(host, sizeof(host) - 1);
    const passwd* const user = getpwuid(geteuid());
    return "process " + std::to_string(getpid()) + " of " +
           (user != nullptr ? user->pw_name : std::to_string(geteuid())) + " on " + host;
}

std::wstring readName(int descriptor) {
    char text[512];
    const ssize_t length = pread(descriptor, text, sizeof(text), 0);
    const std::wstring name = fromUtf8({text, static_cast<size_t>(length > 0 ? length : 0)});
    return name.empty() ? L"another process" : name;
}

// Another process may have removed the file between our opening and our locking it: then what we
// locked is no longer what has the name.
bool hasName(int descriptor, const std::string& path) {
    struct stat held, named;
    return fstat(descriptor, &held) == 0 && stat(path.c_str(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

}  // namespace

FileLock::FileLock(const std::wstring& file) : path_(toUtf8(file) + ".lock") {
    while (true) {
        descriptor_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (descriptor_ < 0) return;
        if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) holder_ = readName(descriptor_);
            ::close(std::exchange(descriptor_, -1));
            return;
        }
        if (hasName(descriptor_, path_)) break;
        ::close(std::exchange(descriptor_, -1));
    }
    const std::string name = ownName();
    const bool isWritten =
        ftruncate(descriptor_, 0) == 0 &&
        pwrite(descriptor_, name.data(), name.size(), 0) == static_cast<ssize_t>(name.size());
    static_cast<void>(isWritten);  // without a name the lock holds all the same
}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    if (this == &other) return *this;
    release();
    path_ = std::move(other.path_);
    descriptor_ = std::exchange(other.descriptor_, -1);
    holder_ = std::exchange(other.holder_, {});
    return *this;
}

void FileLock::release() {
    holder_.clear();
    if (descriptor_ < 0) return;
    ::unlink(path_.c_str());
    ::close(std::exchange(descriptor_, -1));
}

}  // namespace sg

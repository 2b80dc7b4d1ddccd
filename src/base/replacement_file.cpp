#include "base/replacement_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "base/encoding.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

// Short, so that it fits wherever the target's own name does.
std::string unfinishedNameBeside(const std::string& target) {
    static std::atomic<unsigned> counter = 0;
    const size_t slash = target.rfind('/');
    return target.substr(0, slash == std::string::npos ? 0 : slash + 1) + ".swiftgate-" +
           std::to_string(::getpid()) + '-' + std::to_string(counter++);
}

// The new name is on the disk too.
void syncFolderOf(const std::string& file) {
    const size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}  // namespace

ReplacementFile::ReplacementFile(std::wstring_view target) : target_(toUtf8(target)) {
    std::error_code error;
    const fs::path followed = fs::canonical(target_, error);
    if (!error) target_ = followed.native();
    struct stat info;
    if (target_.empty()) {
        fail(ENOENT);
    } else if (::stat(target_.c_str(), &info) != 0) {
        create(0666);
    } else if (!S_ISREG(info.st_mode)) {
        fail(S_ISDIR(info.st_mode) ? EISDIR : EINVAL);
    } else if (::access(target_.c_str(), W_OK) != 0) {
        fail(errno);
    } else {
        create(info.st_mode & 0777);
        if (isOpen() && ::fchmod(descriptor_, info.st_mode & 0777) != 0) fail(errno);
    }
}

ReplacementFile::~ReplacementFile() {
    if (isOpen()) fail(ECANCELED);
}

void ReplacementFile::create(unsigned mode) {
    do {
        unfinished_ = unfinishedNameBeside(target_);
        descriptor_ = ::open(unfinished_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    } while (descriptor_ < 0 && errno == EEXIST);
    if (descriptor_ < 0) fail(errno);
}

bool ReplacementFile::fail(int code) {
    if (error_ == 0) error_ = code;
    if (isOpen()) {
        ::close(std::exchange(descriptor_, -1));
        ::unlink(unfinished_.c_str());
    }
    return false;
}

bool ReplacementFile::write(std::string_view bytes) {
    if (!isOpen()) return false;
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return fail(errno);
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// A second name for the file, or where the file system has no such thing a copy of it.
bool ReplacementFile::keep(const std::string& backup) {
    std::error_code error;
    if (!fs::exists(target_, error)) return true;
    const std::string unfinished = unfinishedNameBeside(target_);
    fs::create_hard_link(target_, unfinished, error);
    if (error) fs::copy_file(target_, unfinished, error);
    if (!error) fs::rename(unfinished, backup, error);
    if (!error) return true;
    ::unlink(unfinished.c_str());
    return fail(error.value());
}

bool ReplacementFile::commitKeeping(std::wstring_view ending) {
    if (!isOpen()) return false;
    if (::fsync(descriptor_) != 0) return fail(errno);
    const fs::path backup = fs::path(target_).replace_extension(toUtf8(ending));
    return keep(backup.native()) && commit();
}

bool ReplacementFile::commit() {
    if (!isOpen()) return false;
    if (::fsync(descriptor_) != 0) return fail(errno);
    if (::rename(unfinished_.c_str(), target_.c_str()) != 0) return fail(errno);
    ::close(std::exchange(descriptor_, -1));  // everything is on the disk, so nothing is lost here
    syncFolderOf(target_);
    return true;
}

}  // namespace sg

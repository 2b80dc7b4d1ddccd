#include "host/jet/storage/file_layer.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "base/encoding.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

[[noreturn]] void throwSystem(int error, const std::wstring& path, const wchar_t* what) {
    const bool full = error == ENOSPC || error == EDQUOT || error == EFBIG;
    throw Error(
        full ? DiskFull : DiskOrNetwork, {},
        {.file = path, .detail = std::wstring(what) + L": " + fromUtf8(std::strerror(error))});
}

std::wstring folderOf(const std::wstring& path) {
    const size_t slash = path.rfind(L'/');
    if (slash == std::wstring::npos) return L".";
    return slash == 0 ? L"/" : path.substr(0, slash);
}

[[noreturn]] void throwOpening(int error, const std::wstring& path) {
    const ErrorPlace place{.file = path, .detail = fromUtf8(std::strerror(error))};
    switch (error) {
        case ENOENT: {
            struct stat status {};
            const bool hasFolder = ::stat(toUtf8(folderOf(path)).c_str(), &status) == 0;
            throw Error(hasFolder ? FileNotFound : InvalidPath, {path}, place);
        }
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
            throw Error(InvalidPath, {path}, place);
        case EEXIST:
            throw Error(DatabaseExists, {}, place);
        case ENOSPC:
        case EDQUOT:
            throw Error(DiskFull, {}, place);
        case EIO:
            throw Error(DiskOrNetwork, {}, place);
        default:
            throw Error(CannotOpenFile, {path}, place);
    }
}

struct flock lockOf(short type, uint64_t offset, uint64_t size) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(offset);
    lock.l_len = static_cast<off_t>(size);
    return lock;
}

short lockType(LockKind kind) {
    return kind == LockKind::Shared ? F_RDLCK : F_WRLCK;
}

class PosixFile final : public File {
  public:
    PosixFile(int file, std::wstring path) : file_(file), path_(std::move(path)) {}
    ~PosixFile() override {
        for (const std::span<uint8_t> mapping : mappings_) {
            ::munmap(mapping.data(), mapping.size());
        }
        ::close(file_);
    }

    size_t read(uint64_t offset, std::span<uint8_t> into) const override {
        if (offset > static_cast<uint64_t>(std::numeric_limits<off_t>::max()) - into.size()) {
            return 0;
        }
        size_t done = 0;
        while (done < into.size()) {
            const ssize_t got = ::pread(file_, into.data() + done, into.size() - done,
                                        static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) throwSystem(errno, path_, L"reading");
            if (got == 0) break;
            done += static_cast<size_t>(got);
        }
        return done;
    }

    void write(uint64_t offset, std::span<const uint8_t> bytes) override {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t put = ::pwrite(file_, bytes.data() + done, bytes.size() - done,
                                         static_cast<off_t>(offset + done));
            if (put < 0 && errno == EINTR) continue;
            if (put < 0) throwSystem(errno, path_, L"writing");
            done += static_cast<size_t>(put);
        }
    }

    void truncate(uint64_t size) override {
        while (::ftruncate(file_, static_cast<off_t>(size)) != 0) {
            if (errno != EINTR) throwSystem(errno, path_, L"changing the size");
        }
    }

    void sync() override {
        while (::fdatasync(file_) != 0) {
            if (errno != EINTR) throwSystem(errno, path_, L"syncing");
        }
    }

    uint64_t size() const override { return static_cast<uint64_t>(status().st_size); }
    FileIdentity identity() const override {
        const struct stat found = status();
        return {found.st_dev, found.st_ino};
    }

    bool tryLock(LockKind kind, uint64_t offset, uint64_t size) override {
        struct flock lock = lockOf(lockType(kind), offset, size);
        while (::fcntl(file_, F_OFD_SETLK, &lock) != 0) {
            if (errno == EAGAIN || errno == EACCES) return false;
            if (errno != EINTR) throwSystem(errno, path_, L"locking");
        }
        return true;
    }

    void unlock(uint64_t offset, uint64_t size) override {
        struct flock lock = lockOf(F_UNLCK, offset, size);
        while (::fcntl(file_, F_OFD_SETLK, &lock) != 0) {
            if (errno != EINTR) throwSystem(errno, path_, L"unlocking");
        }
    }

    bool isLockedByOther(LockKind kind, uint64_t offset, uint64_t size) const override {
        struct flock lock = lockOf(lockType(kind), offset, size);
        while (::fcntl(file_, F_OFD_GETLK, &lock) != 0) {
            if (errno != EINTR) throwSystem(errno, path_, L"testing a lock");
        }
        return lock.l_type != F_UNLCK;
    }

    std::span<uint8_t> map(size_t size) override {
        void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
        if (memory == MAP_FAILED) throwSystem(errno, path_, L"mapping");
        return mappings_.emplace_back(static_cast<uint8_t*>(memory), size);
    }

  private:
    struct stat status() const {
        struct stat found {};
        if (::fstat(file_, &found) != 0) throwSystem(errno, path_, L"asking for the size");
        return found;
    }

    int file_;
    std::wstring path_;
    std::vector<std::span<uint8_t>> mappings_;
};

class PosixFiles final : public FileLayer {
  public:
    std::unique_ptr<File> open(const std::wstring& path, FileAccess access) override {
        int file = -1;
        do {
            file = ::open(toUtf8(path).c_str(), flagsOf(access) | O_CLOEXEC | O_NONBLOCK, 0666);
        } while (file < 0 && errno == EINTR);
        if (file < 0) throwOpening(errno, path);
        // Constructed first, so that it closes what turns out to be no file.
        auto opened = std::make_unique<PosixFile>(file, path);
        struct stat status {};
        if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
            throw Error(CannotOpenFile, {path}, {.file = path, .detail = L"it is not a file"});
        }
        return opened;
    }

    FileIdentity identityOf(const std::wstring& path) override {
        struct stat status {};
        if (::stat(toUtf8(path).c_str(), &status) != 0) return {};
        return {status.st_dev, status.st_ino};
    }

    void rename(const std::wstring& from, const std::wstring& to) override {
        if (::rename(toUtf8(from).c_str(), toUtf8(to).c_str()) != 0) {
            throwSystem(errno, from, L"renaming");
        }
    }

    bool addName(const std::wstring& file, const std::wstring& name) override {
        if (::link(toUtf8(file).c_str(), toUtf8(name).c_str()) == 0) return true;
        const int error = errno;
        if (error == EXDEV || error == EPERM || error == EOPNOTSUPP || error == EMLINK)
            return false;
        if (error == EEXIST || error == ENOENT) throwOpening(error, name);
        throwSystem(error, name, L"adding a name");
    }

    std::wstring followLinks(const std::wstring& path) override {
        struct stat status {};
        if (::lstat(toUtf8(path).c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
        const std::unique_ptr<char, decltype(&std::free)> target(
            ::realpath(toUtf8(path).c_str(), nullptr), &std::free);
        if (target == nullptr) throwOpening(errno, path);
        return fromUtf8(target.get());
    }

    void copyPermissions(const std::wstring& from, const std::wstring& to) override {
        struct stat status {};
        const std::string target = toUtf8(to);
        if (::stat(toUtf8(from).c_str(), &status) != 0) {
            throwSystem(errno, from, L"asking for the permissions");
        }
        // Only a privileged user gives files away; the mode comes behind, since that takes bits of
        // it away.
        const bool isOwned = ::chown(target.c_str(), status.st_uid, status.st_gid) == 0 ||
                             ::chown(target.c_str(), static_cast<uid_t>(-1), status.st_gid) == 0;
        constexpr mode_t groupBits = S_IRWXG;
        const mode_t mode = status.st_mode & 07777;
        if (::chmod(target.c_str(), isOwned ? mode : mode & ~groupBits) != 0) {
            throwSystem(errno, to, L"setting the permissions");
        }
    }

    void remove(const std::wstring& path) override {
        if (::unlink(toUtf8(path).c_str()) != 0 && errno != ENOENT) {
            throwSystem(errno, path, L"removing");
        }
    }

    void syncFolder(const std::wstring& path) override {
        const std::wstring folder = folderOf(path);
        const int file = ::open(toUtf8(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (file < 0) throwSystem(errno, folder, L"opening the folder");
        const int result = ::fsync(file);
        const int error = errno;
        ::close(file);
        // Some file systems offer no sync of folders; they say so with EINVAL.
        if (result != 0 && error != EINVAL) throwSystem(error, folder, L"syncing the folder");
    }

  private:
    static int flagsOf(FileAccess access) {
        switch (access) {
            case FileAccess::Read:
                return O_RDONLY;
            case FileAccess::ReadWrite:
                return O_RDWR;
            case FileAccess::ReadWriteOrCreate:
                return O_RDWR | O_CREAT;
            case FileAccess::CreateNew:
                break;
        }
        return O_RDWR | O_CREAT | O_EXCL;
    }
};

}  // namespace

FileLayer& posixFiles() {
    // It has no state: one object serves all.
    static PosixFiles files;
    return files;
}

std::wstring currentUserName() {
    std::vector<char> buffer(16384);
    struct passwd entry {};
    struct passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
        found != nullptr) {
        return fromUtf8(found->pw_name);
    }
    return std::to_wstring(::geteuid());
}

std::wstring currentMachineName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0) return {};
    return fromUtf8(name);
}

}  // namespace sg::jet

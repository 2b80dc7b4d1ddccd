#include "host/system/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "base/encoding.h"
#include "base/replacement_file.h"
#include "host/system/database_files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

std::wstring systemError(int code) {
    return fromUtf8(std::strerror(code));
}

FileResult failure(const wchar_t* doing, const std::wstring& path, const std::wstring& why) {
    return {false, std::wstring(L"cannot ") + doing + L" \"" + path + L"\": " + why};
}

FileResult failure(const wchar_t* doing, const std::wstring& path, int code = errno) {
    return failure(doing, path, systemError(code));
}

// A file descriptor that closes itself.
class Descriptor {
  public:
    Descriptor(const std::wstring& path, int flags, mode_t mode = 0)
        : value_(::open(toUtf8(path).c_str(), flags | O_CLOEXEC, mode)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return value_; }
    bool isOpen() const { return value_ >= 0; }
    bool close() {
        const int value = std::exchange(value_, -1);
        return value < 0 || ::close(value) == 0;
    }

  private:
    int value_;
};

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

ssize_t readSome(int descriptor, char* buffer, size_t size) {
    ssize_t got = 0;
    do {
        got = ::read(descriptor, buffer, size);
    } while (got < 0 && errno == EINTR);
    return got;
}

bool status(std::wstring_view path, struct stat& info) {
    return ::stat(toUtf8(resolvePath(path).path).c_str(), &info) == 0;
}

// Gives all bytes of a file to `write`, which answers false when it could not take them.
template <class Write>
CopyResult copyContent(const Descriptor& from, const std::wstring& source,
                       const std::wstring& target, const Write& write) {
    CopyResult result;
    std::string buffer(1 << 16, '\0');
    for (;;) {
        const ssize_t got = readSome(from.get(), buffer.data(), buffer.size());
        if (got < 0) {
            static_cast<FileResult&>(result) = failure(L"read", source);
            return result;
        }
        if (got == 0) break;
        if (!write(std::string_view(buffer.data(), static_cast<size_t>(got)))) {
            static_cast<FileResult&>(result) = failure(L"write", target);
            return result;
        }
        result.bytes += got;
    }
    result.ok = true;
    return result;
}

// For a file that is about to leave its name: a log beside it would be taken for the next one's.
void leaveNoLog(const std::wstring& path) {
    const WholeDatabaseFile whole(path);
}

// A file that is about to be copied. When it can't be, or is `target` itself, `refusal` tells why.
class CopySource {
  public:
    // Opening a pipe does not wait for a writer.
    CopySource(const std::wstring& path, const std::wstring& target)
        : whole_(path), file(path, O_RDONLY | O_NONBLOCK) {
        struct stat other;
        if (!file.isOpen() || ::fstat(file.get(), &info) != 0) {
            refusal = failure(L"read", path);
        } else if (S_ISDIR(info.st_mode)) {
            refusal = failure(L"copy", path, L"it is a folder");
        } else if (!S_ISREG(info.st_mode)) {
            refusal = failure(L"copy", path, L"it is a device or a pipe");
        } else if (::stat(toUtf8(target).c_str(), &other) == 0) {
            targetExists = true;
            if (info.st_dev == other.st_dev && info.st_ino == other.st_ino) {
                refusal = failure(L"copy", path, L"source and target are the same file");
            }
        }
        if (refusal && !whole_.isWhole()) refusal = failure(L"copy", path, L"it is in use");
    }

  private:
    const WholeDatabaseFile whole_;

  public:
    const Descriptor file;
    struct stat info {};
    bool targetExists = false;
    FileResult refusal{true, {}};
};

}  // namespace

CopyResult copyFile(std::wstring_view from, std::wstring_view to, bool append) {
    const std::wstring source = resolvePath(from).path;
    const std::wstring target = resolvePath(to).path;
    const CopySource in(source, target);
    if (!in.refusal) return {in.refusal};

    Descriptor out(target, O_WRONLY | O_CREAT | (append ? O_APPEND : O_EXCL),
                   in.info.st_mode & 0777);
    if (!out.isOpen()) return {failure(L"write", target)};
    CopyResult result = copyContent(in.file, source, target, [&](std::string_view bytes) {
        return writeAll(out.get(), bytes);
    });
    if (result.ok && !out.close()) static_cast<FileResult&>(result) = failure(L"write", target);
    if (!result.ok && !in.targetExists) ::unlink(toUtf8(target).c_str());
    return result;
}

CopyResult copyOverFile(std::wstring_view from, std::wstring_view to) {
    const std::wstring source = resolvePath(from).path;
    const std::wstring target = resolvePath(to).path;
    const CopySource in(source, target);
    if (!in.refusal) return {in.refusal};
    if (isReadOnly(target)) return {failure(L"write", target, EACCES)};
    leaveNoLog(target);
    if (isDatabaseInUse(target)) return {failure(L"write", target, L"the database is in use")};

    ReplacementFile out(target);
    if (!out.isOpen()) return {failure(L"write", target, out.error())};
    CopyResult result = copyContent(in.file, source, target,
                                    [&](std::string_view bytes) { return out.write(bytes); });
    if (!result.ok) return result;
    const std::timespec times[] = {in.info.st_atim, in.info.st_mtim};
    ::fchmod(out.descriptor(), in.info.st_mode & 0777);
    ::futimens(out.descriptor(), times);
    if (!out.commit()) static_cast<FileResult&>(result) = failure(L"write", target, out.error());
    return result;
}

FileResult renameFile(std::wstring_view from, std::wstring_view to) {
    const std::wstring source = resolvePath(from).path;
    const ResolvedPath target = resolvePath(to);
    // A change of case alone finds the file itself, which may be renamed.
    std::error_code ignored;
    const bool same = target.exists && fs::equivalent(toUtf8(source), toUtf8(target.path), ignored);
    if (target.exists && !same) return failure(L"rename to", target.path, EEXIST);
    const std::wstring place = same ? withSlashes(to) : target.path;
    leaveNoLog(source);
    if (::rename(toUtf8(source).c_str(), toUtf8(place).c_str()) == 0) return {true, {}};
    if (errno != EXDEV) return failure(L"rename", source);
    CopyResult copied = copyFile(source, place, false);
    if (!copied) return copied;
    return deleteFile(source);
}

FileResult deleteFile(std::wstring_view path) {
    const std::wstring file = resolvePath(path).path;
    leaveNoLog(file);
    if (::unlink(toUtf8(file).c_str()) == 0) return {true, {}};
    return failure(L"delete", file);
}

FileResult makeFolder(std::wstring_view path) {
    const ResolvedPath folder = resolvePath(path);
    if (folder.exists) return failure(L"make folder", folder.path, EEXIST);
    if (::mkdir(toUtf8(folder.path).c_str(), 0777) == 0) return {true, {}};
    return failure(L"make folder", folder.path);
}

FileResult removeFolder(std::wstring_view path) {
    const std::wstring folder = resolvePath(path).path;
    if (::rmdir(toUtf8(folder).c_str()) == 0) return {true, {}};
    return failure(L"remove folder", folder);
}

bool isFile(std::wstring_view path) {
    struct stat info;
    return status(path, info) && !S_ISDIR(info.st_mode);
}

bool isFolder(std::wstring_view path) {
    struct stat info;
    return status(path, info) && S_ISDIR(info.st_mode);
}

bool isRegularFile(std::wstring_view path) {
    struct stat info;
    return status(path, info) && S_ISREG(info.st_mode);
}

bool isReadOnly(std::wstring_view path) {
    struct stat info;
    if (!status(path, info)) return false;
    const bool nobodyMayWrite = (info.st_mode & 0222) == 0;
    return nobodyMayWrite || ::access(toUtf8(resolvePath(path).path).c_str(), W_OK) != 0;
}

std::optional<int64_t> fileSize(std::wstring_view path) {
    struct stat info;
    if (!status(path, info)) return std::nullopt;
    return S_ISDIR(info.st_mode) ? 0 : static_cast<int64_t>(info.st_size);
}

std::optional<std::timespec> fileTime(std::wstring_view path) {
    struct stat info;
    if (!status(path, info)) return std::nullopt;
    return info.st_mtim;
}

std::optional<std::string> readFile(std::wstring_view path) {
    const Descriptor file(resolvePath(path).path, O_RDONLY);
    struct stat info;
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0) return std::nullopt;
    // The size is where to begin: a file may grow, and some that are no files on a disk have none.
    std::string content(static_cast<size_t>(info.st_size > 0 ? info.st_size : 0) + 1, '\0');
    for (size_t length = 0;;) {
        if (length == content.size()) content.resize(2 * length);
        const ssize_t got = readSome(file.get(), content.data() + length, content.size() - length);
        if (got < 0) return std::nullopt;
        length += static_cast<size_t>(got);
        if (got > 0) continue;
        content.resize(length);
        return content;
    }
}

std::optional<std::string> readFileStart(std::wstring_view path, size_t count) {
    const Descriptor file(resolvePath(path).path, O_RDONLY);
    if (!file.isOpen()) return std::nullopt;
    std::string start(count, '\0');
    size_t length = 0;
    while (length < count) {
        const ssize_t got = readSome(file.get(), start.data() + length, count - length);
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        length += static_cast<size_t>(got);
    }
    start.resize(length);
    return start;
}

FileResult writeFileAtomically(std::wstring_view path, std::string_view content) {
    const std::wstring target = resolvePath(path).path;
    ReplacementFile file(target);
    if (file.write(content) && file.commit()) return {true, {}};
    return failure(L"write", target, file.error());
}

TemporaryFiles::~TemporaryFiles() {
    for (const std::wstring& name : names_)
        ::unlink(toUtf8(name).c_str());
}

std::wstring TemporaryFiles::next(std::wstring_view pattern, std::wstring_view folder,
                                  std::optional<std::wstring_view> extension) {
    if (pattern.empty()) pattern = L"$VL~~";
    std::wstring_view name = lastComponent(pattern);
    std::wstring place(folder.empty() ? parentFolder(pattern) : folder);
    if (place.empty()) place = knownFolder(KnownFolder::temporary);

    const size_t dot = name.rfind(L'.');
    std::wstring ending(dot == std::wstring_view::npos ? L"" : name.substr(dot));
    name = name.substr(0, dot);
    if (extension) ending = *extension;
    if (!ending.empty() && ending[0] != L'.') ending.insert(0, 1, L'.');

    for (;;) {
        wchar_t digits[16];
        std::swprintf(digits, 16, L"%03x", ++counter_);
        const ResolvedPath path =
            resolvePath(joinPath(place, std::wstring(name) + digits + ending));
        if (path.exists) continue;
        names_.push_back(absolutePath(path.path));
        return names_.back();
    }
}

}  // namespace sg

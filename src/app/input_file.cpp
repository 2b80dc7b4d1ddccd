#include "app/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "base/encoding.h"
#include "host/seam/file_error.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr size_t kPiece = 256 * 1024;

// With the system's reason.
[[noreturn]] void fail(const std::wstring& what) {
    const int error = errno;
    throw FileError(what + L": " + fromUtf8(std::strerror(error)));
}

void writeAll(int file, const char* from, size_t size) {
    while (size > 0) {
        const ssize_t count = ::write(file, from, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(L"cannot write a temporary file");
        from += count;
        size -= static_cast<size_t>(count);
    }
}

// An open file without a name, which is gone when it is closed.
int openTemporary() {
    std::FILE* const file = std::tmpfile();
    if (file == nullptr) fail(L"cannot make a temporary file");
    const int descriptor = fcntl(fileno(file), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) fail(L"cannot make a temporary file");
    std::fclose(file);
    return descriptor;
}

}  // namespace

InputFile::InputFile(const std::wstring& path) : name_(path), descriptor_(STDIN_FILENO) {
    if (path == L"-") {
        name_ = L"standard input";
    } else {
        name_ = resolvePath(path).path;
        descriptor_ = ::open(toUtf8(name_).c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0) fail(L"cannot read " + name_);
        isOwned_ = true;
    }
    measure();
}

InputFile::~InputFile() {
    if (isOwned_) ::close(descriptor_);
}

void InputFile::measure() {
    struct stat status;
    if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return;
    begin_ = lseek(descriptor_, 0, SEEK_CUR);
    if (begin_ >= 0 && begin_ <= status.st_size) {
        size_ = static_cast<uint64_t>(status.st_size - begin_);
    }
}

void InputFile::keepAll() {
    if (begin_ >= 0) return;
    const int copy = openTemporary();
    std::vector<char> piece(kPiece);
    try {
        for (;;) {
            const ssize_t count = ::read(descriptor_, piece.data(), piece.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) fail(L"cannot read " + name_);
            if (count == 0) break;
            writeAll(copy, piece.data(), static_cast<size_t>(count));
        }
    } catch (...) {
        ::close(copy);
        throw;
    }
    if (isOwned_) ::close(descriptor_);
    descriptor_ = copy;
    isOwned_ = true;
    lseek(descriptor_, 0, SEEK_SET);
    measure();
}

void InputFile::rewind() {
    if (lseek(descriptor_, begin_, SEEK_SET) < 0) fail(L"cannot read " + name_);
}

}  // namespace sg::app

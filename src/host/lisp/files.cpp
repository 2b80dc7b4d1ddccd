#include "host/lisp/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/encoding.h"
#include "host/lisp/error.h"

namespace sg::lisp {
namespace {

constexpr size_t kBufferBytes = size_t{64} << 10;
// How much of a file is looked at to tell its encoding. A line further on that is not UTF-8 is
// taken as code page 1252 by itself, so that nothing of it is lost.
constexpr size_t kExaminedBytes = size_t{4} << 20;

// `bytes` without a last character that may go on after their end.
std::string_view withoutLastCharacter(std::string_view bytes) {
    for (int i = 0; i < 3 && !bytes.empty() && (bytes.back() & 0xC0) == 0x80; ++i) {
        bytes.remove_suffix(1);
    }
    if (!bytes.empty() && (bytes.back() & 0x80) != 0) bytes.remove_suffix(1);
    return bytes;
}

}  // namespace

FileObject::FileObject(std::FILE* file, std::wstring path, Mode mode)
    : Object(ObjectKind::File), file_(file), path_(std::move(path)), mode_(mode) {}

FileObject::~FileObject() {
    close();
}

FileObject* FileObject::open(const std::wstring& path, Mode mode, Encoding encoding) {
    const std::string name = toUtf8(path);
    struct stat info {};
    const bool exists = ::stat(name.c_str(), &info) == 0;
    const bool ordinary = exists && S_ISREG(info.st_mode);
    if (mode == Mode::Read && !ordinary) return nullptr;
    const bool isNew = mode == Mode::Write || !exists || info.st_size == 0;

    Text goesOn = Text::Utf8;
    if (mode == Mode::Append && ordinary && !isNew && encoding == Encoding::Automatic) {
        std::FILE* before = std::fopen(name.c_str(), "rbe");
        if (before != nullptr) {
            FileObject reader(before, path, Mode::Read);
            reader.examine();
            goesOn = reader.text_ == Text::Utf8OrCp1252 ? Text::Utf8 : reader.text_;
        }
    }
    const char* how = mode == Mode::Read ? "rbe" : mode == Mode::Write ? "wbe" : "abe";
    std::FILE* file = std::fopen(name.c_str(), how);
    if (file == nullptr) return nullptr;
    auto* object = new FileObject(file, path, mode);
    object->text_ = goesOn;
    if (mode == Mode::Read) {
        object->examine();
        if (encoding != Encoding::Automatic) object->text_ = Text::Utf8;
    } else if (isNew && encoding == Encoding::Utf8Bom) {
        std::fputs("\xEF\xBB\xBF", file);
    }
    return object;
}

// Tells the encoding from the start of the file and steps over a byte order mark.
void FileObject::examine() {
    buffer_.resize(kBufferBytes);
    size_t size = std::fread(buffer_.data(), 1, buffer_.size(), file_);
    if (size == buffer_.size()) {
        buffer_.resize(kExaminedBytes);
        size += std::fread(buffer_.data() + size, 1, buffer_.size() - size, file_);
    }
    buffer_.resize(size);
    bufferAt_ = 0;
    const bool whole = size < kExaminedBytes;
    if (buffer_.starts_with("\xEF\xBB\xBF")) {
        text_ = Text::Utf8;
        bufferAt_ = 3;
    } else if (buffer_.starts_with("\xFF\xFE") || buffer_.starts_with("\xFE\xFF")) {
        text_ = buffer_[0] == '\xFF' ? Text::Utf16Little : Text::Utf16Big;
        bufferAt_ = 2;
    } else if (isUtf8(whole ? std::string_view(buffer_) : withoutLastCharacter(buffer_))) {
        text_ = Text::Utf8OrCp1252;
    } else {
        text_ = Text::Cp1252;
    }
}

int FileObject::close() {
    if (file_ == nullptr) return 0;
    const int error = std::fclose(file_) == 0 ? 0 : errno;
    file_ = nullptr;
    buffer_ = {};
    line_ = {};
    return failed_ || mode_ == Mode::Read ? 0 : error;
}

int FileObject::write(std::wstring_view text) {
    std::string bytes;
    if (text_ == Text::Cp1252) {
        bytes = toCp1252(text);
    } else if (text_ == Text::Utf16Little || text_ == Text::Utf16Big) {
        for (const char16_t unit : toUtf16(text)) {
            const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
            bytes += text_ == Text::Utf16Little ? low : high;
            bytes += text_ == Text::Utf16Little ? high : low;
        }
    } else {
        bytes = toUtf8(text);
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size()) return 0;
    failed_ = true;
    return errno;
}

// ---- Reading ------------------------------------------------------------------------------------

bool FileObject::fillBuffer() {
    buffer_.resize(kBufferBytes);
    bufferAt_ = 0;
    buffer_.resize(std::fread(buffer_.data(), 1, buffer_.size(), file_));
    if (std::ferror(file_)) {
        throw LispError{L"cannot read file: \"" + path_ + L"\": " + fromUtf8(std::strerror(errno))};
    }
    return !buffer_.empty();
}

int FileObject::nextByte() {
    if (bufferAt_ == buffer_.size() && !fillBuffer()) return -1;
    return static_cast<unsigned char>(buffer_[bufferAt_++]);
}

std::wstring FileObject::takeByteLine(size_t most) {
    std::string bytes;
    while (bufferAt_ < buffer_.size() || fillBuffer()) {
        const size_t end = buffer_.find('\n', bufferAt_);
        const size_t length =
            std::min(end == std::string::npos ? end : end + 1, buffer_.size()) - bufferAt_;
        if (length > most - bytes.size()) throw OutOfMemory{};
        bytes.append(buffer_, bufferAt_, length);
        bufferAt_ += length;
        if (end != std::string::npos) break;
    }
    const bool cp1252 = text_ == Text::Cp1252 || (text_ == Text::Utf8OrCp1252 && !isUtf8(bytes));
    return cp1252 ? fromCp1252(bytes) : fromUtf8(bytes);
}

std::wstring FileObject::takeUtf16Line(size_t most) {
    std::u16string units;
    for (;;) {
        const int first = nextByte();
        const int second = nextByte();
        if (second < 0) break;
        if (units.size() >= most / 2) throw OutOfMemory{};
        units += static_cast<char16_t>(text_ == Text::Utf16Big ? first << 8 | second
                                                               : second << 8 | first);
        if (units.back() == u'\n') break;
    }
    return fromUtf16(units);
}

// Reads a line when the one before is used up. False at the end of the file.
bool FileObject::nextLine(size_t most) {
    if (lineAt_ < line_.size()) return true;
    const bool utf16 = text_ == Text::Utf16Little || text_ == Text::Utf16Big;
    line_ = utf16 ? takeUtf16Line(most) : takeByteLine(most);
    lineAt_ = 0;
    if (line_.ends_with(L"\r\n")) line_.erase(line_.size() - 2, 1);
    return !line_.empty();
}

std::optional<std::wstring> FileObject::readLine(size_t most) {
    if (!nextLine(most)) return std::nullopt;
    std::wstring line = lineAt_ == 0 ? std::move(line_) : line_.substr(lineAt_);
    line_.clear();
    lineAt_ = 0;
    if (line.ends_with(L'\n')) line.pop_back();
    return line;
}

int32_t FileObject::readChar(size_t most) {
    return nextLine(most) ? static_cast<int32_t>(line_[lineAt_++]) : -1;
}

}  // namespace sg::lisp

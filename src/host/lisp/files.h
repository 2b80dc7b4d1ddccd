#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "host/lisp/objects.h"

namespace sg::lisp {

// A text file that a program opened. Lines end with a line feed, with or without a carriage return
// before it; what is written ends its lines with a line feed alone.
class FileObject final : public Object {
  public:
    enum class Mode { Read, Write, Append };
    enum class Encoding {
        // Reading: told by the content, as decodeTextFile() tells it. Appending: as the file is
        // encoded already. Writing: UTF-8.
        Automatic,
        Utf8,
        Utf8Bom,  // ... with a byte order mark at the start of a new file
    };

    // Null when the file cannot be opened. Only ordinary files can be read. `path` is also how the
    // object is named in messages.
    static FileObject* open(const std::wstring& path, Mode mode, Encoding encoding);
    ~FileObject() override;

    const std::wstring& path() const { return path_; }
    bool isOpen() const { return file_ != nullptr; }
    bool readable() const { return mode_ == Mode::Read; }

    // Writes what is buffered and closes. These two answer 0, or the system's error number: for
    // example when the disk is full. A failure is answered once.
    int close();
    int write(std::wstring_view text);

    // The next line without its end, or what is left of it; nullopt at the end of the file. Throws
    // OutOfMemory when a line has more than `most` bytes, and LispError when the file cannot be
    // read.
    std::optional<std::wstring> readLine(size_t most);
    // The next character; a line end is one line feed. -1 at the end of the file.
    int32_t readChar(size_t most);

  private:
    enum class Text { Utf8OrCp1252, Utf8, Cp1252, Utf16Little, Utf16Big };

    FileObject(std::FILE* file, std::wstring path, Mode mode);
    void examine();
    bool fillBuffer();
    int nextByte();
    bool nextLine(size_t most);
    std::wstring takeByteLine(size_t most);
    std::wstring takeUtf16Line(size_t most);

    std::FILE* file_;
    const std::wstring path_;
    const Mode mode_;
    Text text_ = Text::Utf8;
    bool failed_ = false;  // a failure to write has been answered
    std::string buffer_;   // of a file that is read
    size_t bufferAt_ = 0;
    std::wstring line_;  // the line being read, with a line feed at its end if it had one
    size_t lineAt_ = 0;
};

inline FileObject* asFile(Value v) {
    return as<FileObject>(v, ObjectKind::File);
}

}  // namespace sg::lisp

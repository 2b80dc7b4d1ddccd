#pragma once

#include <cstdint>
#include <string>

namespace sg::app {

// A file that is read from its begin to its end, or standard input.
class InputFile {
  public:
    // "-" is standard input. Throws FileError when the file cannot be opened.
    explicit InputFile(const std::wstring& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    int descriptor() const { return descriptor_; }
    // For messages.
    const std::wstring& name() const { return name_; }
    // In bytes; 0 when it is not known, as that of a pipe.
    uint64_t size() const { return size_; }

    // Makes sure that rewind() can go back to where the file stands. What comes out of a pipe is
    // read to its end for that, into a temporary file without a name. Throws FileError.
    void keepAll();
    // Goes back to the begin.
    void rewind();

  private:
    void measure();

    std::wstring name_;
    int descriptor_;
    bool isOwned_ = false;
    int64_t begin_ = -1;  // where it stood; -1 when it can't go back
    uint64_t size_ = 0;
};

}  // namespace sg::app

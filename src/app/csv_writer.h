#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace sg::app {

// Writes comma-separated values as RFC 4180 has them: UTF-8, lines that end with CR LF, quotes
// where a field needs them. A Null is an empty field, an empty text is "".
//
// What is written is gathered and goes to the file in large pieces. After a write has failed,
// nothing more is written.
class CsvWriter {
  public:
    // Writes to an open file, which must outlive the writer and is not closed by it.
    explicit CsvWriter(int file);
    CsvWriter(const CsvWriter&) = delete;
    CsvWriter& operator=(const CsvWriter&) = delete;

    // Each writes the next field of the row.
    void null() { separate(); }
    void text(std::string_view utf8);
    void text(std::wstring_view text);
    void number(int64_t number);
    // With the fewest digits that give the same number when they are read.
    void number(double number);
    void number(float number);
    // `number` / 10^`digits`, with all these digits behind the point.
    void scaled(int64_t number, int digits);
    // "2017-01-31 14:30:00".
    void date(int year, int month, int day, int hour, int minute, int second);
    void hexadecimal(std::span<const uint8_t> bytes);

    void endRow();

    // Writes what is still gathered. False when that, or any write before, failed.
    bool flush();
    bool failed() const { return error_ != 0; }
    // The system's number for what failed first; 0 for nothing.
    int error() const { return error_; }

  private:
    static constexpr size_t kCapacity = 64 * 1024;

    void separate();
    // Makes room for `size` bytes, far fewer than the capacity, and answers where they go.
    char* reserve(size_t size);
    void take(const char* end) { size_ = static_cast<size_t>(end - buffer_.get()); }
    void put(std::string_view bytes);
    template <class Number>
    void floating(Number number);

    const int file_;
    const std::unique_ptr<char[]> buffer_;
    size_t size_ = 0;
    bool inRow_ = false;  // the row has a field already
    int error_ = 0;
};

}  // namespace sg::app

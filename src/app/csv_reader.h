#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sg::app {

// What is wrong with the text of a file, and in which line, counted from 1.
struct CsvError {
    uint64_t line;
    std::wstring what;
};

// Reads comma-separated values as RFC 4180 has them, in UTF-8 with or without a byte order mark:
// fields in quotes may hold commas, line ends and, doubled, quotes. A line ends with CR LF, LF or
// CR; the last one may lack its end. Memory is bounded by the longest record.
class CsvReader {
  public:
    // Reads from where an open file stands; it must outlive the reader and is not closed by it.
    explicit CsvReader(int file);
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    // Goes to the next record; false behind the last one. An empty line is a record of one empty
    // field. Throws CsvError: quotes that are not closed, or stand inside of a field without being
    // doubled; text that is not UTF-8; a record that is too long; a file that cannot be read.
    bool next();

    // The fields of the record. A text stays until the next call of next().
    size_t size() const { return fields_.size(); }
    std::string_view text(size_t field) const {
        return {buffer_.data() + start_ + fields_[field].begin, fields_[field].length};
    }
    bool isQuoted(size_t field) const { return fields_[field].isQuoted; }
    // Without a value: empty, and not in quotes.
    bool isNull(size_t field) const {
        return fields_[field].length == 0 && !fields_[field].isQuoted;
    }
    bool isEmptyLine() const { return size() == 1 && isNull(0); }
    // The lines in which the record and a field of it begin.
    uint64_t line() const { return recordLine_; }
    uint64_t line(size_t field) const { return fields_[field].line; }

    // How much of the file has been taken, in bytes.
    uint64_t bytesRead() const { return read_ - (end_ - at_); }

  private:
    struct Field {
        uint64_t line = 0;
        uint32_t begin = 0;  // behind start_
        uint32_t length = 0;
        bool isQuoted = false;
    };

    void skipMark();
    bool has() { return at_ < end_ || fill(); }
    bool fill();
    size_t offset() const { return at_ - start_; }
    void readField();
    void readPlain();
    void readQuoted();
    bool endField();

    const int file_;
    std::vector<char> buffer_;
    size_t start_ = 0;  // of the record
    size_t at_ = 0;     // what is looked at next
    size_t end_ = 0;    // of what was read
    bool isAtEnd_ = false;
    uint64_t read_ = 0;
    uint64_t line_ = 1;  // that at_ is in
    uint64_t recordLine_ = 1;
    std::vector<Field> fields_;
};

}  // namespace sg::app

#include "app/csv_reader.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "base/encoding.h"

namespace sg::app {
namespace {

constexpr size_t kFirstCapacity = 256 * 1024;
constexpr size_t kLongestRecord = size_t(1) << 30;
// Far more than a table has columns. Without a limit a line of commas would cost many times its
// size.
constexpr size_t kMostFields = 4096;

constexpr auto isPlain = [] {
    std::array<bool, 256> plain{};
    plain.fill(true);
    for (const unsigned char c : {',', '"', '\r', '\n'})
        plain[c] = false;
    return plain;
}();

bool isAscii(std::string_view text) {
    size_t i = 0;
    for (uint64_t eight; i + sizeof eight <= text.size(); i += sizeof eight) {
        std::memcpy(&eight, text.data() + i, sizeof eight);
        if ((eight & 0x8080808080808080) != 0) return false;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

CsvReader::CsvReader(int file) : file_(file), buffer_(kFirstCapacity) {}

// Reads more behind what is there, which moves to the front of the buffer; false at the end.
bool CsvReader::fill() {
    if (isAtEnd_) return false;
    std::memmove(buffer_.data(), buffer_.data() + start_, end_ - start_);
    at_ -= start_;
    end_ -= start_;
    start_ = 0;
    if (end_ == buffer_.size()) {
        if (end_ >= kLongestRecord) {
            throw CsvError{recordLine_, L"the record is longer than 1 GB; is a quote missing?"};
        }
        buffer_.resize(2 * end_);
    }
    ssize_t count;
    do {
        count = ::read(file_, buffer_.data() + end_, buffer_.size() - end_);
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw CsvError{line_, fromUtf8(std::strerror(errno))};
    isAtEnd_ = count == 0;
    end_ += static_cast<size_t>(count);
    read_ += static_cast<uint64_t>(count);
    return !isAtEnd_;
}

void CsvReader::skipMark() {
    static constexpr std::string_view mark = "\xEF\xBB\xBF";
    while (end_ < mark.size() && fill()) {
    }
    const std::string_view begin(buffer_.data(), end_);
    if (begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF")) {
        throw CsvError{1, L"the file is UTF-16; UTF-8 is expected"};
    }
    if (begin.starts_with(mark)) at_ = mark.size();
}

bool CsvReader::next() {
    if (read_ == 0) skipMark();
    fields_.clear();
    start_ = at_;
    recordLine_ = line_;
    if (!has()) return false;
    do {
        if (fields_.size() == kMostFields) {
            throw CsvError{recordLine_, L"the record has more than " +
                                            std::to_wstring(kMostFields) + L" fields"};
        }
        readField();
    } while (endField());
    return true;
}

void CsvReader::readField() {
    fields_.push_back({.line = line_, .begin = static_cast<uint32_t>(offset())});
    if (has() && buffer_[at_] == '"') {
        readQuoted();
    } else {
        readPlain();
    }
    const std::string_view read = text(fields_.size() - 1);
    if (!isAscii(read) && !isUtf8(read)) {
        throw CsvError{fields_.back().line, L"the text is not UTF-8"};
    }
}

void CsvReader::readPlain() {
    do {
        while (at_ < end_ && isPlain[static_cast<unsigned char>(buffer_[at_])])
            ++at_;
    } while (at_ == end_ && fill());
    fields_.back().length = static_cast<uint32_t>(offset() - fields_.back().begin);
}

// The text moves over the quotes that are taken away, as far as these are in its way.
void CsvReader::readQuoted() {
    Field& field = fields_.back();
    field.isQuoted = true;
    ++at_;
    size_t to = field.begin;  // behind start_, as at_ moves when more is read
    for (bool afterReturn = false;;) {
        if (!has()) throw CsvError{field.line, L"the quote at the field's end is missing"};
        const char c = buffer_[at_++];
        if (c == '"' && !(has() && buffer_[at_] == '"')) break;
        if (c == '"') ++at_;
        if (c == '\r' || (c == '\n' && !afterReturn)) ++line_;
        afterReturn = c == '\r';
        buffer_[start_ + to++] = c;
    }
    field.length = static_cast<uint32_t>(to - field.begin);
}

// Goes behind what stands behind a field; true when that is another one.
bool CsvReader::endField() {
    if (!has()) return false;
    switch (buffer_[at_]) {
        case ',':
            ++at_;
            return true;
        case '\r':
            ++at_;
            if (has() && buffer_[at_] == '\n') ++at_;
            ++line_;
            return false;
        case '\n':
            ++at_;
            ++line_;
            return false;
        default:
            throw CsvError{line_,
                           fields_.back().isQuoted
                               ? L"there is text behind a quote; quotes inside of a field "
                                 L"in quotes must be doubled"
                               : L"there is a quote inside of a field without quotes around "
                                 L"it; such a field must be in quotes, and the quote doubled"};
    }
}

}  // namespace sg::app

#include "app/csv_writer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

#include "base/encoding.h"

namespace sg::app {
namespace {

constexpr size_t kLongestNumber = 32;
constexpr size_t kPiece = 4096;  // of a text or of bytes, written at a time

// Between these, and at zero, a number is written without an exponent; every whole number below the
// upper one has a value of its own in a double.
constexpr double kSmallestPlain = 1e-5;
constexpr double kLargestPlain = 1e15;

bool needsQuotes(char c) {
    static constexpr auto needing = [] {
        std::array<bool, 256> table{};
        for (const unsigned char each : {',', '"', '\n', '\r'})
            table[each] = true;
        return table;
    }();
    return needing[static_cast<unsigned char>(c)];
}

// Copies what stands between quotes, each quote twice.
char* putWithin(char* to, std::string_view text) {
    for (const char c : text) {
        if (c == '"') *to++ = '"';
        *to++ = c;
    }
    return to;
}

char* putTwo(char* to, int number) {
    *to++ = static_cast<char>('0' + number / 10 % 10);
    *to++ = static_cast<char>('0' + number % 10);
    return to;
}

char* putHex(char* to, std::span<const uint8_t> bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    for (const uint8_t byte : bytes) {
        *to++ = digits[byte >> 4];
        *to++ = digits[byte & 15];
    }
    return to;
}

}  // namespace

CsvWriter::CsvWriter(int file)
    : file_(file), buffer_(std::make_unique_for_overwrite<char[]>(kCapacity)) {}

bool CsvWriter::flush() {
    const char* from = buffer_.get();
    while (size_ > 0 && !failed()) {
        const ssize_t written = ::write(file_, from, size_);
        if (written >= 0) {
            from += written;
            size_ -= static_cast<size_t>(written);
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
    size_ = 0;
    return !failed();
}

char* CsvWriter::reserve(size_t size) {
    if (size > kCapacity - size_) flush();
    return buffer_.get() + size_;
}

void CsvWriter::put(std::string_view bytes) {
    char* const to = reserve(bytes.size());
    std::memcpy(to, bytes.data(), bytes.size());
    size_ += bytes.size();
}

void CsvWriter::separate() {
    if (inRow_) put(",");
    inRow_ = true;
}

void CsvWriter::endRow() {
    put("\r\n");
    inRow_ = false;
}

void CsvWriter::text(std::string_view text) {
    separate();
    const bool quoted = text.empty() || std::any_of(text.begin(), text.end(), needsQuotes);
    if (quoted) put("\"");
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, kPiece);
        text.remove_prefix(piece.size());
        char* const to = reserve(2 * piece.size());
        take(quoted ? putWithin(to, piece) : std::copy(piece.begin(), piece.end(), to));
    }
    if (quoted) put("\"");
}

void CsvWriter::text(std::wstring_view text) {
    this->text(std::string_view(toUtf8(text)));
}

void CsvWriter::number(int64_t number) {
    separate();
    char* const to = reserve(kLongestNumber);
    take(std::to_chars(to, to + kLongestNumber, number).ptr);
}

template <class Number>
void CsvWriter::floating(Number number) {
    separate();
    const Number size = std::abs(number);
    const bool plain =
        size == 0 || (size >= Number(kSmallestPlain) && size < Number(kLargestPlain));
    char* const to = reserve(kLongestNumber);
    char* const end = to + kLongestNumber;
    take(plain ? std::to_chars(to, end, number, std::chars_format::fixed).ptr
               : std::to_chars(to, end, number).ptr);
}

void CsvWriter::number(double number) {
    floating(number);
}

void CsvWriter::number(float number) {
    floating(number);
}

void CsvWriter::scaled(int64_t number, int digits) {
    separate();
    char* to = reserve(2 * kLongestNumber);
    if (number < 0) *to++ = '-';
    // Negated as unsigned: the smallest number has no positive counterpart.
    const auto bits = static_cast<uint64_t>(number);
    char text[kLongestNumber];
    const char* const end =
        std::to_chars(text, text + kLongestNumber, number < 0 ? 0 - bits : bits).ptr;
    const auto whole = (end - text) - digits;  // digits before the point; may be less than one
    if (whole <= 0) *to++ = '0';
    to = std::copy(text, text + std::max<std::ptrdiff_t>(whole, 0), to);
    *to++ = '.';
    for (std::ptrdiff_t i = whole; i < 0; ++i)
        *to++ = '0';
    take(std::copy(text + std::max<std::ptrdiff_t>(whole, 0), const_cast<char*>(end), to));
}

void CsvWriter::date(int year, int month, int day, int hour, int minute, int second) {
    separate();
    char* to = reserve(kLongestNumber);
    to = putTwo(to, year / 100);
    to = putTwo(to, year);
    *to++ = '-';
    to = putTwo(to, month);
    *to++ = '-';
    to = putTwo(to, day);
    *to++ = ' ';
    to = putTwo(to, hour);
    *to++ = ':';
    to = putTwo(to, minute);
    *to++ = ':';
    take(putTwo(to, second));
}

void CsvWriter::hexadecimal(std::span<const uint8_t> bytes) {
    separate();
    if (bytes.empty()) put("\"\"");
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(bytes.size(), kPiece));
        bytes = bytes.subspan(piece.size());
        take(putHex(reserve(2 * piece.size()), piece));
    }
}

}  // namespace sg::app

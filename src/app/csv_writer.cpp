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
constexpr size_t kPiece = 4096;  // of a text or of bytes, encoded at a time

// Between these, and at zero, a number is written without an exponent; every whole number below the
// upper one has a value of its own in a double.
constexpr double kSmallestPlain = 1e-5;
constexpr double kLargestPlain = 1e15;

constexpr bool needsQuotes(wchar_t c) {
    return c == L',' || c == L'"' || c == L'\n' || c == L'\r';
}

// Copies characters up to the first that needs quotes or more than a byte; answers how many.
size_t copyPlain(std::wstring_view text, char* to) {
    static constexpr auto isPlain = [] {
        std::array<bool, 128> plain{};
        for (size_t c = 0; c < plain.size(); ++c)
            plain[c] = !needsQuotes(static_cast<wchar_t>(c));
        return plain;
    }();
    size_t count = 0;
    for (const wchar_t c : text) {
        const auto code = static_cast<uint32_t>(c);
        if (code >= isPlain.size() || !isPlain[code]) break;
        to[count++] = static_cast<char>(c);
    }
    return count;
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

void CsvWriter::text(std::wstring_view text) {
    separate();
    // Most texts are short and plain. What was copied of others is written over.
    const std::wstring_view start = text.substr(0, kPiece);
    char* const first = reserve(kPiece);
    if (copyPlain(start, first) == text.size() && !text.empty()) {
        take(first + text.size());
        return;
    }
    const bool quoted = text.empty() || std::any_of(text.begin(), text.end(), needsQuotes);
    if (quoted) put("\"");
    while (!text.empty()) {
        const std::wstring_view piece = text.substr(0, kPiece);
        text.remove_prefix(piece.size());
        char* to = reserve(4 * piece.size());
        for (const wchar_t c : piece) {
            if (c < 0x80) {
                if (c == L'"') *to++ = '"';
                *to++ = static_cast<char>(c);
            } else {
                // One character's bytes fit into the string object itself.
                const std::string bytes = toUtf8({&c, 1});
                to = std::copy(bytes.begin(), bytes.end(), to);
            }
        }
        take(to);
    }
    if (quoted) put("\"");
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

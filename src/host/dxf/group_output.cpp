#include "host/dxf/group_output.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/encoding.h"
#include "host/dxf/handles.h"

namespace sg::dxf {
namespace {

constexpr std::string_view kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);
constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kChunk = 255;  // bytes of binary data in one group

// As other programs align them; readers skip the blanks.
size_t widthOf(ValueKind kind) {
    switch (kind) {
        case ValueKind::whole32:
            return 9;
        case ValueKind::whole64:
            return 18;
        default:
            return 6;
    }
}

void putAligned(std::string& buffer, int64_t value, size_t width) {
    char digits[24];
    const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), value);
    const auto length = static_cast<size_t>(end - digits);
    if (length < width) buffer.append(width - length, ' ');
    buffer.append(digits, length);
}

}  // namespace

GroupOutput::GroupOutput(Write write, bool isBinary, const TextCodec& codec)
    : write_(std::move(write)), isBinary_(isBinary), codec_(codec) {
    buffer_.reserve(kPiece + 4096);
    if (isBinary_) buffer_ += kSentinel;
}

void GroupOutput::flush() {
    if (isWritten_) isWritten_ = write_(buffer_);
    buffer_.clear();
}

bool GroupOutput::finish() {
    flush();
    return isWritten_;
}

void GroupOutput::putCode(int code) {
    if (isBinary_) {
        putBytes(static_cast<int16_t>(code));
        return;
    }
    putAligned(buffer_, code, 3);
    putLineEnd();
}

void GroupOutput::putLineEnd() {
    buffer_ += kLineEnd;
}

// A line end or a zero in a text would end its group.
void GroupOutput::putString(std::string_view bytes) {
    for (const char c : bytes) {
        if (c != '\n' && c != '\r' && c != '\0') buffer_ += c;
    }
    if (isBinary_) {
        buffer_ += '\0';
    } else {
        putLineEnd();
    }
    endValue();
}

void GroupOutput::text(int code, std::wstring_view text) {
    putCode(code);
    const bool isPlain = std::all_of(text.begin(), text.end(),
                                     [](wchar_t c) { return c >= 0x20 && c < 0x80 && c != L'^'; });
    if (!isPlain) {
        std::string bytes;
        codec_.encode(text, bytes);
        putString(bytes);
        return;
    }
    for (const wchar_t c : text)
        buffer_ += static_cast<char>(c);
    if (isBinary_) {
        buffer_ += '\0';
    } else {
        putLineEnd();
    }
    endValue();
}

void GroupOutput::name(int code, std::string_view ascii) {
    putCode(code);
    putString(ascii);
}

void GroupOutput::real(int code, double value) {
    putCode(code);
    if (!std::isfinite(value)) value = 0;
    if (isBinary_) {
        putBytes(value);
        return endValue();
    }
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), value);
    const std::string_view number(digits, static_cast<size_t>(end - digits));
    buffer_ += number;
    if (number.find_first_of(".e") == number.npos) buffer_ += ".0";
    putLineEnd();
    endValue();
}

void GroupOutput::whole(int code, int64_t value) {
    const ValueKind kind = kindOf(code);
    if (kind == ValueKind::real) return real(code, static_cast<double>(value));
    putCode(code);
    if (!isBinary_) {
        putAligned(buffer_, value, widthOf(kind));
        putLineEnd();
        return endValue();
    }
    switch (kind) {
        case ValueKind::whole16:
            putBytes(static_cast<int16_t>(value));
            break;
        case ValueKind::whole32:
            putBytes(static_cast<int32_t>(value));
            break;
        case ValueKind::whole64:
            putBytes(value);
            break;
        case ValueKind::boolean:
            putBytes(static_cast<uint8_t>(value));
            break;
        default:
            return putString(std::to_string(value));
    }
    endValue();
}

void GroupOutput::handle(int code, uint64_t handle) {
    char digits[24];
    auto [end, error] = std::to_chars(digits, digits + sizeof(digits), handle, 16);
    for (char* c = digits; c != end; ++c)
        *c = *c >= 'a' ? static_cast<char>(*c - 'a' + 'A') : *c;
    name(code, {digits, static_cast<size_t>(end - digits)});
}

void GroupOutput::object(int code, AcDbObjectId id) {
    handle(code, Handles::of(id));
}

void GroupOutput::binary(int code, std::string_view data) {
    do {
        const std::string_view piece = data.substr(0, kChunk);
        data.remove_prefix(piece.size());
        putCode(code);
        if (isBinary_) {
            putBytes(static_cast<uint8_t>(piece.size()));
            buffer_ += piece;
        } else {
            for (const char c : piece) {
                const auto byte = static_cast<uint8_t>(c);
                buffer_ += "0123456789ABCDEF"[byte >> 4];
                buffer_ += "0123456789ABCDEF"[byte & 15];
            }
            putLineEnd();
        }
        endValue();
    } while (!data.empty());
}

void GroupOutput::group(const model::GroupData::Group& group) {
    using Kind = model::GroupData::Kind;
    switch (group.kind) {
        case Kind::text:
            return text(group.code, fromUtf8(group.text));
        case Kind::binary:
            return binary(group.code, group.text);
        case Kind::real:
            return real(group.code, group.real);
        case Kind::point:
        case Kind::flatPoint:
            real(group.code, group.real);
            real(group.code + 10, group.y);
            if (group.kind == Kind::point) real(group.code + 20, group.z);
            return;
        case Kind::whole:
            return whole(group.code, group.whole);
        case Kind::handle:
            return handle(group.code, group.handle);
        case Kind::object:
            return object(group.code, group.object);
    }
}

}  // namespace sg::dxf

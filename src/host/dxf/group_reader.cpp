#include "host/dxf/group_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace sg::dxf {
namespace {

constexpr std::string_view kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);
constexpr std::string_view kByteOrderMark("\xEF\xBB\xBF");
constexpr int kComment = 999;

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isSpace(char c) {
    return c == ' ' || c == '\t';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool parseReal(std::string_view text, double& value) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range) {
        // Too small counts as nothing; too large is no number that anything could have.
        value = 0;
        return text.find("e-") != text.npos || text.find("E-") != text.npos;
    }
    return error == std::errc() && stop == end && std::isfinite(value);
}

// Programs write whole numbers with a point now and then.
bool parseWhole(std::string_view text, int64_t& value) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && stop == end) return true;
    double real = 0;
    if (!parseReal(text, real) || std::abs(real) > 9e18) return false;
    value = static_cast<int64_t>(real);
    return true;
}

bool parseHandle(std::string_view text, uint64_t& value) {
    text = trimmed(text);
    value = 0;
    if (text.empty()) return true;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
    return error == std::errc() && stop == end;
}

void parseValue(Group& group) {
    switch (group.kind) {
        case ValueKind::real:
            group.isMalformed = !parseReal(group.text, group.real);
            break;
        case ValueKind::whole16:
        case ValueKind::whole32:
        case ValueKind::whole64:
        case ValueKind::boolean:
            group.isMalformed = !parseWhole(group.text, group.whole);
            break;
        case ValueKind::handle:
        case ValueKind::object:
            group.isMalformed = !parseHandle(group.text, group.handle);
            break;
        default:
            break;
    }
}

}  // namespace

GroupReader::GroupReader(std::string_view content)
    : content_(content), at_(content.data()), end_(content.data() + content.size()) {
    if (content.starts_with(kSentinel)) {
        isBinary_ = true;
        start_ = kSentinel.size();
        // The first group is 0 SECTION: with a code of two bytes a second zero follows.
        hasWideCodes_ = content.size() <= start_ + 1 || content[start_ + 1] == '\0';
    } else {
        if (content.starts_with(kByteOrderMark)) start_ = kByteOrderMark.size();
        // Lines that end in CR alone come from machines of old.
        const std::string_view head = content.substr(start_, 1000);
        const bool hasFeed = head.find('\n') != head.npos;
        if (!hasFeed && head.find('\r') != head.npos) lineEnd_ = '\r';
    }
    seek(start_);
}

bool GroupReader::recognises(std::string_view start) {
    if (start.starts_with(kSentinel.substr(0, 18))) return true;
    if (start.starts_with(kByteOrderMark)) start.remove_prefix(kByteOrderMark.size());
    const size_t end = start.find_first_of("\r\n");
    if (end == start.npos) return false;
    const std::string_view code = trimmed(start.substr(0, end));
    return code == "0" || code == "999";
}

GroupReader::Step GroupReader::next(Group& group) {
    Step step;
    do {
        step = isBinary_ ? nextInBinary(group) : nextInText(group);
    } while (step == Step::group && group.code == kComment);
    return step;
}

// ---- Text ---------------------------------------------------------------------------------------

std::string_view GroupReader::takeLine() {
    const char* const start = at_;
    const char* stop =
        static_cast<const char*>(std::memchr(start, lineEnd_, static_cast<size_t>(end_ - start)));
    if (stop == nullptr) {
        stop = at_ = end_;
    } else {
        at_ = stop + 1;
    }
    if (stop != start && stop[-1] == '\r') --stop;
    return {start, static_cast<size_t>(stop - start)};
}

GroupReader::Step GroupReader::nextInText(Group& group) {
    const char* const start = at_;
    while (at_ != end_ && isSpace(*at_))
        ++at_;
    int code = 0;
    const char* const digits = at_;
    while (at_ != end_ && isDigit(*at_) && code < 10000)
        code = code * 10 + (*at_++ - '0');
    const bool hasDigits = at_ != digits;
    const std::string_view rest = takeLine();
    if (!hasDigits || !trimmed(rest).empty()) {
        const bool isBlank = trimmed(std::string_view(start, static_cast<size_t>(at_ - start)))
                                 .find_first_not_of("\r\n\x1a") == std::string_view::npos;
        if (isBlank && at_ != end_) return nextInText(group);
        if (isBlank) return Step::end;
        at_ = start;
        return Step::damage;
    }
    if (at_ == end_) {
        at_ = start;
        return Step::damage;
    }
    group.code = static_cast<int16_t>(std::min(code, 9999));
    group.kind = kindOf(code);
    group.isMalformed = false;
    group.isHex = group.kind == ValueKind::binary;
    group.text = takeLine();
    parseValue(group);
    return Step::group;
}

// ---- Binary -------------------------------------------------------------------------------------

namespace {

template <class Value>
bool take(const char*& at, const char* end, Value& value) {
    if (static_cast<size_t>(end - at) < sizeof(Value)) return false;
    std::memcpy(&value, at, sizeof(Value));
    at += sizeof(Value);
    return true;
}

template <class Value>
bool takeWhole(const char*& at, const char* end, int64_t& whole) {
    Value value{};
    if (!take(at, end, value)) return false;
    whole = value;
    return true;
}

}  // namespace

GroupReader::Step GroupReader::nextInBinary(Group& group) {
    if (at_ == end_) return Step::end;
    const char* const start = at_;
    int16_t code = 0;
    uint8_t narrow = 0;
    bool isRead = false;
    if (hasWideCodes_) {
        isRead = take(at_, end_, code);
    } else if ((isRead = take(at_, end_, narrow))) {
        code = narrow;
        if (narrow == 255) isRead = take(at_, end_, code);
    }
    group.code = code;
    group.kind = kindOf(code);
    group.isMalformed = group.isHex = false;
    if (isRead && code >= 0 && readBinaryValue(group)) return Step::group;
    at_ = start;
    return Step::damage;
}

bool GroupReader::readBinaryValue(Group& group) {
    const char* const start = at_;
    bool isRead = false;
    switch (group.kind) {
        case ValueKind::real:
            isRead = take(at_, end_, group.real);
            group.isMalformed = isRead && !std::isfinite(group.real);
            break;
        case ValueKind::whole16:
            isRead = takeWhole<int16_t>(at_, end_, group.whole);
            break;
        case ValueKind::whole32:
            isRead = takeWhole<int32_t>(at_, end_, group.whole);
            break;
        case ValueKind::whole64:
            isRead = takeWhole<int64_t>(at_, end_, group.whole);
            break;
        case ValueKind::boolean:
            isRead = takeWhole<uint8_t>(at_, end_, group.whole);
            break;
        case ValueKind::binary: {
            uint8_t length = 0;
            isRead = take(at_, end_, length) && end_ - at_ >= length;
            if (!isRead) break;
            group.text = {at_, length};
            at_ += length;
            return true;
        }
        default: {
            const auto* const stop =
                static_cast<const char*>(std::memchr(at_, '\0', static_cast<size_t>(end_ - at_)));
            if (stop == nullptr) break;
            group.text = {at_, static_cast<size_t>(stop - at_)};
            at_ = stop + 1;
            parseValue(group);
            return true;
        }
    }
    group.text = {start, static_cast<size_t>(at_ - start)};
    return isRead;
}

// ---- Damage -------------------------------------------------------------------------------------

bool GroupReader::recover() {
    if (isBinary_) {
        // A zero code and a name in capitals.
        const size_t width = hasWideCodes_ ? 2 : 1;
        for (const char* at = at_ + 1; at + width + 2 < end_; ++at) {
            const bool isZero = at[0] == 0 && (width == 1 || at[1] == 0);
            const char* const name = at + width;
            if (!isZero || !(name[0] >= 'A' && name[0] <= 'Z') || name[1] < 'A') continue;
            at_ = at;
            return true;
        }
        at_ = end_;
        return false;
    }
    takeLine();
    while (at_ != end_) {
        const char* const line = at_;
        if (trimmed(takeLine()) != "0" || at_ == end_) continue;
        const char* const value = at_;
        const std::string_view name = trimmed(takeLine());
        const bool isName =
            name.size() >= 2 &&
            std::all_of(name.begin(), name.end(),
                        [](char c) {
                            return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
                        }) &&
            std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
        if (isName) {
            at_ = line;
            return true;
        }
        at_ = value;
    }
    return false;
}

size_t GroupReader::lineOf(size_t position) const {
    if (isBinary_) return position;
    const auto end = content_.begin() + static_cast<ptrdiff_t>(std::min(position, content_.size()));
    return static_cast<size_t>(std::count(content_.begin(), end, lineEnd_)) + 1;
}

}  // namespace sg::dxf

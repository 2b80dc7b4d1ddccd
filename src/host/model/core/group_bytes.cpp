#include "host/model/core/group_bytes.h"

#include <algorithm>
#include <cstring>

#include "base/encoding.h"
#include "host/model/core/group_writer.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

// What a code's value is in bytes.
enum class Value { none, text, binary, real, point, byte, int16, int32, int64, handle, object };

struct Range {
    int first, last;
    Value value;
};

constexpr Range kRanges[] = {
    {0, 4, Value::text},        {5, 5, Value::handle},       {6, 9, Value::text},
    {10, 37, Value::point},     {38, 59, Value::real},       {60, 79, Value::int16},
    {80, 99, Value::int32},     {100, 104, Value::text},     {105, 105, Value::handle},
    {110, 139, Value::point},   {140, 149, Value::real},     {150, 169, Value::int64},
    {170, 179, Value::int16},   {210, 269, Value::point},    {270, 279, Value::int16},
    {280, 299, Value::byte},    {300, 309, Value::text},     {310, 319, Value::binary},
    {320, 329, Value::handle},  {330, 369, Value::object},   {370, 389, Value::int16},
    {390, 399, Value::object},  {400, 409, Value::int16},    {410, 419, Value::text},
    {420, 429, Value::int32},   {430, 439, Value::text},     {440, 459, Value::int32},
    {460, 469, Value::real},    {470, 479, Value::text},     {480, 481, Value::object},
    {999, 1003, Value::text},   {1004, 1004, Value::binary}, {1005, 1009, Value::text},
    {1010, 1039, Value::point}, {1040, 1042, Value::real},   {1070, 1070, Value::int16},
    {1071, 1071, Value::int32},
};

Value valueOf(int code) {
    for (const Range& range : kRanges) {
        if (code >= range.first && code <= range.last) return range.value;
    }
    return Value::none;
}

constexpr size_t kMostText = 0x7FFF;
constexpr size_t kMostBinary = 0xFF;

// ---- Writing ------------------------------------------------------------------------------------

class Writer {
  public:
    Writer(DwgForm& form, AcDb::AcDbDwgVersion release) : form_(form), release_(release) {}

    std::string write(const GroupData& groups) {
        for (GroupData::Walk walk(groups); walk.next();)
            add(walk.group());
        return std::move(bytes_);
    }

  private:
    template <class Number>
    void put(Number number) {
        char raw[sizeof(Number)];
        std::memcpy(raw, &number, sizeof(Number));
        bytes_.append(raw, sizeof(Number));
    }
    void add(const GroupData::Group& group) {
        if (continuesPoint(group)) return;
        const Value value = valueOf(group.code);
        if (value == Value::none) return;
        put(static_cast<int16_t>(group.code));
        pointAt_ = 0;
        switch (value) {
            case Value::text:
                return putText(textOf(group));
            case Value::binary:
                return putBinary(group.text);
            case Value::real:
                return put(isAngleGroup(group.code) ? fromFileDegrees(group.real) : group.real);
            case Value::point:
                return putPoint(group);
            case Value::byte:
                return put(static_cast<int8_t>(group.whole));
            case Value::int16:
                return put(static_cast<int16_t>(group.whole));
            case Value::int32:
                return put(static_cast<int32_t>(group.whole));
            case Value::int64:
                return put(group.whole);
            case Value::handle:
                return put(group.handle);
            default:
                return put(static_cast<uint64_t>(group.object.handle()));
        }
    }
    // Coordinates may be groups of their own, each with a code that is higher by 10.
    bool continuesPoint(const GroupData::Group& group) {
        if (pointAt_ == 0 || group.kind != GroupData::Kind::real) return false;
        const int offset = group.code - pointCode_;
        if (offset != 10 && offset != 20) return false;
        const size_t place = pointAt_ + static_cast<size_t>(offset / 10) * sizeof(double);
        std::memcpy(bytes_.data() + place, &group.real, sizeof(double));
        return true;
    }
    void putPoint(const GroupData::Group& group) {
        pointAt_ = bytes_.size();
        pointCode_ = group.code;
        put(group.real);
        put(group.y);
        put(group.z);
    }
    // The handle that extended data has stands there as a text.
    static std::wstring textOf(const GroupData::Group& group) {
        const bool isHandle = group.kind == GroupData::Kind::handle;
        return isHandle ? AcDbHandle(group.handle).text() : fromUtf8(group.text);
    }
    void putText(const std::wstring& text) {
        const std::string encoded = form_.encode(text);
        const bool isWide = release_ >= AcDb::kDHL_1021;
        const size_t size = std::min(encoded.size(), isWide ? 2 * kMostText : kMostText);
        put(static_cast<int16_t>(isWide ? size / 2 : size));
        if (!isWide) put(form_.codePage());
        bytes_.append(encoded, 0, size);
    }
    void putBinary(std::string_view data) {
        const size_t size = std::min(data.size(), kMostBinary);
        put(static_cast<uint8_t>(size));
        bytes_.append(data.substr(0, size));
    }

    DwgForm& form_;
    AcDb::AcDbDwgVersion release_;
    std::string bytes_;
    size_t pointAt_ = 0;  // where the coordinates stand of a point that may go on; 0 for none
    int pointCode_ = 0;
};

// ---- Reading ------------------------------------------------------------------------------------

class Reader {
  public:
    Reader(std::string_view bytes, DwgForm& form, AcDb::AcDbDwgVersion release,
           AcDbDatabase& database)
        : rest_(bytes), form_(form), release_(release), database_(database) {}

    bool read(GroupData& groups) {
        while (!rest_.empty()) {
            const int code = take<int16_t>();
            const Value value = valueOf(code);
            if (value == Value::none || !readValue(code, value, groups)) return false;
        }
        return true;
    }

  private:
    template <class Number>
    Number take() {
        Number number{};
        const std::string_view raw = takeBytes(sizeof(Number));
        if (!raw.empty()) std::memcpy(&number, raw.data(), sizeof(Number));
        return number;
    }
    std::string_view takeBytes(size_t size) {
        if (size > rest_.size()) {
            isWhole_ = false;
            rest_ = {};
            return {};
        }
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }
    bool readValue(int code, Value value, GroupData& groups) {
        GroupData::Group group;
        group.code = code;
        std::string text;
        switch (value) {
            case Value::text:
                text = takeText();
                group.text = text;
                break;
            case Value::binary:
                group.kind = GroupData::Kind::binary;
                group.text = takeBytes(take<uint8_t>());
                break;
            case Value::real:
                group.kind = GroupData::Kind::real;
                group.real = take<double>();
                if (isAngleGroup(code)) group.real = toFileDegrees(group.real);
                break;
            case Value::point:
                group.kind = GroupData::Kind::point;
                group.real = take<double>();
                group.y = take<double>();
                group.z = take<double>();
                break;
            case Value::handle:
                group.kind = GroupData::Kind::handle;
                group.handle = take<uint64_t>();
                break;
            case Value::object:
                group.kind = GroupData::Kind::object;
                group.object = objectOf(take<uint64_t>());
                break;
            default:
                group.kind = GroupData::Kind::whole;
                group.whole = takeWhole(value);
                break;
        }
        if (isWhole_) groups.append(group);
        return isWhole_;
    }
    int64_t takeWhole(Value value) {
        switch (value) {
            case Value::byte:
                return take<int8_t>();
            case Value::int16:
                return take<int16_t>();
            case Value::int32:
                return take<int32_t>();
            default:
                return take<int64_t>();
        }
    }
    std::string takeText() {
        const bool isWide = release_ >= AcDb::kDHL_1021;
        const size_t length = take<uint16_t>();
        const uint8_t codePage = isWide ? 0 : take<uint8_t>();
        return toUtf8(form_.decode(takeBytes(isWide ? 2 * length : length), codePage));
    }
    AcDbObjectId objectOf(uint64_t handle) {
        AcDbObjectId id;
        if (handle != 0) database_.getAcDbObjectId(id, true, AcDbHandle(handle));
        return id;
    }

    std::string_view rest_;
    DwgForm& form_;
    AcDb::AcDbDwgVersion release_;
    AcDbDatabase& database_;
    bool isWhole_ = true;
};

}  // namespace

std::string toFileBytes(const GroupData& groups, DwgForm& form, AcDb::AcDbDwgVersion release) {
    return Writer(form, release).write(groups);
}

bool fromFileBytes(std::string_view bytes, DwgForm& form, AcDb::AcDbDwgVersion release,
                   AcDbDatabase& database, GroupData& groups) {
    return Reader(bytes, form, release, database).read(groups);
}

}  // namespace sg::model

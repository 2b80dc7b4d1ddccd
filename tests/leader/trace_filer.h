#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/db/filers.h"

namespace sg::test {

// A pair of operations each.
#define TRACE_ID(NAME, KIND)                                               \
    Acad::ErrorStatus read##NAME##Id(AcDb##NAME##Id* id) override {        \
        return readId(KIND, id);                                           \
    }                                                                      \
    Acad::ErrorStatus write##NAME##Id(const AcDb##NAME##Id& id) override { \
        return writeId(KIND, id);                                          \
    }
#define TRACE_NUMBER(NAME, TYPE, KIND)                    \
    Acad::ErrorStatus read##NAME(TYPE* value) override {  \
        return readNumber(KIND, value);                   \
    }                                                     \
    Acad::ErrorStatus write##NAME(TYPE value) override {  \
        return write(KIND, {static_cast<double>(value)}); \
    }
#define TRACE_TUPLE(NAME, KIND, ...)                                                     \
    Acad::ErrorStatus read##NAME(AcGe##NAME* value) override {                           \
        return read(KIND, [&](const Item& item) { fill(item.numbers, {__VA_ARGS__}); }); \
    }                                                                                    \
    Acad::ErrorStatus write##NAME(const AcGe##NAME& given) override {                    \
        AcGe##NAME copy = given;                                                         \
        AcGe##NAME* const value = &copy;                                                 \
        return write(KIND, numbersOf({__VA_ARGS__}));                                    \
    }

// Writes down each item with its kind, and gives the items back in their order. An item read as
// another kind than it was written as is a fault of the class that is filed.
class TraceFiler final : public AcDbDwgFiler {
  public:
    struct Item {
        std::string kind;
        std::vector<double> numbers;
        std::vector<uint8_t> bytes;  // of what is no number
    };

    explicit TraceFiler(AcDb::FilerType type = AcDb::kFileFiler) : type_(type) {}

    std::vector<Item> items;
    size_t at = 0;             // the item that is read next
    size_t failAt = SIZE_MAX;  // the operation with this number fails
    Acad::ErrorStatus failure = Acad::eInvalidInput;
    bool failureIsLasting = true;  // the filer's status, too
    size_t operations = 0;

    // The items from `first` on, such as "int32 2" and "point 1 2 3".
    std::vector<std::string> text(size_t first = 0) const {
        std::vector<std::string> lines;
        for (size_t i = first; i < items.size(); ++i) {
            std::string line = items[i].kind;
            for (const double number : items[i].numbers) {
                line += ' ' + shown(number);
            }
            lines.push_back(line);
        }
        return lines;
    }

    AcDb::FilerType filerType() const override { return type_; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDbDatabase* database() const override { return nullptr; }

    TRACE_ID(HardOwnership, "hard owner")
    TRACE_ID(SoftOwnership, "soft owner")
    TRACE_ID(HardPointer, "hard pointer")
    TRACE_ID(SoftPointer, "soft pointer")
    TRACE_NUMBER(Int8, int8_t, "int8")
    TRACE_NUMBER(Int16, int16_t, "int16")
    TRACE_NUMBER(Int32, int32_t, "int32")
    TRACE_NUMBER(Int64, int64_t, "int64")
    TRACE_NUMBER(UInt8, uint8_t, "uint8")
    TRACE_NUMBER(UInt16, uint16_t, "uint16")
    TRACE_NUMBER(UInt32, uint32_t, "uint32")
    TRACE_NUMBER(Bool, bool, "bool")
    TRACE_NUMBER(Double, double, "double")
    TRACE_TUPLE(Point2d, "point2", &value->x, &value->y)
    TRACE_TUPLE(Vector2d, "vector2", &value->x, &value->y)
    TRACE_TUPLE(Point3d, "point", &value->x, &value->y, &value->z)
    TRACE_TUPLE(Vector3d, "vector", &value->x, &value->y, &value->z)
    TRACE_TUPLE(Scale3d, "scale", &value->sx, &value->sy, &value->sz)
    Acad::ErrorStatus readString(std::wstring& value) override {
        return read("string", [&](const Item& item) {
            value.assign(reinterpret_cast<const wchar_t*>(item.bytes.data()),
                         item.bytes.size() / sizeof(wchar_t));
        });
    }
    Acad::ErrorStatus writeString(const std::wstring& value) override {
        return writeData("string", value.data(), value.size() * sizeof(wchar_t));
    }
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* value) override {
        return readData("handle", value);
    }
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& value) override {
        return writeData("handle", &value, sizeof value);
    }
    Acad::ErrorStatus readBytes(void* bytes, size_t count) override {
        return read("bytes", [&](const Item& item) {
            std::memcpy(bytes, item.bytes.data(), std::min(count, item.bytes.size()));
        });
    }
    Acad::ErrorStatus writeBytes(const void* bytes, size_t count) override {
        return writeData("bytes", bytes, count);
    }

  private:
    static std::string shown(double number) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%g", number);
        return buffer;
    }

    using Places = std::initializer_list<double*>;
    static void fill(const std::vector<double>& numbers, Places places) {
        size_t i = 0;
        for (double* const place : places) {
            *place = numbers.at(i++);
        }
    }
    static std::vector<double> numbersOf(Places places) {
        std::vector<double> numbers;
        for (const double* const place : places) {
            numbers.push_back(*place);
        }
        return numbers;
    }

    // The status that the next operation has.
    Acad::ErrorStatus next() {
        if (status_ != Acad::eOk) return status_;
        if (operations++ != failAt) return Acad::eOk;
        if (failureIsLasting) status_ = failure;
        return failure;
    }
    Acad::ErrorStatus write(const char* kind, std::vector<double> numbers) {
        const Acad::ErrorStatus status = next();
        if (status == Acad::eOk) items.push_back({kind, std::move(numbers), {}});
        return status;
    }
    Acad::ErrorStatus writeData(const char* kind, const void* data, size_t size) {
        const Acad::ErrorStatus status = write(kind, {});
        if (status == Acad::eOk) {
            const auto* const bytes = static_cast<const uint8_t*>(data);
            items.back().bytes.assign(bytes, bytes + size);
        }
        return status;
    }
    template <class Id>
    Acad::ErrorStatus writeId(const char* kind, const Id& id) {
        return writeData(kind, &id, sizeof id);
    }
    template <class Take>
    Acad::ErrorStatus read(const char* kind, const Take& take) {
        const Acad::ErrorStatus status = next();
        if (status != Acad::eOk) return status;
        if (at >= items.size()) return status_ = Acad::eEndOfFile;
        if (items[at].kind != kind) {
            throw std::logic_error("a " + items[at].kind + " is read as a " + kind);
        }
        take(items[at++]);
        return Acad::eOk;
    }
    template <class Number>
    Acad::ErrorStatus readNumber(const char* kind, Number* value) {
        return read(kind, [&](const Item& item) { *value = static_cast<Number>(item.numbers[0]); });
    }
    template <class Data>
    Acad::ErrorStatus readData(const char* kind, Data* value) {
        return read(kind, [&](const Item& item) {
            std::memcpy(static_cast<void*>(value), item.bytes.data(), sizeof *value);
        });
    }
    template <class Id>
    Acad::ErrorStatus readId(const char* kind, Id* id) {
        return readData(kind, id);
    }

    AcDb::FilerType type_;
    Acad::ErrorStatus status_ = Acad::eOk;
};

}  // namespace sg::test

#undef TRACE_ID
#undef TRACE_NUMBER
#undef TRACE_TUPLE

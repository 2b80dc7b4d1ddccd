#pragma once

#include <any>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/db/filers.h"

namespace sg::test {

// Keeps what is written and gives it back in order; a read of another type than was written fails.
class MemoryDwgFiler : public AcDbDwgFiler {
  public:
    explicit MemoryDwgFiler(AcDb::FilerType type = AcDb::kCopyFiler) : type_(type) {}

    AcDb::FilerType filerType() const override { return type_; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDbDatabase* database() const override { return nullptr; }
    bool empty() const { return values_.empty(); }

#define SG_FILER_PAIR(NAME, TYPE, BY_VALUE)                  \
    Acad::ErrorStatus read##NAME(TYPE* value) override {     \
        return read(value);                                  \
    }                                                        \
    Acad::ErrorStatus write##NAME(BY_VALUE value) override { \
        return write<TYPE>(value);                           \
    }
    SG_FILER_PAIR(HardOwnershipId, AcDbHardOwnershipId, const AcDbHardOwnershipId&)
    SG_FILER_PAIR(SoftOwnershipId, AcDbSoftOwnershipId, const AcDbSoftOwnershipId&)
    SG_FILER_PAIR(HardPointerId, AcDbHardPointerId, const AcDbHardPointerId&)
    SG_FILER_PAIR(SoftPointerId, AcDbSoftPointerId, const AcDbSoftPointerId&)
    SG_FILER_PAIR(Int8, int8_t, int8_t)
    SG_FILER_PAIR(Int16, int16_t, int16_t)
    SG_FILER_PAIR(Int32, int32_t, int32_t)
    SG_FILER_PAIR(Int64, int64_t, int64_t)
    SG_FILER_PAIR(UInt8, uint8_t, uint8_t)
    SG_FILER_PAIR(UInt16, uint16_t, uint16_t)
    SG_FILER_PAIR(UInt32, uint32_t, uint32_t)
    SG_FILER_PAIR(Bool, bool, bool)
    SG_FILER_PAIR(Double, double, double)
    SG_FILER_PAIR(Point2d, AcGePoint2d, const AcGePoint2d&)
    SG_FILER_PAIR(Point3d, AcGePoint3d, const AcGePoint3d&)
    SG_FILER_PAIR(Vector2d, AcGeVector2d, const AcGeVector2d&)
    SG_FILER_PAIR(Vector3d, AcGeVector3d, const AcGeVector3d&)
    SG_FILER_PAIR(Scale3d, AcGeScale3d, const AcGeScale3d&)
    SG_FILER_PAIR(AcDbHandle, ::AcDbHandle, const ::AcDbHandle&)
#undef SG_FILER_PAIR
    Acad::ErrorStatus readString(std::wstring& value) override {
        return read(&value);
    }
    Acad::ErrorStatus writeString(const std::wstring& value) override {
        return write(value);
    }
    Acad::ErrorStatus readBytes(void* bytes, size_t count) override {
        std::string text;
        read(&text);
        if (text.size() != count) return status_ = Acad::eEndOfFile;
        std::memcpy(bytes, text.data(), count);
        return status_;
    }
    Acad::ErrorStatus writeBytes(const void* bytes, size_t count) override {
        return write(std::string(static_cast<const char*>(bytes), count));
    }

  private:
    template <class Value>
    Acad::ErrorStatus write(const Value& value) {
        values_.emplace_back(value);
        return status_;
    }
    template <class Value>
    Acad::ErrorStatus read(Value* value) {
        if (status_ != Acad::eOk) return status_;
        if (values_.empty()) return status_ = Acad::eEndOfFile;
        const Value* const there = std::any_cast<Value>(&values_.front());
        if (there == nullptr) return status_ = Acad::eBadDwgFile;
        *value = *there;
        values_.pop_front();
        return status_;
    }

    AcDb::FilerType type_;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::deque<std::any> values_;
};

// A list of groups that is written, and read again from its start.
class GroupFiler : public AcDbDxfFiler {
  public:
    struct Group {
        int code;
        std::any value;  // a double, an int64_t, an AcGePoint3d or a std::wstring
    };

    explicit GroupFiler(AcDb::FilerType type = AcDb::kFileFiler) : type_(type) {}

    std::vector<Group> groups;

    // The same without markers, as entmake may give them.
    void dropMarkers() {
        std::erase_if(groups, [](const Group& group) { return group.code == 100; });
        marked_ = false;
    }
    // The codes in order, such as "100 10 40".
    std::string codes() const {
        std::string text;
        for (const Group& group : groups) {
            if (!text.empty()) text += ' ';
            text += std::to_string(group.code);
        }
        return text;
    }
    template <class Kind>
    Kind value(int code, size_t nth = 0) const {
        for (const Group& group : groups) {
            if (group.code == code && nth-- == 0) return std::any_cast<Kind>(group.value);
        }
        throw std::out_of_range("no group " + std::to_string(code));
    }

    AcDb::FilerType filerType() const override { return type_; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDbDatabase* database() const override { return nullptr; }

    Acad::ErrorStatus readItem(resbuf* group) override {
        if (at_ >= groups.size()) return status_ = Acad::eEndOfFile;
        const Group& next = groups[at_++];
        group->restype = static_cast<int16_t>(next.code);
        if (const auto* real = std::any_cast<double>(&next.value)) group->resval.rreal = *real;
        if (const auto* whole = std::any_cast<int64_t>(&next.value)) putInteger(*whole, *group);
        if (const auto* point = std::any_cast<AcGePoint3d>(&next.value)) {
            for (unsigned int i = 0; i < 3; ++i)
                group->resval.rpoint[i] = (*point)[i];
        }
        if (const auto* text = std::any_cast<std::wstring>(&next.value)) {
            group->resval.rstring = const_cast<wchar_t*>(text->c_str());
        }
        return Acad::eOk;
    }
    Acad::ErrorStatus pushBackItem() override {
        --at_;
        return Acad::eOk;
    }
    bool atSubclassData(const wchar_t* name) override {
        if (at_ >= groups.size()) return false;
        if (!marked_) return true;
        const auto* marker = std::any_cast<std::wstring>(&groups[at_].value);
        if (groups[at_].code != 100 || marker == nullptr || *marker != name) return false;
        ++at_;
        return true;
    }
    bool atEndOfObject() override { return at_ >= groups.size(); }
    AcDbObjectId objectId(const ads_name) const override { return {}; }
    Acad::ErrorStatus setError(Acad::ErrorStatus status, const std::wstring& text) override {
        message_ = text;
        return status_ = status;
    }
    std::wstring errorMessage() const override { return message_; }

    Acad::ErrorStatus writeItem(const resbuf&) override { return status_ = Acad::eInvalidInput; }
    Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) override {
        return put(code, static_cast<int64_t>(id.asOldId()));
    }
    Acad::ErrorStatus writeInt8(int code, int8_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeInt16(int code, int16_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeInt32(int code, int32_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeInt64(int code, int64_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeUInt8(int code, uint8_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeUInt16(int code, uint16_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeUInt32(int code, uint32_t value) override { return putInt(code, value); }
    Acad::ErrorStatus writeBool(int code, bool value) override { return putInt(code, value); }
    Acad::ErrorStatus writeDouble(int code, double value, int) override { return put(code, value); }
    Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& value, int) override {
        return put(code, AcGePoint3d(value.x, value.y, 0));
    }
    Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& value, int) override {
        return put(code, value);
    }
    Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d& value, int) override {
        return put(code, AcGePoint3d(value.x, value.y, value.z));
    }
    Acad::ErrorStatus writeString(int code, const wchar_t* value) override {
        return put(code, std::wstring(value));
    }
    Acad::ErrorStatus writeAcDbHandle(int code, const AcDbHandle& value) override {
        return put(code, value.text());
    }
    Acad::ErrorStatus writeBChunk(int, const void*, size_t) override {
        return status_ = Acad::eInvalidInput;
    }

  private:
    static void putInteger(int64_t value, resbuf& group) {
        if (acdbGroupCodeToType(group.restype) == RTSHORT) {
            group.resval.rint = static_cast<int16_t>(value);
        } else {
            group.resval.rlong = static_cast<int32_t>(value);
        }
    }
    Acad::ErrorStatus putInt(int code, int64_t value) { return put(code, value); }
    Acad::ErrorStatus put(int code, std::any value) {
        groups.push_back({code, std::move(value)});
        return status_;
    }

    AcDb::FilerType type_;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::wstring message_;
    bool marked_ = true;
    size_t at_ = 0;
};

}  // namespace sg::test

#pragma once

#include <any>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/db/filers.h"

namespace sg::test {

// A list of groups in the form of a drawing file, or of entget, that is written, and read again
// from its start.
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
        if (at_ >= groups.size()) return Acad::eEndOfFile;
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
        if (!marked_) {
            at_ = 0;  // each class takes its own of the groups
            return !groups.empty();
        }
        if (at_ >= groups.size()) return false;
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

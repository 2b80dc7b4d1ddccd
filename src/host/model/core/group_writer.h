#pragma once

#include <cmath>
#include <cstring>
#include <numbers>
#include <string>
#include <string_view>

#include "host/model/core/database_table.h"
#include "host/model/core/group_data.h"
#include "platform/db/filers.h"
#include "platform/db/handle.h"

namespace sg::model {

// Degrees as drawing files have them: the shortest number that gives the same radians again, so
// that an angle that was read comes out as it stood.
double toFileDegrees(double radians);
double fromFileDegrees(double degrees);

// The bytes behind hexadecimal digits; what is no digit ends them.
std::string fromHexDigits(std::wstring_view digits);

// A DXF filer that writes: it turns what classes write into the groups of a drawing file, each of
// one value, and hands them to a sink:
//
//     void text(int code, std::wstring_view text);
//     void real(int code, double value);            coordinates one by one, angles in degrees
//     void whole(int code, int64_t value);
//     void handle(int code, uint64_t handle);
//     void object(int code, AcDbObjectId id);
//     void binary(int code, std::string_view data);
//     void group(const GroupData::Group& group);    one that stands ready
template <class Sink>
class GroupWriter final : public AcDbDxfFiler, public FileGroupsAccess {
  public:
    GroupWriter(Sink& sink, AcDbDatabase* database, AcDb::AcDbDwgVersion release)
        : sink_(sink), database_(database), release_(release) {}

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDb::AcDbDwgVersion dwgVersion() const override { return release_; }
    AcDbDatabase* database() const override { return database_; }

    Acad::ErrorStatus readItem(resbuf*) override { return refuse(); }
    Acad::ErrorStatus pushBackItem() override { return refuse(); }
    bool atSubclassData(const wchar_t*) override { return false; }
    bool atEndOfObject() override { return true; }
    AcDbObjectId objectId(const ads_name) const override { return {}; }
    Acad::ErrorStatus setError(Acad::ErrorStatus status, const std::wstring& text) override {
        message_ = text;
        return status_ = status;
    }
    std::wstring errorMessage() const override { return message_; }

    Acad::ErrorStatus writeItem(const resbuf& group) override;
    Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) override {
        sink_.object(code, id);
        return status_;
    }
    Acad::ErrorStatus writeInt8(int code, int8_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeInt16(int code, int16_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeInt32(int code, int32_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeInt64(int code, int64_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeUInt8(int code, uint8_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeUInt16(int code, uint16_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeUInt32(int code, uint32_t value) override { return whole(code, value); }
    Acad::ErrorStatus writeBool(int code, bool value) override { return whole(code, value); }
    Acad::ErrorStatus writeDouble(int code, double value, int) override {
        sink_.real(code, isAngleGroup(code) ? toFileDegrees(value) : value);
        return status_;
    }
    Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& value, int) override {
        sink_.real(code, value.x);
        sink_.real(code + 10, value.y);
        return status_;
    }
    Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& value, int) override {
        sink_.real(code, value.x);
        sink_.real(code + 10, value.y);
        sink_.real(code + 20, value.z);
        return status_;
    }
    Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d& value, int precision) override {
        return writePoint3d(code, {value.x, value.y, value.z}, precision);
    }
    Acad::ErrorStatus writeString(int code, const wchar_t* value) override {
        sink_.text(code, value != nullptr ? value : L"");
        return status_;
    }
    Acad::ErrorStatus writeAcDbHandle(int code, const AcDbHandle& value) override {
        sink_.handle(code, value);
        return status_;
    }
    Acad::ErrorStatus writeBChunk(int code, const void* bytes, size_t count) override {
        sink_.binary(code, {static_cast<const char*>(bytes), count});
        return status_;
    }

    void readRest(GroupData&) override {}
    void writeGroups(const GroupData& groups) override {
        GroupData::Walk walk(groups);
        while (walk.next())
            sink_.group(walk.group());
    }

  private:
    Acad::ErrorStatus refuse() { return status_ = Acad::eInvalidInput; }
    Acad::ErrorStatus whole(int code, int64_t value) {
        sink_.whole(code, value);
        return status_;
    }

    Sink& sink_;
    AcDbDatabase* database_;
    AcDb::AcDbDwgVersion release_;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::wstring message_;
};

template <class Sink>
Acad::ErrorStatus GroupWriter<Sink>::writeItem(const resbuf& group) {
    const int code = group.restype;
    switch (acdbGroupCodeToType(code)) {
        case RTSTR: {
            const wchar_t* const text =
                group.resval.rstring != nullptr ? group.resval.rstring : L"";
            const bool isBinary = (code >= 310 && code <= 319) || code == 1004;
            const bool isHandle =
                code == 5 || code == 105 || code == 1005 || (code >= 320 && code <= 329);
            if (isBinary) {
                sink_.binary(code, fromHexDigits(text));
            } else if (isHandle) {
                sink_.handle(code, AcDbHandle(text));
            } else {
                sink_.text(code, text);
            }
            break;
        }
        case RTREAL:
            return writeDouble(code, group.resval.rreal, kDfltPrec);
        case RT3DPOINT: {
            const ads_real* const p = group.resval.rpoint;
            return writePoint3d(code, {p[0], p[1], p[2]}, kDfltPrec);
        }
        case RTSHORT:
            return whole(code, group.resval.rint);
        case RTLONG:
            return whole(code, group.resval.rlong);
        case RTENAME:
            sink_.object(code, idOfName(group.resval.rlname));
            break;
        default:
            break;
    }
    return status_;
}

// Groups into a row of packed ones.
class GroupCollector {
  public:
    explicit GroupCollector(GroupData& groups) : groups_(groups) {}
    void text(int code, std::wstring_view text);
    void real(int code, double value) { groups_.appendReal(code, value); }
    void whole(int code, int64_t value) { groups_.appendWhole(code, value); }
    void handle(int code, uint64_t handle) { groups_.appendHandle(code, handle); }
    void object(int code, AcDbObjectId id) { groups_.appendObject(code, id); }
    void binary(int code, std::string_view data) { groups_.appendBinary(code, data); }
    void group(const GroupData::Group& group) { groups_.append(group); }

  private:
    GroupData& groups_;
};

}  // namespace sg::model

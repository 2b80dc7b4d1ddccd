#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/model/core/dwg_form.h"

namespace sg::test {

// The filer of a DWG file that is no file: each value becomes an item with its coding, those of the
// handle stream apart from the others, and reading takes the items back. An item that is read with
// another coding than it was written with fails the filer.
class DwgTrace final : public AcDbDwgFiler, public model::DwgForm {
  public:
    struct Item {
        std::string coding;
        std::vector<double> numbers;
        std::string bytes;
    };

    DwgTrace(AcDb::AcDbDwgVersion release, AcDbDatabase* database)
        : release_(release), database_(database) {}

    struct IdItem {
        std::string coding;
        AcDbObjectId id;
    };

    std::vector<Item> data;
    std::vector<IdItem> ids;

    // The items as text, such as "BD 1.5", "3BD 1 2 3" and "T name".
    std::vector<std::string> text() const {
        std::vector<std::string> lines;
        for (const Item& item : data)
            lines.push_back(shown(item));
        return lines;
    }
    bool isDone() const { return at_ == data.size() && idAt_ == ids.size(); }

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDb::AcDbDwgVersion dwgVersion() const override { return release_; }
    AcDbDatabase* database() const override { return database_; }
    model::DwgForm* dwgForm() override { return this; }

    using Status = Acad::ErrorStatus;
    Status readHardOwnershipId(AcDbHardOwnershipId* id) override { return readId(*id); }
    Status writeHardOwnershipId(const AcDbHardOwnershipId& id) override { return putId("H3", id); }
    Status readSoftOwnershipId(AcDbSoftOwnershipId* id) override { return readId(*id); }
    Status writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override { return putId("H2", id); }
    Status readHardPointerId(AcDbHardPointerId* id) override { return readId(*id); }
    Status writeHardPointerId(const AcDbHardPointerId& id) override { return putId("H5", id); }
    Status readSoftPointerId(AcDbSoftPointerId* id) override { return readId(*id); }
    Status writeSoftPointerId(const AcDbSoftPointerId& id) override { return putId("H4", id); }

    Status readInt8(int8_t* value) override { return readNumber("RC", *value); }
    Status writeInt8(int8_t value) override { return put("RC", {double(value)}); }
    Status readInt16(int16_t* value) override { return readNumber("BS", *value); }
    Status writeInt16(int16_t value) override { return put("BS", {double(value)}); }
    Status readInt32(int32_t* value) override { return readNumber("BL", *value); }
    Status writeInt32(int32_t value) override { return put("BL", {double(value)}); }
    Status readInt64(int64_t* value) override { return readNumber("BLL", *value); }
    Status writeInt64(int64_t value) override { return put("BLL", {double(value)}); }
    Status readUInt8(uint8_t* value) override { return readNumber("RC", *value); }
    Status writeUInt8(uint8_t value) override { return put("RC", {double(value)}); }
    Status readUInt16(uint16_t* value) override { return readNumber("BS", *value); }
    Status writeUInt16(uint16_t value) override { return put("BS", {double(value)}); }
    Status readUInt32(uint32_t* value) override { return readNumber("BL", *value); }
    Status writeUInt32(uint32_t value) override { return put("BL", {double(value)}); }
    Status readBool(bool* value) override { return readNumber("B", *value); }
    Status writeBool(bool value) override { return put("B", {double(value)}); }
    Status readDouble(double* value) override { return readNumber("BD", *value); }
    Status writeDouble(double value) override { return put("BD", {value}); }
    Status readPoint2d(AcGePoint2d* v) override { return read("2RD", {&v->x, &v->y}); }
    Status writePoint2d(const AcGePoint2d& v) override { return put("2RD", {v.x, v.y}); }
    Status readVector2d(AcGeVector2d* v) override { return read("2RD", {&v->x, &v->y}); }
    Status writeVector2d(const AcGeVector2d& v) override { return put("2RD", {v.x, v.y}); }
    Status readPoint3d(AcGePoint3d* v) override { return read("3BD", {&v->x, &v->y, &v->z}); }
    Status writePoint3d(const AcGePoint3d& v) override { return put("3BD", {v.x, v.y, v.z}); }
    Status readVector3d(AcGeVector3d* v) override { return read("3BD", {&v->x, &v->y, &v->z}); }
    Status writeVector3d(const AcGeVector3d& v) override { return put("3BD", {v.x, v.y, v.z}); }
    Status readScale3d(AcGeScale3d* v) override { return read("3BD", {&v->sx, &v->sy, &v->sz}); }
    Status writeScale3d(const AcGeScale3d& v) override { return put("3BD", {v.sx, v.sy, v.sz}); }
    Status readString(std::wstring& value) override {
        if (const Item* const item = next("T")) value = fromUtf8(item->bytes);
        return status_;
    }
    Status writeString(const std::wstring& value) override { return put("T", {}, toUtf8(value)); }
    Status readAcDbHandle(AcDbHandle* value) override {
        double number = 0;
        if (read("H0", {&number}) == Acad::eOk) *value = AcDbHandle(static_cast<uint64_t>(number));
        return status_;
    }
    Status writeAcDbHandle(const AcDbHandle& value) override {
        return put("H0", {static_cast<double>(static_cast<uint64_t>(value))});
    }
    Status readBytes(void* bytes, size_t count) override {
        if (count == 0) return status_;
        const Item* const item = next("bytes");
        if (item == nullptr || item->bytes.size() != count) return fail();
        item->bytes.copy(static_cast<char*>(bytes), count);
        return status_;
    }
    Status writeBytes(const void* bytes, size_t count) override {
        if (count == 0) return status_;
        return put("bytes", {}, std::string(static_cast<const char*>(bytes), count));
    }

    Status readBits(uint8_t* value, int) override { return readNumber("bits", *value); }
    Status writeBits(uint8_t value, int) override { return put("bits", {double(value)}); }
    Status readRawInt16(int16_t* value) override { return readNumber("RS", *value); }
    Status writeRawInt16(int16_t value) override { return put("RS", {double(value)}); }
    Status readRawInt32(int32_t* value) override { return readNumber("RL", *value); }
    Status writeRawInt32(int32_t value) override { return put("RL", {double(value)}); }
    Status readRawDouble(double* value) override { return readNumber("RD", *value); }
    Status writeRawDouble(double value) override { return put("RD", {value}); }
    Status readNear(double* value, double known) override {
        double other = 0;
        double found = 0;
        if (read("DD", {&found, &other}) == Acad::eOk && other != known) return fail();
        *value = found;
        return status_;
    }
    Status writeNear(double value, double known) override { return put("DD", {value, known}); }
    Status readThickness(double* value) override { return readNumber("BT", *value); }
    Status writeThickness(double value) override { return put("BT", {value}); }
    Status readExtrusion(AcGeVector3d* v) override { return read("BE", {&v->x, &v->y, &v->z}); }
    Status writeExtrusion(const AcGeVector3d& v) override { return put("BE", {v.x, v.y, v.z}); }
    Status readColor(AcCmColor* value) override {
        double method = 0;
        double number = 0;
        if (read("CMC", {&method, &number}) != Acad::eOk) return status_;
        const auto whole = static_cast<uint32_t>(number);
        if (static_cast<int>(method) == AcCmColor::kByColor) {
            value->setRGB(static_cast<uint8_t>(whole >> 16), static_cast<uint8_t>(whole >> 8),
                          static_cast<uint8_t>(whole));
        } else {
            value->setColorIndex(static_cast<uint16_t>(whole));
        }
        return status_;
    }
    Status writeColor(const AcCmColor& value) override {
        const double number = value.isByColor() ? value.rgb() : value.colorIndex();
        return put("CMC", {double(value.colorMethod()), number});
    }
    std::string encode(const std::wstring& text) const override {
        std::string bytes;
        for (const wchar_t unit : text) {
            bytes += static_cast<char>(unit);
            if (release_ >= AcDb::kDHL_1021) bytes += static_cast<char>(unit >> 8);
        }
        return bytes;
    }
    std::wstring decode(std::string_view bytes, uint8_t) const override {
        const size_t unit = release_ >= AcDb::kDHL_1021 ? 2 : 1;
        std::wstring text;
        for (size_t i = 0; i + unit <= bytes.size(); i += unit) {
            const auto low = static_cast<uint8_t>(bytes[i]);
            const auto high = unit == 2 ? static_cast<uint8_t>(bytes[i + 1]) : uint8_t(0);
            text += static_cast<wchar_t>(high << 8 | low);
        }
        return text;
    }
    uint8_t codePage() const override { return 30; }
    Status keep(model::KeptBits& bits) override {
        bits.release = static_cast<int16_t>(release_);
        bits.dataBits = static_cast<uint32_t>(data.size());
        return status_;
    }
    Status writeKept(const model::KeptBits& bits) override {
        return put("kept", {double(bits.dataBits)});
    }

  private:
    static std::string shown(const Item& item) {
        std::string line = item.coding;
        for (const double number : item.numbers) {
            char digits[32];
            std::snprintf(digits, sizeof digits, " %g", number);
            line += digits;
        }
        return item.bytes.empty() ? line : line + " " + item.bytes;
    }
    Status fail() {
        if (status_ == Acad::eOk) status_ = Acad::eInvalidInput;
        return status_;
    }
    Status put(const char* coding, std::vector<double> numbers, std::string bytes = {}) {
        if (status_ == Acad::eOk) data.push_back({coding, std::move(numbers), std::move(bytes)});
        return status_;
    }
    Status putId(const char* coding, AcDbObjectId id) {
        ids.push_back({coding, id});
        return status_;
    }
    const Item* next(const char* coding) {
        if (status_ != Acad::eOk) return nullptr;
        if (at_ == data.size() || data[at_].coding != coding) {
            fail();
            return nullptr;
        }
        return &data[at_++];
    }
    Status read(const char* coding, std::initializer_list<double*> places) {
        const Item* const item = next(coding);
        if (item == nullptr) return status_;
        size_t i = 0;
        for (double* const place : places)
            *place = item->numbers[i++];
        return status_;
    }
    template <class Number>
    Status readNumber(const char* coding, Number& value) {
        double number = 0;
        if (read(coding, {&number}) == Acad::eOk) value = static_cast<Number>(number);
        return status_;
    }
    Status readId(AcDbObjectId& id) {
        if (idAt_ == ids.size()) return fail();
        id = ids[idAt_++].id;
        return status_;
    }

    AcDb::AcDbDwgVersion release_;
    AcDbDatabase* database_;
    Acad::ErrorStatus status_ = Acad::eOk;
    size_t at_ = 0, idAt_ = 0;
};

}  // namespace sg::test

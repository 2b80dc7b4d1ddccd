#pragma once

#include "host/dwg/file_filer.h"

namespace sg::dwg {

// What the objects of one file are read with.
struct ReadContext {
    AcDbDatabase& database;
    AcDb::AcDbDwgVersion release;
    dxf::TextCodec codec;  // of files before release 2007
    dxf::Handles handles;

    // What a handle in an object of the handle `own` stands for.
    AcDbObjectId refer(FileHandle handle, uint64_t own = 0) {
        bool isNew = false;
        return handles.refer(handle.resolved(own), isNew);
    }
};

// A text from a stream: until release 2004 bytes of the code page, then UTF-16.
void readText(BitReader& from, const ReadContext& context, std::wstring& text);
// A colour as objects and the header have it; its names are dropped.
AcCmColor readColor(ReadStreams& from, const ReadContext& context);

// Reads the fields of one object after another.
class ReadFiler final : public FileFiler {
  public:
    explicit ReadFiler(ReadContext& context)
        : FileFiler(&context.database, context.release, context.codec), context_(context) {}

    // Turns to the class data of an object, which begins where the streams stand.
    void begin(const ReadStreams& streams, uint64_t handle);
    // What an entity has for showing it, which a kept one keeps.
    void setGraphics(std::vector<uint8_t> bytes) { graphics_ = std::move(bytes); }

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override { return take(*id); }
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override { return take(*id); }
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override { return take(*id); }
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override { return take(*id); }
    Acad::ErrorStatus readInt8(int8_t* value) override { return put(value, data().rawChar()); }
    Acad::ErrorStatus readInt16(int16_t* value) override { return put(value, data().bitShort()); }
    Acad::ErrorStatus readInt32(int32_t* value) override { return put(value, data().bitLong()); }
    Acad::ErrorStatus readInt64(int64_t* value) override {
        return put(value, data().bitLongLong());
    }
    Acad::ErrorStatus readUInt8(uint8_t* value) override { return put(value, data().rawChar()); }
    Acad::ErrorStatus readUInt16(uint16_t* value) override { return put(value, data().bitShort()); }
    Acad::ErrorStatus readUInt32(uint32_t* value) override { return put(value, data().bitLong()); }
    Acad::ErrorStatus readBool(bool* value) override { return put(value, data().bit()); }
    Acad::ErrorStatus readDouble(double* value) override { return put(value, data().bitDouble()); }
    Acad::ErrorStatus readPoint2d(AcGePoint2d* value) override;
    Acad::ErrorStatus readPoint3d(AcGePoint3d* value) override;
    Acad::ErrorStatus readVector2d(AcGeVector2d* value) override;
    Acad::ErrorStatus readVector3d(AcGeVector3d* value) override;
    Acad::ErrorStatus readScale3d(AcGeScale3d* value) override;
    Acad::ErrorStatus readString(std::wstring& value) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* value) override;
    Acad::ErrorStatus readBytes(void* bytes, size_t count) override;
    Acad::ErrorStatus readBits(uint8_t* value, int count) override {
        return put(value, data().bits(static_cast<unsigned>(count)));
    }
    Acad::ErrorStatus readRawInt16(int16_t* value) override {
        return put(value, data().rawShort());
    }
    Acad::ErrorStatus readRawInt32(int32_t* value) override { return put(value, data().rawLong()); }
    Acad::ErrorStatus readRawDouble(double* value) override {
        return put(value, data().rawDouble());
    }
    Acad::ErrorStatus readNear(double* value, double known) override {
        return put(value, data().doubleWithDefault(known));
    }
    Acad::ErrorStatus readThickness(double* value) override;
    Acad::ErrorStatus readExtrusion(AcGeVector3d* value) override;
    Acad::ErrorStatus readColor(AcCmColor* value) override;
    Acad::ErrorStatus keep(model::KeptBits& bits) override;
    bool isRead() const override {
        constexpr size_t kFilledUp = 8;
        return streams_.data.left() == 0 && streams_.handles.left() < kFilledUp;
    }

    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId&) override { return refuse(); }
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId&) override { return refuse(); }
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId&) override { return refuse(); }
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId&) override { return refuse(); }
    Acad::ErrorStatus writeInt8(int8_t) override { return refuse(); }
    Acad::ErrorStatus writeInt16(int16_t) override { return refuse(); }
    Acad::ErrorStatus writeInt32(int32_t) override { return refuse(); }
    Acad::ErrorStatus writeInt64(int64_t) override { return refuse(); }
    Acad::ErrorStatus writeUInt8(uint8_t) override { return refuse(); }
    Acad::ErrorStatus writeUInt16(uint16_t) override { return refuse(); }
    Acad::ErrorStatus writeUInt32(uint32_t) override { return refuse(); }
    Acad::ErrorStatus writeBool(bool) override { return refuse(); }
    Acad::ErrorStatus writeDouble(double) override { return refuse(); }
    Acad::ErrorStatus writePoint2d(const AcGePoint2d&) override { return refuse(); }
    Acad::ErrorStatus writePoint3d(const AcGePoint3d&) override { return refuse(); }
    Acad::ErrorStatus writeVector2d(const AcGeVector2d&) override { return refuse(); }
    Acad::ErrorStatus writeVector3d(const AcGeVector3d&) override { return refuse(); }
    Acad::ErrorStatus writeScale3d(const AcGeScale3d&) override { return refuse(); }
    Acad::ErrorStatus writeString(const std::wstring&) override { return refuse(); }
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle&) override { return refuse(); }
    Acad::ErrorStatus writeBytes(const void*, size_t) override { return refuse(); }
    Acad::ErrorStatus writeBits(uint8_t, int) override { return refuse(); }
    Acad::ErrorStatus writeRawInt16(int16_t) override { return refuse(); }
    Acad::ErrorStatus writeRawInt32(int32_t) override { return refuse(); }
    Acad::ErrorStatus writeRawDouble(double) override { return refuse(); }
    Acad::ErrorStatus writeNear(double, double) override { return refuse(); }
    Acad::ErrorStatus writeThickness(double) override { return refuse(); }
    Acad::ErrorStatus writeExtrusion(const AcGeVector3d&) override { return refuse(); }
    Acad::ErrorStatus writeColor(const AcCmColor&) override { return refuse(); }
    Acad::ErrorStatus writeKept(const model::KeptBits&) override { return refuse(); }

  private:
    BitReader& data() { return streams_.data; }
    Acad::ErrorStatus failed();
    // Answers the status; the value changes when there was one.
    template <class To, class From>
    Acad::ErrorStatus put(To* value, From read) {
        if (status_ != Acad::eOk) return status_;
        if (streams_.data.hasFailed()) return failed();
        *value = static_cast<To>(read);
        return status_;
    }
    template <class Id>
    Acad::ErrorStatus take(Id& id) {
        if (status_ != Acad::eOk) return status_;
        const FileHandle handle = streams_.handles.handle();
        if (streams_.handles.hasFailed()) return failed();
        id = context_.refer(handle, own_);
        return status_;
    }

    ReadContext& context_;
    ReadStreams streams_;
    ReadStreams start_;
    uint64_t own_ = 0;
    std::vector<uint8_t> graphics_;
};

}  // namespace sg::dwg

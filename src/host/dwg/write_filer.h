#pragma once

#include <functional>
#include <unordered_map>

#include "host/dwg/file_filer.h"

namespace sg::dwg {

// The kinds of references as files number them.
constexpr unsigned kSoftOwner = 2, kHardOwner = 3, kSoftPointer = 4, kHardPointer = 5;

// What the objects of one file are written with.
struct WriteContext {
    AcDbDatabase& database;
    AcDb::AcDbDwgVersion release;
    dxf::TextCodec codec;  // for files before release 2007
    // The handle that stands for an object in the file; 0 for one that is not written.
    std::function<uint64_t(AcDbObjectId)> handleOf;
    // The block references that show a block.
    std::unordered_map<AcDbObjectId, std::vector<AcDbObjectId>> references;
};

// The three rows of bits of an object. Until release 2004 texts go among the data.
struct WriteStreams {
    BitWriter data, texts, handles;

    void clear() {
        data.clear();
        texts.clear();
        handles.clear();
    }
};

void writeText(BitWriter& to, const WriteContext& context, std::wstring_view text);
void writeColor(BitWriter& to, const WriteContext& context, const AcCmColor& color);

// Writes the fields of one object after another, behind what its streams have already.
class WriteFiler final : public FileFiler {
  public:
    WriteFiler(WriteContext& context, WriteStreams& streams)
        : FileFiler(&context.database, context.release, context.codec),
          context_(context),
          streams_(streams) {}

    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) override {
        return reference(kHardOwner, id);
    }
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override {
        return reference(kSoftOwner, id);
    }
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) override {
        return reference(kHardPointer, id);
    }
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) override {
        return reference(kSoftPointer, id);
    }
    Acad::ErrorStatus writeInt8(int8_t value) override {
        return writeUInt8(static_cast<uint8_t>(value));
    }
    Acad::ErrorStatus writeInt16(int16_t value) override {
        data().bitShort(value);
        return status_;
    }
    Acad::ErrorStatus writeInt32(int32_t value) override {
        data().bitLong(value);
        return status_;
    }
    Acad::ErrorStatus writeInt64(int64_t value) override {
        data().bitLongLong(static_cast<uint64_t>(value));
        return status_;
    }
    Acad::ErrorStatus writeUInt8(uint8_t value) override {
        data().rawChar(value);
        return status_;
    }
    Acad::ErrorStatus writeUInt16(uint16_t value) override {
        return writeInt16(static_cast<int16_t>(value));
    }
    Acad::ErrorStatus writeUInt32(uint32_t value) override {
        return writeInt32(static_cast<int32_t>(value));
    }
    Acad::ErrorStatus writeBool(bool value) override {
        data().bit(value);
        return status_;
    }
    Acad::ErrorStatus writeDouble(double value) override {
        data().bitDouble(value);
        return status_;
    }
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) override {
        data().rawPoint2d(value);
        return status_;
    }
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) override {
        data().point3d(value);
        return status_;
    }
    Acad::ErrorStatus writeVector2d(const AcGeVector2d& value) override {
        return writePoint2d({value.x, value.y});
    }
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) override {
        return writePoint3d({value.x, value.y, value.z});
    }
    Acad::ErrorStatus writeScale3d(const AcGeScale3d& value) override {
        return writePoint3d({value.sx, value.sy, value.sz});
    }
    Acad::ErrorStatus writeString(const std::wstring& value) override;
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& value) override;
    Acad::ErrorStatus writeBytes(const void* bytes, size_t count) override;
    Acad::ErrorStatus writeBits(uint8_t value, int count) override {
        data().bits(value, static_cast<unsigned>(count));
        return status_;
    }
    Acad::ErrorStatus writeRawInt16(int16_t value) override {
        data().rawShort(static_cast<uint16_t>(value));
        return status_;
    }
    Acad::ErrorStatus writeRawInt32(int32_t value) override {
        data().rawLong(static_cast<uint32_t>(value));
        return status_;
    }
    Acad::ErrorStatus writeRawDouble(double value) override {
        data().rawDouble(value);
        return status_;
    }
    Acad::ErrorStatus writeNear(double value, double known) override {
        data().doubleWithDefault(value, known);
        return status_;
    }
    Acad::ErrorStatus writeThickness(double value) override;
    Acad::ErrorStatus writeExtrusion(const AcGeVector3d& value) override;
    Acad::ErrorStatus writeColor(const AcCmColor& value) override;
    Acad::ErrorStatus writeKept(const model::KeptBits& bits) override;
    std::span<const AcDbObjectId> referencesTo(AcDbObjectId block) const override;

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId*) override { return refuse(); }
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId*) override { return refuse(); }
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId*) override { return refuse(); }
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId*) override { return refuse(); }
    Acad::ErrorStatus readInt8(int8_t*) override { return refuse(); }
    Acad::ErrorStatus readInt16(int16_t*) override { return refuse(); }
    Acad::ErrorStatus readInt32(int32_t*) override { return refuse(); }
    Acad::ErrorStatus readInt64(int64_t*) override { return refuse(); }
    Acad::ErrorStatus readUInt8(uint8_t*) override { return refuse(); }
    Acad::ErrorStatus readUInt16(uint16_t*) override { return refuse(); }
    Acad::ErrorStatus readUInt32(uint32_t*) override { return refuse(); }
    Acad::ErrorStatus readBool(bool*) override { return refuse(); }
    Acad::ErrorStatus readDouble(double*) override { return refuse(); }
    Acad::ErrorStatus readPoint2d(AcGePoint2d*) override { return refuse(); }
    Acad::ErrorStatus readPoint3d(AcGePoint3d*) override { return refuse(); }
    Acad::ErrorStatus readVector2d(AcGeVector2d*) override { return refuse(); }
    Acad::ErrorStatus readVector3d(AcGeVector3d*) override { return refuse(); }
    Acad::ErrorStatus readScale3d(AcGeScale3d*) override { return refuse(); }
    Acad::ErrorStatus readString(std::wstring&) override { return refuse(); }
    Acad::ErrorStatus readAcDbHandle(AcDbHandle*) override { return refuse(); }
    Acad::ErrorStatus readBytes(void*, size_t) override { return refuse(); }
    Acad::ErrorStatus readBits(uint8_t*, int) override { return refuse(); }
    Acad::ErrorStatus readRawInt16(int16_t*) override { return refuse(); }
    Acad::ErrorStatus readRawInt32(int32_t*) override { return refuse(); }
    Acad::ErrorStatus readRawDouble(double*) override { return refuse(); }
    Acad::ErrorStatus readNear(double*, double) override { return refuse(); }
    Acad::ErrorStatus readThickness(double*) override { return refuse(); }
    Acad::ErrorStatus readExtrusion(AcGeVector3d*) override { return refuse(); }
    Acad::ErrorStatus readColor(AcCmColor*) override { return refuse(); }
    Acad::ErrorStatus keep(model::KeptBits&) override { return refuse(); }

  private:
    BitWriter& data() { return streams_.data; }
    Acad::ErrorStatus reference(unsigned kind, AcDbObjectId id) {
        streams_.handles.handle(kind, context_.handleOf(id));
        return status_;
    }

    WriteContext& context_;
    WriteStreams& streams_;
};

}  // namespace sg::dwg

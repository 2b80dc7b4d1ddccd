#pragma once

#include <cstring>
#include <span>
#include <vector>

#include "platform/db/filers.h"
#include "platform/db/id_mapping.h"

namespace sg::model {

enum class Reference : uint8_t { hardOwnership, softOwnership, hardPointer, softPointer };

constexpr bool isOwnership(Reference kind) {
    return kind == Reference::hardOwnership || kind == Reference::softOwnership;
}

// An id through a filer, filed as this kind.
void writeReference(AcDbDwgFiler& filer, Reference kind, AcDbObjectId id);
AcDbObjectId readReference(AcDbDwgFiler& filer, Reference kind);

// What filers in memory share: every value as the bytes it has in memory, a text as its length in
// 32 bits and its units.
class BytesFiler : public AcDbDwgFiler {
  public:
    BytesFiler(AcDb::FilerType type, AcDbDatabase* database) : type_(type), database_(database) {}

    AcDb::FilerType filerType() const final { return type_; }
    Acad::ErrorStatus filerStatus() const final { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) final { status_ = status; }
    void resetFilerStatus() final { status_ = Acad::eOk; }
    AcDbDatabase* database() const final { return database_; }

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) final;
    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) final;
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) final;
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) final;
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) final;
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) final;
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) final;
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) final;

    Acad::ErrorStatus readInt8(int8_t* value) final { return take(*value); }
    Acad::ErrorStatus writeInt8(int8_t value) final { return put(value); }
    Acad::ErrorStatus readInt16(int16_t* value) final { return take(*value); }
    Acad::ErrorStatus writeInt16(int16_t value) final { return put(value); }
    Acad::ErrorStatus readInt32(int32_t* value) final { return take(*value); }
    Acad::ErrorStatus writeInt32(int32_t value) final { return put(value); }
    Acad::ErrorStatus readInt64(int64_t* value) final { return take(*value); }
    Acad::ErrorStatus writeInt64(int64_t value) final { return put(value); }
    Acad::ErrorStatus readUInt8(uint8_t* value) final { return take(*value); }
    Acad::ErrorStatus writeUInt8(uint8_t value) final { return put(value); }
    Acad::ErrorStatus readUInt16(uint16_t* value) final { return take(*value); }
    Acad::ErrorStatus writeUInt16(uint16_t value) final { return put(value); }
    Acad::ErrorStatus readUInt32(uint32_t* value) final { return take(*value); }
    Acad::ErrorStatus writeUInt32(uint32_t value) final { return put(value); }
    Acad::ErrorStatus readBool(bool* value) final;
    Acad::ErrorStatus writeBool(bool value) final { return put(static_cast<uint8_t>(value)); }
    Acad::ErrorStatus readDouble(double* value) final { return take(*value); }
    Acad::ErrorStatus writeDouble(double value) final { return put(value); }
    Acad::ErrorStatus readPoint2d(AcGePoint2d* value) final;
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) final;
    Acad::ErrorStatus readPoint3d(AcGePoint3d* value) final;
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) final;
    Acad::ErrorStatus readVector2d(AcGeVector2d* value) final;
    Acad::ErrorStatus writeVector2d(const AcGeVector2d& value) final;
    Acad::ErrorStatus readVector3d(AcGeVector3d* value) final;
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) final;
    Acad::ErrorStatus readScale3d(AcGeScale3d* value) final;
    Acad::ErrorStatus writeScale3d(const AcGeScale3d& value) final;
    Acad::ErrorStatus readString(std::wstring& value) final;
    Acad::ErrorStatus writeString(const std::wstring& value) final;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* value) final;
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& value) final;
    Acad::ErrorStatus readBytes(void* bytes, size_t count) final;
    Acad::ErrorStatus writeBytes(const void* bytes, size_t count) final;

  protected:
    virtual void putBytes(const void* bytes, size_t count) = 0;
    virtual bool takeBytes(void* bytes, size_t count) = 0;  // false: there are not so many
    virtual void putId(Reference kind, AcDbObjectId id);
    // What an id, or a handle, that was read stands for here.
    virtual AcDbObjectId translated(Reference, AcDbObjectId id) const { return id; }
    virtual AcDbHandle translated(AcDbHandle handle) const { return handle; }

  private:
    Acad::ErrorStatus takeId(Reference kind, AcDbObjectId& id);
    template <class Value>
    Acad::ErrorStatus put(const Value& value) {
        if (status_ == Acad::eOk) putBytes(&value, sizeof(Value));
        return status_;
    }
    template <class Value>
    Acad::ErrorStatus take(Value& value) {
        return readBytes(&value, sizeof(Value));
    }

    AcDb::FilerType type_;
    Acad::ErrorStatus status_ = Acad::eOk;
    AcDbDatabase* database_;
};

// Writes to the end of a row of bytes. Reading from it fails.
class MemoryWriter final : public BytesFiler {
  public:
    // Where an id stands in the bytes.
    struct IdPlace {
        size_t offset;
        Reference kind;
    };

    MemoryWriter(std::vector<uint8_t>& bytes, AcDb::FilerType type, AcDbDatabase* database,
                 std::vector<IdPlace>* places = nullptr)
        : BytesFiler(type, database), bytes_(bytes), places_(places) {}

  protected:
    void putBytes(const void* bytes, size_t count) override {
        const auto* const start = static_cast<const uint8_t*>(bytes);
        bytes_.insert(bytes_.end(), start, start + count);
    }
    bool takeBytes(void*, size_t) override { return false; }
    void putId(Reference kind, AcDbObjectId id) override {
        if (places_ != nullptr) places_->push_back({bytes_.size(), kind});
        BytesFiler::putId(kind, id);
    }

  private:
    std::vector<uint8_t>& bytes_;
    std::vector<IdPlace>* places_;
};

// Reads what a MemoryWriter has written. Writing to it fails.
class MemoryReader : public BytesFiler {
  public:
    MemoryReader(std::span<const uint8_t> bytes, AcDb::FilerType type, AcDbDatabase* database)
        : BytesFiler(type, database), rest_(bytes) {}

    std::span<const uint8_t> rest() const { return rest_; }  // what has not been read yet

  protected:
    void putBytes(const void*, size_t) override { setFilerStatus(Acad::eInvalidInput); }
    bool takeBytes(void* bytes, size_t count) override {
        if (count > rest_.size()) return false;
        if (count != 0) std::memcpy(bytes, rest_.data(), count);
        rest_ = rest_.subspan(count);
        return true;
    }

  private:
    std::span<const uint8_t> rest_;
};

// Reads a copy with the ids of originals replaced by those of their copies. Of those without a
// copy, an id of another database and one of what an original owns become null; others stay.
class TranslatingReader final : public MemoryReader {
  public:
    TranslatingReader(std::span<const uint8_t> bytes, const AcDbIdMapping& mapping,
                      AcDbObjectId copy)
        : MemoryReader(bytes, AcDb::kIdXlateFiler, mapping.destination),
          mapping_(mapping),
          copy_(copy) {}

  protected:
    AcDbObjectId translated(Reference kind, AcDbObjectId id) const override;
    AcDbHandle translated(AcDbHandle handle) const override;

  private:
    const AcDbIdMapping& mapping_;
    AcDbObjectId copy_;
};

// Keeps the ids that are written to it and nothing else.
class ReferenceCollector final : public BytesFiler {
  public:
    struct Item {
        Reference kind;
        AcDbObjectId id;
    };

    ReferenceCollector(AcDb::FilerType type, AcDbDatabase* database) : BytesFiler(type, database) {}

    const std::vector<Item>& items() const { return items_; }
    void clear() { items_.clear(); }

  protected:
    void putBytes(const void*, size_t) override {}
    bool takeBytes(void*, size_t) override { return false; }
    void putId(Reference kind, AcDbObjectId id) override {
        if (!id.isNull()) items_.push_back({kind, id});
    }

  private:
    std::vector<Item> items_;
};

}  // namespace sg::model

#pragma once

#include <string>
#include <vector>

#include "base/export.h"
#include "host/model/core/reading_filer.h"

namespace sg::model {

// A DXF filer without a file: it reads from, or writes to, a list of groups. Handles of objects in
// groups are entity names.
class ListFiler : public AcDbDxfFiler {
  public:
    ListFiler(AcDb::FilerType type, AcDbDatabase* database) : type_(type), database_(database) {}

    AcDb::FilerType filerType() const final { return type_; }
    Acad::ErrorStatus filerStatus() const final { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) final { status_ = status; }
    void resetFilerStatus() final { status_ = Acad::eOk; }
    AcDbDatabase* database() const final { return database_; }
    Acad::ErrorStatus setError(Acad::ErrorStatus status, const std::wstring& text) final;
    std::wstring errorMessage() const final { return message_; }
    AcDbObjectId objectId(const ads_name name) const final;

  private:
    AcDb::FilerType type_;
    AcDbDatabase* database_;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::wstring message_;
};

// Collects what an object writes. Extended data is left out but for the applications asked for; a
// group -3 goes ahead of it.
class SG_API ListWriter final : public ListFiler {
  public:
    // `applications`: names of which "*" stands for any text; none: no extended data.
    explicit ListWriter(AcDbDatabase* database, std::vector<std::wstring> applications = {},
                        AcDb::FilerType type = AcDb::kBagFiler)
        : ListFiler(type, database), applications_(std::move(applications)) {}
    ~ListWriter() override;
    ListWriter(const ListWriter&) = delete;
    ListWriter& operator=(const ListWriter&) = delete;

    resbuf* take();  // the list, which the caller releases; null when nothing was written
    // Those of its nodes that hold 2D points, in the order of the list.
    const std::vector<const resbuf*>& flatPoints() const { return flatPoints_; }

    Acad::ErrorStatus readItem(resbuf* group) override;
    Acad::ErrorStatus pushBackItem() override;
    bool atSubclassData(const wchar_t* name) override;
    bool atEndOfObject() override { return true; }

    bool includesDefaultValues() const override { return true; }
    Acad::ErrorStatus writeItem(const resbuf& group) override;
    Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) override;
    Acad::ErrorStatus writeInt8(int code, int8_t value) override;
    Acad::ErrorStatus writeInt16(int code, int16_t value) override;
    Acad::ErrorStatus writeInt32(int code, int32_t value) override;
    Acad::ErrorStatus writeInt64(int code, int64_t value) override;
    Acad::ErrorStatus writeUInt8(int code, uint8_t value) override;
    Acad::ErrorStatus writeUInt16(int code, uint16_t value) override;
    Acad::ErrorStatus writeUInt32(int code, uint32_t value) override;
    Acad::ErrorStatus writeBool(int code, bool value) override;
    Acad::ErrorStatus writeDouble(int code, double value, int precision) override;
    Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& value, int precision) override;
    Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& value, int precision) override;
    Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d& value, int precision) override;
    Acad::ErrorStatus writeString(int code, const wchar_t* value) override;
    Acad::ErrorStatus writeAcDbHandle(int code, const AcDbHandle& value) override;
    Acad::ErrorStatus writeBChunk(int code, const void* bytes, size_t count) override;

  private:
    resbuf* append(int code);
    Acad::ErrorStatus writeNumber(int code, int64_t value);
    bool isLeftOut(const resbuf& group);

    std::vector<std::wstring> applications_;
    resbuf* head_ = nullptr;
    resbuf* last_ = nullptr;
    std::vector<const resbuf*> flatPoints_;
    bool inExtendedData_ = false;
    bool isApplicationLeftOut_ = true;
};

// Reads an object from a list of groups, which stays the caller's and must outlive the reader. The
// list may have subclass markers or none; with them, what stands before the first counts as the
// entity's where its marker is missing. Lists of reactors and of the extension dictionary may stand
// anywhere but among the groups of an extended record.
class SG_API ListReader final : public ReadingFiler<ListFiler> {
  public:
    ListReader(const resbuf* list, AcDbDatabase* database, AcDb::FilerType type = AcDb::kBagFiler);

    Acad::ErrorStatus readItem(resbuf* group) override;
    Acad::ErrorStatus pushBackItem() override;
    bool atSubclassData(const wchar_t* name) override;
    bool atEndOfObject() override { return at_ == groups_.size(); }
    resbuf* takeExtendedData() override;

    bool includesDefaultValues() const override { return true; }

  private:
    void liftLists();

    std::vector<const resbuf*> groups_;  // of the class data
    const resbuf* extendedData_ = nullptr;
    size_t at_ = 0;
    bool hasMarkers_ = false;
};

}  // namespace sg::model

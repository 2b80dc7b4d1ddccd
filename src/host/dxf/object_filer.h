#pragma once

#include <span>
#include <string>

#include "host/dxf/group.h"
#include "host/dxf/handles.h"
#include "host/dxf/text_codec.h"
#include "host/model/core/group_data.h"
#include "host/model/core/reading_filer.h"

namespace sg::dxf {

// Appends a group as it stands in the file.
void appendGroup(model::GroupData& data, const Group& group, const TextCodec& codec,
                 Handles& handles);

// Reads an object from its groups, which begin behind the group 0 and outlive the filer. Files of
// release 12 have no subclass markers: then each class goes over all groups. What stands behind an
// embedded object's marker (101) has the codes of another object, and is not shown to the class.
class ObjectFiler final : public model::ReadingFiler<AcDbDxfFiler>, public model::FileGroupsAccess {
  public:
    ObjectFiler(std::span<const Group> groups, const TextCodec& codec, Handles& handles,
                AcDbDatabase* database, AcDb::AcDbDwgVersion release);

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    Acad::ErrorStatus filerStatus() const override { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) override { status_ = status; }
    void resetFilerStatus() override { status_ = Acad::eOk; }
    AcDb::AcDbDwgVersion dwgVersion() const override { return release_; }
    AcDbDatabase* database() const override { return database_; }

    Acad::ErrorStatus readItem(resbuf* group) override;
    Acad::ErrorStatus pushBackItem() override;
    bool atSubclassData(const wchar_t* name) override;
    bool atEndOfObject() override { return at_ == classData_.size(); }
    resbuf* takeExtendedData() override;
    AcDbObjectId objectId(const ads_name name) const override { return model::idOfName(name); }
    Acad::ErrorStatus setError(Acad::ErrorStatus status, const std::wstring& text) override {
        message_ = text;
        return status_ = status;
    }
    std::wstring errorMessage() const override { return message_; }

    // All that is left up to the extended data; without markers, what is no entity's or object's
    // own.
    void readRest(model::GroupData& groups) override;
    void writeGroups(const model::GroupData&) override { setFilerStatus(Acad::eInvalidInput); }

  private:
    size_t setValue(resbuf& node, size_t at, std::span<const Group> groups);
    void setText(resbuf& node, const Group& group);

    std::span<const Group> all_;
    std::span<const Group> classData_;     // what classes see
    std::span<const Group> extendedData_;  // from its first 1001 on
    const TextCodec& codec_;
    Handles& handles_;
    AcDbDatabase* database_;
    AcDb::AcDbDwgVersion release_;
    size_t at_ = 0;      // in the class data
    size_t before_ = 0;  // where the last group began
    bool hasMarkers_ = false;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::wstring text_;  // of the last group
    std::wstring message_;
};

}  // namespace sg::dxf
